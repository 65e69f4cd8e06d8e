#pragma once
// When a computation began and ended, by several clocks.

#include "app/console/tracked_measurements.h"
#include "platform/clock.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zvp {

class ComputationTimes {
public:
    /// All clocks at one moment, so that they can be compared with each other afterwards.
    struct Sample {
        std::uint64_t counter;     // performance counter, nanoseconds
        std::uint64_t ticks;       // processor's time stamp counter
        std::int64_t milliseconds; // wall clock
        double processor_seconds;  // process clock: of all threads, user and kernel
    };

    /// The beginning of the run, of the computation in it, and the end of both.
    void begin_run();
    void begin_computation();
    void end();

    /// Adds a sample for the comparison of the clocks.
    void add_sample();

    /// From begin_computation() to end().
    double computation_seconds() const { return static_cast<double>(end_counter - computation_counter) * 1e-9; }

    /// From begin_run() to end(), by the wall clock.
    std::int64_t wall_milliseconds() const { return end_milliseconds - start_milliseconds; }

    /// Processor time of all threads between begin_computation() and end().
    platform::ProcessTimes processor_seconds() const;

    std::string start_date;
    std::string end_date;
    std::vector<Sample> samples;
    TrackedMeasurements number; // what it took to compute the number, without its digits

private:
    std::int64_t start_milliseconds = 0;
    std::int64_t end_milliseconds = 0;
    std::uint64_t computation_counter = 0;
    std::uint64_t end_counter = 0;
    platform::ProcessTimes before{};
    platform::ProcessTimes after{};
};

} // namespace zvp
