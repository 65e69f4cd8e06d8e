#pragma once
// Arithmetic modulo the Mersenne prime q = 2^31 - 1, in which products are checked.
//
// A residue fits into the 31 bits that the top word of a canonical element leaves (coefficient_residues.h). No power of two
// is a multiple of q, so that one flipped bit always shows; a wrong number at random goes unseen once in 2^31 times.

#include <cstdint>

namespace zvp {

inline constexpr unsigned residue_bits = 31;
inline constexpr std::uint32_t residue_modulus = (std::uint32_t{1} << residue_bits) - 1;

/// Any v modulo q, as 0 .. q - 1. All functions return such residues and take any words for residues.
constexpr std::uint32_t reduce_residue(std::uint64_t v) {
    v = (v & residue_modulus) + (v >> residue_bits); // below 2^34
    v = (v & residue_modulus) + (v >> residue_bits); // at most q + 8
    return static_cast<std::uint32_t>(v >= residue_modulus ? v - residue_modulus : v);
}

constexpr std::uint32_t add_residues(std::uint32_t a, std::uint32_t b) { return reduce_residue(std::uint64_t{a} + b); }

/// a - b, b a residue.
constexpr std::uint32_t subtract_residues(std::uint32_t a, std::uint32_t b) {
    return reduce_residue(std::uint64_t{a} + residue_modulus - b);
}

constexpr std::uint32_t multiply_residues(std::uint32_t a, std::uint32_t b) {
    return reduce_residue(std::uint64_t{a} * b);
}

constexpr std::uint32_t residue_power(std::uint32_t base, std::uint64_t e) {
    std::uint32_t power = 1;
    for (; e > 0; e >>= 1, base = multiply_residues(base, base))
        if (e % 2 == 1) power = multiply_residues(power, base);
    return power;
}

/// a * 2^(32 words): 2 has the order 31.
constexpr std::uint32_t shift_residue(std::uint32_t a, std::uint64_t words) {
    return reduce_residue(std::uint64_t{a} << words % residue_bits);
}

} // namespace zvp
