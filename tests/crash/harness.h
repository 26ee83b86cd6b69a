// The controller of a crash run: starts workers on one queue manager, kills them one after the other at named steps and
// at random moments, sees that the others go on at once, and compares what the queue manager holds with the books.
#pragma once

#include <array>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "inspector.h"
#include "model.h"
#include "processes.h"
#include "workers.h"

namespace mqrig::crash {

struct Plan {
    int kills = 50;
    unsigned seed = 1;
    std::optional<Step> step; // if given: die there rather than at the others
    std::optional<Role> role; // if given: many of these
};

struct Figures {
    int kills = 0;
    int atRandom = 0;
    int massKills = 0; // all programs at once
    int programs = 0;  // that died
    int restarts = 0;
    int growths = 0; // of the live state, as far as an inspection met them
    std::array<int, static_cast<std::size_t>(Step::steps)> atStep{};
};

class Harness {
public:
    explicit Harness(const Plan &plan);
    ~Harness();
    Harness(const Harness &) = delete;
    Harness &operator=(const Harness &) = delete;

    // True if all was as it must be.
    bool run();
    [[nodiscard]] const std::vector<std::string> &faults() const { return faults_; }
    [[nodiscard]] const Figures &figures() const { return figures_; }
    [[nodiscard]] const Model &model() const { return model_; }

private:
    struct Member {
        Assignment assignment;
        std::size_t post = 0;
        pid_t pid = -1;
        Journal journal;
    };
    using Members = std::vector<std::unique_ptr<Member>>;

    bool sound() const { return faults_.empty(); }
    void fault(const std::string &text);
    std::uint32_t below(std::uint32_t limit) { return static_cast<std::uint32_t>(random_() % limit); }

    // ---- Workers (harness.cpp) ----
    Member &start(Assignment assignment);
    void fillCrew();
    void bury(Member &member, bool mayHaveEnded = false);
    bool awaitDeath(Member &member, std::chrono::milliseconds limit);
    void awaitEnds();
    void killCrew();
    void lookAfterCrew();
    void pause();
    void resume();
    void seeSurvivorsGoOn();
    void inspectAll();
    Member *anyOf(Role role);

    // ---- What happens to them (episodes.cpp) ----
    void episode();
    Step rarestStep();
    void killAtStep(Step step);
    void killAtRandom();
    void killCleaner();
    void killSuccessorOfLogHolder();
    void leavePreparedToSleeper();
    void killBesideSleeper();
    void killAll();
    void killCreator();
    void restart(int how);
    void restartKilledAt(Step step);
    void killGrowers(Step step);
    void started(int kindOfStart, std::optional<Step> step);
    void countKill(std::optional<Step> step);

    Plan plan_;
    std::mt19937 random_;
    std::filesystem::path folder_;
    Board *board_ = nullptr;
    Members crew_;
    std::uint32_t workers_ = 0;
    std::uint32_t pauses_ = 0;
    int episodes_ = 0;
    std::array<int, static_cast<std::size_t>(Step::steps)> attempts_{};
    bool ending_ = false; // workers may find the queue manager ended
    Model model_;
    Figures figures_;
    std::vector<std::string> faults_;
    std::string doing_;
    std::uint64_t mapSize_ = 0; // at the last inspection
};

} // namespace mqrig::crash
