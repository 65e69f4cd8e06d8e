// Each conversion works on the bytes of 64-bit lanes and leaves a non-zero bit in `faults` for each byte that isn't valid.

ZVP_KERNEL_INLINE void store_bytes(void* p, VecI a) { std::memcpy(p, &a.v, sizeof a.v); }

ZVP_KERNEL_INLINE VecI bytes_of(std::uint8_t value) {
    return VecI::broadcast(static_cast<std::int64_t>(0x0101010101010101u * value));
}

ZVP_KERNEL_INLINE VecI difference_of_bits(VecI a, VecI b) { return (a | b) - (a & b); }

/// Bit 7 of each byte that isn't 0 to `most`. A byte of 128 and more has that bit itself.
template <unsigned most>
ZVP_KERNEL_INLINE VecI above(VecI a) {
    return (a | add_bytes(a, bytes_of(127 - most))) & bytes_of(0x80);
}

/// The characters of values below 16: those above 9 are 39 further on.
ZVP_KERNEL_INLINE VecI hexadecimal_characters(VecI values) {
    const VecI letter = down<4>(add_bytes(values, bytes_of(6))) & bytes_of(1);
    const VecI step = (up<5>(letter) | up<2>(letter)) | (up<1>(letter) | letter);
    return add_bytes(add_bytes(values, bytes_of('0')), step);
}

struct DecimalToText {
    ZVP_KERNEL_INLINE static VecI convert(VecI values, VecI& faults) {
        faults = faults | above<9>(values);
        return add_bytes(values, bytes_of('0'));
    }
};

struct HexadecimalToText {
    ZVP_KERNEL_INLINE static VecI convert(VecI values, VecI& faults) {
        faults = faults | above<15>(values);
        return hexadecimal_characters(values);
    }
};

struct TextToDecimal {
    ZVP_KERNEL_INLINE static VecI convert(VecI characters, VecI& faults) {
        const VecI values = add_bytes(characters, bytes_of(256 - '0'));
        faults = faults | above<9>(values);
        return values;
    }
};

/// Takes the low half, and 9 more for what has the bit of the letters. What that makes of a character that isn't a digit
/// is above 15, or has another character.
struct TextToHexadecimal {
    ZVP_KERNEL_INLINE static VecI convert(VecI characters, VecI& faults) {
        const VecI letter = down<6>(characters) & bytes_of(1);
        const VecI values = add_bytes(characters & bytes_of(15), up<3>(letter) | letter);
        faults = faults | above<15>(values) | difference_of_bits(hexadecimal_characters(values), characters);
        return values;
    }
};

ZVP_KERNEL_INLINE bool is_zero(VecI a) {
    alignas(64) std::int64_t lanes[VecI::lanes];
    a.store(lanes);
    std::int64_t bits = 0;
    for (const std::int64_t lane : lanes) bits |= lane;
    return bits == 0;
}

/// The rest below a vector is filled up with copies of its own first byte, which add no fault.
template <class Conversion>
bool convert_characters(std::uint8_t* output, const std::uint8_t* input, std::size_t n) {
    VecI faults = VecI::broadcast(0);
    for (; n >= vector_bytes; n -= vector_bytes, input += vector_bytes, output += vector_bytes)
        store_bytes(output, Conversion::convert(load_bytes(input), faults));
    if (n > 0) {
        std::uint8_t rest[vector_bytes];
        std::memset(rest, input[0], sizeof rest);
        std::memcpy(rest, input, n);
        store_bytes(rest, Conversion::convert(load_bytes(rest), faults));
        std::memcpy(output, rest, n);
    }
    return is_zero(faults);
}

constexpr CharacterKernels character_kernels{
    this_set,
    convert_characters<DecimalToText>,
    convert_characters<HexadecimalToText>,
    convert_characters<TextToDecimal>,
    convert_characters<TextToHexadecimal>,
};
