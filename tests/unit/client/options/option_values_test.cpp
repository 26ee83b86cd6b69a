// What each option writes into the record.

#include "parsed.h"

#include "mqicalls.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

template <class Element, std::size_t Size>
std::string bytes(const Element (&field)[Size], std::size_t length = Size)
{
    return {reinterpret_cast<const char *>(field), length};
}

const std::string zeros(300, '\0');

/// The record as the template has it, but for the names that make the command line complete.
RunParams untouched()
{
    RunParams params = DEFAULT_RUN_PARAMS;
    return params;
}

} // namespace

TEST(OptionValues, ATextPointsToItsArgument)
{
    const struct {
        const char *flag;
        const char *RunParams::*field;
    } cases[] = {
        {"-q", &RunParams::QName},          {"-m", &RunParams::MsgText},
        {"-mx", &RunParams::MsgHex},        {"-f", &RunParams::InputFile},
        {"-o", &RunParams::OutputFile},     {"-g", &RunParams::OutputDir},
        {"-d", &RunParams::InputDir},       {"-dl", &RunParams::LogicalMsgDelimiter},
        {"-set", &RunParams::SetList},      {"-inq", &RunParams::InqList},
        {"-smp", &RunParams::SetMpList},    {"-p", &RunParams::ProcessName},
        {"-nl", &RunParams::NamelistName},  {"-pcf", &RunParams::PcfFile},
        {"-nd", &RunParams::NameValueData}, {"-or", &RunParams::ObjectRecList},
        {"-dq", &RunParams::DynamicQName},  {"-mr", &RunParams::PutMsgRecList},
        {"-sf", &RunParams::SyncStartFile}, {"-ru", &RunParams::OcspUrlList},
        {"-qm", &RunParams::QMgrName},
    };
    for (const auto &one : cases) {
        const Parsed parsed = parse({"-ss", one.flag, "some text"});
        EXPECT_STREQ(parsed.secondary.*one.field, "some text") << one.flag;
        EXPECT_EQ(parsed.primary.*one.field, nullptr) << one.flag;
    }
}

TEST(OptionValues, QueueNamesOfPairedOperationsAreTexts)
{
    EXPECT_STREQ(parse({"-ss", "-oq", "A"}).secondary.OutputQName, "A");
    EXPECT_STREQ(parse({"-ss", "-iq", "A"}).secondary.InputQName, "A");
}

TEST(OptionValues, AValueMayBeginWithAMinus)
{
    EXPECT_STREQ(parseComplete({"-m", "-n"}).primary.MsgText, "-n");
}

TEST(OptionValues, TheVersionOptionIsAValueWhereAValueIsExpected)
{
    const Parsed parsed = parseComplete({"-m", "-v"});
    EXPECT_EQ(parsed.result(), CommandLine::Single);
    EXPECT_STREQ(parsed.primary.MsgText, "-v");
}

TEST(OptionValues, AnEmptyTextIsGiven)
{
    EXPECT_STREQ(parseComplete({"-m", ""}).primary.MsgText, "");
}

TEST(OptionValues, ATextOfAMegabyteIsTaken)
{
    const std::string text(1 << 20, 'x');
    EXPECT_EQ(parseComplete({"-m", text}).primary.MsgText, text);
}

TEST(OptionValues, FlagsSetTheirField)
{
    const struct {
        const char *flag;
        MQLONG RunParams::*field;
        MQLONG value;
    } cases[] = {
        {"-r", &RunParams::GetRepeatedly, 1},       {"-b", &RunParams::ForceBackout, 1},
        {"-br", &RunParams::BrowseMode, 1},         {"-brv", &RunParams::BrowseMode, 2},
        {"-dp", &RunParams::DumpMode, 1},           {"-dpv", &RunParams::DumpMode, 2},
        {"-raw", &RunParams::OutputForm, 1},        {"-hex", &RunParams::OutputForm, 2},
        {"-mc", &RunParams::MatchCorrelToMsgId, 1}, {"-im", &RunParams::InheritMd, 1},
        {"-tr", &RunParams::ApiTrace, 1},           {"-sd", &RunParams::SkipDisc, 1},
        {"-ca", &RunParams::ContinueOnConnFail, 1}, {"-ac", &RunParams::AppendCounter, 1},
        {"-y", &RunParams::YieldAfterCall, 1},
    };
    for (const auto &one : cases)
        EXPECT_EQ(parseComplete({one.flag}).primary.*one.field, one.value) << one.flag;
}

TEST(OptionValues, NumbersSetTheirField)
{
    const struct {
        const char *flag;
        MQLONG RunParams::*field;
    } cases[] = {
        {"-l", &RunParams::MsgLength},
        {"-n", &RunParams::MsgCount},
        {"-i", &RunParams::IntervalMs},
        {"-sz", &RunParams::MaxMsgSize},
        {"-ds", &RunParams::DisplaySize},
        {"-as", &RunParams::SegmentSize},
        {"-c", &RunParams::ConnLoopCount},
        {"-wp", &RunParams::WaitMs},
        {"-cr", &RunParams::ConnRetryCount},
        {"-nt", &RunParams::ThreadCount},
        {"-ni", &RunParams::InnerConnThreadCount},
    };
    for (const auto &one : cases) {
        const Parsed parsed = parseComplete({one.flag, "17"});
        EXPECT_EQ(parsed.result(), CommandLine::Single) << one.flag;
        EXPECT_EQ(parsed.primary.*one.field, 17) << one.flag;
    }
}

TEST(OptionValues, NumbersOfMqiStructuresSetTheirField)
{
    EXPECT_EQ(parseComplete({"-ex", "17"}).primary.Md.Expiry, 17);
    EXPECT_EQ(parseComplete({"-cc", "1208"}).primary.Md.CodedCharSetId, 1208);
    EXPECT_EQ(parseComplete({"-pr", "9"}).primary.Md.Priority, 9);
    EXPECT_EQ(parseComplete({"-ms", "3"}).primary.Md.MsgSeqNumber, 3);
    EXPECT_EQ(parseComplete({"-of", "4"}).primary.Md.Offset, 4);
    EXPECT_EQ(parseComplete({"-ol", "5"}).primary.Md.OriginalLength, 5);
    EXPECT_EQ(parseComplete({"-fg", "6"}).primary.Rfh2.Flags, 6);
    EXPECT_EQ(parseComplete({"-wi", "-1"}).primary.Gmo.WaitInterval, -1);
}

TEST(OptionValues, NumbersAreReadLeniently)
{
    EXPECT_EQ(parseComplete({"-i", "abc"}).primary.IntervalMs, 0);
    EXPECT_EQ(parseComplete({"-n", "  12x"}).primary.MsgCount, 12);
    EXPECT_EQ(parseComplete({"-n", "+12"}).primary.MsgCount, 12);
    EXPECT_EQ(parseComplete({"-n", "0012"}).primary.MsgCount, 12);
    EXPECT_EQ(parseComplete({"-pr", "0x10"}).primary.Md.Priority, 0);
}

TEST(OptionValues, ANegativeCountIsTaken)
{
    EXPECT_EQ(parseComplete({"-n", "-3"}).primary.MsgCount, -3);
}

TEST(OptionValues, MinusOneIsTheDefaultWhereItIsAllowed)
{
    EXPECT_EQ(parseComplete({"-l", "5", "-l", "-1"}).primary.MsgLength, -1);
    EXPECT_EQ(parseComplete({"-as", "5", "-as", "-1"}).primary.SegmentSize, -1);
    EXPECT_EQ(parseComplete({"-ds", "-1"}).primary.DisplaySize, -1);
}

TEST(OptionValues, ANumberThatIsTooLargeIsTheLargest)
{
    EXPECT_EQ(parseComplete({"-n", "99999999999999999999"}).primary.MsgCount, 2147483647);
    EXPECT_EQ(parseComplete({"-n", "2147483648"}).primary.MsgCount, 2147483647);
    EXPECT_EQ(parseComplete({"-n", "-99999999999999999999"}).primary.MsgCount, -2147483647 - 1);
}

TEST(OptionValues, AllShowsTheWholeMessage)
{
    EXPECT_EQ(parseComplete({"-ds", "all"}).primary.DisplaySize, -1);
}

TEST(OptionValues, ShowingNothingIsAllowed)
{
    EXPECT_EQ(parseComplete({"-ds", "0"}).primary.DisplaySize, 0);
}

TEST(OptionValues, CharactersFillTheBeginningOfTheirField)
{
    EXPECT_EQ(bytes(parseComplete({"-rq", "RQ"}).primary.Md.ReplyToQ), "RQ" + zeros.substr(0, 46));
    EXPECT_EQ(bytes(parseComplete({"-rm", "RM"}).primary.Md.ReplyToQMgr), "RM" + zeros.substr(0, 46));
    EXPECT_EQ(bytes(parseComplete({"-ui", "me"}).primary.Md.UserIdentifier), "me" + zeros.substr(0, 10));
    EXPECT_EQ(bytes(parseComplete({"-ap", "id"}).primary.Md.ApplIdentityData), "id" + zeros.substr(0, 30));
    EXPECT_EQ(bytes(parseComplete({"-pn", "pn"}).primary.Md.PutApplName), "pn" + zeros.substr(0, 26));
    EXPECT_EQ(bytes(parseComplete({"-pd", "20220422"}).primary.Md.PutDate), "20220422");
    EXPECT_EQ(bytes(parseComplete({"-pt", "13050712"}).primary.Md.PutTime), "13050712");
    EXPECT_EQ(bytes(parseComplete({"-ao", "abcd"}).primary.Md.ApplOriginData), "abcd");
    EXPECT_EQ(bytes(parseComplete({"-x", "h(1)"}).primary.Cd.ConnectionName), "h(1)" + zeros.substr(0, 260));
    EXPECT_EQ(bytes(parseComplete({"-ch", "CH"}).primary.Cd.ChannelName), "CH" + zeros.substr(0, 18));
    EXPECT_EQ(bytes(parseComplete({"-la", "(9)"}).primary.Cd.LocalAddress), "(9)" + zeros.substr(0, 45));
    EXPECT_EQ(bytes(parseComplete({"-cl", "cert"}).primary.Cd.CertificateLabel), "cert" + zeros.substr(0, 60));
    EXPECT_EQ(bytes(parseComplete({"-cs", "AES"}).primary.Cd.SSLCipherSpec), "AES" + zeros.substr(0, 29));
    EXPECT_EQ(bytes(parseComplete({"-kr", "/k"}).primary.Sco.KeyRepository), "/k" + zeros.substr(0, 254));
    EXPECT_EQ(bytes(parseComplete({"-om", "QM2"}).primary.Od.ObjectQMgrName), "QM2" + zeros.substr(0, 45));
    EXPECT_EQ(bytes(parseComplete({"-au", "you"}).primary.Od.AlternateUserId), "you" + zeros.substr(0, 9));
}

TEST(OptionValues, AShorterValueLeavesTheRestOfTheField)
{
    EXPECT_EQ(bytes(parseComplete({"-rq", "LONGER", "-rq", "abc"}).primary.Md.ReplyToQ, 7), std::string("abcGER\0", 7));
}

TEST(OptionValues, ExactlyAsLongAsTheFieldFits)
{
    const std::string name(48, 'Q');
    const Parsed parsed = parseComplete({"-rq", name});
    EXPECT_EQ(bytes(parsed.primary.Md.ReplyToQ), name);
    EXPECT_EQ(parsed.primary.Md.ReplyToQMgr[0], '\0');
    EXPECT_EQ(bytes(parseComplete({"-x", std::string(264, 'h')}).primary.Cd.ConnectionName), std::string(264, 'h'));
    EXPECT_EQ(bytes(parseComplete({"-kr", std::string(256, 'k')}).primary.Sco.KeyRepository), std::string(256, 'k'));
}

TEST(OptionValues, NamesOfTheObjectDescriptorAreCut)
{
    const Parsed parsed = parseComplete({"-om", std::string(60, 'M'), "-au", std::string(60, 'A')});
    EXPECT_EQ(parsed.result(), CommandLine::Single);
    EXPECT_EQ(bytes(parsed.primary.Od.ObjectQMgrName), std::string(48, 'M'));
    EXPECT_EQ(bytes(parsed.primary.Od.AlternateUserId), std::string(12, 'A'));
    EXPECT_EQ(bytes(parsed.primary.Od.DynamicQName, 5), "AMQ.*");
}

TEST(OptionValues, ADynamicNameReplacesTheWholeDefault)
{
    EXPECT_EQ(bytes(parseComplete({"-dq", "D"}).primary.Od.DynamicQName), "D" + zeros.substr(0, 47));
    EXPECT_EQ(bytes(parseComplete({"-dq", std::string(60, 'D')}).primary.Od.DynamicQName), std::string(48, 'D'));
}

TEST(OptionValues, CountedTextsCarryTheirLength)
{
    const Parsed parsed = parseComplete({"-er", "CN=x", "-cu", "user", "-cp", "secret"});
    EXPECT_STREQ(static_cast<const char *>(parsed.primary.Cd.SSLPeerNamePtr), "CN=x");
    EXPECT_EQ(parsed.primary.Cd.SSLPeerNameLength, 4);
    EXPECT_STREQ(static_cast<const char *>(parsed.primary.Csp.CSPUserIdPtr), "user");
    EXPECT_EQ(parsed.primary.Csp.CSPUserIdLength, 4);
    EXPECT_STREQ(static_cast<const char *>(parsed.primary.Csp.CSPPasswordPtr), "secret");
    EXPECT_EQ(parsed.primary.Csp.CSPPasswordLength, 6);
}

TEST(OptionValues, CountedTextsFitExactly)
{
    EXPECT_EQ(parseComplete({"-cu", std::string(12, 'u')}).primary.Csp.CSPUserIdLength, 12);
    EXPECT_EQ(parseComplete({"-cp", std::string(256, 'p')}).primary.Csp.CSPPasswordLength, 256);
    EXPECT_EQ(parseComplete({"-er", std::string(1024, 'n')}).primary.Cd.SSLPeerNameLength, 1024);
}

TEST(OptionValues, HexadecimalBytesFillTheBeginningOfTheirField)
{
    const Parsed parsed = parseComplete({"-mi", "0x0102"});
    EXPECT_EQ(bytes(parsed.primary.Md.MsgId), "\x01\x02" + zeros.substr(0, 22));
}

TEST(OptionValues, HexadecimalBytesLeaveTheRestOfTheField)
{
    const Parsed parsed = parseComplete({"-mi", "abcdef", "-mi", "0x0102"});
    EXPECT_EQ(bytes(parsed.primary.Md.MsgId, 7), std::string("\x01\x02"
                                                             "cdef\0",
                                                             7));
}

TEST(OptionValues, HexadecimalBytesFitExactly)
{
    EXPECT_EQ(bytes(parseComplete({"-ci", "0x" + std::string(48, 'f')}).primary.Md.CorrelId), std::string(24, '\xff'));
    EXPECT_EQ(bytes(parseComplete({"-at", "0x" + std::string(64, 'f')}).primary.Md.AccountingToken),
              std::string(32, '\xff'));
    EXPECT_EQ(bytes(parseComplete({"-mt", "0x" + std::string(32, 'f')}).primary.Gmo.MsgToken), std::string(16, '\xff'));
}

TEST(OptionValues, TextBytesAreTakenAsTheyAre)
{
    EXPECT_EQ(bytes(parseComplete({"-gi", "group"}).primary.Md.GroupId), "group" + zeros.substr(0, 19));
    EXPECT_EQ(bytes(parseComplete({"-mi", "0X01"}).primary.Md.MsgId, 4), "0X01");
    EXPECT_EQ(bytes(parseComplete({"-ci", std::string(24, 'c')}).primary.Md.CorrelId), std::string(24, 'c'));
}

TEST(OptionValues, NoBytesAreAValueToo)
{
    for (const char *value : {"", "0x"}) {
        const Parsed parsed = parseComplete({"-mi", value});
        EXPECT_EQ(parsed.result(), CommandLine::Single);
        EXPECT_EQ(parsed.primary.MdFieldsSet, MdFieldMsgId);
        EXPECT_EQ(bytes(parsed.primary.Md.MsgId), zeros.substr(0, 24));
    }
}

TEST(OptionValues, AnEncodingIsDecimalOrThreeDigits)
{
    EXPECT_EQ(parseComplete({"-ec", "0x222"}).primary.Md.Encoding, 546);
    EXPECT_EQ(parseComplete({"-ec", "273"}).primary.Md.Encoding, 273);
    EXPECT_EQ(parseComplete({"-ec", "MQENC_NORMAL"}).primary.Md.Encoding, 0);
    EXPECT_EQ(parseComplete({"-re", "0x111"}).primary.Rfh2.Encoding, 273);
    EXPECT_EQ(parseComplete({"-re", "785"}).primary.Rfh2.Encoding, 785);
    EXPECT_EQ(parseComplete({"-pe", "0x111"}).primary.Impo.RequestedEncoding, 273);
}

TEST(OptionValues, AnEncodingOfThreeLettersIsZero)
{
    EXPECT_EQ(parseComplete({"-ec", "0xggg"}).primary.Md.Encoding, 0);
}

TEST(OptionValues, AnEncodingListIsOred)
{
    const char *list = "MQENC_INTEGER_NORMAL:MQENC_FLOAT_IEEE_NORMAL";
    EXPECT_EQ(parseComplete({"-re", list}).primary.Rfh2.Encoding, 257);
    EXPECT_EQ(parseComplete({"-pe", list}).primary.Impo.RequestedEncoding, 257);
}

TEST(OptionValues, UnknownNamesOfAnEncodingListAreSkipped)
{
    EXPECT_EQ(parseComplete({"-re", "MQENC_BOGUS"}).primary.Rfh2.Encoding, 0);
    EXPECT_EQ(parseComplete({"-re", "MQENC_BOGUS::MQENC_NORMAL:x"}).primary.Rfh2.Encoding, 273);
    EXPECT_EQ(parseComplete({"-re", "MQENC_"}).primary.Rfh2.Encoding, 0);
}

TEST(OptionValues, ACharacterSetIsANameOrANumber)
{
    EXPECT_EQ(parseComplete({"-rc", "MQCCSI_INHERIT"}).primary.Rfh2.CodedCharSetId, -2);
    EXPECT_EQ(parseComplete({"-rc", "943"}).primary.Rfh2.CodedCharSetId, 943);
    EXPECT_EQ(parseComplete({"-nc", "MQCCSI_BOGUS"}).primary.Rfh2.NameValueCCSID, 0);
    EXPECT_EQ(parseComplete({"-pc", "MQCCSI_APPL"}).primary.Impo.RequestedCCSID, -3);
}

TEST(OptionValues, AFormatIsAName)
{
    EXPECT_EQ(bytes(parseComplete({"-rf", "MQFMT_STRING"}).primary.Rfh2.Format), "MQSTR   ");
}

TEST(OptionValues, OperationsAreOred)
{
    const Parsed parsed = parseComplete({"-op", "MQOP_REGISTER", "-op", "MQOP_START"});
    EXPECT_EQ(parsed.primary.CbOperation, MQOP_REGISTER | MQOP_START);
}

TEST(OptionValues, ACallbackIsAFunctionOfTheProgram)
{
    EXPECT_EQ(parseComplete({"-cf", "EventHandler"}).primary.Cbd.CallbackFunction,
              reinterpret_cast<MQPTR>(&EventHandler));
}

TEST(OptionValues, AnApiNameIsAnyThatCanBeStopped)
{
    for (const char *name : {"MQCONNX", "MQCONN", "MQOPEN", "MQPUT", "MQGET", "MQCLOSE", "MQCMIT", "MQBACK", "MQDISC",
                             "MQINQ", "MQSET", "MQCRTMH", "MQDLTMH", "MQSETMP", "MQCB", "BEGINTRANSACTION"}) {
        EXPECT_STREQ(parseComplete({"-s", name}).primary.StopApiName, name);
    }
}

TEST(OptionValues, MarkTheDescriptorFieldThatTheyGive)
{
    const struct {
        const char *flag;
        MQULONG bit;
    } cases[] = {
        {"-ex", 0x10},      {"-ec", 0x40},      {"-cc", 0x80},      {"-pr", 0x200},      {"-mi", 0x800},
        {"-ci", 0x1000},    {"-rq", 0x4000},    {"-rm", 0x8000},    {"-ui", 0x10000},    {"-at", 0x20000},
        {"-ap", 0x40000},   {"-pn", 0x100000},  {"-pd", 0x200000},  {"-pt", 0x400000},   {"-ao", 0x800000},
        {"-gi", 0x1000000}, {"-ms", 0x2000000}, {"-of", 0x4000000}, {"-ol", 0x10000000},
    };
    for (const auto &one : cases)
        EXPECT_EQ(parseComplete({one.flag, "1"}).primary.MdFieldsSet, one.bit) << one.flag;
}

TEST(OptionValues, TheseSelectMqconnx)
{
    for (const char *flag : {"-x", "-ch", "-la", "-cl", "-cs", "-er", "-cu", "-cp", "-kr", "-ru"}) {
        EXPECT_EQ(parseComplete({flag, "1"}).primary.UseConnX, 1) << flag;
    }
    for (const char *constant : {"MQCD_VERSION_9", "MQCSP_AUTH_NONE", "MQAIR_VERSION_2", "MQAIT_OCSP"}) {
        EXPECT_EQ(parseComplete({constant}).primary.UseConnX, 1) << constant;
    }
}

TEST(OptionValues, ConnectOptionsDoNotSelectMqconnx)
{
    EXPECT_EQ(parseComplete({"MQCNO_CLIENT_BINDING", "MQCNO_VERSION_5"}).primary.UseConnX, 0);
}

TEST(OptionValues, ThesePutAnRfh2InFront)
{
    const std::vector<std::vector<std::string>> cases = {{"-re", "1"}, {"-rc", "1"}, {"-rf", "MQFMT_NONE"},
                                                         {"-fg", "1"}, {"-nc", "1"}, {"-nd", "<a/>"}};
    for (const auto &one : cases)
        EXPECT_EQ(parseComplete(one).primary.UseRfh2, 1) << one[0];
    EXPECT_EQ(parseComplete({"MQRFH_NONE"}).primary.UseRfh2, 0);
}

TEST(OptionValues, OneAuthenticationRecordComesWithThese)
{
    EXPECT_EQ(parseComplete({"-ru", "http://a"}).primary.Sco.AuthInfoRecCount, 1);
    EXPECT_EQ(parseComplete({"MQAIR_VERSION_2"}).primary.Sco.AuthInfoRecCount, 1);
    EXPECT_EQ(parseComplete({"MQAIT_OCSP"}).primary.Sco.AuthInfoRecCount, 1);
    EXPECT_EQ(parseComplete({"-kr", "/k"}).primary.Sco.AuthInfoRecCount, 0);
}

TEST(OptionValues, BrowsingAndDumpingRaiseTheDescriptorVersion)
{
    for (const char *flag : {"-br", "-brv", "-dp", "-dpv"}) {
        EXPECT_EQ(parseComplete({flag}).primary.Md.Version, 2) << flag;
        EXPECT_EQ(parseComplete({"MQMD_VERSION_1", flag}).primary.Md.Version, 1) << flag;
        EXPECT_EQ(parseComplete({flag, "MQMD_VERSION_1"}).primary.Md.Version, 1) << flag;
        EXPECT_EQ(parseComplete({flag}).primary.MdFieldsSet, 0u) << flag;
    }
}

TEST(OptionValues, AConnectionNameRaisesTheConnectOptions)
{
    EXPECT_EQ(parseComplete({"-x", "h"}).primary.Cno.Version, 2);
    EXPECT_EQ(parseComplete({"-x", "h", "MQCNO_VERSION_5"}).primary.Cno.Version, 5);
    EXPECT_EQ(parseComplete({"MQCNO_VERSION_5", "-x", "h"}).primary.Cno.Version, 5);
}

TEST(OptionValues, ALocalAddressRaisesTheChannel)
{
    EXPECT_EQ(parseComplete({"-la", "a"}).primary.Cd.Version, 7);
    EXPECT_EQ(parseComplete({"MQCD_VERSION_5", "-la", "a"}).primary.Cd.Version, 5);
    EXPECT_EQ(parseComplete({"-la", "a", "MQCD_VERSION_5"}).primary.Cd.Version, 5);
}

TEST(OptionValues, NoOtherOptionRaisesAVersion)
{
    const Parsed parsed =
        parseComplete({"-or", "Q1", "-smp", "x", "-gi", "g", "-kr", "k", "-cu", "u", "-cs", "s", "-cl", "l"});
    EXPECT_EQ(parsed.primary.Md.Version, 1);
    EXPECT_EQ(parsed.primary.Od.Version, 1);
    EXPECT_EQ(parsed.primary.Pmo.Version, 1);
    EXPECT_EQ(parsed.primary.Gmo.Version, 1);
    EXPECT_EQ(parsed.primary.Cno.Version, 1);
    EXPECT_EQ(parsed.primary.Cd.Version, 6);
}

TEST(OptionValues, MatchingTheCorrelIdAddsItsMatchOption)
{
    EXPECT_EQ(parseComplete({"MQMO_NONE", "-mc"}).primary.Gmo.MatchOptions, MQMO_MATCH_CORREL_ID);
}

TEST(OptionValues, RecordsAreFilledInTurn)
{
    const Parsed parsed = parse({"-qm", "QM1", "-ss", "-q", "A", "-sp", "-q", "B", "-ss", "-n", "2"});
    EXPECT_STREQ(parsed.secondary.QName, "A");
    EXPECT_STREQ(parsed.primary.QName, "B");
    EXPECT_EQ(parsed.secondary.MsgCount, 2);
    EXPECT_EQ(parsed.primary.MsgCount, 0);
}

TEST(OptionValues, WithTheQueueManagerOnlyTheRecordIsTheTemplate)
{
    Parsed parsed = parse({"-qm", "QM1"});
    EXPECT_STREQ(parsed.primary.QMgrName, "QM1");
    parsed.primary.QMgrName = nullptr;
    const RunParams expected = untouched();
    EXPECT_EQ(std::memcmp(&parsed.primary, &expected, sizeof expected), 0);
    EXPECT_EQ(std::memcmp(&parsed.secondary, &expected, sizeof expected), 0);
}

TEST(OptionValues, TheLongestQueueManagerListIsTaken)
{
    const std::string list(49, 'q');
    EXPECT_EQ(parse({"-qm", list, "-q", "Q1"}).primary.QMgrName, list);
}
