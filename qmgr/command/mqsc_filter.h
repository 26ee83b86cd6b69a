// DISPLAY's WHERE(attribute operator value): which objects are shown.
//
// Operators: LT GT EQ NE LE GE on every attribute but lists, LK and NL (like, not like: a value that may end with '*')
// on texts, CT and EX (contains, excludes a name) and CTG and EXG (a name like that) on lists.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "qmgr/command/mqsc_parser.h"
#include "qmgr/command/object_commands.h"

namespace mqrig::qmgr::command {

enum class Comparison {
    Less,
    Greater,
    Equal,
    NotEqual,
    LessOrEqual,
    GreaterOrEqual,
    Like,
    NotLike,
    Contains,
    Excludes,
    ContainsLike,
    ExcludesLike,
};
bool isForTexts(Comparison comparison); // for texts and no numbers
bool isForLists(Comparison comparison); // for lists and nothing else

struct Filter {
    std::string_view keyword; // of the attribute; what has no such attribute does not pass
    Comparison comparison = Comparison::Equal;
    objects::AttributeValue value;

    bool passes(const InquiredObject &object) const;
    bool holdsFor(const objects::Attribute &attribute, const objects::AttributeValue &actual) const;
};

struct ReadFilter {
    bool ok = false;
    Filter filter;
    std::size_t offset = 0;  // of the fault, in the command
    std::string_view reason; // of the fault
};
// `rows`: the attributes that may be compared, of these kinds of object.
ReadFilter readFilter(const MqscParameter &where, std::span<const objects::Attribute> rows, objects::ObjectKinds kinds);

} // namespace mqrig::qmgr::command
