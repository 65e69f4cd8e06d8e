#pragma once
// From a sum P/Q to a constant: (c1 P/Q + c2) / c3, or the reciprocal of it, by one division.

#include "app/console/run_report.h"
#include "functions/division.h"
#include "parallel/memory/aligned_buffer.h"

#include <cstddef>
#include <cstdint>

namespace zvp::BinarySplitting {

struct SumCoefficients {
    std::int32_t c1;
    std::int32_t c2;
    std::uint32_t c3;
};

/// Read-only once made.
class SeriesFinish {
public:
    /// `power` is 1 or -1: InvalidParametersException in the name of `owner` otherwise.
    SeriesFinish(const char* owner, int power_, const SumCoefficients& coefficients_, std::size_t precision,
                 std::uint32_t tasks);

    /// out = (c1 P/Q + c2) / c3 to the power, at the precision. P, whose storage may be `out`'s, and Q, whose storage may
    /// not, are lost; both have room for number_words behind their T. `out` has result_words, `memory` memory_bytes.
    /// c3 = 0 or, with power -1, a numerator of 0 raise ArithmeticException; too small storage raises
    /// BufferTooSmallException with the names of the operations.
    ///
    /// The cuts before the division are below 4 units of W^-p of P, Q or the sum, whichever is the largest: where c1 P/Q
    /// and c2 cancel, the result loses as many words as they have in common.
    void run(const MultiplyParameters& pars, const RunReport& report, BigFloat& out, BigFloat P, BigFloat Q,
             AlignedBufferC<64> memory) const;

    void ensure_tables(MultiplyTables& tables) const { division.ensure_tables(tables); }

    const int power;
    const SumCoefficients coefficients;
    const Division_BigFloatR division;
    const std::size_t number_words; // of numbers that a finish makes, a multiple of 16
    const std::size_t result_words; // a multiple of 16
    const std::uint64_t memory_bytes;

private:
    BigFloat numerator(const ParallelContext& ctx, bool P_is_out, BigFloat P, BigFloat& Q,
                       AlignedBufferC<64>& memory) const;
};

} // namespace zvp::BinarySplitting
