// Bit fields as balanced digits, by 256-bit integers. Included in the namespace of a kernel set, avx2 or wider, within
// its target region.

/// Reads runs of 8 neighbouring bit fields of one width, little-endian, as balanced digits: a field whose top bit is set
/// counts as negative, 2^width less, and the field above it as one more. A sum of fields times powers of 2^width so stays
/// what it was, with digits of at most 2^(width - 1).
class BalancedFields {
public:
    static constexpr std::size_t fields = 8;

    /// width: 1 to 21 bits.
    ZVP_KERNEL_INLINE explicit BalancedFields(unsigned width) {
        alignas(64) std::uint8_t bytes[32];
        alignas(64) std::uint32_t shifts[8];
        for (unsigned i = 0; i < 8; ++i) {
            const unsigned bit = i * width + 7 - (i < 4 ? 0 : width / 2 * 8); // of the field below, from p - 1 on
            for (unsigned b = 0; b < 4; ++b) bytes[4 * i + b] = static_cast<std::uint8_t>(bit / 8 + b);
            shifts[i] = bit % 8;
        }
        pick = _mm256_load_si256(reinterpret_cast<const __m256i*>(bytes));
        shift = _mm256_load_si256(reinterpret_cast<const __m256i*>(shifts));
        up = _mm_cvtsi32_si128(static_cast<int>(31 - width));
        down = _mm_cvtsi32_si128(static_cast<int>(32 - width));
        upper = width / 2;
    }

    /// The fields that begin at p. Reads p[-1 .. 31]; the first byte's top bit is that of the field below.
    ZVP_KERNEL_INLINE void read(const std::byte* p, VecD (&out)[8 / VecD::lanes]) const {
        const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p - 1));
        const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p - 1 + upper));
        const __m256i words = _mm256_srlv_epi32(
            _mm256_shuffle_epi8(_mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1), pick), shift);
        const __m256i field = _mm256_sra_epi32(_mm256_sll_epi32(words, up), down);
        convert(_mm256_add_epi32(field, _mm256_and_si256(words, _mm256_set1_epi32(1))), out);
    }

private:
    __m256i pick, shift;
    __m128i up, down;
    std::size_t upper;
};
