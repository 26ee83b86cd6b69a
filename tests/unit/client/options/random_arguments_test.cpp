// Thousands of hostile command lines: nothing outside the records is written, and each ends in a known way.

#include "captured.h"
#include "options.h"
#include "tables.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

/// A record on the heap, so that the address sanitizer watches its ends, which every build watches with patterns.
struct GuardedRecords {
    static constexpr unsigned char Pattern = 0xA5;
    unsigned char before[256];
    RunParams primary = DEFAULT_RUN_PARAMS;
    unsigned char between[256];
    RunParams secondary = DEFAULT_RUN_PARAMS;
    unsigned char behind[256];

    GuardedRecords()
    {
        std::memset(before, Pattern, sizeof before);
        std::memset(between, Pattern, sizeof between);
        std::memset(behind, Pattern, sizeof behind);
    }

    bool intact() const
    {
        for (const auto *guard : {&before, &between, &behind}) {
            for (const unsigned char byte : *guard) {
                if (byte != Pattern) return false;
            }
        }
        return true;
    }
};

class ArgumentSource {
public:
    explicit ArgumentSource(unsigned seed) : random_(seed)
    {
        for (const OptionGroup &group : OPTION_GROUPS) {
            for (const OptionRow &row : group.rows) {
                flags_.emplace_back(row.flag);
                if (row.missing != nullptr) valueFlags_.emplace_back(row.flag);
            }
        }
        for (const ConstantRow &row : CONSTANT_ROWS) {
            constants_.emplace_back(row.prefix);
            if (row.table == nullptr) continue;
            for (const NamedInteger *name = row.table; name->name != nullptr; ++name)
                constants_.emplace_back(name->name);
        }
    }

    std::vector<std::string> commandLine()
    {
        std::vector<std::string> arguments = {"mqrig"};
        if (below(2) == 0) arguments.insert(arguments.end(), {"-qm", "QM1", "-q", "Q1"});
        for (std::size_t count = below(8); count > 0; --count) {
            switch (below(4)) {
            case 0:
                arguments.push_back(constants_[below(constants_.size())]);
                break;
            case 1:
                arguments.push_back(value());
                break;
            default:
                // Most lines shall come past their first option.
                arguments.push_back(valueFlags_[below(valueFlags_.size())]);
                arguments.push_back(value());
                if (below(8) == 0) arguments.push_back(flags_[below(flags_.size())]);
            }
        }
        return arguments;
    }

private:
    std::size_t below(std::size_t limit) { return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random_); }

    std::string randomBytes(std::size_t length)
    {
        std::string bytes(length, '\0');
        for (char &byte : bytes)
            byte = static_cast<char>(1 + below(255)); // an argument holds no zero byte
        return bytes;
    }

    std::string value()
    {
        static const std::vector<std::string> fixed = {
            "",
            "0",
            "1",
            "-1",
            "all",
            "0x",
            "0x1",
            "0x0102",
            "%s%n%d",
            "99999999999999999999",
            "-2147483648",
            "MQENC_NORMAL:MQENC_",
            "MQENC_::::",
            ",,,,",
            "::::",
            "MQPUT",
            "MQFMT_STRING",
            "MQOP_START",
            "EventHandler",
        };
        switch (below(8)) {
        case 0:
            return randomBytes(below(600));
        case 1:
            return std::string(below(1100), static_cast<char>('a' + below(26)));
        case 2:
            return "0x" + std::string(below(80), static_cast<char>("0123456789abcdefABCDEFgG"[below(24)]));
        case 3:
            return flags_[below(flags_.size())];
        case 4:
            return "MQENC_" + randomBytes(below(40));
        default:
            return fixed[below(fixed.size())];
        }
    }

    std::mt19937 random_;
    std::vector<std::string> flags_;
    std::vector<std::string> valueFlags_;
    std::vector<std::string> constants_;
};

CommandLine parseGuarded(const std::vector<std::string> &arguments, bool &intact)
{
    std::vector<std::unique_ptr<char[]>> copies; // of their exact size, for the address sanitizer
    std::vector<char *> argv;
    for (const std::string &argument : arguments) {
        copies.push_back(std::make_unique<char[]>(argument.size() + 1));
        std::memcpy(copies.back().get(), argument.c_str(), argument.size() + 1);
        argv.push_back(copies.back().get());
    }
    argv.push_back(nullptr);
    const auto records = std::make_unique<GuardedRecords>();
    const CommandLine commandLine =
        GetArgParam(static_cast<int>(arguments.size()), argv.data(), &records->primary, &records->secondary);
    intact = records->intact();
    return commandLine;
}

} // namespace

TEST(RandomArguments, NeverWriteOutsideTheRecords)
{
    constexpr int Rounds = 20000;
    ArgumentSource source(20221122);
    int runs = 0;
    int errors = 0;
    captured([&] {
        for (int round = 0; round < Rounds; ++round) {
            const std::vector<std::string> arguments = source.commandLine();
            bool intact = false;
            const CommandLine commandLine = parseGuarded(arguments, intact);
            ASSERT_TRUE(intact) << "round " << round;
            ASSERT_GE(commandLine.result, CommandLine::NoArguments);
            ASSERT_LE(commandLine.result, CommandLine::Single);
            const bool selected = commandLine.single != nullptr || commandLine.paired != nullptr;
            ASSERT_EQ(selected, commandLine.result > CommandLine::Error);
            runs += selected ? 1 : 0;
            errors += commandLine.result == CommandLine::Error ? 1 : 0;
        }
    });
    // The source reaches both ends of the parser.
    EXPECT_GT(runs, Rounds / 20);
    EXPECT_GT(errors, Rounds / 20);
}

TEST(RandomArguments, ArgumentsOfAMegabyteAreTakenOrRefused)
{
    const std::string megabyte(1 << 20, 'x');
    const std::string digits = "0x" + std::string(1 << 20, '7');
    const std::string names = [] {
        std::string list;
        while (list.size() < (1 << 20))
            list += "MQENC_NORMAL:";
        return list;
    }();
    captured([&] {
        for (const OptionGroup &group : OPTION_GROUPS) {
            for (const OptionRow &row : group.rows) {
                for (const std::string &value : {megabyte, digits, names}) {
                    bool intact = false;
                    parseGuarded({"mqrig", "-qm", "QM1", "-q", "Q1", row.flag, value}, intact);
                    ASSERT_TRUE(intact) << row.flag;
                }
            }
        }
        for (const ConstantRow &row : CONSTANT_ROWS) {
            bool intact = false;
            EXPECT_EQ(parseGuarded({"mqrig", row.prefix + megabyte}, intact).result, CommandLine::Error);
            ASSERT_TRUE(intact) << row.prefix;
        }
    });
}
