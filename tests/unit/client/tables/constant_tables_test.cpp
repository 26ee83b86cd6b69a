// Every row of every table, against the list of names and values in expected_rows.csv.

#include "tables.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct Row {
    std::string name;
    std::string value; ///< a number, "0x" and digits, or the characters of a format
    std::string length;

    bool operator==(const Row &) const = default;
};

std::ostream &operator<<(std::ostream &stream, const Row &row)
{
    return stream << row.name << " = '" << row.value << "' " << row.length;
}

using Rows = std::vector<Row>;

std::map<std::string, Rows> readExpected()
{
    std::map<std::string, Rows> tables;
    std::ifstream file(EXPECTED_ROWS);
    std::string line;
    std::getline(file, line); // the column names
    while (std::getline(file, line)) {
        std::istringstream fields(line);
        std::string table, number;
        Row row;
        std::getline(fields, table, ',');
        std::getline(fields, number, ',');
        std::getline(fields, row.name, ',');
        std::getline(fields, row.value, ',');
        std::getline(fields, row.length, ',');
        tables[table].push_back(row);
    }
    return tables;
}

Rows rowsOf(const NamedInteger *table)
{
    Rows rows;
    for (; table->name != nullptr; ++table)
        rows.push_back({table->name, std::to_string(table->value), ""});
    return rows;
}

Rows rowsOf(const AttributeSelector *table)
{
    Rows rows;
    for (; table->name != nullptr; ++table) {
        rows.push_back({table->name, std::to_string(table->selector), std::to_string(table->length)});
    }
    return rows;
}

Rows textRowsOf(const NamedBytes *table)
{
    Rows rows;
    for (; table->name != nullptr; ++table) {
        rows.push_back({table->name, std::string(static_cast<const char *>(table->value), 8), ""});
    }
    return rows;
}

Rows byteRowsOf(const NamedBytes *table, std::size_t width)
{
    Rows rows;
    for (; table->name != nullptr; ++table) {
        std::string value = "0x";
        for (std::size_t i = 0; i < width; ++i) {
            char digits[3];
            std::snprintf(digits, sizeof digits, "%02x", static_cast<const unsigned char *>(table->value)[i]);
            value += digits;
        }
        rows.push_back({table->name, value, ""});
    }
    return rows;
}

#define TABLE(name)                                                                                                    \
    {                                                                                                                  \
#name, rowsOf(name)                                                                                            \
    }

const std::map<std::string, Rows> &actual()
{
    static const std::map<std::string, Rows> tables = {
        TABLE(MQMD_TBL),
        TABLE(MQRO_TBL),
        TABLE(MQMT_TBL),
        TABLE(MQEI_TBL),
        TABLE(MQFB_TBL),
        TABLE(MQENC_TBL),
        TABLE(MQCCSI_TBL),
        {"MQFMT_TBL", textRowsOf(MQFMT_TBL)},
        TABLE(MQPRI_TBL),
        TABLE(MQPER_TBL),
        {"MQMI_TBL", byteRowsOf(MQMI_TBL, 24)},
        {"MQCI_TBL", byteRowsOf(MQCI_TBL, 24)},
        {"MQACT_TBL", byteRowsOf(MQACT_TBL, 32)},
        TABLE(MQACTT_TBL),
        TABLE(MQAT_TBL),
        {"MQGI_TBL", byteRowsOf(MQGI_TBL, 24)},
        TABLE(MQMF_TBL),
        TABLE(MQOL_TBL),
        TABLE(MQRFH_TBL),
        TABLE(MQCNO_V_TBL),
        TABLE(MQCNO_TBL),
        TABLE(MQCSP_TBL),
        TABLE(MQCD_TBL),
        TABLE(MQAIR_TBL),
        TABLE(MQAIT_TBL),
        TABLE(MQOO_TBL),
        TABLE(MQOT_TBL),
        TABLE(MQOD_TBL),
        TABLE(MQPMO_V_TBL),
        TABLE(MQPMO_TBL),
        TABLE(MQPMRF_TBL),
        TABLE(MQGMO_V_TBL),
        TABLE(MQGMO_TBL),
        TABLE(MQWI_TBL),
        TABLE(MQMO_TBL),
        TABLE(MQCO_TBL),
        TABLE(MQPD_TBL),
        TABLE(MQIMPO_TBL),
        TABLE(MQCMHO_TBL),
        TABLE(MQCBT_TBL),
        TABLE(MQOP_TBL),
        TABLE(MQTYPE_TBL),
        TABLE(MQBOOL_TBL),
        TABLE(MQIA_TBL),
        TABLE(MQCA_TBL),
        TABLE(MQDL_TBL),
        TABLE(MQQA_TBL),
        TABLE(MQTC_TBL),
        TABLE(MQTT_TBL),
    };
    return tables;
}

std::vector<std::string> tableNames()
{
    std::vector<std::string> names;
    for (const auto &[name, rows] : actual())
        names.push_back(name);
    return names;
}

class ConstantTable : public testing::TestWithParam<std::string> {};

} // namespace

TEST_P(ConstantTable, HasItsRowsInOrder)
{
    static const std::map<std::string, Rows> expected = readExpected();
    ASSERT_TRUE(expected.contains(GetParam()));
    EXPECT_EQ(actual().at(GetParam()), expected.at(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(, ConstantTable, testing::ValuesIn(tableNames()),
                         [](const auto &table) { return table.param; });

TEST(ConstantTables, AreAllThereAre)
{
    const std::map<std::string, Rows> expected = readExpected();
    EXPECT_EQ(expected.size(), 49u);
    for (const auto &[name, rows] : expected)
        EXPECT_TRUE(actual().contains(name)) << name;
}

TEST(FindByName, FindsTheValue)
{
    EXPECT_EQ(findByName(MQRO_TBL, "MQRO_COD")->value, 2048);
}

TEST(FindByName, CurrentVersionOfTheChannelIsOneAboveTheLastVersionRow)
{
    EXPECT_EQ(findByName(MQCD_TBL, "MQCD_CURRENT_VERSION")->value, 12);
    EXPECT_EQ(findByName(MQCD_TBL, "MQCD_VERSION_12"), nullptr);
}

TEST(FindByName, TheConnectOptionsHaveNoCurrentVersion)
{
    EXPECT_EQ(findByName(MQCNO_V_TBL, "MQCNO_CURRENT_VERSION"), nullptr);
}

TEST(FindByName, IsCaseSensitive)
{
    EXPECT_EQ(findByName(MQRO_TBL, "mqro_coa"), nullptr);
}

TEST(FindByName, ComparesTheWholeName)
{
    EXPECT_EQ(findByName(MQRO_TBL, "MQRO_CO"), nullptr);
    EXPECT_EQ(findByName(MQRO_TBL, "MQRO_COAX"), nullptr);
    EXPECT_EQ(findByName(MQRO_TBL, ""), nullptr);
}

TEST(FindByName, GivesTheFirstOfTwoEqualNames)
{
    const NamedInteger *row = findByName(MQIA_TBL, "MQIA_ACCOUNTING_Q");
    EXPECT_EQ(row - MQIA_TBL, 7);
    EXPECT_STREQ(MQIA_TBL[44].name, "MQIA_ACCOUNTING_Q");
}

TEST(FindByName, WorksForEveryKindOfRow)
{
    EXPECT_EQ(findByName(MQCA_TBL, "MQCA_Q_DESC")->length, 64);
    EXPECT_STREQ(static_cast<const char *>(findByName(MQFMT_TBL, "MQFMT_STRING")->value), "MQSTR   ");
}
