/// The program's entry: the process-wide settings, then the run.

#include "run.h"

#include <clocale>
#include <cstdio>
#include <unistd.h>

namespace {

/// Bodies are shown in the user's character set; numbers print and parse the same everywhere.
void setLocale()
{
    std::setlocale(LC_ALL, "");
    std::setlocale(LC_NUMERIC, "C");
}

/// Report lines collect in the buffer; whoever waits or writes to standard error hands them on.
void setOutputBuffer()
{
    static char buffer[65536];
    std::setvbuf(stdout, buffer, isatty(STDOUT_FILENO) != 0 ? _IOLBF : _IOFBF, sizeof buffer);
}

} // namespace

int main(int argc, char *argv[])
{
    setLocale();
    setOutputBuffer();
    int exitCode = run(argc, argv);

    // Report lines that a full disk has swallowed are no success.
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        std::perror("standard output");
        if (exitCode == 0) exitCode = 1;
    }
    return exitCode;
}
