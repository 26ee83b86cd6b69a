// DEFINE, ALTER, DELETE and DISPLAY SUB; CLEAR TOPICSTR.
#include <algorithm>
#include <string>

#include "cmqcfc.h"
#include "qmgr/command/mqsc_selection.h"
#include "qmgr/command/subscription_attributes.h"
#include "qmgr/command/subscription_commands.h"
#include "qmgr/objects/publish_subscribe.h"

namespace mqrig::qmgr::command {
namespace {

enum class Verb { Define, Alter };

struct ReadSubscription {
    bool ok = true;
    SubscriptionDefinition definition;
    CommandAnswer answer; // the fault
};
ReadSubscription readSubscription(const MqscCommand &command, Verb verb)
{
    const auto fault = [](CommandAnswer answer) { return ReadSubscription{false, {}, std::move(answer)}; };
    ReadName name = readText(command, MQ_SUB_NAME_LENGTH);
    if (!name.ok) return fault(std::move(name.answer));
    ReadSubscription read;
    read.definition.name = std::move(name.name);
    std::vector<Assignment> &attributes = read.definition.attributes;
    for (const MqscParameter &parameter : command.parameters()) {
        const bool replaces = parameter.keyword == "REPLACE" || parameter.keyword == "NOREPLACE";
        if (verb == Verb::Define && replaces && !parameter.hasValue) {
            read.definition.replace = parameter.keyword == "REPLACE" ? Replace::Yes : Replace::No;
            continue;
        }
        if (verb == Verb::Define && parameter.keyword == "LIKE" && parameter.values.size() == 1) {
            read.definition.like = parameter.value();
            continue;
        }
        ReadAttribute one = readAttribute(command, subscriptionAttributes(), parameter);
        if (!one.ok) return fault(std::move(one.answer));
        const auto same = [&](const Assignment &known) { return known.attribute == one.assignment.attribute; };
        if (std::ranges::any_of(attributes, same))
            return fault(syntaxFault(command.text, Message::DuplicateKeyword, parameter.offset, parameter.keyword));
        attributes.push_back(std::move(one.assignment));
    }
    return read;
}

} // namespace

CommandAnswer defineSubscription(const MqscCommand &command)
{
    const ReadSubscription read = readSubscription(command, Verb::Define);
    if (!read.ok) return read.answer;
    const Outcome defined = defineSubscription(command.attachment, read.definition);
    // What is missing is what it was to be like.
    const std::string &name = defined.Reason == MQRC_NO_SUBSCRIPTION ? read.definition.like : read.definition.name;
    return answerOf(defined, Message::SubscriptionCreated, name);
}

CommandAnswer alterSubscription(const MqscCommand &command)
{
    const ReadSubscription read = readSubscription(command, Verb::Alter);
    if (!read.ok) return read.answer;
    const SubscriptionDefinition &change = read.definition;
    return answerOf(alterSubscription(command.attachment, change.name, change.attributes), Message::SubscriptionChanged,
                    change.name);
}

CommandAnswer deleteSubscription(const MqscCommand &command)
{
    const ReadName name = readText(command, MQ_SUB_NAME_LENGTH);
    if (!name.ok) return name.answer;
    if (!command.parameters().empty())
        return syntaxFault(command.text, Message::SyntaxError, command.parameters().front().offset,
                           "DELETE SUB takes only a name");
    return answerOf(deleteSubscription(command.attachment, name.name), Message::SubscriptionDeleted, name.name);
}

CommandAnswer displaySubscriptions(const MqscCommand &command)
{
    const ReadName name = readText(command, MQ_SUB_NAME_LENGTH);
    if (!name.ok) return name.answer;
    const std::span<const objects::Attribute> rows = subscriptionAttributes();
    const Selection selection = readSelection(command, {.rows = rows}, name.name.ends_with('*'));
    if (!selection.ok) return selection.answer;

    CommandAnswer answer =
        showAll(inquireSubscriptions(command.attachment, name.name), rows, command.kind(), Message::SubscriptionDetails,
                selection, [](const objects::StoredSubscription &stored, const objects::Attribute &attribute) {
                    return valueOf(stored.subscription, attribute);
                });
    if (!answer.lines.empty()) return answer;
    return {CommandResult::Failed, {formatMessage(Message::SubscriptionNotFound, name.name)}};
}

CommandAnswer clearTopic(const MqscCommand &command)
{
    const ReadName topic = readText(command, MQ_TOPIC_STR_LENGTH);
    if (!topic.ok) return topic.answer;
    for (const MqscParameter &parameter : command.parameters())
        if (parameter.keyword != "CLRTYPE" || parameter.value() != "RETAINED")
            return syntaxFault(command.text, Message::SyntaxError, parameter.offset,
                               "CLEAR TOPICSTR takes only CLRTYPE(RETAINED)");
    return answerOf(objects::clearRetained(command.attachment, topic.name), Message::TopicCleared, topic.name);
}

} // namespace mqrig::qmgr::command
