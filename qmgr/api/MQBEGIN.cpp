#include "qmgr/api/api.h"
#include "qmgr/api/option_table.h"
#include "qmgr/api/structures.h"
#include "qmgr/core/connections.h"

using namespace mqrig::qmgr;

namespace {

// There are no resource managers beside the queue manager that could take part: as the MQI wants it, the unit of work
// begins, and the warning says so.
Outcome begin(MQHCONN Hconn, const void *beginOptions)
{
    const core::ConnectionUse use(Hconn);
    if (use.outcome().failed()) return use.outcome();
    if (beginOptions != nullptr) {
        if (const MQLONG reason = api::checkBo(beginOptions)) return failure(reason);
        const MQLONG options = static_cast<const MQBO *>(beginOptions)->Options;
        if (const MQLONG reason = api::checkOptions(api::OptionField::Begin, options)) return failure(reason);
    }
    if (use->begun || !use->unit.empty()) return failure(MQRC_UOW_IN_PROGRESS);
    use->begun = true;
    return warning(MQRC_NO_EXTERNAL_PARTICIPANTS);
}

} // namespace

MQI_EXPORT void MQENTRY MQBEGIN(MQHCONN Hconn, PMQVOID pBeginOptions, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    api::answer(pCompCode, pReason, [=] { return begin(Hconn, pBeginOptions); });
}
