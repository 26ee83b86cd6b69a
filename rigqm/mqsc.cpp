#include <cstdio>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "qmgr/command/mqsc_interpreter.h"
#include "qmgr/core/trigger.h"
#include "qmgr/store/attachment.h"
#include "qmgr/store/paths.h"
#include "subcommand.h"

namespace mqrig::rigqm {
namespace {

using qmgr::command::CommandAnswer;
using qmgr::command::CommandResult;
using qmgr::command::CommandText;
using qmgr::command::MqscReader;

// Kept of a line: enough to know that a command in it is too long.
constexpr std::size_t longestLine = qmgr::command::maxCommandLength + 1000;

// The next line of standard input without its end ("\n" or "\r\n"). Of a line that is too long the beginning is kept,
// and its last character, on which it depends whether the command goes on.
std::optional<std::string> readLine()
{
    std::string line;
    int last = EOF;
    int c = std::getc(stdin);
    if (c == EOF) return std::nullopt;
    for (; c != EOF && c != '\n'; c = std::getc(stdin)) {
        if (line.size() < longestLine)
            line += static_cast<char>(c);
        else if (c != '\r' && c != ' ')
            last = c;
    }
    if (last != EOF) line += static_cast<char>(last);
    if (line.ends_with('\r')) line.pop_back();
    return line;
}

// What was typed is shown without control characters.
std::string printable(std::string line)
{
    for (char &c : line)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) c = c == '\t' ? ' ' : '.';
    return line;
}

std::string counted(int number, const char *one, const char *many)
{
    return (number == 0 ? std::string("No") : std::to_string(number)) + ' ' + (number == 1 ? one : many);
}

// One run of MQSC: commands in, echo and answers out.
class MqscRun {
public:
    MqscRun(qmgr::store::Attachment &attachment, MqscReader::NextLine nextLine)
        : attachment_(attachment),
          reader_(std::move(nextLine), [this](std::string_view line, bool begins) { echo(line, begins); })
    {
    }

    int run()
    {
        std::printf("MQSC commands for queue manager %s.\n\n", attachment_.queueManagerName().c_str());
        while (const std::optional<CommandText> command = reader_.next()) {
            if (isEnd(command->text())) break;
            ++read_;
            const CommandAnswer given = runMqsc(attachment_, *command);
            answer(given);
            if (!given.triggering.empty()) qmgr::core::triggerAfterCommand(attachment_, given.triggering);
        }
        summary();
        return failed_ + syntaxErrors_ == 0 ? exitOk : exitFailed;
    }

private:
    void echo(std::string_view line, bool begins)
    {
        const std::string shown = printable(std::string(line));
        if (begins)
            std::printf("%6d : %s\n", read_ + 1, shown.c_str());
        else
            std::printf("       : %s\n", shown.c_str());
    }

    void answer(const CommandAnswer &answer)
    {
        if (answer.result == CommandResult::Failed) ++failed_;
        if (answer.result == CommandResult::SyntaxError) ++syntaxErrors_;
        for (const std::string &line : answer.lines)
            std::printf("%s\n", line.c_str());
        std::fflush(stdout);
    }

    void summary() const
    {
        const std::string read = counted(read_, "command", "commands");
        const std::string syntax = counted(syntaxErrors_, "syntax error", "syntax errors");
        const std::string failed = counted(failed_, "command failed", "commands failed");
        std::printf("%s read.\n%s.\n%s.\n", read.c_str(), syntax.c_str(), failed.c_str());
    }

    // END, EXIT and QUIT end it before the input does.
    static bool isEnd(std::string_view text)
    {
        while (!text.empty() && (text.back() == ' ' || text.back() == ';'))
            text.remove_suffix(1);
        const auto is = [&](std::string_view word) {
            if (text.size() != word.size()) return false;
            for (std::size_t i = 0; i < word.size(); ++i)
                if ((text[i] & ~0x20) != word[i]) return false;
            return true;
        };
        return is("END") || is("EXIT") || is("QUIT");
    }

    qmgr::store::Attachment &attachment_;
    MqscReader reader_;
    int read_ = 0;
    int failed_ = 0;
    int syntaxErrors_ = 0;
};

// The lines of the -e arguments, each argument one or more lines.
MqscReader::NextLine linesOf(const std::vector<std::string_view> &commands)
{
    std::vector<std::string> lines;
    for (std::string_view text : commands) {
        while (true) {
            const std::size_t end = text.find('\n');
            lines.emplace_back(text.substr(0, end));
            if (end == std::string_view::npos) break;
            text.remove_prefix(end + 1);
        }
    }
    return [lines = std::move(lines), next = std::size_t{0}]() mutable -> std::optional<std::string> {
        if (next == lines.size()) return std::nullopt;
        return lines[next++];
    };
}

} // namespace

int mqscCommand(const Arguments &arguments)
{
    const std::string_view name = arguments.names().empty() ? std::string_view() : arguments.names().front();
    const qmgr::store::Attached attached = qmgr::store::attach(qmgr::store::defaultStoreFolder(), name);
    if (!attached.outcome.ok()) {
        if (name.empty() && attached.outcome.Reason == MQRC_Q_MGR_NAME_ERROR)
            return reportFailure("no name was given, and there is no default queue manager.");
        return reportFailure(name, attached.outcome);
    }
    const auto commands = arguments.values("-e");
    MqscRun commandRun(*attached.attachment, commands.empty() ? MqscReader::NextLine(readLine) : linesOf(commands));
    return commandRun.run();
}

} // namespace mqrig::rigqm
