// The attribute table: everything the queue manager knows about the attributes of its objects.
//
// MQINQ, MQSET, the command language and command messages (PCF) all read this one table; no other place knows a
// keyword, a selector, a limit or a default.
//
// How to add an attribute
//   1. Add its row to attribute_table.cpp, in the order of the keywords; the compiler checks order and uniqueness.
//   2. If calls need it per message, add a field to QueueDefinition (queue_definition.h) and its line to the .cpp.
//   Nothing else: it is stored, defaulted, inquired, altered and displayed from the row. Objects stored before the
//   attribute existed answer its default.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "cmqc.h"
#include "qmgr/objects/object_kind.h"

namespace mqrig::qmgr::objects {

// One keyword of the command language and the integer that it stands for.
struct Word {
    std::string_view keyword;
    MQLONG value;
};

enum class ValueKind : std::uint8_t {
    Number,   // MAXDEPTH(5000): an integer between `low` and `high`, or one of `words`: MAXFSIZE(DEFAULT)
    Keyword,  // PUT(ENABLED): one of `words`
    Flag,     // SHARE, NOSHARE: one of `words`, written bare
    Text,     // DESCR('any text'): at most `textLength` bytes
    Name,     // BOQNAME(A.QUEUE): an object name or blank
    NameList, // NAMES(A, B): up to `maxNames` object names; as one text, with commas between them
};

enum class Access : std::uint8_t {
    Alterable, // DEFINE and ALTER
    Fixed,     // stored, but set by the queue manager alone: CRDATE, QMID
    Identity,  // not stored: what the object is: QUEUE, QMNAME, TYPE
    Derived,   // not stored: follows from what is stored: NAMCOUNT
    Dynamic,   // not stored: computed when it is asked for: CURDEPTH, IPPROCS
};

constexpr bool isStored(Access access)
{
    return access == Access::Alterable || access == Access::Fixed;
}

// The most names that a namelist has.
inline constexpr MQLONG maxNames = 256;

struct Attribute {
    std::string_view keyword; // as DISPLAY names it; for a flag the keyword of its positive form
    MQLONG selector = 0;      // MQIA_ or MQCA_ of MQINQ and MQSET; PCF uses the same number
    ObjectKinds kinds = 0;    // the kinds of object that have it
    ValueKind value = ValueKind::Number;
    Access access = Access::Alterable;
    bool settable = false;   // MQSET may change it
    bool triggering = false; // given to a local queue it may make a trigger message due for the messages there are
    MQLONG low = 0;          // limits of a number
    MQLONG high = 0;
    std::span<const Word> words;  // keywords of a Number, Keyword or Flag
    MQLONG textLength = 0;        // length of the MQI's field for a Text, a Name or each name of a list; 0 for integers
    MQLONG defaultNumber = 0;     // MQ's default
    std::string_view defaultText; // blank where empty

    constexpr bool isText() const { return textLength > 0; }
    constexpr MQLONG parameter() const { return selector; }
};

// All rows, sorted by keyword; a keyword and a selector are unique within a kind of object.
std::span<const Attribute> attributes();

// The attribute of that kind of object, or null. Selector: one table look-up, no search (MQINQ's path).
const Attribute *findSelector(ObjectKind kind, MQLONG selector);

// By the command language's keyword, any case. A flag is found under each of its keywords, `flagValue` says which.
struct KeywordMatch {
    const Attribute *attribute = nullptr;
    MQLONG flagValue = 0;
};
KeywordMatch findKeyword(std::span<const Attribute> among, ObjectKinds kinds, std::string_view keyword);
// The first of several kinds that has it.
inline KeywordMatch findKeyword(ObjectKinds kinds, std::string_view keyword)
{
    return findKeyword(attributes(), kinds, keyword);
}
inline KeywordMatch findKeyword(ObjectKind kind, std::string_view keyword)
{
    return findKeyword(kinds(kind), keyword);
}

// What MQINQ has to tell apart for a selector.
enum class SelectorStanding : std::uint8_t {
    Unknown,       // no attribute of such an object: MQRC_SELECTOR_ERROR
    OfOtherQueues, // the object is a queue, and queues of another type have it: MQRC_SELECTOR_NOT_FOR_TYPE
    OfObject,      // this kind of object has it
};
SelectorStanding standing(ObjectKind kind, MQLONG selector);

// The length of a character selector's field, whichever kind of object has it; 0 if none has.
MQLONG textLengthOf(MQLONG selector);

} // namespace mqrig::qmgr::objects
