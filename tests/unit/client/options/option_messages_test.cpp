// Every message of the command line: its text, its stream, and that the run ends.

#include "parsed.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace {

struct Case {
    std::string name;
    std::vector<std::string> arguments;
    std::string err;
    std::string out = "";
};

std::ostream &operator<<(std::ostream &stream, const Case &one)
{
    return stream << one.name;
}

class Refused : public testing::TestWithParam<Case> {};

std::string longer(std::size_t limit)
{
    return std::string(limit + 1, 'x');
}

const std::vector<Case> missingValues = {
    {"qm", {"-qm"}, "Required parameter missing - queue nanager name(-qm)\n"},
    {"q", {"-q"}, "Required parameter missing - queue name(-q)\n"},
    {"m", {"-m"}, "Required parameter missing - input message(-m)\n"},
    {"mx", {"-mx"}, "Required parameter missing - input message(hexadecimal notation)(-mx)\n"},
    {"f", {"-f"}, "Required parameter missing - input file name(-f)\n"},
    {"o", {"-o"}, "Required parameter missing - output file name(-o)\n"},
    {"oq", {"-oq"}, "Required parameter missing - output queue name(-oq)\n"},
    {"iq", {"-iq"}, "Required parameter missing - input queue name(-iq)\n"},
    {"d", {"-d"}, "Required parameter missing - input directory name(-d)\n"},
    {"g", {"-g"}, "Required parameter missing - output directory name(-g)\n"},
    {"l", {"-l"}, "Required parameter missing - messae length for writing(-l)\n"},
    {"n", {"-n"}, "Required parameter missing - messae count for writing or reading(-n)\n"},
    {"i", {"-i"}, "Required parameter missing - interval(ms) for writing or reading(-i)\n"},
    {"sz", {"-sz"}, "Required parameter missing - max message size for reading(-sz)\n"},
    {"ds", {"-ds"}, "Required parameter missing - max message display size(-ds)\n"},
    {"s", {"-s"}, "Required parameter missing - MQI name(-s)\n"},
    {"set", {"-set"}, "Required parameter missing - MQSET parameters(-set)\n"},
    {"inq", {"-inq"}, "Required parameter missing - MQINQ parameters(-inq)\n"},
    {"smp", {"-smp"}, "Required parameter missing - MQSETMP parameters(-smp)\n"},
    {"p", {"-p"}, "Required parameter missing - process name(-p)\n"},
    {"nl", {"-nl"}, "Required parameter missing - name list(-nl)\n"},
    {"pcf", {"-pcf"}, "Required parameter missing - pcf format file name(-pcf)\n"},
    {"as", {"-as"}, "Required parameter missing - segmentation size(-as)\n"},
    {"dl", {"-dl"}, "Required parameter missing - delimiter for logical messages(-dl)\n"},
    {"nt", {"-nt"}, "Required parameter missing - number of threads(-nt)\n"},
    {"ni", {"-ni"}, "Required parameter missing - number of threads that call MQCONN/MQDISC internally(-ni)\n"},
    {"sf", {"-sf"}, "Required parameter missing - synchronization start file name(-sf)\n"},
    {"c", {"-c"}, "Required parameter missing - connection loop count(-c)\n"},
    {"wp", {"-wp"}, "Required parameter missing - wait time(ms) to next processing(-wp)\n"},
    {"cr", {"-cr"}, "Required parameter missing - The number of connection retry(-cr)\n"},
    {"ex", {"-ex"}, "Required parameter missing - Expiry(-ex)\n"},
    {"ec", {"-ec"}, "Required parameter missing - Encoding(-ec)\n"},
    {"cc", {"-cc"}, "Required parameter missing - CodedCharSetId(-cc)\n"},
    {"pr", {"-pr"}, "Required parameter missing - Priority(-pr)\n"},
    {"mi", {"-mi"}, "Required parameter missing - MsgId(-mi)\n"},
    {"ci", {"-ci"}, "Required parameter missing - CorrelId(-ci)\n"},
    {"at", {"-at"}, "Required parameter missing - AccountingToken(-at)\n"},
    {"gi", {"-gi"}, "Required parameter missing - GroupId(-gi)\n"},
    {"ms", {"-ms"}, "Required parameter missing - MsgSeqNumber(-ms)\n"},
    {"of", {"-of"}, "Required parameter missing - Offset(-of)\n"},
    {"ol", {"-ol"}, "Required parameter missing - OriginalLength(-ol)\n"},
    {"re", {"-re"}, "Required parameter missing - MQRFH2.Encoding(-re)\n"},
    {"rc", {"-rc"}, "Required parameter missing - MQRFH2.CodedCharSetId(-re)\n"},
    {"rf", {"-rf"}, "Required parameter missing - MQRFH2.Format(-rf)\n"},
    {"fg", {"-fg"}, "Required parameter missing - MQRFH2.Flags(-fg)\n"},
    {"nc", {"-nc"}, "Required parameter missing - MQRFH2.NameValueCCSID(-nc)\n"},
    {"nd", {"-nd"}, "Required parameter missing - MQRFH2.NameValueData(-nd)\n"},
    {"ru", {"-ru"}, "Required parameter missing - OCSPResponderURL(-ru)\n"},
    {"om", {"-om"}, "Required parameter missing - MQOD.ObjectQMgrName(-om)\n"},
    {"au", {"-au"}, "Required parameter missing - MQOD.AlternateUserId(-au)\n"},
    {"or", {"-or"}, "Required parameter missing - MQOD.ObjectRec(-or)\n"},
    {"dq", {"-dq"}, "Required parameter missing - MQOD.DynamicQName(-dq)\n"},
    {"mr", {"-mr"}, "Required parameter missing - MQPMO.PutMsgRec(-mr)\n"},
    {"wi", {"-wi"}, "Required parameter missing - MQGMO.WaitInterval(-wi)\n"},
    {"mt", {"-mt"}, "Required parameter missing - MsgToken(-mt)\n"},
    {"pe", {"-pe"}, "Required parameter missing - MQIMPO.RequestedEncoding(-pe)\n"},
    {"pc", {"-pc"}, "Required parameter missing - MQIMPO.RequestedCCSID(-pc)\n"},
    {"op", {"-op"}, "Required parameter missing - MQCB Operation(-op)\n"},
    {"cf", {"-cf"}, "Required parameter missing - MQCBD.CallbackFunction(-cf)\n"},
    {"x", {"-x"}, "Required parameter missing - ConnectionName(-x)\n"},
    {"ch", {"-ch"}, "Required parameter missing - ChannelName(-ch)\n"},
    {"la", {"-la"}, "Required parameter missing - LocalAddress(-la)\n"},
    {"cl", {"-cl"}, "Required parameter missing - CertificateLabel(-cl)\n"},
    {"cs", {"-cs"}, "Required parameter missing - SSLCipherSpec(-cs)\n"},
    {"er", {"-er"}, "Required parameter missing - SSLPeerName(-er)\n"},
    {"rq", {"-rq"}, "Required parameter missing - ReplyToQ(-rq)\n"},
    {"rm", {"-rm"}, "Required parameter missing - ReplyToQMgr(-rm)\n"},
    {"ui", {"-ui"}, "Required parameter missing - UserIdentifier(-ui)\n"},
    {"ap", {"-ap"}, "Required parameter missing - ApplIdentityData(-ap)\n"},
    {"pn", {"-pn"}, "Required parameter missing - PutApplName(-pn)\n"},
    {"pd", {"-pd"}, "Required parameter missing - PutDate(-pd)\n"},
    {"pt", {"-pt"}, "Required parameter missing - PutTime(-pt)\n"},
    {"ao", {"-ao"}, "Required parameter missing - ApplOriginData(-ao)\n"},
    {"cu", {"-cu"}, "Required parameter missing - CSPUserId(-cu)\n"},
    {"cp", {"-cp"}, "Required parameter missing - CSPPassword(-cp)\n"},
    {"kr", {"-kr"}, "Required parameter missing - KeyRepository(-kr)\n"},
};

const std::vector<Case> badNumbers = {
    {"n_zero", {"-n", "0"}, "Invalid number was specified(-n)\n"},
    {"n_text", {"-n", "abc"}, "Invalid number was specified(-n)\n"},
    {"n_empty", {"-n", ""}, "Invalid number was specified(-n)\n"},
    {"c_zero", {"-c", "0"}, "Invalid number was specified(-c)\n"},
    {"c_negative", {"-c", "-1"}, "Invalid number was specified(-c)\n"},
    {"nt_zero", {"-nt", "0"}, "Invalid number was specified(-nt)\n"},
    {"nt_negative", {"-nt", "-1"}, "Invalid number was specified(-nt)\n"},
    {"ni_zero", {"-ni", "0"}, "Invalid number was specified(-ni)\n"},
    {"ni_negative", {"-ni", "-1"}, "Invalid number was specified(-ni)\n"},
    {"as_zero", {"-as", "0"}, "Invalid number was specified(-as)\n"},
    {"as_below_minus_one", {"-as", "-2"}, "Invalid number was specified(-as)\n"},
    {"cr_zero", {"-cr", "0"}, "Invalid number was specified(-cr)\n"},
    {"cr_negative", {"-cr", "-1"}, "Invalid number was specified(-cr)\n"},
    {"sz_negative", {"-sz", "-1"}, "Invalid number was specified(-sz)\n"},
    {"i_negative", {"-i", "-1"}, "Invalid number was specified(-i)\n"},
    {"wp_negative", {"-wp", "-1"}, "Invalid number was specified(-wp)\n"},
    {"l_below_minus_one", {"-l", "-2"}, "Invalid number was specified(-l)\n"},
    {"ds_below_minus_one", {"-ds", "-2"}, "Invalid number was specified(-ds)\n"},
};

const std::vector<Case> tooLong = {
    {"qm", {"-qm", longer(49)}, "queue manager list is too long - 49 characters at most(-qm)\n"},
    {"x", {"-x", longer(264)}, "ConnactionName is too long - MQ_CONN_NAME_LENGTH is 264(-x)\n"},
    {"ch", {"-ch", longer(20)}, "ChannelName is too long - MQ_CHANNEL_NAME_LENGTH is 20(-ch)\n"},
    {"la", {"-la", longer(48)}, "LocalAddress is too long - MQ_LOCAL_ADDRESS_LENGTH is 48(-la)\n"},
    {"cl", {"-cl", longer(64)}, "CertificateLabel is too long - MQ_CERT_LABEL_LENGTH is 64(-cl)\n"},
    {"cs", {"-cs", longer(32)}, "SSLCipherSpec is too long - MQ_SSL_CIPHER_SPEC_LENGTH is 32(-cs)\n"},
    {"er", {"-er", longer(1024)}, "SSLPeerName is too long - MQ_SSL_PEER_NAME_LENGTH is 1024(-er)\n"},
    {"rq", {"-rq", longer(48)}, "ReplyToQ is too long - MQ_Q_NAME_LENGTH is 48(-rq)\n"},
    {"rm", {"-rm", longer(48)}, "ReplyToQMgr is too long - MQ_Q_MGR_NAME_LENGTH is 48(-rm)\n"},
    {"ui", {"-ui", longer(12)}, "UserIdentifier is too long - MQ_USER_ID_LENGTH is 12(-ui)\n"},
    {"ap", {"-ap", longer(32)}, "ApplIdentityData is too long - MQ_APPL_IDENTITY_DATA_LENGTH is 32(-at)\n"},
    {"pn", {"-pn", longer(28)}, "PutApplName is too long - MQ_PUT_APPL_NAME_LENGTH is 28(-pn)\n"},
    {"pd", {"-pd", longer(8)}, "PutDate is too long - MQ_PUT_DATE_LENGTH is 8(-pd)\n"},
    {"pt", {"-pt", longer(8)}, "PutTime is too long - MQ_PUT_TIME_LENGTH is 8(-pt)\n"},
    {"ao", {"-ao", longer(4)}, "ApplOriginData is too long - MQ_APPL_ORIGIN_DATA_LENGTH is 4(-ao)\n"},
    {"cu", {"-cu", longer(12)}, "CSPUserId is too long - MQ_USER_ID_LENGTH is 12(-cu)\n"},
    {"cp", {"-cp", longer(256)}, "CSPPassword is too long - MQ_CSP_PASSWORD_LENGTH is 256(-cu)\n"},
    {"kr", {"-kr", longer(256)}, "KeyRepository is too long - MQ_SSL_KEY_REPOSITORY_LENGTH is 256(-kr)\n"},
    {"mi_text", {"-mi", longer(24)}, "MsgId is too long - MQ_MSG_ID_LENGTH is 24(-mi)\n"},
    {"mi_hex", {"-mi", "0x" + std::string(49, '1')}, "MsgId is too long - MQ_MSG_ID_LENGTH is 24(-mi)\n"},
    {"ci_text", {"-ci", longer(24)}, "CorrelId is too long - MQ_CORREL_ID_LENGTH is 24(-ci)\n"},
    {"ci_hex", {"-ci", "0x" + std::string(50, '1')}, "CorrelId is too long - MQ_CORREL_ID_LENGTH is 24(-ci)\n"},
    {"gi_text", {"-gi", longer(24)}, "GroupId is too long - MQ_GROUP_ID_LENGTH is 24(-gi)\n"},
    {"gi_hex", {"-gi", "0x" + std::string(50, '1')}, "GroupId is too long - MQ_GROUP_ID_LENGTH is 24(-gi)\n"},
    {"at_text", {"-at", longer(32)}, "AccountingToken is too long - MQ_ACCOUNTING_TOKEN_LENGTH is 32(-at)\n"},
    {"at_hex",
     {"-at", "0x" + std::string(65, '1')},
     "AccountingToken is too long - MQ_ACCOUNTING_TOKEN_LENGTH is 32(-at)\n"},
    {"mt", {"-mt", "0x" + std::string(33, '1')}, "MsgToken is too long - MQ_MSG_TOKEN_LENGTH is 16(-mt)\n"},
};

const std::vector<Case> badValues = {
    {"mi_odd",
     {"-mi", "0x012"},
     "Invalid character(s) or odd legth specified - MsgId with hexadecimal notation(-mi)\n"},
    {"mi_character",
     {"-mi", "0x0g"},
     "Invalid character(s) or odd legth specified - MsgId with hexadecimal notation(-mi)\n"},
    {"ci_odd",
     {"-ci", "0x1"},
     "Invalid character(s) or odd legth specified - CorrelId with hexadecimal notation(-ci)\n"},
    {"gi_odd",
     {"-gi", "0x1"},
     "Invalid character(s) or odd legth specified - GroupId with hexadecimal notation(-gi)\n"},
    {"at_odd",
     {"-at", "0x1"},
     "Invalid character(s) or odd legth specified - AccountingToken with hexadecimal notation(-at)\n"},
    {"mt_odd",
     {"-mt", "0x1"},
     "Invalid character(s) or odd legth specified - MsgToken with hexadecimal notation(-mt)\n"},
    {"mt_no_prefix", {"-mt", "0102"}, "Missing hexadecimal notation prefix \"0x\" - MsgToken(-mt)\n"},
    {"mt_upper_case_prefix", {"-mt", "0X0102"}, "Missing hexadecimal notation prefix \"0x\" - MsgToken(-mt)\n"},
    {"ec_four_digits", {"-ec", "0x1000"}, "Encoding parameter allows 12bit only like 0xfff. - \"0x1000\"(-ec)\n"},
    {"ec_two_digits", {"-ec", "0x22"}, "Encoding parameter allows 12bit only like 0xfff. - \"0x22\"(-ec)\n"},
    {"re_four_digits",
     {"-re", "0x1000"},
     "MQRFH2.Encoding parameter allows 12bit only like 0xfff. - \"0x1000\"(-re)\n"},
    {"pe_two_digits", {"-pe", "0x12"}, ""},
    {"s_put1", {"-s", "MQPUT1"}, "Invarid MQI name - MQPUT1\n"},
    {"s_inqmp", {"-s", "MQINQMP"}, "Invarid MQI name - MQINQMP\n"},
    {"s_lower_case", {"-s", "mqput"}, "Invarid MQI name - mqput\n"},
    {"s_empty", {"-s", ""}, "Invarid MQI name - \n"},
    {"rf_unknown", {"-rf", "MQFMT_STRINGS"}, "", "invalid parameter specified. \"MQFMT_STRINGS\"\n"},
    {"op_unknown", {"-op", "MQOP_STARTED"}, "", "invalid parameter specified. \"MQOP_STARTED\"\n"},
    {"cf_unknown", {"-cf", "eventhandler"}, "", "invalid parameter specified. \"eventhandler\"\n"},
    {"gt", {"-gt"}, "This parameter is only available on NSK platforms.(-gt)\n"},
    {"gti", {"-gti"}, "This parameter is only available on NSK platforms.(-gti)\n"},
    {"unknown_option", {"-zz"}, "Undefined parameter found. \"-zz\"\n"},
    {"upper_case_option", {"-QM", "x"}, "Undefined parameter found. \"-QM\"\n"},
    {"option_with_value_in_one", {"-n5"}, "Undefined parameter found. \"-n5\"\n"},
    {"empty_argument", {""}, "Undefined parameter found. \"\"\n"},
    {"lower_case_constant", {"mqro_coa"}, "Undefined parameter found. \"mqro_coa\"\n"},
    {"misspelt_constant", {"MQRO_COAX"}, "", "invalid parameter specified. \"MQRO_COAX\"\n"},
    {"bare_prefix", {"MQRO_"}, "", "invalid parameter specified. \"MQRO_\"\n"},
    {"connect_options_have_no_current_version",
     {"MQCNO_CURRENT_VERSION"},
     "",
     "invalid parameter specified. \"MQCNO_CURRENT_VERSION\"\n"},
    {"version_prefix_goes_before_the_general_one",
     {"MQPMO_VERSION_9"},
     "",
     "invalid parameter specified. \"MQPMO_VERSION_9\"\n"},
    {"nt_with_ni", {"-qm", "QM1", "-q", "Q1", "-nt", "2", "-ni", "2"}, "-nt and -ni cannot be given together.\n"},
    {"nt_with_ni_of_the_other_record",
     {"-qm", "QM1", "-q", "Q1", "-nt", "2", "-ss", "-ni", "2"},
     "-nt and -ni cannot be given together.\n"},
    {"no_queue_manager", {"-q", "Q1"}, "queue manager name(-qm) is required.\n"},
    {"queue_manager_of_the_secondary_record_only",
     {"-ss", "-qm", "QM1", "-q", "Q1"},
     "queue manager name(-qm) is required.\n"},
    {"no_queue", {"-qm", "QM1"}, "faild to select function.\n"},
    {"set_without_a_queue",
     {"-qm", "QM1", "-set", "MQIA_INHIBIT_GET:MQQA_GET_INHIBITED"},
     "faild to select function.\n"},
    {"distribution_list_without_a_message", {"-qm", "QM1", "-or", "Q1,Q2"}, "faild to select function.\n"},
};

std::string caseName(const testing::TestParamInfo<Case> &info)
{
    return info.param.name;
}

} // namespace

TEST_P(Refused, WithItsMessage)
{
    const Parsed parsed = parse(GetParam().arguments);
    EXPECT_EQ(parsed.result(), CommandLine::Error);
    EXPECT_EQ(parsed.err, GetParam().err);
    EXPECT_EQ(parsed.out, GetParam().out);
}

INSTANTIATE_TEST_SUITE_P(MissingValue, Refused, testing::ValuesIn(missingValues), caseName);
INSTANTIATE_TEST_SUITE_P(BadNumber, Refused, testing::ValuesIn(badNumbers), caseName);
INSTANTIATE_TEST_SUITE_P(TooLong, Refused, testing::ValuesIn(tooLong), caseName);
INSTANTIATE_TEST_SUITE_P(BadValue, Refused, testing::ValuesIn(badValues), caseName);

TEST(Refused, EveryOptionWithAValueIsCheckedForIt)
{
    std::size_t withValue = 0;
    for (const OptionGroup &group : OPTION_GROUPS) {
        for (const OptionRow &row : group.rows)
            withValue += row.missing != nullptr ? 1 : 0;
    }
    EXPECT_EQ(missingValues.size(), withValue);
}

TEST(Refused, TheFirstErrorEndsTheScan)
{
    const Parsed parsed = parse({"-n", "0", "-zz"});
    EXPECT_EQ(parsed.err, "Invalid number was specified(-n)\n");
}

TEST(Refused, WhatWasReadBeforeTheErrorStays)
{
    const Parsed parsed = parse({"-q", "Q1", "-n", "7", "-zz"});
    EXPECT_STREQ(parsed.primary.QName, "Q1");
    EXPECT_EQ(parsed.primary.MsgCount, 7);
}

TEST(Refused, BytesBeforeABadDigitStayWritten)
{
    const Parsed parsed = parse({"-mi", "0x0102zz"});
    EXPECT_EQ(parsed.primary.Md.MsgId[0], 1);
    EXPECT_EQ(parsed.primary.Md.MsgId[1], 2);
    EXPECT_EQ(parsed.primary.Md.MsgId[2], 0);
}

TEST(Refused, AnEncodingListThatHasNoMemoryIsReported)
{
    const std::string list = "MQENC_NORMAL:" + std::string(5000, 'x');
    for (const std::string flag : {"-re", "-pe"}) {
        Parsed parsed;
        {
            const FailingMalloc failing(list.size() + 1);
            parsed = parse({flag, list});
        }
        EXPECT_EQ(parsed.result(), CommandLine::Error);
        EXPECT_EQ(parsed.err.find("malloc() (" + flag + "): Cannot allocate memory\nGetArgParam,"), 0u) << parsed.err;
        EXPECT_NE(parsed.err.find(",12: malloc() (" + flag + ") failed. size=5014\n"), std::string::npos) << parsed.err;
    }
}
