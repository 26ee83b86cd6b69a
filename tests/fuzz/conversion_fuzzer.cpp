// The conversion of a message. First byte: representations and format; second: the room of the buffer.
#include "qmgr/convert/message.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

using namespace mqrig::qmgr::convert;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size < 2) return 0;
    constexpr const char *formats[] = {
        MQFMT_DEAD_LETTER_HEADER, MQFMT_XMIT_Q_HEADER, MQFMT_MD_EXTENSION, MQFMT_RF_HEADER_2, MQFMT_ADMIN,
        MQFMT_DIST_HEADER,        MQFMT_STRING,        MQFMT_EMBEDDED_PCF};
    constexpr MQLONG sets[] = {819, 500, 1208, 1200};
    const unsigned choice = data[0];
    const unsigned room = data[1];
    const std::size_t length = size - 2;
    // From far too little up to more than enough.
    std::vector<std::byte> buffer(room < 128 ? length * room / 64 : length + room - 128);
    const std::size_t delivered = std::min(buffer.size(), length);
    if (delivered != 0) std::memcpy(buffer.data(), data + 2, delivered);
    const Message message{(choice & 8U) != 0 ? MQENC_NORMAL : MQENC_NATIVE,
                          sets[choice >> 4 & 3U],
                          formats[choice & 7U],
                          buffer,
                          delivered,
                          length};
    const Conversion conversion = convertMessage(message, {{MQENC_NATIVE, sets[choice >> 6]}, 1208, (room & 1U) != 0});
    if (conversion.returned > buffer.size()) __builtin_trap();
    return 0;
}
