#include <memory>
#include <string>
#include <utility>

#include "qmgr/api/api.h"
#include "qmgr/api/distribution_records.h"
#include "qmgr/api/object_descriptor.h"
#include "qmgr/api/option_table.h"
#include "qmgr/api/selection_string.h"
#include "qmgr/api/structures.h"
#include "qmgr/core/connections.h"
#include "qmgr/core/events.h"
#include "qmgr/core/open.h"

using namespace mqrig::qmgr;

namespace {

constexpr MQLONG inputOptions = MQOO_INPUT_AS_Q_DEF | MQOO_INPUT_SHARED | MQOO_INPUT_EXCLUSIVE;
constexpr MQLONG messageOptions = inputOptions | MQOO_BROWSE | MQOO_OUTPUT;
constexpr MQLONG purposes = messageOptions | MQOO_INQUIRE | MQOO_SET;
constexpr MQLONG outputContexts =
    MQOO_PASS_IDENTITY_CONTEXT | MQOO_PASS_ALL_CONTEXT | MQOO_SET_IDENTITY_CONTEXT | MQOO_SET_ALL_CONTEXT;

// Those that a distribution list has a use for.
constexpr MQLONG listOptions = MQOO_OUTPUT | outputContexts | MQOO_ALTERNATE_USER_AUTHORITY | MQOO_FAIL_IF_QUIESCING |
                               MQOO_BIND_ON_OPEN | MQOO_BIND_NOT_FIXED | MQOO_BIND_ON_GROUP | MQOO_NO_MULTICAST;

MQLONG checkOpenOptions(MQLONG options)
{
    if (const MQLONG reason = api::checkOptions(api::OptionField::Open, options)) return reason;
    const bool wrong = (options & purposes) == 0 || api::severalOf(options, inputOptions) ||
                       api::severalOf(options, MQOO_BIND_ON_OPEN | MQOO_BIND_NOT_FIXED | MQOO_BIND_ON_GROUP) ||
                       api::severalOf(options, MQOO_READ_AHEAD | MQOO_NO_READ_AHEAD) ||
                       ((options & MQOO_CO_OP) != 0 && (options & MQOO_BROWSE) == 0) ||
                       ((options & MQOO_SAVE_ALL_CONTEXT) != 0 && (options & inputOptions) == 0) ||
                       ((options & outputContexts) != 0 && (options & MQOO_OUTPUT) == 0);
    return wrong ? MQRC_OPTIONS_ERROR : MQRC_NONE;
}

// The queue's names are told to those who handle its messages, or who ask for them.
void tell(core::Connection &connection, const core::OpenObject &object, MQLONG options, void *od)
{
    if (object.topic != nullptr) return api::storeTopic(connection, *object.topic, od);
    const bool namesQueue =
        object.type == MQOT_Q && ((options & (messageOptions | MQOO_RESOLVE_LOCAL_Q)) != 0 || object.made);
    if (!namesQueue) {
        api::storeOd({}, {}, object.type == MQOT_Q ? MQOT_Q : MQOT_NONE, od);
        return;
    }
    const objects::QueueDefinition &queue = *object.hold.queue;
    if (object.made) api::storeMadeQueue({queue.name.data(), connection.queueManagerName.data()}, od);
    const api::Told told = (options & MQOO_RESOLVE_LOCAL_Q) != 0 ? api::Told::LocalQueue : api::Told::Destination;
    api::storeOd(api::resolvedNames(connection, queue, told), api::countsOf(queue), MQOT_Q, od);
}

Outcome openList(core::Connection &connection, const MQOD &od, MQLONG options, void *pObjDesc, MQHOBJ &hobj)
{
    core::DistributionList list;
    api::ResponseRecords responses;
    if (const MQLONG reason = api::loadList(od, pObjDesc, list)) return failure(reason);
    if (const MQLONG reason = responses.load(od, pObjDesc)) return failure(reason);
    if ((options & ~listOptions) != 0) return failure(MQRC_OPTION_NOT_VALID_FOR_TYPE);

    const Outcome opened = core::openList(connection, list, options, hobj);
    if (opened.failed() && list.destinations.front().outcome.ok()) return opened; // none was tried
    const core::DistributionList &tried = opened.failed() ? list : *connection.handles.find(hobj)->list;
    responses.store(tried, opened);
    api::storeOd({}, api::countsOf(tried), MQOT_Q, pObjDesc);
    return opened;
}

Outcome open(MQHCONN Hconn, PMQVOID pObjDesc, MQLONG options, PMQHOBJ pHobj)
{
    const core::ConnectionUse use(Hconn);
    if (use.outcome().failed()) return use.outcome();
    if (pHobj == nullptr) return failure(MQRC_HOBJ_ERROR);
    *pHobj = MQHO_UNUSABLE_HOBJ;
    if (const MQLONG reason = api::checkOd(pObjDesc)) return failure(reason);
    if (const MQLONG reason = checkOpenOptions(options)) return failure(reason);
    const MQOD od = api::loadOd(pObjDesc);
    const api::Selects selects = (options & (inputOptions | MQOO_BROWSE)) != 0 ? api::Selects::Yes : api::Selects::No;
    if (const MQLONG reason = api::checkObject(od, selects)) return failure(reason);

    std::shared_ptr<const core::MessageSelector> selector;
    if (const MQLONG reason = api::loadSelector(*use, od.SelectionString, pObjDesc, selector)) return failure(reason);

    if (od.RecsPresent > 0) return openList(*use, od, options, pObjDesc, *pHobj);
    core::ObjectName name = api::objectName(od);
    std::string objectString;
    if (name.type == MQOT_TOPIC) {
        if (const MQLONG reason = api::loadObjectString(*use, od, pObjDesc, objectString)) return failure(reason);
        name.objectString = objectString;
    }
    const Outcome opened = core::openObject(*use, name, options, *pHobj);
    if (opened.failed()) {
        if (name.type != MQOT_TOPIC) core::callEvent(*use, opened, name);
        return opened;
    }
    core::OpenObject &object = *use->handles.find(*pHobj);
    object.selector = std::move(selector);
    tell(*use, object, options, pObjDesc);
    return opened;
}

} // namespace

MQI_EXPORT void MQENTRY MQOPEN(MQHCONN Hconn, PMQVOID pObjDesc, MQLONG Options, PMQHOBJ pHobj, PMQLONG pCompCode,
                               PMQLONG pReason) noexcept
{
    api::answerFollowing(Hconn, pCompCode, pReason, [=] { return open(Hconn, pObjDesc, Options, pHobj); });
}
