// The ring's arithmetic for sets whose vectors can't compare limbs: sums run in 64-bit registers.

#include "multiply/hybrid/kernels/kernel_tables.h"
#include "multiply/hybrid/residue.h"
#include "multiply/words/carry_chain.h"
#include "platform/simd/intrinsics.h"

#include <algorithm>
#include <cstring>
#include <type_traits>
#include <utility>

namespace zvp::sse3 {

namespace {

using Limb = std::uint64_t;

#include "multiply/hybrid/kernels/elements.inl"

/// Two limbs of a vector.
struct Lanes {
    static constexpr std::size_t limbs = 2;

    __m128i v;

    ZVP_KERNEL_INLINE static Lanes load(const RingWord* p) {
        return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))};
    }
    ZVP_KERNEL_INLINE void store(RingWord* p) const { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }
    ZVP_KERNEL_INLINE static Lanes zero() { return {_mm_setzero_si128()}; }
    ZVP_KERNEL_INLINE static Lanes broadcast(Limb limb) { return {_mm_set1_epi64x(static_cast<long long>(limb))}; }
    ZVP_KERNEL_INLINE friend bool equal(Lanes a, Lanes b) {
        return _mm_movemask_epi8(_mm_cmpeq_epi32(a.v, b.v)) == 0xFFFF;
    }
    ZVP_KERNEL_INLINE friend Lanes complement(Lanes a) { return {_mm_xor_si128(a.v, _mm_set1_epi64x(-1))}; }
    ZVP_KERNEL_INLINE friend Lanes shift(Lanes a, Lanes below, int bits) {
        return {_mm_or_si128(_mm_sll_epi64(a.v, _mm_cvtsi32_si128(bits)),
                             _mm_srl_epi64(below.v, _mm_cvtsi32_si128(64 - bits)))};
    }
    ZVP_KERNEL_INLINE friend Lanes plus(Lanes a, Lanes b) { return {_mm_add_epi64(a.v, b.v)}; }
    ZVP_KERNEL_INLINE friend Lanes masked(Lanes a, Limb mask) { return {_mm_and_si128(a.v, broadcast(mask).v)}; }
    ZVP_KERNEL_INLINE friend Lanes left(Lanes a, int bits) { return {_mm_sll_epi64(a.v, _mm_cvtsi32_si128(bits))}; }
    ZVP_KERNEL_INLINE friend Lanes right(Lanes a, int bits) { return {_mm_srl_epi64(a.v, _mm_cvtsi32_si128(bits))}; }
};

/// As many limbs as are summed at once: what they leave for the second sums stays in the first cache.
constexpr std::size_t strip_limbs = 64;

void add_subtract_apart(RingWord* sum, RingWord* difference, const RingWord* a, const RingWord* b, std::size_t limbs,
                        unsigned& carry, unsigned& borrow) {
    bool carries = carry != 0, borrows = borrow != 0;
    add_subtract_chains(sum, difference, a, b, limbs, carries, borrows);
    carry = carries;
    borrow = borrows;
}

/// Each result may be an operand.
void add_subtract(RingWord* sum, RingWord* difference, const RingWord* a, const RingWord* b, std::size_t limbs,
                  unsigned& carry, unsigned& borrow) {
    if (difference != a && difference != b) return add_subtract_apart(sum, difference, a, b, limbs, carry, borrow);
    RingWord differences[2 * strip_limbs];
    for (std::size_t i = 0; i < limbs; i += strip_limbs) {
        const std::size_t count = std::min(strip_limbs, limbs - i), w = 2 * i;
        add_subtract_apart(sum + w, differences, a + w, b + w, count, carry, borrow);
        std::memcpy(difference + w, differences, 8 * count);
    }
}

/// x -= y; returns the borrow.
unsigned subtract_run(RingWord* x, const RingWord* y, std::size_t limbs) {
    return subtract_chain(x, x, y, limbs, false);
}

/// The first sums and differences of a strip, then the second.
class Radix4 {
public:
    explicit Radix4(const Radix4Operands& operands) : o(operands) {}

    void run(std::size_t count) {
        for (std::size_t i = 0; i < count; i += strip_limbs) step(2 * i, std::min(strip_limbs, count - i));
    }

    /// What leaves half h of result i.
    Wide left(int i, int h) const {
        const Wide last = wide(second[i][h]);
        switch (i) {
        case 0: return wide(first[0][h]) + wide(first[2][h]) + last;
        case 1: return wide(first[0][h]) - wide(first[2][h]) - last;
        default: break;
        }
        const bool plus = (i == 2) == (h == 1);
        const Wide other = wide(first[3][1 - h]) - last;
        return -wide(first[1][h]) + (plus ? -other : other);
    }

private:
    void step(std::size_t w, std::size_t count) {
        RingWord u[2][2 * strip_limbs], d[2][2 * strip_limbs], v[2][2 * strip_limbs], e[2][2 * strip_limbs];
        const std::size_t places[2]{w, o.half + w};
        for (int h = 0; h < 2; ++h) {
            const std::size_t at = places[h];
            add_subtract_apart(u[h], d[h], o.in[0] + at, o.in[1] + at, count, first[0][h], first[1][h]);
            add_subtract_apart(v[h], e[h], o.in[2] + at, o.in[3] + at, count, first[2][h], first[3][h]);
        }
        for (int h = 0; h < 2; ++h) {
            const std::size_t at = places[h];
            add_subtract_apart(o.out[0] + at, o.out[1] + at, u[h], v[h], count, second[0][h], second[1][h]);
        }
        add_subtract_apart(o.out[3] + w, o.out[2] + w, d[0], e[1], count, second[3][0], second[2][0]);
        add_subtract_apart(o.out[2] + places[1], o.out[3] + places[1], d[1], e[0], count, second[2][1], second[3][1]);
    }

    Radix4Operands o;
    unsigned first[4][2]{}, second[4][2]{};
};

#include "multiply/hybrid/kernels/ring_kernels.inl"

} // namespace

const RingKernels& ring_kernel_table() { return kernels; }

} // namespace zvp::sse3
