#pragma once
// From the elements of the last pass to the words of the product.

#include "multiply/hybrid/element_passes.h"

namespace zvp {

/// Coefficient i is added at word c * i. It overlaps its neighbours: of a run of consecutive coefficients, each writes c
/// words, with what stood above the c words of the one before, and keeps its own upper c + 1 words, in its element, for
/// the next.
///
/// Two sums modulo 2^31 - 1 tell whether all went right. Coefficients were right if theirs at check_point is the expected
/// one (coefficient_residues.h). Nothing was lost in the overlaps if what stays of the coefficients without the words
/// that were written is what the last ones of the runs have kept, all taken at their places.
class CoefficientOutput {
public:
    /// T: words s .. e - 1 of the product.
    CoefficientOutput(const HybridJob& job_, RingWord* T_, std::size_t s_, std::size_t e_)
        : job(job_), T(T_), s(s_), e(e_) {}

    /// Sums over coefficients of one task.
    struct Sums {
        std::uint32_t values = 0;   // at check_point
        std::uint32_t kept = 0;     // at their words
        std::uint64_t left_out = 0; // of the words outside the range, modulo 2^61 - 1
        std::uint64_t taken = 0;    // of those inside
    };

    /// Coefficient i from its element x; `before` is the element of coefficient i - 1, null for the first of a run.
    /// `power` is check_point^i. Throws AlgorithmFailedException when the coefficient is larger than any that operands can
    /// make: so are nearly all after a fault in a forward form or in a product of elements.
    void put(std::uint64_t i, std::uint32_t power, RingWord* x, RingWord* before, TaskScratch scratch,
             Sums& sums) const;

    /// Whether coefficient x, which was put, is the last one of its run.
    bool ends_run(const RingWord* x) const { return x[job.size.n] != 0; }

    /// Adds what the last coefficient of a run has kept; when all runs have been put, by one thread.
    void finish_run(std::uint64_t i, const RingWord* x, Sums& total) const;

private:
    std::size_t capacity() const { return job.size.c << job.size.k; } // words
    void store(std::uint64_t i, const RingWord* words, Sums& sums) const;

    /// Adds `count` words at word `begin`, as far as the range takes them. What leaves the top of all words comes in at
    /// the bottom.
    void add(std::size_t begin, const RingWord* words, std::size_t count, Sums& total) const;

    /// Adds the words from `begin` on to the residues of what lies outside the range and inside.
    void add_hashes(std::size_t begin, const RingWord* words, std::size_t count, Sums& sums) const;

    const HybridJob& job;
    RingWord* T;
    std::size_t s, e;
};

} // namespace zvp
