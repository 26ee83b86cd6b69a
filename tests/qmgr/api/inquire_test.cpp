#include "fixture.h"

#include <array>
#include <cstring>

namespace mqrig::qmgr::testing {
namespace {

class Inquire : public QueueManagerTest {
public:
    Inquire() : hconn(connect()), q1(open(hconn, "Q1", MQOO_INQUIRE)) {}

    MQHOBJ queueManager()
    {
        MQOD od = {MQOD_DEFAULT};
        od.ObjectType = MQOT_Q_MGR;
        MQHOBJ hobj = MQHO_UNUSABLE_HOBJ;
        EXPECT_EQ(tryOpen(hconn, od, MQOO_INQUIRE, hobj), ok);
        return hobj;
    }

    // Room for as many values as asked for, unless told otherwise.
    Codes inquire(MQHOBJ hobj, std::vector<MQLONG> selectors, MQLONG intCount = 20, MQLONG charLength = 500)
    {
        ints.assign(20, 4711);
        chars.assign(500, '#');
        Codes codes;
        MQINQ(hconn, hobj, static_cast<MQLONG>(selectors.size()), selectors.data(), intCount, ints.data(), charLength,
              chars.data(), &codes.CompCode, &codes.Reason);
        return codes;
    }

    MQLONG number(MQHOBJ hobj, MQLONG selector)
    {
        EXPECT_EQ(inquire(hobj, {selector}), ok);
        return ints[0];
    }

    MQHCONN hconn;
    MQHOBJ q1;
    std::vector<MQLONG> ints;
    std::string chars;
};

TEST_F(Inquire, ValuesComeInTheOrderOfTheSelectors)
{
    defineQueue("QA", {{MQIA_MAX_Q_DEPTH, 17}, {MQIA_DEF_PRIORITY, 4}});
    const MQHOBJ qa = open(hconn, "QA", MQOO_INQUIRE);
    ASSERT_EQ(inquire(qa, {MQIA_DEF_PRIORITY, MQCA_Q_NAME, MQIA_MAX_Q_DEPTH, MQCA_Q_DESC, MQIA_Q_TYPE}), ok);
    EXPECT_EQ(ints[0], 4);
    EXPECT_EQ(ints[1], 17);
    EXPECT_EQ(ints[2], MQQT_LOCAL);
    EXPECT_EQ(ints[3], 4711);
    EXPECT_EQ(chars.substr(0, 48 + 64 + 1), "QA" + std::string(46, ' ') + std::string(64, ' ') + "#");
}

TEST_F(Inquire, DepthAndOpenCountsAreThoseOfNow)
{
    const MQHOBJ all = open(hconn, "Q1", MQOO_INPUT_SHARED | MQOO_OUTPUT | MQOO_BROWSE);
    open(hconn, "Q1", MQOO_OUTPUT);
    put(hconn, all, "x");
    EXPECT_EQ(number(q1, MQIA_CURRENT_Q_DEPTH), 1);
    EXPECT_EQ(number(q1, MQIA_OPEN_INPUT_COUNT), 1);
    EXPECT_EQ(number(q1, MQIA_OPEN_OUTPUT_COUNT), 2);
    MQHOBJ closing = all;
    close(hconn, closing);
    EXPECT_EQ(number(q1, MQIA_OPEN_INPUT_COUNT), 0);
    EXPECT_EQ(number(q1, MQIA_OPEN_OUTPUT_COUNT), 1);
}

TEST_F(Inquire, AlteredAttributesAreSeenByOpenHandles)
{
    EXPECT_EQ(number(q1, MQIA_INHIBIT_PUT), MQQA_PUT_ALLOWED);
    alterQueue("Q1", {{MQIA_INHIBIT_PUT, MQQA_PUT_INHIBITED}});
    EXPECT_EQ(number(q1, MQIA_INHIBIT_PUT), MQQA_PUT_INHIBITED);
}

TEST_F(Inquire, QueueManager)
{
    ASSERT_EQ(inquire(queueManager(), {MQCA_Q_MGR_NAME, MQIA_MAX_PRIORITY, MQIA_CODED_CHAR_SET_ID, MQIA_PLATFORM}), ok);
    EXPECT_EQ(chars.substr(0, 48), "QM1" + std::string(45, ' '));
    EXPECT_EQ(ints[0], 9);
    EXPECT_EQ(ints[1], 1208);
    EXPECT_EQ(ints[2], MQPL_UNIX);
}

TEST_F(Inquire, NoSelectorsAskForNothing)
{
    EXPECT_EQ(inquire(q1, {}), ok);
}

TEST_F(Inquire, HandleErrors)
{
    EXPECT_EQ(inquire(q1 + 1, {MQIA_Q_TYPE}), failed(MQRC_HOBJ_ERROR));
    EXPECT_EQ(inquire(open(hconn, "Q1", MQOO_OUTPUT), {MQIA_Q_TYPE}), failed(MQRC_NOT_OPEN_FOR_INQUIRE));
    Codes codes;
    MQLONG selector = MQIA_Q_TYPE;
    MQLONG value = 0;
    MQINQ(hconn + 1, q1, 1, &selector, 1, &value, 0, nullptr, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_HCONN_ERROR));
}

TEST_F(Inquire, DeletedQueueIs2052)
{
    deleteQueue("Q1");
    EXPECT_EQ(inquire(q1, {MQIA_Q_TYPE}), failed(MQRC_Q_DELETED));
}

TEST_F(Inquire, UnknownSelectorIs2067AndNothingIsWritten)
{
    EXPECT_EQ(inquire(q1, {MQIA_Q_TYPE, 999999}), failed(MQRC_SELECTOR_ERROR));
    EXPECT_EQ(ints[0], 4711);
}

TEST_F(Inquire, SelectorOfTheQueueManagerIs2067ForAQueue)
{
    EXPECT_EQ(inquire(q1, {MQIA_MAX_PRIORITY}), failed(MQRC_SELECTOR_ERROR));
    EXPECT_EQ(inquire(queueManager(), {MQIA_CURRENT_Q_DEPTH}), failed(MQRC_SELECTOR_ERROR));
}

TEST_F(Inquire, TooFewPlacesForIntegersIs2022)
{
    EXPECT_EQ(inquire(q1, {MQIA_Q_TYPE, MQIA_MAX_Q_DEPTH}, 1), warned(MQRC_INT_ATTR_COUNT_TOO_SMALL));
    EXPECT_EQ(ints[0], MQQT_LOCAL);
    EXPECT_EQ(ints[1], 4711);
}

TEST_F(Inquire, TooFewCharactersIs2008AndWholeAttributesThatFitAreThere)
{
    EXPECT_EQ(inquire(q1, {MQCA_Q_NAME, MQCA_Q_DESC, MQCA_Q_NAME}, 0, 110), warned(MQRC_CHAR_ATTRS_TOO_SHORT));
    EXPECT_EQ(chars.substr(0, 50), "Q1" + std::string(46, ' ') + "##");
    EXPECT_EQ(inquire(q1, {MQCA_Q_NAME}, 0, 47), warned(MQRC_CHAR_ATTRS_TOO_SHORT));
    EXPECT_EQ(chars, std::string(500, '#'));
}

TEST_F(Inquire, FewIntegersCountBeforeFewCharacters)
{
    EXPECT_EQ(inquire(q1, {MQCA_Q_NAME, MQIA_Q_TYPE}, 0, 3), warned(MQRC_INT_ATTR_COUNT_TOO_SMALL));
}

TEST_F(Inquire, ImpossibleCountsAndPointers)
{
    MQLONG selector = MQIA_Q_TYPE;
    MQLONG value = 0;
    char text[48];
    Codes codes;
    const auto codesOf = [&](MQLONG selectors, PMQLONG s, MQLONG ints_, PMQLONG i, MQLONG chars_, PMQCHAR c) {
        MQINQ(hconn, q1, selectors, s, ints_, i, chars_, c, &codes.CompCode, &codes.Reason);
        return codes;
    };
    EXPECT_EQ(codesOf(-1, &selector, 1, &value, 48, text), failed(MQRC_SELECTOR_COUNT_ERROR));
    EXPECT_EQ(codesOf(257, &selector, 1, &value, 48, text), failed(MQRC_SELECTOR_LIMIT_EXCEEDED));
    EXPECT_EQ(codesOf(1, nullptr, 1, &value, 48, text), failed(MQRC_SELECTOR_ERROR));
    EXPECT_EQ(codesOf(1, &selector, -1, &value, 48, text), failed(MQRC_INT_ATTR_COUNT_ERROR));
    EXPECT_EQ(codesOf(1, &selector, 1, nullptr, 48, text), failed(MQRC_INT_ATTRS_ARRAY_ERROR));
    EXPECT_EQ(codesOf(1, &selector, 1, &value, -1, text), failed(MQRC_CHAR_ATTR_LENGTH_ERROR));
    EXPECT_EQ(codesOf(1, &selector, 1, &value, 48, nullptr), failed(MQRC_CHAR_ATTRS_ERROR));
}

} // namespace
} // namespace mqrig::qmgr::testing
