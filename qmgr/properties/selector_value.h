// Values of selection strings, and what the operators make of them.
//
// Truth has three values: what a message does not have is unknown, and so is what depends on it. A comparison of values
// of different types is false. Numbers are integers of 64 bits or doubles; where an integer result does not fit, it is
// a double, and a division by zero is unknown.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace mqrig::qmgr::properties {

struct SelectorValue {
    enum class Kind : std::uint8_t { Unknown, Boolean, Integer, Real, Text, Bytes };

    Kind kind = Kind::Unknown;
    bool boolean = false;
    std::int64_t integer = 0;
    double real = 0;
    std::string_view text; // UTF-8, or bytes; whoever made the value keeps them

    static SelectorValue of(bool boolean)
    {
        SelectorValue value;
        value.kind = Kind::Boolean;
        value.boolean = boolean;
        return value;
    }
    static SelectorValue of(std::int64_t integer)
    {
        SelectorValue value;
        value.kind = Kind::Integer;
        value.integer = integer;
        return value;
    }
    static SelectorValue of(double real)
    {
        SelectorValue value;
        value.kind = Kind::Real;
        value.real = real;
        return value;
    }
    static SelectorValue ofText(std::string_view text)
    {
        SelectorValue value;
        value.kind = Kind::Text;
        value.text = text;
        return value;
    }
    static SelectorValue ofBytes(std::string_view bytes)
    {
        SelectorValue value;
        value.kind = Kind::Bytes;
        value.text = bytes;
        return value;
    }
    bool isUnknown() const { return kind == Kind::Unknown; }
    bool isNumber() const { return kind == Kind::Integer || kind == Kind::Real; }
    bool isTrue() const { return kind == Kind::Boolean && boolean; }
    bool isFalse() const { return kind == Kind::Boolean && !boolean; }
};

enum class Arithmetic { Add, Subtract, Multiply, Divide };
enum class Comparison { Equal, NotEqual, Less, LessOrEqual, Greater, GreaterOrEqual };

SelectorValue calculate(Arithmetic operation, const SelectorValue &left, const SelectorValue &right);
SelectorValue negate(const SelectorValue &value);
SelectorValue compare(Comparison comparison, const SelectorValue &left, const SelectorValue &right);
SelectorValue both(const SelectorValue &left, const SelectorValue &right);
SelectorValue either(const SelectorValue &left, const SelectorValue &right);
SelectorValue opposite(const SelectorValue &value);

// The pattern of LIKE: characters, "_" for any one and "%" for any number of them.
class LikePattern {
public:
    // `escape`: the character that makes the next one stand for itself; 0: none. False: it stands at the end.
    static bool parse(std::string_view text, char32_t escape, LikePattern &pattern);
    bool matches(std::string_view text) const;

private:
    std::vector<char32_t> items_;
};

} // namespace mqrig::qmgr::properties
