#pragma once
// The oracle: residues by GMP's division.

#include "digits/hash/hash_field.h"

#include <gmp.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace test {

class Integer {
public:
    explicit Integer(std::uint64_t value = 0) { mpz_init_set_ui(z, value); }
    ~Integer() { mpz_clear(z); }
    Integer(const Integer&) = delete;
    Integer& operator=(const Integer&) = delete;

    mpz_t z;
};

inline std::uint64_t residue(const Integer& value) {
    Integer rest;
    return mpz_fdiv_r_ui(rest.z, value.z, zvp::hash_modulus);
}

/// Words of random runs: random words, zeros and ones by turns.
template <class Word>
std::vector<Word> random_words(std::mt19937_64& random, std::size_t n) {
    std::vector<Word> words;
    while (words.size() < n) {
        const unsigned kind = static_cast<unsigned>(random() % 4);
        for (std::size_t run = 1 + random() % 40; run > 0 && words.size() < n; --run)
            words.push_back(static_cast<Word>(kind == 0 ? 0 : kind == 1 ? ~std::uint64_t{0} : random()));
    }
    return words;
}

/// The residue of h * 2^(w n) + value of n little-endian words of w bits.
template <class Word>
std::uint64_t hashed_words(std::uint64_t h, const Word* words, std::size_t n) {
    Integer sum(h), value;
    mpz_import(value.z, n, -1, sizeof(Word), 0, 0, words);
    mpz_mul_2exp(sum.z, sum.z, 8 * sizeof(Word) * n);
    mpz_add(sum.z, sum.z, value.z);
    return residue(sum);
}

/// The residue of h * radix^n + value of the digits, digits[0] first.
inline std::uint64_t hashed_digits(std::uint64_t h, const std::uint8_t* digits, std::size_t n, unsigned radix) {
    Integer sum(h);
    for (std::size_t i = 0; i < n; ++i) {
        mpz_mul_ui(sum.z, sum.z, radix);
        mpz_add_ui(sum.z, sum.z, digits[i] & 15u);
        mpz_set_ui(sum.z, residue(sum));
    }
    return residue(sum);
}

} // namespace test
