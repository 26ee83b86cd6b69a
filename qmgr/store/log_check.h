// Verifies a log: reads every page and every row of it and changes nothing.
//
// A log is verified as a stranger's file: nothing in it is believed, neither sizes nor the text of its tables. It may
// be in use meanwhile; what is verified then is the state at one commit.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "qmgr/store/attachment.h"

namespace mqrig::qmgr::store {

// What is wrong, a line of text for each. Of very many the first are kept.
class Findings {
public:
    void add(std::string line);
    // The lines, and how many more there are as the last of them.
    [[nodiscard]] std::vector<std::string> lines() const;
    [[nodiscard]] std::uint64_t count() const { return count_; }

private:
    static constexpr std::size_t kept = 100;
    std::vector<std::string> lines_;
    std::uint64_t count_ = 0;
};

// Whether the floor above can read the definition. The store knows definitions as bytes only.
using CanDecode = std::function<bool(const Definition &)>;

// What a log has in it; as far as it could be read.
struct LogContents {
    // MQRC_NOT_AUTHORIZED, MQRC_ENVIRONMENT_ERROR (a newer format), MQRC_RESOURCE_PROBLEM: nothing was verified. What
    // is damaged or no log at all is a finding, not a failure.
    Outcome outcome;
    int format = 0;
    bool aheadMode = false; // uses a write-ahead file beside it, as a log in use does
    std::string name;
    State state = State::Ended;
    std::uint64_t generation = 0;
    std::uint64_t definitions = 0; // subscriptions among them
    std::uint64_t subscriptions = 0;
    std::uint64_t messages = 0;
    std::uint64_t bytes = 0; // of message bodies
};
[[nodiscard]] LogContents checkLog(const std::filesystem::path &file, const CanDecode &canDecode, Findings &findings);

// Whether the write-ahead file beside a log has lost commits: a finding if frames that a commit wrote stand behind one
// that is not whole. `moving`: somebody may be writing it now. (log_tail.cpp)
void checkLogTail(const std::filesystem::path &log, bool moving, Findings &findings);

} // namespace mqrig::qmgr::store
