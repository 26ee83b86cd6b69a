#include "common.h"

#include <cstring>

namespace {

/// "[%y/%m/%d %H:%M:%S." of one second. Breaking a time down costs more than the rest of a report line, so each thread
/// keeps the text of the second that it last wrote.
struct SecondText {
    std::time_t second = -1;
    std::size_t length = 0;
    char text[256] = {};

    void show(std::time_t newSecond)
    {
        if (newSecond == second) return;
        std::tm local = {};
        localtime_r(&newSecond, &local);
        length = std::strftime(text, sizeof text, "[%y/%m/%d %H:%M:%S.", &local);
        second = newSecond;
    }
};

} // namespace

void dsp_timestamp(RunParams *params)
{
    thread_local SecondText cache;
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    cache.show(now.tv_sec);

    constexpr std::size_t Digits = 9;
    char line[sizeof cache.text + 64];
    std::memcpy(line, cache.text, cache.length);
    long rest = now.tv_nsec;
    for (std::size_t digit = Digits; digit > 0; --digit) {
        line[cache.length + digit - 1] = static_cast<char>('0' + rest % 10);
        rest /= 10;
    }
    std::size_t length = cache.length + Digits;
    if (params->threadsInUse()) {
        length += static_cast<std::size_t>(std::snprintf(line + length, 32, " tid=%d", params->ThreadId));
    }
    line[length++] = ']';
    line[length++] = ' ';
    std::fwrite(line, 1, length, stdout);
}
