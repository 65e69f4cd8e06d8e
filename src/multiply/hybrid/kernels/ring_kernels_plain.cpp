// The ring's arithmetic in 64-bit registers, for the sets without masks: a vector's carries would have to leave it.

#include "multiply/hybrid/kernels/kernel_tables.h"
#include "multiply/hybrid/residue.h"
#include "platform/simd/intrinsics.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace zvp::plain {

namespace {

using Limb = std::uint64_t;

/// Four limbs in registers, so that their carries stay in the flag.
struct Block {
    static constexpr std::size_t limbs = 4;
    static constexpr bool lazy_carries = false;

    unsigned long long v[limbs];

    ZVP_KERNEL_INLINE static Block load(const RingWord* p) {
        Block block;
        std::memcpy(block.v, p, sizeof block.v);
        return block;
    }
    ZVP_KERNEL_INLINE void store(RingWord* p) const { std::memcpy(p, v, sizeof v); }
    ZVP_KERNEL_INLINE friend Block add(Block a, const Block& b, unsigned& carry) {
        auto c = static_cast<unsigned char>(carry);
        for (std::size_t i = 0; i < limbs; ++i) c = _addcarry_u64(c, a.v[i], b.v[i], &a.v[i]);
        carry = c;
        return a;
    }
    ZVP_KERNEL_INLINE friend Block subtract(Block a, const Block& b, unsigned& borrow) {
        auto c = static_cast<unsigned char>(borrow);
        for (std::size_t i = 0; i < limbs; ++i) c = _subborrow_u64(c, a.v[i], b.v[i], &a.v[i]);
        borrow = c;
        return a;
    }
    ZVP_KERNEL_INLINE friend Block complement(Block a) {
        for (auto& limb : a.v) limb = ~limb;
        return a;
    }
    ZVP_KERNEL_INLINE friend Block shift(Block a, const Block& below, int bits) {
        for (std::size_t i = 0; i < limbs; ++i) a.v[i] = a.v[i] << bits | below.v[i] >> (64 - bits);
        return a;
    }
    ZVP_KERNEL_INLINE static Block zero() { return {}; }
    ZVP_KERNEL_INLINE friend Block plus(Block a, const Block& b) {
        for (std::size_t i = 0; i < limbs; ++i) a.v[i] += b.v[i];
        return a;
    }
    ZVP_KERNEL_INLINE friend Block masked(Block a, Limb mask) {
        for (auto& limb : a.v) limb &= mask;
        return a;
    }
    ZVP_KERNEL_INLINE friend Block left(Block a, int bits) {
        for (auto& limb : a.v) limb <<= bits;
        return a;
    }
    ZVP_KERNEL_INLINE friend Block right(Block a, int bits) {
        for (auto& limb : a.v) limb >>= bits;
        return a;
    }
};

#include "multiply/hybrid/kernels/ring_kernels.inl"

} // namespace

const RingKernels& ring_kernel_table() { return kernels; }

} // namespace zvp::plain
