// MQGMO_LOCK and MQGMO_UNLOCK.
#include "fixture.h"

#include <chrono>
#include <thread>

namespace mqrig::qmgr::testing {
namespace {

class BrowseLock : public OpenQueueTest {
public:
    BrowseLock()
    {
        for (const char *body : {"1", "2"})
            put(hconn, q1, body);
        other = open(hconn, "Q1", everything);
    }
    std::string see(MQHOBJ hobj, MQLONG options)
    {
        const Got got = get(hconn, hobj, options);
        return got.codes == ok ? got.body : std::to_string(got.codes.Reason);
    }
    void lockFirst() { ASSERT_EQ(see(q1, MQGMO_BROWSE_FIRST | MQGMO_LOCK), "1"); }
    Codes unlock(MQHOBJ hobj)
    {
        MQGMO gmo = gmoWith(MQGMO_UNLOCK);
        Codes codes;
        MQGET(hconn, hobj, nullptr, &gmo, -1, nullptr, nullptr, &codes.CompCode, &codes.Reason);
        return codes;
    }

    MQHOBJ other;
};

TEST_F(BrowseLock, HidesTheMessageFromOtherHandles)
{
    lockFirst();
    EXPECT_EQ(see(other, MQGMO_BROWSE_FIRST), "2");
    EXPECT_EQ(see(other, MQGMO_NO_SYNCPOINT), "2");
    EXPECT_EQ(see(other, MQGMO_NO_SYNCPOINT), "2033");
    EXPECT_EQ(depth("Q1"), 1);
}

TEST_F(BrowseLock, LetsItsOwnHandleBrowseAndGetTheMessage)
{
    lockFirst();
    EXPECT_EQ(see(q1, MQGMO_BROWSE_MSG_UNDER_CURSOR | MQGMO_LOCK), "1");
    EXPECT_EQ(see(other, MQGMO_BROWSE_FIRST), "2");
    EXPECT_EQ(see(q1, MQGMO_MSG_UNDER_CURSOR), "1");
    EXPECT_EQ(unlock(q1), warned(MQRC_NO_MSG_LOCKED));
    EXPECT_EQ(drain(hconn, other), std::vector<std::string>{"2"});
}

TEST_F(BrowseLock, LetsItsOwnHandleGetTheMessageWithoutTheCursor)
{
    lockFirst();
    EXPECT_EQ(see(q1, MQGMO_NO_SYNCPOINT), "1");
    EXPECT_EQ(depth("Q1"), 1);
}

TEST_F(BrowseLock, OutlivesAGetOfAnotherMessage)
{
    lockFirst();
    MQMD md = version2Md();
    MQGMO second = gmoWith(MQGMO_BROWSE_FIRST);
    const Got found = get(hconn, other, md, second);
    MQGMO gmo = gmoWith(MQGMO_NO_SYNCPOINT, MQGMO_VERSION_2);
    gmo.MatchOptions = MQMO_MATCH_MSG_ID;
    EXPECT_EQ(get(hconn, q1, found.md, gmo).body, "2");
    EXPECT_EQ(see(other, MQGMO_BROWSE_FIRST), "2033");
    EXPECT_EQ(see(q1, MQGMO_MSG_UNDER_CURSOR), "1");
}

TEST_F(BrowseLock, IsNoPartOfAUnitOfWork)
{
    lockFirst();
    EXPECT_EQ(backOut(hconn), ok);
    EXPECT_EQ(see(other, MQGMO_BROWSE_FIRST), "2");
    EXPECT_EQ(commit(hconn), ok);
    EXPECT_EQ(see(other, MQGMO_BROWSE_FIRST), "2");
    EXPECT_EQ(unlock(q1), ok);
    EXPECT_EQ(get(hconn, other, MQGMO_BROWSE_FIRST).md.BackoutCount, 0);
}

TEST_F(BrowseLock, GetUnderSyncpointThatIsBackedOutEndsIt)
{
    lockFirst();
    EXPECT_EQ(see(q1, MQGMO_MSG_UNDER_CURSOR | MQGMO_SYNCPOINT), "1");
    EXPECT_EQ(see(other, MQGMO_BROWSE_FIRST), "2");
    EXPECT_EQ(backOut(hconn), ok);
    const Got back = get(hconn, other, MQGMO_BROWSE_FIRST);
    EXPECT_EQ(back.body, "1");
    EXPECT_EQ(back.md.BackoutCount, 1);
}

TEST_F(BrowseLock, PersistentMessageIsTaken)
{
    drain(hconn, q1);
    put(hconn, q1, "kept", persistentMd());
    EXPECT_EQ(see(q1, MQGMO_BROWSE_FIRST | MQGMO_LOCK), "kept");
    EXPECT_EQ(see(other, MQGMO_BROWSE_FIRST), "2033");
    EXPECT_EQ(see(q1, MQGMO_NO_SYNCPOINT), "kept");
    EXPECT_EQ(depth("Q1"), 0);
}

TEST_F(BrowseLock, NextBrowseEndsIt)
{
    lockFirst();
    EXPECT_EQ(see(q1, MQGMO_BROWSE_NEXT), "2");
    EXPECT_EQ(see(other, MQGMO_BROWSE_FIRST), "1");
}

TEST_F(BrowseLock, NextBrowseWithALockTakesItOver)
{
    lockFirst();
    EXPECT_EQ(see(q1, MQGMO_BROWSE_NEXT | MQGMO_LOCK), "2");
    EXPECT_EQ(see(other, MQGMO_BROWSE_FIRST), "1");
    EXPECT_EQ(see(other, MQGMO_BROWSE_NEXT), "2033");
}

TEST_F(BrowseLock, BrowseUnderTheCursorWithoutALockEndsIt)
{
    lockFirst();
    EXPECT_EQ(see(q1, MQGMO_BROWSE_MSG_UNDER_CURSOR), "1");
    EXPECT_EQ(see(other, MQGMO_BROWSE_FIRST), "1");
}

TEST_F(BrowseLock, BrowseThatFindsNothingMoreEndsIt)
{
    EXPECT_EQ(see(q1, MQGMO_BROWSE_FIRST), "1");
    EXPECT_EQ(see(q1, MQGMO_BROWSE_NEXT | MQGMO_LOCK), "2");
    EXPECT_EQ(see(q1, MQGMO_BROWSE_NEXT | MQGMO_LOCK), "2033");
    EXPECT_EQ(see(other, MQGMO_BROWSE_FIRST), "1");
    EXPECT_EQ(see(other, MQGMO_BROWSE_NEXT), "2");
}

TEST_F(BrowseLock, BrowseThatFindsNoRoomKeepsIt)
{
    lockFirst();
    const Got cut = get(hconn, q1, version2Md(), gmoWith(MQGMO_BROWSE_NEXT | MQGMO_LOCK), 0);
    EXPECT_EQ(cut.codes, warned(MQRC_TRUNCATED_MSG_FAILED));
    EXPECT_EQ(see(other, MQGMO_BROWSE_FIRST), "2");
}

TEST_F(BrowseLock, MessageWithoutRoomIsNotLocked)
{
    const Got cut = get(hconn, q1, version2Md(), gmoWith(MQGMO_BROWSE_FIRST | MQGMO_LOCK), 0);
    EXPECT_EQ(cut.codes, warned(MQRC_TRUNCATED_MSG_FAILED));
    EXPECT_EQ(see(other, MQGMO_BROWSE_FIRST), "1");
    EXPECT_EQ(unlock(q1), warned(MQRC_NO_MSG_LOCKED));
}

TEST_F(BrowseLock, ClosingTheHandleEndsIt)
{
    lockFirst();
    EXPECT_EQ(close(hconn, q1), ok);
    EXPECT_EQ(see(other, MQGMO_BROWSE_FIRST), "1");
}

TEST_F(BrowseLock, DisconnectingEndsIt)
{
    MQHCONN second = connect();
    const MQHOBJ queue = open(second, "Q1", everything);
    ASSERT_EQ(get(second, queue, MQGMO_BROWSE_FIRST | MQGMO_LOCK).body, "1");
    EXPECT_EQ(see(other, MQGMO_BROWSE_FIRST), "2");
    EXPECT_EQ(disconnect(second), ok);
    const Got back = get(hconn, other, MQGMO_BROWSE_FIRST);
    EXPECT_EQ(back.body, "1");
    EXPECT_EQ(back.md.BackoutCount, 0);
}

TEST_F(BrowseLock, EndOfItWakesAGetter)
{
    EXPECT_EQ(see(q1, MQGMO_BROWSE_FIRST), "1");
    EXPECT_EQ(see(q1, MQGMO_MSG_UNDER_CURSOR), "1");
    ASSERT_EQ(see(q1, MQGMO_BROWSE_FIRST | MQGMO_LOCK), "2");
    std::string got;
    std::thread getter([&] {
        const MQHCONN second = connect();
        MQGMO gmo = gmoWith(MQGMO_WAIT);
        gmo.WaitInterval = 15000;
        got = get(second, open(second, "Q1", MQOO_INPUT_SHARED), version2Md(), gmo).body;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_EQ(unlock(q1), ok);
    getter.join();
    EXPECT_EQ(got, "2");
}

TEST_F(BrowseLock, ExpiredMessageUnderItIsGone)
{
    drain(hconn, q1);
    put(hconn, q1, "short-lived", withExpiry(3));
    ASSERT_EQ(see(q1, MQGMO_BROWSE_FIRST | MQGMO_LOCK), "short-lived");
    std::this_thread::sleep_for(std::chrono::milliseconds(350));
    EXPECT_EQ(see(q1, MQGMO_BROWSE_FIRST), "2033");
    EXPECT_EQ(depth("Q1"), 0);
}

TEST_F(BrowseLock, ManyHandlesLockEachItsOwn)
{
    for (int i = 3; i <= 20; ++i)
        put(hconn, q1, std::to_string(i));
    for (int i = 1; i <= 20; ++i)
        EXPECT_EQ(see(open(hconn, "Q1", everything), MQGMO_BROWSE_FIRST | MQGMO_LOCK), std::to_string(i));
    EXPECT_EQ(see(q1, MQGMO_BROWSE_FIRST), "2033");
    EXPECT_EQ(depth("Q1"), 20);
}

TEST_F(BrowseLock, UnlockWithoutALockWarns)
{
    EXPECT_EQ(unlock(q1), warned(MQRC_NO_MSG_LOCKED));
}

TEST_F(BrowseLock, WrongOptionsAre2046)
{
    for (const MQLONG options :
         {MQGMO_LOCK, MQGMO_LOCK | MQGMO_MSG_UNDER_CURSOR, MQGMO_LOCK | MQGMO_UNLOCK | MQGMO_BROWSE_FIRST,
          MQGMO_LOCK | MQGMO_BROWSE_FIRST | MQGMO_SYNCPOINT, MQGMO_UNLOCK | MQGMO_BROWSE_FIRST,
          MQGMO_UNLOCK | MQGMO_SYNCPOINT, MQGMO_UNLOCK | MQGMO_WAIT})
        EXPECT_EQ(get(hconn, q1, options).codes, failed(MQRC_OPTIONS_ERROR)) << std::hex << options;
    EXPECT_EQ(get(hconn, open(hconn, "Q1", MQOO_INPUT_SHARED), MQGMO_BROWSE_FIRST | MQGMO_LOCK).codes,
              failed(MQRC_NOT_OPEN_FOR_BROWSE));
}

} // namespace
} // namespace mqrig::qmgr::testing
