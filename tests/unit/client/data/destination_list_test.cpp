// Distribution lists as records: what is built, and what is left after it is freed.
#include "calls_test.h"

#include "mqicalls.h"

#include <cstring>

namespace {

class DestinationListTest : public CallsTest {
protected:
    ~DestinationListTest() override { freeForDestinationList(&params); }
    Written allocate()
    {
        return written([this] { return allocateForDestinationList(&params); });
    }
    const MQOR *objects() const { return static_cast<const MQOR *>(params.Od.ObjectRecPtr); }
    std::string records(std::size_t bytes) const { return {static_cast<const char *>(params.Pmo.PutMsgRecPtr), bytes}; }
};

TEST_F(DestinationListTest, CountsStandInAllThreePlaces)
{
    params.ObjectRecList = "Q1,Q2:QM2,Q3";
    EXPECT_EQ(allocate().status, 0);
    EXPECT_EQ(params.DestCount, 3);
    EXPECT_EQ(params.Od.RecsPresent, 3);
    EXPECT_EQ(params.Pmo.RecsPresent, 3);
    EXPECT_STREQ(objects()[1].ObjectName, "Q2");
    EXPECT_STREQ(objects()[1].ObjectQMgrName, "QM2");
}

TEST_F(DestinationListTest, FieldsAreZeroFilledBehindTheName)
{
    params.ObjectRecList = "Q1";
    allocate();
    EXPECT_EQ(std::string(objects()[0].ObjectName, 48), "Q1" + std::string(46, '\0'));
    EXPECT_EQ(std::string(objects()[0].ObjectQMgrName, 48), std::string(48, '\0'));
}

TEST_F(DestinationListTest, ResponsesStartAsZeros)
{
    params.ObjectRecList = "Q1,Q2";
    allocate();
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(params.ResponseRecs[i].CompCode, 0);
        EXPECT_EQ(params.ResponseRecs[i].Reason, 0);
    }
}

TEST_F(DestinationListTest, RecordsFollowEachOtherWithoutGaps)
{
    params.ObjectRecList = "Q1,Q2";
    params.PutMsgRecList = "0x0102:MQFB_COA,MQMI_NONE:MQFB_COD";
    params.Pmo.PutMsgRecFields = MQPMRF_MSG_ID | MQPMRF_FEEDBACK;
    allocate();
    EXPECT_EQ(records(56), std::string("\x01\x02", 2) + std::string(22, '\0') + std::string("\x03\x01\0\0", 4) +
                               std::string(24, '\0') + std::string("\x04\x01\0\0", 4));
}

TEST_F(DestinationListTest, AllFieldsMake108Bytes)
{
    params.ObjectRecList = "Q1,Q2";
    params.Pmo.PutMsgRecFields =
        MQPMRF_MSG_ID | MQPMRF_CORREL_ID | MQPMRF_GROUP_ID | MQPMRF_FEEDBACK | MQPMRF_ACCOUNTING_TOKEN;
    params.PutMsgRecList = "m:c:g:MQFB_QUIT:t,M:C:G:MQFB_EXPIRATION:T";
    allocate();
    const std::string all = records(216);
    EXPECT_EQ(all.find("m"), 0U);
    EXPECT_EQ(all.find("c"), 24U);
    EXPECT_EQ(all.find("g"), 48U);
    EXPECT_EQ(all.substr(72, 4), std::string("\0\x01\0\0", 4));
    EXPECT_EQ(all.find("t"), 76U);
    EXPECT_EQ(all.find("M"), 108U);
    EXPECT_EQ(all.find("T"), 184U);
}

TEST_F(DestinationListTest, FreeingForgetsEverything)
{
    params.ObjectRecList = "Q1,Q2";
    params.Pmo.PutMsgRecFields = MQPMRF_MSG_ID;
    allocate();
    for (int i = 0; i < 2; ++i) { // the second time there is nothing
        freeForDestinationList(&params);
        EXPECT_EQ(params.Od.ObjectRecPtr, nullptr);
        EXPECT_EQ(params.ResponseRecs, nullptr);
        EXPECT_EQ(params.Pmo.PutMsgRecPtr, nullptr);
        EXPECT_EQ(params.DestCount, 0);
        EXPECT_EQ(params.Od.RecsPresent, 0);
        EXPECT_EQ(params.Pmo.RecsPresent, 0);
    }
}

TEST_F(DestinationListTest, RefusedNameLeavesNothing)
{
    const std::string list = "Q1,Q2," + std::string(49, 'q') + ",Q4";
    params.ObjectRecList = list.c_str();
    EXPECT_EQ(allocate().status, 1);
    EXPECT_EQ(params.DestCount, 0);
    EXPECT_EQ(params.Od.ObjectRecPtr, nullptr);
}

TEST_F(DestinationListTest, FailedReallocationLeavesNothing)
{
    params.ObjectRecList = "Q1,Q2,Q3";
    fail_malloc_of(3 * sizeof(MQOR));
    const Written written = allocate();
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(written.err, "realloc(): Cannot allocate memory\n"
                           "allocateForDestinationList,#,12: realloc() failed. size=288\n");
    EXPECT_EQ(params.DestCount, 0);
    EXPECT_EQ(params.Od.ObjectRecPtr, nullptr);
}

TEST_F(DestinationListTest, FailedFirstRecordLeavesNothing)
{
    params.ObjectRecList = "Q1,Q2,Q3";
    fail_malloc_of(sizeof(MQOR));
    const Written written = allocate();
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(written.err, "malloc(): Cannot allocate memory\n"
                           "allocateForDestinationList,#,12: malloc() failed. size=96\n");
    EXPECT_EQ(params.DestCount, 0);
}

TEST_F(DestinationListTest, WithoutResponseRecordsNoResponsesArePrinted)
{
    params.ObjectRecList = "Q1,Q2,Q3";
    fail_malloc_of(3 * sizeof(MQRR));
    EXPECT_EQ(allocate().status, 0);
    EXPECT_EQ(params.DestCount, 3);
    EXPECT_EQ(params.ResponseRecs, nullptr);
    EXPECT_EQ(written_by([this] { print_responses("MQPUT", &params); }).out, "");
}

TEST_F(DestinationListTest, EveryPrefixOfALongListIsTakenOrRefused)
{
    const std::string all = "Q1:QM1,,Q2::QM2," + std::string(48, 'q') + ":" + std::string(48, 'm') + ",:,Q5:";
    const std::string fields =
        "0x01:MQFB_COA,a:b:c,," + std::string(24, 'x') + ":MQFB_NONE:y," + "0x" + std::string(48, '0') + ":z";
    params.Pmo.PutMsgRecFields = MQPMRF_MSG_ID | MQPMRF_FEEDBACK;
    for (std::size_t length = 0; length <= all.size(); ++length) {
        const std::string list = all.substr(0, length);
        params.ObjectRecList = list.c_str();
        for (std::size_t recordsLength = 0; recordsLength <= fields.size(); recordsLength += 3) {
            const std::string recordList = fields.substr(0, recordsLength);
            params.PutMsgRecList = recordList.c_str();
            const Written written = allocate();
            EXPECT_EQ(written.status, 0) << list << ' ' << recordList;
            freeForDestinationList(&params);
        }
    }
}

} // namespace
