// One product by several tasks.

#include "hybrid_areas.h"
#include "parallel/tasks/framework_config.h"

using namespace zvp;
using test::HybridAreas;
using test::Way;
using test::Words;

namespace {

TEST(HybridTasks, AnyNumberOfTasksMakesTheSameProduct) {
    SCOPED_TRACE(test::seed_trace());
    std::mt19937_64 random(test::seed());
    const test::RingTables tables(platform::active_kernel_set(), 1 << 14);
    const auto pool = make_framework_config("pushpool")->make_framework();
    for (const HybridRow row : {HybridRow{4, 32}, {4, 192}, {5, 48}, {7, 24}, {9, 3}, {6, 912}, {8, 48}, {10, 6}})
        for (const std::uint32_t tds : {1U, 2U, 3U, 8U, 64U}) {
            SCOPED_TRACE(test::name_of(row) + ", tasks: " + std::to_string(tds));
            HybridAreas alone(row, tables.tables), areas(row, tables.tables, {tds, pool.get()});
            HybridAreas serial(row, tables.tables, {tds, nullptr});
            const std::size_t C = areas.capacity, AL = C / 2 - random() % (C / 4);
            const Words A = random() % 4 ? test::random_words<std::uint32_t>(random, AL) : Words(AL, ~0U);
            const Words B = random() % 4 ? test::random_words<std::uint32_t>(random, C - AL) : Words(C - AL, ~0U);
            const Words exact = test::exact_product(A, B);
            for (const Way way : test::all_ways) {
                ASSERT_TRUE(areas.product(way, A, &B, 0, C) == exact);
                ASSERT_TRUE(serial.product(way, A, &B, 0, C) == exact);
                const std::size_t s = random() % C, e = s + random() % (C - s + 1);
                ASSERT_LE(test::shortfall(test::slice(exact, s, e), areas.product(way, A, &B, s, e)), 1U);
                ASSERT_TRUE(areas.product(way, A, nullptr, 0, 2 * AL) == test::exact_product(A, A));
            }
            // Forms go from one number of tasks to another.
            hybrid_forward(areas.job, areas.xa(), A.data(), A.size());
            hybrid_forward(alone.job, alone.xa(), A.data(), A.size());
            EXPECT_TRUE(areas.a.copy<std::uint32_t>() == alone.a.copy<std::uint32_t>());
        }
}

} // namespace
