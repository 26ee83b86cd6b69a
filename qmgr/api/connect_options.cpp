#include "qmgr/api/connect_options.h"

#include <cmqxc.h>

#include <cstring>
#include <string_view>

#include "qmgr/api/api.h"
#include "qmgr/api/option_table.h"
#include "qmgr/objects/object_name.h"

namespace mqrig::qmgr::api {
namespace {

constexpr MQLONG exclusiveSets[] = {
    MQCNO_FASTPATH_BINDING | MQCNO_SHARED_BINDING | MQCNO_ISOLATED_BINDING,
    MQCNO_LOCAL_BINDING | MQCNO_CLIENT_BINDING,
    MQCNO_HANDLE_SHARE_NONE | MQCNO_HANDLE_SHARE_BLOCK | MQCNO_HANDLE_SHARE_NO_BLOCK,
    MQCNO_ACCOUNTING_MQI_ENABLED | MQCNO_ACCOUNTING_MQI_DISABLED,
    MQCNO_ACCOUNTING_Q_ENABLED | MQCNO_ACCOUNTING_Q_DISABLED,
    MQCNO_NO_CONV_SHARING | MQCNO_ALL_CONVS_SHARE,
    MQCNO_RECONNECT | MQCNO_RECONNECT_DISABLED | MQCNO_RECONNECT_Q_MGR,
    MQCNO_ACTIVITY_TRACE_ENABLED | MQCNO_ACTIVITY_TRACE_DISABLED,
};

// A structure that an MQCNO names by pointer or by its offset from the MQCNO; `both` is an error.
struct Named {
    const void *structure = nullptr;
    bool both = false;
};

Named named(const void *cno, const void *pointer, MQLONG offset)
{
    if (pointer != nullptr && offset != 0) return {nullptr, true};
    if (offset != 0) return {static_cast<const char *>(cno) + offset, false};
    return {pointer, false};
}

// A channel definition begins with its name; it has no StrucId.
Outcome checkChannel(const void *channel)
{
    MQLONG version = 0;
    const auto *bytes = static_cast<const char *>(channel);
    std::memcpy(&version, bytes + offsetof(MQCD, Version), sizeof version);
    if (version < MQCD_VERSION_1 || version > MQCD_CURRENT_VERSION) return failure(MQRC_CD_ERROR);
    const std::string_view host =
        version == MQCD_VERSION_1
            ? objects::fieldText(bytes + offsetof(MQCD, ShortConnectionName), MQ_SHORT_CONN_NAME_LENGTH)
            : objects::fieldText(bytes + offsetof(MQCD, ConnectionName), MQ_CONN_NAME_LENGTH);
    return host.empty() ? success() : failure(MQRC_HOST_NOT_AVAILABLE);
}

Outcome checkCredentials(const void *credentials)
{
    MQCSP csp;
    std::memcpy(static_cast<void *>(&csp), credentials, offsetof(MQCSP, AuthenticationType) + sizeof(MQLONG));
    if (std::memcmp(csp.StrucId, MQCSP_STRUC_ID, sizeof csp.StrucId) != 0) return failure(MQRC_CSP_ERROR);
    if (csp.Version < MQCSP_VERSION_1 || csp.Version > MQCSP_CURRENT_VERSION) return failure(MQRC_CSP_ERROR);
    switch (csp.AuthenticationType) {
    case MQCSP_AUTH_NONE:
    case MQCSP_AUTH_USER_ID_AND_PWD:
        return success();
    default:
        return failure(MQRC_CSP_ERROR);
    }
}

} // namespace

Outcome checkConnectOptions(const void *cno, const MQCNO &loaded)
{
    for (const MQLONG set : exclusiveSets)
        if (severalOf(loaded.Options, set)) return failure(MQRC_OPTIONS_ERROR);
    if (const MQLONG reason = checkOptions(OptionField::Connect, loaded.Options)) return failure(reason);

    const Named channel = named(cno, loaded.ClientConnPtr, loaded.ClientConnOffset);
    const Named credentials = named(cno, loaded.SecurityParmsPtr, loaded.SecurityParmsOffset);
    if (channel.both || credentials.both) return failure(MQRC_CNO_ERROR);
    if (channel.structure != nullptr)
        if (const Outcome checked = checkChannel(channel.structure); checked.failed()) return checked;
    if (credentials.structure != nullptr) return checkCredentials(credentials.structure);
    return success();
}

Outcome connectTo(PMQCHAR pQMgrName, core::ConnectRequest request, PMQHCONN pHconn)
{
    if (pHconn == nullptr) return failure(MQRC_HCONN_ERROR);
    *pHconn = MQHC_UNUSABLE_HCONN;
    if (pQMgrName == nullptr) return failure(MQRC_Q_MGR_NAME_ERROR);
    request.queueManager = objects::fieldText(pQMgrName, MQ_Q_MGR_NAME_LENGTH);
    return core::connect(request, *pHconn);
}

} // namespace mqrig::qmgr::api
