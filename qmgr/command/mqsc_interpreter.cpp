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

using objects::kinds;
using objects::ObjectKind;

struct ObjectWord {
    std::string_view typed;
    std::string_view word;
    objects::ObjectKinds kinds;
};

constexpr ObjectWord objectWords[] = {
    {"NAMELIST", "NAMELIST", kinds(ObjectKind::Namelist)},
    {"NL", "NAMELIST", kinds(ObjectKind::Namelist)},
    {"PRO", "PROCESS", kinds(ObjectKind::Process)},
    {"PROCESS", "PROCESS", kinds(ObjectKind::Process)},
    {"Q", "QUEUE", objects::allQueues},
    {"QA", "QALIAS", kinds(ObjectKind::AliasQueue)},
    {"QALIAS", "QALIAS", kinds(ObjectKind::AliasQueue)},
    {"QL", "QLOCAL", kinds(ObjectKind::LocalQueue)},
    {"QLOCAL", "QLOCAL", kinds(ObjectKind::LocalQueue)},
    {"QM", "QMODEL", kinds(ObjectKind::ModelQueue)},
    {"QMGR", "QMGR", kinds(ObjectKind::QueueManager)},
    {"QMODEL", "QMODEL", kinds(ObjectKind::ModelQueue)},
    {"QR", "QREMOTE", kinds(ObjectKind::RemoteQueue)},
    {"QREMOTE", "QREMOTE", kinds(ObjectKind::RemoteQueue)},
    {"QUEUE", "QUEUE", objects::allQueues},
};

struct Row {
    std::string_view verb;
    std::string_view object;
    CommandAnswer (*run)(const MqscCommand &);
};

constexpr Row table[] = {
    {"ALTER", "NAMELIST", alterObject},
    {"ALTER", "PROCESS", alterObject},
    {"ALTER", "QALIAS", alterObject},
    {"ALTER", "QLOCAL", alterObject},
    {"ALTER", "QMGR", alterQmgr},
    {"ALTER", "QMODEL", alterObject},
    {"ALTER", "QREMOTE", alterObject},
    {"CLEAR", "QLOCAL", clearLocalQueue},
    {"DEFINE", "NAMELIST", defineObject},
    {"DEFINE", "PROCESS", defineObject},
    {"DEFINE", "QALIAS", defineObject},
    {"DEFINE", "QLOCAL", defineObject},
    {"DEFINE", "QMODEL", defineObject},
    {"DEFINE", "QREMOTE", defineObject},
    {"DELETE", "NAMELIST", deleteObject},
    {"DELETE", "PROCESS", deleteObject},
    {"DELETE", "QALIAS", deleteObject},
    {"DELETE", "QLOCAL", deleteObject},
    {"DELETE", "QMODEL", deleteObject},
    {"DELETE", "QREMOTE", deleteObject},
    {"DISPLAY", "NAMELIST", displayObjects},
    {"DISPLAY", "PROCESS", displayObjects},
    {"DISPLAY", "QALIAS", displayObjects},
    {"DISPLAY", "QLOCAL", displayObjects},
    {"DISPLAY", "QMGR", displayQmgr},
    {"DISPLAY", "QMODEL", displayObjects},
    {"DISPLAY", "QREMOTE", displayObjects},
    {"DISPLAY", "QUEUE", displayObjects},
    {"PING", "QMGR", pingQmgr},
};

std::string_view findVerb(std::string_view typed)
{
    for (const Synonym &synonym : verbs)
        if (synonym.typed == typed) return synonym.word;
    return {};
}

ObjectWord findObjectWord(std::string_view typed)
{
    for (const ObjectWord &word : objectWords)
        if (word.typed == typed) return word;
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
    const std::string_view verb = parsed.words.empty() ? std::string_view() : findVerb(parsed.words.front().keyword);
    if (!parsed.words.empty() && verb.empty()) return fault(parsed.words.front().offset, verbsKnown());
    if (!parsed.ok) return fault(parsed.fault.offset, parsed.fault.reason);
    if (parsed.words.empty()) return fault(0, verbsKnown());
    if (parsed.words.front().hasValue) return fault(parsed.words.front().valueOffset(), "the verb has no value");
    if (parsed.words.size() < 2) return fault(text.text().size(), objectsOf(verb));

    const MqscParameter &object = parsed.words[1];
    const ObjectWord objectWord = findObjectWord(object.keyword);
    const auto row = std::find_if(std::begin(table), std::end(table),
                                  [&](const Row &r) { return r.verb == verb && r.object == objectWord.word; });
    if (row == std::end(table)) return fault(object.offset, objectsOf(verb));
    if (const Outcome alive = attachment.check(); alive.failed())
        return {CommandResult::Failed, {formatFailure(alive, attachment.queueManagerName())}};
    return row->run({attachment, text, parsed.words, objectWord.kinds, objectWord.word});
}

} // namespace mqrig::qmgr::command
