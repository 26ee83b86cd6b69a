// An MQI in this process: it records what reaches it and answers what a test asked for.
#pragma once

#include <cmqc.h>
#include <cmqxc.h>

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

struct FakeCodes {
    MQLONG CompCode = MQCC_OK;
    MQLONG Reason = MQRC_NONE;
};

/// A message on the fake queue, and how MQGET answers with it.
struct FakeMessage {
    std::string body;
    MQMD md = {MQMD_DEFAULT};
    FakeCodes codes = {};
    MQLONG reportedLength = -1; ///< -1: the length of the body
};

struct FakeMqi {
    /// Answers for the next calls of a name; without one a call succeeds.
    std::map<std::string, std::deque<FakeCodes>> answers;
    /// Runs before a call of that name answers.
    std::map<std::string, std::function<void()>> during;

    std::vector<std::string> calls; ///< names, in order

    MQHCONN hconn = 0; ///< of the last call that took one
    MQHOBJ hobj = 0;
    std::string qmgrField; ///< all 48 bytes
    MQCNO cno = {MQCNO_DEFAULT};
    std::vector<MQAIR> authInfoRecs;
    MQOD od = {MQOD_DEFAULT};
    MQLONG openOptions = 0;
    MQLONG closeOptions = 0;
    MQMD md = {MQMD_DEFAULT};
    MQPMO pmo = {MQPMO_DEFAULT};
    MQGMO gmo = {MQGMO_DEFAULT};
    std::vector<std::string> bodies; ///< of the puts
    std::vector<MQMD> mds;           ///< of the puts and gets, as they came in
    MQLONG bufferLength = 0;
    std::deque<FakeMessage> messages; ///< what MQGET hands out; then 2033
    MQLONG cbOperation = 0;
    MQCBD cbd = {MQCBD_DEFAULT};
    std::string propertyName;
    MQLONG propertyNameCcsid = 0;
    MQLONG propertyValueLength = 0;
    MQLONG returnedNameSize = 0;
    MQHMSG messageHandle = 0;
    std::vector<MQLONG> selectors;

    long count(const std::string &name) const;
    FakeCodes answer(const std::string &name);
};

extern FakeMqi fakeMqi;

/// Handles that the fake hands out.
inline constexpr MQHCONN FakeHconn = 7;
inline constexpr MQHOBJ FakeHobj = 11;
inline constexpr MQHMSG FakeHmsg = 0x1122334455667788;
