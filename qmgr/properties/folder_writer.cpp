#include <algorithm>
#include <array>
#include <cstddef>

#include "qmgr/properties/folder.h"
#include "qmgr/properties/property_name.h"
#include "qmgr/properties/property_value.h"
#include "qmgr/properties/utf8.h"

namespace mqrig::qmgr::properties {
namespace {

constexpr std::string_view nullAttribute = " xsi:nil='true'";
// For those who read the folder as XML.
constexpr std::string_view nullNamespace = " xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'";
constexpr std::string_view propertiesMark = " content='properties'";

std::string_view entityOf(char character)
{
    switch (character) {
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '&':
        return "&amp;";
    case '"':
        return "&quot;";
    case '\'':
        return "&apos;";
    default:
        return {};
    }
}

// Blanks of any kind stand for themselves, but readers of XML take a carriage return for a line feed.
bool needsReference(char32_t character)
{
    return character < 0x20 && character != '\t' && character != '\n';
}

void appendEscaped(std::string_view value, std::string &text)
{
    for (std::size_t at = 0; at < value.size();) {
        const std::size_t start = at;
        const char32_t character = nextCharacter(value, at);
        if (character == invalidCharacter)
            appendCharacter(text, 0xFFFD);
        else if (needsReference(character))
            text.append("&#").append(std::to_string(static_cast<unsigned>(character))).push_back(';');
        else if (const std::string_view entity = entityOf(value[start]); !entity.empty())
            text.append(entity);
        else
            text.append(value.substr(start, at - start));
    }
}

void appendAttribute(std::string_view name, std::string_view value, std::string &text)
{
    text.append(1, ' ').append(name).append("='");
    appendEscaped(value, text);
    text.push_back('\'');
}

std::string copyOptions(MQLONG options)
{
    if (options == MQCOPY_NONE) return "none";
    if ((options & MQCOPY_ALL) != 0) return "all";
    std::string words;
    for (const CopyWord &known : copyWords) {
        if ((options & known.option) == 0) continue;
        if (!words.empty()) words.push_back(',');
        words.append(known.word);
    }
    return words;
}

void appendAttributes(const Property &property, std::string &text)
{
    const std::string_view type = property.typeName.empty() ? typeName(property.type) : property.typeName;
    if (!type.empty()) appendAttribute("dt", type, text);
    if (property.type == MQTYPE_NULL) text.append(nullAttribute);
    const Descriptor &descriptor = property.descriptor;
    if (descriptor.context == MQPD_USER_CONTEXT) appendAttribute("context", "user", text);
    if (descriptor.copyOptions != MQCOPY_DEFAULT) appendAttribute("copy", copyOptions(descriptor.copyOptions), text);
    if (descriptor.support == MQPD_SUPPORT_REQUIRED) appendAttribute("sr", "required", text);
    if (descriptor.support == MQPD_SUPPORT_REQUIRED_IF_LOCAL) appendAttribute("sx", "local", text);
}

void appendTag(std::string_view opening, std::string_view element, std::string &text)
{
    text.append(opening);
    appendElementName(element, text);
}

// How many elements the paths of two neighbours share, as a length of `path` that ends behind a dot.
std::size_t commonGroups(std::string_view path, std::string_view other)
{
    const std::size_t least = std::min(path.size(), other.size());
    std::size_t common = 0;
    for (std::size_t i = 0; i < least && path[i] == other[i]; ++i)
        if (path[i] == '.') common = i + 1;
    return common;
}

// Closes the groups of `path` beyond its first `kept` characters, innermost first.
void closeGroups(std::string_view path, std::size_t kept, std::string &text)
{
    for (std::size_t end = path.rfind('.'); end != std::string_view::npos && end >= kept;
         end = end == 0 ? std::string_view::npos : path.rfind('.', end - 1)) {
        const std::size_t before = end == 0 ? std::string_view::npos : path.rfind('.', end - 1);
        const std::size_t start = before == std::string_view::npos ? 0 : before + 1;
        appendTag("</", path.substr(start, end - start), text);
        text.push_back('>');
    }
}

void openGroups(std::string_view path, std::size_t from, std::string &text)
{
    for (std::size_t dot = path.find('.', from); dot != std::string_view::npos; dot = path.find('.', from)) {
        appendTag("<", path.substr(from, dot - from), text);
        text.push_back('>');
        from = dot + 1;
    }
}

void appendElement(std::string_view element, const Property &property, std::string &text)
{
    appendTag("<", element, text);
    appendAttributes(property, text);
    text.push_back('>');
    appendEscaped(valueText(property), text);
    appendTag("</", element, text);
    text.push_back('>');
}

} // namespace

void writeFolder(std::string_view folder, std::span<const Property *const> properties, std::string &text)
{
    appendTag("<", folder, text);
    if (!isPropertyFolder(folder)) text.append(propertiesMark);
    const auto isNull = [](const Property *property) { return property->type == MQTYPE_NULL; };
    if (std::any_of(properties.begin(), properties.end(), isNull)) text.append(nullNamespace);
    text.push_back('>');

    std::string_view path;
    for (const Property *property : properties) {
        const std::string_view next = pathInFolder(property->name);
        const std::size_t common = commonGroups(path, next);
        closeGroups(path, common, text);
        openGroups(next, common, text);
        const std::size_t dot = next.rfind('.');
        appendElement(dot == std::string_view::npos ? next : next.substr(dot + 1), *property, text);
        path = next;
    }
    closeGroups(path, 0, text);
    appendTag("</", folder, text);
    text.push_back('>');
}

} // namespace mqrig::qmgr::properties
