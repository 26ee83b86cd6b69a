#include "qmgr/core/segments.h"

#include <algorithm>
#include <span>

#include "qmgr/core/delivery.h"
#include "qmgr/core/header_chain.h"
#include "qmgr/core/put.h"

namespace mqrig::qmgr::core {
namespace {

constexpr std::size_t segmentUnit = 16;

// A message can be in one character set and encoding only.
MQLONG judgeNext(const MQMD &first, const MQMD &next)
{
    if (next.CodedCharSetId != first.CodedCharSetId) return MQRC_INCONSISTENT_CCSIDS;
    return next.Encoding == first.Encoding ? MQRC_NONE : MQRC_INCONSISTENT_ENCODINGS;
}

// The length of a segment within the logical message. A report may have less data than its original; zeros stand for
// the rest of it if `filled`.
std::size_t lengthOf(const Member &segment, std::size_t length, bool filled)
{
    const MQMD &md = segment.header.md;
    if (!filled || md.MsgType != MQMT_REPORT || md.OriginalLength < 0) return length;
    return std::max(length, static_cast<std::size_t>(md.OriginalLength));
}

} // namespace

std::optional<LogicalMessage> assemble(store::Transaction &transaction, const Member &first, std::int64_t now)
{
    const std::vector<Member> segments = segmentsOf(transaction, first, now);
    if (segments.empty() || segments.front().key != first.key) return std::nullopt;

    LogicalMessage whole{.parts = {}, .header = first.header, .stored = {}, .outcome = success()};
    std::size_t length = 0;
    std::size_t lengthFilled = 0;
    for (const Member &segment : segments) {
        length += lengthOf(segment, segment.header.bodyLength, false);
        lengthFilled += lengthOf(segment, segment.header.bodyLength, true);
    }
    // The lengths of originals are what a sender claims: they do not make a message longer than one can be.
    const bool filled = lengthFilled <= longestMessage;
    whole.stored.reserve(filled ? lengthFilled : length);
    whole.parts.reserve(segments.size());
    for (const Member &segment : segments) {
        if (const MQLONG reason = judgeNext(first.header.md, segment.header.md)) {
            whole.outcome = warning(reason);
            break;
        }
        const std::span<const std::byte> stored = transaction.body(segment.key);
        const std::span<const std::byte> body = bodyOf(segment.header, stored);
        // Properties are those of the first one.
        const std::span<const std::byte> part = whole.parts.empty() ? stored : body;
        whole.stored.insert(whole.stored.end(), part.begin(), part.end());
        whole.stored.resize(whole.stored.size() + lengthOf(segment, body.size(), filled) - body.size());
        whole.parts.push_back(segment);
    }
    // After an error of the store there are no bytes.
    if (transaction.outcome().failed()) return std::nullopt;

    MQMD &md = whole.header.md;
    whole.header.bodyLength = static_cast<std::uint32_t>(whole.stored.size());
    md.OriginalLength = static_cast<MQLONG>(bodyOf(whole.header, whole.stored).size());
    if (whole.outcome.ok()) md.MsgFlags |= MQMF_LAST_SEGMENT;
    return whole;
}

SegmentCutter::SegmentCutter(Connection &connection, const store::NewMessage &message, std::size_t most)
    : connection_(connection), message_(message), length_(bodyOf(message.header, message.body).size()),
      // All but the last one are multiples of this, so that no character or number is cut into two.
      size_(most / segmentUnit * segmentUnit)
{
    possible_ =
        size_ >= segmentUnit && lengthOfHeaders(message.header.md, bodyOf(message.header, message.body)) <= size_;
}

store::NewMessage SegmentCutter::next()
{
    const std::size_t length = std::min(size_, length_ - offset_);
    const std::size_t properties = message_.header.coreLength;
    store::NewMessage segment = message_;
    MQMD &md = segment.header.md;
    if (offset_ == 0) {
        segment.body = message_.body.first(properties + length);
    } else {
        segment.body = message_.body.subspan(properties + offset_, length);
        segment.header.coreLength = 0;
        connection_.newIdentifier(md.MsgId);
    }
    md.Offset += static_cast<MQLONG>(offset_);
    md.OriginalLength = static_cast<MQLONG>(length);
    offset_ += length;
    // A segment that is cut has its flag already; the last piece of it is the last of all only if it was.
    const bool last = !more() && ((md.MsgFlags & MQMF_SEGMENT) == 0 || (md.MsgFlags & MQMF_LAST_SEGMENT) != 0);
    md.MsgFlags = (md.MsgFlags & ~MQMF_LAST_SEGMENT) | MQMF_SEGMENT | (last ? MQMF_LAST_SEGMENT : MQMF_NONE);
    return segment;
}

} // namespace mqrig::qmgr::core
