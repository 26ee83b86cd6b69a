#include <atomic>
#include <csignal>
#include <thread>

#include "qmgr/store/seams.h"
#include "store_test.h"

namespace mqrig::qmgr::store::test {
namespace {

class Requests : public StoreTest {
protected:
    Requests() : a_(connect()) { a_->setRequestQueue(q1_); }

    std::unique_ptr<Attachment> a_;
};

TEST_F(Requests, WaitUntilTheQueueIsSeenEmpty)
{
    EXPECT_TRUE(a_->requestsWaiting()) << "what the life before left is not known yet";
    EXPECT_TRUE(a_->noRequestsLeft());
    EXPECT_FALSE(a_->requestsWaiting());
}

TEST_F(Requests, AreAnnouncedByEveryKindOfPut)
{
    for (const MQLONG persistence : {MQPER_NOT_PERSISTENT, MQPER_PERSISTENT}) {
        ASSERT_TRUE(a_->noRequestsLeft());
        ASSERT_EQ(put(*connect(), q1_, "1", {.persistence = persistence}), success());
        EXPECT_TRUE(a_->requestsWaiting());
        EXPECT_FALSE(a_->noRequestsLeft());
        ASSERT_EQ(get(*a_, q1_), "1");

        ASSERT_TRUE(a_->noRequestsLeft());
        UnitOfWork unit(*a_);
        ASSERT_EQ(unit.put(q1_, "2", {.persistence = persistence}), success());
        EXPECT_FALSE(a_->requestsWaiting());
        EXPECT_TRUE(a_->noRequestsLeft()) << "uncommitted";
        ASSERT_EQ(unit.commit(), success());
        EXPECT_TRUE(a_->requestsWaiting());
        ASSERT_EQ(get(*a_, q1_), "2");
    }
}

TEST_F(Requests, AreNotAnnouncedByPutsToOtherQueues)
{
    ASSERT_TRUE(a_->noRequestsLeft());
    ASSERT_EQ(put(*a_, q2_, "1"), success());
    EXPECT_FALSE(a_->requestsWaiting());
}

// Whoever has seen the queue empty does not take back the announcement of what is put a moment later.
TEST_F(Requests, PutAfterALookStayAnnounced)
{
    static Attachment *putter = nullptr;
    static QueueId queue = 0;
    const auto other = connect();
    putter = other.get();
    queue = q1_;
    seams.reached = [](Step step) {
        if (step != Step::RequestsLookedFor) return;
        EXPECT_EQ(put(*putter, queue, "1"), success());
    };
    EXPECT_TRUE(a_->noRequestsLeft());
    seams.reached = nullptr;
    EXPECT_TRUE(a_->requestsWaiting());
    EXPECT_EQ(get(*a_, q1_), "1");
}

TEST_F(Requests, ThatAreHeldMayComeBack)
{
    ASSERT_EQ(put(*a_, q1_, "1"), success());
    UnitOfWork unit(*a_);
    ASSERT_EQ(unit.get(q1_), "1");
    EXPECT_FALSE(a_->noRequestsLeft());
    ASSERT_EQ(unit.commit(), success());
    EXPECT_TRUE(a_->noRequestsLeft());
}

TEST_F(Requests, OfAKilledServerComeBackWithTheirBackoutCount)
{
    ASSERT_EQ(put(*a_, q1_, "1"), success());
    ASSERT_EQ(runProcess([&] {
                  const auto server = connect();
                  UnitOfWork unit(*server);
                  if (unit.get(q1_) != "1") return 1;
                  die();
              }),
              -SIGKILL);
    EXPECT_FALSE(a_->noRequestsLeft());
    EXPECT_TRUE(a_->releaseDead());
    EXPECT_TRUE(a_->requestsWaiting());
    EXPECT_EQ(get(*a_, q1_), "1");
}

TEST_F(Requests, OfAPutterKilledBeforeItsCallReturnedAreAnnounced)
{
    ASSERT_TRUE(a_->noRequestsLeft());
    ASSERT_EQ(runProcess([&] {
                  const auto putter = connect();
                  seams.reached = [](Step step) {
                      if (step == Step::UnitFlipped) die();
                  };
                  static_cast<void>(put(*putter, q1_, "1", {.persistence = MQPER_PERSISTENT}));
                  return 1;
              }),
              -SIGKILL);
    EXPECT_TRUE(a_->requestsWaiting());
}

TEST_F(Requests, OfTheLifeBeforeAreLookedFor)
{
    ASSERT_TRUE(a_->noRequestsLeft());
    a_.reset();
    ASSERT_EQ(endQueueManager(folder_, "QM1", End::Immediate), success());
    ASSERT_EQ(startQueueManager(folder_, "QM1"), success());
    a_ = connect();
    a_->setRequestQueue(q1_);
    EXPECT_TRUE(a_->requestsWaiting());
}

using Turn = Attachment::RequestTurn;

TEST_F(Requests, AreServedByOneThreadAtATime)
{
    {
        const Turn turn(*a_);
        ASSERT_TRUE(turn);
        EXPECT_FALSE(Turn(*a_)) << "the same thread";
        bool other = true;
        std::thread([&] { other = static_cast<bool>(Turn(*a_)); }).join();
        EXPECT_FALSE(other);
        EXPECT_EQ(runProcess([&] { return Turn(*connect()) ? 1 : 0; }), 0) << "another process";
    }
    EXPECT_TRUE(Turn(*a_));
}

TEST_F(Requests, TurnOfAKilledServerGoesToTheNext)
{
    for (int i = 0; i < 2; ++i) {
        ASSERT_EQ(runProcess([&] {
                      const auto server = connect();
                      const Turn turn(*server);
                      if (!turn) return 1;
                      die();
                  }),
                  -SIGKILL);
    }
    EXPECT_TRUE(Turn(*a_));
    EXPECT_TRUE(Turn(*a_));
}

TEST_F(Requests, AnotherConnectionIsIndependentOfTheFirst)
{
    const Attached attached = a_->another();
    ASSERT_EQ(attached.outcome, success());
    EXPECT_NE(attached.attachment->slot(), a_->slot());
    EXPECT_NE(attached.attachment->connectionNumber(), a_->connectionNumber());
    ASSERT_EQ(put(*attached.attachment, q1_, "1"), success());
    EXPECT_EQ(get(*a_, q1_), "1");
}

TEST_F(Requests, NoOtherConnectionWhileTheQueueManagerQuiesces)
{
    ASSERT_EQ(endQueueManager(folder_, "QM1", End::Quiesce), success());
    EXPECT_EQ(a_->another().outcome, failure(MQRC_Q_MGR_QUIESCING));
}

} // namespace
} // namespace mqrig::qmgr::store::test
