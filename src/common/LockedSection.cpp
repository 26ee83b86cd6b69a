#include "common.h"

#include "output_mutex.h"

LockedSection::LockedSection(RunParams *params) : held_(output_lock(params)), status_(lock_output_mutex(held_))
{
    if (status_ != StatusOk) held_ = nullptr;
}

Status LockedSection::release()
{
    if (held_ == nullptr) return status_;
    pthread_mutex_t *const lock = held_;
    held_ = nullptr;
    status_ = unlock_output_mutex(lock);
    return status_;
}
