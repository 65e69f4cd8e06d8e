// Vectors of bytes in the sse3 set: what the digit kernels need beside VecI.

constexpr std::size_t vector_bytes = 16;

ZVP_KERNEL_INLINE VecI load_bytes(const void* p) { return {_mm_loadu_si128(static_cast<const __m128i*>(p))}; }

template <int bits>
ZVP_KERNEL_INLINE VecI up(VecI a) {
    return {_mm_slli_epi64(a.v, bits)};
}
template <int bits>
ZVP_KERNEL_INLINE VecI down(VecI a) {
    return {_mm_srli_epi64(a.v, bits)};
}

/// The products of the low halves of the 64-bit lanes.
ZVP_KERNEL_INLINE VecI multiply_low(VecI a, VecI b) { return {_mm_mul_epu32(a.v, b.v)}; }

/// Neighbours a, b become a * factor + b, a being at the lower address: bytes to 16 bits, 16 to 32 bits.
template <int factor>
ZVP_KERNEL_INLINE VecI join_bytes(VecI a) {
    const __m128i first = _mm_and_si128(a.v, _mm_set1_epi16(0xFF));
    return {_mm_add_epi16(_mm_mullo_epi16(first, _mm_set1_epi16(factor)), _mm_srli_epi16(a.v, 8))};
}
template <int factor>
ZVP_KERNEL_INLINE VecI join_shorts(VecI a) {
    return {_mm_madd_epi16(a.v, _mm_set1_epi32(1 << 16 | factor))};
}

ZVP_KERNEL_INLINE VecI add_bytes(VecI a, VecI b) { return {_mm_add_epi8(a.v, b.v)}; }

/// The sum of 8 bytes in each 64-bit lane.
ZVP_KERNEL_INLINE VecI sum_bytes(VecI a) { return {_mm_sad_epu8(a.v, _mm_setzero_si128())}; }

/// Marks digits (bytes below 16): 1 where a byte is `value`, 16 where it is value + 1. SSE3 has no table look-up.
struct PairMarker {
    explicit PairMarker(unsigned value)
        : first(_mm_set1_epi8(static_cast<char>(value))), second(_mm_set1_epi8(static_cast<char>(value + 1))) {}

    ZVP_KERNEL_INLINE VecI operator()(VecI digits) const {
        const __m128i is_first = _mm_cmpeq_epi8(digits.v, first), is_second = _mm_cmpeq_epi8(digits.v, second);
        return {_mm_or_si128(_mm_and_si128(is_first, _mm_set1_epi8(1)), _mm_and_si128(is_second, _mm_set1_epi8(16)))};
    }

    __m128i first, second;
};
