#pragma once
// A^(-1/n) for a word n, by Newton's iteration F' = F + F (1 - A F^n) / n.
//
// A step to precision p starts from an estimate F of precision q = p/2 + 1, or p/2 + 2 for n >= 2^16. Its relative error e,
// some W^-q where the top word is small, makes A F^n differ from 1 by n e, which each step proves to be below
// residual_limit n W^-q: a word more than in an inverse, hence the word more of large n. The step leaves (n + 1) e^2 / 2, the
// error of the power, 12 n W^-(p+1) before it is divided by n, and the cuts: the relative error is below 40 W^-p.
//
// Odd n takes the power n + 1, which is even and ends in a square: the residual is F A F^n - F. Even n takes the power n
// and the residual A F^n - 1.

#include "functions/iteration_plan.h"
#include "functions/power_float.h"

namespace zvp {

class StatusNode;

/// A^(-1/n) for p below 10, by the expanded step ((n + 1) F - A F^(n+1)) / n. It has no plan of its own.
struct InvNthRootFloat_BigFloatR_E {
    /// T = A^(-1/n) at precision p < 10. R and S are work numbers of 16 words, T has as many. `power` is a plan for
    /// p + 2 at least.
    static void run(const MultiplyParameters& pars, const Power_BF_uL_BigFloatR& power, BigFloat& T, const BigFloat& A,
                    wtype n, std::size_t p, BigFloat& R, BigFloat& S);

    static constexpr const char* function = "InvNthRootFloat_BigFloatR_E::run()"; // in errors
};

/// A^(-1/n) for any precision up to the plan's. Plans are read-only; their runs allocate nothing.
class InvNthRootFloat_BigFloatR_P : public IterationLimits, public IterationSizes {
public:
    InvNthRootFloat_BigFloatR_P(std::size_t p_, std::uint32_t tds_);

    /// T = A^(-1/n) at precision run_p, n >= 1. T is its own storage of result_words, and not A; `buffer` has buffer_words
    /// and pars.M has memory_bytes. `status` may be null; pars.status isn't used.
    ///
    /// Throws InvalidParametersException beyond the plan and for n = 0, BufferTooSmallException, LimitExceededException if
    /// pars.tables weren't built, ArithmeticException ("Divide by zero.", "Nth root of negative number."), and
    /// AlgorithmFailedException where an estimate was wrong.
    void run(const MultiplyParameters& pars, StatusNode* status, BigFloat& T, const BigFloat& A, wtype n,
             std::size_t run_p, LinearWordBuffer buffer) const;

    void ensure_tables(MultiplyTables& tables) const;

    static constexpr const char* function = "InvNthRootFloat_BigFloatR_P::run()"; // in errors

private:
    void run_expanded(const MultiplyParameters& pars, StatusNode* status, BigFloat& T, const BigFloat& A, wtype n,
                      std::size_t run_p, BigFloat& R, BigFloat& S) const;
    void run_factored(const MultiplyParameters& pars, StatusNode* status, BigFloat& T, const BigFloat& A, wtype n,
                      std::size_t run_p, BigFloat& R, BigFloat& S) const;

    const Power_BF_uL_BigFloatR power;
};

/// T = A / n at precision p, n >= 1. Capacity: p + 2.
void divide_by_word(BigFloat& T, std::size_t p, const ParallelContext& ctx, const BigFloat& A, wtype n);

} // namespace zvp
