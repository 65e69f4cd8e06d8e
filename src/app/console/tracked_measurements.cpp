#include "app/console/tracked_measurements.h"

#include "platform/clock.h"

namespace zvp {

void TrackedMeasurements::open() {
    if (depth++ != 0) return;
    const platform::ProcessTimes times = platform::process_times();
    user_before = times.user_seconds;
    kernel_before = times.kernel_seconds;
    counter_before = platform::performance_counter();
}

void TrackedMeasurements::close() {
    if (depth == 0 || --depth != 0) return;
    const std::uint64_t counter = platform::performance_counter();
    const platform::ProcessTimes times = platform::process_times();
    user_seconds += times.user_seconds - user_before;
    kernel_seconds += times.kernel_seconds - kernel_before;
    wall_seconds += static_cast<double>(counter - counter_before) * 1e-9;
}

} // namespace zvp
