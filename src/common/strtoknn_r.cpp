#include "common.h"

#include <cstring>

char *strtoknn_r(char *text, const char *delimiters, char **position)
{
    char *const token = text != nullptr ? text : *position;
    if (token == nullptr || *token == '\0') return nullptr;

    char *end = token + std::strcspn(token, delimiters);
    if (*end != '\0') *end++ = '\0';
    *position = end;
    return token;
}
