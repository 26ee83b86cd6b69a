// The hexadecimal dump: sixteen columns a line, and characters of the user's locale kept whole. A multi-byte character
// that begins near the end of a line runs past its last column; the next line skips as many, so that every byte stands
// in the column of its offset.
#include "display.h"

#include "common.h"
#include "display/characters.h"

#include <climits>
#include <cstring>

namespace {

constexpr std::size_t Columns = 16;
constexpr int LinesOfBlock = 60;

/// One line in the making: the hexadecimal area and the character column, filled side by side.
class DumpLine {
public:
    std::size_t column() const { return column_; }

    /// Skips a column that the line before has used.
    void skip(bool groupEnds)
    {
        blanks(2);
        character(' ');
        if (groupEnds) blanks(1);
    }
    void byte(char value, char shown)
    {
        if (column_ % 2 == 0 && column_ < Columns) blanks(1);
        bin2hexdec(&value, hex_ + hexLength_, 1);
        hexLength_ += 2;
        character(shown);
    }
    void missing()
    {
        if (column_ % 2 == 0) blanks(1);
        blanks(2);
        character(' ');
    }
    void blanks(std::size_t count)
    {
        std::memset(hex_ + hexLength_, ' ', count);
        hexLength_ += count;
    }
    void write(std::size_t offset) const
    {
        std::printf("\n%08X: %.*s '", static_cast<MQULONG>(offset), static_cast<int>(hexLength_), hex_);
        std::fwrite(characters_, 1, column_, stdout);
        std::putchar('\'');
    }

private:
    void character(char shown) { characters_[column_++] = shown; }

    char hex_[6 * (Columns + MB_LEN_MAX)];
    char characters_[Columns + MB_LEN_MAX];
    std::size_t hexLength_ = 0;
    std::size_t column_ = 0;
};

} // namespace

void dumpmsg(const void *data, MQLONG length)
{
    const char *bytes = static_cast<const char *>(data);
    const std::size_t end = length > 0 ? static_cast<std::size_t>(length) : 0;
    const CharacterReader characters;
    std::size_t carried = 0; // columns of the next line that this one used
    std::size_t offset = 0;
    int lines = 0;
    do {
        DumpLine line;
        const std::size_t lineOffset = offset;
        for (std::size_t i = carried; i > 0; --i)
            line.skip(i % 2 == 1);
        carried = 0;
        while (line.column() < Columns && offset < end) {
            const std::size_t width = characters.length(bytes + offset, end - offset);
            if (width == 1) {
                line.byte(bytes[offset], is_shown(bytes[offset]) ? bytes[offset] : '.');
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
        line.write(lineOffset);
        if (++lines == LinesOfBlock) {
            std::fputs("\n ", stdout);
            lines = 0;
        }
    } while (offset < end);
    std::putchar('\n');
}
