#pragma once

#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#include <sanitizer/tsan_interface.h>
#define MURMELI_WATCHES_THREADS
#endif
#endif

namespace murmeli {

/// Marks where one thread hands what it has written over to another. The hand-over itself is Qt's, whose
/// locks the thread sanitizer does not see; without the sanitizer this does nothing. Any thread.
class HandOver {
public:
    void give() const
    {
#ifdef MURMELI_WATCHES_THREADS
        __tsan_release(const_cast<HandOver*>(this));
#endif
    }
    void take() const
    {
#ifdef MURMELI_WATCHES_THREADS
        __tsan_acquire(const_cast<HandOver*>(this));
#endif
    }
};

} // namespace murmeli
