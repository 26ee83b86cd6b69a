// Random calls: of two connections in turn against a model of a queue, and of many threads at once.
#include "callback_fixture.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <random>
#include <thread>

namespace mqrig::qmgr::testing {
namespace {

using Bodies = std::vector<std::string>;

class Random {
public:
    explicit Random(unsigned seed) : engine_(seed) {}
    int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(engine_); }
    bool oneIn(int times) { return below(times) == 0; }

private:
    std::mt19937 engine_;
};

// What a queue is to its users: messages by priority, then in the order in which they were put. A message that somebody
// has put or got in a unit of work is nobody else's until the unit ends.
class Model {
public:
    enum class State { There, Put, Got };
    struct Message {
        std::string body;
        MQLONG priority = 0;
        State state = State::There;
        std::size_t owner = 0;
    };

    void put(std::size_t owner, bool unit, const std::string &body, MQLONG priority)
    {
        const auto place = std::find_if(messages_.begin(), messages_.end(),
                                        [&](const Message &message) { return message.priority < priority; });
        messages_.insert(place, {body, priority, unit ? State::Put : State::There, owner});
    }
    std::optional<std::string> get(std::size_t owner, bool unit)
    {
        const auto found = std::find_if(messages_.begin(), messages_.end(),
                                        [](const Message &message) { return message.state == State::There; });
        if (found == messages_.end()) return std::nullopt;
        const std::string body = found->body;
        if (unit) {
            found->state = State::Got;
            found->owner = owner;
        } else {
            messages_.erase(found);
        }
        return body;
    }
    Bodies visible() const
    {
        Bodies bodies;
        for (const Message &message : messages_)
            if (message.state == State::There) bodies.push_back(message.body);
        return bodies;
    }
    MQLONG depth() const
    {
        return static_cast<MQLONG>(std::count_if(messages_.begin(), messages_.end(),
                                                 [](const Message &message) { return message.state != State::Got; }));
    }
    void commit(std::size_t owner) { end(owner, State::Put, State::Got); }
    void backOut(std::size_t owner) { end(owner, State::Got, State::Put); }

private:
    void end(std::size_t owner, State stays, State goes)
    {
        messages_.remove_if([&](const Message &message) { return message.state == goes && message.owner == owner; });
        for (Message &message : messages_)
            if (message.state == stays && message.owner == owner) message.state = State::There;
    }

    std::list<Message> messages_;
};

class Stress : public CallbackTest {
public:
    static constexpr MQLONG everything = MQOO_INPUT_SHARED | MQOO_OUTPUT | MQOO_BROWSE | MQOO_INQUIRE;

    Stress() { alterQueue("Q1", {{MQIA_MAX_Q_DEPTH, 100000}}); }

    static MQMD mdWith(MQLONG priority, bool persistent)
    {
        MQMD md = withPriority(priority);
        md.Persistence = persistent ? MQPER_PERSISTENT : MQPER_NOT_PERSISTENT;
        return md;
    }
    static Bodies browse(MQHCONN hconn, MQHOBJ hobj)
    {
        Bodies bodies;
        for (Got got = get(hconn, hobj, MQGMO_BROWSE_FIRST); got.codes == ok; got = get(hconn, hobj, MQGMO_BROWSE_NEXT))
            bodies.push_back(got.body);
        return bodies;
    }
    static MQLONG depthOf(MQHCONN hconn, MQHOBJ hobj)
    {
        MQLONG selector = MQIA_CURRENT_Q_DEPTH;
        MQLONG value = -1;
        Codes codes;
        MQINQ(hconn, hobj, 1, &selector, 1, &value, 0, nullptr, &codes.CompCode, &codes.Reason);
        EXPECT_EQ(codes, ok);
        return value;
    }
};

TEST_F(Stress, RandomCallsOfTwoConnectionsAgreeWithTheModel)
{
    for (unsigned seed = 1; seed <= 3; ++seed) {
        Random random(seed);
        Model model;
        std::array<MQHCONN, 2> hconns{connect(), connect()};
        std::array<MQHOBJ, 2> hobjs{open(hconns[0], "Q1", everything), open(hconns[1], "Q1", everything)};
        for (int step = 0; step < 600; ++step) {
            const auto who = static_cast<std::size_t>(random.below(2));
            const MQHCONN hconn = hconns[who];
            const MQHOBJ hobj = hobjs[who];
            const bool unit = random.oneIn(2);
            const std::string at = "seed " + std::to_string(seed) + " step " + std::to_string(step);
            switch (random.below(10)) {
            case 0:
            case 1:
            case 2:
            case 3: {
                const MQLONG priority = random.below(3);
                const MQPMO pmo = pmoWith(unit ? MQPMO_SYNCPOINT : MQPMO_NO_SYNCPOINT);
                ASSERT_EQ(put(hconn, hobj, at, mdWith(priority, random.oneIn(8)), pmo), ok) << at;
                model.put(who, unit, at, priority);
                break;
            }
            case 4:
            case 5:
            case 6: {
                const Got got = get(hconn, hobj, unit ? MQGMO_SYNCPOINT : MQGMO_NO_SYNCPOINT);
                const auto expected = model.get(who, unit);
                ASSERT_EQ(got.codes, expected ? ok : failed(MQRC_NO_MSG_AVAILABLE)) << at;
                if (expected) {
                    ASSERT_EQ(got.body, *expected) << at;
                }
                break;
            }
            case 7:
                ASSERT_EQ(commit(hconn), ok) << at;
                model.commit(who);
                break;
            case 8:
                ASSERT_EQ(backOut(hconn), ok) << at;
                model.backOut(who);
                break;
            default:
                ASSERT_EQ(browse(hconn, hobj), model.visible()) << at;
                ASSERT_EQ(depthOf(hconn, hobj), model.depth()) << at;
            }
        }
        // A disconnect commits.
        for (const std::size_t who : {0U, 1U}) {
            EXPECT_EQ(disconnect(hconns[who]), ok);
            model.commit(who);
        }
        MQHCONN last = connect();
        EXPECT_EQ(drain(last, open(last, "Q1", everything)), model.visible()) << seed;
        disconnect(last);
    }
}

// What threads have put for good, and what they have got for good.
class Ledger {
public:
    void add(const std::vector<std::string> &put, const std::vector<std::string> &got)
    {
        const std::lock_guard lock(mutex_);
        for (const std::string &body : put)
            ++balance_[body];
        for (const std::string &body : got)
            --balance_[body];
    }
    // Every message that is left.
    Bodies left() const
    {
        Bodies bodies;
        for (const auto &[body, count] : balance_) {
            EXPECT_TRUE(count == 0 || count == 1) << body << " " << count;
            if (count == 1) bodies.push_back(body);
        }
        return bodies;
    }

private:
    std::mutex mutex_;
    std::map<std::string, int> balance_;
};

TEST_F(Stress, ConnectionsOfManyThreadsLoseAndDoubleNothing)
{
    constexpr unsigned workers = 8;
    constexpr int steps = 250;
    Ledger ledger;
    std::vector<std::thread> threads;
    for (unsigned worker = 0; worker < workers; ++worker)
        threads.emplace_back([&, worker] {
            Random random(worker);
            Bodies put;
            Bodies got;
            Bodies unitPut;
            Bodies unitGot;
            MQHCONN hconn = connect();
            MQHOBJ hobj = open(hconn, "Q1", everything);
            const auto keep = [&] {
                put.insert(put.end(), unitPut.begin(), unitPut.end());
                got.insert(got.end(), unitGot.begin(), unitGot.end());
                unitPut.clear();
                unitGot.clear();
            };
            for (int step = 0; step < steps; ++step) {
                const bool unit = random.oneIn(2);
                const std::string body = std::to_string(worker) + "." + std::to_string(step);
                switch (random.below(12)) {
                case 0:
                case 1:
                case 2:
                case 3: {
                    const MQPMO pmo = pmoWith(unit ? MQPMO_SYNCPOINT : MQPMO_NO_SYNCPOINT);
                    EXPECT_EQ(CallbackTest::put(hconn, hobj, body, mdWith(random.below(3), random.oneIn(8)), pmo), ok);
                    (unit ? unitPut : put).push_back(body);
                    break;
                }
                case 4:
                case 5:
                case 6:
                case 7: {
                    const Got message = get(hconn, hobj, unit ? MQGMO_SYNCPOINT : MQGMO_NO_SYNCPOINT);
                    if (message.codes == ok) (unit ? unitGot : got).push_back(message.body);
                    break;
                }
                case 8:
                    EXPECT_EQ(commit(hconn), ok);
                    keep();
                    break;
                case 9:
                    EXPECT_EQ(backOut(hconn), ok);
                    unitPut.clear();
                    unitGot.clear();
                    break;
                case 10:
                    EXPECT_EQ(close(hconn, hobj), ok);
                    hobj = open(hconn, "Q1", everything);
                    break;
                default:
                    EXPECT_EQ(disconnect(hconn), ok);
                    keep();
                    hconn = connect();
                    hobj = open(hconn, "Q1", everything);
                }
            }
            EXPECT_EQ(disconnect(hconn), ok);
            keep();
            ledger.add(put, got);
        });
    for (std::thread &thread : threads)
        thread.join();
    MQHCONN last = connect();
    Bodies found = drain(last, open(last, "Q1", everything));
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, ledger.left());
}

// They share a unit of work, so nobody backs out.
TEST_F(Stress, ThreadsOnOneConnectionLoseAndDoubleNothing)
{
    constexpr unsigned workers = 8;
    constexpr int steps = 200;
    Ledger ledger;
    Diary events;
    MQHCONN hconn = connect();
    const MQHOBJ q1 = open(hconn, "Q1", everything);
    std::vector<std::thread> threads;
    for (unsigned worker = 0; worker < workers; ++worker)
        threads.emplace_back([&, worker] {
            Random random(worker + 100);
            Bodies put;
            Bodies got;
            for (int step = 0; step < steps; ++step) {
                const bool unit = random.oneIn(2);
                const std::string body = std::to_string(worker) + "." + std::to_string(step);
                switch (random.below(10)) {
                case 0:
                case 1:
                case 2: {
                    const MQPMO pmo = pmoWith(unit ? MQPMO_SYNCPOINT : MQPMO_NO_SYNCPOINT);
                    EXPECT_EQ(CallbackTest::put(hconn, q1, body, mdWith(random.below(3), random.oneIn(8)), pmo), ok);
                    put.push_back(body);
                    break;
                }
                case 3:
                case 4:
                case 5: {
                    const Got message = get(hconn, q1, unit ? MQGMO_SYNCPOINT : MQGMO_NO_SYNCPOINT);
                    if (message.codes == ok) got.push_back(message.body);
                    break;
                }
                case 6:
                    EXPECT_EQ(commit(hconn), ok);
                    break;
                case 7: {
                    MQHOBJ own = open(hconn, "Q1", everything);
                    get(hconn, own, MQGMO_BROWSE_FIRST);
                    EXPECT_GE(depthOf(hconn, own), 0);
                    EXPECT_EQ(close(hconn, own), ok);
                    break;
                }
                case 8:
                    EXPECT_EQ(manage(hconn, MQOP_REGISTER, handlerInto(events)), ok);
                    break;
                default:
                    manage(hconn, MQOP_DEREGISTER, handlerInto(events));
                }
            }
            ledger.add(put, got);
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(commit(hconn), ok);
    Bodies found = drain(hconn, q1);
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, ledger.left());
    EXPECT_EQ(disconnect(hconn), ok);
    EXPECT_EQ(events.size(), 0U);
}

// Consumers of messages on several connections, and a queue manager that comes and goes: each persistent message is
// consumed in a unit of work that is committed once.
TEST_F(Stress, ConsumersThatReconnectCommitEachMessageOnce)
{
    constexpr std::size_t messages = 60;
    struct Counted {
        std::mutex mutex;
        std::map<std::string, int> times;
    } counted;
    std::array<MQHCONN, 2> hconns{};
    for (MQHCONN &hconn : hconns) {
        hconn = connectWith(MQCNO_RECONNECT_Q_MGR);
        MQCBD cbd = {MQCBD_DEFAULT};
        cbd.CallbackFunction = reinterpret_cast<MQPTR>(+[](MQHCONN its, PMQVOID, PMQVOID, PMQVOID buffer,
                                                           PMQCBC context) {
            if (context->CallType != MQCBCT_MSG_REMOVED) return;
            auto &into = *static_cast<Counted *>(context->CallbackArea);
            const std::string body(static_cast<const char *>(buffer), static_cast<std::size_t>(context->DataLength));
            if (commit(its) != ok) return;
            const std::lock_guard lock(into.mutex);
            ++into.times[body];
        });
        cbd.CallbackArea = &counted;
        MQGMO gmo = gmoWith(MQGMO_SYNCPOINT, MQGMO_VERSION_2);
        gmo.MatchOptions = MQMO_NONE;
        EXPECT_EQ(manage(hconn, MQOP_REGISTER, cbd, open(hconn, "Q1", everything), {MQMD_DEFAULT}, gmo), ok);
        EXPECT_EQ(control(hconn, MQOP_START), ok);
    }
    MQHCONN putter = connectWith(MQCNO_RECONNECT_Q_MGR);
    const MQHOBJ output = open(putter, "Q1", MQOO_OUTPUT);
    for (std::size_t i = 0; i < messages; ++i) {
        EXPECT_EQ(put(putter, output, std::to_string(i), persistentMd()), ok);
        if (i % 20 == 10) {
            endToReconnect();
            start();
        }
    }
    EXPECT_TRUE(comesTrue([&] {
        const std::lock_guard lock(counted.mutex);
        return counted.times.size() == messages;
    }));
    for (MQHCONN &hconn : hconns)
        EXPECT_EQ(disconnect(hconn), ok);
    for (const auto &[body, times] : counted.times)
        EXPECT_EQ(times, 1) << body;
    EXPECT_EQ(depth("Q1"), 0);
}

} // namespace
} // namespace mqrig::qmgr::testing
