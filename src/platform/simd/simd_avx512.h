#pragma once
// Vectors of the avx512 kernel set: 8 doubles, or 8 64-bit integers, a vector. Include inside the set's target
// region.

#include "platform/simd/intrinsics.h"

namespace zvp::avx512 {

/// 64-bit integers, wrapping.
struct VecI {
    static constexpr std::size_t lanes = 8;

    __m512i v;

    ZVP_KERNEL_INLINE static VecI broadcast(std::int64_t x) { return {_mm512_set1_epi64(x)}; }
    ZVP_KERNEL_INLINE static VecI load(const std::int64_t* p) {
        return {_mm512_load_si512(reinterpret_cast<const __m512i*>(p))};
    }
    ZVP_KERNEL_INLINE void store(std::int64_t* p) const { _mm512_store_si512(reinterpret_cast<__m512i*>(p), v); }

    ZVP_KERNEL_INLINE friend VecI operator+(VecI a, VecI b) { return {_mm512_add_epi64(a.v, b.v)}; }
    ZVP_KERNEL_INLINE friend VecI operator-(VecI a, VecI b) { return {_mm512_sub_epi64(a.v, b.v)}; }
    ZVP_KERNEL_INLINE friend VecI operator&(VecI a, VecI b) { return {_mm512_and_si512(a.v, b.v)}; }
    ZVP_KERNEL_INLINE friend VecI operator|(VecI a, VecI b) { return {_mm512_or_si512(a.v, b.v)}; }
    ZVP_KERNEL_INLINE friend VecI shift_left(VecI a, int bits) {
        return {_mm512_sll_epi64(a.v, _mm_cvtsi32_si128(bits))};
    }
    ZVP_KERNEL_INLINE friend VecI shift_right(VecI a, int bits) {
        return {_mm512_srl_epi64(a.v, _mm_cvtsi32_si128(bits))};
    }
};

/// Doubles.
struct VecD {
    static constexpr std::size_t lanes = 8;

    __m512d v;

    ZVP_KERNEL_INLINE static VecD broadcast(double x) { return {_mm512_set1_pd(x)}; }
    ZVP_KERNEL_INLINE static VecD load(const double* p) { return {_mm512_load_pd(p)}; }
    ZVP_KERNEL_INLINE void store(double* p) const { _mm512_store_pd(p, v); }
    ZVP_KERNEL_INLINE void store_unaligned(double* p) const { _mm512_storeu_pd(p, v); }

    ZVP_KERNEL_INLINE friend VecD operator+(VecD a, VecD b) { return {_mm512_add_pd(a.v, b.v)}; }
    ZVP_KERNEL_INLINE friend VecD operator-(VecD a, VecD b) { return {_mm512_sub_pd(a.v, b.v)}; }
    ZVP_KERNEL_INLINE friend VecD operator*(VecD a, VecD b) { return {_mm512_mul_pd(a.v, b.v)}; }
    ZVP_KERNEL_INLINE friend VecD operator/(VecD a, VecD b) { return {_mm512_div_pd(a.v, b.v)}; }
    /// a * b + c, a * b - c and c - a * b, each rounded once.
    ZVP_KERNEL_INLINE friend VecD fmadd(VecD a, VecD b, VecD c) { return {_mm512_fmadd_pd(a.v, b.v, c.v)}; }
    ZVP_KERNEL_INLINE friend VecD fmsub(VecD a, VecD b, VecD c) { return {_mm512_fmsub_pd(a.v, b.v, c.v)}; }
    ZVP_KERNEL_INLINE friend VecD fnmadd(VecD a, VecD b, VecD c) { return {_mm512_fnmadd_pd(a.v, b.v, c.v)}; }
    /// value where a == b, else 0.
    ZVP_KERNEL_INLINE friend VecD select_equal(VecD a, VecD b, VecD value) {
        return {_mm512_maskz_mov_pd(_mm512_cmp_pd_mask(a.v, b.v, _CMP_EQ_OQ), value.v)};
    }

    /// The bit patterns as integers, and back.
    ZVP_KERNEL_INLINE VecI bits() const { return {_mm512_castpd_si512(v)}; }
    ZVP_KERNEL_INLINE static VecD from_bits(VecI a) { return {_mm512_castsi512_pd(a.v)}; }
};

/// Transposes the square of the vectors' lanes.
ZVP_KERNEL_INLINE void transpose(VecD (&r)[8]) {
    __m512d p[8], q[8];
    for (int i = 0; i < 8; i += 2) {
        p[i] = _mm512_unpacklo_pd(r[i].v, r[i + 1].v);
        p[i + 1] = _mm512_unpackhi_pd(r[i].v, r[i + 1].v);
    }
    const __m512i even = _mm512_setr_epi64(0, 1, 8, 9, 4, 5, 12, 13),
                  odd = _mm512_setr_epi64(2, 3, 10, 11, 6, 7, 14, 15);
    for (int half = 0; half < 2; ++half)
        for (int i = 0; i < 2; ++i) {
            q[4 * half + i] = _mm512_permutex2var_pd(p[4 * half + i], even, p[4 * half + i + 2]);
            q[4 * half + i + 2] = _mm512_permutex2var_pd(p[4 * half + i], odd, p[4 * half + i + 2]);
        }
    for (int i = 0; i < 4; ++i) {
        r[i].v = _mm512_shuffle_f64x2(q[i], q[i + 4], 0x44);
        r[i + 4].v = _mm512_shuffle_f64x2(q[i], q[i + 4], 0xEE);
    }
}

/// Eight 32-bit integers as doubles.
ZVP_KERNEL_INLINE void convert(__m256i integers, VecD (&out)[1]) { out[0].v = _mm512_cvtepi32_pd(integers); }

#include "platform/simd/balanced_fields.inl"

} // namespace zvp::avx512
