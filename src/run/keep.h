/// Objects that the MQI may still reach when their work is done.
#pragma once

#include <memory>

/// Keeps the object to the end of the process, also while the process exits: it is never destroyed. Main thread only.
/// `T::next` is a unique_ptr<T> that is free for this.
template <class T>
void keepToTheEnd(std::unique_ptr<T> object)
{
    static T *kept = nullptr;
    object->next.reset(kept);
    kept = object.release();
}
