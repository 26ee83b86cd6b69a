// Selector::compile: a floor of the grammar is a function, and each leaves steps that push one value.
//
//   condition  = conjunction { OR conjunction }
//   conjunction = negation { AND negation }
//   negation   = { NOT } predicate
//   predicate  = sum [ comparison sum | [NOT] BETWEEN sum AND sum | [NOT] IN ( strings ) | [NOT] LIKE string [ESCAPE
//                character] | IS [NOT] NULL ]
//   sum        = product { (+ | -) product }
//   product    = factor { (* | /) factor }
//   factor     = { + | - } ( literal | name | ( condition ) )
//
// Only parentheses call the first floor again, and how deep is limited. What a step pushes is known as far as it can be
// known without a message: operands that can never have the type that their operator wants are faults.
#include <algorithm>
#include <limits>
#include <utility>

#include "qmgr/properties/property_name.h"
#include "qmgr/properties/selector.h"
#include "qmgr/properties/selector_lexer.h"
#include "qmgr/properties/utf8.h"

namespace mqrig::qmgr::properties {

class SelectorParser {
public:
    SelectorParser(std::string_view text, Selector &selector) : lexer_(text), selector_(selector) { advance(); }

    bool parse() { return isTruth(condition()) && word_ == Word::End; }

private:
    using Operation = Selector::Operation;
    enum class Type { Fault, Any, Truth, Number, Text, Bytes };

    static bool isTruth(Type type) { return type == Type::Truth || type == Type::Any; }
    static bool isNumber(Type type) { return type == Type::Number || type == Type::Any; }

    void advance() { word_ = lexer_.next(); }
    bool accept(Word word)
    {
        if (word_ != word) return false;
        advance();
        return true;
    }

    void add(Operation operation, std::size_t operand = 0)
    {
        selector_.steps_.push_back({operation, static_cast<std::uint32_t>(operand)});
    }
    void push(Operation operation, std::size_t operand)
    {
        add(operation, operand);
        selector_.room_ = std::max(selector_.room_, ++height_);
    }
    // A step that makes one value of `operands`.
    Type combine(Type type, std::size_t operands, Operation operation, std::size_t operand = 0)
    {
        add(operation, operand);
        height_ -= operands - 1;
        return type;
    }

    Type condition()
    {
        Type left = conjunction();
        while (word_ == Word::Or) {
            if (!isTruth(left)) return Type::Fault;
            advance();
            if (!isTruth(conjunction())) return Type::Fault;
            left = combine(Type::Truth, 2, Operation::Or);
        }
        return left;
    }

    Type conjunction()
    {
        Type left = negation();
        while (word_ == Word::And) {
            if (!isTruth(left)) return Type::Fault;
            advance();
            if (!isTruth(negation())) return Type::Fault;
            left = combine(Type::Truth, 2, Operation::And);
        }
        return left;
    }

    Type negation()
    {
        std::size_t negations = 0;
        while (accept(Word::Not))
            ++negations;
        const Type type = predicate();
        if (negations == 0) return type;
        if (!isTruth(type)) return Type::Fault;
        for (; negations > 0; --negations)
            combine(Type::Truth, 1, Operation::Not);
        return Type::Truth;
    }

    Type predicate()
    {
        const bool named = word_ == Word::Name;
        const std::size_t before = selector_.steps_.size();
        const Type left = sum();
        if (left == Type::Fault) return left;
        const bool nameAlone = named && selector_.steps_.size() == before + 1;
        if (word_ >= Word::Equal && word_ <= Word::GreaterOrEqual) return comparison(left);
        if (accept(Word::Is)) return nameAlone ? isNull() : Type::Fault;
        const bool negated = accept(Word::Not);
        Type type = Type::Fault;
        if (accept(Word::Between))
            type = isNumber(left) ? between() : Type::Fault;
        else if (accept(Word::In))
            type = nameAlone ? in() : Type::Fault;
        else if (accept(Word::Like))
            type = nameAlone ? like() : Type::Fault;
        else
            return negated ? Type::Fault : left;
        if (type != Type::Fault && negated) combine(Type::Truth, 1, Operation::Not);
        return type;
    }

    Type comparison(Type left)
    {
        static_assert(static_cast<int>(Word::GreaterOrEqual) - static_cast<int>(Word::Equal) ==
                      static_cast<int>(Comparison::GreaterOrEqual));
        const auto kind = static_cast<Comparison>(static_cast<int>(word_) - static_cast<int>(Word::Equal));
        advance();
        const Type right = sum();
        if (right == Type::Fault) return right;
        const bool ordered = kind != Comparison::Equal && kind != Comparison::NotEqual;
        if (ordered && (!isNumber(left) || !isNumber(right))) return Type::Fault;
        return combine(Type::Truth, 2, Operation::Compare, static_cast<std::size_t>(kind));
    }

    Type isNull()
    {
        const bool negated = accept(Word::Not);
        if (!accept(Word::Null)) return Type::Fault;
        combine(Type::Truth, 1, Operation::IsNull);
        return negated ? combine(Type::Truth, 1, Operation::Not) : Type::Truth;
    }

    Type between()
    {
        if (!isNumber(sum()) || !accept(Word::And) || !isNumber(sum())) return Type::Fault;
        return combine(Type::Truth, 3, Operation::Between);
    }

    Type in()
    {
        if (!accept(Word::LeftParenthesis)) return Type::Fault;
        std::vector<std::string> list;
        do {
            if (word_ != Word::String) return Type::Fault;
            list.push_back(lexer_.text());
            advance();
        } while (accept(Word::Comma));
        if (!accept(Word::RightParenthesis)) return Type::Fault;
        std::sort(list.begin(), list.end());
        selector_.lists_.push_back(std::move(list));
        return combine(Type::Truth, 1, Operation::In, selector_.lists_.size() - 1);
    }

    Type like()
    {
        if (word_ != Word::String) return Type::Fault;
        const std::string text = lexer_.text();
        advance();
        char32_t escape = 0;
        if (accept(Word::Escape)) {
            if (word_ != Word::String || countCharacters(lexer_.text()) != 1) return Type::Fault;
            std::size_t at = 0;
            escape = nextCharacter(lexer_.text(), at);
            advance();
        }
        LikePattern pattern;
        if (!LikePattern::parse(text, escape, pattern)) return Type::Fault;
        selector_.patterns_.push_back(std::move(pattern));
        return combine(Type::Truth, 1, Operation::Like, selector_.patterns_.size() - 1);
    }

    Type sum()
    {
        Type left = product();
        while (word_ == Word::Plus || word_ == Word::Minus) {
            const Arithmetic kind = word_ == Word::Plus ? Arithmetic::Add : Arithmetic::Subtract;
            if (!isNumber(left)) return Type::Fault;
            advance();
            if (!isNumber(product())) return Type::Fault;
            left = combine(Type::Number, 2, Operation::Calculate, static_cast<std::size_t>(kind));
        }
        return left;
    }

    Type product()
    {
        Type left = factor();
        while (word_ == Word::Times || word_ == Word::Over) {
            const Arithmetic kind = word_ == Word::Times ? Arithmetic::Multiply : Arithmetic::Divide;
            if (!isNumber(left)) return Type::Fault;
            advance();
            if (!isNumber(factor())) return Type::Fault;
            left = combine(Type::Number, 2, Operation::Calculate, static_cast<std::size_t>(kind));
        }
        return left;
    }

    Type factor()
    {
        Word sign = Word::End; // the last one
        bool negative = false;
        while (word_ == Word::Minus || word_ == Word::Plus) {
            sign = word_;
            negative ^= sign == Word::Minus;
            advance();
        }
        if (word_ == Word::Number && lexer_.isLeastInteger()) {
            // 2^63 is no integer; the lexer has read it with the minus in front, which makes it the least one.
            if (sign != Word::Minus) return Type::Fault;
            negative = !negative;
        }
        const Type type = primary();
        if (sign == Word::End) return type;
        if (!isNumber(type)) return Type::Fault;
        return negative ? combine(Type::Number, 1, Operation::Negate) : Type::Number;
    }

    Type primary()
    {
        const std::size_t literals = selector_.literals_.size();
        switch (word_) {
        case Word::LeftParenthesis:
            return parenthesis();
        case Word::Name:
            return name();
        case Word::Number:
            selector_.literals_.push_back({lexer_.number(), {}});
            break;
        case Word::String:
            selector_.literals_.push_back({SelectorValue::ofText({}), lexer_.text()});
            break;
        case Word::Bytes:
            selector_.literals_.push_back({SelectorValue::ofBytes({}), lexer_.text()});
            break;
        case Word::True:
        case Word::False:
            selector_.literals_.push_back({SelectorValue::of(word_ == Word::True), {}});
            break;
        default:
            return Type::Fault;
        }
        const Type type = typeOf(word_);
        push(Operation::Literal, literals);
        advance();
        return type;
    }

    static Type typeOf(Word literal)
    {
        switch (literal) {
        case Word::Number:
            return Type::Number;
        case Word::String:
            return Type::Text;
        case Word::Bytes:
            return Type::Bytes;
        default:
            return Type::Truth;
        }
    }

    Type parenthesis()
    {
        if (depth_ == Selector::deepest) return Type::Fault;
        ++depth_;
        advance();
        const Type type = condition();
        --depth_;
        return accept(Word::RightParenthesis) ? type : Type::Fault;
    }

    Type name()
    {
        std::string canonical;
        if (canonicalName(lexer_.text(), NameCheck::Shape, canonical) != MQRC_NONE) return Type::Fault;
        std::vector<std::string> &names = selector_.names_;
        const auto found = std::find(names.begin(), names.end(), lexer_.text());
        const auto index = static_cast<std::size_t>(found - names.begin());
        if (found == names.end()) names.push_back(lexer_.text());
        push(Operation::Name, index);
        advance();
        return Type::Any;
    }

    SelectorLexer lexer_;
    Selector &selector_;
    Word word_ = Word::End;
    std::size_t depth_ = 0;
    std::size_t height_ = 0; // of the stack behind the last step
};

MQLONG Selector::compile(std::string_view text, Selector &selector)
{
    selector = Selector();
    if (text.size() > MQ_SELECTOR_LENGTH || !countCharacters(text)) return MQRC_SELECTOR_SYNTAX_ERROR;
    if (!SelectorParser(text, selector).parse()) return MQRC_SELECTOR_SYNTAX_ERROR;
    if (selector.names_.empty() && !selector.holds({})) return MQRC_SELECTOR_ALWAYS_FALSE;
    return MQRC_NONE;
}

} // namespace mqrig::qmgr::properties
