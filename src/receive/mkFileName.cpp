#include "receive.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace {

/// Put times are universal time; names show it nine hours ahead, whatever the zone of the machine.
constexpr int HoursAhead = 9;

/// Digits of the MQMD, which may be anything: what is no number counts as 0.
int number_at(const char *digits, std::size_t length)
{
    char text[8] = {};
    std::memcpy(text, digits, length);
    return std::atoi(text);
}

} // namespace

MQLONG mkFileName(const MQMD *md, char *name)
{
    std::tm time = {};
    time.tm_year = number_at(md->PutDate, 4) - 1900;
    time.tm_mon = number_at(md->PutDate + 4, 2) - 1;
    time.tm_mday = number_at(md->PutDate + 6, 2);
    time.tm_hour = number_at(md->PutTime, 2) + HoursAhead;
    time.tm_min = number_at(md->PutTime + 2, 2);
    time.tm_sec = number_at(md->PutTime + 4, 2);
    time.tm_isdst = -1;
    const std::time_t normalised = std::mktime(&time); // carries the hours into the next day
    localtime_r(&normalised, &time);

    char text[40];
    std::strftime(text, sizeof text, "%Y%m%d_%H%M%S_", &time);
    // The hundredths stand as they are in the message, but they cannot lead into another directory.
    char hundredths[3] = {md->PutTime[6], md->PutTime[7], '\0'};
    std::replace(hundredths, hundredths + 2, '/', '_');
    return std::snprintf(name, 64, "%s%s", text, hundredths);
}
