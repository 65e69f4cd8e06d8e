#include "numbers/big_float_support.h"

namespace {

using namespace test;

/// |A * B| - |T| in units of the words that T keeps, which end at A's and B's lowest words where nothing is cut.
double lost(std::size_t p, const BigFloat& A, const BigFloat& B, const BigFloat& T) {
    const std::size_t AL = std::min(A.L, p + 2), BL = std::min(B.L, p + 2);
    const std::size_t kept = std::min(AL + BL, p + 2);
    const std::int64_t unit = A.top() + B.top() - static_cast<std::int64_t>(kept);
    EXPECT_EQ(T.exp, unit);
    EXPECT_GE(T.L + 1, kept);
    const mpq_class product = mpq_class(integer(A.T, A.L) * integer(B.T, B.L)) >> 32 * (unit - A.exp - B.exp);
    return mpq_class(product - in_units(T, unit)).get_d();
}

/// The sizes of the operands of a table of products: p, A, B.
struct Sizes {
    std::size_t p, A, B;
};

std::vector<Sizes> product_sizes(std::mt19937_64& random, std::size_t reach) {
    std::vector<Sizes> sizes = {{0, 1, 1}, {0, 2, 1}, {0, 9, 9}, {1, 5, 2}, {18, 10, 10}, {17, 10, 10}, {30, 9, 23}};
    for (int i = 0; i < 400; ++i) {
        const std::size_t p = random() % (i % 2 ? 12 : 90);
        sizes.push_back({p, 1 + random() % (2 * p + 4), 1 + random() % (2 * p + 4)});
    }
    // Around every limit of the table: whole products, and cut ones that hold both operands in full.
    for (const auto& row : zvp::algorithm_table<zvp::wtype>().rows) {
        for (const std::size_t n : {row.limit - 1, row.limit, row.limit + 1}) {
            if (n > reach) continue;
            for (const std::size_t A : {n / 2, n / 3, n - 11, n - 3}) sizes.push_back({n, A, n - A});
            sizes.push_back({n / 2 - 2, n, n / 2});
            sizes.push_back({n / 3, n / 3 + 2, n / 3});
        }
    }
    return sizes;
}

void expect_product(std::size_t p, const BigFloat& A, const BigFloat& B, const Number& T, const char* operation) {
    SCOPED_TRACE(operation);
    expect_sound(T);
    EXPECT_EQ(T.f.sign, A.sign == B.sign);
    const std::size_t AL = std::min(A.L, p + 2), BL = std::min(B.L, p + 2);
    const bool carries_left_out = std::string(zvp::algorithm_table<zvp::wtype>().get_algorithm(AL + BL).id) == "HNT";
    const int bound = (A.L > AL) + (B.L > BL) + (AL + BL > p + 2 ? 1 + 2 * carries_left_out : 0);
    const double loss = lost(p, A, B, T.f);
    EXPECT_TRUE(loss == 0 || (loss > 0 && loss < bound)) << loss << " of " << bound;
}

TEST(BigFloatProducts, LoseAUnitForEachCutAndNothingWhenWhole) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    Multiplier multiplier(3);
    for (const auto& [p, AL, BL] : product_sizes(random, multiplier.reach)) {
        SCOPED_TRACE(testing::Message() << "p " << p << " A " << AL << " B " << BL);
        const std::size_t a = std::min(AL, p + 2), b = std::min(BL, p + 2);
        for (const std::int64_t origin : {std::int64_t{0}, std::int64_t{1} << 60, -(std::int64_t{1} << 60)}) {
            if (origin != 0 && AL + BL > 100) continue;
            const Number A = random_number(random, AL, origin, 9);
            const Number B = random_number(random, BL, -origin, 9);
            Number T(std::min(a + b, p + 2)), U(T.f.capacity), S(std::min(2 * a, p + 2));
            T.f.set_mul(p, multiplier.pars, A.f, B.f);
            expect_product(p, A.f, B.f, T, "set_mul");
            U.f.set_mul_small(p, multiplier.pars, A.f, B.f);
            expect_product(p, A.f, B.f, U, "set_mul_small");
            if (2 * a > multiplier.reach) continue;
            S.f.set_sqr(p, multiplier.pars, A.f);
            expect_product(p, A.f, A.f, S, "set_sqr");
        }
    }
}

TEST(BigFloatProducts, TheBoundHoldsForTheWorstCut) {
    // All words ones, so that each cut drops the most that it can.
    Multiplier multiplier;
    for (const std::size_t p : {0u, 1u, 7u, 50u}) {
        const Number A(Words(3 * p + 9, ones), 0);
        Number T(p + 2);
        T.f.set_mul(p, multiplier.pars, A.f, A.f);
        EXPECT_LT(lost(p, A.f, A.f, T.f), 3);
        EXPECT_GT(lost(p, A.f, A.f, T.f), 1.9) << "or the test isn't the worst case";
        T.f.set_sqr(p, multiplier.pars, A.f);
        EXPECT_LT(lost(p, A.f, A.f, T.f), 3);
    }
}

TEST(BigFloatProducts, LongOnesMissNoMoreThanTwoCarries) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed() + 1);
    Multiplier multiplier;
    const std::size_t n = zvp::algorithm_table<zvp::wtype>().rows[1].limit / 2 + 1;
    for (int round = 0; round < 6; ++round) {
        Number A(Words(n, ones), 0), B(Words(n, random() % 2 ? ones : 0), 0);
        for (Number* X : {&A, &B}) X->f.T[random() % n] ^= 1u << random() % 32, X->f.T[n - 1] |= 1;
        const std::size_t p = n - 2 - round % 2;
        Number T(p + 2);
        T.f.set_mul(p, multiplier.pars, A.f, B.f);
        expect_product(p, A.f, B.f, T, "set_mul");
        T.f.set_sqr(p, multiplier.pars, B.f);
        expect_product(p, B.f, B.f, T, "set_sqr");
    }
}

TEST(BigFloatProducts, ZerosAndTopWords) {
    Multiplier multiplier;
    const Number zero(Words{}, 0);
    const Number small({3}, 4, false);
    const Number large({ones}, 5);
    Number T(2);
    T.f.set_mul(9, multiplier.pars, small.f, large.f);
    EXPECT_EQ(words_of(T.f), (Words{ones - 2, 2}));
    T.f.set_mul(9, multiplier.pars, small.f, small.f);
    EXPECT_EQ(words_of(T.f), (Words{9})) << "the high word of the product is zero";
    EXPECT_TRUE(T.f.sign && T.f.exp == 8);
    T.f.set_mul(9, multiplier.pars, zero.f, large.f);
    EXPECT_TRUE(T.f.L == 0 && T.f.exp == 0 && !T.f.sign);
    T.f.set_mul_small(9, multiplier.pars, large.f, zero.f);
    EXPECT_TRUE(T.f.L == 0 && T.f.exp == 0 && !T.f.sign);
    T.f.set_sqr(9, multiplier.pars, zero.f);
    EXPECT_TRUE(T.f.L == 0 && T.f.exp == 0 && T.f.sign);
}

TEST(BigFloatProducts, SizesBeyondTheTableAndTheScratchAreRefused) {
    Multiplier multiplier;
    const std::uint64_t limit = zvp::algorithm_table<zvp::wtype>().rows.back().limit;
    if (limit <= multiplier.reach) {
        const Number A(Words(limit / 2 + 1, 1), 0);
        Number T(limit + 2);
        EXPECT_THROW(T.f.set_mul(limit, multiplier.pars, A.f, A.f), zvp::LimitExceededException);
        EXPECT_THROW(T.f.set_sqr(limit, multiplier.pars, A.f), zvp::LimitExceededException);
    }
    const Number A(Words(90, 1), 0);
    Number T(180);
    multiplier.pars.ML = 64;
    EXPECT_THROW(T.f.set_mul(178, multiplier.pars, A.f, A.f), zvp::BufferTooSmallException);
    EXPECT_THROW(T.f.set_sqr(178, multiplier.pars, A.f), zvp::BufferTooSmallException);
}

} // namespace
