#include "workers.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <map>
#include <random>
#include <vector>

#include <unistd.h>

#include "cmqcfc.h"
#include "qmgr/command/pcf_reader.h"
#include "qmgr/command/pcf_writer.h"
#include "qmgr/objects/object_definition.h"
#include "qmgr/store/attachment.h"

namespace mqrig::crash {

const std::array<const char *, roles> roleNames{"putter",       "getter",       "mover",     "browser",
                                                "group putter", "group getter", "waiter",    "requester",
                                                "definer",      "dynamic",      "connector", "filler"};

namespace {

Death deadly;
std::atomic<std::uint32_t> passed;
bool logTakesNothing = false;

template <std::size_t N>
void setField(char (&field)[N], std::string_view value)
{
    std::memset(field, ' ', N);
    value.copy(field, N);
}

class Worker {
public:
    Worker(const Assignment &assignment, std::filesystem::path storeFolder, Board &board, Post &post,
           const Journal &journal)
        : assignment_(assignment), storeFolder_(std::move(storeFolder)), board_(board), post_(post), journal_(journal),
          random_(assignment.number * 2654435761U + 1)
    {
    }

    [[noreturn]] void run()
    {
        if (assignment_.role != Role::Connector) connect();
        while (board_.stop == 0) {
            park();
            turn();
        }
        if (assignment_.role != Role::Connector) disconnect();
        _exit(stopped);
    }

private:
    std::uint32_t below(std::uint32_t limit) { return static_cast<std::uint32_t>(random_() % limit); }
    bool oneIn(std::uint32_t n) { return below(n) == 0; }

    [[noreturn]] void fault(const std::string &what)
    {
        Record record{.event = Event::Fault, .CompCode = compCode_, .Reason = reason_};
        what.copy(record.text.data(), record.text.size() - 1);
        journal_.write(record);
        _exit(foundFault);
    }

    void note(Record record)
    {
        record.CompCode = compCode_;
        record.Reason = reason_;
        journal_.write(record);
        post_.calls.fetch_add(1);
        // A full or empty queue leaves the others the processor.
        if (compCode_ == MQCC_FAILED) usleep(100);
    }

    // A call that answered neither success nor one of these reasons.
    template <class... Reasons>
    void expect(const char *call, Reasons... reasons)
    {
        if (compCode_ == MQCC_OK || ((reason_ == reasons) || ...)) return;
        switch (reason_) {
        case MQRC_Q_MGR_STOPPING:
        case MQRC_CONNECTION_BROKEN:
        case MQRC_Q_MGR_NOT_AVAILABLE:
        case MQRC_Q_MGR_QUIESCING:
            _exit(queueManagerEnded);
        default:
            fault(std::string(call) + " answered " + std::to_string(reason_));
        }
    }

    void park()
    {
        if (assignment_.goesOnInPauses || assignment_.role == Role::Waiter) return;
        for (std::uint32_t pause = board_.pause; pause != 0; pause = board_.pause) {
            post_.parked = pause;
            usleep(100);
            if (board_.stop != 0) return;
        }
    }

    // ---- The MQI ----

    void connect()
    {
        MQCHAR48 name;
        setField(name, queueManager);
        MQCONN(name, &hconn_, &compCode_, &reason_);
        expect("MQCONN");
        handles_ = {};
        switch (assignment_.role) {
        case Role::Putter:
            if (assignment_.only) break; // these go by MQPUT1
            for (const Queue queue : {Queue::A, Queue::B, Queue::Wait})
                open(queue, MQOO_OUTPUT);
            break;
        case Role::Getter:
            open(Queue::A, MQOO_INPUT_SHARED);
            open(Queue::B, MQOO_INPUT_SHARED | MQOO_BROWSE);
            break;
        case Role::Mover:
        case Role::Connector:
            for (const Queue queue : {Queue::A, Queue::B})
                open(queue, MQOO_INPUT_SHARED | MQOO_OUTPUT);
            break;
        case Role::Browser:
            open(Queue::A, MQOO_BROWSE);
            open(Queue::B, MQOO_BROWSE);
            break;
        case Role::GroupPutter:
            open(Queue::Group, MQOO_OUTPUT);
            break;
        case Role::GroupGetter:
            open(Queue::Group, MQOO_INPUT_SHARED);
            break;
        case Role::Waiter:
            open(Queue::Wait, MQOO_INPUT_SHARED);
            break;
        case Role::Requester:
            open(Queue::Command, MQOO_OUTPUT);
            open(Queue::Replies, MQOO_INPUT_SHARED);
            break;
        case Role::Filler:
            open(Queue::Filled, MQOO_OUTPUT);
            break;
        case Role::Definer:
        case Role::Dynamic:
        case Role::roles:
            break;
        }
    }

    void open(Queue queue, MQLONG options)
    {
        MQOD od = {MQOD_DEFAULT};
        setField(od.ObjectName, nameOf(queue));
        MQOPEN(hconn_, &od, options | MQOO_FAIL_IF_QUIESCING, &handles_.at(indexOf(queue)), &compCode_, &reason_);
        expect("MQOPEN");
        const std::size_t n = indexOf(queue);
        if ((options & MQOO_INPUT_SHARED) != 0) post_.input.at(n) = 1;
        if ((options & MQOO_OUTPUT) != 0) post_.output.at(n) = 1;
        if ((options & MQOO_BROWSE) != 0) post_.browse.at(n) = 1;
    }

    void disconnect()
    {
        MQDISC(&hconn_, &compCode_, &reason_);
        expect("MQDISC");
        for (std::size_t queue = 0; queue < queues; ++queue)
            post_.input.at(queue) = post_.output.at(queue) = post_.browse.at(queue) = 0;
    }

    void begin() { unit_ = ++units_; }
    void commit()
    {
        note({.event = Event::CommitBegun, .unit = unit_});
        MQCMIT(hconn_, &compCode_, &reason_);
        note({.event = Event::CommitTold, .unit = unit_});
        expect("MQCMIT", board_.diskFull != 0 ? MQRC_BACKED_OUT : MQRC_NONE);
        unit_ = 0;
    }
    void backOut()
    {
        note({.event = Event::BackOutBegun, .unit = unit_});
        MQBACK(hconn_, &compCode_, &reason_);
        note({.event = Event::BackOutTold, .unit = unit_});
        expect("MQBACK");
        unit_ = 0;
    }
    void commitOrBackOut(std::uint32_t oneInIsBackedOut)
    {
        if (oneIn(oneInIsBackedOut)) {
            backOut();
        } else {
            commit();
        }
    }

    std::size_t randomLength()
    {
        const std::uint32_t kind = below(100);
        if (kind < 90) return sizeof(BodyHead) + below(300);
        if (kind < 98) return 1000 + below(6000);
        return 20'000 + below(100'000);
    }

    // What is put beside its body.
    struct Put {
        bool persistent = false;
        MQLONG priority = 0;
        std::uint32_t group = 0; // number of the group
        MQLONG groupPlace = 0;
        bool last = false;
    };
    Put anyPut() { return {.persistent = !oneIn(3), .priority = static_cast<MQLONG>(below(3))}; }

    bool put(Queue queue, const Put &put, std::size_t length)
    {
        const BodyHead head{.name = {assignment_.number, ++serials_},
                            .length = static_cast<std::uint32_t>(length),
                            .queue = static_cast<std::uint8_t>(queue),
                            .persistent = static_cast<std::uint8_t>(put.persistent),
                            .priority = static_cast<std::uint8_t>(put.priority)};
        buffer_.resize(std::max(buffer_.size(), length));
        fillBody(std::span(buffer_).first(length), head);
        MQMD md = {MQMD_DEFAULT};
        md.Version = MQMD_VERSION_2;
        if (put.group != 0) {
            const std::uint32_t group[2] = {assignment_.number, put.group};
            std::memcpy(md.GroupId, group, sizeof group);
            md.MsgSeqNumber = put.groupPlace;
            md.MsgFlags = put.last ? MQMF_LAST_MSG_IN_GROUP : MQMF_MSG_IN_GROUP;
        }
        return putWith(queue, md, head, length);
    }

    bool putWith(Queue queue, MQMD md, const BodyHead &head, std::size_t length)
    {
        md.Persistence = head.persistent != 0 ? MQPER_PERSISTENT : MQPER_NOT_PERSISTENT;
        md.Priority = head.priority;
        toMsgId(head.name, md.MsgId);
        MQPMO pmo = {MQPMO_DEFAULT};
        pmo.Options = unit_ != 0 ? MQPMO_SYNCPOINT : MQPMO_NO_SYNCPOINT;
        const Record record{.queue = queue,
                            .persistent = head.persistent,
                            .priority = head.priority,
                            .unit = unit_,
                            .message = head.name};
        Record begun = record;
        begun.event = Event::PutBegun;
        journal_.write(begun);
        if (const MQHOBJ handle = handles_.at(indexOf(queue)); handle != 0) {
            MQPUT(hconn_, handle, &md, &pmo, static_cast<MQLONG>(length), buffer_.data(), &compCode_, &reason_);
        } else {
            MQOD od = {MQOD_DEFAULT};
            setField(od.ObjectName, nameOf(queue));
            MQPUT1(hconn_, &od, &md, &pmo, static_cast<MQLONG>(length), buffer_.data(), &compCode_, &reason_);
        }
        Record told = record;
        told.event = Event::PutTold;
        note(told);
        expect("MQPUT", MQRC_Q_FULL, refusalOfDisk());
        return compCode_ == MQCC_OK;
    }
    // A batch is logged for all its owners, so another worker's full disk may be answered here.
    [[nodiscard]] MQLONG refusalOfDisk() const { return board_.diskFull != 0 ? MQRC_STORAGE_NOT_AVAILABLE : MQRC_NONE; }

    struct Got {
        BodyHead head;
        MQLONG flags = 0;
    };
    // Nothing if there was none.
    std::optional<Got> get(Queue queue, MQLONG options, MQLONG interval = 0)
    {
        MQMD md = {MQMD_DEFAULT};
        md.Version = MQMD_VERSION_2;
        MQGMO gmo = {MQGMO_DEFAULT};
        gmo.Version = MQGMO_VERSION_2;
        gmo.MatchOptions = MQMO_NONE;
        gmo.Options = options | (unit_ != 0 ? MQGMO_SYNCPOINT : MQGMO_NO_SYNCPOINT) | MQGMO_FAIL_IF_QUIESCING;
        if (interval != 0) gmo.Options |= MQGMO_WAIT;
        gmo.WaitInterval = interval;
        buffer_.resize(std::max(buffer_.size(), std::size_t{200'000}));
        MQLONG length = 0;
        journal_.write({.event = Event::GetBegun, .queue = queue, .unit = unit_});
        MQGET(hconn_, handles_.at(indexOf(queue)), &md, &gmo, static_cast<MQLONG>(buffer_.size()), buffer_.data(),
              &length, &compCode_, &reason_);
        Record told{.event = Event::GetTold, .queue = queue, .unit = unit_};
        std::optional<BodyHead> head;
        if (compCode_ == MQCC_OK) {
            head = headOf(std::span(buffer_).first(static_cast<std::size_t>(length)));
            const auto name = ofMsgId(md.MsgId);
            if (!head || !name || *name != head->name || head->queue != static_cast<std::uint8_t>(queue) ||
                (md.Persistence == MQPER_PERSISTENT) != (head->persistent != 0) || md.Priority != head->priority) {
                fault("a message that nobody put like that");
            }
            told.message = head->name;
        }
        note(told);
        expect("MQGET", MQRC_NO_MSG_AVAILABLE, refusalOfDisk());
        if (!head) return std::nullopt;
        return Got{*head, md.MsgFlags};
    }

    // ---- The roles ----

    void turn()
    {
        switch (assignment_.role) {
        case Role::Putter:
            return putSome();
        case Role::Getter:
            return getSome();
        case Role::Mover:
            return moveSome();
        case Role::Browser:
            return browseAll();
        case Role::GroupPutter:
            return putGroup();
        case Role::GroupGetter:
            return getGroup();
        case Role::Waiter:
            return waitForOne();
        case Role::Requester:
            return request();
        case Role::Definer:
            return defineAndRemove();
        case Role::Dynamic:
            return useDynamicQueue();
        case Role::Connector:
            return connectAndGo();
        case Role::Filler:
            if (!put(Queue::Filled, {.persistent = assignment_.only.has_value()}, 3'000'000)) usleep(1000);
            return;
        case Role::roles:
            break;
        }
    }

    Queue anyTarget()
    {
        constexpr std::array targets{Queue::A, Queue::A, Queue::B, Queue::B, Queue::Wait};
        return targets.at(below(targets.size()));
    }

    void putSome()
    {
        if (assignment_.only) {
            static_cast<void>(put(*assignment_.only, {.persistent = assignment_.onlyPersistent}, 100));
            return;
        }
        if (oneIn(3)) {
            static_cast<void>(put(anyTarget(), anyPut(), randomLength()));
            return;
        }
        begin();
        for (std::uint32_t left = 1 + below(5); left > 0; --left)
            static_cast<void>(put(anyTarget(), anyPut(), randomLength()));
        commitOrBackOut(5);
    }

    void getSome()
    {
        const Queue queue = oneIn(2) ? Queue::A : Queue::B;
        if (oneIn(3)) {
            static_cast<void>(get(queue, MQGMO_NONE, oneIn(4) ? 3 : 0));
            return;
        }
        begin();
        for (std::uint32_t left = 1 + below(4); left > 0; --left)
            if (!get(oneIn(4) ? Queue::A : queue, MQGMO_NONE)) break;
        commitOrBackOut(4);
    }

    void moveSome()
    {
        const bool there = oneIn(2);
        begin();
        for (std::uint32_t left = 1 + below(3); left > 0; --left) {
            const auto got = get(there ? Queue::A : Queue::B, MQGMO_NONE);
            if (!got) break;
            const Put onwards{.persistent = got->head.persistent != 0, .priority = got->head.priority};
            if (!put(there ? Queue::B : Queue::A, onwards, got->head.length)) return backOut();
        }
        commitOrBackOut(4);
    }

    void browseAll()
    {
        const Queue queue = oneIn(2) ? Queue::A : Queue::B;
        MQLONG options = MQGMO_BROWSE_FIRST;
        std::map<std::pair<std::uint32_t, std::uint8_t>, std::uint32_t> latest;
        for (int n = 0; n < 200; ++n) {
            MQMD md = {MQMD_DEFAULT};
            MQGMO gmo = {MQGMO_DEFAULT};
            gmo.Version = MQGMO_VERSION_2;
            gmo.MatchOptions = MQMO_NONE;
            gmo.Options = options | MQGMO_NO_WAIT | MQGMO_FAIL_IF_QUIESCING;
            buffer_.resize(std::max(buffer_.size(), std::size_t{200'000}));
            MQLONG length = 0;
            MQGET(hconn_, handles_.at(indexOf(queue)), &md, &gmo, static_cast<MQLONG>(buffer_.size()), buffer_.data(),
                  &length, &compCode_, &reason_);
            if (compCode_ != MQCC_OK) break;
            const auto head = headOf(std::span(buffer_).first(static_cast<std::size_t>(length)));
            if (!head) fault("browsed what nobody put");
            note({.event = Event::Seen, .queue = queue, .message = head->name});
            // A walk meets each producer's messages of one priority in the order in which they were put.
            std::uint32_t &before = latest[{head->name.producer, head->priority}];
            if (before >= head->name.serial) fault("browsed out of order " + textOf(head->name));
            before = head->name.serial;
            options = MQGMO_BROWSE_NEXT;
        }
        post_.calls.fetch_add(1);
        expect("browse", MQRC_NO_MSG_AVAILABLE);
        usleep(300);
    }

    void putGroup()
    {
        begin();
        const std::uint32_t group = ++groups_;
        const bool persistent = oneIn(2);
        const auto size = static_cast<MQLONG>(1 + below(5));
        for (MQLONG place = 1; place <= size; ++place) {
            const Put one{.persistent = persistent, .group = group, .groupPlace = place, .last = place == size};
            if (!put(Queue::Group, one, randomLength())) return backOut();
        }
        commitOrBackOut(5);
    }

    void getGroup()
    {
        begin();
        auto got = get(Queue::Group, MQGMO_ALL_MSGS_AVAILABLE | MQGMO_LOGICAL_ORDER);
        if (!got) {
            commit();
            usleep(200);
            return;
        }
        while ((got->flags & MQMF_LAST_MSG_IN_GROUP) == 0) {
            got = get(Queue::Group, MQGMO_ALL_MSGS_AVAILABLE | MQGMO_LOGICAL_ORDER);
            if (!got) fault("a group is not whole");
        }
        commitOrBackOut(4);
    }

    void waitForOne()
    {
        if (!oneIn(3)) begin();
        static_cast<void>(get(Queue::Wait, MQGMO_NONE, MQWI_UNLIMITED));
        if (unit_ != 0) commitOrBackOut(5);
    }

    void request()
    {
        const bool creates = oneIn(4);
        MQCFH header = {MQCFH_DEFAULT};
        header.Command = creates ? MQCMD_CREATE_Q : MQCMD_PING_Q_MGR;
        qmgr::command::PcfWriter writer(header);
        const BodyHead head{.name = {assignment_.number, ++serials_},
                            .persistent = oneIn(2) ? std::uint8_t{1} : std::uint8_t{0}};
        if (creates) {
            writer.text(MQCA_Q_NAME,
                        requestedPrefix + std::to_string(assignment_.number) + "." + std::to_string(head.name.serial));
            writer.integer(MQIA_Q_TYPE, MQQT_LOCAL);
        }
        const std::string text = writer.message();
        buffer_.resize(std::max(buffer_.size(), text.size()));
        std::memcpy(buffer_.data(), text.data(), text.size());
        MQMD md = {MQMD_DEFAULT};
        md.MsgType = MQMT_REQUEST;
        std::memcpy(md.Format, MQFMT_ADMIN, sizeof md.Format);
        setField(md.ReplyToQ, nameOf(Queue::Replies));
        if (oneIn(2)) begin();
        const bool accepted = putWith(Queue::Command, md, head, text.size());
        if (unit_ != 0) commitOrBackOut(5);
        if (accepted) awaitReply();
    }

    // Somebody serves it sooner or later; a few looks are enough, what is left is the inspector's.
    void awaitReply()
    {
        for (int looks = 0; looks < 3; ++looks) {
            MQMD md = {MQMD_DEFAULT};
            toMsgId({assignment_.number, serials_}, md.CorrelId);
            MQGMO gmo = {MQGMO_DEFAULT};
            gmo.Version = MQGMO_VERSION_2;
            gmo.MatchOptions = MQMO_MATCH_CORREL_ID;
            gmo.Options = MQGMO_WAIT | MQGMO_NO_SYNCPOINT | MQGMO_FAIL_IF_QUIESCING;
            gmo.WaitInterval = 3;
            MQLONG length = 0;
            journal_.write({.event = Event::GetBegun, .queue = Queue::Replies});
            MQGET(hconn_, handles_.at(indexOf(Queue::Replies)), &md, &gmo, static_cast<MQLONG>(buffer_.size()),
                  buffer_.data(), &length, &compCode_, &reason_);
            note({.event = compCode_ == MQCC_OK ? Event::Replied : Event::GetTold,
                  .queue = Queue::Replies,
                  .message = {assignment_.number, serials_}});
            expect("MQGET of a reply", MQRC_NO_MSG_AVAILABLE, refusalOfDisk());
            if (compCode_ == MQCC_OK) {
                const auto pcf =
                    qmgr::command::readPcf(std::span(buffer_).first(static_cast<std::size_t>(length)), MQENC_NATIVE);
                const bool refused = pcf.header.CompCode != MQCC_OK && pcf.header.Reason != refusalOfDisk();
                if (refused) fault("reply says " + std::to_string(pcf.header.Reason));
                return;
            }
        }
    }

    void answered(const qmgr::Outcome &outcome, const char *call)
    {
        compCode_ = outcome.CompCode;
        reason_ = outcome.Reason;
        post_.calls.fetch_add(1);
        expect(call, refusalOfDisk());
    }

    void defineAndRemove()
    {
        const MessageName name{assignment_.number, ++serials_};
        qmgr::store::Definition definition;
        definition.type = MQOT_Q;
        definition.name = definedPrefix + std::to_string(name.producer) + "." + std::to_string(name.serial);
        definition.bytes =
            qmgr::objects::ObjectDefinition(qmgr::objects::ObjectKind::LocalQueue, definition.name).encode();
        auto attached = qmgr::store::attach(storeFolder_, queueManager);
        answered(attached.outcome, "attach");
        note({.event = Event::DefineBegun, .message = name});
        qmgr::Outcome outcome = attached.attachment->define(definition);
        answered(outcome, "define");
        note({.event = Event::DefineTold, .message = name});
        if (outcome.failed()) return;
        for (std::uint32_t left = below(4); left > 0; --left) {
            MQOD od = {MQOD_DEFAULT};
            setField(od.ObjectName, definition.name);
            MQMD md = {MQMD_DEFAULT};
            md.Persistence = oneIn(2) ? MQPER_PERSISTENT : MQPER_NOT_PERSISTENT;
            MQPMO pmo = {MQPMO_DEFAULT};
            pmo.Options = MQPMO_NO_SYNCPOINT;
            char text[] = "goes with its queue";
            MQPUT1(hconn_, &od, &md, &pmo, sizeof text, text, &compCode_, &reason_);
            expect("MQPUT1", refusalOfDisk());
        }
        if (oneIn(10)) return; // stays
        note({.event = Event::RemoveBegun, .message = name});
        outcome = attached.attachment->remove(MQOT_Q, definition.name, nullptr);
        answered(outcome, "remove");
        note({.event = Event::RemoveTold, .message = name});
    }

    void useDynamicQueue()
    {
        MQOD od = {MQOD_DEFAULT};
        setField(od.ObjectName, "SYSTEM.DEFAULT.MODEL.QUEUE");
        setField(od.DynamicQName, std::string(dynamicPrefix) + "*");
        MQHOBJ hobj = MQHO_UNUSABLE_HOBJ;
        MQOPEN(hconn_, &od, MQOO_OUTPUT | MQOO_INPUT_SHARED, &hobj, &compCode_, &reason_);
        expect("MQOPEN of a model queue");
        for (std::uint32_t left = below(5); left > 0; --left) {
            MQMD md = {MQMD_DEFAULT};
            MQPMO pmo = {MQPMO_DEFAULT};
            pmo.Options = oneIn(2) ? MQPMO_SYNCPOINT : MQPMO_NO_SYNCPOINT;
            char text[3000] = "goes with its queue";
            MQPUT(hconn_, hobj, &md, &pmo, sizeof text, text, &compCode_, &reason_);
            expect("MQPUT to a dynamic queue");
        }
        MQCMIT(hconn_, &compCode_, &reason_);
        expect("MQCMIT");
        MQCLOSE(hconn_, &hobj, MQCO_DELETE_PURGE, &compCode_, &reason_);
        expect("MQCLOSE of a dynamic queue");
        post_.calls.fetch_add(1);
    }

    void connectAndGo()
    {
        connect();
        if (oneIn(2)) {
            begin();
            if (get(Queue::A, MQGMO_NONE)) static_cast<void>(put(Queue::B, anyPut(), randomLength()));
            backOut();
        }
        disconnect();
        post_.calls.fetch_add(1);
    }

    const Assignment assignment_;
    const std::filesystem::path storeFolder_;
    Board &board_;
    Post &post_;
    const Journal &journal_;
    std::mt19937 random_;
    MQHCONN hconn_ = MQHC_UNUSABLE_HCONN;
    std::array<MQHOBJ, queues> handles_{};
    MQLONG compCode_ = MQCC_OK;
    MQLONG reason_ = MQRC_NONE;
    std::uint32_t units_ = 0;
    std::uint32_t unit_ = 0;
    std::uint32_t serials_ = 0;
    std::uint32_t groups_ = 0;
    std::vector<std::byte> buffer_;
};

} // namespace

void armDeath(const Death &death)
{
    deadly = death;
    passed = 0;
    qmgr::store::seams.reached = [](Step step) {
        if (step == deadly.step && passed.fetch_add(1) + 1 == deadly.passing) kill(getpid(), SIGKILL);
    };
}

void work(const Assignment &assignment, const std::filesystem::path &storeFolder, Board &board, Post &post,
          const Journal &journal)
{
    if (assignment.death) armDeath(*assignment.death);
    if (assignment.diskFullAtTimes) {
        qmgr::store::seams.storageError = [](qmgr::store::StorageCall call) {
            static std::mt19937 random(static_cast<unsigned>(getpid()));
            // Once the log has refused a batch it refuses its units one by one too, for a while.
            if (call == qmgr::store::StorageCall::Reserve) return random() % 2 == 0 ? ENOSPC : 0;
            if (call != qmgr::store::StorageCall::LogCommit) return 0;
            if (random() % 6 == 0) logTakesNothing = !logTakesNothing;
            return logTakesNothing ? ENOSPC : 0;
        };
    }
    Worker(assignment, storeFolder, board, post, journal).run();
}

} // namespace mqrig::crash
