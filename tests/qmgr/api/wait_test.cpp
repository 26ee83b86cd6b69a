// MQGET with a wait, and connections shared by threads.
#include "fixture.h"

#include <atomic>
#include <chrono>
#include <future>
#include <mutex>
#include <set>
#include <thread>
#include <utility>

#include "qmgr/store/seams.h"

namespace mqrig::qmgr::testing {
namespace {

using namespace std::chrono_literals;

MQGMO waiting(MQLONG interval, MQLONG options = MQGMO_NO_SYNCPOINT)
{
    MQGMO gmo = gmoWith(MQGMO_WAIT | options, MQGMO_VERSION_2);
    gmo.WaitInterval = interval;
    gmo.MatchOptions = MQMO_NONE;
    return gmo;
}

// Long enough for the other thread to have fallen asleep; a test stays right when it has not.
void letItSleep()
{
    std::this_thread::sleep_for(100ms);
}

class Wait : public OpenQueueTest {
public:
    Wait() : other(connect()), otherQ1(open(other, "Q1", everything)) {}

    // A get in a thread of its own, on a connection of its own.
    std::future<Got> getterWith(MQGMO gmo, MQMD md = version2Md())
    {
        auto getter = std::async(std::launch::async, [this, gmo, md] { return get(hconn, q1, md, gmo); });
        letItSleep();
        return getter;
    }

    MQHCONN other;
    MQHOBJ otherQ1;
};

TEST_F(Wait, EndsWithoutAMessageIn2033)
{
    EXPECT_EQ(get(hconn, q1, version2Md(), waiting(50)).codes, failed(MQRC_NO_MSG_AVAILABLE));
    EXPECT_EQ(get(hconn, q1, version2Md(), waiting(0)).codes, failed(MQRC_NO_MSG_AVAILABLE));
}

TEST_F(Wait, AMessageThatIsThereIsTakenAtOnce)
{
    put(hconn, q1, "there");
    EXPECT_EQ(get(hconn, q1, version2Md(), waiting(MQWI_UNLIMITED)).body, "there");
}

TEST_F(Wait, APutWakesTheGetter)
{
    auto getter = getterWith(waiting(MQWI_UNLIMITED));
    put(other, otherQ1, "wake up");
    EXPECT_EQ(getter.get().body, "wake up");
}

TEST_F(Wait, APersistentPutWakesTheGetter)
{
    auto getter = getterWith(waiting(10000));
    put(other, otherQ1, "wake up", persistentMd());
    EXPECT_EQ(getter.get().body, "wake up");
}

TEST_F(Wait, ACommitWakesTheGetter)
{
    auto getter = getterWith(waiting(10000));
    put(other, otherQ1, "wake up", {MQMD_DEFAULT}, pmoWith(MQPMO_SYNCPOINT));
    commit(other);
    EXPECT_EQ(getter.get().body, "wake up");
}

TEST_F(Wait, ABackoutWakesTheGetter)
{
    put(other, otherQ1, "back again");
    get(other, otherQ1, MQGMO_SYNCPOINT);
    auto getter = getterWith(waiting(10000));
    backOut(other);
    EXPECT_EQ(getter.get().body, "back again");
}

TEST_F(Wait, DisconnectOfTheOtherWakesTheGetter)
{
    auto getter = getterWith(waiting(10000));
    put(other, otherQ1, "left behind", {MQMD_DEFAULT}, pmoWith(MQPMO_SYNCPOINT));
    disconnect(other);
    EXPECT_EQ(getter.get().body, "left behind");
}

TEST_F(Wait, MessagesThatDoNotMatchAreWaitedPast)
{
    MQMD wanted = version2Md();
    setBytes(wanted.CorrelId, "WANTED");
    MQGMO gmo = waiting(10000);
    gmo.MatchOptions = MQMO_MATCH_CORREL_ID;
    auto getter = getterWith(gmo, wanted);
    put(other, otherQ1, "not this one");
    put(other, otherQ1, "this one", wanted);
    EXPECT_EQ(getter.get().body, "this one");
}

// Before each look of the getter, another program puts one more message that is not for it.
Wait *busy = nullptr;
int putMeanwhile = 0;
constexpr int enough = 20000;

TEST_F(Wait, EndsAlsoWhereMessagesForOthersNeverStop)
{
    alterQueue("Q1", {{MQIA_MAX_Q_DEPTH, 2 * enough}});
    MQMD md = version2Md();
    setBytes(md.MsgId, "NEVER");
    MQGMO gmo = waiting(1);
    gmo.MatchOptions = MQMO_MATCH_MSG_ID;
    busy = this;
    putMeanwhile = 0;
    store::seams.storageError = [](store::StorageCall call) {
        Wait *const test = std::exchange(busy, nullptr);
        if (test != nullptr && call == store::StorageCall::LiveBegin && putMeanwhile < enough) {
            EXPECT_EQ(put(test->other, test->otherQ1, "for somebody else"), ok);
            ++putMeanwhile;
        }
        if (test != nullptr) busy = test;
        return 0;
    };
    EXPECT_EQ(get(hconn, q1, md, gmo).codes, failed(MQRC_NO_MSG_AVAILABLE));
    store::seams.storageError = nullptr;
    EXPECT_LT(putMeanwhile, enough);
}

TEST_F(Wait, ABrowserWaitsForTheNextMessage)
{
    put(other, otherQ1, "1");
    get(hconn, q1, MQGMO_BROWSE_FIRST);
    auto browser = getterWith(waiting(10000, MQGMO_BROWSE_NEXT));
    put(other, otherQ1, "2");
    EXPECT_EQ(browser.get().body, "2");
    EXPECT_EQ(depth("Q1"), 2);
}

TEST_F(Wait, UnderCursorDoesNotWait)
{
    EXPECT_EQ(get(hconn, q1, version2Md(), waiting(MQWI_UNLIMITED, MQGMO_MSG_UNDER_CURSOR)).codes,
              failed(MQRC_NO_MSG_UNDER_CURSOR));
}

TEST_F(Wait, QuiescingEndsTheWaitWith2161WhereAskedFor)
{
    auto getter = getterWith(waiting(MQWI_UNLIMITED, MQGMO_FAIL_IF_QUIESCING));
    endQuiesce();
    EXPECT_EQ(getter.get().codes, failed(MQRC_Q_MGR_QUIESCING));
}

TEST_F(Wait, QuiescingDoesNotEndTheWaitOtherwise)
{
    auto getter = getterWith(waiting(10000));
    endQuiesce();
    put(other, otherQ1, "still working");
    EXPECT_EQ(getter.get().body, "still working");
}

TEST_F(Wait, ImmediateEndEndsTheWaitWith2162)
{
    auto getter = getterWith(waiting(MQWI_UNLIMITED));
    endImmediate();
    EXPECT_EQ(getter.get().codes, failed(MQRC_Q_MGR_STOPPING));
    EXPECT_EQ(commit(hconn), failed(MQRC_CONNECTION_BROKEN));
}

TEST_F(Wait, InhibitingTheQueueEndsTheWaitWith2016)
{
    auto getter = getterWith(waiting(MQWI_UNLIMITED));
    alterQueue("Q1", {{MQIA_INHIBIT_GET, MQQA_GET_INHIBITED}});
    EXPECT_EQ(getter.get().codes, failed(MQRC_GET_INHIBITED));
}

TEST_F(Wait, DeletingTheQueueEndsTheWaitWith2052)
{
    auto getter = getterWith(waiting(MQWI_UNLIMITED));
    deleteQueue("Q1");
    EXPECT_EQ(getter.get().codes, failed(MQRC_Q_DELETED));
}

// ---- One connection, many threads ----

using Threads = OpenQueueTest;

TEST_F(Threads, AnyThreadMayUseAConnection)
{
    std::thread([this] { EXPECT_EQ(put(hconn, q1, "from elsewhere"), ok); }).join();
    EXPECT_EQ(get(hconn, q1).body, "from elsewhere");
}

TEST_F(Threads, CallsOfManyThreadsOnOneConnectionGoOneAfterTheOther)
{
    constexpr int threads = 4;
    constexpr int messages = 200;
    std::atomic<int> got{0};
    std::vector<std::thread> running;
    for (int i = 0; i < threads; ++i)
        running.emplace_back([&] {
            for (int message = 0; message < messages; ++message) {
                EXPECT_EQ(put(hconn, q1, "x"), ok);
                if (get(hconn, q1).codes == ok) ++got;
            }
        });
    for (std::thread &thread : running)
        thread.join();
    EXPECT_EQ(got, threads * messages);
}

TEST_F(Threads, ConnectionsOfTheirOwnLoseAndDoubleNothing)
{
    constexpr int threads = 3;
    constexpr int messages = 300;
    std::mutex guard;
    std::multiset<std::string> seen;
    std::vector<std::thread> running;
    for (int i = 0; i < threads; ++i) {
        running.emplace_back([i] {
            MQHCONN mine = connect();
            const MQHOBJ output = open(mine, "Q1", MQOO_OUTPUT);
            for (int message = 0; message < messages; ++message)
                put(mine, output, std::to_string(i * messages + message), {MQMD_DEFAULT},
                    pmoWith(message % 2 == 0 ? MQPMO_SYNCPOINT : MQPMO_NO_SYNCPOINT));
            disconnect(mine);
        });
        running.emplace_back([&] {
            MQHCONN mine = connect();
            const MQHOBJ input = open(mine, "Q1", MQOO_INPUT_SHARED);
            for (;;) {
                const Got got = get(mine, input, version2Md(), waiting(3000, MQGMO_SYNCPOINT));
                if (got.codes != ok) break;
                commit(mine);
                const std::lock_guard lock(guard);
                seen.insert(got.body);
                if (seen.size() == threads * messages) break;
            }
            disconnect(mine);
        });
    }
    for (std::thread &thread : running)
        thread.join();
    EXPECT_EQ(seen.size(), static_cast<std::size_t>(threads * messages));
    EXPECT_EQ(std::set<std::string>(seen.begin(), seen.end()).size(), seen.size());
}

TEST_F(Threads, NoBlockConnectionAnswers2219WhileACallIsInProgress)
{
    MQCNO cno = {MQCNO_DEFAULT};
    cno.Options = MQCNO_HANDLE_SHARE_NO_BLOCK;
    MQHCONN shared = MQHC_UNUSABLE_HCONN;
    ASSERT_EQ(tryConnectX("QM1", cno, shared), ok);
    const MQHOBJ input = open(shared, "Q1", MQOO_INPUT_SHARED);
    auto getter = std::async(std::launch::async, [&] {
        // A commit of the other thread may be in progress just then.
        Got got = get(shared, input, version2Md(), waiting(MQWI_UNLIMITED));
        while (got.codes == failed(MQRC_CALL_IN_PROGRESS))
            got = get(shared, input, version2Md(), waiting(MQWI_UNLIMITED));
        return got;
    });
    while (commit(shared) == ok)
        std::this_thread::yield();
    EXPECT_EQ(commit(shared), failed(MQRC_CALL_IN_PROGRESS));
    put(hconn, q1, "enough");
    EXPECT_EQ(getter.get().body, "enough");
    EXPECT_EQ(commit(shared), ok);
}

TEST_F(Threads, DisconnectBesideCallsOfOtherThreadsLeavesThemWith2018)
{
    for (int round = 0; round < 20; ++round) {
        MQHCONN shared = connect();
        const MQHCONN number = shared;
        const MQHOBJ output = open(shared, "Q1", MQOO_OUTPUT);
        std::thread putter([number, output] {
            Codes codes;
            do
                codes = put(number, output, "x");
            while (codes == ok);
            EXPECT_EQ(codes, failed(MQRC_HCONN_ERROR));
        });
        EXPECT_EQ(disconnect(shared), ok);
        putter.join();
    }
}

TEST_F(Threads, ManyConnectionsComeAndGo)
{
    std::vector<std::thread> running;
    for (int i = 0; i < 4; ++i)
        running.emplace_back([] {
            for (int round = 0; round < 25; ++round) {
                MQHCONN mine = connect();
                EXPECT_EQ(openCodes(mine, "Q1", MQOO_INPUT_SHARED), ok);
                EXPECT_EQ(disconnect(mine), ok);
            }
        });
    for (std::thread &thread : running)
        thread.join();
}

} // namespace
} // namespace mqrig::qmgr::testing
