#pragma once
// 1/A by Newton's iteration F' = F + F (1 - A F).
//
// A step to precision p starts from an estimate F of precision q = p/2 + 1: |A F - 1| < W^(2-q). It is
//
//     positions     2  1  0 -1 ..           2-q             -p        -p-8
//     A F           0  1 |0  0 .. known .. 0 |  residual d  | guard .. |   words that nobody looks at
//
// with a transform for p + 8 words, less than the product has: the known words above 2-q wrap around onto those below
// the window. The forward form of F serves again for F d, so that a step costs five transforms of p + 8 words.
// Each step proves from the residual that its estimate was right (residual.h); what the last and all long steps do
// themselves is watched by residues modulo 2^61 - 1 (step_watch.h).
//
// Error, with u the weight of T[0] and A's words below its top p+2 counted as lost: |1/A - T| < 3.1 u for p >= 10. T is
// too large, in units,
//   - by 0 .. 1 for A's cut: relative W^-(p+1)/a, and u is W^-p/t of T, with a and t the top words and a t about W;
//   - by 0 .. 1 in a difference for the cut of F d, or by -1 .. 0 in a sum;
//   - by 1 for the nudge;
// and off by less than c^2/W for each of d^2, the residual's guard words and the guard words of F d, c the error of the
// estimate in its units. Below p = 10 products are cut one word higher: 9u. For any p > 0 the error is below 9 W^-p of
// the value. p = 0, the start from a double, gives 50 bits.

#include "functions/iteration_plan.h"
#include "parallel/memory/aligned_buffer.h"

namespace zvp {

class StatusNode;

/// 1/A for p below 10, by schoolbook products. Plans are read-only; their runs allocate nothing.
class Reciprocal_BigFloatR_E : public IterationLimits, public IterationSizes {
public:
    Reciprocal_BigFloatR_E(std::size_t p_, std::uint32_t tds_);

    /// T = 1/A; p < 10, at most the plan's. The contract is that of Reciprocal_BigFloatR::run(), with its own name in
    /// errors.
    void run(const MultiplyParameters& pars, BigFloat& T, const BigFloat& A, std::size_t p,
             LinearWordBuffer buffer) const;

    template <std::size_t Alignment>
    void run(const MultiplyParameters& pars, BigFloat& T, const BigFloat& A, std::size_t run_p,
             AlignedBufferC<Alignment> memory, std::size_t words) const {
        run(pars, T, A, run_p, memory.spawn_words(words));
    }

    static constexpr const char* function = "Reciprocal_BigFloatR_E::run()"; // in errors

    static IterationSizes sizes(std::size_t p, std::uint32_t tds);

private:
    friend class Reciprocal_BigFloatR;

    static void iterate(const MultiplyParameters& pars, BigFloat& T, const BigFloat& A, std::size_t p,
                        LinearWordBuffer buffer);
    static void start(BigFloat& T, const BigFloat& A);
};

/// 1/A for any precision up to the plan's.
class Reciprocal_BigFloatR : public IterationLimits, public IterationSizes {
public:
    Reciprocal_BigFloatR(std::size_t p_, std::uint32_t tds_);

    /// T = 1/A at precision p, with A's sign. T is its own storage, of p + 3 words at least, and not A. `buffer` has
    /// buffer_words and pars.M has memory_bytes: those of this plan suffice for every p, those of a plan for p always.
    /// `status` may be null; pars.status isn't used. Cost: about two products of p words.
    ///
    /// Throws, before anything is computed but where said:
    ///   InvalidParametersException  p or pars.tds is larger than the plan's
    ///   BufferTooSmallException     T, the buffer ("LinearWordBuffer::cut_from_bottom()") or pars.M is too small
    ///   LimitExceededException      pars.tables weren't built for the products (ensure_tables())
    ///   ArithmeticException         A is zero ("Reciprocal_BigFloatR_E::run()")
    ///   AlgorithmFailedException    in the middle: an estimate, a product or a sum was wrong. T is undefined then
    void run(const MultiplyParameters& pars, StatusNode* status, BigFloat& T, const BigFloat& A, std::size_t p,
             LinearWordBuffer buffer) const;

    /// The same with the words carved from `buffer`: `buffer_words`, a multiple of 16.
    template <std::size_t Alignment>
    void run(const MultiplyParameters& pars, StatusNode* status, BigFloat& T, const BigFloat& A, std::size_t run_p,
             AlignedBufferC<Alignment> memory, std::size_t words) const {
        run(pars, status, T, A, run_p, memory.spawn_words(words));
    }

    /// Grows the wish of `tables` to what runs of this plan need.
    void ensure_tables(MultiplyTables& tables) const { ensure_product_tables(tables, transform_words(p)); }

    /// What a plan for p tells.
    static IterationSizes sizes(std::size_t p, std::uint32_t tds);

    const Reciprocal_BigFloatR_E small;

private:
    static constexpr std::size_t transform_words(std::size_t p) { return p + 8; }
    static constexpr std::size_t estimate_words(std::size_t q) { return (q + 18) & ~std::size_t{15}; }
    static constexpr std::size_t correction_words(std::size_t q) { return (q + 17) & ~std::size_t{15}; }

    static void iterate(const MultiplyParameters& pars, StatusNode* status, BigFloat& T, const BigFloat& A,
                        std::size_t p, LinearWordBuffer buffer, bool is_last);
};

} // namespace zvp
