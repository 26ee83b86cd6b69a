#include "text.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <stdexcept>

namespace transcript {

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// The length of the well-formed UTF-8 sequence of two bytes or more that begins here; 0 when there is none.
std::size_t utf8Length(std::string_view text)
{
    const auto lead = static_cast<unsigned char>(text[0]);
    const std::size_t length = lead >= 0xc2 && lead <= 0xdf ? 2 : lead >= 0xe0 && lead <= 0xef ? 3
                               : lead >= 0xf0 && lead <= 0xf4 ? 4 : 0;
    if (length == 0 || text.size() < length) return 0;
    const auto isContinuation = [](char c) { return (static_cast<unsigned char>(c) & 0xc0) == 0x80; };
    return std::all_of(text.begin() + 1, text.begin() + static_cast<std::ptrdiff_t>(length), isContinuation) ? length
                                                                                                             : 0;
}

std::string escaped(std::string_view line)
{
    std::string text;
    for (std::size_t at = 0; at < line.size(); ++at) {
        const char c = line[at];
        const bool lastBlank = c == ' ' && at + 1 == line.size();
        if (c == '\t') {
            text += "\\t";
        } else if (c == '\\') {
            text += "\\\\";
        } else if (c >= ' ' && c != 0x7f && !lastBlank) {
            text += c;
        } else if (const std::size_t length = utf8Length(line.substr(at))) {
            text += line.substr(at, length);
            at += length - 1;
        } else {
            char hex[8];
            std::snprintf(hex, sizeof hex, "\\x%02x", static_cast<unsigned char>(c));
            text += hex;
        }
    }
    return text;
}

// How much of the text a shape such as "99/99/99" takes: each 9 a digit; npos when it does not fit.
std::size_t takeShape(std::string_view text, std::string_view shape)
{
    if (text.size() < shape.size()) return std::string_view::npos;
    for (std::size_t at = 0; at < shape.size(); ++at) {
        const bool fits = shape[at] == '9' ? isDigit(text[at]) : shape[at] == text[at];
        if (!fits) return std::string_view::npos;
    }
    return shape.size();
}

std::size_t takeNumber(std::string_view text)
{
    std::size_t length = text.starts_with("-") ? 1 : 0;
    const std::size_t first = length;
    while (length < text.size() && isDigit(text[length])) ++length;
    return length == first ? std::string_view::npos : length;
}

constexpr std::string_view timeShape = "[99/99/99 99:99:99.999999999";

// What a pattern takes of the text; npos when it does not fit.
std::size_t take(std::string_view pattern, std::string_view text)
{
    if (pattern == "[TIME]") return takeShape(text, std::string(timeShape) + "]");
    if (pattern == "[TIME tid=#]") {
        const std::string shape = std::string(timeShape) + " tid=";
        const std::size_t head = takeShape(text, shape);
        if (head == std::string_view::npos) return head;
        const std::size_t number = takeNumber(text.substr(head));
        if (number == std::string_view::npos) return number;
        return text.substr(head + number).starts_with("]") ? head + number + 1 : std::string_view::npos;
    }
    if (pattern == "[N]") return takeNumber(text);
    constexpr std::string_view elapsed = "Elapsed time = ";
    if (!text.starts_with(elapsed)) return std::string_view::npos;
    const std::string_view rest = text.substr(elapsed.size());
    const std::size_t whole = takeNumber(rest);
    if (whole == std::string_view::npos) return whole;
    const std::size_t fraction = takeShape(rest.substr(whole), ".999999 sec");
    return fraction == std::string_view::npos ? fraction : elapsed.size() + whole + fraction;
}

constexpr std::string_view patterns[] = {"[TIME]", "[TIME tid=#]", "[ELAPSED]", "[N]"};

bool matchLines(const Lines &expected, std::size_t e, const Lines &actual, std::size_t a)
{
    for (; e < expected.size(); ++e, ++a) {
        if (expected[e] == "[LINES]") {
            for (std::size_t rest = a; rest <= actual.size(); ++rest) {
                if (matchLines(expected, e + 1, actual, rest)) return true;
            }
            return false;
        }
        if (a == actual.size() || !matches(expected[e], actual[a])) return false;
    }
    return a == actual.size();
}

} // namespace

Lines linesOf(std::string_view output)
{
    Lines lines;
    while (!output.empty()) {
        const std::size_t end = output.find('\n');
        const bool complete = end != std::string_view::npos;
        const std::string text = escaped(output.substr(0, end));
        lines.push_back(text.empty() ? "[EMPTY]" : text);
        if (!complete) {
            lines.back() += "[NO LINE END]";
            break;
        }
        output.remove_prefix(end + 1);
    }
    return lines;
}

bool matches(std::string_view expected, std::string_view actual)
{
    while (!expected.empty()) {
        if (expected.starts_with("[ANY]")) {
            for (std::size_t length = 0; length <= actual.size(); ++length) {
                if (matches(expected.substr(5), actual.substr(length))) return true;
            }
            return false;
        }
        const auto *pattern = std::find_if(std::begin(patterns), std::end(patterns),
                                           [&](std::string_view p) { return expected.starts_with(p); });
        if (pattern != std::end(patterns)) {
            const std::size_t taken = take(*pattern, actual);
            if (taken == std::string_view::npos) return false;
            expected.remove_prefix(pattern->size());
            actual.remove_prefix(taken);
        } else if (!actual.empty() && expected.front() == actual.front()) {
            expected.remove_prefix(1);
            actual.remove_prefix(1);
        } else {
            return false;
        }
    }
    return actual.empty();
}

bool matches(const Lines &expected, const Lines &actual) { return matchLines(expected, 0, actual, 0); }

std::string difference(const Lines &expected, const Lines &actual)
{
    constexpr std::size_t longest = 400;
    const std::size_t rows = std::min(expected.size(), longest);
    const std::size_t columns = std::min(actual.size(), longest);
    // common[e][a]: the most lines that the rests from e and a have in common, in order.
    std::vector<std::vector<unsigned>> common(rows + 1, std::vector<unsigned>(columns + 1, 0));
    for (std::size_t e = rows; e-- > 0;) {
        for (std::size_t a = columns; a-- > 0;) {
            common[e][a] = matches(expected[e], actual[a]) ? common[e + 1][a + 1] + 1
                                                           : std::max(common[e + 1][a], common[e][a + 1]);
        }
    }
    std::string text;
    std::size_t e = 0;
    std::size_t a = 0;
    while (e < rows || a < columns) {
        if (e < rows && a < columns && matches(expected[e], actual[a])) {
            text += "    " + actual[a] + "\n";
            ++e, ++a;
        } else if (e < rows && (a == columns || common[e + 1][a] >= common[e][a + 1])) {
            text += "  - " + expected[e++] + "\n";
        } else {
            text += "  + " + actual[a++] + "\n";
        }
    }
    if (expected.size() > longest || actual.size() > longest) text += "  ... more lines are not shown\n";
    return text;
}

std::string withRepeats(std::string_view text)
{
    std::string expanded;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t close = text[at] == '{' ? text.find('}', at) : std::string_view::npos;
        const std::size_t star = close == std::string_view::npos ? close : text.rfind('*', close);
        std::size_t count = 0;
        if (star != std::string_view::npos && star > at + 1 && star + 1 < close) {
            const auto [stop, error] = std::from_chars(text.data() + star + 1, text.data() + close, count);
            if (error == std::errc() && stop == text.data() + close) {
                for (std::size_t i = 0; i < count; ++i) {
                    expanded += text.substr(at + 1, star - at - 1);
                }
                at = close + 1;
                continue;
            }
        }
        expanded += text[at++];
    }
    return expanded;
}

std::vector<std::string> wordsOf(std::string_view line, Quotes quotes)
{
    std::vector<std::string> words;
    std::string word;
    bool inWord = false;
    char quote = 0;
    for (std::size_t at = 0; at < line.size(); ++at) {
        const char c = line[at];
        if (quote == 0 && c == ' ') {
            if (inWord) words.push_back(std::move(word));
            word.clear();
            inWord = false;
            continue;
        }
        inWord = true;
        if (quote == 0 && (c == '"' || (c == '\'' && quotes == Quotes::Remove))) {
            quote = c;
            if (quotes == Quotes::Keep) word += c;
        } else if (quote != 0 && c == quote) {
            quote = 0;
            if (quotes == Quotes::Keep) word += c;
        } else if (quote == '"' && c == '\\' && at + 1 < line.size()) {
            const char next = line[++at];
            if (quotes == Quotes::Keep) {
                word += c;
                word += next;
            } else if (next == 'x' && at + 2 < line.size()) {
                unsigned byte = 0;
                std::from_chars(line.data() + at + 1, line.data() + at + 3, byte, 16);
                word += static_cast<char>(byte);
                at += 2;
            } else {
                word += next == 'n' ? '\n' : next == 't' ? '\t' : next;
            }
        } else {
            word += c;
        }
    }
    if (quote != 0) throw std::runtime_error("a quote is not closed: " + std::string(line));
    if (inWord) words.push_back(std::move(word));
    return words;
}

} // namespace transcript
