// A disk that is full while several processes put, move and get: what they are told, and that all is well when there is
// space again. The disk is a small tmpfs that somebody else fills; where none can be mounted (no privilege), the
// storage seam stands in for it: nothing more can be reserved.
#include "trial.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <memory>
#include <vector>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include "qmgr/objects/object_definition.h"
#include "qmgr/objects/system_objects.h"
#include "qmgr/store/queue_managers.h"
#include "qmgr/store/seams.h"

namespace mqrig::qmgr::faults {
namespace {

// What the processes share.
struct Shared {
    std::atomic<bool> full;    // for the seam
    std::atomic<bool> getting; // the getter works
    std::atomic<bool> putting;
    std::atomic<bool> over;
    std::atomic<int> put[2];     // messages acknowledged, persistent or not
    std::atomic<int> got[2];     // messages got for good
    std::atomic<int> refused[2]; // puts, in a row
    std::atomic<int> unexpected; // a reason that no full disk has
};

Shared *shared = nullptr;

int refuseWhenFull(store::StorageCall call)
{
    return call == store::StorageCall::Reserve && shared->full ? ENOSPC : 0;
}

bool saysFull(MQLONG reason)
{
    return reason == MQRC_STORAGE_NOT_AVAILABLE || reason == MQRC_Q_SPACE_NOT_AVAILABLE || reason == MQRC_BACKED_OUT;
}

// One connection with Q1 and Q2.
struct Worker {
    Worker()
    {
        MQCHAR48 name = "QM1";
        MQCONN(name, &hconn, &codes.CompCode, &codes.Reason);
        if (codes.failed()) ++shared->unexpected;
        for (int at = 0; at < 2; ++at) {
            MQOD od = {MQOD_DEFAULT};
            std::memcpy(od.ObjectName, at == 0 ? "Q1" : "Q2", 2);
            MQOPEN(hconn, &od, MQOO_INPUT_SHARED | MQOO_OUTPUT, &queues[at], &codes.CompCode, &codes.Reason);
            if (codes.failed()) ++shared->unexpected;
        }
    }
    ~Worker() { MQDISC(&hconn, &codes.CompCode, &codes.Reason); }
    Worker(const Worker &) = delete;
    Worker &operator=(const Worker &) = delete;

    void put(int queue, std::string &body, MQLONG persistence, MQLONG options)
    {
        MQMD md = {MQMD_DEFAULT};
        MQPMO pmo = {MQPMO_DEFAULT};
        md.Persistence = persistence;
        pmo.Options = options;
        MQPUT(hconn, queues[queue], &md, &pmo, static_cast<MQLONG>(body.size()), body.data(), &codes.CompCode,
              &codes.Reason);
    }
    // The persistence of the message got.
    MQLONG get(int queue, MQLONG options, std::string &body)
    {
        MQMD md = {MQMD_DEFAULT};
        MQGMO gmo = {MQGMO_DEFAULT};
        gmo.Options = options | MQGMO_WAIT;
        gmo.WaitInterval = 5;
        body.resize(2'000'000);
        MQLONG length = 0;
        MQGET(hconn, queues[queue], &md, &gmo, static_cast<MQLONG>(body.size()), body.data(), &length, &codes.CompCode,
              &codes.Reason);
        body.resize(static_cast<std::size_t>(std::max(length, 0)));
        return md.Persistence;
    }
    void expect(bool fine)
    {
        if (codes.CompCode == MQCC_OK || fine) return;
        ++shared->unexpected;
        std::cout << "reason " << codes.Reason << std::endl;
    }

    MQHCONN hconn = MQHC_UNUSABLE_HCONN;
    MQHOBJ queues[2] = {MQHO_UNUSABLE_HOBJ, MQHO_UNUSABLE_HOBJ};
    Codes codes;
};

// Puts units of three messages, or single large ones.
void putter(MQLONG persistence)
{
    Worker worker;
    const bool safe = persistence == MQPER_PERSISTENT;
    std::string body(safe ? 20'000 : 300'000, 'p');
    while (!shared->over) {
        if (!shared->putting) {
            ::usleep(1000);
            continue;
        }
        bool done = true;
        if (safe) {
            for (int n = 0; n < 3 && done; ++n) {
                worker.put(0, body, persistence, MQPMO_SYNCPOINT);
                done = worker.codes.ok();
            }
            worker.expect(saysFull(worker.codes.Reason));
            MQCMIT(worker.hconn, &worker.codes.CompCode, &worker.codes.Reason);
            worker.expect(saysFull(worker.codes.Reason));
            if (worker.codes.ok() && done) shared->put[1] += 3;
            if (worker.codes.ok() && !done) ++shared->unexpected; // put refused, the rest of the unit taken
            done = done && worker.codes.ok();
        } else {
            worker.put(0, body, persistence, MQPMO_NO_SYNCPOINT);
            worker.expect(saysFull(worker.codes.Reason));
            done = worker.codes.ok();
            if (done) ++shared->put[0];
        }
        if (done)
            shared->refused[safe ? 1 : 0] = 0;
        else
            ++shared->refused[safe ? 1 : 0];
    }
}

// From Q1 to Q2, a unit each.
void mover()
{
    Worker worker;
    std::string body;
    while (!shared->over) {
        const MQLONG persistence = worker.get(0, MQGMO_SYNCPOINT, body);
        worker.expect(worker.codes.Reason == MQRC_NO_MSG_AVAILABLE || saysFull(worker.codes.Reason));
        if (worker.codes.failed()) continue;
        worker.put(1, body, persistence, MQPMO_SYNCPOINT);
        worker.expect(saysFull(worker.codes.Reason));
        if (worker.codes.ok())
            MQCMIT(worker.hconn, &worker.codes.CompCode, &worker.codes.Reason);
        else
            MQBACK(worker.hconn, &worker.codes.CompCode, &worker.codes.Reason);
        worker.expect(saysFull(worker.codes.Reason));
    }
}

// Everything from Q2, and from Q1 what the mover has no room for. A get needs none.
void getter()
{
    Worker worker;
    std::string body;
    while (!shared->over) {
        for (const int queue : {1, 0}) {
            if (!shared->getting) ::usleep(1000);
            if (!shared->getting) continue;
            const MQLONG persistence = worker.get(queue, MQGMO_NO_SYNCPOINT, body);
            worker.expect(worker.codes.Reason == MQRC_NO_MSG_AVAILABLE);
            if (worker.codes.ok()) ++shared->got[persistence == MQPER_PERSISTENT ? 1 : 0];
        }
    }
}

class FullDiskUnderLoad : public ::testing::Test {
protected:
    FullDiskUnderLoad()
    {
        std::string folder = (std::filesystem::temp_directory_path() / "mqrig-full-XXXXXX").string();
        if (::mkdtemp(folder.data()) == nullptr) throw std::runtime_error("mkdtemp");
        folder_ = folder;
        mounted_ = ::mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=160m,mode=0700") == 0;
        std::cout << (mounted_ ? "on a tmpfs of 160 MB\n" : "no tmpfs can be mounted: the storage seam stands in\n");
        void *place = ::mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        shared = new (place) Shared{};
        if (!mounted_) store::seams.storageError = refuseWhenFull;
        ::setenv("MQRIG_STORE", folder.c_str(), 1);
        auto objects = objects::systemObjects("QM1");
        for (const char *name : {"Q1", "Q2"}) {
            const objects::ObjectDefinition queue(objects::ObjectKind::LocalQueue, name);
            objects.push_back({.type = MQOT_Q, .name = name, .bytes = queue.encode()});
        }
        EXPECT_TRUE(store::createQueueManager(folder_, "QM1", objects, store::DefaultQueueManager::Yes).ok());
    }
    ~FullDiskUnderLoad() override
    {
        shared->over = true;
        for (const pid_t worker : workers_)
            ::waitpid(worker, nullptr, 0);
        store::seams.storageError = nullptr;
        if (mounted_) ::umount2(folder_.c_str(), MNT_DETACH);
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

    template <class Work>
    void start(Work &&work)
    {
        const pid_t worker = ::fork();
        if (worker == 0) {
            ::alarm(60);
            work();
            ::_exit(0);
        }
        workers_.push_back(worker);
    }
    // All of them end by themselves.
    void end()
    {
        shared->over = true;
        for (const pid_t worker : workers_) {
            int status = 0;
            ::waitpid(worker, &status, 0);
            EXPECT_EQ(status, 0);
        }
        workers_.clear();
    }
    void fill() const
    {
        shared->full = true;
        if (!mounted_) return;
        const int fd = ::open((folder_ / "somebody else's").c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
        ASSERT_GE(fd, 0);
        const std::vector<char> block(1 << 20, 'x');
        for (std::size_t size = block.size(); size > 0;)
            if (::write(fd, block.data(), size) <= 0) size /= 2;
        ::close(fd);
    }
    void makeSpace() const
    {
        shared->full = false;
        if (mounted_) std::filesystem::remove(folder_ / "somebody else's");
    }
    // Goes by what the workers have done, not by the time that it takes.
    template <class Condition>
    static bool comes(Condition &&condition)
    {
        for (int n = 0; n < 50'000; ++n) {
            if (condition()) return true;
            ::usleep(1000);
        }
        return false;
    }
    // Gets what is left; what was acknowledged and not got before.
    static void drain()
    {
        Worker worker;
        std::string body;
        for (const int queue : {0, 1}) {
            for (;;) {
                const MQLONG persistence = worker.get(queue, MQGMO_NO_SYNCPOINT, body);
                if (worker.codes.failed()) break;
                ++shared->got[persistence == MQPER_PERSISTENT ? 1 : 0];
            }
            EXPECT_EQ(worker.codes.Reason, MQRC_NO_MSG_AVAILABLE);
        }
    }

    std::filesystem::path folder_;
    bool mounted_ = false;
    std::vector<pid_t> workers_;
};

TEST_F(FullDiskUnderLoad, IsToldToThosePuttingAndLosesNothing)
{
    shared->putting = true;
    shared->getting = true;
    start([] { putter(MQPER_PERSISTENT); });
    start([] { putter(MQPER_NOT_PERSISTENT); });
    start(mover);
    start(getter);
    ASSERT_TRUE(comes([] { return shared->put[0] > 20 && shared->put[1] > 20 && shared->got[0] > 5; }));

    shared->getting = false;
    fill();
    // The map grows no more, nor does the log: both putters are refused, again and again.
    EXPECT_TRUE(comes([] { return shared->refused[0] > 5 && shared->refused[1] > 5; }));
    // Everything can be got while the disk is full.
    shared->putting = false;
    shared->getting = true;
    EXPECT_TRUE(comes([] { return shared->got[0] == shared->put[0] && shared->got[1] == shared->put[1]; }))
        << shared->got[0] << " of " << shared->put[0] << ", " << shared->got[1] << " of " << shared->put[1];

    makeSpace();
    const int before[2] = {shared->put[0], shared->put[1]};
    shared->putting = true;
    EXPECT_TRUE(comes([&] { return shared->put[0] > before[0] + 20 && shared->put[1] > before[1] + 20; }));
    end();
    drain();
    EXPECT_EQ(shared->got[0], shared->put[0]);
    EXPECT_EQ(shared->got[1], shared->put[1]);
    EXPECT_EQ(shared->unexpected, 0);
    std::cout << shared->put[0] << " and " << shared->put[1] << " messages\n";
}

TEST_F(FullDiskUnderLoad, IsNoPlaceForADefinitionOrANewLifeAndHarmsNeither)
{
    std::string body(50'000, 's');
    int put = 0;
    {
        Worker worker;
        for (; put < 30; ++put)
            worker.put(0, body, MQPER_PERSISTENT, MQPMO_NO_SYNCPOINT);
        fill();
        while (put < 5000) {
            worker.put(0, body, MQPER_PERSISTENT, MQPMO_NO_SYNCPOINT);
            if (worker.codes.failed()) break;
            ++put;
        }
        EXPECT_EQ(worker.codes.Reason, MQRC_STORAGE_NOT_AVAILABLE);
        worker.codes = {};
    }
    {
        const auto attached = store::attach(folder_, "QM1");
        ASSERT_TRUE(attached.outcome.ok());
        const objects::ObjectDefinition queue(objects::ObjectKind::LocalQueue, "Q3");
        store::Definition definition{.type = MQOT_Q, .name = "Q3", .bytes = queue.encode()};
        // There is room for it in what is kept for deletions, or there is not.
        const Outcome defined = attached.attachment->define(definition);
        if (defined.failed()) {
            EXPECT_EQ(defined.Reason, MQRC_STORAGE_NOT_AVAILABLE);
        }
        EXPECT_EQ(attached.attachment->findDefinition(MQOT_Q, "Q3").has_value(), defined.ok());
    }
    EXPECT_TRUE(store::endQueueManager(folder_, "QM1", store::End::Immediate).ok());
    EXPECT_EQ(store::listQueueManagers(folder_).size(), 1U);
    fill(); // also what that has freed
    if (const Outcome started = store::startQueueManager(folder_, "QM1"); mounted_ || started.failed()) {
        // The old live state goes first: there is room for the new one, unless somebody else is quicker.
        if (started.failed()) {
            EXPECT_EQ(started.Reason, MQRC_STORAGE_NOT_AVAILABLE);
        }
    }
    makeSpace();
    if (store::stateOf(folder_, "QM1").state == store::State::Ended) {
        const Outcome started = store::startQueueManager(folder_, "QM1");
        EXPECT_TRUE(started.ok()) << started.Reason;
    }
    shared->put[1] = put;
    drain();
    EXPECT_EQ(shared->got[1], put);
}

} // namespace
} // namespace mqrig::qmgr::faults
