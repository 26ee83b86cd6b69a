// Inquiries of what is counted: queue status, statistics, the queue manager's status, connections.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "pcf_fixture.h"

#include <unistd.h>

namespace mqrig::qmgr::command {
namespace {

using ::testing::ElementsAre;
using PcfStatus = PcfTest;

TEST_F(PcfStatus, OfAQueueCountsMessagesHandlesAndUncommittedWork)
{
    createLocal("Q");
    put("Q", MQPER_NOT_PERSISTENT);
    const auto other = connect();
    open(*other, idOf("Q"), {.input = 1, .exclusive = 0, .output = 2, .browse = 0});
    ASSERT_TRUE(other
                    ->update(0,
                             [&](store::WriteTransaction &transaction) {
                                 transaction.bookPut(idOf("Q"));
                                 return success();
                             })
                    .ok());
    const auto replies = run(MQCMD_INQUIRE_Q_STATUS, [](PcfWriter &w) { w.text(MQCA_Q_NAME, "Q"); });
    ASSERT_EQ(replies.size(), 1U);
    EXPECT_EQ(replies[0].text(MQCA_Q_NAME), "Q");
    EXPECT_EQ(replies[0].number(MQIACF_Q_STATUS_TYPE), MQIACF_Q_STATUS);
    EXPECT_EQ(replies[0].number(MQIA_CURRENT_Q_DEPTH), 2);
    EXPECT_EQ(replies[0].number(MQIA_OPEN_INPUT_COUNT), 1);
    EXPECT_EQ(replies[0].number(MQIA_OPEN_OUTPUT_COUNT), 2);
    EXPECT_EQ(replies[0].number(MQIACF_UNCOMMITTED_MSGS), 1);
    EXPECT_EQ(replies[0].number(MQIACF_OLDEST_MSG_AGE), MQMON_NOT_AVAILABLE);
    EXPECT_EQ(replies[0].text(MQCACF_LAST_PUT_DATE), "");
}

TEST_F(PcfStatus, OfHandlesTellsWhoHasAQueueOpen)
{
    createLocal("Q");
    open(*attachment_, idOf("Q"), {.input = 1, .exclusive = 1, .output = 0, .browse = 1});
    const auto replies = run(MQCMD_INQUIRE_Q_STATUS, [](PcfWriter &w) {
        w.text(MQCA_Q_NAME, "Q");
        w.integer(MQIACF_Q_STATUS_TYPE, MQIACF_Q_HANDLE);
    });
    ASSERT_EQ(replies.size(), 1U);
    EXPECT_EQ(replies[0].text(MQCA_Q_NAME), "Q");
    EXPECT_EQ(replies[0].number(MQIACF_Q_STATUS_TYPE), MQIACF_Q_HANDLE);
    EXPECT_EQ(replies[0].number(MQIACF_OPEN_INPUT_TYPE), MQQSO_EXCLUSIVE);
    EXPECT_EQ(replies[0].number(MQIACF_OPEN_OUTPUT), MQQSO_NO);
    EXPECT_EQ(replies[0].number(MQIACF_OPEN_BROWSE), MQQSO_YES);
    EXPECT_EQ(replies[0].number(MQIACF_PROCESS_ID), getpid());
    EXPECT_EQ(replies[0].text(MQCACF_APPL_TAG), "qmgr_command_test");
}

TEST_F(PcfStatus, OpenTypeChoosesQueuesAndHandles)
{
    for (const char *name : {"APP.GET", "APP.PUT", "APP.BROWSE", "APP.CLOSED"})
        createLocal(name);
    open(*attachment_, idOf("APP.GET"), {.input = 1, .exclusive = 0, .output = 0, .browse = 0});
    open(*attachment_, idOf("APP.PUT"), {.input = 0, .exclusive = 0, .output = 1, .browse = 0});
    open(*attachment_, idOf("APP.BROWSE"), {.input = 0, .exclusive = 0, .output = 0, .browse = 1});
    const auto names = [this](MQLONG statusType, MQLONG openType) {
        std::vector<std::string> found;
        for (const Reply &reply : run(MQCMD_INQUIRE_Q_STATUS, [&](PcfWriter &w) {
                 w.text(MQCA_Q_NAME, "APP.*");
                 w.integer(MQIACF_Q_STATUS_TYPE, statusType);
                 w.integer(MQIACF_OPEN_TYPE, openType);
             }))
            found.push_back(reply.text(MQCA_Q_NAME));
        return found;
    };
    EXPECT_THAT(names(MQIACF_Q_STATUS, MQQSOT_ALL), ElementsAre("APP.BROWSE", "APP.CLOSED", "APP.GET", "APP.PUT"));
    EXPECT_THAT(names(MQIACF_Q_HANDLE, MQQSOT_ALL), ElementsAre("APP.BROWSE", "APP.GET", "APP.PUT"));
    for (const MQLONG type : {MQIACF_Q_STATUS, MQIACF_Q_HANDLE}) {
        EXPECT_THAT(names(type, MQQSOT_INPUT), ElementsAre("APP.GET"));
        EXPECT_THAT(names(type, MQQSOT_OUTPUT), ElementsAre("APP.PUT"));
    }
    for (const MQLONG unknown : {0, 4})
        EXPECT_EQ(faultOfCommand(MQCMD_INQUIRE_Q_STATUS,
                                 [&](PcfWriter &w) {
                                     w.text(MQCA_Q_NAME, "APP.*");
                                     w.integer(MQIACF_OPEN_TYPE, unknown);
                                 }),
                  faultOf(MQRCCF_PARM_VALUE_ERROR, MQIACF_OPEN_TYPE));
}

TEST_F(PcfStatus, OfQueuesIsSelectedAndFiltered)
{
    createLocal("APP.A");
    createLocal("APP.B");
    answer("DEFINE QALIAS(APP.C)");
    put("APP.B", MQPER_NOT_PERSISTENT);
    const MQLONG asked[] = {MQIA_CURRENT_Q_DEPTH, MQCA_Q_NAME};
    const auto replies = run(MQCMD_INQUIRE_Q_STATUS, [&](PcfWriter &w) {
        w.text(MQCA_Q_NAME, "APP.*");
        w.integerFilter(MQIA_CURRENT_Q_DEPTH, MQCFOP_GREATER, 0);
        w.integers(MQIACF_Q_STATUS_ATTRS, asked);
    });
    ASSERT_EQ(replies.size(), 1U);
    EXPECT_THAT(replies[0].ids(), ElementsAre(MQCA_Q_NAME, MQIACF_Q_STATUS_TYPE, MQIA_CURRENT_Q_DEPTH));
    EXPECT_EQ(replies[0].text(MQCA_Q_NAME), "APP.B");
    EXPECT_EQ(run(MQCMD_INQUIRE_Q_STATUS, [](PcfWriter &w) { w.text(MQCA_Q_NAME, "APP.*"); }).size(), 2U)
        << "aliases have none";
}

TEST_F(PcfStatus, OfQueuesSaysWhatIsWrong)
{
    createLocal("Q");
    answer("DEFINE QALIAS(A)");
    const auto fault = [this](const char *name, const PcfTest::Parameters &more = {}) {
        return faultOfCommand(MQCMD_INQUIRE_Q_STATUS, [&](PcfWriter &w) {
            w.text(MQCA_Q_NAME, name);
            if (more) more(w);
        });
    };
    EXPECT_EQ(fault("NONE"), faultOf(MQRC_UNKNOWN_OBJECT_NAME, MQCA_Q_NAME));
    EXPECT_EQ(fault("A"), faultOf(MQRCCF_Q_WRONG_TYPE, MQCA_Q_NAME));
    EXPECT_EQ(fault("Q", [](PcfWriter &w) { w.integerFilter(MQIA_CURRENT_Q_DEPTH, MQCFOP_GREATER, 0); }),
              faultOf(MQRCCF_Q_STATUS_NOT_FOUND, MQCA_Q_NAME));
    EXPECT_EQ(fault("Q", [](PcfWriter &w) { w.integer(MQIACF_Q_STATUS_TYPE, MQIACF_Q_HANDLE); }),
              faultOf(MQRCCF_Q_STATUS_NOT_FOUND, MQCA_Q_NAME));
    EXPECT_EQ(fault("Q", [](PcfWriter &w) { w.integer(MQIACF_Q_STATUS_TYPE, 7); }),
              faultOf(MQRCCF_PARM_VALUE_ERROR, MQIACF_Q_STATUS_TYPE));
    const MQLONG unknown[] = {MQIA_MAX_Q_DEPTH};
    EXPECT_EQ(fault("Q", [&](PcfWriter &w) { w.integers(MQIACF_Q_STATUS_ATTRS, unknown); }),
              (PcfFault{MQRC_SELECTOR_ERROR, MQIACF_SELECTOR, MQIA_MAX_Q_DEPTH}));
}

TEST_F(PcfStatus, StatisticsBeginAnewWithEachReset)
{
    createLocal("Q");
    put("Q", MQPER_NOT_PERSISTENT);
    put("Q", MQPER_PERSISTENT);
    expectDone(MQCMD_CLEAR_Q, [](PcfWriter &w) { w.text(MQCA_Q_NAME, "Q"); });
    put("Q", MQPER_NOT_PERSISTENT);
    const auto reset = [this] {
        const auto replies = run(MQCMD_RESET_Q_STATS, [](PcfWriter &w) { w.text(MQCA_Q_NAME, "Q"); });
        EXPECT_EQ(replies.size(), 1U);
        EXPECT_THAT(replies[0].ids(), ElementsAre(MQCA_Q_NAME, MQIA_HIGH_Q_DEPTH, MQIA_MSG_ENQ_COUNT,
                                                  MQIA_MSG_DEQ_COUNT, MQIA_TIME_SINCE_RESET));
        EXPECT_GE(replies[0].number(MQIA_TIME_SINCE_RESET), 0);
        return replies[0];
    };
    const Reply first = reset();
    EXPECT_EQ(first.number(MQIA_HIGH_Q_DEPTH), 2);
    EXPECT_EQ(first.number(MQIA_MSG_ENQ_COUNT), 3);
    const Reply second = reset();
    EXPECT_EQ(second.number(MQIA_HIGH_Q_DEPTH), 1);
    EXPECT_EQ(second.number(MQIA_MSG_ENQ_COUNT), 0);
    EXPECT_EQ(second.number(MQIA_MSG_DEQ_COUNT), 0);
}

TEST_F(PcfStatus, RepeatedResetTellsWhatTheFirstHadCounted)
{
    createLocal("Q");
    put("Q", MQPER_NOT_PERSISTENT);
    const auto counted = [this] {
        return run(MQCMD_RESET_Q_STATS, [](PcfWriter &w) { w.text(MQCA_Q_NAME, "Q"); })[0].number(MQIA_MSG_ENQ_COUNT);
    };
    EXPECT_EQ(counted(), 1);
    put("Q", MQPER_NOT_PERSISTENT);
    repeated = true;
    EXPECT_EQ(counted(), 2);
    EXPECT_EQ(counted(), 2);
    ++putTime;
    EXPECT_EQ(counted(), 0) << "another request";
}

TEST_F(PcfStatus, StatisticsAreThoseOfLocalQueues)
{
    createLocal("APP.A");
    createLocal("APP.B");
    answer("DEFINE QALIAS(APP.C)");
    const auto named = [](const char *name) { return [name](PcfWriter &w) { w.text(MQCA_Q_NAME, name); }; };
    EXPECT_EQ(run(MQCMD_RESET_Q_STATS, named("APP.*")).size(), 2U);
    EXPECT_EQ(faultOfCommand(MQCMD_RESET_Q_STATS, named("APP.C")), faultOf(MQRCCF_Q_WRONG_TYPE, MQCA_Q_NAME));
    EXPECT_EQ(faultOfCommand(MQCMD_RESET_Q_STATS, named("NONE*")), faultOf(MQRC_UNKNOWN_OBJECT_NAME, MQCA_Q_NAME));
}

TEST_F(PcfStatus, OfTheQueueManager)
{
    const auto other = connect();
    const auto replies = run(MQCMD_INQUIRE_Q_MGR_STATUS);
    ASSERT_EQ(replies.size(), 1U);
    EXPECT_EQ(replies[0].text(MQCA_Q_MGR_NAME), "QM1");
    EXPECT_EQ(replies[0].number(MQIACF_Q_MGR_STATUS), MQQMSTA_RUNNING);
    EXPECT_EQ(replies[0].number(MQIACF_CONNECTION_COUNT), 2);
    EXPECT_EQ(replies[0].number(MQIACF_CMD_SERVER_STATUS), MQSVC_STATUS_RUNNING);
    EXPECT_EQ(replies[0].text(MQCACF_Q_MGR_START_DATE).size(), 10U);
    EXPECT_EQ(replies[0].text(MQCACF_Q_MGR_START_TIME).size(), 8U);

    const MQLONG asked[] = {MQIACF_CONNECTION_COUNT};
    const auto some =
        run(MQCMD_INQUIRE_Q_MGR_STATUS, [&](PcfWriter &w) { w.integers(MQIACF_Q_MGR_STATUS_ATTRS, asked); });
    EXPECT_THAT(some[0].ids(), ElementsAre(MQCA_Q_MGR_NAME, MQIACF_Q_MGR_STATUS, MQIACF_CONNECTION_COUNT));
    const MQLONG unknown[] = {MQCA_Q_NAME};
    EXPECT_EQ(faultOfCommand(MQCMD_INQUIRE_Q_MGR_STATUS,
                             [&](PcfWriter &w) { w.integers(MQIACF_Q_MGR_STATUS_ATTRS, unknown); }),
              (PcfFault{MQRC_SELECTOR_ERROR, MQIACF_SELECTOR, MQCA_Q_NAME}));
}

TEST_F(PcfStatus, ConnectionsAreFoundByTheirIds)
{
    const auto other = connect();
    const auto all = run(MQCMD_INQUIRE_CONNECTION, [](PcfWriter &w) { w.bytes(MQBACF_GENERIC_CONNECTION_ID, {}); });
    ASSERT_EQ(all.size(), 2U);
    for (const Reply &reply : all) {
        EXPECT_EQ(reply.number(MQIACF_CONN_INFO_TYPE), MQIACF_CONN_INFO_CONN);
        EXPECT_EQ(reply.number(MQIACF_PROCESS_ID), getpid());
        EXPECT_EQ(reply.text(MQCACF_APPL_TAG), "qmgr_command_test");
        const std::string tag = reply.find(MQBACF_CONN_TAG)->texts.front();
        EXPECT_EQ(tag.size(), std::size_t{MQ_CONN_TAG_LENGTH});
        EXPECT_EQ(tag.substr(0, 4), "MQCT");
    }
    const std::string id = all[1].find(MQBACF_CONNECTION_ID)->texts.front();
    ASSERT_EQ(id.size(), std::size_t{MQ_CONNECTION_ID_LENGTH});
    EXPECT_EQ(id.substr(0, 16), "AMQCQM1         ");
    const auto one = run(MQCMD_INQUIRE_CONNECTION, [&](PcfWriter &w) {
        w.bytes(MQBACF_CONNECTION_ID, {reinterpret_cast<const MQBYTE *>(id.data()), id.size()});
    });
    ASSERT_EQ(one.size(), 1U);
    EXPECT_EQ(one[0].find(MQBACF_CONNECTION_ID)->texts.front(), id);
}

TEST_F(PcfStatus, InquiryOfConnectionsSaysWhatIsWrong)
{
    const MQBYTE bytes[25] = {1};
    const auto fault = [this](const PcfTest::Parameters &parameters) {
        return faultOfCommand(MQCMD_INQUIRE_CONNECTION, parameters);
    };
    EXPECT_EQ(fault({}), faultOf(MQRCCF_PARM_MISSING, MQBACF_CONNECTION_ID));
    EXPECT_EQ(fault([&](PcfWriter &w) {
                  w.bytes(MQBACF_CONNECTION_ID, {bytes, 24});
              }),
              faultOf(MQRCCF_CONNECTION_ID_ERROR, MQBACF_CONNECTION_ID));
    EXPECT_EQ(fault([&](PcfWriter &w) {
                  w.bytes(MQBACF_CONNECTION_ID, {bytes, 8});
              }),
              faultOf(MQRCCF_CFBS_STRING_LENGTH_ERR, MQBACF_CONNECTION_ID));
    EXPECT_EQ(fault([&](PcfWriter &w) {
                  w.bytes(MQBACF_GENERIC_CONNECTION_ID, {bytes, 25});
              }),
              faultOf(MQRCCF_CFBS_STRING_LENGTH_ERR, MQBACF_GENERIC_CONNECTION_ID));
    EXPECT_EQ(fault([&](PcfWriter &w) {
                  w.bytes(MQBACF_GENERIC_CONNECTION_ID, {});
                  w.bytes(MQBACF_CONNECTION_ID, {bytes, 24});
              }),
              faultOf(MQRCCF_PARM_CONFLICT, MQBACF_GENERIC_CONNECTION_ID));
    EXPECT_EQ(fault([&](PcfWriter &w) {
                  w.bytes(MQBACF_GENERIC_CONNECTION_ID, {});
                  w.integer(MQIACF_CONN_INFO_TYPE, MQIACF_CONN_INFO_HANDLE);
              }),
              faultOf(MQRCCF_PARM_VALUE_ERROR, MQIACF_CONN_INFO_TYPE));
}

} // namespace
} // namespace mqrig::qmgr::command
