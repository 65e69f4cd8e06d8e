#pragma once
// Vectors of the avx2 kernel set: 4 doubles, or 4 64-bit integers, a vector. Include inside the set's target
// region.

#include "platform/simd/intrinsics.h"

namespace zvp::avx2 {

/// 64-bit integers, wrapping.
struct VecI {
    static constexpr std::size_t lanes = 4;

    __m256i v;

    ZVP_KERNEL_INLINE static VecI broadcast(std::int64_t x) { return {_mm256_set1_epi64x(x)}; }
    ZVP_KERNEL_INLINE static VecI load(const std::int64_t* p) {
        return {_mm256_load_si256(reinterpret_cast<const __m256i*>(p))};
    }
    ZVP_KERNEL_INLINE void store(std::int64_t* p) const { _mm256_store_si256(reinterpret_cast<__m256i*>(p), v); }

    ZVP_KERNEL_INLINE friend VecI operator+(VecI a, VecI b) { return {_mm256_add_epi64(a.v, b.v)}; }
    ZVP_KERNEL_INLINE friend VecI operator-(VecI a, VecI b) { return {_mm256_sub_epi64(a.v, b.v)}; }
    ZVP_KERNEL_INLINE friend VecI operator&(VecI a, VecI b) { return {_mm256_and_si256(a.v, b.v)}; }
    ZVP_KERNEL_INLINE friend VecI operator|(VecI a, VecI b) { return {_mm256_or_si256(a.v, b.v)}; }
    ZVP_KERNEL_INLINE friend VecI shift_left(VecI a, int bits) {
        return {_mm256_sll_epi64(a.v, _mm_cvtsi32_si128(bits))};
    }
    ZVP_KERNEL_INLINE friend VecI shift_right(VecI a, int bits) {
        return {_mm256_srl_epi64(a.v, _mm_cvtsi32_si128(bits))};
    }
};

/// Doubles.
struct VecD {
    static constexpr std::size_t lanes = 4;

    __m256d v;

    ZVP_KERNEL_INLINE static VecD broadcast(double x) { return {_mm256_set1_pd(x)}; }
    ZVP_KERNEL_INLINE static VecD load(const double* p) { return {_mm256_load_pd(p)}; }
    ZVP_KERNEL_INLINE void store(double* p) const { _mm256_store_pd(p, v); }
    ZVP_KERNEL_INLINE void store_unaligned(double* p) const { _mm256_storeu_pd(p, v); }

    ZVP_KERNEL_INLINE friend VecD operator+(VecD a, VecD b) { return {_mm256_add_pd(a.v, b.v)}; }
    ZVP_KERNEL_INLINE friend VecD operator-(VecD a, VecD b) { return {_mm256_sub_pd(a.v, b.v)}; }
    ZVP_KERNEL_INLINE friend VecD operator*(VecD a, VecD b) { return {_mm256_mul_pd(a.v, b.v)}; }
    ZVP_KERNEL_INLINE friend VecD operator/(VecD a, VecD b) { return {_mm256_div_pd(a.v, b.v)}; }
    /// a * b + c, a * b - c and c - a * b, each rounded once.
    ZVP_KERNEL_INLINE friend VecD fmadd(VecD a, VecD b, VecD c) { return {_mm256_fmadd_pd(a.v, b.v, c.v)}; }
    ZVP_KERNEL_INLINE friend VecD fmsub(VecD a, VecD b, VecD c) { return {_mm256_fmsub_pd(a.v, b.v, c.v)}; }
    ZVP_KERNEL_INLINE friend VecD fnmadd(VecD a, VecD b, VecD c) { return {_mm256_fnmadd_pd(a.v, b.v, c.v)}; }
    /// value where a == b, else 0.
    ZVP_KERNEL_INLINE friend VecD select_equal(VecD a, VecD b, VecD value) {
        return {_mm256_and_pd(_mm256_cmp_pd(a.v, b.v, _CMP_EQ_OQ), value.v)};
    }

    /// The bit patterns as integers, and back.
    ZVP_KERNEL_INLINE VecI bits() const { return {_mm256_castpd_si256(v)}; }
    ZVP_KERNEL_INLINE static VecD from_bits(VecI a) { return {_mm256_castsi256_pd(a.v)}; }
};

/// Transposes the square of the vectors' lanes.
ZVP_KERNEL_INLINE void transpose(VecD (&r)[4]) {
    const __m256d a = _mm256_unpacklo_pd(r[0].v, r[1].v), b = _mm256_unpackhi_pd(r[0].v, r[1].v);
    const __m256d c = _mm256_unpacklo_pd(r[2].v, r[3].v), d = _mm256_unpackhi_pd(r[2].v, r[3].v);
    r[0].v = _mm256_permute2f128_pd(a, c, 0x20);
    r[1].v = _mm256_permute2f128_pd(b, d, 0x20);
    r[2].v = _mm256_permute2f128_pd(a, c, 0x31);
    r[3].v = _mm256_permute2f128_pd(b, d, 0x31);
}

/// Eight 32-bit integers as doubles.
ZVP_KERNEL_INLINE void convert(__m256i integers, VecD (&out)[2]) {
    out[0].v = _mm256_cvtepi32_pd(_mm256_castsi256_si128(integers));
    out[1].v = _mm256_cvtepi32_pd(_mm256_extracti128_si256(integers, 1));
}

#include "platform/simd/balanced_fields.inl"

} // namespace zvp::avx2
