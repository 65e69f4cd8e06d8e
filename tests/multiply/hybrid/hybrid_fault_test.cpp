// Bits that flip while a product is made.

#include "app/failure/exceptions.h"
#include "hybrid_areas.h"

#include <cstdio>
#include <cstdlib>

using namespace zvp;
using test::Words;

namespace {

/// Flips one bit before a kernel's call of that number.
struct Saboteur {
    static void strike(std::uint64_t call, std::uint32_t* word, std::uint32_t mask) {
        calls = 0;
        strike_at = call;
        target = word;
        flipped = mask;
    }
    static void step() {
        if (calls++ == strike_at) *target ^= flipped;
    }

    static inline const RingKernels& real = ring_kernels(platform::active_kernel_set());
    static inline std::uint64_t calls = 0, strike_at = 0;
    static inline std::uint32_t *target = nullptr, flipped = 0;
};

constexpr RingKernels sabotaged_kernels{
    [](auto x, auto y, auto z, auto n) { Saboteur::step(), Saboteur::real.butterfly(x, y, z, n); },
    [](RingWord* const (&x)[4], RingWord* const (&z)[3], std::size_t n) {
        Saboteur::step(), Saboteur::real.forward4(x, z, n);
    },
    [](RingWord* const (&x)[4], RingWord* const (&z)[3], std::size_t n) {
        Saboteur::step(), Saboteur::real.inverse4(x, z, n);
    },
    [](auto z, auto x, auto n, auto s) { Saboteur::step(), Saboteur::real.rotate(z, x, n, s); },
    [](auto x, auto y, auto n) { Saboteur::step(), Saboteur::real.subtract(x, y, n); },
    [](auto x, auto n) { Saboteur::step(), Saboteur::real.normalize(x, n); }};

struct Outcomes {
    unsigned caught = 0, right = 0, silent = 0;

    unsigned all() const { return caught + right + silent; }
};

class Faults : public testing::Test {
protected:
    /// make(strike) is a product in `areas`; strike() is called once where a bit may flip from.
    template <class Make>
    void expose(Outcomes& outcomes, const Words& exact, Make&& make) {
        try {
            (make() == exact ? outcomes.right : outcomes.silent)++;
        } catch (const AlgorithmFailedException& failure) {
            EXPECT_EQ(failure.message, "Coefficient is too large.");
            ++outcomes.caught;
        }
    }

    static void tell(const char* what, const Outcomes& o) {
        if (std::getenv("ZORVANE_TEST_VERBOSE"))
            std::printf("%s: %u caught, %u right, %u silent of %u\n", what, o.caught, o.right, o.silent, o.all());
    }

    std::mt19937_64 random{test::seed()};
    const test::RingTables tables{platform::active_kernel_set(), 1 << 14};
    static constexpr HybridRow rows[]{{6, 48}, {6, 912}, {9, 15}, {5, 48}};
    static constexpr int rounds = 150;
};

/// In all points but the first two the factor of a flipped bit is as long as the ring, and spoils all coefficients. Those
/// two hold the sum of the coefficients and their alternating sum, which are half as long: there an error can stay below
/// the bound of a coefficient.
TEST_F(Faults, AFlipInAFormIsCaughtButInTwoPoints) {
    SCOPED_TRACE(test::seed_trace());
    Outcomes first_two, others;
    for (const HybridRow row : rows)
        for (int round = 0; round < rounds; ++round) {
            test::HybridAreas areas(row, tables.tables);
            const std::size_t C = areas.capacity;
            Words A(C / 2), B(C - C / 2), T(C);
            for (auto* words : {&A, &B})
                for (auto& word : *words) word = static_cast<std::uint32_t>(random());
            const std::size_t flipped =
                random() % (round % 3 == 0 ? 2 * areas.size.stride : areas.size.stride << row.k);
            expose(flipped < 2 * areas.size.stride ? first_two : others, test::exact_product(A, B), [&] {
                hybrid_forward(areas.job, areas.xa(), A.data(), A.size());
                hybrid_forward(areas.job, areas.xb(), B.data(), B.size());
                std::uint32_t* const form = random() % 2 ? areas.xa() : areas.xb();
                form[flipped] ^= 1U << random() % 32;
                hybrid_product(areas.job, areas.xa(), areas.xa(), areas.xb(), T.data(), 0, C);
                return T;
            });
        }
    tell("in the first two points", first_two);
    tell("in another point", others);
    EXPECT_GT(first_two.caught, 0U);
    EXPECT_EQ(others.caught, others.all());
}

/// Before the products of elements a fault is caught as one in a form, unless it changes an operand's own words. Behind
/// them it stays a few powers of two: what is caught there is what strikes elements whose product is still to come, and the
/// top of coefficients.
TEST_F(Faults, AFlipBetweenTwoStepsIsCaughtWhereItSpreads) {
    SCOPED_TRACE(test::seed_trace());
    for (const HybridRow row : rows)
        for (const bool forward : {true, false}) {
            Outcomes outcomes;
            test::HybridAreas areas(row, tables.tables, {}, sabotaged_kernels);
            const std::size_t C = areas.capacity;
            Words A(C / 2), B(C - C / 2), T(C);
            for (auto* words : {&A, &B})
                for (auto& word : *words) word = static_cast<std::uint32_t>(random());
            const Words exact = test::exact_product(A, B);
            std::uint64_t steps = 0;
            for (int round = -1; round < rounds; ++round)
                expose(outcomes, exact, [&] {
                    std::uint32_t* const word = areas.xa() + random() % (areas.size.stride << row.k);
                    const std::uint64_t moment = steps ? random() % steps : ~std::uint64_t{0};
                    const auto phase = [&](bool struck, auto&& run) {
                        Saboteur::strike(struck ? moment : ~std::uint64_t{0}, word, 1U << random() % 32);
                        run();
                        if (struck) steps = Saboteur::calls;
                    };
                    phase(false, [&] { hybrid_forward(areas.job, areas.xb(), B.data(), B.size()); });
                    phase(forward, [&] { hybrid_forward(areas.job, areas.xa(), A.data(), A.size()); });
                    phase(!forward,
                          [&] { hybrid_product(areas.job, areas.xa(), areas.xa(), areas.xb(), T.data(), 0, C); });
                    return T;
                });
            EXPECT_GT(outcomes.caught, outcomes.all() / (forward ? 2 : 6)) << test::name_of(row);
            EXPECT_TRUE(!forward || outcomes.silent < outcomes.all() / 8) << test::name_of(row);
            tell((test::name_of(row) + (forward ? ", forward" : ", product and inverse")).c_str(), outcomes);
        }
}

} // namespace
