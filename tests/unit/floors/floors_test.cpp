// No include runs upward, and the client and the queue manager share nothing but mqi/.
//
// A file may include files of its own floor and of those below it. In the client, a header in include/ belongs to the
// floor of the subsystem that it declares.

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

const fs::path root = fs::path(SOURCE_TREE).lexically_normal();

struct Include {
    std::string from; ///< relative to the source tree
    int line;
    std::string to; ///< the same, for a header of the tree; else as it is written
    bool known;     ///< the header is one of the tree
};

bool isSource(const fs::path &path)
{
    static const std::set<std::string> endings = {".h", ".cpp", ".c", ".inc"};
    return endings.contains(path.extension());
}

/// Where an include leads: beside the file that includes, or below one of the include folders.
std::optional<std::string> find(const fs::path &from, const std::string &name)
{
    for (const fs::path &folder :
         {from.parent_path(), root / "include", root / "mqi", root / "src", root / "tables", root / "qmgr", root}) {
        const fs::path candidate = (folder / name).lexically_normal();
        if (fs::is_regular_file(candidate)) return candidate.lexically_relative(root).string();
    }
    return std::nullopt;
}

/// Every include of the tree's own headers in a folder. Angle brackets count where they name one of them.
std::vector<Include> includesIn(const std::string &folder)
{
    static const std::regex directive(R"(^\s*#\s*include\s*([<"])([^>"]+)[>"])");
    std::vector<Include> includes;
    for (const auto &entry : fs::recursive_directory_iterator(root / folder)) {
        if (!entry.is_regular_file() || !isSource(entry.path())) continue;
        std::ifstream file(entry.path());
        std::string text;
        for (int line = 1; std::getline(file, text); ++line) {
            std::smatch parts;
            if (!std::regex_search(text, parts, directive)) continue;
            const std::optional<std::string> target = find(entry.path(), parts[2]);
            if (!target && parts[1] == "<") continue; // a system header
            includes.push_back(
                {entry.path().lexically_relative(root).string(), line, target.value_or(parts[2]), target.has_value()});
        }
    }
    return includes;
}

bool isBelow(const std::string &path, const std::string &folder)
{
    return path.compare(0, folder.size() + 1, folder + "/") == 0;
}

/// The floor of a file: higher numbers may include lower ones. Nothing for a file outside the building.
using Floors = std::function<std::optional<int>(const std::string &path)>;

const std::map<std::string, int> clientHeaders = {
    {"run.h", 8},        {"options.h", 7},     {"send.h", 6},     {"receive.h", 6}, {"pcf.h", 6},
    {"attributes.h", 6}, {"display.h", 5},     {"mqicalls.h", 4}, {"common.h", 3},  {"RunParams.h", 2},
    {"tables.h", 2},     {"option_rows.h", 2}, {"status.h", 2},
};

std::optional<int> clientFloor(const std::string &path)
{
    if (isBelow(path, "include")) {
        const auto header = clientHeaders.find(path.substr(std::string("include/").size()));
        if (header == clientHeaders.end()) return std::nullopt;
        return header->second;
    }
    static const std::map<std::string, int> folders = {
        {"src/run", 8},    {"src/options", 7},    {"src/send", 6},    {"src/receive", 6},
        {"src/pcf", 6},    {"src/attributes", 6}, {"src/display", 5}, {"src/mqicalls", 4},
        {"src/common", 3}, {"tables", 2},         {"mqi", 1},
    };
    for (const auto &[folder, floor] : folders) {
        if (isBelow(path, folder)) return floor;
    }
    return std::nullopt;
}

std::optional<int> queueManagerFloor(const std::string &path)
{
    static const std::map<std::string, int> folders = {
        {"qmgr/api", 5},        {"qmgr/core", 4},    {"qmgr/command", 4}, {"qmgr/objects", 3},
        {"qmgr/properties", 3}, {"qmgr/convert", 3}, {"qmgr/store", 2},   {"mqi", 1},
    };
    for (const auto &[folder, floor] : folders) {
        if (isBelow(path, folder)) return floor;
    }
    return std::nullopt;
}

std::vector<Include> includesInAll(const std::vector<std::string> &folders)
{
    std::vector<Include> all;
    for (const std::string &folder : folders) {
        const std::vector<Include> some = includesIn(folder);
        all.insert(all.end(), some.begin(), some.end());
    }
    return all;
}

void expectDownwards(const std::vector<Include> &includes, const Floors &floorOf)
{
    for (const Include &include : includes) {
        const std::string where = include.from + ":" + std::to_string(include.line) + " includes " + include.to;
        EXPECT_TRUE(include.known) << where << ", which is not there";
        if (!include.known) continue;
        const std::optional<int> from = floorOf(include.from);
        const std::optional<int> to = floorOf(include.to);
        EXPECT_TRUE(from.has_value()) << include.from << " is on no floor";
        EXPECT_TRUE(to.has_value()) << where << ", which is on no floor below";
        if (!from || !to) continue;
        EXPECT_LE(*to, *from) << where << ", which is on a higher floor";
    }
}

const std::vector<std::string> clientFolders = {"include", "src", "tables", "mqi"};

} // namespace

TEST(Floors, NoIncludeOfTheClientRunsUpward)
{
    const std::vector<Include> includes = includesInAll(clientFolders);
    EXPECT_GT(includes.size(), 100u);
    expectDownwards(includes, clientFloor);
}

TEST(Floors, NoIncludeOfTheQueueManagerRunsUpward)
{
    const std::vector<Include> includes = includesIn("qmgr");
    EXPECT_GT(includes.size(), 10u);
    expectDownwards(includes, queueManagerFloor);
}

TEST(Floors, TheMqiKnowsNobody)
{
    for (const Include &include : includesIn("mqi"))
        EXPECT_TRUE(isBelow(include.to, "mqi")) << include.from;
}

TEST(Floors, TheClientAndTheQueueManagerMeetOnlyAtTheMqi)
{
    for (const Include &include : includesInAll(clientFolders)) {
        EXPECT_FALSE(isBelow(include.to, "qmgr") || isBelow(include.to, "rigqm")) << include.from;
    }
    for (const Include &include : includesInAll({"qmgr", "rigqm"})) {
        for (const char *folder : {"src", "include", "tables"}) {
            EXPECT_FALSE(isBelow(include.to, folder)) << include.from << " includes " << include.to;
        }
    }
}

TEST(Floors, EveryHeaderOfTheClientIsOnAFloor)
{
    for (const auto &entry : fs::directory_iterator(root / "include")) {
        EXPECT_TRUE(clientHeaders.contains(entry.path().filename())) << entry.path();
    }
}

// The check itself, on made-up includes.
TEST(Floors, AnIncludeThatRunsUpwardIsSeen)
{
    EXPECT_NONFATAL_FAILURE(expectDownwards({{"src/common/printf_t.cpp", 1, "include/display.h", true}}, clientFloor),
                            "higher floor");
    EXPECT_NONFATAL_FAILURE(expectDownwards({{"qmgr/objects/x.cpp", 1, "qmgr/command/x.h", true}}, queueManagerFloor),
                            "higher floor");
}

TEST(Floors, AnIncludeOfTheOtherProgramIsSeen)
{
    EXPECT_NONFATAL_FAILURE(expectDownwards({{"src/run/run.cpp", 1, "qmgr/store/store.h", true}}, clientFloor),
                            "on no floor below");
    EXPECT_NONFATAL_FAILURE(expectDownwards({{"qmgr/api/x.cpp", 1, "include/common.h", true}}, queueManagerFloor),
                            "on no floor below");
}

TEST(Floors, AnIncludeOfTheSameFloorIsFine)
{
    expectDownwards({{"src/receive/Queue2Queue.cpp", 1, "include/send.h", true}}, clientFloor);
}
