// The ring's arithmetic in the avx2 set.

#include "multiply/hybrid/kernels/kernel_tables.h"
#include "multiply/hybrid/residue.h"
#include "platform/simd/intrinsics.h"

#include <algorithm>
#include <cstring>
#include <type_traits>
#include <utility>

#include "platform/simd/target_avx2_begin.inl"

namespace zvp::avx2 {

namespace {

using Limb = std::uint64_t;

#include "multiply/hybrid/kernels/elements.inl"

/// Four limbs of a vector. Vectors compare signed numbers only: what is to be compared is lifted by 2^63, and so are
/// counts, which bring the sums that they are added to down again.
struct Block {
    static constexpr std::size_t limbs = 4;
    static constexpr bool many_registers = false;
    using Limbs = __m256i; // -1 in each limb that belongs to the set

    __m256i v;

    ZVP_KERNEL_INLINE static Block load(const RingWord* p) {
        return {_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p))};
    }
    ZVP_KERNEL_INLINE void store(RingWord* p) const { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }
    ZVP_KERNEL_INLINE static Block zero() { return {_mm256_setzero_si256()}; }
    ZVP_KERNEL_INLINE static Block broadcast(Limb limb) { return {_mm256_set1_epi64x(static_cast<long long>(limb))}; }
    ZVP_KERNEL_INLINE friend Block add(Block a, Block b, unsigned& carry) {
        const Block from = lifted(a), sum = plus(from, b);
        return add_bits(lowered(sum), 2 * bits_of(below(sum, from)) + carry, carry);
    }
    ZVP_KERNEL_INLINE friend Block subtract(Block a, Block b, unsigned& borrow) {
        const Block from = lifted(a), difference = minus(from, b);
        return subtract_bits(lowered(difference), 2 * bits_of(below(from, difference)) + borrow, borrow);
    }
    /// a + 1 in each limb of the mask `in`, whose bits may go one beyond the block, with the carries that run; what leaves
    /// the block goes to `out`. No limb of all ones has the bit above it set in `in`.
    ZVP_KERNEL_INLINE friend Block add_bits(Block a, unsigned in, unsigned& out) {
        const unsigned passing = bits_of(_mm256_cmpeq_epi64(a.v, broadcast(~Limb{0}).v)), sum = in + passing;
        out = sum >> limbs;
        return plus_one(a, limbs_of(sum ^ passing));
    }
    /// Likewise a - 1, which runs through zeros.
    ZVP_KERNEL_INLINE friend Block subtract_bits(Block a, unsigned in, unsigned& out) {
        const unsigned passing = bits_of(_mm256_cmpeq_epi64(a.v, zero().v)), sum = in + passing;
        out = sum >> limbs;
        return less_one(a, limbs_of(sum ^ passing));
    }
    ZVP_KERNEL_INLINE friend bool equal(Block a, Block b) { return bits_of(_mm256_cmpeq_epi64(a.v, b.v)) == 15; }
    ZVP_KERNEL_INLINE friend Block complement(Block a) { return {_mm256_xor_si256(a.v, _mm256_set1_epi64x(-1))}; }
    ZVP_KERNEL_INLINE friend Block shift(Block a, Block below, int bits) {
        return {_mm256_or_si256(_mm256_sll_epi64(a.v, _mm_cvtsi32_si128(bits)),
                                _mm256_srl_epi64(below.v, _mm_cvtsi32_si128(64 - bits)))};
    }
    ZVP_KERNEL_INLINE friend Block plus(Block a, Block b) { return {_mm256_add_epi64(a.v, b.v)}; }
    ZVP_KERNEL_INLINE friend Block masked(Block a, Limb mask) { return {_mm256_and_si256(a.v, broadcast(mask).v)}; }
    ZVP_KERNEL_INLINE friend Block left(Block a, int bits) { return {_mm256_sll_epi64(a.v, _mm_cvtsi32_si128(bits))}; }
    ZVP_KERNEL_INLINE friend Block right(Block a, int bits) { return {_mm256_srl_epi64(a.v, _mm_cvtsi32_si128(bits))}; }

    ZVP_KERNEL_INLINE friend Block minus(Block a, Block b) { return {_mm256_sub_epi64(a.v, b.v)}; }
    ZVP_KERNEL_INLINE friend Block lifted(Block a) { return {_mm256_xor_si256(a.v, broadcast(lift).v)}; }
    ZVP_KERNEL_INLINE friend Block lowered(Block a) { return lifted(a); }
    /// The limbs of a that are less than b's, both lifted.
    ZVP_KERNEL_INLINE friend Limbs below(Block a, Block b) { return _mm256_cmpgt_epi64(b.v, a.v); }
    ZVP_KERNEL_INLINE static unsigned bits_of(Limbs there) {
        return static_cast<unsigned>(_mm256_movemask_pd(_mm256_castsi256_pd(there)));
    }
    ZVP_KERNEL_INLINE friend Block plus_one(Block a, Limbs there) { return {_mm256_sub_epi64(a.v, there)}; }
    ZVP_KERNEL_INLINE friend Block less_one(Block a, Limbs there) { return {_mm256_add_epi64(a.v, there)}; }
    ZVP_KERNEL_INLINE static Block no_count() { return broadcast(lift); }
    /// a - 1 in the limbs above those in `there`.
    ZVP_KERNEL_INLINE friend Block less_one_above(Block a, Limbs there) {
        return less_one(a, moved_up(turned_up(Block{there}), zero()).v);
    }
    /// Counts as they are kept for the block above: each at the place of the next, the top one at the lowest.
    ZVP_KERNEL_INLINE friend Block turned_up(Block count) { return {_mm256_permute4x64_epi64(count.v, 0x93)}; }
    /// What was kept, with the lowest limb of what the block below kept.
    ZVP_KERNEL_INLINE friend Block moved_up(Block now, Block before) {
        return {_mm256_blend_epi32(now.v, before.v, 0x03)};
    }
    /// In the top bits of limbs: which of them don't change from a, lifted, to b.
    ZVP_KERNEL_INLINE static Block no_changes() { return broadcast(~Limb{0}); }
    ZVP_KERNEL_INLINE friend Block with_changes(Block changes, Block a, Block b) {
        return {_mm256_and_si256(changes.v, _mm256_xor_si256(a.v, b.v))};
    }
    ZVP_KERNEL_INLINE friend bool any(Block changes) {
        return _mm256_movemask_pd(_mm256_castsi256_pd(changes.v)) != 15;
    }
    ZVP_KERNEL_INLINE friend Block add_to_top(Block a, Limb count) {
        return {_mm256_add_epi64(a.v, _mm256_set_epi64x(0, 0, 0, static_cast<long long>(count)))};
    }
    ZVP_KERNEL_INLINE friend Limb top_count(Block a) {
        return static_cast<Limb>(_mm_cvtsi128_si64(_mm256_castsi256_si128(a.v))) - lift;
    }

private:
    static constexpr Limb lift = Limb{1} << 63;

    /// The limbs that are bits of a mask; further bits don't matter.
    ZVP_KERNEL_INLINE static Limbs limbs_of(unsigned mask) {
        const __m256i each = _mm256_set_epi64x(8, 4, 2, 1);
        return _mm256_cmpeq_epi64(_mm256_and_si256(_mm256_set1_epi64x(mask), each), each);
    }
};

using Lanes = Block;

#include "multiply/hybrid/kernels/block_sums.inl"
#include "multiply/hybrid/kernels/ring_kernels.inl"

} // namespace

const RingKernels& ring_kernel_table() { return kernels; }

} // namespace zvp::avx2

#include "platform/simd/target_end.inl"
