#include "multiply/tables/algorithm_table.h"

#include "app/failure/exceptions.h"
#include "app/raised.h"
#include "multiply/algorithms/bkt_algorithm.h"
#include "multiply/algorithms/bkt_transform.h"
#include "multiply/contract/multiply_tables.h"
#include "multiply/tables/algorithm_lists.h"
#include "support/program.h"

#include <gtest/gtest.h>

namespace {

using namespace zvp;

/// An algorithm that needs the same whatever the length, and notes for which lengths its tables were wanted.
class FlatAlgorithm final : public MultiplyAlgorithm<c32i> {
public:
    using MultiplyAlgorithm<c32i>::sqr;
    using MultiplyAlgorithm<c32i>::mul;

    FlatAlgorithm(std::uint64_t transform_bytes, std::uint64_t scratch_bytes)
        : MultiplyAlgorithm("FLT", "", "", "", 6400), bytes{transform_bytes, scratch_bytes} {}
    void ensure_tables(MultiplyTables&, std::uint64_t length) const override { ensured.push_back(length); }
    TransformSizes sizes(std::uint64_t length, std::uint32_t tds) const override {
        return {bytes.transform_bytes, bytes.scratch_bytes + length * tds};
    }
    const Transform& params(TransformObject& object, std::uint64_t, std::uint32_t) const override {
        return object.emplace<BKTTransform>(1u);
    }
    void sqr(const MultiplyParameters&, c32i*, std::size_t, std::size_t, const c32i*, std::size_t) const override {}
    void mul(const MultiplyParameters&, c32i*, std::size_t, std::size_t, const c32i*, std::size_t, const c32i*,
             std::size_t) const override {}
    void mul_unchecked(const MultiplyParameters&, c32i*, std::size_t, std::size_t, const c32i*, std::size_t,
                       const c32i*, std::size_t) const override {}

    TransformSizes bytes;
    mutable std::vector<std::uint64_t> ensured;
};

/// "<function> <limit> <length>" of the LimitExceededException that `function` raises.
template <class Function>
std::string beyond_limit(Function&& function) {
    try {
        function();
    } catch (const LimitExceededException& failure) {
        return failure.function + " " + std::to_string(failure.limit) + " " + std::to_string(failure.attempted);
    }
    return "nothing";
}

struct ThreeRows : testing::Test {
    ThreeRows() {
        table.add(10, &small);
        table.add(100, &greedy);
        table.add(200, &large);
    }

    AlgorithmTableB<c32i> table{"test", 32};
    FlatAlgorithm small{64, 1024};
    FlatAlgorithm greedy{4096, 0};
    FlatAlgorithm large{512, 2048};
};

TEST_F(ThreeRows, ALengthAtALimitStaysInItsRow) {
    EXPECT_EQ(&table.get_algorithm(0), &small);
    EXPECT_EQ(&table.get_algorithm(10), &small);
    EXPECT_EQ(&table.get_algorithm(11), &greedy);
    EXPECT_EQ(&table.get_algorithm(200), &large);
    EXPECT_EQ(beyond_limit([&] { table.get_algorithm(201); }), "AlgorithmTable::get_algorithm() 200 201");
    EXPECT_EQ(beyond_limit([&] { table.mSBsize(201, 1, false); }), "AlgorithmTable::get_algorithm() 200 201");
    EXPECT_EQ(beyond_limit([&] { table.mSBsize(201, 1, true); }), "AlgorithmTable::get_algorithm() 200 201");
    std::uint64_t t = 0, s = 0;
    EXPECT_EQ(beyond_limit([&] { table.mSBsizes(t, s, 201, 1); }), "AlgorithmTableB::mSBsizes() 200 201");
    const AlgorithmTable<MultiplyAlgorithm<c32i>> empty("empty", 32);
    EXPECT_EQ(beyond_limit([&] { empty.get_algorithm(1); }), "AlgorithmTable::get_algorithm() 0 1");
}

TEST_F(ThreeRows, MemoryIsThatOfTheWorstRowReached) {
    EXPECT_EQ(table.mSBsize(101, 2, false), 2u * 512 + 2048 + 2 * 101);
    EXPECT_EQ(table.mSBsize(101, 2, true), 2u * 4096 + 2 * 100);
    EXPECT_EQ(table.mSBsize(50, 2, true), 2u * 4096 + 2 * 50);
    EXPECT_EQ(table.mSBsize(7, 2, true), 2u * 64 + 1024 + 2 * 7);
    std::uint64_t transform_bytes = 0;
    std::uint64_t scratch_bytes = 0;
    EXPECT_EQ(table.mSBsizes(transform_bytes, scratch_bytes, 101, 2), 2u * 4096 + 2 * 100);
    EXPECT_EQ(transform_bytes, 4096u);
    EXPECT_EQ(scratch_bytes, 2048u + 2 * 101);
    table.mSBsizes(transform_bytes, scratch_bytes, 10, 3);
    EXPECT_EQ(transform_bytes, 64u);
    EXPECT_EQ(scratch_bytes, 1024u + 3 * 10);
}

TEST_F(ThreeRows, EveryAlgorithmBelowIsAskedForItsTables) {
    MultiplyTables tables;
    table.ensure_tables(tables, 60);
    EXPECT_EQ(small.ensured, std::vector<std::uint64_t>{10});
    EXPECT_EQ(greedy.ensured, std::vector<std::uint64_t>{60});
    EXPECT_TRUE(large.ensured.empty());
}

TEST(AlgorithmTable, RowsRiseAndStayWithinTheirAlgorithm) {
    AlgorithmTable<MultiplyAlgorithm<c32i>> table("test", 32);
    const FlatAlgorithm algorithm(0, 0);
    const auto add = [&](std::uint64_t limit, const FlatAlgorithm* row) {
        return test::raised_by([&] { table.add(limit, row); });
    };
    EXPECT_EQ(add(0, nullptr), "nothing");
    EXPECT_EQ(add(100, &algorithm), "nothing");
    EXPECT_EQ(add(100, nullptr), "nothing");
    EXPECT_EQ(add(100, &algorithm), "StringException: Thresholds must be increasing.");
    EXPECT_EQ(add(99, &algorithm), "StringException: Thresholds must be increasing.");
    EXPECT_EQ(add(201, &algorithm), "StringException: Thresholds is larger than maximum size.");
    EXPECT_EQ(add(std::uint64_t{1} << 59, &algorithm), "StringException: Thresholds is larger than maximum size.");
    EXPECT_EQ(add(200, &algorithm), "nothing");
    EXPECT_EQ(table.rows.size(), 2u);
}

TEST(AlgorithmLists, RowsWithoutAnAlgorithmAreWarnings) {
    const FlatAlgorithm algorithm(0, 0);
    const Registry<AlgorithmKinds> registry("Duplicate", {{"FLT", {&algorithm, nullptr}}});
    const AlgorithmRow rows[] = {{"XYZ", 64}, {"FLT", 6399}};
    EXPECT_EQ(test::printed_by([&] {
                  const auto table = build_basic_table<c32i>("32", rows, registry);
                  ASSERT_EQ(table.rows.size(), 1u);
                  EXPECT_EQ(table.rows[0].limit, 199u);
                  EXPECT_EQ(table.rows[0].algorithm, &algorithm);
              }),
              "\nSkipping unknown algorithm: XYZ\n");
    EXPECT_EQ(test::printed_by(
                  [&] { EXPECT_TRUE((build_basic_table<c64i>("Basic: 64-bit Word", rows, registry).rows.empty())); }),
              "\nSkipping unknown algorithm: XYZ\n\nWarning: FLT does not support: \"Basic: 64-bit Word\"\n");
}

TEST(AlgorithmLists, TheProgramsTablesBuildWithoutAWord) {
    EXPECT_EQ(test::printed_by([] { build_algorithm_tables(); }), "");
    EXPECT_EQ(algorithm_table<c32i>().name, "Basic: 32-bit Word");
    EXPECT_EQ(algorithm_table<c64i>().name, "Basic: 64-bit Word");
    EXPECT_EQ(algorithm_table<c32i>().get_algorithm(200).id, algorithm_registry().find("BKT")->basic_c32i->id);
    EXPECT_EQ(&algorithm_table<c64i>().get_algorithm(100), &bkt_algorithm<c64i>());
    EXPECT_EQ(algorithm_table<c32i>().rows[0].limit, 200u);
    EXPECT_EQ(algorithm_table<c64i>().rows[0].limit, 100u);
}

} // namespace
