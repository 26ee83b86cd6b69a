// Marks on browsed messages, of one handle and of those that browse together.
#include "fixture.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <thread>

namespace mqrig::qmgr::testing {
namespace {

constexpr MQLONG together = MQOO_BROWSE | MQOO_INPUT_SHARED | MQOO_CO_OP;

class BrowseMarks : public OpenQueueTest {
public:
    BrowseMarks()
    {
        for (const char *body : {"1", "2", "3"})
            put(hconn, q1, body);
    }
    std::string see(MQHOBJ hobj, MQLONG options)
    {
        const Got got = get(hconn, hobj, options);
        return got.codes == ok ? got.body : std::to_string(got.codes.Reason);
    }
    // Everything that a browse with these options returns.
    std::vector<std::string> all(MQHOBJ hobj, MQLONG options)
    {
        std::vector<std::string> bodies;
        for (std::string body = see(hobj, options); body != "2033" && bodies.size() < 20; body = see(hobj, options))
            bodies.push_back(body);
        return bodies;
    }
    // The message of a token, with these options.
    Codes byToken(MQHOBJ hobj, const Got &message, MQLONG options)
    {
        MQGMO gmo = gmoWith(options, MQGMO_VERSION_3);
        gmo.MatchOptions = MQMO_MATCH_MSG_TOKEN;
        std::copy(std::begin(message.gmo.MsgToken), std::end(message.gmo.MsgToken), gmo.MsgToken);
        return get(hconn, hobj, version2Md(), gmo).codes;
    }
};

using Bodies = std::vector<std::string>;

TEST_F(BrowseMarks, OfAHandleShowEachMessageOnce)
{
    EXPECT_EQ(all(q1, MQGMO_BROWSE_HANDLE), (Bodies{"1", "2", "3"}));
    put(hconn, q1, "urgent", withPriority(9));
    EXPECT_EQ(all(q1, MQGMO_BROWSE_HANDLE), Bodies{"urgent"});
    EXPECT_EQ(depth("Q1"), 4);
}

TEST_F(BrowseMarks, OfAHandleAreItsOwn)
{
    all(q1, MQGMO_BROWSE_HANDLE);
    const MQHOBJ other = open(hconn, "Q1", MQOO_BROWSE);
    EXPECT_EQ(all(other, MQGMO_BROWSE_HANDLE), (Bodies{"1", "2", "3"}));
}

TEST_F(BrowseMarks, AreSeenOnlyByWhoAsks)
{
    all(q1, MQGMO_BROWSE_HANDLE);
    EXPECT_EQ(see(q1, MQGMO_BROWSE_FIRST), "1");
    EXPECT_EQ(see(q1, MQGMO_NO_SYNCPOINT), "1");
}

TEST_F(BrowseMarks, OfAHandleCanBeTakenAway)
{
    all(q1, MQGMO_BROWSE_HANDLE);
    EXPECT_EQ(see(q1, MQGMO_BROWSE_FIRST), "1");
    EXPECT_EQ(see(q1, MQGMO_BROWSE_NEXT | MQGMO_UNMARK_BROWSE_HANDLE), "2");
    EXPECT_EQ(all(q1, MQGMO_BROWSE_HANDLE), Bodies{"2"});
}

TEST_F(BrowseMarks, OfAHandleEndWithAGetThatIsBackedOut)
{
    all(q1, MQGMO_BROWSE_HANDLE);
    EXPECT_EQ(see(q1, MQGMO_SYNCPOINT), "1");
    ASSERT_EQ(backOut(hconn), ok);
    EXPECT_EQ(all(q1, MQGMO_BROWSE_HANDLE), Bodies{"1"});
}

TEST_F(BrowseMarks, OfAHandleAreForgottenWithTheirMessages)
{
    for (int round = 0; round < 3; ++round) {
        for (int i = 0; i < 1000; ++i)
            put(hconn, q1, "x");
        while (get(hconn, q1, MQGMO_BROWSE_HANDLE).codes == ok)
            continue;
        drain(hconn, q1);
    }
    put(hconn, q1, "last");
    EXPECT_EQ(all(q1, MQGMO_BROWSE_HANDLE), Bodies{"last"});
}

TEST_F(BrowseMarks, OfHandlesTogetherShowEachMessageToOneOfThem)
{
    const MQHOBJ a = open(hconn, "Q1", together);
    const MQHOBJ b = open(hconn, "Q1", together);
    EXPECT_EQ(see(a, MQGMO_BROWSE_CO_OP), "1");
    EXPECT_EQ(see(b, MQGMO_BROWSE_CO_OP), "2");
    EXPECT_EQ(see(a, MQGMO_BROWSE_CO_OP), "3");
    EXPECT_EQ(see(b, MQGMO_BROWSE_CO_OP), "2033");
    // A handle that stands aside sees them all.
    EXPECT_EQ(all(q1, MQGMO_BROWSE_HANDLE), (Bodies{"1", "2", "3"}));
}

TEST_F(BrowseMarks, OfHandlesTogetherAreSetOnce)
{
    const MQHOBJ a = open(hconn, "Q1", together);
    const MQHOBJ b = open(hconn, "Q1", together);
    EXPECT_EQ(see(a, MQGMO_BROWSE_FIRST | MQGMO_MARK_BROWSE_CO_OP), "1");
    EXPECT_EQ(get(hconn, b, MQGMO_BROWSE_FIRST | MQGMO_MARK_BROWSE_CO_OP).codes, failed(MQRC_MSG_MARKED_BROWSE_CO_OP));
    EXPECT_EQ(see(b, MQGMO_BROWSE_NEXT), "1"); // the failure has not moved the cursor
}

TEST_F(BrowseMarks, OfHandlesTogetherCanBeTakenAwayByAnyOfThem)
{
    const MQHOBJ a = open(hconn, "Q1", together);
    const MQHOBJ b = open(hconn, "Q1", together);
    all(a, MQGMO_BROWSE_CO_OP);
    EXPECT_EQ(see(b, MQGMO_BROWSE_FIRST | MQGMO_UNMARK_BROWSE_CO_OP), "1");
    EXPECT_EQ(see(b, MQGMO_BROWSE_FIRST | MQGMO_UNMARK_BROWSE_CO_OP), "1");
    EXPECT_EQ(all(a, MQGMO_BROWSE_CO_OP), Bodies{"1"});
}

TEST_F(BrowseMarks, BothKindsStandSideBySide)
{
    const MQHOBJ a = open(hconn, "Q1", together);
    EXPECT_EQ(see(a, MQGMO_BROWSE_FIRST | MQGMO_MARK_BROWSE_CO_OP | MQGMO_MARK_BROWSE_HANDLE), "1");
    EXPECT_EQ(see(a, MQGMO_BROWSE_FIRST | MQGMO_UNMARK_BROWSE_CO_OP), "1");
    EXPECT_EQ(see(a, MQGMO_BROWSE_FIRST | MQGMO_UNMARKED_BROWSE_MSG), "2");
    EXPECT_EQ(see(a, MQGMO_BROWSE_FIRST | MQGMO_UNMARK_BROWSE_HANDLE), "1");
    EXPECT_EQ(see(a, MQGMO_BROWSE_FIRST | MQGMO_UNMARKED_BROWSE_MSG), "1");
}

TEST_F(BrowseMarks, OfHandlesTogetherEndWithAGetThatIsBackedOut)
{
    const MQHOBJ a = open(hconn, "Q1", together);
    all(a, MQGMO_BROWSE_CO_OP);
    EXPECT_EQ(see(a, MQGMO_SYNCPOINT), "1");
    ASSERT_EQ(backOut(hconn), ok);
    EXPECT_EQ(all(a, MQGMO_BROWSE_CO_OP), Bodies{"1"});
}

TEST_F(BrowseMarks, OfHandlesTogetherEndWithTheLastOfThem)
{
    MQHOBJ a = open(hconn, "Q1", together);
    MQHOBJ b = open(hconn, "Q1", together);
    all(a, MQGMO_BROWSE_CO_OP);
    ASSERT_EQ(close(hconn, a), ok);
    EXPECT_EQ(see(b, MQGMO_BROWSE_CO_OP), "2033");
    ASSERT_EQ(close(hconn, b), ok);
    EXPECT_EQ(all(open(hconn, "Q1", together), MQGMO_BROWSE_CO_OP), (Bodies{"1", "2", "3"}));
}

TEST_F(BrowseMarks, OfHandlesTogetherEndAfterAWhile)
{
    alterQueueManager({{MQIA_MSG_MARK_BROWSE_INTERVAL, 300}});
    const MQHOBJ a = open(hconn, "Q1", together);
    EXPECT_EQ(all(a, MQGMO_BROWSE_CO_OP), (Bodies{"1", "2", "3"}));
    std::this_thread::sleep_for(std::chrono::milliseconds(350));
    EXPECT_EQ(see(a, MQGMO_BROWSE_CO_OP), "1");
    EXPECT_EQ(see(a, MQGMO_BROWSE_FIRST | MQGMO_UNMARKED_BROWSE_MSG), "2");
}

TEST_F(BrowseMarks, OfAHandleDoNotEndAfterAWhile)
{
    alterQueueManager({{MQIA_MSG_MARK_BROWSE_INTERVAL, 0}});
    all(q1, MQGMO_BROWSE_HANDLE);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(see(q1, MQGMO_BROWSE_HANDLE), "2033");
}

TEST_F(BrowseMarks, WithoutALimitTheyStay)
{
    alterQueueManager({{MQIA_MSG_MARK_BROWSE_INTERVAL, -1}});
    const MQHOBJ a = open(hconn, "Q1", together);
    all(a, MQGMO_BROWSE_CO_OP);
    EXPECT_EQ(see(a, MQGMO_BROWSE_CO_OP), "2033");
}

TEST_F(BrowseMarks, WaitEndsWithTheMarkThatStoodInTheWay)
{
    alterQueueManager({{MQIA_MSG_MARK_BROWSE_INTERVAL, 300}});
    const MQHOBJ a = open(hconn, "Q1", together);
    all(a, MQGMO_BROWSE_CO_OP);
    MQGMO gmo = gmoWith(MQGMO_BROWSE_CO_OP | MQGMO_WAIT, MQGMO_VERSION_3);
    gmo.WaitInterval = MQWI_UNLIMITED;
    EXPECT_EQ(get(hconn, a, version2Md(), gmo).body, "1");
}

TEST_F(BrowseMarks, WaitEndsInTimeBesideMarksThatLast)
{
    const MQHOBJ a = open(hconn, "Q1", together);
    all(a, MQGMO_BROWSE_CO_OP);
    MQGMO gmo = gmoWith(MQGMO_BROWSE_CO_OP | MQGMO_WAIT, MQGMO_VERSION_3);
    gmo.WaitInterval = 50;
    EXPECT_EQ(get(hconn, a, version2Md(), gmo).codes, failed(MQRC_NO_MSG_AVAILABLE));
}

TEST_F(BrowseMarks, MessageIsFoundByItsTokenToo)
{
    const MQHOBJ a = open(hconn, "Q1", together);
    const MQHOBJ b = open(hconn, "Q1", together);
    const Got first = get(hconn, a, MQGMO_BROWSE_CO_OP);
    EXPECT_EQ(byToken(b, first, MQGMO_BROWSE_FIRST | MQGMO_UNMARKED_BROWSE_MSG), failed(MQRC_NO_MSG_AVAILABLE));
    EXPECT_EQ(byToken(b, first, MQGMO_BROWSE_FIRST | MQGMO_UNMARK_BROWSE_CO_OP), ok);
    EXPECT_EQ(byToken(b, first, MQGMO_BROWSE_FIRST | MQGMO_MARK_BROWSE_CO_OP | MQGMO_UNMARKED_BROWSE_MSG), ok);
    EXPECT_EQ(byToken(a, first, MQGMO_NO_SYNCPOINT), ok);
    EXPECT_EQ(depth("Q1"), 2);
}

TEST_F(BrowseMarks, MarkedMessageUnderTheCursorIs2034)
{
    EXPECT_EQ(see(q1, MQGMO_BROWSE_FIRST | MQGMO_MARK_BROWSE_HANDLE), "1");
    EXPECT_EQ(see(q1, MQGMO_BROWSE_MSG_UNDER_CURSOR | MQGMO_UNMARKED_BROWSE_MSG), "2034");
    EXPECT_EQ(see(q1, MQGMO_BROWSE_MSG_UNDER_CURSOR), "1");
}

TEST_F(BrowseMarks, MessageWithoutRoomIsNotMarked)
{
    const Got cut = get(hconn, q1, version2Md(), gmoWith(MQGMO_BROWSE_HANDLE), 0);
    EXPECT_EQ(cut.codes, warned(MQRC_TRUNCATED_MSG_FAILED));
    EXPECT_EQ(see(q1, MQGMO_BROWSE_HANDLE), "1");
}

TEST_F(BrowseMarks, QueueOfMarkedMessagesCanBeDeletedAndDefinedAgain)
{
    MQHOBJ a = open(hconn, "Q1", together);
    all(a, MQGMO_BROWSE_CO_OP);
    drain(hconn, a);
    ASSERT_EQ(close(hconn, a), ok);
    ASSERT_EQ(close(hconn, q1), ok);
    deleteQueue("Q1");
    defineQueue("Q1");
    a = open(hconn, "Q1", together | MQOO_OUTPUT);
    put(hconn, a, "new");
    EXPECT_EQ(all(a, MQGMO_BROWSE_CO_OP), Bodies{"new"});
}

TEST_F(BrowseMarks, WrongOptionsAre2046)
{
    const MQHOBJ a = open(hconn, "Q1", together);
    for (const MQLONG options :
         {MQGMO_MARK_BROWSE_HANDLE, MQGMO_UNMARKED_BROWSE_MSG, MQGMO_UNMARK_BROWSE_HANDLE | MQGMO_MSG_UNDER_CURSOR,
          MQGMO_BROWSE_HANDLE | MQGMO_LOCK, MQGMO_BROWSE_CO_OP | MQGMO_UNMARK_BROWSE_CO_OP,
          MQGMO_BROWSE_FIRST | MQGMO_MARK_BROWSE_CO_OP | MQGMO_UNMARK_BROWSE_CO_OP,
          MQGMO_BROWSE_FIRST | MQGMO_MARK_BROWSE_HANDLE | MQGMO_UNMARK_BROWSE_HANDLE,
          MQGMO_BROWSE_FIRST | MQGMO_UNMARKED_BROWSE_MSG | MQGMO_UNMARK_BROWSE_HANDLE})
        EXPECT_EQ(get(hconn, a, options).codes, failed(MQRC_OPTIONS_ERROR)) << std::hex << options;
}

TEST_F(BrowseMarks, OfHandlesTogetherWantAHandleOpenForThem)
{
    EXPECT_EQ(get(hconn, q1, MQGMO_BROWSE_CO_OP).codes, failed(MQRC_OPTIONS_ERROR));
    EXPECT_EQ(get(hconn, q1, MQGMO_BROWSE_FIRST | MQGMO_UNMARK_BROWSE_CO_OP).codes, failed(MQRC_OPTIONS_ERROR));
}

} // namespace
} // namespace mqrig::qmgr::testing
