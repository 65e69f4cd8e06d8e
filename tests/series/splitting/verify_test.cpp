// The residue check, and what a run refuses.

#include "series/splitting/verify.h"
#include "splitting_support.h"

#include <algorithm>
#include <iostream>

namespace {

using namespace test;

/// Runs and checks `injections` times, with one bit flipped somewhere on the way; returns how many were found. A flip that
/// changes no result doesn't count.
class FaultyFramework final : public zvp::ParallelFramework {
public:
    explicit FaultyFramework(std::function<void(std::uint32_t)> fault_) : fault(std::move(fault_)) {}
    void run_in_parallel(zvp::BasicAction& action, std::uint32_t low, std::uint32_t high) override {
        for (std::uint32_t i = low; i < high; ++i) action.run(i);
    }
    /// Both halves of a node; then the fault, before they are merged.
    void run_in_parallel(zvp::BasicAction& first, zvp::BasicAction& second) override {
        first.run(0);
        second.run(0);
        fault(calls++);
    }

    std::uint32_t calls = 0;

private:
    std::function<void(std::uint32_t)> fault;
};

struct Injections {
    std::uint32_t changed = 0, found = 0;
};

/// Flips one random bit of the storage of a result after a random pair of halves, in exact blocks of 7 tasks.
template <class Family, class Series>
Injections inject(const Series& series, std::uint64_t b, std::uint32_t count, std::size_t checked) {
    const bs::BSR_BlockB<Family> block(series, 0, b, 1, 7, 1, 0);
    BlockRun<Family> run(block);
    FaultyFramework counting([](std::uint32_t) {});
    run.pars.framework = &counting;
    const auto reference = run.template run<bs::ExactNumber>(7);
    std::vector<std::vector<wtype>> expected;
    std::vector<std::pair<wtype*, std::size_t>> storage;
    for (std::size_t i = 0; i < checked; ++i) {
        expected.emplace_back(reference[i].T, reference[i].T + reference[i].L);
        storage.emplace_back(reference[i].buffer,
                             static_cast<std::size_t>(reference[i].T - reference[i].buffer) + reference[i].L);
    }
    std::mt19937_64 random(seed());
    Injections result;
    const std::uint32_t pairs = counting.calls;
    EXPECT_GE(pairs, 3U);
    for (std::uint32_t i = 0; i < count; ++i) {
        const auto when = static_cast<std::uint32_t>(random() % pairs);
        FaultyFramework framework([&](std::uint32_t call) {
            if (call != when) return;
            const auto& [words, n] = storage[random() % storage.size()];
            words[random() % n] ^= 1U << (random() % 32);
        });
        run.pars.framework = &framework;
        const auto numbers = run.template run<bs::ExactNumber>(7);
        EXPECT_EQ(framework.calls, pairs);
        bool differs = false;
        for (std::size_t j = 0; j < checked; ++j)
            differs |= !std::equal(expected[j].begin(), expected[j].end(), numbers[j].T, numbers[j].T + numbers[j].L);
        result.changed += differs;
        try {
            bs::zvc_Verify_BSR(0, b, {numbers.data(), checked}, run.pars);
        } catch (const zvp::BSRModularCheckFailedException& failure) {
            EXPECT_TRUE(differs);
            EXPECT_EQ(failure.function, "zvc_Verify_BSR()");
            EXPECT_EQ(failure.message, "Modular Redundancy Check Failed");
            EXPECT_EQ(failure.a, 0U);
            EXPECT_EQ(failure.b, b);
            EXPECT_EQ(failure.hashes.size(), checked);
            ++result.found;
        }
    }
    return result;
}

void expect_all_found(const char* family, const Injections& injections, std::uint32_t count) {
    std::cout << family << ": " << count << " flipped bits, " << injections.changed << " changed a result, "
              << injections.found << " found\n";
    EXPECT_EQ(injections.found, injections.changed);
    EXPECT_GT(injections.changed, count / 4);
}

TEST(ResidueCheck, FindsFlippedBits) {
    SCOPED_TRACE(seed_trace());
    constexpr std::uint32_t count = 200;
    expect_all_found("CommonP2B3", inject<bs::CommonP2B3::Family>(CubicSeries(true), 4'000, count, 3), count);
    expect_all_found("Hyperdescent", inject<bs::Hyperdescent::Family>(ExponentialSeries(false), 5'000, count, 2),
                     count);
    expect_all_found("BinaryBBP", inject<bs::BinaryBBP::Family>(PowerSeries(3), 4'000, count, 2), count);
    expect_all_found("BrentMcMillanAB", inject<bs::BrentMcMillanAB::Family>(BesselSeries(7, 4'000), 4'000, count, 4),
                     count);
}

TEST(ResidueCheck, KnowsSignsExponentsAndBothZeros) {
    std::vector<wtype> words = {5, 0, 7};
    for (const std::int64_t exp : {0, 3, -2, 100'000, -100'000})
        for (const bool sign : {true, false}) {
            bs::ExactNumber f(words.data(), words.size());
            f.L = 3;
            f.exp = exp;
            f.sign = sign;
            const mpz_class magnitude = integer(f.T, f.L);
            f.hash = residue_of(sign ? magnitude : mpz_class(-magnitude), 32 * exp);
            bs::ExactNumber zero;
            for (const std::uint64_t zero_hash : {std::uint64_t{0}, zvp::hash_modulus, 2 * zvp::hash_modulus}) {
                zero.hash = zero_hash;
                bs::ExactNumber pair[] = {f, zero};
                EXPECT_NO_THROW(bs::zvc_Verify_BSR(1, 2, pair, {}));
                pair[0].hash += zvp::hash_modulus; // the same number
                EXPECT_NO_THROW(bs::zvc_Verify_BSR(1, 2, pair, {}));
                pair[0].sign = !sign;
                EXPECT_THROW(bs::zvc_Verify_BSR(1, 2, pair, {}), zvp::BSRModularCheckFailedException);
                pair[0].sign = sign;
                pair[0].exp += 1;
                EXPECT_THROW(bs::zvc_Verify_BSR(1, 2, pair, {}), zvp::BSRModularCheckFailedException);
            }
        }
}

TEST(ResidueCheck, TellsAllDifferences) {
    std::vector<wtype> words = {9};
    bs::ExactNumber good(words.data(), 1);
    good.L = 1;
    good.sign = true;
    good.hash = 9;
    bs::ExactNumber bad = good;
    bad.hash = 11;
    const bs::ExactNumber numbers[] = {good, bad, good};
    try {
        bs::zvc_Verify_BSR(1'234'567, 7'654'321, numbers, {});
        FAIL() << "passed";
    } catch (const zvp::BSRModularCheckFailedException& failure) {
        ASSERT_EQ(failure.hashes.size(), 3U);
        EXPECT_EQ(zvp::normalize_hash(failure.hashes[0]), 0U);
        EXPECT_EQ(zvp::normalize_hash(failure.hashes[1]), 2U);
        testing::internal::CaptureStdout();
        failure.print();
        const std::string text = testing::internal::GetCapturedStdout();
        EXPECT_NE(text.find("Modular Redundancy Check Failed"), std::string::npos) << text;
        EXPECT_NE(text.find("    a = 1,234,567\n    b = 7,654,321\n    hash[0] = "), std::string::npos) << text;
        EXPECT_NE(text.find("    hash[1] = 2\n"), std::string::npos) << text;
    }
}

} // namespace
