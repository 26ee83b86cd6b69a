// The option and constant rows fit together: each has what its kind needs, no flag stands twice, prefixes are in order.

#include "option_rows.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>
#include <vector>

namespace {

std::vector<OptionRow> allOptions()
{
    std::vector<OptionRow> rows;
    for (const OptionGroup &group : OPTION_GROUPS)
        rows.insert(rows.end(), group.rows.begin(), group.rows.end());
    return rows;
}

/// The targets of a row, in words.
std::set<std::string> targets(const OptionRow &row)
{
    std::set<std::string> set;
    if (row.text != nullptr) set.insert("text");
    if (row.integer != nullptr) set.insert("integer");
    if (row.field != nullptr) set.insert("field");
    if (row.address != nullptr) set.insert("address");
    return set;
}

std::set<std::string> neededTargets(OptionKind kind)
{
    switch (kind) {
    case OptionKind::Version:
    case OptionKind::Primary:
    case OptionKind::Secondary:
    case OptionKind::Unavailable:
        return {};
    case OptionKind::Text:
    case OptionKind::ApiName:
        return {"text"};
    case OptionKind::Flag:
    case OptionKind::Number:
    case OptionKind::NumberOrAll:
    case OptionKind::Encoding:
    case OptionKind::EncodingList:
    case OptionKind::CharacterSet:
    case OptionKind::Operation:
        return {"integer"};
    case OptionKind::Characters:
    case OptionKind::CutCharacters:
    case OptionKind::Bytes:
    case OptionKind::HexBytes:
    case OptionKind::FormatName:
        return {"field"};
    case OptionKind::DynamicName:
        return {"text", "field"};
    case OptionKind::CallbackName:
        return {"address"};
    case OptionKind::CountedText:
        return {"address", "integer"};
    }
    return {"unknown kind"};
}

} // namespace

TEST(OptionRows, HaveWhatTheirKindNeeds)
{
    for (const OptionRow &row : allOptions())
        EXPECT_EQ(targets(row), neededTargets(row.kind)) << row.flag;
}

TEST(OptionRows, HaveEachFlagOnce)
{
    std::set<std::string> flags;
    for (const OptionRow &row : allOptions())
        EXPECT_TRUE(flags.insert(row.flag).second) << row.flag;
    EXPECT_EQ(flags.size(), 96u);
}

TEST(OptionRows, SayWhatValueTheyTake)
{
    for (const OptionRow &row : allOptions()) {
        const bool takesValue = row.missing != nullptr || row.kind == OptionKind::Version;
        EXPECT_EQ(takesValue, std::strlen(row.value) > 0) << row.flag;
    }
}

TEST(OptionRows, HaveAMessageForEveryCheck)
{
    for (const OptionRow &row : allOptions()) {
        const bool checksLength = row.kind == OptionKind::Characters || row.kind == OptionKind::CountedText ||
                                  row.kind == OptionKind::Bytes || row.kind == OptionKind::HexBytes || row.limit != 0;
        if (checksLength) {
            ASSERT_NE(row.fault, nullptr) << row.flag;
            EXPECT_NE(std::strstr(row.fault, "%d"), nullptr) << row.flag;
        }
        const bool readsDigits = row.kind == OptionKind::Bytes || row.kind == OptionKind::HexBytes;
        EXPECT_EQ(readsDigits, row.badDigits != nullptr) << row.flag;
        EXPECT_EQ(row.kind == OptionKind::HexBytes, row.noPrefix != nullptr) << row.flag;
    }
}

TEST(OptionRows, SetTheDescriptorBitOfTheFieldThatTheyFill)
{
    RunParams params = DEFAULT_RUN_PARAMS;
    const auto *const begin = reinterpret_cast<const char *>(&params.Md);
    for (const OptionRow &row : allOptions()) {
        const char *target = nullptr;
        if (row.field != nullptr) target = row.field(params).data();
        if (row.integer != nullptr) target = reinterpret_cast<const char *>(&row.integer(params));
        const bool inDescriptor = target >= begin && target < begin + sizeof params.Md;
        EXPECT_EQ(inDescriptor, row.mdField != 0) << row.flag;
    }
}

TEST(ConstantRows, HaveWhatTheirKindNeeds)
{
    for (const ConstantRow &row : CONSTANT_ROWS) {
        const bool bytes = row.kind == ConstantKind::SetBytes || row.kind == ConstantKind::Token;
        const bool field = bytes || row.kind == ConstantKind::TokenType;
        EXPECT_EQ(row.bytes != nullptr, bytes) << row.prefix;
        EXPECT_EQ(row.table != nullptr, !bytes) << row.prefix;
        EXPECT_EQ(row.field != nullptr, field) << row.prefix;
        EXPECT_EQ(row.integer != nullptr, !field) << row.prefix;
    }
}

TEST(ConstantRows, TryALongerPrefixBeforeTheShorterOneThatHidesIt)
{
    for (std::size_t i = 0; i < CONSTANT_ROWS.size(); ++i) {
        for (std::size_t later = i + 1; later < CONSTANT_ROWS.size(); ++later) {
            const std::string earlier = CONSTANT_ROWS[i].prefix;
            EXPECT_NE(std::string(CONSTANT_ROWS[later].prefix).compare(0, earlier.size(), earlier), 0)
                << earlier << " hides " << CONSTANT_ROWS[later].prefix;
        }
    }
}

TEST(ConstantRows, HaveNamesThatBeginWithTheirPrefix)
{
    for (const ConstantRow &row : CONSTANT_ROWS) {
        if (row.table == nullptr) continue;
        int count = 0;
        for (const NamedInteger *name = row.table; name->name != nullptr; ++name) {
            if (std::strncmp(name->name, row.prefix, std::strlen(row.prefix)) == 0) ++count;
        }
        // The connect options have no current version; the prefix is there to say so.
        EXPECT_EQ(count > 0, std::strcmp(row.prefix, "MQCNO_CURRENT_VERSION") != 0) << row.prefix;
    }
}
