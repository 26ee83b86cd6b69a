#include "qmgr/api/put_call.h"

#include <cstring>

#include "qmgr/api/option_table.h"
#include "qmgr/api/structures.h"
#include "qmgr/objects/object_name.h"

namespace mqrig::qmgr::api {
namespace {

constexpr MQLONG contextOptions = MQPMO_DEFAULT_CONTEXT | MQPMO_NO_CONTEXT | MQPMO_PASS_IDENTITY_CONTEXT |
                                  MQPMO_PASS_ALL_CONTEXT | MQPMO_SET_IDENTITY_CONTEXT | MQPMO_SET_ALL_CONTEXT;

MQLONG checkPutOptions(MQLONG options)
{
    if (const MQLONG reason = checkOptions(OptionField::Put, options)) return reason;
    const bool wrong = severalOf(options, MQPMO_SYNCPOINT | MQPMO_NO_SYNCPOINT) || severalOf(options, contextOptions) ||
                       severalOf(options, MQPMO_ASYNC_RESPONSE | MQPMO_SYNC_RESPONSE);
    return wrong ? MQRC_OPTIONS_ERROR : MQRC_NONE;
}

// The parts of an MQPMO for distribution lists and message handles, of which there are none.
MQLONG checkRecordsAndHandles(const MQPMO &pmo)
{
    if (pmo.RecsPresent != 0) return MQRC_RECS_PRESENT_ERROR;
    if (pmo.OriginalMsgHandle != MQHM_NONE || pmo.NewMsgHandle != MQHM_NONE) return MQRC_HMSG_ERROR;
    switch (pmo.Action) {
    case MQACTP_NEW:
        return MQRC_NONE;
    case MQACTP_FORWARD:
    case MQACTP_REPLY:
    case MQACTP_REPORT:
        return MQRC_FUNCTION_NOT_SUPPORTED;
    default:
        return MQRC_ACTION_ERROR;
    }
}

bool isFormat(const MQCHAR8 &format, const char *name)
{
    return objects::fieldText(format) == objects::fieldText(name, MQ_FORMAT_LENGTH);
}

MQLONG checkDescriptorBits(const MQMD &md, MQLONG givenVersion)
{
    if (const MQLONG reason = checkOptions(OptionField::Report, md.Report)) return reason;
    if (const MQLONG reason = checkOptions(OptionField::Flags, md.MsgFlags)) return reason;
    // In front of a version 1 descriptor's data the extension carries group and segment fields.
    if (givenVersion == MQMD_VERSION_1 && isFormat(md.Format, MQFMT_MD_EXTENSION)) return MQRC_FUNCTION_NOT_SUPPORTED;
    return MQRC_NONE;
}

} // namespace

MQLONG loadPut(const void *msgDesc, const void *putMsgOpts, MQLONG bufferLength, const void *buffer, PutCall &call)
{
    if (const MQLONG reason = checkMd(msgDesc)) return reason;
    if (const MQLONG reason = checkPmo(putMsgOpts)) return reason;
    if (bufferLength < 0) return MQRC_BUFFER_LENGTH_ERROR;
    if (buffer == nullptr && bufferLength > 0) return MQRC_BUFFER_ERROR;

    call.pmo = loadPmo(putMsgOpts);
    if (const MQLONG reason = checkPutOptions(call.pmo.Options)) return reason;
    if (const MQLONG reason = checkRecordsAndHandles(call.pmo)) return reason;

    loadMd(msgDesc, call.message.header.md);
    call.message.body = {static_cast<const std::byte *>(buffer), static_cast<std::size_t>(bufferLength)};
    return checkDescriptorBits(call.message.header.md, static_cast<const MQMD *>(msgDesc)->Version);
}

} // namespace mqrig::qmgr::api
