#include "process.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <poll.h>
#include <stdexcept>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace transcript {

namespace {

constexpr auto longestRun = std::chrono::seconds(18);

class Descriptor {
public:
    explicit Descriptor(int fd = -1) : fd_(fd) {}
    Descriptor(Descriptor &&other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    Descriptor &operator=(Descriptor &&other) noexcept
    {
        std::swap(fd_, other.fd_);
        return *this;
    }
    ~Descriptor() { close(); }

    int get() const { return fd_; }
    bool isOpen() const { return fd_ >= 0; }
    void close()
    {
        if (fd_ >= 0) ::close(fd_);
        fd_ = -1;
    }

private:
    int fd_;
};

int checked(int result, const char *what)
{
    if (result < 0) throw std::runtime_error(std::string(what) + ": " + std::strerror(errno));
    return result;
}

struct Pipe {
    Descriptor read;
    Descriptor write;
};

Pipe makePipe()
{
    int ends[2];
    checked(::pipe2(ends, O_CLOEXEC), "pipe2");
    return {Descriptor(ends[0]), Descriptor(ends[1])};
}

struct Pty {
    Descriptor master;
    Descriptor slave;
    termios settings{}; // as the client finds them
};

// A terminal as a shell leaves it, but for the output: a line feed stays one byte.
Pty makePty()
{
    Pty pty;
    pty.master = Descriptor(checked(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC), "posix_openpt"));
    checked(::grantpt(pty.master.get()), "grantpt");
    checked(::unlockpt(pty.master.get()), "unlockpt");
    char name[64];
    checked(::ptsname_r(pty.master.get(), name, sizeof name) == 0 ? 0 : -1, "ptsname_r");
    pty.slave = Descriptor(checked(::open(name, O_RDWR | O_NOCTTY | O_CLOEXEC), name));
    checked(::tcgetattr(pty.slave.get(), &pty.settings), "tcgetattr");
    pty.settings.c_oflag &= ~static_cast<tcflag_t>(OPOST);
    checked(::tcsetattr(pty.slave.get(), TCSANOW, &pty.settings), "tcsetattr");
    checked(::tcgetattr(pty.slave.get(), &pty.settings), "tcgetattr");
    return pty;
}

void writeFile(const std::string &path, const std::string &contents)
{
    std::ofstream file(path, std::ios::binary);
    file << contents;
    if (!file.flush()) throw std::runtime_error("cannot write " + path);
}

// A second run of a case finds what the first one left.
void make(const Node &node, const std::string &path)
{
    switch (node.kind) {
    case Node::Kind::File:
        return writeFile(path, node.contents);
    case Node::Kind::Folder:
        std::filesystem::create_directories(path);
        return;
    case Node::Kind::Link:
        std::filesystem::remove(path);
        return std::filesystem::create_symlink(node.contents, path);
    case Node::Kind::Pipe:
        std::filesystem::remove(path);
        checked(::mkfifo(path.c_str(), 0600), "mkfifo");
        return;
    }
}

std::string readFile(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// A small environment of the test's own; what the sanitizers are told from outside goes through.
std::vector<std::string> environment(const Setup &setup, const Programs &programs, const std::string &folder)
{
    std::vector<std::string> variables = {"LC_ALL=C", "TZ=UTC", "LD_LIBRARY_PATH=" + programs.mqiFolder,
                                          "MQRIG_SCRIPT=" + folder + "/script", "MQRIG_RECORD=" + folder + "/record"};
    std::string asan = "detect_stack_use_after_return=1:verify_asan_link_order=0";
    if (const char *given = std::getenv("ASAN_OPTIONS")) asan += std::string(":") + given;
    variables.push_back("ASAN_OPTIONS=" + asan);
    for (const char *name : {"UBSAN_OPTIONS", "TSAN_OPTIONS", "LSAN_OPTIONS"}) {
        if (const char *given = std::getenv(name)) variables.push_back(std::string(name) + "=" + given);
    }
    if (setup.recordsAllFields) variables.emplace_back("MQRIG_RECORD_ALL=1");
    if (!setup.faults.empty()) {
        std::string preloaded = programs.faults + "/libclient_faults.so";
        for (const auto &[name, value] : setup.faults) {
            if (value.starts_with("malloc ")) preloaded += ":" + programs.faults + "/libclient_allocations.so";
            if (name == "MQRIG_TEST_NTH") preloaded = programs.faults + "/libnth_call.so:" + preloaded;
            variables.push_back(name + "=" + value);
        }
        variables.push_back("LD_PRELOAD=" + preloaded);
    }
    for (const auto &[name, value] : setup.environment) {
        const std::string head = name + "=";
        std::erase_if(variables, [&](const std::string &variable) { return variable.starts_with(head); });
        variables.push_back(head + value);
    }
    return variables;
}

std::vector<char *> pointersTo(std::vector<std::string> &texts)
{
    std::vector<char *> pointers;
    for (std::string &text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

// The running client and the ends of its streams that the test holds.
struct Client {
    pid_t pid = -1;
    Descriptor in;  // where its input comes from: the pipe's end, or the terminal
    Descriptor out; // its standard output; invalid when that is the terminal
    Descriptor err;
    Pty pty;
};

[[noreturn]] void becomeClient(const Client &client, int in, int out, int err, const std::string &folder,
                               const Programs &programs, const Run &run, std::vector<std::string> variables)
{
    if (client.pty.slave.isOpen()) {
        ::setsid();
        ::ioctl(client.pty.slave.get(), TIOCSCTTY, 0);
    }
    if (run.setup.fileSizeLimit >= 0) {
        // Without the signal, writing beyond the limit is an error like that of a full disk.
        ::signal(SIGXFSZ, SIG_IGN);
        const auto most = static_cast<rlim_t>(run.setup.fileSizeLimit);
        const rlimit limit{most, most};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ::dup2(in, STDIN_FILENO);
    ::dup2(out, STDOUT_FILENO);
    ::dup2(err, STDERR_FILENO);
    std::vector<std::string> arguments = run.arguments;
    ::signal(SIGPIPE, SIG_DFL);
    auto argv = pointersTo(arguments);
    auto envp = pointersTo(variables);
    if (::chdir(folder.c_str()) == 0) ::execve(programs.client.c_str(), argv.data(), envp.data());
    ::_exit(127);
}

Client start(const Run &run, bool onTerminal, const Programs &programs, const std::string &folder)
{
    Client client;
    Pipe in = makePipe();
    Pipe out = makePipe();
    Pipe err = makePipe();
    if (onTerminal) client.pty = makePty();
    const int clientIn = onTerminal ? client.pty.slave.get() : in.read.get();
    const int clientOut = onTerminal ? client.pty.slave.get() : out.write.get();
    const int clientErr = run.setup.merged ? clientOut : err.write.get();
    auto variables = environment(run.setup, programs, folder);
    client.pid = checked(::fork(), "fork");
    if (client.pid == 0) {
        becomeClient(client, clientIn, clientOut, clientErr, folder, programs, run, std::move(variables));
    }
    if (!onTerminal) {
        client.in = std::move(in.write);
        client.out = std::move(out.read);
    }
    client.err = std::move(err.read);
    return client;
}

// Reads what is there; false at the end of the stream.
bool readSome(int fd, std::string &text)
{
    char buffer[65536];
    const ssize_t got = ::read(fd, buffer, sizeof buffer);
    if (got <= 0) return got < 0 && (errno == EINTR || errno == EAGAIN);
    text.append(buffer, static_cast<std::size_t>(got));
    return true;
}

void send(int fd, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t sent = ::write(fd, text.data(), text.size());
        if (sent <= 0) return;
        text.remove_prefix(static_cast<std::size_t>(sent));
    }
}

// Reacts to the output as the test says; every reaction waits for its text behind the one before.
class Conversation {
public:
    Conversation(const std::vector<Reaction> &reactions, const Client &client, const std::string &folder)
        : reactions_(reactions), client_(client), pty_(client.pty), folder_(folder)
    {}

    void hear(const std::string &out)
    {
        while (next_ < reactions_.size()) {
            const Reaction &reaction = reactions_[next_];
            if (!waiting_) {
                const std::size_t found = out.find(reaction.when, heard_);
                if (found == std::string::npos) return;
                heard_ = found + reaction.when.size();
                waiting_ = true;
                since_ = std::chrono::steady_clock::now();
            }
            if (reaction.fileName.empty() && !isReady()) return;
            react(reaction);
            waiting_ = false;
            ++next_;
        }
    }
    bool isOver() const { return next_ == reactions_.size(); }

private:
    // A prompt is written before the terminal is told to hand out single keys; nobody types that fast. Where the
    // client does not set the terminal, the key comes all the same.
    bool isReady() const
    {
        termios settings{};
        ::tcgetattr(pty_.slave.get(), &settings);
        const bool handsOutKeys = (settings.c_lflag & ICANON) == 0;
        return handsOutKeys || std::chrono::steady_clock::now() - since_ > std::chrono::milliseconds(500);
    }

    void react(const Reaction &reaction) const
    {
        if (reaction.signal != 0) {
            ::kill(client_.pid, reaction.signal);
        } else if (reaction.fileName.empty()) {
            send(pty_.master.get(), reaction.keys);
        } else {
            writeFile(folder_ + "/" + reaction.fileName, "");
        }
    }

    const std::vector<Reaction> &reactions_;
    const Client &client_;
    const Pty &pty_;
    const std::string &folder_;
    std::size_t next_ = 0;
    std::size_t heard_ = 0;
    bool waiting_ = false;
    std::chrono::steady_clock::time_point since_;
};

std::string exitOf(int status)
{
    return WIFSIGNALED(status) ? "signal " + std::to_string(WTERMSIG(status)) : std::to_string(WEXITSTATUS(status));
}

bool readable(int fd)
{
    pollfd ready{fd, POLLIN, 0};
    return ::poll(&ready, 1, 0) > 0 && (ready.revents & POLLIN) != 0;
}

// Follows the client to its end.
void follow(Client &client, const Run &run, bool onTerminal, const std::string &folder, Outcome &outcome)
{
    const auto deadline = std::chrono::steady_clock::now() + longestRun;
    const int outFile = onTerminal ? client.pty.master.get() : client.out.get();
    Conversation conversation(run.setup.reactions, client, folder);
    bool outOpen = true;
    bool errOpen = true;
    int status = 0;
    bool ended = false;
    while (!ended || outOpen || errOpen) {
        pollfd streams[2] = {{outOpen ? outFile : -1, POLLIN, 0}, {errOpen ? client.err.get() : -1, POLLIN, 0}};
        ::poll(streams, 2, outOpen || errOpen ? 20 : 1);
        if (streams[0].revents != 0) outOpen = readSome(outFile, outcome.out);
        if (streams[1].revents != 0) errOpen = readSome(client.err.get(), outcome.err);
        conversation.hear(outcome.out);
        if (!ended) ended = ::waitpid(client.pid, &status, WNOHANG) == client.pid;
        // The test holds the terminal open itself, so its end is the client's end with nothing left to read.
        if (ended && onTerminal && outOpen) outOpen = readable(outFile);
        if (!ended && std::chrono::steady_clock::now() > deadline) {
            ::kill(client.pid, SIGKILL);
            outcome.trouble = "the client did not end in time";
        }
    }
    outcome.exit = exitOf(status);
    // The terminal itself shows an interrupt that is typed while it is not in the client's hands.
    if (outcome.exit == "signal 2" && outcome.out.ends_with("^C")) outcome.out.resize(outcome.out.size() - 2);
    if (outcome.trouble.empty() && !conversation.isOver()) outcome.trouble = "the client never wrote what was waited for";
}

bool sameSettings(const termios &one, const termios &other)
{
    return one.c_iflag == other.c_iflag && one.c_oflag == other.c_oflag && one.c_lflag == other.c_lflag &&
           one.c_cflag == other.c_cflag && std::equal(std::begin(one.c_cc), std::end(one.c_cc), std::begin(other.c_cc));
}

} // namespace

Outcome runClient(const Run &run, bool onTerminal, const Programs &programs, const std::string &folder)
{
    ::signal(SIGPIPE, SIG_IGN); // a client may end without reading its input
    writeFile(folder + "/script", run.setup.script);
    ::unlink((folder + "/record").c_str());
    for (const Node &node : run.setup.nodes) make(node, folder + "/" + node.name);
    Client client = start(run, onTerminal, programs, folder);
    if (!onTerminal) {
        send(client.in.get(), run.setup.input);
        client.in.close();
    }
    Outcome outcome;
    follow(client, run, onTerminal, folder, outcome);
    if (onTerminal && outcome.trouble.empty()) {
        termios after;
        checked(::tcgetattr(client.pty.slave.get(), &after), "tcgetattr");
        if (!sameSettings(client.pty.settings, after)) outcome.trouble = "the terminal was left changed";
    }
    outcome.record = readFile(folder + "/record");
    return outcome;
}

} // namespace transcript
