#include "qmgr/core/retained.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <optional>
#include <span>

#include "qmgr/core/private_unit.h"
#include "qmgr/core/publication.h"
#include "qmgr/core/system_object.h"
#include "qmgr/core/system_put.h"
#include "qmgr/objects/subscription.h"
#include "qmgr/objects/system_objects.h"
#include "qmgr/properties/record.h"
#include "qmgr/store/seams.h"

namespace mqrig::qmgr::core {
namespace {

// A publication that was retained comes at the lowest level of all.
constexpr MQLONG retainedLevel = 1;

// What the digest of the topic has taken the place of, and what is no matter of the retained queue.
struct Kept {
    MQBYTE24 CorrelId;
    MQLONG Report;
};
static_assert(sizeof(Kept) <= sizeof(store::MessageHeader::spare));

bool isOver(const store::MessageHeader &header, std::int64_t now)
{
    return header.expiryDeadline != 0 && header.expiryDeadline <= now;
}

std::string topicAt(store::MessageCursor &cursor)
{
    const std::size_t properties = cursor.header().coreLength;
    const std::span<const std::byte> stored = cursor.body();
    return properties::textIn(stored.first(std::min(properties, stored.size())), "mqps.Top");
}

// The messages under the cursor whose topic matches, by topic.
using ByTopic = std::map<std::string, std::vector<store::MessageKey>>;
void collect(store::MessageCursor &cursor, const objects::TopicPattern &pattern, ByTopic &found)
{
    for (bool more = cursor.first(); more; more = cursor.next()) {
        std::string topic = topicAt(cursor);
        if (pattern.matches(topic)) found[std::move(topic)].push_back(cursor.key());
    }
}

Outcome search(store::Attachment &attachment, store::QueueId queue, const objects::TopicPattern &pattern,
               ByTopic &found)
{
    return attachment.read([&](store::ReadTransaction &transaction) {
        found.clear();
        if (pattern.hasWildcards()) {
            store::MessageCursor cursor(transaction, queue);
            collect(cursor, pattern, found);
        } else {
            const objects::Identifier24 digest = objects::digestOf(pattern.topic());
            store::MessageCursor cursor(transaction, queue, store::Index::CorrelId, store::MessageId(digest));
            collect(cursor, pattern, found);
        }
        // Put last, counts first.
        for (auto &[topic, keys] : found)
            std::ranges::sort(keys, std::ranges::greater{}, &store::MessageKey::sequence);
        return success();
    });
}

objects::TopicPattern patternOf(std::string_view topic)
{
    // Never fails: a topic that is published on has '+' and '#' as plain characters. The scheme without escapes would
    // take them for wildcards, so they are looked for as characters.
    std::string escaped;
    for (const char c : topic) {
        if (c == '*' || c == '?' || c == '%') escaped += '%';
        escaped += c;
    }
    return *objects::TopicPattern::parse(escaped, objects::WildcardScheme::Characters);
}

// Locks what the new publication follows, in its unit. A persistent one may not outlive a newer one in a restart.
Outcome removeFormer(Connection &connection, UnitOfWork &unit, std::vector<store::MessageKey> former, bool persistent)
{
    if (former.empty()) return success();
    unit.roomForGet(former.size());
    std::vector<store::TakenMessage> taken;
    const Outcome locked = connection.store->update(0, [&](store::WriteTransaction &transaction) {
        taken.clear();
        for (const store::MessageKey &key : former) {
            const auto header = transaction.find(key);
            if (!header) continue;
            const bool latest = key == former.front();
            if (latest && (persistent || !store::isPersistent(*header))) continue;
            transaction.lock(key);
            taken.push_back({key, store::isPersistent(*header)});
        }
        return success();
    });
    if (locked.failed()) return locked;
    for (const store::TakenMessage &message : taken)
        unit.addGet(message);
    return locked;
}

// One that is stored, as a message that is published again.
struct Stored {
    store::NewMessage message;
    std::vector<std::byte> bytes;
};
std::optional<Stored> readStored(store::Attachment &attachment, const store::MessageKey &key, Outcome &outcome)
{
    std::optional<Stored> stored;
    outcome = attachment.read([&](store::ReadTransaction &transaction) {
        stored.reset();
        const auto header = transaction.find(key);
        if (!header || isOver(*header, store::currentTime())) return success();
        const std::span<const std::byte> body = transaction.body(key);
        stored.emplace();
        stored->message.header = *header;
        stored->bytes.assign(body.begin(), body.end());
        return success();
    });
    if (!stored) return stored;
    store::MessageHeader &header = stored->message.header;
    Kept kept;
    std::memcpy(&kept, header.spare.data(), sizeof kept);
    header.spare = {};
    std::memcpy(header.md.CorrelId, kept.CorrelId, sizeof header.md.CorrelId);
    header.md.Report = kept.Report;
    if (header.expiryDeadline != 0) {
        constexpr std::int64_t tenth = 100000;
        const std::int64_t left = (header.expiryDeadline - store::currentTime()) / tenth;
        header.md.Expiry = static_cast<MQLONG>(std::max<std::int64_t>(1, left));
    }
    stored->message.body = stored->bytes;
    return stored;
}

} // namespace

Outcome retain(Connection &connection, UnitOfWork &unit, const std::string &topic, const store::NewMessage &message)
{
    const objects::FoundQueue queue = findSystemQueue(connection, objects::retainedQueue);
    if (queue.outcome.failed()) return isOfStore(queue.outcome) ? queue.outcome : failure(MQRC_PUT_NOT_RETAINED);
    const store::QueueId id = queue.hold.queue->id;
    ByTopic former;
    if (const Outcome found = search(*connection.store, id, patternOf(topic), former); found.failed()) return found;

    store::NewMessage kept = message;
    MQMD &md = kept.header.md;
    Kept aside{};
    std::memcpy(aside.CorrelId, md.CorrelId, sizeof aside.CorrelId);
    aside.Report = std::exchange(md.Report, MQRO_NONE);
    std::memcpy(kept.header.spare.data(), &aside, sizeof aside);
    const objects::Identifier24 digest = objects::digestOf(topic);
    std::memcpy(md.CorrelId, digest.data(), sizeof md.CorrelId);
    const Outcome put = putByQueueManager(connection, unit, queue.hold, kept);
    if (put.failed()) return isOfStore(put) ? put : failure(MQRC_PUT_NOT_RETAINED);
    return removeFormer(connection, unit, former[topic], store::isPersistent(kept.header));
}

Outcome sendRetained(Connection &connection, Subscriber &subscriber, MQLONG &number)
{
    number = 0;
    if (subscriber.subscription.level > retainedLevel) return success();
    const objects::FoundQueue queue = findSystemQueue(connection, objects::retainedQueue);
    if (queue.outcome.failed()) return isOfStore(queue.outcome) ? queue.outcome : failure(MQRC_RETAINED_MSG_Q_ERROR);
    ByTopic found;
    const Outcome searched = search(*connection.store, queue.hold.queue->id, subscriber.pattern, found);
    if (searched.failed()) return searched;

    MQLONG sent = 0;
    PrivateUnit unit(connection);
    for (const auto &[topic, keys] : found) {
        if (!connection.catalog.topics()->attributesOf(topic).reachedBy(subscriber.pattern)) continue;
        Outcome read;
        const auto stored = readStored(*connection.store, keys.front(), read);
        if (read.failed()) return read;
        if (!stored) continue;
        const store::NewMessage &message = stored->message;
        if (subscriber.selector != nullptr && !subscriber.selector->matches(message.header, message.body)) continue;
        const Publication publication(message, topic, Retained::Yes);
        Outcome put = publication.putFor(connection, *unit, subscriber);
        if (put.failed() && !isOfStore(put))
            put = publication.putOnDeadLetterQueueFor(connection, *unit, subscriber, put.Reason);
        if (put.failed()) return isOfStore(put) ? put : failure(MQRC_RETAINED_NOT_DELIVERED);
        ++sent;
    }
    const Outcome committed = unit.commit();
    if (!committed.failed()) number = sent;
    return committed;
}

} // namespace mqrig::qmgr::core
