// Topic strings, and the patterns of them that subscriptions have.
//
// A topic string is a path of levels with '/' between them; a level may be empty, so that "/a" is another topic than
// "a". The empty string is the root of the tree. Two schemes of wildcards:
//
//   Topic       '+' is any one level, '#' any number of levels, none too; only where it is a level by itself
//   Characters  '?' is any one character, '*' any number of them, '/' among them; '%' takes the meaning away from the
//               '?', '*' or '%' behind it
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace mqrig::qmgr::objects {

// The levels of a topic; the root has none.
std::vector<std::string_view> topicLevels(std::string_view topic);

// The topic one level up; nothing for the root. An empty first level is taken for the root: above "/a" stands "".
std::optional<std::string_view> parentTopic(std::string_view topic);

// Stored on disk as these numbers.
enum class WildcardScheme : std::uint8_t { Topic = 0, Characters = 1 };

class TopicPattern {
public:
    // Nothing where a '%' stands before no '?', '*' or '%' (Characters).
    static std::optional<TopicPattern> parse(std::string_view text, WildcardScheme scheme);

    bool hasWildcards() const { return wild_; }
    // Without wildcards: the one topic that it means, escapes removed.
    const std::string &topic() const { return literal_; }
    // `levels`: of that topic.
    bool matches(std::string_view topic, std::span<const std::string_view> levels) const;
    bool matches(std::string_view topic) const { return matches(topic, topicLevels(topic)); }
    // How many levels stand before the one with the first wildcard; all of them if there is none.
    std::size_t levelsBeforeWildcard() const { return fixedLevels_; }

private:
    enum class Kind : std::uint8_t { Literal, One, Any };
    struct Level {
        Kind kind = Kind::Literal;
        std::string text;
    };
    struct Character {
        Kind kind = Kind::Literal;
        char text = 0;
    };
    bool matchesLevels(std::span<const std::string_view> levels) const;
    bool matchesCharacters(std::string_view topic) const;

    WildcardScheme scheme_ = WildcardScheme::Topic;
    bool wild_ = false;
    std::size_t fixedLevels_ = 0;
    std::string literal_;
    std::vector<Level> levels_;
    std::vector<Character> characters_;
};

} // namespace mqrig::qmgr::objects
