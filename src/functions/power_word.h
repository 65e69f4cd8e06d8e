#pragma once
// A word to an integer power: left-to-right binary powering, with truncation to the working precision. Only the squares
// cost transforms; a set bit costs a pass of a word multiply.
//
// Error: a square at precision w is short by less than 5 units of its lowest word, relative 5 W^-w; an error passes
// through later squares doubled, so that n's bits add up to a relative error below 10 n W^-w. With w = p, plus one where
// n has 33 bits or more, that is below 10 n W^-p. A power whose words, trailing zero words not counted, fit p is exact.

#include "functions/iteration_plan.h"

namespace zvp {

class StatusNode;

/// x^n at precisions up to p. Plans are read-only; their runs allocate nothing.
class Power_uW_uL_BigFloatR : public IterationLimits, public IterationSizes {
public:
    Power_uW_uL_BigFloatR(std::size_t p_, std::uint32_t tds_);

    /// T = x^n at precision p; 0^0 = 1. T is its own storage of result_words, pars.M has memory_bytes. `status` may be
    /// null; pars.status isn't used.
    ///
    /// Throws LimitExceededException ("Precision", "Task Decomposition") beyond the plan and if pars.tables weren't
    /// built, BufferTooSmallException, and ExponentOverflowException where the result's exponent leaves [-2^61, 2^61).
    void run(const MultiplyParameters& pars, StatusNode* status, BigFloat& T, wtype x, std::uint64_t n,
             std::size_t run_p) const;

    void ensure_tables(MultiplyTables& tables) const;

    static constexpr const char* function = "Power_uW_uL_BigFloatR()"; // in errors
};

} // namespace zvp
