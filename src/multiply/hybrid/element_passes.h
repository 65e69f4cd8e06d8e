#pragma once
// Passes of the hybrid transform over sets of elements.

#include "multiply/hybrid/hybrid_transform.h"

namespace zvp {

/// 2^levels elements, `spacing` words apart, that stand for the points offset + t * step of a block of step * 2^levels
/// points.
struct ElementSet {
    RingWord* first;
    std::size_t spacing;
    unsigned levels;
    std::uint64_t offset;
    std::uint64_t step;

    RingWord* at(std::uint64_t t) const { return first + t * spacing; }
};

/// Work memory of one task: four elements at its start, for what is on its way, or all of it for one ring product.
struct TaskScratch {
    std::byte* M;

    RingWord* element(const HybridSize& size, unsigned i) const {
        return reinterpret_cast<RingWord*>(M) + i * size.stride;
    }
};

/// The upper `levels` levels of the transform of the set's block, down to blocks of `step` points. load_levels() takes the
/// points from the AL words at A, c for each; the set is one of the whole transform and has at least two levels.
void load_levels(const HybridJob& job, const ElementSet& set, const RingWord* A, std::size_t AL, TaskScratch scratch);
void forward_levels(const HybridJob& job, const ElementSet& set, TaskScratch scratch);
void inverse_levels(const HybridJob& job, const ElementSet& set, TaskScratch scratch);

/// out := x √2^e, any e. `spare` is a further element.
void multiply_by_root(const HybridJob& job, RingWord* out, const RingWord* x, std::uint64_t e, RingWord* spare);

/// xd := xa * xb in the ring, canonical result. Any of them may be the same. xa, xb: elements of forms, with residues in
/// their top words (coefficient_residues.h). `inner` elements have others of their array before and behind them, which
/// nobody else writes.
void ring_product(const HybridJob& job, RingWord* xd, const RingWord* xa, const RingWord* xb, TaskScratch scratch,
                  bool inner);

} // namespace zvp
