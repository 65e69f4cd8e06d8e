#pragma once
// sqrt(n) of a word n as n / sqrt(n).

#include "app/console/run_report.h"
#include "functions/invsqrt_word.h"
#include "numbers/big_float.h"
#include "parallel/memory/aligned_buffer.h"

#include <cstddef>
#include <cstdint>

namespace zvp {

/// Of one word n at one precision. Read-only once made; runs allocate nothing.
class Sqrt_Newton_BigFloatR {
public:
    Sqrt_Newton_BigFloatR(wtype n_, std::size_t precision_words, std::uint32_t tasks);

    /// T = sqrt(n), to 6 W^-p of its value at p words of precision. T has result_words, `memory` has
    /// memory_bytes; the scratch of `pars` isn't used. Throws BufferTooSmallException in its own name before
    /// anything is computed, and what InvsqrtWord_BigFloatR::run() throws.
    void run(const MultiplyParameters& pars, const RunReport& report, BigFloat& T, AlignedBufferC<64> memory) const;

    void ensure_tables(MultiplyTables& tables) const { root.ensure_tables(tables); }

    const wtype n;
    const InvsqrtWord_BigFloatR root;
    const std::size_t result_words;   // a multiple of 16
    const std::uint64_t memory_bytes; // a multiple of 64
};

/// The golden ratio (sqrt(5) + 1) / 2, or its reciprocal (sqrt(5) - 1) / 2.
class GoldenRatio_Newton_BigFloatR {
public:
    /// power: 1, or -1 for the reciprocal; InvalidParametersException for any other.
    GoldenRatio_Newton_BigFloatR(int power_, std::size_t precision_words, std::uint32_t tasks);

    /// T = the number, as Sqrt_Newton_BigFloatR::run().
    void run(const MultiplyParameters& pars, const RunReport& report, BigFloat& T, AlignedBufferC<64> memory) const;

    void ensure_tables(MultiplyTables& tables) const { root.ensure_tables(tables); }

    const int power;
    const InvsqrtWord_BigFloatR root;
    const std::size_t result_words;
    const std::uint64_t memory_bytes;
};

} // namespace zvp
