#pragma once
// From the elements of the last pass to the words of the product.

#include "multiply/hybrid/element_passes.h"

namespace zvp {

/// Coefficient i is added at word c * i. It overlaps its neighbours: of a run of consecutive coefficients, each writes c
/// words, with what stood above the c words of the one before, and keeps its own upper c + 1 words, in its element, for
/// the next.
class CoefficientOutput {
public:
    /// T: words s .. e - 1 of the product.
    CoefficientOutput(const HybridJob& job_, RingWord* T_, std::size_t s_, std::size_t e_)
        : job(job_), T(T_), s(s_), e(e_) {}

    /// Coefficient i from its element x; `before` is the element of coefficient i - 1, null for the first of a run.
    /// Throws AlgorithmFailedException when the coefficient is larger than any that operands can make: so are nearly all
    /// after a fault in a forward form or in a product of elements. A bit that flips behind the products spreads as
    /// powers of two, which only the upper 64 of the N bits tell from a coefficient.
    void put(std::uint64_t i, RingWord* x, const RingWord* before, TaskScratch scratch) const;

    /// Adds what the last coefficient of a run has kept; when all runs have been put, by one thread.
    void finish_run(std::uint64_t i, const RingWord* x) const;

private:
    /// Neither its words nor what it keeps reach the range.
    bool is_below(std::uint64_t i) const { return job.size.c * (i + 3) <= s; }
    bool is_above(std::uint64_t i) const { return job.size.c * i >= e; }
    std::size_t capacity() const { return job.size.c << job.size.k; } // words
    void store(std::uint64_t i, const RingWord* words) const;

    /// Adds `count` words at word `begin`, as far as the range takes them. What leaves the top of all words comes in at
    /// the bottom.
    void add(std::size_t begin, const RingWord* words, std::size_t count) const;

    const HybridJob& job;
    RingWord* T;
    std::size_t s, e;
};

} // namespace zvp
