// The messages with which MQSC commands are answered: MQ's numbers, our words.
#pragma once

#include <string>
#include <string_view>

#include "qmgr/store/outcome.h"

namespace mqrig::qmgr::command {

enum class Message {
    QueueManagerChanged,
    QueueCreated,
    QueueDeleted,
    QueueChanged,
    ProcessCreated,
    ProcessDeleted,
    ProcessChanged,
    QueueCleared,
    ConnectionDetails,
    ProcessDetails,
    QueueManagerDetails,
    QueueDetails,
    QueueManagerResponds,
    QueueStatusDetails,
    NamelistCreated,
    NamelistChanged,
    NamelistDeleted,
    NamelistDetails,
    QueueStatusNotFound,
    TopicCreated,
    TopicChanged,
    TopicDeleted,
    TopicDetails,
    SubscriptionCreated,
    SubscriptionChanged,
    SubscriptionDeleted,
    SubscriptionDetails,
    SubscriptionStatusDetails,
    TopicStatusDetails,
    PublishSubscribeDetails,
    TopicCleared,
    UnexpectedError,
    NotAuthorized,
    QueueNotEmpty,
    ConnectionBroken,
    QueueManagerNotAvailable,
    ObjectNotFound,
    ObjectInUse,
    ObjectDamaged,
    ObjectExists,
    ObjectOtherKind,
    CommandFailed,
    SyntaxError,
    UnexpectedEnd,
    DuplicateKeyword,
    ConnectionNotFound,
    SubscriptionNotFound,
    TopicNotFound,
    SubscriptionExists,
    SubscriptionInUse,
    NumberOutOfRange,
    TextTooLong,
    StorageFull,
};

// "AMQ8006I: Queue Q1 was created." `what` takes the place that the message has for it.
std::string formatMessage(Message message, std::string_view what);

// The message for a command that failed with this reason on an object of that name.
std::string formatFailure(const Outcome &outcome, std::string_view objectName);

} // namespace mqrig::qmgr::command
