// What the tests of default initialisers say of one field: every byte of it counts, to the last.
#ifndef MQRIG_TESTS_UNIT_MQI_DEFAULT_FIELDS_H
#define MQRIG_TESTS_UNIT_MQI_DEFAULT_FIELDS_H

#include "cmqc.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

// Every element is zero.
template <typename T, std::size_t N>
bool isZero(const T (&field)[N])
{
    return std::all_of(field, field + N, [](T element) { return element == 0; });
}

// Every character is a blank.
template <std::size_t N>
bool isBlank(const MQCHAR (&field)[N])
{
    return std::all_of(field, field + N, [](MQCHAR c) { return c == ' '; });
}

// The text, and zeros behind it to the end of the field.
template <std::size_t N>
bool holds(const MQCHAR (&field)[N], std::string_view text)
{
    return text.size() <= N && std::string_view(field, text.size()) == text &&
           std::all_of(field + text.size(), field + N, [](MQCHAR c) { return c == '\0'; });
}

// No string: what MQCHARV_DEFAULT sets.
inline bool isEmptyString(const MQCHARV &string)
{
    return string.VSPtr == nullptr && string.VSOffset == 0 && string.VSBufSize == 0 && string.VSLength == 0 &&
           string.VSCCSID == -3;
}

#endif
