#include "qmgr/objects/system_objects.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "qmgr/objects/object_definition.h"
#include "qmgr/objects/object_name.h"

namespace mqrig::qmgr::objects {
namespace {

TEST(SystemObjects, AreAllReadableAndDistinct)
{
    std::set<std::string> names;
    for (const store::Definition &stored : systemObjects("QM1")) {
        const auto object = ObjectDefinition::decode(stored.bytes);
        ASSERT_TRUE(object) << stored.name;
        EXPECT_EQ(object->name(), stored.name);
        EXPECT_TRUE(checkObjectName(stored.name));
        EXPECT_EQ(openType(object->kind()), stored.type);
        EXPECT_TRUE(names.insert(stored.name).second) << stored.name;
    }
    for (const char *name :
         {"QM1", "SYSTEM.DEFAULT.LOCAL.QUEUE", "SYSTEM.DEAD.LETTER.QUEUE", "SYSTEM.ADMIN.COMMAND.QUEUE",
          "SYSTEM.ADMIN.QMGR.EVENT", "SYSTEM.ADMIN.PERFM.EVENT", "SYSTEM.ADMIN.CHANNEL.EVENT",
          "SYSTEM.DEFAULT.INITIATION.QUEUE", "SYSTEM.MQSC.REPLY.QUEUE", "SYSTEM.COMMAND.MODEL.QUEUE"})
        EXPECT_TRUE(names.contains(name)) << name;
}

TEST(SystemObjects, EveryKindHasItsDefaultObject)
{
    const auto objects = systemObjects("QM1");
    for (const ObjectKind kind :
         {ObjectKind::LocalQueue, ObjectKind::AliasQueue, ObjectKind::RemoteQueue, ObjectKind::ModelQueue,
          ObjectKind::Namelist, ObjectKind::Process, ObjectKind::Topic}) {
        const auto stored = std::find_if(objects.begin(), objects.end(), [kind](const store::Definition &definition) {
            return definition.name == defaultObject(kind) && definition.type == openType(kind);
        });
        ASSERT_NE(stored, objects.end()) << defaultObject(kind);
        EXPECT_EQ(ObjectDefinition::decode(stored->bytes)->kind(), kind);
    }
}

TEST(SystemObjects, IdentifierIsNameDateAndTime)
{
    const auto identifierOf = [](const std::string &name) {
        const auto object = ObjectDefinition::decode(systemObjects(name).front().bytes);
        return std::string(object->text(MQCA_Q_MGR_IDENTIFIER));
    };
    EXPECT_EQ(identifierOf("QM1").substr(0, 4), "QM1_");
    EXPECT_EQ(identifierOf("QM1").size(), 4U + 10 + 1 + 8);
    EXPECT_EQ(identifierOf(std::string(48, 'Q')).size(), 48U);
}

} // namespace
} // namespace mqrig::qmgr::objects
