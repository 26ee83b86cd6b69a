#include "qmgr/api/put_call.h"

#include "qmgr/api/option_table.h"
#include "qmgr/api/structures.h"
#include "qmgr/core/md_extension.h"

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

bool hasHandle(const MQPMO &pmo)
{
    return pmo.OriginalMsgHandle != MQHM_NONE || pmo.NewMsgHandle != MQHM_NONE;
}

} // namespace

MQLONG loadPut(const void *msgDesc, const void *putMsgOpts, MQLONG bufferLength, const void *buffer,
               MQLONG queueManagerCcsid, PutCall &call)
{
    if (msgDesc != nullptr)
        if (const MQLONG reason = checkMd(msgDesc)) return reason;
    if (const MQLONG reason = checkPmo(putMsgOpts)) return reason;
    if (bufferLength < 0) return MQRC_BUFFER_LENGTH_ERROR;
    if (buffer == nullptr && bufferLength > 0) return MQRC_BUFFER_ERROR;

    call.pmo = loadPmo(putMsgOpts);
    if (const MQLONG reason = checkPutOptions(call.pmo.Options)) return reason;
    if (call.pmo.RecsPresent < 0) return MQRC_RECS_PRESENT_ERROR;

    call.message.body = {static_cast<const std::byte *>(buffer), static_cast<std::size_t>(bufferLength)};
    call.ownDescriptor = msgDesc != nullptr && (call.pmo.Options & MQPMO_MD_FOR_OUTPUT_ONLY) == 0;
    if (!call.ownDescriptor) [[unlikely]]
        return hasHandle(call.pmo) ? MQRC_NONE : MQRC_MD_ERROR;
    loadMd(msgDesc, call.message.header.md);
    return acceptDescriptor(queueManagerCcsid, call);
}

MQLONG acceptDescriptor(MQLONG queueManagerCcsid, PutCall &call)
{
    MQMD &md = call.message.header.md;
    if (const MQLONG reason = core::takeExtension(queueManagerCcsid, md, call.message.body)) return reason;
    if (const MQLONG reason = checkOptions(OptionField::Report, md.Report)) return reason;
    return checkOptions(OptionField::Flags, md.MsgFlags);
}

void returnDescriptor(const PutCall &call, void *msgDesc)
{
    if (call.ownDescriptor) [[likely]]
        storePutMd(call.message.header.md, msgDesc);
    else if (msgDesc != nullptr)
        storeMd(call.message.header.md, msgDesc);
}

} // namespace mqrig::qmgr::api
