#include "trial.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace mqrig::qmgr::faults {

namespace {

// What a call may answer whose memory, storage or locks fail.
constexpr std::array documented{
    MQRC_STORAGE_NOT_AVAILABLE, MQRC_RESOURCE_PROBLEM,        MQRC_Q_SPACE_NOT_AVAILABLE, MQRC_BACKED_OUT,
    MQRC_UNEXPECTED_ERROR,      MQRC_NOT_AUTHORIZED,          MQRC_CONNECTION_BROKEN,     MQRC_Q_MGR_STOPPING,
    MQRC_Q_MGR_NOT_AVAILABLE,   MQRC_MAX_CONNS_LIMIT_REACHED, MQRC_RECONNECT_FAILED,      MQRC_RECONNECT_TIMED_OUT};

bool isEnd(MQLONG reason)
{
    return reason == MQRC_CONNECTION_BROKEN || reason == MQRC_Q_MGR_STOPPING || reason == MQRC_Q_MGR_NOT_AVAILABLE;
}

MQOD objectOf(std::string_view name)
{
    MQOD od = {MQOD_DEFAULT};
    std::memset(od.ObjectName, 0, sizeof od.ObjectName);
    name.copy(od.ObjectName, sizeof od.ObjectName);
    return od;
}

} // namespace

void Trial::fault(const std::string &text)
{
    const std::scoped_lock lock(mutex_);
    faults_.push_back(text);
}

void Trial::judge(const char *name, const Codes &codes, MQLONG expected)
{
    if (codes.Reason == MQRC_NONE || codes.Reason == expected) return;
    if (isEnd(codes.Reason)) sawEnd_ = true;
    const std::string text = std::string(name) + " " + std::to_string(codes.Reason);
    const bool known = std::find(documented.begin(), documented.end(), codes.Reason) != documented.end();
    if (faultless_ || !known) fault("answers " + text);
    answers_.insert(text);
}

Codes Trial::call(const char *name, const std::function<void(PMQLONG, PMQLONG)> &body, MQLONG expected)
{
    Codes codes;
    {
        const Inside inside;
        body(&codes.CompCode, &codes.Reason);
    }
    judge(name, codes, expected);
    return codes;
}

bool Trial::connect(MQLONG options)
{
    MQCNO cno = {MQCNO_DEFAULT};
    cno.Options = options;
    MQCHAR48 name = "QM1";
    return call("MQCONNX", [&](PMQLONG cc, PMQLONG rc) { MQCONNX(name, &cno, &hconn, cc, rc); }).ok();
}

void Trial::disconnect()
{
    const Codes codes = call("MQDISC", [&](PMQLONG cc, PMQLONG rc) { MQDISC(&hconn, cc, rc); });
    if (codes.ok())
        unitEnds(true, false);
    else if (codes.Reason == MQRC_BACKED_OUT)
        unitEnds(false, false);
    else if (isEnd(codes.Reason))
        unitEnds(false, true);
}

MQHOBJ Trial::open(std::string_view queue, MQLONG options)
{
    MQOD od = objectOf(queue);
    return open(od, options);
}

MQHOBJ Trial::open(MQOD &od, MQLONG options)
{
    MQHOBJ hobj = MQHO_UNUSABLE_HOBJ;
    const Codes codes = call("MQOPEN", [&](PMQLONG cc, PMQLONG rc) { MQOPEN(hconn, &od, options, &hobj, cc, rc); });
    return codes.failed() ? MQHO_UNUSABLE_HOBJ : hobj;
}

void Trial::close(MQHOBJ hobj, MQLONG options)
{
    if (hobj == MQHO_UNUSABLE_HOBJ) return;
    call("MQCLOSE", [&](PMQLONG cc, PMQLONG rc) { MQCLOSE(hconn, &hobj, options, cc, rc); });
}

void Trial::noted(std::string_view queue, const std::string &body, MQLONG persistence, Fate fate)
{
    if (queue.empty()) return;
    const std::scoped_lock lock(mutex_);
    queues_[std::string(queue)][body] = {persistence, fate};
}

void Trial::notedInUnit(std::string_view queue, const std::string &body, MQLONG persistence)
{
    puts_.push_back({std::string(queue), body, persistence});
}

void Trial::taken(std::string_view queue, const std::string &body)
{
    if (queue.empty()) return;
    const std::scoped_lock lock(mutex_);
    auto &messages = queues_[std::string(queue)];
    const auto known = messages.find(body);
    if (known == messages.end() || known->second.second == Fate::Off)
        faults_.push_back("got what is not on the queue: " + body);
    else
        known->second.second = Fate::Off;
}

void Trial::perhapsTaken(std::string_view queue)
{
    const std::scoped_lock lock(mutex_);
    for (auto &[text, fate] : queues_[std::string(queue)])
        if (fate.second == Fate::On && fate.first == MQPER_PERSISTENT) fate.second = Fate::Maybe;
}

Codes Trial::put(MQHOBJ hobj, std::string_view queue, std::string_view body, MQLONG persistence, Unit unit, MQMD md,
                 MQPMO pmo)
{
    if (hobj == MQHO_UNUSABLE_HOBJ) return {};
    md.Persistence = persistence;
    pmo.Options |= unit == Unit::Yes ? MQPMO_SYNCPOINT : MQPMO_NO_SYNCPOINT;
    std::string buffer(body);
    const Codes codes = call("MQPUT", [&](PMQLONG cc, PMQLONG rc) {
        MQPUT(hconn, hobj, &md, &pmo, static_cast<MQLONG>(buffer.size()), buffer.data(), cc, rc);
    });
    if (unit == Unit::Yes) {
        if (!codes.failed()) puts_.push_back({std::string(queue), buffer, persistence});
    } else {
        noted(queue, buffer, persistence, !codes.failed() ? Fate::On : isEnd(codes.Reason) ? Fate::Maybe : Fate::Off);
    }
    return codes;
}

std::string Trial::got(const char *name, MQHOBJ hobj, MQGMO &gmo, Codes &codes)
{
    MQMD md = {MQMD_DEFAULT};
    md.Version = MQMD_VERSION_2;
    std::string buffer(200'000, '\0');
    MQLONG length = 0;
    codes = call(
        name,
        [&](PMQLONG cc, PMQLONG rc) {
            MQGET(hconn, hobj, &md, &gmo, static_cast<MQLONG>(buffer.size()), buffer.data(), &length, cc, rc);
        },
        faultless_ ? MQRC_NONE : MQRC_NO_MSG_AVAILABLE);
    if (codes.failed()) return {};
    buffer.resize(static_cast<std::size_t>(length));
    return buffer;
}

std::string Trial::get(MQHOBJ hobj, std::string_view queue, Unit unit, MQGMO gmo)
{
    if (hobj == MQHO_UNUSABLE_HOBJ) return {};
    gmo.Options |= unit == Unit::Yes ? MQGMO_SYNCPOINT : MQGMO_NO_SYNCPOINT;
    Codes codes;
    std::string body = got("MQGET", hobj, gmo, codes);
    if (codes.failed()) {
        // Which one it would have been is not known, but it was the one that stands first.
        if (unit == Unit::No && isEnd(codes.Reason)) perhapsTaken(queue);
        return {};
    }
    if (unit == Unit::Yes) {
        const auto &messages = queues_[std::string(queue)];
        const auto known = messages.find(body);
        if (known == messages.end() || known->second.second == Fate::Off) {
            fault("got what is not on the queue: " + body);
        } else {
            gets_.push_back({std::string(queue), body, known->second.first});
        }
    } else {
        taken(queue, body);
    }
    return body;
}

std::string Trial::browse(MQHOBJ hobj, std::string_view queue, MQLONG option)
{
    if (hobj == MQHO_UNUSABLE_HOBJ) return {};
    MQGMO gmo = {MQGMO_DEFAULT};
    gmo.Options = option;
    Codes codes;
    std::string body = got("MQGET", hobj, gmo, codes);
    if (codes.failed()) return {};
    const std::scoped_lock lock(mutex_);
    const auto &messages = queues_[std::string(queue)];
    const auto known = messages.find(body);
    if (known == messages.end() || known->second.second == Fate::Off)
        faults_.push_back("browsed what is not on the queue: " + body);
    return body;
}

void Trial::unitEnds(bool committed, bool unknown)
{
    const std::scoped_lock lock(mutex_);
    for (const Message &put : puts_)
        queues_[put.queue][put.body] = {put.persistence, unknown ? Fate::Maybe : committed ? Fate::On : Fate::Off};
    for (const Message &get : gets_)
        if (unknown || committed) queues_[get.queue][get.body].second = unknown ? Fate::Maybe : Fate::Off;
    puts_.clear();
    gets_.clear();
}

void Trial::commit()
{
    const Codes codes = call("MQCMIT", [&](PMQLONG cc, PMQLONG rc) { MQCMIT(hconn, cc, rc); });
    if (codes.ok())
        unitEnds(true, false);
    else if (codes.Reason == MQRC_BACKED_OUT)
        unitEnds(false, false);
    else if (isEnd(codes.Reason))
        unitEnds(false, true);
    else
        backOut(); // it has not been tried: what is in it is still there
}

void Trial::backOut()
{
    const Codes codes = call("MQBACK", [&](PMQLONG cc, PMQLONG rc) { MQBACK(hconn, cc, rc); });
    if (codes.ok() || isEnd(codes.Reason)) unitEnds(false, false);
}

void Trial::settle()
{
    if (hconn == MQHC_UNUSABLE_HCONN) return;
    Codes codes;
    MQBACK(hconn, &codes.CompCode, &codes.Reason);
    unitEnds(false, false);
    MQDISC(&hconn, &codes.CompCode, &codes.Reason);
    if (codes.failed() && !isEnd(codes.Reason)) fault("MQDISC fails without a fault: " + std::to_string(codes.Reason));
}

void Trial::lifeIsOver()
{
    for (auto &[queue, messages] : queues_)
        for (auto &[body, fate] : messages)
            if (fate.first != MQPER_PERSISTENT) fate.second = Fate::Off;
}

void Trial::verify()
{
    Trial reader(true);
    if (!reader.connect()) return fault("cannot connect when the fault is gone");
    for (const auto &[queue, messages] : queues_) {
        const MQHOBJ hobj = reader.open(queue, MQOO_INPUT_EXCLUSIVE | MQOO_BROWSE | MQOO_INQUIRE);
        if (hobj == MQHO_UNUSABLE_HOBJ) {
            fault("cannot open " + queue + " when the fault is gone");
            continue;
        }
        MQLONG selector = MQIA_CURRENT_Q_DEPTH;
        MQLONG depth = -1;
        Codes codes;
        MQINQ(reader.hconn, hobj, 1, &selector, 1, &depth, 0, nullptr, &codes.CompCode, &codes.Reason);
        std::multiset<std::string> found;
        for (;;) {
            MQMD md = {MQMD_DEFAULT};
            md.Version = MQMD_VERSION_2;
            MQGMO gmo = {MQGMO_DEFAULT};
            gmo.Options = MQGMO_NO_SYNCPOINT | MQGMO_NO_PROPERTIES;
            std::string buffer(200'000, '\0');
            MQLONG length = 0;
            MQGET(reader.hconn, hobj, &md, &gmo, static_cast<MQLONG>(buffer.size()), buffer.data(), &length,
                  &codes.CompCode, &codes.Reason);
            if (codes.failed()) break;
            found.insert(buffer.substr(0, static_cast<std::size_t>(length)));
        }
        if (codes.Reason != MQRC_NO_MSG_AVAILABLE)
            fault("getting from " + queue + " ends with " + std::to_string(codes.Reason));
        if (depth != static_cast<MQLONG>(found.size()))
            fault(queue + " says a depth of " + std::to_string(depth) + " and has " + std::to_string(found.size()));
        for (const auto &[body, fate] : messages) {
            const std::size_t times = found.erase(body);
            const std::string name = queue + ": " + body.substr(0, 40);
            if (times > 1) fault("twice on " + name);
            if (times == 0 && fate.second == Fate::On) fault("lost from " + name);
            if (times == 1 && fate.second == Fate::Off) fault("should not be on " + name);
        }
        for (const std::string &body : found)
            fault("unknown on " + queue + ": " + body.substr(0, 40));
        reader.close(hobj);
    }
    reader.disconnect();
    for (const std::string &text : reader.faults())
        fault("without a fault, " + text);
    queues_.clear();
}

} // namespace mqrig::qmgr::faults
