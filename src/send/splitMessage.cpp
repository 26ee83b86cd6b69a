// Cuts a body at a delimiter into the logical messages of a group, and each of them into segments where it is longer
// than the segmentation size.
#include "send.h"

#include "common.h"
#include "display.h"
#include "mqicalls.h"
#include "send/split.h"

#include <cstring>

namespace {

constexpr std::size_t HexPrefixLength = 2;

struct Delimiter {
    static constexpr std::size_t Maximum = 16;

    char bytes[Maximum + 1] = {}; ///< one more: a converter of an odd digit count writes half a byte too many
    std::size_t length = 0;

    /// From -dl, as text or as "0x" and digits. What is not a delimiter is reported.
    Status read(RunParams *params)
    {
        const char *given = params->LogicalMsgDelimiter;
        const bool isHex = std::strncmp(given, "0x", HexPrefixLength) == 0;
        if (isHex) given += HexPrefixLength;
        const std::size_t givenLength = std::strlen(given);
        length = isHex ? givenLength / 2 : givenLength;
        if (length > Maximum) return refuse_length(params);

        if (!isHex) {
            std::memcpy(bytes, given, length);
        } else if (hexdec2bin(given, bytes) != StatusOk) {
            printf_te(params, "Delimiter string includes invalid character or odd length: length = %zu\n", length);
            return StatusLocalFailure;
        }
        // Nothing stands everywhere: it would cut the body into empty messages without end.
        return length > 0 ? StatusOk : refuse_length(params);
    }

private:
    Status refuse_length(RunParams *params) const
    {
        printf_te(params, "Delimiter lenght error: length = %zu\n", length);
        return StatusLocalFailure;
    }
};

/// One logical message, and where the scan goes on.
struct Piece {
    const char *data;
    MQLONG length;
    const char *next;
    bool isLast;
};

/// The bytes up to the next delimiter. What is shorter than the delimiter cannot hold another one: behind a delimiter
/// it is no message of its own and is not put.
Piece cut_piece(const char *start, const char *end, const Delimiter &delimiter)
{
    const auto *found = static_cast<const char *>(
        memmem(start, static_cast<std::size_t>(end - start), delimiter.bytes, delimiter.length));
    if (found == nullptr) return {start, static_cast<MQLONG>(end - start), end, true};
    const char *const next = found + delimiter.length;
    return {start, static_cast<MQLONG>(found - start), next, static_cast<std::size_t>(end - next) < delimiter.length};
}

Status put_piece(RunParams *params, MQHCONN hconn, MQHOBJ hobj, const char *data, MQLONG length, MQLONG messageIndex,
                 MQLONG number)
{
    const Status shown =
        dsp_message(params, data, length, DisplayLogicalMessage, number, static_cast<MQULONG>(messageIndex));
    if (shown != StatusOk) return shown;
    if (params->SegmentSize != -1 && params->SegmentSize < length) {
        return Applsegmentation(params, hconn, hobj, data, length, messageIndex, number);
    }
    if (number != 1) describe_without_header(params);
    return MQSeriesPut(hconn, hobj, params, data, length);
}

} // namespace

Status splitMessage(RunParams *params, MQHCONN hconn, MQHOBJ hobj, const char *data, MQLONG length, MQLONG messageIndex)
{
    const RunRecord snapshot = params->snapshot();
    // The pieces come out of a copy: the body is put again in the next round, and the prototype of MQPUT lets the MQI
    // write to the buffer that it is given.
    const Buffer<> work = checked_malloc(params, static_cast<std::size_t>(length) + 1, {"splitMessage"});
    if (work == nullptr) return StatusLocalFailure;
    std::memcpy(work.get(), data, static_cast<std::size_t>(length));

    if (params->LogicalMsgDelimiter == nullptr) {
        return put_piece(params, hconn, hobj, work.get(), length, messageIndex, 1);
    }
    Delimiter delimiter;
    if (const Status read = delimiter.read(params); read != StatusOk) return read;

    const char *const end = work.get() + length;
    MQLONG number = 1;
    for (Piece piece{nullptr, 0, work.get(), false}; !piece.isLast; ++number) {
        piece = cut_piece(piece.next, end, delimiter);
        params->restore(snapshot);
        add_msg_flag(params, piece.isLast ? MQMF_LAST_MSG_IN_GROUP : MQMF_MSG_IN_GROUP);
        const Status put = put_piece(params, hconn, hobj, piece.data, piece.length, messageIndex, number);
        if (put != StatusOk) return put;
    }
    return StatusOk;
}
