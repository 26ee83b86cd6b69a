// The reader of folders. A loop over the text with a stack of the elements that are open: what it needs grows with the
// text and with nothing else, whatever the text is.
#include <algorithm>
#include <charconv>
#include <cstddef>
#include <optional>
#include <utility>

#include "qmgr/properties/folder.h"
#include "qmgr/properties/property_name.h"
#include "qmgr/properties/property_value.h"
#include "qmgr/properties/utf8.h"

namespace mqrig::qmgr::properties {
namespace {

// Deeply nested elements repeat the names above them in every property, and the shortest ones make a property of four
// bytes: from here on it is no honest folder. The shortest property that the writer writes, "<a></a>", is below that.
constexpr std::size_t mostGrowth = 24;
// Of a property itself, about, and the same on every platform: what one of them writes all of them read.
constexpr std::size_t propertyCost = 128;
constexpr std::size_t longestName = std::size_t{4} * MQ_MAX_PROPERTY_NAME_LENGTH;

constexpr std::string_view blanks = " \t\r\n";

bool isBlank(std::string_view text)
{
    return text.find_first_not_of(blanks) == std::string_view::npos;
}

// What a start tag says beside the element's name.
struct Attributes {
    bool isNull = false;
    bool marksProperties = false; // content='properties'
    Descriptor descriptor;
    std::string type; // dt
};

MQLONG copyOptionsOf(std::string_view words)
{
    MQLONG options = MQCOPY_NONE;
    while (!words.empty()) {
        const std::size_t comma = std::min(words.find(','), words.size());
        for (const CopyWord &known : copyWords)
            if (known.word == words.substr(0, comma)) options |= known.option;
        words.remove_prefix(std::min(comma + 1, words.size()));
    }
    return options;
}

void attributesOf(std::string_view name, const std::string &value, Attributes &attributes)
{
    if (name == "dt") attributes.type = value;
    if (name == "xsi:nil") attributes.isNull = value == "true" || value == "1";
    if (name == "content") attributes.marksProperties = value == "properties";
    if (name == "context") attributes.descriptor.context = value == "user" ? MQPD_USER_CONTEXT : MQPD_NO_CONTEXT;
    if (name == "copy") attributes.descriptor.copyOptions = copyOptionsOf(value);
    if (name == "sr" && value == "required") attributes.descriptor.support = MQPD_SUPPORT_REQUIRED;
    if (name == "sx" && value == "local") attributes.descriptor.support = MQPD_SUPPORT_REQUIRED_IF_LOCAL;
}

class Reader {
public:
    Reader(std::string_view text, std::vector<Property> &properties, std::size_t allowance)
        : text_(text), properties_(properties), room_(mostGrowth * text.size() + allowance)
    {
    }

    FolderKind read()
    {
        if (isBlank(text_)) return FolderKind::Other;
        while (at_ < text_.size()) {
            if (!(text_[at_] == '<' ? readTag() : readText())) return FolderKind::Malformed;
            if (other_) return FolderKind::Other;
        }
        return open_.empty() && isBlank(value_) ? FolderKind::Properties : FolderKind::Malformed;
    }

    std::size_t room() const { return room_; }

private:
    // An element whose end has not been met.
    struct Element {
        std::string_view tag;
        std::size_t pathBefore; // length of the path above it
        Attributes attributes;
        bool hasElements = false;
    };

    bool readTag()
    {
        ++at_;
        if (at_ < text_.size() && text_[at_] == '/') {
            ++at_;
            return readEndTag();
        }
        return readStartTag();
    }

    bool readStartTag()
    {
        Element element{readName(), path_.size(), {}};
        if (element.tag.empty()) return false;
        bool closed = false;
        if (!readAttributes(element.attributes, closed)) return false;
        if (!isBlank(value_)) return false; // text beside elements
        value_.clear();

        if (open_.empty()) {
            if (!isPropertyFolder(element.tag) && !element.attributes.marksProperties) {
                other_ = true;
                return true;
            }
        } else {
            open_.back().hasElements = true;
            path_.push_back('.');
        }
        appendDecodedName(element.tag, path_);
        if (path_.size() > longestName) return false;
        open_.push_back(std::move(element));
        return !closed || closeElement();
    }

    bool readEndTag()
    {
        const std::string_view tag = readName();
        skipBlanks();
        if (!skip('>') || open_.empty() || open_.back().tag != tag) return false;
        return closeElement();
    }

    bool closeElement()
    {
        Element &element = open_.back();
        const bool isFolder = open_.size() == 1;
        if (element.hasElements || isFolder) {
            if (!isBlank(value_)) return false;
        } else if (!addProperty(element)) {
            return false;
        }
        value_.clear();
        path_.resize(element.pathBefore);
        open_.pop_back();
        return true;
    }

    bool addProperty(Element &element)
    {
        Property property;
        const std::string_view path = path_;
        const std::size_t folder = path.find('.');
        property.name = nameInFolder(path.substr(0, folder), path.substr(folder + 1));
        property.descriptor = element.attributes.descriptor;
        readValue(element.attributes, property);
        const std::size_t size = propertyCost + property.name.size() + property.value.size();
        if (size > room_) return false;
        room_ -= size;
        properties_.push_back(std::move(property));
        return true;
    }

    // A text that is none of its type stays a text, and keeps the name of the type.
    void readValue(Attributes &attributes, Property &property)
    {
        if (attributes.isNull) {
            property.type = MQTYPE_NULL;
            return;
        }
        const MQLONG type = attributes.type.empty() ? MQTYPE_STRING : typeNamed(attributes.type);
        if (type != MQTYPE_AS_SET && type != MQTYPE_STRING && readValueText(value_, type, property)) return;
        property.type = MQTYPE_STRING;
        property.form = {};
        property.value = std::move(value_);
        if (type != MQTYPE_STRING) property.typeName = std::move(attributes.type);
    }

    bool readAttributes(Attributes &attributes, bool &closed)
    {
        for (;;) {
            skipBlanks();
            if (skip('>')) return true;
            if (skip('/')) {
                closed = true;
                return skip('>');
            }
            const std::string_view name = readName();
            skipBlanks();
            if (name.empty() || !skip('=')) return false;
            skipBlanks();
            if (at_ == text_.size() || (text_[at_] != '\'' && text_[at_] != '"')) return false;
            const std::size_t end = text_.find(text_[at_], at_ + 1);
            if (end == std::string_view::npos) return false;
            std::string value;
            if (!appendUnescaped(text_.substr(at_ + 1, end - at_ - 1), value)) return false;
            attributesOf(name, value, attributes);
            at_ = end + 1;
        }
    }

    bool readText()
    {
        const std::size_t end = std::min(text_.find('<', at_), text_.size());
        const bool read = appendUnescaped(text_.substr(at_, end - at_), value_);
        at_ = end;
        // Between folders there is nothing but blanks.
        return read && (!open_.empty() || isBlank(value_));
    }

    static bool appendUnescaped(std::string_view text, std::string &to)
    {
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t plain = std::min(text.find('&', at), text.size());
            to.append(text.substr(at, plain - at));
            at = plain;
            if (at == text.size()) return true;
            constexpr std::size_t longestEntity = 12;
            const std::size_t length = text.substr(at, longestEntity).find(';');
            if (length == std::string_view::npos) return false;
            const auto character = entity(text.substr(at + 1, length - 1));
            if (!character) return false;
            appendCharacter(to, *character);
            at += length + 1;
        }
        return true;
    }

    static std::optional<char32_t> entity(std::string_view name)
    {
        if (name == "lt") return U'<';
        if (name == "gt") return U'>';
        if (name == "amp") return U'&';
        if (name == "quot") return U'"';
        if (name == "apos") return U'\'';
        if (!name.starts_with('#')) return std::nullopt;
        name.remove_prefix(1);
        const int base = name.starts_with('x') ? 16 : 10;
        if (base == 16) name.remove_prefix(1);
        unsigned value = 0;
        const auto read = std::from_chars(name.data(), name.data() + name.size(), value, base);
        const bool whole = read.ec == std::errc() && read.ptr == name.data() + name.size();
        if (!whole || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) return std::nullopt;
        return value;
    }

    std::string_view readName()
    {
        const std::size_t start = at_;
        at_ = std::min(text_.find_first_of(" \t\r\n=/<>&'\"", at_), text_.size());
        return text_.substr(start, at_ - start);
    }

    void skipBlanks() { at_ = std::min(text_.find_first_not_of(blanks, at_), text_.size()); }

    bool skip(char character)
    {
        if (at_ == text_.size() || text_[at_] != character) return false;
        ++at_;
        return true;
    }

    std::string_view text_;
    std::vector<Property> &properties_;
    std::size_t room_; // for the properties
    std::size_t at_ = 0;
    std::vector<Element> open_;
    std::string path_;
    std::string value_; // text since the last tag
    bool other_ = false;
};

} // namespace

FolderKind readFolder(std::string_view text, std::vector<Property> &properties, std::size_t &allowance)
{
    // Zero bytes at the end fill some programs' folders up.
    while (text.ends_with('\0'))
        text.remove_suffix(1);
    Reader reader(text, properties, allowance);
    const FolderKind kind = reader.read();
    if (kind == FolderKind::Properties) allowance = std::min(allowance, reader.room());
    return kind;
}

} // namespace mqrig::qmgr::properties
