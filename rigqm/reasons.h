// The reasons that `rigqm explain` knows: every MQRC_ and MQRCCF_ name with its number, and for those that a program
// can meet a sentence on what it means and what to do.
//
// How to add a reason: put its row where its number belongs; the compiler checks the order.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "cmqc.h"

namespace mqrig::rigqm {

struct Reason {
    MQLONG value;
    std::string_view name;
    std::string_view text; // empty: the general sentence of its range
};

template <std::size_t N>
constexpr bool sortedByValue(const Reason (&rows)[N])
{
    for (std::size_t i = 1; i < N; ++i)
        if (rows[i].value < rows[i - 1].value) return false;
    return true;
}

std::span<const Reason> completionCodes(); // MQCC_
std::span<const Reason> basicReasons();    // MQRC_ up to 2199
std::span<const Reason> laterReasons();    // MQRC_ from 2200
std::span<const Reason> commandReasons();  // MQRCCF_

// All names of a number; reasons only, as the numbers of completion codes say nothing alone.
std::vector<Reason> reasonsOf(MQLONG value);

// By name, any case, with or without MQRC_.
std::optional<Reason> reasonCalled(std::string_view name);

// The name most like the one typed; empty if none is.
std::string_view nearestName(std::string_view typed);

// The row's sentence, or the general one of its range.
std::string_view sentenceOf(const Reason &reason);

} // namespace mqrig::rigqm
