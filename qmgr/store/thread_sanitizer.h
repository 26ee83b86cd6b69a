// For the thread sanitizer only: LMDB is the system's library, and the sanitizer does not see that a commit publishes
// what was written into the map before it, nor that a writer reuses no page that an announced reader looks at. These two
// say so, in our code on both sides of its calls; elsewhere they are nothing.
#pragma once

#ifdef __SANITIZE_THREAD__
#include <sanitizer/tsan_interface.h>
#endif

namespace mqrig::qmgr::store {

// What this thread has done with the map happens before ...
inline void handOver([[maybe_unused]] void *environment)
{
#ifdef __SANITIZE_THREAD__
    __tsan_release(environment);
#endif
}

// ... what this thread does with it from now on.
inline void takeUp([[maybe_unused]] void *environment)
{
#ifdef __SANITIZE_THREAD__
    __tsan_acquire(environment);
#endif
}

} // namespace mqrig::qmgr::store
