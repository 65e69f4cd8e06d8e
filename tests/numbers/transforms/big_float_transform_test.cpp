#include "transform_support.h"

#include <thread>

namespace {

using namespace test;

/// The words of A * B that an operation is to deliver, from GMP.
struct Wanted {
    Wanted(const Bench& bench, const BigFloat& A, const BigFloat& B, std::int64_t ie, std::int64_t te) {
        if (A.L == 0 || B.L == 0 || te <= ie) return;
        const std::int64_t base = A.exp + B.exp;
        const auto P = static_cast<std::int64_t>(A.L + B.L);
        const std::int64_t folded = std::max<std::int64_t>(P - static_cast<std::int64_t>(bench.words()), 0);
        exp = std::max(ie - 2, base + folded);
        n = std::min(te, base + P - folded) - exp;
        const mpz_class product = integer(A.T, A.L) * integer(B.T, B.L);
        words = modulo(product >> 32 * (exp - base));
        if (bench.drops_carries() && exp > base) least = -2;
        if (folded == 0 || !bench.folds()) return;
        // What the fold carries or borrows passes the words below the window only if they are all alike.
        const std::int64_t below = exp - base - folded;
        mpz_class rest;
        mpz_fdiv_r_2exp(rest.get_mpz_t(), mpz_class(product >> 32 * folded).get_mpz_t(), 32 * below);
        if (rest != 0 && rest != (mpz_class(1) << 32 * below) - 1) return;
        --least;
        ++most;
    }

    mpz_class modulo(const mpz_class& x) const {
        mpz_class r;
        mpz_fdiv_r_2exp(r.get_mpz_t(), x.get_mpz_t(), n > 0 ? 32 * n : 0);
        return r;
    }

    std::int64_t exp = 0;
    std::int64_t n = 0;
    mpz_class words;
    int least = 0; // units of the lowest word that may be too many or too few
    int most = 0;
};

void expect_window(const char* operation, const Number& T, const Wanted& wanted, bool sign) {
    SCOPED_TRACE(operation);
    expect_sound(T);
    if (wanted.n <= 0) {
        EXPECT_TRUE(T.f.L == 0 && !T.f.sign);
        return;
    }
    EXPECT_EQ(T.f.sign, T.f.L == 0 || sign);
    EXPECT_EQ(T.f.exp, T.f.L > 0 ? wanted.exp : 0);
    const mpz_class off = wanted.modulo(integer(T.f.T, T.f.L) - wanted.words - wanted.least);
    EXPECT_LE(off, wanted.most - wanted.least);
}

/// All operations that make a window of A * B or of A^2. Operands are whole.
void try_window(Bench& bench, const zvp::MultiplyParameters& pars, const BigFloat& A, const BigFloat& B,
                std::int64_t ie, std::int64_t te) {
    const std::size_t whole = std::max(A.L, B.L);
    const Wanted wanted(bench, A, B, ie, te);
    const bool sign = A.sign == B.sign;
    Number T(static_cast<std::size_t>(std::max<std::int64_t>(wanted.n, 0)));
    BigFloatTransformR b;
    BigFloatTransformR::mul_rr_xx(pars, bench.tr, bench.M, T.f, ie, te, bench.Xa, A, whole, bench.Xb, B, whole);
    expect_window("mul_rr_xx", T, wanted, sign);
    BigFloatTransformR::mul_rr_xf(pars, bench.tr, bench.M, T.f, ie, te, bench.Xa, A, whole, bench.Xb, B, whole, b);
    expect_window("mul_rr_xf", T, wanted, sign);
    BigFloatTransformR::mul_rf_xf(pars, bench.tr, bench.M, T.f, ie, te, bench.Xa, A, whole, b);
    expect_window("mul_rf_xf", T, wanted, sign);
    bench.expect_intact();
}

void try_square(Bench& bench, const zvp::MultiplyParameters& pars, const BigFloat& A, std::int64_t ie,
                std::int64_t te) {
    const Wanted wanted(bench, A, A, ie, te);
    Number T(static_cast<std::size_t>(std::max<std::int64_t>(wanted.n, 0)));
    BigFloatTransformR a;
    BigFloatTransformR::sqr_rx_xf(pars, bench.tr, bench.M, T.f, ie, te, bench.Xa, A, A.L, bench.Xb, a);
    expect_window("sqr_rx_xf", T, wanted, true);
    a.inverse_fsqr(pars, bench.M, T.f, ie, te, bench.Xa);
    expect_window("inverse_fsqr beside its form", T, wanted, true);
    a.inverse_fsqr(pars, bench.M, T.f, ie, te, bench.Xb);
    expect_window("inverse_fsqr over its form", T, wanted, true);
    EXPECT_EQ(a.X == nullptr, wanted.n > 0) << "consumed when destroyed";
    bench.expect_intact();
}

/// Operands of AL and BL words and ranges of every kind that the transform can serve.
void try_ranges(Bench& bench, const zvp::MultiplyParameters& pars, std::mt19937_64& random, std::size_t AL,
                std::size_t BL) {
    SCOPED_TRACE(testing::Message() << bench.tr.name() << " of " << bench.words() << " words, A " << AL << " B " << BL);
    const Number A = random_number(random, AL, 7, 100);
    const Number B = random_number(random, BL, -7, 100);
    const auto P = static_cast<std::int64_t>(AL + BL);
    const std::int64_t folded = std::max<std::int64_t>(P - static_cast<std::int64_t>(bench.words()), 0);
    const std::int64_t lo = A.f.exp + B.f.exp + folded, hi = lo + P - 2 * folded;
    const auto between = [&](std::int64_t a, std::int64_t b) {
        return a + static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(b - a + 1));
    };
    std::vector<std::pair<std::int64_t, std::int64_t>> ranges = {{lo, hi}, {hi, hi}, {lo, lo}};
    if (lo < hi) {
        const std::int64_t ie = between(lo, hi - 1), te = between(ie + 1, hi);
        ranges.insert(ranges.end(), {{ie, te}, {lo, te}, {ie, hi}, {between(lo, te), te}});
    }
    if (folded == 0) {
        const std::int64_t out = between(1, 9);
        ranges.insert(ranges.end(), {{lo - out, hi + out}, {lo - 2 * out, lo - out}, {hi, hi + out}, {hi + 2, hi + 9}});
    }
    for (const auto& [ie, te] : ranges) {
        SCOPED_TRACE(testing::Message() << "range " << ie - lo << " to " << te - lo << " of 0 to " << hi - lo);
        try_window(bench, pars, A.f, B.f, ie, te);
    }
    const std::int64_t down = A.f.exp - B.f.exp;
    if (AL != BL) return;
    for (const auto& [ie, te] : ranges) try_square(bench, pars, A.f, ie + down, te + down);
}

TEST(TransformProducts, EveryWindowHasTheWordsOfTheProduct) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    const Multiplier multiplier;
    for (const std::size_t length : {2u, 20u, 199u, 200u, 201u, 230u, 333u, 1000u, 4000u}) {
        Bench bench(multiplier.pars, length);
        const std::size_t C = bench.words();
        for (int i = 0; i < 12; ++i) try_ranges(bench, multiplier.pars, random, 1 + random() % C, 1 + random() % C);
        for (const std::size_t A : {C / 2, C / 2 + 1, C - 1, C}) try_ranges(bench, multiplier.pars, random, A, A);
        try_ranges(bench, multiplier.pars, random, C, 1);
        try_ranges(bench, multiplier.pars, random, C - 1, 1);
    }
    for (const auto& row : zvp::algorithm_table<zvp::wtype>().rows) { // around every border of the table
        for (const std::uint64_t length : {row.limit, row.limit + 1}) {
            if (length > multiplier.reach) continue;
            Bench bench(multiplier.pars, length);
            const std::size_t C = bench.words();
            try_ranges(bench, multiplier.pars, random, length / 2, length - length / 2);
            try_ranges(bench, multiplier.pars, random, C - C / 5, C - C / 3);
        }
    }
}

TEST(TransformProducts, PrecisionKeepsGuardWordsAndTheirBound) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    const Multiplier multiplier;
    for (const std::size_t p : {0u, 1u, 7u, 60u, 98u, 99u, 300u, 3000u, 240000u}) {
        Bench bench(multiplier.pars, 2 * p + 4);
        if (bench.words() > multiplier.reach) continue;
        for (int i = 0; i < (p < 1000 ? 24 : 4); ++i) {
            const bool worst = i < 2; // all ones, so that each cut drops the most that it can
            const std::size_t AL = worst ? 3 * p + 9 : 1 + random() % (2 * p + 6);
            const std::size_t BL = worst ? 3 * p + 9 : 1 + random() % (2 * p + 6);
            SCOPED_TRACE(testing::Message() << "p " << p << " A " << AL << " B " << BL);
            const Number A(worst ? Words(AL, ones) : random_words(random, AL), 5, false);
            const Number B(worst ? Words(BL, ones) : random_words(random, BL), -999);
            const bool cut = std::max(AL, BL) > p + 2;
            const auto expect_loss = [&](const char* operation, const BigFloat& X, const BigFloat& Y, const Number& T) {
                SCOPED_TRACE(operation);
                expect_sound(T);
                const std::size_t P = std::min(X.L, p + 2) + std::min(Y.L, p + 2), kept = std::min(P, p + 2);
                EXPECT_EQ(T.f.exp, X.top() + Y.top() - static_cast<std::int64_t>(kept));
                EXPECT_GE(T.f.L + 1, kept);
                const mpq_class exact =
                    mpq_class(integer(X.T, X.L) * integer(Y.T, Y.L)) >> 32 * (T.f.exp - X.exp - Y.exp);
                const double loss = mpq_class(exact - in_units(T.f, T.f.exp)).get_d();
                EXPECT_TRUE(loss >= 0 && loss < (cut ? 3 : 1) + (bench.drops_carries() ? 2 : 0)) << loss;
                EXPECT_TRUE(loss == 0 || X.L + Y.L > p + 2) << loss;
                EXPECT_EQ(T.f.sign, X.sign == Y.sign);
            };
            BigFloatTransformR a, b;
            Number T(p + 2);
            b.forward(multiplier.pars, bench.tr, bench.M, B.f, p, bench.Xb);
            a.forward(multiplier.pars, bench.tr, bench.M, A.f, p, bench.Xa);
            EXPECT_TRUE(a.L == std::min(AL, p + 2) && a.top == A.f.top() && !a.sign);
            EXPECT_EQ(a.exp, A.f.top() - static_cast<std::int64_t>(a.L)) << "that of the cut operand";
            a.inverse_fmul(multiplier.pars, bench.M, T.f, p, b);
            expect_loss("inverse_fmul", A.f, B.f, T);
            EXPECT_TRUE(!a.X && b.X);
            b.inverse_fmul(multiplier.pars, bench.M, T.f, p, b);
            expect_loss("inverse_fmul by itself", B.f, B.f, T);
            BigFloatTransformR::sqr_r_x(multiplier.pars, bench.tr, bench.M, T.f, p, bench.Xa, A.f);
            expect_loss("sqr_r_x", A.f, A.f, T);
            bench.expect_intact();
        }
    }
}

TEST(TransformProducts, AWindowOfZerosIsZeroWithSignOne) {
    const Multiplier multiplier;
    for (const std::size_t length : {200u, 2000u}) {
        Bench bench(multiplier.pars, length);
        Words words(61, 0);
        words.front() = words.back() = 3;
        const Number A(words, 0, false), B({5}, 0);
        Number T(32);
        T.f.L = 1;
        T.f.T[0] = 1;
        BigFloatTransformR::mul_rr_xx(multiplier.pars, bench.tr, bench.M, T.f, 10, 40, bench.Xa, A.f, 99, bench.Xb, B.f,
                                      99);
        EXPECT_TRUE(T.f.L == 0 && T.f.exp == 0 && T.f.sign);
        BigFloatTransformR::mul_rr_xx(multiplier.pars, bench.tr, bench.M, T.f, 31, 61, bench.Xa, A.f, 99, bench.Xb, B.f,
                                      99);
        EXPECT_EQ(T.f.top(), 61) << "or the product isn't what it should be";
        EXPECT_FALSE(T.f.sign);
    }
}

TEST(TransformProducts, ZeroOperandsRunNoTransformButTheOneThatIsKept) {
    const Multiplier multiplier;
    for (const std::size_t length : {20u, 1000u}) {
        const Number zero(Words{}, 0), B({7, 9}, 4, false);
        const auto try_zero = [&](const char* what, bool Xa_used, bool Xb_used, auto&& operation) {
            SCOPED_TRACE(what);
            Bench bench(multiplier.pars, length);
            Number T({1, 2}, 8);
            BigFloatTransformR out;
            operation(bench, T.f, out);
            EXPECT_TRUE(T.f.L == 0 && T.f.exp == 0 && !T.f.sign);
            EXPECT_TRUE(bench.Xa.untouched() == !Xa_used && bench.Xb.untouched() == !Xb_used);
            EXPECT_TRUE(out.L == 0 ? !out.X : out.L == 2 && out.X && out.exp == 4 && out.top == 6 && !out.sign);
            EXPECT_EQ(out.L == 0, !Xb_used);
        };
        const auto& pars = multiplier.pars;
        const auto product = [&](const Number& A, const Number& C, std::int64_t te) {
            return [&, te](Bench& b, BigFloat& T, BigFloatTransformR& out) {
                BigFloatTransformR::mul_rr_xf(pars, b.tr, b.M, T, 0, te, b.Xa, A.f, 9, b.Xb, C.f, 9, out);
            };
        };
        try_zero("zero by a kept one", false, true, product(zero, B, 99));
        try_zero("a kept zero", false, false, product(B, zero, 99));
        try_zero("an empty range", false, true, product(B, B, 0));
        try_zero("a range below", false, true, product(B, B, 7));
        try_zero("an empty square", false, true, [&](Bench& b, BigFloat& T, BigFloatTransformR& out) {
            BigFloatTransformR::sqr_rx_xf(pars, b.tr, b.M, T, 3, 3, b.Xa, B.f, 9, b.Xb, out);
        });
        try_zero("zero squared", false, false, [&](Bench& b, BigFloat& T, BigFloatTransformR&) {
            BigFloatTransformR::sqr_r_x(pars, b.tr, b.M, T, 9, b.Xa, zero.f);
        });
        try_zero("a transform of zero", false, true, [&](Bench& b, BigFloat& T, BigFloatTransformR& out) {
            BigFloatTransformR none;
            none.forward(pars, b.tr, b.M, zero.f, 9, b.Xa);
            out.forward(pars, b.tr, b.M, B.f, 9, b.Xb);
            none.inverse_fsqr(pars, b.M, T, 0, 9, b.Xa);
            none.inverse_fmul(pars, b.M, T, 9, out);
            out.inverse_fmul(pars, b.M, T, 9, none);
            BigFloatTransformR::mul_rf_xf(pars, b.tr, b.M, T, 0, 9, b.Xa, B.f, 9, none);
        });
    }
}

TEST(TransformProducts, TheTargetMayBeAnOperand) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    const Multiplier multiplier;
    for (const std::size_t n : {5u, 90u, 700u, 240000u}) {
        if (2 * n > multiplier.reach) continue;
        Bench bench(multiplier.pars, 2 * n);
        Number A(random_words(random, n), 3, false, n + 3);
        std::move_backward(A.f.T, A.f.T + n, A.f.T + n + 3); // T lies above the buffer
        A.f.T += 3;
        const Number copy(words_of(A.f), 3, false);
        BigFloatTransformR::sqr_r_x(multiplier.pars, bench.tr, bench.M, A.f, 2 * n, bench.Xa, A.f);
        expect_window("sqr_r_x", A, Wanted(bench, copy.f, copy.f, -9, 999999), true);
        Number C(copy.f.L * 2);
        C.f.set_BigFloat(n, multiplier.pars, copy.f);
        BigFloatTransformR::mul_rr_xx(multiplier.pars, bench.tr, bench.M, C.f, -9, 999999, bench.Xa, C.f, n, bench.Xb,
                                      C.f, n);
        expect_window("mul_rr_xx", C, Wanted(bench, copy.f, copy.f, -9, 999999), true);
    }
}

TEST(TransformProducts, AKeptFormServesManyProductsAtOnce) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    const Multiplier multiplier;
    for (const std::size_t length : {180u, 1500u}) {
        Bench shared(multiplier.pars, length);
        const Number B = random_number(random, length / 2);
        BigFloatTransformR b;
        b.forward(multiplier.pars, shared.tr, shared.M, B.f, length, shared.Xb);
        const std::vector<std::byte> form(b.X, b.X + shared.Xb.bytes);

        std::vector<Number> operands;
        for (int i = 0; i < 24; ++i) operands.push_back(random_number(random, 1 + random() % (length / 2)));
        std::vector<Words> results(operands.size());
        const auto work = [&](std::size_t first) {
            Area M(shared.tr.scratch_bytes), Xa(shared.tr.transform_bytes);
            for (std::size_t i = first; i < operands.size(); i += 4) {
                const BigFloat& A = operands[i].f;
                Number T(A.L + B.f.L);
                const std::int64_t low = A.exp + B.f.exp, high = A.top() + B.f.top();
                BigFloatTransformR::mul_rf_xf(multiplier.pars, shared.tr, M, T.f, low, high, Xa, A, length, b);
                results[i] = words_of(T.f);
            }
        };
        std::vector<std::thread> threads;
        for (std::size_t first = 0; first < 4; ++first) threads.emplace_back(work, first);
        for (std::thread& thread : threads) thread.join();
        for (std::size_t i = 0; i < operands.size(); ++i) {
            const BigFloat& A = operands[i].f;
            const mpz_class expected = integer(A.T, A.L) * integer(B.f.T, B.f.L);
            EXPECT_EQ(integer(results[i].data(), results[i].size()), expected) << length << " words, " << A.L;
        }
        EXPECT_TRUE(std::equal(form.begin(), form.end(), b.X)) << "the form survives";
    }
}

} // namespace
