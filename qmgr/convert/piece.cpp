#include "qmgr/convert/piece.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace mqrig::qmgr::convert {
namespace {

constexpr bool hostReversed = std::endian::native == std::endian::little;
// The longest field of the MQI's headers.
constexpr std::size_t longestField = 256;

template <class Number>
Number swappedBytes(Number number)
{
    if constexpr (sizeof number == 2)
        return __builtin_bswap16(number);
    else if constexpr (sizeof number == 4)
        return __builtin_bswap32(number);
    else
        return __builtin_bswap64(number);
}

bool startsWith(std::span<const std::byte> bytes, std::span<const std::byte> with)
{
    return bytes.size() >= with.size() && std::equal(with.begin(), with.end(), bytes.begin());
}

// The part of a field that means something: up to a null, without blanks behind it.
std::span<const std::byte> significant(std::span<const std::byte> field, std::span<const std::byte> blank)
{
    const std::size_t unit = blank.size();
    constexpr std::array<std::byte, 2> null{};
    std::size_t end = 0;
    for (std::size_t at = 0; at + unit <= field.size(); at += unit) {
        if (startsWith(field.subspan(at), std::span(null).first(unit))) break;
        if (!startsWith(field.subspan(at), blank)) end = at + unit;
    }
    return field.first(end);
}

} // namespace

bool Piece::fail(MQLONG why)
{
    if (stop != Stop::Not) return false;
    stop = Stop::Failed;
    reason = why;
    return false;
}

bool Piece::endsEarly()
{
    if (whole()) return fail(MQRC_FORMAT_ERROR);
    if (stop == Stop::Not) stop = Stop::End;
    return false;
}

MQLONG Piece::numberAt(std::size_t offset) const
{
    std::uint32_t number = 0;
    std::memcpy(&number, from_.data() + read_ + offset, sizeof number);
    return static_cast<MQLONG>(source.reversed() == hostReversed ? number : swappedBytes(number));
}

bool Piece::textIs(std::size_t offset, std::string_view expected) const
{
    std::string there;
    const std::span<const std::byte> bytes = from_.subspan(read_ + offset, expected.size());
    const std::string_view found(reinterpret_cast<const char *>(bytes.data()), bytes.size());
    return !text(found, source, {MQENC_NATIVE, 1208}, there).failed() && there == expected;
}

bool Piece::write(std::span<const std::byte> bytes)
{
    if (stop != Stop::Not) return false;
    if (to_.size() - written_ < bytes.size()) {
        stop = Stop::NoRoom;
        return false;
    }
    if (!bytes.empty()) std::memcpy(to_.data() + written_, bytes.data(), bytes.size());
    written_ += bytes.size();
    return true;
}

template <class Number>
bool Piece::swapped(std::size_t count)
{
    if (source.reversed() == target.reversed()) {
        // As far as whole numbers go.
        const std::size_t there = std::min({count, left() / sizeof(Number), (to_.size() - written_) / sizeof(Number)});
        if (!write(ahead(there * sizeof(Number)))) return false;
        read_ += there * sizeof(Number);
        count -= there;
    }
    for (; count != 0; --count) {
        if (left() < sizeof(Number)) return endsEarly();
        Number number = 0;
        std::memcpy(&number, from_.data() + read_, sizeof number);
        if (source.reversed() != target.reversed()) number = swappedBytes(number);
        if (!write(std::as_bytes(std::span(&number, 1)))) return false;
        read_ += sizeof number;
    }
    return going();
}

bool Piece::numbers(std::size_t count)
{
    return swapped<std::uint32_t>(count);
}

bool Piece::wideNumbers(std::size_t count)
{
    return swapped<std::uint64_t>(count);
}

bool Piece::halfNumbers(std::size_t count)
{
    return swapped<std::uint16_t>(count);
}

bool Piece::bytes(std::size_t size)
{
    const std::size_t there = std::min({size, left(), to_.size() - written_});
    if (!write(ahead(there))) return false;
    read_ += there;
    if (there == size) return true;
    if (left() == 0) return endsEarly();
    stop = Stop::NoRoom;
    return false;
}

bool Piece::zeros(std::size_t count)
{
    constexpr std::array<std::byte, sizeof(MQLONG)> none{};
    return write(std::span(none).first(count));
}

TextConverter *Piece::converter()
{
    const TextConverter::Found found = TextConverter::between(source, target);
    if (found.converter == nullptr) fail(found.reason);
    return found.converter;
}

bool Piece::field(std::size_t size)
{
    TextConverter *text = converter();
    if (text == nullptr) return false;
    if (left() < size) return string(size);
    const std::span<const std::byte> given = ahead(size);
    std::array<std::byte, mostAfterConversion(longestField)> place;
    TextResult result = text->convert(given, place);
    // Where it grows, and where there is rubbish behind a null, only what means something has to find its place.
    bool whole = result.end == TextEnd::Whole && result.written <= size;
    bool ended = false;
    if (!whole) {
        const std::span<const std::byte> value = significant(given, text->sourceBlank());
        result = text->convert(value, place);
        if (result.end != TextEnd::Whole) return fail(MQRC_NOT_CONVERTED);
        if (result.written > size) return fail(MQRC_CONVERTED_STRING_TOO_BIG);
        const std::size_t unit = text->sourceBlank().size();
        const std::span<const std::byte> rest = given.subspan(value.size());
        ended = std::any_of(rest.begin(), rest.end(), [](std::byte byte) { return byte == std::byte{}; }) && unit == 1;
    }
    std::size_t filled = result.written;
    for (const std::span<const std::byte> blank = text->targetBlank(); !ended && filled + blank.size() <= size;)
        filled = static_cast<std::size_t>(
            std::copy(blank.begin(), blank.end(), place.begin() + static_cast<std::ptrdiff_t>(filled)) - place.begin());
    std::fill(place.begin() + static_cast<std::ptrdiff_t>(filled), place.begin() + static_cast<std::ptrdiff_t>(size),
              std::byte{});
    if (!write(std::span(place).first(size))) return false;
    read_ += size;
    return true;
}

bool Piece::string(std::size_t size)
{
    TextConverter *text = converter();
    if (text == nullptr) return false;
    const std::size_t there = std::min(size, left());
    const TextResult result = text->convert(ahead(there), to_.subspan(written_));
    read_ += result.read;
    written_ += result.written;
    switch (result.end) {
    case TextEnd::Whole:
        return there == size ? true : endsEarly();
    case TextEnd::NoRoom:
        stop = Stop::NoRoom;
        return false;
    case TextEnd::Cut:
        if (there < size && !whole()) return endsEarly();
        return fail(MQRC_NOT_CONVERTED);
    case TextEnd::Invalid:
        break;
    }
    return fail(MQRC_NOT_CONVERTED);
}

bool Piece::paddedString(std::size_t size, std::size_t length)
{
    const std::size_t before = written_;
    if (!string(size)) return false;
    const TextConverter::Found found = TextConverter::between(source, target);
    const std::span<const std::byte> blank = found.converter->targetBlank();
    while (written_ - before + blank.size() <= length)
        if (!write(blank)) return false;
    const std::size_t made = written_ - before;
    return made >= length || zeros(length - made);
}

void Piece::patch(std::size_t at, MQLONG value, const Representation &representation)
{
    if (at + sizeof value > written_) return;
    auto number = static_cast<std::uint32_t>(value);
    if (representation.reversed() != hostReversed) number = swappedBytes(number);
    std::memcpy(to_.data() + at, &number, sizeof number);
}

} // namespace mqrig::qmgr::convert
