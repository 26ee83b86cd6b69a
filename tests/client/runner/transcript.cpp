#include "transcript.h"

#include <charconv>
#include <fstream>
#include <stdexcept>

namespace transcript {

namespace {

class Reader {
public:
    explicit Reader(const std::string &path) : path_(path)
    {
        std::ifstream file(path);
        if (!file) throw std::runtime_error(path + ": cannot be read");
        std::string line;
        while (std::getline(file, line)) lines_.push_back(line);
    }

    std::vector<Case> cases()
    {
        while (next_ < lines_.size()) {
            const std::string &line = lines_[next_++];
            if (line.empty() || line.starts_with("#")) continue;
            if (line.starts_with("== ")) {
                cases_.push_back({line.substr(3), lineNumber(), {}});
                setup_ = {};
            } else if (cases_.empty()) {
                fault("a case begins with == NAME");
            } else if (line.starts_with("$ ")) {
                command(line.substr(2));
            } else if (!readSetup(line) && !readExpectation(line)) {
                fault("not understood: " + line);
            }
        }
        for (const Case &read : cases_) {
            if (read.runs.empty()) throw std::runtime_error(path_ + ": " + read.name + " runs nothing");
        }
        return std::move(cases_);
    }

private:
    int lineNumber() const { return static_cast<int>(next_); }

    [[noreturn]] void fault(const std::string &what) const
    {
        throw std::runtime_error(path_ + ":" + std::to_string(lineNumber()) + ": " + what);
    }

    // The indented lines that follow, without the first four blanks.
    Lines block()
    {
        Lines block;
        while (next_ < lines_.size() && lines_[next_].starts_with("    ")) {
            block.push_back(withRepeats(std::string_view(lines_[next_++]).substr(4)));
        }
        return block;
    }

    static std::string joined(const Lines &lines)
    {
        std::string text;
        for (const std::string &line : lines) text += line + "\n";
        return text;
    }

    std::vector<std::string> words(std::string_view line, Quotes quotes = Quotes::Remove) const
    {
        try {
            return wordsOf(withRepeats(line), quotes);
        } catch (const std::runtime_error &error) {
            fault(error.what());
        }
    }

    void command(std::string text)
    {
        Run run;
        run.line = lineNumber();
        while (text.ends_with("\\") && next_ < lines_.size()) {
            text.pop_back();
            text += lines_[next_++];
        }
        run.setup = setup_;
        run.arguments = words(text);
        if (run.arguments.empty() || run.arguments.front() != "mqrig") fault("only mqrig can be run");
        cases_.back().runs.push_back(std::move(run));
    }

    bool readSetup(const std::string &line)
    {
        if (line == "script:") {
            setup_.script = joined(block());
        } else if (line.starts_with("env ")) {
            for (const std::string &word : words(line.substr(4))) {
                const std::size_t equals = word.find('=');
                if (equals == std::string::npos) fault("env takes NAME=value");
                setup_.environment.emplace_back(word.substr(0, equals), word.substr(equals + 1));
            }
        } else if (line.starts_with("file ") && line.ends_with(":") && !line.ends_with(" holds:")) {
            const std::string name = line.substr(5, line.size() - 6);
            setup_.nodes.push_back({Node::Kind::File, name, joined(block())});
        } else if (line.starts_with("file ") && !line.ends_with(":")) {
            node(Node::Kind::File, words(line.substr(5)), 2);
        } else if (line.starts_with("folder ") && !line.ends_with(":")) {
            node(Node::Kind::Folder, words(line.substr(7)), 1);
        } else if (line.starts_with("link ")) {
            node(Node::Kind::Link, words(line.substr(5)), 2);
        } else if (line.starts_with("pipe ")) {
            node(Node::Kind::Pipe, words(line.substr(5)), 1);
        } else if (line.starts_with("limit files to ") && line.ends_with(" bytes")) {
            setup_.fileSizeLimit = number(line.substr(15, line.size() - 15 - 6));
        } else if (line.starts_with("stdin ")) {
            setup_.input = words(line.substr(6)).at(0);
        } else if (line == "merged") {
            setup_.merged = true;
        } else if (line == "on a terminal") {
            setup_.terminal = Terminal::Only;
        } else if (line == "piped and on a terminal") {
            setup_.terminal = Terminal::Both;
        } else if (line == "record all fields") {
            setup_.recordsAllFields = true;
        } else if (line.starts_with("when ")) {
            reaction(words(line.substr(5)));
        } else if (line.starts_with("clock ")) {
            setup_.faults.emplace_back("MQRIG_TEST_CLOCK", line.substr(6));
        } else if (line == "record pauses") {
            setup_.faults.emplace_back("MQRIG_TEST_PAUSES", "1");
        } else if (line.starts_with("fail ")) {
            setup_.faults.emplace_back("MQRIG_TEST_FAIL", line.substr(5));
        } else {
            return false;
        }
        return true;
    }

    void node(Node::Kind kind, std::vector<std::string> parts, std::size_t count)
    {
        if (parts.size() != count) fault("a file and a link take a name and what it holds, a folder and a pipe a name");
        parts.resize(2);
        setup_.nodes.push_back({kind, parts[0], parts[1]});
    }

    long long number(const std::string &text) const
    {
        long long value = 0;
        const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (error != std::errc() || stop != text.data() + text.size()) fault("not a number: " + text);
        return value;
    }

    void reaction(const std::vector<std::string> &parts)
    {
        if (parts.size() == 3 && parts[1] == "press") {
            setup_.reactions.push_back({parts[0], parts[2], ""});
        } else if (parts.size() == 3 && parts[1] == "create") {
            setup_.reactions.push_back({parts[0], "", parts[2]});
        } else if (parts.size() == 3 && parts[1] == "signal") {
            setup_.reactions.push_back({parts[0], "", "", std::stoi(parts[2])});
        } else if (parts.size() == 2 && parts[1] == "interrupt") {
            setup_.reactions.push_back({parts[0], "\x03", ""});
        } else {
            fault("when \"text\" press \"keys\", interrupt, signal N or create FILE");
        }
    }

    bool readExpectation(const std::string &line)
    {
        if (cases_.back().runs.empty()) return false;
        Run &run = cases_.back().runs.back();
        if (line == "out:") {
            run.out = block();
        } else if (line == "err:") {
            run.err = block();
        } else if (line.starts_with("exit: ")) {
            run.exit = line.substr(6);
        } else if (line.starts_with("order: ")) {
            run.order = order(words(line.substr(7)));
        } else if (line.starts_with("calls") && line.ends_with(":")) {
            run.calls.push_back(calls(words(line.substr(5, line.size() - 6))));
        } else if (line.starts_with("file ") && line.ends_with(" holds:")) {
            run.filesAfter.emplace_back(line.substr(5, line.size() - 5 - 7), block());
        } else if (line.starts_with("folder ") && line.ends_with(" has:")) {
            run.foldersAfter.emplace_back(line.substr(7, line.size() - 7 - 5), block());
        } else if (line.starts_with("nothing at ")) {
            run.absentAfter.push_back(words(line.substr(11)).at(0));
        } else {
            return false;
        }
        return true;
    }

    // MQPUT*3 stands for three calls, none for no call at all.
    std::vector<std::string> order(const std::vector<std::string> &entries) const
    {
        std::vector<std::string> names;
        if (entries == std::vector<std::string>{"none"}) return names;
        for (const std::string &word : entries) {
            const std::size_t star = word.find('*');
            std::size_t count = 1;
            if (star != std::string::npos) {
                const auto [stop, error] = std::from_chars(word.data() + star + 1, word.data() + word.size(), count);
                if (error != std::errc() || stop != word.data() + word.size()) fault("not a count: " + word);
            }
            names.insert(names.end(), count, word.substr(0, star));
        }
        return names;
    }

    CallsExpectation calls(std::vector<std::string> names)
    {
        CallsExpectation expectation;
        if (!names.empty() && names.back() == "exactly") {
            expectation.exactly = true;
            names.pop_back();
        }
        expectation.names = std::move(names);
        for (const std::string &line : block()) {
            if (line.starts_with("    ")) {
                if (expectation.calls.empty()) fault("a detail without a call");
                expectation.calls.back().details.push_back(line.substr(4));
                continue;
            }
            auto parts = words(line, Quotes::Keep);
            if (parts.empty()) fault("an empty line among the calls");
            ExpectedCall call;
            call.text = line;
            call.name = parts.front();
            call.arguments.assign(parts.begin() + 1, parts.end());
            expectation.calls.push_back(std::move(call));
        }
        return expectation;
    }

    std::string path_;
    Lines lines_;
    std::size_t next_ = 0;
    std::vector<Case> cases_;
    Setup setup_;
};

} // namespace

std::vector<Case> readTranscript(const std::string &path) { return Reader(path).cases(); }

} // namespace transcript
