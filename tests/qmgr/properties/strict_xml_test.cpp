#include "strict_xml.h"

#include <gtest/gtest.h>

#include "qmgr/properties/folder.h"
#include "qmgr/properties/property_name.h"

namespace mqrig::qmgr::properties {
namespace {

TEST(StrictXml, KnowsGoodFromBad)
{
    for (const char *text : {"<a/>", "<a b='1' c=\"2\">x&lt;&#65;<d/></a> ", "<a xmlns:x='u'><b x:y='1'/></a>"})
        EXPECT_TRUE(isWellFormedXml(text)) << text;
    for (const char *text : {"", "a", "<a>", "<a></b>", "<a/><b/>", "<a b='1' b='2'/>", "<a b=1/>", "<a b='&'/>",
                             "<a>&</a>", "<a>&x;</a>", "<$a/>", "<1a/>", "<a x:y='1'/>", "<a>\x01</a>", "<a/>x"})
        EXPECT_FALSE(isWellFormedXml(text)) << text;
}

// Every ASCII character in a name and in a value, and all types.
TEST(FolderWriter, FoldersAreWellFormedXml)
{
    std::vector<Property> properties;
    for (int character = 1; character < 128; ++character) {
        Property property;
        property.type = MQTYPE_STRING;
        property.name = "n" + std::string(1, static_cast<char>(character)) + "_x0041_";
        property.value = std::string(1, static_cast<char>(character));
        if (character == '.') continue; // a name of two elements
        properties.push_back(property);
        property.name = std::string(1, static_cast<char>(character));
        properties.push_back(property);
    }
    Property null;
    null.name = "gone";
    properties.push_back(null);
    Property odd;
    odd.name = "odd";
    odd.type = MQTYPE_STRING;
    odd.typeName = "<'&\">";
    odd.descriptor = {MQPD_SUPPORT_REQUIRED, MQPD_USER_CONTEXT, MQCOPY_REPLY | MQCOPY_FORWARD};
    properties.push_back(odd);
    for (const char *folder : {"usr", "f", "$f", "9"}) {
        std::vector<const Property *> pointers;
        for (const Property &property : properties)
            pointers.push_back(&property);
        std::string text;
        writeFolder(folder, pointers, text);
        EXPECT_TRUE(isWellFormedXml(text)) << text;
    }
}

} // namespace
} // namespace mqrig::qmgr::properties
