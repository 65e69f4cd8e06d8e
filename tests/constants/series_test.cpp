// The leaves of Pi and e term by term, reciprocals, refusals, and what a run reports.

#include "constants/constants_support.h"
#include "constants/e/e_sum.h"
#include "constants/pi/pi_sum.h"
#include "constants/roots/square_root.h"
#include "series/splitting/verify.h"

#include <string>
#include <vector>

namespace test {
namespace {

namespace bs = zvp::BinarySplitting;
using zvp::PiSeries;
using zvp::wtype;

const mpz_class modulus = (mpz_class(1) << 61) - 1;

mpz_class big(std::uint64_t x) { return mpz_class(static_cast<unsigned long>(x)); }

std::uint64_t residue(const mpz_class& x) {
    mpz_class r;
    mpz_mod(r.get_mpz_t(), x.get_mpz_t(), modulus.get_mpz_t());
    return r.get_ui();
}

struct LeafStorage {
    explicit LeafStorage(std::size_t words_) : words(words_, 0), number(words.data(), words_) {}

    std::vector<wtype> words;
    bs::LeafInt number;
};

void expect_leaf(const bs::LeafInt& leaf, const mpz_class& expected) {
    EXPECT_TRUE(integer(leaf.T, leaf.L) == expected);
    EXPECT_TRUE(leaf.L > 0 && leaf.T[leaf.L - 1] != 0);
    EXPECT_EQ(zvp::normalize_hash(leaf.hash), residue(expected));
}

std::vector<std::uint64_t> indices(std::uint64_t border) {
    std::vector<std::uint64_t> all{
        1, 2, 3, 1000, border - 2, border - 1, border, border + 1, std::uint64_t{1} << 32, 100'000'000'000'000};
    std::mt19937_64 random(seed());
    for (unsigned i = 0; i < 200; ++i) all.push_back(1 + random_up_to_bits(random, 46));
    return all;
}

struct PiTerm {
    mpz_class P, Q, R; // magnitudes
};

/// One of the two series and its terms by their formula.
struct PiFormula {
    const bs::CommonP2B3::BasicIntSeries& series;
    PiTerm (*term)(const mpz_class& k);
    std::uint64_t long_from;   // the first index whose leaf takes more words
    std::uint64_t short_below; // fixed limbs up to here
    std::size_t q_words;
};

const zvp::PiChudnovskySeries chudnovsky(100);
const zvp::PiRamanujanSeries ramanujan(100);
const PiFormula formulas[] = {
    {chudnovsky,
     [](const mpz_class& k) {
         const mpz_class r = (2 * k - 1) * (6 * k - 5) * (6 * k - 1);
         return PiTerm{r * (545'140'134 * k + 13'591'409), k * k * k * (mpz_class("640320") * 640'320 * 640'320 / 24),
                       r};
     },
     715'827'883, 635'000, 5},
    {ramanujan,
     [](const mpz_class& k) {
         const mpz_class r = (2 * k - 1) * (4 * k - 3) * (4 * k - 1);
         return PiTerm{r * (26'390 * k + 1'103), k * k * k * (mpz_class(396) * 396 * 396 * 396 / 8), r};
     },
     0x4000'0001, 832'000, 4},
};

TEST(PiLeaves, TermsOfBothFormulasOnBothSidesOfTheBorders) {
    SCOPED_TRACE(seed_trace());
    for (const PiFormula& formula : formulas)
        for (const std::uint64_t border : {formula.long_from, formula.short_below})
            for (const std::uint64_t k : indices(border)) {
                SCOPED_TRACE(k);
                const PiTerm term = formula.term(big(k));
                const bool one_limb = k < formula.long_from;
                LeafStorage P(one_limb ? 5 : 9), Q(one_limb ? formula.q_words : 8), R(one_limb ? 3 : 6);
                formula.series.leaf(P.number, Q.number, R.number, k);
                expect_leaf(P.number, term.P);
                expect_leaf(Q.number, term.Q);
                expect_leaf(R.number, term.R);

                bs::CommonP2B3::ShortTerm limbs;
                ASSERT_EQ(formula.series.short_leaf(limbs, k), k < formula.short_below);
                if (k >= formula.short_below) continue;
                EXPECT_TRUE(big(limbs.P[0]) + (big(limbs.P[1]) << 64) == term.P);
                EXPECT_TRUE(big(limbs.Q[0]) + (big(limbs.Q[1]) << 64) == term.Q);
                EXPECT_TRUE(big(limbs.R[0]) == term.R);
            }
}

TEST(PiLeaves, RangesOfEveryLengthAcrossTheBorder) {
    constexpr std::size_t capacity = 400;
    for (const PiFormula& formula : formulas)
        for (const std::uint64_t a : {std::uint64_t{0}, std::uint64_t{7}, formula.short_below - 22})
            for (std::uint64_t b = a + 1; b <= a + 41; ++b) {
                SCOPED_TRACE(testing::Message() << "(" << a << ", " << b << "]");
                mpz_class p = 0, q = 1, r = 1;
                for (std::uint64_t k = a + 1; k <= b; ++k) {
                    const PiTerm t = formula.term(big(k));
                    const bool negative = formula.series.alternating && k % 2 != 0;
                    p = p * t.Q + (negative ? mpz_class(-r * t.P) : mpz_class(r * t.P));
                    q *= t.Q;
                    r *= t.R;
                }
                std::vector<wtype> words(5 * capacity);
                bs::ExactNumber n[4];
                for (std::size_t i = 0; i < 4; ++i) n[i] = bs::ExactNumber(words.data() + i * capacity, capacity);
                zvp::MultiplyParameters pars;
                pars.M = reinterpret_cast<std::byte*>(words.data() + 4 * capacity);
                pars.ML = capacity * sizeof(wtype);
                formula.series.BSR_E(pars, n[0], n[1], n[2], n[3], a, b);
                const mpz_class* const expected[] = {&p, &q, &r};
                for (std::size_t i = 0; i < 3; ++i) {
                    const mpz_class magnitude = integer(n[i].T, n[i].L);
                    EXPECT_TRUE((n[i].sign ? magnitude : mpz_class(-magnitude)) == *expected[i]);
                    EXPECT_EQ(zvp::normalize_hash(n[i].hash), residue(*expected[i]));
                }
            }
}

template <class Call>
std::string too_small_name(Call&& call) {
    try {
        call();
    } catch (const zvp::BufferTooSmallException& failure) {
        return failure.function;
    }
    return "nothing";
}

TEST(PiLeaves, ShortStorageIsRefusedByName) {
    const auto call = [](const bs::CommonP2B3::BasicIntSeries& series, std::uint64_t k, std::size_t p, std::size_t q,
                         std::size_t r) {
        LeafStorage P(p), Q(q), R(r);
        return too_small_name([&] { series.leaf(P.number, Q.number, R.number, k); });
    };
    const auto& c = chudnovsky;
    const std::uint64_t c_long = 715'827'883, r_long = 0x4000'0001;
    EXPECT_EQ(call(c, 1, 4, 4, 2), "Pi_Chudnovsky_BSR_End_R1()");
    EXPECT_EQ(call(c, 1, 4, 4, 3), "Pi_Chudnovsky_BSR_End_P1()");
    EXPECT_EQ(call(c, 1, 5, 4, 3), "Pi_Chudnovsky_BSR_End_Q1");
    EXPECT_EQ(call(c, 1, 5, 5, 3), "nothing");
    EXPECT_EQ(call(c, c_long, 9, 8, 5), "Pi_Chudnovsky_BSR_End_PR2()");
    EXPECT_EQ(call(c, c_long, 8, 8, 6), "Pi_Chudnovsky_BSR_End_PR2()");
    EXPECT_EQ(call(c, c_long, 9, 7, 6), "Pi_Chudnovsky_BSR_End_Q2");
    const auto& r = ramanujan;
    EXPECT_EQ(call(r, 1, 5, 4, 2), "Pi_Ramanujan_BSR_End_R1()");
    EXPECT_EQ(call(r, 1, 4, 4, 3), "Pi_Ramanujan_BSR_End_P1()");
    EXPECT_EQ(call(r, 1, 5, 3, 3), "Pi_Ramanujan_BSR_End_Q1()");
    EXPECT_EQ(call(r, r_long, 9, 8, 5), "Pi_Ramanujan_BSR_End_R2()");
    EXPECT_EQ(call(r, r_long, 8, 8, 6), "Pi_Ramanujan_BSR_End_P2()");
    EXPECT_EQ(call(r, r_long, 9, 7, 6), "Pi_Ramanujan_BSR_End_Q2()");
}

TEST(ELeaves, RangesOfEveryLengthFromAnyIndex) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    for (const bool alternating : {false, true}) {
        const zvp::SeriesETaylor series(alternating, 100);
        for (unsigned round = 0; round < 3'000; ++round) {
            const std::uint64_t near_2_32 = (std::uint64_t{1} << 32) - random() % 20;
            const std::uint64_t a = round % 3 == 0 ? round / 3 : round % 3 == 1 ? near_2_32 : random() >> 8;
            const std::uint64_t b = a + 1 + random() % 15;
            SCOPED_TRACE(testing::Message() << alternating << " (" << a << ", " << b << "]");
            mpz_class p = 0, q = 1;
            for (std::uint64_t k = a + 2; k <= b + 1; ++k) {
                p = p * big(k) + (alternating && k % 2 != 0 ? -1 : 1);
                q *= big(k);
            }
            const std::size_t capacity = (b - a) * (b + 1 > 0xFFFF'FFFF ? 2 : 1);
            std::vector<wtype> words(2 * capacity);
            bs::ExactNumber P(words.data(), capacity), Q(words.data() + capacity, capacity);
            series.BSR_E({}, P, Q, a, b);
            const mpz_class magnitude = integer(P.T, P.L);
            EXPECT_TRUE((P.sign ? magnitude : mpz_class(-magnitude)) == p);
            EXPECT_TRUE(integer(Q.T, Q.L) == q && Q.sign);
            EXPECT_EQ(zvp::normalize_hash(P.hash), residue(p));
            EXPECT_EQ(zvp::normalize_hash(Q.hash), residue(q));
            bs::ExactNumber small(words.data(), capacity - 1);
            EXPECT_EQ(too_small_name([&] { series.BSR_E({}, small, Q, a, b); }),
                      alternating ? "seriesA_BSR_End_PQ1()" : "seriesN_BSR_End_PQ1()");
        }
    }
}

/// Runs `object` in its planned memory; the relative error against the value in units of W^-p.
template <class Object>
double error_of_run(const Object& object, std::size_t p, std::uint32_t tds, const std::function<void(mpfr_t)>& value,
                    const RunReport& report = {}) {
    const Machinery machinery(object, tds);
    ExactStorage storage(object.result_words, object.memory_bytes);
    object.run(machinery.pars, report, storage.result.f, storage.buffer());
    storage.expect_intact();
    Real expected(bits_for(p));
    value(expected.x);
    return error_in_words(storage.result.f, expected, p);
}

TEST(Constants, PowersOfTheOtherSignGiveReciprocals) {
    const auto inverse_pi = [](mpfr_t x) {
        mpfr_const_pi(x, MPFR_RNDN);
        mpfr_ui_div(x, 1, x, MPFR_RNDN);
    };
    const auto inverse_e = [](mpfr_t x) {
        mpfr_set_si(x, -1, MPFR_RNDN);
        mpfr_exp(x, x, MPFR_RNDN);
    };
    const auto inverse_ratio = [](mpfr_t x) {
        mpfr_sqrt_ui(x, 5, MPFR_RNDN);
        mpfr_sub_ui(x, x, 1, MPFR_RNDN);
        mpfr_div_2ui(x, x, 1, MPFR_RNDN);
    };
    for (const std::size_t p : {1, 9, 11, 300, 5'001})
        for (const std::uint32_t tds : {1, 2}) {
            for (const PiSeries series : {PiSeries::chudnovsky, PiSeries::ramanujan})
                for (const bool reduced : {false, true})
                    EXPECT_LT(error_of_run(zvp::Pi_Series_BigFloatR(series, 1, p, tds, reduced), p, tds, inverse_pi),
                              64);
            EXPECT_LT(error_of_run(zvp::e_Taylor_BigFloatR(true, 1, p, tds), p, tds, inverse_e), 64);
            EXPECT_LT(error_of_run(zvp::GoldenRatio_Newton_BigFloatR(-1, p, tds), p, tds, inverse_ratio), 64);
        }
}

TEST(Constants, OtherPowersAreRefused) {
    const auto refusal = [](auto&& call) -> std::string {
        try {
            call();
        } catch (const zvp::InvalidParametersException& failure) {
            return failure.function + " " + failure.message;
        }
        return "nothing";
    };
    for (const int power : {0, 2, -3}) {
        EXPECT_EQ(refusal([&] { zvp::Pi_Series_BigFloatR(PiSeries::ramanujan, power, 20, 1, false); }),
                  "PSR_SeriesB() Power must be 1 or -1.");
        EXPECT_EQ(refusal([&] { zvp::e_Taylor_BigFloatR(true, power, 20, 1); }),
                  "e_Taylor_BigFloatR() Power must be 1 or -1.");
        EXPECT_EQ(refusal([&] { zvp::GoldenRatio_Newton_BigFloatR(power, 20, 1); }),
                  "GoldenRatio_Newton_BigFloatR() Power must be 1 or -1.");
    }
    EXPECT_EQ(refusal([&] { zvp::e_Taylor_BigFloatR(false, -1, 20, 1); }),
              "e_Taylor_BigFloatR() Inversion not supported for non-alternating series.");
    EXPECT_EQ(refusal([&] { (void)zvp::SeriesETaylor(false, 20).precision_words(1); }),
              "SeriesETaylor::precision_words() Not Implemented");
}

/// The texts of an event log, without their times.
std::vector<std::string> entries(const zvp::EventLog& log) {
    std::vector<std::string> texts;
    const std::string& all = log.text();
    for (std::size_t at = 0; at < all.size();) {
        const std::size_t end = all.find("\r\n", at), tab = all.find('\t', all.find('\t', at) + 1);
        texts.push_back(all.substr(tab + 1, end - tab - 1));
        at = end + 2;
    }
    return texts;
}

TEST(Constants, RunsReportTheirPhases) {
    const auto report_of = [](const auto& object, std::size_t p, const std::function<void(mpfr_t)>& value) {
        zvp::EventLog log;
        EXPECT_LT(error_of_run(object, p, 2, value, {nullptr, &log}), 64);
        return entries(log);
    };
    const std::size_t p = words_of_digits(10'000);
    const auto pi = [](mpfr_t x) { mpfr_const_pi(x, MPFR_RNDN); };
    EXPECT_EQ(report_of(zvp::Pi_Series_BigFloatR(PiSeries::chudnovsky, -1, p, 2, false), p, pi),
              (std::vector<std::string>{"Series CommonP2B3...  707 terms  (Expansion Factor = 1.645)",
                                        "Finishing Series", "Large Division", "InvSqrt(10005)", "Large Multiply"}));
    const auto e = [](mpfr_t x) {
        mpfr_set_ui(x, 1, MPFR_RNDN);
        mpfr_exp(x, x, MPFR_RNDN);
    };
    EXPECT_EQ(report_of(zvp::e_Taylor_BigFloatR(false, 1, p, 2), p, e),
              (std::vector<std::string>{"Series Hyperdescent...  3,253 terms  (Expansion Factor = 1.001)",
                                        "Finishing Series", "Large Division"}));
    const auto root = [](mpfr_t x) { mpfr_sqrt_ui(x, 7, MPFR_RNDN); };
    EXPECT_EQ(report_of(zvp::Sqrt_Newton_BigFloatR(7, p, 2), p, root),
              (std::vector<std::string>{"InvSqrt(7)", "Finishing"}));
}

} // namespace
} // namespace test
