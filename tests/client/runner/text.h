// Texts of transcripts: how output is written down, and how an expected line is compared with a real one.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace transcript {

using Lines = std::vector<std::string>;

// Output as lines that survive an editor: control bytes and broken UTF-8 as \xNN, a tab as \t, a backslash as \\, the
// last blank of a line as \x20, an empty line as [EMPTY]; an output that does not end in a line feed ends in
// [NO LINE END].
Lines linesOf(std::string_view output);

// One expected line against a real one. Patterns: [TIME], [TIME tid=#], [ELAPSED], [N] (a number, also negative),
// [ANY] (any text).
bool matches(std::string_view expected, std::string_view actual);
// Whole texts; the line [LINES] stands for any number of lines.
bool matches(const Lines &expected, const Lines &actual);
// What to show when they differ: "  " same, "- " expected, "+ " got.
std::string difference(const Lines &expected, const Lines &actual);

// {text*N} becomes N copies of the text.
std::string withRepeats(std::string_view text);

// The words of a line as a shell would cut it: 'as is', "with \n \t \\ \" \xNN", bare. With keepQuotes the quotes stay
// and nothing is unescaped, so that NAME="a b" is one word as it stands in a record.
enum class Quotes { Remove, Keep };
std::vector<std::string> wordsOf(std::string_view line, Quotes quotes);

} // namespace transcript
