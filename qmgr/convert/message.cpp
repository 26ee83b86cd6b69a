#include "qmgr/convert/message.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

#include "qmgr/convert/chain.h"

namespace mqrig::qmgr::convert {
namespace {

// MQCCSI_Q_MGR, and MQCCSI_APPL since programs run where the queue manager does.
Representation resolved(const Wanted &wanted)
{
    Representation representation = wanted.representation;
    if (representation.ccsid == MQCCSI_Q_MGR || representation.ccsid == MQCCSI_APPL)
        representation.ccsid = wanted.queueManagerCcsid;
    return representation;
}

Conversion unconverted(const Message &message, MQLONG reason)
{
    return {reason, {message.encoding, message.ccsid}, message.delivered, message.length};
}

// Text of single bytes into the same: in the buffer itself. Nothing is changed unless all of it can be.
bool convertBytes(const Message &message, const Representation &wanted, Conversion &conversion)
{
    const TextConverter::Found found = TextConverter::between({message.encoding, message.ccsid}, wanted);
    if (found.converter == nullptr || !found.converter->source().singleByte() ||
        !found.converter->target().singleByte())
        return false;
    const std::span<std::byte> body = message.buffer.first(message.delivered);
    if (!found.converter->knowsAll(body)) {
        conversion = unconverted(message, MQRC_NOT_CONVERTED);
        return true;
    }
    static_cast<void>(found.converter->convert(body, body));
    conversion = {message.delivered < message.length ? MQRC_TRUNCATED_MSG_ACCEPTED : MQRC_NONE, wanted,
                  message.delivered, message.length};
    return true;
}

Conversion convertParts(const Message &message, const Representation &wanted, const Wanted &request)
{
    const std::size_t room = std::min(mostAfterConversion(message.delivered), message.buffer.size());
    const std::unique_ptr<std::byte[]> place(new std::byte[room]);
    Piece piece(message.buffer.first(message.delivered), message.length, {place.get(), room});
    Part first{{message.encoding, message.ccsid}, {}};
    std::copy_n(message.format, first.format.size(), first.format.data());

    const Walked walked = convertChain(piece, first, wanted, request.queueManagerCcsid);
    if (walked.nothing) return unconverted(message, walked.reason);
    if (piece.stop == Stop::NoRoom && !request.acceptTruncated) return unconverted(message, MQRC_CONVERTED_MSG_TOO_BIG);

    const bool truncated = piece.stop == Stop::NoRoom || message.delivered < message.length;
    std::memcpy(message.buffer.data(), place.get(), piece.written());
    if (truncated)
        std::fill(message.buffer.begin() + static_cast<std::ptrdiff_t>(piece.written()), message.buffer.end(),
                  std::byte{});
    Conversion conversion{walked.reason, walked.representation, piece.written(),
                          truncated ? message.length : piece.written()};
    if (conversion.reason == MQRC_NONE && truncated) conversion.reason = MQRC_TRUNCATED_MSG_ACCEPTED;
    return conversion;
}

} // namespace

Conversion convertMessage(const Message &message, const Wanted &request) noexcept
{
    const MQLONG truncated = message.delivered < message.length ? MQRC_TRUNCATED_MSG_ACCEPTED : MQRC_NONE;
    const Representation wanted = resolved(request);
    if (wanted == Representation{message.encoding, message.ccsid} || message.length == 0 || message.buffer.empty())
        return unconverted(message, truncated);
    try {
        Conversion conversion;
        const bool isText = std::memcmp(message.format, MQFMT_STRING, MQ_FORMAT_LENGTH) == 0;
        if (isText && convertBytes(message, wanted, conversion)) return conversion;
        return convertParts(message, wanted, request);
    } catch (...) {
        // The message has left its queue already: it is never lost for want of memory.
        return unconverted(message, MQRC_STORAGE_NOT_AVAILABLE);
    }
}

} // namespace mqrig::qmgr::convert
