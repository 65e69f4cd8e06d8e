#pragma once
// Numbers between guard words, their exact values in GMP integers, and what a product needs.

#include "app/failure/exceptions.h"
#include "numbers/big_float.h"
#include "numbers/multiplier.h"
#include "support/seed.h"

#include <gmpxx.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace test {

using zvp::BigFloat;
using Words = std::vector<zvp::wtype>;

inline constexpr std::uint32_t task_counts[] = {1, 2, 3, 64, 100};
inline constexpr zvp::wtype ones = 0xFFFF'FFFF;

/// A number on storage of exactly `capacity` words, with guard words on both sides.
class Number {
public:
    explicit Number(std::size_t capacity)
        : storage(capacity + 2 * guards, pattern), f(storage.data() + guards, capacity) {}

    /// One that holds these words and has `room` more behind them.
    Number(const Words& words, std::int64_t exp, bool sign = true, std::size_t room = 0) : Number(words.size() + room) {
        std::copy(words.begin(), words.end(), f.buffer);
        f.L = words.size();
        f.exp = words.empty() ? 0 : exp;
        f.sign = sign;
    }

    bool guards_are_intact() const {
        const auto intact = [](zvp::wtype x) { return x == pattern; };
        return std::all_of(storage.begin(), storage.begin() + guards, intact)
               && std::all_of(storage.end() - guards, storage.end(), intact);
    }

private:
    static constexpr std::size_t guards = 16;
    static constexpr zvp::wtype pattern = 0xDEAD'BEEF;
    Words storage;

public:
    BigFloat f;
};

inline Words words_of(const BigFloat& f) { return {f.T, f.T + f.L}; }

/// n random words with runs of zeros and ones among them; the top word isn't zero.
inline Words random_words(std::mt19937_64& random, std::size_t n) {
    Words words(n);
    for (std::size_t i = 0; i < n;) {
        const std::size_t run = std::min<std::size_t>(1 + random() % (n / 2 + 1), n - i);
        const auto kind = random() % 4;
        for (const std::size_t end = i + run; i < end; ++i)
            words[i] = kind == 0 ? 0 : kind == 1 ? ones : static_cast<zvp::wtype>(random());
    }
    if (n > 0 && words.back() == 0) words.back() = 1;
    return words;
}

/// A number of n random words with room for one more; exp within `spread` of `origin`.
inline Number random_number(std::mt19937_64& random, std::size_t n, std::int64_t origin = 0, std::size_t spread = 0) {
    const std::int64_t exp = origin + static_cast<std::int64_t>(random() % (2 * spread + 1) - spread);
    return Number(random_words(random, n), exp, random() % 2, 1);
}

inline mpz_class integer(const zvp::wtype* T, std::size_t n) {
    mpz_class x;
    mpz_import(x.get_mpz_t(), n, -1, sizeof *T, 0, 0, T);
    return x;
}

/// |f| / W^unit as a fraction.
inline mpq_class in_units(const BigFloat& f, std::int64_t unit) {
    const mpq_class m = integer(f.T, f.L);
    const std::int64_t bits = 32 * (f.L == 0 ? 0 : f.exp - unit);
    return bits >= 0 ? mpq_class(m << bits) : mpq_class(m >> -bits);
}

/// The fields fit the storage and the top word isn't zero.
inline void expect_sound(const Number& number) {
    const BigFloat& f = number.f;
    EXPECT_TRUE(number.guards_are_intact());
    EXPECT_TRUE(f.T >= f.buffer && f.T + f.L <= f.buffer + f.capacity);
    if (f.L == 0)
        EXPECT_EQ(f.exp, 0);
    else
        EXPECT_NE(f.T[f.L - 1], 0u);
}

/// "<name> <capacity> <needed>" of the BufferTooSmallException that the call raises.
template <class Call>
std::string too_small(Call&& call) {
    try {
        call();
    } catch (const zvp::BufferTooSmallException& failure) {
        return std::string(failure.function) + " " + std::to_string(failure.buffer_size) + " "
               + std::to_string(failure.required_size);
    }
    return "nothing";
}

using Multiplier = WordMultiplier<zvp::wtype>;

} // namespace test
