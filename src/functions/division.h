#pragma once
// N/D: half of the quotient by the reciprocal, the rest from the residual (A. H. Karp, P. Markstein, High-precision
// division and square root, ACM TOMS 23 (1997)).
//
//     X = 1/D and Q = N X at precision q = p/2 + 1;  E = N - D Q, of which the top q - 3 words are known to vanish;
//     T = Q + E X at precision p.
//
// Besides the reciprocal that costs eight transforms for p + 9 words, for X's forward form serves twice.
//
// Error, with u the weight of T[0] and operands' words below their top p+2 counted as lost: |N/D - T| < 6u for p >= 10.
// In units: D's cut, the ends of the windows of N and D Q, of E X and of the sum at most 1 each; E's own cut and terms
// of second order a fraction. For any p the error is below 12 W^-p of the value: below p = 10 T is a reciprocal times
// N.

#include "functions/reciprocal.h"

namespace zvp {

class StatusSink;

/// N/D at the precision of the plan. Read-only; runs allocate nothing.
class Division_BigFloatR : public IterationLimits, public IterationSizes {
public:
    Division_BigFloatR(std::size_t p_, std::uint32_t tds_);

    /// T = N/D at the plan's precision. T is its own storage of result_words (p + 2), and no operand. `buffer` has
    /// buffer_words and pars.M has memory_bytes. `status` may be null; pars.status isn't used. A zero N gives zero
    /// (sign 0) whatever D is. Cost: about three products of p words.
    ///
    /// Throws InvalidParametersException if pars.tds isn't the plan's, BufferTooSmallException, LimitExceededException
    /// if pars.tables weren't built for the products (ensure_tables()), ArithmeticException if D is zero, and
    /// AlgorithmFailedException where the reciprocal, the quotient's first half, a product or a sum was found wrong.
    void run(const MultiplyParameters& pars, StatusNode* status, BigFloat& T, const BigFloat& N, const BigFloat& D,
             LinearWordBuffer buffer) const;

    /// The same with the words carved from `buffer`: `buffer_words`, a multiple of 16.
    template <std::size_t Alignment>
    void run(const MultiplyParameters& pars, StatusNode* status, BigFloat& T, const BigFloat& N, const BigFloat& D,
             AlignedBufferC<Alignment> memory, std::size_t words) const {
        run(pars, status, T, N, D, memory.spawn_words(words));
    }

    /// The same as a task of its own: "Large Division..." and its time, with the iteration shown behind "Iterating: ".
    /// Without a sink nothing is shown. `heading` is for the caller's log.
    void run_task(const MultiplyParameters& pars, StatusSink* sink, BigFloat& T, const BigFloat& N, const BigFloat& D,
                  LinearWordBuffer buffer) const;
    static constexpr const char* heading = "Large Division";

    void ensure_tables(MultiplyTables& tables) const { ensure_product_tables(tables, p < 10 ? 2 * (p + 3) : p + 9); }

    const std::size_t q; // the precision of the reciprocal
    const Reciprocal_BigFloatR reciprocal;
    std::size_t x_words, r_words, e_words;
    std::uint64_t transform_bytes, scratch_bytes;

private:
    void run_small(const MultiplyParameters& pars, BigFloat& T, const BigFloat& N, const BigFloat& D,
                   LinearWordBuffer buffer) const;
    void run_large(const MultiplyParameters& pars, StatusNode* status, BigFloat& T, const BigFloat& N,
                   const BigFloat& D, LinearWordBuffer buffer) const;
};

} // namespace zvp
