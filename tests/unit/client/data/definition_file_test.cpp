// Definition files as editors, other systems and accidents leave them.
#include "definition.h"

namespace {

class LinesTest : public DefinitionTest {};

TEST_F(LinesTest, CarriageReturnsBelongToTheLineEnd)
{
    const Written written = read("MD_MSGTYPE=REQUEST\r\nMD_FORMAT=ADMIN\r\nMD_REPLYTOQ=REPLY.QUEUE\r\n\r\n"
                                 "MQCFST=2016,0,1,'*'\r\nMQCFIN=1,2\r\nMQCFBS=7001,4,0x0A0B\r\nMQCFIL=3,2,4,5\r\n");
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(written.err, "");
    EXPECT_EQ(def.MsgType, MQMT_REQUEST);
    EXPECT_STREQ(def.Format, MQFMT_ADMIN);
    EXPECT_STREQ(def.ReplyToQ, "REPLY.QUEUE");
    EXPECT_EQ(def.Cfh.ParameterCount, 4);
}

TEST_F(LinesTest, LastLineNeedsNoEnd)
{
    EXPECT_EQ(read("MQCFIN=1,2\nMQCFIN=3,4").out, "Id : 1, MQCFT_INTEGER : 2\nId : 3, MQCFT_INTEGER : 4\n");
    EXPECT_EQ(read("MD_REPLYTOQ=Q1").status, 0);
    EXPECT_STREQ(def.ReplyToQ, "Q1");
    EXPECT_EQ(read("MD_REPLYTOQ=Q2\r").status, 0);
    EXPECT_STREQ(def.ReplyToQ, "Q2");
}

TEST_F(LinesTest, EmptyFileAndEmptyLinesSayNothing)
{
    for (const char *text : {"", "\n", "\n\n\n", "\r\n", "=\n", "===\n", "=,'\n"}) {
        const Written written = read(text);
        EXPECT_EQ(written.status, 0) << text;
        EXPECT_EQ(written.out + written.err, "") << text;
        EXPECT_EQ(def.Cfh.ParameterCount, 0) << text;
    }
}

TEST_F(LinesTest, MegabyteLineIsReadInPieces)
{
    // 1024 characters a piece: the keyword stands in the first, and a record at the head of a later one counts.
    const std::string line = "MD_REPLYTOQ=" + std::string(1024 - 12, 'q') + std::string(1 << 20, 'x') + "MQCFIN=1,2";
    const Written written = read(line + "\nMQCFIN=3,4\n");
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(written.out, "Id : 1, MQCFT_INTEGER : 2\nId : 3, MQCFT_INTEGER : 4\n");
    EXPECT_EQ(std::string(def.ReplyToQ), std::string(48, 'q'));
}

TEST_F(LinesTest, MegabyteWithoutALineEndIsUnknownKeywords)
{
    EXPECT_EQ(read(std::string(1 << 20, 'x')).status, 0);
    EXPECT_EQ(read(std::string(1 << 20, '=')).status, 0);
    EXPECT_EQ(read(std::string(1 << 20, '\0')).status, 0);
    EXPECT_EQ(def.Params, nullptr);
}

TEST_F(LinesTest, ZeroByteEndsItsLine)
{
    const Written written = read(std::string("MD_REPLYTOQ=AB\0CD\nMQCFIN=1,2\0,3\n", 33));
    EXPECT_EQ(written.status, 0);
    EXPECT_STREQ(def.ReplyToQ, "AB");
    EXPECT_EQ(written.out, "Id : 1, MQCFT_INTEGER : 2\n");
}

TEST_F(LinesTest, FullLineOfListValues)
{
    std::string line = "MQCFIL=1,507";
    for (int i = 0; i < 506; ++i)
        line += ",1";
    ASSERT_EQ(line.size(), 1024U);
    EXPECT_EQ(read(line + "\n").err, "Parameter missing : MQCFIL : Values\n");
    line.replace(line.find("507"), 3, "506");
    EXPECT_EQ(read(line + "\n").status, 0);
    EXPECT_EQ(def.structures().at(0).size(), 16U + 506 * 4);
}

struct NamedHeader {
    const char *name;
    MQLONG value;
};

class HeaderTypeTest : public DefinitionTest, public testing::WithParamInterface<NamedHeader> {};

TEST_P(HeaderTypeTest, HasItsNumber)
{
    EXPECT_EQ(read(std::string("MQCFH_TYPE=") + GetParam().name + "\n").err, "");
    EXPECT_EQ(def.Cfh.Type, GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(Each, HeaderTypeTest,
                         testing::Values(NamedHeader{"COMMAND", 1}, NamedHeader{"COMMAND_XR", 16},
                                         NamedHeader{"RESPONSE", 2}, NamedHeader{"XR_MSG", 17},
                                         NamedHeader{"XR_ITEM", 18}, NamedHeader{"XR_SUMMARY", 19},
                                         NamedHeader{"USER", 8}, NamedHeader{"NONE", 0}, NamedHeader{"EVENT", 7},
                                         NamedHeader{"TRACE_ROUTE", 10}, NamedHeader{"REPORT", 12},
                                         NamedHeader{"STATISTICS", 21}, NamedHeader{"ACCOUNTING", 22},
                                         NamedHeader{"APP_ACTIVITY", 26}));

class HeaderTest : public DefinitionTest {};

TEST_F(HeaderTest, DefaultsHoldWhereTheFileSaysNothing)
{
    read("MQCFIN=1,2\n");
    EXPECT_EQ(def.MdVersion, 2);
    EXPECT_STREQ(def.Format, "        ");
    EXPECT_EQ(def.MsgType, 8);
    EXPECT_EQ(def.Cfh.Type, 1);
    EXPECT_EQ(def.Cfh.StrucLength, 36);
    EXPECT_EQ(def.Cfh.Version, 1);
    EXPECT_EQ(def.Cfh.Command, 0);
    EXPECT_EQ(def.Cfh.MsgSeqNumber, 1);
    EXPECT_EQ(def.Cfh.Control, 1);
    EXPECT_EQ(def.Cfh.ParameterCount, 1);
}

TEST_F(HeaderTest, NamedValues)
{
    read("MQCFH_VERSION=MQCFH_VERSION_2\nMQCFH_CTRL=MQCFC_NOT_LAST\nMQCFH_COMPCODE=FAILED\n");
    EXPECT_EQ(def.Cfh.Version, 2);
    EXPECT_EQ(def.Cfh.Control, 0);
    EXPECT_EQ(def.Cfh.CompCode, 2);
    read("MQCFH_VERSION=MQCFH_VERSION_3\nMQCFH_CTRL=MQCFC_LAST\nMQCFH_COMPCODE=OK\n");
    EXPECT_EQ(def.Cfh.Version, 3);
    EXPECT_EQ(def.Cfh.Control, 1);
    EXPECT_EQ(def.Cfh.CompCode, 0);
}

TEST_F(HeaderTest, GivenParameterCountHolds)
{
    read("MQCFH_PARAMCOUNT=1\nMQCFGR=8001,1\nMQCFIN=1,2\n");
    EXPECT_EQ(def.Cfh.ParameterCount, 1);
    EXPECT_EQ(def.structures().size(), 2U);
}

TEST_F(HeaderTest, RecordsInFrontOfAFaultAreCounted)
{
    EXPECT_EQ(read("MQCFIN=1,2\nMQCFIN=1\nMQCFIN=3,4\n").status, 1);
    EXPECT_EQ(def.Cfh.ParameterCount, 1);
    EXPECT_EQ(def.structures().size(), 1U);
}

class RecordTest : public DefinitionTest {
protected:
    /// The one structure of the record, as bytes.
    std::string structure(const std::string &record)
    {
        const Written written = read(record + "\n");
        EXPECT_EQ(written.status, 0) << written.err;
        const std::vector<std::string> all = def.structures();
        return all.size() == 1 ? all[0] : "";
    }
};

TEST_F(RecordTest, Integer64StandsBehindAReservedWord)
{
    const std::string bytes = structure("MQCFIN64=702,-2");
    MQCFIN64 cfin64;
    ASSERT_EQ(bytes.size(), sizeof cfin64);
    std::memcpy(&cfin64, bytes.data(), sizeof cfin64);
    EXPECT_EQ(cfin64.Type, MQCFT_INTEGER64);
    EXPECT_EQ(cfin64.StrucLength, 24);
    EXPECT_EQ(cfin64.Parameter, 702);
    EXPECT_EQ(cfin64.Reserved, 0);
    EXPECT_EQ(cfin64.Value, -2);
}

TEST_F(RecordTest, Integer64ListHasNoReservedWord)
{
    const std::string bytes = structure("MQCFIL64=703,2,1,0x100000000");
    ASSERT_EQ(bytes.size(), 32U);
    MQINT64 second = 0;
    std::memcpy(&second, bytes.data() + 24, sizeof second);
    EXPECT_EQ(second, 0x100000000);
}

TEST_F(RecordTest, ByteStringHasNoCharacterSet)
{
    EXPECT_EQ(structure("MQCFBS=7001,5,ABC"),
              std::string("\x09\0\0\0\x18\0\0\0\x59\x1b\0\0\x05\0\0\0ABC\0\0\0\0\0", 24));
}

TEST_F(RecordTest, StringFilter)
{
    EXPECT_EQ(structure("MQCFSF=2016,18,819,3,'A*'"),
              std::string("\x0e\0\0\0\x1c\0\0\0\xe0\x07\0\0\x12\0\0\0\x33\x03\0\0\x03\0\0\0A*\0\0", 28));
}

TEST_F(RecordTest, ByteStringFilter)
{
    EXPECT_EQ(structure("MQCFBF=7002,1,2,0xff00"),
              std::string("\x0f\0\0\0\x18\0\0\0\x5a\x1b\0\0\x01\0\0\0\x02\0\0\0\xff\0\0\0", 24));
}

TEST_F(RecordTest, StringList)
{
    EXPECT_EQ(structure("MQCFSL=3011,0,2,3,AB,DEFG"),
              std::string("\x06\0\0\0\x20\0\0\0\xc3\x0b\0\0\0\0\0\0\x02\0\0\0\x03\0\0\0AB\0DEF\0\0", 32));
}

TEST_F(RecordTest, Group)
{
    EXPECT_EQ(structure("MQCFGR=8001,2"), std::string("\x14\0\0\0\x10\0\0\0\x41\x1f\0\0\x02\0\0\0", 16));
}

TEST_F(RecordTest, DeclaredLengthMayBeLongerThanAnyLine)
{
    const std::string bytes = structure("MQCFST=1,0,1048576,abc");
    EXPECT_EQ(bytes.size(), 20U + 1048576);
    EXPECT_EQ(bytes.substr(20, 4), std::string("abc\0", 4));
}

TEST_F(RecordTest, NoMemoryForANodeEndsTheReading)
{
    fail_malloc_of(sizeof(PcfParamNode));
    params.OutputForm = 0;
    const Written written = read("MQCFST=1,0,100,a\n");
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.err, "malloc(): Cannot allocate memory\nread_pcf_file,#,12: malloc() failed. size=" +
                               std::to_string(sizeof(PcfParamNode)) + "\n");
    EXPECT_EQ(def.Params, nullptr);
}

} // namespace
