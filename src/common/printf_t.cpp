#include "common.h"

#include <cstdarg>

Status printf_t(RunParams *params, const char *format, ...)
{
    LockedSection section(params);
    if (section.status() != StatusOk) return section.status();

    std::FILE *stream = stdout;
    if (params->OutputForm == OutputFormRaw) {
        stream = stderr;
        flush_output();
    }
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stream, format, arguments);
    va_end(arguments);
    return section.release();
}
