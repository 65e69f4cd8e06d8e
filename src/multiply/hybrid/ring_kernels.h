#pragma once
// Arithmetic modulo 2^N + 1 on whole elements, by which the hybrid transform multiplies with roots of unity.
//
// An element is n words and a top word behind them, N = 32 n, n a multiple of 4. The top word is signed and counts 2^N:
// sums and differences leave their carries there and are brought back by the next rotation, or by normalize(). Elements
// are aligned to words. "Canonical" is 0 .. 2^N, with a top word of 0, or 1 for 2^N alone.

#include "platform/kernel_set.h"

#include <cstddef>
#include <cstdint>

namespace zvp {

using RingWord = std::uint32_t;

/// Where not told otherwise, operands don't overlap; n is in words.
struct RingKernels {
    /// x := x + y, z := x - y. z may be y.
    void (*butterfly)(RingWord* x, RingWord* y, RingWord* z, std::size_t n);

    /// With J = 2^(N/2), a square root of -1:
    /// x0 := x0 + x1 + x2 + x3, z1 := x0 - x1 + x2 - x3, z2 := x0 - x2 + J (x1 - x3), z3 := x0 - x2 - J (x1 - x3).
    /// Each z may be any of x1, x2, x3.
    void (*forward4)(RingWord* const (&x)[4], RingWord* const (&z)[3], std::size_t n);

    /// forward4() of numbers of n/2 - 1 words, which are read at `in`, x0 where it was; with `two`, the last two are zero
    /// and not read. in[0] may be x0.
    void (*load4)(const RingWord* const (&in)[4], RingWord* x0, RingWord* const (&z)[3], std::size_t n, bool two);

    /// Back from forward4(), times 4: takes x[0] and z, leaves all of x. Each z may be any of x1, x2, x3.
    void (*inverse4)(RingWord* const (&x)[4], RingWord* const (&z)[3], std::size_t n);

    /// z := x * 2^s, 0 <= s < 2 N.
    void (*rotate)(RingWord* z, const RingWord* x, std::size_t n, std::uint64_t s);

    /// x := x - y.
    void (*subtract)(RingWord* x, const RingWord* y, std::size_t n);

    /// x := its canonical form.
    void (*normalize)(RingWord* x, std::size_t n);

    /// The number of any count of words at x modulo 2^31 - 1, below that.
    std::uint32_t (*residue)(const RingWord* x, std::size_t words);
};

const RingKernels& ring_kernels(platform::KernelSet set);

} // namespace zvp
