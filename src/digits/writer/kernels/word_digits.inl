// A word in each 64-bit lane is cut into two halves, these into halves, and those into digits, the more significant part
// always at the lower address:
//
//     bits    0               16              32              48
//     r       8 digits below 2^32
//     v       4 digits                        4 digits
//     v       2 digits        2 digits        2 digits        2 digits
//     v       d0      d1      d2      d3      d4      d5      d6      d7
//
// A quotient by a constant c is the high part of a product with a number just above 2^s / c: x * (2^s / c + e) has the same
// integer part as x / c as long as x * e < 2^s / c, which the largest x of each step keeps.

/// The 8 decimal digits of numbers below 10^8.
ZVP_KERNEL_INLINE VecI eight_decimal(VecI r) {
    // 3,518,437,209 / 2^45 is above 1/10,000 by 3.3e-15: right for all x below 2^32.
    const VecI fours = down<45>(multiply_low(r, VecI::broadcast(3'518'437'209)));
    VecI v = fours | up<32>(r - multiply_low(fours, VecI::broadcast(10'000)));
    // 5,243 / 2^19 is above 1/100 by 2.3e-7: right for x below 43,000. What a field keeps is below 2^7.
    const VecI twos = down<3>(multiply_shorts_high<5'243>(v)) & VecI::broadcast(0x0000007F0000007F);
    v = twos | up<16>(v - multiply_shorts_low<100>(twos));
    // 6,554 / 2^16 is above 1/10 by 6.1e-6: right for x below 16,000.
    const VecI ones = multiply_shorts_high<6'554>(v);
    return ones | up<8>(v - multiply_shorts_low<10>(ones));
}

ZVP_KERNEL_INLINE VecI eight_hexadecimal(VecI r) {
    VecI v = down<16>(r) | up<32>(r & VecI::broadcast(0xFFFF));
    v = (down<8>(v) & VecI::broadcast(0x000000FF000000FF)) | up<16>(v & VecI::broadcast(0x000000FF000000FF));
    return (down<4>(v) & VecI::broadcast(0x000F000F000F000F)) | up<8>(v & VecI::broadcast(0x000F000F000F000F));
}

/// The digits of the first `count` words of a vector, the last of them first.
template <unsigned radix>
ZVP_KERNEL_INLINE void decode_lanes(std::uint8_t* output, VecI words, std::size_t count) {
    alignas(64) std::int64_t tops[VecI::lanes], eights[VecI::lanes];
    if constexpr (radix == 10) {
        // 1,441,151,881 / 2^57 is above 1/10^8 by 1.7e-18: right for all x below 2^32.
        const VecI top = down<57>(multiply_low(words, VecI::broadcast(1'441'151'881)));
        top.store(tops);
        eight_decimal(words - multiply_low(top, VecI::broadcast(100'000'000))).store(eights);
    } else {
        eight_hexadecimal(words).store(eights);
    }
    for (std::size_t i = count; i-- > 0; output += 8) {
        if constexpr (radix == 10) *output++ = static_cast<std::uint8_t>(tops[i]);
        std::memcpy(output, &eights[i], 8);
    }
}

template <unsigned radix>
void decode_words(std::uint8_t* output, const std::uint32_t* words, std::size_t n) {
    constexpr std::size_t word_digits = radix == 10 ? 9 : 8;
    for (; n >= VecI::lanes; n -= VecI::lanes, output += word_digits * VecI::lanes)
        decode_lanes<radix>(output, load_words(words + n - VecI::lanes), VecI::lanes);
    if (n == 0) return;
    std::uint32_t rest[VecI::lanes]{};
    std::memcpy(rest, words, n * sizeof *words);
    decode_lanes<radix>(output, load_words(rest), n);
}

constexpr WordDecoders word_decoders{this_set, decode_words<10>, decode_words<16>};
