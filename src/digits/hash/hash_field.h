#pragma once
// Arithmetic modulo the Mersenne prime p = 2^61 - 1, in which words, digits and exact numbers are hashed.
//
// A hash may be held unreduced: any 64-bit value stands for its residue. All functions take such values and return
// residues in [0, p), so that two results can be compared as they are; what was stored otherwise is normalised first.

#include <cstdint>

namespace zvp {

__extension__ using HashProduct = unsigned __int128;

inline constexpr unsigned hash_bits = 61;
inline constexpr std::uint64_t hash_modulus = (std::uint64_t{1} << hash_bits) - 1;

/// One fold by 2^61 = 1: a value of at most p + 7 that is congruent to h.
constexpr std::uint64_t fold_hash(std::uint64_t h) { return (h & hash_modulus) + (h >> hash_bits); }

/// The residue of h in [0, p).
constexpr std::uint64_t normalize_hash(std::uint64_t h) {
    h = fold_hash(h);
    return h >= hash_modulus ? h - hash_modulus : h;
}

/// The residue of a 128-bit value.
constexpr std::uint64_t reduce_hash(HashProduct v) {
    const auto low = static_cast<std::uint64_t>(v) & hash_modulus;
    const auto middle = static_cast<std::uint64_t>(v >> hash_bits) & hash_modulus;
    const auto top = static_cast<std::uint64_t>(v >> 2 * hash_bits); // 6 bits
    return normalize_hash(low + middle + top);
}

constexpr std::uint64_t add_mod(std::uint64_t a, std::uint64_t b) {
    return normalize_hash(fold_hash(a) + fold_hash(b));
}

constexpr std::uint64_t mul_mod(std::uint64_t a, std::uint64_t b) { return reduce_hash(HashProduct{a} * b); }

/// -h.
constexpr std::uint64_t hash_negate(std::uint64_t h) { return normalize_hash(hash_modulus - normalize_hash(h)); }

/// base^e, by left-to-right binary powering; 1 for e = 0, whatever the base.
constexpr std::uint64_t pow_mod(std::uint64_t base, std::uint64_t e) {
    std::uint64_t power = 1;
    for (unsigned bit = 64; bit-- > 0;) {
        if (power != 1) power = mul_mod(power, power);
        if ((e >> bit & 1) != 0) power = mul_mod(power, base);
    }
    return power;
}

/// 2^e for any e: 2 has the order 61.
constexpr std::uint64_t pow_two(std::int64_t e) {
    const std::int64_t remainder = e % std::int64_t{hash_bits};
    return std::uint64_t{1} << (remainder < 0 ? remainder + std::int64_t{hash_bits} : remainder);
}

/// 2^(32 e) for any e: what a word string's hash is multiplied by when the string moves up by e words.
constexpr std::uint64_t pow_word(std::int64_t e) { return pow_two(e % std::int64_t{hash_bits} * 32); }

/// h * W^words, W = 2^32; a - b.
constexpr std::uint64_t shift_words(std::uint64_t h, std::int64_t words) { return mul_mod(h, pow_word(words)); }
constexpr std::uint64_t subtract_mod(std::uint64_t a, std::uint64_t b) { return add_mod(a, hash_negate(b)); }

/// h * 2^64 + w modulo p, lazily: with h < 2^62 + 2^6 the result is below that bound too, as 2^64 = 8 and the parts are
/// below 2^61, 2^5 and 2^61 + 7.
constexpr std::uint64_t append_limb(std::uint64_t h, std::uint64_t w) {
    constexpr unsigned kept = hash_bits - 3;
    return ((h & ((std::uint64_t{1} << kept) - 1)) << 3) + (h >> kept) + fold_hash(w);
}

} // namespace zvp
