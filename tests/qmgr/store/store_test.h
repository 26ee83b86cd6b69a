// What the tests of the store share: a private store folder with one queue manager and two queues, short forms for
// the usual operations, and helper processes.
#pragma once

#include <cstring>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "qmgr/store/attachment.h"
#include "qmgr/store/queue_managers.h"

namespace mqrig::qmgr::store {

inline void PrintTo(const MessageKey &key, std::ostream *os)
{
    *os << key.queue << '/' << int{key.order} << '/' << key.sequence;
}

} // namespace mqrig::qmgr::store

namespace mqrig::qmgr {

inline void PrintTo(const Outcome &outcome, std::ostream *os)
{
    *os << "CompCode " << outcome.CompCode << " Reason " << outcome.Reason;
}

} // namespace mqrig::qmgr

namespace mqrig::qmgr::store::test {

constexpr std::chrono::seconds patience{15}; // how long a test waits for what must come

class StoreTest : public testing::Test {
protected:
    StoreTest();
    ~StoreTest() override;

    // Connects, and fails the test if that fails.
    std::unique_ptr<Attachment> connect(std::string_view name = "QM1") const;

    // What a check of QM1 finds, a line each.
    std::string findings() const;

    // Runs the function in a forked process, which ends with the function's answer as exit code.
    static pid_t startProcess(const std::function<int()> &body);
    // The exit code, or minus the signal.
    static int endOfProcess(pid_t process);
    static int runProcess(const std::function<int()> &body) { return endOfProcess(startProcess(body)); }

    // Ends the calling process at once, as SIGKILL of somebody else's does: no destructor runs.
    [[noreturn]] static void die();

    std::filesystem::path folder_;
    QueueId q1_ = 0;
    QueueId q2_ = 0;
};

// Until it goes, the process is a user without privileges, to whom the folder and all in it belong. Root becomes
// another user; anybody else is one already.
class Unprivileged {
public:
    explicit Unprivileged(const std::filesystem::path &folder);
    ~Unprivileged();
    Unprivileged(const Unprivileged &) = delete;
    Unprivileged &operator=(const Unprivileged &) = delete;
};

struct Wanted {
    MQLONG persistence = MQPER_NOT_PERSISTENT;
    MQLONG priority = 0;
    std::string_view msgId = {};
    std::string_view correlId = {};
    std::string_view groupId = {};
};

[[nodiscard]] MessageHeader headerOf(const Wanted &wanted);
[[nodiscard]] std::span<const std::byte> bytesOf(std::string_view text);
[[nodiscard]] std::string textOf(std::span<const std::byte> bytes);

// Puts one message outside a unit of work and waits for it to be safe.
Outcome put(Attachment &attachment, QueueId queue, std::string_view text, const Wanted &wanted = {});

// Gets the first message outside a unit of work; the text, or "" if there is none.
std::string get(Attachment &attachment, QueueId queue);

// The texts of all visible messages in delivery order.
std::vector<std::string> browse(Attachment &attachment, QueueId queue);

QueueStatus statusOf(Attachment &attachment, QueueId queue);

// A unit of work as the floor above keeps it.
class UnitOfWork {
public:
    explicit UnitOfWork(Attachment &attachment) : attachment_(attachment) {}
    Outcome put(QueueId queue, std::string_view text, const Wanted &wanted = {});
    // Locks the first visible message; its text.
    std::string get(QueueId queue);
    Outcome commit();
    Outcome backOut();

private:
    Unit unit();

    Attachment &attachment_;
    std::vector<NewMessage> puts_;
    std::vector<std::unique_ptr<std::string>> bodies_;
    std::vector<TakenMessage> gets_;
};

} // namespace mqrig::qmgr::store::test
