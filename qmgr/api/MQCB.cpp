#include <cstring>
#include <memory>

#include "qmgr/api/api.h"
#include "qmgr/api/consumers.h"
#include "qmgr/api/follow_options.h"
#include "qmgr/api/get_options.h"
#include "qmgr/api/option_table.h"
#include "qmgr/api/structures.h"
#include "qmgr/core/callbacks.h"
#include "qmgr/core/connections.h"
#include "qmgr/core/get.h"
#include "qmgr/core/message_handles.h"
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

// What a consumer consumes.
struct Source {
    MQHOBJ hobj;
    const void *msgDesc;
    const void *getMsgOpts;
};

// Options of MQGET that need a program that decides between one get and the next.
constexpr MQLONG notForConsumers =
    MQGMO_LOCK | MQGMO_UNLOCK | MQGMO_SET_SIGNAL | MQGMO_MSG_UNDER_CURSOR | MQGMO_BROWSE_MSG_UNDER_CURSOR;

// What no get of the consumer could do is refused here, where the program hears of it.
MQLONG checkGets(const core::Connection &connection, const core::OpenObject &object,
                 const api::ConsumerRequest &request)
{
    const MQLONG options = request.gmo.Options;
    if ((options & notForConsumers) != 0) return MQRC_OPTIONS_ERROR;
    // Marks make a consumer begin at the start each time or go on each time.
    const bool startsAndGoesOn = (options & api::startThenGoOn) == api::startThenGoOn;
    if (startsAndGoesOn && (options & api::setsMark) != 0) return MQRC_OPTIONS_ERROR;
    MQGMO first = api::nextGet(request, false);
    first.Options |= options & MQGMO_WAIT;
    if (const MQLONG reason = api::checkGetOptions(first, request.md.Version)) return reason;
    if (const MQLONG reason = api::checkToFollow(connection, first)) return reason;
    if (const MQLONG reason = api::checkGetOrder(first, request.md, request.md.Version)) return reason;
    if ((options & core::browseOptions) != 0) {
        if (!object.allows(MQOO_BROWSE)) return MQRC_NOT_OPEN_FOR_BROWSE;
    } else if (!object.allows(MQOO_INPUT_SHARED | MQOO_INPUT_EXCLUSIVE)) {
        return MQRC_NOT_OPEN_FOR_INPUT;
    }
    return MQRC_NONE;
}

// Without a descriptor that of the message handle says what is wanted, as it is now, and takes its place.
Outcome loadFromHandle(core::Connection &connection, api::ConsumerRequest &request)
{
    const MQLONG elsewhere = api::propertyOptions & ~MQGMO_PROPERTIES_IN_HANDLE;
    if (request.gmo.MsgHandle == MQHM_NONE || (request.gmo.Options & elsewhere) != 0) return failure(MQRC_MD_ERROR);
    const core::MessageHandleUse handle(connection.hconn, &connection, request.gmo.MsgHandle);
    if (handle.outcome().failed()) return handle.outcome();
    request.md = handle->md;
    request.describes = false;
    return success();
}

Outcome loadSource(core::Connection &connection, const core::OpenObject &object, const Source &source,
                   api::ConsumerRequest &request)
{
    request.hobj = source.hobj;
    if (source.msgDesc != nullptr) {
        if (const MQLONG reason = api::checkMd(source.msgDesc)) return failure(reason);
        const bool version1 = static_cast<const MQMD *>(source.msgDesc)->Version == MQMD_VERSION_1;
        std::memcpy(static_cast<void *>(&request.md), source.msgDesc, version1 ? MQMD_LENGTH_1 : MQMD_LENGTH_2);
    }
    if (source.getMsgOpts != nullptr) {
        if (const MQLONG reason = api::checkGmo(source.getMsgOpts)) return failure(reason);
        request.gmo = api::loadGmo(source.getMsgOpts);
    }
    if (source.msgDesc == nullptr)
        if (const Outcome loaded = loadFromHandle(connection, request); loaded.failed()) return loaded;
    if (const MQLONG reason = checkGets(connection, object, request)) return failure(reason);
    // A consumer is shown all fields that there are, whatever it was registered with.
    request.gmo.Version = MQGMO_CURRENT_VERSION;
    return success();
}

Outcome changeConsumer(core::ConnectionUse &use, MQLONG operation, const MQCBD &cbd, const Source &source)
{
    const core::OpenObject *object = use->handles.find(source.hobj);
    if (object == nullptr) return failure(MQRC_HOBJ_ERROR);
    api::Consumers &consumers = api::consumersOf(use);
    if ((operation & MQOP_DEREGISTER) != 0) return consumers.remove(source.hobj);
    const bool suspends = (operation & MQOP_SUSPEND) != 0;
    if ((operation & MQOP_REGISTER) == 0) return consumers.suspend(source.hobj, suspends);
    api::ConsumerRequest request;
    request.maxMsgLength = cbd.MaxMsgLength;
    if (const Outcome loaded = loadSource(*use, *object, source, request); loaded.failed()) {
        // Nor does the one stay that it should have replaced.
        static_cast<void>(consumers.remove(source.hobj));
        return loaded;
    }
    request.callback = {reinterpret_cast<MQCB_FUNCTION *>(cbd.CallbackFunction), cbd.CallbackArea, cbd.Options,
                        suspends};
    return consumers.add(request);
}

Outcome manageCallback(MQHCONN Hconn, MQLONG operation, const void *callbackDesc, MQHOBJ Hobj, const void *msgDesc,
                       const void *getMsgOpts)
{
    std::shared_ptr<core::Callbacks> changed;
    Outcome outcome;
    {
        core::ConnectionUse use(Hconn);
        if (use.outcome().failed()) return use.outcome();
        if (!isOperation(operation)) return failure(MQRC_OPERATION_ERROR);
        MQCBD cbd = {MQCBD_DEFAULT};
        // Without one, the consumer of the object is meant; there is nothing in it that a registration could do
        // without.
        if (callbackDesc != nullptr) {
            if (const MQLONG reason = api::checkCbd(callbackDesc)) return failure(reason);
            cbd = *static_cast<const MQCBD *>(callbackDesc);
        } else if ((operation & MQOP_REGISTER) != 0) {
            return failure(MQRC_CBD_ERROR);
        }
        if (const MQLONG reason = checkDescriptor(cbd, operation)) return failure(reason);
        if ((cbd.Options & MQCBDO_FAIL_IF_QUIESCING) != 0 && use->store->state() == store::State::Quiescing)
            return failure(MQRC_Q_MGR_QUIESCING);
        changed = use.callbacks();
        outcome = cbd.CallbackType == MQCBT_EVENT_HANDLER
                      ? changeHandler(*changed, operation, cbd)
                      : changeConsumer(use, operation, cbd, {Hobj, msgDesc, getMsgOpts});
    }
    // A program may take away what a callback works on once it is deregistered. Other calls on the connection go on
    // meanwhile: the callback may be making one.
    if (!outcome.failed() || (operation & MQOP_REGISTER) != 0) changed->settle();
    return outcome;
}

} // namespace

MQI_EXPORT void MQENTRY MQCB(MQHCONN Hconn, MQLONG Operation, PMQVOID pCallbackDesc, MQHOBJ Hobj, PMQVOID pMsgDesc,
                             PMQVOID pGetMsgOpts, PMQLONG pCompCode, PMQLONG pReason) noexcept
{
    api::answer(pCompCode, pReason,
                [=] { return manageCallback(Hconn, Operation, pCallbackDesc, Hobj, pMsgDesc, pGetMsgOpts); });
}
