#pragma once
// Clocks: for measuring, for the refresh of the status line, for the calendar.

#include <cstdint>
#include <string>

namespace zvp::platform {

/// Monotonic time in nanoseconds: the performance counter, with a frequency of 10^9.
std::uint64_t performance_counter() noexcept;

/// Monotonic time in nanoseconds at the resolution of the scheduler's tick (some milliseconds). Costs a few
/// nanoseconds, so that inner loops may ask whether something is due.
std::uint64_t coarse_counter() noexcept;

/// The processor's time stamp counter.
std::uint64_t time_stamp_counter() noexcept;

struct ProcessTimes {
    double user_seconds;
    double kernel_seconds;
};

/// Processor time that all threads of this process have used so far.
ProcessTimes process_times();

/// Milliseconds since 1970-01-01 UTC.
std::int64_t wall_clock_milliseconds();

struct CalendarTime {
    int year, month, day; // month and day from 1
    int hour, minute, second;
    int weekday; // 0 is Sunday
};

/// The local date and time.
CalendarTime local_time();

/// The local date and time as text, such as "Sun Nov 22 22:10:49 2026".
std::string local_time_text();

/// Local time computed from the UTC offset that the last local_time() call saw. Takes no lock
/// and is async-signal-safe, for the crash filter.
CalendarTime local_time_in_signal() noexcept;

} // namespace zvp::platform
