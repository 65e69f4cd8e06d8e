#include "platform/clock.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <ctime>
#include <sys/resource.h>
#include <x86intrin.h>

namespace zvp::platform {

namespace {

std::uint64_t read_clock(clockid_t clock) noexcept {
    timespec t;
    clock_gettime(clock, &t);
    return static_cast<std::uint64_t>(t.tv_sec) * 1'000'000'000u + static_cast<std::uint64_t>(t.tv_nsec);
}

double seconds(const timeval& t) { return static_cast<double>(t.tv_sec) + 1e-6 * static_cast<double>(t.tv_usec); }

std::atomic<long> utc_offset_seconds{0};

/// Calendar date of a day count since 1970-01-01 (Howard Hinnant, "chrono-Compatible Low-Level Date
/// Algorithms", civil_from_days).
void set_date(CalendarTime& result, std::int64_t days) {
    result.weekday = static_cast<int>(((days % 7) + 7 + 4) % 7);
    days += 719'468;
    const std::int64_t era = (days >= 0 ? days : days - 146'096) / 146'097;
    const auto day_of_era = static_cast<unsigned>(days - era * 146'097);
    const unsigned year_of_era = (day_of_era - day_of_era / 1460 + day_of_era / 36'524 - day_of_era / 146'096) / 365;
    const unsigned day_of_year = day_of_era - (365 * year_of_era + year_of_era / 4 - year_of_era / 100);
    const unsigned shifted_month = (5 * day_of_year + 2) / 153;
    result.day = static_cast<int>(day_of_year - (153 * shifted_month + 2) / 5 + 1);
    result.month = static_cast<int>(shifted_month < 10 ? shifted_month + 3 : shifted_month - 9);
    result.year = static_cast<int>(year_of_era) + static_cast<int>(era) * 400 + (result.month <= 2 ? 1 : 0);
}

} // namespace

std::uint64_t performance_counter() noexcept { return read_clock(CLOCK_MONOTONIC); }

std::uint64_t coarse_counter() noexcept { return read_clock(CLOCK_MONOTONIC_COARSE); }

std::uint64_t time_stamp_counter() noexcept { return __rdtsc(); }

ProcessTimes process_times() {
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return {seconds(usage.ru_utime), seconds(usage.ru_stime)};
}

std::int64_t wall_clock_milliseconds() { return static_cast<std::int64_t>(read_clock(CLOCK_REALTIME) / 1'000'000u); }

CalendarTime local_time() {
    const std::time_t now = std::time(nullptr);
    std::tm fields{};
    localtime_r(&now, &fields);
    utc_offset_seconds = fields.tm_gmtoff;
    return {fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday, fields.tm_hour,
            fields.tm_min,         fields.tm_sec,     fields.tm_wday};
}

std::string local_time_text() {
    static constexpr std::array weekdays{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static constexpr std::array months{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                       "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const CalendarTime t = local_time();
    std::array<char, 64> text;
    std::snprintf(text.data(), text.size(), "%s %s %d %02d:%02d:%02d %d", weekdays[static_cast<std::size_t>(t.weekday)],
                  months[static_cast<std::size_t>(t.month - 1)], t.day, t.hour, t.minute, t.second, t.year);
    return text.data();
}

CalendarTime local_time_in_signal() noexcept {
    timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    const std::int64_t local = static_cast<std::int64_t>(now.tv_sec) + utc_offset_seconds;
    std::int64_t days = local / 86'400;
    std::int64_t rest = local % 86'400;
    if (rest < 0) {
        rest += 86'400;
        days -= 1;
    }
    CalendarTime result{};
    set_date(result, days);
    result.hour = static_cast<int>(rest / 3600);
    result.minute = static_cast<int>(rest / 60 % 60);
    result.second = static_cast<int>(rest % 60);
    return result;
}

} // namespace zvp::platform
