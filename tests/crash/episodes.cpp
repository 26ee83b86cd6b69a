#include <csignal>
#include <fcntl.h>
#include <unistd.h>

#include "harness.h"
#include "qmgr/objects/system_objects.h"
#include "qmgr/store/control_block.h"
#include "qmgr/store/queue_managers.h"

namespace mqrig::crash {

namespace {

using std::chrono::milliseconds;
using namespace qmgr;

// Who passes the step in its everyday work.
std::optional<Role> passerOf(Step step, std::uint32_t any)
{
    constexpr std::array committers{Role::Putter, Role::Mover, Role::Getter, Role::GroupPutter};
    constexpr std::array returners{Role::Mover, Role::Getter, Role::Putter, Role::GroupGetter};
    switch (step) {
    case Step::SlotTaken:
    case Step::SlotCleaning:
    case Step::SlotCleaned:
        return Role::Connector;
    case Step::UnitPreparing:
    case Step::UnitPrepared:
    case Step::UnitLogging:
    case Step::UnitLogged:
    case Step::UnitFlipping:
    case Step::UnitFlipped:
        return committers.at(any % committers.size());
    case Step::UnitUndoing:
        return Role::Putter;
    case Step::UnitReturning:
    case Step::UnitReturned:
        return returners.at(any % returners.size());
    case Step::DefinitionLogged:
    case Step::QueueMarked:
    case Step::QueueSweeping:
        return Role::Definer;
    case Step::TemporaryRemoving:
        return Role::Dynamic;
    case Step::RequestTaken:
    case Step::RequestRun:
    case Step::RequestAnswered:
    case Step::RequestsLookedFor:
        return Role::Requester;
    default:
        return std::nullopt;
    }
}

constexpr milliseconds limitOfDeath{400};

} // namespace

void Harness::countKill(std::optional<Step> step)
{
    figures_.kills += 1;
    figures_.programs += 1;
    (step ? figures_.atStep.at(static_cast<std::size_t>(*step)) : figures_.atRandom) += 1;
}

bool Harness::run()
{
    while (figures_.kills < plan_.kills && sound())
        episode();
    if (!sound()) return false;
    doing_ = "at the end";
    board_->diskFull = 0;
    restart(0);
    return sound();
}

// One or more kills. All steps take their turn; between them there are kills at random moments and the rarer cases.
void Harness::episode()
{
    const int turn = episodes_++;
    fillCrew();
    if (turn % 8 == 5) {
        doing_ = "two in a row";
        killCleaner();
    } else if (turn % 16 == 3) {
        doing_ = "log holder and its successor";
        killSuccessorOfLogHolder();
    } else if (turn % 32 == 10) {
        doing_ = "prepared, all others asleep";
        leavePreparedToSleeper();
    } else if (turn % 16 == 2) {
        doing_ = "putting, all others asleep";
        killBesideSleeper();
    } else if (turn % 32 == 7) {
        doing_ = "all at once";
        killAll();
    } else if (turn % 16 == 14) {
        restart(static_cast<int>(below(3)));
    } else if (turn % 3 == 0) {
        doing_ = "at a random moment";
        killAtRandom();
    } else {
        killAtStep(rarestStep());
    }
}

// The step at which the fewest have died yet; one that is hard to meet does not keep the others waiting.
Step Harness::rarestStep()
{
    if (plan_.step && below(4) != 0) return *plan_.step;
    std::size_t rarest = 0;
    const auto weight = [&](std::size_t step) { return 2 * figures_.atStep.at(step) + attempts_.at(step); };
    const std::size_t first = below(static_cast<std::uint32_t>(Step::steps));
    for (std::size_t n = 0; n < attempts_.size(); ++n) {
        const std::size_t step = (first + n) % attempts_.size();
        if (n == 0 || weight(step) < weight(rarest)) rarest = step;
    }
    attempts_.at(rarest) += 1;
    return static_cast<Step>(rarest);
}

void Harness::killAtRandom()
{
    usleep(below(6000));
    if (crew_.empty()) return;
    Member &victim = *crew_.at(below(static_cast<std::uint32_t>(crew_.size())));
    kill(victim.pid, SIGKILL);
    countKill(std::nullopt);
    bury(victim);
    seeSurvivorsGoOn();
    if (sound()) inspectAll();
}

void Harness::killAtStep(Step step)
{
    doing_ = std::string("at ") + stepNames.at(static_cast<std::size_t>(step));
    const auto role = passerOf(step, below(1000));
    if (!role) {
        switch (step) {
        case Step::CreateWritten:
            return killCreator();
        case Step::LogTakenOver:
            return killSuccessorOfLogHolder();
        case Step::MapReserved:
        case Step::MapPublished:
            return killGrowers(step);
        default:
            return restartKilledAt(step);
        }
    }
    // Others would serve its requests before it does.
    const bool alone = *role == Role::Requester;
    if (alone) pause();
    if (!sound()) return;
    Member &victim = start({.role = *role,
                            .death = Death{step, alone ? 1 : 1 + below(4)},
                            .diskFullAtTimes = step == Step::UnitUndoing,
                            .goesOnInPauses = alone});
    const bool byItself = awaitDeath(victim, limitOfDeath);
    if (!byItself) kill(victim.pid, SIGKILL);
    countKill(byItself ? std::optional(step) : std::nullopt);
    bury(victim);
    if (alone) resume();
    seeSurvivorsGoOn();
    if (sound()) inspectAll();
    board_->diskFull = 0;
}

// One dies in its work, the next while it cleans up behind the first.
void Harness::killCleaner()
{
    pause();
    if (!sound()) return;
    constexpr std::array inWork{Step::UnitPreparing, Step::UnitReturning, Step::UnitPrepared, Step::TemporaryRemoving};
    const Step step = inWork.at(below(inWork.size()));
    Member &first = start({.role = *passerOf(step, below(1000)), .death = Death{step, 1}, .goesOnInPauses = true});
    const bool firstAtStep = awaitDeath(first, limitOfDeath);
    if (!firstAtStep) kill(first.pid, SIGKILL);
    countKill(firstAtStep ? std::optional(step) : std::nullopt);
    bury(first);
    constexpr std::array cleaning{Step::SlotCleaning, Step::SlotCleaned, Step::TemporaryRemoving, Step::UnitLogged};
    const Step second = cleaning.at(below(cleaning.size()));
    Member &cleaner = start({.role = Role::Connector, .death = Death{second, 1}, .goesOnInPauses = true});
    const bool atStep = awaitDeath(cleaner, milliseconds(30));
    if (!atStep) kill(cleaner.pid, SIGKILL);
    countKill(atStep ? std::optional(second) : std::nullopt);
    bury(cleaner);
    resume();
    seeSurvivorsGoOn();
    if (sound()) inspectAll();
}

void Harness::killSuccessorOfLogHolder()
{
    pause();
    if (!sound()) return;
    constexpr std::array holding{Step::UnitLogging, Step::UnitLogged, Step::UnitFlipping, Step::UnitFlipped};
    const Step step = holding.at(below(holding.size()));
    for (const Step each : {step, Step::LogTakenOver}) {
        Member &victim = start({.role = Role::Putter, .death = Death{each, 1}, .goesOnInPauses = true});
        const bool atStep = awaitDeath(victim, limitOfDeath);
        if (!atStep) kill(victim.pid, SIGKILL);
        countKill(atStep ? std::optional(each) : std::nullopt);
        bury(victim);
    }
    resume();
    seeSurvivorsGoOn();
    if (sound()) inspectAll();
}

// A message is prepared, its owner dies, and the only one left is a getter that sleeps: it finds the message.
void Harness::leavePreparedToSleeper()
{
    inspectAll();
    if (!sound()) return;
    pause();
    Member *waiter = anyOf(Role::Waiter);
    if (!sound() || waiter == nullptr) return resume();
    const std::uint64_t before = board_->posts.at(waiter->post).calls;
    Member &victim = start(
        {.role = Role::Putter, .death = Death{Step::UnitPrepared, 1}, .only = Queue::Wait, .goesOnInPauses = true});
    const bool atStep = awaitDeath(victim, limitOfDeath);
    if (!atStep) kill(victim.pid, SIGKILL);
    countKill(atStep ? std::optional(Step::UnitPrepared) : std::nullopt);
    bury(victim);
    const auto until = std::chrono::steady_clock::now() + patience;
    while (atStep && board_->posts.at(waiter->post).calls == before) {
        if (std::chrono::steady_clock::now() > until)
            return fault("a sleeping getter does not find what a killed process had prepared");
        usleep(500);
    }
    resume();
    inspectAll();
}

// One dies when its message can just be seen, or nearly, and the next to come cleans up behind it, before the getter
// that sleeps would do so itself.
void Harness::killBesideSleeper()
{
    pause();
    if (!sound()) return;
    const bool persistent = below(2) == 0;
    const Step step = plan_.step.value_or(Step::UnitFlipped);
    Member &victim = start({.role = Role::Putter,
                            .death = Death{step, persistent ? 2U : 1U},
                            .only = Queue::Wait,
                            .onlyPersistent = persistent,
                            .goesOnInPauses = true});
    const bool atStep = awaitDeath(victim, milliseconds(50));
    if (!atStep) kill(victim.pid, SIGKILL);
    countKill(atStep ? std::optional(step) : std::nullopt);
    bury(victim);
    inspectAll();
}

void Harness::killAll()
{
    usleep(below(8000));
    killCrew();
    inspectAll();
}

void Harness::killCreator()
{
    const auto create = [&] {
        const auto definitions = objects::systemObjects("SECOND");
        return store::createQueueManager(folder_, "SECOND", definitions, store::DefaultQueueManager::No).failed() ? 1
                                                                                                                  : 0;
    };
    const int end = runProcess([&] {
        armDeath({Step::CreateWritten, 1});
        return create();
    });
    if (end != -SIGKILL) return fault("creating does not pass its step");
    countKill(Step::CreateWritten);
    const int again = runProcess([&] {
        if (store::listQueueManagers(folder_).size() != 1) return 1;
        if (create() != 0) return 2;
        if (store::endQueueManager(folder_, "SECOND", store::End::Immediate).failed()) return 3;
        return store::deleteQueueManager(folder_, "SECOND").failed() ? 4 : 0;
    });
    if (again != 0) fault("after a killed create: " + std::to_string(again));
}

namespace {

enum Way { quiesced, immediately, byBoot };

// Makes the live state look as if it had been left by an earlier boot.
void looksLikeEarlierBoot(const std::filesystem::path &folder)
{
    const int fd = open((folder / "live" / "control").c_str(), O_RDWR | O_CLOEXEC);
    if (fd < 0) return;
    const std::array<char, 8> other{"another"};
    if (pwrite(fd, other.data(), other.size(), offsetof(store::LifeStamp, bootId)) < 0) abort();
    close(fd);
}

int startAgain(const std::filesystem::path &folder, int way)
{
    if (way == byBoot) return store::attach(folder, queueManager).outcome.Reason;
    const Outcome started = store::startQueueManager(folder, queueManager);
    // A killed start may have come so far that the first connection does the rest.
    if (started.Reason == MQRC_Q_MGR_ACTIVE) return store::attach(folder, queueManager).outcome.Reason;
    return started.Reason;
}

int endOnce(const std::filesystem::path &folder, store::End how)
{
    const Outcome ended = store::endQueueManager(folder, queueManager, how);
    return ended.Reason == MQRC_Q_MGR_NOT_ACTIVE ? 0 : ended.Reason == 0 ? 0 : 1;
}

} // namespace

void Harness::started(int way, std::optional<Step> step)
{
    if (step) {
        const int end = runProcess([&] {
            armDeath({*step, 1});
            return startAgain(folder_, way) == 0 ? 0 : 1;
        });
        if (end == -SIGKILL) countKill(step);
        if (end > 0 || (end < 0 && end != -SIGKILL)) return fault("starting ended with " + std::to_string(end));
        if (end == 0) return;
    }
    if (const int end = runProcess([&] { return startAgain(folder_, way) == 0 ? 0 : 1; }); end != 0)
        fault("starting again ended with " + std::to_string(end));
}

void Harness::restart(int how)
{
    constexpr std::array names{"quiesced", "ended immediately", "booted"};
    doing_ = names.at(static_cast<std::size_t>(how));
    figures_.restarts += 1;
    if (how == quiesced) {
        board_->stop = 1;
        const int end = runProcess([&] { return endOnce(folder_, store::End::Quiesce); });
        if (end != 0) fault("ending answered " + std::to_string(end));
        awaitEnds();
        // Who ends without MQDISC is found dead by this look, and the end is complete.
        if (runProcess([&] { return store::stateOf(folder_, queueManager).state == store::State::Ended ? 0 : 1; }) != 0)
            fault("the queue manager has not ended");
    } else if (how == immediately) {
        usleep(below(5000));
        const int end = runProcess([&] { return endOnce(folder_, store::End::Immediate); });
        if (end != 0) fault("ending answered " + std::to_string(end));
        awaitEnds();
    } else {
        killCrew();
        looksLikeEarlierBoot(folder_ / queueManager);
    }
    board_->stop = 0;
    if (!sound()) return;
    model_.restarted(how == quiesced);
    started(how, std::nullopt);
    if (sound()) inspectAll();
}

// A start, or the end before it, is killed at the step; another one does it.
void Harness::restartKilledAt(Step step)
{
    figures_.restarts += 1;
    const int way = below(2) == 0 ? immediately : byBoot;
    if (step == Step::EndLogged) {
        const int end = runProcess([&] {
            armDeath({step, 1});
            return endOnce(folder_, store::End::Immediate);
        });
        if (end != -SIGKILL) return fault("ending does not pass its step");
        countKill(step);
    }
    if (step == Step::LiveFilling) { // so many bytes that filling takes several transactions
        Member &filler = start({.role = Role::Filler, .only = Queue::Filled});
        const auto until = std::chrono::steady_clock::now() + patience;
        while (board_->posts.at(filler.post).calls < 4 && std::chrono::steady_clock::now() < until)
            usleep(200);
    }
    if (way == byBoot && step != Step::EndLogged) {
        killCrew();
        looksLikeEarlierBoot(folder_ / queueManager);
    } else {
        if (runProcess([&] { return endOnce(folder_, store::End::Immediate); }) != 0) fault("ending failed");
        awaitEnds();
    }
    if (!sound()) return;
    model_.restarted(false);
    started(step == Step::EndLogged ? int{immediately} : way,
            step == Step::EndLogged ? std::nullopt : std::optional(step));
    if (sound()) inspectAll();
}

// A fresh life grows soon, and grows again: the next to make it grow dies too. Some of them find no space for it.
void Harness::killGrowers(Step step)
{
    restart(byBoot);
    doing_ = std::string("at ") + stepNames.at(static_cast<std::size_t>(step));
    fillCrew();
    for (int growths = 0; growths < 3 && sound(); ++growths) {
        Member &victim =
            start({.role = Role::Filler, .death = Death{step, 1 + below(2)}, .diskFullAtTimes = below(3) == 0});
        const bool byItself = awaitDeath(victim, 3 * limitOfDeath);
        if (!byItself) kill(victim.pid, SIGKILL);
        countKill(byItself ? std::optional(step) : std::nullopt);
        bury(victim);
        seeSurvivorsGoOn();
    }
    if (sound()) inspectAll();
    board_->diskFull = 0;
}

} // namespace mqrig::crash
