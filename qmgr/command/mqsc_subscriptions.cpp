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

// What stands between the parentheses of the object word: any text, no object name.
ReadName readText(const MqscCommand &command, std::size_t most)
{
    const MqscParameter &object = command.object();
    const auto fault = [&](std::size_t offset, std::string_view reason) {
        return ReadName{false, {}, syntaxFault(command.text, Message::SyntaxError, offset, reason)};
    };
    if (!object.hasValue) return fault(object.offset + object.keyword.size(), "a name in parentheses is missing");
    if (object.values.size() > 1) return fault(object.values[1].offset, "only one name may be given");
    const std::string text(object.value());
    if (text.empty()) return fault(object.valueOffset(), "the name is empty");
    if (text.size() > most)
        return fault(object.valueOffset(), "at most " + std::to_string(most) + " bytes may be given");
    return {true, text, {}};
}

struct ReadAttributes {
    bool ok = true;
    std::vector<Assignment> attributes;
    CommandAnswer answer; // the fault
};
ReadAttributes readAttributes(const MqscCommand &command)
{
    ReadAttributes read;
    for (const MqscParameter &parameter : command.parameters()) {
        ReadAttribute one = readAttribute(command, subscriptionAttributes(), parameter);
        if (!one.ok) return {false, {}, std::move(one.answer)};
        const auto same = [&](const Assignment &known) { return known.attribute == one.assignment.attribute; };
        if (std::ranges::any_of(read.attributes, same))
            return {
                false, {}, syntaxFault(command.text, Message::DuplicateKeyword, parameter.offset, parameter.keyword)};
        read.attributes.push_back(std::move(one.assignment));
    }
    return read;
}

using Change = Outcome (*)(store::Attachment &, const std::string &, const std::vector<Assignment> &);

CommandAnswer change(const MqscCommand &command, Change make, Message done)
{
    const ReadName name = readText(command, MQ_SUB_NAME_LENGTH);
    if (!name.ok) return name.answer;
    const ReadAttributes read = readAttributes(command);
    if (!read.ok) return read.answer;
    return answerOf(make(command.attachment, name.name, read.attributes), done, name.name);
}

} // namespace

CommandAnswer defineSubscription(const MqscCommand &command)
{
    return change(command, defineSubscription, Message::SubscriptionCreated);
}

CommandAnswer alterSubscription(const MqscCommand &command)
{
    return change(command, alterSubscription, Message::SubscriptionChanged);
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

    CommandAnswer answer;
    for (const objects::Subscription &subscription : inquireSubscriptions(command.attachment, name.name)) {
        const auto value = [&](const objects::Attribute &attribute) { return valueOf(subscription, attribute); };
        if (selection.filter) {
            const objects::Attribute &compared =
                *objects::findKeyword(rows, command.kinds, selection.filter->keyword).attribute;
            if (!selection.filter->holdsFor(compared, value(compared))) continue;
        }
        answer.lines.push_back(formatMessage(Message::SubscriptionDetails, {}));
        showAttributes(answer.lines, rows, command.kind(), selection, value);
    }
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
