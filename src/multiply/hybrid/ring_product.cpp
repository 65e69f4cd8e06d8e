// Products of elements.

#include "multiply/basecase/mulb.h"
#include "multiply/fft/fft.h"
#include "multiply/hybrid/element_passes.h"
#include "multiply/words/word_loops.h"

#include <cstring>

namespace zvp {

namespace {

/// xd := -x.
void negate(const HybridJob& job, RingWord* xd, const RingWord* x) {
    job.kernels.rotate(xd, x, job.size.n, 32 * std::uint64_t{job.size.n});
    job.kernels.normalize(xd, job.size.n);
}

/// The top word is set: x is 2^N, which is -1.
bool is_minus_one(const HybridSize& size, const RingWord* x) { return x[size.n] != 0; }

void product_with_minus_one(const HybridJob& job, RingWord* xd, const RingWord* xa, const RingWord* xb) {
    const HybridSize& size = job.size;
    if (!is_minus_one(size, xb)) std::swap(xa, xb);
    // xb is -1.
    if (is_minus_one(size, xa)) {
        std::memset(xd, 0, 4 * size.stride);
        xd[0] = 1;
    } else if (xa != xd) {
        negate(job, xd, xa);
    } else {
        RingWord* const copy = reinterpret_cast<RingWord*>(job.M);
        std::memcpy(copy, xa, 4 * size.stride);
        negate(job, xd, copy);
    }
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

void ring_product(const HybridJob& job, RingWord* xd, const RingWord* xa, const RingWord* xb, TaskScratch scratch) {
    const HybridSize& size = job.size;
    if (is_minus_one(size, xa) || is_minus_one(size, xb)) {
        HybridJob own = job;
        own.M = scratch.M;
        return product_with_minus_one(own, xd, xa, xb);
    }
    if (size.n < least_fft_ring) return karatsuba_product(size, xd, xa, xb, scratch.M, job.kernels);
    if (xd != xa) std::memcpy(xd, xa, 4 * size.n);
    xd[size.n] = static_cast<RingWord>(xa == xb ? ring_sqr(job.tables, size.ring, xd, scratch.M)
                                                : ring_mul(job.tables, size.ring, xd, xb, scratch.M));
}

} // namespace zvp
