// Verifies the live state of a running queue manager against its own rules, on one snapshot of it: first the pages
// without the library (live_pages.h), then what the records say of one another.

#include <cstring>
#include <map>
#include <set>

#include "qmgr/store/check.h"
#include "qmgr/store/live_pages.h"
#include "qmgr/store/process.h"
#include "qmgr/store/store.h"
#include "qmgr/store/transaction_walk.h"

namespace mqrig::qmgr::store {

namespace {

// What the records of one queue add up to.
struct Tally {
    QueueStatus status;
    bool counted = false; // has its counters
    bool defined = false;
    MQLONG type = MQOT_Q; // of its definition
    std::uint64_t messages = 0;
    std::uint64_t got = 0; // got and not committed, no longer in the depth
    std::uint64_t held = 0;
    std::uint64_t marks = 0;
    std::uint64_t largeBodies = 0;
    std::uint64_t bodies = 0;
    std::uint64_t wantedIndexes = 0;
    std::uint64_t indexes = 0;
    std::uint64_t booked = 0;
    std::uint64_t depthTriggers = 0;
    std::uint64_t input = 0; // handles
    std::uint64_t output = 0;
    std::uint64_t browse = 0;
};

using Tallies = std::map<QueueId, Tally>;

// Of the key of a definition.
MQLONG typeIn(const MDB_val &key)
{
    std::uint32_t type = 0;
    if (key.mv_size >= 1 + sizeof type) std::memcpy(&type, static_cast<const char *>(key.mv_data) + 1, sizeof type);
    return static_cast<MQLONG>(__builtin_bswap32(type));
}

bool isMessageKey(const MDB_val &key)
{
    constexpr std::size_t size = 1 + 4 + 1 + 8;
    return key.mv_size == size;
}

std::string nameOf(const MessageKey &key)
{
    return "live: message " + std::to_string(key.sequence) + " of queue number " + std::to_string(key.queue);
}

// A damaged count may be negative: a number that no sum comes to.
std::uint64_t countOf(std::int32_t stored)
{
    return static_cast<std::uint64_t>(stored);
}

void judge(QueueId queue, const Tally &tally, Findings &findings)
{
    const std::string what =
        (tally.type == subscriptions ? "live: subscription number " : "live: queue number ") + std::to_string(queue);
    if (!tally.counted) {
        const bool any = tally.messages + tally.held + tally.bodies + tally.indexes > 0;
        if (tally.defined)
            findings.add(what + " is defined but has no counters");
        else if (any)
            findings.add(what + " has messages but does not exist");
        return;
    }
    const QueueStatus &status = tally.status;
    if (status.deleted != 0) return; // on its way out, its records with it
    const auto compare = [&](const char *of, std::uint64_t counted, std::uint64_t found) {
        if (counted != found)
            findings.add(what + ": " + of + " is counted as " + std::to_string(counted) + ", but " +
                         std::to_string(found) + " are there");
    };
    if (!tally.defined) findings.add(what + " has counters but is not defined");
    compare("the depth", status.depth, tally.messages - tally.got + tally.booked);
    compare("messages held", status.held, tally.held);
    compare("uncommitted puts", status.uncommitted, tally.booked);
    compare("marks", status.marked, tally.marks);
    compare("index records", tally.wantedIndexes, tally.indexes);
    compare("large bodies", tally.largeBodies, tally.bodies);
    compare("trigger messages under way", status.depthTriggers, tally.depthTriggers);
    compare("handles open for input", countOf(status.opens.input), tally.input);
    compare("handles open for output", countOf(status.opens.output), tally.output);
    compare("handles open for browsing", countOf(status.opens.browse), tally.browse);
}

} // namespace

void Store::checkRecords(LiveContents &contents, Findings &findings)
{
    Tallies tallies;
    std::set<Ticket> tickets;
    std::set<std::uint32_t> holders;
    const auto look = [&](ReadTransaction &transaction) {
        transaction.forEach(LiveKey::definitions(), [&](const MDB_val &key, const MDB_val &value) {
            const QueueId queue = recordIn<QueueId>(value).value_or(0);
            if (queue == 0) return;
            tallies[queue].defined = true;
            tallies[queue].type = typeIn(key);
        });
        transaction.forEach(LiveKey::messages(), [&](const MDB_val &key, const MDB_val &value) {
            Tally &tally = tallies[queueIn(key)];
            if (key.mv_size == 1 + sizeof(QueueId)) {
                const auto status = recordIn<QueueStatus>(value);
                if (status) tally.status = *status;
                tally.counted = status.has_value();
                return;
            }
            const auto header = recordIn<MessageHeader>(value);
            if (!isMessageKey(key) || !header) {
                findings.add("live: a message of queue number " + std::to_string(queueIn(key)) + " is too short");
                return;
            }
            const MessageKey message = messageOf(key);
            ++tally.messages;
            ++contents.messages;
            const bool large = header->bodyLength > inlineBody;
            if (large) ++tally.largeBodies;
            const auto body = transaction.body(message);
            if (body.size() != header->bodyLength) findings.add(nameOf(message) + ": its body has the wrong length");
            if (message.sequence >= control().sequence) findings.add(nameOf(message) + " has a number from the future");
            forEachIndex(message, header->md, [&](const LiveKey &index) {
                ++tally.wantedIndexes;
                if (transaction.get(index).data == nullptr) findings.add(nameOf(message) + " is missing in an index");
            });
        });
        transaction.forEach(LiveKey::bodies(),
                            [&](const MDB_val &key, const MDB_val &) { ++tallies[queueIn(key)].bodies; });
        transaction.forEach(LiveKey::indexes(),
                            [&](const MDB_val &key, const MDB_val &) { ++tallies[queueIn(key)].indexes; });
        transaction.forEach(LiveKey::marks(),
                            [&](const MDB_val &key, const MDB_val &) { ++tallies[queueIn(key)].marks; });
        transaction.forEach(LiveKey::units(),
                            [&](const MDB_val &key, const MDB_val &) { tickets.insert(numberAtEnd<Ticket>(key)); });
        transaction.forEach(LiveKey::holds(), [&](const MDB_val &key, const MDB_val &value) {
            const auto hold = recordIn<Hold>(value);
            if (!isMessageKey(key) || !hold || hold->slot >= maxSlots) {
                findings.add("live: a hold of queue number " + std::to_string(queueIn(key)) + " is damaged");
                return;
            }
            const MessageKey message = messageOf(key);
            Tally &tally = tallies[message.queue];
            ++tally.held;
            if (!transaction.findHeld(message)) findings.add(nameOf(message) + " is held but not there");
            switch (hold->kind) {
            case HoldKind::Got:
                ++tally.got;
                holders.insert(hold->slot);
                break;
            case HoldKind::Browsed:
                holders.insert(hold->slot);
                break;
            case HoldKind::Prepared:
                ++tally.got;
                [[fallthrough]];
            case HoldKind::Hidden:
                if (!tickets.contains(hold->ticket))
                    findings.add(nameOf(message) + " belongs to a unit that is not there");
                break;
            default:
                findings.add(nameOf(message) + " is held in a way that there is not");
            }
        });
        transaction.forEach(LiveKey::bookings(), [&](const MDB_val &key, const MDB_val &value) {
            const auto booking = recordIn<Booking>(value);
            if (!booking) return;
            Tally &tally = tallies[numberAtEnd<QueueId>(key)];
            tally.booked += booking->puts;
            tally.depthTriggers += booking->depthTriggers;
            tally.input += countOf(booking->opens.input);
            tally.output += countOf(booking->opens.output);
            tally.browse += countOf(booking->opens.browse);
        });
    };
    {
        ReadTransaction transaction;
        PageHeads heads{};
        const std::filesystem::path data = folder_ / "live" / "data.mdb";
        if (live_->beginReadOfPages(transaction.txn_, data, heads).failed()) {
            findings.add("live: it cannot be read");
            return;
        }
        transaction.environment_ = live_.get();
        transaction.records_ = live_->records();
        const PagesVerdict pages = verifyPages(data, heads, mdb_txn_id(transaction.txn_));
        if (pages.kind != PagesVerdict::Kind::Sound) {
            findings.add("live: " + pages.damage);
            return; // the library would believe them
        }
        look(transaction);
        if (transaction.outcome().failed()) {
            findings.add("live: it cannot be read to its end");
            return;
        }
    }
    contents.looked = true;
    for (const auto &[queue, tally] : tallies) {
        contents.queues += tally.counted && tally.type == MQOT_Q ? 1 : 0;
        judge(queue, tally, findings);
    }
    for (const std::uint32_t slot : holders) {
        if (connectionOf(slot)) continue;
        const Outcome again = read([&](ReadTransaction &transaction) { // it may have ended in good order since
            transaction.forEach(LiveKey::holds(), [&](const MDB_val &, const MDB_val &value) {
                const auto hold = recordIn<Hold>(value);
                const bool falls = hold && (hold->kind == HoldKind::Got || hold->kind == HoldKind::Browsed);
                if (falls && hold->slot == slot && !connectionOf(slot)) ++contents.heldForTheDead;
            });
            return success();
        });
        static_cast<void>(again);
    }
}

void Store::check(const std::filesystem::path &folder, LiveContents &contents, Findings &findings)
{
    std::shared_ptr<Store> store;
    {
        Process &process = thisProcess();
        const std::scoped_lock lock(process.mutex);
        // The one this process has open: the library allows no second.
        const auto known = process.stores.find(folder.string());
        if (known != process.stores.end() && known->second && known->second->control().state != State::Ended &&
            known->second->control_->isStillAt(folder / "live")) {
            store = known->second;
        } else {
            const auto [locks, error] = LockFile::open(folder / "locks");
            if (locks == nullptr) {
                findings.add("locks cannot be opened");
                return;
            }
            const HeldLock start(*locks, lockBytes::start);
            if (!start.held()) {
                findings.add("locks cannot be locked");
                return;
            }
            int fault = 0;
            auto control = ControlMapping::open(folder / "live", fault);
            const bool living = control && (*control)->state != State::Ended;
            if (fault != 0) findings.add(std::string("live/control cannot be read: ") + std::strerror(fault));
            if (living) {
                const Opened opened = openLife(folder, *locks, std::move(control), Damage::IsLookedAt);
                store = opened.store;
                if (opened.outcome.Reason == MQRC_UNEXPECTED_ERROR) {
                    const PagesVerdict pages = verifyPages(folder / "live" / "data.mdb");
                    findings.add(
                        "live: " +
                        (pages.damage.empty() ? std::string("its files were changed from outside") : pages.damage) +
                        ": the next connection makes it anew from log.db");
                } else if (opened.outcome.failed()) {
                    findings.add("live: it cannot be looked at now");
                }
            }
        }
    }
    if (store) store->checkRecords(contents, findings);
}

} // namespace mqrig::qmgr::store
