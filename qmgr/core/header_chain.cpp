#include "qmgr/core/header_chain.h"

#include <cstring>
#include <string_view>

#include "qmgr/convert/headers.h"

namespace mqrig::qmgr::core {
namespace {

// Where the chain stands: the format of what comes next, and how its numbers are written.
struct Link {
    std::string_view format;
    MQLONG encoding;
};

MQLONG numberAt(std::span<const std::byte> body, std::size_t at, MQLONG encoding)
{
    MQULONG number = 0;
    std::memcpy(&number, body.data() + at, sizeof number);
    const bool reversed = (encoding & MQENC_INTEGER_MASK) == MQENC_INTEGER_NORMAL;
    return static_cast<MQLONG>(reversed ? __builtin_bswap32(number) : number);
}

// The length of the header that the link announces, 0 if it is none or not whole; the link moves on.
std::size_t follow(std::span<const std::byte> body, Link &link)
{
    const convert::Header *header = convert::findHeader(link.format);
    if (header == nullptr || header->nextAt == 0 || body.size() < header->size) return 0;
    const auto *text = reinterpret_cast<const char *>(body.data());
    if (!std::string_view(text, body.size()).starts_with(header->strucId)) return 0;
    std::size_t length = header->size;
    if (header->lengthAt != 0) {
        const MQLONG told = numberAt(body, header->lengthAt, link.encoding);
        if (told < 0 || static_cast<std::size_t>(told) < header->size) return 0;
        length = static_cast<std::size_t>(told);
    }
    if (length > body.size()) return 0;
    link.encoding = numberAt(body, header->nextAt, link.encoding);
    link.format = {text + header->nextAt + 2 * sizeof(MQLONG), MQ_FORMAT_LENGTH};
    return length;
}

} // namespace

std::size_t lengthOfHeaders(const MQMD &md, std::span<const std::byte> body)
{
    Link link{{md.Format, sizeof md.Format}, md.Encoding};
    std::size_t headers = 0;
    while (const std::size_t length = follow(body.subspan(headers), link))
        headers += length;
    return headers;
}

} // namespace mqrig::qmgr::core
