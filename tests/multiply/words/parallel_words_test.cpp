// The parallel forms with every task count, on both sides of their thresholds, against GMP.

#include "multiply/words/parallel_words.h"

#include "operands.h"

namespace {

using namespace zvp;
using test::Integer;
using test::ones;
using test::Target;

template <class Word>
struct ParallelWords : testing::Test {
    std::mt19937_64 random{test::seed()};
    const test::Contexts contexts;

    /// Calls body(ctx, n, offset) for every context, lengths around the threshold and around multiples of the least block
    /// (which end whole blocks, or leave a last one of 1, 2, 3 words), and odd alignments.
    template <class Body>
    void for_cases(std::size_t least, Body&& body) {
        SCOPED_TRACE(test::seed_trace());
        const std::size_t unit = (least + 15) / 16 * 16;
        for (const auto& [name, ctx] : contexts.cases) {
            for (const std::size_t n :
                 {std::size_t{0}, std::size_t{1}, least - 1, least, least + 1, 2 * unit - 1, 2 * unit, 2 * unit + 1,
                  3 * unit + 2, 3 * unit + 3, 5 * unit + random() % unit}) {
                const std::size_t offset = random() % 3 ? random() % 16 : 0;
                const std::size_t head = (64 / sizeof(Word) - offset) % (64 / sizeof(Word));
                SCOPED_TRACE(name + ", n " + std::to_string(n) + ", offset " + std::to_string(offset));
                body(ctx, random() % 2 ? n : n + head % 16, offset);
                if (testing::Test::HasFailure()) return;
            }
        }
    }
};
using WordKinds = testing::Types<c32i, c64i>;
TYPED_TEST_SUITE(ParallelWords, WordKinds);

TYPED_TEST(ParallelWords, AddAndSubCarryThroughBlocks) {
    using Word = TypeParam;
    this->for_cases(8192, [&](const ParallelContext& ctx, std::size_t n, std::size_t offset) {
        for (unsigned round = 0; round < 4; ++round) {
            auto [A, B] = test::carrying_pair<Word>(this->random, n, 4096);
            if (round == 0 && n > 0) { // one carry runs through everything
                for (std::size_t i = 0; i < n; ++i) B[i] = static_cast<Word>(~A[i]);
                B[0] = static_cast<Word>(B[0] + (A[0] != 0));
            }
            const bool carry = this->random() % 2;
            Target<Word> sum(n, offset), difference(B, offset);
            const bool carry_out = bp_add(sum, A.data(), B.data(), n, carry, ctx);
            const bool borrow_out = bp_sub(difference, A.data(), difference, n, carry, ctx);
            const Integer a = test::value(A), b = test::value(B), c(carry);
            ASSERT_EQ(sum.value() + Integer(carry_out).times_power<Word>(n), a + b + c);
            ASSERT_EQ(difference.value() + b + c, a + Integer(borrow_out).times_power<Word>(n));
            ASSERT_TRUE(sum.guards_stand() && difference.guards_stand());
        }
    });
}

/// The n words whose product with the odd x has all ones in its n lowest words.
template <class Word>
test::Words<Word> cofactor_of_ones(Word x, std::size_t n) {
    Word inverse = x; // modulo W, by Newton's iteration from 3 bits on
    for (unsigned i = 0; i < 5; ++i) inverse = static_cast<Word>(inverse * (2 - x * inverse));
    test::Words<Word> words(n);
    Word high = 0;
    for (Word& word : words) {
        word = static_cast<Word>(inverse * static_cast<Word>(ones<Word> - high));
        high = static_cast<Word>((static_cast<unsigned __int128>(word) * x + high) >> word_bits<Word>);
    }
    return words;
}

TYPED_TEST(ParallelWords, MulWordPassesHighWordsUp) {
    using Word = TypeParam;
    this->for_cases(20000, [&](const ParallelContext& ctx, std::size_t n, std::size_t offset) {
        for (unsigned round = 0; round < 4; ++round) {
            Word x = round == 1 ? ones<Word> : static_cast<Word>(this->random());
            auto A = test::piecewise<Word>(this->random, n, 20000);
            if (round == 0) A = cofactor_of_ones(x |= 1, n); // the carry of 1 then runs through all blocks
            const Word carry = round % 2 ? static_cast<Word>(this->random()) : static_cast<Word>(round == 0);
            Target<Word> product(A, offset);
            const Word high = round % 2 ? bp_mul_word(product, product, n, x, carry, ctx)
                                        : bp_mul_word(product, A.data(), n, x, carry, ctx);
            ASSERT_EQ(product.value() + Integer(high).times_power<Word>(n),
                      test::value(A) * Integer(x) + Integer(carry));
            ASSERT_TRUE(product.guards_stand());
        }
    });
}

TYPED_TEST(ParallelWords, AddCarryRipplesToWhereverItStops) {
    using Word = TypeParam;
    this->for_cases(8192, [&](const ParallelContext& ctx, std::size_t n, std::size_t offset) {
        if (n == 0) return;
        for (const int c : {1, -1, 3}) {
            const Word runs = c > 0 ? ones<Word> : Word{0};
            for (const std::size_t stop :
                 {std::size_t{0}, std::size_t{3}, std::size_t{4}, 8192 + this->random() % 16, n / 2, n - 1, n}) {
                test::Words<Word> A(n, runs);
                if (stop < n) A[stop] = 7;
                Target<Word> T(A, offset);
                const int out = bp_add_carry(c, T, n, ctx);
                ASSERT_EQ(out, stop < n ? 0 : c > 0 ? 1 : -1);
                const Integer whole = Integer(out != 0).times_power<Word>(n);
                if (c > 0) {
                    ASSERT_EQ(T.value() + whole, test::value(A) + Integer(static_cast<c64i>(c)));
                } else {
                    ASSERT_EQ(T.value() + Integer(1), test::value(A) + whole);
                }
                ASSERT_TRUE(T.guards_stand());
            }
        }
    });
}

TYPED_TEST(ParallelWords, ScanTopFindsTheTopmostOtherWord) {
    using Word = TypeParam;
    this->for_cases(16384, [&](const ParallelContext& ctx, std::size_t n, std::size_t offset) {
        for (const Word word : {Word{0}, ones<Word>, Word{77}}) {
            Target<Word> T(test::Words<Word>(n, word), offset);
            ASSERT_EQ(bp_scan_top(word, T, n, ctx), 0u);
            if (n == 0) continue;
            for (const std::size_t place : {std::size_t{0}, this->random() % n, this->random() % n, n - 1}) {
                T[place] = static_cast<Word>(word + 1);
                ASSERT_EQ(bp_scan_top(word, T, n, ctx), place + 1);
                T[place] = word;
            }
            T[0] = T[n / 3] = T[n / 2] = static_cast<Word>(word + 1);
            ASSERT_EQ(bp_scan_top(word, T, n, ctx), n / 2 + 1);
        }
    });
}

TYPED_TEST(ParallelWords, CopyFillAndNotTouchExactlyTheirWords) {
    using Word = TypeParam;
    for (const std::size_t least : {16384 + 0, static_cast<int>(131072 / sizeof(Word))}) {
        this->for_cases(least, [&](const ParallelContext& ctx, std::size_t n, std::size_t offset) {
            const auto A = test::piecewise<Word>(this->random, n);
            Target<Word> copied(n, offset), filled(n, offset), inverted(A, offset);
            const auto word = static_cast<Word>(this->random());
            bp_copy(copied, A.data(), n * sizeof(Word), ctx);
            bp_fill(filled, n, word, ctx);
            bp_not(inverted, inverted, n, ctx);
            ASSERT_EQ(copied.words(), A);
            ASSERT_EQ(filled.words(), test::Words<Word>(n, word));
            ASSERT_EQ(inverted.value() + test::value(A), Integer(1).times_power<Word>(n) - Integer(1));
            ASSERT_TRUE(copied.guards_stand() && filled.guards_stand() && inverted.guards_stand());
        });
    }
}

TYPED_TEST(ParallelWords, HashIsTheNumberModuloThePrime) {
    using Word = TypeParam;
    this->for_cases(10000, [&](const ParallelContext& ctx, std::size_t n, std::size_t offset) {
        const auto A = test::piecewise<Word>(this->random, n);
        Target<Word> T(A, offset);
        const std::uint64_t h = this->random() >> 3, prime = (std::uint64_t{1} << 61) - 1;
        const Integer continued = Integer(h).times_power<Word>(n) + test::value(A);
        ASSERT_EQ(bp_hash(h, T, n, ctx), continued.modulo(prime));
    });
}

using Windows = ParallelWords<wtype>;

/// The window as an integer, read as a caller would.
test::Words<wtype> read(const WordWindow& window, std::int64_t lo, std::size_t n) {
    test::Words<wtype> words(n, 99);
    window.read_window(lo, n, words.data());
    return words;
}

TEST_F(Windows, ReadWindowIsZeroOutsideTheNumber) {
    const test::Words<wtype> number{1, 2, 3, 4, 5};
    for (std::int64_t lo = -10; lo < 10; ++lo) {
        for (const std::size_t n : {0, 1, 3, 5, 12}) {
            const auto words = read({number.data(), number.size(), -2}, lo, n);
            for (std::size_t i = 0; i < n; ++i) {
                const std::int64_t at = lo + static_cast<std::int64_t>(i) + 2;
                ASSERT_EQ(words[i], at >= 0 && at < 5 ? static_cast<wtype>(at + 1) : 0);
            }
        }
    }
}

TEST_F(Windows, UaddAndUsubAtEveryOverlapOfTheOperands) {
    for_cases(4096, [&](const ParallelContext& ctx, std::size_t n, std::size_t offset) {
        for (unsigned round = 0; round < 8; ++round) {
            auto [A, B] = test::carrying_pair<wtype>(random, n + 1, 4096);
            const auto place = [&](const test::Words<wtype>& words) { // cuts either end off, or moves it out
                const std::size_t length = random() % 3 ? random() % (words.size() + 1) : words.size();
                const auto shift = static_cast<std::int64_t>(random() % (n + 20)) - 10;
                return WordWindow{words.data(), length, random() % 2 ? 0 : -100 + shift};
            };
            const WordWindow a = place(A), b = place(B);
            const std::int64_t lo = random() % 2 ? 0 : -100;
            const bool carry = random() % 2;
            Target<wtype> sum(n, offset), difference(n, offset);
            const auto hi = lo + static_cast<std::int64_t>(n);
            const bool carry_out = bp_uadd_window(sum, ctx, carry, a, b, lo, hi);
            const bool borrow_out = bp_usub_window(difference, ctx, carry, a, b, lo, hi);
            const Integer x = test::value(read(a, lo, n)), y = test::value(read(b, lo, n)), c(carry);
            ASSERT_EQ(sum.value() + Integer(carry_out).times_power<wtype>(n), x + y + c);
            ASSERT_EQ(difference.value() + y + c, x + Integer(borrow_out).times_power<wtype>(n));
            ASSERT_TRUE(sum.guards_stand() && difference.guards_stand());
        }
    });
}

} // namespace
