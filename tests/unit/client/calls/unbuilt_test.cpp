// Routines that are still to come say so and fail.
#include "calls_test.h"

#include "receive.h"
#include "send.h"

#include <cstring>

namespace {

struct Unbuilt {
    const char *name;
    Status (*routine)(RunParams *params, MQHCONN hconn);
};

class UnbuiltTest : public CallsTest, public testing::WithParamInterface<Unbuilt> {};

TEST_P(UnbuiltTest, SaysSoAndFails)
{
    const Written written = this->written([&] { return GetParam().routine(&params, hconn); });
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.err, std::string(GetParam().name) + " is not built yet\n");
    EXPECT_EQ(written.out, "");
}

INSTANTIATE_TEST_SUITE_P(
    Each, UnbuiltTest,
    testing::Values(
        Unbuilt{"PutFromFile", PutFromFile}, Unbuilt{"PutFromDir", PutFromDir},
        Unbuilt{"PutFromFile2", [](RunParams *p, MQHCONN h) { return PutFromFile2(p, h, 1, nullptr, 0); }},
        Unbuilt{"PutFromDir2", [](RunParams *p, MQHCONN h) { return PutFromDir2(p, h, 1, 0); }},
        Unbuilt{"splitMessage", [](RunParams *p, MQHCONN h) { return splitMessage(p, h, FakeHobj, "a", 1, 0); }},
        Unbuilt{"Applsegmentation",
                [](RunParams *p, MQHCONN h) { return Applsegmentation(p, h, FakeHobj, "a", 1, 0, 1); }},
        Unbuilt{"make_rfh2", [](RunParams *p, MQHCONN) { return make_rfh2(p) == nullptr ? 1 : 0; }},
        Unbuilt{"GetToFile", GetToFile}, Unbuilt{"GetToDir", GetToDir},
        Unbuilt{"GetToFile2", [](RunParams *p, MQHCONN h) { return GetToFile2(p, h, 1, 0, nullptr, nullptr); }},
        Unbuilt{"GetToDir2", [](RunParams *p, MQHCONN h) { return GetToDir2(p, h, 1, 0, nullptr, nullptr); }},
        Unbuilt{"Queue2Queue", [](RunParams *p, MQHCONN h) { return Queue2Queue(p, h, p); }},
        Unbuilt{"SendReceive", [](RunParams *p, MQHCONN h) { return SendReceive(p, h, p); }}));

class UnbuiltBranchTest : public CallsTest {
protected:
    UnbuiltBranchTest() { params.MsgText = "hello"; }
    Written put()
    {
        return written([&] { return PutFromCmdLine(&params, hconn); });
    }
};

TEST_F(UnbuiltBranchTest, DelimiterHandsTheBodyToTheSplitter)
{
    params.LogicalMsgDelimiter = ",";
    const Written written = put();
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.err, "splitMessage is not built yet\n");
    EXPECT_EQ(fakeMqi.count("MQPUT"), 0);
}

TEST_F(UnbuiltBranchTest, SegmentSizeHandsTheBodyToTheSplitter)
{
    params.SegmentSize = 2;
    EXPECT_EQ(put().err, "splitMessage is not built yet\n");
}

TEST_F(UnbuiltBranchTest, Rfh2EndsBeforeAnyPut)
{
    params.UseRfh2 = 1;
    params.Md.Encoding = 273;
    const Written written = put();
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.err, "make_rfh2 is not built yet\n");
    EXPECT_EQ(params.DataEncoding, 273);
}

} // namespace
