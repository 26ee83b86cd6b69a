/// How the rows of the constant tables are written: each name once, with the value that the MQI gives it.
#pragma once

#include "tables.h"

#include <cstddef>

// Both macros expand to a braced row; `#name` is the name as the user types it.
#define NAMED(name)                                                                                                    \
    {                                                                                                                  \
#name, name                                                                                                    \
    }
#define SELECTOR(name, length)                                                                                         \
    {                                                                                                                  \
#name, name, length                                                                                            \
    }

/// The rows of a table, its last row with the null name not counted.
template <class Row, std::size_t Size>
consteval std::size_t rowsOf(const Row (&table)[Size])
{
    for (std::size_t i = 0; i + 1 < Size; ++i) {
        if (table[i].name == nullptr) return i;
    }
    return table[Size - 1].name == nullptr ? Size - 1 : Size;
}
