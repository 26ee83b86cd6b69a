// A connection with Q1 for a consumer, and another one that brings it messages.
#pragma once

#include <string>
#include <vector>

#include "callback_fixture.h"

namespace mqrig::qmgr::testing {

using Bodies = std::vector<std::string>;

class Consumer : public CallbackTest {
public:
    static constexpr MQLONG everything = MQOO_INPUT_SHARED | MQOO_OUTPUT | MQOO_BROWSE | MQOO_INQUIRE;

    Consumer()
        : hconn(connect()), q1(open(hconn, "Q1", everything)), other(connect()), otherQ1(open(other, "Q1", everything))
    {
    }
    // Nobody writes into a diary that is gone.
    ~Consumer() override { disconnect(hconn); }

    static MQCBD consumerInto(Diary &diary, MQLONG options = MQCBDO_NONE)
    {
        MQCBD cbd = handlerInto(diary, options);
        cbd.CallbackType = MQCBT_MESSAGE_CONSUMER;
        return cbd;
    }
    static MQGMO gmo(MQLONG options = MQGMO_NO_SYNCPOINT)
    {
        MQGMO made = gmoWith(options, MQGMO_VERSION_2);
        made.MatchOptions = MQMO_NONE;
        return made;
    }
    Codes consume(MQLONG options = MQCBDO_NONE)
    {
        return manage(hconn, MQOP_REGISTER, consumerInto(diary, options), q1, {MQMD_DEFAULT}, gmo());
    }
    static Codes consumerOperation(MQHCONN hconn, MQLONG operation, MQHOBJ hobj)
    {
        Codes codes;
        MQCB(hconn, operation, nullptr, hobj, nullptr, nullptr, &codes.CompCode, &codes.Reason);
        return codes;
    }
    // Of the diary, as soon as there are so many.
    Bodies bodies(std::size_t count)
    {
        Bodies found;
        for (const Told &told : diary.entries(count))
            found.push_back(told.body);
        return found;
    }

    Diary diary;
    MQHCONN hconn;
    MQHOBJ q1;
    MQHCONN other;
    MQHOBJ otherQ1;
};

} // namespace mqrig::qmgr::testing
