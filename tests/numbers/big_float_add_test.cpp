#include "numbers/big_float_support.h"

namespace {

using namespace test;
using zvp::ParallelContext;

enum class Operation { add, sub, uadd, usub };

/// The sum of the operands cut at `low`, by GMP, signed.
mpz_class cut_sum(Operation operation, const BigFloat& A, const BigFloat& B, std::int64_t low) {
    const auto cut = [&](const BigFloat& f, bool as_signed) -> mpz_class {
        const mpq_class q = in_units(f, low);
        const mpz_class m = q.get_num() / q.get_den();
        return as_signed && !f.sign ? mpz_class(-m) : m;
    };
    const bool as_signed = operation == Operation::add || operation == Operation::sub;
    const mpz_class b = cut(B, as_signed);
    return cut(A, as_signed) + (operation == Operation::add || operation == Operation::uadd ? b : mpz_class(-b));
}

/// Runs the operation on just the capacity that it needs and compares with GMP.
void check_sum(Operation operation, std::size_t p, const ParallelContext& ctx, const Number& A, const Number& B) {
    SCOPED_TRACE(testing::Message() << "operation " << static_cast<int>(operation) << " p " << p << " tds " << ctx.tds
                                    << " A " << A.f.L << " at " << A.f.exp << " B " << B.f.L << " at " << B.f.exp);
    const std::int64_t top = std::max(A.f.top(), B.f.top());
    const std::int64_t low = std::max(top - static_cast<std::int64_t>(p + 1), std::min(A.f.exp, B.f.exp));
    const mpz_class expected = cut_sum(operation, A.f, B.f, low);
    Number T(static_cast<std::size_t>(top - low) + 1);
    switch (operation) {
    case Operation::add: T.f.set_add(p, ctx, A.f, B.f); break;
    case Operation::sub: T.f.set_sub(p, ctx, A.f, B.f); break;
    case Operation::uadd: T.f.set_uadd(p, ctx, A.f, B.f); break;
    case Operation::usub: T.f.set_usub(p, ctx, A.f, B.f); break;
    }
    expect_sound(T);
    EXPECT_TRUE(in_units(T.f, low) == abs(expected));
    if (T.f.L > 0) {
        EXPECT_EQ(T.f.exp, low);
        EXPECT_EQ(T.f.sign, expected > 0);
    }
}

TEST(BigFloatSums, KeepTheWordsBelowTheHigherTop) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    for (const std::int64_t origin : {std::int64_t{0}, (std::int64_t{1} << 61) - 1000, -(std::int64_t{1} << 61)}) {
        for (int round = 0; round < 600; ++round) {
            const std::size_t p = random() % (round % 4 == 0 ? 200 : 12);
            const Number A = random_number(random, 1 + random() % (2 * p + 4), origin, 2 * p + 3);
            Number B = random_number(random, 1 + random() % (2 * p + 4), origin, 2 * p + 3);
            if (round % 3 == 0) { // the same top words, so that they cancel
                B = Number(words_of(A.f), A.f.exp, random() % 2);
                B.f.T[random() % (B.f.L / 2 + 1)] ^= 1u << random() % 31;
                if (B.f.T[B.f.L - 1] == 0) B.f.T[B.f.L - 1] = 1;
            }
            check_sum(Operation::add, p, {}, A, B);
            check_sum(Operation::sub, p, {}, A, B);
            check_sum(Operation::uadd, p, {}, A, B);
            check_sum(Operation::usub, p, {}, ucmp(A.f, B.f) >= 0 ? A : B, ucmp(A.f, B.f) >= 0 ? B : A);
        }
    }
}

TEST(BigFloatSums, CarriesRunThroughTheBlocksOfAllTasks) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed() + 1);
    const auto framework = zvp::make_framework_config("pushpool")->make_framework();
    const std::size_t n = 120'000;
    const Number A = random_number(random, n);
    const Number B = random_number(random, n - 7777, 5000);
    const Number all_ones(Words(n, ones), 0);
    const Number one({1}, 0);
    const Number power({1}, static_cast<std::int64_t>(n));
    for (const std::uint32_t tds : task_counts) {
        const ParallelContext ctx{tds, framework.get()};
        for (const Operation operation : {Operation::add, Operation::sub}) {
            check_sum(operation, n, ctx, A, B);
            check_sum(operation, n / 2, ctx, B, A);
            check_sum(operation, n, ctx, all_ones, one);
            check_sum(operation, n, ctx, power, one);
            check_sum(operation, n, ctx, power, all_ones); // cancels down to one word
        }
    }
}

TEST(BigFloatSums, EdgesOfTheWindow) {
    const Number one({1}, 0);
    const Number tiny({1}, -10);
    Number T(13);
    T.f.set_uadd(3, {}, one.f, tiny.f);
    EXPECT_EQ(words_of(T.f), (Words{0, 0, 0, 1})) << "below the window";
    T.f.set_uadd(12, {}, one.f, tiny.f);
    EXPECT_EQ(words_of(T.f), (Words{1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1})) << "the gap holds zeros";
    EXPECT_EQ(T.f.exp, -10);

    const Number full({ones, ones, ones, ones}, 3);
    T.f.set_uadd(2, {}, full.f, full.f);
    EXPECT_EQ(words_of(T.f), (Words{ones - 1, ones, ones, 1})) << "grows past p + 1 words";

    const Number negative({5, 6}, 7, false);
    const Number positive({5, 6}, 7, true);
    T.f.set_add(5, {}, positive.f, negative.f);
    EXPECT_TRUE(T.f.L == 0 && T.f.exp == 0 && !T.f.sign);
    T.f.set_usub(5, {}, positive.f, negative.f);
    EXPECT_TRUE(T.f.L == 0 && T.f.exp == 0 && T.f.sign);
}

TEST(BigFloatSums, AZeroOperandLeavesTheOther) {
    const Number zero(Words{}, 0, false);
    const Number A({1, 2, 3, 4}, -900, false);
    Number T(4);
    const auto expect = [&](bool sign, const char* what) {
        EXPECT_EQ(words_of(T.f), (Words{2, 3, 4})) << what;
        EXPECT_TRUE(T.f.exp == -899 && T.f.sign == sign) << what;
    };
    T.f.set_add(1, {}, A.f, zero.f), expect(false, "A + 0");
    T.f.set_add(1, {}, zero.f, A.f), expect(false, "0 + A");
    T.f.set_sub(1, {}, A.f, zero.f), expect(false, "A - 0");
    T.f.set_sub(1, {}, zero.f, A.f), expect(true, "0 - A");
    T.f.set_uadd(2, {}, zero.f, A.f), expect(true, "|0| + |A|");
    T.f.set_usub(2, {}, A.f, zero.f), expect(true, "|A| - |0|");
    T.f.set_uadd(2, {}, zero.f, zero.f);
    EXPECT_EQ(T.f.L, 0u);
    for (const bool sign : {false, true}) {
        T.f.set_add(2, {}, zero.f, Number(Words{}, 0, sign).f);
        EXPECT_TRUE(T.f.L == 0 && T.f.exp == 0 && !T.f.sign) << "0 + 0, as a copied zero";
    }
}

TEST(BigFloatSums, ADifferenceMayNotBeNegative) {
    Number T(9);
    try {
        T.f.set_usub(5, {}, Number({4, 7}, 0).f, Number({5, 7}, 0).f);
        FAIL();
    } catch (const zvp::UnsupportedNegativeException& failure) {
        EXPECT_EQ(failure.function, "BigFloat::set_usub()");
        EXPECT_EQ(failure.message, "A negative value was encountered.");
    }
}

TEST(BigFloatSums, RsubWrapsAboveItsWindow) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed() + 2);
    for (int round = 0; round < 500; ++round) {
        const std::size_t p = random() % 10;
        const Number A = random_number(random, 1 + random() % 8, 0, 6);
        const Number B =
            round % 5 == 0 ? Number(words_of(A.f), A.f.exp) : random_number(random, 1 + random() % 8, 0, 6);
        const std::int64_t top = static_cast<std::int64_t>(random() % 12) - 4;
        const std::int64_t low = top - static_cast<std::int64_t>(p + 1);
        const mpz_class modulus = mpz_class(1) << 32 * (p + 1);
        mpz_class expected = cut_sum(Operation::usub, A.f, B.f, low) % modulus;
        if (expected < 0) expected += modulus;
        Number T(p + 1);
        T.f.set_rsub(p, {}, A.f, B.f, top, false);
        expect_sound(T);
        EXPECT_TRUE(in_units(T.f, low) == expected) << "p " << p << " top " << top;
        EXPECT_EQ(T.f.sign, expected == 0) << "a zero has sign 1";
    }
}

TEST(BigFloatOrder, TopsThenWordsThenWhatIsLeft) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed() + 3);
    for (int round = 0; round < 2000; ++round) {
        const Number A = random_number(random, random() % 300, 0, 2);
        const Number B = round % 2 ? random_number(random, random() % 300, 0, 2) : [&] {
            const std::size_t drop = A.f.L == 0 ? 0 : random() % A.f.L; // the same top words, fewer of them
            return Number(Words(A.f.T + drop, A.f.T + A.f.L), A.f.exp + static_cast<std::int64_t>(drop));
        }();
        const int expected = cmp(in_units(A.f, -10), in_units(B.f, -10));
        EXPECT_EQ(ucmp(A.f, B.f), (expected > 0) - (expected < 0));
        EXPECT_EQ(ucmp(B.f, A.f), (expected < 0) - (expected > 0));
    }
}

} // namespace
