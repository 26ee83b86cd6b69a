#include "mqicalls.h"

#include "common.h"

#include <cstdarg>
#include <cstdio>

void api_trace_dsp(RunParams *params, const char *format, ...)
{
    if (params->ApiTrace == 0) return;
    const LockedSection locked(params);
    if (locked.status() != StatusOk) return;

    dsp_timestamp(params);
    std::va_list arguments;
    va_start(arguments, format);
    std::vprintf(format, arguments);
    va_end(arguments);
}
