// Messages of PCF structures: an MQCFH, then parameters that tell their own type and length. Strings may change their
// length, and the lengths of their structures with them.
#include <algorithm>

#include "cmqcfc.h"
#include "qmgr/convert/headers.h"

namespace mqrig::qmgr::convert {
namespace {

constexpr std::size_t number = sizeof(MQLONG);
constexpr std::size_t commonPart = 2 * number; // Type and StrucLength

constexpr std::size_t rounded(std::size_t size)
{
    return (size + number - 1) / number * number;
}

// One parameter: where it begins, and how long it says it is.
struct Parameter {
    std::size_t from; // of what is read
    std::size_t to;   // of what is written
    std::size_t size;

    std::size_t end() const { return from + size; }
};

// A count or length within the parameter; negative ones are too large for any.
std::size_t sizeAt(const Piece &piece, std::size_t place)
{
    const MQLONG value = piece.numberAt(place);
    return value < 0 ? static_cast<std::size_t>(-1) : static_cast<std::size_t>(value);
}

// Whether `count` elements of a size find their place behind the fixed part.
bool holds(const Parameter &parameter, std::size_t fixed, std::size_t count, std::size_t each)
{
    return parameter.size >= fixed && (each == 0 || (parameter.size - fixed) / each >= count);
}

// The set of a string: its own, or that of the message.
MQLONG setOf(const Piece &piece, MQLONG named)
{
    return named == MQCCSI_DEFAULT ? piece.source.ccsid : named;
}

// Runs `convert` with the string's own set in the place of the message's.
template <class Convert>
bool withSet(Piece &piece, MQLONG named, Convert &&convert)
{
    const MQLONG ofMessage = piece.source.ccsid;
    piece.source.ccsid = setOf(piece, named);
    const bool converted = convert();
    piece.source.ccsid = ofMessage;
    return converted;
}

// Zeros up to the next number, and the lengths as they have become.
bool finishString(Piece &piece, const Parameter &parameter, std::size_t ccsidAt, MQLONG named, std::size_t lengthAt,
                  std::size_t length)
{
    const std::size_t made = piece.written() - parameter.to;
    if (!piece.zeros(rounded(made) - made)) return false;
    piece.patch(parameter.to + number, static_cast<MQLONG>(rounded(made)), piece.target);
    if (named != MQCCSI_DEFAULT) piece.patch(parameter.to + ccsidAt, piece.target.ccsid, piece.target);
    piece.patch(parameter.to + lengthAt, static_cast<MQLONG>(length), piece.target);
    piece.skip(parameter.end() - piece.position());
    return true;
}

// A string of any length behind `fixed` bytes of numbers, the last two of which are its set and its length.
bool convertString(Piece &piece, const Parameter &parameter, std::size_t fixed)
{
    const std::size_t ccsidAt = fixed - 2 * number;
    const MQLONG named = piece.numberAt(ccsidAt);
    const std::size_t length = sizeAt(piece, fixed - number);
    if (!holds(parameter, fixed, length, 1)) return piece.fail(MQRC_FORMAT_ERROR);
    if (!piece.numbers(fixed / number)) return false;
    if (!withSet(piece, named, [&] { return piece.string(length); })) return false;
    return finishString(piece, parameter, ccsidAt, named, fixed - number, piece.written() - parameter.to - fixed);
}

// Strings of one length. Where their lengths become different, the shorter ones are filled up with blanks.
bool convertStrings(Piece &piece, const Parameter &parameter)
{
    constexpr std::size_t fixed = MQCFSL_STRUC_LENGTH_FIXED;
    constexpr std::size_t ccsidAt = 3 * number;
    const MQLONG named = piece.numberAt(ccsidAt);
    const std::size_t count = sizeAt(piece, 4 * number);
    const std::size_t length = sizeAt(piece, 5 * number);
    if (count == static_cast<std::size_t>(-1) || length == static_cast<std::size_t>(-1) ||
        !holds(parameter, fixed, count, length))
        return piece.fail(MQRC_FORMAT_ERROR);
    if (!piece.numbers(fixed / number)) return false;
    std::size_t longest = 0;
    const bool converted = length == 0 || withSet(piece, named, [&] {
                               // Twice: first to learn the length.
                               const Piece::Mark strings = piece.mark();
                               for (std::size_t i = 0; i < count; ++i) {
                                   const std::size_t before = piece.written();
                                   if (!piece.string(length)) return false;
                                   longest = std::max(longest, piece.written() - before);
                               }
                               piece.rewind(strings);
                               for (std::size_t i = 0; i < count; ++i)
                                   if (!piece.paddedString(length, longest)) return false;
                               return true;
                           });
    return converted && finishString(piece, parameter, ccsidAt, named, 5 * number, longest);
}

// Numbers of 4 or 8 bytes behind `fixed` bytes of numbers, the last of which is their count.
bool convertNumbers(Piece &piece, const Parameter &parameter, std::size_t fixed, std::size_t each)
{
    const std::size_t count = sizeAt(piece, fixed - number);
    if (!holds(parameter, fixed, count, each)) return piece.fail(MQRC_FORMAT_ERROR);
    return piece.numbers(fixed / number) && (each == number ? piece.numbers(count) : piece.wideNumbers(count));
}

bool convertBytes(Piece &piece, const Parameter &parameter, std::size_t fixed)
{
    if (!holds(parameter, fixed, sizeAt(piece, fixed - number), 1)) return piece.fail(MQRC_FORMAT_ERROR);
    return piece.numbers(fixed / number);
}

// The bytes of the parameter that its type knows to be there; 0 for an unknown type.
std::size_t fixedPartOf(MQLONG type)
{
    switch (type) {
    case MQCFT_INTEGER:
    case MQCFT_GROUP:
    case MQCFT_INTEGER_LIST:
    case MQCFT_BYTE_STRING:
    case MQCFT_INTEGER64_LIST:
        return 4 * number;
    case MQCFT_STRING:
    case MQCFT_INTEGER_FILTER:
    case MQCFT_BYTE_STRING_FILTER:
        return 5 * number;
    case MQCFT_INTEGER64:
    case MQCFT_STRING_LIST:
    case MQCFT_STRING_FILTER:
        return 6 * number;
    default:
        return 0;
    }
}

bool convertByType(Piece &piece, const Parameter &parameter, MQLONG type, std::size_t fixed)
{
    switch (type) {
    case MQCFT_STRING:
    case MQCFT_STRING_FILTER:
        return convertString(piece, parameter, fixed);
    case MQCFT_STRING_LIST:
        return convertStrings(piece, parameter);
    case MQCFT_INTEGER_LIST:
        return convertNumbers(piece, parameter, fixed, number);
    case MQCFT_INTEGER64_LIST:
        return convertNumbers(piece, parameter, fixed, 2 * number);
    case MQCFT_INTEGER64:
        return piece.numbers(4) && piece.wideNumbers(1);
    case MQCFT_BYTE_STRING:
    case MQCFT_BYTE_STRING_FILTER:
        return convertBytes(piece, parameter, fixed);
    default:
        return piece.numbers(fixed / number);
    }
}

bool convertParameter(Piece &piece, std::size_t end)
{
    const std::size_t left = end - piece.position();
    if (left < commonPart) return piece.fail(MQRC_FORMAT_ERROR);
    if (piece.left() < commonPart) return piece.numbers(2);
    const MQLONG type = piece.numberAt(0);
    const Parameter parameter{piece.position(), piece.written(), sizeAt(piece, number)};
    const std::size_t fixed = fixedPartOf(type);
    if (fixed == 0 || parameter.size < fixed || parameter.size > left) return piece.fail(MQRC_FORMAT_ERROR);
    if (piece.left() < fixed) return piece.numbers(fixed / number);
    if (!convertByType(piece, parameter, type, fixed)) return false;
    // Whatever else it says it has, the bytes of a byte string for one.
    return piece.bytes(parameter.end() - piece.position());
}

} // namespace

bool convertPcf(Piece &piece, std::size_t end)
{
    constexpr std::size_t header = sizeof(MQCFH);
    if (end - piece.position() < header) return piece.fail(MQRC_FORMAT_ERROR);
    if (piece.left() >= commonPart && piece.numberAt(number) != static_cast<MQLONG>(header))
        return piece.fail(MQRC_FORMAT_ERROR);
    if (!piece.numbers(header / number)) return false;
    while (piece.position() < end)
        if (!convertParameter(piece, end)) return false;
    return true;
}

} // namespace mqrig::qmgr::convert
