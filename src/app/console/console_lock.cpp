#include "app/console/console_lock.h"

#include "platform/crash_filter.h"

namespace zvp {

void ConsoleMutex::lock() noexcept {
    const long self = platform::current_thread_number();
    for (long free = 0; !owner.compare_exchange_weak(free, self, std::memory_order_acquire); free = 0)
        if (free != 0) owner.wait(free, std::memory_order_relaxed);
}

void ConsoleMutex::unlock() noexcept {
    owner.store(0, std::memory_order_release);
    owner.notify_one();
}

bool ConsoleMutex::try_lock_in_fault(unsigned milliseconds) noexcept {
    const long self = platform::current_thread_number();
    if (owner.load() == self) return false;
    for (unsigned waited = 0; waited <= milliseconds; ++waited) {
        long free = 0;
        if (owner.compare_exchange_strong(free, self)) return true;
        platform::sleep_milliseconds(1);
    }
    return false;
}

ConsoleMutex& console_mutex() {
    static ConsoleMutex mutex;
    return mutex;
}

} // namespace zvp
