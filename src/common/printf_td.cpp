#include "common.h"

#include "debug_line.h"

Status printf_td(RunParams *params, const char *source, int line, int error, const char *format, ...)
{
    LockedSection section(params);
    if (section.status() != StatusOk) return section.status();

    va_list arguments;
    va_start(arguments, format);
    write_debug_line(source, line, error, format, arguments);
    va_end(arguments);
    return section.release();
}
