#include "qmgr/store/seams.h"

#include <ctime>

namespace mqrig::qmgr::store {

namespace {

std::int64_t systemTime()
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return std::int64_t{now.tv_sec} * 1'000'000 + now.tv_nsec / 1000;
}

} // namespace

Seams seams{.now = systemTime};

} // namespace mqrig::qmgr::store
