#include "qmgr/core/segments.h"

#include <algorithm>
#include <span>

#include "qmgr/core/delivery.h"

namespace mqrig::qmgr::core {
namespace {

// A message can be in one character set and encoding only.
MQLONG judgeNext(const MQMD &first, const MQMD &next)
{
    if (next.CodedCharSetId != first.CodedCharSetId) return MQRC_INCONSISTENT_CCSIDS;
    return next.Encoding == first.Encoding ? MQRC_NONE : MQRC_INCONSISTENT_ENCODINGS;
}

// The length of a segment within the logical message. A report may have less data than its original.
std::size_t lengthOf(const Member &segment, std::size_t length)
{
    const MQMD &md = segment.header.md;
    if (md.MsgType != MQMT_REPORT || md.OriginalLength < 0) return length;
    return std::max(length, static_cast<std::size_t>(md.OriginalLength));
}

} // namespace

std::optional<LogicalMessage> assemble(store::Transaction &transaction, const Member &first, std::int64_t now)
{
    const std::vector<Member> segments = segmentsOf(transaction, first, now);
    if (segments.empty() || segments.front().key != first.key) return std::nullopt;

    LogicalMessage whole{.parts = {}, .header = first.header, .stored = {}, .outcome = success()};
    std::size_t total = 0;
    for (const Member &segment : segments)
        total += lengthOf(segment, segment.header.bodyLength);
    whole.stored.reserve(total);
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
        whole.stored.resize(whole.stored.size() + lengthOf(segment, body.size()) - body.size());
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

} // namespace mqrig::qmgr::core
