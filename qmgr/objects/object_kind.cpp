#include "qmgr/objects/object_kind.h"

#include <algorithm>
#include <iterator>

namespace mqrig::qmgr::objects {
namespace {

struct KindNames {
    ObjectKind kind;
    std::string_view commandWord;
    std::string_view spokenName;
    MQLONG queueType;
    MQLONG openType;
};

constexpr KindNames kindNames[] = {
    {ObjectKind::QueueManager, "QMGR", "Queue Manager", 0, MQOT_Q_MGR},
    {ObjectKind::LocalQueue, "QLOCAL", "Queue", MQQT_LOCAL, MQOT_Q},
    {ObjectKind::AliasQueue, "QALIAS", "Queue", MQQT_ALIAS, MQOT_Q},
    {ObjectKind::RemoteQueue, "QREMOTE", "Queue", MQQT_REMOTE, MQOT_Q},
    {ObjectKind::ModelQueue, "QMODEL", "Queue", MQQT_MODEL, MQOT_Q},
    {ObjectKind::Namelist, "NAMELIST", "Namelist", 0, MQOT_NAMELIST},
    {ObjectKind::Process, "PROCESS", "Process", 0, MQOT_PROCESS},
    {ObjectKind::Topic, "TOPIC", "Topic", 0, MQOT_TOPIC},
};

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

std::string_view spokenName(ObjectKind kind)
{
    return row(kind).spokenName;
}

} // namespace mqrig::qmgr::objects
