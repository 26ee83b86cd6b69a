#include "common.h"

#include <cstdarg>

void info(std::FILE *stream, const char *format, ...)
{
    char text[256];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    if (stream == stderr) flush_output();
    std::fprintf(stream, "%s\n", text);
}
