// What a check of a running queue manager says of records that do not belong together. They are laid by another
// process, past the store, as a wild program would.

#include <cstring>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <lmdb.h>

#include "qmgr/store/check.h"
#include "qmgr/store/live_records.h"
#include "store_test.h"

namespace mqrig::qmgr::store::test {
namespace {

// The records of the live state, inside a write transaction of the library's.
class Records {
public:
    Records(MDB_txn *transaction, MDB_dbi tree) : transaction_(transaction), tree_(tree) {}

    [[nodiscard]] std::optional<std::string> read(const LiveKey &key) const
    {
        MDB_val name = valueOf(key);
        MDB_val value{};
        if (mdb_get(transaction_, tree_, &name, &value) != 0) return std::nullopt;
        return std::string(static_cast<const char *>(value.mv_data), value.mv_size);
    }
    void write(const LiveKey &key, std::string bytes) const
    {
        MDB_val name = valueOf(key);
        MDB_val value{bytes.size(), bytes.data()};
        must(mdb_put(transaction_, tree_, &name, &value, 0));
    }
    void erase(const LiveKey &key) const
    {
        MDB_val name = valueOf(key);
        must(mdb_del(transaction_, tree_, &name, nullptr));
    }
    template <class Record>
    void change(const LiveKey &key, const std::function<void(Record &)> &act) const
    {
        std::string bytes = read(key).value_or(std::string(sizeof(Record), '\0'));
        Record record;
        std::memcpy(&record, bytes.data(), sizeof record);
        act(record);
        std::memcpy(bytes.data(), &record, sizeof record);
        write(key, bytes);
    }
    // The first message of a queue.
    [[nodiscard]] MessageKey firstOf(QueueId queue) const
    {
        const LiveKey prefix = LiveKey::messagesOf(queue);
        MDB_cursor *cursor = nullptr;
        must(mdb_cursor_open(transaction_, tree_, &cursor));
        MDB_val key = valueOf(prefix);
        MDB_val value{};
        must(mdb_cursor_get(cursor, &key, &value, MDB_SET_RANGE)); // the counters
        must(mdb_cursor_get(cursor, &key, &value, MDB_NEXT));
        const MessageKey message = messageOf(key.mv_data, key.mv_size);
        mdb_cursor_close(cursor);
        return message;
    }

private:
    static void must(int code)
    {
        if (code != 0) _exit(3);
    }
    MDB_txn *transaction_;
    MDB_dbi tree_;
};

using Tamper = std::function<void(const Records &)>;

class LiveCheck : public StoreTest {
protected:
    LiveCheck() { begin(); }

    void begin()
    {
        witness_ = connect();
        EXPECT_EQ(put(*witness_, q1_, "small", {.msgId = "id"}), success());
        EXPECT_EQ(put(*witness_, q2_, std::string(5000, 'l')), success());
    }
    void tamperWith(const Tamper &tamper) const
    {
        const int tampered = runProcess([&] {
            MDB_env *environment = nullptr;
            MDB_txn *transaction = nullptr;
            MDB_dbi tree = 0;
            if (mdb_env_create(&environment) != 0 ||
                mdb_env_open(environment, (folder_ / "QM1" / "live").c_str(), MDB_NOTLS | MDB_NOSYNC, 0600) != 0 ||
                mdb_txn_begin(environment, nullptr, 0, &transaction) != 0 ||
                mdb_dbi_open(transaction, nullptr, 0, &tree) != 0)
                return 1;
            tamper(Records(transaction, tree));
            return mdb_txn_commit(transaction) == 0 ? 0 : 2;
        });
        ASSERT_EQ(tampered, 0);
    }
    // The next life is made from the log.
    void beginAnew()
    {
        witness_.reset();
        EXPECT_EQ(endQueueManager(folder_, "QM1", End::Immediate), success());
        EXPECT_EQ(startQueueManager(folder_, "QM1"), success());
        begin();
    }
    std::string saidAfter(const Tamper &tamper)
    {
        tamperWith(tamper);
        std::string said = findings();
        beginAnew();
        return said;
    }
    void expectSaid(const char *words, const Tamper &tamper)
    {
        const std::string said = saidAfter(tamper);
        EXPECT_NE(said.find(words), std::string::npos) << words << " in:\n" << said;
        EXPECT_EQ(findings(), "");
    }

    std::unique_ptr<Attachment> witness_;
};

TEST_F(LiveCheck, FindsCountersThatDoNotAddUp)
{
    const auto counters = [this](const std::function<void(QueueStatus &)> &act) {
        return [this, act](const Records &records) { records.change<QueueStatus>(LiveKey::queue(q1_), act); };
    };
    expectSaid("the depth is counted as 2, but 1 are there", counters([](QueueStatus &status) { status.depth += 1; }));
    expectSaid("messages held is counted as 1, but 0", counters([](QueueStatus &status) { status.held += 1; }));
    expectSaid("uncommitted puts is counted as 1", counters([](QueueStatus &status) { status.uncommitted += 1; }));
    expectSaid("marks is counted as 3", counters([](QueueStatus &status) { status.marked = 3; }));
    expectSaid("handles open for input is counted as 1", counters([](QueueStatus &status) { status.opens.input = 1; }));
    expectSaid("trigger messages under way is counted as 1",
               counters([](QueueStatus &status) { status.depthTriggers = 1; }));
}

TEST_F(LiveCheck, FindsBookingsThatNobodyCounts)
{
    const auto booking = [this](const Booking &booked) {
        return [this, booked](const Records &records) {
            records.change<Booking>(LiveKey::booking(77, q1_), [&](Booking &record) { record = booked; });
        };
    };
    expectSaid("uncommitted puts is counted as 0, but 5 are there",
               booking({.puts = 5, .depthTriggers = 0, .opens = {}}));
    expectSaid("handles open for output is counted as 0, but 2 are there",
               booking({.puts = 0, .depthTriggers = 0, .opens = {.output = 2}}));
    expectSaid("handles open for browsing is counted as 0, but 18446744073709551615 are there",
               booking({.puts = 0, .depthTriggers = 0, .opens = {.browse = -1}}));
}

TEST_F(LiveCheck, FindsQueuesWithoutCountersOrDefinition)
{
    expectSaid("is defined but has no counters",
               [this](const Records &records) { records.erase(LiveKey::queue(q1_)); });
    expectSaid("has counters but is not defined",
               [](const Records &records) { records.erase(LiveKey::definition(MQOT_Q, "Q1")); });
    expectSaid("has messages but does not exist", [this](const Records &records) {
        records.erase(LiveKey::queue(q1_));
        records.erase(LiveKey::definition(MQOT_Q, "Q1"));
    });
}

TEST_F(LiveCheck, FindsMessagesThatAreNotWhole)
{
    expectSaid("is too short", [this](const Records &records) {
        const LiveKey key = LiveKey::message(records.firstOf(q1_));
        records.write(key, "too short");
    });
    expectSaid("its body has the wrong length", [this](const Records &records) {
        const LiveKey key = LiveKey::message(records.firstOf(q1_));
        records.write(key, records.read(key).value() + "more");
    });
    expectSaid("large bodies is counted as 1, but 0 are there",
               [this](const Records &records) { records.erase(LiveKey::body(records.firstOf(q2_))); });
    expectSaid("is missing in an index", [this](const Records &records) {
        const MessageKey message = records.firstOf(q1_);
        const auto header =
            recordIn<MessageHeader>(records.read(LiveKey::message(message)).value().data(), sizeof(MessageHeader));
        records.erase(LiveKey::indexed(message, Index::MsgId, header->md.MsgId));
    });
    expectSaid("has a number from the future", [this](const Records &records) {
        MessageKey message = records.firstOf(q1_);
        const std::string bytes = records.read(LiveKey::message(message)).value();
        message.sequence += std::uint64_t{1} << 62;
        records.write(LiveKey::message(message), bytes);
    });
}

TEST_F(LiveCheck, FindsHoldsOfNothing)
{
    const auto hold = [this](const Hold &held, std::uint64_t further = 0) {
        return [this, held, further](const Records &records) {
            MessageKey message = records.firstOf(q1_);
            message.sequence += further;
            records.write(LiveKey::hold(message), std::string(reinterpret_cast<const char *>(&held), sizeof held));
        };
    };
    expectSaid("is held but not there", hold({.kind = HoldKind::Got, .slot = 9, .ticket = 0}, 5));
    expectSaid("belongs to a unit that is not there", hold({.kind = HoldKind::Prepared, .slot = 9, .ticket = 123456}));
    expectSaid("belongs to a unit that is not there", hold({.kind = HoldKind::Hidden, .slot = 9, .ticket = 123456}));
    expectSaid("is held in a way that there is not", hold({.kind = HoldKind{9}, .slot = 9, .ticket = 0}));
    expectSaid("a hold of queue number", hold({.kind = HoldKind::Got, .slot = 5'000'000, .ticket = 0}));
    expectSaid("messages held is counted as 0, but 1", hold({.kind = HoldKind::Browsed, .slot = 9, .ticket = 0}));
}

// A unit that is none is passed over by all who finish units.
TEST_F(LiveCheck, UnitsThatAreNoneHarmNobody)
{
    const auto unit = [](std::uint32_t slot, std::uint64_t steps, std::size_t bytes) {
        return [=](const Records &records) {
            const UnitRecord record{.kind = UnitKind::Unit, .slot = slot, .connection = 1, .steps = steps};
            std::string value(reinterpret_cast<const char *>(&record), sizeof record);
            records.write(LiveKey::unit(1), value + std::string(bytes, 'x'));
        };
    };
    for (const auto &tamper : {unit(5'000'000, 0, 0), unit(1, ~std::uint64_t{0}, 0), unit(1, std::uint64_t{1} << 61, 0),
                               unit(1, 1, 3), unit(1, 2, sizeof(UnitStep))}) {
        tamperWith(tamper);
        EXPECT_EQ(put(*witness_, q1_, "goes on", {.persistence = MQPER_PERSISTENT}), success());
        EXPECT_EQ(get(*witness_, q1_), "small");
        EXPECT_EQ(get(*witness_, q1_), "goes on");
        EXPECT_EQ(findings(), "");
        beginAnew();
    }
}

// Pages are looked at before records are: the library would believe them.
TEST_F(LiveCheck, FindsDamagedPages)
{
    const auto file = folder_ / "QM1" / "live" / "data.mdb";
    EXPECT_EQ(findings(), "");
    std::fstream stream(file, std::ios::binary | std::ios::in | std::ios::out);
    int changed = 0;
    for (std::size_t page = 2; page < 40 && changed == 0; ++page) {
        const auto flags = static_cast<std::streamoff>(page * 4096 + sizeof(std::size_t) + 2);
        const auto look = [&] {
            stream.seekp(flags);
            stream.put(0x22);
            stream.flush();
        };
        stream.seekg(flags);
        if (stream.get() != 2) continue; // no leaf
        look();
        if (!findings().empty()) changed = 1;
        EXPECT_TRUE(changed == 0 || findings().find("is not of its kind") != std::string::npos) << findings();
        stream.seekp(flags);
        stream.put(2);
        stream.flush();
    }
    EXPECT_EQ(changed, 1);
    EXPECT_EQ(findings(), "");
}

TEST_F(LiveCheck, HoldsOfNothingHideNoMessage)
{
    for (const char *text : {"second", "third"})
        ASSERT_EQ(put(*witness_, q1_, text), success());
    tamperWith([this](const Records &records) {
        MessageKey message = records.firstOf(q1_);
        const Hold held{.kind = HoldKind::Got, .slot = 9, .ticket = 0};
        const auto hold = [&] {
            records.write(LiveKey::hold(message), std::string(reinterpret_cast<const char *>(&held), sizeof held));
        };
        hold();
        message.sequence += 1; // the number of a message of no queue, or of one that is gone
        while (records.read(LiveKey::message(message)))
            message.sequence += 1;
        hold();
        records.change<QueueStatus>(LiveKey::queue(q1_), [](QueueStatus &status) { status.held = 2; });
    });
    EXPECT_EQ(browse(*witness_, q1_), (std::vector<std::string>{"second", "third"}));
    EXPECT_EQ(get(*witness_, q1_), "second");
    EXPECT_EQ(get(*witness_, q1_), "third");
}

} // namespace
} // namespace mqrig::qmgr::store::test
