// Every kernel against GMP, under every kernel set that the machine runs.

#include "multiply/basecase/limb_products.h"
#include "multiply/basecase/mulb.h"
#include "multiply/basecase/mulb_kernels.h"
#include "multiply/integer.h"
#include "support/seed.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace zvp;
using MULB::ProductKernels;

struct NamedKernels {
    std::string name;
    ProductKernels kernels;
};

/// The supported sets' tables, then each cut in halves as early as the size of the scratch allows.
std::vector<NamedKernels> all_kernels() {
    std::vector<NamedKernels> all;
    for (const platform::KernelSet set : platform::all_kernel_sets)
        if (platform::kernel_set_supported(set))
            all.push_back({std::string(platform::kernel_set_name(set)), MULB::product_kernels(set)});
    for (std::size_t i = 0, sets = all.size(); i < sets; ++i) {
        NamedKernels deep = all[i];
        deep.name += ", halves from 8 limbs";
        deep.kernels.tiny_mul = 0;
        deep.kernels.karatsuba_mul = deep.kernels.karatsuba_sqr = 8;
        all.push_back(deep);
    }
    return all;
}

enum class Fill { random, ones, runs, equal_halves, low_half_greater, high_half_greater, count };

/// Words of one kind; the halves are those of whole limbs.
template <class Word>
std::vector<Word> operand(std::mt19937_64& random, std::size_t n, Fill fill) {
    std::vector<Word> words(n);
    Word run = 0;
    for (Word& word : words) {
        if (random() % 8 == 0) run = static_cast<Word>(~run);
        word = fill == Fill::ones   ? static_cast<Word>(~Word{0})
               : fill == Fill::runs ? run
                                    : static_cast<Word>(random());
    }
    constexpr std::size_t per_limb = 8 / sizeof(Word);
    const std::size_t half = ((n + per_limb - 1) / per_limb + 1) / 2 * per_limb;
    if (fill == Fill::equal_halves)
        std::copy(words.begin(), words.end() - std::min(half, n), words.begin() + std::min(half, n));
    if (fill == Fill::low_half_greater && half < n) words[n - 1] = words[n - 1] % 2;
    if (fill == Fill::high_half_greater) std::fill_n(words.begin() + std::min(half, n) - 1, 1, Word{0});
    return words;
}

/// Operands, target and scratch with nothing to spare: c32i arrays start 4 bytes behind a multiple of 8, and words that
/// nothing may touch stand around T and S.
template <class Word>
class Workbench {
public:
    Workbench(const std::vector<Word>& a_, const std::vector<Word>& b_)
        : a(a_.size()),
          b(b_.size()),
          m_a(shifted(a_)),
          m_b(shifted(b_)),
          m_t(a + b + 2),
          m_scratch_bytes(MULB::mul_scratch((a + b) * sizeof(Word) / 4 / 2 + (a + b) * sizeof(Word) / 4 % 2)),
          m_s(m_scratch_bytes + 16),
          m_expected(test::exact_product(a_, b_)) {}

    const Word* A() const { return m_a.data() + shift; }
    const Word* B() const { return m_b.data() + shift; }
    Word* T() { return m_t.data() + 1; }
    void* S() { return m_s.data() + 8; }

    /// Runs the kernel and tells whether T is the product and nothing else has changed.
    template <class Kernel>
    bool good(Kernel kernel) {
        std::fill(m_t.begin(), m_t.end(), static_cast<Word>(0x5A5A'A5A5'1234'8765));
        std::fill(m_s.begin(), m_s.end(), 0xC3);
        const std::vector<Word> t = m_t;
        kernel();
        const auto guard = [](unsigned char x) { return x == 0xC3; };
        return std::equal(m_expected.begin(), m_expected.end(), T()) && m_t.front() == t.front()
               && m_t.back() == t.back() && std::all_of(m_s.begin(), m_s.begin() + 8, guard)
               && std::all_of(m_s.begin() + 8 + static_cast<std::ptrdiff_t>(m_scratch_bytes), m_s.end(), guard);
    }

    const std::size_t a, b;

private:
    static constexpr std::size_t shift = sizeof(Word) == 4;
    static std::vector<Word> shifted(std::vector<Word> words) {
        words.insert(words.begin(), shift, 0);
        return words;
    }
    std::vector<Word> m_a, m_b, m_t;
    std::size_t m_scratch_bytes;
    std::vector<unsigned char> m_s;
    std::vector<Word> m_expected;
};

template <class Word>
void check(const NamedKernels& set, std::mt19937_64& random, std::size_t a, std::size_t b, Fill fill_a, Fill fill_b) {
    const MULB::Kernels<Word> k{set.kernels};
    const std::vector<Word> A = operand<Word>(random, a, fill_a), B = operand<Word>(random, b, fill_b);
    Workbench<Word> x(A, B);
    const auto say = [&](const char* kernel) {
        return ::testing::Message() << kernel << " of " << set.name << ", " << 8 * sizeof(Word)
                                    << "-bit words, a = " << a << ", b = " << b << ", fills "
                                    << static_cast<int>(fill_a) << " and " << static_cast<int>(fill_b) << ", "
                                    << test::seed_trace();
    };
    ASSERT_TRUE(x.good([&] { k.mul(x.A(), a, x.B(), b, x.T(), x.S()); })) << say("mul");
    ASSERT_TRUE(x.good([&] { k.mul(x.B(), b, x.A(), a, x.T(), x.S()); })) << say("mul, swapped");
    ASSERT_TRUE(x.good([&] { k.mulB(x.A(), a, x.B(), b, x.T()); })) << say("mulB");
    ASSERT_TRUE(x.good([&] { k.mulB(x.B(), b, x.A(), a, x.T()); })) << say("mulB, swapped");
    if (a != b) return;
    ASSERT_TRUE(x.good([&] { k.elm(x.A(), x.B(), a, x.T(), x.S()); })) << say("elm");
    ASSERT_TRUE(x.good([&] { k.elmB(x.A(), x.B(), a, x.T()); })) << say("elmB");
    Workbench<Word> y(A, A);
    ASSERT_TRUE(y.good([&] { k.sqr(y.A(), a, y.T(), y.S()); })) << say("sqr");
    ASSERT_TRUE(y.good([&] { k.sqrB(y.A(), a, y.T()); })) << say("sqrB");
}

Fill fill(unsigned i) { return static_cast<Fill>(i % static_cast<unsigned>(Fill::count)); }

template <class Word>
void check_all_fills(const NamedKernels& set, std::mt19937_64& random, std::size_t a, std::size_t b) {
    for (unsigned i = 0; i < static_cast<unsigned>(Fill::count); ++i) {
        check<Word>(set, random, a, b, fill(i), fill(i));
        check<Word>(set, random, a, b, fill(i), fill(static_cast<unsigned>(random())));
        if (::testing::Test::HasFatalFailure()) return;
    }
}

TEST(Basecase, EqualLengthsAcrossEveryCutOver) {
    std::mt19937_64 random(test::seed());
    for (const NamedKernels& set : all_kernels()) {
        for (std::size_t n = 1; n <= 300 && !HasFatalFailure(); n += n < 140 ? 1 : 23) {
            check_all_fills<c32i>(set, random, n, n);
            check_all_fills<c64i>(set, random, n, n);
        }
    }
}

TEST(Basecase, AllPairsOfShortLengths) {
    std::mt19937_64 random(test::seed() + 1);
    for (const NamedKernels& set : all_kernels()) {
        for (std::size_t a = 1; a <= 70; ++a) {
            for (std::size_t b = 1; b < a && !HasFatalFailure(); ++b) {
                const Fill x = fill(static_cast<unsigned>(random())), y = fill(static_cast<unsigned>(random()));
                check<c32i>(set, random, a, b, x, y);
                check<c64i>(set, random, a, b, x, y);
            }
        }
    }
}

TEST(Basecase, LongOperandsAtEveryRemainder) {
    std::mt19937_64 random(test::seed() + 2);
    for (const NamedKernels& set : all_kernels()) {
        for (const std::size_t b : {11, 13, 14, 25, 26, 27, 51, 52, 53, 64, 77, 129}) {
            for (const std::size_t slices : {1, 2, 3, 4, 5, 6, 9}) {
                for (const int off : {-27, -26, -14, -13, -1, 0, 1, 13, 14, 26, 27}) {
                    const auto a = static_cast<std::ptrdiff_t>(slices * b) + off;
                    if (a < 1 || HasFatalFailure()) continue;
                    check<c32i>(set, random, static_cast<std::size_t>(a), b, fill(static_cast<unsigned>(random())),
                                Fill::runs);
                    check<c64i>(set, random, static_cast<std::size_t>(a), b, Fill::runs,
                                fill(static_cast<unsigned>(random())));
                }
            }
        }
    }
}

// Beyond what fits the stack, odd words go to the caller's scratch, or make rows of their own.
TEST(Basecase, LongOddOperands) {
    std::mt19937_64 random(test::seed() + 3);
    for (const NamedKernels& set : all_kernels()) {
        const std::size_t pairs[][2] = {{257, 1},  {255, 1},   {1001, 1},   {1001, 2},  {1000, 3},
                                        {251, 11}, {253, 129}, {1001, 255}, {900, 301}, {2047, 2047}};
        for (const auto& [a, b] : pairs) check_all_fills<c32i>(set, random, a, b);
    }
}

// Limbs at the edges of their range, in every combination: both signs of the middle term, differences of 0, carries and
// borrows through whole halves.
TEST(Basecase, EveryCombinationOfEdgeLimbs) {
    constexpr c64i edges[] = {0, 1, c64i{1} << 63, ~c64i{0}};
    std::mt19937_64 random(test::seed() + 4);
    for (NamedKernels set : all_kernels()) {
        set.kernels.karatsuba_mul = set.kernels.karatsuba_sqr = 2;
        for (const std::size_t n : {2, 3, 4}) {
            const std::size_t combinations = std::size_t{1} << 4 * n;
            for (std::size_t i = 0; i < combinations && !HasFatalFailure(); ++i) {
                c64i x[8], t[8], s[64], expected[8];
                for (std::size_t j = 0; j < 2 * n; ++j) x[j] = edges[i >> 2 * j & 3];
                mpn_mul_n(expected, x, x + n, static_cast<mp_size_t>(n));
                MULB::multiply_equal(set.kernels, t, x, x + n, n, s);
                ASSERT_TRUE(std::equal(t, t + 2 * n, expected)) << set.name << ", " << n << " limbs, combination " << i;
                if (i >> 2 * n != 0) continue;
                mpn_sqr(expected, x, static_cast<mp_size_t>(n));
                MULB::square(set.kernels, t, x, n, s);
                ASSERT_TRUE(std::equal(t, t + 2 * n, expected)) << set.name << ", " << n << " limbs, square " << i;
            }
        }
    }
}

TEST(Basecase, FunctionsOfTheProcessTakeTheirArgumentsInOrder) {
    std::mt19937_64 random(test::seed() + 5);
    for (const std::size_t n : {5, 100}) {
        const auto check_kind = [&](auto word) {
            using Word = decltype(word);
            const std::vector<Word> A = operand<Word>(random, n, Fill::random),
                                    B = operand<Word>(random, n, Fill::random);
            Workbench<Word> x(A, operand<Word>(random, n / 2, Fill::random)), y(A, B), z(A, A);
            EXPECT_TRUE(x.good([&] { MULB::mul(x.A(), x.a, x.B(), x.b, x.T(), x.S()); }));
            EXPECT_TRUE(x.good([&] { MULB::mulB(x.A(), x.a, x.B(), x.b, x.T()); }));
            EXPECT_TRUE(y.good([&] { MULB::elm(y.A(), y.B(), n, y.T(), y.S()); }));
            EXPECT_TRUE(y.good([&] { MULB::elmB(y.A(), y.B(), n, y.T()); }));
            EXPECT_TRUE(z.good([&] { MULB::sqr(z.A(), n, z.T(), z.S()); }));
            EXPECT_TRUE(z.good([&] { MULB::sqrB(z.A(), n, z.T()); }));
        };
        check_kind(c32i{});
        check_kind(c64i{});
    }
}

// steps(13) = 0, steps(14) = 14, steps(27) = 28 + 14, steps(56) = 56 + 28 + 14.
TEST(Basecase, ScratchHasTheSizeThatOthersReserve) {
    EXPECT_EQ(MULB::mul_scratch(0), 4u);
    EXPECT_EQ(MULB::mul_scratch(13), 4u * 13 + 4);
    EXPECT_EQ(MULB::mul_scratch(14), 4u * (14 + 4 * (14 + 28)) + 4);
    EXPECT_EQ(MULB::mul_scratch(27), 4u * (27 + 4 * (28 + 14 + 54)) + 4);
    EXPECT_EQ(MULB::mul_scratch(56), 4u * (56 + 4 * (56 + 28 + 14 + 112)) + 4);
}

} // namespace
