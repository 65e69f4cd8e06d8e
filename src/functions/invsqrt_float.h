#pragma once
// 1/sqrt(A) by Newton's iteration F' = F + F (1 - A F^2) / 2.
//
// A step to precision p starts from an estimate F of precision q = p/2 + 1: |A F^2 - 1| < W^(2-q). It squares F,
// multiplies by A with a transform for p + q + 8 words, of which the known words above 2-q wrap around onto those that
// nobody looks at, and multiplies F by half the residual. Halving is a product by 2^(w-1) and a word of exponent.
//
// Error, with u the weight of T[0] and A's words below its top p+2 counted as lost: |1/sqrt(A) - T| < 4u for p >= 10.
// In units: the square's cut at most 1.5/t, t the top word of T; A's cut below a half; the correction's cuts below 1
// each; the nudge 1. Terms of second order are below c^2/W. For any p > 0 it is below 9 W^-p of the value: below p = 10
// the product with A ends at -p where both top words are small, which costs 1.5 t units. p = 0 gives 50 bits.

#include "functions/iteration_plan.h"
#include "parallel/memory/aligned_buffer.h"

namespace zvp {

class StatusNode;
class StatusSink;

/// 1/sqrt(A) for p below 10, by schoolbook products. Plans are read-only; their runs allocate nothing.
class InvsqrtFloat_BigFloatR_E : public IterationLimits, public IterationSizes {
public:
    InvsqrtFloat_BigFloatR_E(std::size_t p_, std::uint32_t tds_);

    /// T = 1/sqrt(A); p < 10, at most the plan's. The contract is that of InvsqrtFloat_BigFloatR::run(), with its own
    /// name in errors.
    void run(const MultiplyParameters& pars, BigFloat& T, const BigFloat& A, std::size_t p,
             LinearWordBuffer buffer) const;

    template <std::size_t Alignment>
    void run(const MultiplyParameters& pars, BigFloat& T, const BigFloat& A, std::size_t run_p,
             AlignedBufferC<Alignment> memory, std::size_t words) const {
        run(pars, T, A, run_p, memory.spawn_words(words));
    }

    static constexpr const char* function = "InvsqrtFloat_BigFloatR_E::run()"; // in errors

    static IterationSizes sizes(std::size_t p, std::uint32_t tds);

private:
    friend class InvsqrtFloat_BigFloatR;

    static void iterate(const MultiplyParameters& pars, BigFloat& T, const BigFloat& A, std::size_t p,
                        LinearWordBuffer buffer);
    static void start(BigFloat& T, const BigFloat& A);
};

/// 1/sqrt(A) for any precision up to the plan's.
class InvsqrtFloat_BigFloatR : public IterationLimits, public IterationSizes {
public:
    InvsqrtFloat_BigFloatR(std::size_t p_, std::uint32_t tds_);

    /// T = 1/sqrt(A) at precision p, positive. T is its own storage, of p + 4 words at least, and not A. `buffer` has
    /// buffer_words and pars.M has memory_bytes: those of this plan suffice for every p, those of a plan for p always.
    /// `status` may be null; pars.status isn't used.
    ///
    /// Throws, before anything is computed but where said:
    ///   InvalidParametersException  p or pars.tds is larger than the plan's
    ///   BufferTooSmallException     T, the buffer ("LinearWordBuffer::cut_from_bottom()") or pars.M is too small
    ///   LimitExceededException      pars.tables weren't built for the products (ensure_tables())
    ///   ArithmeticException         A is negative or zero ("InvsqrtFloat_BigFloatR_E::run()")
    ///   AlgorithmFailedException    in the middle: an estimate, a product or a sum was wrong. T is undefined then
    void run(const MultiplyParameters& pars, StatusNode* status, BigFloat& T, const BigFloat& A, std::size_t p,
             LinearWordBuffer buffer) const;

    /// The same with the words carved from `buffer`: `buffer_words`, a multiple of 16.
    template <std::size_t Alignment>
    void run(const MultiplyParameters& pars, StatusNode* status, BigFloat& T, const BigFloat& A, std::size_t run_p,
             AlignedBufferC<Alignment> memory, std::size_t words) const {
        run(pars, status, T, A, run_p, memory.spawn_words(words));
    }

    /// The same as a task of its own: "Large Invsqrt..." and its time, with the iteration shown behind "Iterating: ".
    /// Without a sink nothing is shown.
    void run_task(const MultiplyParameters& pars, StatusSink* sink, BigFloat& T, const BigFloat& A, std::size_t p,
                  LinearWordBuffer buffer) const;

    void ensure_tables(MultiplyTables& tables) const { ensure_product_tables(tables, transform_words(p)); }

    static IterationSizes sizes(std::size_t p, std::uint32_t tds);

    const InvsqrtFloat_BigFloatR_E small;

private:
    static constexpr std::size_t transform_words(std::size_t p) { return p + (p >> 1) + 1 + 8; }

    static void iterate(const MultiplyParameters& pars, StatusNode* status, BigFloat& T, const BigFloat& A,
                        std::size_t p, LinearWordBuffer buffer, bool is_last);
};

} // namespace zvp
