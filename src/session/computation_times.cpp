#include "session/computation_times.h"

namespace zvp {

void ComputationTimes::begin_run() {
    start_milliseconds = platform::wall_clock_milliseconds();
    start_date = platform::local_time_text();
    samples.clear();
    number = {};
    add_sample();
}

void ComputationTimes::begin_computation() {
    before = platform::process_times();
    computation_counter = platform::performance_counter();
}

void ComputationTimes::end() {
    end_counter = platform::performance_counter();
    after = platform::process_times();
    end_milliseconds = platform::wall_clock_milliseconds();
    end_date = platform::local_time_text();
    add_sample();
}

void ComputationTimes::add_sample() {
    const platform::ProcessTimes process = platform::process_times();
    samples.push_back({platform::performance_counter(), platform::time_stamp_counter(),
                       platform::wall_clock_milliseconds(), process.user_seconds + process.kernel_seconds});
}

platform::ProcessTimes ComputationTimes::processor_seconds() const {
    return {after.user_seconds - before.user_seconds, after.kernel_seconds - before.kernel_seconds};
}

} // namespace zvp
