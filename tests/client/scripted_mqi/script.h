// The script of a test: which call answers what. One rule a line:
//
//   CALL [N | N-M | N+ | *]: item item ...
//
// N counts the calls of that name from 1; without a count the rule holds for every call. The first rule that fits
// answers. A test's README lists the items.
#pragma once

#include "structures.h"

#include <chrono>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace scripted {

struct Assignment {
    const Structure *structure;
    const Field *field;
    std::string value;
};

struct Response {
    MQLONG CompCode;
    MQLONG Reason;
};

struct Event {
    MQLONG Reason;
    MQLONG ReconnectDelay;
};

struct Answer {
    std::optional<MQLONG> CompCode;
    std::optional<MQLONG> Reason;
    std::optional<MQINT64> handle;     // what the call hands out: Hconn, Hobj, Hmsg
    std::optional<std::string> body;   // message data or property value
    std::optional<MQLONG> DataLength;  // when it is not the body's
    std::optional<MQLONG> Type;        // property type
    std::optional<std::string> name;   // property name
    std::vector<Assignment> fields;    // written back into the caller's structures
    std::vector<Response> responses;   // per destination
    std::vector<MQLONG> integers;      // integer attributes, in the order asked for
    std::vector<std::string> texts;    // character attributes, in the order asked for
    std::vector<Event> events;         // given to the connection's event handler before the call returns
    std::chrono::milliseconds delay{0};
    std::optional<int> exitCode;       // end the process here
};

struct Rule {
    std::string call;
    long first = 1;
    long last = 0;
    int line = 0;
    std::string text;
    Answer answer;
    bool used = false;
};

class Script {
public:
    // Reads the file. A faulty script is reported in one line on standard error and ends the process.
    explicit Script(const char *path);

    // The answer of the n-th call of that name; nullptr when no rule fits.
    const Answer *find(std::string_view call, long n);
    // Rules for a counted call that was never made: most often a mistake in the test.
    std::vector<const Rule *> unused() const;

private:
    std::deque<Rule> rules_;
};

[[noreturn]] void scriptFault(std::string_view where, std::string_view what);

} // namespace scripted
