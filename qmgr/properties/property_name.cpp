#include "qmgr/properties/property_name.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <strings.h>

#include "qmgr/properties/utf8.h"

namespace mqrig::qmgr::properties {
namespace {

constexpr std::string_view usr = "usr";
constexpr std::string_view usrPrefix = "usr.";
constexpr std::string_view descriptorPrefix = "Root.MQMD.";

// Other names of what stands in the folders of JMS and of publications; the settable ones are those that the MQI lets a
// program set by them.
struct Synonym {
    std::string_view name;
    std::string_view canonical;
    bool settable;
};
constexpr Synonym synonyms[] = {
    {"JMSCorrelationID", "jms.Cid", true}, {"JMSReplyTo", "jms.Rto", true},     {"JMSType", "mcd.Type", true},
    {"JMSXGroupID", "jms.Gid", true},      {"JMSXGroupSeq", "jms.Seq", true},   {"JMSDestination", "jms.Dst", false},
    {"JMSDeliveryMode", "jms.Dlv", false}, {"JMSExpiration", "jms.Exp", false}, {"JMSPriority", "jms.Pri", false},
    {"JMSTimestamp", "jms.Tms", false},    {"MQTopicString", "mqps.Top", true}, {"MQSubUserData", "mqps.Sud", true},
    {"MQIsRetained", "mqps.Ret", true},    {"MQPubOptions", "mqps.Pub", true},  {"MQPubLevel", "mqps.Pbl", true},
};

// Words of the selector language.
constexpr std::string_view reservedWords[] = {"NULL", "TRUE",    "FALSE", "NOT", "AND",   "OR",
                                              "IS",   "BETWEEN", "LIKE",  "IN",  "ESCAPE"};

struct Range {
    char32_t first;
    char32_t last;
};
// What an identifier may hold beyond ASCII: letters, digits, marks, currency signs.
constexpr Range identifierRanges[] = {
    {0x00A2, 0x00A5}, {0x00AA, 0x00AA}, {0x00B5, 0x00B5}, {0x00B7, 0x00B7}, {0x00BA, 0x00BA}, {0x00C0, 0x00D6},
    {0x00D8, 0x00F6}, {0x00F8, 0x037D}, {0x037F, 0x1FFF}, {0x203F, 0x2040}, {0x2071, 0x2071}, {0x207F, 0x207F},
    {0x2090, 0x209C}, {0x20A0, 0x20CF}, {0x2102, 0x218F}, {0x2C00, 0x2DFF}, {0x3005, 0x3007}, {0x3021, 0x302F},
    {0x3031, 0x3035}, {0x3038, 0x303C}, {0x3041, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFDFF}, {0xFE33, 0xFE34},
    {0xFE70, 0xFEFC}, {0xFF10, 0xFF19}, {0xFF21, 0xFF3A}, {0xFF3F, 0xFF3F}, {0xFF41, 0xFF5A}, {0xFF66, 0xFFDC},
};

bool isDigit(char32_t character)
{
    return character >= '0' && character <= '9';
}

} // namespace

bool isIdentifierPart(char32_t character)
{
    if (character < 0x80)
        return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') || isDigit(character) ||
               character == '_' || character == '$';
    return std::any_of(std::begin(identifierRanges), std::end(identifierRanges),
                       [=](const Range &range) { return character >= range.first && character <= range.last; });
}

namespace {

bool isIdentifier(std::string_view name)
{
    std::size_t at = 0;
    for (bool first = true; at < name.size(); first = false) {
        const char32_t character = nextCharacter(name, at);
        if (character == '.' && !first) continue;
        if (!isIdentifierPart(character) || (first && isDigit(character))) return false;
    }
    return true;
}

bool equalsIgnoringCase(std::string_view left, std::string_view right)
{
    return left.size() == right.size() && strncasecmp(left.data(), right.data(), left.size()) == 0;
}

bool hasEmptyElement(std::string_view name)
{
    return name.front() == '.' || name.back() == '.' || name.find("..") != std::string_view::npos;
}

bool isReserved(std::string_view name)
{
    if (name.starts_with(usrPrefix)) name.remove_prefix(usrPrefix.size());
    for (const std::string_view word : reservedWords)
        if (equalsIgnoringCase(name, word)) return true;
    // What a program may set of JMS's names has become another name already.
    if (name.starts_with("JMS")) return true;
    return name == "Body" || name == "Root" || name.starts_with("Body.") || name.starts_with("Root.");
}

// The folders of the queue manager hold elements only, no groups.
bool isGroupInOwnFolder(std::string_view name)
{
    return name.size() >= 2 && equalsIgnoringCase(name.substr(0, 2), "mq") && !name.starts_with("mq_usr") &&
           std::count(name.begin(), name.end(), '.') > 1;
}

MQLONG checkShape(std::string_view name)
{
    if (name.empty()) return MQRC_PROPERTY_NAME_LENGTH_ERR;
    const auto characters = countCharacters(name);
    if (!characters) return MQRC_PROPERTY_NAME_ERROR;
    if (*characters > MQ_MAX_PROPERTY_NAME_LENGTH) return MQRC_PROPERTY_NAME_LENGTH_ERR;
    return hasEmptyElement(name) ? MQRC_PROPERTY_NAME_ERROR : MQRC_NONE;
}

std::string_view withoutUsr(std::string_view name)
{
    if (!name.starts_with(usrPrefix)) return name;
    const std::string_view path = name.substr(usrPrefix.size());
    return path.find('.') == std::string_view::npos ? path : name;
}

const Synonym *findSynonym(std::string_view name)
{
    const auto *found = std::find_if(std::begin(synonyms), std::end(synonyms),
                                     [=](const Synonym &synonym) { return synonym.name == name; });
    return found == std::end(synonyms) ? nullptr : found;
}

} // namespace

MQLONG canonicalName(std::string_view name, NameCheck check, std::string &canonical)
{
    if (const MQLONG reason = checkShape(name)) return reason;
    if (const Synonym *synonym = findSynonym(name); synonym != nullptr && synonym->settable) {
        canonical = synonym->canonical;
        return MQRC_NONE;
    }
    if (check == NameCheck::Full && (!isIdentifier(name) || isReserved(name) || isGroupInOwnFolder(name)))
        return MQRC_PROPERTY_NAME_ERROR;
    canonical = withoutUsr(name);
    return MQRC_NONE;
}

std::string_view folderOf(std::string_view canonical)
{
    const std::size_t dot = canonical.find('.');
    return dot == std::string_view::npos ? usr : canonical.substr(0, dot);
}

std::string_view pathInFolder(std::string_view canonical)
{
    const std::size_t dot = canonical.find('.');
    return dot == std::string_view::npos ? canonical : canonical.substr(dot + 1);
}

std::string nameInFolder(std::string_view folder, std::string_view path)
{
    std::string name;
    name.reserve(folder.size() + 1 + path.size());
    name.append(folder).append(1, '.').append(path);
    return std::string(withoutUsr(name));
}

std::string_view toldName(std::string_view canonical)
{
    for (const Synonym &synonym : synonyms)
        if (synonym.canonical == canonical) return synonym.name;
    return canonical;
}

MQLONG NamePattern::parse(std::string_view text, NamePattern &pattern)
{
    if (text.empty()) return MQRC_PROPERTY_NAME_LENGTH_ERR;
    pattern.wildcard_ = text.back() == '%';
    if (pattern.wildcard_) text.remove_suffix(1);
    if (text.find('%') != std::string_view::npos) return MQRC_PROPERTY_NAME_ERROR;
    if (!pattern.wildcard_) {
        if (const MQLONG reason = checkShape(text)) return reason;
        const Synonym *synonym = findSynonym(text);
        pattern.name_ = synonym != nullptr ? synonym->canonical : withoutUsr(text);
        return MQRC_NONE;
    }
    const auto characters = countCharacters(text);
    if (!characters) return MQRC_PROPERTY_NAME_ERROR;
    if (*characters > MQ_MAX_PROPERTY_NAME_LENGTH) return MQRC_PROPERTY_NAME_LENGTH_ERR;
    pattern.inUsr_ = text.starts_with(usrPrefix);
    if (pattern.inUsr_) text.remove_prefix(usrPrefix.size());
    pattern.name_ = text;
    return MQRC_NONE;
}

bool NamePattern::matches(std::string_view canonical) const
{
    if (!wildcard_) return canonical == name_;
    if (!inUsr_) return canonical.starts_with(name_) || toldName(canonical).starts_with(name_);
    return folderOf(canonical) == usr && pathInFolder(canonical).starts_with(name_);
}

std::string_view descriptorField(std::string_view name)
{
    return name.starts_with(descriptorPrefix) ? name.substr(descriptorPrefix.size()) : std::string_view();
}

} // namespace mqrig::qmgr::properties
