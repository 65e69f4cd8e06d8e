#pragma once
// The proof that a file holds what was computed.

#include "app/console/run_report.h"
#include "digits/reader/digit_reader.h"
#include "parallel/memory/aligned_buffer.h"
#include "parallel/tasks/parallel_framework.h"

#include <cstdint>

namespace zvp {

/// Reads the stream's first `digits` digits and compares their counts, and the hash with the integer part in front, with
/// those from before the writing. The buffer holds at least one page behind the next multiple of 4096. Raises
/// AlgorithmFailedException for a difference, which is printed; BufferTooSmallException; StringException and
/// InvalidParametersException where the reader's first digits or its radix aren't those of a digit file; what the reader
/// raises.
void read_check(const ParallelContext& context, const RunReport& report, DigitViewer2::BasicDigitReader& reader,
                std::uint64_t digits, const DigitCounts& expected, const AlignedBufferC<64>& buffer);

} // namespace zvp
