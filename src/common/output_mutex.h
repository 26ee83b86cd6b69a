/// Locking and unlocking the output mutex, with the reports of the lock routines. A null mutex needs no lock.
#pragma once

#include "status.h"

#include <pthread.h>

Status lock_output_mutex(pthread_mutex_t *lock);
Status unlock_output_mutex(pthread_mutex_t *lock);
