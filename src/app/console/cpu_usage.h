#pragma once

#include <cstdint>

namespace zvp {

/// Prints how much of the processor a computation used: "CPU Utilization" in percent of one core, and
/// "Multi-core Efficiency", the same divided by the number of logical cores. kernel_seconds below 0 is left
/// out.
void print_cpu_usage(double wall_seconds, double user_seconds, double kernel_seconds, std::uint32_t logical_cores);

} // namespace zvp
