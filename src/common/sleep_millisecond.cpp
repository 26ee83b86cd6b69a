#include "common.h"

void sleep_millisecond(RunParams *, MQLONG milliseconds)
{
    if (milliseconds <= 0) return;
    flush_output();
    timespec duration = {};
    duration.tv_sec = milliseconds / 1000;
    duration.tv_nsec = milliseconds % 1000 * 1000000L;
    nanosleep(&duration, nullptr);
}
