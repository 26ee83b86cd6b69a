#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include "absent_reasons.h"
#include "fields.h"
#include "page.h"
#include "values.h"

namespace mqrig::conformance {
namespace {

std::string contentsOf(const std::filesystem::path &file)
{
    std::ifstream in(file);
    EXPECT_TRUE(in.is_open()) << file;
    return {std::istreambuf_iterator<char>(in), {}};
}

// The sources in a folder and below it.
std::vector<std::filesystem::path> sourcesIn(const std::filesystem::path &folder)
{
    std::vector<std::filesystem::path> sources;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(folder)) {
        const std::string extension = entry.path().extension();
        if (extension == ".cpp" || extension == ".c" || extension == ".h") sources.push_back(entry.path());
    }
    return sources;
}

std::map<std::string, Structure> structures()
{
    std::map<std::string, Structure> byName;
    for (const Structure &structure : readHeaders(MQI_HEADERS).structures)
        byName[structure.name] = structure;
    return byName;
}

TEST(Conformance, PageIsWhatTheTablesSay)
{
    std::ostringstream page;
    printPage(page, readHeaders(MQI_HEADERS), readReasons(REASONS));
    EXPECT_TRUE(contentsOf(std::string(SOURCES) + "/docs/conformance.md") == page.str())
        << "docs/conformance.md is stale: scripts/conformance.sh writes it";
}

TEST(Conformance, EveryFieldOfTheHeadersStandsInOneRow)
{
    for (const auto &[name, structure] : structures()) {
        EXPECT_FALSE(structure.fields.empty()) << name;
        std::map<std::string, int> rowsOfField;
        bool hasOthers = false;
        for (const FieldRow &row : fieldRows()) {
            if (row.structure != name) continue;
            if (row.fields == "*") {
                EXPECT_FALSE(hasOthers) << name;
                hasOthers = true;
            } else {
                for (const std::string &field : wordsOf(row.fields))
                    ++rowsOfField[field];
            }
        }
        for (const std::string &field : structure.fields) {
            const int count = rowsOfField[field];
            EXPECT_TRUE(count == 1 || (count == 0 && hasOthers)) << name << '.' << field << " is in " << count;
        }
    }
}

TEST(Conformance, EveryRowIsOfTheHeaders)
{
    const std::map<std::string, Structure> all = structures();
    for (const FieldRow &row : fieldRows()) {
        const auto structure = all.find(std::string(row.structure));
        ASSERT_NE(structure, all.end()) << row.structure;
        if (row.fields == "*") continue;
        const std::set<std::string> fields(structure->second.fields.begin(), structure->second.fields.end());
        for (const std::string &field : wordsOf(row.fields))
            EXPECT_TRUE(fields.contains(field)) << row.structure << '.' << field;
    }
}

TEST(Conformance, EveryValueOfTheHeadersHasItsRow)
{
    std::set<std::string_view> rows;
    for (const ValueRow &row : valueRows())
        rows.insert(row.name);
    const Headers headers = readHeaders(MQI_HEADERS);
    for (const ValueField &field : valueFields())
        for (const Constant &constant : headers.constantsOf(field.prefix.empty() ? "?" : std::string(field.prefix)))
            EXPECT_TRUE(rows.contains(constant.name)) << field.name << ' ' << constant.name;
}

std::set<int> answeredReasons()
{
    std::set<int> answered;
    for (const Provoked &row : readReasons(REASONS))
        answered.insert(row.answer.reason);
    return answered;
}

std::map<std::string, Absence> absentByName()
{
    std::map<std::string, Absence> byName;
    for (const AbsentReasons &row : absentReasons())
        for (const std::string &name : wordsOf(row.names))
            EXPECT_TRUE(byName.emplace("MQRC_" + name, row.absence).second) << name << " stands twice";
    return byName;
}

TEST(Conformance, EveryReasonOfTheHeadersIsAnsweredOrSaidToBeAbsent)
{
    const std::set<int> answered = answeredReasons();
    std::map<std::string, Absence> absent = absentByName();
    for (const Constant &reason : readHeaders(MQI_HEADERS).constantsOf("MQRC_")) {
        const bool isAnswered = answered.contains(static_cast<int>(reason.value));
        EXPECT_NE(isAnswered, absent.contains(reason.name)) << reason.name << (isAnswered ? " is answered" : "");
        absent.erase(reason.name);
    }
    for (const auto &[name, absence] : absent)
        ADD_FAILURE() << name << " is not of the headers";
}

TEST(Conformance, EveryReasonOfTheSourcesIsAnsweredOrToldElsewhere)
{
    const std::set<int> answered = answeredReasons();
    const std::map<std::string, Absence> absent = absentByName();
    std::map<std::string, int> numbers;
    for (const Constant &reason : readHeaders(MQI_HEADERS).constantsOf("MQRC_"))
        numbers[reason.name] = static_cast<int>(reason.value);
    std::set<std::string> named;
    static const std::regex name("MQRC_[A-Z0-9_]*[A-Z0-9]");
    for (const std::filesystem::path &source : sourcesIn(std::string(SOURCES) + "/qmgr")) {
        const std::string text = contentsOf(source);
        for (std::sregex_iterator found(text.begin(), text.end(), name), end; found != end; ++found) {
            named.insert(found->str());
            const auto reason = numbers.find(found->str());
            if (reason == numbers.end() || answered.contains(reason->second)) continue;
            const auto row = absent.find(reason->first);
            EXPECT_TRUE(row != absent.end() && row->second == Absence::Elsewhere)
                << source << " names " << reason->first << ", which no test of the MQI gets";
        }
    }
    for (const auto &[reason, absence] : absent)
        if (absence == Absence::Elsewhere) {
            EXPECT_TRUE(named.contains(reason)) << reason << " is told nowhere";
        }
}

TEST(Conformance, OptionsThatAreDoneAreNamedByATest)
{
    std::set<std::string> named;
    static const std::regex option("MQ[A-Z]+_\\w+");
    for (const std::filesystem::path &source : sourcesIn(std::string(SOURCES) + "/tests/qmgr")) {
        const std::string text = contentsOf(source);
        for (std::sregex_iterator found(text.begin(), text.end(), option), end; found != end; ++found)
            named.insert(found->str());
    }
    for (std::size_t field = 0; field < qmgr::api::optionFields; ++field)
        for (const qmgr::api::OptionRow &row : qmgr::api::optionRows(static_cast<qmgr::api::OptionField>(field))) {
            std::string name(row.name);
            constexpr std::string_view reserved = "_RESERVED";
            if (name.ends_with(reserved)) name.resize(name.size() - reserved.size());
            EXPECT_TRUE(row.treatment != Treatment::Done || named.contains(name)) << name;
        }
}

// What a structure begins with is looked at by every test that uses it.
TEST(Conformance, FieldsThatAreDoneAreNamedByATest)
{
    std::set<std::string> named = {"StrucId", "Version"};
    static const std::regex member("(\\.|->)([A-Z]\\w+)");
    for (const std::filesystem::path &source : sourcesIn(std::string(SOURCES) + "/tests/qmgr")) {
        const std::string text = contentsOf(source);
        for (std::sregex_iterator found(text.begin(), text.end(), member), end; found != end; ++found)
            named.insert((*found)[2]);
    }
    for (const FieldRow &row : fieldRows())
        if (row.treatment == Treatment::Done) {
            for (const std::string &field : wordsOf(row.fields))
                EXPECT_TRUE(named.contains(field)) << row.structure << '.' << field;
        }
}

} // namespace
} // namespace mqrig::conformance
