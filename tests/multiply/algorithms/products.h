#pragma once
// Operands, exact products by GMP, and areas that tell when something was written beside them.

#include "multiply/integer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>
#include <random>
#include <vector>

namespace test {

/// n words: random ones, with runs of zeros and of ones, or all ones.
template <class Word>
std::vector<Word> random_words(std::mt19937_64& random, std::size_t n) {
    std::vector<Word> words(n);
    const unsigned kind = random() % 8;
    for (std::size_t i = 0; i < n;) {
        const unsigned run = kind == 0 ? 1 : random() % 4;
        const std::size_t end = std::min(n, i + 1 + random() % (n / 2 + 1));
        for (; i < end; ++i) words[i] = run == 0 ? 0 : run == 1 ? ~Word{0} : static_cast<Word>(random());
    }
    return words;
}

template <class Word>
std::vector<Word> slice(const std::vector<Word>& words, std::size_t s, std::size_t e) {
    std::vector<Word> part(e - s);
    for (std::size_t i = s; i < std::min(e, words.size()); ++i) part[i - s] = words[i];
    return part;
}

/// exact - found modulo W^n for numbers of n words; 1000 if it is more.
template <class Word>
unsigned long shortfall(const std::vector<Word>& exact, const std::vector<Word>& found) {
    Integer difference = Integer(exact) - Integer(found);
    mpz_fdiv_r_2exp(difference.value, difference.value, exact.size() * zvp::word_bits<Word>);
    return mpz_cmp_ui(difference.value, 1000) < 0 ? mpz_get_ui(difference.value) : 1000;
}

/// `bytes` of memory from a multiple of 64 on, filled with rubbish, between guards.
class GuardedArea {
public:
    explicit GuardedArea(std::size_t bytes_)
        : bytes(bytes_), data(static_cast<std::byte*>(::operator new(bytes + 2 * guard, alignment)) + guard) {
        std::memset(data - guard, rubbish, bytes + 2 * guard);
    }
    ~GuardedArea() { ::operator delete(data - guard, alignment); }
    GuardedArea(const GuardedArea&) = delete;
    GuardedArea& operator=(const GuardedArea&) = delete;

    template <class Word>
    Word* words() {
        return reinterpret_cast<Word*>(data);
    }

    template <class Word>
    std::vector<Word> copy() {
        return {words<Word>(), words<Word>() + bytes / sizeof(Word)};
    }

    bool intact() const {
        const auto untouched = [](std::byte b) { return b == std::byte{rubbish}; };
        return std::all_of(data - guard, data, untouched) && std::all_of(data + bytes, data + bytes + guard, untouched);
    }

    const std::size_t bytes;
    std::byte* const data;

private:
    static constexpr std::size_t guard = 64;
    static constexpr std::align_val_t alignment{guard};
    static constexpr unsigned char rubbish = 0xC5;
};

} // namespace test
