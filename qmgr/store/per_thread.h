// One T for each thread that asks for it, gone with the thread.
//
// A thread_local object with a destructor would do, but for one thing: the C library ends the process where it has no
// memory to note the destructor. This throws std::bad_alloc.
#pragma once

#include <memory>
#include <new>

#include <pthread.h>

namespace mqrig::qmgr::store {

template <class T>
class PerThread {
public:
    static T &get()
    {
        if (own == nullptr) own = make();
        return *own;
    }

private:
    class Key {
    public:
        Key()
        {
            if (pthread_key_create(&key_, &destroy) != 0) throw std::bad_alloc();
        }
        [[nodiscard]] pthread_key_t get() const { return key_; }

    private:
        pthread_key_t key_{};
    };

    static T *make()
    {
        static const Key key; // for as long as the process: threads end after static objects
        auto made = std::make_unique<T>();
        if (pthread_setspecific(key.get(), made.get()) != 0) throw std::bad_alloc();
        return made.release();
    }
    // Another thread-specific destructor may ask for it again: then there is a new one, and another round.
    static void destroy(void *made)
    {
        own = nullptr;
        delete static_cast<T *>(made);
    }

    inline static thread_local T *own = nullptr;
};

} // namespace mqrig::qmgr::store
