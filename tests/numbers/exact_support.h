#pragma once
// Exact numbers of both word kinds between guard words, with their values and residues by GMP.

#include "app/failure/exceptions.h"
#include "digits/hash/hash_field.h"
#include "numbers/exact_float.h"
#include "numbers/multiplier.h"
#include "support/seed.h"

#include <gmpxx.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace test {

using zvp::c32i;
using zvp::c64i;
using WordKinds = testing::Types<c32i, c64i>;

template <class Word>
inline constexpr Word ones = static_cast<Word>(~Word{0});

inline constexpr std::uint32_t task_counts[] = {1, 2, 3, 64, 100};

inline const mpz_class modulus((mpz_class(1) << 61) - 1);

/// n random words with runs of zeros and ones among them; the top word isn't zero.
template <class Word>
std::vector<Word> random_words(std::mt19937_64& random, std::size_t n) {
    std::vector<Word> words(n);
    for (std::size_t i = 0; i < n;) {
        const std::size_t run = std::min<std::size_t>(1 + random() % (n / 2 + 1), n - i);
        const auto kind = random() % 4;
        for (const std::size_t end = i + run; i < end; ++i)
            words[i] = kind == 0 ? 0 : kind == 1 ? ones<Word> : static_cast<Word>(random());
    }
    if (n > 0 && words.back() == 0) words.back() = 1;
    return words;
}

template <class Word>
mpz_class integer(const Word* T, std::size_t n) {
    mpz_class x;
    mpz_import(x.get_mpz_t(), n, -1, sizeof *T, 0, 0, T);
    return x;
}

/// x * 2^bits modulo p.
inline std::uint64_t residue_of(const mpz_class& x, std::int64_t bits = 0) {
    mpz_class power, result;
    const mpz_class base = 2, exponent = static_cast<long>(bits);
    mpz_powm(power.get_mpz_t(), base.get_mpz_t(), exponent.get_mpz_t(), modulus.get_mpz_t());
    const mpz_class product = x * power;
    mpz_mod(result.get_mpz_t(), product.get_mpz_t(), modulus.get_mpz_t());
    return result.get_ui();
}

/// Words between guards.
template <class Word>
class Storage {
public:
    explicit Storage(std::size_t n) : words(n + 2 * guards, pattern) {}

    Word* data() { return words.data() + guards; }
    bool guards_are_intact() const {
        const auto intact = [](Word x) { return x == pattern; };
        return std::all_of(words.begin(), words.begin() + guards, intact)
               && std::all_of(words.end() - guards, words.end(), intact);
    }

private:
    static constexpr std::ptrdiff_t guards = 16;
    static constexpr Word pattern = static_cast<Word>(0x5A5A'A5A5'DEAD'BEEF);
    std::vector<Word> words;
};

/// A number on storage of exactly `capacity` words.
template <class Word>
class Number {
public:
    explicit Number(std::size_t capacity) : storage(capacity), f(storage.data(), capacity) {}

    /// One that holds these words, with `below` and `above` more around them.
    Number(const std::vector<Word>& words, std::int64_t exp, bool sign, std::size_t below = 0, std::size_t above = 0)
        : Number(below + words.size() + above) {
        f.T += below;
        f.L = words.size();
        f.exp = exp;
        f.sign = sign;
        std::copy(words.begin(), words.end(), f.T);
        const mpz_class magnitude = integer(f.T, f.L);
        f.hash = residue_of(sign ? magnitude : mpz_class(-magnitude), exp * std::int64_t{zvp::word_bits<Word>});
    }
    Number(const Number&) = delete;

    bool guards_are_intact() const { return storage.guards_are_intact(); }
    std::vector<Word> words() const { return {f.T, f.T + f.L}; }

private:
    Storage<Word> storage;

public:
    zvp::ExactFloat<Word> f;
};

/// f / W^unit, for units at or below its lowest word.
template <class Word>
mpz_class in_units(const zvp::ExactFloat<Word>& f, std::int64_t unit) {
    if (f.L == 0) return 0;
    const mpz_class magnitude = integer(f.T, f.L) << static_cast<mp_bitcnt_t>(zvp::word_bits<Word> * (f.exp - unit));
    return f.sign ? magnitude : mpz_class(-magnitude);
}

/// The number is that many units of W^unit, its fields fit its storage, and its hash is that of the value.
template <class Word>
void expect_value(const Number<Word>& number, const mpz_class& value, std::int64_t unit) {
    const zvp::ExactFloat<Word>& f = number.f;
    ASSERT_TRUE(number.guards_are_intact());
    ASSERT_TRUE(f.T >= f.buffer && f.T + f.L <= f.buffer + f.capacity);
    EXPECT_TRUE(f.L == 0 || f.T[f.L - 1] != 0);
    EXPECT_TRUE(in_units(f, unit) == value);
    EXPECT_EQ(zvp::normalize_hash(f.hash), residue_of(value, unit * std::int64_t{zvp::word_bits<Word>}));
    EXPECT_LT(f.hash, std::uint64_t{1} << 62);
    EXPECT_EQ(f.residue({}), zvp::normalize_hash(f.hash));
}

/// "<function> <message>" of the failure that the call raises, with sizes for a message where a capacity is too small.
template <class Call>
std::string failure_of(Call&& call) {
    try {
        call();
    } catch (const zvp::BufferTooSmallException& failure) {
        return std::string(failure.function) + " " + std::to_string(failure.buffer_size) + " "
               + std::to_string(failure.required_size);
    } catch (const zvp::StringException& failure) {
        return failure.get_typename() + std::string(": ") + failure.function + " " + failure.message;
    }
    return "nothing";
}

} // namespace test
