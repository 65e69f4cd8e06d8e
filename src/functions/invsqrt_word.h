#pragma once
// 1/sqrt(x) for a word x by Newton's iteration F' = F + F (1 - x F^2) / 2.
//
// The fast road to the square root of a small integer: x costs no transform, and F's forward form, from which the
// square is made, serves again for the correction. A step to precision p costs four transforms of p + 6 words.
//
// Error, with u the weight of T[0]: |1/sqrt(x) - T| < 3u for p >= 10. In units: the correction's cuts below 1 each, the
// nudge 1, terms of second order below c^2/sqrt(W). Below p = 10 the square is cut: 6u. For any p > 0 it is below 6
// W^-p of the value. p = 0 gives 50 bits.

#include "functions/iteration_plan.h"
#include "parallel/memory/aligned_buffer.h"

namespace zvp {

class StatusNode;
class StatusSink;

/// 1/sqrt(x) for p below 10, by schoolbook products. Plans are read-only; their runs allocate nothing.
class InvsqrtWord_BigFloatR_E : public IterationLimits, public IterationSizes {
public:
    InvsqrtWord_BigFloatR_E(std::size_t p_, std::uint32_t tds_);

    /// T = 1/sqrt(x); p < 10, at most the plan's. The contract is that of InvsqrtWord_BigFloatR::run(), with its own
    /// name in errors.
    void run(const MultiplyParameters& pars, BigFloat& T, wtype x, std::size_t p, LinearWordBuffer buffer) const;

    template <std::size_t Alignment>
    void run(const MultiplyParameters& pars, BigFloat& T, wtype x, std::size_t run_p, AlignedBufferC<Alignment> memory,
             std::size_t words) const {
        run(pars, T, x, run_p, memory.spawn_words(words));
    }

    static constexpr const char* function = "InvsqrtWord_BigFloatR_E::run()"; // in errors

    static IterationSizes sizes(std::size_t p, std::uint32_t tds);

private:
    friend class InvsqrtWord_BigFloatR;

    static void iterate(const MultiplyParameters& pars, BigFloat& T, wtype x, std::size_t p, LinearWordBuffer buffer);
};

/// 1/sqrt(x) for any precision up to the plan's.
class InvsqrtWord_BigFloatR : public IterationLimits, public IterationSizes {
public:
    InvsqrtWord_BigFloatR(std::size_t p_, std::uint32_t tds_);

    /// T = 1/sqrt(x) at precision p. T is its own storage, of p + 4 words at least. `buffer` has buffer_words and
    /// pars.M has memory_bytes: those of this plan suffice for every p, those of a plan for p always. `status` may be
    /// null; pars.status isn't used.
    ///
    /// Throws what InvsqrtFloat_BigFloatR::run() throws, with its own name; ArithmeticException if x is zero
    /// ("InvsqrtWord_BigFloatR_E::run()").
    void run(const MultiplyParameters& pars, StatusNode* status, BigFloat& T, wtype x, std::size_t p,
             LinearWordBuffer buffer) const;

    /// The same with the words carved from `buffer`: `buffer_words`, a multiple of 16.
    template <std::size_t Alignment>
    void run(const MultiplyParameters& pars, StatusNode* status, BigFloat& T, wtype x, std::size_t run_p,
             AlignedBufferC<Alignment> memory, std::size_t words) const {
        run(pars, status, T, x, run_p, memory.spawn_words(words));
    }

    /// The same as a task of its own: "InvSqrt(<x>)..." and its time, with the iteration shown behind "Iterating: ".
    /// Without a sink nothing is shown.
    void run_task(const MultiplyParameters& pars, StatusSink* sink, BigFloat& T, wtype x, std::size_t p,
                  LinearWordBuffer buffer) const;

    void ensure_tables(MultiplyTables& tables) const { ensure_product_tables(tables, p + 8); }

    static IterationSizes sizes(std::size_t p, std::uint32_t tds);

    const InvsqrtWord_BigFloatR_E small;

private:
    static void iterate(const MultiplyParameters& pars, StatusNode* status, BigFloat& T, wtype x, std::size_t p,
                        LinearWordBuffer buffer, bool is_last);
};

} // namespace zvp
