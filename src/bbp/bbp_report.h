#pragma once
// What a run of the extractor prints.

#include "bbp/bbp_session.h"
#include "bbp/fraction_float.h"
#include "bbp/term_record.h"

#include <cstdint>
#include <string>

namespace BBPv2 {

/// "Frac( 1/(8k + 1) * 2^(-4k + 4000000002) )".
std::string record_text(const TermRecord& record);

void print_run_header(const zorvane::BBPSession& session);

void print_run_times(double wall_seconds, double user_seconds, double kernel_seconds);

/// All digits of the fraction, in groups of 8: the first `digits` in green, the rest, the working precision, in
/// red.
void print_digits(const FractionFloat& fraction, std::uint64_t offset, std::uint32_t digits);

} // namespace BBPv2
