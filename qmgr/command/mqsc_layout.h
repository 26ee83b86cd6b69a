// The two columns in which DISPLAY lays out attributes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace mqrig::qmgr::command {

// Lines of at most 80 characters: three blanks, the first attribute up to column 43, the second behind it. An
// attribute that is too wide for its column has a line of its own.
class Layout {
public:
    explicit Layout(std::vector<std::string> &lines) : lines_(lines) {}

    void add(std::string_view attribute);

private:
    std::vector<std::string> &lines_;
    bool secondIsFree_ = false; // the last line has room for another attribute
};

} // namespace mqrig::qmgr::command
