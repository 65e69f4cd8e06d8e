#include "functions/functions_support.h"

#include <cstdlib>

namespace {

using namespace test;

/// The largest errors of a kind of runs, and the bounds that its header states.
struct Bounds {
    double units, small_units, relative;
    double start = 0x1p-50; // relative, for p = 0
    double worst = 0, worst_small = 0, worst_relative = 0;

    ~Bounds() {
        testing::Test::RecordProperty("units", std::to_string(worst));
        testing::Test::RecordProperty("units_below_10", std::to_string(worst_small));
        testing::Test::RecordProperty("relative", std::to_string(worst_relative));
    }

    void expect(const Error& error, std::size_t p) {
        if (p == 0) { // the start of the iteration, not a result of it
            EXPECT_LT(error.relative, start);
            return;
        }
        double& w = p < 10 ? worst_small : worst;
        w = std::max(w, std::fabs(error.units));
        worst_relative = std::max(worst_relative, error.relative);
        EXPECT_LT(std::fabs(error.units), p < 10 ? small_units : units) << error.units;
        EXPECT_LT(error.relative, relative);
    }
};

class Values : public testing::Test {
protected:
    template <class Plan, class True>
    void expect_value(Bounds& bounds, std::size_t p, std::uint32_t tds, Plan&& plan, True&& true_value) {
        SCOPED_TRACE(testing::Message() << "p " << p << " tds " << tds);
        const Planned planned = plan(p, tds);
        Storage storage(planned);
        products.pars.tds = tds;
        ASSERT_NO_THROW(storage.run(planned, products.pars));
        storage.expect_intact();
        Real value(2);
        true_value(value, p);
        bounds.expect(error_of(storage.result.f, value, p), p);
    }

    /// Every small precision, the levels' borders, and a few long ones.
    std::vector<std::size_t> precisions() {
        std::vector<std::size_t> all;
        for (std::size_t p = 0; p < 44; ++p) all.push_back(p);
        for (const std::size_t p : {63, 64, 65, 99, 127, 180, 200, 201, 202, 255, 500, 1010}) all.push_back(p);
        for (int i = 0; i < 6; ++i) all.push_back(44 + random() % 600);
        return all;
    }

    static std::vector<std::size_t> long_precisions() {
        std::vector<std::size_t> all = {2'001, 4'096, 9'999};
        if (std::getenv("ZORVANE_TEST_LARGE")) all.insert(all.end(), {50'000, 229'300, 300'001, 444'444});
        return all;
    }

    std::uint32_t tasks(std::size_t k) { return 1 + static_cast<std::uint32_t>(k % 3); }

    std::mt19937_64 random{seed()};
    Products products{std::getenv("ZORVANE_TEST_LARGE") ? 700'000u : 20'000u};
    testing::ScopedTrace trace{__FILE__, __LINE__, seed_trace()};
};

TEST_F(Values, ReciprocalStaysWithinItsBound) {
    Bounds bounds{3.1, 9, 9};
    for (const std::size_t p : precisions()) {
        const auto operands = awkward_operands(random, p);
        for (std::size_t k = 0; k < operands.size(); ++k) {
            SCOPED_TRACE(testing::Message() << "operand " << k);
            const BigFloat& A = operands[k].f;
            expect_value(
                bounds, p, tasks(k), [&](auto q, auto tds) { return reciprocal_of(A, q, tds); },
                [&](Real& value, auto q) { true_reciprocal(value, A, q); });
        }
    }
}

TEST_F(Values, QuotientStaysWithinItsBound) {
    Bounds bounds{6, 1e99, 12, 12}; // below 10 words only the relative bound is promised
    for (const std::size_t p : precisions()) {
        const auto numerators = awkward_operands(random, p), divisors = awkward_operands(random, p);
        for (std::size_t k = 0; k < 2 * divisors.size(); ++k) {
            const std::size_t n = random() % numerators.size(), d = k % divisors.size();
            SCOPED_TRACE(testing::Message() << "operands " << n << " / " << d);
            const BigFloat &N = numerators[n].f, &D = divisors[d].f;
            expect_value(
                bounds, p, tasks(k), [&](auto q, auto tds) { return quotient_of(N, D, q, tds); },
                [&](Real& value, auto q) { true_quotient(value, N, D, q); });
        }
    }
}

TEST_F(Values, QuotientWhoseNumeratorEndsWhereTheResidualBegins) {
    // N has just the words above the residual's window and D Q is less: a borrow runs through all of the window.
    Bounds bounds{6, 1e99, 12, 12};
    for (const std::size_t p : {10u, 11u, 30u, 100u}) {
        for (std::size_t n = 1; n < p; ++n) {
            const Number N = random_number(random, n), D = random_number(random, 1 + random() % p);
            expect_value(
                bounds, p, 1, [&](auto q, auto tds) { return quotient_of(N.f, D.f, q, tds); },
                [&](Real& value, auto q) { true_quotient(value, N.f, D.f, q); });
        }
    }
}

TEST_F(Values, InverseSquareRootOfANumberStaysWithinItsBound) {
    Bounds bounds{4, 1e99, 9};
    for (const std::size_t p : precisions()) {
        const auto operands = awkward_operands(random, p, false);
        for (std::size_t k = 0; k < operands.size(); ++k) {
            SCOPED_TRACE(testing::Message() << "operand " << k);
            const BigFloat& A = operands[k].f;
            expect_value(
                bounds, p, tasks(k), [&](auto q, auto tds) { return invsqrt_of(A, q, tds); },
                [&](Real& value, auto q) { true_invsqrt(value, A, q); });
        }
    }
}

TEST_F(Values, InverseSquareRootOfAWordStaysWithinItsBound) {
    Bounds bounds{3, 6, 6};
    for (const std::size_t p : precisions()) {
        Words words = {1, 2, 3, 4, 5, 9, 640'320, 65'535, 65'536, 65'537, 0x4000'0000, 0x8000'0000, ones - 1, ones};
        words.push_back((ones >> 16) * (ones >> 16));
        for (int i = 0; i < 6; ++i) words.push_back(1 | static_cast<zvp::wtype>(random_up_to_bits(random, 32)));
        for (std::size_t k = 0; k < words.size(); ++k) {
            SCOPED_TRACE(testing::Message() << "x = " << words[k]);
            const Number A({words[k]}, 0);
            expect_value(
                bounds, p, tasks(k), [&](auto q, auto tds) { return invsqrt_of(words[k], q, tds); },
                [&](Real& value, auto q) { true_invsqrt(value, A.f, q); });
        }
    }
}

TEST_F(Values, LongOnesStayWithinTheirBoundsToo) {
    Bounds reciprocal{3.1, 0, 9}, quotient{6, 0, 12}, square_root{4, 0, 9}, word{3, 0, 6};
    for (const std::size_t p : long_precisions()) {
        const Number A(random_words(random, p + 2), 3), N(random_words(random, p + 5), -7);
        const zvp::wtype x = 2 + random() % 1'000'000;
        const Number X({x}, 0);
        const std::uint32_t tds = tasks(p);
        expect_value(
            reciprocal, p, tds, [&](auto q, auto t) { return reciprocal_of(A.f, q, t); },
            [&](Real& value, auto q) { true_reciprocal(value, A.f, q); });
        expect_value(
            quotient, p, tds, [&](auto q, auto t) { return quotient_of(N.f, A.f, q, t); },
            [&](Real& value, auto q) { true_quotient(value, N.f, A.f, q); });
        expect_value(
            square_root, p, tds, [&](auto q, auto t) { return invsqrt_of(A.f, q, t); },
            [&](Real& value, auto q) { true_invsqrt(value, A.f, q); });
        expect_value(
            word, p, tds, [&](auto q, auto t) { return invsqrt_of(x, q, t); },
            [&](Real& value, auto q) { true_invsqrt(value, X.f, q); });
    }
}

TEST_F(Values, WhatIsExactComesOutExact) {
    for (const std::size_t p : {0u, 1u, 2u, 5u, 9u, 10u, 33u, 300u}) {
        SCOPED_TRACE(p);
        for (const std::int64_t k : {0, 3, -4}) {
            const Number power({1}, k, k != 3), even({1}, 2 * k);
            const struct {
                Planned planned;
                std::int64_t exp;
                bool sign;
            } runs[] = {{reciprocal_of(power.f, p, 1), -k, k != 3},
                        {invsqrt_of(even.f, p, 1), -k, true},
                        {invsqrt_of(zvp::wtype{1}, p, 1), 0, true}};
            for (const auto& [planned, exp, sign] : runs) {
                Storage storage(planned);
                products.pars.tds = 1;
                storage.run(planned, products.pars);
                const Number exact({1}, exp);
                EXPECT_EQ(ucmp(storage.result.f, exact.f), 0);
                EXPECT_EQ(storage.result.f.sign, sign);
            }
        }
    }
}

/// Far up and far down the words are the same, and the exponents follow.
TEST_F(Values, DependOnWordsAndNotOnExponents) {
    constexpr std::int64_t far = std::int64_t{1} << 60;
    std::mt19937_64 words(seed());
    products.pars.tds = 1;
    const auto result_of = [&](const Planned& planned) {
        auto storage = std::make_unique<Storage>(planned);
        storage->run(planned, products.pars);
        storage->expect_intact();
        return storage;
    };
    for (const std::size_t p : {0u, 5u, 9u, 10u, 40u, 300u}) {
        SCOPED_TRACE(p);
        const Number A(random_words(words, p + 1), -3), N(random_words(words, p + 4), 7);
        for (const std::int64_t k : {far, -far, far - 2}) {
            SCOPED_TRACE(k);
            const Number A_far(words_of(A.f), -3 + k), N_far(words_of(N.f), 7 - k);
            const struct {
                Planned near, away;
                std::int64_t shift;
            } runs[] = {{reciprocal_of(A.f, p, 1), reciprocal_of(A_far.f, p, 1), -k},
                        {invsqrt_of(A.f, p, 1), invsqrt_of(A_far.f, p, 1), -k / 2},
                        {quotient_of(N.f, A.f, p, 1), quotient_of(N.f, A_far.f, p, 1), -k},
                        {quotient_of(N.f, A.f, p, 1), quotient_of(N_far.f, A.f, p, 1), -k}};
            for (const auto& [near, away, shift] : runs) {
                const auto here = result_of(near), there = result_of(away);
                EXPECT_EQ(words_of(here->result.f), words_of(there->result.f));
                EXPECT_EQ(here->result.f.exp + shift, there->result.f.exp);
            }
        }
    }
}

} // namespace
