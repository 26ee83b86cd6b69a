// The coded character sets (CCSID) that text can be converted from and to.
//
// How to add one: a row in character_set.cpp, in the order of the numbers. The name is iconv's.
#pragma once

#include <cstdint>

#include "cmqc.h"

namespace mqrig::qmgr::convert {

enum class SetKind : std::uint8_t {
    Single,   // one byte for each character, ASCII in its lower half
    Ebcdic,   // one byte for each character, EBCDIC
    Multi,    // several bytes, no states
    Stateful, // EBCDIC with shift characters
    Unicode8, // UTF-8
    Unicode16 // two bytes in the order of the encoding's integers
};

struct CharacterSet {
    MQLONG ccsid = 0;
    const char *name = nullptr;    // for iconv; of Unicode16 in big-endian order
    const char *swapped = nullptr; // of Unicode16 in little-endian order
    SetKind kind = SetKind::Single;

    bool singleByte() const { return kind == SetKind::Single || kind == SetKind::Ebcdic; }
    bool ebcdic() const { return kind == SetKind::Ebcdic || kind == SetKind::Stateful; }
    // Bytes of a blank or of the shortest character.
    unsigned unit() const { return kind == SetKind::Unicode16 ? 2 : 1; }
};

// Null for a number that is none of ours.
const CharacterSet *findCharacterSet(MQLONG ccsid);

} // namespace mqrig::qmgr::convert
