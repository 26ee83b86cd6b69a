// The kinds of object that a queue manager keeps, and sets of them.
//
// How to add a kind of object
//   1. Add the enumerator here and its row to `kindNames` in object_kind.cpp.
//   2. Name the kind in the `kinds` column of the attributes it has (attribute_table.cpp) and add the attributes
//      that only it has.
//   3. If calls work on it per message, give it a record of its own beside queue_definition.h.
//   4. Add its MQSC words to the tables in qmgr/command/mqsc_interpreter.cpp, its messages to `messagesOf` in
//      mqsc_answers.cpp, and its SYSTEM. objects to system_objects.cpp.
#pragma once

#include <bit>
#include <cstdint>
#include <optional>
#include <string_view>

#include "cmqc.h"

namespace mqrig::qmgr::objects {

// Stored on disk as these numbers: never renumber.
enum class ObjectKind : std::uint8_t {
    QueueManager = 0,
    LocalQueue = 1,
    AliasQueue = 2,
    RemoteQueue = 3,
    ModelQueue = 4,
    Namelist = 5,
    Process = 6,
    Topic = 7,
};

// A set of kinds, one bit each.
using ObjectKinds = std::uint8_t;

constexpr ObjectKinds kinds()
{
    return 0;
}
template <typename... More>
constexpr ObjectKinds kinds(ObjectKind first, More... more)
{
    return static_cast<ObjectKinds>((1U << static_cast<unsigned>(first)) | kinds(more...));
}
constexpr bool contains(ObjectKinds set, ObjectKind kind)
{
    return (set & kinds(kind)) != 0;
}

// The kind in a set of one.
constexpr ObjectKind onlyKind(ObjectKinds set)
{
    return static_cast<ObjectKind>(std::countr_zero(set));
}

// Every kind of queue; their names share one space, as MQ has it.
inline constexpr ObjectKinds allQueues =
    kinds(ObjectKind::LocalQueue, ObjectKind::AliasQueue, ObjectKind::RemoteQueue, ObjectKind::ModelQueue);

// The MQQT_ value that MQIA_Q_TYPE answers for a queue; 0 for what is not a queue.
MQLONG queueType(ObjectKind kind);

// The MQOT_ value under which programs open it.
MQLONG openType(ObjectKind kind);
// Whether any kind of the set is opened under that MQOT_ value.
bool hasOpenType(ObjectKinds set, MQLONG type);

// "QLOCAL", "QMGR": the word of the command language.
std::string_view commandWord(ObjectKind kind);

} // namespace mqrig::qmgr::objects
