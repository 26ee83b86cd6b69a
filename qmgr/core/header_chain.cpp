#include "qmgr/core/header_chain.h"

#include <cstring>
#include <iterator>
#include <string_view>

namespace mqrig::qmgr::core {
namespace {

// The front that most headers share.
struct CommonHeader {
    MQCHAR4 StrucId;
    MQLONG Version;
    MQLONG StrucLength;
    MQLONG Encoding;
    MQLONG CodedCharSetId;
    MQCHAR8 Format;
};

struct HeaderFormat {
    std::string_view format; // the name that announces the header
    std::string_view strucId;
};
constexpr HeaderFormat commonFormats[] = {
    {MQFMT_CICS, MQCIH_STRUC_ID},         {MQFMT_DIST_HEADER, MQDH_STRUC_ID},       {MQFMT_IMS, MQIIH_STRUC_ID},
    {MQFMT_MD_EXTENSION, MQMDE_STRUC_ID}, {MQFMT_REF_MSG_HEADER, MQRMH_STRUC_ID},   {MQFMT_RF_HEADER_1, MQRFH_STRUC_ID},
    {MQFMT_RF_HEADER_2, MQRFH_STRUC_ID},  {MQFMT_WORK_INFO_HEADER, MQWIH_STRUC_ID},
};

// Where the chain stands: the next header's format, and how its numbers are written.
struct Link {
    std::string_view format;
    MQLONG encoding;
};

template <class Structure>
bool copyFrom(std::span<const std::byte> body, Structure &structure)
{
    if (body.size() < sizeof structure) return false;
    std::memcpy(&structure, body.data(), sizeof structure);
    return true;
}

MQLONG number(MQLONG value, MQLONG encoding)
{
    const bool reversed = (encoding & MQENC_INTEGER_MASK) == MQENC_INTEGER_NORMAL;
    return reversed ? static_cast<MQLONG>(__builtin_bswap32(static_cast<MQULONG>(value))) : value;
}

// The length of the header that the link announces, 0 if it is none; the link moves on.
std::size_t follow(std::span<const std::byte> body, Link &link)
{
    if (link.format == MQFMT_DEAD_LETTER_HEADER) {
        MQDLH header;
        if (!copyFrom(body, header) || std::string_view(header.StrucId, 4) != MQDLH_STRUC_ID) return 0;
        const auto *format = reinterpret_cast<const char *>(body.data()) + offsetof(MQDLH, Format);
        link = {{format, MQ_FORMAT_LENGTH}, number(header.Encoding, link.encoding)};
        return sizeof header;
    }
    for (const HeaderFormat &row : commonFormats) {
        if (link.format != row.format) continue;
        CommonHeader header;
        if (!copyFrom(body, header) || std::string_view(header.StrucId, 4) != row.strucId) return 0;
        const MQLONG length = number(header.StrucLength, link.encoding);
        if (length < static_cast<MQLONG>(sizeof header) || static_cast<std::size_t>(length) > body.size()) return 0;
        const auto *format = reinterpret_cast<const char *>(body.data()) + offsetof(CommonHeader, Format);
        link = {{format, MQ_FORMAT_LENGTH}, number(header.Encoding, link.encoding)};
        return static_cast<std::size_t>(length);
    }
    return 0;
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
