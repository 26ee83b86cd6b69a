#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include "transcript.h"

namespace {

// The names with that beginning and their numbers, as the MQI's headers declare them.
std::map<std::string, std::string> declared(const std::string &header, const std::string &prefix)
{
    std::map<std::string, std::string> names;
    std::ifstream stream(std::string(MQI_FOLDER "/") + header);
    const std::regex definition("#define (" + prefix + "\\w+)\\s+(\\d+)\\s*");
    std::smatch parts;
    for (std::string line; std::getline(stream, line);)
        if (std::regex_match(line, parts, definition)) names[parts[1]] = parts[2];
    return names;
}

// Number of different sentences among the answers.
std::size_t checkAll(const std::map<std::string, std::string> &names)
{
    const TemporaryFolder folder;
    std::string command = "rigqm explain";
    for (const auto &[name, number] : names)
        command += ' ' + name;
    const CommandResult result = runShell(command, "", folder.path());
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.error, "");
    std::istringstream output(result.output);
    std::set<std::string> sentences;
    std::string head;
    std::string sentence;
    for (const auto &[name, number] : names) {
        std::getline(output, head);
        std::getline(output, sentence);
        EXPECT_EQ(head, number + ' ' + name);
        EXPECT_EQ(sentence.substr(0, 4), "    ");
        EXPECT_GT(sentence.size(), 20U) << name;
        sentences.insert(sentence);
    }
    return sentences.size();
}

TEST(RigqmExplain, KnowsEveryReasonOfTheMqiAndMostByASentenceOfItsOwn)
{
    const auto names = declared("cmqc.h", "MQRC_");
    ASSERT_GT(names.size(), 500U);
    EXPECT_GT(checkAll(names), 400U);
}

TEST(RigqmExplain, KnowsEveryReasonOfCommands)
{
    const auto names = declared("cmqcfc.h", "MQRCCF_");
    ASSERT_GT(names.size(), 300U);
    checkAll(names);
}

} // namespace
