// MQPUT and MQPUT1 to a topic at the border.
#pragma once

#include "cmqc.h"
#include "qmgr/api/put_call.h"
#include "qmgr/core/connection.h"
#include "qmgr/core/open.h"
#include "qmgr/core/open_topic.h"
#include "qmgr/core/publish.h"
#include "qmgr/core/put.h"
#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::api {

// Whether a put asks for what only topics know.
inline bool asksForTopic(const MQPMO &pmo)
{
    return (pmo.Options & core::publishOptions) != 0;
}

// Publishes and tells the program what became of its descriptor and options. MQRC_PMO_ERROR: no such PubLevel.
struct PublishTarget {
    core::OpenTopic &topic;
    const core::ObjectName &name; // as the program named it
    bool open = true;             // by MQOPEN: its own response type counts
};
Outcome publish(MQHCONN hconn, core::Connection &connection, const PublishTarget &target,
                const core::PutRequest &request, PutCall &call, void *msgDesc, void *putMsgOpts);

} // namespace mqrig::qmgr::api
