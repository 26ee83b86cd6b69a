// What a DISPLAY command asks for: attributes by keyword, ALL, WHERE, TYPE.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "qmgr/command/mqsc_commands.h"
#include "qmgr/command/mqsc_filter.h"
#include "qmgr/objects/attribute.h"

namespace mqrig::qmgr::command {

struct Selection {
    bool ok = true;
    bool all = false;
    std::string_view type;                  // what TYPE(...) names; empty without it
    std::string_view openType;              // the same of OPENTYPE(...)
    std::vector<std::string_view> keywords; // of the attributes asked for, as their rows have them
    std::optional<Filter> filter;
    CommandAnswer answer; // the fault

    bool asksFor(std::string_view keyword) const;
};

// The attributes that a command may ask for: rows of the attribute table, or of a table of its own.
struct Vocabulary {
    std::span<const objects::Attribute> rows = objects::attributes();
    bool filters = true;                              // WHERE is understood
    std::span<const std::string_view> types = {};     // what TYPE takes, if it is understood
    std::span<const std::string_view> openTypes = {}; // what OPENTYPE takes, likewise
};

// Reads the parameters of a DISPLAY command. `genericName`: whether the name stands for several objects; of one alone
// everything is shown where nothing is asked for.
Selection readSelection(const MqscCommand &command, const Vocabulary &vocabulary, bool genericName);

// Adds an object's attributes to an answer: what it is stands first, the others follow in the order of their rows.
using ValueOf = std::function<objects::AttributeValue(const objects::Attribute &attribute)>;
void showAttributes(std::vector<std::string> &lines, std::span<const objects::Attribute> rows, objects::ObjectKind kind,
                    const Selection &selection, const ValueOf &valueOf);

// The answer with an entry for each thing that passes the filter; without lines if none does.
template <class Things, class ValueOfThing>
CommandAnswer showAll(const Things &things, std::span<const objects::Attribute> rows, objects::ObjectKind kind,
                      Message details, const Selection &selection, const ValueOfThing &valueOfThing)
{
    CommandAnswer answer;
    for (const auto &thing : things) {
        const auto value = [&](const objects::Attribute &attribute) { return valueOfThing(thing, attribute); };
        if (selection.filter) {
            const objects::Attribute &compared =
                *objects::findKeyword(rows, objects::kinds(kind), selection.filter->keyword).attribute;
            if (!selection.filter->holdsFor(compared, value(compared))) continue;
        }
        answer.lines.push_back(formatMessage(details, {}));
        showAttributes(answer.lines, rows, kind, selection, value);
    }
    return answer;
}

} // namespace mqrig::qmgr::command
