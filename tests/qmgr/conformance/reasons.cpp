#include "reasons.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace mqrig::conformance {

std::vector<Provoked> readReasons(const std::filesystem::path &file)
{
    std::ifstream lines(file);
    if (!lines) throw std::runtime_error(file.string() + " cannot be read");
    std::vector<Provoked> list;
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        Provoked row;
        words >> row.answer.call >> row.answer.compCode >> row.answer.reason >> row.program >> row.test;
        if (!words || !words.eof()) throw std::runtime_error(file.string() + ": " + line);
        list.push_back(row);
    }
    return list;
}

std::string toLine(const Provoked &provoked)
{
    return provoked.answer.call + ' ' + std::to_string(provoked.answer.compCode) + ' ' +
           std::to_string(provoked.answer.reason) + ' ' + provoked.program + ' ' + provoked.test;
}

} // namespace mqrig::conformance
