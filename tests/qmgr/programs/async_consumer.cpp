// Consumes messages with a callback: registers it, starts, suspends and resumes the one consumer, then the connection,
// and stops.
#include <atomic>
#include <chrono>
#include <string>
#include <thread>

#include "program.h"

namespace {

struct Seen {
    std::atomic<int> messages{0};
    std::atomic<int> starts{0};
    std::atomic<int> stops{0};
    std::atomic<int> faults{0};
    std::atomic<bool> inOrder{true};
};

extern "C" void consume(MQHCONN, PMQVOID pMsgDesc, PMQVOID, PMQVOID pBuffer, MQCBC *context)
{
    auto &seen = *static_cast<Seen *>(context->CallbackArea);
    switch (context->CallType) {
    case MQCBCT_START_CALL:
        ++seen.starts;
        break;
    case MQCBCT_STOP_CALL:
        ++seen.stops;
        break;
    case MQCBCT_MSG_REMOVED: {
        const std::string text(static_cast<const char *>(pBuffer), static_cast<std::size_t>(context->DataLength));
        if (static_cast<MQMD *>(pMsgDesc)->PutApplName[0] == ' ') ++seen.faults;
        if (text != std::to_string(seen.messages)) seen.inOrder = false;
        ++seen.messages;
        break;
    }
    default:
        if (context->Reason != MQRC_NO_MSG_AVAILABLE) ++seen.faults;
    }
}

template <class Condition>
bool comesTrue(Condition condition)
{
    for (int i = 0; i < 1500; ++i) {
        if (condition()) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
}

} // namespace

int main()
{
    const MQHCONN consumer = connectToQM1();
    const MQHCONN producer = connectToQM1();
    const MQHOBJ input = openQueue(consumer, "Q1", MQOO_INPUT_SHARED | MQOO_FAIL_IF_QUIESCING);
    const MQHOBJ output = openQueue(producer, "Q1", MQOO_OUTPUT);
    int number = 0;
    const auto putNext = [&] { putText(producer, output, std::to_string(number++).c_str()); };

    Seen seen;
    MQCBD cbd = {MQCBD_DEFAULT};
    cbd.CallbackFunction = reinterpret_cast<MQPTR>(consume);
    cbd.CallbackArea = &seen;
    cbd.Options = MQCBDO_START_CALL | MQCBDO_STOP_CALL;
    MQMD md = {MQMD_DEFAULT};
    MQGMO gmo = {MQGMO_DEFAULT};
    gmo.Options = MQGMO_NO_SYNCPOINT;
    MQCTLO ctlo = {MQCTLO_DEFAULT};
    OK(MQCB(consumer, MQOP_REGISTER, &cbd, input, &md, &gmo, &cc, &rc));
    for (int i = 0; i < 10; ++i)
        putNext();
    CHECK(seen.messages == 0);

    OK(MQCTL(consumer, MQOP_START, &ctlo, &cc, &rc));
    CHECK(comesTrue([&] { return seen.messages == 10; }));
    CHECK(seen.starts == 1);
    // While messages are consumed the connection is the callback's.
    MQHOBJ other = MQHO_UNUSABLE_HOBJ;
    MQOD od = {MQOD_DEFAULT};
    NAME(od.ObjectName, "Q1");
    FAILS(MQRC_HCONN_ASYNC_ACTIVE, MQOPEN(consumer, &od, MQOO_OUTPUT, &other, &cc, &rc));

    OK(MQCTL(consumer, MQOP_SUSPEND, &ctlo, &cc, &rc));
    for (int i = 0; i < 10; ++i)
        putNext();
    CHECK(seen.messages == 10);
    OK(MQCB(consumer, MQOP_SUSPEND, &cbd, input, &md, &gmo, &cc, &rc));
    OK(MQCB(consumer, MQOP_RESUME, &cbd, input, &md, &gmo, &cc, &rc));
    OK(MQCTL(consumer, MQOP_RESUME, &ctlo, &cc, &rc));
    CHECK(comesTrue([&] { return seen.messages == 20; }));

    OK(MQCTL(consumer, MQOP_STOP, &ctlo, &cc, &rc));
    CHECK(seen.stops == 1);
    putNext();
    CHECK(seen.messages == 20);
    OK(MQCB(consumer, MQOP_DEREGISTER, &cbd, input, &md, &gmo, &cc, &rc));
    CHECK(seen.inOrder);
    CHECK(seen.faults == 0);

    char text[16];
    getText(consumer, input, MQGMO_NO_SYNCPOINT, text, sizeof text);
    CHECK(cc == MQCC_OK && std::string(text) == "20");
    closeAndDisconnect(producer, output);
    closeAndDisconnect(consumer, input);
    return 0;
}
