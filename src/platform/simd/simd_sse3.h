#pragma once
// Vectors of the sse3 kernel set: 2 doubles, or 2 64-bit integers, a vector. Include inside the set's target
// region.

#include "platform/simd/intrinsics.h"

#include <cstring>

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
    ZVP_KERNEL_INLINE friend VecI operator|(VecI a, VecI b) { return {_mm_or_si128(a.v, b.v)}; }
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
    ZVP_KERNEL_INLINE void store_unaligned(double* p) const { _mm_storeu_pd(p, v); }

    ZVP_KERNEL_INLINE friend VecD operator+(VecD a, VecD b) { return {_mm_add_pd(a.v, b.v)}; }
    ZVP_KERNEL_INLINE friend VecD operator-(VecD a, VecD b) { return {_mm_sub_pd(a.v, b.v)}; }
    ZVP_KERNEL_INLINE friend VecD operator*(VecD a, VecD b) { return {_mm_mul_pd(a.v, b.v)}; }
    ZVP_KERNEL_INLINE friend VecD operator/(VecD a, VecD b) { return {_mm_div_pd(a.v, b.v)}; }
    /// a * b + c, a * b - c and c - a * b; without fused operations in this set, each rounded twice.
    ZVP_KERNEL_INLINE friend VecD fmadd(VecD a, VecD b, VecD c) { return a * b + c; }
    ZVP_KERNEL_INLINE friend VecD fmsub(VecD a, VecD b, VecD c) { return a * b - c; }
    ZVP_KERNEL_INLINE friend VecD fnmadd(VecD a, VecD b, VecD c) { return c - a * b; }
    /// value where a == b, else 0.
    ZVP_KERNEL_INLINE friend VecD select_equal(VecD a, VecD b, VecD value) {
        return {_mm_and_pd(_mm_cmpeq_pd(a.v, b.v), value.v)};
    }

    /// The bit patterns as integers, and back.
    ZVP_KERNEL_INLINE VecI bits() const { return {_mm_castpd_si128(v)}; }
    ZVP_KERNEL_INLINE static VecD from_bits(VecI a) { return {_mm_castsi128_pd(a.v)}; }
};

/// Transposes the square of the vectors' lanes.
ZVP_KERNEL_INLINE void transpose(VecD (&r)[2]) {
    const __m128d first = r[0].v;
    r[0].v = _mm_unpacklo_pd(first, r[1].v);
    r[1].v = _mm_unpackhi_pd(first, r[1].v);
}

/// Reads runs of 8 neighbouring bit fields of one width, little-endian, as balanced digits: a field whose top bit is set
/// counts as negative, 2^width less, and the field above it as one more. A sum of fields times powers of 2^width so stays
/// what it was, with digits of at most 2^(width - 1).
class BalancedFields {
public:
    static constexpr std::size_t fields = 8;

    /// width: 1 to 21 bits.
    ZVP_KERNEL_INLINE explicit BalancedFields(unsigned width_) : width(width_) {}

    /// The fields that begin at p. Reads p[-1 .. 31]; the first byte's top bit is that of the field below.
    ZVP_KERNEL_INLINE void read(const std::byte* p, VecD (&out)[4]) const {
        for (unsigned i = 0; i < 4; ++i)
            out[i].v = _mm_cvtepi32_pd(_mm_setr_epi32(digit(p - 1, 2 * i), digit(p - 1, 2 * i + 1), 0, 0));
    }

private:
    ZVP_KERNEL_INLINE int digit(const std::byte* p, unsigned i) const {
        const unsigned bit = i * width + 7;
        std::uint32_t word;
        std::memcpy(&word, p + bit / 8, sizeof word);
        word >>= bit % 8;
        return (static_cast<std::int32_t>(word << (31 - width)) >> (32 - width)) + static_cast<int>(word & 1);
    }

    unsigned width;
};

} // namespace zvp::sse3
