// Folders: the text in the name-value data of an MQRFH2, in UTF-8.
//
//   <usr><color>red</color><size dt='i4'>42</size></usr>
//
// The folder's name and the elements below it make the names of the properties. Characters that an element's name may
// not hold are written as _x0024_ (ISO 9075-14), those of values as entities and character references. A dot inside an
// element's name is _x002E_ in the property's name too, where a dot parts elements.
//
// How to add an attribute: a row in attributesOf of folder_reader.cpp, and its text in folder_writer.cpp.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cmqc.h"
#include "qmgr/properties/property.h"

namespace mqrig::qmgr::properties {

enum class FolderKind {
    Properties, // every element is a property
    Other,      // for somebody else
    Malformed,
};

// Memory that the properties of one message may take beyond what goes with the length of their text.
inline constexpr std::size_t folderAllowance = 65536;

// Reads what the text holds, appending to `properties`. Of a malformed text it may have appended some. Malformed is
// also what would take far more memory than its text, and more than is left of `allowance`, from which a folder takes.
FolderKind readFolder(std::string_view text, std::vector<Property> &properties, std::size_t &allowance);

// Whether a folder of this name holds properties without being marked with content='properties'.
bool isPropertyFolder(std::string_view folder);

// Appends the folder with these properties, which are all of it.
void writeFolder(std::string_view folder, std::span<const Property *const> properties, std::string &text);

// ---- Names and types as both sides write them ----

// The dt attribute of a type; empty for a string, which has none.
std::string_view typeName(MQLONG type);
// MQTYPE_AS_SET for a name that is none.
MQLONG typeNamed(std::string_view name);

void appendElementName(std::string_view element, std::string &text);
// The name that an element's name stands for.
void appendDecodedName(std::string_view element, std::string &name);

struct CopyWord {
    std::string_view word;
    MQLONG option;
};
inline constexpr CopyWord copyWords[] = {
    {"forward", MQCOPY_FORWARD}, {"reply", MQCOPY_REPLY}, {"report", MQCOPY_REPORT},
    {"publish", MQCOPY_PUBLISH}, {"all", MQCOPY_ALL},     {"none", MQCOPY_NONE},
};

} // namespace mqrig::qmgr::properties
