// crash_run [--kills N] [--seed N] [--patience SECONDS] [--step NAME] [--role NAME] [--expect-fault]
//
// Kills programs of a queue manager and compares what is left with what they were told. 0: all was as it must be.
// With --expect-fault the queue manager is one with a deliberate fault; 0: it was found.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "harness.h"

using namespace mqrig::crash;

namespace {

int numberOf(const char *text)
{
    return static_cast<int>(std::strtol(text, nullptr, 10));
}

template <class Names>
std::optional<std::size_t> placeOf(const std::string &name, const Names &names)
{
    for (std::size_t place = 0; place < names.size(); ++place)
        if (name == names.at(place)) return place;
    return std::nullopt;
}

void printFigures(const Harness &harness)
{
    const Figures &figures = harness.figures();
    std::printf("%d kills of %d programs: %d at random moments, %d of all at once, the others at these steps:\n",
                figures.kills, figures.programs, figures.atRandom, figures.massKills);
    for (std::size_t step = 0; step < figures.atStep.size(); ++step)
        std::printf("%6d %s\n", figures.atStep.at(step), stepNames.at(step));
    std::printf(
        "%d restarts, the live state grew %d times; %zu messages put in %zu units of work, %zu of them in doubt\n",
        figures.restarts, figures.growths, harness.model().messages(), harness.model().units(),
        harness.model().resolved());
}

} // namespace

int main(int argc, char **argv)
{
    Plan plan;
    bool expectFault = false;
    for (int n = 1; n < argc; ++n) {
        const std::string option = argv[n];
        if (option == "--expect-fault") {
            expectFault = true;
            continue;
        }
        const char *text = n + 1 < argc ? argv[++n] : "";
        const int value = numberOf(text);
        if (option == "--kills") {
            plan.kills = value;
        } else if (option == "--seed") {
            plan.seed = static_cast<unsigned>(value);
        } else if (option == "--patience") {
            patience = std::chrono::seconds(value);
        } else if (option == "--step" && placeOf(text, stepNames)) {
            plan.step = static_cast<Step>(*placeOf(text, stepNames));
        } else if (option == "--role" && placeOf(text, roleNames)) {
            plan.role = static_cast<Role>(*placeOf(text, roleNames));
        } else {
            std::fprintf(stderr, "crash_run: no option %s\n", option.c_str());
            return 2;
        }
    }
    mqrig::qmgr::store::seams.firstMap = std::uint64_t{4} << 20; // so that the live state grows in every life
    Harness harness(plan);
    const bool sound = harness.run();
    printFigures(harness);
    int shown = 0;
    for (const std::string &fault : harness.faults()) {
        if (++shown > 10) break;
        std::printf("%s: %s\n", expectFault ? "found" : "FAULT", fault.c_str());
    }
    if (!expectFault) return sound ? 0 : 1;
    if (sound) std::printf("the fault was not found\n");
    return sound ? 1 : 0;
}
