// Selection strings: conditions on the properties of a message.
//
//   color = 'red' AND (size BETWEEN 10 AND 20 OR Root.MQMD.Priority > 5) AND NOT owner IS NULL
//
// The language is the conditional part of SQL92 as the MQI has it: comparison, arithmetic, AND, OR, NOT, BETWEEN, IN,
// LIKE, IS NULL; strings in single quotes, bytes as "0x0AFC23", numbers in decimal, octal and hexadecimal. A string is
// read once and becomes a program for a machine with a stack: what runs for each message neither reads text nor calls
// itself.
//
// How to add an operator: its word in selector_lexer.h, the floor of the grammar that it belongs to in
// selector_parser.cpp, an Operation here, and what it makes of its operands in selector.cpp.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cmqc.h"
#include "qmgr/properties/selector_value.h"

namespace mqrig::qmgr::properties {

class SelectorParser;

class Selector {
public:
    // Parentheses inside parentheses: more than anybody writes, and few enough for the stack.
    static constexpr std::size_t deepest = 100;

    // `text`: UTF-8, MQ_SELECTOR_LENGTH bytes at most. MQRC_NONE; MQRC_SELECTOR_SYNTAX_ERROR;
    // MQRC_SELECTOR_ALWAYS_FALSE for one that asks for no property and is not true.
    static MQLONG compile(std::string_view text, Selector &selector);

    // The names that it asks for, each once, as they were written.
    const std::vector<std::string> &names() const { return names_; }

    // Whether it is true, not false or unknown. `values`: of the names, in their order.
    bool holds(std::span<const SelectorValue> values) const { return evaluate(values).isTrue(); }
    SelectorValue evaluate(std::span<const SelectorValue> values) const;

private:
    friend class SelectorParser;

    enum class Operation : std::uint8_t {
        Literal, // operand: which literal
        Name,    // operand: which name
        Negate,
        Calculate, // operand: Arithmetic
        Compare,   // operand: Comparison
        Between,
        In,   // operand: which list
        Like, // operand: which pattern
        IsNull,
        Not,
        And,
        Or,
    };
    struct Step {
        Operation operation;
        std::uint32_t operand;
    };
    struct Literal {
        SelectorValue value;
        std::string text; // of strings and bytes
        SelectorValue get() const;
    };

    std::vector<Step> steps_;
    std::vector<Literal> literals_;
    std::vector<std::string> names_;
    std::vector<std::vector<std::string>> lists_; // sorted
    std::vector<LikePattern> patterns_;
    std::size_t room_ = 0; // that the stack needs
};

} // namespace mqrig::qmgr::properties
