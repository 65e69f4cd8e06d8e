#include "functions/power_float.h"
#include "functions/power_word.h"

#include "functions/functions_support.h"
#include "support/seed.h"

namespace {

using namespace test;
using zvp::Power_BF_uL_BigFloatR;
using zvp::Power_uW_uL_BigFloatR;

constexpr const char* word_name = "Power_uW_uL_BigFloatR()";
constexpr const char* float_name = "Power_BF_uL_BigFloatR()";

Products& products() {
    static Products all(4000);
    return all;
}

Planned word_power(zvp::wtype x, std::uint64_t n, std::size_t p, std::uint32_t tds) {
    const Power_uW_uL_BigFloatR plan(p, tds);
    return {plan.result_words, plan, [plan, x, n, p](const auto& pars, zvp::StatusNode* status, BigFloat& T, auto) {
                plan.run(pars, status, T, x, n, p);
            }};
}

Planned float_power(const BigFloat& A, std::uint64_t n, std::size_t p, std::uint32_t tds) {
    const Power_BF_uL_BigFloatR plan(p, tds);
    return {p + 4, plan, [plan, &A, n, p](const auto& pars, zvp::StatusNode* status, BigFloat& T, auto) {
                plan.run(pars, status, T, A, n, p);
            }};
}

void run(const Planned& planned, Storage& storage, std::uint32_t tds) {
    auto pars = products().pars;
    pars.tds = tds;
    storage.run(planned, pars);
    storage.expect_intact();
}

void true_power(Real& value, const BigFloat& A, std::uint64_t n, std::size_t p) {
    Real a(2);
    set(a, A);
    mpfr_set_prec(value.x, bits_for(p));
    mpfr_pow_ui(value.x, a.x, n, MPFR_RNDN);
}

const std::uint64_t exponents[] = {0,  1,   2,   3,    5,      6,         7,          31,
                                   64, 100, 255, 1023, 65'537, 1'000'003, 1ULL << 40, (1ULL << 33) + 5};

TEST(Power, OfWordsAreMpfrs) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    for (const std::size_t p : {1u, 2u, 5u, 17u, 100u, 300u})
        for (const std::uint64_t n : exponents)
            for (const zvp::wtype x : {0u, 1u, 2u, 3u, 1u << 31, 1'000'000'000u, static_cast<unsigned>(random())}) {
                if (n > 1'000'000 && p > 20) continue;
                const std::uint32_t tds = 1 + random() % 3;
                const Planned planned = word_power(x, n, p, tds);
                Storage storage(planned);
                run(planned, storage, tds);
                const Number base = x == 0 ? Number(Words{}, 0) : Number(Words{x}, 0);
                Real value(2);
                true_power(value, base.f, n, p);
                if (mpfr_zero_p(value.x)) {
                    EXPECT_EQ(storage.result.f.L, 0u);
                    continue;
                }
                EXPECT_LE(error_of(storage.result.f, value, p).relative, 10.0 * static_cast<double>(n))
                    << x << "^" << n << " at " << p;
            }
}

TEST(Power, OfNumbersAreMpfrs) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    for (const std::size_t p : {0u, 1u, 3u, 10u, 40u, 150u, 600u})
        for (const std::uint64_t n : exponents)
            for (const std::size_t length : {std::size_t{1}, p / 2 + 1, p + 1, p + 2, p + 9}) {
                if (n > 100'000 && p > 20) continue;
                const Number A(random_words(random, length), static_cast<std::int64_t>(random() % 9) - 5,
                               random() % 3 != 0);
                const std::uint32_t tds = 1 + random() % 3;
                const Planned planned = float_power(A.f, n, p, tds);
                Storage storage(planned);
                run(planned, storage, tds);
                Real value(2);
                true_power(value, A.f, n, p);
                EXPECT_LE(error_of(storage.result.f, value, p + 1).relative, 12.0 * static_cast<double>(n))
                    << length << " words ^" << n << " at " << p;
            }
    const Number zero(Words{}, 0);
    for (const std::uint64_t n : {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{5}}) {
        const Planned planned = float_power(zero.f, n, 10, 1);
        Storage storage(planned);
        run(planned, storage, 1);
        EXPECT_EQ(storage.result.f.L, n == 0 ? 1u : 0u);
    }
}

/// Zero words at the bottom don't count: the odd part is what has to fit.
TEST(Power, ThatFitsThePrecisionIsExact) {
    for (const std::uint64_t n : {10u, 100u, 1000u, 3333u}) {
        mpz_class odd, whole;
        mpz_ui_pow_ui(odd.get_mpz_t(), 1'953'125, n);
        mpz_ui_pow_ui(whole.get_mpz_t(), 1'000'000'000, n);
        const std::size_t p = mpz_sizeinbase(odd.get_mpz_t(), 2) / 32 + 4;
        const Number base(Words{1'000'000'000}, 0);
        for (const Planned& planned : {word_power(1'000'000'000, n, p, 1), float_power(base.f, n, p, 1)}) {
            Storage storage(planned);
            run(planned, storage, 1);
            const BigFloat& T = storage.result.f;
            ASSERT_GE(T.exp, 0);
            const mpz_class words = integer(T.T, T.L) << static_cast<unsigned long>(32 * T.exp);
            EXPECT_EQ(words, whole) << n;
        }
    }
}

TEST(Power, PlansAreExact) {
    const Number A(Words(300, 0x1234'5677), -300);
    for (const std::size_t p : {2u, 20u, 300u})
        for (const Planned& planned : {word_power(3, 1000, p, 2), float_power(A.f, 1001, p, 2)}) {
            auto pars = products().pars;
            pars.tds = 2;
            Storage result(planned, 1);
            EXPECT_THROW(result.run(planned, pars), zvp::BufferTooSmallException);
            Storage memory(planned, 0, 0, planned.sizes.memory_bytes / 64);
            EXPECT_EQ(failure_of([&] { memory.run(planned, pars); }).substr(0, 36),
                      "TransformHelper::TransformHelper() 0");
            Storage line(planned, 0, 0, 1);
            try {
                line.run(planned, pars);
            } catch (const zvp::BufferTooSmallException&) {
            }
            line.expect_intact();
        }
}

TEST(Power, RefusesWhatIsBeyondThePlan) {
    const Number A(Words{7}, 0);
    Number T(64);
    auto pars = products().pars;
    const Power_uW_uL_BigFloatR of_word(10, 1);
    const Power_BF_uL_BigFloatR of_number(10, 1);
    const std::string limit = "LimitExceededException: ";
    const auto word = [&](std::size_t p) { return failure_of([&] { of_word.run(pars, nullptr, T.f, 7, 9, p); }); };
    const auto number = [&](std::size_t p) {
        return failure_of([&] { of_number.run(pars, nullptr, T.f, A.f, 9, p); });
    };
    EXPECT_EQ(word(11), limit + word_name + " Precision");
    EXPECT_EQ(number(11), limit + float_name + " Precision");
    pars.tds = 2;
    EXPECT_EQ(word(10), limit + word_name + " Task Decomposition");
    EXPECT_EQ(number(10), limit + float_name + " Task Decomposition");
}

TEST(Power, ExponentsOverflowByName) {
    for (const std::int64_t exp : {std::int64_t{1} << 60, -(std::int64_t{1} << 60)}) {
        const Number A(Words{7}, exp);
        const Planned planned = float_power(A.f, 5, 4, 1);
        Storage storage(planned);
        try {
            run(planned, storage, 1);
            ADD_FAILURE() << exp;
        } catch (const zvp::ExponentOverflowException& failure) {
            EXPECT_EQ(failure.function, float_name);
        }
    }
}

} // namespace
