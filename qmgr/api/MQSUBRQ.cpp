#include "qmgr/api/api.h"
#include "qmgr/api/option_table.h"
#include "qmgr/api/structures.h"
#include "qmgr/core/subscribe.h"

using namespace mqrig::qmgr;

namespace {

Outcome request(MQHCONN Hconn, MQHOBJ Hsub, MQLONG action, PMQVOID pSubRqOpts)
{
    const core::ConnectionUse use(Hconn);
    if (use.outcome().failed()) return use.outcome();
    if (const MQLONG reason = api::checkSro(pSubRqOpts)) return failure(reason);
    MQSRO &sro = *static_cast<MQSRO *>(pSubRqOpts);
    if (const MQLONG reason = api::checkOptions(api::OptionField::SubscriptionRequest, sro.Options))
        return failure(reason);
    const core::OpenObject *object = use->handles.find(Hsub);
    if (object == nullptr || object->subscription == nullptr) return failure(MQRC_HOBJ_ERROR);
    if (action != MQSR_ACTION_PUBLICATION) return failure(MQRC_ACTION_ERROR);
    if ((sro.Options & MQSRO_FAIL_IF_QUIESCING) != 0 && use->store->state() == store::State::Quiescing)
        return failure(MQRC_Q_MGR_QUIESCING);
    sro.NumPubs = 0;
    return core::requestPublications(*use, *object->subscription, sro.NumPubs);
}

} // namespace

MQI_EXPORT void MQENTRY MQSUBRQ(MQHCONN Hconn, MQHOBJ Hsub, MQLONG Action, PMQVOID pSubRqOpts, PMQLONG pCompCode,
                                PMQLONG pReason) noexcept
{
    api::answerFollowing(Hconn, pCompCode, pReason, [=] { return request(Hconn, Hsub, Action, pSubRqOpts); });
}
