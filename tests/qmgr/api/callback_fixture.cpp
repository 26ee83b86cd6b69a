#include "callback_fixture.h"

#include <array>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <thread>

#include "qmgr/core/reconnect.h"

namespace mqrig::qmgr::testing {
namespace {

constexpr auto longTime = std::chrono::seconds(15);

const core::ReconnectTimes timesOfMq = core::reconnectTimes;
std::array<std::chrono::milliseconds, 1> testDelay{};

} // namespace

void MQENTRY Diary::callback(MQHCONN hconn, PMQVOID md, PMQVOID gmo, PMQVOID buffer, PMQCBC context)
{
    auto &diary = *static_cast<Diary *>(context->CallbackArea);
    Told told{hconn, *context, {}, {MQMD_DEFAULT}, {MQGMO_DEFAULT}, md != nullptr};
    const bool message = context->CallType == MQCBCT_MSG_REMOVED || context->CallType == MQCBCT_MSG_NOT_REMOVED;
    if (message) {
        const MQLONG length = std::min(context->DataLength, context->BufferLength);
        if (length > 0) told.body.assign(static_cast<const char *>(buffer), static_cast<std::size_t>(length));
        if (md != nullptr) std::memcpy(&told.md, md, MQMD_LENGTH_1);
        if (gmo != nullptr && static_cast<MQGMO *>(gmo)->Version == MQGMO_CURRENT_VERSION)
            std::memcpy(&told.gmo, gmo, sizeof told.gmo);
    }
    {
        const std::lock_guard lock(diary.mutex_);
        diary.entries_.push_back(told);
        diary.written_.notify_all();
    }
    if (diary.then) diary.then(hconn, *context);
}

std::vector<Told> Diary::entries(std::size_t count)
{
    std::unique_lock lock(mutex_);
    EXPECT_TRUE(written_.wait_for(lock, longTime, [&] { return entries_.size() >= count; })) << entries_.size();
    return entries_;
}

std::vector<MQLONG> Diary::reasons(std::size_t count)
{
    std::vector<MQLONG> reasons;
    for (const Told &told : entries(count))
        reasons.push_back(told.context.Reason);
    return reasons;
}

std::size_t Diary::size()
{
    const std::lock_guard lock(mutex_);
    return entries_.size();
}

CallbackTest::CallbackTest()
{
    reconnectEvery(std::chrono::milliseconds(20));
}

CallbackTest::~CallbackTest()
{
    reconnectAsLongAsMq();
}

void CallbackTest::reconnectAsLongAsMq()
{
    core::reconnectTimes = timesOfMq;
}

MQCBD CallbackTest::handlerInto(Diary &diary, MQLONG options)
{
    MQCBD cbd = {MQCBD_DEFAULT};
    cbd.CallbackType = MQCBT_EVENT_HANDLER;
    cbd.Options = options;
    cbd.CallbackFunction = reinterpret_cast<MQPTR>(Diary::callback);
    cbd.CallbackArea = &diary;
    return cbd;
}

Codes CallbackTest::manage(MQHCONN hconn, MQLONG operation, MQCBD cbd)
{
    Codes codes;
    MQCB(hconn, operation, &cbd, MQHO_NONE, nullptr, nullptr, &codes.CompCode, &codes.Reason);
    return codes;
}

Codes CallbackTest::manage(MQHCONN hconn, MQLONG operation, MQCBD cbd, MQHOBJ hobj, MQMD md, MQGMO gmo)
{
    Codes codes;
    MQCB(hconn, operation, &cbd, hobj, &md, &gmo, &codes.CompCode, &codes.Reason);
    return codes;
}

Codes CallbackTest::control(MQHCONN hconn, MQLONG operation, MQLONG options, MQPTR area)
{
    MQCTLO ctlo = {MQCTLO_DEFAULT};
    ctlo.Options = options;
    ctlo.ConnectionArea = area;
    Codes codes;
    MQCTL(hconn, operation, &ctlo, &codes.CompCode, &codes.Reason);
    return codes;
}

MQHCONN CallbackTest::connectWith(MQLONG options, std::string_view name)
{
    MQCNO cno = {MQCNO_DEFAULT};
    cno.Options = options;
    MQHCONN hconn = MQHC_UNUSABLE_HCONN;
    EXPECT_EQ(tryConnectX(name, cno, hconn), ok);
    return hconn;
}

void CallbackTest::reconnectEvery(std::chrono::milliseconds delay, std::chrono::milliseconds timeout)
{
    testDelay = {delay};
    core::reconnectTimes = {testDelay, timeout};
}

bool comesTrue(const std::function<bool()> &condition)
{
    const auto until = std::chrono::steady_clock::now() + longTime;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= until) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

std::size_t threads()
{
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return static_cast<std::size_t>(std::distance(begin(tasks), end(tasks)));
}

} // namespace mqrig::qmgr::testing
