// Which fields of a message got, and which of the user's, the descriptor of a put is made of.
#include "receive.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace {

class SetOutputMdTest : public testing::Test {
protected:
    SetOutputMdTest()
    {
        std::memset(&get.Md, 'g', sizeof get.Md);
        put.Md = get.Md; // inherited
        std::memset(&user.Md, 'u', sizeof user.Md);
        user.Md.MsgType = MQMT_DATAGRAM;
    }
    void fill() { EXPECT_EQ(setOutputMD(&get, &put, &user), 0); }
    void set_type(MQLONG type) { user.Md.MsgType = type; }

    static bool holds(const MQBYTE24 &field, unsigned char byte)
    {
        return std::all_of(std::begin(field), std::end(field), [byte](MQBYTE b) { return b == byte; });
    }

    RunParams get = DEFAULT_RUN_PARAMS;
    RunParams put = DEFAULT_RUN_PARAMS;
    RunRecord user = DEFAULT_RUN_PARAMS;
};

TEST_F(SetOutputMdTest, NothingGivenKeepsWhatIsThere)
{
    fill();
    EXPECT_EQ(std::memcmp(&put.Md, &get.Md, sizeof put.Md), 0);
}

struct Field {
    const char *name;
    MQULONG bit;
    std::size_t offset;
    std::size_t size;
};

#define FIELD(name, bit)                                                                                               \
    Field                                                                                                              \
    {                                                                                                                  \
#name, bit, offsetof(MQMD, name), sizeof(MQMD::name)                                                           \
    }

class GivenFieldTest : public SetOutputMdTest, public testing::WithParamInterface<Field> {};

TEST_P(GivenFieldTest, ReplacesThatFieldAlone)
{
    const Field field = GetParam();
    put.MdFieldsSet = field.bit;
    fill();
    MQMD expected = get.Md;
    std::memcpy(reinterpret_cast<char *>(&expected) + field.offset,
                reinterpret_cast<const char *>(&user.Md) + field.offset, field.size);
    EXPECT_EQ(std::memcmp(&put.Md, &expected, sizeof expected), 0) << field.name;
}

INSTANTIATE_TEST_SUITE_P(
    Each, GivenFieldTest,
    testing::Values(FIELD(Version, 0x2), FIELD(Report, 0x4), FIELD(MsgType, 0x8), FIELD(Expiry, 0x10),
                    FIELD(Feedback, 0x20), FIELD(Encoding, 0x40), FIELD(CodedCharSetId, 0x80), FIELD(Format, 0x100),
                    FIELD(Priority, 0x200), FIELD(Persistence, 0x400), FIELD(MsgId, 0x800), FIELD(CorrelId, 0x1000),
                    FIELD(BackoutCount, 0x2000), FIELD(ReplyToQ, 0x4000), FIELD(ReplyToQMgr, 0x8000),
                    FIELD(UserIdentifier, 0x10000), FIELD(AccountingToken, 0x20000), FIELD(ApplIdentityData, 0x40000),
                    FIELD(PutApplType, 0x80000), FIELD(PutApplName, 0x100000), FIELD(PutDate, 0x200000),
                    FIELD(PutTime, 0x400000), FIELD(ApplOriginData, 0x800000), FIELD(GroupId, 0x1000000),
                    FIELD(MsgSeqNumber, 0x2000000), FIELD(Offset, 0x4000000), FIELD(MsgFlags, 0x8000000),
                    FIELD(OriginalLength, 0x10000000)),
    [](const testing::TestParamInfo<Field> &tested) { return std::string(tested.param.name); });

TEST_F(SetOutputMdTest, ReplyAndReportGetANewMsgIdAndNameTheMessageGot)
{
    for (const MQLONG type : {MQMT_REPLY, MQMT_REPORT}) {
        set_type(type);
        user.Md.Report = put.Md.Report = MQRO_NONE;
        std::memset(get.Md.MsgId, 'm', sizeof get.Md.MsgId);
        put.Md = get.Md;
        put.Md.Report = MQRO_NONE;
        fill();
        EXPECT_TRUE(holds(put.Md.MsgId, 0));
        EXPECT_TRUE(holds(put.Md.CorrelId, 'm'));
    }
}

TEST_F(SetOutputMdTest, RequestAndDatagramNameNothing)
{
    for (const MQLONG type : {MQMT_REQUEST, MQMT_DATAGRAM}) {
        set_type(type);
        fill();
        EXPECT_TRUE(holds(put.Md.MsgId, 'g'));
        EXPECT_TRUE(holds(put.Md.CorrelId, 'g'));
    }
}

TEST_F(SetOutputMdTest, PassMsgIdCountsWhereTheUserGaveIt)
{
    set_type(MQMT_REPLY);
    user.Md.Report = MQRO_PASS_MSG_ID;
    put.Md.Report = MQRO_NONE;
    fill();
    EXPECT_TRUE(holds(put.Md.MsgId, 'g'));

    user.Md.Report = MQRO_NONE;
    put.Md.Report = MQRO_PASS_MSG_ID; // inherited
    fill();
    EXPECT_TRUE(holds(put.Md.MsgId, 0));
}

TEST_F(SetOutputMdTest, PassCorrelIdCountsWhereTheDescriptorHasIt)
{
    set_type(MQMT_REPLY);
    std::memset(get.Md.MsgId, 'm', sizeof get.Md.MsgId);
    user.Md.Report = MQRO_NONE;
    put.Md.Report = MQRO_PASS_CORREL_ID; // inherited
    fill();
    EXPECT_TRUE(holds(put.Md.CorrelId, 'g'));

    user.Md.Report = MQRO_PASS_CORREL_ID;
    put.Md.Report = MQRO_NONE; // the user's Report is not among the fields given
    fill();
    EXPECT_TRUE(holds(put.Md.CorrelId, 'm'));
}

} // namespace
