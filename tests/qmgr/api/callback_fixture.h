// Callbacks that write down what they are told, and connections that follow their queue manager.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "fixture.h"

namespace mqrig::qmgr::testing {

// One call of a callback.
struct Told {
    MQHCONN hconn = MQHC_UNUSABLE_HCONN;
    MQCBC context{};
    std::string body; // of a message
    MQMD md = {MQMD_DEFAULT};
    MQGMO gmo = {MQGMO_DEFAULT};
    bool described = false; // it came with a descriptor
};

// What a callback was told. Outlives the registration.
class Diary {
public:
    // Called for each call on the library's thread, when it has been written down; may change the context.
    std::function<void(MQHCONN, MQCBC &)> then;

    static void MQENTRY callback(MQHCONN hconn, PMQVOID md, PMQVOID gmo, PMQVOID buffer, PMQCBC context);

    // Waits until there are so many entries; then all of them.
    std::vector<Told> entries(std::size_t count);
    // The reasons of the same.
    std::vector<MQLONG> reasons(std::size_t count);
    std::size_t size();

private:
    std::mutex mutex_;
    std::condition_variable written_;
    std::vector<Told> entries_;
};

class CallbackTest : public QueueManagerTest {
public:
    CallbackTest();
    ~CallbackTest() override;

    // An event handler that writes into the diary.
    static MQCBD handlerInto(Diary &diary, MQLONG options = MQCBDO_NONE);
    static Codes manage(MQHCONN hconn, MQLONG operation, MQCBD cbd);
    static Codes manage(MQHCONN hconn, MQLONG operation, MQCBD cbd, MQHOBJ hobj, MQMD md, MQGMO gmo);
    static Codes control(MQHCONN hconn, MQLONG operation, MQLONG options = MQCTLO_NONE, MQPTR area = nullptr);

    static MQHCONN connectWith(MQLONG options, std::string_view name = "QM1");

    // Attempts to reconnect are made every `delay`, for so long in all.
    static void reconnectEvery(std::chrono::milliseconds delay,
                               std::chrono::milliseconds timeout = std::chrono::seconds(15));
    // As long as MQ does.
    static void reconnectAsLongAsMq();
};

// Waits for the condition; false if it does not come true in a long time.
bool comesTrue(const std::function<bool()> &condition);

// Threads of this process.
std::size_t threads();

} // namespace mqrig::qmgr::testing
