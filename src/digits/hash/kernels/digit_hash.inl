// The hash of digits. A vector of them is joined to numbers of 8 digits, one in each 64-bit lane, the first digit being
// the most significant. Any nibble may stand for a decimal digit: a number is at most 15 * 11,111,111 < 2^28.

template <unsigned radix>
ZVP_KERNEL_INLINE VecI eight_digits(const std::uint8_t* digits) {
    constexpr unsigned square = radix * radix;
    const VecI values = load_bytes(digits) & VecI::broadcast(0x0F0F0F0F0F0F0F0F);
    const VecI fours = join_shorts<square>(join_bytes<radix>(values));
    return multiply_low(fours, VecI::broadcast(square * square)) + down<32>(fours);
}

// Radix 10: a block of up to 16 vectors is a scalar product of its numbers with the powers of 10^8, whose halves of 31
// and 30 bits are multiplied apart. The blocks follow each other by Horner's rule.

constexpr std::size_t block_vectors = 16;
constexpr std::size_t block_numbers = block_vectors * VecI::lanes;

struct alignas(64) DecimalWeights {
    std::int64_t low[block_numbers], high[block_numbers]; // of 10^(8 (block_numbers - 1 - i))
    std::uint64_t vectors[block_vectors + 1];             // 10^(8 lanes i)
};

constexpr DecimalWeights decimal_weights = [] {
    DecimalWeights weights{};
    for (std::size_t i = 0; i < block_numbers; ++i) {
        const std::uint64_t power = pow_mod(10, 8 * (block_numbers - 1 - i));
        weights.low[i] = power & 0x7FFFFFFF;
        weights.high[i] = static_cast<std::int64_t>(power >> 31);
    }
    for (std::size_t i = 0; i <= block_vectors; ++i) weights.vectors[i] = pow_mod(10, 8 * VecI::lanes * i);
    return weights;
}();

/// The numbers of `vectors` <= block_vectors vectors, weighed by the end of the table. A lane sums 16 products below
/// 2^59.
ZVP_KERNEL_INLINE HashProduct weighed_sum(const std::uint8_t* digits, std::size_t vectors) {
    VecI low = VecI::broadcast(0), high = VecI::broadcast(0);
    for (std::size_t i = block_vectors - vectors; i < block_vectors; ++i, digits += vector_bytes) {
        const VecI numbers = eight_digits<10>(digits);
        low = low + multiply_low(numbers, VecI::load(decimal_weights.low + i * VecI::lanes));
        high = high + multiply_low(numbers, VecI::load(decimal_weights.high + i * VecI::lanes));
    }
    alignas(64) std::int64_t lows[VecI::lanes], highs[VecI::lanes];
    low.store(lows);
    high.store(highs);
    HashProduct low_sum = 0, high_sum = 0;
    for (std::size_t i = 0; i < VecI::lanes; ++i) {
        low_sum += static_cast<std::uint64_t>(lows[i]);
        high_sum += static_cast<std::uint64_t>(highs[i]);
    }
    return low_sum + (high_sum << 31);
}

std::uint64_t hash_decimal(std::uint64_t h, const std::uint8_t* digits, std::size_t vectors) {
    while (vectors > 0) {
        const std::size_t n = vectors < block_vectors ? vectors : block_vectors;
        h = reduce_hash(HashProduct{h} * decimal_weights.vectors[n] + weighed_sum(digits, n));
        digits += n * vector_bytes;
        vectors -= n;
    }
    return h;
}

// Radix 16: the numbers are 32-bit words, so that a lane is a chain as in the hash of words. The first row is filled up
// with zeros in front.

constexpr int digit_row_shift = 32 * row_vectors * VecI::lanes % hash_bits;
static_assert(digit_row_shift > 0 && digit_row_shift <= 58);

std::uint64_t hash_hexadecimal(std::uint64_t h, const std::uint8_t* digits, std::size_t vectors) {
    VecI chains[row_vectors]; // the last of a row is chains[0]
    const std::size_t first = vectors % row_vectors;
    for (std::size_t i = row_vectors; i-- > 0;) {
        chains[i] = VecI::broadcast(0);
        if (i >= first) continue;
        chains[i] = eight_digits<16>(digits);
        digits += vector_bytes;
    }
    for (std::size_t rows = vectors / row_vectors; rows > 0; --rows)
        for (std::size_t i = row_vectors; i-- > 0; digits += vector_bytes)
            chains[i] = rotate<digit_row_shift>(chains[i]) + eight_digits<16>(digits);
    alignas(64) std::int64_t words[VecI::lanes];
    join_chains<32>(chains).store(words);
    h = mul_mod(h, pow_word(static_cast<std::int64_t>(vectors % hash_bits * VecI::lanes)));
    std::uint64_t sum = 0;
    for (const std::int64_t word : words)
        sum = mul_mod(sum, std::uint64_t{1} << 32) + fold_hash(static_cast<std::uint64_t>(word));
    return add_mod(h, sum);
}
