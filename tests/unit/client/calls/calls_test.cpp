#include "calls_test.h"

#include "captured.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <string_view>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// The length of the pattern at the head of `text`, 0 when it does not stand there: '9' is a digit, '*' any number of
/// letters, digits and signs (at least one), anything else itself.
std::size_t matches(std::string_view text, std::string_view pattern)
{
    std::size_t at = 0;
    for (const char wanted : pattern) {
        if (wanted == '*') {
            const std::size_t start = at;
            while (at < text.size() &&
                   (std::isalnum(static_cast<unsigned char>(text[at])) || text[at] == '_' || text[at] == '-'))
                ++at;
            if (at == start) return 0;
            continue;
        }
        if (at == text.size()) return 0;
        const bool same = wanted == '9' ? std::isdigit(static_cast<unsigned char>(text[at])) != 0 : text[at] == wanted;
        if (!same) return 0;
        ++at;
    }
    return at;
}

/// The line numbers of "source,line,errno: " at the head of lines as "#".
std::string without_lines(std::string_view text)
{
    std::string kept;
    while (!text.empty()) {
        if (const std::size_t head = matches(text, "*,*,*: "); head > 0) {
            const std::size_t line = text.find(',') + 1;
            kept += text.substr(0, line);
            kept += '#';
            text.remove_prefix(text.find(',', line));
        }
        const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
        kept += text.substr(0, end);
        text.remove_prefix(end);
    }
    return kept;
}

} // namespace

std::string without_time(const std::string &text)
{
    constexpr std::string_view Stamp = "[99/99/99 99:99:99.999999999";
    std::string kept;
    for (std::string_view rest = text; !rest.empty();) {
        if (const std::size_t stamp = matches(rest, Stamp); stamp > 0) {
            kept += "[now";
            rest.remove_prefix(stamp);
        }
        kept += rest.front();
        rest.remove_prefix(1);
    }
    return kept;
}

OutputFile::OutputFile()
{
    std::fflush(stdout);
    file_ = memfd_create("stdout", 0);
    saved_ = dup(STDOUT_FILENO);
    dup2(file_, STDOUT_FILENO);
}

OutputFile::~OutputFile()
{
    std::fflush(stdout);
    dup2(saved_, STDOUT_FILENO);
    close(saved_);
    close(file_);
}

std::string OutputFile::handed_on() const
{
    struct stat status = {};
    fstat(file_, &status);
    std::string text(static_cast<std::size_t>(status.st_size), '\0');
    if (pread(file_, text.data(), text.size(), 0) != status.st_size) return "";
    return without_time(text);
}

UnavailableLock::UnavailableLock(RunParams &params)
{
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_ERRORCHECK);
    pthread_mutex_init(&lock_, &attributes);
    pthread_mutexattr_destroy(&attributes);
    pthread_mutex_lock(&lock_);
    params.ThreadCount = 1;
    params.OutputLock = &lock_;
}

UnavailableLock::~UnavailableLock()
{
    pthread_mutex_unlock(&lock_);
    pthread_mutex_destroy(&lock_);
}

CallsTest::CallsTest()
{
    fakeMqi = {};
    intercepted = {};
    params = DEFAULT_RUN_PARAMS;
    params.QMgrName = "QM1";
    params.QName = "Q1";
    params.InputQName = params.QName;
    params.OutputQName = params.QName;
}

CallsTest::~CallsTest()
{
    let_malloc_succeed();
}

Written CallsTest::written(const std::function<Status()> &work) const
{
    Written written;
    const Captured both = captured([&] { written.status = work(); });
    let_malloc_succeed();
    written.out = without_time(both.out);
    written.err = without_lines(both.err);
    return written;
}

Written CallsTest::written_by(const std::function<void()> &work) const
{
    return written([&] {
        work();
        return StatusOk;
    });
}
