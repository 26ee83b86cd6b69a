/// The usage text, put together from the option rows when the program is compiled.

#include "option_rows.h"

#include "constant_rows.h"
#include "option_groups.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace {

constexpr std::string_view HEAD = R"(usage: mqrig -qm NAME[,NAME..] [-q QUEUE] [OPTION | MQI CONSTANT]...

Puts, gets, browses, forwards, inquires and sets, one MQI call at a time, and reports every call.
Every value is an argument of its own; MQI constants are arguments by their names (mqrig -v all lists them).
)";

constexpr std::string_view TAIL = R"(
Which operation runs: -inq inquires; -oq moves messages from queue to queue; -iq sends and receives; -m, -mx, -f and -d
put; -o and -g get into files; -set sets; -pcf puts a PCF message; with none of them messages are got or browsed.

No option raises the version of a structure except -x, -la, -br, -brv, -dp and -dpv: say MQOD_VERSION_2 and the like
where an option needs it.

Exit code: 0 success, 1 failure, 2 success with a warning or no message available, 3 a failed MQI call.

Examples:
  mqrig -qm QM1 -q Q1 -m hello -n 3 -ac                      put three messages
  mqrig -qm QM1 -q Q1 -n 3                                   get them
  mqrig -qm QM1 -q Q1 -brv -r                                browse all, header by header
  mqrig -qm QM1 -q Q1 -f order.xml MQPER_PERSISTENT MQFMT_STRING
  mqrig -qm QM1 -q Q1 -iq REPLY -m ping -ss -mc MQGMO_WAIT -wi 5000
  mqrig -qm QM1 -q Q1 -oq Q2 -r MQGMO_SYNCPOINT -ss MQPMO_SYNCPOINT
  mqrig -qm QM1 -q Q1 -m hello MQPMO_VERSION_3 -smp MQTYPE_STRING:colour:red
  mqrig -qm QM1 -q Q1 -set MQIA_INHIBIT_GET:MQQA_GET_ALLOWED
  mqrig -qm QM1 -q Q1 -inq MQIA_CURRENT_Q_DEPTH
)";

/// Writes the text, or only counts when there is nowhere to write to.
struct Writer {
    char *target = nullptr;
    std::size_t length = 0;

    constexpr void add(std::string_view text)
    {
        for (const char character : text) {
            if (target != nullptr) target[length] = character;
            ++length;
        }
    }

    /// "  NAMEseparatorVALUE" filled up to the column of the explanations.
    constexpr void addLine(std::string_view name, std::string_view separator, std::string_view value,
                           std::string_view help)
    {
        constexpr std::size_t Column = 24;
        const std::size_t begin = length;
        add("  ");
        add(name);
        if (!value.empty()) add(separator);
        add(value);
        do
            add(" ");
        while (length - begin < Column);
        add(help);
        add("\n");
    }
};

constexpr std::size_t writeUsage(char *target)
{
    Writer writer{target};
    writer.add(HEAD);
    for (const OptionGroup &group : GROUPS) {
        writer.add("\n");
        writer.add(group.title);
        writer.add(":\n");
        for (const OptionRow &row : group.rows)
            writer.addLine(row.flag, " ", row.value, row.help);
    }
    writer.add("\nMQI constants (each sets or adds to the field beside it):\n");
    std::string_view previous;
    for (const ConstantRow &row : CONSTANTS) {
        // Two prefixes of one version field are shown as one.
        if (previous == row.help) continue;
        previous = row.help;
        writer.addLine(row.prefix, "", "*", row.help);
    }
    writer.add(TAIL);
    writer.add({"\0", 1}); // the terminator
    return writer.length;
}

constexpr auto TEXT = [] {
    std::array<char, writeUsage(nullptr)> text{};
    writeUsage(text.data());
    return text;
}();

} // namespace

constinit const char *const CMD_LINE = TEXT.data();
