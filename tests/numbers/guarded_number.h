#pragma once
// Numbers of every class between guard words, random mantissas and their values in GMP integers.

#include "app/failure/exceptions.h"
#include "multiply/words/word_types.h"

#include <gmpxx.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace test {

inline constexpr std::uint32_t task_counts[] = {1, 2, 3, 64, 100};

template <class Word>
inline constexpr Word all_ones = static_cast<Word>(~Word{0});

/// n random words with runs of zeros and ones among them; the top word isn't zero.
template <class Word = zvp::wtype>
std::vector<Word> random_words(std::mt19937_64& random, std::size_t n) {
    std::vector<Word> words(n);
    for (std::size_t i = 0; i < n;) {
        const std::size_t run = std::min<std::size_t>(1 + random() % (n / 2 + 1), n - i);
        const auto kind = random() % 4;
        for (const std::size_t end = i + run; i < end; ++i)
            words[i] = kind == 0 ? 0 : kind == 1 ? all_ones<Word> : static_cast<Word>(random());
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

/// Words between guards.
template <class Word>
class GuardedWords {
public:
    explicit GuardedWords(std::size_t n) : words(n + 2 * guards, pattern) {}

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

/// A BigFloat or ExactFloat on storage of exactly `capacity` words.
template <class Float>
class GuardedNumber {
public:
    using Word = typename Float::Word;

    explicit GuardedNumber(std::size_t capacity) : storage(capacity), f(storage.data(), capacity) {}

    /// One that holds these words, with `below` and `above` more around them; of no words, a zero.
    GuardedNumber(const std::vector<Word>& words, std::int64_t exp, bool sign, std::size_t below, std::size_t above)
        : GuardedNumber(below + words.size() + above) {
        f.T += below;
        f.L = words.size();
        f.exp = words.empty() ? 0 : exp;
        f.sign = sign;
        std::copy(words.begin(), words.end(), f.T);
    }

    GuardedNumber(GuardedNumber&&) noexcept = default; // the words stay where they are
    GuardedNumber& operator=(GuardedNumber&&) noexcept = default;

    bool guards_are_intact() const { return storage.guards_are_intact(); }
    std::vector<Word> words() const { return {f.T, f.T + f.L}; }

private:
    GuardedWords<Word> storage;

public:
    Float f;
};

/// The guards stand, the fields fit the storage and the top word isn't zero.
template <class Float>
void expect_fields(const GuardedNumber<Float>& number) {
    const Float& f = number.f;
    ASSERT_TRUE(number.guards_are_intact());
    ASSERT_TRUE(f.T >= f.buffer && f.T + f.L <= f.buffer + f.capacity);
    EXPECT_TRUE(f.L == 0 || f.T[f.L - 1] != 0);
}

/// "<function> <capacity> <needed>" of the BufferTooSmallException that the call raises; "<class>: <function> <message>"
/// of another one.
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
