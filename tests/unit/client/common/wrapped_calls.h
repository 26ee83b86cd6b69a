// Library calls of the code under test that a test can make fail or answer; the linker wraps them.
#pragma once

#include <cstddef>
#include <ctime>
#include <optional>
#include <vector>

struct WrappedCalls {
    std::size_t failingSize = 0;  ///< malloc, calloc and realloc of this size have no memory; 0: none fails
    std::optional<timespec> now;  ///< what the real-time clock says
    std::vector<timespec> sleeps; ///< nanosleep was asked for; it does not sleep
    int lockCode = 0;             ///< what pthread_mutex_lock answers without locking, 0: it locks
    int unlockCode = 0;
};

extern WrappedCalls wrapped;
