#include "common.h"

#include <cerrno>

void perrinfo(const char *text, int error)
{
    if (error == 0) return;
    flush_output();
    errno = error;
    std::perror(text);
}
