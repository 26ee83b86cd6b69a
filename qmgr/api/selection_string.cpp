#include "qmgr/api/selection_string.h"

#include <cstddef>

#include "qmgr/properties/text_conversion.h"

namespace mqrig::qmgr::api {
namespace {

constexpr std::size_t longest = MQ_SELECTOR_LENGTH;

// Up to a zero character; too long a text has more than the longest.
std::size_t terminatedLength(const char *text, std::size_t unit)
{
    std::size_t length = 0;
    while (length <= longest && (text[length] != 0 || (unit == 2 && text[length + 1] != 0)))
        length += unit;
    return length;
}

} // namespace

bool isGiven(const MQCHARV &text)
{
    return text.VSLength != 0 && (text.VSPtr != nullptr || text.VSOffset != 0);
}

MQLONG loadSelectionString(core::Connection &connection, const MQCHARV &given, const void *structure, std::string &text)
{
    text.clear();
    if (given.VSPtr != nullptr && given.VSOffset != 0) return MQRC_SELECTION_STRING_ERROR;
    if (given.VSLength < MQVS_NULL_TERMINATED) return MQRC_SELECTION_STRING_ERROR;
    if (given.VSLength == 0) return MQRC_NONE;
    if (!isGiven(given)) return given.VSLength > 0 ? MQRC_SELECTION_STRING_ERROR : MQRC_NONE;

    const bool own = given.VSCCSID == MQCCSI_APPL || given.VSCCSID == MQCCSI_Q_MGR || given.VSCCSID == MQCCSI_INHERIT;
    const properties::TextForm form{own ? connection.queueManager().codedCharSetId : given.VSCCSID, MQENC_NATIVE};
    if (!properties::isKnownCharacterSet(form.ccsid)) return MQRC_SOURCE_CCSID_ERROR;
    const char *bytes = given.VSPtr != nullptr ? static_cast<const char *>(given.VSPtr)
                                               : static_cast<const char *>(structure) + given.VSOffset;
    const std::size_t length = given.VSLength == MQVS_NULL_TERMINATED
                                   ? terminatedLength(bytes, properties::terminatorSize(form))
                                   : static_cast<std::size_t>(given.VSLength);
    if (length > longest) return MQRC_SELECTION_STRING_ERROR;
    if (!properties::convertText({bytes, length}, form, {}, text)) return MQRC_SELECTION_STRING_ERROR;
    if (text.find_first_not_of(" \t\n\r\v\f") == std::string::npos) text.clear();
    return text.size() > longest ? MQRC_SELECTION_STRING_ERROR : MQRC_NONE;
}

MQLONG loadSelector(core::Connection &connection, const MQCHARV &given, const void *structure,
                    std::shared_ptr<const core::MessageSelector> &selector)
{
    std::string text;
    if (const MQLONG reason = loadSelectionString(connection, given, structure, text)) return reason;
    return text.empty() ? MQRC_NONE : core::MessageSelector::compile(text, selector);
}

} // namespace mqrig::qmgr::api
