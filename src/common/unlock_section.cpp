#include "common.h"

#include "output_mutex.h"

Status unlock_output_mutex(pthread_mutex_t *lock)
{
    if (lock == nullptr) return StatusOk;
    const int code = pthread_mutex_unlock(lock);
    if (code == 0) return StatusOk;
    // The blank of "% d" is part of the text, and differs from the locking line.
    printf_d("unlock_section", __LINE__, 0, "pthread_mutex_unlock() failed. return code=% d\n", code);
    return StatusLocalFailure;
}

Status unlock_section(RunParams *params)
{
    return unlock_output_mutex(output_lock(params));
}
