#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <iterator>
#include <optional>

#include "qmgr/properties/folder.h"
#include "qmgr/properties/utf8.h"

namespace mqrig::qmgr::properties {
namespace {

struct TypeWord {
    std::string_view word;
    MQLONG type;
};
// The first word of a type is the one that is written.
constexpr TypeWord typeWords[] = {
    {"boolean", MQTYPE_BOOLEAN}, {"bin.hex", MQTYPE_BYTE_STRING},
    {"i1", MQTYPE_INT8},         {"i2", MQTYPE_INT16},
    {"i4", MQTYPE_INT32},        {"i8", MQTYPE_INT64},
    {"int", MQTYPE_INT64},       {"r4", MQTYPE_FLOAT32},
    {"r8", MQTYPE_FLOAT64},      {"string", MQTYPE_STRING},
};

constexpr std::string_view propertyFolders[] = {"usr", "jms",     "mcd", "mqext", "mq_usr", "mq",     "mqps",
                                                "sib", "sib_usr", "ibm", "mqema", "mqtt",   "mq_svc", "sib_context"};

struct Range {
    char32_t first;
    char32_t last;
};
constexpr Range nameStarts[] = {{0xC0, 0xD6},     {0xD8, 0xF6},     {0xF8, 0x2FF},    {0x370, 0x37D},
                                {0x37F, 0x1FFF},  {0x200C, 0x200D}, {0x2070, 0x218F}, {0x2C00, 0x2FEF},
                                {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF}};

bool isElementStart(char32_t character)
{
    if (character < 0x80)
        return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') || character == '_';
    return std::any_of(std::begin(nameStarts), std::end(nameStarts),
                       [=](const Range &range) { return character >= range.first && character <= range.last; });
}

// A colon would be a namespace, a dot is what stands between elements.
bool isElementPart(char32_t character)
{
    return isElementStart(character) || (character >= '0' && character <= '9') || character == '-' ||
           character == 0xB7 || (character >= 0x300 && character <= 0x36F) || character == 0x203F ||
           character == 0x2040;
}

// "_x0024_" at the beginning of the text: the character, and how long the escape is.
struct Escape {
    char32_t character;
    std::size_t length;
};
std::optional<Escape> escapeAt(std::string_view text)
{
    constexpr std::size_t digitsAt = 2;
    constexpr std::size_t mostDigits = 6;
    if (!text.starts_with("_x")) return std::nullopt;
    const std::size_t end = text.find('_', digitsAt);
    if (end == std::string_view::npos || end < digitsAt + 4 || end > digitsAt + mostDigits) return std::nullopt;
    unsigned value = 0;
    const auto read = std::from_chars(text.data() + digitsAt, text.data() + end, value, 16);
    if (read.ptr != text.data() + end || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) return std::nullopt;
    // A dot would part the name: it stays as it is written.
    if (value == '.') return std::nullopt;
    return Escape{value, end + 1};
}

// Whether an underscore could be taken for the beginning of an escape. What follows the digits does not count: it may
// become an underscore itself. A dot's is no escape to anybody.
bool looksLikeEscape(std::string_view text)
{
    constexpr std::size_t fewest = 6;
    if (!text.starts_with("_x") || text.size() < fewest || text.starts_with("_x002E_")) return false;
    return text.substr(2, fewest - 2).find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
}

void appendEscape(char32_t character, std::string &text)
{
    constexpr char digits[] = "0123456789ABCDEF";
    text.append("_x");
    for (int shift = character > 0xFFFF ? 20 : 12; shift >= 0; shift -= 4)
        text.push_back(digits[character >> shift & 0xF]);
    text.push_back('_');
}

} // namespace

bool isPropertyFolder(std::string_view folder)
{
    return std::find(std::begin(propertyFolders), std::end(propertyFolders), folder) != std::end(propertyFolders);
}

std::string_view typeName(MQLONG type)
{
    if (type == MQTYPE_STRING) return {};
    for (const TypeWord &word : typeWords)
        if (word.type == type) return word.word;
    return {};
}

MQLONG typeNamed(std::string_view name)
{
    for (const TypeWord &word : typeWords)
        if (word.word == name) return word.type;
    return MQTYPE_AS_SET;
}

void appendElementName(std::string_view element, std::string &text)
{
    bool first = true;
    for (std::size_t at = 0; at < element.size(); first = false) {
        if (looksLikeEscape(element.substr(at))) {
            appendEscape('_', text);
            ++at;
            continue;
        }
        const std::size_t start = at;
        const char32_t character = nextCharacter(element, at);
        if (first ? isElementStart(character) : isElementPart(character))
            text.append(element.substr(start, at - start));
        else
            appendEscape(character == invalidCharacter ? 0xFFFD : character, text);
    }
}

void appendDecodedName(std::string_view element, std::string &name)
{
    for (std::size_t at = 0; at < element.size();) {
        const std::size_t plain = std::min(element.find_first_of("_.", at), element.size());
        name.append(element.substr(at, plain - at));
        at = plain;
        if (at == element.size()) return;
        if (element[at] == '.') {
            name.append("_x002E_");
            ++at;
        } else if (const auto escape = escapeAt(element.substr(at))) {
            appendCharacter(name, escape->character);
            at += escape->length;
        } else {
            name.push_back('_');
            ++at;
        }
    }
}

} // namespace mqrig::qmgr::properties
