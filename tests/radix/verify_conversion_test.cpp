#include "radix/verify_conversion.h"

#include "digits/hash/hash_field.h"
#include "radix/radix_support.h"
#include "support/seed.h"

#include <functional>

namespace {

using namespace test;

constexpr std::uint32_t billion = 1'000'000'000;

std::uint64_t residue(const mpz_class& value) {
    const mpz_class modulus = zvp::hash_modulus;
    const mpz_class rest = value % modulus;
    return rest.get_ui();
}

TEST(VerifyConversion, HashIsThatOfTheScaledFraction) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    for (const bool partial : {false, true})
        for (const std::size_t n : {1u, 2u, 10u, 100u, 1000u, 3000u})
            for (const std::size_t words : {1u, 5u, 100u, 3100u})
                for (const std::int64_t exp : {0, -1, -5, -100, -3100, -3300}) {
                    const Number x(random_words(random, words), exp);
                    const std::uint32_t tds = 1 + random() % 3;
                    const zvp::VerifyB plan(billion, n, tds, partial);
                    PlanRun<zvp::VerifyB> run(plan);
                    run.pars.tds = tds;
                    const std::uint64_t hash = plan.hash_binary(run.pars, nullptr, x.f, n, run.buffer());
                    const std::uint64_t expected = residue(scaled_fraction(x.f, billion, n));
                    EXPECT_TRUE(hash == expected || zvp::add_mod(hash, 1) == expected)
                        << n << " words of digits, " << words << " words at " << exp;
                    EXPECT_TRUE(run.memory.guards_are_intact());
                }
}

/// Runs tasks one after the other; `fault` comes before those of each call.
class FaultyFramework final : public zvp::ParallelFramework {
public:
    explicit FaultyFramework(std::function<void(std::size_t)> fault_) : fault(std::move(fault_)) {}
    void run_in_parallel(zvp::BasicAction& action, std::uint32_t low, std::uint32_t high) override {
        fault(calls++);
        for (std::uint32_t i = low; i < high; ++i) action.run(i);
    }
    void run_in_parallel(zvp::BasicAction& first, zvp::BasicAction& second) override {
        fault(calls++);
        first.run(0);
        second.run(0);
    }
    std::size_t calls = 0;

private:
    const std::function<void(std::size_t)> fault;
};

TEST(VerifyConversion, AFlippedBitOfThePowerIsTold) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    constexpr std::size_t n = 16'000; // the power is hashed by tasks
    const Number x(random_words(random, 15'000), -15'000);
    const zvp::VerifyB plan(billion, n, 2, true);
    PlanRun<zvp::VerifyB> run(plan);
    run.pars.tds = 2;
    const auto hash_with = [&](const std::function<void(std::size_t)>& fault, std::size_t& calls) {
        FaultyFramework framework(fault);
        run.pars.framework = &framework;
        const auto call = [&] { plan.hash_binary(run.pars, nullptr, x.f, n, run.buffer()); };
        const std::string told = failure_of(call);
        calls = framework.calls;
        return told;
    };
    std::size_t calls = 0, told = 0;
    EXPECT_EQ(hash_with([](std::size_t) {}, calls), "nothing");
    const std::string mismatch = "AlgorithmFailedException: VerifyB::hash_binary() Power Hash Mismatch";
    const std::size_t power_bytes = (zvp::radix_words(billion >> 9, n) - 1) * sizeof(zvp::wtype);
    const std::size_t all = calls;
    for (std::size_t at = 0; at < all; ++at) {
        testing::internal::CaptureStdout();
        const std::string fault = hash_with(
            [&](std::size_t call) {
                if (call == at) run.memory.p[random() % power_bytes] ^= std::byte{1} << random() % 8;
            },
            calls);
        const std::string printed = testing::internal::GetCapturedStdout();
        if (fault != mismatch) continue;
        ++told;
        for (const char* line : {"Radix Conversion: Power Hash Mismatch", "Expected", "Actual  "})
            EXPECT_NE(printed.find(line), std::string::npos) << line;
    }
    EXPECT_GT(told, 0u) << all;
}

TEST(VerifyConversion, PlansAreExact) {
    const Number x(Words{1, 2, 3}, -3);
    for (const std::size_t n : {1u, 50u, 2000u}) {
        const zvp::VerifyB plan(billion, n, 2, false);
        PlanRun<zvp::VerifyB> run(plan, 64);
        EXPECT_EQ(failure_of([&] { plan.hash_binary(run.pars, nullptr, x.f, n, run.buffer()); }),
                  "VerifyB::hash_binary() " + std::to_string(plan.total_bytes - 64) + " "
                      + std::to_string(plan.total_bytes));
    }
    const zvp::VerifyB plan(billion, 10, 1, false);
    PlanRun<zvp::VerifyB> run(plan);
    EXPECT_EQ(plan.hash_binary(run.pars, nullptr, BigFloat(), 10, run.buffer()), 0u);
    EXPECT_EQ(plan.hash_binary(run.pars, nullptr, x.f, 0, run.buffer()), 0u);
    EXPECT_THROW(plan.hash_binary(run.pars, nullptr, x.f, 11, run.buffer()), zvp::InvalidParametersException);
}

} // namespace
