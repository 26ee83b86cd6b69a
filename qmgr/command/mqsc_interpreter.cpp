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
    {"CONN", "CONN", kinds(ObjectKind::QueueManager)},
    {"NAMELIST", "NAMELIST", kinds(ObjectKind::Namelist)},
    {"NL", "NAMELIST", kinds(ObjectKind::Namelist)},
    {"PRO", "PROCESS", kinds(ObjectKind::Process)},
    {"PROCESS", "PROCESS", kinds(ObjectKind::Process)},
    {"PUBSUB", "PUBSUB", kinds(ObjectKind::QueueManager)},
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
    {"QS", "QSTATUS", kinds(ObjectKind::LocalQueue)},
    {"QSTATUS", "QSTATUS", kinds(ObjectKind::LocalQueue)},
    {"QUEUE", "QUEUE", objects::allQueues},
    {"SBSTATUS", "SBSTATUS", kinds(ObjectKind::Topic)},
    {"SUB", "SUB", kinds(ObjectKind::Topic)},
    {"TOPIC", "TOPIC", kinds(ObjectKind::Topic)},
    {"TOPICSTR", "TOPICSTR", kinds(ObjectKind::Topic)},
    {"TPS", "TPSTATUS", kinds(ObjectKind::Topic)},
    {"TPSTATUS", "TPSTATUS", kinds(ObjectKind::Topic)},
};

struct Row {
    std::string_view verb;
    std::string_view object;
    CommandAnswer (*run)(const MqscCommand &);
    MQLONG command; // MQCMD_
};

constexpr Row table[] = {
    {"ALTER", "NAMELIST", alterObject, MQCMD_CHANGE_NAMELIST},
    {"ALTER", "PROCESS", alterObject, MQCMD_CHANGE_PROCESS},
    {"ALTER", "QALIAS", alterObject, MQCMD_CHANGE_Q},
    {"ALTER", "QLOCAL", alterObject, MQCMD_CHANGE_Q},
    {"ALTER", "QMGR", alterQmgr, MQCMD_CHANGE_Q_MGR},
    {"ALTER", "QMODEL", alterObject, MQCMD_CHANGE_Q},
    {"ALTER", "QREMOTE", alterObject, MQCMD_CHANGE_Q},
    {"ALTER", "SUB", alterSubscription, MQCMD_CHANGE_SUBSCRIPTION},
    {"ALTER", "TOPIC", alterObject, MQCMD_CHANGE_TOPIC},
    {"CLEAR", "QLOCAL", clearLocalQueue, MQCMD_CLEAR_Q},
    {"CLEAR", "TOPICSTR", clearTopic, MQCMD_CLEAR_TOPIC_STRING},
    {"DEFINE", "NAMELIST", defineObject, MQCMD_CREATE_NAMELIST},
    {"DEFINE", "PROCESS", defineObject, MQCMD_CREATE_PROCESS},
    {"DEFINE", "QALIAS", defineObject, MQCMD_CREATE_Q},
    {"DEFINE", "QLOCAL", defineObject, MQCMD_CREATE_Q},
    {"DEFINE", "QMODEL", defineObject, MQCMD_CREATE_Q},
    {"DEFINE", "QREMOTE", defineObject, MQCMD_CREATE_Q},
    {"DEFINE", "SUB", defineSubscription, MQCMD_CREATE_SUBSCRIPTION},
    {"DEFINE", "TOPIC", defineObject, MQCMD_CREATE_TOPIC},
    {"DELETE", "NAMELIST", deleteObject, MQCMD_DELETE_NAMELIST},
    {"DELETE", "PROCESS", deleteObject, MQCMD_DELETE_PROCESS},
    {"DELETE", "QALIAS", deleteObject, MQCMD_DELETE_Q},
    {"DELETE", "QLOCAL", deleteObject, MQCMD_DELETE_Q},
    {"DELETE", "QMODEL", deleteObject, MQCMD_DELETE_Q},
    {"DELETE", "QREMOTE", deleteObject, MQCMD_DELETE_Q},
    {"DELETE", "SUB", deleteSubscription, MQCMD_DELETE_SUBSCRIPTION},
    {"DELETE", "TOPIC", deleteObject, MQCMD_DELETE_TOPIC},
    {"DISPLAY", "CONN", displayConnections, MQCMD_INQUIRE_CONNECTION},
    {"DISPLAY", "NAMELIST", displayObjects, MQCMD_INQUIRE_NAMELIST},
    {"DISPLAY", "PROCESS", displayObjects, MQCMD_INQUIRE_PROCESS},
    {"DISPLAY", "PUBSUB", displayPublishSubscribe, MQCMD_INQUIRE_PUBSUB_STATUS},
    {"DISPLAY", "QALIAS", displayObjects, MQCMD_INQUIRE_Q},
    {"DISPLAY", "QLOCAL", displayObjects, MQCMD_INQUIRE_Q},
    {"DISPLAY", "QMGR", displayQmgr, MQCMD_INQUIRE_Q_MGR},
    {"DISPLAY", "QMODEL", displayObjects, MQCMD_INQUIRE_Q},
    {"DISPLAY", "QREMOTE", displayObjects, MQCMD_INQUIRE_Q},
    {"DISPLAY", "QSTATUS", displayQueueStatus, MQCMD_INQUIRE_Q_STATUS},
    {"DISPLAY", "QUEUE", displayObjects, MQCMD_INQUIRE_Q},
    {"DISPLAY", "SBSTATUS", displaySubscriptionStatus, MQCMD_INQUIRE_SUB_STATUS},
    {"DISPLAY", "SUB", displaySubscriptions, MQCMD_INQUIRE_SUBSCRIPTION},
    {"DISPLAY", "TOPIC", displayObjects, MQCMD_INQUIRE_TOPIC},
    {"DISPLAY", "TPSTATUS", displayTopicStatus, MQCMD_INQUIRE_TOPIC_STATUS},
    {"PING", "QMGR", pingQmgr, MQCMD_PING_Q_MGR},
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
    CommandAnswer answer = row->run({attachment, text, parsed.words, objectWord.kinds, objectWord.word});
    answer.command = row->command;
    return answer;
}

} // namespace mqrig::qmgr::command
