#include "common.h"

#include <cstring>

MQLONG trim(char *text)
{
    if (text == nullptr) return -1;
    const std::size_t length = std::strlen(text);
    std::size_t end = length;
    while (end > 0 && text[end - 1] == ' ')
        --end;
    std::size_t begin = 0;
    while (begin < end && text[begin] == ' ')
        ++begin;

    std::memmove(text, text + begin, end - begin);
    text[end - begin] = '\0';
    return static_cast<MQLONG>(length - (end - begin));
}
