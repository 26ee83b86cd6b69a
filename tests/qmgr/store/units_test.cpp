#include "store_test.h"

namespace mqrig::qmgr::store::test {
namespace {

using Texts = std::vector<std::string>;

// Everything about units of work holds for persistent and non-persistent messages alike.
class Units : public StoreTest, public testing::WithParamInterface<MQLONG> {
protected:
    const Wanted kind_{.persistence = GetParam()};
};

INSTANTIATE_TEST_SUITE_P(OfBothKinds, Units, testing::Values(MQPER_NOT_PERSISTENT, MQPER_PERSISTENT),
                         [](const auto &kind) {
                             return kind.param == MQPER_PERSISTENT ? "Persistent" : "NonPersistent";
                         });

TEST_P(Units, PutsAreSeenByNobodyBeforeTheCommit)
{
    const auto a = connect();
    const auto b = connect();
    UnitOfWork unit(*a);
    ASSERT_EQ(unit.put(q1_, "1", kind_), success());
    ASSERT_EQ(unit.put(q1_, "2", kind_), success());
    EXPECT_EQ(browse(*a, q1_), (Texts{}));
    EXPECT_EQ(browse(*b, q1_), (Texts{}));
    ASSERT_EQ(unit.commit(), success());
    EXPECT_EQ(browse(*b, q1_), (Texts{"1", "2"}));
}

TEST_P(Units, PutsStandWhereTheyWerePutNotWhereTheyWereCommitted)
{
    const auto a = connect();
    const auto b = connect();
    UnitOfWork unit(*a);
    ASSERT_EQ(unit.put(q1_, "put first", kind_), success());
    ASSERT_EQ(put(*b, q1_, "put second", kind_), success());
    ASSERT_EQ(unit.commit(), success());
    EXPECT_EQ(browse(*b, q1_), (Texts{"put first", "put second"}));
}

TEST_P(Units, DepthCountsUncommittedPutsAtOnce)
{
    const auto a = connect();
    UnitOfWork unit(*a);
    ASSERT_EQ(unit.put(q1_, "1", kind_), success());
    ASSERT_EQ(unit.put(q1_, "2", kind_), success());
    EXPECT_EQ(statusOf(*a, q1_).depth, 2U);
    EXPECT_EQ(statusOf(*a, q1_).uncommitted, 2U);
    ASSERT_EQ(unit.commit(), success());
    EXPECT_EQ(statusOf(*a, q1_).depth, 2U);
    EXPECT_EQ(statusOf(*a, q1_).uncommitted, 0U);
}

TEST_P(Units, BackedOutPutsGiveTheirPlaceBack)
{
    const auto a = connect();
    UnitOfWork unit(*a);
    ASSERT_EQ(unit.put(q1_, "1", kind_), success());
    ASSERT_EQ(unit.put(q2_, "2", kind_), success());
    ASSERT_EQ(unit.backOut(), success());
    EXPECT_EQ(browse(*a, q1_), (Texts{}));
    EXPECT_EQ(statusOf(*a, q1_).depth, 0U);
    EXPECT_EQ(statusOf(*a, q2_).depth, 0U);
    EXPECT_EQ(statusOf(*a, q2_).uncommitted, 0U);
}

TEST_P(Units, DepthNoLongerCountsMessagesGot)
{
    const auto a = connect();
    ASSERT_EQ(put(*a, q1_, "1", kind_), success());
    UnitOfWork unit(*a);
    ASSERT_EQ(unit.get(q1_), "1");
    EXPECT_EQ(statusOf(*a, q1_).depth, 0U);
    EXPECT_EQ(statusOf(*a, q1_).held, 1U);
    ASSERT_EQ(unit.commit(), success());
    EXPECT_EQ(statusOf(*a, q1_).depth, 0U);
    EXPECT_EQ(statusOf(*a, q1_).held, 0U);
}

TEST_P(Units, BackedOutGetsComeBackToTheirPlaceWithTheirCountRaised)
{
    const auto a = connect();
    ASSERT_EQ(put(*a, q1_, "1", kind_), success());
    ASSERT_EQ(put(*a, q1_, "2", kind_), success());
    for (int time = 1; time <= 3; ++time) {
        UnitOfWork unit(*a);
        ASSERT_EQ(unit.get(q1_), "1");
        ASSERT_EQ(unit.backOut(), success());
        EXPECT_EQ(statusOf(*a, q1_).depth, 2U);
        ASSERT_EQ(a->read([&](ReadTransaction &transaction) {
            MessageCursor cursor(transaction, q1_);
            EXPECT_TRUE(cursor.first());
            EXPECT_EQ(cursor.header().md.BackoutCount, time);
            EXPECT_EQ(textOf(cursor.body()), "1");
            EXPECT_TRUE(cursor.next());
            EXPECT_EQ(cursor.header().md.BackoutCount, 0);
            return success();
        }),
                  success());
    }
}

TEST_P(Units, GetsAndPutsOfOneUnitGoTogether)
{
    const auto a = connect();
    ASSERT_EQ(put(*a, q1_, "in", kind_), success());
    UnitOfWork unit(*a);
    ASSERT_EQ(unit.get(q1_), "in");
    ASSERT_EQ(unit.put(q2_, "out", kind_), success());
    ASSERT_EQ(unit.commit(), success());
    EXPECT_EQ(browse(*a, q1_), (Texts{}));
    EXPECT_EQ(browse(*a, q2_), (Texts{"out"}));
}

TEST_P(Units, DisconnectingGivesBackWhatWasHeld)
{
    const auto a = connect();
    ASSERT_EQ(put(*a, q1_, "1", kind_), success());
    {
        const auto b = connect();
        UnitOfWork unit(*b);
        ASSERT_EQ(unit.get(q1_), "1");
        ASSERT_EQ(unit.put(q1_, "2", kind_), success());
        ASSERT_EQ(b->update(0,
                            [&](WriteTransaction &transaction) {
                                transaction.addOpens(q1_, {.input = 1, .exclusive = 1, .output = 1});
                                return success();
                            }),
                  success());
        EXPECT_EQ(statusOf(*a, q1_).opens.exclusive, 1);
    }
    EXPECT_EQ(browse(*a, q1_), (Texts{"1"}));
    const QueueStatus status = statusOf(*a, q1_);
    EXPECT_EQ(status.depth, 1U);
    EXPECT_EQ(status.uncommitted, 0U);
    EXPECT_EQ(status.opens.input, 0);
    EXPECT_EQ(status.opens.exclusive, 0);
    EXPECT_EQ(status.opens.output, 0);
}

TEST_P(Units, LargeUnitsCommit)
{
    const auto a = connect();
    UnitOfWork unit(*a);
    for (int n = 0; n < 2000; ++n)
        ASSERT_EQ(unit.put(q1_, std::to_string(n), kind_), success());
    ASSERT_EQ(unit.commit(), success());
    EXPECT_EQ(statusOf(*a, q1_).depth, 2000U);
    for (int n = 0; n < 2000; ++n)
        ASSERT_EQ(unit.get(q1_), std::to_string(n));
    ASSERT_EQ(unit.commit(), success());
    EXPECT_EQ(browse(*a, q1_), (Texts{}));
    EXPECT_EQ(statusOf(*a, q1_).held, 0U);
}

} // namespace
} // namespace mqrig::qmgr::store::test
