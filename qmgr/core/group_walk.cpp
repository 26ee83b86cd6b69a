#include "qmgr/core/group_walk.h"

#include <array>
#include <utility>

#include "qmgr/core/search.h"

namespace mqrig::qmgr::core {
namespace {

bool has(const MQMD &md, MQLONG flag)
{
    return (md.MsgFlags & flag) != 0;
}

// Where a walk through a group expects the next message.
struct Expected {
    MQLONG msgSeqNumber = 1;
    MQLONG offset = 0;
    bool wholeGroup = false;
};

enum class Step { Pass, Goes, Ends, Breaks };

// Moves `expected` behind this message if it is the one.
Step step(const MQMD &md, Expected &expected)
{
    const auto place = std::pair(md.MsgSeqNumber, md.Offset);
    const auto wanted = std::pair(expected.msgSeqNumber, expected.offset);
    if (place < wanted) return Step::Pass; // a double: the first one counts
    if (place > wanted) return Step::Breaks;
    if (has(md, MQMF_SEGMENT) && !has(md, MQMF_LAST_SEGMENT)) {
        // Made by hand; it would be found again and again.
        if (md.OriginalLength <= 0) return Step::Breaks;
        expected.offset += md.OriginalLength;
        return Step::Goes;
    }
    if (!expected.wholeGroup || has(md, MQMF_LAST_MSG_IN_GROUP)) return Step::Ends;
    ++expected.msgSeqNumber;
    expected.offset = 0;
    return Step::Goes;
}

// Follows the messages that `counts` lets through, with `visit` for each one that goes on; whether the walk came to
// the end.
template <class Counts, class Visit>
bool follow(store::MessageCursor &cursor, Expected expected, std::int64_t now, Counts &&counts, Visit &&visit)
{
    for (bool there = cursor.first(); there; there = cursor.next()) {
        const store::MessageHeader &header = cursor.header();
        if (isExpired(header, now) || !counts(header.md)) continue;
        const Step next = step(header.md, expected);
        if (next == Step::Breaks) return false;
        if (next != Step::Pass) visit(cursor.key(), header);
        if (next == Step::Ends) return true;
    }
    return false;
}

// Reports about the segments of a message have its GroupId, and there may be several about each.
class SameKind {
public:
    explicit SameKind(const MQMD &md) : type_(md.MsgType), feedback_(md.Feedback) {}
    bool operator()(const MQMD &md) const
    {
        return md.MsgType == type_ && (type_ != MQMT_REPORT || md.Feedback == feedback_);
    }

private:
    MQLONG type_;
    MQLONG feedback_;
};

bool groupIsComplete(store::Transaction &transaction, store::QueueId queue, const MQMD &md, std::int64_t now)
{
    store::MessageCursor cursor(transaction, queue, {store::MessageId(md.GroupId), std::nullopt, std::nullopt});
    // A group that is still being put ends too early; whoever waits for it asks again and again.
    if (!cursor.last() || !has(cursor.header().md, MQMF_LAST_MSG_IN_GROUP)) return false;
    return follow(
        cursor, {.wholeGroup = true}, now, [](const MQMD &) { return true; }, [](const auto &, const auto &) {});
}

store::GroupPlace logicalMessageOf(const MQMD &md)
{
    return {store::MessageId(md.GroupId), md.MsgSeqNumber, std::nullopt};
}

bool logicalMessageIsComplete(store::Transaction &transaction, store::QueueId queue, const MQMD &md, std::int64_t now)
{
    store::MessageCursor cursor(transaction, queue, logicalMessageOf(md));
    return follow(cursor, {.msgSeqNumber = md.MsgSeqNumber}, now, SameKind(md), [](const auto &, const auto &) {});
}

} // namespace

std::vector<Member> segmentsOf(store::Transaction &transaction, const Member &message, std::int64_t now)
{
    const MQMD &md = message.header.md;
    if (!has(md, MQMF_SEGMENT)) return {message};
    std::vector<Member> segments;
    store::MessageCursor cursor(transaction, message.key.queue, logicalMessageOf(md));
    const bool complete = follow(cursor, {.msgSeqNumber = md.MsgSeqNumber}, now, SameKind(md),
                                 [&](const store::MessageKey &key, const store::MessageHeader &header) {
                                     segments.push_back({key, header});
                                 });
    if (!complete) segments.clear();
    return segments;
}

Availability::Walked Availability::walkedFor(const MQMD &md, bool wholeGroup)
{
    const auto group = std::to_array(md.GroupId);
    if (wholeGroup) return {group, 0, 0, 0};
    return {group, md.MsgSeqNumber, md.MsgType, md.MsgType == MQMT_REPORT ? md.Feedback : 0};
}

bool Availability::holdsForMember(const store::MessageKey &key, const store::MessageHeader &header)
{
    const MQMD &md = header.md;
    const bool wholeGroup = needs_ == MQGMO_ALL_MSGS_AVAILABLE && has(md, MQMF_MSG_IN_GROUP);
    if (!wholeGroup && !has(md, MQMF_SEGMENT)) return true;
    const Walked walked = walkedFor(md, wholeGroup);
    if (const auto known = known_.find(walked); known != known_.end()) return known->second;
    const bool complete = wholeGroup ? groupIsComplete(transaction_, key.queue, md, now_)
                                     : logicalMessageIsComplete(transaction_, key.queue, md, now_);
    known_.emplace(walked, complete);
    return complete;
}

} // namespace mqrig::qmgr::core
