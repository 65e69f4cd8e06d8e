// Products of elements.

#include "multiply/basecase/mulb.h"
#include "multiply/fft/fft.h"
#include "multiply/hybrid/coefficient_residues.h"
#include "multiply/hybrid/element_passes.h"
#include "multiply/words/word_loops.h"

#include <cstring>

namespace zvp {

namespace {

void product_with_minus_one(const HybridJob& job, RingWord* xd, const RingWord* xa, const RingWord* xb, std::byte* M) {
    const std::size_t n = job.size.n;
    if (!is_minus_one(xb[n])) std::swap(xa, xb);
    // xb is -1.
    if (is_minus_one(xa[n])) {
        std::memset(xd, 0, 4 * (n + 1));
        xd[0] = 1;
        return;
    }
    RingWord* const copy = reinterpret_cast<RingWord*>(M); // without the residue in the top word
    std::memcpy(copy, xa, 4 * n);
    copy[n] = 0;
    job.kernels.rotate(xd, copy, n, 32 * std::uint64_t{n});
    job.kernels.normalize(xd, n);
}

void karatsuba_product(const HybridSize& size, RingWord* xd, const RingWord* xa, const RingWord* xb, std::byte* M,
                       const RingKernels& kernels) {
    const std::size_t n = size.n;
    auto* const product = reinterpret_cast<RingWord*>(M);
    if (xa == xb) {
        MULB::sqr(xa, n, product, M + 8 * n);
    } else {
        MULB::elm(xa, xb, n, product, M + 8 * n);
    }
    xd[n] = static_cast<RingWord>(-static_cast<int>(subtract_words(xd, product, product + n, n)));
    kernels.normalize(xd, n);
}

} // namespace

void ring_product(const HybridJob& job, RingWord* xd, const RingWord* xa, const RingWord* xb, TaskScratch scratch,
                  bool inner) {
    const HybridSize& size = job.size;
    if (is_minus_one(xa[size.n]) || is_minus_one(xb[size.n])) return product_with_minus_one(job, xd, xa, xb, scratch.M);
    if (size.n < least_fft_ring) return karatsuba_product(size, xd, xa, xb, scratch.M, job.kernels);
    if (xd != xa) std::memcpy(xd, xa, 4 * size.n);
    xd[size.n] = static_cast<RingWord>(xa == xb ? ring_sqr(job.tables, size.ring, xd, scratch.M, inner)
                                                : ring_mul(job.tables, size.ring, xd, xb, scratch.M, inner));
}

} // namespace zvp
