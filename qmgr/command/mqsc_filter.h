// DISPLAY's WHERE(attribute operator value): which objects are shown.
//
// Operators: LT GT EQ NE LE GE on every attribute, LK and NK (like, not like: a value that may end with '*') on texts.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "qmgr/command/mqsc_parser.h"
#include "qmgr/command/object_commands.h"

namespace mqrig::qmgr::command {

enum class Comparison { Less, Greater, Equal, NotEqual, LessOrEqual, GreaterOrEqual, Like, NotLike };

struct Filter {
    std::string_view keyword; // of the attribute; what has no such attribute does not pass
    Comparison comparison = Comparison::Equal;
    objects::AttributeValue value;

    bool passes(const InquiredObject &object) const;
};

struct ReadFilter {
    bool ok = false;
    Filter filter;
    std::size_t offset = 0;  // of the fault, in the command
    std::string_view reason; // of the fault
};
ReadFilter readFilter(const MqscParameter &where, objects::ObjectKinds kinds);

} // namespace mqrig::qmgr::command
