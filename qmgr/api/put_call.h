// What MQPUT and MQPUT1 have in common at the border.
#pragma once

#include "cmqc.h"
#include "qmgr/store/message.h"

namespace mqrig::qmgr::api {

// A put as the program gave it, checked and loaded.
struct PutCall {
    MQPMO pmo;
    store::NewMessage message; // descriptor in version 2, body in the program's buffer
};

// MQRC_NONE, or the reason: MQRC_MD_ERROR, MQRC_PMO_ERROR, MQRC_OPTIONS_ERROR, MQRC_BUFFER_LENGTH_ERROR,
// MQRC_BUFFER_ERROR, MQRC_REPORT_OPTIONS_ERROR, MQRC_MSG_FLAGS_ERROR, MQRC_RECS_PRESENT_ERROR, MQRC_HMSG_ERROR,
// MQRC_ACTION_ERROR, MQRC_MDE_ERROR, MQRC_FUNCTION_NOT_SUPPORTED. A descriptor extension in front of the body is in the
// descriptor afterwards.
MQLONG loadPut(const void *msgDesc, const void *putMsgOpts, MQLONG bufferLength, const void *buffer,
               MQLONG queueManagerCcsid, PutCall &call);

} // namespace mqrig::qmgr::api
