#include "qmgr/core/unit_of_work.h"

#include <algorithm>
#include <cstring>

#include "qmgr/core/connection.h"
#include "qmgr/core/reconnect.h"
#include "qmgr/core/trigger.h"
#include "qmgr/store/with_memory.h"

namespace mqrig::qmgr::core {
namespace {

constexpr std::size_t blockSize = 262144;
// Lists that grew beyond this for one large unit are given back with it.
constexpr std::size_t keptMessages = 1024;

template <class List>
void emptyList(List &list)
{
    if (list.capacity() > keptMessages)
        list = List();
    else
        list.clear();
}

// The end of a unit of work that could not be made, not even as a backout: all of it is still held. It can only be
// backed out, when what was lacking is there again.
bool isWhole(const Outcome &ended)
{
    return ended.failed() && ended.Reason != MQRC_CONNECTION_BROKEN;
}

} // namespace

std::span<const std::byte> BodyMemory::copy(std::span<const std::byte> body)
{
    if (body.empty()) return {};
    if (blocks_.empty() || blocks_.back().size - used_ < body.size()) {
        const std::size_t size = std::max(blockSize, body.size());
        blocks_.push_back({std::make_unique_for_overwrite<std::byte[]>(size), size});
        used_ = 0;
    }
    std::byte *place = blocks_.back().bytes.get() + used_;
    std::memcpy(place, body.data(), body.size());
    used_ += body.size();
    return {place, body.size()};
}

void BodyMemory::clear()
{
    const auto ordinary =
        std::find_if(blocks_.begin(), blocks_.end(), [](const Block &block) { return block.size == blockSize; });
    if (ordinary == blocks_.end()) {
        blocks_.clear();
    } else {
        std::iter_swap(blocks_.begin(), ordinary);
        blocks_.resize(1);
    }
    used_ = 0;
}

DepthTriggerBooking::~DepthTriggerBooking()
{
    if (store_ == nullptr) return;
    try {
        (void)store_->update(0, [this](store::WriteTransaction &transaction) {
            transaction.unbookDepthTrigger(queue_);
            return success();
        });
    } catch (...) { // NOLINT(bugprone-empty-catch): for want of memory it stays booked until the connection ends
    }
}

void UnitOfWork::keepPut(const store::NewMessage &message)
{
    puts_.push_back(message);
    try {
        puts_.back().body = bodies_.copy(message.body);
    } catch (...) {
        puts_.pop_back();
        throw;
    }
}

void UnitOfWork::takeBackPuts(store::Attachment &store, std::size_t kept)
{
    if (puts_.size() == kept) return;
    mqrig::qmgr::store::giveBack([&] {
        return store.backOut({std::span<const store::NewMessage>(puts_).subspan(kept), {}});
    });
    while (puts_.size() > kept)
        dropLastPut();
    std::erase_if(triggers_, [kept](const UnitTrigger &trigger) { return trigger.put >= kept; });
}

bool UnitOfWork::hasTriggerOf(store::QueueId queue, MQLONG triggerType) const
{
    return std::any_of(triggers_.begin(), triggers_.end(), [&](const UnitTrigger &trigger) {
        return trigger.queue.queue->id == queue && trigger.queue.queue->triggerType == triggerType;
    });
}

void UnitOfWork::roomForGet(std::size_t number)
{
    const std::size_t wanted = gets_.size() + number;
    if (wanted > gets_.capacity()) gets_.reserve(std::max<std::size_t>({16, gets_.capacity() * 2, wanted}));
}

void UnitOfWork::clear()
{
    triggers_.clear();
    emptyList(puts_);
    emptyList(gets_);
    bodies_.clear();
    lost_ = false;
    doomed_ = false;
}

void UnitOfWork::lose()
{
    const bool lost = lost_ || !empty();
    clear();
    lost_ = lost;
}

Outcome commit(Connection &connection)
{
    connection.begun = false;
    if (connection.unit.lost()) {
        connection.unit.clear();
        return warning(MQRC_BACKED_OUT);
    }
    if (connection.unit.doomed()) {
        const Outcome backedOut = backOut(connection);
        return backedOut.failed() ? backedOut : warning(MQRC_BACKED_OUT);
    }
    if (connection.unit.empty()) return success();
    const Outcome outcome = connection.store->commit(connection.unit.content());
    if (isWhole(outcome)) {
        connection.unit.doom();
        return outcome;
    }
    if (outcome.Reason == MQRC_BACKED_OUT)
        triggersBackedOut(connection, connection.unit);
    else
        triggersCommitted(connection, connection.unit);
    connection.unit.clear();
    return isInterrupted(connection, outcome) ? warning(MQRC_BACKED_OUT) : outcome;
}

Outcome backOut(Connection &connection)
{
    connection.begun = false;
    if (connection.unit.empty()) {
        connection.unit.clear();
        return success();
    }
    const Outcome outcome = connection.store->backOut(connection.unit.content());
    if (isWhole(outcome)) {
        connection.unit.doom();
        return outcome;
    }
    triggersBackedOut(connection, connection.unit);
    connection.unit.clear();
    return isInterrupted(connection, outcome) ? success() : outcome;
}

} // namespace mqrig::qmgr::core
