// The ring's arithmetic in the avx512 set.

#include "multiply/hybrid/kernels/kernel_tables.h"
#include "multiply/hybrid/residue.h"
#include "platform/simd/intrinsics.h"

#include <algorithm>
#include <cstring>
#include <type_traits>
#include <utility>

#include "platform/simd/target_avx512_begin.inl"

namespace zvp::avx512 {

namespace {

using Limb = std::uint64_t;

#include "multiply/hybrid/kernels/elements.inl"

/// Eight limbs of a vector. Limbs that carry out, and limbs that would if they took a carry in, become bits of two masks;
/// adding the masks as integers runs the carries through all limbs at once.
struct Block {
    static constexpr std::size_t limbs = 8;
    static constexpr bool many_registers = true;
    using Limbs = __mmask8;

    __m512i v;

    ZVP_KERNEL_INLINE static Block load(const RingWord* p) { return {_mm512_loadu_si512(p)}; }
    ZVP_KERNEL_INLINE void store(RingWord* p) const { _mm512_storeu_si512(p, v); }
    ZVP_KERNEL_INLINE friend Block add(Block a, Block b, unsigned& carry) {
        const Block sum = plus(a, b);
        return add_bits(sum, 2U * below(sum, a) + carry, carry);
    }
    ZVP_KERNEL_INLINE friend Block subtract(Block a, Block b, unsigned& borrow) {
        return subtract_bits(minus(a, b), 2U * below(a, b) + borrow, borrow);
    }
    /// a + 1 in each limb of the mask `in`, whose bits may go one beyond the block, with the carries that run; what leaves
    /// the block goes to `out`. No limb of all ones has the bit above it set in `in`.
    ZVP_KERNEL_INLINE friend Block add_bits(Block a, unsigned in, unsigned& out) {
        const __m512i ones = _mm512_set1_epi64(-1);
        const unsigned passing = _mm512_cmpeq_epi64_mask(a.v, ones), sum = in + passing;
        out = sum >> limbs;
        return {_mm512_mask_sub_epi64(a.v, static_cast<__mmask8>(sum ^ passing), a.v, ones)};
    }
    /// Likewise a - 1, which runs through zeros.
    ZVP_KERNEL_INLINE friend Block subtract_bits(Block a, unsigned in, unsigned& out) {
        const unsigned passing = _mm512_testn_epi64_mask(a.v, a.v), sum = in + passing;
        out = sum >> limbs;
        return {_mm512_mask_add_epi64(a.v, static_cast<__mmask8>(sum ^ passing), a.v, _mm512_set1_epi64(-1))};
    }
    ZVP_KERNEL_INLINE friend bool equal(Block a, Block b) { return _mm512_cmpneq_epi64_mask(a.v, b.v) == 0; }
    ZVP_KERNEL_INLINE friend Block complement(Block a) { return {_mm512_ternarylogic_epi64(a.v, a.v, a.v, 0x55)}; }
    ZVP_KERNEL_INLINE friend Block shift(Block a, Block below, int bits) {
        return {_mm512_or_si512(_mm512_sll_epi64(a.v, _mm_cvtsi32_si128(bits)),
                                _mm512_srl_epi64(below.v, _mm_cvtsi32_si128(64 - bits)))};
    }
    ZVP_KERNEL_INLINE static Block zero() { return {_mm512_setzero_si512()}; }
    ZVP_KERNEL_INLINE static Block broadcast(Limb limb) { return {_mm512_set1_epi64(static_cast<long long>(limb))}; }
    ZVP_KERNEL_INLINE friend Block plus(Block a, Block b) { return {_mm512_add_epi64(a.v, b.v)}; }
    ZVP_KERNEL_INLINE friend Block masked(Block a, Limb mask) {
        return {_mm512_and_si512(a.v, _mm512_set1_epi64(static_cast<long long>(mask)))};
    }
    ZVP_KERNEL_INLINE friend Block left(Block a, int bits) { return {_mm512_sll_epi64(a.v, _mm_cvtsi32_si128(bits))}; }
    ZVP_KERNEL_INLINE friend Block right(Block a, int bits) { return {_mm512_srl_epi64(a.v, _mm_cvtsi32_si128(bits))}; }

    ZVP_KERNEL_INLINE friend Block minus(Block a, Block b) { return {_mm512_sub_epi64(a.v, b.v)}; }
    /// The limbs of a that are less than b's.
    ZVP_KERNEL_INLINE friend Limbs below(Block a, Block b) { return _mm512_cmplt_epu64_mask(a.v, b.v); }
    ZVP_KERNEL_INLINE static unsigned bits_of(Limbs there) { return there; }
    ZVP_KERNEL_INLINE friend Block plus_one(Block a, Limbs there) {
        return {_mm512_mask_sub_epi64(a.v, there, a.v, _mm512_set1_epi64(-1))};
    }
    ZVP_KERNEL_INLINE friend Block less_one(Block a, Limbs there) {
        return {_mm512_mask_add_epi64(a.v, there, a.v, _mm512_set1_epi64(-1))};
    }
    ZVP_KERNEL_INLINE static Block no_count() { return zero(); }
    ZVP_KERNEL_INLINE friend Block lifted(Block a) { return a; }
    ZVP_KERNEL_INLINE friend Block lowered(Block a) { return a; }
    /// a - 1 in the limbs above those in `there`.
    ZVP_KERNEL_INLINE friend Block less_one_above(Block a, Limbs there) {
        return less_one(a, static_cast<Limbs>(there << 1));
    }
    /// Counts as they are kept for the block above.
    ZVP_KERNEL_INLINE friend Block turned_up(Block count) { return count; }
    /// Each limb of `now` at the place of the next; the top one of `before`, which the block below kept, at the lowest.
    ZVP_KERNEL_INLINE friend Block moved_up(Block now, Block before) {
        return {_mm512_alignr_epi64(now.v, before.v, 7)};
    }
    /// In the top bits of limbs: which of them change from a, lifted, to b.
    ZVP_KERNEL_INLINE static Block no_changes() { return zero(); }
    ZVP_KERNEL_INLINE friend Block with_changes(Block changes, Block a, Block b) {
        return {_mm512_ternarylogic_epi64(changes.v, a.v, b.v, 0xF6)};
    }
    ZVP_KERNEL_INLINE friend bool any(Block changes) { return _mm512_movepi64_mask(changes.v) != 0; }
    ZVP_KERNEL_INLINE friend Block add_to_top(Block a, Limb count) {
        return {_mm512_mask_add_epi64(a.v, 0x80, a.v, _mm512_set1_epi64(static_cast<long long>(count)))};
    }
    ZVP_KERNEL_INLINE friend Limb top_count(Block a) {
        return static_cast<Limb>(_mm_extract_epi64(_mm512_extracti64x2_epi64(a.v, 3), 1));
    }
};

using Lanes = Block;

#include "multiply/hybrid/kernels/block_sums.inl"
#include "multiply/hybrid/kernels/ring_kernels.inl"

} // namespace

const RingKernels& ring_kernel_table() { return kernels; }

} // namespace zvp::avx512

#include "platform/simd/target_end.inl"
