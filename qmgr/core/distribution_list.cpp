#include "qmgr/core/distribution_list.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "qmgr/core/distribution_header.h"
#include "qmgr/core/logical_order.h"
#include "qmgr/core/private_unit.h"

namespace mqrig::qmgr::core {
namespace {

constexpr store::OpenCounts oneOutput{.output = 1};

Outcome countOutput(store::Attachment &store, const objects::QueueDefinition &queue, const store::OpenCounts &change)
{
    return store.update(0, [&](store::WriteTransaction &transaction) {
        transaction.addOpens(queue.id, change);
        if (queue.objectId != queue.id) transaction.addOpens(queue.objectId, change);
        return success();
    });
}

void find(Connection &connection, Destination &destination)
{
    objects::FoundQueue found = connection.catalog.queue(destination.name, destination.queueManager);
    destination.outcome = found.outcome;
    if (!found.outcome.failed()) destination.hold = std::move(found.hold);
}

void openDestination(Connection &connection, Destination &destination)
{
    find(connection, destination);
    if (destination.outcome.failed()) return;
    // The destination has its queue only once the open is counted: closeList, which also cleans up after an exception,
    // counts down for every queue that it sees.
    objects::QueueHold hold = std::exchange(destination.hold, {});
    destination.outcome = countOutput(*connection.store, *hold.queue, oneOutput);
    if (!destination.outcome.failed()) destination.hold = std::move(hold);
}

// One put of a list, destination by destination.
class ListPut {
public:
    ListPut(Connection &connection, DistributionList &list, const PutRequest &request, const PutRecords &records,
            const store::NewMessage &message)
        : connection_(connection), list_(list), request_(request), records_(records), message_(message),
          header_(message.header), oneCorrelId_(request.has(MQPMO_NEW_CORREL_ID))
    {
        request_.options &= ~MQPMO_NEW_CORREL_ID; // it is made
    }

    void run(UnitOfWork *unit)
    {
        request_.unit = unit;
        done_.assign(list_.destinations.size(), false);
        for (std::size_t i = 0; i < list_.destinations.size(); ++i) {
            if (done_[i]) continue;
            Destination &destination = list_.destinations[i];
            if (destination.hold.queue == nullptr) {
                if (list_.opened) destination.outcome = failure(MQRC_OPEN_FAILED);
                continue;
            }
            destination.outcome = connection_.catalog.refresh(destination.hold);
            if (destination.outcome.failed()) continue;
            if (!putTogether(i)) putAlone(i);
        }
    }

    // The descriptor of the first destination that has the message.
    const MQMD &descriptor() const { return header_.md; }

private:
    store::NewMessage messageFor(std::size_t index) const
    {
        store::NewMessage own = message_;
        records_.load(index, own.header.md);
        if (oneCorrelId_) std::memcpy(own.header.md.CorrelId, message_.header.md.CorrelId, sizeof(MQBYTE24));
        return own;
    }

    void keepDescriptor(const MQMD &md)
    {
        if (!std::exchange(kept_, true)) header_.md = md;
    }

    void putAlone(std::size_t index)
    {
        Destination &destination = list_.destinations[index];
        store::NewMessage own = messageFor(index);
        PutRequest request = request_;
        if (request.logicalOrder != nullptr) request.logicalOrder = &destination.logicalOrder;
        destination.outcome = putMessage(connection_, *destination.hold.queue, request, own);
        if (destination.outcome.failed()) return;
        records_.store(index, own.header.md);
        keepDescriptor(own.header.md);
    }

    // With the destinations behind it that go the same way, as one message on their transmission queue. False: there
    // are none.
    bool putTogether(std::size_t index)
    {
        const objects::QueueDefinition &queue = *list_.destinations[index].hold.queue;
        if (!queue.remote || queue.distLists != MQDL_SUPPORTED || request_.has(MQPMO_LOGICAL_ORDER) ||
            (message_.header.md.MsgFlags & groupingFlags) != 0)
            return false;
        std::vector<std::size_t> together;
        for (std::size_t i = index; i < list_.destinations.size(); ++i)
            if (!done_[i] && goesTheSameWay(queue, list_.destinations[i])) together.push_back(i);
        if (together.size() < 2) return false;

        DistributionHeader header(records_.fields());
        std::vector<MQMD> descriptors;
        descriptors.reserve(together.size());
        for (const std::size_t i : together) {
            MQMD &md = descriptors.emplace_back(messageFor(i).header.md);
            makeMsgId(md);
            const objects::QueueDefinition &destination = *list_.destinations[i].hold.queue;
            header.add(destination.remoteQueue, destination.remoteQueueManager, md);
        }
        store::NewMessage shared = message_;
        std::memcpy(shared.header.md.MsgId, descriptors.front().MsgId, sizeof shared.header.md.MsgId);
        std::memcpy(shared.header.md.CorrelId, descriptors.front().CorrelId, sizeof shared.header.md.CorrelId);
        PutRequest request = request_;
        request.options &= ~MQPMO_NEW_MSG_ID;
        request.distribution = &header;
        request.logicalOrder = nullptr;
        const Outcome put = putMessage(connection_, queue, request, shared);
        for (std::size_t n = 0; n < together.size(); ++n) {
            done_[together[n]] = true;
            list_.destinations[together[n]].outcome = put;
            if (!put.failed()) records_.store(together[n], descriptors[n]);
        }
        if (!put.failed()) keepDescriptor(shared.header.md);
        return true;
    }

    void makeMsgId(MQMD &md) const
    {
        constexpr MQBYTE24 none = {MQMI_NONE_ARRAY};
        if (request_.has(MQPMO_NEW_MSG_ID) || std::memcmp(md.MsgId, none, sizeof none) == 0)
            connection_.newIdentifier(md.MsgId);
    }

    // Onto the same transmission queue, and nothing about the message itself depends on the name.
    bool goesTheSameWay(const objects::QueueDefinition &queue, Destination &other) const
    {
        if (other.hold.queue == nullptr || connection_.catalog.refresh(other.hold).failed()) return false;
        const objects::QueueDefinition &with = *other.hold.queue;
        return with.remote && with.id == queue.id && with.inhibitPut == queue.inhibitPut &&
               with.defPriority == queue.defPriority && with.defPersistence == queue.defPersistence;
    }

    Connection &connection_;
    DistributionList &list_;
    PutRequest request_;
    const PutRecords &records_;
    const store::NewMessage &message_;
    store::MessageHeader header_;
    bool oneCorrelId_; // the message's, whatever the records say
    std::vector<bool> done_;
    bool kept_ = false;
};

template <class Field>
void copyField(Field &to, const Field &from)
{
    std::memcpy(to, from, sizeof to);
}

} // namespace

Outcome combined(const DistributionList &list)
{
    const std::vector<Destination> &all = list.destinations;
    const Outcome &first = all.front().outcome;
    if (std::ranges::all_of(all, [&](const Destination &one) { return one.outcome == first; })) return first;
    const bool failed = std::ranges::all_of(all, [](const Destination &one) { return one.outcome.failed(); });
    return failed ? failure(MQRC_MULTIPLE_REASONS) : warning(MQRC_MULTIPLE_REASONS);
}

ListCounts countsOf(const DistributionList &list)
{
    ListCounts counts;
    for (const Destination &destination : list.destinations) {
        if (destination.outcome.failed() || destination.hold.queue == nullptr)
            ++counts.invalid;
        else if (destination.hold.queue->remote)
            ++counts.unknown;
        else
            ++counts.known;
    }
    return counts;
}

Outcome openList(Connection &connection, DistributionList &list, MQLONG options, MQHOBJ &hobj)
{
    if (const Outcome may = mayOpen(connection, options); may.failed()) return may;
    auto object = std::make_unique<OpenObject>();
    object->options = options;
    object->list = std::make_unique<DistributionList>();
    DistributionList &kept = *object->list;
    // The handle first: once the opens are counted in the store nothing may fail.
    const MQHOBJ added = connection.handles.add(std::move(object));
    if (added == MQHO_UNUSABLE_HOBJ) return failure(MQRC_HANDLE_NOT_AVAILABLE);
    try {
        for (Destination &destination : list.destinations)
            openDestination(connection, destination);
    } catch (...) {
        connection.handles.remove(added);
        (void)closeList(connection, list);
        throw;
    }
    const Outcome outcome = combined(list);
    if (outcome.failed()) {
        connection.handles.remove(added);
        return outcome;
    }
    kept = std::move(list);
    kept.opened = true;
    hobj = added;
    return outcome;
}

Outcome reopenList(Connection &connection, OpenObject &object)
{
    for (Destination &destination : object.list->destinations) {
        const bool wasOpen = destination.hold.queue != nullptr;
        destination.hold = {};
        openDestination(connection, destination);
        if (wasOpen && destination.outcome.failed()) return destination.outcome;
    }
    return success();
}

Outcome closeList(Connection &connection, const DistributionList &list)
{
    Outcome outcome;
    for (const Destination &destination : list.destinations) {
        if (destination.hold.queue == nullptr) continue;
        const Outcome counted = countOutput(*connection.store, *destination.hold.queue, -oneOutput);
        if (counted.failed()) outcome = counted;
    }
    return outcome;
}

void resolveList(Connection &connection, DistributionList &list)
{
    for (Destination &destination : list.destinations)
        find(connection, destination);
}

MQLONG checkPutToList(const DistributionList &list, const PutRequest &request, const PutRecords &records,
                      const MQMD &md)
{
    constexpr MQBYTE24 none = {MQGI_NONE_ARRAY};
    const bool ownIdentifiers = records.has(MQPMRF_GROUP_ID) && records.count() >= list.destinations.size();
    const bool sharesGroup = (md.MsgFlags & groupingFlags) != 0 && !request.has(MQPMO_LOGICAL_ORDER) &&
                             !ownIdentifiers && std::memcmp(md.GroupId, none, sizeof none) != 0;
    return sharesGroup ? MQRC_GROUP_ID_ERROR : MQRC_NONE;
}

Outcome putToList(Connection &connection, DistributionList &list, const PutRequest &request, const PutRecords &records,
                  store::NewMessage &message)
{
    if (request.has(MQPMO_NEW_CORREL_ID)) connection.newIdentifier(message.header.md.CorrelId);
    ListPut put(connection, list, request, records, message);
    if (request.has(MQPMO_SYNCPOINT)) {
        put.run(nullptr);
    } else {
        PrivateUnit unit(connection);
        put.run(&*unit);
        if (const Outcome committed = unit.commit(); committed.failed())
            for (Destination &destination : list.destinations)
                if (!destination.outcome.failed()) destination.outcome = committed;
    }
    MQMD md = put.descriptor();
    copyField(md.MsgId, message.header.md.MsgId);
    copyField(md.CorrelId, message.header.md.CorrelId);
    copyField(md.GroupId, message.header.md.GroupId);
    message.header.md = md;
    return combined(list);
}

} // namespace mqrig::qmgr::core
