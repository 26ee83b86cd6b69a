// Every row of the output table of attributes, against expected_output.csv.
#include "tables.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::vector<std::string> expectedRows()
{
    std::vector<std::string> rows;
    std::ifstream file(EXPECTED_OUTPUT);
    std::string line;
    std::getline(file, line); // the column names
    while (std::getline(file, line))
        rows.push_back(line);
    return rows;
}

std::string formatOf(const AttributeOutput &row)
{
    if (*row.keyword == '\0') return "%s";
    const bool isText = row.selector >= MQCA_FIRST && row.selector <= MQCA_LAST;
    return std::string(row.keyword) + (isText || row.values != nullptr ? "(%s)" : "(%d)");
}

std::string shown(const AttributeOutput &row)
{
    std::ostringstream line;
    line << row.selector << ',' << formatOf(row) << ',';
    for (const NamedInteger *value = row.values; value != nullptr && value->name != nullptr; ++value) {
        line << (value == row.values ? "" : " ") << value->value << '=' << value->name;
    }
    return line.str();
}

TEST(AttributeOutput, RowsAndTheirValuesAreInOrder)
{
    std::vector<std::string> rows;
    for (const AttributeOutput *row = prm_to_msg; row->keyword != nullptr; ++row)
        rows.push_back(shown(*row));
    const std::vector<std::string> expected = expectedRows();
    ASSERT_EQ(expected.size(), 115U);
    EXPECT_EQ(rows, expected);
}

TEST(AttributeOutput, NoSelectorStandsTwice)
{
    for (const AttributeOutput *row = prm_to_msg; row->keyword != nullptr; ++row) {
        for (const AttributeOutput *other = row + 1; other->keyword != nullptr; ++other) {
            EXPECT_NE(row->selector, other->selector);
        }
    }
}

} // namespace
