#include "common.h"

#include "debug_line.h"

void write_debug_line(const char *source, int line, int error, const char *format, va_list arguments)
{
    flush_output();
    std::fprintf(stderr, "%s,%d,%d: ", source, line, error);
    std::vfprintf(stderr, format, arguments);
}

void printf_d(const char *source, int line, int error, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    write_debug_line(source, line, error, format, arguments);
    va_end(arguments);
}
