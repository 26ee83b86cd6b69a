// DISPLAY SBSTATUS, DISPLAY TPSTATUS and DISPLAY PUBSUB.
#include <algorithm>
#include <array>
#include <string_view>

#include "qmgr/command/mqsc_selection.h"
#include "qmgr/command/topic_status.h"
#include "qmgr/objects/topic_string.h"

namespace mqrig::qmgr::command {
namespace {

constexpr std::string_view topicStatusTypes[] = {"TOPIC"};
constexpr std::string_view publishSubscribeTypes[] = {"LOCAL", "ALL"};

} // namespace

CommandAnswer displaySubscriptionStatus(const MqscCommand &command)
{
    const ReadName name = readText(command, MQ_SUB_NAME_LENGTH);
    if (!name.ok) return name.answer;
    const auto rows = subscriptionStatusAttributes();
    const Selection selection = readSelection(command, {.rows = rows}, name.name.ends_with('*'));
    if (!selection.ok) return selection.answer;
    CommandAnswer answer =
        showAll(inquireSubscriptionStatus(command.attachment, name.name), rows, command.kind(),
                Message::SubscriptionStatusDetails, selection,
                [](const SubscriptionStatus &status, const auto &attribute) { return statusOf(status, attribute); });
    if (!answer.lines.empty()) return answer;
    return {CommandResult::Failed, {formatMessage(Message::SubscriptionNotFound, name.name)}};
}

// The topic string may have the wildcards of topics.
CommandAnswer displayTopicStatus(const MqscCommand &command)
{
    const ReadName name = readText(command, MQ_TOPIC_STR_LENGTH);
    if (!name.ok) return name.answer;
    const auto pattern = objects::TopicPattern::parse(name.name, objects::WildcardScheme::Topic);
    const auto rows = topicStatusAttributes();
    const Selection selection =
        readSelection(command, {.rows = rows, .types = topicStatusTypes}, pattern->hasWildcards());
    if (!selection.ok) return selection.answer;
    std::vector<TopicStatus> topics = inquireTopicStatus(command.attachment);
    std::erase_if(topics, [&](const TopicStatus &status) { return !pattern->matches(status.topic); });
    CommandAnswer answer =
        showAll(topics, rows, command.kind(), Message::TopicStatusDetails, selection,
                [](const TopicStatus &status, const auto &attribute) { return statusOf(status, attribute); });
    if (!answer.lines.empty()) return answer;
    return {CommandResult::Failed, {formatMessage(Message::TopicNotFound, name.name)}};
}

CommandAnswer displayPublishSubscribe(const MqscCommand &command)
{
    if (command.object().hasValue)
        return syntaxFault(command.text, Message::SyntaxError, command.object().offset, "PUBSUB has no name");
    const auto rows = publishSubscribeAttributes();
    const Vocabulary vocabulary{.rows = rows, .filters = false, .types = publishSubscribeTypes};
    const Selection selection = readSelection(command, vocabulary, false);
    if (!selection.ok) return selection.answer;
    return showAll(
        std::array{inquirePublishSubscribe(command.attachment)}, rows, command.kind(), Message::PublishSubscribeDetails,
        selection,
        [](const PublishSubscribeStatus &status, const auto &attribute) { return statusOf(status, attribute); });
}

} // namespace mqrig::qmgr::command
