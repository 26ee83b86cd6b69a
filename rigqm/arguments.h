// The command line of a sub-command, read by the sub-command's own rows.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace mqrig::rigqm {

struct Option {
    std::string_view flag;  // "-d"
    std::string_view value; // what follows it, "COMMAND"; empty for none
    std::string_view help;
};

class Arguments {
public:
    // Words that are no options.
    const std::vector<std::string_view> &names() const { return names_; }
    bool has(std::string_view flag) const;
    // In the order given.
    std::vector<std::string_view> values(std::string_view flag) const;

private:
    friend struct ReadArguments;
    friend struct ReadArguments readArguments(std::span<const std::string_view>, std::span<const Option>);

    struct Given {
        std::string_view flag;
        std::string_view value;
    };
    std::vector<std::string_view> names_;
    std::vector<Given> given_;
};

struct ReadArguments {
    Arguments arguments;
    std::string fault;      // empty when all is well
    bool helpAsked = false; // --help or -h; nothing else counts then
};

// Options may stand anywhere; "--" ends them.
ReadArguments readArguments(std::span<const std::string_view> words, std::span<const Option> options);

} // namespace mqrig::rigqm
