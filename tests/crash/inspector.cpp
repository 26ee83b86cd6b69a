#include "inspector.h"

#include <chrono>
#include <cstring>
#include <sstream>
#include <thread>

#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "cmqcfc.h"
#include "mqi_name.h"
#include "processes.h"
#include "qmgr/command/pcf_reader.h"
#include "qmgr/store/attachment.h"
#include "qmgr/store/control_block.h"

namespace mqrig::crash {
namespace {

using qmgr::store::Attachment;
using qmgr::store::QueueStatus;

// Everything it finds goes to the controller line by line: the kind of the line first.
class Inspector {
public:
    Inspector(const Look &look, std::ostream &out) : look_(look), out_(out) {}

    void run()
    {
        auto attached = qmgr::store::attach(look_.storeFolder, queueManager);
        if (attached.outcome.failed())
            return fault("connecting is answered " + std::to_string(attached.outcome.Reason));
        store_ = std::move(attached.attachment);
        for (std::size_t n = 0; n < queues; ++n) {
            const auto definition = store_->findDefinition(MQOT_Q, queueNames.at(n));
            if (!definition) return fault(std::string("queue ") + queueNames.at(n) + " is gone");
            ids_.at(n) = definition->queue;
        }
        if (look_.waiterSleeps) awaitEmptyWait();
        connect();
        if (look_.waiterSleeps) awaitServed();
        // Killed while another cleaned up behind a third: a look finds what the first look could not.
        static_cast<void>(store_->releaseDead());
        // What a killed holder of the log lock has left is finished by the next one, whoever it is.
        if (const Outcome none = store_->remove(MQOT_Q, "NOBODY", nullptr); none.Reason != MQRC_UNKNOWN_OBJECT_NAME)
            fault("removing what is not there is answered " + std::to_string(none.Reason));
        for (std::size_t n = 0; n < queues; ++n)
            count(n);
        for (std::size_t n = 0; n < queues; ++n)
            list(static_cast<Queue>(n));
        listObjects();
        measureMap();
        MQDISC(&hconn_, &compCode_, &reason_);
        if (compCode_ != MQCC_OK) fault("MQDISC answered " + std::to_string(reason_));
    }

private:
    void fault(const std::string &text) { out_ << "F " << text << '\n'; }

    // What is mapped of the live state has space on the disk: without it a full disk were a signal.
    void measureMap()
    {
        const std::filesystem::path live = look_.storeFolder / queueManager / "live";
        int error = 0;
        const auto control = qmgr::store::ControlMapping::open(live, error);
        struct stat data {};
        if (!control || stat((live / "data.mdb").c_str(), &data) != 0) return fault("the files of the life are gone");
        const std::uint64_t mapped = (*control)->mapSize;
        const std::uint64_t reserved = static_cast<std::uint64_t>(data.st_blocks) * 512;
        if (reserved < mapped)
            fault("of the live state " + std::to_string(mapped) + " bytes are mapped, but only " +
                  std::to_string(reserved) + " are reserved");
        out_ << "L " << mapped << '\n';
    }

    QueueStatus statusOf(std::size_t n)
    {
        QueueStatus status;
        const Outcome read = store_->read([&](qmgr::store::ReadTransaction &transaction) {
            status = transaction.queue(ids_.at(n));
            return qmgr::success();
        });
        if (read.failed()) fault("reading the counters is answered " + std::to_string(read.Reason));
        return status;
    }

    // Nobody puts while all stand still, so a getter that waits must take all there is.
    void awaitEmptyWait()
    {
        const auto until = std::chrono::steady_clock::now() + patience;
        for (;;) {
            const QueueStatus status = statusOf(indexOf(Queue::Wait));
            if (status.depth == 0 && status.held == 0) return;
            if (std::chrono::steady_clock::now() >= until)
                return fault("a getter sleeps beside messages of its queue: depth " + std::to_string(status.depth) +
                             ", locked " + std::to_string(status.held) + ", booked " +
                             std::to_string(status.uncommitted));
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }

    // The getter that sleeps serves requests too, when it wakes: it may be about to.
    void awaitServed()
    {
        const auto until = std::chrono::steady_clock::now() + patience;
        const auto busy = [this](Queue queue) {
            const QueueStatus status = statusOf(indexOf(queue));
            return status.held != 0 || (queue == Queue::Command && status.depth != status.uncommitted);
        };
        while ((busy(Queue::Command) || busy(Queue::Replies)) && std::chrono::steady_clock::now() < until)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }

    void connect()
    {
        MQCHAR48 name;
        copyName(name, queueManager);
        MQCONN(name, &hconn_, &compCode_, &reason_);
        if (compCode_ != MQCC_OK) fault("MQCONN answered " + std::to_string(reason_));
    }

    void count(std::size_t n)
    {
        const QueueStatus status = statusOf(n);
        out_ << "Q " << n << ' ' << status.depth << ' ' << status.held << ' ' << status.uncommitted << ' '
             << status.opens.input << ' ' << status.opens.output << ' ' << status.opens.browse << '\n';
    }

    void list(Queue queue)
    {
        const bool takes = queue == Queue::Replies || queue == Queue::Filled;
        MQOD od = {MQOD_DEFAULT};
        copyName(od.ObjectName, nameOf(queue));
        MQHOBJ hobj = MQHO_UNUSABLE_HOBJ;
        MQOPEN(hconn_, &od, MQOO_BROWSE | MQOO_INPUT_SHARED | MQOO_INQUIRE, &hobj, &compCode_, &reason_);
        if (compCode_ != MQCC_OK)
            return fault(std::string("opening ") + nameOf(queue) + " answered " + std::to_string(reason_));
        MQLONG selector = MQIA_CURRENT_Q_DEPTH;
        MQLONG depth = -1;
        MQINQ(hconn_, hobj, 1, &selector, 1, &depth, 0, nullptr, &compCode_, &reason_);
        MQLONG found = 0;
        for (MQLONG options = MQGMO_BROWSE_FIRST; next(hobj, takes ? MQGMO_NO_SYNCPOINT : options); ++found) {
            options = MQGMO_BROWSE_NEXT;
            report(queue);
        }
        if (found != depth)
            fault(std::string("the depth of ") + nameOf(queue) + " is told as " + std::to_string(depth) +
                  ", there are " + std::to_string(found));
        MQCLOSE(hconn_, &hobj, MQCO_NONE, &compCode_, &reason_);
    }

    bool next(MQHOBJ hobj, MQLONG options)
    {
        md_ = {MQMD_DEFAULT};
        md_.Version = MQMD_VERSION_2;
        MQGMO gmo = {MQGMO_DEFAULT};
        gmo.Version = MQGMO_VERSION_2;
        gmo.MatchOptions = MQMO_NONE;
        gmo.Options = options | MQGMO_NO_WAIT;
        buffer_.resize(3'000'000);
        MQGET(hconn_, hobj, &md_, &gmo, static_cast<MQLONG>(buffer_.size()), buffer_.data(), &length_, &compCode_,
              &reason_);
        if (compCode_ != MQCC_OK && reason_ != MQRC_NO_MSG_AVAILABLE)
            fault("looking for messages answered " + std::to_string(reason_));
        return compCode_ == MQCC_OK;
    }

    void report(Queue queue)
    {
        const auto body = std::span(buffer_).first(static_cast<std::size_t>(length_));
        if (queue == Queue::Replies) {
            const auto request = ofMsgId(md_.CorrelId);
            const MQCFH header = qmgr::command::readPcf(body, MQENC_NATIVE).header;
            if (!request) return fault("a reply to nobody");
            if (header.CompCode != MQCC_OK)
                fault("the reply to " + textOf(*request) + " says " + std::to_string(header.Reason));
            out_ << "R " << request->producer << ' ' << request->serial << '\n';
            return;
        }
        const auto name = ofMsgId(md_.MsgId);
        const auto head = headOf(body);
        if (!name) return fault(std::string("a message of nobody's on ") + nameOf(queue));
        if (queue != Queue::Command &&
            (!head || head->name != *name || head->queue != static_cast<std::uint8_t>(queue)))
            return fault("damaged or misplaced: " + textOf(*name));
        out_ << "M " << indexOf(queue) << ' ' << name->producer << ' ' << name->serial << ' '
             << (md_.Persistence == MQPER_PERSISTENT) << ' ' << md_.Priority << ' ' << md_.BackoutCount << '\n';
    }

    void listObjects()
    {
        for (const auto &definition : store_->definitions(MQOT_Q)) {
            const std::string &name = definition.name;
            const bool dynamic = name.starts_with(dynamicPrefix);
            if (!dynamic && !name.starts_with(definedPrefix) && !name.starts_with(requestedPrefix)) continue;
            out_ << "O " << name << '\n';
            if (dynamic) continue;
            if (const Outcome removed = store_->remove(MQOT_Q, name, nullptr); removed.failed())
                fault("removing " + name + " is answered " + std::to_string(removed.Reason));
        }
    }

    using Outcome = qmgr::Outcome;
    const Look &look_;
    std::ostream &out_;
    std::unique_ptr<Attachment> store_;
    std::array<qmgr::store::QueueId, queues> ids_{};
    MQHCONN hconn_ = MQHC_UNUSABLE_HCONN;
    MQLONG compCode_ = MQCC_OK;
    MQLONG reason_ = MQRC_NONE;
    MQLONG length_ = 0;
    MQMD md_{};
    std::vector<std::byte> buffer_;
};

Inspection parse(const std::string &text)
{
    Inspection found;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream fields(line.substr(2));
        std::size_t queue = 0;
        if (line[0] == 'M') {
            Inspection::Message message;
            fields >> queue >> message.name.producer >> message.name.serial >> message.persistent >> message.priority >>
                message.backouts;
            message.queue = static_cast<Queue>(queue);
            found.messages.push_back(message);
        } else if (line[0] == 'Q') {
            Inspection::Counters counters;
            fields >> queue >> counters.depth >> counters.held >> counters.uncommitted >> counters.input >>
                counters.output >> counters.browse;
            found.counters.at(queue) = counters;
        } else if (line[0] == 'L') {
            fields >> found.mapSize;
        } else if (line[0] == 'R') {
            MessageName name;
            fields >> name.producer >> name.serial;
            found.replies.push_back(name);
        } else {
            (line[0] == 'O' ? found.objects : found.faults).push_back(line.substr(2));
        }
    }
    return found;
}

} // namespace

Inspection inspect(const Look &look)
{
    std::string text;
    const int end = runProcess(
        [&](int answer) {
            std::ostringstream out;
            Inspector(look, out).run();
            const std::string all = out.str();
            for (std::size_t written = 0; written < all.size();) {
                const ssize_t n = write(answer, all.data() + written, all.size() - written);
                if (n <= 0) return 1;
                written += static_cast<std::size_t>(n);
            }
            return 0;
        },
        text);
    Inspection found = parse(text);
    if (end != 0) found.faults.push_back("the inspector ended with " + std::to_string(end));
    return found;
}

} // namespace mqrig::crash
