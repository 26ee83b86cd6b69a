// The words of a selection string.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "qmgr/properties/selector_value.h"

namespace mqrig::qmgr::properties {

enum class Word : std::uint8_t {
    End,
    Fault,
    Name,   // `text`: an identifier
    String, // `text`: without its quotes
    Bytes,  // `text`: what "0x..." stands for
    Number, // `number`
    // Operators and their like
    LeftParenthesis,
    RightParenthesis,
    Comma,
    Plus,
    Minus,
    Times,
    Over,
    Equal,
    NotEqual,
    Less,
    LessOrEqual,
    Greater,
    GreaterOrEqual,
    // Reserved words
    And,
    Or,
    Not,
    Between,
    Like,
    In,
    Is,
    Escape,
    Null,
    True,
    False,
};

class SelectorLexer {
public:
    // UTF-8, alive as long as the lexer.
    explicit SelectorLexer(std::string_view text) : text_(text) {}

    // Reads the next word.
    Word next();

    const std::string &text() const { return word_; }
    // Of a number: its magnitude is 2^63, which only a minus sign in front makes one.
    bool isLeastInteger() const { return leastInteger_; }
    const SelectorValue &number() const { return number_; }

private:
    Word readString();
    Word readBytes();
    Word readNumber();
    Word readName();
    Word readOperator();
    Word finishInteger(std::string_view digits, int base);
    bool atIdentifierPart() const;

    std::string_view text_;
    std::size_t at_ = 0;
    std::string word_;
    SelectorValue number_;
    bool leastInteger_ = false;
};

} // namespace mqrig::qmgr::properties
