// The grammar of MQSC: a command's text into its words and values, without judging what they mean.
//
//   command   = verb object { [","] parameter } [";"]
//   object    = word [ "(" value ")" ]
//   parameter = word [ "(" [ value { [","] value } ] ")" ]
//   value     = quoted | bare
//
// Most parameters have one value; only their reader knows. Words are taken in upper case. A bare value is folded to
// upper case and ends at a blank, comma or parenthesis; a quoted one stands between single quotes, a doubled quote
// inside stands for one, and it is kept as it is.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace mqrig::qmgr::command {

struct MqscValue {
    std::string text;
    std::size_t offset = 0; // where it begins in the command
    bool quoted = false;
};

struct MqscParameter {
    std::string keyword;
    std::size_t offset = 0; // where the keyword begins in the command
    bool hasValue = false;  // parentheses followed
    std::vector<MqscValue> values;

    // The only value; the empty text for "KEYWORD()".
    std::string_view value() const { return values.empty() ? std::string_view() : values.front().text; }
    std::size_t valueOffset() const { return values.empty() ? offset : values.front().offset; }
};

struct MqscSyntaxFault {
    std::size_t offset = 0; // where in the command
    std::string reason;     // a phrase: "a closing quote is missing"
};

struct ParsedCommand {
    std::vector<MqscParameter> words; // verb first, then object, then parameters
    bool ok = true;
    MqscSyntaxFault fault;
};

ParsedCommand parseMqsc(std::string_view text);

} // namespace mqrig::qmgr::command
