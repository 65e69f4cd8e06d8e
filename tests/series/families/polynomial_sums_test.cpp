// Sums of polynomial series against MPFR, term after term, in exactly the planned memory.

#include "functions/functions_support.h"
#include "series/families/polynomial_series.h"
#include "series/plans/psr_series.h"

namespace test {
namespace {

namespace bs = zvp::BinarySplitting;
using bs::Coefficients;
using zvp::AlignedBufferC;

/// polynomial(k), exactly.
mpz_class at(const Coefficients& polynomial, std::uint64_t k) {
    mpz_class value = 0;
    for (std::size_t i = polynomial.size(); i-- > 0;)
        value = value * mpz_class(static_cast<unsigned long>(k)) + mpz_class(static_cast<long>(polynomial[i]));
    return value;
}

/// The sum of P(k)/Q(k) * factor(k) over k = 1 .. terms, where factor(k + 1) = factor(k) R(k)/Q(k) / 2^power; the
/// first is 2^shift.
void sum_terms(Real& sum, const Coefficients& P, const Coefficients& Q, const Coefficients& R, bool carries_Q,
               std::int64_t power, std::int64_t shift, bool alternating, std::uint64_t terms) {
    const mpfr_prec_t bits = mpfr_get_prec(sum.x);
    Real factor(bits), term(bits);
    mpfr_set_ui_2exp(factor.x, 1, shift, MPFR_RNDN);
    mpfr_set_ui(sum.x, 0, MPFR_RNDN);
    for (std::uint64_t k = 1; k <= terms; ++k) {
        mpfr_mul_z(term.x, factor.x, at(P, k).get_mpz_t(), MPFR_RNDN);
        mpfr_div_z(term.x, term.x, at(Q, k).get_mpz_t(), MPFR_RNDN);
        if (alternating && k % 2 == 0) mpfr_neg(term.x, term.x, MPFR_RNDN);
        mpfr_add(sum.x, sum.x, term.x, MPFR_RNDN);
        mpfr_mul_z(factor.x, factor.x, at(R, k).get_mpz_t(), MPFR_RNDN);
        if (carries_Q) mpfr_div_z(factor.x, factor.x, at(Q, k).get_mpz_t(), MPFR_RNDN);
        mpfr_div_2si(factor.x, factor.x, power, MPFR_RNDN);
    }
}

/// Runs `series` by `Sum` and compares; `terms` is beyond what counts.
template <class Sum, class Series, class... Plan>
void expect_sum(const Series& series, const Real& S, std::size_t p, std::uint32_t tds, Plan... plan) {
    struct Coefficient {
        int power;
        std::int32_t c1, c2;
        std::uint32_t c3;
    };
    for (const Coefficient& c : {Coefficient{1, 1, 0, 1}, Coefficient{-1, -3, 0, 7}, Coefficient{1, 5, 1'000, 3}}) {
        const Sum sum(series, c.power, c.c1, c.c2, c.c3, p, tds, plan...);
        zvp::MultiplyTables tables;
        sum.ensure_tables(tables);
        Scratch table_memory(tables.bytes());
        tables.place(table_memory.p);
        const auto framework = zvp::make_framework_config("pushpool")->make_framework();
        zvp::MultiplyParameters pars;
        pars.tds = tds;
        pars.framework = framework.get();
        pars.tables = &tables;
        Number out(sum.result_words);
        Scratch memory(sum.memory_bytes);
        sum.run(pars, {}, out.f, AlignedBufferC<64>(memory.p, memory.bytes));
        expect_sound(out);
        EXPECT_TRUE(memory.guards_are_intact());
        Real value(mpfr_get_prec(S.x));
        mpfr_mul_si(value.x, S.x, c.c1, MPFR_RNDN);
        mpfr_add_si(value.x, value.x, c.c2, MPFR_RNDN);
        mpfr_div_ui(value.x, value.x, c.c3, MPFR_RNDN);
        if (c.power < 0) mpfr_ui_div(value.x, 1, value.x, MPFR_RNDN);
        EXPECT_LT(error_of(out.f, value, p).relative, 4096) << c.power << " " << c.c1 << " " << c.c2;

        Number short_out(sum.result_words - 1);
        EXPECT_NE(failure_of([&] { sum.run(pars, {}, short_out.f, AlignedBufferC<64>(memory.p, memory.bytes)); }),
                  "nothing");
        EXPECT_NE(failure_of([&] { sum.run(pars, {}, out.f, AlignedBufferC<64>(memory.p, memory.bytes - 64)); }),
                  "nothing");
    }
}

constexpr std::size_t precisions[] = {1, 9, 10, 61, 400};

TEST(PolynomialSums, Hypergeometric) {
    struct Case {
        Coefficients P, Q, R;
    };
    const Case cases[] = {
        {{1}, {0, 8}, {-3, 5}},                     // terms fall by 5/8
        {{-3, 2}, {0, 4, 6}, {1, 1}},               // factorial
        {{13, 5, 9}, {-5, 0, 0, -7}, {1, 2, 3, 1}}, // signs alternate by Q
        {{-7, 2}, {3, 1, 100}, {25, -10, 2}},       // complex zeros, P(3.5) = 0
        {{-5, 1}, {9'223'372'036'854'775'807, 9'000'000'000'000'000'000}, {1'000'000'000'000'000'000, 1}}, // P(5) = 0
        {{1, 0, 1}, {0, 0, 0, 0, 0, 0, 0, 200}, {1, 7, 21, 35, 35, 21, 7}},
    };
    for (const Case& c : cases) {
        const bs::SeriesHypergeometric_PolyData data(c.P, c.Q, c.R);
        for (const std::size_t p : precisions)
            for (const bool alternating : {false, true}) {
                const bs::SeriesHypergeometric series(data, alternating, p);
                Real S(bits_for(p) + 128);
                sum_terms(S, c.P, c.Q, c.R, true, 0, 0, alternating, series.N + 40);
                for (const std::uint32_t tds : {1, 2, 3}) {
                    SCOPED_TRACE(testing::Message() << &c - cases << ": " << p << " words, " << tds << " tasks, "
                                                    << alternating << ", terms " << series.N);
                    expect_sum<bs::PSR_SeriesB<bs::CommonP2B3::Family>>(series, S, p, tds, false);
                }
            }
    }
}

TEST(PolynomialSums, Hyperdescent) {
    const std::pair<Coefficients, Coefficients> cases[] = {
        {{1}, {0, 1}}, // e - 1
        {{-7, 3}, {5, -2, 9}},
        {{1, 0, 0, 0, 1}, {-11, 2}},
    };
    for (const auto& [P, Q] : cases) {
        const bs::SeriesHyperdescent_PolyData data(P, Q);
        for (const std::size_t p : precisions)
            for (const bool alternating : {false, true}) {
                const bs::SeriesHyperdescent series(data, alternating, p);
                Real S(bits_for(p) + 128);
                sum_terms(S, P, Q, {1}, true, 0, 0, alternating, series.N + 40);
                for (const std::uint32_t tds : {1, 2, 3}) {
                    SCOPED_TRACE(testing::Message() << p << " words, " << tds << " tasks, " << alternating);
                    expect_sum<bs::Hyperdescent::SeriesB>(series, S, p, tds);
                }
            }
        EXPECT_THROW(bs::SeriesHyperdescent(data, false, 9).log_remaining(1), zvp::InvalidParametersException);
        EXPECT_THROW(bs::SeriesHyperdescent(data, false, 9).precision_words(1), zvp::InvalidParametersException);
    }
}

TEST(PolynomialSums, BinaryBBP) {
    struct Case {
        std::uint32_t power;
        std::int64_t shift;
        Coefficients P, Q;
    };
    const Case cases[] = {
        {1, 0, {1}, {0, 1}}, // log 2
        {1, 5, {-2, 1}, {-13, 2, 1}},
        {31, -1023, {9, 5}, {2, 7}},
        {32, 1023, {1, 1, 1}, {1, 0, 5}},
        {33, 3, {-1, 3}, {1, 9'223'372'036'854'775'807}},
        {1024, -7, {1, 2, 3}, {5, 4, 3, 2}},
    };
    for (const Case& c : cases) {
        const bs::SeriesBinaryBBP_PolyData data(c.power, c.P, c.Q);
        for (const std::size_t p : precisions)
            for (const bool alternating : {false, true}) {
                const bs::SeriesBinaryBBP series(data, c.shift, alternating, p);
                const std::int64_t first = c.shift - c.power;
                Real S(bits_for(p) + 128);
                sum_terms(S, c.P, c.Q, {1}, false, c.power, first, alternating, series.N + 40);
                for (const std::uint32_t tds : {1, 2, 3}) {
                    SCOPED_TRACE(testing::Message() << c.power << ": " << p << " words, " << tds << " tasks, "
                                                    << alternating << ", terms " << series.N);
                    expect_sum<bs::PSR_SeriesB<bs::BinaryBBP::Family>>(series, S, p, tds, false);
                }
            }
    }
}

} // namespace
} // namespace test
