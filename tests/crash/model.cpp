#include "model.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace mqrig::crash {

namespace {

std::string definedName(const MessageName &name)
{
    return definedPrefix + std::to_string(name.producer) + "." + std::to_string(name.serial);
}

bool unknownAfter(const Record &record)
{
    return record.Reason == MQRC_CONNECTION_BROKEN;
}

} // namespace

Model::UnitNumber Model::newUnit()
{
    units_.emplace_back();
    return static_cast<UnitNumber>(units_.size() - 1);
}

Model::UnitNumber Model::unitOf(Place &place, std::uint32_t name)
{
    if (place.unit == 0 || place.unitName != name) {
        place.unit = newUnit();
        place.unitName = name;
    }
    return place.unit;
}

void Model::read(std::uint32_t worker, const std::vector<Record> &records)
{
    Place &place = places_[worker];
    for (const Record &record : records)
        take(place, record);
}

void Model::take(Place &place, const Record &record)
{
    switch (record.event) {
    case Event::PutBegun:
    case Event::PutTold:
        takePut(place, record);
        break;
    case Event::GetBegun:
    case Event::GetTold:
        takeGet(place, record);
        break;
    case Event::CommitTold:
        if (place.unitName != record.unit) break;
        if (record.CompCode == MQCC_OK) {
            endUnit(place, Fate::Happened);
        } else if (unknownAfter(record)) {
            endUnit(place, Fate::InDoubt);
        } else {
            endUnit(place, Fate::Not);
        }
        break;
    case Event::BackOutTold:
        if (place.unitName == record.unit) endUnit(place, Fate::Not);
        break;
    case Event::Seen:
        messages_[record.message].seen = true;
        break;
    case Event::Replied:
        replied(record.message);
        break;
    case Event::DefineBegun:
        objects_[definedName(record.message)].exists = Fate::InDoubt;
        break;
    case Event::DefineTold:
        objects_[definedName(record.message)].exists = unknownAfter(record)         ? Fate::InDoubt
                                                       : record.CompCode == MQCC_OK ? Fate::Happened
                                                                                    : Fate::Not;
        break;
    case Event::RemoveBegun:
        objects_[definedName(record.message)].exists = Fate::InDoubt;
        break;
    case Event::RemoveTold:
        objects_[definedName(record.message)].exists = unknownAfter(record)         ? Fate::InDoubt
                                                       : record.CompCode == MQCC_OK ? Fate::Not
                                                                                    : Fate::Happened;
        break;
    case Event::Fault:
        fault("a worker says: " + std::string(record.text.data()));
        break;
    case Event::CommitBegun:
    case Event::BackOutBegun:
        break;
    }
    place.last = record;
    constexpr std::array begins{Event::PutBegun,     Event::GetBegun,    Event::CommitBegun,
                                Event::BackOutBegun, Event::DefineBegun, Event::RemoveBegun};
    place.inCall = std::find(begins.begin(), begins.end(), record.event) != begins.end();
}

void Model::takePut(Place &place, const Record &record)
{
    if (record.event == Event::PutBegun) {
        const UnitNumber unit = record.unit == 0 ? newUnit() : unitOf(place, record.unit);
        Message &message = messages_[record.message];
        ++puts_;
        message.queue = record.queue;
        message.persistent = record.persistent != 0;
        message.put = unit;
        units_[unit].puts.push_back(record.message);
        active_.insert(record.message);
        if (record.queue == Queue::Command) {
            Request &request = requests_[record.message];
            request.put = unit;
            request.persistent = message.persistent;
        }
        return;
    }
    if (record.unit != 0) {
        if (record.CompCode == MQCC_OK) return;
        // Refused: not part of its unit. It gets one of its own, that did not happen.
        Unit &unit = units_[place.unit];
        unit.puts.pop_back();
        const UnitNumber own = newUnit();
        units_[own].puts.push_back(record.message);
        units_[own].fate = Fate::Not;
        messages_[record.message].put = own;
        if (record.queue == Queue::Command) requests_[record.message].put = own;
        return;
    }
    const UnitNumber number = messages_[record.message].put;
    units_[number].fate = record.CompCode == MQCC_OK ? Fate::Happened
                          : unknownAfter(record)     ? Fate::InDoubt
                                                     : Fate::Not;
    if (units_[number].fate == Fate::InDoubt) inDoubt_.insert(number);
}

void Model::takeGet(Place &place, const Record &record)
{
    if (record.event == Event::GetBegun || record.queue == Queue::Replies) return;
    if (record.CompCode != MQCC_OK) {
        if (record.unit == 0 && unknownAfter(record)) mayBeTaken_.at(indexOf(record.queue)) += 1;
        return;
    }
    Message &message = messages_[record.message];
    message.seen = true;
    const UnitNumber unit = record.unit == 0 ? newUnit() : unitOf(place, record.unit);
    units_[unit].gets.push_back(record.message);
    message.gets.push_back(unit);
    if (record.unit == 0) units_[unit].fate = Fate::Happened;
}

void Model::endUnit(Place &place, Fate fate)
{
    const UnitNumber number = place.unit;
    place.unit = 0;
    place.unitName = 0;
    if (number == 0) return;
    if (fate == Fate::Not) {
        unitDidNotHappen(number, 1, 1);
        return;
    }
    units_[number].fate = fate;
    if (fate == Fate::InDoubt) inDoubt_.insert(number);
}

void Model::unitDidNotHappen(UnitNumber number, int least, int most)
{
    Unit &unit = units_[number];
    unit.fate = Fate::Not;
    for (const MessageName &name : unit.gets) {
        Message &message = messages_[name];
        message.leastBackouts += least;
        message.mostBackouts += most;
        std::erase(message.gets, number);
    }
}

void Model::died(std::uint32_t worker)
{
    Place &place = places_[worker];
    const Record last = place.last;
    if (place.inCall) {
        if (last.event == Event::PutBegun && last.unit == 0) {
            const UnitNumber unit = messages_[last.message].put;
            units_[unit].fate = Fate::InDoubt;
            inDoubt_.insert(unit);
        }
        if (last.event == Event::GetBegun && last.queue != Queue::Replies) {
            if (last.unit == 0) mayBeTaken_.at(indexOf(last.queue)) += 1;
            // It had one perhaps, which nobody knows; that one came back as from a backout.
            unknownBackouts_.at(indexOf(last.queue)) += 1;
        }
        // A reply may have been on its way to it.
        if (last.event == Event::GetBegun && last.queue == Queue::Replies) {
            for (auto &[name, request] : requests_)
                if (name.producer == worker && request.replies == 0) request.forgotten = true;
        }
        if (last.event == Event::CommitBegun) endUnit(place, Fate::InDoubt);
    }
    endUnit(place, Fate::Not);
    places_.erase(worker);
}

void Model::restarted(bool logComplete)
{
    countsMayBeBehind_ = !logComplete;
    for (const MessageName &name : active_) {
        Message &message = messages_[name];
        if (!message.persistent) message.forgotten = true;
        // Backout counts of the last moments may not have reached the log.
        if (!logComplete) message.leastBackouts = 0;
    }
    for (auto &[name, request] : requests_)
        if (!request.persistent) request.forgotten = true;
}

bool Model::got(const Message &message, Fate fate, UnitNumber except) const
{
    return std::any_of(message.gets.begin(), message.gets.end(),
                       [&](UnitNumber unit) { return unit != except && units_[unit].fate == fate; });
}

// What the queues say about a unit in doubt: Open where they say nothing.
Fate Model::evidence(const Unit &unit, UnitNumber number, const std::map<MessageName, int> &present,
                     std::vector<std::string> &why) const
{
    bool happened = false;
    bool didNot = false;
    const auto note = [&](bool yes, const MessageName &name, const char *what) {
        (yes ? happened : didNot) = true;
        why.push_back(textOf(name) + what);
    };
    for (const MessageName &name : unit.puts) {
        const Message &message = messages_.at(name);
        if (present.contains(name)) {
            note(true, name, " is there");
        } else if (message.seen || got(message, Fate::Happened)) {
            note(true, name, " was there");
        } else if (!message.forgotten && message.queue != Queue::Command && !got(message, Fate::InDoubt) &&
                   mayBeTaken_.at(indexOf(message.queue)) == 0) {
            note(false, name, " is not there");
        }
    }
    for (const MessageName &name : unit.gets) {
        const Message &message = messages_.at(name);
        if (present.contains(name) || got(message, Fate::Happened, number)) {
            note(false, name, " was not taken");
        } else if (!message.forgotten && units_[message.put].fate == Fate::Happened &&
                   !got(message, Fate::InDoubt, number) && mayBeTaken_.at(indexOf(message.queue)) == 0) {
            note(true, name, " was taken");
        }
    }
    if (happened && didNot) return Fate::InDoubt;
    return happened ? Fate::Happened : didNot ? Fate::Not : Fate::Open;
}

// Decides units in doubt; one decision may be the evidence for another.
void Model::decide(const std::map<MessageName, int> &present)
{
    for (bool again = true; again;) {
        again = false;
        for (const UnitNumber number : std::vector<UnitNumber>(inDoubt_.begin(), inDoubt_.end())) {
            std::vector<std::string> why;
            const Fate fate = evidence(units_[number], number, present, why);
            if (fate == Fate::Open) continue;
            inDoubt_.erase(number);
            again = true;
            ++resolved_;
            if (fate == Fate::InDoubt) {
                std::string text = "a unit is split:";
                for (const std::string &each : why)
                    text += " " + each;
                fault(text);
            }
            if (fate == Fate::Happened) {
                units_[number].fate = fate;
            } else {
                unitDidNotHappen(number, countsMayBeBehind_ ? 0 : 1, 1);
            }
        }
    }
    // Of these nothing certain can be told from outside, because a single get was killed beside them. What they got is
    // not there, so they may as well have happened.
    for (const UnitNumber number : inDoubt_) {
        if (units_[number].gets.empty()) {
            unitDidNotHappen(number, 0, 1);
        } else {
            units_[number].fate = Fate::Happened;
        }
    }
    inDoubt_.clear();
}

void Model::compareMessages(const std::map<MessageName, int> &present)
{
    for (const auto &[name, times] : present) {
        if (times > 1) fault(textOf(name) + " is there " + std::to_string(times) + " times");
        if (!active_.contains(name)) fault(textOf(name) + " is there again (or nobody put it)");
    }
    for (auto it = active_.begin(); it != active_.end();) {
        const MessageName name = *it;
        Message &message = messages_[name];
        if (message.queue == Queue::Command) { // the server takes these
            if (present.contains(name)) fault("request " + textOf(name) + " is not served");
            messages_.erase(name);
            it = active_.erase(it);
            continue;
        }
        const bool there = present.contains(name);
        const auto takers = std::count_if(message.gets.begin(), message.gets.end(),
                                          [&](UnitNumber unit) { return units_[unit].fate == Fate::Happened; });
        const std::string text =
            textOf(name) + (message.persistent ? " (persistent)" : "") + " of " + nameOf(message.queue);
        bool done = takers > 0 || message.queue == Queue::Filled; // the inspector has taken those
        if (takers > 1) fault(text + " was got twice");
        if (takers > 0 && there) fault(text + " was got and is there");
        switch (units_[message.put].fate) {
        case Fate::Happened:
            if (message.forgotten) {
                if (there) fault(text + " outlived a restart");
                done = true;
            } else if (!there && takers == 0) {
                if (mayBeTaken_.at(indexOf(message.queue)) > 0) {
                    mayBeTaken_.at(indexOf(message.queue)) -= 1;
                    message.gone = true;
                } else {
                    fault(text + " is lost");
                }
                done = true;
            }
            break;
        case Fate::Not:
            if (there) fault(text + " is there, though its unit did not happen");
            if (message.seen) fault(text + " was seen, though its unit did not happen");
            done = true;
            break;
        case Fate::Open:
        case Fate::InDoubt:
            fault(text + " is still open");
            break;
        }
        if (done) messages_.erase(name);
        it = done ? active_.erase(it) : std::next(it);
    }
    for (const auto &[name, message] : messages_)
        if (!active_.contains(name)) fault(textOf(name) + " was seen or got again");
    std::erase_if(messages_, [this](const auto &entry) { return !active_.contains(entry.first); });
    mayBeTaken_.fill(0);
    unknownBackouts_.fill(0);
    countsMayBeBehind_ = false;
}

void Model::compareOrder(const Inspection &found)
{
    std::map<std::tuple<Queue, std::uint32_t, MQLONG>, std::uint32_t> latest;
    std::array<MQLONG, queues> priority{};
    priority.fill(9);
    for (const auto &message : found.messages) {
        if (message.priority > priority.at(indexOf(message.queue)))
            fault(textOf(message.name) + " stands behind lower priorities");
        priority.at(indexOf(message.queue)) = message.priority;
        std::uint32_t &before = latest[{message.queue, message.name.producer, message.priority}];
        if (before > message.name.serial) fault(textOf(message.name) + " stands behind a later one of its producer");
        before = message.name.serial;
        const auto known = messages_.find(message.name);
        if (known == messages_.end()) continue;
        if (message.backouts < known->second.leastBackouts ||
            message.backouts > known->second.mostBackouts + unknownBackouts_.at(indexOf(message.queue))) {
            fault(textOf(message.name) + " has backout count " + std::to_string(message.backouts) + ", expected " +
                  std::to_string(known->second.leastBackouts) + " to " + std::to_string(known->second.mostBackouts));
        }
        // As of now it is certain.
        known->second.leastBackouts = known->second.mostBackouts = message.backouts;
    }
}

void Model::compareCounters(const Inspection &found)
{
    std::array<std::uint32_t, queues> there{};
    for (const auto &message : found.messages)
        there.at(indexOf(message.queue)) += 1;
    there.at(indexOf(Queue::Replies)) = static_cast<std::uint32_t>(found.replies.size());
    for (std::size_t n = 0; n < queues; ++n) {
        const auto &counters = found.counters.at(n);
        const std::string queue = queueNames.at(n);
        if (counters.depth != there.at(n)) {
            fault(queue + " has depth " + std::to_string(counters.depth) + " and " + std::to_string(there.at(n)) +
                  " messages");
        }
        if (counters.held != 0) fault(queue + " has " + std::to_string(counters.held) + " messages locked");
        if (counters.uncommitted != 0) fault(queue + " has " + std::to_string(counters.uncommitted) + " puts booked");
    }
}

void Model::replied(const MessageName &name)
{
    if (answered_.contains(name)) fault("request " + textOf(name) + " is answered again");
    requests_[name].replies += 1;
    messages_[name].seen = true; // the request was
}

// All requests are served by now: the inspector's own connection does so.
void Model::compareRequests()
{
    for (const auto &[name, request] : requests_) {
        const std::string text = "request " + textOf(name);
        if (request.replies > 1) fault(text + " has " + std::to_string(request.replies) + " replies");
        if (units_[request.put].fate == Fate::Happened && request.replies == 0 && !request.forgotten)
            fault(text + " has no reply");
        if (units_[request.put].fate == Fate::Not && request.replies > 0)
            fault(text + " has a reply, though its unit did not happen");
        if (request.replies > 0) answered_.insert(name);
    }
    requests_.clear();
}

void Model::compareObjects(const Inspection &found)
{
    std::set<std::string> there;
    for (const std::string &name : found.objects) {
        there.insert(name);
        if (name.starts_with(dynamicPrefix)) fault(name + " outlives its connection");
        if (!name.starts_with(definedPrefix)) continue;
        const auto known = objects_.find(name);
        if (known == objects_.end() || known->second.exists == Fate::Not) fault(name + " is there and must not be");
    }
    for (const auto &[name, object] : objects_)
        if (object.exists == Fate::Happened && !there.contains(name)) fault(name + " is gone");
    objects_.clear(); // the inspector has removed them
}

bool Model::misses(Queue queue, const Inspection &found) const
{
    std::set<MessageName> present;
    for (const auto &message : found.messages)
        present.insert(message.name);
    return std::any_of(active_.begin(), active_.end(), [&](const MessageName &name) {
        const Message &message = messages_.at(name);
        return message.queue == queue && !present.contains(name) && units_[message.put].fate == Fate::Happened &&
               !message.forgotten && !got(message, Fate::Happened);
    });
}

std::vector<std::string> Model::compare(const Inspection &found)
{
    for (const std::string &text : found.faults)
        fault(text);
    std::map<MessageName, int> present;
    for (const auto &message : found.messages)
        present[message.name] += 1;
    for (const MessageName &name : found.replies)
        replied(name);
    decide(present);
    compareOrder(found);
    compareMessages(present);
    compareCounters(found);
    compareRequests();
    compareObjects(found);
    return takeFaults();
}

std::vector<std::string> Model::takeFaults()
{
    return std::exchange(faults_, {});
}

} // namespace mqrig::crash
