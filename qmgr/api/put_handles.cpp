#include "qmgr/api/put_handles.h"

#include <span>

namespace mqrig::qmgr::api {
namespace {

bool isAction(MQLONG action)
{
    return action == MQACTP_NEW || action == MQACTP_FORWARD || action == MQACTP_REPLY || action == MQACTP_REPORT;
}

} // namespace

Outcome PutHandles::apply(MQHCONN hconn, core::Connection &connection, core::Reach reach, PutCall &call)
{
    const MQPMO &pmo = call.pmo;
    if (!isAction(pmo.Action)) return failure(MQRC_ACTION_ERROR);
    handles_.action = pmo.Action;
    if (pmo.OriginalMsgHandle != MQHM_NONE) {
        original_ = core::MessageHandleUse(hconn, &connection, pmo.OriginalMsgHandle);
        if (original_.outcome().failed()) return original_.outcome();
        handles_.original = &*original_;
    } else if (pmo.Action != MQACTP_NEW) {
        return failure(MQRC_HMSG_ERROR);
    }
    if (pmo.NewMsgHandle != MQHM_NONE && pmo.NewMsgHandle == pmo.OriginalMsgHandle) {
        handles_.created = handles_.original;
    } else if (pmo.NewMsgHandle != MQHM_NONE) {
        created_ = core::MessageHandleUse(hconn, &connection, pmo.NewMsgHandle);
        if (created_.outcome().failed()) return created_.outcome();
        handles_.created = &*created_;
    }

    if ((pmo.Options & MQPMO_PASS_ALL_CONTEXT) != 0)
        if (const core::OpenObject *source = connection.handles.find(pmo.Context);
            source != nullptr && source->savedContext)
            handles_.userContext = source->savedContext->properties;

    if (!call.ownDescriptor) {
        call.message.header.md = core::descriptorFromHandles(handles_);
        if (const MQLONG reason = acceptDescriptor(connection.queueManager().codedCharSetId, call))
            return failure(reason);
    }
    const Outcome attached = core::attachProperties(connection, handles_, reach, call.message, stored_);
    properties_ = call.message.header.coreLength;
    return attached;
}

void PutHandles::rememberPut(const PutCall &call)
{
    core::rememberPut(handles_, call.message.header.md, std::span(stored_).first(properties_));
}

} // namespace mqrig::qmgr::api
