// Property lists that are cut off, repeated or made of separators alone.
#include "calls_test.h"

#include "send.h"

#include <algorithm>

namespace {

class PropertyListTest : public CallsTest {
protected:
    PropertyListTest() { params.MsgHandle = FakeHmsg; }
    Written set(const std::string &list)
    {
        params.SetMpList = list.c_str();
        return written([this] { return make_mp(&params, hconn); });
    }
};

TEST_F(PropertyListTest, SetsOnTheRecordsHandle)
{
    EXPECT_EQ(set("MQTYPE_STRING:a:b").status, 0);
    EXPECT_EQ(fakeMqi.messageHandle, FakeHmsg);
    EXPECT_EQ(fakeMqi.propertyValueLength, MQVL_NULL_TERMINATED);
    EXPECT_EQ(params.Pmo.OriginalMsgHandle, FakeHmsg);
}

TEST_F(PropertyListTest, FailedMqsetmpIsALocalFailure)
{
    fakeMqi.answers["MQSETMP"] = {{MQCC_FAILED, MQRC_PROPERTY_NAME_ERROR}};
    EXPECT_EQ(set("MQTYPE_STRING:a:b,MQTYPE_STRING:c:d").status, 1);
    EXPECT_EQ(fakeMqi.count("MQSETMP"), 1);
}

TEST_F(PropertyListTest, ArgumentIsNotChanged)
{
    const std::string list = "MQTYPE_STRING:a:b,MQTYPE_INT8:c:1";
    set(list);
    EXPECT_STREQ(params.SetMpList, "MQTYPE_STRING:a:b,MQTYPE_INT8:c:1");
}

TEST_F(PropertyListTest, SeparatorsAloneEndInARefusal)
{
    EXPECT_EQ(set(":").err, "invalid MQSETMP parameter \n");
    EXPECT_EQ(set("::").err, "invalid MQSETMP parameter type=0 string=\n");
    EXPECT_EQ(set(",").err, "invalid MQSETMP parameter ,\n");
    EXPECT_EQ(set(",,,,").err, "invalid MQSETMP parameter ,,,,\n");
    EXPECT_EQ(fakeMqi.count("MQSETMP"), 0);
}

TEST_F(PropertyListTest, EveryCutOfAListIsSetOrRefused)
{
    const std::string all = "MQTYPE_BOOLEAN:b:TRUE,MQTYPE_BYTE_STRING:h:0a0B,MQTYPE_INT64:i:9000000000,"
                            "MQTYPE_FLOAT64:f:1e999,MQTYPE_NULL:n:,MQTYPE_AS_SET:x:y,MQTYPE_STRING:s:text";
    for (std::size_t length = 0; length <= all.size(); ++length) {
        const Written written = set(all.substr(0, length));
        const auto lines = std::count(written.err.begin(), written.err.end(), '\n');
        EXPECT_EQ(lines, written.status == 0 ? 0 : 1) << all.substr(0, length);
    }
}

TEST_F(PropertyListTest, EveryNumberOfDigitsIsTakenOrRefused)
{
    for (std::size_t digits = 1; digits <= 300; ++digits) {
        const Written written = set("MQTYPE_BYTE_STRING:b:" + std::string(digits, '7'));
        EXPECT_EQ(written.status, digits % 2 == 0 && digits <= 254 ? 0 : 1) << digits;
    }
}

} // namespace
