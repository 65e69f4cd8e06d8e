#include "session/run_results.h"

#include "digits/hash/hash_field.h"

#include <cmath>

namespace zvp {

namespace {

Object located(std::uint64_t offset) {
    Object object;
    object.add_integer("Offset", static_cast<std::int64_t>(offset));
    return object;
}

Object last_digits(const LastDigits& last) {
    Object object = located(last.start);
    object.add_string("Digits", last.text);
    return object;
}

Object hidden_digits(const HashedDigits& hidden) {
    Object object = located(hidden.start);
    object.add_integer("Digits", static_cast<std::int64_t>(hidden.length));
    object.add_string("SHA256", hidden.sha256);
    return object;
}

Object statistics(const DigitCounts& stats) {
    Object object;
    object.add_integer("Hash", static_cast<std::int64_t>(normalize_hash(stats.hash)));
    Array counts;
    for (std::size_t digit = 0; digit < stats.radix; ++digit)
        counts.push_integer(static_cast<std::int64_t>(stats.counts[digit]));
    object.add_array("Counts", std::move(counts));
    return object;
}

/// Hundredths of a percent of the wall time.
std::int64_t share(double used, double wall) { return wall > 0 ? std::llround(used / wall * 10'000) : 0; }

Object spot_check_object(std::int64_t result) {
    Object object;
    object.add_string("Status", result > 0 ? "Passed" : result < 0 ? "Mismatch" : "Unavailable");
    if (result != 0) object.add_integer("Offset", result < 0 ? -result : result);
    return object;
}

} // namespace

Object ComputationOutput::to_object() const {
    Object dates;
    dates.add_string("Start", start_date);
    dates.add_string("End", end_date);
    Object times;
    times.add_integer("ComputeTimeMillis", compute_milliseconds);
    times.add_integer("WallTimeMillis", wall_milliseconds);
    Object stats;
    if (decimal) stats.add_object("LastDecDigits", last_digits(decimal->last));
    if (hexadecimal) stats.add_object("LastHexDigits", last_digits(hexadecimal->last));
    if (decimal && decimal->hidden) stats.add_object("HiddenDecDigits", hidden_digits(*decimal->hidden));
    if (decimal) stats.add_object("DecStats", statistics(decimal->counts));
    if (hexadecimal) stats.add_object("HexStats", statistics(hexadecimal->counts));

    Object object;
    object.add_object("Dates", std::move(dates));
    object.add_object("Times", std::move(times));
    object.add_object("DigitStats", std::move(stats));
    return object;
}

Object ComputationDiagnostics::to_object() const {
    Object utilization;
    utilization.add_integer("MaxConcurrency", max_concurrency);
    utilization.add_integer("UserTime%x100", share(processor.user_seconds, seconds));
    utilization.add_integer("KernelTime%x100", share(processor.kernel_seconds, seconds));
    Object object;
    object.add_object("Utilization", std::move(utilization));
    object.add_object("SpotCheck", spot_check_object(spot_check));
    object.add_boolean("Contiguous", contiguous);
    return object;
}

} // namespace zvp
