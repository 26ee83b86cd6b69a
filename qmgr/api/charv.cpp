#include "qmgr/api/charv.h"

#include <algorithm>
#include <cstring>

#include "qmgr/properties/text_conversion.h"

namespace mqrig::qmgr::api {
namespace {

properties::TextForm formOf(const MQCHARV &text, MQLONG ccsid)
{
    const bool own = text.VSCCSID == MQCCSI_APPL || text.VSCCSID == MQCCSI_Q_MGR || text.VSCCSID == MQCCSI_INHERIT;
    return {own ? ccsid : text.VSCCSID, MQENC_NATIVE};
}

// Up to a zero character, or one unit more than there may be.
std::size_t terminatedLength(const char *text, std::size_t unit, std::size_t most)
{
    std::size_t length = 0;
    while (length <= most && (text[length] != 0 || (unit == 2 && text[length + 1] != 0)))
        length += unit;
    return length;
}

} // namespace

bool loadText(const MQCHARV &from, const void *structure, std::size_t most, MQLONG ccsid, std::string &text)
{
    text.clear();
    if (from.VSLength == 0) return true;
    if (from.VSPtr != nullptr && from.VSOffset != 0) return false;
    if (from.VSLength < MQVS_NULL_TERMINATED) return false;
    const char *bytes = static_cast<const char *>(from.VSPtr);
    if (bytes == nullptr && from.VSOffset != 0) bytes = static_cast<const char *>(structure) + from.VSOffset;
    if (bytes == nullptr) return from.VSLength == MQVS_NULL_TERMINATED;
    const properties::TextForm form = formOf(from, ccsid);
    if (!properties::isKnownCharacterSet(form.ccsid)) return false;
    // In another character set the same text may be up to four times as long.
    const std::size_t mostBytes = 4 * most;
    const std::size_t length = from.VSLength == MQVS_NULL_TERMINATED
                                   ? terminatedLength(bytes, properties::terminatorSize(form), mostBytes)
                                   : static_cast<std::size_t>(from.VSLength);
    if (length > mostBytes || !properties::convertText({bytes, length}, form, {}, text)) return false;
    return text.size() <= most;
}

bool isWritable(const MQCHARV &to)
{
    return to.VSPtr == nullptr || to.VSOffset == 0;
}

void storeText(std::string_view text, void *structure, MQLONG ccsid, MQCHARV &to)
{
    std::string converted;
    if (!properties::convertText(text, {}, formOf(to, ccsid), converted)) converted = text;
    char *bytes = static_cast<char *>(to.VSPtr);
    if (bytes == nullptr && to.VSOffset != 0) bytes = static_cast<char *>(structure) + to.VSOffset;
    if (bytes != nullptr && to.VSBufSize > 0)
        std::memcpy(bytes, converted.data(), std::min(converted.size(), static_cast<std::size_t>(to.VSBufSize)));
    to.VSLength = static_cast<MQLONG>(converted.size());
}

} // namespace mqrig::qmgr::api
