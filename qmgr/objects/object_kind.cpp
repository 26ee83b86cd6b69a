#include "qmgr/objects/object_kind.h"

#include <algorithm>
#include <iterator>

namespace mqrig::qmgr::objects {
namespace {

struct KindNames {
    ObjectKind kind;
    std::string_view commandWord;
    MQLONG queueType;
    MQLONG openType;
};

// clang-format off
constexpr KindNames kindNames[] = {
    {ObjectKind::QueueManager, "QMGR", 0, MQOT_Q_MGR},
    {ObjectKind::LocalQueue, "QLOCAL", MQQT_LOCAL, MQOT_Q},
    {ObjectKind::AliasQueue, "QALIAS", MQQT_ALIAS, MQOT_Q},
    {ObjectKind::RemoteQueue, "QREMOTE", MQQT_REMOTE, MQOT_Q},
    {ObjectKind::ModelQueue, "QMODEL", MQQT_MODEL, MQOT_Q},
    {ObjectKind::Namelist, "NAMELIST", 0, MQOT_NAMELIST},
    {ObjectKind::Process, "PROCESS", 0, MQOT_PROCESS},
    {ObjectKind::Topic, "TOPIC", 0, MQOT_TOPIC},
};
// clang-format on

constexpr bool inOrder()
{
    for (std::size_t i = 0; i < std::size(kindNames); ++i)
        if (static_cast<std::size_t>(kindNames[i].kind) != i) return false;
    return true;
}
static_assert(inOrder(), "rows are found by the number of the kind");

const KindNames &row(ObjectKind kind)
{
    return kindNames[static_cast<std::size_t>(kind)];
}

} // namespace

MQLONG queueType(ObjectKind kind)
{
    return row(kind).queueType;
}

MQLONG openType(ObjectKind kind)
{
    return row(kind).openType;
}

bool hasOpenType(ObjectKinds set, MQLONG type)
{
    return std::ranges::any_of(kindNames,
                               [=](const KindNames &row) { return contains(set, row.kind) && row.openType == type; });
}

std::string_view commandWord(ObjectKind kind)
{
    return row(kind).commandWord;
}

} // namespace mqrig::qmgr::objects
