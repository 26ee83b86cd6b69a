#include "qmgr/command/mqsc_parser.h"

namespace mqrig::qmgr::command {
namespace {

bool isBlank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

char upper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

class Parser {
public:
    explicit Parser(std::string_view text) : text_(text) {}

    ParsedCommand run()
    {
        while (true) {
            skipBlanks();
            if (atEnd()) break;
            if (peek() == ';') {
                ++at_;
                skipBlanks();
                if (!atEnd()) fail("nothing may follow the ';' that ends the command");
                break;
            }
            if (peek() == ',' && command_.words.size() > 2 && !afterComma_) {
                ++at_;
                afterComma_ = true;
                continue;
            }
            afterComma_ = false;
            if (!parameter()) break;
        }
        if (command_.ok && afterComma_) fail("a parameter is missing after the comma");
        return std::move(command_);
    }

private:
    bool atEnd() const { return at_ >= text_.size(); }
    char peek() const { return text_[at_]; }

    void skipBlanks()
    {
        while (!atEnd() && isBlank(peek()))
            ++at_;
    }

    bool fail(std::string reason)
    {
        command_.ok = false;
        command_.fault = {at_, std::move(reason)};
        return false;
    }

    bool parameter()
    {
        MqscParameter word;
        word.offset = at_;
        while (!atEnd() && !isBlank(peek()) && !isDelimiter(peek()))
            word.keyword += upper(text_[at_++]);
        if (word.keyword.empty()) return fail("a keyword is expected");
        skipBlanks();
        if (!atEnd() && peek() == '(') {
            ++at_;
            word.hasValue = true;
            if (!values(word)) return false;
        }
        command_.words.push_back(std::move(word));
        return true;
    }

    bool values(MqscParameter &word)
    {
        while (true) {
            skipBlanks();
            if (atEnd()) return fail("a closing parenthesis is missing");
            if (peek() == ')' && word.values.empty()) break;
            if (!value(word)) return false;
            skipBlanks();
            if (atEnd()) return fail("a closing parenthesis is missing");
            if (peek() == ')') break;
            if (peek() == '(' || peek() == ';') return fail("a value with parentheses in it stands between quotes");
            if (peek() == ',') ++at_;
        }
        ++at_;
        return true;
    }

    bool value(MqscParameter &word)
    {
        MqscValue value;
        value.offset = at_;
        if (peek() == '\'') {
            value.quoted = true;
            if (!quoted(value.text)) return false;
        } else {
            while (!atEnd() && !isBlank(peek()) && !isDelimiter(peek()))
                value.text += upper(text_[at_++]);
            if (value.text.empty()) return fail("a value is expected");
        }
        word.values.push_back(std::move(value));
        return true;
    }

    bool quoted(std::string &into)
    {
        const std::size_t opened = at_++;
        while (!atEnd()) {
            const char c = text_[at_++];
            if (c != '\'') {
                into += c;
            } else if (!atEnd() && peek() == '\'') {
                into += '\'';
                ++at_;
            } else {
                return true;
            }
        }
        at_ = opened;
        return fail("a closing quote is missing");
    }

    static bool isDelimiter(char c) { return c == '(' || c == ')' || c == ',' || c == '\'' || c == ';'; }

    std::string_view text_;
    std::size_t at_ = 0;
    bool afterComma_ = false;
    ParsedCommand command_;
};

} // namespace

ParsedCommand parseMqsc(std::string_view text)
{
    return Parser(text).run();
}

} // namespace mqrig::qmgr::command
