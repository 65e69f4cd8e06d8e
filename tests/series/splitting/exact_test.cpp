// Exact blocks of every family against sums by GMP.

#include "app/console/number_forms.h"
#include "app/console/status.h"
#include "splitting_support.h"

#include <stdexcept>

namespace {

using namespace test;

struct Range {
    std::uint64_t a, b;
};

/// Runs the range for all task counts, with a tree and without, and compares with GMP; all results are the same to the
/// bit, but where the tree cuts at other indices.
template <class Family, class Series>
void expect_sums(const Series& series, std::initializer_list<Range> ranges, std::uint32_t max_depth = 2) {
    for (const auto& [a, b] : ranges) {
        const ExactSum sum = sum_by_gmp(series, a, b);
        for (std::uint32_t depth = 0; depth <= max_depth; ++depth) {
            std::vector<std::vector<wtype>> first;
            for (const std::uint32_t tds : {1U, 2U, 3U, 7U}) {
                SCOPED_TRACE(testing::Message() << "(" << a << ", " << b << "], tds " << tds << ", depth " << depth);
                const bs::BSR_BlockB<Family> block(series, a, b, 1, tds, 1, depth);
                BlockRun<Family> run(block);
                const auto numbers = run.template run<bs::ExactNumber>(tds);
                expect_exact(numbers, sum, Family::results);
                for (std::size_t i = 0; i < Family::results; ++i) {
                    const std::vector<wtype> words(numbers[i].T, numbers[i].T + numbers[i].L);
                    if (tds == 1)
                        first.push_back(words);
                    else
                        EXPECT_TRUE(words == first[i]);
                }
            }
        }
    }
}

TEST(ExactSplitting, CommonP2B3) {
    for (const bool alternating : {true, false})
        for (const std::uint32_t leaf_terms : {2U, 3U, 41U})
            for (const std::uint64_t short_terms : {0U, 66U, 100'000U})
                expect_sums<bs::CommonP2B3::Family>(
                    CubicSeries(alternating, leaf_terms, 100'000, short_terms),
                    {{0, 1}, {4, 5}, {0, 40}, {0, 41}, {7, 90}, {0, 100}, {33, 1032}, {5000, 7001}});
}

TEST(ExactSplitting, CommonP2B3OfRoughTerms) {
    expect_sums<bs::CommonP2B3::Family>(RoughSeries(), {{0, 1}, {0, 2}, {0, 64}, {10, 1010}, {3, 7'777}});
}

TEST(ExactSplitting, LongRange) { expect_sums<bs::CommonP2B3::Family>(CubicSeries(true), {{0, 20'000}}, 0); }

TEST(ExactSplitting, Hyperdescent) {
    for (const bool alternating : {true, false})
        expect_sums<bs::Hyperdescent::Family>(ExponentialSeries(alternating),
                                              {{0, 1}, {0, 15}, {0, 16}, {3, 103}, {5, 1005}, {0, 30'000}});
}

TEST(ExactSplitting, BinaryBBP) {
    for (const std::uint64_t words : {1, 3, 7})
        expect_sums<bs::BinaryBBP::Family>(PowerSeries(words), {{0, 1}, {0, 3}, {2, 102}, {0, 101}, {40, 3'333}});
}

TEST(ExactSplitting, BrentMcMillan) {
    for (const std::uint32_t k : {1U, 5U, 10U})
        expect_sums<bs::BrentMcMillanAB::Family>(BesselSeries(k, 6'000),
                                                 {{0, 1}, {0, 2}, {0, 7}, {3, 60}, {0, 2'500}, {1'000, 2'100}});
}

/// Writes down the cells as they come.
class RecordingNode final : public zvp::StatusNode {
public:
    explicit RecordingNode(std::string& record_) : record(record_) {}
    zvp::Object get_tree() const override { return zvp::Object(std::string()); }
    StatusNode& make_node(zvp::StatusCell cell) override {
        push_cell(std::move(cell));
        return make_node();
    }
    StatusNode& make_node() override {
        EXPECT_EQ(child, nullptr);
        child = std::make_unique<RecordingNode>(record);
        return *child;
    }
    zvp::StatusIteration& make_iteration(zvp::StatusCell, std::uint64_t, zvp::IterationMode, bool) override {
        throw std::logic_error("nothing iterates");
    }
    void update(bool) override {}
    void pop_frame(const zvp::StatusFrame&) override { child.reset(); }
    void push_cells(std::vector<zvp::StatusCell> cells) override {
        for (zvp::StatusCell& cell : cells) push_cell(std::move(cell));
    }
    void push_cell(zvp::StatusCell cell) override { record += cell.color + cell.text + "|"; }
    void push_node(std::unique_ptr<StatusNode>) override {}

private:
    std::string& record;
    std::unique_ptr<RecordingNode> child;
};

TEST(ExactSplitting, TreeShowsItsWay) {
    const CubicSeries series(true);
    const bs::BSR_BlockB<bs::CommonP2B3::Family> block(series, 0, 3'000, 1, 1, 1, 1);
    BlockRun<bs::CommonP2B3::Family> run(block);
    std::string record;
    RecordingNode node(record);
    const auto numbers = run.run<bs::ExactNumber>(1, &node);
    const std::uint64_t m = series.midpoint(0, 3'000);
    const auto digits = [](std::uint64_t n) { return zvp::format_number(n, zvp::NumberForm::commas); };
    const std::string before = "G0|B -> |Y" + digits(series.size_digits(0, m)) + "|G1|B -> |Y"
                               + digits(series.size_digits(m, 3'000)) + "|G-  |Y";
    EXPECT_EQ(record.substr(0, before.size()), before);
    expect_exact(numbers, sum_by_gmp(series, 0, 3'000), 3);
}

} // namespace
