// conformance_page: prints docs/conformance.md.
// conformance_page SEEN: prints reasons.txt anew from what the recorder wrote into the file SEEN.
#include <algorithm>
#include <exception>
#include <iostream>
#include <map>
#include <tuple>

#include "page.h"

using namespace mqrig::conformance;

namespace {

// Tests that do nothing but make one call after the other come before those that work with threads and processes: they
// are answered the same each time.
std::tuple<bool, std::string, std::string> rank(const Provoked &row)
{
    return {row.program != "qmgr_api_tests", row.program, row.test};
}

// One test for each answer: that of the list as it is, where it still gets it.
std::vector<Provoked> choose(const std::vector<Provoked> &seen, const std::vector<Provoked> &list)
{
    std::map<Answer, Provoked> chosen;
    for (const Provoked &row : seen) {
        const auto [place, isNew] = chosen.try_emplace(row.answer, row);
        if (!isNew && rank(row) < rank(place->second)) place->second = row;
    }
    for (const Provoked &row : list)
        if (std::ranges::find(seen, row) != seen.end()) chosen[row.answer] = row;
    std::vector<Provoked> rows;
    for (const auto &[answer, row] : chosen)
        rows.push_back(row);
    return rows;
}

} // namespace

int main(int argc, char **argv)
try {
    const std::vector<Provoked> list = readReasons(REASONS);
    if (argc == 1) {
        printPage(std::cout, readHeaders(MQI_HEADERS), list);
    } else {
        for (const Provoked &row : choose(readReasons(argv[1]), list))
            std::cout << toLine(row) << '\n';
    }
    return 0;
} catch (const std::exception &error) {
    std::cerr << "conformance_page: " << error.what() << '\n';
    return 1;
}
