#include "common.h"

#include <cstdarg>

Status printf_te(RunParams *params, const char *format, ...)
{
    LockedSection section(params);
    if (section.status() != StatusOk) return section.status();

    flush_output();
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stderr, format, arguments);
    va_end(arguments);
    return section.release();
}
