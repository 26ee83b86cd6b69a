#include "qmgr/command/mqsc_selection.h"

#include <algorithm>

#include "qmgr/command/mqsc_layout.h"

namespace mqrig::qmgr::command {
namespace {

using objects::Attribute;
using objects::ObjectKind;

// "TYPE takes QUEUE or HANDLE"
std::string typesOf(std::string_view keyword, std::span<const std::string_view> types)
{
    std::string text = std::string(keyword) + " takes ";
    for (const std::string_view &type : types) {
        if (&type != &types.front()) text += &type == &types.back() ? " or " : ", ";
        text += type;
    }
    return text;
}

} // namespace

bool Selection::asksFor(std::string_view keyword) const
{
    return all || std::ranges::find(keywords, keyword) != keywords.end();
}

Selection readSelection(const MqscCommand &command, const Vocabulary &vocabulary, bool genericName)
{
    Selection selection;
    const auto fail = [&](std::size_t offset, std::string_view reason) {
        selection.ok = false;
        selection.answer = syntaxFault(command.text, Message::SyntaxError, offset, reason);
        return std::move(selection);
    };
    for (const MqscParameter &parameter : command.parameters()) {
        if (vocabulary.filters && parameter.keyword == "WHERE") {
            if (selection.filter) return fail(parameter.offset, "WHERE may be given once");
            ReadFilter read = readFilter(parameter, vocabulary.rows, command.kinds);
            if (!read.ok) return fail(read.offset, read.reason);
            selection.keywords.push_back(read.filter.keyword);
            selection.filter = std::move(read.filter);
            continue;
        }
        const bool open = parameter.keyword == "OPENTYPE";
        const auto &types = open ? vocabulary.openTypes : vocabulary.types;
        if (!types.empty() && (open || parameter.keyword == "TYPE") && parameter.hasValue) {
            const auto type = std::ranges::find(types, parameter.value());
            if (parameter.values.size() != 1 || type == types.end())
                return fail(parameter.valueOffset(), typesOf(parameter.keyword, types));
            (open ? selection.openType : selection.type) = *type;
            continue;
        }
        if (parameter.hasValue) return fail(parameter.valueOffset(), "an attribute to be shown has no value");
        if (parameter.keyword == "ALL") {
            selection.all = true;
            continue;
        }
        const Attribute *attribute = objects::findKeyword(vocabulary.rows, command.kinds, parameter.keyword).attribute;
        if (attribute == nullptr) return fail(parameter.offset, "no attribute of " + std::string(command.objectWord));
        selection.keywords.push_back(attribute->keyword);
    }
    if (!genericName && selection.keywords.empty()) selection.all = true;
    return selection;
}

void showAttributes(std::vector<std::string> &lines, std::span<const Attribute> rows, ObjectKind kind,
                    const Selection &selection, const ValueOf &valueOf)
{
    Layout layout(lines);
    for (const bool identity : {true, false}) {
        for (const Attribute &attribute : rows) {
            const bool identifies = attribute.access == objects::Access::Identity;
            if (identifies != identity || !objects::contains(attribute.kinds, kind)) continue;
            if (identifies || selection.asksFor(attribute.keyword))
                layout.add(objects::formatAttribute(attribute, valueOf(attribute)));
        }
    }
}

} // namespace mqrig::qmgr::command
