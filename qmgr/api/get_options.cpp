#include "qmgr/api/get_options.h"

#include "qmgr/api/option_table.h"
#include "qmgr/core/get.h"
#include "qmgr/core/logical_order.h"

namespace mqrig::qmgr::api {
namespace {

constexpr MQLONG cursorOptions = core::browseOptions | MQGMO_MSG_UNDER_CURSOR;
constexpr MQLONG unmarkOptions = MQGMO_UNMARK_BROWSE_CO_OP | MQGMO_UNMARK_BROWSE_HANDLE;
constexpr MQLONG markOptions =
    MQGMO_MARK_BROWSE_HANDLE | MQGMO_MARK_BROWSE_CO_OP | MQGMO_UNMARKED_BROWSE_MSG | unmarkOptions;
// Options that want more than one message, or keep one for the handle: a mark is for one that anybody may have.
constexpr MQLONG notWithMarks =
    MQGMO_LOCK | MQGMO_LOGICAL_ORDER | MQGMO_COMPLETE_MSG | MQGMO_ALL_MSGS_AVAILABLE | MQGMO_ALL_SEGMENTS_AVAILABLE;
constexpr MQLONG syncpointOptions = MQGMO_SYNCPOINT | MQGMO_SYNCPOINT_IF_PERSISTENT | MQGMO_NO_SYNCPOINT;

bool has(MQLONG options, MQLONG all)
{
    return (options & all) == all;
}

// Locks and marks are for browsing, and no mark is set and taken away at once.
bool isWrongBrowse(MQLONG options)
{
    if ((options & (MQGMO_LOCK | markOptions)) == 0) return false;
    if ((options & core::browseOptions) == 0) return true;
    if ((options & markOptions) == 0) return false;
    return (options & notWithMarks) != 0 || has(options, MQGMO_MARK_BROWSE_CO_OP | MQGMO_UNMARK_BROWSE_CO_OP) ||
           has(options, MQGMO_MARK_BROWSE_HANDLE | MQGMO_UNMARK_BROWSE_HANDLE) ||
           ((options & MQGMO_UNMARKED_BROWSE_MSG) != 0 && (options & unmarkOptions) != 0);
}

MQLONG checkOptionsTogether(const MQGMO &gmo)
{
    const MQLONG options = gmo.Options;
    if (const MQLONG reason = checkOptions(OptionField::Get, options)) return reason;
    const bool browses = (options & core::browseOptions) != 0;
    const bool wrong = severalOf(options, cursorOptions) || severalOf(options, syncpointOptions) ||
                       severalOf(options, propertyOptions) || isWrongBrowse(options) ||
                       (browses && (options & (MQGMO_SYNCPOINT | MQGMO_SYNCPOINT_IF_PERSISTENT)) != 0) ||
                       // The segments of a message would have to agree before they are looked at.
                       ((options & MQGMO_COMPLETE_MSG) != 0 && (options & MQGMO_SYNCPOINT_IF_PERSISTENT) != 0);
    if (wrong) return MQRC_OPTIONS_ERROR;
    if ((options & MQGMO_WAIT) != 0 && gmo.WaitInterval < MQWI_UNLIMITED) return MQRC_WAIT_INTERVAL_ERROR;
    if ((options & MQGMO_PROPERTIES_IN_HANDLE) != 0 && gmo.MsgHandle == MQHM_NONE) return MQRC_HMSG_ERROR;
    return MQRC_NONE;
}

MQLONG checkMatchOptions(const MQGMO &gmo, MQLONG mdVersion)
{
    const MQLONG match = gmo.MatchOptions;
    if (const MQLONG reason = checkOptions(OptionField::Match, match)) return reason;
    constexpr MQLONG ofVersion2 = MQMO_MATCH_GROUP_ID | MQMO_MATCH_MSG_SEQ_NUMBER | MQMO_MATCH_OFFSET;
    if ((match & ofVersion2) != 0 && mdVersion < MQMD_VERSION_2) return MQRC_WRONG_MD_VERSION;
    if ((match & MQMO_MATCH_MSG_TOKEN) != 0) {
        if (gmo.Version < MQGMO_VERSION_3) return MQRC_WRONG_GMO_VERSION;
        // A token names one message: there is nothing to wait for.
        if ((gmo.Options & MQGMO_WAIT) != 0) return MQRC_OPTIONS_ERROR;
    }
    return MQRC_NONE;
}

} // namespace

MQLONG checkGetOptions(const MQGMO &gmo, MQLONG mdVersion)
{
    const MQLONG reason = checkOptionsTogether(gmo);
    return reason != MQRC_NONE ? reason : checkMatchOptions(gmo, mdVersion);
}

MQLONG checkGetOrder(const MQGMO &gmo, const MQMD &md, MQLONG mdVersion)
{
    if ((gmo.Options & MQGMO_LOGICAL_ORDER) != 0) {
        if (gmo.Version < MQGMO_VERSION_2) return MQRC_WRONG_GMO_VERSION;
        if (mdVersion < MQMD_VERSION_2) return MQRC_WRONG_MD_VERSION;
    }
    if ((gmo.MatchOptions & MQMO_MATCH_OFFSET) != 0) {
        if ((gmo.Options & MQGMO_COMPLETE_MSG) != 0) return MQRC_MATCH_OPTIONS_ERROR;
        if (md.Offset < 0 || md.Offset > core::highestOffset) return MQRC_OFFSET_ERROR;
    }
    if ((gmo.MatchOptions & MQMO_MATCH_MSG_SEQ_NUMBER) != 0 &&
        (md.MsgSeqNumber < 1 || md.MsgSeqNumber > core::highestSequenceNumber))
        return MQRC_MSG_SEQ_NUMBER_ERROR;
    return MQRC_NONE;
}

} // namespace mqrig::qmgr::api
