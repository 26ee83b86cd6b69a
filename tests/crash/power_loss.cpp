// power_loss [--seed N] [--repeat N] [--expect-fault]
//
// Runs a history of a queue manager on a disk that is recorded, and then lets the power fail at every sync of it, in
// two ways each time, or in all ways N times. What is left must open and hold every acknowledged step, and of the step
// under way all or nothing. 0: it does. With --expect-fault the store is one with a deliberate fault; 0: it was found.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <set>

#include <sqlite3.h>
#include <unistd.h>

#include "cmqc.h"
#include "mqi_name.h"
#include "processes.h"
#include "qmgr/objects/object_definition.h"
#include "qmgr/objects/system_objects.h"
#include "qmgr/store/attachment.h"
#include "qmgr/store/queue_managers.h"
#include "recording_files.h"

using namespace mqrig::crash;
using namespace mqrig::qmgr;

namespace {

constexpr const char *name = "QM1";
constexpr const char *secondName = "QM2";
constexpr std::array queueNames{"A", "B"};

// What must be there after a restart.
struct Holdings {
    bool exists = false;
    bool running = false;
    bool second = false;
    std::string byDefault;
    std::array<std::vector<std::string>, queueNames.size()> messages; // persistent ones, in order
    std::map<std::string, std::string> objects;                       // queues named D..., and their descriptions
    bool operator==(const Holdings &) const = default;
};

std::string inWords(const Holdings &holdings)
{
    if (!holdings.exists) return "no queue manager, by default '" + holdings.byDefault + "'";
    std::string text = holdings.running ? "running" : "ended";
    text += (holdings.second ? ", the second one too" : "") + (", by default '" + holdings.byDefault + "'");
    for (const auto &queue : holdings.messages) {
        text += " [";
        for (const std::string &body : queue)
            text += " " + body.substr(0, 12);
        text += " ]";
    }
    for (const auto &[object, description] : holdings.objects)
        text += " " + object + "=" + description;
    return text;
}

store::Definition queueOf(const std::string &queue, const std::string &description = {})
{
    objects::ObjectDefinition object(objects::ObjectKind::LocalQueue, queue);
    object.set(MQCA_Q_DESC, description);
    store::Definition definition;
    definition.type = MQOT_Q;
    definition.name = queue;
    definition.bytes = object.encode();
    return definition;
}

[[noreturn]] void giveUp(const std::string &what)
{
    std::fprintf(stderr, "power_loss: %s\n", what.c_str());
    std::exit(2);
}

// The MQI of one program. Whatever fails ends the run: a history has no failures.
class Program {
public:
    Program()
    {
        MQCHAR48 field;
        copyName(field, name);
        MQCONN(field, &hconn_, &compCode_, &reason_);
        expect("MQCONN");
        for (std::size_t n = 0; n < queueNames.size(); ++n) {
            MQOD od = {MQOD_DEFAULT};
            copyName(od.ObjectName, queueNames.at(n));
            MQOPEN(hconn_, &od, MQOO_OUTPUT | MQOO_INPUT_SHARED | MQOO_BROWSE, &handles_.at(n), &compCode_, &reason_);
            expect("MQOPEN");
        }
    }
    ~Program() { MQDISC(&hconn_, &compCode_, &reason_); }
    Program(const Program &) = delete;
    Program &operator=(const Program &) = delete;

    void put(std::size_t queue, std::string body, bool persistent, bool inUnit)
    {
        MQMD md = {MQMD_DEFAULT};
        md.Persistence = persistent ? MQPER_PERSISTENT : MQPER_NOT_PERSISTENT;
        MQPMO pmo = {MQPMO_DEFAULT};
        pmo.Options = inUnit ? MQPMO_SYNCPOINT : MQPMO_NO_SYNCPOINT;
        MQPUT(hconn_, handles_.at(queue), &md, &pmo, static_cast<MQLONG>(body.size()), body.data(), &compCode_,
              &reason_);
        expect("MQPUT");
    }
    std::optional<std::string> get(std::size_t queue, MQLONG options)
    {
        MQMD md = {MQMD_DEFAULT};
        MQGMO gmo = {MQGMO_DEFAULT};
        gmo.Version = MQGMO_VERSION_2;
        gmo.MatchOptions = MQMO_NONE;
        gmo.Options = options;
        std::string body(500'000, '\0');
        MQLONG length = 0;
        MQGET(hconn_, handles_.at(queue), &md, &gmo, static_cast<MQLONG>(body.size()), body.data(), &length, &compCode_,
              &reason_);
        if (reason_ == MQRC_NO_MSG_AVAILABLE) return std::nullopt;
        expect("MQGET");
        body.resize(static_cast<std::size_t>(length));
        return body;
    }
    void commit()
    {
        MQCMIT(hconn_, &compCode_, &reason_);
        expect("MQCMIT");
    }
    void backOut()
    {
        MQBACK(hconn_, &compCode_, &reason_);
        expect("MQBACK");
    }

private:
    void expect(const char *call) const
    {
        if (compCode_ != MQCC_OK) giveUp(std::string(call) + " answered " + std::to_string(reason_));
    }
    MQHCONN hconn_ = MQHC_UNUSABLE_HCONN;
    std::array<MQHOBJ, queueNames.size()> handles_{};
    MQLONG compCode_ = MQCC_OK;
    MQLONG reason_ = MQRC_NONE;
};

// ---- The history ----

class History {
public:
    History(const std::filesystem::path &storeFolder, Recording &recording)
        : folder_(storeFolder), recording_(recording)
    {
    }

    void run()
    {
        step([&](Holdings &after) {
            auto definitions = objects::systemObjects(name);
            for (const char *queue : queueNames)
                definitions.push_back(queueOf(queue));
            must(store::createQueueManager(folder_, name, definitions, store::DefaultQueueManager::No));
            after.exists = after.running = true;
        });
        step([&](Holdings &after) {
            must(store::setDefaultQueueManager(folder_, name));
            after.byDefault = name;
        });
        definitions();
        someWork();
        checkpoint("PASSIVE"); // the write-ahead file is begun anew by the next commit
        someWork();
        checkpoint("RESTART");
        someWork();
        step([&](Holdings &after) {
            program_.reset();
            must(store::endQueueManager(folder_, name, store::End::Quiesce));
            after.running = false;
        });
        step([&](Holdings &after) {
            must(store::startQueueManager(folder_, name));
            after.running = true;
        });
        step([&](Holdings &after) {
            must(store::createQueueManager(folder_, secondName, objects::systemObjects(secondName),
                                           store::DefaultQueueManager::No));
            after.second = true;
        });
        step([&](Holdings &after) {
            must(store::setDefaultQueueManager(folder_, secondName));
            after.byDefault = secondName;
        });
        checkpoint("TRUNCATE");
        step([&](Holdings &after) {
            program_.reset();
            must(store::endQueueManager(folder_, name, store::End::Immediate));
            after.running = false;
        });
        step([&](Holdings &after) {
            must(store::startQueueManager(folder_, name));
            after.running = true;
        });
        someWork();
        program_.reset();
    }

    // After how many steps what was to be there.
    [[nodiscard]] const std::vector<Holdings> &holdings() const { return holdings_; }

private:
    static void must(const Outcome &outcome)
    {
        if (outcome.failed()) giveUp("a step of the history answered " + std::to_string(outcome.Reason));
    }

    void step(const std::function<void(Holdings &)> &act)
    {
        Holdings after = holdings_.back();
        act(after);
        // Those of another life's program are not there any more.
        holdings_.push_back(std::move(after));
        recording_.acknowledged(holdings_.size() - 1);
    }

    Program &program()
    {
        if (!program_) program_ = std::make_unique<Program>();
        return *program_;
    }

    std::string newBody(std::size_t length = 0)
    {
        std::string body = std::to_string(++bodies_) + ".";
        body.resize(std::max(body.size(), length), 'x');
        return body;
    }

    void put(Holdings &after, std::size_t queue, bool inUnit, std::size_t length = 40)
    {
        const std::string body = newBody(length);
        program().put(queue, body, true, inUnit);
        after.messages.at(queue).push_back(body);
    }
    void get(Holdings &after, std::size_t queue, MQLONG options)
    {
        for (;;) { // others go with it, without a word about them
            const auto body = program().get(queue, options);
            if (!body) giveUp("a message of the history is missing");
            auto &expected = after.messages.at(queue);
            const auto found = std::ranges::find(expected, *body);
            if (found == expected.end()) continue;
            expected.erase(found);
            return;
        }
    }

    // Single puts and gets, units of both, units that are backed out, small and large bodies.
    void someWork()
    {
        step([&](Holdings &after) { put(after, 0, false); });
        step([&](Holdings &after) {
            for (const std::size_t queue : {0, 1, 1, 0})
                put(after, queue, true);
            program().put(0, "gone after a restart", false, true);
            program().commit();
        });
        step([&](Holdings &) {
            Holdings never;
            put(never, 0, true);
            program().backOut();
        });
        step([&](Holdings &after) { get(after, 0, MQGMO_NO_SYNCPOINT); });
        step([&](Holdings &after) { put(after, 1, false, 60'000); });
        step([&](Holdings &after) {
            get(after, 1, MQGMO_SYNCPOINT);
            get(after, 0, MQGMO_SYNCPOINT);
            put(after, 1, true, 9'000);
            program().commit();
        });
        step([&](Holdings &after) {
            Holdings never = after;
            get(never, 1, MQGMO_SYNCPOINT);
            program().backOut();
        });
        step([&](Holdings &after) { put(after, 1, false); });
    }

    void definitions()
    {
        const auto attached = store::attach(folder_, name);
        must(attached.outcome);
        for (const char *queue : {"D1", "D2"}) {
            step([&](Holdings &after) {
                auto definition = queueOf(queue, "first");
                must(attached.attachment->define(definition));
                after.objects[queue] = "first";
            });
        }
        step([&](Holdings &after) {
            must(attached.attachment->alter(queueOf("D1", "second")));
            after.objects["D1"] = "second";
        });
        step([&](Holdings &after) {
            must(attached.attachment->remove(MQOT_Q, "D2", nullptr));
            after.objects.erase("D2");
        });
    }

    // As SQLite does by itself when enough has been written. Through a connection of its own; nobody else works.
    void checkpoint(const std::string &mode)
    {
        sqlite3 *database = nullptr;
        const std::string file = (folder_ / name / "log.db").string();
        const std::string text = "PRAGMA wal_checkpoint(" + mode + ")";
        if (sqlite3_open_v2(file.c_str(), &database, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK ||
            sqlite3_exec(database, text.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
            giveUp("a checkpoint failed");
        }
        int keep = 1;
        sqlite3_file_control(database, "main", SQLITE_FCNTL_PERSIST_WAL, &keep);
        sqlite3_db_config(database, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
        sqlite3_close(database);
    }

    std::filesystem::path folder_;
    Recording &recording_;
    std::unique_ptr<Program> program_;
    std::vector<Holdings> holdings_{Holdings{}};
    int bodies_ = 0;
};

// ---- After the failure ----

// What a queue manager says of itself that is opened for the first time after the failure.
Holdings lookInto(const std::filesystem::path &folder)
{
    Holdings found;
    found.byDefault = store::defaultQueueManager(folder);
    const auto listed = store::listQueueManagers(folder);
    const auto isListed = [&](const char *wanted) {
        return std::ranges::any_of(listed, [&](const auto &entry) { return entry.name == wanted; });
    };
    found.second = isListed(secondName);
    if (found.second) {
        const auto attached = store::attach(folder, secondName);
        if (attached.outcome.failed())
            giveUp("the second one does not open: " + std::to_string(attached.outcome.Reason));
    }
    found.exists = isListed(name);
    if (!found.exists) {
        const Outcome created =
            store::createQueueManager(folder, name, objects::systemObjects(name), store::DefaultQueueManager::No);
        if (created.failed()) giveUp("it cannot be created again: " + std::to_string(created.Reason));
        return found;
    }
    const auto state = store::stateOf(folder, name);
    if (state.outcome.failed()) giveUp("its state cannot be told: " + std::to_string(state.outcome.Reason));
    found.running = state.state == store::State::Running;
    if (!found.running) {
        if (const Outcome started = store::startQueueManager(folder, name); started.failed())
            giveUp("it does not start: " + std::to_string(started.Reason));
    }
    {
        const auto attached = store::attach(folder, name);
        if (attached.outcome.failed()) giveUp("it does not open: " + std::to_string(attached.outcome.Reason));
        for (const auto &definition : attached.attachment->definitions(MQOT_Q)) {
            if (!definition.name.starts_with("D")) continue;
            const auto object = objects::ObjectDefinition::decode(definition.bytes);
            std::string description = object ? std::string(object->text(MQCA_Q_DESC)) : std::string();
            description.erase(description.find_last_not_of(' ') + 1);
            found.objects[definition.name] = description;
        }
    }
    Program program;
    for (std::size_t queue = 0; queue < queueNames.size(); ++queue) {
        MQLONG options = MQGMO_BROWSE_FIRST;
        while (const auto body = program.get(queue, options)) {
            found.messages.at(queue).push_back(*body);
            options = MQGMO_BROWSE_NEXT;
        }
    }
    program.put(0, "as usual", true, false); // and it works
    return found;
}

// Files of a life that this boot never had.
void leaveLiveOfAnotherBoot(const std::filesystem::path &folder, std::mt19937 &random)
{
    std::error_code error;
    if (!std::filesystem::exists(folder, error)) return;
    std::filesystem::create_directory(folder / "live");
    for (const char *file : {"control", "data.mdb", "lock.mdb", "slots"}) {
        std::ofstream out(folder / "live" / file, std::ios::binary);
        for (auto left = random() % 5000; left > 0; --left)
            out.put(static_cast<char>(random()));
    }
}

// What the write-ahead file has goes into the database.
void settle(const std::filesystem::path &file)
{
    sqlite3 *database = nullptr;
    if (sqlite3_open(file.c_str(), &database) != SQLITE_OK ||
        sqlite3_exec(database, "PRAGMA wal_checkpoint(TRUNCATE)", nullptr, nullptr, nullptr) != SQLITE_OK)
        giveUp("the log cannot be settled");
    sqlite3_close(database);
}

class PowerLoss {
public:
    PowerLoss(unsigned seed, int repeat) : random_(seed), repeat_(repeat)
    {
        std::string folder = (std::filesystem::temp_directory_path() / "mqrig-power-XXXXXX").string();
        if (mkdtemp(folder.data()) == nullptr) giveUp("no folder");
        root_ = folder;
    }
    ~PowerLoss()
    {
        std::error_code ignored;
        std::filesystem::remove_all(root_, ignored);
    }
    PowerLoss(const PowerLoss &) = delete;
    PowerLoss &operator=(const PowerLoss &) = delete;

    bool run()
    {
        const std::filesystem::path disk = root_ / "disk";
        std::filesystem::create_directory(disk);
        Recording recording(disk);
        recordFiles(recording);
        setenv("MQRIG_STORE", (disk / "home/store").c_str(), 1); // NOLINT(concurrency-mt-unsafe): one thread
        History history(disk / "home/store", recording);
        history.run();
        stopRecording();
        Disk complete;
        for (const DiskEvent &event : recording.events())
            complete.take(event);
        rot(complete, history);
        Disk after;
        std::size_t done = 0;
        for (const DiskEvent &event : recording.events()) {
            if (!faults_.empty()) break;
            if (event.kind == DiskEvent::Sync) {
                syncs_ += 1;
                failAt(after, history, done);
            }
            if (event.kind == DiskEvent::Acknowledged) done = event.offset;
            after.take(event);
        }
        if (faults_.empty()) failAt(after, history, done);
        std::printf("%d syncs of a history of %zu steps (%zu writes and changes of folders), %d power failures\n",
                    syncs_, history.holdings().size() - 1, recording.events().size(), failures_);
        return faults_.empty();
    }
    [[nodiscard]] const std::vector<std::string> &faults() const { return faults_; }

private:
    void failAt(const Disk &disk, const History &history, std::size_t done)
    {
        if (repeat_ == 0) { // the worst, and one of the others in turn
            failOnce(disk, history, done, Loss::Everything);
            if (faults_.empty()) failOnce(disk, history, done, static_cast<Loss>(1 + syncs_ % (losses - 1)));
        }
        for (int again = 0; again < repeat_; ++again)
            for (std::size_t n = 0; n < losses && faults_.empty(); ++n)
                failOnce(disk, history, done, static_cast<Loss>(n));
    }

    std::filesystem::path leave(const Disk &disk, Loss loss)
    {
        const std::filesystem::path left = root_ / "left";
        std::filesystem::remove_all(left);
        disk.leave(loss, random_, left);
        return left / "home/store";
    }

    void failOnce(const Disk &disk, const History &history, std::size_t done, Loss loss)
    {
        failures_ += 1;
        const std::filesystem::path folder = leave(disk, loss);
        if (failures_ % 2 == 0) leaveLiveOfAnotherBoot(folder / name, random_);
        const Holdings &acknowledged = history.holdings().at(done);
        const Holdings &next = history.holdings().at(std::min(done + 1, history.holdings().size() - 1));
        std::string said;
        const int end = runProcess(
            [&](int answer) {
                setenv("MQRIG_STORE", folder.c_str(), 1); // NOLINT(concurrency-mt-unsafe): one thread
                dup2(answer, STDERR_FILENO);
                const Holdings found = lookInto(folder);
                if (found == acknowledged || found == next) return 0;
                std::fprintf(stderr, "found %s; acknowledged %s; under way %s", inWords(found).c_str(),
                             inWords(acknowledged).c_str(), inWords(next).c_str());
                return 1;
            },
            said);
        if (end == 0) return;
        faults_.push_back("sync " + std::to_string(syncs_) + ", step " + std::to_string(done + 1) + ", " +
                          lossNames.at(static_cast<std::size_t>(loss)) + ", ended with " + std::to_string(end) + ": " +
                          said);
    }

    // Bytes of a message change on the disk: it is never delivered like that.
    void rot(const Disk &disk, const History &history)
    {
        const std::filesystem::path folder = leave(disk, Loss::Nothing);
        const std::string body = history.holdings().back().messages.at(0).front().substr(0, 40);
        // Frames of the write-ahead file have checksums of SQLite's own.
        settle(folder / name / "log.db");
        int changed = 0;
        std::fstream stream(folder / name / "log.db", std::ios::in | std::ios::out | std::ios::binary);
        const std::string all((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
        stream.clear();
        for (std::size_t at = all.find(body); at != std::string::npos; at = all.find(body, at + 1), ++changed) {
            stream.seekp(static_cast<std::streamoff>(at + body.size() - 1));
            stream.put('y');
        }
        stream.close();
        if (changed == 0) return giveUp("the message that is to rot is not in the file");
        failures_ += 1;
        std::string said;
        const int end = runProcess(
            [&](int answer) {
                setenv("MQRIG_STORE", folder.c_str(), 1); // NOLINT(concurrency-mt-unsafe): one thread
                dup2(answer, STDERR_FILENO);
                return store::attach(folder, name).outcome.Reason == MQRC_UNEXPECTED_ERROR ? 0 : 1;
            },
            said);
        if (end != 0) faults_.push_back("a damaged message is taken for a good one " + said);
    }

    std::mt19937 random_;
    int repeat_;
    std::filesystem::path root_;
    int syncs_ = 0;
    int failures_ = 0;
    std::vector<std::string> faults_;
};

} // namespace

int main(int argc, char **argv)
{
    unsigned seed = 1;
    int repeat = 0;
    bool expectFault = false;
    for (int n = 1; n < argc; ++n) {
        const std::string option = argv[n];
        if (option == "--expect-fault") {
            expectFault = true;
        } else if (option == "--seed" && n + 1 < argc) {
            seed = static_cast<unsigned>(std::strtoul(argv[++n], nullptr, 10));
        } else if (option == "--repeat" && n + 1 < argc) {
            repeat = static_cast<int>(std::strtol(argv[++n], nullptr, 10));
        } else {
            std::fprintf(stderr, "power_loss: no option %s\n", option.c_str());
            return 2;
        }
    }
    PowerLoss run(seed, repeat);
    const bool sound = run.run();
    for (const std::string &fault : run.faults())
        std::printf("%s: %s\n", expectFault ? "found" : "FAULT", fault.c_str());
    if (!expectFault) return sound ? 0 : 1;
    if (sound) std::printf("the fault was not found\n");
    return sound ? 1 : 0;
}
