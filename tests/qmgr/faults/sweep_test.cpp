// Every history again and again, while the first, second, third ... call of a class fails, once and for good: memory,
// files, reads, writes, syncs, maps, locks, threads (tests/faults/nth_call.h).
//
// Each time a process of its own meets the fault. Every call has to answer a reason that the MQI has for it; when the
// fault is gone, the queues hold what was acknowledged and nothing else, nothing is open, and the same history runs
// clean in that process, and in another one beside it while the first is still there. No signal, nobody who waits for
// ever, no memory and no descriptor lost. Only where a sync or a read of the log fails may the queue manager's life
// end.
//
// MQRIG_FAULT_ONLY="memory 7 good": this place alone; with MQRIG_TEST_NTH_SHOW=1 the stack of the call that fails.
// MQRIG_FAULT_PLACES: how many places of each class are tried, in equal steps; 0 for all of them.
#include "trial.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <optional>
#include <sstream>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

#include "qmgr/objects/object_definition.h"
#include "qmgr/objects/system_objects.h"
#include "qmgr/store/queue_managers.h"

extern "C" __attribute__((weak)) int __lsan_do_recoverable_leak_check();

namespace mqrig::qmgr::faults {
namespace {

constexpr unsigned longestRun = 60; // seconds
#ifdef __SANITIZE_ADDRESS__
constexpr bool isSanitized = true;
#else
constexpr bool isSanitized = false;
#endif

struct Fault {
    CallClass which = CallMemory;
    long nth = 0; // 0: none
    bool forGood = false;
};

std::ostream &operator<<(std::ostream &out, const Fault &fault)
{
    return out << nthCallName(fault.which) << ' ' << fault.nth << (fault.forGood ? " and all behind" : "");
}

// Without those that lives which are over leave open on purpose, of their slot locks.
std::size_t openDescriptors()
{
    std::size_t count = 0;
    for (const auto &entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code ignored;
        const std::string file = std::filesystem::read_symlink(entry.path(), ignored).string();
        count += file.ends_with("/live/slots (deleted)") ? 0 : 1;
    }
    return count;
}

std::size_t definedQueues(const std::filesystem::path &folder)
{
    const auto attached = store::attach(folder, "QM1");
    return attached.attachment ? attached.attachment->definitions(MQOT_Q).size() : 0;
}

// Runs the work in a process of its own, which reports lines and then stays until it is let go.
class Child {
public:
    template <class Work>
    explicit Child(Work &&work)
    {
        int report[2];
        int hold[2];
        if (pipe(report) != 0 || pipe(hold) != 0) throw std::runtime_error("pipe");
        std::cout.flush();
        pid_ = fork();
        if (pid_ == 0) {
            ::close(report[0]);
            ::close(hold[1]);
            ::alarm(longestRun);
            nthCallSuspend(1);
            const std::string lines = work();
            if (::write(report[1], lines.data(), lines.size()) < 0) _exit(3);
            ::close(report[1]);
            char end = 0;
            _exit(::read(hold[0], &end, 1) == 0 ? 0 : 4);
        }
        ::close(report[1]);
        ::close(hold[0]);
        hold_ = hold[1];
        char buffer[4096];
        for (ssize_t got = 0; (got = ::read(report[0], buffer, sizeof buffer)) > 0;)
            lines_.append(buffer, static_cast<std::size_t>(got));
        ::close(report[0]);
    }
    ~Child() { end(); }
    Child(const Child &) = delete;
    Child &operator=(const Child &) = delete;

    const std::string &lines() const { return lines_; }
    // How it ended: empty if by itself.
    std::string end()
    {
        if (pid_ < 0) return {};
        ::close(hold_);
        int status = 0;
        ::waitpid(pid_, &status, 0);
        pid_ = -1;
        if (WIFSIGNALED(status))
            return WTERMSIG(status) == SIGALRM ? "waits for ever" : "signal " + std::to_string(WTERMSIG(status));
        return WEXITSTATUS(status) == 0 ? "" : "exit " + std::to_string(WEXITSTATUS(status));
    }

private:
    pid_t pid_ = -1;
    int hold_ = -1;
    std::string lines_;
};

void addFaults(std::ostream &lines, const Trial &run, const char *when)
{
    for (const std::string &fault : run.faults())
        lines << "! " << when << ": " << fault << '\n';
}

class FaultSweep : public ::testing::TestWithParam<std::size_t> {
protected:
    FaultSweep()
    {
        // Where nothing is waited for, if there is such a place.
        const bool inMemory = ::access("/dev/shm", W_OK) == 0;
        std::string folder = (inMemory ? std::string("/dev/shm") : std::filesystem::temp_directory_path().string());
        folder += "/mqrig-faults-XXXXXX";
        if (::mkdtemp(folder.data()) == nullptr) throw std::runtime_error("mkdtemp");
        folder_ = folder;
        ::setenv("MQRIG_STORE", folder.c_str(), 1);
        makeQueueManager();
    }
    void makeQueueManager() const
    {
        std::filesystem::remove_all(folder_ / "QM1");
        Child setup([&] {
            auto objects = objects::systemObjects("QM1");
            for (const char *name : {"Q1", "Q2", "REPLY"}) {
                const objects::ObjectDefinition queue(objects::ObjectKind::LocalQueue, name);
                objects.push_back({.type = MQOT_Q, .name = name, .bytes = queue.encode()});
            }
            const Outcome made = store::createQueueManager(folder_, "QM1", objects, store::DefaultQueueManager::Yes);
            return made.ok() ? std::string() : "! cannot be created";
        });
        EXPECT_EQ(setup.lines(), "");
    }
    ~FaultSweep() override
    {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

    const History &history() const { return histories()[GetParam()]; }

    // What a history without a fault has to do after one.
    void runClean(std::ostream &lines, const char *when) const
    {
        Trial clean(true);
        history().body(clean);
        clean.settle();
        clean.verify();
        addFaults(lines, clean, when);
    }

    // In a process of its own: the fault, the look at what is left, and the history once more.
    std::string meet(const Fault &fault) const
    {
        std::ostringstream lines;
        Trial run(fault.nth == 0);
        nthCallArm(fault.which, fault.nth, fault.forGood ? 1 : 0);
        history().body(run);
        nthCallDisarm();
        for (int which = 0; which < CallClasses; ++which)
            lines << nthCallName(static_cast<CallClass>(which)) << ' ' << nthCallCount(static_cast<CallClass>(which))
                  << '\n';
        lines << "failed " << nthCallFailed() << '\n';
        for (const std::string &answer : run.answers())
            lines << "= " << answer << '\n';
        run.settle();
        const bool mayEnd = fault.which == CallSync || fault.which == CallRead;
        if (const auto found = store::stateOf(folder_, "QM1"); found.outcome.failed()) {
            lines << "! the state is " << found.outcome.Reason << '\n';
        } else if (found.state == store::State::Ended) {
            if (!mayEnd) lines << "! the queue manager has ended\n";
            if (const Outcome started = store::startQueueManager(folder_, "QM1"); started.failed())
                lines << "! cannot be started again: " << started.Reason << '\n';
            run.lifeIsOver();
        }
        run.verify();
        addFaults(lines, run, "then");
        runClean(lines, "again in the same process");
        if (const std::size_t queues = definedQueues(folder_); queues != queues_ && queues_ != 0)
            lines << "! there are " << queues << " queues, and there were " << queues_ << '\n';
        lines << "queues " << definedQueues(folder_) << '\n';
        lines << "descriptors " << openDescriptors() << '\n';
        for (const auto &entry : std::filesystem::directory_iterator("/proc/self/fd")) {
            std::error_code ignored;
            lines << "- " << std::filesystem::read_symlink(entry.path(), ignored).string() << '\n';
        }
        if (__lsan_do_recoverable_leak_check != nullptr && __lsan_do_recoverable_leak_check() != 0)
            lines << "! memory is lost\n";
        return lines.str();
    }

    // The number in a line of a report.
    static std::size_t number(const std::string &lines, const std::string &name)
    {
        std::istringstream stream("\n" + lines);
        for (std::string line; std::getline(stream, line);)
            if (line.starts_with(name + " ")) return std::stoul(line.substr(name.size() + 1));
        return 0;
    }

    // True if nothing is wrong.
    bool passes(const Fault &fault)
    {
        Child child([&] { return meet(fault); });
        std::string wrong;
        std::istringstream stream(child.lines());
        for (std::string line; std::getline(stream, line);) {
            if (line.starts_with("! ")) wrong += "  " + line.substr(2) + "\n";
            if (line.starts_with("= ")) ++answers_[line.substr(2)];
        }
        const std::size_t descriptors = number(child.lines(), "descriptors");
        if (descriptors_ != 0 && descriptors > descriptors_) {
            wrong += "  " + std::to_string(descriptors) + " descriptors, " + std::to_string(descriptors_) +
                     " without a fault:\n" + child.lines().substr(child.lines().find("descriptors "));
        }
        {
            Child other([&] {
                std::ostringstream lines;
                runClean(lines, "in another process");
                return lines.str();
            });
            wrong += other.lines();
            if (const std::string end = other.end(); !end.empty()) wrong += "  another process: " + end + "\n";
        }
        if (const std::string end = child.end(); !end.empty()) wrong += "  " + end + "\n";
        lines_ = child.lines();
        ++runs_;
        if (wrong.empty()) return true;
        std::cout << history().name << ", " << fault << ":\n" << wrong;
        // The next one is not to suffer from it.
        makeQueueManager();
        const Child first([&] { return meet({}); });
        return false;
    }

    std::filesystem::path folder_;
    std::size_t descriptors_ = 0; // open at the end of a run without a fault
    std::size_t queues_ = 0;
    std::string lines_;
    std::map<std::string, int> answers_;
    long runs_ = 0;
};

long placesWanted(const History &history)
{
    const char *wanted = std::getenv("MQRIG_FAULT_PLACES");
    return wanted == nullptr ? (isSanitized || history.beginsLives ? 2 : 6) : std::atol(wanted);
}

// The one place that is asked for; none: all of them.
std::optional<Fault> onlyFault()
{
    const char *only = std::getenv("MQRIG_FAULT_ONLY");
    if (only == nullptr) return std::nullopt;
    std::istringstream words(only);
    std::string name;
    std::string how;
    Fault fault;
    words >> name >> fault.nth >> how;
    for (int number = 0; number < CallClasses; ++number)
        if (name == nthCallName(static_cast<CallClass>(number))) fault.which = static_cast<CallClass>(number);
    fault.forGood = how == "good";
    return fault;
}

TEST_P(FaultSweep, IsAnsweredTrulyAndLeavesNothingBehind)
{
    ASSERT_TRUE(passes({})) << "without a fault";
    ASSERT_TRUE(passes({})) << "without a fault";
    descriptors_ = number(lines_, "descriptors");
    queues_ = number(lines_, "queues");
    const std::string counts = lines_;
    if (const auto only = onlyFault()) {
        EXPECT_TRUE(passes(*only));
        std::cout << lines_;
        return;
    }
    int wrong = 0;
    for (int number = 0; number < CallClasses; ++number) {
        const auto which = static_cast<CallClass>(number);
        const auto count = static_cast<long>(FaultSweep::number(counts, nthCallName(which)));
        // The address sanitizer cannot go on when there is no memory for the start of a thread.
        if (isSanitized && which == CallMemory && std::string_view(history().name) == "Consumers") continue;
        const long wanted = placesWanted(history());
        const long step = wanted == 0 ? 1 : std::max(1L, (count + wanted - 1) / wanted);
        std::cout << nthCallName(which) << ' ' << count << "; ";
        for (long nth = 1; nth <= count; nth += step) {
            for (const bool forGood : {false, true})
                if (!passes({which, nth, forGood})) ++wrong;
        }
    }
    std::cout << runs_ << " runs\n";
    for (const auto &[answer, times] : answers_)
        std::cout << "  " << answer << ": " << times << '\n';
    EXPECT_EQ(wrong, 0);
}

INSTANTIATE_TEST_SUITE_P(Histories, FaultSweep, ::testing::Range(std::size_t{0}, histories().size()),
                         [](const auto &history) { return std::string(histories()[history.param].name); });

// The library that makes calls fail has to stand before the sanitizers' too.
void standFirst(char **argv)
{
    if (std::getenv("MQRIG_FAULTS_FIRST") != nullptr) return;
    ::setenv("MQRIG_FAULTS_FIRST", "1", 1);
    ::setenv("LD_PRELOAD", NTH_CALL_LIBRARY, 1);
    const char *given = std::getenv("ASAN_OPTIONS");
    const std::string options =
        std::string("verify_asan_link_order=0:alloc_dealloc_mismatch=0:") + (given == nullptr ? "" : given);
    ::setenv("ASAN_OPTIONS", options.c_str(), 1);
    ::execv("/proc/self/exe", argv);
    std::perror("execv");
    std::exit(2);
}

} // namespace
} // namespace mqrig::qmgr::faults

int main(int argc, char **argv)
{
    mqrig::qmgr::faults::standFirst(argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
