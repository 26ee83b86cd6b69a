// The books of a crash run: what the journals say must be, compared with what the inspector finds.
//
// Every operation belongs to a unit, a single put or get is a unit of one. A unit has happened when its end was
// answered MQCC_OK, and has not when it was backed out or its worker was killed before it asked for the end. What was
// under way at the kill is in doubt: it may have happened or not, but as a whole. The first inspection after the kill
// decides by what is on the queues, and all its messages must tell the same; from then on it is as certain as any
// other.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "inspector.h"
#include "journal.h"

namespace mqrig::crash {

enum class Fate : std::uint8_t { Open, Happened, Not, InDoubt };

class Model {
public:
    // Takes in what a worker wrote since the last time.
    void read(std::uint32_t worker, const std::vector<Record> &records);
    // The worker is no more: killed, or ended when the queue manager did.
    void died(std::uint32_t worker);
    // The queue manager has a new life: what is not persistent is gone.
    void restarted(bool logComplete);

    // Compares, with all workers standing still; empty: all is as it must be.
    std::vector<std::string> compare(const Inspection &found);
    // What the journals said was wrong since the last look.
    std::vector<std::string> takeFaults();
    // What the books say is on the queue and the inspector did not find, and nobody can have taken.
    [[nodiscard]] bool misses(Queue queue, const Inspection &found) const;

    [[nodiscard]] std::size_t messages() const { return puts_; }
    [[nodiscard]] std::size_t units() const { return units_.size(); }
    [[nodiscard]] std::size_t resolved() const { return resolved_; }

private:
    using UnitNumber = std::uint32_t;
    struct Unit {
        Fate fate = Fate::Open;
        std::vector<MessageName> puts;
        std::vector<MessageName> gets;
    };
    struct Message {
        Queue queue{};
        bool persistent = false;
        bool forgotten = false; // not persistent, and the queue manager was restarted since
        bool gone = false;      // taken by a single get that was killed before its answer
        bool seen = false;      // by a browse or a get, whoever it was
        UnitNumber put = 0;
        std::vector<UnitNumber> gets; // units that got it and may have committed
        std::int32_t leastBackouts = 0;
        std::int32_t mostBackouts = 0;
    };
    // Where a worker stands.
    struct Place {
        UnitNumber unit = 0; // open unit of work
        std::uint32_t unitName = 0;
        Record last; // the last record
        bool inCall = false;
    };
    struct Request {
        UnitNumber put = 0;
        bool persistent = false;
        bool forgotten = false;
        int replies = 0;
    };
    struct Object {
        Fate exists = Fate::Not;
    };

    UnitNumber newUnit();
    UnitNumber unitOf(Place &place, std::uint32_t name);
    void take(Place &place, const Record &record);
    void takePut(Place &place, const Record &record);
    void takeGet(Place &place, const Record &record);
    void endUnit(Place &place, Fate fate);
    void unitDidNotHappen(UnitNumber number, int least, int most);
    void decide(const std::map<MessageName, int> &present);
    Fate evidence(const Unit &unit, UnitNumber number, const std::map<MessageName, int> &present,
                  std::vector<std::string> &why) const;
    [[nodiscard]] bool got(const Message &message, Fate fate, UnitNumber except = 0) const;
    void compareMessages(const std::map<MessageName, int> &present);
    void compareOrder(const Inspection &found);
    void compareCounters(const Inspection &found);
    void replied(const MessageName &name);
    void compareRequests();
    void compareObjects(const Inspection &found);
    void fault(std::string text) { faults_.push_back(std::move(text)); }

    std::vector<Unit> units_{Unit{Fate::Not, {}, {}}}; // number 0 is no unit
    std::set<UnitNumber> inDoubt_;
    std::map<MessageName, Message> messages_;
    std::set<MessageName> active_;         // may still be on a queue
    std::array<int, queues> mayBeTaken_{}; // single gets under way when their worker was killed
    std::array<int, queues> unknownBackouts_{};
    bool countsMayBeBehind_ = false; // a life ended without its last backouts having reached the log
    std::map<std::uint32_t, Place> places_;
    std::map<MessageName, Request> requests_; // whose last word is not spoken
    std::set<MessageName> answered_;
    std::map<std::string, Object> objects_;
    std::size_t puts_ = 0;
    std::size_t resolved_ = 0;
    std::vector<std::string> faults_;
};

} // namespace mqrig::crash
