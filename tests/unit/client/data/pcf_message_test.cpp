// The message made of a definition: its descriptor, its bytes, and that the display shows what the file said.
#include "definition.h"

#include "common.h"
#include "display.h"

namespace {

class PcfMessageTest : public DefinitionTest {
protected:
    Written make()
    {
        return written_by([this] { message.reset(make_pcf_message(&params.Md, &def, &length)); });
    }
    std::string shown()
    {
        return written_by([this] { printPCF(message.get(), length, def.Cfh.ParameterCount + 1, &params); }).out;
    }

    Buffer<> message;
    MQLONG length = -1;
};

TEST_F(PcfMessageTest, ExampleIs84BytesLong)
{
    read("MQCFST=2016,0,1,'*'\nMQCFIL=1002,2,2016,20\n");
    make();
    EXPECT_EQ(length, 84);
}

TEST_F(PcfMessageTest, DescriptorFieldsAreReplacedWhole)
{
    read("MD_VERSION=1\nMD_MSGTYPE=REPLY\nMD_FORMAT=PCF\nMD_REPLYTOQ=A\n");
    std::memset(params.Md.ReplyToQ, 'x', 48);
    std::memset(params.Md.ReplyToQMgr, 'x', 48);
    make();
    EXPECT_EQ(params.Md.Version, 1);
    EXPECT_EQ(params.Md.MsgType, MQMT_REPLY);
    EXPECT_EQ(std::string(params.Md.Format, 8), "MQPCF   ");
    EXPECT_EQ(std::string(params.Md.ReplyToQ, 48), "A" + std::string(47, '\0'));
    EXPECT_EQ(std::string(params.Md.ReplyToQMgr, 48), std::string(48, '\0'));
}

TEST_F(PcfMessageTest, StructuresStandInTheOrderOfTheFile)
{
    read("MQCFIN=1,2\nMQCFBS=3,2,AB\nMQCFIN64=4,5\n");
    make();
    std::string expected(message.get(), 36);
    for (const std::string &structure : def.structures())
        expected += structure;
    EXPECT_EQ(std::string(message.get(), static_cast<std::size_t>(length)), expected);
}

TEST_F(PcfMessageTest, DisplayShowsWhatTheFileSaid)
{
    read("MQCFH_COMMAND=13\nMQCFIN=20,-5\nMQCFST=2016,819,5,'QUEUE'\nMQCFIL=1002,3,1,0x10,-3\n"
         "MQCFSL=3011,0,2,3,'ABC',DEF\nMQCFBS=7001,4,0x4142\nMQCFIF=3,10,500\nMQCFSF=2016,18,0,2,A*\n"
         "MQCFBF=7002,1,3,xyz\nMQCFGR=8001,0\nMQCFIN64=702,-9000000000\nMQCFIL64=703,2,1,-1\n");
    make();
    EXPECT_EQ(
        shown(),
        "*MQCFH(MQCFT_COMMAND) Type[1] StrucLength[36] Version[1] Command[13] MsgSeqNumber[1] Control[1] "
        "CompCode[0] Reason[0] ParameterCount[11]\n"
        "(MQCFT_INTEGER) Type[3] StrucLength[16] Parameter[20] Value[-5]\n"
        "(MQCFT_STRING) Type[4] StrucLength[28] Parameter[2016] CodedCharSetId[819] StringLength[5] String[QUEUE]\n"
        "(MQCFT_INTEGER_LIST) Type[5] StrucLength[28] Parameter[1002] Count[3] Values[1,16,-3]\n"
        "(MQCFT_STRING_LIST) Type[6] StrucLength[32] Parameter[3011] CodedCharSetId[0] Count[2] StringLength[3] "
        "String1[ABC] String2[DEF]\n"
        "(MQCFT_BYTE_STRING) Type[9] StrucLength[20] Parameter[7001] StringLength[4] String[AB..]\n"
        "(MQCFT_INTEGER_FILTER) Type[13] StrucLength[20] Parameter[3] Operator[10] FilterValue[500]\n"
        "(MQCFT_STRING_FILTER) Type[14] StrucLength[28] Parameter[2016] Operator[18] CodedCharSetId[0] "
        "FilterValueLength[2] FilterValue[A*]\n"
        "(MQCFT_BYTE_STRING_FILTER) Type[15] StrucLength[24] Parameter[7002] Operator[1] FilterValueLength[3] "
        "FilterValue[xyz]\n"
        "(MQCFT_GROUP) Type[20] StrucLength[16] Parameter[8001] ParameterCount[0]\n"
        "(MQCFT_INTEGER64) Type[23] StrucLength[24] Parameter[702] Value[-9000000000]\n"
        "(MQCFT_INTEGER64_LIST) Type[25] StrucLength[32] Parameter[703] Count[2] Values[1,-1]\n");
}

TEST_F(PcfMessageTest, NoMemoryForTheHeader)
{
    read("MQCFIN=1,2\n");
    fail_malloc_of(36);
    EXPECT_EQ(make().err, "malloc(): Cannot allocate memory\nmake_pcf_message,#,12: malloc() failed. size=36\n");
    EXPECT_EQ(message, nullptr);
}

TEST_F(PcfMessageTest, NoMemoryForAStructure)
{
    read("MQCFIN=1,2\nMQCFIN=3,4\n");
    fail_malloc_of(36 + 16 + 16 + 1);
    EXPECT_EQ(make().err, "realloc(): Cannot allocate memory\nmake_pcf_message,#,12: realloc() failed. size=69\n");
    EXPECT_EQ(message, nullptr);
}

TEST_F(PcfMessageTest, MoreBytesThanTheMqiCountsCannotBeHad)
{
    MQLONG lying[4] = {MQCFT_INTEGER, 2147483647, 0, 0};
    PcfParamNode node{lying, nullptr};
    def.Params = &node;
    const Written written = make();
    def.Params = nullptr;
    EXPECT_EQ(written.err,
              "realloc(): Cannot allocate memory\nmake_pcf_message,#,12: realloc() failed. size=2147483684\n");
    EXPECT_EQ(message, nullptr);
}

class PutFromPcfDefTest : public DefinitionTest {
protected:
    Written put(const std::string &text)
    {
        read(text); // writes the file
        fakeMqi.calls.clear();
        return written([this] { return PutFromPcfDef(&params, hconn); });
    }
};

TEST_F(PutFromPcfDefTest, OpensAndClosesByItself)
{
    EXPECT_EQ(put("MQCFIN=1,2\n").status, 0);
    EXPECT_EQ(fakeMqi.calls, (std::vector<std::string>{"MQOPEN", "MQPUT", "MQCLOSE"}));
}

TEST_F(PutFromPcfDefTest, UsesAnOpenQueue)
{
    params.OutputHobj = 99;
    EXPECT_EQ(put("MQCFIN=1,2\n").status, 0);
    EXPECT_EQ(fakeMqi.calls, std::vector<std::string>{"MQPUT"});
    EXPECT_EQ(fakeMqi.hobj, 99);
}

TEST_F(PutFromPcfDefTest, FailedOpenIsTheStatus)
{
    fakeMqi.answers["MQOPEN"] = {{MQCC_FAILED, MQRC_UNKNOWN_OBJECT_NAME}};
    EXPECT_EQ(put("MQCFIN=1,2\n").status, 3);
}

TEST_F(PutFromPcfDefTest, BadFileOpensNothing)
{
    EXPECT_EQ(put("MQCFIN=1\n").status, 1);
    EXPECT_EQ(fakeMqi.calls.size(), 0U);
}

TEST_F(PutFromPcfDefTest, EveryPutStartsFromTheSameDescriptor)
{
    params.MsgCount = 3;
    EXPECT_EQ(put("MQCFIN=1,2\n").status, 0);
    ASSERT_EQ(fakeMqi.mds.size(), 3U);
    for (const MQMD &md : fakeMqi.mds)
        EXPECT_EQ(md.MsgId[0], 0);
    EXPECT_EQ(fakeMqi.bodies[0], fakeMqi.bodies[2]);
}

TEST_F(PutFromPcfDefTest, WithoutTheLockNothingIsPut)
{
    read("MQCFIN=1,2\n");
    const UnavailableLock lock(params);
    const Written written = this->written([this] { return PutFromPcfDef(&params, hconn); });
    EXPECT_EQ(written.status, 1);
    EXPECT_EQ(written.out, "");
    EXPECT_EQ(fakeMqi.count("MQPUT"), 0);
}

TEST_F(PutFromPcfDefTest, FailedCloseIsALocalFailure)
{
    fakeMqi.answers["MQCLOSE"] = {{MQCC_FAILED, MQRC_HOBJ_ERROR}};
    EXPECT_EQ(put("MQCFIN=1,2\n").status, 1);
}

} // namespace
