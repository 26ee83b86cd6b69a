// Lines of MQSC into commands: comments, continuations and the end of the input.
//
// A line whose first character is '*' is a comment, an empty line is nothing; both may stand inside a continued
// command. A command goes on where the last character of a line (blanks aside) is '+': the next line's leading blanks
// are skipped, or '-': the next line is taken from its first character. Blanks before the sign stay.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cmqc.h"
#include "cmqcfc.h"

namespace mqrig::qmgr::command {

// The longest command that MQ takes.
inline constexpr std::size_t maxCommandLength = MQ_COMMAND_MQSC_LENGTH;

struct TextPosition {
    std::size_t line = 0;   // from 1
    std::size_t column = 0; // from 1
};

// One command, its lines joined.
class CommandText {
public:
    const std::string &text() const { return text_; }
    bool tooLong() const { return tooLong_; }       // the text ends at maxCommandLength
    bool unfinished() const { return unfinished_; } // the input ended after a continuation sign

    // Where the character at `offset` of text() stood in the input.
    TextPosition at(std::size_t offset) const;

private:
    friend class MqscReader;

    struct Piece {
        std::size_t offset; // where the piece begins in text_
        TextPosition position;
    };
    void append(std::string_view piece, TextPosition position);

    std::string text_;
    std::vector<Piece> pieces_;
    bool tooLong_ = false;
    bool unfinished_ = false;
};

class MqscReader {
public:
    // `nextLine` gives the input's lines without their ends, nothing at the end of the input.
    // `echo` is told every line that is read, and whether a command begins in it.
    using NextLine = std::function<std::optional<std::string>()>;
    using Echo = std::function<void(std::string_view line, bool beginsCommand)>;
    MqscReader(NextLine nextLine, Echo echo);

    // The next command; nothing at the end of the input.
    std::optional<CommandText> next();

private:
    NextLine nextLine_;
    Echo echo_;
    std::size_t line_ = 0;
};

} // namespace mqrig::qmgr::command
