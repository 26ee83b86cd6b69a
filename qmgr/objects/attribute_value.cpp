#include "qmgr/objects/attribute_value.h"

#include <algorithm>
#include <charconv>

#include "qmgr/objects/object_name.h"

namespace mqrig::qmgr::objects {
namespace {

bool sameWord(std::string_view word, std::string_view typed)
{
    return std::equal(word.begin(), word.end(), typed.begin(), typed.end(),
                      [](char a, char b) { return a == (b >= 'a' && b <= 'z' ? static_cast<char>(b - 32) : b); });
}

const Word *findWord(const Attribute &attribute, std::string_view typed)
{
    for (const Word &word : attribute.words)
        if (sameWord(word.keyword, typed)) return &word;
    return nullptr;
}

const Word *findWord(const Attribute &attribute, MQLONG number)
{
    for (const Word &word : attribute.words)
        if (word.value == number) return &word;
    return nullptr;
}

bool isControl(char c)
{
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7f;
}

std::string_view withoutTrailingBlanks(std::string_view text)
{
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    return text;
}

ValueFault checkNames(std::string_view list)
{
    const std::vector<std::string_view> names = splitNames(list);
    if (names.size() > static_cast<std::size_t>(maxNames)) return ValueFault::TooMany;
    for (const std::string_view name : names) {
        const NameCheck check = checkObjectName(name);
        if (check.fault == NameFault::TooLong) return ValueFault::TooLong;
        if (!check) return ValueFault::BadName;
    }
    return ValueFault::None;
}

ParsedValue parseNumber(const Attribute &attribute, std::string_view text)
{
    MQLONG number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc::result_out_of_range) return {ValueFault::OutOfRange, {}};
    if (error != std::errc() || end != text.data() + text.size()) return {ValueFault::NotANumber, {}};
    return {checkNumber(attribute, number), {number, {}}};
}

} // namespace

ParsedValue parseValue(const Attribute &attribute, std::string_view text)
{
    text = withoutTrailingBlanks(text);
    switch (attribute.value) {
    case ValueKind::Number:
        if (const Word *word = findWord(attribute, text)) return {ValueFault::None, {word->value, {}}};
        return parseNumber(attribute, text);
    case ValueKind::Keyword:
    case ValueKind::Flag:
        if (const Word *word = findWord(attribute, text)) return {ValueFault::None, {word->value, {}}};
        return {ValueFault::UnknownWord, {}};
    case ValueKind::Text:
    case ValueKind::Name:
    case ValueKind::NameList:
        break;
    }
    const ValueFault fault = checkText(attribute, text);
    if (fault != ValueFault::None) return {fault, {}};
    return {ValueFault::None, {0, std::string(text)}};
}

std::vector<std::string_view> splitNames(std::string_view list)
{
    std::vector<std::string_view> names;
    while (!list.empty()) {
        const std::size_t comma = list.find(',');
        names.push_back(list.substr(0, comma));
        if (comma == std::string_view::npos) break;
        list.remove_prefix(comma + 1);
        if (list.empty()) names.emplace_back();
    }
    return names;
}

ValueFault checkNumber(const Attribute &attribute, MQLONG number)
{
    if (findWord(attribute, number) != nullptr) return ValueFault::None;
    if (attribute.value != ValueKind::Number) return ValueFault::UnknownWord;
    return number < attribute.low || number > attribute.high ? ValueFault::OutOfRange : ValueFault::None;
}

ValueFault checkText(const Attribute &attribute, std::string_view text)
{
    text = withoutTrailingBlanks(text);
    if (attribute.value == ValueKind::NameList) return checkNames(text);
    if (text.size() > static_cast<std::size_t>(attribute.textLength)) return ValueFault::TooLong;
    if (std::any_of(text.begin(), text.end(), isControl)) return ValueFault::BadCharacter;
    if (attribute.value == ValueKind::Name && !text.empty() && !checkObjectName(text)) return ValueFault::BadName;
    return ValueFault::None;
}

std::string formatAttribute(const Attribute &attribute, const AttributeValue &value)
{
    std::string shown;
    if (attribute.isText()) {
        shown = value.text.empty() ? " " : value.text;
        // Texts of programs, such as topic strings, may have anything in them.
        for (char &c : shown)
            if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) c = '.';
    } else if (const Word *word = findWord(attribute, value.number)) {
        if (attribute.value == ValueKind::Flag) return std::string(word->keyword);
        shown = word->keyword;
    } else {
        shown = std::to_string(value.number);
    }
    std::string answer(attribute.keyword);
    answer += '(';
    answer += shown;
    answer += ')';
    return answer;
}

} // namespace mqrig::qmgr::objects
