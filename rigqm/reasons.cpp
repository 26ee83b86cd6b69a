#include "reasons.h"

#include <algorithm>
#include <array>
#include <string>

#include "nearest.h"

namespace mqrig::rigqm {
namespace {

constexpr Reason codes[] = {
    {MQCC_UNKNOWN, "MQCC_UNKNOWN", "The call's outcome is not known."},
    {MQCC_OK, "MQCC_OK", "The call did all that was asked."},
    {MQCC_WARNING, "MQCC_WARNING", "The call was done in part, or with a result that the reason explains."},
    {MQCC_FAILED, "MQCC_FAILED", "The call failed and changed nothing; the reason says why."},
};
static_assert(sortedByValue(codes));

struct Range {
    MQLONG low;
    MQLONG high;
    std::string_view text;
};

// Of ranges that overlap the first counts.
constexpr Range ranges[] = {
    {900, 999, "A number in the range for programs: the one that gave it knows its meaning."},
    {2106, 2163, "A reason of queue managers and adapters on other platforms, such as z/OS and CICS."},
    {2210, 2212, "A reason of MQ's SOAP transport, given by its listener or sender."},
    {2300, 2333, "A call on a data bag, or the header of a workload service, is not valid."},
    {2342, 2373, "A reason of queue managers on z/OS: coupling facility, Db2 or shared queues."},
    {2558, 2572, "A reason of multicast publish and subscribe."},
    {2579, 2582, "Event: a subscription was made, changed or removed."},
    {6100, 6199,
     "A reason of the object-oriented classes for MQ: the program's own library gives it, no queue manager."},
    {2000, 2999, "A reason of the MQI that programs seldom meet; MQ's reference describes it."},
    {3000, 4999,
     "A command message (PCF) or an administration command failed: a parameter is wrong, or the object's "
     "state does not allow it."},
};
constexpr std::string_view anyReason = "MQ's reference describes this reason.";

std::string upperCase(std::string_view text)
{
    std::string upper(text);
    for (char &c : upper)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return upper;
}

std::array<std::span<const Reason>, 4> everything()
{
    return {basicReasons(), laterReasons(), commandReasons(), completionCodes()};
}

} // namespace

std::span<const Reason> completionCodes()
{
    return codes;
}

std::vector<Reason> reasonsOf(MQLONG value)
{
    std::vector<Reason> found;
    for (const auto &rows : {basicReasons(), laterReasons(), commandReasons()})
        for (const Reason &row : rows)
            if (row.value == value) found.push_back(row);
    return found;
}

std::optional<Reason> reasonCalled(std::string_view name)
{
    const std::string wanted = upperCase(name);
    for (const auto &rows : everything())
        for (const Reason &row : rows)
            if (row.name == wanted || row.name == "MQRC_" + wanted) return row;
    return std::nullopt;
}

std::string_view nearestName(std::string_view typed)
{
    const std::string wanted = upperCase(typed);
    Nearest nearest(wanted);
    for (const auto &rows : everything())
        for (const Reason &row : rows)
            nearest.consider(row.name);
    return nearest.name();
}

std::string_view sentenceOf(const Reason &reason)
{
    if (!reason.text.empty()) return reason.text;
    const auto range = std::find_if(std::begin(ranges), std::end(ranges),
                                    [&](const Range &r) { return r.low <= reason.value && reason.value <= r.high; });
    return range == std::end(ranges) ? anyReason : range->text;
}

} // namespace mqrig::rigqm
