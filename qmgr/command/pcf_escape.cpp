#include "qmgr/command/mqsc_interpreter.h"
#include "qmgr/command/pcf_commands.h"

namespace mqrig::qmgr::command {
namespace {

// The lines of a text, one after the other.
class Lines {
public:
    explicit Lines(std::string_view text) : rest_(text) {}
    std::optional<std::string> next()
    {
        if (!more_) return std::nullopt;
        const std::size_t end = rest_.find('\n');
        std::string line(rest_.substr(0, end));
        more_ = end != std::string_view::npos;
        if (more_) rest_.remove_prefix(end + 1);
        return line;
    }

private:
    std::string_view rest_;
    bool more_ = true;
};

bool beginsMessage(const std::string &line)
{
    return line.starts_with("AMQ");
}

// One reply for each message of the answer, with the lines that belong to it.
void answerWith(PcfReplies &replies, const CommandAnswer &answer)
{
    const bool done = answer.result == CommandResult::Done;
    if (!done) replies.setFailed();
    replies.noteTriggering(answer.triggering);
    for (std::size_t i = 0; i < answer.lines.size();) {
        std::string text = answer.lines[i++];
        while (i < answer.lines.size() && !beginsMessage(answer.lines[i]))
            text += '\n' + answer.lines[i++];
        PcfWriter &reply = replies.add();
        if (!done) {
            const bool syntax = answer.result == CommandResult::SyntaxError;
            reply.header().CompCode = MQCC_FAILED;
            reply.header().Reason = syntax ? MQRCCF_PARM_SYNTAX_ERROR : MQRCCF_COMMAND_FAILED;
        }
        if (answer.command != MQCMD_NONE) reply.header().Command = answer.command;
        reply.integer(MQIACF_ESCAPE_TYPE, MQET_MQSC);
        reply.text(MQCACF_ESCAPE_TEXT, text);
    }
}

} // namespace

// The text holds one MQSC command, as a line of a command file would; where it holds several lines, all are run, up to
// the first that fails.
void escape(const PcfCommand &command, PcfReplies &replies)
{
    if (command.number(MQIACF_ESCAPE_TYPE) != MQET_MQSC)
        return replies.fail(faultOf(MQRCCF_ESCAPE_TYPE_ERROR, MQIACF_ESCAPE_TYPE));
    const std::string text = command.text(MQCACF_ESCAPE_TEXT);
    Lines lines(text);
    MqscReader reader([&lines] { return lines.next(); }, [](std::string_view, bool) {});
    bool any = false;
    while (const auto read = reader.next()) {
        any = true;
        answerWith(replies, runMqsc(command.attachment, *read));
        if (replies.failed()) return;
    }
    if (!any) replies.fail(faultOf(MQRCCF_PARM_SYNTAX_ERROR, MQCACF_ESCAPE_TEXT));
}

} // namespace mqrig::qmgr::command
