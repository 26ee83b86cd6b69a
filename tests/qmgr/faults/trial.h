// One run of a scripted history of MQI calls, in which calls of the system may fail, and the model that it is compared
// with: which messages must be on which queue after what the calls have answered.
#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "cmqc.h"
#include "nth_call.h"

namespace mqrig::qmgr::faults {

struct Codes {
    MQLONG CompCode = MQCC_UNKNOWN;
    MQLONG Reason = MQCC_UNKNOWN;
    bool ok() const { return CompCode == MQCC_OK; }
    bool failed() const { return CompCode == MQCC_FAILED; }
};

// Calls made in its scope count, and may fail; those of the test around it do not.
class Inside {
public:
    Inside() { nthCallSuspend(-1); }
    ~Inside() { nthCallSuspend(1); }
    Inside(const Inside &) = delete;
    Inside &operator=(const Inside &) = delete;
};
// The reverse, for a callback of the test's on a thread of the library's.
class Outside {
public:
    Outside() { nthCallSuspend(1); }
    ~Outside() { nthCallSuspend(-1); }
    Outside(const Outside &) = delete;
    Outside &operator=(const Outside &) = delete;
};

// Whether a message is on its queue. Maybe: the call was answered that the queue manager has ended meanwhile.
enum class Fate { On, Off, Maybe };

enum class Unit { No, Yes };

class Trial {
public:
    // With `faultless` every call has to succeed.
    explicit Trial(bool faultless) : faultless_(faultless) {}

    // ---- Calls; what they answer is judged, and what is put and got goes into the model ----
    // Another reason than MQRC_NONE that is as good.
    Codes call(const char *name, const std::function<void(PMQLONG, PMQLONG)> &body, MQLONG expected = MQRC_NONE);
    bool connect(MQLONG options = MQCNO_NONE);
    void disconnect();
    // MQHO_UNUSABLE_HOBJ if it failed.
    MQHOBJ open(std::string_view queue, MQLONG options);
    MQHOBJ open(MQOD &od, MQLONG options);
    void close(MQHOBJ hobj, MQLONG options = MQCO_NONE);
    // The body is unlike any other on the queue.
    Codes put(MQHOBJ hobj, std::string_view queue, std::string_view body, MQLONG persistence, Unit unit = Unit::No,
              MQMD md = {MQMD_DEFAULT}, MQPMO pmo = {MQPMO_DEFAULT});
    // The first message; its body, empty if there was none.
    std::string get(MQHOBJ hobj, std::string_view queue, Unit unit = Unit::No, MQGMO gmo = {MQGMO_DEFAULT});
    std::string browse(MQHOBJ hobj, std::string_view queue, MQLONG option = MQGMO_BROWSE_NEXT);
    void commit();
    void backOut();

    // ---- The model ----
    void noted(std::string_view queue, const std::string &body, MQLONG persistence, Fate fate);
    // A put of the unit of work has put on this queue too.
    void notedInUnit(std::string_view queue, const std::string &body, MQLONG persistence);
    // A message has been taken from the queue, by a callback too.
    void taken(std::string_view queue, const std::string &body);
    // A persistent one may have been: the queue manager ended meanwhile.
    void perhapsTaken(std::string_view queue);
    void fault(const std::string &text);

    bool faultless() const { return faultless_; }
    const std::vector<std::string> &faults() const { return faults_; }
    // Reasons answered by calls that failed: "MQPUT 2071".
    const std::set<std::string> &answers() const { return answers_; }
    // A call was answered that the queue manager has ended, or that the connection is broken.
    bool sawEnd() const { return sawEnd_; }

    // The fault is gone: ends what is left of the connection.
    void settle();
    // The life has ended: what is not persistent has gone.
    void lifeIsOver();
    // Compares the queues with the model and empties them.
    void verify();

    MQHCONN hconn = MQHC_UNUSABLE_HCONN;

private:
    struct Message {
        std::string queue;
        std::string body;
        MQLONG persistence;
    };
    void unitEnds(bool committed, bool unknown);
    void judge(const char *name, const Codes &codes, MQLONG expected);
    std::string got(const char *name, MQHOBJ hobj, MQGMO &gmo, Codes &codes);

    bool faultless_;
    bool sawEnd_ = false;
    std::mutex mutex_;
    std::map<std::string, std::map<std::string, std::pair<MQLONG, Fate>>> queues_;
    std::vector<Message> puts_; // of the unit of work
    std::vector<Message> gets_;
    std::vector<std::string> faults_;
    std::set<std::string> answers_;
};

// One part of the MQI.
struct History {
    const char *name;
    void (*body)(Trial &);
    bool beginsLives = false; // which takes its time
};
// All of them; each begins and ends without a connection.
const std::vector<History> &histories();

} // namespace mqrig::qmgr::faults
