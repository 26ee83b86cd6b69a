// What the get-message options mean for message consumers.
#include "consumer_fixture.h"

#include <cstring>
#include <future>
#include <thread>

#include "cmqcfc.h"
#include "property_calls.h"

namespace mqrig::qmgr::testing {
namespace {

using namespace std::chrono_literals;
using Reasons = std::vector<MQLONG>;

class ConsumerOptions : public Consumer {
public:
    Codes consumeWith(MQGMO options, MQLONG callbackOptions = MQCBDO_NONE)
    {
        return manage(hconn, MQOP_REGISTER, consumerInto(diary, callbackOptions), q1, {MQMD_DEFAULT}, options);
    }
    // As soon as there are so many entries, the consumer stops.
    void stopAfter(std::size_t entries)
    {
        diary.then = [this, entries](MQHCONN its, MQCBC &) {
            if (diary.size() >= entries) control(its, MQOP_STOP);
        };
    }
    void putWithPriority(const char *body, MQLONG priority)
    {
        MQMD md = {MQMD_DEFAULT};
        md.Priority = priority;
        EXPECT_EQ(put(other, otherQ1, body, md), ok);
    }
};

// ---- Browsing ----

TEST_F(ConsumerOptions, BrowsingOnShowsEachMessageOnce)
{
    EXPECT_EQ(consumeWith(gmo(MQGMO_BROWSE_NEXT)), ok);
    put(other, otherQ1, "1");
    put(other, otherQ1, "2");
    control(hconn, MQOP_START);
    diary.entries(2);
    put(other, otherQ1, "3");
    EXPECT_EQ(bodies(3), (Bodies{"1", "2", "3"}));
    EXPECT_EQ(diary.entries(3)[2].context.CallType, MQCBCT_MSG_NOT_REMOVED);
    EXPECT_EQ(depth("Q1"), 3);
}

TEST_F(ConsumerOptions, BrowsingOnBeginsWhereTheCursorIs)
{
    put(other, otherQ1, "1");
    put(other, otherQ1, "2");
    EXPECT_EQ(get(hconn, q1, {MQMD_DEFAULT}, gmo(MQGMO_BROWSE_FIRST)).body, "1");
    consumeWith(gmo(MQGMO_BROWSE_NEXT));
    control(hconn, MQOP_START);
    EXPECT_EQ(bodies(1), Bodies{"2"});
}

TEST_F(ConsumerOptions, BrowsingFromTheStartOnShowsEachMessageOnce)
{
    put(other, otherQ1, "1");
    put(other, otherQ1, "2");
    EXPECT_EQ(get(hconn, q1, {MQMD_DEFAULT}, gmo(MQGMO_BROWSE_FIRST)).body, "1");
    EXPECT_EQ(consumeWith(gmo(MQGMO_BROWSE_FIRST | MQGMO_BROWSE_NEXT)), ok);
    control(hconn, MQOP_START);
    diary.entries(2);
    put(other, otherQ1, "3");
    EXPECT_EQ(bodies(3), (Bodies{"1", "2", "3"}));
}

TEST_F(ConsumerOptions, BrowsingTheFirstShowsItAgainAndAgain)
{
    put(other, otherQ1, "1");
    put(other, otherQ1, "2");
    stopAfter(3);
    consumeWith(gmo(MQGMO_BROWSE_FIRST));
    EXPECT_EQ(control(hconn, MQOP_START_WAIT), ok);
    EXPECT_EQ(bodies(3), (Bodies{"1", "1", "1"}));
}

TEST_F(ConsumerOptions, WhatItMarksItIsShownOnceAndWhatComesInFrontToo)
{
    putWithPriority("1", 4);
    putWithPriority("2", 4);
    consumeWith(gmo(MQGMO_BROWSE_FIRST | MQGMO_MARK_BROWSE_HANDLE));
    control(hconn, MQOP_START);
    diary.entries(2);
    putWithPriority("in front", 9);
    EXPECT_EQ(bodies(3), (Bodies{"1", "2", "in front"}));
    put(other, otherQ1, "last");
    EXPECT_EQ(bodies(4).back(), "last");
}

TEST_F(ConsumerOptions, BrowsedMessagesAreDeliveredHoweverLong)
{
    const std::string large(300000, 'x');
    put(other, otherQ1, large);
    put(other, otherQ1, "small");
    for (const MQLONG options : {MQGMO_BROWSE_NEXT, MQGMO_BROWSE_FIRST | MQGMO_MARK_BROWSE_HANDLE}) {
        Diary read;
        const MQHOBJ browsing = open(hconn, "Q1", MQOO_BROWSE);
        EXPECT_EQ(manage(hconn, MQOP_REGISTER, consumerInto(read), browsing, {MQMD_DEFAULT}, gmo(options)), ok);
        control(hconn, MQOP_START);
        EXPECT_TRUE(read.entries(1)[0].body == large);
        EXPECT_EQ(read.entries(2)[1].body, "small");
        control(hconn, MQOP_STOP);
        EXPECT_EQ(consumerOperation(hconn, MQOP_DEREGISTER, browsing), ok);
    }
}

TEST_F(ConsumerOptions, TheTokenOfWhatItBrowsesGetsIt)
{
    put(other, otherQ1, "not this");
    put(other, otherQ1, "this");
    std::promise<std::string> got;
    diary.then = [&](MQHCONN its, MQCBC &context) {
        const Told told = diary.entries(1).back();
        if (told.body != "this") return;
        MQGMO byToken = gmoWith(MQGMO_NO_SYNCPOINT, MQGMO_VERSION_3);
        byToken.MatchOptions = MQMO_MATCH_MSG_TOKEN;
        std::memcpy(byToken.MsgToken, told.gmo.MsgToken, sizeof byToken.MsgToken);
        got.set_value(get(its, context.Hobj, {MQMD_DEFAULT}, byToken).body);
    };
    // Registered without a field for it.
    EXPECT_EQ(consumeWith(gmoWith(MQGMO_BROWSE_NEXT)), ok);
    control(hconn, MQOP_START);
    EXPECT_EQ(got.get_future().get(), "this");
    disconnect(hconn); // before what the callback uses goes
    EXPECT_EQ(drain(other, otherQ1), Bodies{"not this"});
}

// ---- Waiting ----

TEST_F(ConsumerOptions, AnIntervalWithoutMessagesIs2033WhereAskedFor)
{
    MQGMO waiting = gmo(MQGMO_NO_SYNCPOINT | MQGMO_WAIT);
    waiting.WaitInterval = 20;
    consumeWith(waiting, MQCBDO_EVENT_CALL);
    control(hconn, MQOP_START);
    const Told told = diary.entries(2)[1];
    EXPECT_EQ(told.context.CallType, MQCBCT_EVENT_CALL);
    EXPECT_EQ(told.context.Reason, MQRC_NO_MSG_AVAILABLE);
}

TEST_F(ConsumerOptions, AnIntervalOfZeroIs2033AfterEachLastMessage)
{
    MQGMO waiting = gmo(MQGMO_NO_SYNCPOINT | MQGMO_WAIT);
    waiting.WaitInterval = 0;
    put(other, otherQ1, "1");
    put(other, otherQ1, "2");
    consumeWith(waiting, MQCBDO_EVENT_CALL);
    control(hconn, MQOP_START);
    diary.entries(3);
    put(other, otherQ1, "3");
    EXPECT_EQ(diary.reasons(5),
              (Reasons{MQRC_NONE, MQRC_NONE, MQRC_NO_MSG_AVAILABLE, MQRC_NONE, MQRC_NO_MSG_AVAILABLE}));
    EXPECT_EQ(control(hconn, MQOP_SUSPEND), ok);
    EXPECT_EQ(control(hconn, MQOP_RESUME), ok);
    EXPECT_EQ(diary.size(), 5U);
}

TEST_F(ConsumerOptions, AnIntervalOfZeroWithoutAnyMessageIs2033WhenItIsStarted)
{
    MQGMO waiting = gmo(MQGMO_NO_SYNCPOINT | MQGMO_WAIT);
    waiting.WaitInterval = 0;
    consumeWith(waiting, MQCBDO_EVENT_CALL);
    for (std::size_t starts = 1; starts <= 2; ++starts) {
        control(hconn, MQOP_START);
        EXPECT_EQ(diary.reasons(starts), Reasons(starts, MQRC_NO_MSG_AVAILABLE));
        control(hconn, MQOP_STOP);
    }
}

TEST_F(ConsumerOptions, WithoutWaitingNobodyIsToldOfNoMessage)
{
    consume(MQCBDO_EVENT_CALL);
    control(hconn, MQOP_START);
    put(other, otherQ1, "x");
    diary.entries(1);
    control(hconn, MQOP_STOP);
    EXPECT_EQ(diary.reasons(1), Reasons{MQRC_NONE});
}

// ---- Inhibited ----

TEST_F(ConsumerOptions, InhibitedGetsAreToldOnceAndSoIsTheirEnd)
{
    consume(MQCBDO_EVENT_CALL);
    alterQueue("Q1", {{MQIA_INHIBIT_GET, MQQA_GET_INHIBITED}});
    control(hconn, MQOP_START);
    const Told told = diary.entries(1)[0];
    EXPECT_EQ(told.context.CallType, MQCBCT_EVENT_CALL);
    EXPECT_EQ(told.context.CompCode, MQCC_FAILED);
    EXPECT_EQ(told.context.Reason, MQRC_GET_INHIBITED);
    EXPECT_EQ(told.context.State, MQCS_SUSPENDED_TEMPORARY);
    put(other, otherQ1, "x");
    alterQueue("Q1", {{MQIA_INHIBIT_GET, MQQA_GET_ALLOWED}});
    const std::vector<Told> all = diary.entries(3);
    EXPECT_EQ(all[1].context.CallType, MQCBCT_EVENT_CALL);
    EXPECT_EQ(all[1].context.CompCode, MQCC_WARNING);
    EXPECT_EQ(all[1].context.Reason, MQRC_GET_ENABLED);
    EXPECT_EQ(all[2].body, "x");
}

TEST_F(ConsumerOptions, InhibitedGetsAreOneEventMessageHoweverLong)
{
    alterQueueManager({{MQIA_INHIBIT_EVENT, MQEVR_ENABLED}});
    const MQHOBJ events = open(other, "SYSTEM.ADMIN.QMGR.EVENT", MQOO_INPUT_SHARED);
    drain(other, events); // the start
    consume(MQCBDO_EVENT_CALL);
    alterQueue("Q1", {{MQIA_INHIBIT_GET, MQQA_GET_INHIBITED}});
    control(hconn, MQOP_START);
    diary.entries(1);
    std::this_thread::sleep_for(1200ms); // it has looked again meanwhile
    alterQueue("Q1", {{MQIA_INHIBIT_GET, MQQA_GET_ALLOWED}});
    diary.entries(2);
    EXPECT_EQ(drain(other, events).size(), 1U);
}

// ---- Properties ----

MQHMSG createHandle(MQHCONN hconn)
{
    MQCMHO cmho = {MQCMHO_DEFAULT};
    MQHMSG hmsg = MQHM_NONE;
    Codes codes;
    MQCRTMH(hconn, &cmho, &hmsg, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, ok);
    return hmsg;
}

void setColour(MQHCONN hconn, MQHMSG hmsg, std::string value)
{
    MQSMPO smpo = {MQSMPO_DEFAULT};
    MQPD pd = {MQPD_DEFAULT};
    MQCHARV name = charv("colour");
    Codes codes;
    MQSETMP(hconn, hmsg, &smpo, &name, &pd, MQTYPE_STRING, static_cast<MQLONG>(value.size()), value.data(),
            &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, ok);
}

std::string colourOf(MQHCONN hconn, MQHMSG hmsg)
{
    MQIMPO impo = {MQIMPO_DEFAULT};
    MQPD pd = {MQPD_DEFAULT};
    MQCHARV name = charv("colour");
    MQLONG type = MQTYPE_AS_SET;
    std::string value(100, ' ');
    MQLONG length = 0;
    Codes codes;
    MQINQMP(hconn, hmsg, &impo, &name, &pd, &type, static_cast<MQLONG>(value.size()), value.data(), &length,
            &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, ok);
    value.resize(static_cast<std::size_t>(length));
    return value;
}

TEST_F(ConsumerOptions, TheMessageHandleIsFilledForEachMessage)
{
    const MQHMSG received = createHandle(hconn);
    Bodies colours;
    diary.then = [&](MQHCONN its, MQCBC &) { colours.push_back(colourOf(its, received)); };
    MQGMO inHandle = gmo(MQGMO_NO_SYNCPOINT | MQGMO_PROPERTIES_IN_HANDLE);
    inHandle.Version = MQGMO_VERSION_4;
    inHandle.MsgHandle = received;
    EXPECT_EQ(consumeWith(inHandle), ok);

    MQPMO pmo = pmoWith(MQPMO_NO_SYNCPOINT);
    pmo.Version = MQPMO_VERSION_3;
    pmo.OriginalMsgHandle = createHandle(other);
    for (const char *colour : {"red", "blue"}) {
        setColour(other, pmo.OriginalMsgHandle, colour);
        EXPECT_EQ(put(other, otherQ1, "body", {MQMD_DEFAULT}, pmo), ok);
    }
    control(hconn, MQOP_START);
    EXPECT_EQ(bodies(2), (Bodies{"body", "body"}));
    disconnect(hconn); // after it no callback runs
    EXPECT_EQ(colours, (Bodies{"red", "blue"}));
}

TEST_F(ConsumerOptions, AMessageHandleMayTakeThePlaceOfTheDescriptor)
{
    const MQHMSG received = createHandle(hconn);
    MQGMO inHandle = gmoWith(MQGMO_NO_SYNCPOINT, MQGMO_VERSION_4);
    inHandle.MsgHandle = received;
    bool described = false;
    diary.then = [&](MQHCONN, MQCBC &) { described = described || diary.entries(1).back().described; };
    MQCBD cbd = consumerInto(diary);
    Codes codes;
    MQCB(hconn, MQOP_REGISTER, &cbd, q1, nullptr, &inHandle, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, ok);
    // The handle has the identifiers of the first one when the second one is got.
    put(other, otherQ1, "1");
    put(other, otherQ1, "2");
    control(hconn, MQOP_START);
    EXPECT_EQ(bodies(2), (Bodies{"1", "2"}));
    disconnect(hconn); // after it no callback runs
    EXPECT_FALSE(described);
}

TEST_F(ConsumerOptions, NeitherDescriptorNorMessageHandleIs2026)
{
    MQCBD cbd = consumerInto(diary);
    MQGMO none = gmo();
    Codes codes;
    MQCB(hconn, MQOP_REGISTER, &cbd, q1, nullptr, &none, &codes.CompCode, &codes.Reason);
    EXPECT_EQ(codes, failed(MQRC_MD_ERROR));
}

// ---- What is refused ----

TEST_F(ConsumerOptions, BadHandlesAndStructures)
{
    const MQCBD cbd = consumerInto(diary);
    const MQMD md = {MQMD_DEFAULT};
    EXPECT_EQ(manage(hconn, MQOP_REGISTER, cbd, 4711, md, gmo()), failed(MQRC_HOBJ_ERROR));
    const MQHOBJ output = open(hconn, "Q1", MQOO_OUTPUT);
    EXPECT_EQ(manage(hconn, MQOP_REGISTER, cbd, output, md, gmo()), failed(MQRC_NOT_OPEN_FOR_INPUT));
    EXPECT_EQ(manage(hconn, MQOP_REGISTER, cbd, output, md, gmo(MQGMO_BROWSE_NEXT)), failed(MQRC_NOT_OPEN_FOR_BROWSE));
    MQMD badMd = md;
    badMd.Version = 9;
    EXPECT_EQ(manage(hconn, MQOP_REGISTER, cbd, q1, badMd, gmo()), failed(MQRC_MD_ERROR));
    MQGMO badGmo = gmo();
    badGmo.StrucId[0] = 'x';
    EXPECT_EQ(consumeWith(badGmo), failed(MQRC_GMO_ERROR));
    EXPECT_EQ(consumerOperation(hconn, MQOP_SUSPEND, q1), failed(MQRC_CALLBACK_NOT_REGISTERED));
}

TEST_F(ConsumerOptions, OptionsThatNoGetCouldTakeAreRefused)
{
    for (const MQLONG options :
         {MQGMO_MSG_UNDER_CURSOR, MQGMO_BROWSE_NEXT | MQGMO_LOCK, MQGMO_SYNCPOINT | MQGMO_NO_SYNCPOINT,
          MQGMO_BROWSE_NEXT | MQGMO_SYNCPOINT, MQGMO_MARK_BROWSE_HANDLE,
          MQGMO_BROWSE_FIRST | MQGMO_BROWSE_NEXT | MQGMO_MARK_BROWSE_HANDLE,
          MQGMO_BROWSE_FIRST | MQGMO_MARK_BROWSE_HANDLE | MQGMO_UNMARK_BROWSE_HANDLE})
        EXPECT_EQ(consumeWith(gmo(options)), failed(MQRC_OPTIONS_ERROR)) << options;
    EXPECT_EQ(consumeWith(gmo(MQGMO_PROPERTIES_IN_HANDLE)), failed(MQRC_HMSG_ERROR));
    EXPECT_EQ(consumeWith(gmoWith(MQGMO_LOGICAL_ORDER)), failed(MQRC_WRONG_GMO_VERSION));
    MQGMO waiting = gmo(MQGMO_WAIT);
    waiting.WaitInterval = -2;
    EXPECT_EQ(consumeWith(waiting), failed(MQRC_WAIT_INTERVAL_ERROR));
    MQGMO byGroup = gmo();
    byGroup.MatchOptions = MQMO_MATCH_GROUP_ID;
    EXPECT_EQ(consumeWith(byGroup), failed(MQRC_WRONG_MD_VERSION));
    EXPECT_EQ(control(hconn, MQOP_START_WAIT), failed(MQRC_NO_CALLBACKS_ACTIVE));
}

TEST_F(ConsumerOptions, AReplacementThatFailsLeavesNone)
{
    EXPECT_EQ(consume(MQCBDO_DEREGISTER_CALL), ok);
    EXPECT_EQ(consumeWith(gmo(MQGMO_MSG_UNDER_CURSOR)), failed(MQRC_OPTIONS_ERROR));
    ASSERT_EQ(diary.size(), 1U);
    EXPECT_EQ(diary.entries(1)[0].context.CallType, MQCBCT_DEREGISTER_CALL);
    EXPECT_EQ(consumerOperation(hconn, MQOP_DEREGISTER, q1), failed(MQRC_CALLBACK_NOT_REGISTERED));
}

} // namespace
} // namespace mqrig::qmgr::testing
