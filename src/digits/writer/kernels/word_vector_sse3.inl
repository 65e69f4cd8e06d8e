// What the decoders of words need of the sse3 set beside the vectors of the digit kernels.

/// As many 32-bit words as there are lanes, one in each.
ZVP_KERNEL_INLINE VecI load_words(const std::uint32_t* p) {
    return {_mm_unpacklo_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)), _mm_setzero_si128())};
}

/// The high and the low halves of the products of 16-bit fields with a constant.
template <int factor>
ZVP_KERNEL_INLINE VecI multiply_shorts_high(VecI a) {
    return {_mm_mulhi_epu16(a.v, _mm_set1_epi16(factor))};
}
template <int factor>
ZVP_KERNEL_INLINE VecI multiply_shorts_low(VecI a) {
    return {_mm_mullo_epi16(a.v, _mm_set1_epi16(factor))};
}
