#pragma once
// Vectors of the sse3 kernel set: 2 doubles, or 2 64-bit integers, a vector. Include inside the set's target
// region.

#include "platform/simd/intrinsics.h"

namespace zvp::sse3 {

/// 64-bit integers, wrapping.
struct VecI {
    static constexpr std::size_t lanes = 2;

    __m128i v;

    ZVP_KERNEL_INLINE static VecI broadcast(std::int64_t x) { return {_mm_set1_epi64x(x)}; }
    ZVP_KERNEL_INLINE static VecI load(const std::int64_t* p) {
        return {_mm_load_si128(reinterpret_cast<const __m128i*>(p))};
    }
    ZVP_KERNEL_INLINE void store(std::int64_t* p) const { _mm_store_si128(reinterpret_cast<__m128i*>(p), v); }

    ZVP_KERNEL_INLINE friend VecI operator+(VecI a, VecI b) { return {_mm_add_epi64(a.v, b.v)}; }
    ZVP_KERNEL_INLINE friend VecI operator-(VecI a, VecI b) { return {_mm_sub_epi64(a.v, b.v)}; }
    ZVP_KERNEL_INLINE friend VecI operator&(VecI a, VecI b) { return {_mm_and_si128(a.v, b.v)}; }
    ZVP_KERNEL_INLINE friend VecI shift_left(VecI a, int bits) { return {_mm_sll_epi64(a.v, _mm_cvtsi32_si128(bits))}; }
    ZVP_KERNEL_INLINE friend VecI shift_right(VecI a, int bits) {
        return {_mm_srl_epi64(a.v, _mm_cvtsi32_si128(bits))};
    }
};

/// Doubles.
struct VecD {
    static constexpr std::size_t lanes = 2;

    __m128d v;

    ZVP_KERNEL_INLINE static VecD broadcast(double x) { return {_mm_set1_pd(x)}; }
    ZVP_KERNEL_INLINE static VecD load(const double* p) { return {_mm_load_pd(p)}; }
    ZVP_KERNEL_INLINE void store(double* p) const { _mm_store_pd(p, v); }

    ZVP_KERNEL_INLINE friend VecD operator+(VecD a, VecD b) { return {_mm_add_pd(a.v, b.v)}; }
    ZVP_KERNEL_INLINE friend VecD operator-(VecD a, VecD b) { return {_mm_sub_pd(a.v, b.v)}; }
    ZVP_KERNEL_INLINE friend VecD operator*(VecD a, VecD b) { return {_mm_mul_pd(a.v, b.v)}; }
    ZVP_KERNEL_INLINE friend VecD operator/(VecD a, VecD b) { return {_mm_div_pd(a.v, b.v)}; }
    /// value where a == b, else 0.
    ZVP_KERNEL_INLINE friend VecD select_equal(VecD a, VecD b, VecD value) {
        return {_mm_and_pd(_mm_cmpeq_pd(a.v, b.v), value.v)};
    }

    /// The bit patterns as integers, and back.
    ZVP_KERNEL_INLINE VecI bits() const { return {_mm_castpd_si128(v)}; }
    ZVP_KERNEL_INLINE static VecD from_bits(VecI a) { return {_mm_castsi128_pd(a.v)}; }
};

} // namespace zvp::sse3
