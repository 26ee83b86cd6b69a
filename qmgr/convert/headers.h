// The structures of the MQI that a message body may begin with.
//
// How to add one: its fields and a row in headers.cpp; if it ends with something of its own, a Tail and its routine.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "cmqc.h"
#include "qmgr/convert/piece.h"

namespace mqrig::qmgr::convert {

enum class FieldKind : std::uint8_t {
    Text,    // size in bytes
    Numbers, // count
    Bytes,   // size
};

struct Field {
    FieldKind kind;
    std::uint16_t size;
};

// What stands between the fixed fields and the end that StrucLength tells.
enum class Tail : std::uint8_t {
    None,
    NameValuePairs, // MQRFH2
    Text,           // MQRFH
    Records,        // MQDH
    Pcf,            // MQEPH
};

struct Header {
    std::string_view format;
    std::string_view strucId;
    MQLONG lowestVersion;
    MQLONG highestVersion;
    std::size_t size;     // of the fixed fields
    std::size_t lengthAt; // StrucLength; 0: there is none
    std::size_t nextAt;   // Encoding, CodedCharSetId and Format of what follows; 0: nothing follows
    Tail tail;
    std::span<const Field> fields;
};

// Null for a format that is none of these.
const Header *findHeader(std::string_view format);

// Converts the header that the piece stands on, with its tail; the piece then stands behind it. False when it has
// stopped: MQRC_FORMAT_ERROR for a header that is none or whose lengths lie, and the reasons of the fields.
bool convertHeader(Piece &piece, const Header &header);

// A command, event or other message of structures that name themselves, up to `end` of what is read. False when it
// has stopped.
bool convertPcf(Piece &piece, std::size_t end);

} // namespace mqrig::qmgr::convert
