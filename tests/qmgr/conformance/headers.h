// The MQI's headers, read as text: what there is to be conformed to.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace mqrig::conformance {

struct Constant {
    std::string name;
    long long value = 0;
};

struct Structure {
    std::string name;
    std::vector<std::string> fields;
};

struct Headers {
    std::vector<std::string> calls; // as they are declared
    std::vector<Structure> structures;
    std::vector<Constant> constants; // numbers only

    // The constants that begin like this, in the order of the headers.
    std::vector<Constant> constantsOf(const std::string &prefix) const;
    // Names of reasons by number; of several names, the first.
    std::map<int, std::string> reasonNames() const;
};

// From the folder of cmqc.h, cmqcfc.h and cmqxc.h. Throws where one cannot be read.
Headers readHeaders(const std::filesystem::path &folder);

} // namespace mqrig::conformance
