#include "qmgr/core/command_server.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "cmqcfc.h"
#include "qmgr/command/pcf_interpreter.h"
#include "qmgr/convert/message.h"
#include "qmgr/core/dead_letter.h"
#include "qmgr/core/get.h"
#include "qmgr/core/open.h"
#include "qmgr/core/system_put.h"
#include "qmgr/core/trigger.h"
#include "qmgr/objects/object_name.h"
#include "qmgr/objects/system_objects.h"
#include "qmgr/store/seams.h"

namespace mqrig::qmgr::core {
namespace {

// A request that was begun as often without an end has killed its servers.
constexpr MQLONG mostAttempts = 5;
constexpr std::size_t usualLength = 4096;

std::span<const std::byte> bytesOf(const std::string &text)
{
    return {reinterpret_cast<const std::byte *>(text.data()), text.size()};
}

template <std::size_t N>
void copyId(MQBYTE (&to)[N], const MQBYTE (&from)[N])
{
    std::memcpy(to, from, N);
}

class CommandServer {
public:
    explicit CommandServer(Connection &program) : program_(program), store_(*program.store) {}

    // Whether a request can be seen, as of now.
    bool anyVisible()
    {
        bool visible = false;
        const Outcome looked = store_.read([&](store::ReadTransaction &transaction) {
            store::MessageCursor cursor(transaction, queue_.hold.queue->id);
            visible = cursor.first();
            return success();
        });
        return !looked.failed() && visible;
    }

    // The queue as it is defined now. False where there is none to be served.
    bool findQueue()
    {
        objects::FoundQueue found = program_.catalog.queue(objects::commandQueue);
        const bool there = !found.outcome.failed() && found.hold.queue->type == MQQT_LOCAL;
        store_.setRequestQueue(there ? found.hold.queue->id : 0);
        if (!there) return false;
        queue_.options = MQOO_INPUT_SHARED;
        queue_.hold = std::move(found.hold);
        return true;
    }

    // With the turn.
    enum class Left { None, Held, Unserved };
    Left serveAll()
    {
        while (store_.state() == store::State::Running) {
            if (!findQueue()) return store_.noRequestsLeft() ? Left::None : Left::Unserved;
            if (queue_.hold.queue->inhibitGet == MQQA_GET_INHIBITED) return Left::Unserved;
            if (anyVisible()) {
                if (!connect() || !serveNext()) return Left::Unserved;
            } else {
                if (store_.noRequestsLeft()) return Left::None;
                // Held by a program that gets from this queue, or by a server that was killed. Of one that is just
                // dying the turn is free before its connection is seen to be dead.
                if (!store_.releaseDead()) return Left::Held;
            }
        }
        return Left::Unserved;
    }

private:
    bool connect()
    {
        if (connection_ != nullptr) return true;
        store::Attached attached = store_.another();
        if (attached.outcome.failed()) return false;
        connection_ = std::make_unique<Connection>(std::move(attached.attachment), ConnectRequest{});
        return connection_->catalog.queueManager() != nullptr;
    }

    // Gets the first request into the unit of work. MQRC_NO_MSG_AVAILABLE where it has gone meanwhile.
    Outcome getRequest()
    {
        if (buffer_.empty()) buffer_.resize(usualLength);
        for (;;) {
            const GetRequest request{MQGMO_SYNCPOINT | MQGMO_NO_PROPERTIES, 0, {}, buffer_};
            const Outcome got = getMessage(*connection_, queue_, request, got_);
            if (got.Reason != MQRC_TRUNCATED_MSG_FAILED) return got;
            buffer_.resize(static_cast<std::size_t>(got_.dataLength));
        }
    }

    bool serveNext()
    {
        const Outcome got = getRequest();
        if (got.Reason == MQRC_NO_MSG_AVAILABLE) return true;
        if (got.failed()) return false;
        store::reached(store::Step::RequestTaken);
        serve();
        store::reached(store::Step::RequestRun);
        // What could not be committed is on its queue again; another try at once would not fare better.
        if (commit(*connection_) != success()) return false;
        store::reached(store::Step::RequestAnswered);
        return true;
    }

    std::span<const std::byte> message() const
    {
        return std::span(buffer_).first(static_cast<std::size_t>(got_.returnedLength));
    }

    void serve()
    {
        const MQMD &md = got_.header.md;
        // Replies and reports that stray here must not be answered: an answer might come here again.
        if (md.MsgType != MQMT_REQUEST && md.MsgType != MQMT_DATAGRAM) return bury(MQRC_MSG_TYPE_ERROR);
        if (md.BackoutCount >= mostAttempts) return bury(MQRC_BACKOUT_THRESHOLD_REACHED);
        if (objects::fieldText(md.Format) != objects::fieldText(MQFMT_ADMIN, MQ_FORMAT_LENGTH)) {
            if (!wantsReply(MQCC_FAILED)) return bury(MQRCCF_MD_FORMAT_ERROR);
            return reply(command::refusePcf({MQRCCF_MD_FORMAT_ERROR}));
        }
        const command::PcfAnswer answer = convertRequest() ? run() : refuseCharacterSet();
        for (const std::string &queue : answer.triggering)
            triggerAfterChange(*connection_, queue);
        if (wantsReply(answer.CompCode)) reply(answer);
    }

    command::PcfAnswer run()
    {
        // Begun before by a server that was killed; or perhaps in an earlier life, whose last backouts nobody counted.
        const bool repeated = got_.header.md.BackoutCount > 0 || got_.header.putTime < store_.startTime();
        return command::runPcf(*connection_->store, {message(), encoding_, got_.header.putTime, repeated});
    }

    // Brings a request in another character set into the queue manager's own; the byte order is the reader's business.
    // False where that cannot be.
    bool convertRequest()
    {
        const MQMD &md = got_.header.md;
        const MQLONG own = connection_->queueManager().codedCharSetId;
        encoding_ = md.Encoding;
        if (md.CodedCharSetId == own) return true;
        const auto length = static_cast<std::size_t>(got_.returnedLength);
        buffer_.resize(std::max(buffer_.size(), 4 * length)); // texts may grow
        const convert::Conversion converted = convert::convertMessage(
            {md.Encoding, md.CodedCharSetId, md.Format, buffer_, length, length}, {{MQENC_NATIVE, own}, own, false});
        // What is no PCF message is left as it is, for the reader to say what is wrong with it.
        if (converted.reason == MQRC_FORMAT_ERROR) return true;
        if (converted.reason != MQRC_NONE) return false;
        got_.returnedLength = static_cast<MQLONG>(converted.returned);
        encoding_ = MQENC_NATIVE;
        return true;
    }

    command::PcfAnswer refuseCharacterSet()
    {
        return command::refusePcf(
            {MQRCCF_CCSID_ERROR, MQIA_CODED_CHAR_SET_ID, connection_->queueManager().codedCharSetId});
    }

    // A request is answered always, a datagram where its report options ask for it.
    bool wantsReply(MQLONG compCode) const
    {
        const MQMD &md = got_.header.md;
        if (objects::fieldText(md.ReplyToQ).empty()) return false;
        if (md.MsgType == MQMT_REQUEST) return true;
        return (md.Report & (compCode == MQCC_FAILED ? MQRO_NAN : MQRO_PAN)) != 0;
    }

    // Identifiers and the rest as the request's report options have them; replies outlive their request's time no
    // more than the request.
    MQMD replyDescriptor()
    {
        const MQMD &request = got_.header.md;
        MQMD md = queueManagerDescriptor(*connection_, MQFMT_ADMIN);
        md.MsgType = MQMT_REPLY;
        md.Encoding = MQENC_NATIVE;
        md.Persistence = request.Persistence;
        md.Priority = request.Priority;
        md.Expiry = request.Expiry;
        if ((request.Report & MQRO_PASS_DISCARD_AND_EXPIRY) != 0) md.Report = request.Report & MQRO_DISCARD_MSG;
        if ((request.Report & MQRO_PASS_MSG_ID) != 0) copyId(md.MsgId, request.MsgId);
        copyId(md.CorrelId, (request.Report & MQRO_PASS_CORREL_ID) != 0 ? request.CorrelId : request.MsgId);
        return md;
    }

    void reply(const command::PcfAnswer &answer)
    {
        const MQMD &request = got_.header.md;
        const MQMD descriptor = replyDescriptor();
        const ObjectName destination{MQOT_Q, objects::fieldText(request.ReplyToQ),
                                     objects::fieldText(request.ReplyToQMgr)};
        for (const std::string &body : answer.replies) {
            store::NewMessage reply{};
            reply.header.md = descriptor;
            reply.body = bytesOf(body);
            // A reply that no queue takes is lost, as any of the queue manager's own; the command has been run.
            (void)putOrDeadLetter(*connection_, connection_->unit, destination, reply);
        }
    }

    // What is no request goes to the dead-letter queue; where there is none, it is dropped.
    void bury(MQLONG reason)
    {
        store::NewMessage dead{};
        dead.header = got_.header;
        dead.header.coreFlags = 0;
        dead.header.coreLength = 0;
        dead.body = message();
        (void)putOnDeadLetterQueue(*connection_, connection_->unit, reason, {MQOT_Q, objects::commandQueue, {}}, dead);
    }

    Connection &program_;
    store::Attachment &store_; // of the program: for looking only
    OpenObject queue_;
    std::unique_ptr<Connection> connection_; // the server's own, made for the first request
    std::vector<std::byte> buffer_;
    GotMessage got_;
    MQLONG encoding_ = MQENC_NATIVE; // of the message in the buffer
};

} // namespace

// Whoever finds the turn taken goes away and relies on the one who has it. So that one looks once more after it has
// given the turn back: a request that became visible before is found then, one that becomes visible later finds the
// turn free.
Served serveRequests(Connection &program) noexcept
{
    store::Attachment &store = *program.store;
    if (store.state() != store::State::Running) return Served::Done;
    try {
        for (;;) {
            CommandServer server(program);
            CommandServer::Left left{};
            {
                const store::Attachment::RequestTurn turn(store);
                if (!turn) return Served::ByAnother;
                left = server.serveAll();
            }
            if (left == CommandServer::Left::Unserved) return Served::Done;
            if (!store.requestsWaiting() || !server.findQueue() || !server.anyVisible())
                return left == CommandServer::Left::Held ? Served::ByAnother : Served::Done;
        }
    } catch (...) {
        return Served::Done; // no memory: the requests stay where they are
    }
}

} // namespace mqrig::qmgr::core
