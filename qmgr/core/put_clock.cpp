#include "qmgr/core/put_clock.h"

#include <chrono>
#include <cstring>

namespace mqrig::qmgr::core {
namespace {

void writeDigits(char *at, unsigned value, std::size_t count)
{
    for (std::size_t i = count; i > 0; --i) {
        at[i - 1] = static_cast<char>('0' + value % 10);
        value /= 10;
    }
}

} // namespace

void PutClock::write(std::int64_t time, MQCHAR8 &putDate, MQCHAR8 &putTime)
{
    constexpr std::int64_t microseconds = 1000000;
    std::int64_t second = time / microseconds;
    std::int64_t fraction = time % microseconds;
    if (fraction < 0) {
        fraction += microseconds;
        --second;
    }
    if (second != second_) makeTexts(second);
    std::memcpy(putDate, date_.data(), sizeof putDate);
    std::memcpy(putTime, time_.data(), time_.size());
    writeDigits(putTime + 6, static_cast<unsigned>(fraction / 10000), 2);
}

void PutClock::makeTexts(std::int64_t second)
{
    using namespace std::chrono;
    const sys_seconds moment{seconds{second}};
    const sys_days day = floor<days>(moment);
    const year_month_day date{day};
    const hh_mm_ss clock{moment - day};
    writeDigits(date_.data(), static_cast<unsigned>(static_cast<int>(date.year())), 4);
    writeDigits(date_.data() + 4, static_cast<unsigned>(date.month()), 2);
    writeDigits(date_.data() + 6, static_cast<unsigned>(date.day()), 2);
    writeDigits(time_.data(), static_cast<unsigned>(clock.hours().count()), 2);
    writeDigits(time_.data() + 2, static_cast<unsigned>(clock.minutes().count()), 2);
    writeDigits(time_.data() + 4, static_cast<unsigned>(clock.seconds().count()), 2);
    second_ = second;
}

} // namespace mqrig::qmgr::core
