// What MQPUT and MQPUT1 have in common at the border.
#pragma once

#include "cmqc.h"
#include "qmgr/store/message.h"

namespace mqrig::qmgr::api {

// A put as the program gave it, checked and loaded.
struct PutCall {
    MQPMO pmo;
    store::NewMessage message; // descriptor in version 2, body in the program's buffer
    bool ownDescriptor;        // false: its message handles make the descriptor (put_handles.h)
};

// MQRC_NONE, or the reason: MQRC_MD_ERROR, MQRC_PMO_ERROR, MQRC_OPTIONS_ERROR, MQRC_BUFFER_LENGTH_ERROR,
// MQRC_BUFFER_ERROR, MQRC_REPORT_OPTIONS_ERROR, MQRC_MSG_FLAGS_ERROR, MQRC_RECS_PRESENT_ERROR, MQRC_HMSG_ERROR,
// MQRC_ACTION_ERROR, MQRC_MDE_ERROR, MQRC_FUNCTION_NOT_SUPPORTED. A put with a message handle may come without a
// descriptor (null), or with one that only receives: MQPMO_MD_FOR_OUTPUT_ONLY.
MQLONG loadPut(const void *msgDesc, const void *putMsgOpts, MQLONG bufferLength, const void *buffer,
               MQLONG queueManagerCcsid, PutCall &call);

// The part of it that judges the descriptor in `call`, wherever that comes from. A descriptor extension in front of the
// body is in the descriptor afterwards.
MQLONG acceptDescriptor(MQLONG queueManagerCcsid, PutCall &call);

// Of a successful put, to the program's descriptor if it has given one.
void returnDescriptor(const PutCall &call, void *msgDesc);

} // namespace mqrig::qmgr::api
