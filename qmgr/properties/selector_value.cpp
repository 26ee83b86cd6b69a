#include "qmgr/properties/selector_value.h"

#include <limits>
#include <optional>

#include "qmgr/properties/utf8.h"

namespace mqrig::qmgr::properties {
namespace {

using Kind = SelectorValue::Kind;

// Items of a pattern that are no characters.
constexpr char32_t anyCharacter = 0x110000;
constexpr char32_t anyText = 0x110001;

double realOf(const SelectorValue &value)
{
    return value.kind == Kind::Real ? value.real : static_cast<double>(value.integer);
}

// Nothing where the result does not fit.
std::optional<std::int64_t> calculateIntegers(Arithmetic operation, std::int64_t left, std::int64_t right)
{
    std::int64_t result = 0;
    bool overflow = false;
    switch (operation) {
    case Arithmetic::Add:
        overflow = __builtin_add_overflow(left, right, &result);
        break;
    case Arithmetic::Subtract:
        overflow = __builtin_sub_overflow(left, right, &result);
        break;
    case Arithmetic::Multiply:
        overflow = __builtin_mul_overflow(left, right, &result);
        break;
    case Arithmetic::Divide:
        overflow = left == std::numeric_limits<std::int64_t>::min() && right == -1;
        if (!overflow) result = left / right;
        break;
    }
    if (overflow) return std::nullopt;
    return result;
}

double calculateReals(Arithmetic operation, double left, double right)
{
    switch (operation) {
    case Arithmetic::Add:
        return left + right;
    case Arithmetic::Subtract:
        return left - right;
    case Arithmetic::Multiply:
        return left * right;
    default:
        return left / right;
    }
}

// -1, 0, 1; nothing where one of them is no number at all. An integer and a double meet in a type that holds both.
std::optional<int> orderNumbers(const SelectorValue &left, const SelectorValue &right)
{
    const auto order = [](auto a, auto b) -> std::optional<int> {
        if (a < b) return -1;
        if (a > b) return 1;
        if (a == b) return 0;
        return std::nullopt;
    };
    if (left.kind == Kind::Integer && right.kind == Kind::Integer) return order(left.integer, right.integer);
    const auto wide = [](const SelectorValue &value) {
        return value.kind == Kind::Integer ? static_cast<long double>(value.integer)
                                           : static_cast<long double>(value.real);
    };
    return order(wide(left), wide(right));
}

bool holds(Comparison comparison, std::optional<int> order)
{
    if (!order) return comparison == Comparison::NotEqual;
    switch (comparison) {
    case Comparison::Equal:
        return *order == 0;
    case Comparison::NotEqual:
        return *order != 0;
    case Comparison::Less:
        return *order < 0;
    case Comparison::LessOrEqual:
        return *order <= 0;
    case Comparison::Greater:
        return *order > 0;
    default:
        return *order >= 0;
    }
}

} // namespace

SelectorValue calculate(Arithmetic operation, const SelectorValue &left, const SelectorValue &right)
{
    if (!left.isNumber() || !right.isNumber()) return {};
    if (left.kind == Kind::Integer && right.kind == Kind::Integer) {
        if (operation == Arithmetic::Divide && right.integer == 0) return {};
        if (const auto result = calculateIntegers(operation, left.integer, right.integer))
            return SelectorValue::of(*result);
    }
    if (operation == Arithmetic::Divide && realOf(right) == 0) return {};
    return SelectorValue::of(calculateReals(operation, realOf(left), realOf(right)));
}

SelectorValue negate(const SelectorValue &value)
{
    return calculate(Arithmetic::Subtract, SelectorValue::of(std::int64_t{0}), value);
}

SelectorValue compare(Comparison comparison, const SelectorValue &left, const SelectorValue &right)
{
    if (left.isUnknown() || right.isUnknown()) return {};
    if (left.isNumber() && right.isNumber()) return SelectorValue::of(holds(comparison, orderNumbers(left, right)));
    const bool ordered = comparison != Comparison::Equal && comparison != Comparison::NotEqual;
    if (left.kind != right.kind || ordered) return SelectorValue::of(false);
    const bool equal = left.kind == Kind::Boolean ? left.boolean == right.boolean : left.text == right.text;
    return SelectorValue::of(equal == (comparison == Comparison::Equal));
}

SelectorValue both(const SelectorValue &left, const SelectorValue &right)
{
    if (left.isFalse() || right.isFalse()) return SelectorValue::of(false);
    return left.isTrue() && right.isTrue() ? SelectorValue::of(true) : SelectorValue();
}

SelectorValue either(const SelectorValue &left, const SelectorValue &right)
{
    if (left.isTrue() || right.isTrue()) return SelectorValue::of(true);
    return left.isFalse() && right.isFalse() ? SelectorValue::of(false) : SelectorValue();
}

SelectorValue opposite(const SelectorValue &value)
{
    return value.kind == Kind::Boolean ? SelectorValue::of(!value.boolean) : SelectorValue();
}

bool LikePattern::parse(std::string_view text, char32_t escape, LikePattern &pattern)
{
    pattern.items_.clear();
    std::size_t at = 0;
    while (at < text.size()) {
        const char32_t character = nextCharacter(text, at);
        if (escape != 0 && character == escape) {
            if (at == text.size()) return false;
            pattern.items_.push_back(nextCharacter(text, at));
        } else if (character == '_') {
            pattern.items_.push_back(anyCharacter);
        } else if (character != '%') {
            pattern.items_.push_back(character);
        } else if (pattern.items_.empty() || pattern.items_.back() != anyText) {
            pattern.items_.push_back(anyText);
        }
    }
    return true;
}

// What follows the last "%" is tried further and further along; an earlier one need not be tried again.
bool LikePattern::matches(std::string_view text) const
{
    std::size_t at = 0;
    std::size_t item = 0;
    std::optional<std::size_t> afterAny; // the item behind the last "%", and where in the text it was tried
    std::size_t tried = 0;
    while (at < text.size()) {
        std::size_t next = at;
        const char32_t character = nextCharacter(text, next);
        if (item < items_.size() && items_[item] == anyText) {
            afterAny = ++item;
            tried = at;
        } else if (item < items_.size() && (items_[item] == anyCharacter || items_[item] == character)) {
            ++item;
            at = next;
        } else if (afterAny) {
            item = *afterAny;
            (void)nextCharacter(text, tried);
            at = tried;
        } else {
            return false;
        }
    }
    if (item < items_.size() && items_[item] == anyText) ++item;
    return item == items_.size();
}

} // namespace mqrig::qmgr::properties
