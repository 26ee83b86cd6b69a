/// How a row names the field that it sets: a field of the record, or of an MQI structure inside it.
#pragma once

#include "option_rows.h"

// The name stands behind a dot, so it takes no parentheses.
// NOLINTBEGIN(bugprone-macro-parentheses)
#define INTEGER(name) [](RunParams &params) -> MQLONG & { return params.name; }
#define ADDRESS(name) [](RunParams &params) -> MQPTR & { return params.name; }
#define FIELD(name)                                                                                                    \
    [](RunParams &params) -> std::span<char> { return {reinterpret_cast<char *>(params.name), sizeof params.name}; }
// NOLINTEND(bugprone-macro-parentheses)
