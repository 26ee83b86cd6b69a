#include "qmgr/properties/selector.h"

#include <algorithm>

namespace mqrig::qmgr::properties {
namespace {

using Kind = SelectorValue::Kind;

SelectorValue isAmong(const SelectorValue &value, const std::vector<std::string> &list)
{
    if (value.isUnknown()) return {};
    return SelectorValue::of(value.kind == Kind::Text && std::binary_search(list.begin(), list.end(), value.text));
}

SelectorValue isLike(const SelectorValue &value, const LikePattern &pattern)
{
    if (value.isUnknown()) return {};
    return SelectorValue::of(value.kind == Kind::Text && pattern.matches(value.text));
}

SelectorValue isBetween(const SelectorValue &value, const SelectorValue &low, const SelectorValue &high)
{
    return both(compare(Comparison::GreaterOrEqual, value, low), compare(Comparison::LessOrEqual, value, high));
}

} // namespace

SelectorValue Selector::Literal::get() const
{
    SelectorValue got = value;
    if (value.kind == Kind::Text || value.kind == Kind::Bytes) got.text = text;
    return got;
}

SelectorValue Selector::evaluate(std::span<const SelectorValue> values) const
{
    std::vector<SelectorValue> stack;
    stack.reserve(room_);
    const auto pop = [&stack] {
        const SelectorValue value = stack.back();
        stack.pop_back();
        return value;
    };
    for (const Step &step : steps_) {
        switch (step.operation) {
        case Operation::Literal:
            stack.push_back(literals_[step.operand].get());
            continue;
        case Operation::Name:
            stack.push_back(values[step.operand]);
            continue;
        default:
            break;
        }
        const SelectorValue last = pop();
        switch (step.operation) {
        case Operation::Negate:
            stack.push_back(negate(last));
            break;
        case Operation::Calculate:
            stack.back() = calculate(static_cast<Arithmetic>(step.operand), stack.back(), last);
            break;
        case Operation::Compare:
            stack.back() = compare(static_cast<Comparison>(step.operand), stack.back(), last);
            break;
        case Operation::Between: {
            const SelectorValue low = pop();
            stack.back() = isBetween(stack.back(), low, last);
            break;
        }
        case Operation::In:
            stack.push_back(isAmong(last, lists_[step.operand]));
            break;
        case Operation::Like:
            stack.push_back(isLike(last, patterns_[step.operand]));
            break;
        case Operation::IsNull:
            stack.push_back(SelectorValue::of(last.isUnknown()));
            break;
        case Operation::Not:
            stack.push_back(opposite(last));
            break;
        case Operation::And:
            stack.back() = both(stack.back(), last);
            break;
        case Operation::Or:
            stack.back() = either(stack.back(), last);
            break;
        case Operation::Literal:
        case Operation::Name:
            break;
        }
    }
    return stack.back();
}

} // namespace mqrig::qmgr::properties
