#include "qmgr/command/mqsc_messages.h"

#include <cstddef>
#include <iterator>

#include "cmqcfc.h"

namespace mqrig::qmgr::command {
namespace {

struct Row {
    Message message;
    int number;
    char severity;
    std::string_view text; // '@' stands for what the message is about
};

constexpr Row table[] = {
    {Message::QueueManagerChanged, 8005, 'I', "Queue manager @ was changed."},
    {Message::QueueCreated, 8006, 'I', "Queue @ was created."},
    {Message::QueueDeleted, 8007, 'I', "Queue @ was deleted."},
    {Message::QueueChanged, 8008, 'I', "Queue @ was changed."},
    {Message::ProcessCreated, 8010, 'I', "Process @ was created."},
    {Message::ProcessDeleted, 8011, 'I', "Process @ was deleted."},
    {Message::ProcessChanged, 8012, 'I', "Process @ was changed."},
    {Message::QueueCleared, 8022, 'I', "Queue @ was cleared."},
    {Message::ConnectionDetails, 8276, 'I', "Connection details:"},
    {Message::ProcessDetails, 8407, 'I', "Process details:"},
    {Message::QueueManagerDetails, 8408, 'I', "Queue manager details:"},
    {Message::QueueDetails, 8409, 'I', "Queue details:"},
    {Message::QueueManagerResponds, 8415, 'I', "Queue manager @ responds."},
    {Message::QueueStatusDetails, 8450, 'I', "Queue status details:"},
    {Message::NamelistCreated, 8552, 'I', "Namelist @ was created."},
    {Message::NamelistChanged, 8551, 'I', "Namelist @ was changed."},
    {Message::NamelistDeleted, 8553, 'I', "Namelist @ was deleted."},
    {Message::NamelistDetails, 8550, 'I', "Namelist details:"},
    {Message::QueueStatusNotFound, 8565, 'E', "There is no such status of queue @."},
    {Message::TopicCreated, 8690, 'I', "Topic @ was created."},
    {Message::TopicChanged, 8691, 'I', "Topic @ was changed."},
    {Message::TopicDeleted, 8692, 'I', "Topic @ was deleted."},
    {Message::TopicDetails, 8633, 'I', "Topic details:"},
    {Message::SubscriptionCreated, 8094, 'I', "Subscription @ was created."},
    {Message::SubscriptionChanged, 8097, 'I', "Subscription @ was changed."},
    {Message::SubscriptionDeleted, 8091, 'I', "Subscription @ was deleted."},
    {Message::SubscriptionDetails, 8096, 'I', "Subscription details:"},
    {Message::SubscriptionStatusDetails, 8099, 'I', "Subscription status details:"},
    {Message::TopicStatusDetails, 8754, 'I', "Topic status details:"},
    {Message::PublishSubscribeDetails, 8723, 'I', "Publish/subscribe status details:"},
    {Message::TopicCleared, 8092, 'I', "The retained publication of topic @ was cleared."},
    {Message::UnexpectedError, 8101, 'E', "The command ended with an unexpected reason: @."},
    {Message::NotAuthorized, 8135, 'E', "Not authorized: the files of the queue manager do not allow it."},
    {Message::QueueNotEmpty, 8143, 'E', "Queue @ has messages."},
    {Message::ConnectionBroken, 8145, 'E', "The connection to the queue manager is broken."},
    {Message::QueueManagerNotAvailable, 8146, 'E', "The queue manager is not available."},
    {Message::ObjectNotFound, 8147, 'E', "There is no object @."},
    {Message::ObjectInUse, 8148, 'E', "Object @ is in use: a program has it open."},
    {Message::ObjectDamaged, 8149, 'E', "The definition of object @ is damaged."},
    {Message::ObjectExists, 8150, 'E', "Object @ exists already."},
    {Message::ObjectOtherKind, 8151, 'E', "Object @ is of another kind."},
    {Message::CommandFailed, 8404, 'E', "The command failed: @."},
    {Message::SyntaxError, 8405, 'E', "Syntax error at @"},
    {Message::UnexpectedEnd, 8406, 'E', "The input ended inside a continued command."},
    {Message::DuplicateKeyword, 8411, 'E', "Keyword given more than once at @"},
    {Message::ConnectionNotFound, 8461, 'E', "There is no connection @."},
    {Message::SubscriptionNotFound, 8147, 'E', "There is no subscription @."},
    {Message::TopicNotFound, 8147, 'E', "There is no topic @."},
    {Message::SubscriptionExists, 8150, 'E', "Subscription @ exists already."},
    {Message::SubscriptionInUse, 8469, 'E', "Subscription @ is in use."},
    {Message::NumberOutOfRange, 8412, 'E', "Number out of range at @"},
    {Message::TextTooLong, 8413, 'E', "Text too long at @"},
    {Message::StorageFull, 8404, 'E', "The command failed: no storage is left."},
};

constexpr bool inOrder()
{
    for (std::size_t i = 0; i < std::size(table); ++i)
        if (static_cast<std::size_t>(table[i].message) != i) return false;
    return true;
}
static_assert(inOrder(), "rows are found by the number of the message");

Message messageOf(MQLONG reason)
{
    switch (reason) {
    case MQRC_UNKNOWN_OBJECT_NAME:
        return Message::ObjectNotFound;
    case MQRC_OBJECT_IN_USE:
    case MQRCCF_OBJECT_OPEN:
        return Message::ObjectInUse;
    case MQRC_OBJECT_DAMAGED:
        return Message::ObjectDamaged;
    case MQRC_Q_NOT_EMPTY:
        return Message::QueueNotEmpty;
    case MQRC_OBJECT_ALREADY_EXISTS:
    case MQRCCF_OBJECT_ALREADY_EXISTS:
        return Message::ObjectExists;
    case MQRCCF_OBJECT_WRONG_TYPE:
    case MQRCCF_LIKE_OBJECT_WRONG_TYPE:
        return Message::ObjectOtherKind;
    case MQRC_NO_SUBSCRIPTION:
        return Message::SubscriptionNotFound;
    case MQRC_SUB_ALREADY_EXISTS:
        return Message::SubscriptionExists;
    case MQRC_SUBSCRIPTION_IN_USE:
        return Message::SubscriptionInUse;
    case MQRC_NOT_AUTHORIZED:
        return Message::NotAuthorized;
    case MQRC_Q_MGR_STOPPING:
    case MQRC_Q_MGR_NOT_AVAILABLE:
        return Message::QueueManagerNotAvailable;
    case MQRC_CONNECTION_BROKEN:
    case MQRC_HCONN_ERROR:
        return Message::ConnectionBroken;
    case MQRC_STORAGE_NOT_AVAILABLE:
    case MQRC_RESOURCE_PROBLEM:
        return Message::StorageFull;
    default:
        return Message::UnexpectedError;
    }
}

// What has been broken where a command names attributes that do not go together.
struct Rule {
    MQLONG reason;
    std::string_view text;
};
constexpr Rule rules[] = {
    {MQRCCF_ATTR_VALUE_ERROR, "QDEPTHLO may not be above QDEPTHHI"},
    {MQRCCF_CLUSTER_NAME_CONFLICT, "only one of CLUSTER and CLUSNL may be set"},
    {MQRCCF_REPOS_NAME_CONFLICT, "only one of REPOS and REPOSNL may be set"},
    {MQRC_TOPIC_STRING_ERROR, "TOPICSTR is missing, or is no topic string"},
    {MQRC_TOPIC_NOT_ALTERABLE, "the topic cannot be altered"},
    {MQRCCF_TOPICSTR_ALREADY_EXISTS, "another topic object has this TOPICSTR"},
    {MQRC_SUBLEVEL_NOT_ALTERABLE, "SUBLEVEL cannot be altered"},
    {MQRC_SELECTOR_NOT_ALTERABLE, "SELECTOR cannot be altered"},
    {MQRC_DURABILITY_NOT_ALTERABLE, "a program has a subscription of this name that is not durable"},
    {MQRC_SELECTION_NOT_AVAILABLE, "SELECTOR is no selection string"},
    {MQRC_SELECTOR_ALWAYS_FALSE, "SELECTOR is never true"},
    {MQRC_DEST_CLASS_NOT_ALTERABLE, "the queue of a managed subscription cannot be altered"},
    {MQRC_CORREL_ID_ERROR, "DESTCORL takes up to 48 hexadecimal digits"},
    {MQRC_NO_RETAINED_MSG, "there is no retained publication"},
    {MQRC_INVALID_DESTINATION, "DEST is missing, or there is no model of a managed queue"},
    {MQRC_SUB_INHIBITED, "the topic does not allow subscriptions"},
    {MQRC_DURABILITY_NOT_ALLOWED, "the topic does not allow durable subscriptions"},
};

} // namespace

std::string formatMessage(Message message, std::string_view what)
{
    const Row &row = table[static_cast<std::size_t>(message)];
    std::string line = "AMQ" + std::to_string(row.number) + row.severity + ": ";
    for (const char c : row.text) {
        if (c == '@')
            line += what;
        else
            line += c;
    }
    return line;
}

std::string formatFailure(const Outcome &outcome, std::string_view objectName)
{
    for (const Rule &rule : rules)
        if (rule.reason == outcome.Reason) return formatMessage(Message::CommandFailed, rule.text);
    const Message message = messageOf(outcome.Reason);
    if (message == Message::UnexpectedError) return formatMessage(message, std::to_string(outcome.Reason));
    return formatMessage(message, objectName);
}

} // namespace mqrig::qmgr::command
