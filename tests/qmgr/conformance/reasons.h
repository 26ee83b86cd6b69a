// The list of the reasons that the calls answer, each with a test that provokes it: reasons.txt, one line for each.
//
// The recorder (recorder.cpp), which is linked with the tests of the MQI, holds the list to what the calls really
// answer: an answer that is not in it fails the test that got it, and so does a line whose test does not get its
// answer. scripts/conformance.sh writes the list anew.
#pragma once

#include <compare>
#include <filesystem>
#include <string>
#include <vector>

namespace mqrig::conformance {

struct Answer {
    std::string call;
    int compCode = 0;
    int reason = 0;

    auto operator<=>(const Answer &) const = default;
};

struct Provoked {
    Answer answer;
    std::string program; // the executable of the test
    std::string test;    // Suite.Test

    auto operator<=>(const Provoked &) const = default;
};

// Lines of five words: call, CompCode, Reason, program and test. Throws where a line is not like that.
std::vector<Provoked> readReasons(const std::filesystem::path &file);
std::string toLine(const Provoked &provoked);

} // namespace mqrig::conformance
