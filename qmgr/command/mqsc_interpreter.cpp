#include "qmgr/command/mqsc_interpreter.h"

#include <algorithm>
#include <string_view>

#include "qmgr/command/mqsc_commands.h"

namespace mqrig::qmgr::command {
namespace {

struct Synonym {
    std::string_view typed;
    std::string_view word;
};

constexpr Synonym verbs[] = {
    {"ALT", "ALTER"},     {"ALTER", "ALTER"}, {"CLEAR", "CLEAR"},     {"DEF", "DEFINE"}, {"DEFINE", "DEFINE"},
    {"DELETE", "DELETE"}, {"DIS", "DISPLAY"}, {"DISPLAY", "DISPLAY"}, {"PING", "PING"},
};

constexpr Synonym objectWords[] = {
    {"Q", "QUEUE"}, {"QL", "QLOCAL"}, {"QLOCAL", "QLOCAL"}, {"QMGR", "QMGR"}, {"QUEUE", "QUEUE"},
};

struct Row {
    std::string_view verb;
    std::string_view object;
    CommandAnswer (*run)(const MqscCommand &);
};

constexpr Row table[] = {
    {"ALTER", "QLOCAL", alterLocalQueue},
    {"ALTER", "QMGR", alterQmgr},
    {"CLEAR", "QLOCAL", clearLocalQueue},
    {"DEFINE", "QLOCAL", defineLocalQueue},
    {"DELETE", "QLOCAL", deleteLocalQueue},
    {"DISPLAY", "QLOCAL", displayLocalQueues},
    {"DISPLAY", "QMGR", displayQmgr},
    {"DISPLAY", "QUEUE", displayQueues},
    {"PING", "QMGR", pingQmgr},
};

template <std::size_t N>
std::string_view resolve(const Synonym (&synonyms)[N], std::string_view typed)
{
    for (const Synonym &synonym : synonyms)
        if (synonym.typed == typed) return synonym.word;
    return {};
}

// "DEFINE, ALTER or DELETE"
std::string list(const std::vector<std::string_view> &words)
{
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (i > 0) text += i + 1 == words.size() ? " or " : ", ";
        text += words[i];
    }
    return text;
}

std::string verbsKnown()
{
    std::vector<std::string_view> words;
    for (const Row &row : table)
        if (words.empty() || words.back() != row.verb) words.push_back(row.verb);
    return "the command begins with " + list(words);
}

std::string objectsOf(std::string_view verb)
{
    std::vector<std::string_view> words;
    for (const Row &row : table)
        if (row.verb == verb) words.push_back(row.object);
    return std::string(verb) + " is followed by " + list(words);
}

} // namespace

CommandAnswer runMqsc(store::Attachment &attachment, const CommandText &text)
{
    if (text.tooLong())
        return syntaxFault(text, Message::SyntaxError, text.text().size(),
                           "a command has at most " + std::to_string(maxCommandLength) + " characters");
    if (text.unfinished()) return {CommandResult::SyntaxError, {formatMessage(Message::UnexpectedEnd, {})}};

    const ParsedCommand parsed = parseMqsc(text.text());
    const auto fault = [&](std::size_t offset, std::string_view reason) {
        return syntaxFault(text, Message::SyntaxError, offset, reason);
    };
    // A wrong verb is the better thing to complain of than what follows it.
    const std::string_view verb =
        parsed.words.empty() ? std::string_view() : resolve(verbs, parsed.words.front().keyword);
    if (!parsed.words.empty() && verb.empty()) return fault(parsed.words.front().offset, verbsKnown());
    if (!parsed.ok) return fault(parsed.fault.offset, parsed.fault.reason);
    if (parsed.words.empty()) return fault(0, verbsKnown());
    if (parsed.words.front().hasValue) return fault(parsed.words.front().valueOffset(), "the verb has no value");
    if (parsed.words.size() < 2) return fault(text.text().size(), objectsOf(verb));

    const MqscParameter &object = parsed.words[1];
    const std::string_view objectWord = resolve(objectWords, object.keyword);
    const auto row = std::find_if(std::begin(table), std::end(table),
                                  [&](const Row &r) { return r.verb == verb && r.object == objectWord; });
    if (row == std::end(table)) return fault(object.offset, objectsOf(verb));
    if (const Outcome alive = attachment.check(); alive.failed())
        return {CommandResult::Failed, {formatFailure(alive, attachment.queueManagerName())}};
    return row->run({attachment, text, parsed.words});
}

} // namespace mqrig::qmgr::command
