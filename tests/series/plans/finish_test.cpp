// (c1 P/Q + c2) / c3 and its reciprocal, for all shapes of coefficients.

#include "functions/functions_support.h"
#include "series/plans/series_finish.h"

#include <array>

namespace test {
namespace {

using zvp::AlignedBufferC;
using zvp::BinarySplitting::SeriesFinish;
using zvp::BinarySplitting::SumCoefficients;

constexpr const char* owner = "Owner()";

struct Storage64 {
    explicit Storage64(const SeriesFinish& plan, std::size_t less_lines = 0)
        : out(plan.result_words), memory(plan.memory_bytes - 64 * less_lines) {}

    Number out;
    Scratch memory;
};

void true_value(Real& value, const BigFloat& P, const BigFloat& Q, const SumCoefficients& c, int power, std::size_t p) {
    Real n(2), d(2);
    set(n, P);
    set(d, Q);
    mpfr_set_prec(value.x, bits_for(p) + 64);
    mpfr_div(value.x, n.x, d.x, MPFR_RNDN);
    mpfr_mul_si(value.x, value.x, c.c1, MPFR_RNDN);
    mpfr_add_si(value.x, value.x, c.c2, MPFR_RNDN);
    mpfr_div_ui(value.x, value.x, c.c3, MPFR_RNDN);
    if (power < 0) mpfr_ui_div(value.x, 1, value.x, MPFR_RNDN);
}

TEST(SeriesFinish, ValuesForEveryShapeOfCoefficients) {
    std::mt19937_64 random(seed());
    SCOPED_TRACE(seed_trace());
    constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
    const SumCoefficients all[] = {{1, 13'591'409, 4'270'934'400u},
                                   {1, 0, 1},
                                   {-1, 0, 7},
                                   {1, 1, 1},
                                   {1, -1, 2},
                                   {-1, 1, 3},
                                   {-5, -5, 3},
                                   {5, -5, ~0u},
                                   {4, 4'412, 9'801},
                                   {-3, 1'000'000, 1},
                                   {3, -1'000'000, 1},
                                   {least, 0, 5},
                                   {least, least, 5},
                                   {most, 2, 5},
                                   {2, most, ~0u}};
    for (const std::size_t p : {1, 4, 9, 10, 33, 700})
        for (const std::uint32_t tds : {1, 3}) {
            Products products(4 * p + 64);
            products.pars.tds = tds;
            for (const SumCoefficients& c : all)
                for (const int power : {1, -1})
                    for (const bool P_is_out : {true, false}) {
                        SCOPED_TRACE(testing::Message() << p << " words, " << tds << " tasks: " << c.c1 << " " << c.c2
                                                        << " " << c.c3 << " power " << power << " " << P_is_out);
                        const SeriesFinish plan(owner, power, c, p, tds);
                        Storage64 storage(plan);
                        // A sum below one, so that nothing cancels much against coefficients of one size.
                        const auto words = static_cast<std::int64_t>(p) + 2;
                        Number P_source(random_words<zvp::wtype>(random, p + 2), -words, random() % 2);
                        Number Q_source(random_words<zvp::wtype>(random, p + 2), -words);
                        P_source.f.T[p + 1] = 0x1234'5678;
                        Q_source.f.T[p + 1] = 0xFEDC'BA98;
                        Real value(2);
                        true_value(value, P_source.f, Q_source.f, c, power, p);
                        Number elsewhere(plan.number_words), Q(plan.number_words);
                        BigFloat& P = P_is_out ? storage.out.f : elsewhere.f;
                        P.set_BigFloat(p, products.pars, P_source.f);
                        Q.f.set_BigFloat(p, products.pars, Q_source.f);
                        plan.run(products.pars, {}, storage.out.f, P, Q.f,
                                 AlignedBufferC<64>(storage.memory.p, storage.memory.bytes));
                        expect_sound(storage.out);
                        expect_sound(Q);
                        EXPECT_TRUE(storage.memory.guards_are_intact());
                        EXPECT_LT(error_of(storage.out.f, value, p).relative, 64);
                    }
        }
}

/// The message of what the call raises.
template <class Call>
std::string refusal(Call&& call) {
    try {
        call();
    } catch (const zvp::InvalidParametersException& failure) {
        return failure.function + " " + failure.message;
    } catch (const zvp::ArithmeticException&) {
        return "arithmetic";
    }
    return "nothing";
}

TEST(SeriesFinish, RefusesOtherPowersAndDivisionsByZero) {
    for (const int power : {0, 2, -2})
        EXPECT_EQ(refusal([&] { SeriesFinish(owner, power, {1, 2, 3}, 20, 1); }), "Owner() Power must be 1 or -1.");
    Products products(200);
    for (const bool zero_c3 : {true, false}) {
        // c3 = 0, or 1/(1 - 1)
        const SeriesFinish plan(owner, zero_c3 ? 1 : -1, {1, -1, zero_c3 ? 0u : 1u}, 20, 1);
        Storage64 storage(plan);
        Number P({1}, zero_c3 ? 1 : 0, true, plan.number_words), Q({1}, 0, true, plan.number_words);
        EXPECT_EQ(refusal([&] {
                      plan.run(products.pars, {}, storage.out.f, P.f, Q.f,
                               AlignedBufferC<64>(storage.memory.p, storage.memory.bytes));
                  }),
                  "arithmetic");
    }
}

TEST(SeriesFinish, ALineLessOfMemoryIsRefused) {
    Products products(4'000);
    const SeriesFinish plan(owner, 1, {1, 3, 5}, 1'000, 1);
    std::mt19937_64 random(seed());
    for (const std::size_t less : {0, 1}) {
        Storage64 storage(plan, less);
        Number P(random_words<zvp::wtype>(random, 1'002), -1'002, true, 20),
            Q(random_words<zvp::wtype>(random, 1'002), -1'002, true, 20);
        const auto call = [&] {
            plan.run(products.pars, {}, storage.out.f, P.f, Q.f,
                     AlignedBufferC<64>(storage.memory.p, storage.memory.bytes));
        };
        EXPECT_EQ(failure_of(call) == "nothing", less == 0);
        EXPECT_TRUE(storage.memory.guards_are_intact());
    }
}

} // namespace
} // namespace test
