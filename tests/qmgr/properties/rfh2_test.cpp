#include "qmgr/properties/rfh2.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "qmgr/properties/text_conversion.h"

namespace mqrig::qmgr::properties {
namespace {

DataForm form(const char *format, MQLONG encoding = MQENC_NATIVE, MQLONG ccsid = 1208)
{
    DataForm result{encoding, ccsid, {}};
    std::copy_n(format, result.format.size(), result.format.begin());
    return result;
}
const DataForm rfh2 = form(MQFMT_RF_HEADER_2);
const DataForm string = form(MQFMT_STRING);

Property text(std::string name, std::string value)
{
    Property property;
    property.name = std::move(name);
    property.type = MQTYPE_STRING;
    property.value = std::move(value);
    return property;
}

void append(std::string &bytes, MQLONG number)
{
    bytes.append(reinterpret_cast<const char *>(&number), sizeof number);
}

// A header in native order with these folders, in front of strings.
std::string header(std::initializer_list<std::string> folders, const char *next = MQFMT_STRING)
{
    std::string pairs;
    for (std::string folder : folders) {
        folder.resize((folder.size() + 3) / 4 * 4, ' ');
        append(pairs, static_cast<MQLONG>(folder.size()));
        pairs += folder;
    }
    MQRFH2 fixed = {MQRFH2_DEFAULT};
    fixed.StrucLength = static_cast<MQLONG>(sizeof fixed + pairs.size());
    std::copy_n(next, sizeof fixed.Format, fixed.Format);
    return std::string(reinterpret_cast<const char *>(&fixed), sizeof fixed) + pairs;
}

struct Done {
    Split split;
    std::vector<Property> properties;
    std::string body; // as it is delivered
};

Done split(const std::string &body, const DataForm &given = rfh2)
{
    Done done;
    const std::span bytes(reinterpret_cast<const std::byte *>(body.data()), body.size());
    done.split = splitProperties(bytes, given, done.properties);
    done.body.assign(reinterpret_cast<const char *>(done.split.headers.data()), done.split.headers.size());
    done.body += body.substr(done.split.restAt);
    EXPECT_EQ(done.body.size(), done.split.length(body.size()));
    return done;
}

std::string made(const std::vector<Property> &properties, const DataForm &data)
{
    std::vector<const Property *> pointers;
    for (const Property &property : properties)
        pointers.push_back(&property);
    const std::vector<std::byte> bytes = makeHeader(pointers, data);
    return {reinterpret_cast<const char *>(bytes.data()), bytes.size()};
}

TEST(Rfh2, PropertyFoldersAreTakenOut)
{
    const Done done = split(header({"<usr><a>1</a></usr>", "<mcd><Msd>jms_text</Msd></mcd>"}) + "hello");
    EXPECT_EQ(done.body, "hello");
    EXPECT_EQ(done.split.form, string);
    ASSERT_EQ(done.properties.size(), 2u);
    EXPECT_EQ(done.properties[1].name, "mcd.Msd");
}

TEST(Rfh2, FoldersForOthersStay)
{
    const std::string others = header({"<psc><Command>x</Command></psc>"}) + "hello";
    EXPECT_EQ(split(others).body, others);
    EXPECT_FALSE(split(others).split.changed());
    const Done mixed = split(header({"<psc><Command>x</Command></psc>", "<usr><a>1</a></usr>"}) + "hello");
    EXPECT_EQ(mixed.body, others) << "as if there had been no usr";
    EXPECT_EQ(mixed.split.form, rfh2);
    EXPECT_EQ(mixed.properties.size(), 1u);
}

TEST(Rfh2, HeadersFollowEachOther)
{
    std::string kept = header({"<psc/>"});
    const MQLONG inherited = 1208;
    std::memcpy(&kept[offsetof(MQRFH2, CodedCharSetId)], &inherited, sizeof inherited);
    const Done done = split(header({"<usr><a>1</a></usr>"}, MQFMT_RF_HEADER_2) + header({"<psc/>"}, MQFMT_RF_HEADER_2) +
                            header({"<jms><Dst>q</Dst></jms>"}) + "hello");
    EXPECT_EQ(done.body, kept + "hello") << "the one that stays is in front of the string now";
    EXPECT_EQ(done.split.form, rfh2);
    EXPECT_EQ(done.properties.size(), 2u);
}

TEST(Rfh2, OtherFormatsAreNotLookedAt)
{
    const std::string body = header({"<usr><a>1</a></usr>"});
    EXPECT_FALSE(split(body, string).split.changed());
    EXPECT_EQ(split(body, string).split.reason, MQRC_NONE);
}

TEST(Rfh2, MalformedFoldersStay)
{
    const std::string bad = "<usr><a>1</usr>";
    const Done done = split(header({bad, "<usr><b>2</b></usr>"}) + "hello");
    EXPECT_EQ(done.body, header({bad}) + "hello");
    EXPECT_EQ(done.split.reason, MQRC_RFH_FORMAT_ERROR);
    ASSERT_EQ(done.properties.size(), 1u);
    EXPECT_EQ(done.properties[0].name, "b");
}

TEST(Rfh2, HeadersThatAreNoneStay)
{
    const std::string good = header({"<usr><a>1</a></usr>"}) + "hello";
    const auto changed = [&](std::size_t at, MQLONG value) {
        std::string bytes = good;
        std::memcpy(&bytes[at], &value, sizeof value);
        return bytes;
    };
    for (const std::string &body :
         {std::string(), good.substr(0, 35), changed(0, 0), changed(offsetof(MQRFH2, Version), 1),
          changed(offsetof(MQRFH2, StrucLength), 35), changed(offsetof(MQRFH2, StrucLength), -1),
          changed(offsetof(MQRFH2, StrucLength), static_cast<MQLONG>(good.size() + 1)), changed(36, -4),
          changed(36, 1000), changed(36, 0x7FFFFFFF)}) {
        const Done done = split(body);
        EXPECT_EQ(done.body, body);
        EXPECT_EQ(done.split.reason, MQRC_RFH_ERROR);
        EXPECT_TRUE(done.properties.empty());
    }
}

TEST(Rfh2, PairThatIsCutKeepsWhatWasInFrontOfIt)
{
    std::string body = header({"<usr><a>1</a></usr>", "<usr><b>2</b></usr>"});
    const MQLONG tooLong = 1000;
    std::memcpy(&body[36 + 4 + 20], &tooLong, sizeof tooLong);
    const Done done = split(body);
    EXPECT_EQ(done.split.reason, MQRC_RFH_ERROR);
    ASSERT_EQ(done.properties.size(), 1u);
    EXPECT_EQ(done.body.size(), body.size() - 24);
}

TEST(Rfh2, MadeHeadersSplitAgainInEveryForm)
{
    const std::vector<Property> all = {text("color", "r<d\u20ac"), text("f.a.b", "1"), text("size", "2")};
    const std::vector<Property> byFolder = {all[0], all[2], all[1]};
    for (const MQLONG encoding : {MQENC_NORMAL, MQENC_REVERSED})
        for (const MQLONG ccsid : {1208, 819, 37, 500, 1200}) {
            const DataForm data = form(MQFMT_STRING, encoding, ccsid);
            const std::string made1 = made(all, data);
            EXPECT_EQ(made1.size() % 4, 0u);
            const Done done = split(made1 + "hello", withHeader(data));
            EXPECT_EQ(done.split.reason, MQRC_NONE) << ccsid;
            EXPECT_EQ(done.body, "hello");
            EXPECT_EQ(done.split.form, data);
            EXPECT_EQ(done.properties, byFolder) << ccsid;
        }
}

TEST(Rfh2, HeaderOfAnEbcdicMessageIsEbcdic)
{
    const std::string bytes = made({text("a", "1")}, form(MQFMT_STRING, MQENC_NORMAL, 500));
    EXPECT_EQ(bytes.substr(0, 4), "\xD9\xC6\xC8\x40");
    EXPECT_EQ(bytes.substr(4, 4), std::string("\0\0\0\2", 4));
    EXPECT_EQ(bytes.substr(40, 5), "<usr>") << "its folders are UTF-8";
}

TEST(Rfh2, FoldersMayBeUnicodeOfTwoBytes)
{
    const std::string folder = "<usr><a>\u20ac</a></usr>";
    for (const MQLONG encoding : {MQENC_NORMAL, MQENC_REVERSED}) {
        std::string wide;
        ASSERT_TRUE(convertText(folder, {}, {1200, encoding}, wide));
        std::string bytes = made({text("x", "")}, form(MQFMT_STRING, encoding)).substr(0, 36);
        const bool swap = encoding == MQENC_NORMAL;
        const auto put = [&](std::size_t at, MQLONG value) {
            const auto ordered = swap ? __builtin_bswap32(static_cast<unsigned>(value)) : static_cast<unsigned>(value);
            std::memcpy(&bytes[at], &ordered, sizeof ordered);
        };
        bytes.resize(40);
        put(offsetof(MQRFH2, StrucLength), static_cast<MQLONG>(40 + wide.size()));
        put(offsetof(MQRFH2, NameValueCCSID), 1200);
        put(36, static_cast<MQLONG>(wide.size()));
        const Done done = split(bytes + wide, form(MQFMT_RF_HEADER_2, encoding));
        ASSERT_EQ(done.properties.size(), 1u) << encoding;
        EXPECT_EQ(done.properties[0].value, "\u20ac");
    }
}

TEST(Rfh2, HeaderThatInheritsItsCharacterSetPassesItOn)
{
    const Done done = split(header({"<usr><a>1</a></usr>"}) + "hello", form(MQFMT_RF_HEADER_2, MQENC_NATIVE, 819));
    EXPECT_EQ(done.split.form.ccsid, 819);
}

TEST(Rfh2, JmsIsInterestedInFourFolders)
{
    for (const char *name : {"color", "jms.Dst", "mcd.Msd", "mqext.Qos"}) {
        const Property property = text(name, "");
        const Property *pointer = &property;
        EXPECT_TRUE(anyForJms({&pointer, 1})) << name;
    }
    for (const char *name : {"f.a", "mq_usr.a", "mqps.Top"}) {
        const Property property = text(name, "");
        const Property *pointer = &property;
        EXPECT_FALSE(anyForJms({&pointer, 1})) << name;
    }
}

} // namespace
} // namespace mqrig::qmgr::properties
