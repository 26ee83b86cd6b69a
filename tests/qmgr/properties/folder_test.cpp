#include "qmgr/properties/folder.h"

#include <gtest/gtest.h>

#include "qmgr/properties/property_value.h"

namespace mqrig::qmgr::properties {
namespace {

using namespace std::string_view_literals;

struct Read {
    FolderKind kind;
    std::vector<Property> properties;
};

Read read(std::string_view text)
{
    Read result;
    std::size_t allowance = folderAllowance;
    result.kind = readFolder(text, result.properties, allowance);
    return result;
}

// "name=value" of every property; "(null)" for null.
std::string shown(std::string_view text)
{
    const Read result = read(text);
    EXPECT_EQ(result.kind, FolderKind::Properties) << text;
    std::string all;
    for (const Property &property : result.properties)
        all += (all.empty() ? "" : " ") + property.name + "=" +
               (property.type == MQTYPE_NULL ? "(null)" : valueText(property));
    return all;
}

Property only(std::string_view text)
{
    const Read result = read(text);
    EXPECT_EQ(result.kind, FolderKind::Properties) << text;
    EXPECT_EQ(result.properties.size(), 1u) << text;
    return result.properties.empty() ? Property{} : result.properties.front();
}

Property text(std::string name, std::string value)
{
    Property property;
    property.name = std::move(name);
    property.type = MQTYPE_STRING;
    property.value = std::move(value);
    return property;
}

std::string written(std::string_view folder, const std::vector<Property> &properties)
{
    std::vector<const Property *> pointers;
    for (const Property &property : properties)
        pointers.push_back(&property);
    std::string result;
    writeFolder(folder, pointers, result);
    return result;
}

TEST(FolderReader, ElementsAreProperties)
{
    EXPECT_EQ(shown("<usr><color>red</color><size dt='i4'>42</size></usr>"), "color=red size=42");
    EXPECT_EQ(shown("<mq_usr><a><b>1</b><c><d>2</d></c></a><e>3</e></mq_usr>"),
              "mq_usr.a.b=1 mq_usr.a.c.d=2 mq_usr.e=3");
    EXPECT_EQ(shown("<usr></usr>"), "");
    EXPECT_EQ(shown("<usr/>"), "");
    EXPECT_EQ(shown("<usr><a/></usr>"), "a=");
    EXPECT_EQ(shown(" <usr>\n <a>1</a>\n</usr>  "), "a=1");
    EXPECT_EQ(shown("<usr ><a >1</a ></usr >"), "a=1");
    EXPECT_EQ(shown("<usr><a>1</a></usr><jms><Dst>q</Dst></jms>"), "a=1 jms.Dst=q");
}

TEST(FolderReader, ZeroBytesFillAFolderUpAtItsEndOnly)
{
    EXPECT_EQ(shown("<usr><a>1</a></usr>\0\0\0"sv), "a=1");
    EXPECT_EQ(shown("<usr><a>1</a></usr>  \0"sv), "a=1");
    EXPECT_EQ(read("\0\0"sv).kind, FolderKind::Other);
    EXPECT_EQ(read("\0<usr><a>1</a></usr>"sv).kind, FolderKind::Malformed);
    EXPECT_EQ(read("<usr><a>1</a></usr>\0 "sv).kind, FolderKind::Malformed);
    EXPECT_EQ(read("<usr><a>1</a>\0</usr>"sv).kind, FolderKind::Malformed);
}

TEST(FolderReader, TypesAreThoseOfTheirAttribute)
{
    for (const auto &[word, type] : {std::pair{"string", MQTYPE_STRING},
                                     {"boolean", MQTYPE_BOOLEAN},
                                     {"bin.hex", MQTYPE_BYTE_STRING},
                                     {"i1", MQTYPE_INT8},
                                     {"i2", MQTYPE_INT16},
                                     {"i4", MQTYPE_INT32},
                                     {"i8", MQTYPE_INT64},
                                     {"int", MQTYPE_INT64},
                                     {"r4", MQTYPE_FLOAT32},
                                     {"r8", MQTYPE_FLOAT64}}) {
        const Property property =
            only("<usr><a dt='" + std::string(word) + (type == MQTYPE_BYTE_STRING ? "'>01" : "'>1") + "</a></usr>");
        EXPECT_EQ(property.type, type) << word;
        EXPECT_EQ(property.typeName, "") << word;
    }
    EXPECT_EQ(only("<usr><a xsi:nil='true'></a></usr>").type, MQTYPE_NULL);
    EXPECT_EQ(only("<usr><a xsi:nil=\"true\"/></usr>").type, MQTYPE_NULL);
}

TEST(FolderReader, UnknownTypesAndFalseNumbersStayText)
{
    const Property date = only("<usr><a dt='date'>today</a></usr>");
    EXPECT_EQ(date.type, MQTYPE_STRING);
    EXPECT_EQ(date.typeName, "date");
    EXPECT_EQ(date.value, "today");
    const Property number = only("<usr><a dt='i1'>300</a></usr>");
    EXPECT_EQ(number.typeName, "i1");
    EXPECT_EQ(number.value, "300");
}

TEST(FolderReader, EscapesAreResolved)
{
    EXPECT_EQ(only("<usr><a>&lt;&gt;&amp;&quot;&apos;&#65;&#x20AC;</a></usr>").value, "<>&\"'A\u20ac");
    EXPECT_EQ(only("<usr><a> b </a></usr>").value, " b ");
    EXPECT_EQ(only("<usr><a_x0024_b>1</a_x0024_b></usr>").name, "a$b");
    EXPECT_EQ(only("<usr><_x005F_x0024_>1</_x005F_x0024_></usr>").name, "_x0024_");
    EXPECT_EQ(only("<usr><a_xZZ_>1</a_xZZ_></usr>").name, "a_xZZ_");
    EXPECT_EQ(only("<usr><a.b.>1</a.b.></usr>").name, "a_x002E_b_x002E_") << "no element of its own";
    EXPECT_EQ(only("<usr><a_x002E_>1</a_x002E_></usr>").name, "a_x002E_");
}

TEST(FolderReader, DescriptorsComeFromAttributes)
{
    EXPECT_EQ(only("<usr><a context='user' copy='reply,report'>1</a></usr>").descriptor,
              (Descriptor{MQPD_SUPPORT_OPTIONAL, MQPD_USER_CONTEXT, MQCOPY_REPLY | MQCOPY_REPORT}));
    EXPECT_EQ(only("<mq><a sr='required' copy='none'>1</a></mq>").descriptor,
              (Descriptor{MQPD_SUPPORT_REQUIRED, MQPD_NO_CONTEXT, MQCOPY_NONE}));
    EXPECT_EQ(only("<usr><a>1</a></usr>").descriptor, Descriptor{});
}

TEST(FolderReader, FoldersForOthersAreLeftAlone)
{
    for (const char *text :
         {"<psc><Command>Publish</Command></psc>", "<foo><a>1</a></foo>", "", "   ", "<usr><a>1</a></usr><foo/>"})
        EXPECT_EQ(read(text).kind, FolderKind::Other) << text;
    EXPECT_EQ(shown("<foo content='properties'><a>1</a></foo>"), "foo.a=1");
}

TEST(FolderReader, MalformedTextIsSeen)
{
    for (const char *text : {"a",
                             "<",
                             "<usr",
                             "<usr>",
                             "<usr><a>1</usr>",
                             "<usr><a>1</b></usr>",
                             "</usr>",
                             "<usr><a>1</a></usr>x",
                             "<usr>x</usr>",
                             "<usr>x<a>1</a></usr>",
                             "<usr><a>x<b>1</b></a></usr>",
                             "<usr><a><b>1</b>x</a></usr>",
                             "<usr><a>&foo;</a></usr>",
                             "<usr><a>&</a></usr>",
                             "<usr><a>&#xD800;</a></usr>",
                             "<usr><a>&#x110000;</a></usr>",
                             "<usr><a>&#;</a></usr>",
                             "<usr><a dt=i4>1</a></usr>",
                             "<usr><a dt='i4>1</a></usr>",
                             "<usr><a dt>1</a></usr>",
                             "<usr><>1</></usr>",
                             "<usr><!-- no --></usr>",
                             "<usr><a/x></usr>",
                             "<usr><a></usr></a>",
                             "<usr><a b='&x;'/></usr>",
                             "<usr><![CDATA[a]]></usr>"})
        EXPECT_EQ(read(text).kind, FolderKind::Malformed) << text;
}

TEST(FolderReader, EveryCutIsSurvived)
{
    const std::string whole = "<usr><a dt='i4' copy='reply'>&lt;4&#50;</a><b><c xsi:nil='true'/></b></usr>";
    for (std::size_t length = 1; length < whole.size(); ++length)
        EXPECT_EQ(read(whole.substr(0, length)).kind, FolderKind::Malformed) << length;
}

TEST(FolderReader, DepthCostsNoStack)
{
    std::string text = "<usr>";
    for (int i = 0; i < 1000000; ++i)
        text += "<a>";
    EXPECT_EQ(read(text).kind, FolderKind::Malformed);
}

TEST(FolderReader, NamesDoNotMultiplyTheMemory)
{
    std::string text = "<usr>";
    for (int i = 0; i < 1000; ++i)
        text += "<abc>";
    for (int i = 0; i < 1000; ++i)
        text += "<x/>";
    for (int i = 0; i < 1000; ++i)
        text += "</abc>";
    EXPECT_EQ(read(text + "</usr>").kind, FolderKind::Malformed);
}

std::string repeated(std::string_view element, int times)
{
    std::string text = "<usr>";
    for (int i = 0; i < times; ++i)
        text += element;
    return text + "</usr>";
}

TEST(FolderReader, EmptyElementsDoNotMultiplyTheMemory)
{
    const Read result = read(repeated("<b/>", 1000000));
    EXPECT_EQ(result.kind, FolderKind::Malformed);
    // Memory is bounded while the text is read, not afterwards.
    EXPECT_LT(result.properties.size(), 1000000u);
    EXPECT_EQ(read(repeated("<b/>", 1000)).kind, FolderKind::Properties);
}

TEST(FolderReader, ManySmallPropertiesAreAllowed)
{
    EXPECT_EQ(read(repeated("<a>1</a>", 100000)).properties.size(), 100000u);
    EXPECT_EQ(read(repeated("<a></a>", 100000)).kind, FolderKind::Properties);
}

TEST(FolderReader, FoldersShareTheirAllowance)
{
    std::vector<Property> properties;
    std::size_t allowance = folderAllowance;
    const std::string folder = repeated("<b/>", 1500);
    EXPECT_EQ(readFolder(folder, properties, allowance), FolderKind::Properties);
    const std::size_t left = allowance;
    EXPECT_LT(left, folderAllowance);
    EXPECT_EQ(readFolder(folder, properties, allowance), FolderKind::Malformed);
    EXPECT_EQ(allowance, left) << "what is refused takes nothing";
    EXPECT_EQ(readFolder("<usr><colour>red</colour></usr>", properties, allowance), FolderKind::Properties);
    EXPECT_EQ(allowance, left) << "a folder does with what goes with its text";
}

TEST(FolderWriter, WritesTypesAndGroups)
{
    Property number = text("size", std::string("\x2A\0\0\0", 4));
    number.type = MQTYPE_INT32;
    EXPECT_EQ(written("usr", {text("color", "red"), number}), "<usr><color>red</color><size dt='i4'>42</size></usr>");
    EXPECT_EQ(written("f", {text("f.a.b", "1"), text("f.a.c.d", "2"), text("f.e", "3"), text("f.a.g", "4")}),
              "<f content='properties'><a><b>1</b><c><d>2</d></c></a><e>3</e><a><g>4</g></a></f>");
}

TEST(FolderWriter, EscapesWhatElementsCannotHold)
{
    EXPECT_EQ(written("usr", {text("a", "<\"&'>")}), "<usr><a>&lt;&quot;&amp;&apos;&gt;</a></usr>");
    EXPECT_EQ(written("usr", {text("a", "\r\n\t\x01")}), "<usr><a>&#13;\n\t&#1;</a></usr>");
    EXPECT_EQ(written("usr", {text("$x", "1")}), "<usr><_x0024_x>1</_x0024_x></usr>");
    EXPECT_EQ(written("usr", {text("_x0024_", "1")}), "<usr><_x005F_x0024_>1</_x005F_x0024_></usr>");
    EXPECT_EQ(written("usr", {text("_x0041$", "1")}), "<usr><_x005F_x0041_x0024_>1</_x005F_x0041_x0024_></usr>");
    EXPECT_EQ(written("usr", {text("a_x002E_b", "1")}), "<usr><a_x002E_b>1</a_x002E_b></usr>");
    EXPECT_EQ(written("usr", {text("a", "\xFFz")}), "<usr><a>\uFFFDz</a></usr>") << "no text of its set";
}

TEST(FolderWriter, LettersOfAnyAlphabetMayBeginAName)
{
    EXPECT_EQ(written("gr\u00f6\u00dfe", {text("gr\u00f6\u00dfe.\u00dcberma\u00df", "1")}),
              "<gr\u00f6\u00dfe content='properties'><\u00dcberma\u00df>1</\u00dcberma\u00df></gr\u00f6\u00dfe>");
    for (const std::string name :
         {"\u03a9\u03bc\u03ad\u03b3\u03b1", "\u0438\u043c\u044f", "\u65e5\u4ed8", "\U00010400", "e\u0301"})
        EXPECT_EQ(written("usr", {text(name, "1")}), "<usr><" + name + ">1</" + name + "></usr>");
}

TEST(FolderWriter, WhatNoElementMayBeginWithIsEscapedThere)
{
    EXPECT_EQ(written("usr", {text("\u00d7", "1")}), "<usr><_x00D7_>1</_x00D7_></usr>");
    EXPECT_EQ(written("usr", {text("a\u00d7", "1")}), "<usr><a_x00D7_>1</a_x00D7_></usr>") << "nor may it hold this";
    EXPECT_EQ(written("usr", {text("\u00b7", "1")}), "<usr><_x00B7_>1</_x00B7_></usr>");
    EXPECT_EQ(written("usr", {text("a\u00b7", "1")}), "<usr><a\u00b7>1</a\u00b7></usr>");
    EXPECT_EQ(written("usr", {text("\u0301", "1")}), "<usr><_x0301_>1</_x0301_></usr>");
}

TEST(FolderWriter, WhatIsWrittenReadsBack)
{
    Property reply = text("odd name:1", "a\0b");
    reply.descriptor = {MQPD_SUPPORT_OPTIONAL, MQPD_USER_CONTEXT, MQCOPY_REPLY};
    Property null;
    null.name = "gone";
    Property bytes = text("bytes", std::string("\0\xFF", 2));
    bytes.type = MQTYPE_BYTE_STRING;
    Property strange = text("when", "now");
    strange.typeName = "date";
    const std::vector<Property> all = {text("color", "<r&d>\u20ac "),
                                       reply,
                                       null,
                                       bytes,
                                       strange,
                                       text("empty", ""),
                                       text("gr\u00f6\u00dfe", "\u00d7"),
                                       text("\u00d7", "2")};
    EXPECT_EQ(read(written("usr", all)).properties, all);
}

} // namespace
} // namespace mqrig::qmgr::properties
