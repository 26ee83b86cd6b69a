#include <cstring>
#include <string_view>

#include "qmgr/api/api.h"
#include "qmgr/api/connect_options.h"
#include "qmgr/api/structures.h"
#include "qmgr/core/connections.h"
#include "qmgr/objects/object_name.h"

using namespace mqrig::qmgr;

namespace {

void storeConnection(const core::Connection &connection, MQCNO &cno)
{
    if (cno.Version >= MQCNO_VERSION_3 && (cno.Options & MQCNO_GENERATE_CONN_TAG) != 0)
        std::memcpy(cno.ConnTag, connection.connectionTag.data(), sizeof cno.ConnTag);
    if (cno.Version >= MQCNO_VERSION_5)
        std::memcpy(cno.ConnectionId, connection.connectionId.data(), sizeof cno.ConnectionId);
}

Outcome connectWithOptions(PMQCHAR pQMgrName, PMQCNO pConnectOpts, PMQHCONN pHconn)
{
    if (pHconn == nullptr) return failure(MQRC_HCONN_ERROR);
    *pHconn = MQHC_UNUSABLE_HCONN;
    if (const MQLONG reason = api::checkCno(pConnectOpts)) return failure(reason);
    const MQCNO cno = api::loadCno(pConnectOpts);
    if (const Outcome checked = api::checkConnectOptions(pConnectOpts, cno); checked.failed()) return checked;

    core::ConnectRequest request;
    request.options = cno.Options;
    request.applName = objects::fieldText(cno.ApplName);
    const Outcome connected = api::connectTo(pQMgrName, request, pHconn);
    if (connected.failed()) return connected;
    if (const core::ConnectionUse use(*pHconn); use.found()) storeConnection(*use, *pConnectOpts);
    return connected;
}

} // namespace

MQI_EXPORT void MQENTRY MQCONNX(PMQCHAR pQMgrName, PMQCNO pConnectOpts, PMQHCONN pHconn, PMQLONG pCompCode,
                                PMQLONG pReason) noexcept
{
    api::answer(pCompCode, pReason, [=] { return connectWithOptions(pQMgrName, pConnectOpts, pHconn); });
}
