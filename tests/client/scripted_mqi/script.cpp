#include "script.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <limits>

namespace scripted {

namespace {

constexpr std::string_view calls[] = {
    "MQCONN",  "MQCONNX", "MQDISC",  "MQOPEN",  "MQCLOSE", "MQPUT",   "MQPUT1",  "MQGET", "MQINQ",
    "MQSET",   "MQCMIT",  "MQBACK",  "MQBEGIN", "MQCRTMH", "MQDLTMH", "MQSETMP", "MQINQMP", "MQDLTMP",
    "MQBUFMH", "MQMHBUF", "MQCB",    "MQCTL",   "MQSTAT",  "MQSUB",   "MQSUBRQ",
};

bool isCall(std::string_view name)
{
    for (const std::string_view call : calls) {
        if (call == name) return true;
    }
    return false;
}

// Words of one line; blanks inside double quotes belong to their word.
std::vector<std::string> wordsOf(std::string_view line)
{
    std::vector<std::string> words;
    std::string word;
    bool inQuotes = false;
    for (std::size_t at = 0; at < line.size(); ++at) {
        const char c = line[at];
        if (inQuotes && c == '\\' && at + 1 < line.size()) {
            word += c;
            word += line[++at];
            continue;
        }
        if (c == '"') inQuotes = !inQuotes;
        if (c == ' ' && !inQuotes) {
            if (!word.empty()) words.push_back(std::move(word));
            word.clear();
        } else {
            word += c;
        }
    }
    if (!word.empty()) words.push_back(std::move(word));
    return words;
}

// The items of one rule, read one after another.
class Items {
public:
    Items(std::string where, std::vector<std::string> words) : where_(std::move(where)), words_(std::move(words)) {}

    bool atEnd() const { return next_ == words_.size(); }

    std::string word()
    {
        if (atEnd()) fault("a value is missing at the end");
        return words_[next_++];
    }

    MQLONG number()
    {
        const std::string text = word();
        return numberOf(text);
    }

    MQLONG numberOf(std::string_view text) const
    {
        const auto number = fromNumber(text);
        if (!number) fault("not a number: " + std::string(text));
        return static_cast<MQLONG>(*number);
    }

    std::string text()
    {
        const std::string word_ = word();
        const auto text = fromQuoted(word_);
        if (!text) fault("not a quoted text: " + word_);
        return *text;
    }

    [[noreturn]] void fault(std::string_view what) const { scriptFault(where_, what); }

private:
    std::string where_;
    std::vector<std::string> words_;
    std::size_t next_ = 0;
};

std::string contentsOf(const Items &items, const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) items.fault("cannot read " + path);
    return {std::istreambuf_iterator<char>(file), {}};
}

// A body of the given size: letters in order, so that a cut or a shift shows.
std::string alphabet(const Items &items, MQLONG size)
{
    if (size < 0) items.fault("a negative size");
    std::string body(static_cast<std::size_t>(size), ' ');
    for (std::size_t at = 0; at < body.size(); ++at) {
        body[at] = static_cast<char>('a' + at % 26);
    }
    return body;
}

void setCodes(Answer &answer, MQLONG CompCode, MQLONG Reason)
{
    answer.CompCode = CompCode;
    answer.Reason = Reason;
}

void appendBody(Answer &answer, const std::string &bytes)
{
    answer.body = answer.body.value_or("") + bytes;
}

// NAME=VALUE: a code, a handle, or a field of a structure.
void readAssignment(const Items &items, const std::string &word, Answer &answer)
{
    const std::size_t equals = word.find('=');
    const std::string name = word.substr(0, equals);
    const std::string value = word.substr(equals + 1);
    if (name == "CompCode") {
        answer.CompCode = items.numberOf(value);
    } else if (name == "Reason") {
        answer.Reason = items.numberOf(value);
    } else if (name == "DataLength") {
        answer.DataLength = items.numberOf(value);
    } else if (name == "Type") {
        answer.Type = items.numberOf(value);
    } else if (name == "Hconn" || name == "Hobj" || name == "Hmsg") {
        answer.handle = items.numberOf(value);
    } else {
        const std::size_t dot = name.find('.');
        const Structure *type = dot == std::string::npos ? nullptr : findStructure(name.substr(0, dot));
        const Field *field = type == nullptr ? nullptr : type->find(name.substr(dot + 1));
        if (field == nullptr) items.fault("unknown field: " + name);
        const auto bytes = parseValue(*field, value);
        if (!bytes) items.fault("the value does not suit the field: " + word);
        answer.fields.push_back({type, field, *bytes});
    }
}

Response responseOf(const Items &items, std::string_view word)
{
    const std::size_t colon = word.find(':');
    if (colon == std::string_view::npos) items.fault("a response is CompCode:Reason");
    return {items.numberOf(word.substr(0, colon)), items.numberOf(word.substr(colon + 1))};
}

void readItem(Items &items, Answer &answer)
{
    const std::string word = items.word();
    if (word == "ok") {
        setCodes(answer, MQCC_OK, MQRC_NONE);
    } else if (word == "warn") {
        setCodes(answer, MQCC_WARNING, items.number());
    } else if (word == "fail") {
        setCodes(answer, MQCC_FAILED, items.number());
    } else if (word == "text") {
        appendBody(answer, items.text());
    } else if (word == "hex") {
        const std::string digits = items.word();
        const auto bytes = fromHex(digits);
        if (!bytes) items.fault("not hexadecimal: " + digits);
        appendBody(answer, *bytes);
    } else if (word == "file") {
        appendBody(answer, contentsOf(items, items.text()));
    } else if (word == "size") {
        appendBody(answer, alphabet(items, items.number()));
    } else if (word == "name") {
        answer.name = items.text();
    } else if (word == "int") {
        answer.integers.push_back(items.number());
    } else if (word == "char") {
        answer.texts.push_back(items.text());
    } else if (word == "response") {
        answer.responses.push_back(responseOf(items, items.word()));
    } else if (word == "event") {
        const std::string event = items.word();
        const std::size_t colon = event.find(':');
        const MQLONG delay = colon == std::string::npos ? 0 : items.numberOf(event.substr(colon + 1));
        answer.events.push_back({items.numberOf(event.substr(0, colon)), delay});
    } else if (word == "delay") {
        answer.delay = std::chrono::milliseconds(items.number());
    } else if (word == "exit") {
        answer.exitCode = items.number();
    } else if (word.find('=') != std::string::npos) {
        readAssignment(items, word, answer);
    } else {
        items.fault("unknown item: " + word);
    }
}

// The head of a rule: the call's name and which calls of that name it answers.
void readHead(const std::string &where, std::string_view head, Rule &rule)
{
    const auto words = wordsOf(head);
    if (words.empty() || words.size() > 2 || !isCall(words[0])) {
        scriptFault(where, "a rule begins with a call's name and a count: " + std::string(head));
    }
    rule.call = words[0];
    rule.last = std::numeric_limits<long>::max();
    if (words.size() == 1 || words[1] == "*") return;
    std::string count = words[1];
    const bool open = count.ends_with("+");
    if (open) count.pop_back();
    const std::size_t dash = count.find('-');
    const auto first = fromNumber(count.substr(0, dash));
    const auto last = dash == std::string::npos ? first : fromNumber(count.substr(dash + 1));
    if (!first || !last || *first < 1 || *last < *first) scriptFault(where, "not a count: " + words[1]);
    rule.first = static_cast<long>(*first);
    if (!open) rule.last = static_cast<long>(*last);
}

} // namespace

Script::Script(const char *path)
{
    std::ifstream file(path);
    if (!file) scriptFault(path, "cannot be read");
    std::string text;
    for (int line = 1; std::getline(file, text); ++line) {
        const std::size_t start = text.find_first_not_of(' ');
        if (start == std::string::npos || text[start] == '#') continue;
        Rule rule;
        rule.line = line;
        rule.text = text.substr(start);
        const std::string where = std::string(path) + ":" + std::to_string(line);
        const std::size_t colon = rule.text.find(':');
        if (colon == std::string::npos) scriptFault(where, "a rule has a colon behind its head");
        readHead(where, std::string_view(rule.text).substr(0, colon), rule);
        Items items(where, wordsOf(std::string_view(rule.text).substr(colon + 1)));
        while (!items.atEnd()) {
            readItem(items, rule.answer);
        }
        rules_.push_back(std::move(rule));
    }
}

const Answer *Script::find(std::string_view call, long n)
{
    for (Rule &rule : rules_) {
        if (rule.call == call && rule.first <= n && n <= rule.last) {
            rule.used = true;
            return &rule.answer;
        }
    }
    return nullptr;
}

std::vector<const Rule *> Script::unused() const
{
    std::vector<const Rule *> rules;
    for (const Rule &rule : rules_) {
        if (!rule.used && rule.last != std::numeric_limits<long>::max()) rules.push_back(&rule);
    }
    return rules;
}

void scriptFault(std::string_view where, std::string_view what)
{
    std::fprintf(stderr, "scripted_mqi: %.*s: %.*s\n", static_cast<int>(where.size()), where.data(),
                 static_cast<int>(what.size()), what.data());
    std::abort();
}

} // namespace scripted
