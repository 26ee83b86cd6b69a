#include <algorithm>
#include <map>
#include <random>

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

// Searches begin behind what others hold; whatever comes back before that place must be found all the same. A model
// says which message is the first visible one.
TEST_P(Units, FindTheFirstVisibleMessageWhateverIsHeld)
{
    std::mt19937 random(17); // NOLINT: the same steps every time
    const auto a = connect();
    struct Getter {
        explicit Getter(std::unique_ptr<Attachment> connection) : attachment(std::move(connection)), unit(*attachment)
        {
        }
        std::unique_ptr<Attachment> attachment;
        UnitOfWork unit;
        std::vector<std::pair<int, int>> holds;
    };
    Getter getters[] = {Getter(connect()), Getter(connect()), Getter(connect())};
    std::map<std::pair<int, int>, bool> model; // 9 - priority and number: whether it is held
    int number = 0;
    for (int step = 0; step < 1500; ++step) {
        Getter &getter = getters[random() % std::size(getters)];
        const auto act = random() % 12;
        if (act < 4) {
            const int priority = static_cast<int>(random() % 4);
            ++number;
            const std::string text = std::to_string(9 - priority) + '/' + std::to_string(number);
            const Wanted wanted{.persistence = kind_.persistence, .priority = priority};
            ASSERT_EQ(put(*a, q1_, text, wanted), success());
            model[{9 - priority, number}] = false;
        } else if (act < 10) {
            const auto first = std::ranges::find(model, false, &std::pair<const std::pair<int, int>, bool>::second);
            const std::string text =
                first == model.end() ? ""
                                     : std::to_string(first->first.first) + '/' + std::to_string(first->first.second);
            ASSERT_EQ(getter.unit.get(q1_), text) << step;
            if (first == model.end()) continue;
            first->second = true;
            getter.holds.push_back(first->first);
        } else {
            const bool commits = act == 10;
            ASSERT_EQ(commits ? getter.unit.commit() : getter.unit.backOut(), success());
            for (const auto &hold : getter.holds) {
                if (commits)
                    model.erase(hold);
                else
                    model[hold] = false;
            }
            getter.holds.clear();
        }
    }
    EXPECT_GT(model.size(), 5U);
}

} // namespace
} // namespace mqrig::qmgr::store::test
