// What the decoders of words need of the avx2 set beside the vectors of the digit kernels.

/// As many 32-bit words as there are lanes, one in each.
ZVP_KERNEL_INLINE VecI load_words(const std::uint32_t* p) {
    return {_mm256_cvtepu32_epi64(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)))};
}

/// The high and the low halves of the products of 16-bit fields with a constant.
template <int factor>
ZVP_KERNEL_INLINE VecI multiply_shorts_high(VecI a) {
    return {_mm256_mulhi_epu16(a.v, _mm256_set1_epi16(factor))};
}
template <int factor>
ZVP_KERNEL_INLINE VecI multiply_shorts_low(VecI a) {
    return {_mm256_mullo_epi16(a.v, _mm256_set1_epi16(factor))};
}
