#pragma once

#include <cstdint>

namespace zvp {

/// The time that the phases of a computation took, in sum: of the wall clock, and of the processor in all threads. A phase
/// goes from open() to close(), which adds its difference; phases inside another one aren't counted twice. One thread.
class TrackedMeasurements {
public:
    void open();

    /// Without an open() before it does nothing.
    void close();

    double user_seconds = 0;
    double kernel_seconds = 0;
    double wall_seconds = 0;

private:
    unsigned depth = 0;
    double user_before = 0;
    double kernel_before = 0;
    std::uint64_t counter_before = 0; // performance counter
};

} // namespace zvp
