// A subscription that a program and a command alter at once: each alters its own attribute, and leaves the other's.
#include <atomic>
#include <functional>
#include <optional>
#include <string>
#include <thread>

#include "qmgr/command/mqsc_interpreter.h"
#include "qmgr/objects/publish_subscribe.h"
#include "topics_fixture.h"

namespace mqrig::qmgr::testing {
namespace {

constexpr int rounds = 100;

class AlterSubscription : public TopicTest {
public:
    AlterSubscription()
    {
        sub_ = trySubscribe(hconn, sdFor("t", MQSO_CREATE | MQSO_DURABLE, "S"), q1);
        EXPECT_EQ(sub_.codes, ok);
    }

    // As a program: USERDATA.
    void alterByProgram(const std::string &number)
    {
        MQSD sd = sdFor("t", MQSO_ALTER | MQSO_DURABLE, "S");
        sd.SubUserData = charv(number);
        EXPECT_EQ(trySubscribe(hconn, sd, sub_.queue).codes, ok);
    }
    // As an administrator: DESTCORL.
    void alterByCommand(const std::string &number)
    {
        std::optional<std::string> line = "ALTER SUB(S) DESTCORL(" + number + ")";
        command::MqscReader reader([&] { return std::exchange(line, std::nullopt); }, [](std::string_view, bool) {});
        const auto answer = command::runMqsc(*attached_.attachment, *reader.next());
        EXPECT_EQ(answer.result, command::CommandResult::Done) << answer.lines.front();
    }
    objects::Subscription now() const
    {
        const auto stored = objects::findSubscription(*looking_.attachment, "S");
        return stored ? stored->subscription : objects::Subscription();
    }

    // Runs `alter` and, once the other, who never stops, has altered the subscription after that, `check`.
    static void race(const std::function<void(const std::string &)> &alter,
                     const std::function<void(const std::string &)> &check,
                     const std::function<void(const std::string &)> &other)
    {
        std::atomic<bool> stop = false;
        std::atomic<int> done = 0;
        std::thread hurrying([&] {
            while (!stop && !HasFailure())
                other(std::to_string(1000 + ++done % 9000));
        });
        for (int round = 0; round < rounds && !HasFailure(); ++round) {
            const std::string number = std::to_string(1000 + round);
            alter(number);
            // The one that runs at this moment may have begun before; the one after it ends only with the next.
            for (const int before = done; done < before + 3 && !HasFailure();)
                std::this_thread::yield();
            check(number);
        }
        stop = true;
        hurrying.join();
    }

private:
    Subscribed sub_;
    store::Attached attached_ = store::attach(storeFolder(), "QM1");
    store::Attached looking_ = store::attach(storeFolder(), "QM1");
};

TEST_F(AlterSubscription, ProgramDoesNotUndoWhatACommandHasAltered)
{
    race([&](const std::string &number) { alterByCommand(number); },
         [&](const std::string &number) {
             EXPECT_EQ(objects::hexadecimal(now().correlId).substr(0, number.size()), number);
         },
         [&](const std::string &number) { alterByProgram(number); });
}

TEST_F(AlterSubscription, CommandDoesNotUndoWhatAProgramHasAltered)
{
    race([&](const std::string &number) { alterByProgram(number); },
         [&](const std::string &number) { EXPECT_EQ(now().userData, number); },
         [&](const std::string &number) { alterByCommand(number); });
}

} // namespace
} // namespace mqrig::qmgr::testing
