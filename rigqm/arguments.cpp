#include "arguments.h"

#include <algorithm>

namespace mqrig::rigqm {

bool Arguments::has(std::string_view flag) const
{
    return std::any_of(given_.begin(), given_.end(), [&](const Given &given) { return given.flag == flag; });
}

std::vector<std::string_view> Arguments::values(std::string_view flag) const
{
    std::vector<std::string_view> found;
    for (const Given &given : given_)
        if (given.flag == flag) found.push_back(given.value);
    return found;
}

ReadArguments readArguments(std::span<const std::string_view> words, std::span<const Option> options)
{
    ReadArguments read;
    bool optionsEnded = false;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string_view word = words[i];
        if (optionsEnded || !word.starts_with('-') || word == "-") {
            read.arguments.names_.push_back(word);
            continue;
        }
        if (word == "--") {
            optionsEnded = true;
            continue;
        }
        if (word == "--help" || word == "-h") {
            read.helpAsked = true;
            return read;
        }
        const auto option =
            std::find_if(options.begin(), options.end(), [&](const Option &row) { return row.flag == word; });
        if (option == options.end()) {
            if (read.fault.empty()) read.fault = "unknown option " + std::string(word.substr(0, 40));
            continue;
        }
        std::string_view value;
        if (!option->value.empty()) {
            if (++i == words.size()) {
                if (read.fault.empty()) read.fault = std::string(word) + " wants " + std::string(option->value);
                break;
            }
            value = words[i];
        }
        read.arguments.given_.push_back({option->flag, value});
    }
    return read;
}

} // namespace mqrig::rigqm
