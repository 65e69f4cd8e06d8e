#include "multiply/hybrid/hybrid_size.h"

#include "app/failure/exceptions.h"
#include "multiply/basecase/mulb.h"
#include "multiply/fft/fft.h"

#include <gtest/gtest.h>

using namespace zvp;

namespace {

TEST(HybridSize, TablesHaveTheRowsThatCallersCountOn) {
    EXPECT_EQ(long_hybrid_rows().size(), 206U);
    const struct {
        std::uint64_t bits;
        HybridRow row;
        std::uint64_t n, c, capacity;
    } rows[]{
        {0, {4, 32}, 4, 1, 512},
        {512, {4, 32}, 4, 1, 512},
        {5120, {5, 48}, 12, 5, 5120},
        {1408761856, {14, 42}, 5376, 2687, 1408761856},
        {1877999616, {15, 14}, 3584, 1791, 1877999616},
        {2012741632, {14, 60}, 7680, 3839, 2012741632},
        {8246270099456, {21, 15}, 245760, 122879, 8246270099456},
        {hybrid_max_bits, {23, 1}, 65536, 32767, hybrid_max_bits},
    };
    for (const auto& [bits, row, n, c, capacity] : rows) {
        const HybridRow found = hybrid_row(bits);
        EXPECT_EQ(found.k, row.k) << bits;
        EXPECT_EQ(found.m, row.m) << bits;
        EXPECT_EQ(found.n(), n) << bits;
        EXPECT_EQ(found.coefficient_words(), c) << bits;
        EXPECT_EQ(found.capacity_bits(), capacity) << bits;
    }
    EXPECT_EQ(long_hybrid_rows().front().capacity_bits(), 8192U);
    EXPECT_EQ(long_hybrid_rows().back().capacity_bits(), hybrid_max_bits);
    EXPECT_THROW(hybrid_row(hybrid_max_bits + 1), LimitExceededException);
}

TEST(HybridSize, EveryRowHasARingItsRootsAndALargerNeighbour) {
    for (const auto rows : {hybrid_rows(), long_hybrid_rows()}) {
        std::uint64_t before = 0;
        for (const HybridRow& row : rows) {
            SCOPED_TRACE("k = " + std::to_string(row.k) + ", m = " + std::to_string(row.m));
            EXPECT_EQ((std::uint64_t{row.m} << row.k) % 512, 0U) << "half-bits of a turn, n a multiple of 4";
            HybridSize size(row, 1); // throws where the ring has no exact length
            EXPECT_EQ(size.ring.capacity_bits(), size.n >= 24 ? 32 * size.n : 0);
            EXPECT_GT(size.capacity_bits, before);
            before = size.capacity_bits;
        }
    }
}

TEST(HybridSize, RingsOfEveryLengthUpToTheAskedAreCovered) {
    std::uint64_t largest = 0;
    for (const HybridRow& row : hybrid_rows()) {
        largest = std::max(largest, 32 * hybrid_row(row.capacity_bits()).n());
        EXPECT_GE(largest_hybrid_ring_bits(row.capacity_bits()), largest);
    }
    EXPECT_EQ(largest_hybrid_ring_bits(1), 128U);
    EXPECT_EQ(largest_hybrid_ring_bits(hybrid_max_bits), 32U * 245760);
}

TEST(HybridSize, TasksWithoutWorkTakeNoMemory) {
    const struct {
        HybridRow row;
        std::uint32_t tds, tasks;
    } cuts[]{{{4, 192}, 0, 1},   {{4, 192}, 1, 1},   {{4, 192}, 3, 3},     {{4, 192}, 8, 8},       {{4, 192}, 9, 8},
             {{4, 192}, ~0U, 8}, {{9, 288}, 24, 24}, {{9, 288}, 4096, 64}, {{14, 42}, 65536, 512}, {{14, 42}, 96, 96}};
    for (const auto& [row, tds, tasks] : cuts) {
        const HybridSize size(row, tds);
        const FftLength ring = fft_ring_length(32 * row.n());
        EXPECT_EQ(size.tasks, tasks) << tds;
        EXPECT_EQ(size.scratch_bytes, (2 * fft_transform_bytes(ring) + fft_scratch_bytes(ring)) * tasks) << tds;
    }
    const std::uint64_t product = std::max<std::uint64_t>(8 * 12 + MULB::mul_scratch(12), 8 * 12 + 64);
    EXPECT_EQ(HybridSize({4, 96}, 5).scratch_bytes, 5 * ((product + 63) / 64 * 64));
}

TEST(HybridSize, PassesStayInTheCache) {
    EXPECT_EQ(cache_split(4, 1 << 20), 2U);
    EXPECT_EQ(cache_split(5, 4), 2U);
    EXPECT_EQ(cache_split(6, 4), 3U);
    EXPECT_EQ(cache_split(14, 5376), 6U);  // 66 elements of 21508 bytes; 130 are too many
    EXPECT_EQ(cache_split(16, 39319), 3U); // 10 elements of 157280 bytes
    EXPECT_EQ(cache_split(16, 39321), 2U); // 10 elements are 1.5 MiB and 16 bytes
}

} // namespace
