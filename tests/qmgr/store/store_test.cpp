#include "store_test.h"

#include "qmgr/store/check.h"

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace mqrig::qmgr::store::test {

StoreTest::StoreTest()
{
    std::string name = (std::filesystem::temp_directory_path() / "mqrig-store-XXXXXX").string();
    EXPECT_NE(mkdtemp(name.data()), nullptr);
    folder_ = name;
    const std::vector<Definition> objects{{.type = MQOT_Q, .name = "Q1", .bytes = "first"},
                                          {.type = MQOT_Q, .name = "Q2", .bytes = "second"},
                                          {.type = MQOT_Q_MGR, .name = "QM1", .bytes = "manager"}};
    EXPECT_EQ(createQueueManager(folder_, "QM1", objects, DefaultQueueManager::No), success());
    if (const auto attachment = connect()) {
        q1_ = attachment->findDefinition(MQOT_Q, "Q1").value_or(Definition{}).queue;
        q2_ = attachment->findDefinition(MQOT_Q, "Q2").value_or(Definition{}).queue;
    }
}

StoreTest::~StoreTest()
{
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

std::unique_ptr<Attachment> StoreTest::connect(std::string_view name) const
{
    Attached attached = attach(folder_, name);
    EXPECT_EQ(attached.outcome, success());
    if (!attached.attachment) throw std::runtime_error("no connection"); // ends the test
    return std::move(attached.attachment);
}

std::string StoreTest::findings() const
{
    std::string all;
    for (const std::string &line : checkQueueManager(folder_, "QM1", [](const Definition &) { return true; }).findings)
        all += line + '\n';
    return all;
}

pid_t StoreTest::startProcess(const std::function<int()> &body)
{
    std::cout.flush();
    const pid_t process = fork();
    if (process != 0) return process;
    const int answer = body();
    // No destructors and no exit handlers: they are the parent's.
    _exit(answer);
}

void StoreTest::die()
{
    for (;;)
        kill(getpid(), SIGKILL);
}

int StoreTest::endOfProcess(pid_t process)
{
    int status = 0;
    if (waitpid(process, &status, 0) != process) return -1000;
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

Unprivileged::Unprivileged(const std::filesystem::path &folder)
{
    if (geteuid() != 0) return;
    constexpr uid_t user = 65534;
    EXPECT_EQ(chown(folder.c_str(), user, user), 0);
    for (const auto &entry : std::filesystem::recursive_directory_iterator(folder))
        EXPECT_EQ(lchown(entry.path().c_str(), user, user), 0);
    if (setresuid(user, user, 0) != 0) throw std::runtime_error("root cannot become another user"); // ends the test
}

Unprivileged::~Unprivileged()
{
    if (setresuid(geteuid(), 0, 0) != 0) return;
    EXPECT_EQ(setresuid(0, 0, 0), 0);
    prctl(PR_SET_DUMPABLE, 1); // as before, for whoever traces the process
}

MessageHeader headerOf(const Wanted &wanted)
{
    MessageHeader header{};
    std::memcpy(header.md.StrucId, MQMD_STRUC_ID, 4);
    header.md.Version = MQMD_VERSION_2;
    header.md.Persistence = wanted.persistence;
    header.md.Priority = wanted.priority;
    const auto fill = [](MQBYTE *id, std::string_view text) { text.copy(reinterpret_cast<char *>(id), 24); };
    fill(header.md.MsgId, wanted.msgId);
    fill(header.md.CorrelId, wanted.correlId);
    fill(header.md.GroupId, wanted.groupId);
    return header;
}

std::span<const std::byte> bytesOf(std::string_view text)
{
    return std::as_bytes(std::span(text));
}

std::string textOf(std::span<const std::byte> bytes)
{
    return {reinterpret_cast<const char *>(bytes.data()), bytes.size()};
}

Outcome put(Attachment &attachment, QueueId queue, std::string_view text, const Wanted &wanted)
{
    const NewMessage message{attachment.newKey(queue, static_cast<std::uint8_t>(9 - wanted.priority)), headerOf(wanted),
                             bytesOf(text)};
    Ticket ticket = 0;
    const Outcome outcome = attachment.update(text.size(), [&](WriteTransaction &transaction) {
        ticket = transaction.put(message);
        return success();
    });
    return outcome.failed() ? outcome : attachment.harden(ticket);
}

std::string get(Attachment &attachment, QueueId queue)
{
    std::string text;
    Ticket ticket = 0;
    Outcome outcome = attachment.update(0, [&](WriteTransaction &transaction) {
        MessageKey key;
        {
            MessageCursor cursor(transaction, queue);
            if (!cursor.first()) return failure(MQRC_NO_MSG_AVAILABLE);
            text = textOf(cursor.body());
            key = cursor.key();
        }
        ticket = transaction.take(key);
        return success();
    });
    if (!outcome.failed()) outcome = attachment.harden(ticket);
    return outcome.failed() ? std::string() : text;
}

std::vector<std::string> browse(Attachment &attachment, QueueId queue)
{
    std::vector<std::string> texts;
    EXPECT_EQ(attachment.read([&](ReadTransaction &transaction) {
        MessageCursor cursor(transaction, queue);
        for (bool found = cursor.first(); found; found = cursor.next())
            texts.push_back(textOf(cursor.body()));
        return success();
    }),
              success());
    return texts;
}

QueueStatus statusOf(Attachment &attachment, QueueId queue)
{
    QueueStatus status;
    EXPECT_EQ(attachment.read([&](ReadTransaction &transaction) {
        status = transaction.queue(queue);
        return success();
    }),
              success());
    return status;
}

Outcome UnitOfWork::put(QueueId queue, std::string_view text, const Wanted &wanted)
{
    const Outcome booked = attachment_.update(0, [&](WriteTransaction &transaction) {
        transaction.bookPut(queue);
        return success();
    });
    if (booked.failed()) return booked;
    bodies_.push_back(std::make_unique<std::string>(text));
    puts_.push_back({attachment_.newKey(queue, static_cast<std::uint8_t>(9 - wanted.priority)), headerOf(wanted),
                     bytesOf(*bodies_.back())});
    return success();
}

std::string UnitOfWork::get(QueueId queue)
{
    std::string text;
    TakenMessage taken;
    const Outcome outcome = attachment_.update(0, [&](WriteTransaction &transaction) {
        {
            MessageCursor cursor(transaction, queue);
            if (!cursor.first()) return failure(MQRC_NO_MSG_AVAILABLE);
            text = textOf(cursor.body());
            taken = {cursor.key(), isPersistent(cursor.header())};
        }
        transaction.lock(taken.key);
        return success();
    });
    if (outcome.failed()) return {};
    gets_.push_back(taken);
    return text;
}

Unit UnitOfWork::unit()
{
    return {puts_, gets_};
}

Outcome UnitOfWork::commit()
{
    const Outcome outcome = attachment_.commit(unit());
    puts_.clear();
    gets_.clear();
    return outcome;
}

Outcome UnitOfWork::backOut()
{
    const Outcome outcome = attachment_.backOut(unit());
    puts_.clear();
    gets_.clear();
    return outcome;
}

} // namespace mqrig::qmgr::store::test
