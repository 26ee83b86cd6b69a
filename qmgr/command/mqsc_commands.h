// What the functions behind MQSC commands share: their input, the reading of parameters, the forms of their answers.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "qmgr/command/mqsc_interpreter.h"
#include "qmgr/command/mqsc_messages.h"
#include "qmgr/command/mqsc_parser.h"
#include "qmgr/command/object_commands.h"

namespace mqrig::qmgr::command {

struct MqscCommand {
    store::Attachment &attachment;
    const CommandText &text;
    std::span<const MqscParameter> words; // verb, object, parameters
    objects::ObjectKinds kinds;           // what the object word stands for
    std::string_view objectWord;          // the object word in full: "QLOCAL"

    const MqscParameter &object() const { return words[1]; }
    std::span<const MqscParameter> parameters() const { return words.subspan(2); }
    // The kind of object, where the object word stands for one alone.
    objects::ObjectKind kind() const { return objects::onlyKind(kinds); }
};

CommandAnswer defineObject(const MqscCommand &command);
CommandAnswer alterObject(const MqscCommand &command);
CommandAnswer deleteObject(const MqscCommand &command);
CommandAnswer clearLocalQueue(const MqscCommand &command);
CommandAnswer displayObjects(const MqscCommand &command);
CommandAnswer displayQueueStatus(const MqscCommand &command);
CommandAnswer displayConnections(const MqscCommand &command);
CommandAnswer alterQmgr(const MqscCommand &command);
CommandAnswer displayQmgr(const MqscCommand &command);
CommandAnswer pingQmgr(const MqscCommand &command);
CommandAnswer defineSubscription(const MqscCommand &command);
CommandAnswer alterSubscription(const MqscCommand &command);
CommandAnswer deleteSubscription(const MqscCommand &command);
CommandAnswer displaySubscriptions(const MqscCommand &command);
CommandAnswer clearTopic(const MqscCommand &command);
CommandAnswer displaySubscriptionStatus(const MqscCommand &command);
CommandAnswer displayTopicStatus(const MqscCommand &command);
CommandAnswer displayPublishSubscribe(const MqscCommand &command);

// ---- Answers ----

// A fault in what was typed: the message with line and column, and the text around the place.
CommandAnswer syntaxFault(const CommandText &text, Message message, std::size_t offset, std::string_view reason);

// One message line: the success message, or what the outcome's reason says of the object.
CommandAnswer answerOf(const Outcome &outcome, Message success, std::string_view objectName);

// The messages that name a kind of object.
struct KindMessages {
    Message created;
    Message changed;
    Message deleted;
    Message details;
};
const KindMessages &messagesOf(objects::ObjectKind kind);

// ---- Reading ----

// The name between the parentheses of the object word: a whole object name, or also a generic one.
enum class NameForm { Whole, Generic };
struct ReadName {
    bool ok = false;
    std::string name;
    CommandAnswer answer; // the fault
};
ReadName readName(const MqscCommand &command, NameForm form);

// The same where it is any text of at most that many bytes: the name of a subscription, a topic string.
ReadName readText(const MqscCommand &command, std::size_t most);

// One parameter that sets an attribute among these rows, judged by its row.
struct ReadAttribute {
    bool ok = false;
    Assignment assignment;
    CommandAnswer answer; // the fault
};
ReadAttribute readAttribute(const MqscCommand &command, std::span<const objects::Attribute> rows,
                            const MqscParameter &parameter);

// Parameters of DEFINE and ALTER: attributes to be set and the command's own options.
struct ReadDefinition {
    bool ok = false;
    Definition definition;
    CommandAnswer answer; // the fault
};
enum class Options : unsigned { Define, Alter, AlterQmgr };
ReadDefinition readDefinition(const MqscCommand &command, objects::ObjectKind kind, Options options);

} // namespace mqrig::qmgr::command
