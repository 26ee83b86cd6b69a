#include "common.h"

#include "debug_line.h"

#include <optional>

void report_failure(RunParams *params, Caller caller, const char *call, int error, const char *format, ...)
{
    // One lock over both lines keeps the pair together.
    std::optional<LockedSection> section;
    if (params != nullptr && section.emplace(params).status() != StatusOk) return;

    perrinfo(call, error);
    va_list arguments;
    va_start(arguments, format);
    write_debug_line(caller.source, caller.line, error, format, arguments);
    va_end(arguments);
}
