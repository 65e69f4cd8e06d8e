// Products by the hybrid transform against GMP's.

#include "multiply/hybrid/hybrid_transform.h"

#include "hybrid_areas.h"

#include <cstdlib>

using namespace zvp;
using test::all_ways;
using test::HybridAreas;
using test::Way;
using test::Words;

namespace {

bool large() { return std::getenv("ZORVANE_TEST_LARGE") != nullptr; }

#ifdef ZORVANE_SANITIZED
constexpr std::uint64_t usual_bits = 1 << 18;
#else
constexpr std::uint64_t usual_bits = 1 << 22;
#endif

/// The rows that a run tries: all of the least capacities, some of those beyond.
std::vector<HybridRow> some_rows(std::span<const HybridRow> rows, std::uint64_t all_bits, std::uint64_t most_bits,
                                 std::size_t step) {
    std::vector<HybridRow> some;
    for (std::size_t i = 0; i < rows.size(); ++i)
        if (const std::uint64_t bits = rows[i].capacity_bits();
            bits <= most_bits && (bits <= all_bits || i % step == 0))
            some.push_back(rows[i]);
    return some;
}

/// Words s .. e - 1 of A * B modulo 2^(32 C) - 1: 0 for what is zero in it.
Words cyclic_product(const Words& A, const Words& B, std::size_t C) {
    const Words product = test::exact_product(A, B);
    test::Integer folded(product), modulus;
    mpz_setbit(modulus.value, 32 * C);
    mpz_sub_ui(modulus.value, modulus.value, 1);
    mpz_mod(folded.value, folded.value, modulus.value);
    Words words(C);
    mpz_export(words.data(), nullptr, -1, 4, 0, 0, folded.value);
    return words;
}

class Transforms : public testing::TestWithParam<platform::KernelSet> {
protected:
    Words operand(std::size_t n) { return test::random_words<std::uint32_t>(random, n); }
    Words ones(std::size_t n) { return Words(n, ~0U); }

    /// The whole product and one range of it.
    void expect_product(HybridAreas& areas, Way way, const Words& A, const Words& B) {
        SCOPED_TRACE(std::to_string(A.size()) + " by " + std::to_string(B.size()) + " words, way "
                     + std::to_string(static_cast<int>(way)));
        const Words exact = test::exact_product(A, B);
        ASSERT_TRUE(areas.product(way, A, &B, 0, areas.capacity) == test::slice(exact, 0, areas.capacity));
        const std::size_t s = random() % areas.capacity, e = s + random() % (areas.capacity - s + 1);
        expect_range(areas, way, A, &B, exact, s, e);
        expect_range(areas, way, A, &B, exact, 0, e);
    }
    void expect_square(HybridAreas& areas, Way way, const Words& A) {
        SCOPED_TRACE(std::to_string(A.size()) + " words squared, way " + std::to_string(static_cast<int>(way)));
        const Words exact = test::exact_product(A, A);
        ASSERT_TRUE(areas.product(way, A, nullptr, 0, areas.capacity) == test::slice(exact, 0, areas.capacity));
        const std::size_t s = random() % (areas.size.c + 1), e = s + random() % (areas.capacity - s + 1);
        expect_range(areas, way, A, nullptr, exact, s, e);
    }

    /// A range from the bottom is exact; above that it misses at most a carry.
    void expect_range(HybridAreas& areas, Way way, const Words& A, const Words* B, const Words& exact, std::size_t s,
                      std::size_t e) {
        const Words range = areas.product(way, A, B, s, e);
        ASSERT_LE(test::shortfall(test::slice(exact, s, e), range), s == 0 ? 0U : 1U) << "words " << s << " to " << e;
    }

    /// Above the words on which a product's top folds it is exact, but for carries: also when the range ends early.
    void expect_middle(HybridAreas& areas, const Words& A, const Words& B, std::size_t folded) {
        const Words exact = test::exact_product(A, B);
        for (std::size_t e = areas.capacity; e > folded; e -= (e - folded + 1) / 2) {
            const Words middle = test::slice(exact, folded, e), found = areas.product(Way::raw, A, &B, folded, e);
            ASSERT_LE(std::min(test::shortfall(middle, found), test::shortfall(found, middle)), 1U)
                << folded << " " << e;
        }
    }

    void expect_row(HybridRow row, const FftTables& tables) {
        SCOPED_TRACE(test::name_of(row));
        HybridAreas areas(row, tables);
        const std::size_t C = areas.capacity, c = areas.size.c;
        const std::size_t lengths[][2]{{C / 2, C - C / 2}, {C - 1, 1}, {C - c - 1, c + 1}, {c, c}, {1, C / 3}};
        const Way way = all_ways[random() % 4];
        for (const auto& [AL, BL] : lengths) {
            expect_product(areas, way, operand(AL), operand(BL));
            if (HasFatalFailure()) return;
        }
        expect_product(areas, way, ones(C / 2), ones(C - C / 2));
        expect_square(areas, way, operand(C / 2));
        expect_square(areas, way, ones(C / 2));
    }

    std::mt19937_64 random{test::seed()};
};

TEST_P(Transforms, EveryRowAtItsCapacityAndBelow) {
    SCOPED_TRACE(test::seed_trace());
    const bool slow = GetParam() != platform::active_kernel_set();
    const std::uint64_t most = large() ? std::uint64_t{1} << 24 : usual_bits;
    const test::RingTables tables(GetParam(), largest_hybrid_ring_bits(most));
    for (const HybridRow row : some_rows(hybrid_rows(), large() ? most : 1 << 17, most, slow ? 7 : 4)) {
        expect_row(row, tables.tables);
        if (HasFatalFailure()) return;
    }
    for (const HybridRow row : some_rows(long_hybrid_rows(), large() ? most : 1 << 17, most, 3)) { // √2 for odd m
        expect_row(row, tables.tables);
        if (HasFatalFailure()) return;
    }
}

TEST_P(Transforms, EveryWayAndEmptyOperands) {
    SCOPED_TRACE(test::seed_trace());
    const test::RingTables tables(GetParam(), 1 << 14);
    for (const HybridRow row : {HybridRow{4, 32}, {4, 96}, {5, 48}, {4, 192}, {9, 1}, {9, 11}, {6, 192}}) {
        SCOPED_TRACE(test::name_of(row));
        HybridAreas areas(row, tables.tables);
        const std::size_t C = areas.capacity;
        for (const Way way : all_ways) {
            expect_product(areas, way, operand(C / 2), operand(C - C / 2));
            expect_square(areas, way, operand(C / 2));
            expect_product(areas, way, {}, operand(C));
            expect_product(areas, way, operand(C), {});
            expect_square(areas, way, {});
            if (HasFatalFailure()) return;
        }
    }
}

TEST_P(Transforms, EveryRangeMissesAtMostACarry) {
    SCOPED_TRACE(test::seed_trace());
    const test::RingTables tables(GetParam(), 1 << 10);
    for (const HybridRow row : {HybridRow{4, 32}, {4, 64}, {4, 192}})
        for (const std::uint32_t tds : {1U, 3U, 16U}) {
            HybridAreas areas(row, tables.tables, {tds, nullptr});
            const std::size_t C = areas.capacity;
            SCOPED_TRACE(test::name_of(row) + ", tasks: " + std::to_string(tds));
            for (const bool all_ones : {true, false}) {
                const Words A = all_ones ? ones(C / 2) : operand(C / 2), B = all_ones ? ones(C / 2) : operand(C / 2);
                const Words exact = test::exact_product(A, B);
                for (std::size_t s = 0; s<C; s += C> 64 ? 1 + random() % 13 : 1)
                    for (std::size_t e = s; e <= C; e += C > 64 ? 1 + random() % 13 : 1) {
                        expect_range(areas, Way::raw, A, &B, exact, s, e);
                        if (HasFatalFailure()) return;
                    }
            }
        }
}

/// A power of two in one coefficient is a power of √2 in all points, and the value 2^N = -1 in some.
TEST_P(Transforms, ElementsThatAreTwoToTheN) {
    SCOPED_TRACE(test::seed_trace());
    const test::RingTables tables(GetParam(), 1 << 14);
    for (const HybridRow row : {HybridRow{4, 32}, {4, 160}, {5, 48}, {4, 192}, {9, 1}, {9, 6}, {6, 576}}) {
        HybridAreas areas(row, tables.tables);
        SCOPED_TRACE(test::name_of(row));
        const std::size_t half = areas.capacity / 2, c = areas.size.c;
        const auto power = [&](std::size_t coefficient, std::uint64_t step) {
            Words words(half);
            const std::uint64_t bit = step * row.m / 2; // of the coefficient; step * m half-bits
            words[c * coefficient + bit / 32] = 1U << bit % 32;
            return words;
        };
        const Words A = power(1, 0), B = power(3, row.m % 2 ? 2 : 1), random_words = operand(half);
        hybrid_forward(areas.job, areas.xa(), A.data(), A.size());
        unsigned minus_ones = 0;
        for (std::size_t i = 0; i < std::size_t{1} << row.k; ++i)
            minus_ones += areas.xa()[i * areas.size.stride + areas.size.n] % 2;
        EXPECT_EQ(minus_ones, 1U);
        for (const Way way : all_ways) {
            expect_product(areas, way, A, B);
            expect_product(areas, way, A, A);
            expect_product(areas, way, A, random_words);
            expect_product(areas, way, random_words, B);
            expect_square(areas, way, A);
            expect_square(areas, way, B);
            if (HasFatalFailure()) return;
        }
    }
}

/// What is longer than the capacity folds: its top is added to its bottom.
TEST_P(Transforms, LongerProductsFold) {
    SCOPED_TRACE(test::seed_trace());
    const test::RingTables tables(GetParam(), 1 << 14);
    for (const HybridRow row : {HybridRow{4, 32}, {4, 96}, {5, 48}, {4, 192}, {9, 3}, {6, 576}})
        for (const std::uint32_t tds : {1U, 3U, 4U, 16U}) {
            HybridAreas areas(row, tables.tables, {tds, nullptr});
            const std::size_t C = areas.capacity;
            SCOPED_TRACE(test::name_of(row) + ", tasks: " + std::to_string(tds));
            const std::size_t lengths[][2]{{C, C}, {C, 1}, {C / 2 + 1, C / 2 + 1}, {C, C / 2}, {C - 1, C - 1}};
            for (const auto& [AL, BL] : lengths)
                for (const bool all_ones : {false, true}) {
                    const Words A = all_ones ? ones(AL) : operand(AL), B = all_ones ? ones(BL) : operand(BL);
                    const Words exact = cyclic_product(A, B, C);
                    Words found = areas.product(all_ways[random() % 4], A, &B, 0, C);
                    if (found == ones(C)) found = Words(C); // the other zero
                    ASSERT_TRUE(found == exact) << AL << " by " << BL << " words, ones: " << all_ones;
                    expect_middle(areas, A, B, AL + BL - C);
                    if (HasFatalFailure()) return;
                }
        }
}

TEST_P(Transforms, RandomLengthsOfLongProducts) {
    if (!large()) GTEST_SKIP() << "set ZORVANE_TEST_LARGE for products of up to 2^31 bits";
    if (GetParam() != platform::active_kernel_set()) GTEST_SKIP() << "the active set only";
    SCOPED_TRACE(test::seed_trace());
    const test::RingTables tables(GetParam(), largest_hybrid_ring_bits(std::uint64_t{1} << 31));
    for (int round = 0; round < 12; ++round) {
        const std::uint64_t bits = random() >> 33 >> random() % 4;
        HybridAreas areas(hybrid_row(bits), tables.tables, {2, nullptr});
        const std::size_t length = std::max<std::size_t>(2, bits / 32), AL = 1 + random() % (length - 1);
        SCOPED_TRACE(test::name_of(hybrid_row(bits)));
        const Words A = operand(AL), B = operand(length - AL);
        ASSERT_TRUE(areas.product(Way::raw, A, &B, 0, length) == test::exact_product(A, B)) << AL << " of " << length;
    }
}

INSTANTIATE_TEST_SUITE_P(Sets, Transforms, testing::ValuesIn(test::kernel_sets()),
                         [](const auto& set) { return std::string(platform::kernel_set_name(set.param)); });

} // namespace
