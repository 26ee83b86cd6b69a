// The beginning of a life: a fresh folder of live state, filled from the log.
//
// The start-up lock is held. No other life can write to the log any more: its generation is raised before anything
// else happens, and every transaction of a life checks it. The new life is nobody's until it is declared ready; a
// process killed before that leaves a folder that fits nothing, and the next one begins again.

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "qmgr/store/seams.h"
#include "qmgr/store/store.h"
#include "qmgr/store/system_error.h"

#include <sys/stat.h>

namespace mqrig::qmgr::store {

namespace {

// Numbers that one life may use up: at a million messages a second, twelve days; then they run ahead of the clock.
constexpr std::uint64_t numbersOfOneLife = std::uint64_t{1} << 40;

} // namespace

Store::Opened Store::beginLife(const std::filesystem::path &folder, LockFile &locks, LogDatabase &log)
{
    const std::filesystem::path live = folder / "live";
    std::error_code error;
    std::filesystem::remove_all(live, error);
    if (error) return {outcomeOfSystem(error.value()), nullptr};
    if (mkdir(live.c_str(), 0700) != 0) return {outcomeOfSystem(errno), nullptr};

    const auto row = log.queueManager();
    if (row.outcome.failed()) return {row.outcome, nullptr};
    // Message numbers and ids never come twice, whatever the clock does: they follow it, and never fall behind what
    // earlier lives can have used.
    const std::uint64_t highest = log.highestSequence();
    if (log.stepsOutcome().failed()) return {log.stepsOutcome(), nullptr};
    const std::uint64_t base =
        std::max({static_cast<std::uint64_t>(currentTime()) << 8, row.sequenceBase + numbersOfOneLife, highest + 1});
    const std::uint64_t generation = row.generation + 1;
    log.settle();
    if (const Outcome begun = log.begin(); begun.failed()) return {begun, nullptr};
    log.beginLife(generation, base);
    if (const Outcome committed = log.commit(); committed.failed()) return {committed, nullptr};
    reached(Step::LifeBegun);

    int fault = 0;
    auto control = ControlMapping::create(live, generation, fault);
    if (!control) return {outcomeOfSystem(fault), nullptr};
    (*control)->sequence = base;
    Opened opened = openLife(folder, locks, std::move(control));
    if (opened.outcome.failed()) return opened;
    Store &store = *opened.store;
    if (const Outcome filled = store.fill(log); filled.failed()) return {filled, nullptr};
    if (const Outcome begun = log.begin(); begun.failed()) return {begun, nullptr};
    log.setState(generation, State::Running);
    if (const Outcome committed = log.commit(); committed.failed()) return {committed, nullptr};
    reached(Step::LiveRebuilt);
    store.control().state = State::Running;
    if (!store.control_->declareReady(live)) return {failure(MQRC_UNEXPECTED_ERROR), nullptr};
    return opened;
}

// Copies definitions and messages from the log into the empty live state, some thousands to a transaction.
Outcome Store::fill(LogDatabase &log)
{
    std::vector<Definition> definitions;
    Outcome outcome = log.forEachDefinition([&](const Definition &definition) {
        definitions.push_back(definition);
        return true;
    });
    if (outcome.failed()) return outcome;
    outcome = update(1, 0, [&](WriteTransaction &transaction) {
        for (const Definition &definition : definitions)
            putDefinition(transaction, definition);
        return success();
    });
    if (outcome.failed()) return outcome;

    // A message is copied when it comes: its views end with the next step of the walk.
    constexpr std::size_t bytesAtOnce = std::size_t{4} << 20;
    struct Copy {
        MessageKey key;
        MessageHeader header;
        std::vector<std::byte> body;
    };
    std::vector<Copy> batch;
    std::size_t bytes = 0;
    const auto store = [&] {
        return update(bytes, 0, [&](WriteTransaction &transaction) {
            for (const Copy &copy : batch) {
                transaction.insertMessage({copy.key, copy.header, copy.body});
                transaction.counters(copy.key.queue).addToDepth();
            }
            return success();
        });
    };
    Outcome stored;
    outcome =
        log.forEachMessage([&](const MessageKey &key, const MessageHeader &header, std::span<const std::byte> body) {
            batch.push_back({key, header, {body.begin(), body.end()}});
            bytes += body.size() + sizeof(MessageHeader);
            if (bytes < bytesAtOnce) return true;
            stored = store();
            reached(Step::LiveFilling);
            batch.clear();
            bytes = 0;
            return !stored.failed();
        });
    if (outcome.failed()) return outcome;
    return stored.failed() ? stored : store();
}

} // namespace mqrig::qmgr::store
