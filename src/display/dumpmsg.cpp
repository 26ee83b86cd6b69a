// The hexadecimal dump: sixteen columns a line, and characters of the user's locale kept whole. A multi-byte character
// that begins near the end of a line runs past its last column; the next line skips as many, so that every byte stands
// in the column of its offset.
//
// Bodies are large: lines are put together in a buffer, and what a byte looks like is looked up.
#include "display.h"

#include "common.h"
#include "display/characters.h"

#include <array>
#include <bit>
#include <climits>
#include <cstring>

namespace {

constexpr std::size_t Columns = 16;
constexpr int LinesOfBlock = 60;
/// Of the offset, the hexadecimal area with what runs past it, and the characters.
constexpr std::size_t LongestLine = 64 + 6 * (Columns + MB_LEN_MAX) + Columns + MB_LEN_MAX;

/// What a byte looks like in the two areas, and what it may be of a character of several bytes.
struct ByteLook {
    std::array<char, 3> hex; ///< with room for a terminator
    char shown;              ///< on its own
    unsigned char begins;    ///< 1: a longer character may begin with it
    unsigned char goesOn;    ///< 1: it may be the second byte of one
};

class ByteTable {
public:
    explicit ByteTable(const CharacterReader &characters)
    {
        for (std::size_t i = 0; i < looks_.size(); ++i) {
            const char byte = static_cast<char>(i);
            ByteLook &look = looks_[i];
            bin2hexdec(&byte, look.hex.data(), 1);
            look.shown = is_shown(byte) ? byte : '.';
            look.begins = characters.alone(byte) ? 0 : 1;
            look.goesOn = characters.may_go_on(byte) ? 1 : 0;
        }
    }
    const ByteLook &operator[](char byte) const { return looks_[static_cast<unsigned char>(byte)]; }

private:
    std::array<ByteLook, 256> looks_;
};

/// The text on its way to standard output.
class DumpText {
public:
    ~DumpText() { flush(); }
    /// Room for one line.
    char *line()
    {
        if (text_.size() - length_ < LongestLine) flush();
        return text_.data() + length_;
    }
    void end(const char *behind) { length_ = static_cast<std::size_t>(behind - text_.data()); }

private:
    void flush()
    {
        std::fwrite(text_.data(), 1, length_, stdout);
        length_ = 0;
    }

    std::array<char, 32768> text_;
    std::size_t length_ = 0;
};

char *put_offset(char *to, std::size_t offset, const ByteTable &table)
{
    *to++ = '\n';
    for (int shift = 24; shift >= 0; shift -= 8, to += 2)
        std::memcpy(to, table[static_cast<char>(offset >> shift)].hex.data(), 2);
    *to++ = ':';
    *to++ = ' ';
    return to;
}

char *put_blanks(char *to, std::size_t count)
{
    std::memset(to, ' ', count);
    return to + count;
}

char *put_characters(char *to, const char *characters, std::size_t count)
{
    *to++ = ' ';
    *to++ = '\'';
    std::memcpy(to, characters, count);
    to += count;
    *to++ = '\'';
    return to;
}

/// One line in the making: the hexadecimal area and the character column, filled side by side.
class DumpLine {
public:
    DumpLine(char *to, const ByteTable &table) : to_(to), table_(table) {}

    std::size_t column() const { return column_; }

    /// Skips a column that the line before has used.
    void skip(bool groupEnds)
    {
        to_ = put_blanks(to_, groupEnds ? 3 : 2);
        character(' ');
    }
    void byte(char value, char shown)
    {
        if (column_ % 2 == 0 && column_ < Columns) *to_++ = ' ';
        std::memcpy(to_, table_[value].hex.data(), 2);
        to_ += 2;
        character(shown);
    }
    void missing()
    {
        to_ = put_blanks(to_, column_ % 2 == 0 ? 3 : 2);
        character(' ');
    }
    void blanks(std::size_t count) { to_ = put_blanks(to_, count); }
    char *finish() { return put_characters(to_, characters_, column_); }

private:
    void character(char shown) { characters_[column_++] = shown; }

    char *to_;
    const ByteTable &table_;
    char characters_[Columns + MB_LEN_MAX];
    std::size_t column_ = 0;
};

/// A whole line, unless a character runs past its end: then null, with nothing of use written. `available`: from
/// `bytes` to the end of the body.
char *put_whole_line(char *to, const char *bytes, std::size_t available, const CharacterReader &characters,
                     const ByteTable &table)
{
    char shown[Columns];
    unsigned begins = 0;
    unsigned goesOn = 1U << Columns; // of the byte behind the line nothing is known here
    for (std::size_t i = 0; i < Columns; ++i) {
        const ByteLook &look = table[bytes[i]];
        if (i % 2 == 0) *to++ = ' ';
        std::memcpy(to, look.hex.data(), 2);
        to += 2;
        shown[i] = look.shown;
        begins |= static_cast<unsigned>(look.begins) << i;
        goesOn |= static_cast<unsigned>(look.goesOn) << i;
    }
    // The few places where a longer character may stand; all other bytes stand for themselves.
    for (unsigned places = begins & (goesOn >> 1); places != 0;) {
        const auto i = static_cast<std::size_t>(std::countr_zero(places));
        const std::size_t width = characters.length(bytes + i, available - i);
        if (i + width > Columns) return nullptr;
        if (width > 1) std::memcpy(shown + i, bytes + i, width);
        places &= ~0U << (i + width);
    }
    return put_characters(put_blanks(to, (characters.widest() - 1) * 2), shown, Columns);
}

} // namespace

void dumpmsg(const void *data, MQLONG length)
{
    const char *bytes = static_cast<const char *>(data);
    const std::size_t end = length > 0 ? static_cast<std::size_t>(length) : 0;
    const CharacterReader characters;
    const ByteTable table(characters);
    std::size_t carried = 0; // columns of the next line that this one used
    std::size_t offset = 0;
    int lines = 0;
    DumpText text;
    do {
        char *const begin = put_offset(text.line(), offset, table);
        char *behind = nullptr;
        if (carried == 0 && end - offset >= Columns)
            behind = put_whole_line(begin, bytes + offset, end - offset, characters, table);
        if (behind != nullptr) {
            offset += Columns;
        } else {
            DumpLine line(begin, table);
            for (std::size_t i = carried; i > 0; --i)
                line.skip(i % 2 == 1);
            carried = 0;
            while (line.column() < Columns && offset < end) {
                const std::size_t width = characters.length(bytes + offset, end - offset);
                if (width == 1) {
                    line.byte(bytes[offset], table[bytes[offset]].shown);
                    ++offset;
                    continue;
                }
                for (std::size_t i = 0; i < width; ++i, ++offset)
                    line.byte(bytes[offset], bytes[offset]);
            }
            if (line.column() > Columns) carried = line.column() - Columns;
            while (line.column() < Columns)
                line.missing();
            if (characters.widest() > 1 + carried) line.blanks((characters.widest() - 1 - carried) * 2);
            behind = line.finish();
        }
        if (++lines == LinesOfBlock) {
            *behind++ = '\n';
            *behind++ = ' ';
            lines = 0;
        }
        text.end(behind);
    } while (offset < end);
    char *const last = text.line();
    *last = '\n';
    text.end(last + 1);
}
