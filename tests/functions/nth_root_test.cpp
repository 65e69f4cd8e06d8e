#include "functions/nth_root.h"

#include "functions/fault_node.h"
#include "functions/functions_support.h"
#include "support/seed.h"

namespace {

using namespace test;
using zvp::InvNthRootFloat_BigFloatR_P;

Products& products() {
    static Products all(4000);
    return all;
}

Planned root_of(const BigFloat& A, zvp::wtype n, std::size_t p, std::uint32_t tds) {
    const InvNthRootFloat_BigFloatR_P plan(p, tds);
    return {plan.result_words, plan,
            [plan, &A, n, p](const auto& pars, zvp::StatusNode* status, BigFloat& T, auto buffer) {
                plan.run(pars, status, T, A, n, p, buffer);
            }};
}

void true_root(Real& value, const BigFloat& A, zvp::wtype n, std::size_t p) {
    Real a(2), root(bits_for(p + 4));
    set(a, A);
    mpfr_rootn_ui(root.x, a.x, n, MPFR_RNDN);
    mpfr_set_prec(value.x, bits_for(p));
    mpfr_ui_div(value.x, 1, root.x, MPFR_RNDN);
}

void expect_root(const BigFloat& A, zvp::wtype n, std::size_t p, std::uint32_t tds) {
    const Planned planned = root_of(A, n, p, tds);
    Storage storage(planned);
    auto pars = products().pars;
    pars.tds = tds;
    ASSERT_EQ(failure_of([&] { storage.run(planned, pars); }), "nothing")
        << "n = " << n << ", p = " << p << ", " << A.L << " words at " << A.exp;
    storage.expect_intact();
    Real value(2);
    true_root(value, A, n, p);
    EXPECT_LE(error_of(storage.result.f, value, p).relative, p == 0 ? 1.0 : 40.0)
        << "n = " << n << ", p = " << p << ", " << A.L << " words at " << A.exp;
}

TEST(NthRoot, ValuesAreMpfrs) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    const zvp::wtype degrees[] = {1,  2,    3,      4,         5,           7,           8,          10,
                                  97, 1000, 65'536, 1'000'003, 0x8000'0000, 0xC000'0000, 0xFFFF'FFFF};
    for (std::size_t p = 0; p <= 300; p += p < 24 ? 1 : 46)
        for (const zvp::wtype n : degrees) {
            if (p > 24 && n > 100'000) continue;
            for (const Number& A : awkward_operands(random, p, false)) {
                if (p > 24 && random() % 4 != 0) continue;
                expect_root(A.f, n, p, 1 + random() % 3);
            }
        }
}

TEST(NthRoot, HugeDegreesAtHighPrecision) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    for (const zvp::wtype n : {0x7FFF'FFFFu, 0x8000'0001u, 0xFFFF'FFFEu, 0xFFFF'FFFFu})
        expect_root(Number(random_words(random, 130), -64).f, n, 120, 2);
}

TEST(NthRoot, PlansAreExact) {
    const Number A(Words(60, 0x1234'5677), -60);
    for (const std::size_t p : {0u, 5u, 9u, 10u, 60u, 300u})
        for (const zvp::wtype n : {3u, 6u}) {
            const Planned planned = root_of(A.f, n, p, 2);
            auto pars = products().pars;
            pars.tds = 2;
            const auto refuses = [&](std::size_t result, std::size_t words, std::size_t lines) {
                Storage storage(planned, result, words, lines);
                EXPECT_THROW(storage.run(planned, pars), zvp::BufferTooSmallException) << p;
                storage.expect_intact();
            };
            refuses(1, 0, 0);
            refuses(0, 1, 0);
            refuses(0, 0, 1);
        }
}

TEST(NthRoot, RefusalsHaveTheirTexts) {
    const Number zero(Words{}, 0), negative(Words{5}, 0, false), five(Words{5}, 0);
    auto pars = products().pars;
    const auto fails = [&](const BigFloat& A, zvp::wtype n, std::size_t p, std::size_t plan_p) {
        const Planned planned = root_of(A, n, plan_p, 1);
        Storage storage(planned);
        pars.M = storage.memory.p;
        pars.ML = storage.memory.bytes;
        return failure_of([&] {
            InvNthRootFloat_BigFloatR_P(plan_p, 1).run(pars, nullptr, storage.result.f, A, n, p, storage.words());
        });
    };
    const std::string start = "ArithmeticException: InvNthRootFloat_BigFloatR_E::run() ";
    for (const std::size_t p : {0u, 5u, 50u})
        for (const zvp::wtype n : {2u, 3u}) {
            EXPECT_EQ(fails(zero.f, n, p, p), start + "Divide by zero.");
            EXPECT_EQ(fails(negative.f, n, p, p), start + "Nth root of negative number.");
        }
    const std::string plan = "InvalidParametersException: InvNthRootFloat_BigFloatR_P::run() ";
    EXPECT_EQ(fails(five.f, 3, 11, 10), plan + "p is larger than plan.");
    pars.tds = 2;
    EXPECT_EQ(fails(five.f, 3, 10, 10), plan + "tds is larger than plan.");
    pars.tds = 1;
    EXPECT_EQ(fails(five.f, 0, 10, 10), plan + "There is no root of degree zero.");
}

/// A bit of the estimate's storage flips as each step begins: where it still counts, a residual shows it by its text.
TEST(NthRoot, AWrongEstimateIsFound) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    const std::size_t p = 120;
    const Number A(random_words(random, p), -60);
    for (const zvp::wtype n : {3u, 6u, 65'536u, 1'000'003u}) {
        const Planned planned = root_of(A.f, n, p, 1);
        std::size_t found = 0, runs = 0;
        for (const std::size_t bit : {0u, 200u, 700u, 1200u}) {
            Storage storage(planned);
            const std::size_t r_words = (p / 2 + 7 + 15) / 16 * 16;
            FaultNode counted(~std::size_t{0}, [] {});
            storage.run(planned, products().pars, &counted);
            for (std::size_t at = 0; at < counted.steps(); ++at) {
                Storage hit(planned);
                FaultNode node(at, [&] { hit.words().pointer[r_words + bit / 32] ^= 1u << bit % 32; });
                const std::string failure = failure_of([&] { hit.run(planned, products().pars, &node); });
                hit.expect_intact();
                ++runs;
                if (failure != "nothing") {
                    EXPECT_NE(failure.find("Convergence Failure"), std::string::npos) << failure;
                    ++found;
                }
            }
        }
        EXPECT_GT(found, 0u) << n << ": none of " << runs;
        RecordProperty("found_" + std::to_string(n), std::to_string(found) + "/" + std::to_string(runs));
    }
}

} // namespace
