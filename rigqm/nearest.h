// "Did you mean": the known word that is most like a mistyped one.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace mqrig::rigqm {

class Nearest {
public:
    explicit Nearest(std::string_view typed) : typed_(typed) {}

    void consider(std::string_view candidate);

    // The best candidate; empty where none is near enough (a third of its letters differ, or more).
    std::string_view name() const { return best_; }

private:
    std::string typed_;
    std::string_view best_;
    std::size_t distance_ = 0;
};

} // namespace mqrig::rigqm
