// The embedded libmqm_r.so as a loader sees it.
#include <gtest/gtest.h>

#include <dlfcn.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <memory>
#include <regex>
#include <set>
#include <sstream>
#include <string>

namespace {

std::string outputOf(const std::string &command)
{
    const std::unique_ptr<FILE, int (*)(FILE *)> pipe(popen(command.c_str(), "r"), pclose);
    std::string output;
    std::array<char, 4096> chunk;
    while (pipe != nullptr && fgets(chunk.data(), chunk.size(), pipe.get()) != nullptr)
        output += chunk.data();
    return output;
}

// The calls that cmqc.h declares.
std::set<std::string> declaredCalls()
{
    std::set<std::string> names;
    std::ifstream lines(std::string(MQI_HEADERS) + "/cmqc.h");
    const std::regex declaration("void MQENTRY (MQ\\w+)\\(.*");
    std::smatch match;
    for (std::string line; std::getline(lines, line);)
        if (std::regex_match(line, match, declaration)) names.insert(match[1]);
    return names;
}

TEST(Exports, ExactlyTheCallsOfTheMqiWithoutVersions)
{
    std::set<std::string> exported;
    std::istringstream lines(outputOf("nm -D --defined-only " MQM_R));
    for (std::string address, kind, name; lines >> address >> kind >> name;)
        exported.insert(name);
    EXPECT_EQ(declaredCalls().size(), 25U);
    EXPECT_EQ(exported, declaredCalls());
}

TEST(Exports, SonameIsThatOfTheMqiLibrary)
{
    EXPECT_NE(outputOf("readelf -d " MQM_R).find("Library soname: [libmqm_r.so]"), std::string::npos);
}

TEST(Exports, LibraryIsNeverUnloaded)
{
    void *first = dlopen(MQM_R, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(first, nullptr) << dlerror();
    EXPECT_NE(dlsym(first, "MQCONN"), nullptr);
    EXPECT_EQ(dlclose(first), 0);
    EXPECT_NE(dlopen(MQM_R, RTLD_NOW | RTLD_NOLOAD), nullptr);
}

} // namespace
