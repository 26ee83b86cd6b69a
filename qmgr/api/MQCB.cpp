#include <cstdint>
#include <memory>

#include "qmgr/api/api.h"
#include "qmgr/api/option_table.h"
#include "qmgr/api/structures.h"
#include "qmgr/core/callbacks.h"
#include "qmgr/core/connections.h"
#include "qmgr/objects/object_name.h"

using namespace mqrig::qmgr;

namespace {

// Registering and deregistering exclude each other, as do suspending and resuming, and what is deregistered cannot be
// either of them.
bool isOperation(MQLONG operation)
{
    constexpr MQLONG state = MQOP_SUSPEND | MQOP_RESUME;
    constexpr MQLONG known = MQOP_REGISTER | MQOP_DEREGISTER | state;
    if (operation == 0 || (operation & ~known) != 0 || api::severalOf(operation, state)) return false;
    return (operation & MQOP_DEREGISTER) == 0 || operation == MQOP_DEREGISTER;
}

// The function is named or given, one of the two. A name stands for a module that would have to be loaded.
MQLONG checkRoutine(const MQCBD &cbd)
{
    const bool named = !objects::fieldText(cbd.CallbackName).empty();
    const bool given = cbd.CallbackFunction != nullptr;
    if (named == given) return MQRC_CALLBACK_ROUTINE_ERROR;
    return named ? MQRC_FUNCTION_NOT_SUPPORTED : MQRC_NONE;
}

MQLONG checkDescriptor(const MQCBD &cbd, MQLONG operation)
{
    if (cbd.CallbackType != MQCBT_EVENT_HANDLER && cbd.CallbackType != MQCBT_MESSAGE_CONSUMER)
        return MQRC_CALLBACK_TYPE_ERROR;
    if (const MQLONG reason = api::checkOptions(api::OptionField::Callback, cbd.Options)) return reason;
    if ((operation & MQOP_REGISTER) == 0) return MQRC_NONE;
    if (cbd.MaxMsgLength < MQCBD_FULL_MSG_LENGTH) return MQRC_MAX_MSG_LENGTH_ERROR;
    return checkRoutine(cbd);
}

Outcome changeHandler(core::Callbacks &callbacks, MQLONG operation, const MQCBD &cbd)
{
    if ((operation & MQOP_DEREGISTER) != 0) return callbacks.deregisterHandler();
    const bool suspends = (operation & MQOP_SUSPEND) != 0;
    if ((operation & MQOP_REGISTER) == 0) return callbacks.suspendHandler(suspends);
    return callbacks.registerHandler(
        {reinterpret_cast<MQCB_FUNCTION *>(cbd.CallbackFunction), cbd.CallbackArea, cbd.Options, suspends});
}

Outcome manageCallback(MQHCONN Hconn, MQLONG operation, const void *callbackDesc)
{
    std::shared_ptr<core::Callbacks> changed;
    Outcome outcome;
    {
        core::ConnectionUse use(Hconn);
        if (use.outcome().failed()) return use.outcome();
        if (!isOperation(operation)) return failure(MQRC_OPERATION_ERROR);
        if (const MQLONG reason = api::checkCbd(callbackDesc)) return failure(reason);
        const MQCBD &cbd = *static_cast<const MQCBD *>(callbackDesc);
        if (const MQLONG reason = checkDescriptor(cbd, operation)) return failure(reason);
        if (cbd.CallbackType == MQCBT_MESSAGE_CONSUMER) return failure(MQRC_FUNCTION_NOT_SUPPORTED);
        if ((cbd.Options & MQCBDO_FAIL_IF_QUIESCING) != 0 && use->store->state() == store::State::Quiescing)
            return failure(MQRC_Q_MGR_QUIESCING);
        changed = use.callbacks();
        outcome = changeHandler(*changed, operation, cbd);
    }
    // A program may take away what a callback works on once it is deregistered. Other calls on the connection go on
    // meanwhile: the callback may be making one.
    if (!outcome.failed()) changed->settle();
    return outcome;
}

} // namespace

MQI_EXPORT void MQENTRY MQCB(MQHCONN Hconn, MQLONG Operation, PMQVOID pCallbackDesc, MQHOBJ, PMQVOID, PMQVOID,
                             PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    api::answer(pCompCode, pReason, [=] { return manageCallback(Hconn, Operation, pCallbackDesc); });
}
