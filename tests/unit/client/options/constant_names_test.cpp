// MQI constants as arguments: what each prefix sets.

#include "parsed.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace {

template <class Element, std::size_t Size>
std::string bytes(const Element (&field)[Size])
{
    return {reinterpret_cast<const char *>(field), Size};
}

struct Case {
    std::string constant;
    std::function<MQLONG(const RunParams &)> field;
    MQLONG value;
    MQULONG mdField = 0;
};

const std::vector<Case> cases = {
    {"MQMD_VERSION_2", [](const RunParams &p) { return p.Md.Version; }, 2, 0x2},
    {"MQRO_COA", [](const RunParams &p) { return p.Md.Report; }, 256, 0x4},
    {"MQMT_REQUEST", [](const RunParams &p) { return p.Md.MsgType; }, 1, 0x8},
    {"MQEI_UNLIMITED", [](const RunParams &p) { return p.Md.Expiry; }, -1, 0x10},
    {"MQFB_QUIT", [](const RunParams &p) { return p.Md.Feedback; }, 256, 0x20},
    {"MQENC_NORMAL", [](const RunParams &p) { return p.Md.Encoding; }, 273, 0x40},
    {"MQCCSI_INHERIT", [](const RunParams &p) { return p.Md.CodedCharSetId; }, -2, 0x80},
    {"MQPRI_PRIORITY_AS_PARENT", [](const RunParams &p) { return p.Md.Priority; }, -2, 0x200},
    {"MQPER_PERSISTENT", [](const RunParams &p) { return p.Md.Persistence; }, 1, 0x400},
    {"MQAT_USER", [](const RunParams &p) { return p.Md.PutApplType; }, 25, 0x80000},
    {"MQMF_LAST_SEGMENT", [](const RunParams &p) { return p.Md.MsgFlags; }, 4, 0x8000000},
    {"MQOL_UNDEFINED", [](const RunParams &p) { return p.Md.OriginalLength; }, -1, 0x10000000},
    {"MQRFH_NO_FLAGS", [](const RunParams &p) { return p.Rfh2.Flags; }, 0},
    {"MQPMO_VERSION_3", [](const RunParams &p) { return p.Pmo.Version; }, 3},
    {"MQPMO_CURRENT_VERSION", [](const RunParams &p) { return p.Pmo.Version; }, 3},
    {"MQPMO_SYNCPOINT", [](const RunParams &p) { return p.Pmo.Options; }, 2},
    {"MQPMRF_FEEDBACK", [](const RunParams &p) { return p.Pmo.PutMsgRecFields; }, 8},
    {"MQGMO_VERSION_4", [](const RunParams &p) { return p.Gmo.Version; }, 4},
    {"MQGMO_CURRENT_VERSION", [](const RunParams &p) { return p.Gmo.Version; }, 4},
    {"MQGMO_CONVERT", [](const RunParams &p) { return p.Gmo.Options; }, 16384},
    {"MQWI_UNLIMITED", [](const RunParams &p) { return p.Gmo.WaitInterval; }, -1},
    {"MQMO_MATCH_OFFSET", [](const RunParams &p) { return p.Gmo.MatchOptions; }, 16},
    {"MQOO_BROWSE", [](const RunParams &p) { return p.OpenOptions; }, 8},
    {"MQOT_PROCESS", [](const RunParams &p) { return p.Od.ObjectType; }, 3},
    {"MQCNO_VERSION_5", [](const RunParams &p) { return p.Cno.Version; }, 5},
    {"MQCNO_SHARED_BINDING", [](const RunParams &p) { return p.Cno.Options; }, 256},
    {"MQCSP_AUTH_USER_ID_AND_PWD", [](const RunParams &p) { return p.Csp.AuthenticationType; }, 1},
    {"MQCBT_EVENT_HANDLER", [](const RunParams &p) { return p.Cbd.CallbackType; }, 2},
    {"MQOD_CURRENT_VERSION", [](const RunParams &p) { return p.Od.Version; }, 4},
    {"MQPD_USER_CONTEXT", [](const RunParams &p) { return p.Pd.Context; }, 1},
    {"MQCO_DELETE_PURGE", [](const RunParams &p) { return p.CloseOptions; }, 2},
    {"MQIMPO_CONVERT_VALUE", [](const RunParams &p) { return p.Impo.Options; }, 32},
    {"MQCMHO_VALIDATE", [](const RunParams &p) { return p.Cmho.Options; }, 2},
    {"MQCD_CURRENT_VERSION", [](const RunParams &p) { return p.Cd.Version; }, 12},
    {"MQAIR_CURRENT_VERSION", [](const RunParams &p) { return p.Air.Version; }, 2},
    {"MQAIT_OCSP", [](const RunParams &p) { return p.Air.AuthInfoType; }, 2},
};

class ConstantName : public testing::TestWithParam<Case> {};

} // namespace

TEST_P(ConstantName, SetsItsField)
{
    const Parsed parsed = parseComplete({GetParam().constant});
    EXPECT_EQ(parsed.result(), CommandLine::Single);
    EXPECT_EQ(GetParam().field(parsed.primary), GetParam().value);
    EXPECT_EQ(parsed.primary.MdFieldsSet, GetParam().mdField);
}

INSTANTIATE_TEST_SUITE_P(, ConstantName, testing::ValuesIn(cases), [](const auto &one) { return one.param.constant; });

TEST(ConstantNames, ByteStringsFillTheirField)
{
    const Parsed parsed = parseComplete({"MQFMT_STRING", "MQCI_NEW_SESSION"});
    EXPECT_EQ(bytes(parsed.primary.Md.Format), "MQSTR   ");
    EXPECT_EQ(bytes(parsed.primary.Md.CorrelId), "AMQ!NEW_SESSION_CORRELID");
    EXPECT_EQ(parsed.primary.MdFieldsSet, 0x100u | 0x1000u);
}

TEST(ConstantNames, NoneClearsAnIdentifier)
{
    const Parsed parsed = parseComplete({"-mi", "abc", "-gi", "abc", "MQMI_NONE", "MQGI_NONE"});
    EXPECT_EQ(bytes(parsed.primary.Md.MsgId), std::string(24, '\0'));
    EXPECT_EQ(bytes(parsed.primary.Md.GroupId), std::string(24, '\0'));
    EXPECT_EQ(parsed.primary.MdFieldsSet, 0x800u | 0x1000000u);
}

TEST(ConstantNames, OptionsAreOred)
{
    const Parsed parsed = parseComplete({"MQRO_COA", "MQRO_COD", "MQPMO_SYNCPOINT", "MQPMO_NEW_MSG_ID", "MQOO_BROWSE",
                                         "MQOO_INQUIRE", "MQGMO_WAIT", "MQGMO_CONVERT", "MQCO_DELETE", "MQCO_QUIESCE"});
    EXPECT_EQ(parsed.primary.Md.Report, 256 | 2048);
    EXPECT_EQ(parsed.primary.Pmo.Options, 2 | 64);
    EXPECT_EQ(parsed.primary.OpenOptions, 8 | 32);
    EXPECT_EQ(parsed.primary.Gmo.Options, 1 | 16384);
    EXPECT_EQ(parsed.primary.CloseOptions, 1 | 32);
}

TEST(ConstantNames, TheLastOfSeveralValuesHolds)
{
    EXPECT_EQ(parseComplete({"MQPER_PERSISTENT", "MQPER_NOT_PERSISTENT"}).primary.Md.Persistence, 0);
}

TEST(ConstantNames, TheFirstMatchOptionReplacesTheDefaults)
{
    EXPECT_EQ(parseComplete({"MQMO_MATCH_GROUP_ID"}).primary.Gmo.MatchOptions, 4);
    EXPECT_EQ(parseComplete({"MQMO_MATCH_GROUP_ID", "MQMO_MATCH_OFFSET"}).primary.Gmo.MatchOptions, 4 | 16);
    EXPECT_EQ(parseComplete({"MQMO_NONE"}).primary.Gmo.MatchOptions, 0);
}

TEST(ConstantNames, TheFirstMatchOptionClearsTheOneOfMc)
{
    EXPECT_EQ(parseComplete({"-mc", "MQMO_MATCH_MSG_ID"}).primary.Gmo.MatchOptions, 1);
    EXPECT_EQ(parseComplete({"MQMO_MATCH_MSG_ID", "-mc"}).primary.Gmo.MatchOptions, 1 | 2);
}

TEST(ConstantNames, OnlyTheFirstMatchOptionOfTheCommandLineReplaces)
{
    const Parsed parsed = parseComplete({"MQMO_MATCH_GROUP_ID", "-ss", "MQMO_MATCH_GROUP_ID"});
    EXPECT_EQ(parsed.primary.Gmo.MatchOptions, 4);
    EXPECT_EQ(parsed.secondary.Gmo.MatchOptions, 1 | 2 | 4);
}

TEST(ConstantNames, ATokenTypeIsTheLastByte)
{
    const Parsed parsed = parseComplete({"MQACTT_USER"});
    EXPECT_EQ(parsed.primary.Md.AccountingToken[31], 25);
    EXPECT_EQ(parsed.primary.MdFieldsSet, 0x20000u);
}

TEST(ConstantNames, NoTokenKeepsATypeThatIsSet)
{
    const Parsed parsed = parseComplete({"-at", std::string(32, 'a'), "MQACT_NONE"});
    EXPECT_EQ(bytes(parsed.primary.Md.AccountingToken), std::string(31, '\0') + 'a');
}

TEST(ConstantNames, AnObjectTypeIsRemembered)
{
    EXPECT_EQ(parseComplete({"MQOT_Q"}).primary.ObjectTypeGiven, 1);
    EXPECT_EQ(parseComplete({}).primary.ObjectTypeGiven, 0);
}

TEST(ConstantNames, FillTheSelectedRecord)
{
    const Parsed parsed = parseComplete({"-ss", "MQPMO_SYNCPOINT", "-sp", "MQGMO_SYNCPOINT"});
    EXPECT_EQ(parsed.secondary.Pmo.Options, 2);
    EXPECT_EQ(parsed.primary.Pmo.Options, 0);
    EXPECT_EQ(parsed.primary.Gmo.Options, 2);
}
