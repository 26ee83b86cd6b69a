/// The line of `printf_d` and `printf_td`: "source,line,error: " and the text, to standard error.
#pragma once

#include <cstdarg>

void write_debug_line(const char *source, int line, int error, const char *format, va_list arguments);
