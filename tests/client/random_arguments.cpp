// client_random_arguments --client PATH --library FOLDER --faults FOLDER FIRST COUNT
//
// Runs the client with COUNT argument vectors made from the seeds FIRST, FIRST+1, ... : options and constant names that
// it lists itself, right and wrong values, random bytes, arguments as long as the system takes. Whatever it is given,
// it ends by itself, without a signal, with an exit code of its own. A vector that breaks that is written as a command.
#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <poll.h>
#include <random>
#include <set>
#include <spawn.h>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::size_t longestArgument = 131071; // what Linux takes in one piece
constexpr auto longestRun = std::chrono::seconds(10);
// What a test of the sanitizers exits with when it finds something; not one of the client's.
constexpr int sanitizerExit = 99;

struct Options {
    std::string client;
    std::string mqiFolder;
    std::string faults;
    std::vector<std::string> numbers;
};

using Words = std::vector<std::string>;

// A queue with a few messages of the formats that have headers, an empty one, one where calls fail. Endless runs are
// ended by the library.
constexpr std::array<const char *, 3> scripts = {R"(
MQCONN 6+: exit 0
MQCONNX 6+: exit 0
MQPUT 20+: exit 0
MQGET 1: size 300 MQMD.Format="MQDEAD"
MQGET 2: hex 58514820 size 200 MQMD.Format="MQXMIT"
MQGET 3: size 70 MQMD.Format="MQHMDE"
MQGET 4: hex 524648200200000028000000 size 28 MQMD.Format="MQHRF2"
MQGET 5: hex 0100000024000000030000000100000001000000 size 16 hex ffffff7f MQMD.Format="MQADMIN"
MQGET 6: text ""
MQGET 20+: exit 0
MQINQMP 1: name "a" text "b" Type=1024
)",
                                                 R"(
MQCONN 6+: exit 0
MQCONNX 6+: exit 0
MQPUT 20+: exit 0
MQGET 20+: exit 0
)",
                                                 R"(
MQCONN 1: fail 2059
MQCONN 6+: exit 0
MQCONNX 2: fail 2538
MQCONNX 6+: exit 0
MQOPEN 2: fail 2085
MQPUT 1: fail 2053
MQGET 1: warn 2120 text "converted not"
MQGET 2: fail 2016
MQCMIT 1: warn 2003
MQBACK 1: fail 2009
MQCLOSE 2: fail 2019
MQDISC 2: fail 2018
MQCRTMH 2: fail 2071
)"};

class Client {
public:
    Client(const Options &options, std::filesystem::path folder) : options_(options), folder_(std::move(folder))
    {
        for (std::size_t i = 0; i < scripts.size(); ++i) std::ofstream(folder_ / ("script" + std::to_string(i))) << scripts[i];
        std::ofstream(folder_ / "file") << "contents\n";
        std::filesystem::create_directory(folder_ / "folder");
        std::filesystem::current_path(folder_);
        environment_ = {"LC_ALL=C.UTF-8",
                        "LD_LIBRARY_PATH=" + options_.mqiFolder,
                        "LD_PRELOAD=" + options_.faults + "/libclient_faults.so",
                        "MQRIG_RECORD=/dev/null",
                        "MQRIG_TEST_PAUSES=1",
                        "ASAN_OPTIONS=verify_asan_link_order=0:allocator_may_return_null=1:max_allocation_size_mb=256:"
                        "exitcode=" + std::to_string(sanitizerExit),
                        "UBSAN_OPTIONS=exitcode=" + std::to_string(sanitizerExit)};
    }

    // The status that waitpid gives; -1 when the client had to be ended. Output goes to the file.
    int run(const Words &arguments, const std::string &output, std::size_t scriptNumber) const
    {
        Words environment = environment_;
        environment.push_back("MQRIG_SCRIPT=" + (folder_ / ("script" + std::to_string(scriptNumber))).string());
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
        posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
        Words all = {"mqrig"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        pid_t pid = 0;
        auto argv = pointers(all);
        auto envp = pointers(environment);
        const int error = ::posix_spawn(&pid, options_.client.c_str(), &actions, nullptr, argv.data(), envp.data());
        posix_spawn_file_actions_destroy(&actions);
        if (error != 0) throw std::runtime_error("cannot start the client: " + std::string(std::strerror(error)));
        return await(pid);
    }

private:
    static std::vector<char *> pointers(const Words &words)
    {
        std::vector<char *> pointers;
        for (const std::string &word : words) pointers.push_back(const_cast<char *>(word.c_str()));
        pointers.push_back(nullptr);
        return pointers;
    }

    static int await(pid_t pid)
    {
        const auto deadline = std::chrono::steady_clock::now() + longestRun;
        int status = 0;
        for (;;) {
            if (::waitpid(pid, &status, WNOHANG) == pid) return status;
            if (std::chrono::steady_clock::now() > deadline) break;
            ::usleep(200);
        }
        ::kill(pid, SIGKILL);
        ::waitpid(pid, &status, 0);
        return -1;
    }

    Options options_;
    std::filesystem::path folder_;
    Words environment_;
};

std::string contentsOf(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Options and constant names, out of the client's own listing.
Words vocabulary(const Client &client)
{
    client.run({"-v", "all"}, "listing", 0);
    std::set<std::string> words;
    std::string word;
    for (const char c : contentsOf("listing") + "\n") {
        const bool belongs = std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '-';
        if (belongs) {
            word += c;
            continue;
        }
        const bool option = word.size() >= 2 && word.size() <= 4 && word[0] == '-';
        const bool constant = word.starts_with("MQ") && word.find('_') != std::string::npos;
        if ((option && word != "-v") || constant) words.insert(word);
        word.clear();
    }
    if (words.size() < 300) throw std::runtime_error("the client lists too little to choose from");
    return {words.begin(), words.end()};
}

class Generator {
public:
    Generator(const Words &words, unsigned seed) : words_(words), random_(seed) {}

    Words vector()
    {
        Words arguments;
        if (!oneIn(10)) append(arguments, {"-qm", oneIn(4) ? "QM1,,QM2" : "QM1"});
        if (!oneIn(10)) append(arguments, {"-q", "Q1"});
        if (oneIn(2)) append(arguments, {oneIn(3) ? "-mx" : "-m", value()});
        const unsigned count = below(oneIn(10) ? 60 : 5);
        for (unsigned i = 0; i < count; ++i) {
            if (oneIn(12)) {
                arguments.push_back(value());
            } else {
                arguments.push_back(words_[below(static_cast<unsigned>(words_.size()))]);
                const bool constant = arguments.back().starts_with("MQ");
                if (constant && oneIn(30)) arguments.back() += "X";
                if (!constant && !oneIn(15)) arguments.push_back(value());
            }
        }
        if (oneIn(300)) append(arguments, Words(7, "-m")), arguments.back() = bytes(longestArgument);
        if (oneIn(60)) arguments.push_back("-v");
        harmless(arguments);
        return arguments;
    }

private:
    unsigned below(unsigned limit) { return limit == 0 ? 0 : static_cast<unsigned>(random_() % limit); }
    bool oneIn(unsigned n) { return below(n) == 0; }

    static void append(Words &to, const Words &more) { to.insert(to.end(), more.begin(), more.end()); }

    std::string bytes(std::size_t length)
    {
        std::string text(length, 'x');
        for (char &c : text) c = static_cast<char>(1 + below(255));
        return text;
    }

    std::string value()
    {
        static constexpr std::array<const char *, 12> numbers = {
            "0", "1", "-1", "-2", "3", "4096", "2147483647", "-2147483648", "99999999999999999999", "0x222", " 7", "1e3"};
        static constexpr std::array<const char *, 8> texts = {
            "all", "Q1,Q2:QM2", "a::b,,c", "MQENC_INTEGER_NORMAL:MQENC_BOGUS", "MQTYPE_STRING:a:b", "0x0102", "", "%s%n%d"};
        switch (below(8)) {
        case 0:
        case 1:
            return numbers[below(numbers.size())];
        case 2:
            return texts[below(texts.size())];
        case 3:
            return bytes(below(80));
        case 4:
            return "0x" + std::string(below(80), "0123456789abcdefg"[below(17)]);
        case 5:
            return std::string(below(300), 'n');
        case 6:
            return oneIn(40) ? bytes(below(longestArgument)) : std::to_string(below(2000));
        default:
            return words_[below(static_cast<unsigned>(words_.size()))];
        }
    }

    // Values that would make the run wait for ever, start thousands of threads, or touch files outside of its folder.
    void harmless(Words &arguments)
    {
        static const std::set<std::string> files = {"-f", "-d", "-o", "-g", "-pcf", "-sf"};
        for (std::size_t at = 0; at + 1 < arguments.size(); ++at) {
            if (files.contains(arguments[at])) {
                arguments[at + 1] = arguments[at] == "-sf" || oneIn(2) ? "file" : oneIn(2) ? "folder" : "missing";
            } else if (arguments[at] == "-nt" || arguments[at] == "-ni") {
                arguments[at + 1] = std::to_string(below(4));
            }
        }
    }

    const Words &words_;
    std::mt19937_64 random_;
};

std::string asCommand(const Words &arguments)
{
    std::string command = "mqrig";
    for (const std::string &argument : arguments) {
        command += " $'";
        for (const char c : argument.substr(0, 2000)) {
            char hex[8];
            std::snprintf(hex, sizeof hex, "\\x%02x", static_cast<unsigned char>(c));
            command += std::isalnum(static_cast<unsigned char>(c)) != 0 || std::strchr("-_,:", c) != nullptr
                           ? std::string(1, c)
                           : hex;
        }
        command += argument.size() > 2000 ? "'..." : "'";
    }
    return command;
}

bool isFine(int status) { return status >= 0 && WIFEXITED(status) && WEXITSTATUS(status) <= 3; }

void explain(unsigned seed, int status, const Words &arguments)
{
    const std::string how = status < 0           ? "did not end"
                            : WIFSIGNALED(status) ? "ended by signal " + std::to_string(WTERMSIG(status))
                                                  : "exit code " + std::to_string(WEXITSTATUS(status));
    std::printf("seed %u: %s\n%s\n%s\n", seed, how.c_str(), asCommand(arguments).c_str(),
                contentsOf("output").substr(0, 4000).c_str());
}

Options optionsOf(int argc, char **argv)
{
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        std::string *const path = argument == "--client"    ? &options.client
                                  : argument == "--library" ? &options.mqiFolder
                                  : argument == "--faults"  ? &options.faults
                                                            : nullptr;
        if (path == nullptr) {
            options.numbers.push_back(argument);
        } else if (i + 1 < argc) {
            *path = std::filesystem::absolute(argv[++i]).string();
        }
    }
    if (options.numbers.size() != 2) throw std::runtime_error("the first seed and the number of vectors are wanted");
    return options;
}

// A client that asks for gigabytes is told that there are none. The sanitizers, who need the address space, do that
// by their own option.
void limitMemory()
{
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    const rlimit limit{512 << 20, 512 << 20};
    ::setrlimit(RLIMIT_AS, &limit);
#endif
}

} // namespace

int main(int argc, char **argv)
{
    std::string folder = (std::filesystem::temp_directory_path() / "mqrig-random-XXXXXX").string();
    try {
        const Options options = optionsOf(argc, argv);
        if (::mkdtemp(folder.data()) == nullptr) throw std::runtime_error("cannot make " + folder);
        limitMemory();
        const Client client(options, folder);
        const Words words = vocabulary(client);
        const auto first = static_cast<unsigned>(std::stoul(options.numbers[0]));
        const auto count = static_cast<unsigned>(std::stoul(options.numbers[1]));
        unsigned faults = 0;
        std::array<unsigned, 4> exits{};
        for (unsigned seed = first; seed < first + count; ++seed) {
            const Words arguments = Generator(words, seed).vector();
            const int status = client.run(arguments, "output", seed % scripts.size());
            if (isFine(status)) {
                ++exits[static_cast<std::size_t>(WEXITSTATUS(status))];
            } else {
                ++faults;
                explain(seed, status, arguments);
            }
        }
        std::filesystem::remove_all(folder);
        std::printf("%u vectors, %u faults; exit codes 0: %u, 1: %u, 2: %u, 3: %u\n", count, faults, exits[0], exits[1],
                    exits[2], exits[3]);
        // Vectors that all fail at the first argument would prove nothing.
        return faults == 0 && exits[0] + exits[2] + exits[3] >= count / 20 ? 0 : 1;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "client_random_arguments: %s\n", error.what());
        return 2;
    }
}
