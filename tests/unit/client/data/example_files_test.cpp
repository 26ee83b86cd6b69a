// The example definition files of the documentation: each is read without a complaint and says what its name says.
#include "definition.h"

#include "common.h"

#include <algorithm>
#include <dirent.h>

namespace {

struct Example {
    const char *name;
    MQLONG command;
    MQLONG length; ///< of the message
    const char *echo;
};

const Example EXAMPLES_OF_COMMANDS[] = {
    {"change_local_queue.pcf", MQCMD_CHANGE_Q, 112,
     "Command : 8\nId : 2016, MQCFT_STRING : 0 8 APP.JOBS\nId : 20, MQCFT_INTEGER : 1\nId : 10, MQCFT_INTEGER : 1\n"
     "Id : 22, MQCFT_INTEGER : 3\n"},
    {"clear_queue.pcf", MQCMD_CLEAR_Q, 64, "Command : 9\nId : 2016, MQCFT_STRING : 0 8 APP.JOBS\n"},
    {"create_local_queue.pcf", MQCMD_CREATE_Q, 152,
     "Command : 11\nId : 2016, MQCFT_STRING : 0 8 APP.JOBS\nId : 20, MQCFT_INTEGER : 1\n"
     "Id : 2013, MQCFT_STRING : 0 19 jobs of the morning\nId : 15, MQCFT_INTEGER : 10000\nId : 5, MQCFT_INTEGER : 1\n"},
    {"create_namelist.pcf", MQCMD_CREATE_NAMELIST, 108,
     "Command : 34\nId : 2010, MQCFT_STRING : 0 9 APP.NAMES\n"
     "Id : 2020, MQCFT_STRING_LIST : 0 2 8 [APP.JOBS],[APP.DONE]\n"},
    {"delete_queue.pcf", MQCMD_DELETE_Q, 96,
     "Command : 12\nId : 2016, MQCFT_STRING : 0 8 APP.JOBS\nId : 20, MQCFT_INTEGER : 1\n"
     "Id : 1007, MQCFT_INTEGER : 1\n"},
    {"escape_mqsc.pcf", MQCMD_ESCAPE, 100,
     "Command : 38\nId : 1017, MQCFT_INTEGER : 1\nId : 3014, MQCFT_STRING : 0 26 DISPLAY QLOCAL(*) CURDEPTH\n"},
    {"inquire_queue_manager.pcf", MQCMD_INQUIRE_Q_MGR, 72,
     "Command : 2\nId : 1001, MQCFT_INTEGER_LIST : 5 [2015],[31],[2],[2006],[2014]\n"},
    {"inquire_queue_status.pcf", MQCMD_INQUIRE_Q_STATUS, 112,
     "Command : 41\nId : 2016, MQCFT_STRING : 0 5 APP.*\nId : 3, MQCFT_INTEGER_FILTER : 4 0\n"
     "Id : 1026, MQCFT_INTEGER_LIST : 3 [3],[17],[18]\n"},
    {"inquire_queues.pcf", MQCMD_INQUIRE_Q, 84,
     "Command : 13\nId : 2016, MQCFT_STRING : 0 1 *\nId : 1002, MQCFT_INTEGER_LIST : 2 [2016],[20]\n"},
    {"inquire_queues_like.pcf", MQCMD_INQUIRE_Q, 116,
     "Command : 13\nId : 2016, MQCFT_STRING : 0 1 *\nId : 1002, MQCFT_INTEGER_LIST : 2 [2013],[15]\n"
     "Id : 2013, MQCFT_STRING_FILTER : 18 0 5 jobs*\n"},
    {"ping_queue_manager.pcf", MQCMD_PING_Q_MGR, 36, "Command : 40\n"},
    {"reset_queue_statistics.pcf", MQCMD_RESET_Q_STATS, 64, "Command : 17\nId : 2016, MQCFT_STRING : 0 8 APP.JOBS\n"},
};

class ExampleTest : public DefinitionTest, public testing::WithParamInterface<Example> {};

TEST_P(ExampleTest, IsACompleteCommand)
{
    const Written written = read_file(std::string(EXAMPLES) + "/" + GetParam().name);
    EXPECT_EQ(written.status, 0);
    EXPECT_EQ(written.err, "");
    EXPECT_EQ(written.out, GetParam().echo);
    EXPECT_EQ(def.Cfh.Command, GetParam().command);
    EXPECT_EQ(def.MsgType, MQMT_REQUEST);
    EXPECT_STREQ(def.Format, MQFMT_ADMIN);
    EXPECT_STREQ(def.ReplyToQ, "REPLY.QUEUE");
    MQLONG length = 0;
    const Buffer<> message(make_pcf_message(&params.Md, &def, &length));
    EXPECT_EQ(length, GetParam().length);
}

INSTANTIATE_TEST_SUITE_P(Each, ExampleTest, testing::ValuesIn(EXAMPLES_OF_COMMANDS),
                         [](const testing::TestParamInfo<Example> &test) {
                             std::string name = test.param.name;
                             std::replace(name.begin(), name.end(), '.', '_');
                             return name;
                         });

TEST(Examples, EachIsTested)
{
    std::vector<std::string> files;
    DIR *folder = opendir(EXAMPLES);
    ASSERT_NE(folder, nullptr);
    while (const dirent *entry = readdir(folder)) {
        if (std::string(entry->d_name).ends_with(".pcf")) files.emplace_back(entry->d_name);
    }
    closedir(folder);
    std::sort(files.begin(), files.end());
    std::vector<std::string> tested;
    for (const Example &example : EXAMPLES_OF_COMMANDS)
        tested.emplace_back(example.name);
    EXPECT_EQ(files, tested);
}

} // namespace
