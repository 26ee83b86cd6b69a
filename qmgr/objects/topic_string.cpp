#include "qmgr/objects/topic_string.h"

#include <algorithm>

namespace mqrig::qmgr::objects {
namespace {

// Walks a sequence along a pattern; after a mismatch the last "any" takes one element more. `fits` says whether one
// element of the pattern and one of the sequence go together.
template <class Pattern, class IsAny, class Fits, class Next>
bool walk(const Pattern &pattern, std::size_t length, IsAny &&isAny, Fits &&fits, Next &&next)
{
    constexpr std::size_t none = static_cast<std::size_t>(-1);
    std::size_t at = 0;
    std::size_t in = 0;
    std::size_t anyAt = none;
    std::size_t taken = 0;
    while (at < length) {
        if (in < pattern.size() && isAny(pattern[in])) {
            anyAt = in++;
            taken = at;
        } else if (in < pattern.size() && fits(pattern[in], at)) {
            at = next(pattern[in], at);
            ++in;
        } else if (anyAt != none) {
            at = ++taken;
            in = anyAt + 1;
        } else {
            return false;
        }
    }
    while (in < pattern.size() && isAny(pattern[in]))
        ++in;
    return in == pattern.size();
}

bool continuesCharacter(char c)
{
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

} // namespace

std::vector<std::string_view> topicLevels(std::string_view topic)
{
    std::vector<std::string_view> levels;
    if (topic.empty()) return levels;
    levels.reserve(static_cast<std::size_t>(std::count(topic.begin(), topic.end(), '/')) + 1);
    for (;;) {
        const std::size_t slash = topic.find('/');
        levels.push_back(topic.substr(0, slash));
        if (slash == std::string_view::npos) return levels;
        topic.remove_prefix(slash + 1);
    }
}

std::optional<std::string_view> parentTopic(std::string_view topic)
{
    if (topic.empty()) return std::nullopt;
    const std::size_t slash = topic.rfind('/');
    return slash == std::string_view::npos ? std::string_view() : topic.substr(0, slash);
}

std::optional<TopicPattern> TopicPattern::parse(std::string_view text, WildcardScheme scheme)
{
    TopicPattern pattern;
    pattern.scheme_ = scheme;
    if (scheme == WildcardScheme::Topic) {
        pattern.literal_ = text;
        for (const std::string_view level : topicLevels(text)) {
            const Kind kind = level == "#" ? Kind::Any : level == "+" ? Kind::One : Kind::Literal;
            pattern.wild_ |= kind != Kind::Literal;
            if (!pattern.wild_) ++pattern.fixedLevels_;
            pattern.levels_.push_back({kind, std::string(level)});
        }
        return pattern;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        Kind kind = text[i] == '*' ? Kind::Any : text[i] == '?' ? Kind::One : Kind::Literal;
        if (text[i] == '%') {
            if (i + 1 == text.size() || std::string_view("*?%").find(text[i + 1]) == std::string_view::npos)
                return std::nullopt;
            ++i;
            kind = Kind::Literal;
        }
        pattern.wild_ |= kind != Kind::Literal;
        if (!pattern.wild_ && text[i] == '/') ++pattern.fixedLevels_;
        if (kind == Kind::Literal) pattern.literal_ += text[i];
        pattern.characters_.push_back({kind, text[i]});
    }
    if (!pattern.wild_ && !text.empty()) ++pattern.fixedLevels_;
    return pattern;
}

bool TopicPattern::matches(std::string_view topic, std::span<const std::string_view> levels) const
{
    if (!wild_) return topic == literal_;
    return scheme_ == WildcardScheme::Topic ? matchesLevels(levels) : matchesCharacters(topic);
}

bool TopicPattern::matchesLevels(std::span<const std::string_view> levels) const
{
    return walk(
        levels_, levels.size(), [](const Level &level) { return level.kind == Kind::Any; },
        [&](const Level &level, std::size_t at) { return level.kind == Kind::One || level.text == levels[at]; },
        [](const Level &, std::size_t at) { return at + 1; });
}

bool TopicPattern::matchesCharacters(std::string_view topic) const
{
    return walk(
        characters_, topic.size(), [](const Character &character) { return character.kind == Kind::Any; },
        [&](const Character &character, std::size_t at) {
            return character.kind == Kind::One ? !continuesCharacter(topic[at]) : character.text == topic[at];
        },
        [&](const Character &character, std::size_t at) {
            ++at;
            while (character.kind == Kind::One && at < topic.size() && continuesCharacter(topic[at]))
                ++at;
            return at;
        });
}

} // namespace mqrig::qmgr::objects
