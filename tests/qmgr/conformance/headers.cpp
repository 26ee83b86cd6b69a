#include "headers.h"

#include <cstdlib>
#include <fstream>
#include <regex>
#include <stdexcept>

namespace mqrig::conformance {
namespace {

void readHeader(const std::filesystem::path &file, Headers &headers)
{
    static const std::regex define(R"(#define\s+(MQ\w+)\s+\(?(-?[0-9][0-9A-Fa-fx]*)\)?.*)");
    static const std::regex structure(R"(struct tag(MQ\w+) \{)");
    static const std::regex field(R"(\s+\w+\s+(\w+)(\[[0-9]+\])?;.*)");
    static const std::regex call(R"(void MQENTRY (MQ\w+)\(.*)");
    std::ifstream lines(file);
    if (!lines) throw std::runtime_error(file.string() + " cannot be read");
    std::smatch match;
    bool inside = false;
    for (std::string line; std::getline(lines, line);) {
        if (std::regex_match(line, match, structure)) {
            headers.structures.push_back({match[1], {}});
            inside = true;
        } else if (inside && line.starts_with("};")) {
            inside = false;
        } else if (inside && std::regex_match(line, match, field)) {
            headers.structures.back().fields.push_back(match[1]);
        } else if (std::regex_match(line, match, define)) {
            headers.constants.push_back({match[1], std::strtoll(match[2].str().c_str(), nullptr, 0)});
        } else if (std::regex_match(line, match, call)) {
            headers.calls.push_back(match[1]);
        }
    }
}

} // namespace

std::vector<Constant> Headers::constantsOf(const std::string &prefix) const
{
    std::vector<Constant> found;
    for (const Constant &constant : constants)
        if (constant.name.starts_with(prefix)) found.push_back(constant);
    return found;
}

std::map<int, std::string> Headers::reasonNames() const
{
    std::map<int, std::string> names;
    for (const Constant &constant : constants)
        if (constant.name.starts_with("MQRC_") || constant.name.starts_with("MQRCCF_"))
            names.emplace(static_cast<int>(constant.value), constant.name);
    return names;
}

Headers readHeaders(const std::filesystem::path &folder)
{
    Headers headers;
    for (const char *name : {"cmqc.h", "cmqcfc.h", "cmqxc.h"})
        readHeader(folder / name, headers);
    return headers;
}

} // namespace mqrig::conformance
