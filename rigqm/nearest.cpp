#include "nearest.h"

#include <algorithm>
#include <vector>

namespace mqrig::rigqm {
namespace {

constexpr std::size_t longestWord = 64; // what is longer is no mistyped word

// Letters to be inserted, removed or replaced to make one word of the other.
std::size_t editDistance(std::string_view from, std::string_view to)
{
    std::vector<std::size_t> row(to.size() + 1);
    for (std::size_t j = 0; j <= to.size(); ++j)
        row[j] = j;
    for (std::size_t i = 1; i <= from.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= to.size(); ++j) {
            const std::size_t replaced = diagonal + (from[i - 1] == to[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row[to.size()];
}

} // namespace

void Nearest::consider(std::string_view candidate)
{
    if (typed_.empty() || typed_.size() > longestWord) return;
    const std::size_t distance = editDistance(typed_, candidate);
    if (distance * 3 >= candidate.size() + 1) return;
    if (!best_.empty() && distance >= distance_) return;
    best_ = candidate;
    distance_ = distance;
}

} // namespace mqrig::rigqm
