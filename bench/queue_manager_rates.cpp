// Rates of the embedded queue manager through the MQI, one connection, 100-byte bodies, and the time in which a waiting
// getter of another process wakes. Usage: queue_manager_rates QUEUE_MANAGER QUEUE (the queue is emptied).
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include <cmqc.h>

namespace {

using Clock = std::chrono::steady_clock;

constexpr MQLONG bodyLength = 100;

double microsecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

void check(const char *call, MQLONG CompCode, MQLONG Reason)
{
    if (CompCode == MQCC_OK) return;
    std::fprintf(stderr, "%s: CompCode %d, Reason %d\n", call, CompCode, Reason);
    std::exit(1);
}

// A name into a field of the MQI: zero-padded, cut at its end.
void setName(MQCHAR48 field, const char *name)
{
    const std::size_t length = std::min(std::strlen(name), sizeof(MQCHAR48));
    std::memset(field, 0, sizeof(MQCHAR48));
    std::memcpy(field, name, length);
}

// One connection with one queue open for input and output.
struct Client {
    MQHCONN hconn = MQHC_UNUSABLE_HCONN;
    MQHOBJ hobj = MQHO_UNUSABLE_HOBJ;
    MQLONG CompCode = MQCC_OK;
    MQLONG Reason = MQRC_NONE;

    Client(const char *queueManager, const char *queue)
    {
        MQCHAR48 name;
        setName(name, queueManager);
        MQCONN(name, &hconn, &CompCode, &Reason);
        check("MQCONN", CompCode, Reason);
        MQOD od = {MQOD_DEFAULT};
        setName(od.ObjectName, queue);
        MQOPEN(hconn, &od, MQOO_OUTPUT | MQOO_INPUT_SHARED, &hobj, &CompCode, &Reason);
        check("MQOPEN", CompCode, Reason);
    }
    Client(const Client &) = delete;
    Client &operator=(const Client &) = delete;
    ~Client() { MQDISC(&hconn, &CompCode, &Reason); }

    void put(MQLONG persistence, MQLONG options, const void *body)
    {
        MQMD md = {MQMD_DEFAULT};
        MQPMO pmo = {MQPMO_DEFAULT};
        md.Persistence = persistence;
        pmo.Options = options;
        MQPUT(hconn, hobj, &md, &pmo, bodyLength, const_cast<void *>(body), &CompCode, &Reason);
        check("MQPUT", CompCode, Reason);
    }

    // false when the queue is empty.
    bool get(MQLONG options, MQLONG waitInterval, void *body)
    {
        MQMD md = {MQMD_DEFAULT};
        MQGMO gmo = {MQGMO_DEFAULT};
        MQLONG length = 0;
        gmo.Options = options;
        gmo.WaitInterval = waitInterval;
        MQGET(hconn, hobj, &md, &gmo, bodyLength, body, &length, &CompCode, &Reason);
        if (Reason == MQRC_NO_MSG_AVAILABLE) return false;
        check("MQGET", CompCode, Reason);
        return true;
    }

    void commit()
    {
        MQCMIT(hconn, &CompCode, &Reason);
        check("MQCMIT", CompCode, Reason);
    }
};

template <typename Step> void report(const char *what, int rounds, int perRound, Step step)
{
    std::vector<double> samples;
    samples.reserve(static_cast<std::size_t>(rounds));
    const auto begin = Clock::now();
    for (int i = 0; i < rounds; ++i) {
        const auto start = Clock::now();
        step();
        samples.push_back(microsecondsSince(start));
    }
    const double total = microsecondsSince(begin);
    std::sort(samples.begin(), samples.end());
    std::printf("%-44s p50 %8.2f us  p99 %8.2f us  %9.0f messages/s\n", what, samples[samples.size() / 2],
                samples[samples.size() * 99 / 100], 1e6 * rounds * perRound / total);
}

void measureWakeUp(const char *queueManager, const char *queue)
{
    constexpr int rounds = 200;
    int results[2];
    if (pipe(results) != 0) std::exit(1);
    const pid_t getter = fork();
    if (getter == 0) {
        Client client(queueManager, queue);
        for (int i = 0; i < rounds; ++i) {
            char body[bodyLength];
            Clock::rep sent = 0;
            if (!client.get(MQGMO_WAIT | MQGMO_NO_SYNCPOINT, 10000, body)) _exit(1);
            std::memcpy(&sent, body, sizeof sent);
            const double latency = microsecondsSince(Clock::time_point(Clock::duration(sent)));
            if (write(results[1], &latency, sizeof latency) != sizeof latency) _exit(1);
        }
        _exit(0);
    }
    std::vector<double> samples;
    {
        Client client(queueManager, queue);
        for (int i = 0; i < rounds; ++i) {
            usleep(2000); // the getter sleeps by then
            char body[bodyLength] = {};
            const Clock::rep now = Clock::now().time_since_epoch().count();
            std::memcpy(body, &now, sizeof now);
            client.put(MQPER_NOT_PERSISTENT, MQPMO_NO_SYNCPOINT, body);
            double latency = 0;
            if (read(results[0], &latency, sizeof latency) != sizeof latency) std::exit(1);
            samples.push_back(latency);
        }
    }
    waitpid(getter, nullptr, 0);
    std::sort(samples.begin(), samples.end());
    std::printf("%-44s p50 %8.2f us  p99 %8.2f us\n", "waiting getter of another process has it after",
                samples[rounds / 2], samples[rounds * 99 / 100]);
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: queue_manager_rates QUEUE_MANAGER QUEUE\n");
        return 2;
    }
    // The child of this measurement connects for itself, so it goes first.
    measureWakeUp(argv[1], argv[2]);

    Client client(argv[1], argv[2]);
    char body[bodyLength] = {};
    while (client.get(MQGMO_NO_SYNCPOINT, 0, body)) {
    }
    constexpr int fast = 50000;
    constexpr int slow = 2000;
    report("put, non-persistent", fast, 1, [&] { client.put(MQPER_NOT_PERSISTENT, MQPMO_NO_SYNCPOINT, body); });
    report("get, non-persistent", fast, 1, [&] { client.get(MQGMO_NO_SYNCPOINT, 0, body); });
    report("put and get, non-persistent, empty queue", fast, 1, [&] {
        client.put(MQPER_NOT_PERSISTENT, MQPMO_NO_SYNCPOINT, body);
        client.get(MQGMO_NO_SYNCPOINT, 0, body);
    });
    report("put, persistent", slow, 1, [&] { client.put(MQPER_PERSISTENT, MQPMO_NO_SYNCPOINT, body); });
    report("get, persistent", slow, 1, [&] { client.get(MQGMO_NO_SYNCPOINT, 0, body); });
    report("unit of 100 persistent puts", slow / 100, 100, [&] {
        for (int i = 0; i < 100; ++i)
            client.put(MQPER_PERSISTENT, MQPMO_SYNCPOINT, body);
        client.commit();
    });
    report("unit of 100 persistent gets", slow / 100, 100, [&] {
        for (int i = 0; i < 100; ++i)
            client.get(MQGMO_SYNCPOINT, 0, body);
        client.commit();
    });
    return 0;
}
