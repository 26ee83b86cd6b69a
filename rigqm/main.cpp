// rigqm: administers the queue managers that are embedded in libmqm_r.so.
#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "nearest.h"
#include "subcommand.h"

namespace mqrig::rigqm {
namespace {

constexpr std::span<const Option> noOptions;
constexpr Option createOptions[] = {{"-d", "", "make it the default queue manager"}};
constexpr Option endOptions[] = {
    {"-i", "", "end at once: calls in progress complete, later ones fail"},
    {"-r", "", "end at once; programs that asked for it reconnect after the next start"},
};
constexpr Option deleteOptions[] = {{"-f", "", "end it at once first, if it is running"}};
constexpr Option backupOptions[] = {{"-f", "", "replace FILE if it is there"}};
constexpr Option mqscOptions[] = {
    {"-e", "COMMAND", "run this command instead of standard input; may be given several times"}};

constexpr Subcommand table[] = {
    {"create", "NAME", 1, 1, createOptions, "make a queue manager; it is running at once",
     "NAME has 1 to 48 of the characters A-Z a-z 0-9 . / _ %. The queue manager gets its\n"
     "SYSTEM. queues. It lives in a folder of $MQRIG_STORE, else of $XDG_DATA_HOME/mqrig,\n"
     "else of ~/.local/share/mqrig.\n",
     createCommand},
    {"start", "NAME", 1, 1, noOptions, "start a queue manager that has ended",
     "Persistent messages are there again; non-persistent ones and uncommitted work are gone.\n", startCommand},
    {"end", "NAME", 1, 1, endOptions, "end a queue manager",
     "Without an option it quiesces: it takes no new connections and ends when the last one\n"
     "has gone. Programs reconnect that have connected with MQCNO_RECONNECT or\n"
     "MQCNO_RECONNECT_Q_MGR; for others -r is the same as -i.\n",
     endCommand},
    {"list", "", 0, 0, noOptions, "list the queue managers and their states", "", listCommand},
    {"delete", "NAME", 1, 1, deleteOptions, "delete an ended queue manager with all its messages", "", deleteCommand},
    {"mqsc", "[NAME]", 0, 1, mqscOptions, "run MQSC commands, from standard input or -e",
     "Without NAME on the default queue manager. Commands:\n"
     "  DEFINE QLOCAL(name) [attributes] [LIKE(queue)] [REPLACE|NOREPLACE] [FORCE]\n"
     "  ALTER QLOCAL(name) attributes [FORCE]\n"
     "  DELETE QLOCAL(name) [PURGE|NOPURGE]\n"
     "  CLEAR QLOCAL(name)\n"
     "  DISPLAY QLOCAL|QUEUE(name or generic*) [attributes | ALL] [WHERE(attribute operator value)]\n"
     "  ALTER QMGR attributes\n"
     "  DISPLAY QMGR [attributes | ALL]\n"
     "  PING QMGR\n"
     "A line that begins with * is a comment; + or - at the end of a line continues it.\n"
     "Names in lower case stand between single quotes. END ends the input.\n",
     mqscCommand},
    {"check", "NAME", 1, 1, noOptions, "verify the files of a queue manager",
     "Reads everything and changes nothing, whether the queue manager runs or has ended: the\n"
     "log with its definitions and persistent messages, and the live state of a running one.\n"
     "One line for each finding, and one that sums up. Exit code 0: all is well; 3: there are\n"
     "findings; 1: nothing could be verified.\n",
     checkCommand},
    {"backup", "NAME FILE", 2, 2, backupOptions, "write definitions and persistent messages to a file",
     "The queue manager may run meanwhile; FILE has what was committed at one moment. It is\n"
     "for its owner alone, and is there only when it is complete and verified.\n",
     backupCommand},
    {"restore", "NAME FILE", 2, 2, noOptions, "make a queue manager from a backup; it is running at once",
     "FILE is a backup of a queue manager of the same name, which must not exist here (any\n"
     "more). FILE is verified first.\n",
     restoreCommand},
    {"explain", "REASON...", 1, 1000, noOptions, "say what a reason code means",
     "REASON is a number or a name: 2085, MQRC_UNKNOWN_OBJECT_NAME, MQRCCF_OBJECT_OPEN.\n", explainCommand},
};

void printList(std::FILE *to)
{
    std::fputs("Usage: rigqm COMMAND [options] [operands]\n\nCommands:\n", to);
    for (const Subcommand &row : table)
        std::fprintf(to, "  %-8s  %s\n", std::string(row.name).c_str(), std::string(row.summary).c_str());
    std::fputs("\nrigqm COMMAND --help tells more about a command.\n"
               "Exit codes: 0 done, 1 failed, 2 wrong usage, 3 check has findings.\n",
               to);
}

std::string usageOf(const Subcommand &row)
{
    std::string line = "Usage: rigqm " + std::string(row.name);
    for (const Option &option : row.options) {
        line += " [" + std::string(option.flag);
        if (!option.value.empty()) line += ' ' + std::string(option.value);
        line += ']';
    }
    if (!row.operands.empty()) line += ' ' + std::string(row.operands);
    return line + '\n';
}

void printHelp(const Subcommand &row)
{
    std::string text = usageOf(row) + "\n  " + std::string(row.summary) + '\n';
    if (!row.options.empty()) text += "\nOptions:\n";
    for (const Option &option : row.options) {
        std::string flag = std::string(option.flag) + ' ' + std::string(option.value);
        flag.resize(std::max<std::size_t>(flag.size(), 12), ' ');
        text += "  " + flag + std::string(option.help) + '\n';
    }
    if (!row.details.empty()) text += '\n' + std::string(row.details);
    std::fputs(text.c_str(), stdout);
}

int usageFault(const std::string &fault, const std::string &hint)
{
    reportFailure(fault);
    std::fputs(hint.c_str(), stderr);
    return exitUsage;
}

int dispatch(const std::vector<std::string_view> &words)
{
    if (words.empty()) {
        printList(stderr);
        return exitUsage;
    }
    std::string_view name = words.front();
    std::vector<std::string_view> rest(words.begin() + 1, words.end());
    if (name == "--help" || name == "-h" || (name == "help" && rest.empty())) {
        printList(stdout);
        return exitOk;
    }
    if (name == "help") {
        name = rest.front();
        rest.assign(1, "--help");
    }
    const auto row =
        std::find_if(std::begin(table), std::end(table), [&](const Subcommand &r) { return r.name == name; });
    if (row == std::end(table)) {
        Nearest nearest(name);
        for (const Subcommand &candidate : table)
            nearest.consider(candidate.name);
        std::string fault = "there is no command " + std::string(name.substr(0, 40));
        fault += nearest.name().empty() ? std::string(".") : "; did you mean " + std::string(nearest.name()) + "?";
        return usageFault(fault, "rigqm --help lists the commands.\n");
    }

    const ReadArguments read = readArguments(rest, row->options);
    if (read.helpAsked) {
        printHelp(*row);
        return exitOk;
    }
    if (!read.fault.empty()) return usageFault(read.fault + '.', usageOf(*row));
    const std::size_t given = read.arguments.names().size();
    if (given < row->fewest) return usageFault(std::string(row->operands) + " is missing.", usageOf(*row));
    if (given > row->most) return usageFault("there are too many operands.", usageOf(*row));
    return row->run(read.arguments);
}

} // namespace
} // namespace mqrig::rigqm

int main(int argc, char **argv)
{
    using namespace mqrig::rigqm;
    int result = exitFailed;
    try {
        result = dispatch({argv + 1, argv + std::max(argc, 1)});
    } catch (const std::bad_alloc &) {
        return reportFailure("there is not enough memory.");
    } catch (const std::exception &error) {
        return reportFailure(std::string("unexpected error: ") + error.what());
    }
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
        return reportFailure("standard output cannot be written.");
    return result;
}
