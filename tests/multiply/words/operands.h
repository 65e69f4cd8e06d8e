#pragma once
// Operands of word arithmetic.

#include "multiply/integer.h"
#include "multiply/words/word_blocks.h"
#include "parallel/tasks/framework_config.h"
#include "support/seed.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace test {

using zvp::c32i;
using zvp::c64i;

template <class Word>
using Words = std::vector<Word>;

template <class Word>
inline constexpr Word ones = static_cast<Word>(~Word{0});

template <class Word>
Integer value(const Words<Word>& words) {
    return Integer(words);
}

/// A target at a given word offset from a cache line, between words that nothing may touch.
template <class Word>
class Target {
public:
    Target(std::size_t n_, std::size_t offset) : n(n_), storage(n + 64, guard), T(storage.data()) {
        T += zvp::words_to_line(T, 16) + 16 + offset;
    }
    Target(const Words<Word>& words, std::size_t offset) : Target(words.size(), offset) {
        std::copy(words.begin(), words.end(), T);
    }

    operator Word*() { return T; }
    Integer value() const { return {T, n}; }
    Words<Word> words() const { return {T, T + n}; }
    bool guards_stand() const {
        const auto stands = [](Word x) { return x == guard; };
        return std::all_of(storage.data(), static_cast<const Word*>(T), stands)
               && std::all_of(static_cast<const Word*>(T) + n, storage.data() + storage.size(), stands);
    }

private:
    static constexpr Word guard = static_cast<Word>(0x5A5A'A5A5'1234'8765);
    std::size_t n;
    Words<Word> storage;
    Word* T;
};

/// Pieces of random lengths: random words, zeros, ones, or words with one bit; some cuts near multiples of `grid`.
template <class Word>
Words<Word> piecewise(std::mt19937_64& random, std::size_t n, std::size_t grid = 0) {
    Words<Word> words(n);
    for (std::size_t begin = 0; begin < n;) {
        std::size_t length = 1 + random_up_to_bits(random, 20);
        if (grid != 0 && random() % 2) length = (1 + random() % 3) * grid + random() % 7 - begin % grid;
        length = std::min(length, n - begin);
        const unsigned kind = random() % 5;
        std::generate_n(words.begin() + static_cast<std::ptrdiff_t>(begin), length, [&]() -> Word {
            if (kind <= 1) return static_cast<Word>(random());
            if (kind == 2) return 0;
            return kind == 3 ? ones<Word> : static_cast<Word>(Word{1} << random() % zvp::word_bits<Word>);
        });
        begin += length;
    }
    return words;
}

/// Pairs of operands whose sums or differences carry far: in each piece B is the complement of A, A itself, or other.
template <class Word>
std::pair<Words<Word>, Words<Word>> carrying_pair(std::mt19937_64& random, std::size_t n, std::size_t grid) {
    std::pair<Words<Word>, Words<Word>> pair{piecewise<Word>(random, n, grid), piecewise<Word>(random, n, grid)};
    const Words<Word> kinds = piecewise<Word>(random, n, grid);
    for (std::size_t i = 0; i < n; ++i) {
        if (kinds[i] == 0) pair.second[i] = static_cast<Word>(~pair.first[i]);
        if (kinds[i] == ones<Word>) pair.second[i] = pair.first[i];
    }
    return pair;
}

/// The contexts that the parallel forms are tried with.
struct Contexts {
    struct Case {
        std::string name;
        zvp::ParallelContext ctx;
    };

    Contexts() {
        cases.push_back({"no framework", {8, nullptr}});
        for (const char* key : {"none", "pushpool"}) {
            frameworks.push_back(zvp::make_framework_config(key)->make_framework());
            for (const std::uint32_t tds : {1u, 2u, 3u, 64u, 100u})
                cases.push_back({key + std::string(", tds ") + std::to_string(tds), {tds, frameworks.back().get()}});
        }
    }

    std::vector<std::unique_ptr<zvp::ParallelFramework>> frameworks;
    std::vector<Case> cases;
};

} // namespace test
