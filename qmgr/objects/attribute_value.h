// Values of attributes as texts of the command language: reading, checking and writing them by their table row.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cmqc.h"
#include "qmgr/objects/attribute.h"

namespace mqrig::qmgr::objects {

// One value: `number` for integers, `text` (without trailing blanks) for texts; the names of a list stand in one text,
// with commas between them.
struct AttributeValue {
    MQLONG number = 0;
    std::string text;

    bool operator==(const AttributeValue &) const = default;
};

enum class ValueFault {
    None,
    NotANumber,   // a number is wanted
    OutOfRange,   // outside low..high, or beyond 32 bits
    UnknownWord,  // none of the row's keywords
    TooLong,      // longer than the field
    BadName,      // breaks the rules for names, or a blank one among others
    TooMany,      // more names than a list has
    BadCharacter, // a zero byte or another control character inside a text
};

struct ParsedValue {
    ValueFault fault = ValueFault::None;
    AttributeValue value;

    explicit operator bool() const { return fault == ValueFault::None; }
};

// Reads what stood between the parentheses, quotes removed. Not for flags: their keyword is their value.
ParsedValue parseValue(const Attribute &attribute, std::string_view text);

// The names of a list, in their order; none in the empty text.
std::vector<std::string_view> splitNames(std::string_view list);

// Judges a value that came as a number or a field (MQSET, PCF).
ValueFault checkNumber(const Attribute &attribute, MQLONG number);
ValueFault checkText(const Attribute &attribute, std::string_view text);

// "MAXDEPTH(5000)", "PUT(ENABLED)", "NOSHARE", "DESCR( )". A number that the row has no keyword for is shown as it is.
std::string formatAttribute(const Attribute &attribute, const AttributeValue &value);

} // namespace mqrig::qmgr::objects
