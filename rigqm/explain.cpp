#include <charconv>
#include <cstdio>
#include <optional>
#include <string>

#include "reasons.h"
#include "subcommand.h"

namespace mqrig::rigqm {
namespace {

std::optional<MQLONG> numberIn(std::string_view word)
{
    MQLONG number = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (error != std::errc() || end != word.data() + word.size()) return std::nullopt;
    return number;
}

void print(const Reason &reason)
{
    const std::string name(reason.name);
    const std::string sentence(sentenceOf(reason));
    std::printf("%d %s\n    %s\n", reason.value, name.c_str(), sentence.c_str());
}

bool allDigits(std::string_view word)
{
    return word.find_first_not_of("0123456789") == std::string_view::npos;
}

bool explain(std::string_view word)
{
    if (const auto number = numberIn(word)) {
        const auto reasons = reasonsOf(*number);
        for (const Reason &reason : reasons)
            print(reason);
        if (!reasons.empty()) return true;
    } else if (const auto reason = reasonCalled(word)) {
        print(*reason);
        return true;
    }
    std::string fault = "there is no reason " + std::string(word.substr(0, 60));
    const std::string_view nearest = allDigits(word) ? std::string_view() : nearestName(word);
    fault += nearest.empty() ? std::string(".") : "; did you mean " + std::string(nearest) + "?";
    reportFailure(fault);
    return false;
}

} // namespace

int explainCommand(const Arguments &arguments)
{
    int result = exitOk;
    for (const std::string_view word : arguments.names())
        if (!explain(word)) result = exitFailed;
    return result;
}

} // namespace mqrig::rigqm
