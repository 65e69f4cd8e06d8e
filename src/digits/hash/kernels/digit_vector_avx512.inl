// Vectors of bytes in the avx512 set: what the digit kernels need beside VecI.

constexpr std::size_t vector_bytes = 64;

ZVP_KERNEL_INLINE VecI load_bytes(const void* p) { return {_mm512_loadu_si512(p)}; }

template <int bits>
ZVP_KERNEL_INLINE VecI up(VecI a) {
    return {_mm512_slli_epi64(a.v, bits)};
}
template <int bits>
ZVP_KERNEL_INLINE VecI down(VecI a) {
    return {_mm512_srli_epi64(a.v, bits)};
}

/// The products of the low halves of the 64-bit lanes.
ZVP_KERNEL_INLINE VecI multiply_low(VecI a, VecI b) { return {_mm512_mul_epu32(a.v, b.v)}; }

/// Neighbours a, b become a * factor + b, a being at the lower address: bytes to 16 bits, 16 to 32 bits.
template <int factor>
ZVP_KERNEL_INLINE VecI join_bytes(VecI a) {
    return {_mm512_maddubs_epi16(a.v, _mm512_set1_epi16(1 << 8 | factor))};
}
template <int factor>
ZVP_KERNEL_INLINE VecI join_shorts(VecI a) {
    return {_mm512_madd_epi16(a.v, _mm512_set1_epi32(1 << 16 | factor))};
}

ZVP_KERNEL_INLINE VecI add_bytes(VecI a, VecI b) { return {_mm512_add_epi8(a.v, b.v)}; }

/// The sum of 8 bytes in each 64-bit lane.
ZVP_KERNEL_INLINE VecI sum_bytes(VecI a) { return {_mm512_sad_epu8(a.v, _mm512_setzero_si512())}; }

/// Marks digits (bytes below 16): 1 where a byte is `value`, 16 where it is value + 1.
struct PairMarker {
    explicit PairMarker(unsigned value) {
        alignas(16) std::uint8_t table[16]{};
        table[value] = 1;
        table[value + 1] = 16;
        marks = _mm512_broadcast_i32x4(_mm_load_si128(reinterpret_cast<const __m128i*>(table)));
    }

    ZVP_KERNEL_INLINE VecI operator()(VecI digits) const { return {_mm512_shuffle_epi8(marks, digits.v)}; }

    __m512i marks;
};
