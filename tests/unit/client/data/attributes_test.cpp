// Inquiring and setting where the output lock cannot be had, and on an object that is open already.
#include "calls_test.h"

#include "attributes.h"

namespace {

class AttributesTest : public CallsTest {
protected:
    AttributesTest()
    {
        params.InqList = "MQIA_CURRENT_Q_DEPTH,MQCA_Q_NAME";
        params.SetList = "MQIA_TRIGGER_DEPTH:1";
    }
    Written inquired()
    {
        return written([this] { return CallMQINQ(&params, hconn); });
    }
    Written set()
    {
        return written([this] { return CallMQSET(&params, hconn); });
    }
};

TEST_F(AttributesTest, InquiryOpensAndClosesByItself)
{
    EXPECT_EQ(inquired().status, 0);
    EXPECT_EQ(fakeMqi.calls, (std::vector<std::string>{"MQOPEN", "MQINQ", "MQCLOSE"}));
    EXPECT_EQ(fakeMqi.openOptions, MQOO_INQUIRE);
    EXPECT_EQ(params.MsgCount, 1);
}

TEST_F(AttributesTest, InquiryUsesAnOpenObject)
{
    params.ObjectHobj = 99;
    EXPECT_EQ(inquired().status, 0);
    EXPECT_EQ(fakeMqi.calls, std::vector<std::string>{"MQINQ"});
    EXPECT_EQ(fakeMqi.hobj, 99);
    EXPECT_EQ(params.ObjectHobj, 99);
}

TEST_F(AttributesTest, InquiryWithAFailedOpenIsALocalFailure)
{
    fakeMqi.answers["MQOPEN"] = {{MQCC_FAILED, MQRC_UNKNOWN_OBJECT_NAME}};
    EXPECT_EQ(inquired().status, 1);
    EXPECT_EQ(fakeMqi.calls, std::vector<std::string>{"MQOPEN"});
}

TEST_F(AttributesTest, InquiryWithAFailedCloseIsALocalFailure)
{
    fakeMqi.answers["MQCLOSE"] = {{MQCC_FAILED, MQRC_HOBJ_ERROR}};
    EXPECT_EQ(inquired().status, 1);
}

TEST_F(AttributesTest, InquiryWithoutTheLockShowsNothingAndCloses)
{
    params.MsgCount = 2;
    params.IntervalMs = 500;
    const UnavailableLock lock(params);
    const Written written = inquired();
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.out, "");
    EXPECT_TRUE(intercepted.sleeps.empty());
    EXPECT_EQ(fakeMqi.calls, (std::vector<std::string>{"MQOPEN", "MQINQ", "MQCLOSE"}));
}

TEST_F(AttributesTest, SettingOpensAndClosesByItself)
{
    const Written written = set();
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(written.out, "[now] 1: MQSET MQIA_TRIGGER_DEPTH:1\n");
    EXPECT_EQ(fakeMqi.calls, (std::vector<std::string>{"MQOPEN", "MQSET", "MQCLOSE"}));
    EXPECT_EQ(fakeMqi.openOptions, MQOO_SET);
}

TEST_F(AttributesTest, SettingUsesAnOpenObject)
{
    params.ObjectHobj = 99;
    EXPECT_EQ(set().status, 0);
    EXPECT_EQ(fakeMqi.calls, std::vector<std::string>{"MQSET"});
    EXPECT_EQ(fakeMqi.hobj, 99);
}

TEST_F(AttributesTest, SettingWithAFailedCloseIsALocalFailure)
{
    fakeMqi.answers["MQCLOSE"] = {{MQCC_FAILED, MQRC_HOBJ_ERROR}};
    EXPECT_EQ(set().status, 1);
}

TEST_F(AttributesTest, SettingWithoutTheLockSetsAndEchoesNothing)
{
    const UnavailableLock lock(params);
    const Written written = set();
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.out, "");
    EXPECT_EQ(fakeMqi.calls, (std::vector<std::string>{"MQOPEN", "MQSET", "MQCLOSE"}));
}

} // namespace
