// The serial loops of every kernel set, against GMP.

#include "multiply/words/word_loops.h"

#include "multiply/words/limb_kernels.h"
#include "operands.h"

#include <array>
#include <numeric>

namespace {

using namespace zvp;
using test::Integer;
using test::ones;
using test::Target;

template <class Word>
struct WordLoops : testing::Test {
    static constexpr std::array<Word, 7> extremes{
        0, 1, 2, ones<Word>, static_cast<Word>(ones<Word> - 1), static_cast<Word>(ones<Word> / 2 + 1), 0x9E37'79B9};
    std::mt19937_64 random{test::seed()};

    /// Lengths on both sides of the unrolled rounds and vectors.
    std::vector<std::size_t> lengths() {
        std::vector<std::size_t> list(80);
        std::iota(list.begin(), list.end(), std::size_t{0});
        list.insert(list.end(), {127, 128, 129, 500, 1000 + random() % 1000});
        return list;
    }
};
using WordKinds = testing::Types<c32i, c64i>;
TYPED_TEST_SUITE(WordLoops, WordKinds);

TYPED_TEST(WordLoops, AddAndSubtractCarryAtEveryLengthAndAlignment) {
    using Word = TypeParam;
    SCOPED_TRACE(test::seed_trace());
    for (const std::size_t n : this->lengths()) {
        for (unsigned round = 0; round < 12; ++round) {
            SCOPED_TRACE("n " + std::to_string(n) + ", round " + std::to_string(round));
            const auto [A, B] = test::carrying_pair<Word>(this->random, n, 16);
            const bool carry = this->random() % 2;
            Target<Word> sum(n, round), difference(A, round), other(B, round);
            const bool carry_out = add_words(sum, A.data(), B.data(), n, carry);
            const bool borrow_out = subtract_words(difference, difference, B.data(), n, carry); // in place
            const bool other_out = subtract_words(other, A.data(), other, n, carry);
            const Integer a = test::value(A), b = test::value(B), c(carry);
            EXPECT_EQ(sum.value() + Integer(carry_out).times_power<Word>(n), a + b + c);
            EXPECT_EQ(difference.value() - Integer(borrow_out).times_power<Word>(n), a - b - c);
            EXPECT_EQ(other.words(), difference.words());
            EXPECT_EQ(other_out, borrow_out);
            ASSERT_TRUE(sum.guards_stand() && difference.guards_stand() && other.guards_stand());
        }
    }
}

TYPED_TEST(WordLoops, MultiplyAndMultiplyAddGiveTheFullProduct) {
    using Word = TypeParam;
    SCOPED_TRACE(test::seed_trace());
    for (const std::size_t n : this->lengths()) {
        for (const Word x : TestFixture::extremes) {
            SCOPED_TRACE("n " + std::to_string(n) + ", x " + std::to_string(x));
            const std::size_t offset = this->random() % 16;
            const bool all_ones = this->random() % 4 == 0;
            const auto A = all_ones ? test::Words<Word>(n, ones<Word>) : test::piecewise<Word>(this->random, n);
            const auto S = all_ones ? A : test::piecewise<Word>(this->random, n);
            const Word carry = TestFixture::extremes[this->random() % TestFixture::extremes.size()];
            Target<Word> product(A, offset), sum(S, offset);
            const Word high = mul_word(product, product, n, x, carry);
            const Word sum_high = mul_add_word(sum, A.data(), n, x, carry);
            const Integer expected = test::value(A) * Integer(x) + Integer(carry);
            EXPECT_EQ(product.value() + Integer(high).times_power<Word>(n), expected);
            EXPECT_EQ(sum.value() + Integer(sum_high).times_power<Word>(n), expected + test::value(S));
            ASSERT_TRUE(product.guards_stand() && sum.guards_stand());
        }
    }
}

TEST(LimbKernels, EverySetGivesWhatTheBaselineGives) {
    SCOPED_TRACE(test::seed_trace());
    std::mt19937_64 random(test::seed());
    const LimbKernels& baseline = limb_kernels(platform::KernelSet::sse3);
    EXPECT_EQ(limb_kernels().set, platform::active_kernel_set());
    for (const platform::KernelSet set : platform::all_kernel_sets) {
        if (!platform::kernel_set_supported(set)) continue;
        const LimbKernels& kernels = limb_kernels(set);
        EXPECT_EQ(kernels.set, set);
        for (std::size_t n = 0; n < 200; ++n) {
            SCOPED_TRACE(std::string(platform::kernel_set_name(set)) + ", limbs " + std::to_string(n));
            const auto operands = test::carrying_pair<c64i>(random, n, 8);
            const test::Words<c64i>&A = operands.first, &B = operands.second;
            test::Words<c64i> T = B, U = B;
            const bool carry = random() % 2;
            const c64i x = random() % 4 == 0 ? ones<c64i> : random(), high = random() % 2 == 0 ? ones<c64i> : random();
            const auto same = [&](auto member, auto... rest) {
                EXPECT_EQ((kernels.*member)(T.data(), A.data(), rest...),
                          (baseline.*member)(U.data(), A.data(), rest...));
                EXPECT_EQ(T, U);
            };
            same(&LimbKernels::add, B.data(), n, carry);
            same(&LimbKernels::subtract, B.data(), n, carry);
            same(&LimbKernels::mul_add, n, x, high);
            same(&LimbKernels::mul, n, x, high);
        }
    }
}

TYPED_TEST(WordLoops, RipplesRunToTheTopAndOut) {
    using Word = TypeParam;
    for (const std::size_t n : {0, 1, 2, 5}) {
        for (std::size_t stop = 0; stop <= n; ++stop) { // the word that ends the ripple, or none
            for (const int c : {-2, -1, 0, 1, 2}) {
                SCOPED_TRACE("n " + std::to_string(n) + ", stop " + std::to_string(stop) + ", c " + std::to_string(c));
                const Word runs = c > 0 ? ones<Word> : Word{0};
                test::Words<Word> A(n, runs);
                if (stop < n) A[stop] = 5;
                test::Words<Word> T = A;
                const int out = carry_ripple(c, T.data(), n);
                const Integer up(c > 0 ? static_cast<c64i>(c) : 0), down(c < 0 ? static_cast<c64i>(-c) : 0);
                if (n > 0) {
                    EXPECT_EQ(out, stop < n || c == 0 ? 0 : c > 0 ? 1 : -1);
                    const Integer gone_up = Integer(out > 0).times_power<Word>(n);
                    const Integer gone_down = Integer(out < 0).times_power<Word>(n);
                    EXPECT_EQ(test::value(T) + gone_up - gone_down, test::value(A) + up - down);
                }
                T = A;
                if (c > 0) {
                    EXPECT_EQ(add_word(T.data(), n, static_cast<Word>(c)), stop == n);
                }
            }
        }
    }
}

} // namespace
