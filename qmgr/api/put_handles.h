// The message handles of MQPMO during a put, and the properties of the context that it passes on.
#pragma once

#include <cstddef>
#include <vector>

#include "cmqc.h"
#include "qmgr/api/put_call.h"
#include "qmgr/core/connection.h"
#include "qmgr/core/message_handles.h"
#include "qmgr/core/put_properties.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::api {

class PutHandles {
public:
    // Takes the handles in use and gives the message their properties, and their descriptor where the put has none of
    // its own. Without handles, or with handles that say nothing, the message stays as it is. MQRC_HMSG_ERROR,
    // MQRC_MSG_HANDLE_IN_USE, MQRC_PROPERTIES_TOO_BIG, MQRC_UNSUPPORTED_PROPERTY, and those of acceptDescriptor.
    Outcome apply(MQHCONN hconn, core::Connection &connection, core::Reach reach, PutCall &call);
    // After a successful put.
    void rememberPut(const PutCall &call);

private:
    core::MessageHandleUse original_;
    core::MessageHandleUse created_;
    core::PutHandles handles_;
    std::vector<std::byte> stored_; // properties and body of the message
    std::size_t properties_ = 0;    // bytes of them
};

// Whether a put has anything to do with handles, or passes on properties of a context: one branch for those that do
// not.
inline bool usesHandles(const PutCall &call)
{
    return (call.pmo.OriginalMsgHandle | call.pmo.NewMsgHandle | call.pmo.Action |
            (call.pmo.Options & MQPMO_PASS_ALL_CONTEXT)) != 0;
}

} // namespace mqrig::qmgr::api
