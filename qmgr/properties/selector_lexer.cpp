#include "qmgr/properties/selector_lexer.h"

#include <charconv>
#include <limits>
#include <strings.h>
#include <system_error>

#include "qmgr/properties/property_name.h"
#include "qmgr/properties/utf8.h"

namespace mqrig::qmgr::properties {
namespace {

struct Reserved {
    std::string_view text;
    Word word;
};
constexpr Reserved reservedWords[] = {
    {"AND", Word::And},   {"OR", Word::Or},     {"NOT", Word::Not},     {"BETWEEN", Word::Between},
    {"LIKE", Word::Like}, {"IN", Word::In},     {"IS", Word::Is},       {"ESCAPE", Word::Escape},
    {"NULL", Word::Null}, {"TRUE", Word::True}, {"FALSE", Word::False},
};

struct Operator {
    std::string_view text;
    Word word;
};
// The longer ones first.
constexpr Operator operators[] = {
    {"<>", Word::NotEqual},
    {"<=", Word::LessOrEqual},
    {">=", Word::GreaterOrEqual},
    {"=", Word::Equal},
    {"<", Word::Less},
    {">", Word::Greater},
    {"+", Word::Plus},
    {"-", Word::Minus},
    {"*", Word::Times},
    {"/", Word::Over},
    {"(", Word::LeftParenthesis},
    {")", Word::RightParenthesis},
    {",", Word::Comma},
};

bool isBlank(char character)
{
    return character == ' ' || (character >= '\t' && character <= '\r');
}

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

int hexDigit(char character)
{
    if (isDigit(character)) return character - '0';
    if (character >= 'a' && character <= 'f') return character - 'a' + 10;
    if (character >= 'A' && character <= 'F') return character - 'A' + 10;
    return -1;
}

std::size_t countWhile(std::string_view text, bool (*holds)(char))
{
    std::size_t count = 0;
    while (count < text.size() && holds(text[count]))
        ++count;
    return count;
}

bool isHexDigit(char character)
{
    return hexDigit(character) >= 0;
}

bool startsHex(std::string_view text)
{
    return text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
}

} // namespace

Word SelectorLexer::next()
{
    while (at_ < text_.size() && isBlank(text_[at_]))
        ++at_;
    if (at_ == text_.size()) return Word::End;
    const char first = text_[at_];
    if (first == '\'') return readString();
    if (first == '"') return readBytes();
    if (isDigit(first) || (first == '.' && at_ + 1 < text_.size() && isDigit(text_[at_ + 1]))) return readNumber();
    if (atIdentifierPart()) return readName();
    return readOperator();
}

bool SelectorLexer::atIdentifierPart() const
{
    if (at_ == text_.size()) return false;
    std::size_t behind = at_;
    return isIdentifierPart(nextCharacter(text_, behind));
}

Word SelectorLexer::readString()
{
    word_.clear();
    for (++at_; at_ < text_.size(); ++at_) {
        if (text_[at_] == '\'') {
            ++at_;
            if (at_ == text_.size() || text_[at_] != '\'') return Word::String;
        }
        word_.push_back(text_[at_]);
    }
    return Word::Fault;
}

Word SelectorLexer::readBytes()
{
    word_.clear();
    ++at_;
    const std::size_t end = text_.find('"', at_);
    if (end == std::string_view::npos) return Word::Fault;
    const std::string_view inside = text_.substr(at_, end - at_);
    at_ = end + 1;
    if (!startsHex(inside) || inside.size() % 2 != 0) return Word::Fault;
    for (std::size_t i = 2; i < inside.size(); i += 2) {
        const int high = hexDigit(inside[i]);
        const int low = hexDigit(inside[i + 1]);
        if (high < 0 || low < 0) return Word::Fault;
        word_.push_back(static_cast<char>(high << 4 | low));
    }
    return Word::Bytes;
}

Word SelectorLexer::finishInteger(std::string_view digits, int base)
{
    std::uint64_t magnitude = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), magnitude, base);
    if (error != std::errc() || end != digits.data() + digits.size()) return Word::Fault;
    constexpr auto most = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    if (magnitude > most + 1) return Word::Fault;
    leastInteger_ = magnitude == most + 1;
    number_ = SelectorValue::of(leastInteger_ ? std::numeric_limits<std::int64_t>::min()
                                              : static_cast<std::int64_t>(magnitude));
    if (at_ < text_.size() && (text_[at_] == 'l' || text_[at_] == 'L')) ++at_;
    return atIdentifierPart() ? Word::Fault : Word::Number;
}

Word SelectorLexer::readNumber()
{
    leastInteger_ = false;
    const std::string_view rest = text_.substr(at_);
    if (startsHex(rest)) {
        const std::size_t digits = countWhile(rest.substr(2), isHexDigit);
        at_ += 2 + digits;
        return finishInteger(rest.substr(2, digits), 16);
    }
    const std::size_t whole = countWhile(rest, isDigit);
    std::size_t end = whole;
    bool approximate = end < rest.size() && rest[end] == '.';
    if (approximate) {
        ++end;
        end += countWhile(rest.substr(end), isDigit);
    }
    if (end < rest.size() && (rest[end] == 'e' || rest[end] == 'E')) {
        std::size_t digits = end + 1;
        if (digits < rest.size() && (rest[digits] == '+' || rest[digits] == '-')) ++digits;
        const std::size_t count = countWhile(rest.substr(digits), isDigit);
        if (count == 0) return Word::Fault;
        approximate = true;
        end = digits + count;
    }
    at_ += end;
    // A zero in front of other digits makes them octal.
    if (!approximate) return finishInteger(rest.substr(0, whole), whole > 1 && rest[0] == '0' ? 8 : 10);
    double real = 0;
    const auto [behind, error] = std::from_chars(rest.data(), rest.data() + end, real);
    if (error != std::errc() || behind != rest.data() + end || atIdentifierPart()) return Word::Fault;
    number_ = SelectorValue::of(real);
    return Word::Number;
}

Word SelectorLexer::readName()
{
    const std::size_t start = at_;
    while (at_ < text_.size()) {
        std::size_t behind = at_;
        if (text_[at_] != '.' && !isIdentifierPart(nextCharacter(text_, behind))) break;
        at_ = text_[at_] == '.' ? at_ + 1 : behind;
    }
    word_.assign(text_.substr(start, at_ - start));
    for (const Reserved &reserved : reservedWords)
        if (word_.size() == reserved.text.size() && strncasecmp(word_.c_str(), reserved.text.data(), word_.size()) == 0)
            return reserved.word;
    return Word::Name;
}

Word SelectorLexer::readOperator()
{
    for (const Operator &candidate : operators)
        if (text_.substr(at_).starts_with(candidate.text)) {
            at_ += candidate.text.size();
            return candidate.word;
        }
    return Word::Fault;
}

} // namespace mqrig::qmgr::properties
