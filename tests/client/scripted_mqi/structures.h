// What the library knows of the MQI's structures: their fields, versions and defaults. One table serves the record
// (fields that differ from the default), the checks (StrucId, Version) and the script (fields written back by name).
#pragma once

#include <cmqc.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace scripted {

enum class Kind { Long, Bits, Longs, Long64, Chars, Bytes, Pointer, Variable };

struct Field {
    std::string_view name;
    std::size_t offset;
    std::size_t size;
    Kind kind;
    int since; // the structure version that brought it
};

struct Structure {
    std::string_view name;
    std::string_view strucId; // empty: the structure has neither StrucId nor Version
    int lastVersion;
    MQLONG error; // the reason that a call answers when StrucId or Version is wrong
    const void *initial;
    std::span<const Field> fields;

    const Field *find(std::string_view fieldName) const;
};

// By name ("MQMD"); nullptr when the calls do not take it.
const Structure *findStructure(std::string_view name);
const Structure &structure(std::string_view name);

// The Version that a structure in memory carries; 1 where the structure has none.
int versionOf(const Structure &type, const void *data);
bool hasValidHead(const Structure &type, const void *data);

// Text as it stands in records: in double quotes, control and non-ASCII bytes as \xNN.
std::string quoted(std::string_view bytes);
// A field's value: numbers in decimal, bit masks as 0x%08x, characters in quotes up to the last byte that is not zero
// (a run of more than eight blanks at the end as <40 blanks>), bytes as 0x digits up to the last byte that is not
// zero (then <22 zeros>), pointers as null or set.
std::string render(const Field &field, const void *data);
// The bytes that a value written in a script gives the field; nothing when it does not suit the field.
std::optional<std::string> parseValue(const Field &field, std::string_view text);

// Shared by the script's values and the record: 0x and hexadecimal digits to bytes; nothing when they are not.
std::optional<std::string> fromHex(std::string_view digits);
// "text" with \n \t \\ \" \xNN and a closing quote; nothing when it is malformed.
std::optional<std::string> fromQuoted(std::string_view text);
std::optional<long long> fromNumber(std::string_view text);

} // namespace scripted
