// The listing of constant names.

#include "captured.h"
#include "run.h"
#include "tables.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace {

/// The listing as lists of names, one for each table.
std::vector<std::vector<std::string>> listing()
{
    std::vector<std::vector<std::string>> tables;
    std::vector<std::string> names;
    std::istringstream lines(captured(printVerbose).out);
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty()) {
            names.push_back(line);
            continue;
        }
        tables.push_back(names);
        names.clear();
    }
    EXPECT_TRUE(names.empty()) << "no empty line behind the last table";
    return tables;
}

} // namespace

TEST(PrintVerbose, ListsTheTablesInTheirOrder)
{
    // The first name and the number of names of each table.
    const std::vector<std::pair<std::string, std::size_t>> expected = {
        {"MQMD_VERSION_1", 3},
        {"MQRO_EXCEPTION", 23},
        {"MQMT_SYSTEM_FIRST", 10},
        {"MQEI_UNLIMITED", 1},
        {"MQFB_NONE", 57},
        {"MQENC_NATIVE", 17},
        {"MQPER_PERSISTENCE_AS_PARENT", 5},
        {"MQAT_UNKNOWN", 41},
        {"MQMF_SEGMENTATION_INHIBITED", 7},
        {"MQOL_UNDEFINED", 1},
        {"MQPMO_VERSION_1", 4},
        {"MQPMO_SYNCPOINT", 26},
        {"MQGMO_VERSION_1", 5},
        {"MQGMO_WAIT", 33},
        {"MQWI_UNLIMITED", 1},
        {"MQMO_MATCH_MSG_ID", 7},
        {"MQOO_BIND_AS_Q_DEF", 25},
        {"MQCO_IMMEDIATE", 7},
        {"MQOT_NONE", 7},
        {"MQCNO_VERSION_1", 5},
        {"MQCNO_STANDARD_BINDING", 28},
        {"MQIA_DIST_LISTS", 83},
        {"MQPMRF_MSG_ID", 6},
        {"MQOD_VERSION_1", 5},
        {"MQDL_SUPPORTED", 2},
        {"MQQA_GET_INHIBITED", 4},
        {"MQTC_OFF", 2},
        {"MQTT_NONE", 4},
        {"MQRFH_NONE", 2},
        {"MQTYPE_AS_SET", 12},
        {"MQPD_USER_CONTEXT", 2},
        {"MQIMPO_CONVERT_TYPE", 7},
        {"MQCMHO_DEFAULT_VALIDATION", 4},
        {"MQCCSI_UNDEFINED", 7},
        {"MQPRI_PRIORITY_AS_Q_DEF", 4},
        {"MQCSP_AUTH_NONE", 2},
        {"MQCBT_MESSAGE_CONSUMER", 2},
        {"MQOP_START", 7},
        {"MQCD_VERSION_1", 12},
        {"MQAIR_VERSION_1", 3},
        {"MQAIT_CRL_LDAP", 2},
        {"MQFMT_NONE", 22},
        {"MQMI_NONE", 1},
        {"MQCI_NONE", 2},
        {"MQACT_NONE", 1},
        {"MQGI_NONE", 1},
        {"MQACTT_UNKNOWN", 9},
        {"MQCA_ALTERATION_DATE", 36},
    };
    const std::vector<std::vector<std::string>> tables = listing();
    ASSERT_EQ(tables.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        ASSERT_FALSE(tables[i].empty());
        EXPECT_EQ(tables[i].front(), expected[i].first);
        EXPECT_EQ(tables[i].size(), expected[i].second) << expected[i].first;
    }
}

TEST(PrintVerbose, ListsEveryNameOfATableInOrder)
{
    const std::vector<std::string> names = listing()[5];
    for (std::size_t i = 0; i < names.size(); ++i)
        EXPECT_EQ(names[i], MQENC_TBL[i].name);
}
