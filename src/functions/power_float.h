#pragma once
// A number to an integer power: left-to-right binary powering, with truncation to the working precision. The base is
// transformed once for all products with it.
//
// Error: with u = W^-w, a square or a product is short by less than 5 u of its value, and each cut of the base by less than
// u more. Errors double with each square, so that together they stay below 12 n u. w = p + 1, or p + 2 where n has 33
// bits or more: below 12 n W^-(p+1), or 12 n W^-(p+2). A power whose words, trailing zero words not counted, fit p is
// exact.

#include "functions/iteration_plan.h"

namespace zvp {

class StatusNode;

/// A^n at precisions up to p. Plans are read-only; their runs allocate nothing.
class Power_BF_uL_BigFloatR : public IterationLimits, public IterationSizes {
public:
    Power_BF_uL_BigFloatR(std::size_t p_, std::uint32_t tds_);

    /// T = A^n at precision run_p, with A's sign for odd n; 0^0 = 1. T is its own storage of run_p + 4 words, and not A;
    /// pars.M has memory_bytes. `status` may be null; pars.status isn't used.
    ///
    /// Throws LimitExceededException ("Precision", "Task Decomposition") beyond the plan and if pars.tables weren't
    /// built, BufferTooSmallException, and ExponentOverflowException where an exponent leaves [-2^61, 2^61).
    void run(const MultiplyParameters& pars, StatusNode* status, BigFloat& T, const BigFloat& A, std::uint64_t n,
             std::size_t run_p) const;

    void ensure_tables(MultiplyTables& tables) const;

    static constexpr const char* function = "Power_BF_uL_BigFloatR()"; // in errors
};

} // namespace zvp
