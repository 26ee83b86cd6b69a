// One MQI call as the library sees it. Every entry point builds one of these, shows it what the caller passed, asks
// for the answer, and writes the outputs:
//
//   Call call("MQCLOSE", pCompCode, pReason);
//   if (call.isNull()) ...            no script: all goes well, nothing is looked at
//   call.connection(Hconn);           checks, and notes for the record
//   call.decide();                    script and checks give CompCode and Reason; the record is written
//   if (call.succeeded()) ...         outputs
//
// How to add an MQI call: a row in script.cpp's list of calls, its entry point here in one of the *_calls.cpp, its
// name in exports.map.
#pragma once

#include "script.h"
#include "structures.h"

#include <cmqc.h>

#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <thread>

namespace scripted {

struct Connection {
    std::set<MQHOBJ> objects;
    std::set<MQHMSG> messages;
    MQCB_FUNCTION *eventHandler = nullptr;
    MQPTR callbackArea = nullptr;
};

// Everything that outlives a call. There is one; it is never destroyed, because a program's threads may still be in a
// call while the process ends.
struct Library {
    std::unique_ptr<Script> script; // none: the null library
    int recordFile = -1;
    bool recordsAllFields = false;

    std::mutex lock; // guards everything below; a call holds it from its first check to its line in the record
    long sequence = 0;
    std::map<std::thread::id, int> threads;
    std::map<std::string, long> occurrences;
    std::map<MQHCONN, Connection> connections;
    MQHCONN nextConnection = 1;
    MQHOBJ nextObject = 101;
    MQHMSG nextMessage = 1001;
    MQLONG nextMessageId = 1;
};

Library &library();

// A test that makes the n-th allocation of the client fail (tests/faults/nth_call.h) leaves this library alone: while
// one of these lives, calls of its thread do not count.
class NotTheClient {
public:
    NotTheClient();
    ~NotTheClient();
    NotTheClient(const NotTheClient &) = delete;
    NotTheClient &operator=(const NotTheClient &) = delete;
};

class Call {
public:
    Call(std::string_view name, PMQLONG pCompCode, PMQLONG pReason);
    Call(const Call &) = delete;
    Call &operator=(const Call &) = delete;

    // True without a script: the call has already been answered with success.
    bool isNull() const { return null_; }

    // What the caller passed, for the head line of the record.
    void note(std::string_view name, std::string_view value);
    void note(std::string_view name, long long value);
    void noteBits(std::string_view name, MQLONG value);
    void noteName(std::string_view name, PMQCHAR value); // 48 characters, or up to a null character
    void noteBytes(std::string_view name, const void *bytes, MQLONG length);

    // Checks that also note.
    void connection(MQHCONN Hconn);
    void object(MQHOBJ Hobj);
    void message(MQHMSG Hmsg);
    // Reads a structure up to its Version, records the fields that differ from the default; false when it is missing
    // or its head is wrong (then the call is refused and nothing more of it may be read).
    bool structure(std::string_view type, const void *data, std::string_view label = {});
    bool optionalStructure(std::string_view type, const void *data);
    void buffer(const void *pBuffer, MQLONG BufferLength);
    void detail(std::string_view line);
    void refuse(MQLONG Reason);

    // Counts the call and finds its answer; false when no rule names it.
    bool findAnswer();
    const Answer &answer() const { return answer_; }
    // Ends the checks: settles the codes (a refusal, else the script's, else the usual ones), writes the record, waits
    // and raises events as the script says.
    void decide(MQLONG usualCompCode = MQCC_OK, MQLONG usualReason = MQRC_NONE);
    bool succeeded() const { return CompCode_ != MQCC_FAILED; }
    // The caller's connection; only while it is valid.
    Connection *connectionState();
    // A handle to hand out: the script's, or the next one.
    template <typename Handle> Handle newHandle(Handle &next)
    {
        return answer_.handle ? static_cast<Handle>(*answer_.handle) : next++;
    }
    // Writes the script's fields for this structure, those that its Version holds.
    void writeBack(std::string_view type, void *data) const;
    // Writes the codes to the caller; the last thing that every entry point does.
    void finish();

private:
    void record();
    void raiseEvents();

    NotTheClient scope_;
    std::string name_;
    PMQLONG pCompCode_;
    PMQLONG pReason_;
    bool null_ = false;
    std::unique_lock<std::mutex> guard_;
    MQHCONN hconn_ = MQHC_UNUSABLE_HCONN;
    std::string head_;
    std::string details_;
    MQLONG refusal_ = MQRC_NONE;
    MQLONG CompCode_ = MQCC_OK;
    MQLONG Reason_ = MQRC_NONE;
    bool answerFound_ = false;
    Answer answer_;
};

} // namespace scripted
