// Selection strings on MQOPEN: messages that MQGET and browsing pass over.
#include "property_calls.h"

#include <algorithm>
#include <chrono>
#include <future>
#include <string>
#include <thread>
#include <vector>

namespace mqrig::qmgr::testing {
namespace {

class Selecting : public PropertyTest {
public:
    static Codes trySelect(MQHCONN hconn, std::string_view text, MQHOBJ &hobj, MQLONG options = everything)
    {
        MQOD od = {MQOD_DEFAULT};
        od.Version = MQOD_VERSION_4;
        setText(od.ObjectName, "Q1");
        od.SelectionString = charv(text);
        return tryOpen(hconn, od, options, hobj);
    }
    MQHOBJ select(std::string_view text, MQLONG options = everything) const
    {
        MQHOBJ hobj = MQHO_NONE;
        EXPECT_EQ(trySelect(hconn, text, hobj, options), ok) << text;
        return hobj;
    }
    Codes codesOf(std::string_view text, MQLONG options = everything) const
    {
        MQHOBJ hobj = MQHO_NONE;
        return trySelect(hconn, text, hobj, options);
    }

    // A message with the property colour.
    void putColoured(std::string_view body, std::string_view colour, MQMD md = {MQMD_DEFAULT}) const
    {
        MQHMSG hmsg = create(hconn);
        EXPECT_EQ(set(hmsg, "colour", std::string(colour)), ok);
        MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
        pmo.Version = MQPMO_VERSION_3;
        pmo.NewMsgHandle = hmsg;
        EXPECT_EQ(put(hconn, q1, body, md, pmo), ok);
        EXPECT_EQ(remove(hconn, hmsg), ok);
    }
    std::string nextBody(MQHOBJ hobj, MQLONG options = MQGMO_NO_SYNCPOINT) const
    {
        const Got got = get(hconn, hobj, options | MQGMO_NO_PROPERTIES);
        return got.codes == ok ? got.body : std::to_string(got.codes.Reason);
    }
};

const std::string nothing = std::to_string(MQRC_NO_MSG_AVAILABLE);

TEST_F(Selecting, GetsWhatMatchesAndLeavesTheRest)
{
    putColoured("1", "red");
    putColoured("2", "blue");
    put(hconn, q1, "3");
    putColoured("4", "red");
    const MQHOBJ reds = select("colour = 'red'");
    EXPECT_EQ(nextBody(reds), "1");
    EXPECT_EQ(nextBody(reds), "4");
    EXPECT_EQ(nextBody(reds), nothing);
    EXPECT_EQ(depth("Q1"), 2);
    EXPECT_EQ(nextBody(select("colour IS NULL")), "3");
    EXPECT_EQ(nextBody(q1), "2");
}

TEST_F(Selecting, BrowsesWhatMatches)
{
    putColoured("1", "blue");
    putColoured("2", "red");
    putColoured("3", "blue");
    putColoured("4", "red");
    const MQHOBJ reds = select("colour = 'red'");
    EXPECT_EQ(nextBody(reds, MQGMO_BROWSE_FIRST), "2");
    EXPECT_EQ(nextBody(reds, MQGMO_BROWSE_NEXT), "4");
    EXPECT_EQ(nextBody(reds, MQGMO_MSG_UNDER_CURSOR), "4");
    EXPECT_EQ(nextBody(reds, MQGMO_BROWSE_NEXT), nothing);
    EXPECT_EQ(nextBody(reds, MQGMO_BROWSE_FIRST | MQGMO_LOCK), "2");
}

TEST_F(Selecting, MatchOptionsCountToo)
{
    MQMD wanted = {MQMD_DEFAULT};
    setBytes(wanted.CorrelId, "A");
    putColoured("1", "red");
    putColoured("2", "blue", wanted);
    putColoured("3", "red", wanted);
    const MQHOBJ reds = select("colour = 'red'");
    MQMD md = wanted;
    EXPECT_EQ(get(hconn, reds, md, gmoWith(MQGMO_NO_SYNCPOINT | MQGMO_NO_PROPERTIES, MQGMO_VERSION_2)).body, "3");
    EXPECT_EQ(get(hconn, reds, md, gmoWith(MQGMO_NO_SYNCPOINT, MQGMO_VERSION_2)).codes, failed(MQRC_NO_MSG_AVAILABLE));
}

TEST_F(Selecting, AllTypesOfProperties)
{
    MQHMSG hmsg = create(hconn);
    set(hmsg, "yes", MQTYPE_BOOLEAN, bytesOf(MQLONG{1}));
    set(hmsg, "i8", MQTYPE_INT8, bytesOf(MQINT8{-8}));
    set(hmsg, "i16", MQTYPE_INT16, bytesOf(MQINT16{-16}));
    set(hmsg, "i32", MQTYPE_INT32, bytesOf(MQLONG{-32}));
    set(hmsg, "i64", MQTYPE_INT64, bytesOf(MQINT64{1} << 40));
    set(hmsg, "f32", MQTYPE_FLOAT32, bytesOf(MQFLOAT32{0.5}));
    set(hmsg, "f64", MQTYPE_FLOAT64, bytesOf(MQFLOAT64{1e100}));
    set(hmsg, "bytes", MQTYPE_BYTE_STRING, "\x01\x02");
    set(hmsg, "null", MQTYPE_NULL, "");
    set(hmsg, "my.own.folder", "text");
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    pmo.Version = MQPMO_VERSION_3;
    pmo.NewMsgHandle = hmsg;
    ASSERT_EQ(put(hconn, q1, "x", {MQMD_DEFAULT}, pmo), ok);
    for (const char *one :
         {"yes", "yes = TRUE", "i8 = -8", "i16 = -16", "i32 BETWEEN -40 AND -30", "i64 = 1099511627776", "f32 = 0.5",
          "f64 > 1e99", "bytes = \"0x0102\"", "my.own.folder LIKE 't%'", "usr.i8 = -8", "i8 + i16 + i32 = -56"})
        EXPECT_EQ(nextBody(select(one), MQGMO_BROWSE_FIRST), "x") << one;
    for (const char *one : {"bytes = \"0x010200\"", "yes = FALSE", "i8 = '-8'", "my.own = 'text'"})
        EXPECT_EQ(nextBody(select(one), MQGMO_BROWSE_FIRST), nothing) << one;
}

TEST_F(Selecting, APropertyThatIsNullHasNoValue)
{
    MQHMSG hmsg = create(hconn);
    ASSERT_EQ(set(hmsg, "gone", MQTYPE_NULL, ""), ok);
    ASSERT_EQ(set(hmsg, "colour", "red"), ok);
    ASSERT_EQ(putWith(hmsg, "x"), ok);
    for (const char *one : {"gone IS NULL", "gone = 1 OR colour = 'red'"})
        EXPECT_EQ(nextBody(select(one), MQGMO_BROWSE_FIRST), "x") << one;
    for (const char *one : {"gone IS NOT NULL", "gone = ''", "gone <> ''", "NOT gone = 1"})
        EXPECT_EQ(nextBody(select(one), MQGMO_BROWSE_FIRST), nothing) << one;
}

TEST_F(Selecting, FieldsOfTheDescriptorUnderBothNames)
{
    MQMD md = version2Md();
    md.Persistence = MQPER_PERSISTENT;
    md.Priority = 7;
    md.MsgType = MQMT_REPLY;
    setText(md.ReplyToQ, "ANSWERS");
    setBytes(md.MsgId, "M");
    setBytes(md.CorrelId, "C");
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    ASSERT_EQ(putInOut(hconn, q1, "x", md, pmo), ok);
    const std::string user = text(md.UserIdentifier);
    const std::string program = text(md.PutApplName);
    const std::string zeros(46, '0');
    for (const std::string &one : std::vector<std::string>{"Root.MQMD.Priority = 7",
                                                           "JMSPriority > 6",
                                                           "Root.MQMD.MsgType = 2",
                                                           "Root.MQMD.Persistence = 1",
                                                           "JMSDeliveryMode = 'PERSISTENT'",
                                                           "Root.MQMD.ReplyToQ = 'ANSWERS'",
                                                           "JMSReplyTo = 'queue://QM1/ANSWERS'",
                                                           "Root.MQMD.MsgId = \"0x4D" + zeros + "\"",
                                                           "JMSMessageID = 'ID:4d" + zeros + "'",
                                                           "JMSCorrelationID = 'ID:43" + zeros + "'",
                                                           "Root.MQMD.UserIdentifier = '" + user + "'",
                                                           "JMSXUserID = '" + user + "'",
                                                           "JMSXAppID = '" + program + "'",
                                                           "JMSXDeliveryCount = 0",
                                                           "JMSRedelivered = FALSE",
                                                           "JMSTimestamp > 1",
                                                           "JMSXGroupID IS NULL",
                                                           "JMSXGroupSeq IS NULL",
                                                           "Root.MQMD.Format = ''",
                                                           "JMSType IS NULL"})
        EXPECT_EQ(nextBody(select(one), MQGMO_BROWSE_FIRST), "x") << one;
}

TEST_F(Selecting, WhatAProgramOfJmsHasSetGoesBeforeTheDescriptor)
{
    MQHMSG hmsg = create(hconn);
    set(hmsg, "JMSCorrelationID", "my own");
    set(hmsg, "JMSType", "order");
    set(hmsg, "JMSXGroupID", "G");
    set(hmsg, "JMSXGroupSeq", MQTYPE_INT32, bytesOf(MQLONG{3}));
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    pmo.Version = MQPMO_VERSION_3;
    pmo.NewMsgHandle = hmsg;
    ASSERT_EQ(put(hconn, q1, "x", {MQMD_DEFAULT}, pmo), ok);
    EXPECT_EQ(nextBody(select("JMSCorrelationID = 'my own' AND JMSType = 'order' AND jms.Cid LIKE 'my%'"),
                       MQGMO_BROWSE_FIRST),
              "x");
    EXPECT_EQ(nextBody(select("JMSXGroupID = 'G' AND JMSXGroupSeq = 3"), MQGMO_BROWSE_FIRST), "x");
}

TEST_F(Selecting, PropertiesOfAHeaderInTheBody)
{
    const std::string folder = "<usr><colour>red</colour><size dt='i4'>5</size></usr>  ";
    MQRFH2 header = {MQRFH2_DEFAULT};
    const auto length = static_cast<MQLONG>(folder.size());
    header.StrucLength = MQRFH_STRUC_LENGTH_FIXED_2 + 4 + length;
    const std::string body = std::string(reinterpret_cast<const char *>(&header), MQRFH_STRUC_LENGTH_FIXED_2) +
                             bytesOf(length) + folder + "data";
    MQMD md = {MQMD_DEFAULT};
    setText(md.Format, "MQHRF2");
    ASSERT_EQ(put(hconn, q1, body, md), ok);
    EXPECT_EQ(nextBody(select("colour = 'red' AND size = 5"), MQGMO_BROWSE_FIRST), "data");
    EXPECT_EQ(nextBody(select("colour = 'blue'"), MQGMO_BROWSE_FIRST), nothing);
}

TEST_F(Selecting, TextInAnotherCharacterSetIsComparedAsText)
{
    MQHMSG hmsg = create(hconn);
    MQSMPO smpo = {MQSMPO_DEFAULT};
    smpo.ValueCCSID = 819;
    set(hmsg, "name", MQTYPE_STRING, "M\xFCller", smpo);
    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    pmo.Version = MQPMO_VERSION_3;
    pmo.NewMsgHandle = hmsg;
    ASSERT_EQ(put(hconn, q1, "x", {MQMD_DEFAULT}, pmo), ok);
    EXPECT_EQ(nextBody(select("name = 'M\xC3\xBCller'"), MQGMO_BROWSE_FIRST), "x");

    MQOD od = {MQOD_DEFAULT};
    od.Version = MQOD_VERSION_4;
    setText(od.ObjectName, "Q1");
    od.SelectionString = charv("name = 'M\xFCller'", 819);
    MQHOBJ hobj = MQHO_NONE;
    ASSERT_EQ(tryOpen(hconn, od, MQOO_BROWSE, hobj), ok);
    EXPECT_EQ(nextBody(hobj, MQGMO_BROWSE_FIRST), "x");
}

TEST_F(Selecting, TwoNamesOfOnePropertyHaveOneValue)
{
    const std::string longOne(1000, 'x');
    putColoured("1", longOne);
    EXPECT_EQ(nextBody(select("colour LIKE 'x%' AND usr.colour = '" + longOne + "' AND colour = '" + longOne + "'"),
                       MQGMO_BROWSE_FIRST),
              "1");
}

TEST_F(Selecting, AWaitEndsWithTheFirstThatMatches)
{
    const MQHOBJ reds = select("colour = 'red'");
    auto got = std::async(std::launch::async, [&] {
        MQHCONN other = connect();
        MQHOBJ hobj = MQHO_NONE;
        EXPECT_EQ(trySelect(other, "colour = 'red'", hobj), ok);
        MQGMO gmo = gmoWith(MQGMO_NO_SYNCPOINT | MQGMO_WAIT | MQGMO_NO_PROPERTIES);
        gmo.WaitInterval = 15000;
        return get(other, hobj, {MQMD_DEFAULT}, gmo).body;
    });
    putColoured("1", "blue");
    putColoured("2", "red");
    EXPECT_EQ(got.get(), "2");
    EXPECT_EQ(nextBody(reds), nothing);
    EXPECT_EQ(depth("Q1"), 1);
}

TEST_F(Selecting, AFarMessageIsFound)
{
    for (int i = 0; i < 200; ++i)
        put(hconn, q1, "x");
    putColoured("far", "red");
    EXPECT_EQ(nextBody(select("colour = 'red'"), MQGMO_SYNCPOINT), "far");
    EXPECT_EQ(backOut(hconn), ok);
    EXPECT_EQ(nextBody(select("JMSRedelivered")), "far");
}

TEST_F(Selecting, ManyGettersShareTheMessages)
{
    constexpr int number = 200;
    for (int i = 0; i < number; ++i)
        putColoured(std::to_string(i), i % 2 == 0 ? "red" : "blue");
    const auto getAll = [](const char *selector) {
        std::vector<std::string> bodies;
        MQHCONN own = connect();
        MQHOBJ hobj = MQHO_NONE;
        EXPECT_EQ(trySelect(own, selector, hobj), ok);
        for (Got got = get(own, hobj, MQGMO_NO_SYNCPOINT | MQGMO_NO_PROPERTIES); got.codes == ok;
             got = get(own, hobj, MQGMO_NO_SYNCPOINT | MQGMO_NO_PROPERTIES))
            bodies.push_back(got.body);
        return bodies;
    };
    std::vector<std::future<std::vector<std::string>>> getters;
    for (const char *selector : {"colour = 'red'", "colour = 'red'", "colour <> 'red'", "colour IS NOT NULL"})
        getters.push_back(std::async(std::launch::async, getAll, selector));
    std::vector<std::string> all;
    for (auto &getter : getters) {
        const std::vector<std::string> bodies = getter.get();
        all.insert(all.end(), bodies.begin(), bodies.end());
    }
    std::sort(all.begin(), all.end());
    EXPECT_EQ(std::unique(all.begin(), all.end()), all.end());
    EXPECT_EQ(all.size(), std::size_t{number});
}

// ---- What is refused ----

TEST_F(Selecting, SyntaxErrors)
{
    for (const char *one : {"colour =", "colour == 'red'", "Root.MQMD.NoSuchField = 1", "Root.MQMD.Version = 2",
                            "Root.XMLNSC.order = 1", "Body.x = 1", "a..b = 1"})
        EXPECT_EQ(codesOf(one), failed(MQRC_SELECTOR_SYNTAX_ERROR)) << one;
    EXPECT_EQ(codesOf("1 = 2"), failed(MQRC_SELECTOR_ALWAYS_FALSE));
}

TEST_F(Selecting, OnlyGetsAndBrowsesOfQueuesSelect)
{
    EXPECT_EQ(codesOf("a = 1", MQOO_OUTPUT), failed(MQRC_SELECTOR_INVALID_FOR_TYPE));
    EXPECT_EQ(codesOf("a = 1", MQOO_INQUIRE), failed(MQRC_SELECTOR_INVALID_FOR_TYPE));
    EXPECT_EQ(codesOf("a = 1", MQOO_BROWSE), ok);
    EXPECT_EQ(codesOf("a = 1", MQOO_INPUT_AS_Q_DEF | MQOO_OUTPUT), ok);
    MQOD od = {MQOD_DEFAULT};
    od.Version = MQOD_VERSION_4;
    od.ObjectType = MQOT_Q_MGR;
    od.SelectionString = charv("a = 1");
    MQHOBJ hobj = MQHO_NONE;
    EXPECT_EQ(tryOpen(hconn, od, MQOO_INQUIRE, hobj), failed(MQRC_SELECTOR_INVALID_FOR_TYPE));
    od.ObjectType = MQOT_Q;
    setText(od.ObjectName, "Q1");
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = pmoWith(MQPMO_NONE);
    Codes codes;
    MQPUT1(hconn, &od, &md, &pmo, 0, nullptr, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_SELECTOR_INVALID_FOR_TYPE));
}

TEST_F(Selecting, TheStructureOfTheStringIsChecked)
{
    char text[] = "a = 1";
    MQOD od = {MQOD_DEFAULT};
    od.Version = MQOD_VERSION_4;
    setText(od.ObjectName, "Q1");
    MQHOBJ hobj = MQHO_NONE;
    const auto codes = [&](MQPTR pointer, MQLONG offset, MQLONG length, MQLONG ccsid = MQCCSI_APPL) {
        od.SelectionString.VSPtr = pointer;
        od.SelectionString.VSOffset = offset;
        od.SelectionString.VSLength = length;
        od.SelectionString.VSCCSID = ccsid;
        return tryOpen(hconn, od, MQOO_BROWSE, hobj);
    };
    EXPECT_EQ(codes(text, 8, 5), failed(MQRC_SELECTION_STRING_ERROR));
    EXPECT_EQ(codes(nullptr, 0, 5), failed(MQRC_SELECTION_STRING_ERROR));
    EXPECT_EQ(codes(text, 0, -2), failed(MQRC_SELECTION_STRING_ERROR));
    EXPECT_EQ(codes(text, 0, 5, 4711), failed(MQRC_SOURCE_CCSID_ERROR));
    EXPECT_EQ(codes(text, 0, 5), ok);
    EXPECT_EQ(codes(text, 0, MQVS_NULL_TERMINATED), ok);
    EXPECT_EQ(codes(nullptr, 0, 0), ok);
    EXPECT_EQ(codes(nullptr, 0, MQVS_NULL_TERMINATED), ok);
    EXPECT_EQ(codes(text, 0, 0), ok);

    std::string longest = "a = 1";
    longest.resize(MQ_SELECTOR_LENGTH, ' ');
    EXPECT_EQ(codes(longest.data(), 0, MQ_SELECTOR_LENGTH), ok);
    EXPECT_EQ(codes(longest.data(), 0, MQVS_NULL_TERMINATED), ok);
    longest += ' ';
    EXPECT_EQ(codes(longest.data(), 0, MQ_SELECTOR_LENGTH + 1), failed(MQRC_SELECTION_STRING_ERROR));
    EXPECT_EQ(codes(longest.data(), 0, MQVS_NULL_TERMINATED), failed(MQRC_SELECTION_STRING_ERROR));
}

TEST_F(Selecting, AnOffsetCountsFromTheDescriptor)
{
    struct {
        MQOD od = {MQOD_DEFAULT};
        char text[16] = "colour = 'red'";
    } block;
    block.od.Version = MQOD_VERSION_4;
    setText(block.od.ObjectName, "Q1");
    block.od.SelectionString.VSOffset = sizeof block.od;
    block.od.SelectionString.VSLength = MQVS_NULL_TERMINATED;
    MQHOBJ hobj = MQHO_NONE;
    ASSERT_EQ(tryOpen(hconn, block.od, MQOO_BROWSE, hobj), ok);
    putColoured("1", "blue");
    putColoured("2", "red");
    EXPECT_EQ(nextBody(hobj, MQGMO_BROWSE_FIRST), "2");
}

TEST_F(Selecting, BlanksSelectEverything)
{
    put(hconn, q1, "x");
    EXPECT_EQ(nextBody(select("   ")), "x");
}

} // namespace
} // namespace mqrig::qmgr::testing
