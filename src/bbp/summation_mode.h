#pragma once
// How ranges of terms are summed, by the size of their divisors.

#include "bbp/bbp_kernels.h"
#include "bbp/fraction_float.h"

#include <atomic>
#include <cstdint>
#include <vector>

namespace BBPv2 {

/// One way of summing terms, exact for divisors up to a limit.
class SummationMode {
public:
    virtual ~SummationMode() = default;

    /// The largest divisor, 2^bits - 1.
    virtual unsigned limit_bits() const = 0;
    std::uint64_t limit() const { return (std::uint64_t{1} << limit_bits()) - 1; }

    /// Adds to `out`, modulo 1, the sum over k in [k0, k1) of 2^(step * k + start) / (a * k + b), for step < 0.
    /// The error is below one unit of 2^-(48 n) for each term, n = DigitBuffer::digit_count() of the words of
    /// `out`. Divisors beyond the limit are told in a warning, once per process and mode.
    virtual void sum_range(FractionFloat& out, std::uint64_t a, std::uint64_t b, std::int64_t step, std::int64_t start,
                           std::uint64_t k0, std::uint64_t k1) const;

    /// The same for the single index k.
    virtual void sum_term(FractionFloat& out, std::uint64_t a, std::uint64_t b, std::int64_t step, std::int64_t start,
                          std::uint64_t k) const {
        sum_range(out, a, b, step, start, k, k + 1);
    }

protected:
    explicit SummationMode(const BBPKernels& kernels_) : kernels(kernels_) {}

    virtual void sum_powers(std::int64_t* digits, std::size_t n, const PowerTerms& terms) const = 0;
    virtual std::atomic<bool>& warned() const = 0;

    const BBPKernels& kernels;

private:
    void check_divisor(std::uint64_t largest) const;
};

/// No reduction behind a doubling: the fastest, for divisors below 2^49.
class ModeA final : public SummationMode {
public:
    explicit ModeA(const BBPKernels& kernels_) : SummationMode(kernels_) {}
    unsigned limit_bits() const override { return mode_a_bits; }

protected:
    void sum_powers(std::int64_t* digits, std::size_t n, const PowerTerms& terms) const override;
    std::atomic<bool>& warned() const override;
};

/// A reduction behind each step, for divisors below 2^51.
class ModeB final : public SummationMode {
public:
    explicit ModeB(const BBPKernels& kernels_) : SummationMode(kernels_) {}
    unsigned limit_bits() const override { return mode_b_bits; }

protected:
    void sum_powers(std::int64_t* digits, std::size_t n, const PowerTerms& terms) const override;
    std::atomic<bool>& warned() const override;
};

struct ModeRange {
    const SummationMode* mode;
    std::uint64_t k0;
    std::uint64_t k1;
};

/// Cuts [k0, k1) of a record with divisors a * k + b into ranges, each with the first of the modes, in the
/// order given, that takes its divisors. The ranges with the largest divisors come first. Raises
/// InvalidParametersException when the modes don't reach k1.
std::vector<ModeRange> SummableRange(const std::vector<const SummationMode*>& modes, std::uint64_t a, std::uint64_t b,
                                     std::uint64_t k0, std::uint64_t k1);

} // namespace BBPv2
