/// The command line as data: one row for each option, one for each prefix of MQI constants. The parser, the usage text
/// and the tests read these rows. How to add an option: see options.h.
#pragma once

#include "RunParams.h"
#include "tables.h"

#include <limits>
#include <span>

/// What an option does. "Its field" is the row's `integer`, `field`, `text` or `address`.
enum class OptionKind {
    Version,       ///< ends the scan: show the version
    Primary,       ///< the options that follow fill the primary record
    Secondary,     ///< ... the secondary record
    Unavailable,   ///< exists on another platform only: always `fault`
    Flag,          ///< its integer = `set`
    Text,          ///< its text points to the value; `fault` when longer than `limit` (0 = any length)
    Number,        ///< its integer = the value, read as atoi does
    NumberOrAll,   ///< the same; "all" is -1
    Characters,    ///< its field begins with the value; `fault` when longer than the field
    CutCharacters, ///< its field begins with the value, which is cut
    DynamicName,   ///< its text points to the value, and its whole field is replaced by it
    Bytes,         ///< its field begins with the value, text or "0x" and digits; `fault` too long, `badDigits`
    HexBytes,      ///< the same for "0x" only; `noPrefix`
    Encoding,      ///< its integer: decimal, or "0x" and three digits, `fault` otherwise (null: no message)
    EncodingList,  ///< the same, or MQENC_* names separated by ":"
    CharacterSet,  ///< its integer: an MQCCSI_* name, or a number
    FormatName,    ///< its field: the format of an MQFMT_* name
    Operation,     ///< its integer gets the bits of an MQOP_* name
    CallbackName,  ///< its address: the function of that name
    CountedText,   ///< its address points to the value, its integer is the length; `fault` when over `limit`
    ApiName,       ///< its text points to the value when it names an MQI call, `fault` otherwise
};

/// What an option or a constant name does besides.
enum Mark : unsigned {
    MarkConnX = 0x1,          ///< connect with MQCONNX
    MarkRfh2 = 0x2,           ///< put an MQRFH2 in front
    MarkMdVersion2 = 0x4,     ///< raise the MQMD version to 2 unless it was given
    MarkCnoVersion2 = 0x8,    ///< raise the MQCNO version to 2 unless it was given
    MarkCdVersion7 = 0x10,    ///< raise the MQCD version to 7 unless it was given
    MarkAuthInfo = 0x20,      ///< one authentication-information record
    MarkMatchCorrelId = 0x40, ///< match the CorrelId
    MarkCnoVersion = 0x80,    ///< the MQCNO version is now given
    MarkCdVersion = 0x100,    ///< the MQCD version is now given
    MarkObjectType = 0x200,   ///< the object type is now given
};

using IntegerField = MQLONG &(*)(RunParams &);
using AddressField = MQPTR &(*)(RunParams &);
using FixedField = std::span<char> (*)(RunParams &);
using TextField = const char *RunParams::*;

struct OptionRow {
    const char *flag;
    OptionKind kind;
    TextField text = nullptr;
    IntegerField integer = nullptr;
    FixedField field = nullptr;
    AddressField address = nullptr;

    MQLONG set = 1;                                      ///< Flag: the value stored
    MQLONG minimum = std::numeric_limits<MQLONG>::min(); ///< Number: smaller values are refused
    bool zeroRefused = false;                            ///< Number: so is 0
    MQLONG limit = 0;                                    ///< Text, CountedText: longest value
    MQULONG mdField = 0;                                 ///< the MdFieldsSet bit
    unsigned marks = 0;                                  ///< Mark bits

    const char *missing = nullptr;   ///< behind "Required parameter missing - "; null: the option takes no value
    const char *fault = nullptr;     ///< format of the message about a bad value
    const char *badDigits = nullptr; ///< format of the message about bad hexadecimal digits
    const char *noPrefix = nullptr;  ///< format of the message about a value without "0x"

    const char *value = ""; ///< usage text: what the value is
    const char *help = "";  ///< usage text: what it means and needs
};

struct OptionGroup {
    const char *title;
    std::span<const OptionRow> rows;
};

/// What a bare constant name does with its value.
enum class ConstantKind {
    Set,       ///< its integer = the value
    Or,        ///< its integer |= the value
    Match,     ///< the same; the first one of the command line clears the integer
    SetBytes,  ///< its field = the byte string
    Token,     ///< its field = the byte string, but a token type (the last byte) that is set stays
    TokenType, ///< the last byte of its field = the value
};

struct ConstantRow {
    const char *prefix;
    ConstantKind kind;
    const NamedInteger *table = nullptr;
    const NamedBytes *bytes = nullptr; ///< SetBytes, Token: the table instead
    IntegerField integer = nullptr;
    FixedField field = nullptr;
    MQULONG mdField = 0;
    unsigned marks = 0;
    const char *help = "";
};

/// The options by group, in the order of the usage text.
extern const std::span<const OptionGroup> OPTION_GROUPS;
/// The prefixes in the order in which they are tried; the first that fits decides.
extern const std::span<const ConstantRow> CONSTANT_ROWS;

/// The longest `-qm` list.
inline constexpr MQLONG MaxQMgrListLength = 49;

/// The usage text, ended by a line feed.
extern const char *const CMD_LINE;
