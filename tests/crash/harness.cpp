#include "harness.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <new>
#include <stdexcept>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include "qmgr/objects/object_definition.h"
#include "qmgr/objects/system_objects.h"
#include "qmgr/store/queue_managers.h"

namespace mqrig::crash {

namespace {

using Clock = std::chrono::steady_clock;

int createQueueManagerIn(const std::filesystem::path &folder)
{
    using namespace qmgr;
    std::vector<store::Definition> definitions = objects::systemObjects(queueManager);
    for (const char *name : queueNames) {
        if (std::string_view(name).starts_with("SYSTEM.")) continue;
        objects::ObjectDefinition queue(objects::ObjectKind::LocalQueue, name);
        queue.set(MQIA_MAX_Q_DEPTH, std::string_view(name) == nameOf(Queue::Replies) ? 100'000 : 60);
        store::Definition definition;
        definition.type = MQOT_Q;
        definition.name = name;
        definition.bytes = queue.encode();
        definitions.push_back(definition);
    }
    return store::createQueueManager(folder, queueManager, definitions, store::DefaultQueueManager::Yes).failed() ? 1
                                                                                                                  : 0;
}

// Ended, and not yet waited for.
bool hasEnded(pid_t process)
{
    siginfo_t info{};
    return waitid(P_PID, static_cast<id_t>(process), &info, WEXITED | WNOHANG | WNOWAIT) == 0 && info.si_pid != 0;
}

} // namespace

Harness::Harness(const Plan &plan) : plan_(plan), random_(plan.seed)
{
    std::string folder = (std::filesystem::temp_directory_path() / "mqrig-crash-XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr) throw std::runtime_error("mkdtemp");
    folder_ = folder;
    setenv("MQRIG_STORE", folder.c_str(), 1); // NOLINT(concurrency-mt-unsafe): one thread
    void *shared = mmap(nullptr, sizeof(Board), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (shared == MAP_FAILED) throw std::bad_alloc();
    board_ = new (shared) Board{};
    if (runProcess([&] { return createQueueManagerIn(folder_); }) != 0) fault("creating the queue manager failed");
}

Harness::~Harness()
{
    for (const auto &member : crew_) {
        kill(member->pid, SIGKILL);
        waitpid(member->pid, nullptr, 0);
    }
    munmap(board_, sizeof(Board));
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

void Harness::fault(const std::string &text)
{
    faults_.push_back(text + " [kill " + std::to_string(figures_.kills) + ", " + doing_ + "]");
}

Harness::Member &Harness::start(Assignment assignment)
{
    auto member = std::make_unique<Member>();
    assignment.number = ++workers_;
    member->assignment = assignment;
    while (std::ranges::any_of(crew_, [&](const auto &other) { return other->post == member->post; }))
        member->post += 1;
    Post &post = board_->posts.at(member->post);
    post.clear();
    if (assignment.diskFullAtTimes) board_->diskFull = 1;
    member->pid = startProcess([&]() -> int { work(assignment, folder_, *board_, post, member->journal); });
    crew_.push_back(std::move(member));
    return *crew_.back();
}

Harness::Member *Harness::anyOf(Role role)
{
    const auto found = std::ranges::find_if(crew_, [&](const auto &each) { return each->assignment.role == role; });
    return found == crew_.end() ? nullptr : found->get();
}

// Some roles are always there, the others take turns.
void Harness::fillCrew()
{
    constexpr std::size_t size = 7;
    for (const Role role : {Role::Putter, Role::Waiter, Role::Mover})
        if (anyOf(role) == nullptr) start({.role = role});
    while (crew_.size() < size) {
        constexpr std::array others{Role::Putter,  Role::Getter,      Role::Getter,      Role::Mover,
                                    Role::Browser, Role::GroupPutter, Role::GroupGetter, Role::Requester,
                                    Role::Definer, Role::Dynamic,     Role::Connector};
        start({.role = plan_.role && below(2) == 0 ? *plan_.role : others.at(below(others.size()))});
    }
}

// Takes a dead worker's last words and strikes it off.
void Harness::bury(Member &member, bool mayHaveEnded)
{
    int status = 0;
    waitpid(member.pid, &status, 0);
    model_.read(member.assignment.number, member.journal.news());
    model_.died(member.assignment.number);
    for (const std::string &text : model_.takeFaults())
        fault(text);
    const std::string who = roleNames.at(static_cast<std::size_t>(member.assignment.role));
    if (WIFSIGNALED(status) && WTERMSIG(status) != SIGKILL)
        fault("a " + who + " died of signal " + std::to_string(WTERMSIG(status)));
    if (WIFEXITED(status)) {
        const int code = WEXITSTATUS(status);
        const bool asTold = code == stopped || (code == queueManagerEnded && mayHaveEnded);
        if (!asTold) fault("a " + who + " ended by itself with " + std::to_string(code));
    }
    std::erase_if(crew_, [&](const auto &each) { return each.get() == &member; });
}

// Whether it died by itself in time.
bool Harness::awaitDeath(Member &member, std::chrono::milliseconds limit)
{
    const auto until = Clock::now() + limit;
    while (!hasEnded(member.pid)) {
        if (Clock::now() >= until) return false;
        usleep(50);
    }
    return true;
}

// Kills whoever is there. Counts as one kill.
void Harness::killCrew()
{
    for (const auto &member : crew_)
        kill(member->pid, SIGKILL);
    figures_.programs += static_cast<int>(crew_.size());
    figures_.massKills += 1;
    figures_.kills += 1;
    while (!crew_.empty())
        bury(*crew_.front());
}

// All workers end: the queue manager does, or they are to stop.
void Harness::awaitEnds()
{
    const auto until = Clock::now() + patience;
    while (!crew_.empty()) {
        Member &member = *crew_.front();
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(until - Clock::now());
        if (!awaitDeath(member, std::max(left, std::chrono::milliseconds(1)))) {
            fault(std::string("a ") + roleNames.at(static_cast<std::size_t>(member.assignment.role)) + " does not end");
            kill(member.pid, SIGKILL);
        }
        bury(member, true);
    }
}

// Nobody may have ended by itself.
void Harness::lookAfterCrew()
{
    for (std::size_t n = crew_.size(); n-- > 0;)
        if (hasEnded(crew_[n]->pid)) bury(*crew_[n]);
}

void Harness::pause()
{
    const std::uint32_t number = ++pauses_;
    board_->pause = number;
    const auto until = Clock::now() + patience;
    for (;;) {
        lookAfterCrew();
        if (!sound()) return;
        const auto standing = [&](const auto &member) {
            return member->assignment.role == Role::Waiter || member->assignment.goesOnInPauses ||
                   board_->posts.at(member->post).parked == number;
        };
        if (std::ranges::all_of(crew_, standing)) return;
        if (Clock::now() > until) {
            for (const auto &member : crew_)
                if (!standing(member))
                    fault(std::string("a ") + roleNames.at(static_cast<std::size_t>(member->assignment.role)) +
                          " hangs in a call");
            return;
        }
        usleep(50);
    }
}

void Harness::resume()
{
    board_->pause = 0;
}

// Right after a kill: every survivor has another call answered.
void Harness::seeSurvivorsGoOn()
{
    std::vector<std::pair<std::size_t, std::uint64_t>> before;
    for (const auto &member : crew_)
        if (member->assignment.role != Role::Waiter)
            before.emplace_back(member->post, board_->posts.at(member->post).calls.load());
    const auto until = Clock::now() + patience;
    for (const auto &[post, calls] : before) {
        while (board_->posts.at(post).calls == calls) {
            lookAfterCrew();
            if (!sound()) return;
            if (Clock::now() > until) return fault("a survivor does not go on");
            usleep(50);
        }
    }
}

// Stops everybody, looks, compares, and lets everybody go on.
void Harness::inspectAll()
{
    pause();
    if (!sound()) return;
    Look look{.storeFolder = folder_, .waiterSleeps = anyOf(Role::Waiter) != nullptr};
    const Inspection found = inspect(look);
    const auto until = Clock::now() + patience;
    do { // the one that is not paused may have what it got, and not yet have said so
        for (const auto &member : crew_)
            model_.read(member->assignment.number, member->journal.news());
    } while (look.waiterSleeps && model_.misses(Queue::Wait, found) && Clock::now() < until && usleep(50) == 0);
    for (const std::string &text : model_.compare(found))
        fault(text);
    figures_.growths += found.mapSize > mapSize_ && mapSize_ != 0 ? 1 : 0;
    mapSize_ = found.mapSize;
    for (std::size_t n = 0; n < queues; ++n) {
        int input = 0;
        int output = 0;
        int browse = 0;
        for (const auto &member : crew_) {
            const Post &post = board_->posts.at(member->post);
            input += post.input.at(n);
            output += post.output.at(n);
            browse += post.browse.at(n);
        }
        const auto &counters = found.counters.at(n);
        if (counters.input != input || counters.output != output || counters.browse != browse)
            fault(std::string("open handles of ") + queueNames.at(n) + " are counted wrongly");
    }
    lookAfterCrew();
    resume();
}

} // namespace mqrig::crash
