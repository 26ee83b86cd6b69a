// The building blocks of a conversion: where a piece of a message is read from, and where it is written to.
//
// A piece is read from what was delivered of the message, which may be its beginning only, and written into a place of
// limited size. Both ends are met in the middle of a structure: elements (a number, a character) are read and written
// whole or not at all.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "cmqc.h"
#include "qmgr/convert/text.h"

namespace mqrig::qmgr::convert {

// What stops the conversion of a message.
enum class Stop : std::uint8_t {
    Not,
    End,    // the delivered part of a longer message is over: what was written stands
    NoRoom, // so is the room
    Failed, // the piece cannot be converted: `reason`
};

// A conversion under way.
class Piece {
public:
    // `length`: of the whole message, of which `from` is the beginning.
    Piece(std::span<const std::byte> from, std::size_t length, std::span<std::byte> to)
        : from_(from), to_(to), length_(length)
    {
    }

    // The representations of what is read and written from now on.
    Representation source;
    Representation target;

    Stop stop = Stop::Not;
    MQLONG reason = MQRC_NONE; // of Failed

    bool going() const { return stop == Stop::Not; }
    // Stops; false, to be returned. The first stop stands.
    bool fail(MQLONG why);
    // The data ends within a structure: a lie of the data, unless only the beginning was delivered.
    bool endsEarly();

    // ---- Reading ----
    std::size_t position() const { return read_; }
    std::size_t left() const { return from_.size() - read_; }
    bool whole() const { return length_ == from_.size(); }
    // Where the message ends, delivered or not.
    std::size_t end() const { return length_; }
    // The next bytes, which must be there.
    std::span<const std::byte> ahead(std::size_t size) const { return from_.subspan(read_, size); }
    // A number `offset` bytes ahead, which must be there.
    MQLONG numberAt(std::size_t offset) const;
    // Whether the text ahead is this one in the source's character set.
    bool textIs(std::size_t offset, std::string_view expected) const;

    // ---- Converting: reads and writes; false when it has stopped ----
    bool numbers(std::size_t count);     // of 4 bytes
    bool wideNumbers(std::size_t count); // of 8 bytes
    bool halfNumbers(std::size_t count); // of 2 bytes
    bool bytes(std::size_t size);        // as they are
    bool field(std::size_t size);        // text of a fixed size: MQRC_CONVERTED_STRING_TOO_BIG
    bool string(std::size_t size);       // text that may change its length
    // The same, filled up with blanks to a length.
    bool paddedString(std::size_t size, std::size_t length);
    void skip(std::size_t size) { read_ += std::min(size, left()); }

    // ---- Writing ----
    std::size_t written() const { return written_; }
    // Replaces a number written before, in the representation of that time; nothing if it has not been written.
    void patch(std::size_t at, MQLONG value, const Representation &representation);
    bool zeros(std::size_t count); // fewer than a number has bytes
    // Takes back what was read and written since.
    struct Mark {
        std::size_t read;
        std::size_t written;
    };
    Mark mark() const { return {read_, written_}; }
    void rewind(const Mark &mark)
    {
        read_ = mark.read;
        written_ = mark.written;
        stop = Stop::Not;
        reason = MQRC_NONE;
    }

private:
    template <class Number>
    bool swapped(std::size_t count);
    bool write(std::span<const std::byte> bytes);
    TextConverter *converter();

    std::span<const std::byte> from_;
    std::span<std::byte> to_;
    std::size_t read_ = 0;
    std::size_t written_ = 0;
    std::size_t length_;
};

} // namespace mqrig::qmgr::convert
