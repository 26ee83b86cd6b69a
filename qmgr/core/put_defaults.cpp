// The fields of a message descriptor on their way into a message.
#include <algorithm>
#include <cstring>

#include "qmgr/core/put.h"
#include "qmgr/core/put_steps.h"
#include "qmgr/core/reports.h"
#include "qmgr/core/transmission.h"
#include "qmgr/objects/object_name.h"

namespace mqrig::qmgr::core {
namespace {

bool isMessageType(MQLONG type)
{
    switch (type) {
    case MQMT_REQUEST:
    case MQMT_REPLY:
    case MQMT_DATAGRAM:
    case MQMT_REPORT:
    case MQMT_MQE_FIELDS_FROM_MQE:
    case MQMT_MQE_FIELDS:
        return true;
    default:
        return type >= MQMT_APPL_FIRST && type <= MQMT_APPL_LAST;
    }
}

bool isFeedback(MQLONG feedback)
{
    return feedback >= MQFB_NONE && feedback <= MQFB_APPL_LAST;
}

bool isBlank(const MQCHAR48 &name)
{
    return name[0] == ' ' || name[0] == '\0';
}

// A reply or a report that somebody has to send somewhere.
bool asksForAnswer(const MQMD &md)
{
    constexpr MQLONG reports = MQRO_EXCEPTION_WITH_FULL_DATA | MQRO_EXPIRATION_WITH_FULL_DATA |
                               MQRO_COA_WITH_FULL_DATA | MQRO_COD_WITH_FULL_DATA | MQRO_PAN | MQRO_NAN | MQRO_ACTIVITY;
    return md.MsgType == MQMT_REQUEST || (md.Report & reports) != 0;
}

Outcome checkDescriptor(const MQMD &md)
{
    if (!isMessageType(md.MsgType)) return failure(MQRC_MSG_TYPE_ERROR);
    if (md.Expiry != MQEI_UNLIMITED && md.Expiry <= 0) return failure(MQRC_EXPIRY_ERROR);
    if (!isFeedback(md.Feedback)) return failure(MQRC_FEEDBACK_ERROR);
    if (md.Priority < MQPRI_PRIORITY_AS_Q_DEF) return failure(MQRC_PRIORITY_ERROR);
    if (md.Persistence != MQPER_NOT_PERSISTENT && md.Persistence != MQPER_PERSISTENT &&
        md.Persistence != MQPER_PERSISTENCE_AS_Q_DEF)
        return failure(MQRC_PERSISTENCE_ERROR);
    if (!areReportOptionsValid(md.Report)) return failure(MQRC_REPORT_OPTIONS_ERROR);
    if (asksForAnswer(md) && isBlank(md.ReplyToQ)) return failure(MQRC_MISSING_REPLY_TO_Q);
    return success();
}

// The MQI keeps some bits for later and wants them refused unless the message goes elsewhere.
Outcome checkReservedBits(const objects::QueueDefinition &queue, const MQMD &md)
{
    if (queue.remote) return success();
    if ((md.Report & reportsOnlyElsewhere) != 0) return failure(MQRC_REPORT_OPTIONS_ERROR);
    if ((md.MsgFlags & flagsOnlyElsewhere) != 0) return failure(MQRC_MSG_FLAGS_ERROR);
    return success();
}

template <std::size_t N>
void setName(MQCHAR (&field)[N], std::string_view name)
{
    objects::fillField(field, N, name);
}

// Where answers go when the program names a queue only: a remote queue of that name here says where, as a reply-to
// queue alias; else the queue is one of this queue manager.
void completeReplyTo(Connection &connection, MQMD &md)
{
    const objects::FoundQueue found = connection.catalog.definition(objects::fieldText(md.ReplyToQ));
    if (!found.outcome.failed() && found.hold.queue->type == MQQT_REMOTE) {
        const objects::ObjectDefinition &alias = found.hold.queue->object;
        const std::string_view queueManager = alias.text(MQCA_REMOTE_Q_MGR_NAME);
        const std::string_view queue = alias.text(MQCA_REMOTE_Q_NAME);
        if (!queue.empty()) setName(md.ReplyToQ, queue);
        if (!queueManager.empty()) {
            setName(md.ReplyToQMgr, queueManager);
            return;
        }
    }
    std::copy(connection.queueManagerName.begin(), connection.queueManagerName.end(), md.ReplyToQMgr);
}

bool isNone(const MQBYTE24 &id)
{
    return std::all_of(std::begin(id), std::end(id), [](MQBYTE byte) { return byte == 0; });
}

// What each context option needs of MQOPEN's options; a stronger one carries the weaker ones.
struct ContextRight {
    MQLONG putOption;
    MQLONG openOptions;
    MQLONG reason;
};
constexpr ContextRight contextRights[] = {
    {MQPMO_PASS_IDENTITY_CONTEXT,
     MQOO_PASS_IDENTITY_CONTEXT | MQOO_PASS_ALL_CONTEXT | MQOO_SET_IDENTITY_CONTEXT | MQOO_SET_ALL_CONTEXT,
     MQRC_NOT_OPEN_FOR_PASS_IDENT},
    {MQPMO_PASS_ALL_CONTEXT, MQOO_PASS_ALL_CONTEXT | MQOO_SET_ALL_CONTEXT, MQRC_NOT_OPEN_FOR_PASS_ALL},
    {MQPMO_SET_IDENTITY_CONTEXT, MQOO_SET_IDENTITY_CONTEXT | MQOO_SET_ALL_CONTEXT, MQRC_NOT_OPEN_FOR_SET_IDENT},
    {MQPMO_SET_ALL_CONTEXT, MQOO_SET_ALL_CONTEXT, MQRC_NOT_OPEN_FOR_SET_ALL},
};

Outcome passContext(Connection &connection, const PutRequest &request, std::int64_t putTime, MQMD &md)
{
    const OpenObject *source = connection.handles.find(request.contextHandle);
    if (source == nullptr || !source->allows(MQOO_SAVE_ALL_CONTEXT)) return failure(MQRC_CONTEXT_HANDLE_ERROR);
    if (!source->savedContext) return failure(MQRC_CONTEXT_NOT_AVAILABLE);
    setIdentity(md, source->savedContext->fields.identity);
    if (request.has(MQPMO_PASS_ALL_CONTEXT))
        setOrigin(md, source->savedContext->fields.origin);
    else
        setDefaultOrigin(md, connection.identity, connection.clock, putTime);
    return success();
}

} // namespace

Outcome completeDescriptor(Connection &connection, const objects::QueueDefinition &queue, const PutRequest &request,
                           MQMD &md)
{
    if (const Outcome checked = checkDescriptor(md); checked.failed()) return checked;
    if (const Outcome bits = checkReservedBits(queue, md); bits.failed()) return bits;

    Outcome outcome;
    const objects::QueueManagerDefinition &queueManager = connection.queueManager();
    if (md.Priority == MQPRI_PRIORITY_AS_Q_DEF) md.Priority = queue.defPriority;
    // The message keeps the number; it stands among those of the highest priority.
    if (md.Priority > queueManager.maxPriority) outcome = warning(MQRC_PRIORITY_EXCEEDS_MAXIMUM);
    if (md.Persistence == MQPER_PERSISTENCE_AS_Q_DEF) md.Persistence = queue.defPersistence;
    if (const Outcome may = checkPersistence(queue, md); may.failed()) return may;
    if (md.CodedCharSetId == MQCCSI_Q_MGR || md.CodedCharSetId == MQCCSI_INHERIT || md.CodedCharSetId == MQCCSI_APPL)
        md.CodedCharSetId = queueManager.codedCharSetId;

    padField(md.Format);
    padField(md.ReplyToQ);
    padField(md.ReplyToQMgr);
    if (!isBlank(md.ReplyToQ) && isBlank(md.ReplyToQMgr)) completeReplyTo(connection, md);

    md.BackoutCount = 0;
    if (request.has(MQPMO_NEW_MSG_ID) || isNone(md.MsgId)) connection.newIdentifier(md.MsgId);
    if (request.has(MQPMO_NEW_CORREL_ID)) connection.newIdentifier(md.CorrelId);
    return outcome;
}

Outcome completeContext(Connection &connection, const PutRequest &request, std::int64_t putTime, MQMD &md)
{
    for (const ContextRight &right : contextRights)
        if (request.has(right.putOption) && (request.openOptions & right.openOptions) == 0)
            return failure(right.reason);

    if (request.has(MQPMO_PASS_IDENTITY_CONTEXT | MQPMO_PASS_ALL_CONTEXT))
        return passContext(connection, request, putTime, md);
    if (request.has(MQPMO_NO_CONTEXT)) {
        setNoContext(md);
    } else if (request.has(MQPMO_SET_ALL_CONTEXT)) {
        padIdentity(md);
        padOrigin(md);
    } else if (request.has(MQPMO_SET_IDENTITY_CONTEXT)) {
        padIdentity(md);
        setDefaultOrigin(md, connection.identity, connection.clock, putTime);
    } else {
        setDefaultIdentity(md, connection.identity);
        setDefaultOrigin(md, connection.identity, connection.clock, putTime);
    }
    return success();
}

} // namespace mqrig::qmgr::core
