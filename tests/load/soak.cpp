// Load on a queue manager for as long as is wanted: whether memory and files stay bounded by what is stored, whether
// rates decay, and whether everything put is got.
//
// usage: soak QMGR QUEUE-PREFIX FOLDER-OF-THE-QUEUE-MANAGER name=value...
//   deep=N         messages that one queue is filled with and emptied of, twice     processes=N, connections=N
//   handles=N      queues open at once                                              seconds=N, of mixed work
//   large=BYTES    the largest message                                              interval=N, seconds between figures
//
// Queues <prefix>.DEEP and <prefix>.1 to <prefix>.8 must be there. An ordinary MQI program: it knows nothing of the
// queue manager but the folder whose size it shows. Ends with 1 when a call failed that should not, when messages are
// missing, or when files have grown with what went through rather than with what was stored.

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <random>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "cmqc.h"

namespace {

using Clock = std::chrono::steady_clock;

struct Wanted {
    std::string queueManager;
    std::string prefix;
    std::filesystem::path folder;
    long deep = 1'000'000;
    long processes = 64;
    long connections = 256;
    long handles = 10'000;
    long large = 100'000'000;
    long seconds = 3600;
    long interval = 60;
};
constexpr long queueCount = 8;

// What the processes have done, in memory that they share.
struct Counts {
    std::atomic<long> puts;
    std::atomic<long> gets;
    std::atomic<long> browses;
    std::atomic<long> moves;
    std::atomic<long> units;
    std::atomic<long> backouts;
    std::atomic<long> depth; // committed puts less committed gets
    std::atomic<bool> stop;
};

[[noreturn]] void giveUp(const char *call, MQLONG CompCode, MQLONG Reason)
{
    std::fprintf(stderr, "soak: %s: CompCode %d, Reason %d\n", call, static_cast<int>(CompCode),
                 static_cast<int>(Reason));
    _exit(1);
}

void mustBeOk(const char *call, MQLONG CompCode, MQLONG Reason)
{
    if (CompCode != MQCC_OK) giveUp(call, CompCode, Reason);
}

class Connection {
public:
    explicit Connection(const Wanted &wanted)
    {
        std::array<char, MQ_Q_MGR_NAME_LENGTH + 1> name{};
        std::snprintf(name.data(), name.size(), "%-48s", wanted.queueManager.c_str());
        MQLONG CompCode = 0;
        MQLONG Reason = 0;
        MQCONN(name.data(), &hconn_, &CompCode, &Reason);
        mustBeOk("MQCONN", CompCode, Reason);
    }
    Connection(Connection &&other) noexcept : hconn_(std::exchange(other.hconn_, MQHC_UNUSABLE_HCONN)) {}
    Connection &operator=(Connection &&) = delete;
    ~Connection()
    {
        if (hconn_ == MQHC_UNUSABLE_HCONN) return;
        MQLONG CompCode = 0;
        MQLONG Reason = 0;
        MQDISC(&hconn_, &CompCode, &Reason);
    }
    [[nodiscard]] MQHOBJ open(const std::string &queue, MQLONG Options) const
    {
        MQOD od = {MQOD_DEFAULT};
        std::memcpy(od.ObjectName, queue.c_str(), std::min<std::size_t>(queue.size(), MQ_Q_NAME_LENGTH));
        MQHOBJ hobj = MQHO_UNUSABLE_HOBJ;
        MQLONG CompCode = 0;
        MQLONG Reason = 0;
        MQOPEN(hconn_, &od, Options, &hobj, &CompCode, &Reason);
        mustBeOk("MQOPEN", CompCode, Reason);
        return hobj;
    }
    void put(MQHOBJ hobj, std::string_view body, MQLONG persistence, MQLONG Options) const
    {
        MQMD md = {MQMD_DEFAULT};
        md.Persistence = persistence;
        MQPMO pmo = {MQPMO_DEFAULT};
        pmo.Options = Options;
        MQLONG CompCode = 0;
        MQLONG Reason = 0;
        MQPUT(hconn_, hobj, &md, &pmo, static_cast<MQLONG>(body.size()), const_cast<char *>(body.data()), // NOLINT
              &CompCode, &Reason);
        mustBeOk("MQPUT", CompCode, Reason);
    }
    // The length of the message, or -1 if there is none. What does not fit the buffer is cut off.
    long get(MQHOBJ hobj, std::vector<char> &buffer, MQLONG Options) const
    {
        MQMD md = {MQMD_DEFAULT};
        MQGMO gmo = {MQGMO_DEFAULT};
        gmo.Options = Options | MQGMO_ACCEPT_TRUNCATED_MSG;
        MQLONG length = 0;
        MQLONG CompCode = 0;
        MQLONG Reason = 0;
        MQGET(hconn_, hobj, &md, &gmo, static_cast<MQLONG>(buffer.size()), buffer.data(), &length, &CompCode, &Reason);
        if (Reason == MQRC_NO_MSG_AVAILABLE) return -1;
        if (CompCode == MQCC_FAILED) giveUp("MQGET", CompCode, Reason);
        persistence_ = md.Persistence;
        return length;
    }
    [[nodiscard]] MQLONG persistenceGot() const { return persistence_; }
    void commit() const
    {
        MQLONG CompCode = 0;
        MQLONG Reason = 0;
        MQCMIT(hconn_, &CompCode, &Reason);
        mustBeOk("MQCMIT", CompCode, Reason);
    }
    void backOut() const
    {
        MQLONG CompCode = 0;
        MQLONG Reason = 0;
        MQBACK(hconn_, &CompCode, &Reason);
        mustBeOk("MQBACK", CompCode, Reason);
    }
    void close(MQHOBJ hobj) const
    {
        MQLONG CompCode = 0;
        MQLONG Reason = 0;
        MQCLOSE(hconn_, &hobj, MQCO_NONE, &CompCode, &Reason);
        mustBeOk("MQCLOSE", CompCode, Reason);
    }

private:
    MQHCONN hconn_ = MQHC_UNUSABLE_HCONN;
    mutable MQLONG persistence_ = 0;
};

double since(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// Megabytes of memory of this process, pages shared with others left out.
double ownMemory(pid_t process)
{
    std::ifstream statm("/proc/" + std::to_string(process) + "/statm");
    double size = 0;
    double resident = 0;
    double shared = 0;
    statm >> size >> resident >> shared;
    return (resident - shared) * 4096 / 1e6;
}

// Seconds of a processor that this process has used: unlike the time of day, other work on the machine is not in it.
double processorTime(pid_t process)
{
    std::ifstream stat("/proc/" + std::to_string(process) + "/stat");
    std::string fields;
    std::getline(stat, fields);
    const std::size_t name = fields.rfind(')'); // a name may hold anything
    if (name == std::string::npos) return 0;
    std::istringstream rest(fields.substr(name + 1));
    std::string skipped;
    for (int field = 3; field < 14; ++field)
        rest >> skipped;
    double user = 0;
    double system = 0;
    rest >> user >> system;
    return (user + system) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

struct Files {
    double live = 0;
    double log = 0;
    double ahead = 0;
};

Files filesOf(const Wanted &wanted)
{
    const auto size = [](const std::filesystem::path &file) {
        struct stat status {};
        return stat(file.c_str(), &status) == 0 ? static_cast<double>(status.st_size) / 1e6 : 0.0;
    };
    return {size(wanted.folder / "live" / "data.mdb"), size(wanted.folder / "log.db"),
            size(wanted.folder / "log.db-wal")};
}

void showFiles(const Wanted &wanted)
{
    const Files files = filesOf(wanted);
    std::printf("live %.0f MB, log %.0f MB, write-ahead %.0f MB", files.live, files.log, files.ahead);
}

std::string queueName(const Wanted &wanted, long number)
{
    return wanted.prefix + '.' + std::to_string(1 + number % queueCount);
}

// Fills a queue and empties it again, in units of 100 and 10,000; every tenth message is persistent.
bool deepQueue(const Wanted &wanted)
{
    const Connection connection(wanted);
    const MQHOBJ hobj = connection.open(wanted.prefix + ".DEEP", MQOO_OUTPUT | MQOO_INPUT_SHARED);
    const std::string body(200, 'd');
    std::vector<char> buffer(1000);
    std::array<double, 2> live{};
    for (int round = 0; round < 2; ++round) {
        std::array<double, 10> puts{};
        std::array<double, 10> gets{};
        const long tenth = std::max(wanted.deep / 10, 1L);
        for (std::size_t part = 0; part < 10; ++part) {
            const auto start = Clock::now();
            for (long n = 0; n < tenth; ++n) {
                connection.put(hobj, body, n % 10 == 0 ? MQPER_PERSISTENT : MQPER_NOT_PERSISTENT, MQPMO_SYNCPOINT);
                if (n % 100 == 99) connection.commit();
            }
            connection.commit();
            puts[part] = static_cast<double>(tenth) / since(start);
        }
        live[static_cast<std::size_t>(round)] = filesOf(wanted).live;
        std::printf("deep, round %d: %ld messages stored, %.0f/s in the first tenth, %.0f/s in the last; ", round + 1,
                    10 * tenth, puts.front(), puts.back());
        showFiles(wanted);
        std::printf("\n");
        long got = 0;
        for (std::size_t part = 0; part < 10; ++part) {
            const auto start = Clock::now();
            for (long n = 0; n < tenth; ++n) {
                if (connection.get(hobj, buffer, MQGMO_SYNCPOINT) < 0) break;
                ++got;
                if (n % 10'000 == 9'999) connection.commit();
            }
            connection.commit();
            gets[part] = static_cast<double>(tenth) / since(start);
        }
        std::printf("deep, round %d: %ld messages got, %.0f/s in the first tenth, %.0f/s in the last; ", round + 1, got,
                    gets.front(), gets.back());
        showFiles(wanted);
        std::printf("; own memory %.0f MB\n", ownMemory(getpid()));
        std::fflush(stdout);
        if (got != 10 * tenth || connection.get(hobj, buffer, MQGMO_NO_SYNCPOINT) >= 0) {
            std::printf("FAILED: %ld messages were put, %ld got\n", 10 * tenth, got);
            return false;
        }
    }
    if (live[1] > live[0] * 1.25) {
        std::printf("FAILED: the space of the emptied queue was not used again\n");
        return false;
    }
    return true;
}

bool manyHandles(const Wanted &wanted)
{
    const double before = ownMemory(getpid());
    const auto start = Clock::now();
    std::vector<Connection> connections;
    std::vector<MQHOBJ> handles;
    const long each = 1000;
    std::vector<char> buffer(1000);
    for (long n = 0; n < wanted.handles; ++n) {
        if (n % each == 0) connections.emplace_back(wanted);
        handles.push_back(connections.back().open(queueName(wanted, n), MQOO_OUTPUT | MQOO_INPUT_SHARED | MQOO_BROWSE));
    }
    const double opened = since(start);
    const double memory = ownMemory(getpid()) - before;
    const auto work = Clock::now();
    bool all = true;
    for (long n = 0; n < wanted.handles; ++n) {
        const Connection &connection = connections[static_cast<std::size_t>(n / each)];
        const MQHOBJ hobj = handles[static_cast<std::size_t>(n)];
        connection.put(hobj, "through a handle", MQPER_NOT_PERSISTENT, MQPMO_NO_SYNCPOINT);
        all = connection.get(hobj, buffer, MQGMO_NO_SYNCPOINT) == 16 && all;
    }
    std::printf("handles: %ld opened in %.2f s, %.0f bytes of memory each; a put and a get through each in %.2f s\n",
                wanted.handles, opened, memory * 1e6 / static_cast<double>(std::max(wanted.handles, 1L)), since(work));
    for (long n = 0; n < wanted.handles; ++n)
        connections[static_cast<std::size_t>(n / each)].close(handles[static_cast<std::size_t>(n)]);
    return all;
}

bool largeMessages(const Wanted &wanted)
{
    const Connection connection(wanted);
    const MQHOBJ hobj = connection.open(queueName(wanted, 0), MQOO_OUTPUT | MQOO_INPUT_SHARED | MQOO_BROWSE);
    std::string body(static_cast<std::size_t>(wanted.large), 'l');
    std::vector<char> buffer(body.size());
    std::array<double, 4> live{};
    for (std::size_t round = 0; round < live.size(); ++round) {
        const MQLONG persistence = round % 2 == 0 ? MQPER_PERSISTENT : MQPER_NOT_PERSISTENT;
        body.front() = static_cast<char>('a' + round);
        auto start = Clock::now();
        connection.put(hobj, body, persistence, MQPMO_NO_SYNCPOINT);
        const double put = since(start);
        start = Clock::now();
        const bool browsed =
            connection.get(hobj, buffer, MQGMO_BROWSE_FIRST) == wanted.large && buffer.front() == body.front();
        const double browse = since(start);
        start = Clock::now();
        const bool got = connection.get(hobj, buffer, MQGMO_NO_SYNCPOINT) == wanted.large && buffer.back() == 'l';
        live[round] = filesOf(wanted).live;
        std::printf("large, %s: %.0f MB put in %.2f s, browsed in %.2f s, got in %.2f s; ",
                    persistence == MQPER_PERSISTENT ? "persistent" : "not persistent",
                    static_cast<double>(wanted.large) / 1e6, put, browse, since(start));
        showFiles(wanted);
        std::printf("\n");
        std::fflush(stdout);
        if (!browsed || !got) {
            std::printf("FAILED: the message is not what was put\n");
            return false;
        }
    }
    if (live[3] > live[1] * 1.25 + 1) {
        std::printf("FAILED: the space of large messages was not used again\n");
        return false;
    }
    return true;
}

// One process of the mixed work, with a few connections that it uses in turn, until told to stop.
class Worker {
public:
    Worker(const Wanted &wanted, Counts &counts, unsigned number) : counts_(counts), random_(number), buffer_(2'000'000)
    {
        const long connections = std::max(wanted.connections / std::max(wanted.processes, 1L), 1L);
        for (long n = 0; n < connections; ++n) {
            Client client{Connection(wanted), {}, {}};
            for (long queue = 0; queue < queueCount; ++queue)
                client.queues[static_cast<std::size_t>(queue)] =
                    client.connection.open(queueName(wanted, queue), MQOO_OUTPUT | MQOO_INPUT_SHARED | MQOO_BROWSE);
            clients_.push_back(std::move(client));
        }
        body_.assign(1'000'000, 'w');
    }

    void run()
    {
        while (!counts_.stop) {
            Client &client = clients_[random_() % clients_.size()];
            const auto act = random_() % 100;
            // Beyond a depth it gets more than it puts.
            const bool full = counts_.depth > 20'000;
            if (act < (full ? 10 : 35))
                single(client, true);
            else if (act < 60)
                single(client, false);
            else if (act < 70)
                browse(client);
            else if (act < 85)
                move(client);
            else
                unit(client, full);
        }
    }

private:
    struct Client {
        Connection connection;
        std::array<MQHOBJ, queueCount> queues;
        long browsed = 0;
    };
    MQHOBJ any(const Client &client) { return client.queues[random_() % client.queues.size()]; }
    MQLONG persistence() { return random_() % 4 == 0 ? MQPER_PERSISTENT : MQPER_NOT_PERSISTENT; }
    std::string_view body()
    {
        const auto kind = random_() % 1000;
        const std::size_t most = kind == 0 ? body_.size() : kind < 50 ? 20'000 : 1'000;
        return std::string_view(body_).substr(0, random_() % most);
    }

    void single(Client &client, bool puts)
    {
        if (puts) {
            client.connection.put(any(client), body(), persistence(), MQPMO_NO_SYNCPOINT);
            ++counts_.puts, ++counts_.depth;
        } else if (client.connection.get(any(client), buffer_, MQGMO_NO_SYNCPOINT) >= 0) {
            ++counts_.gets, --counts_.depth;
        }
    }
    void browse(Client &client)
    {
        const MQHOBJ hobj = any(client);
        MQLONG how = MQGMO_BROWSE_FIRST;
        for (int n = 0; n < 10 && client.connection.get(hobj, buffer_, how) >= 0; ++n, how = MQGMO_BROWSE_NEXT)
            ++counts_.browses;
    }
    void move(Client &client)
    {
        const long length = client.connection.get(any(client), buffer_, MQGMO_SYNCPOINT);
        if (length < 0) return;
        client.connection.put(any(client), {buffer_.data(), static_cast<std::size_t>(length)},
                              client.connection.persistenceGot(), MQPMO_SYNCPOINT);
        client.connection.commit();
        ++counts_.moves;
    }
    void unit(Client &client, bool full)
    {
        const long size = static_cast<long>(1 + random_() % 30);
        long puts = 0;
        long gets = 0;
        for (long n = 0; n < size; ++n) {
            if (!full && random_() % 2 == 0) {
                client.connection.put(any(client), body(), persistence(), MQPMO_SYNCPOINT);
                ++puts;
            } else if (client.connection.get(any(client), buffer_, MQGMO_SYNCPOINT) >= 0) {
                ++gets;
            }
        }
        if (random_() % 5 == 0) {
            client.connection.backOut();
            ++counts_.backouts;
            return;
        }
        client.connection.commit();
        ++counts_.units;
        counts_.puts += puts;
        counts_.gets += gets;
        counts_.depth += puts - gets;
    }

    Counts &counts_;
    std::minstd_rand random_;
    std::vector<Client> clients_;
    std::vector<char> buffer_;
    std::string body_;
};

// How many messages are on the queues, which are empty afterwards.
long drain(const Wanted &wanted)
{
    const Connection connection(wanted);
    std::vector<char> buffer(1000);
    long found = 0;
    for (long queue = 0; queue < queueCount; ++queue) {
        const MQHOBJ hobj = connection.open(queueName(wanted, queue), MQOO_INPUT_SHARED);
        for (long n = 1; connection.get(hobj, buffer, MQGMO_SYNCPOINT) >= 0; ++n, ++found)
            if (n % 1000 == 0) connection.commit();
        connection.commit();
    }
    return found;
}

bool mixedWork(const Wanted &wanted)
{
    void *place = mmap(nullptr, sizeof(Counts), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (place == MAP_FAILED) return false;
    auto &counts = *static_cast<Counts *>(place);
    std::vector<pid_t> workers;
    for (long n = 0; n < wanted.processes; ++n) {
        const pid_t worker = fork();
        if (worker == 0) {
            Worker(wanted, counts, static_cast<unsigned>(1000 + n)).run();
            _exit(0);
        }
        workers.push_back(worker);
    }
    std::vector<double> rates; // calls in a second of the processor
    std::vector<Files> sizes;
    const auto start = Clock::now();
    long before = 0;
    double usedBefore = 0;
    std::printf("mixed: %ld processes, %ld connections\n   seconds  calls/s calls/CPU s     puts     gets  browses    "
                "moves    units "
                "backouts   depth  own MB  live MB  log MB  ahead MB\n",
                wanted.processes, wanted.connections);
    for (auto shown = start; since(start) < static_cast<double>(wanted.seconds);) {
        sleep(static_cast<unsigned>(std::min(wanted.interval, wanted.seconds)));
        const long done = counts.puts + counts.gets + counts.browses + 2 * counts.moves;
        const double rate = static_cast<double>(done - before) / since(shown);
        sizes.push_back(filesOf(wanted));
        double memory = 0;
        double used = 0;
        for (const pid_t worker : workers) {
            memory += ownMemory(worker);
            used += processorTime(worker);
        }
        rates.push_back(static_cast<double>(done - before) / std::max(used - usedBefore, 0.01));
        usedBefore = used;
        std::printf("%10.0f %8.0f %11.0f %8ld %8ld %8ld %8ld %8ld %8ld %7ld %7.0f %8.0f %7.0f %9.0f\n", since(start),
                    rate, rates.back(), counts.puts.load(), counts.gets.load(), counts.browses.load(),
                    counts.moves.load(), counts.units.load(), counts.backouts.load(), counts.depth.load(), memory,
                    sizes.back().live, sizes.back().log, sizes.back().ahead);
        std::fflush(stdout);
        before = done;
        shown = Clock::now();
    }
    counts.stop = true;
    bool well = true;
    for (const pid_t worker : workers) {
        int status = 0;
        waitpid(worker, &status, 0);
        well = well && WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }
    const long left = counts.depth;
    const long found = drain(wanted);
    std::printf("mixed: %ld messages left, %ld found; ", left, found);
    showFiles(wanted);
    std::printf("\n");
    if (!well || left != found) {
        std::printf("FAILED: %s\n", well ? "messages are missing or too many" : "a process ended badly");
        return false;
    }
    // The depth is steady from early on, so the files have their size after the first half.
    const std::size_t half = sizes.size() / 2;
    for (const auto member : {&Files::live, &Files::log}) {
        const auto largest = [&](auto from, auto to) {
            return (*std::max_element(from, to,
                                      [&](const Files &a, const Files &b) { return a.*member < b.*member; })).*
                   member;
        };
        const auto middle = sizes.begin() + static_cast<std::ptrdiff_t>(half);
        if (half < 2 || largest(middle, sizes.end()) <= largest(sizes.begin(), middle) * 1.5 + 64) continue;
        std::printf("FAILED: files grow with what goes through\n");
        return false;
    }
    const auto quarter = static_cast<std::ptrdiff_t>(rates.size() / 4);
    if (quarter < 2) return true; // too little to tell
    const double first = std::accumulate(rates.begin(), rates.begin() + quarter, 0.0) / static_cast<double>(quarter);
    const double last = std::accumulate(rates.end() - quarter, rates.end(), 0.0) / static_cast<double>(quarter);
    std::printf("mixed: %.0f calls in a second of the processor in the first quarter, %.0f in the last\n", first, last);
    if (last < first / 2) {
        std::printf("FAILED: the rate decays\n");
        return false;
    }
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc < 4) {
        std::fputs("usage: soak QMGR QUEUE-PREFIX FOLDER name=value...\n", stderr);
        return 2;
    }
    Wanted wanted{.queueManager = argv[1], .prefix = argv[2], .folder = argv[3]};
    for (int n = 4; n < argc; ++n) {
        const std::string_view word = argv[n];
        const std::size_t equals = word.find('=');
        const std::string_view name = word.substr(0, equals);
        long *const value = name == "deep"          ? &wanted.deep
                            : name == "processes"   ? &wanted.processes
                            : name == "connections" ? &wanted.connections
                            : name == "handles"     ? &wanted.handles
                            : name == "large"       ? &wanted.large
                            : name == "seconds"     ? &wanted.seconds
                            : name == "interval"    ? &wanted.interval
                                                    : nullptr;
        if (value == nullptr || equals == std::string_view::npos) {
            std::fprintf(stderr, "soak: what is %s?\n", argv[n]);
            return 2;
        }
        *value = std::atol(argv[n] + equals + 1);
    }
    const bool well = deepQueue(wanted) && manyHandles(wanted) && largeMessages(wanted) && mixedWork(wanted);
    std::puts(well ? "all is well" : "soak: not all is well");
    return well ? 0 : 1;
}
