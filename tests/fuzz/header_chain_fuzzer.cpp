// The walk over the headers of a body, and its dump. First byte: order and form; second: level and format.
#include "display.h"
#include "walker.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    prepare_walks();
    constexpr const char *formats[] = {MQFMT_DEAD_LETTER_HEADER,
                                       MQFMT_XMIT_Q_HEADER,
                                       MQFMT_MD_EXTENSION,
                                       MQFMT_RF_HEADER_2,
                                       MQFMT_ADMIN,
                                       MQFMT_EVENT,
                                       MQFMT_STRING,
                                       MQFMT_EMBEDDED_PCF};
    Input input(data, size);
    RunParams params = walk_params(input.byte());
    const unsigned choice = input.byte();
    std::memcpy(params.DataFormat, formats[choice % 8], MQ_FORMAT_LENGTH);
    const std::vector<char> body = input.rest();
    const auto length = static_cast<MQLONG>(body.size());
    startPrintRecursive(body.data(), length, length, (choice & 8U) != 0 ? 1 : 2, params.DisplayForm, &params);
    return 0;
}
