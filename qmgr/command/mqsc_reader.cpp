#include "qmgr/command/mqsc_reader.h"

#include <algorithm>
#include <utility>

namespace mqrig::qmgr::command {
namespace {

constexpr std::string_view blanks = " \t\r\v\f";

bool isBlank(std::string_view line)
{
    return line.find_first_not_of(blanks) == std::string_view::npos;
}

} // namespace

TextPosition CommandText::at(std::size_t offset) const
{
    const auto after = std::upper_bound(pieces_.begin(), pieces_.end(), offset,
                                        [](std::size_t wanted, const Piece &piece) { return wanted < piece.offset; });
    if (after == pieces_.begin()) return {1, 1};
    const Piece &piece = *(after - 1);
    return {piece.position.line, piece.position.column + (offset - piece.offset)};
}

void CommandText::append(std::string_view piece, TextPosition position)
{
    pieces_.push_back({text_.size(), position});
    const std::size_t room = maxCommandLength - text_.size();
    if (piece.size() > room) tooLong_ = true;
    text_ += piece.substr(0, room);
}

MqscReader::MqscReader(NextLine nextLine, Echo echo) : nextLine_(std::move(nextLine)), echo_(std::move(echo)) {}

std::optional<CommandText> MqscReader::next()
{
    CommandText command;
    bool begun = false;
    bool skipLeadingBlanks = true;
    while (std::optional<std::string> line = nextLine_()) {
        ++line_;
        if (line->starts_with('*') || isBlank(*line)) {
            echo_(*line, false);
            continue;
        }
        echo_(*line, !begun);
        begun = true;

        const std::size_t first = skipLeadingBlanks ? line->find_first_not_of(blanks) : 0;
        std::string_view part = std::string_view(*line).substr(first);
        const std::size_t last = line->find_last_not_of(blanks);
        const char sign = (*line)[last];
        const bool continued = sign == '+' || sign == '-';
        if (continued && last >= first) part = part.substr(0, last - first);
        // A command that is too long is still read to its end, and kept no further.
        if (!command.tooLong_) command.append(part, {line_, first + 1});
        if (!continued) return command;
        skipLeadingBlanks = sign == '+';
    }
    if (!begun) return std::nullopt;
    command.unfinished_ = true;
    return command;
}

} // namespace mqrig::qmgr::command
