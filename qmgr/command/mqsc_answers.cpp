#include <algorithm>

#include "qmgr/command/mqsc_commands.h"

namespace mqrig::qmgr::command {
namespace {

constexpr std::size_t shownBefore = 60;
constexpr std::size_t shownAfter = 15;

// What is shown of a command never holds control characters, whatever was typed.
std::string printable(std::string_view text)
{
    std::string shown(text);
    for (char &c : shown)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) c = '.';
    return shown;
}

} // namespace

CommandAnswer syntaxFault(const CommandText &text, Message message, std::size_t offset, std::string_view reason)
{
    const std::string &command = text.text();
    offset = std::min(offset, command.size());
    const TextPosition place = text.at(offset);
    const std::string where = "line " + std::to_string(place.line) + ", column " + std::to_string(place.column) + ": " +
                              std::string(reason) + '.';

    const std::size_t from = offset > shownBefore ? offset - shownBefore : 0;
    const std::string lead = from > 0 ? "..." : "";
    const std::string around = lead + printable(std::string_view(command).substr(from, offset - from + shownAfter)) +
                               (offset + shownAfter < command.size() ? "..." : "");
    return {CommandResult::SyntaxError,
            {formatMessage(message, where), "   " + around, std::string(3 + lead.size() + offset - from, ' ') + '^'}};
}

const KindMessages &messagesOf(objects::ObjectKind kind)
{
    static constexpr KindMessages ofQueues{Message::QueueCreated, Message::QueueChanged, Message::QueueDeleted,
                                           Message::QueueDetails};
    static constexpr KindMessages ofNamelists{Message::NamelistCreated, Message::NamelistChanged,
                                              Message::NamelistDeleted, Message::NamelistDetails};
    static constexpr KindMessages ofProcesses{Message::ProcessCreated, Message::ProcessChanged, Message::ProcessDeleted,
                                              Message::ProcessDetails};
    static constexpr KindMessages ofTopics{Message::TopicCreated, Message::TopicChanged, Message::TopicDeleted,
                                           Message::TopicDetails};
    if (kind == objects::ObjectKind::Topic) return ofTopics;
    if (kind == objects::ObjectKind::Namelist) return ofNamelists;
    return kind == objects::ObjectKind::Process ? ofProcesses : ofQueues;
}

CommandAnswer answerOf(const Outcome &outcome, Message success, std::string_view objectName)
{
    if (outcome.ok()) return {CommandResult::Done, {formatMessage(success, objectName)}};
    return {CommandResult::Failed, {formatFailure(outcome, objectName)}};
}

} // namespace mqrig::qmgr::command
