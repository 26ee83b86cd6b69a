#include "groups_fixture.h"

#include <cstring>

namespace mqrig::qmgr::testing {
namespace {

class Extension : public GroupTest {
public:
    static MQMDE extension()
    {
        MQMDE header = {MQMDE_DEFAULT};
        std::memcpy(header.Format, MQFMT_STRING, sizeof header.Format);
        header.CodedCharSetId = 1208;
        setBytes(header.GroupId, "G");
        header.MsgSeqNumber = 3;
        header.MsgFlags = MQMF_MSG_IN_GROUP;
        return header;
    }
    static std::string inFront(const MQMDE &header, std::string_view data)
    {
        return std::string(reinterpret_cast<const char *>(&header), sizeof header) + std::string(data);
    }
    static MQMD announcing(MQLONG version = MQMD_VERSION_1)
    {
        MQMD md = {MQMD_DEFAULT};
        md.Version = version;
        std::memcpy(md.Format, MQFMT_MD_EXTENSION, sizeof md.Format);
        return md;
    }
    Codes codesFor(const MQMDE &header) { return put(hconn, q1, inFront(header, "data"), announcing()); }
    // The message as it is stored, which a version-2 descriptor shows.
    void expectData(std::string_view body)
    {
        const Got got = next();
        EXPECT_EQ(got.body, body);
        EXPECT_EQ(text(got.md.Format), "MQHMDE");
        EXPECT_EQ(got.md.MsgSeqNumber, 1);
    }
};

// ---- MQPUT ----

TEST_F(Extension, GivesAVersion1DescriptorItsGroup)
{
    ASSERT_EQ(codesFor(extension()), ok);
    const Got got = next();
    EXPECT_EQ(got.body, "data");
    EXPECT_EQ(text(got.md.Format), "MQSTR");
    EXPECT_EQ(got.md.CodedCharSetId, 1208);
    EXPECT_EQ(placeOf(got.md), (Place{"G" + std::string(23, '\0'), 3, 0, MQMF_MSG_IN_GROUP}));
}

TEST_F(Extension, IsHonoredBesideDefaultsOfVersion2)
{
    MQMD md = announcing(MQMD_VERSION_2);
    MQPMO pmo = {MQPMO_DEFAULT};
    ASSERT_EQ(putInOut(hconn, q1, inFront(extension(), "data"), md, pmo), ok);
    EXPECT_EQ(md.MsgSeqNumber, 3);
    EXPECT_EQ(next().body, "data");
}

TEST_F(Extension, BesideOtherValuesOfVersion2IsData)
{
    MQMD md = announcing(MQMD_VERSION_2);
    md.MsgSeqNumber = 2;
    const std::string body = inFront(extension(), "data");
    ASSERT_EQ(put(hconn, q1, body, md), ok);
    expectData(body);
}

TEST_F(Extension, InAnotherEncodingOrCharacterSetIsData)
{
    const std::string body = inFront(extension(), "data");
    MQMD md = announcing();
    md.Encoding = MQENC_INTEGER_NORMAL;
    ASSERT_EQ(put(hconn, q1, body, md), ok);
    expectData(body);
    md = announcing();
    md.CodedCharSetId = 500;
    ASSERT_EQ(put(hconn, q1, body, md), ok);
    expectData(body);
}

TEST_F(Extension, OfALaterVersionIsData)
{
    MQMDE header = extension();
    header.Version = MQMDE_VERSION_2 + 1;
    ASSERT_EQ(codesFor(header), ok);
    expectData(inFront(header, "data"));
}

TEST_F(Extension, ThatIsDamagedIs2248)
{
    const auto damaged = [](auto &&change) {
        MQMDE header = extension();
        change(header);
        return header;
    };
    EXPECT_EQ(codesFor(damaged([](MQMDE &header) { header.StrucId[0] = 'X'; })), failed(MQRC_MDE_ERROR));
    EXPECT_EQ(codesFor(damaged([](MQMDE &header) { header.Version = 1; })), failed(MQRC_MDE_ERROR));
    for (const MQLONG length : {0, 71, 73, -1})
        EXPECT_EQ(codesFor(damaged([&](MQMDE &header) { header.StrucLength = length; })), failed(MQRC_MDE_ERROR));
    for (const MQLONG ccsid : {MQCCSI_DEFAULT, MQCCSI_EMBEDDED, MQCCSI_APPL})
        EXPECT_EQ(codesFor(damaged([&](MQMDE &header) { header.CodedCharSetId = ccsid; })), failed(MQRC_MDE_ERROR));
    EXPECT_EQ(put(hconn, q1, "too short", announcing()), failed(MQRC_MDE_ERROR));
    EXPECT_EQ(put(hconn, q1, "", announcing()), failed(MQRC_MDE_ERROR));
    EXPECT_EQ(depth("Q1"), 0);
}

TEST_F(Extension, HasItsFieldsChecked)
{
    MQMDE header = extension();
    header.MsgFlags = 0x800;
    EXPECT_EQ(codesFor(header), failed(MQRC_MSG_FLAGS_ERROR));
    header = extension();
    header.MsgSeqNumber = 0;
    EXPECT_EQ(codesFor(header), failed(MQRC_MSG_SEQ_NUMBER_ERROR));
    header = extension();
    header.MsgFlags = MQMF_SEGMENT;
    header.Offset = -1;
    EXPECT_EQ(codesFor(header), failed(MQRC_OFFSET_ERROR));
}

TEST_F(Extension, InheritsTheCharacterSet)
{
    MQMDE header = extension();
    header.CodedCharSetId = MQCCSI_INHERIT;
    ASSERT_EQ(codesFor(header), ok);
    const MQLONG inherited = next().md.CodedCharSetId;
    ASSERT_EQ(put(hconn, q1, "plain"), ok);
    EXPECT_EQ(inherited, next().md.CodedCharSetId);
}

TEST_F(Extension, DoesNotCountForTheLengthOfTheMessage)
{
    alterQueue("Q1", {{MQIA_MAX_MSG_LENGTH, 4}});
    ASSERT_EQ(codesFor(extension()), ok);
    EXPECT_EQ(next().body, "data");
    EXPECT_EQ(put(hconn, q1, inFront(extension(), "data."), announcing()), failed(MQRC_MSG_TOO_BIG_FOR_Q));
}

// ---- MQGET ----

class ExtensionGot : public Extension {
public:
    Got getByVersion1(MQLONG options = MQGMO_NO_SYNCPOINT, std::size_t bufferLength = 4096)
    {
        return get(hconn, q1, MQMD{MQMD_DEFAULT}, gmoWith(options), bufferLength);
    }
    static MQMDE extensionIn(const Got &got)
    {
        MQMDE header = {MQMDE_DEFAULT};
        EXPECT_GE(got.body.size(), sizeof header);
        got.body.copy(reinterpret_cast<char *>(&header), sizeof header);
        return header;
    }
    Codes putInGroup(std::string_view body)
    {
        MQMD md = mdOf({"G", 3, MQMF_MSG_IN_GROUP});
        std::memcpy(md.Format, MQFMT_STRING, sizeof md.Format);
        md.CodedCharSetId = 850;
        return put(hconn, q1, body, md);
    }
};

TEST_F(ExtensionGot, TellsAVersion1DescriptorOfTheGroup)
{
    ASSERT_EQ(putInGroup("data"), ok);
    const Got got = getByVersion1();
    EXPECT_EQ(text(got.md.Format), "MQHMDE");
    EXPECT_EQ(got.md.Encoding, MQENC_NATIVE);
    const MQMDE header = extensionIn(got);
    EXPECT_EQ(std::string_view(header.StrucId, 4), "MDE ");
    EXPECT_EQ(header.Version, MQMDE_VERSION_2);
    EXPECT_EQ(header.StrucLength, MQMDE_LENGTH_2);
    EXPECT_EQ(text(header.Format), "MQSTR");
    EXPECT_EQ(header.CodedCharSetId, 850);
    EXPECT_EQ(header.GroupId[0], 'G');
    EXPECT_EQ(header.MsgSeqNumber, 3);
    EXPECT_EQ(header.MsgFlags, MQMF_MSG_IN_GROUP);
    EXPECT_EQ(header.OriginalLength, MQOL_UNDEFINED);
    EXPECT_EQ(got.body.substr(sizeof header), "data");
    EXPECT_EQ(got.dataLength, 76);
}

TEST_F(ExtensionGot, IsNotMadeForMessagesOfNoGroup)
{
    ASSERT_EQ(put(hconn, q1, "plain"), ok);
    EXPECT_EQ(getByVersion1().body, "plain");
}

TEST_F(ExtensionGot, CountsForTheRoomInTheBuffer)
{
    ASSERT_EQ(putInGroup("data"), ok);
    Got got = getByVersion1(MQGMO_NO_SYNCPOINT, 75);
    EXPECT_EQ(got.codes, warned(MQRC_TRUNCATED_MSG_FAILED));
    EXPECT_EQ(got.dataLength, 76);
    got = getByVersion1(MQGMO_ACCEPT_TRUNCATED_MSG, 10);
    EXPECT_EQ(got.codes, warned(MQRC_TRUNCATED_MSG_ACCEPTED));
    EXPECT_EQ(got.body.substr(0, 4), "MDE ");
    EXPECT_EQ(depth("Q1"), 0);
}

TEST_F(ExtensionGot, GoesBackIntoAPut)
{
    ASSERT_EQ(putInGroup("data"), ok);
    const Got got = getByVersion1();
    ASSERT_EQ(put(hconn, q1, got.body, got.md), ok);
    const Got again = next();
    EXPECT_EQ(again.body, "data");
    EXPECT_EQ(placeOf(again.md), (Place{"G" + std::string(23, '\0'), 3, 0, MQMF_MSG_IN_GROUP}));
    EXPECT_EQ(again.md.CodedCharSetId, 850);
}

TEST_F(ExtensionGot, StandsInFrontOfACompleteMessage)
{
    putPiece({"S", 1, MQMF_SEGMENT}, "ab");
    putPiece({"S", 1, MQMF_LAST_SEGMENT, 2}, "cd");
    const Got browsed = getByVersion1(MQGMO_BROWSE_FIRST | MQGMO_COMPLETE_MSG);
    const Got got = getByVersion1(MQGMO_COMPLETE_MSG);
    EXPECT_EQ(browsed.body, got.body);
    EXPECT_EQ(extensionIn(got).MsgFlags, MQMF_SEGMENT | MQMF_LAST_SEGMENT);
    EXPECT_EQ(got.body.substr(sizeof(MQMDE)), "abcd");
}

TEST_F(ExtensionGot, SaysOfADeadLetterWhatItWas)
{
    defineQueue("DEAD");
    setDeadLetterQueue("DEAD");
    MQMD md = mdOf({"S", 1, MQMF_SEGMENT});
    std::memcpy(md.Format, MQFMT_STRING, sizeof md.Format);
    md.Report = MQRO_COA;
    setText(md.ReplyToQ, "NOWHERE");
    ASSERT_EQ(put(hconn, q1, "data", md), ok);

    const Got dead = get(hconn, open(hconn, "DEAD", MQOO_INPUT_SHARED), version2Md(), gmoWith(MQGMO_NO_SYNCPOINT));
    EXPECT_EQ(text(dead.md.Format), "MQDEAD");
    EXPECT_EQ(placeOf(dead.md), (Place{std::string(24, '\0'), 1, 0, MQMF_NONE}));
    MQDLH header;
    MQMDE behind;
    ASSERT_EQ(dead.body.size(), sizeof header + sizeof behind);
    std::memcpy(&header, dead.body.data(), sizeof header);
    std::memcpy(&behind, dead.body.data() + sizeof header, sizeof behind);
    EXPECT_EQ(text(header.Format), "MQHMDE");
    EXPECT_EQ(text(behind.Format), "MQSTR");
    EXPECT_EQ(behind.GroupId[0], 'S');
    EXPECT_EQ(behind.MsgFlags, MQMF_SEGMENT);
    EXPECT_EQ(behind.OriginalLength, 4);
}

TEST_F(ExtensionGot, LargeMessageIsBehindIt)
{
    const std::string body(200000, 'x');
    ASSERT_EQ(putInGroup(body), ok);
    const Got got = getByVersion1(MQGMO_NO_SYNCPOINT, 300000);
    EXPECT_EQ(got.body.substr(sizeof(MQMDE)), body);
}

} // namespace
} // namespace mqrig::qmgr::testing
