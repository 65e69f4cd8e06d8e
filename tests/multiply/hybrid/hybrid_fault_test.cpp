// Bits that flip while a product is made.

#include "app/failure/exceptions.h"
#include "hybrid_areas.h"

#include <cstdio>
#include <cstdlib>
#include <string>

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

/// The kernel of that place in the table, a step of its own.
template <auto member, class... Arguments>
auto sabotaged(Arguments... arguments) {
    Saboteur::step();
    return (Saboteur::real.*member)(arguments...);
}

constexpr RingKernels sabotaged_kernels{&sabotaged<&RingKernels::butterfly>, &sabotaged<&RingKernels::forward4>,
                                        &sabotaged<&RingKernels::load4>,     &sabotaged<&RingKernels::inverse4>,
                                        &sabotaged<&RingKernels::rotate>,    &sabotaged<&RingKernels::subtract>,
                                        &sabotaged<&RingKernels::normalize>, &sabotaged<&RingKernels::residue>};

struct Outcomes {
    unsigned caught = 0, right = 0, silent = 0;

    unsigned all() const { return caught + right + silent; }
};

/// Whole products, ranges and folded ones, of forms or on the way from raw operands.
struct Sample {
    Sample(std::mt19937_64& random, std::size_t C) {
        const bool folded = random() % 3 == 0;
        A.resize(folded ? C - random() % (C / 2) : C / 2);
        B.resize(folded ? C - random() % (C / 2) : C - C / 2);
        for (auto* words : {&A, &B})
            for (auto& word : *words) word = static_cast<std::uint32_t>(random());
        s = random() % 2 ? 0 : random() % C;
        e = random() % 2 ? C : s + random() % (C - s + 1);
    }

    Words A, B;
    std::size_t s, e;
};

class Faults : public testing::Test {
protected:
    /// make() is the words that must be `right`.
    template <class Make>
    void expose(Outcomes& outcomes, const Words& right, Make&& make) {
        try {
            (make() == right ? outcomes.right : outcomes.silent)++;
        } catch (const ConvolutionFailedException& failure) {
            EXPECT_EQ(failure.message, "Modular redundancy check failed.");
            ++outcomes.caught;
        } catch (const AlgorithmFailedException& failure) {
            EXPECT_EQ(failure.message, "Coefficient is too large.");
            ++outcomes.caught;
        }
    }

    static void expect_none_silent(const std::string& what, const Outcomes& o) {
        EXPECT_EQ(o.silent, 0U) << what;
        EXPECT_GT(o.caught, o.all() / 3) << what;
        if (std::getenv("ZORVANE_TEST_VERBOSE"))
            std::printf("%s: %u caught, %u right, %u silent of %u\n", what.c_str(), o.caught, o.right, o.silent,
                        o.all());
    }

    std::mt19937_64 random{test::seed()};
    const test::RingTables tables{platform::active_kernel_set(), 1 << 14};
    static constexpr HybridRow rows[]{{6, 48}, {6, 912}, {9, 15}, {5, 48}};
    static constexpr int rounds = 150;
};

/// In the first two points, the sum of the coefficients and their alternating sum, an error may leave every coefficient
/// small enough to pass for one.
TEST_F(Faults, AFlipInAFormIsFound) {
    SCOPED_TRACE(test::seed_trace());
    Outcomes first_two, others;
    for (const HybridRow row : rows)
        for (int round = 0; round < rounds; ++round) {
            test::HybridAreas areas(row, tables.tables);
            const Sample sample(random, areas.capacity);
            hybrid_forward(areas.job, areas.xa(), sample.A.data(), sample.A.size());
            hybrid_forward(areas.job, areas.xb(), sample.B.data(), sample.B.size());
            Words T(sample.e - sample.s);
            const auto product = [&] {
                hybrid_product(areas.job, areas.xd(), areas.xa(), areas.xb(), T.data(), sample.s, sample.e);
                return T;
            };
            const Words right = product();
            const std::size_t flipped =
                random() % (round % 3 == 0 ? 2 * areas.size.stride : areas.size.stride << row.k);
            expose(flipped < 2 * areas.size.stride ? first_two : others, right, [&] {
                (random() % 2 ? areas.xa() : areas.xb())[flipped] ^= 1U << random() % 32;
                return product();
            });
        }
    expect_none_silent("in the first two points", first_two);
    expect_none_silent("in another point", others);
}

enum Phase { forward, product, fused };

/// The product of a sample; before step `moment` of one phase a bit flips. Returns that phase's steps.
std::uint64_t multiply_struck(test::HybridAreas& areas, const Sample& sample, Phase phase, std::uint64_t moment,
                              std::uint32_t* word, std::uint32_t mask, Words& T) {
    const Words &A = sample.A, &B = sample.B;
    const std::size_t s = sample.s, e = sample.e;
    std::uint64_t steps = 0;
    const auto run = [&](bool struck, auto&& work) {
        Saboteur::strike(struck ? moment : ~std::uint64_t{0}, word, mask);
        work();
        if (struck) steps = Saboteur::calls;
    };
    run(false, [&] { hybrid_forward(areas.job, areas.xb(), B.data(), B.size()); });
    if (phase == fused) {
        run(true, [&] {
            const HybridOperand a{areas.xa(), A.data(), A.size()}, b{areas.xb(), nullptr, 0};
            hybrid_multiply(areas.job, a, b, T.data(), s, e);
        });
        return steps;
    }
    run(phase == forward, [&] { hybrid_forward(areas.job, areas.xa(), A.data(), A.size()); });
    run(phase == product, [&] { hybrid_product(areas.job, areas.xa(), areas.xa(), areas.xb(), T.data(), s, e); });
    return steps;
}

/// A flip behind the products of elements spreads as few powers of two, and most of them stay below the bound of a
/// coefficient. What strikes words that nobody reads any more does no harm.
TEST_F(Faults, AFlipBetweenTwoStepsIsFound) {
    SCOPED_TRACE(test::seed_trace());
    for (const HybridRow row : rows)
        for (const Phase phase : {forward, product, fused}) {
            Outcomes outcomes;
            test::HybridAreas areas(row, tables.tables, {}, sabotaged_kernels);
            for (int round = 0; round < rounds; ++round) {
                const Sample sample(random, areas.capacity);
                std::uint32_t* const word = areas.xa() + random() % (areas.size.stride << row.k);
                Words right(sample.e - sample.s), T(right.size());
                const std::uint64_t steps = multiply_struck(areas, sample, phase, ~std::uint64_t{0}, word, 0, right);
                expose(outcomes, right, [&] {
                    multiply_struck(areas, sample, phase, random() % steps, word, 1U << random() % 32, T);
                    return T;
                });
            }
            static constexpr const char* names[]{", forward", ", product and inverse", ", all in one"};
            expect_none_silent(test::name_of(row) + names[phase], outcomes);
        }
}

} // namespace
