#include "qmgr/api/option_table.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdlib>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>

namespace mqrig::qmgr::api {
namespace {

struct Prefix {
    const char *text;
    OptionField field;
};
constexpr Prefix prefixes[] = {
    {"MQCNO_", OptionField::Connect},
    {"MQOO_", OptionField::Open},
    {"MQCO_", OptionField::Close},
    {"MQPMO_", OptionField::Put},
    {"MQGMO_", OptionField::Get},
    {"MQMO_", OptionField::Match},
    {"MQRO_", OptionField::Report},
    {"MQMF_", OptionField::Flags},
    {"MQBO_", OptionField::Begin},
    {"MQCBDO_", OptionField::Callback},
    {"MQCTLO_", OptionField::Control},
    {"MQSO_", OptionField::Subscribe},
    {"MQSRO_", OptionField::SubscriptionRequest},
    {"MQCMHO_", OptionField::CreateHandle},
    {"MQDMHO_", OptionField::DeleteHandle},
    {"MQSMPO_", OptionField::SetProperty},
    {"MQIMPO_", OptionField::InquireProperty},
    {"MQDMPO_", OptionField::DeleteProperty},
    {"MQBMHO_", OptionField::BufferToHandle},
    {"MQMHBO_", OptionField::HandleToBuffer},
};

// Names of the prefixes that are no option bits.
bool isOther(const std::string &name)
{
    static const std::regex others("MQ[A-Z]+_(STRUC_ID.*|VERSION_.*|CURRENT_.*|LENGTH_.*|DEFAULT)");
    return std::regex_match(name, others);
}

// Every option constant of the headers with its value.
std::map<std::string, MQULONG> constantsOf(const std::string &prefix)
{
    std::map<std::string, MQULONG> constants;
    const std::regex define("#define\\s+(" + prefix + "\\w+)\\s+\\(?(-?[0-9][0-9A-Fa-fx]*)\\)?.*");
    for (const char *header : {"cmqc.h", "cmqxc.h", "cmqcfc.h"}) {
        std::ifstream lines(std::string(MQI_HEADERS) + "/" + header);
        EXPECT_TRUE(lines.is_open()) << header;
        std::smatch match;
        for (std::string line; std::getline(lines, line);)
            if (std::regex_match(line, match, define) && !isOther(match[1]))
                constants[match[1]] = static_cast<MQULONG>(std::strtoll(match[2].str().c_str(), nullptr, 0));
    }
    return constants;
}

MQULONG allBits(OptionField field)
{
    MQULONG bits = 0;
    for (const OptionRow &row : optionRows(field))
        bits |= row.bits;
    return bits;
}

TEST(OptionTable, EveryBitOfEveryConstantHasItsRow)
{
    for (const Prefix &prefix : prefixes) {
        const auto constants = constantsOf(prefix.text);
        EXPECT_FALSE(constants.empty()) << prefix.text;
        for (const auto &[name, value] : constants)
            EXPECT_EQ(value & ~allBits(prefix.field), 0U) << name << " has a bit without a row";
    }
}

TEST(OptionTable, EveryNamedBitStandsUnderItsName)
{
    for (const Prefix &prefix : prefixes) {
        std::map<MQULONG, std::set<std::string>> namesOfBit;
        for (const auto &[name, value] : constantsOf(prefix.text))
            if (std::has_single_bit(value)) namesOfBit[value].insert(name);
        for (const OptionRow &row : optionRows(prefix.field)) {
            const auto named = namesOfBit.find(row.bits);
            if (named != namesOfBit.end()) {
                EXPECT_TRUE(named->second.contains(std::string(row.name))) << row.name;
                namesOfBit.erase(named);
            }
        }
        for (const auto &[bit, names] : namesOfBit)
            ADD_FAILURE() << *names.begin() << " has no row of its own";
    }
}

TEST(OptionTable, EveryRowIsNamedInTheHeaders)
{
    for (const Prefix &prefix : prefixes) {
        const auto constants = constantsOf(prefix.text);
        for (const OptionRow &row : optionRows(prefix.field)) {
            std::string name(row.name);
            constexpr std::string_view reserved = "_RESERVED";
            if (name.ends_with(reserved)) name.resize(name.size() - reserved.size());
            EXPECT_TRUE(constants.contains(name)) << name;
            EXPECT_EQ(row.bits & ~constants.at(name), 0U) << name;
        }
    }
}

TEST(OptionTable, DoneAndAcceptedBitsPass)
{
    for (const Prefix &prefix : prefixes)
        for (const OptionRow &row : optionRows(prefix.field))
            if (row.treatment != Treatment::Refused) {
                EXPECT_EQ(checkOptions(prefix.field, static_cast<MQLONG>(row.bits)), MQRC_NONE) << row.name;
            }
}

TEST(OptionTable, RefusedBitsAnswerTheirReason)
{
    for (const Prefix &prefix : prefixes)
        for (const OptionRow &row : optionRows(prefix.field))
            if (row.treatment == Treatment::Refused) {
                EXPECT_EQ(checkOptions(prefix.field, static_cast<MQLONG>(row.bits)), row.reason) << row.name;
            }
}

TEST(OptionTable, BitsWithoutARowAreRefused)
{
    for (const Prefix &prefix : prefixes)
        for (MQULONG bit = 1; bit != 0; bit <<= 1)
            if ((allBits(prefix.field) & bit) == 0) {
                EXPECT_EQ(checkOptions(prefix.field, static_cast<MQLONG>(bit)), unknownBitsReason(prefix.field))
                    << prefix.text << std::hex << bit;
            }
}

TEST(OptionTable, UnknownBitsCountBeforeRefusedOnes)
{
    EXPECT_EQ(checkOptions(OptionField::Get, MQGMO_LOCK | 0x20000000), MQRC_OPTIONS_ERROR);
}

TEST(OptionTable, ReportAndFlagBitsAreCompletelyDecided)
{
    EXPECT_EQ(allBits(OptionField::Report), 0xFFFFFFFFU);
    EXPECT_EQ(allBits(OptionField::Flags), 0xFFFFFFFFU);
}

TEST(OptionTable, SeveralOfCountsMembersOfTheSet)
{
    EXPECT_FALSE(severalOf(MQPMO_SYNCPOINT, MQPMO_SYNCPOINT | MQPMO_NO_SYNCPOINT));
    EXPECT_TRUE(severalOf(MQPMO_SYNCPOINT | MQPMO_NO_SYNCPOINT, MQPMO_SYNCPOINT | MQPMO_NO_SYNCPOINT));
    EXPECT_FALSE(severalOf(MQPMO_SYNCPOINT | MQPMO_NEW_MSG_ID, MQPMO_SYNCPOINT | MQPMO_NO_SYNCPOINT));
}

} // namespace
} // namespace mqrig::qmgr::api
