#pragma once
// What a run prints around its computation.

#include "digits/records/last_digits.h"
#include "session/normal_float_session_b.h"

namespace zvp {

/// What is computed, how far, and by what.
void print_run_header(const NormalFloatSessionB& session);

/// When it began and ended, how long it took, and how well the processor was used.
void print_run_times(const ComputationTimes& times, std::uint32_t logical_cores);

/// "Last Decimal Digits:", the constant's name and the digits.
void print_last_digits(const LastDigits& digits, const NormalFloatSession& session);

} // namespace zvp
