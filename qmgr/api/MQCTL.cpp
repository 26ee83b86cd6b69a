#include <memory>

#include "qmgr/api/api.h"
#include "qmgr/api/option_table.h"
#include "qmgr/api/structures.h"
#include "qmgr/core/callbacks.h"
#include "qmgr/core/connections.h"

using namespace mqrig::qmgr;

namespace {

bool isOperation(MQLONG operation)
{
    switch (operation) {
    case MQOP_START:
    case MQOP_START_WAIT:
    case MQOP_STOP:
    case MQOP_SUSPEND:
    case MQOP_RESUME:
        return true;
    default:
        return false;
    }
}

Outcome controlCallbacks(MQHCONN Hconn, MQLONG operation, const void *controlOpts)
{
    std::shared_ptr<core::Callbacks> callbacks;
    MQCTLO ctlo = {MQCTLO_DEFAULT};
    {
        core::ConnectionUse use(Hconn, core::ConnectionUse::When::Control);
        if (use.outcome().failed()) return use.outcome();
        if (!isOperation(operation)) return failure(MQRC_OPERATION_ERROR);
        if (controlOpts != nullptr) {
            if (const MQLONG reason = api::checkCtlo(controlOpts)) return failure(reason);
            ctlo = *static_cast<const MQCTLO *>(controlOpts);
        }
        if (const MQLONG reason = api::checkOptions(api::OptionField::Control, ctlo.Options)) return failure(reason);
        if ((ctlo.Options & MQCTLO_FAIL_IF_QUIESCING) != 0 && use->store->state() == store::State::Quiescing)
            return failure(MQRC_Q_MGR_QUIESCING);
        callbacks = use.callbacks();
    }
    // Without the connection: a callback that runs may be using it.
    return callbacks->control(operation, ctlo.ConnectionArea);
}

} // namespace

MQI_EXPORT void MQENTRY MQCTL(MQHCONN Hconn, MQLONG Operation, PMQVOID pControlOpts, PMQLONG pCompCode,
                              PMQLONG pReason) noexcept
{
    api::answer(pCompCode, pReason, [=] { return controlCallbacks(Hconn, Operation, pControlOpts); });
}
