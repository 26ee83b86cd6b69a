// Names of properties, in UTF-8.
//
// A name is a path of elements with dots between them; the first one names the folder in which the property travels.
// A name of one element stands for one in the folder "usr". Canonical names, by which properties are kept and compared,
// leave "usr." out where nothing but one element follows, and name the fields of JMS and of publications by their
// folders.
#pragma once

#include <string>
#include <string_view>

#include "cmqc.h"

namespace mqrig::qmgr::properties {

enum class NameCheck {
    Full,  // for new properties: identifiers, reserved words and prefixes
    Shape, // MQCMHO_NO_VALIDATION: elements and dots only
};

// Makes a name canonical. MQRC_NONE, MQRC_PROPERTY_NAME_ERROR, MQRC_PROPERTY_NAME_LENGTH_ERR.
MQLONG canonicalName(std::string_view name, NameCheck check, std::string &canonical);

// Whether an element of a name, and an identifier of a selection string, may hold the character.
bool isIdentifierPart(char32_t character);

// The folder of a canonical name: "usr" for "color", "a" for "a.b.c".
std::string_view folderOf(std::string_view canonical);
// The path below the folder: "color", "b.c".
std::string_view pathInFolder(std::string_view canonical);
// The canonical name of what a folder holds at a path.
std::string nameInFolder(std::string_view folder, std::string_view path);
// What programs are told of a canonical name: the name that JMS or MQ has for it, if any.
std::string_view toldName(std::string_view canonical);

// What an inquiry asks for: one name, or with "%" at its end every name that begins so.
class NamePattern {
public:
    // MQRC_NONE, MQRC_PROPERTY_NAME_ERROR, MQRC_PROPERTY_NAME_LENGTH_ERR.
    static MQLONG parse(std::string_view text, NamePattern &pattern);

    bool isOneName() const { return !wildcard_; }
    // The name, or what names begin with. For "usr.%" and its like without "usr.".
    const std::string &name() const { return name_; }
    // A name that programs know by another one matches by both.
    bool matches(std::string_view canonical) const;
    bool operator==(const NamePattern &) const = default;

private:
    std::string name_;
    bool wildcard_ = false;
    bool inUsr_ = false;
};

// Field of a message descriptor that "Root.MQMD.Field" names; empty for other names.
std::string_view descriptorField(std::string_view name);

} // namespace mqrig::qmgr::properties
