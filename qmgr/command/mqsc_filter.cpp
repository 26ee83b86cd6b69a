#include "qmgr/command/mqsc_filter.h"

#include <algorithm>

#include "qmgr/objects/object_name.h"

namespace mqrig::qmgr::command {
namespace {

struct Operator {
    std::string_view word;
    Comparison comparison;
};

constexpr Operator operators[] = {
    {"LT", Comparison::Less},     {"GT", Comparison::Greater},       {"EQ", Comparison::Equal},
    {"NE", Comparison::NotEqual}, {"LE", Comparison::LessOrEqual},   {"GE", Comparison::GreaterOrEqual},
    {"LK", Comparison::Like},     {"NL", Comparison::NotLike},       {"CT", Comparison::Contains},
    {"EX", Comparison::Excludes}, {"CTG", Comparison::ContainsLike}, {"EXG", Comparison::ExcludesLike},
};

const Operator *findOperator(std::string_view word)
{
    for (const Operator &candidate : operators)
        if (candidate.word == word) return &candidate;
    return nullptr;
}

bool contains(const std::string &list, std::string_view wanted, bool generic)
{
    const auto names = objects::splitNames(list);
    return std::any_of(names.begin(), names.end(), [&](std::string_view name) {
        return generic ? objects::matchesGeneric(wanted, name) : name == wanted;
    });
}

bool holds(Comparison comparison, int order)
{
    switch (comparison) {
    case Comparison::Less:
        return order < 0;
    case Comparison::Greater:
        return order > 0;
    case Comparison::Equal:
        return order == 0;
    case Comparison::NotEqual:
        return order != 0;
    case Comparison::LessOrEqual:
        return order <= 0;
    case Comparison::GreaterOrEqual:
        return order >= 0;
    case Comparison::Like:
    case Comparison::NotLike:
    case Comparison::Contains:
    case Comparison::Excludes:
    case Comparison::ContainsLike:
    case Comparison::ExcludesLike:
        break;
    }
    return false;
}

} // namespace

bool isForTexts(Comparison comparison)
{
    return comparison == Comparison::Like || comparison == Comparison::NotLike || isForLists(comparison);
}

bool isForLists(Comparison comparison)
{
    return comparison == Comparison::Contains || comparison == Comparison::Excludes ||
           comparison == Comparison::ContainsLike || comparison == Comparison::ExcludesLike;
}

bool Filter::passes(const InquiredObject &object) const
{
    const objects::Attribute *attribute = objects::findKeyword(object.definition.kind(), keyword).attribute;
    return attribute != nullptr && holdsFor(*attribute, object.value(*attribute));
}

bool Filter::holdsFor(const objects::Attribute &attribute, const objects::AttributeValue &actual) const
{
    if (isForLists(comparison)) {
        const bool generic = comparison == Comparison::ContainsLike || comparison == Comparison::ExcludesLike;
        const bool wanted = comparison == Comparison::Contains || comparison == Comparison::ContainsLike;
        return contains(actual.text, value.text, generic) == wanted;
    }
    if (isForTexts(comparison))
        return objects::matchesGeneric(value.text, actual.text) == (comparison == Comparison::Like);
    if (attribute.isText()) return holds(comparison, actual.text.compare(value.text));
    return holds(comparison, actual.number < value.number ? -1 : actual.number > value.number ? 1 : 0);
}

ReadFilter readFilter(const MqscParameter &where, std::span<const objects::Attribute> rows, objects::ObjectKinds kinds)
{
    ReadFilter read;
    const auto fail = [&](std::size_t offset, std::string_view reason) {
        read.offset = offset;
        read.reason = reason;
        return read;
    };
    if (where.values.size() != 3) return fail(where.valueOffset(), "WHERE takes attribute, operator and value");
    const MqscValue &name = where.values[0];
    const MqscValue &word = where.values[1];
    const MqscValue &value = where.values[2];

    const objects::Attribute *attribute = objects::findKeyword(rows, kinds, name.text).attribute;
    if (attribute == nullptr) return fail(name.offset, "no attribute that WHERE could compare");
    read.filter.keyword = attribute->keyword;
    const Operator *found = findOperator(word.text);
    if (found == nullptr)
        return fail(word.offset, "the operator is one of LT, GT, EQ, NE, LE, GE, LK, NL, CT, EX, CTG, EXG");
    read.filter.comparison = found->comparison;

    const bool list = attribute->value == objects::ValueKind::NameList;
    if (isForLists(found->comparison) != list)
        return fail(word.offset, list ? "lists are compared by CT, EX, CTG, EXG" : "CT, EX, CTG, EXG compare lists");
    if (isForTexts(found->comparison)) {
        if (!attribute->isText()) return fail(word.offset, "LK and NL compare texts");
        read.filter.value.text = value.text;
    } else {
        objects::ParsedValue parsed = objects::parseValue(*attribute, value.text);
        if (!parsed) return fail(value.offset, "no value of that attribute");
        read.filter.value = std::move(parsed.value);
    }
    read.ok = true;
    return read;
}

} // namespace mqrig::qmgr::command
