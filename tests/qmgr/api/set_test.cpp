#include "fixture.h"

#include <thread>

namespace mqrig::qmgr::testing {
namespace {

class Set : public QueueManagerTest {
public:
    static constexpr MQLONG options = MQOO_SET | MQOO_INQUIRE | MQOO_OUTPUT | MQOO_INPUT_SHARED;

    Set() : hconn(connect()), q1(open(hconn, "Q1", options)) {}

    Codes set(MQHOBJ hobj, std::vector<MQLONG> selectors, std::vector<MQLONG> ints, std::string chars = {})
    {
        Codes codes;
        MQSET(hconn, hobj, static_cast<MQLONG>(selectors.size()), selectors.data(), static_cast<MQLONG>(ints.size()),
              ints.data(), static_cast<MQLONG>(chars.size()), chars.data(), &codes.CompCode, &codes.Reason);
        return codes;
    }

    MQLONG number(MQLONG selector)
    {
        MQLONG value = -1;
        Codes codes;
        MQINQ(hconn, q1, 1, &selector, 1, &value, 0, nullptr, &codes.CompCode, &codes.Reason);
        EXPECT_EQ(codes, ok);
        return value;
    }

    std::string textOf(MQLONG selector, std::size_t length)
    {
        std::string value(length, '#');
        Codes codes;
        MQINQ(hconn, q1, 1, &selector, 0, nullptr, static_cast<MQLONG>(length), value.data(), &codes.CompCode,
              &codes.Reason);
        EXPECT_EQ(codes, ok);
        return value;
    }

    static std::string triggerData(std::string text)
    {
        text.resize(MQ_TRIGGER_DATA_LENGTH, ' ');
        return text;
    }

    MQHCONN hconn;
    MQHOBJ q1;
};

TEST_F(Set, EveryAttributeThatCanBeSetIsInquiredAfterwards)
{
    const std::vector<std::pair<MQLONG, MQLONG>> values = {
        {MQIA_INHIBIT_GET, MQQA_GET_INHIBITED}, {MQIA_INHIBIT_PUT, MQQA_PUT_INHIBITED}, {MQIA_TRIGGER_CONTROL, MQTC_ON},
        {MQIA_TRIGGER_TYPE, MQTT_DEPTH},        {MQIA_TRIGGER_DEPTH, 999999999},        {MQIA_TRIGGER_MSG_PRIORITY, 9},
        {MQIA_DIST_LISTS, MQDL_SUPPORTED}};
    for (const auto &[selector, value] : values) {
        ASSERT_NE(number(selector), value) << selector;
        EXPECT_EQ(set(q1, {selector}, {value}), ok) << selector;
        EXPECT_EQ(number(selector), value) << selector;
    }
    EXPECT_EQ(set(q1, {MQCA_TRIGGER_DATA}, {}, triggerData("start it")), ok);
    EXPECT_EQ(textOf(MQCA_TRIGGER_DATA, MQ_TRIGGER_DATA_LENGTH), triggerData("start it"));
}

TEST_F(Set, ValuesBelongToSelectorsInTheirOrder)
{
    EXPECT_EQ(set(q1, {MQIA_TRIGGER_DEPTH, MQCA_TRIGGER_DATA, MQIA_TRIGGER_MSG_PRIORITY}, {7, 3}, triggerData("x")),
              ok);
    EXPECT_EQ(number(MQIA_TRIGGER_DEPTH), 7);
    EXPECT_EQ(number(MQIA_TRIGGER_MSG_PRIORITY), 3);
    EXPECT_EQ(textOf(MQCA_TRIGGER_DATA, MQ_TRIGGER_DATA_LENGTH), triggerData("x"));
}

TEST_F(Set, LastValueOfASelectorHolds)
{
    EXPECT_EQ(set(q1, {MQIA_TRIGGER_DEPTH, MQIA_TRIGGER_DEPTH}, {7, 8}), ok);
    EXPECT_EQ(number(MQIA_TRIGGER_DEPTH), 8);
}

TEST_F(Set, NoSelectorsChangeNothing)
{
    EXPECT_EQ(set(q1, {}, {}), ok);
}

TEST_F(Set, InhibitionHoldsFromTheNextCallOfEveryConnection)
{
    const MQHCONN other = connect();
    const MQHOBJ theirs = open(other, "Q1", MQOO_OUTPUT | MQOO_INPUT_SHARED);
    EXPECT_EQ(put(other, theirs, "a"), ok);
    EXPECT_EQ(set(q1, {MQIA_INHIBIT_PUT, MQIA_INHIBIT_GET}, {MQQA_PUT_INHIBITED, MQQA_GET_INHIBITED}), ok);
    EXPECT_EQ(put(other, theirs, "b"), failed(MQRC_PUT_INHIBITED));
    EXPECT_EQ(get(other, theirs).codes, failed(MQRC_GET_INHIBITED));
    EXPECT_EQ(set(q1, {MQIA_INHIBIT_PUT, MQIA_INHIBIT_GET}, {MQQA_PUT_ALLOWED, MQQA_GET_ALLOWED}), ok);
    EXPECT_EQ(put(other, theirs, "c"), ok);
    EXPECT_EQ(drain(other, theirs), (std::vector<std::string>{"a", "c"}));
}

TEST_F(Set, ValuesOutliveTheRunOfTheQueueManager)
{
    EXPECT_EQ(set(q1, {MQIA_TRIGGER_DEPTH}, {42}), ok);
    restart();
    hconn = connect();
    q1 = open(hconn, "Q1", options);
    EXPECT_EQ(number(MQIA_TRIGGER_DEPTH), 42);
}

TEST_F(Set, DateOfTheLastAlterationStays)
{
    const std::string date = textOf(MQCA_ALTERATION_DATE, MQ_DATE_LENGTH);
    const std::string time = textOf(MQCA_ALTERATION_TIME, MQ_TIME_LENGTH);
    EXPECT_EQ(set(q1, {MQIA_TRIGGER_DEPTH}, {42}), ok);
    EXPECT_EQ(textOf(MQCA_ALTERATION_DATE, MQ_DATE_LENGTH), date);
    EXPECT_EQ(textOf(MQCA_ALTERATION_TIME, MQ_TIME_LENGTH), time);
}

TEST_F(Set, ChangesOfManyConnectionsAreAllKept)
{
    const std::vector<MQLONG> selectors = {MQIA_TRIGGER_DEPTH, MQIA_TRIGGER_MSG_PRIORITY, MQIA_TRIGGER_TYPE};
    std::vector<std::thread> threads;
    for (const MQLONG selector : selectors) {
        threads.emplace_back([selector] {
            const MQHCONN mine = connect();
            const MQHOBJ hobj = open(mine, "Q1", MQOO_SET);
            for (MQLONG value = 1; value <= 3; ++value) {
                MQLONG asked = selector;
                MQLONG given = value;
                Codes codes;
                MQSET(mine, hobj, 1, &asked, 1, &given, 0, nullptr, &codes.CompCode, &codes.Reason);
                EXPECT_EQ(codes, ok);
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    for (const MQLONG selector : selectors)
        EXPECT_EQ(number(selector), 3) << selector;
}

TEST_F(Set, HandleErrors)
{
    EXPECT_EQ(set(q1 + 1, {MQIA_INHIBIT_GET}, {0}), failed(MQRC_HOBJ_ERROR));
    EXPECT_EQ(set(open(hconn, "Q1", MQOO_INQUIRE), {MQIA_INHIBIT_GET}, {0}), failed(MQRC_NOT_OPEN_FOR_SET));
    hconn += 1;
    EXPECT_EQ(set(q1, {MQIA_INHIBIT_GET}, {0}), failed(MQRC_HCONN_ERROR));
}

TEST_F(Set, DeletedQueueIs2052)
{
    deleteQueue("Q1");
    EXPECT_EQ(set(q1, {MQIA_INHIBIT_GET}, {0}), failed(MQRC_Q_DELETED));
}

TEST_F(Set, WhatCannotBeSetIs2067)
{
    for (const MQLONG selector :
         {MQIA_MAX_Q_DEPTH, MQIA_CURRENT_Q_DEPTH, MQIA_Q_TYPE, MQIA_MAX_PRIORITY, MQCA_Q_DESC, MQCA_Q_NAME, 0, 99999})
        EXPECT_EQ(set(q1, {selector}, {1}, std::string(256, ' ')), failed(MQRC_SELECTOR_ERROR)) << selector;
}

TEST_F(Set, AliasIsSetForItself)
{
    defineAlias("A1", "Q1");
    const MQHOBJ alias = open(hconn, "A1", MQOO_SET | MQOO_OUTPUT);
    EXPECT_EQ(set(alias, {MQIA_INHIBIT_PUT}, {MQQA_PUT_INHIBITED}), ok);
    EXPECT_EQ(put(hconn, alias, "x"), failed(MQRC_PUT_INHIBITED));
    EXPECT_EQ(put(hconn, q1, "x"), ok);
    EXPECT_EQ(number(MQIA_INHIBIT_PUT), MQQA_PUT_ALLOWED);
    for (const MQLONG selector : {MQIA_TRIGGER_CONTROL, MQIA_TRIGGER_DEPTH, MQIA_DIST_LISTS})
        EXPECT_EQ(set(alias, {selector}, {1}), failed(MQRC_SELECTOR_ERROR)) << selector;
}

TEST_F(Set, OnlyPutsToARemoteQueueCanBeInhibited)
{
    defineTransmissionQueue("QM2");
    defineRemote("R1", "THERE", "QM2", "");
    const MQHOBJ remote = open(hconn, "R1", MQOO_SET | MQOO_OUTPUT);
    EXPECT_EQ(set(remote, {MQIA_INHIBIT_GET}, {MQQA_GET_INHIBITED}), failed(MQRC_SELECTOR_ERROR));
    EXPECT_EQ(set(remote, {MQIA_INHIBIT_PUT}, {MQQA_PUT_INHIBITED}), ok);
    EXPECT_EQ(put(hconn, remote, "x"), failed(MQRC_PUT_INHIBITED));
}

TEST_F(Set, WrongValuesHaveTheReasonsOfTheirAttributes)
{
    const auto reasonOf = [&](MQLONG selector, MQLONG value) { return set(q1, {selector}, {value}); };
    for (const MQLONG value : {-1, 2, 2147483647}) {
        EXPECT_EQ(reasonOf(MQIA_INHIBIT_GET, value), failed(MQRC_INHIBIT_VALUE_ERROR));
        EXPECT_EQ(reasonOf(MQIA_INHIBIT_PUT, value), failed(MQRC_INHIBIT_VALUE_ERROR));
        EXPECT_EQ(reasonOf(MQIA_TRIGGER_CONTROL, value), failed(MQRC_TRIGGER_CONTROL_ERROR));
        EXPECT_EQ(reasonOf(MQIA_DIST_LISTS, value), failed(MQRC_INT_ATTRS_ARRAY_ERROR));
    }
    for (const MQLONG value : {-1, 4})
        EXPECT_EQ(reasonOf(MQIA_TRIGGER_TYPE, value), failed(MQRC_TRIGGER_TYPE_ERROR));
    for (const MQLONG value : {0, -1, 1000000000})
        EXPECT_EQ(reasonOf(MQIA_TRIGGER_DEPTH, value), failed(MQRC_TRIGGER_DEPTH_ERROR));
    for (const MQLONG value : {-1, 10})
        EXPECT_EQ(reasonOf(MQIA_TRIGGER_MSG_PRIORITY, value), failed(MQRC_TRIGGER_MSG_PRIORITY_ERR));
    EXPECT_EQ(set(q1, {MQCA_TRIGGER_DATA}, {}, triggerData("a\nb")), failed(MQRC_CHAR_ATTRS_ERROR));
}

TEST_F(Set, OneWrongValueSetsNothing)
{
    EXPECT_EQ(set(q1, {MQIA_TRIGGER_DEPTH, MQIA_INHIBIT_PUT}, {5, 5}), failed(MQRC_INHIBIT_VALUE_ERROR));
    EXPECT_EQ(number(MQIA_TRIGGER_DEPTH), 1);
}

TEST_F(Set, FewerValuesThanSelectorsIs2021And2006)
{
    EXPECT_EQ(set(q1, {MQIA_TRIGGER_DEPTH, MQIA_INHIBIT_PUT}, {5}), failed(MQRC_INT_ATTR_COUNT_ERROR));
    EXPECT_EQ(set(q1, {MQCA_TRIGGER_DATA}, {}, std::string(MQ_TRIGGER_DATA_LENGTH - 1, 'x')),
              failed(MQRC_CHAR_ATTR_LENGTH_ERROR));
    EXPECT_EQ(number(MQIA_TRIGGER_DEPTH), 1);
}

TEST_F(Set, ImpossibleCountsAndPointers)
{
    MQLONG selector = MQIA_INHIBIT_GET;
    MQLONG value = 0;
    char text[48] = {};
    Codes codes;
    const auto codesOf = [&](MQLONG selectors, PMQLONG s, MQLONG ints, PMQLONG i, MQLONG chars, PMQCHAR c) {
        MQSET(hconn, q1, selectors, s, ints, i, chars, c, &codes.CompCode, &codes.Reason);
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
