#include "qmgr/objects/object_name.h"

#include <algorithm>
#include <cstring>

namespace mqrig::qmgr::objects {

bool isNameCharacter(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '.' || c == '/' ||
           c == '_' || c == '%';
}

NameCheck checkObjectName(std::string_view name)
{
    if (name.empty()) return {NameFault::Empty, 0};
    const auto bad = std::find_if_not(name.begin(), name.end(), isNameCharacter);
    if (bad != name.end()) return {NameFault::BadCharacter, static_cast<std::size_t>(bad - name.begin())};
    if (name.size() > maxNameLength) return {NameFault::TooLong, maxNameLength};
    return {};
}

std::string_view fieldText(const char *field, std::size_t length)
{
    std::string_view text(field, strnlen(field, length));
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    return text;
}

void fillField(char *field, std::size_t length, std::string_view text)
{
    const std::size_t copied = std::min(length, text.size());
    std::copy_n(text.begin(), copied, field);
    std::fill_n(field + copied, length - copied, ' ');
}

bool matchesGeneric(std::string_view pattern, std::string_view name)
{
    if (pattern.empty() || pattern.back() != '*') return pattern == name;
    pattern.remove_suffix(1);
    return name.starts_with(pattern);
}

} // namespace mqrig::qmgr::objects
