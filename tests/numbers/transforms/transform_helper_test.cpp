#include "numbers/transforms/transform_helper.h"
#include "transform_support.h"

namespace {

using namespace test;
using zvp::TransformHelper;

TEST(TransformHelper, ScratchOfExactlyTheSizeIsEnough) {
    Multiplier multiplier;
    for (const std::size_t length : {20u, 200u, 201u, 5000u}) {
        for (const std::size_t forms : {1u, 2u, 3u}) {
            SCOPED_TRACE(testing::Message() << length << " words, " << forms << " forms");
            const Bench bench(multiplier.pars, length);
            zvp::MultiplyParameters pars = multiplier.pars;
            pars.ML = forms * bench.tr.transform_bytes + bench.tr.scratch_bytes;
            pars.status = reinterpret_cast<zvp::StatusNode*>(&pars);
            const TransformHelper helper(pars, length, forms);
            EXPECT_TRUE(helper.transform().compatible(bench.tr));
            EXPECT_EQ(helper.form(0), pars.M);
            EXPECT_EQ(helper.form(forms - 1) + bench.tr.transform_bytes, helper.M());
            EXPECT_EQ(helper.M() + bench.tr.scratch_bytes, pars.M + pars.ML);
            EXPECT_EQ(helper.pars().M, helper.M());
            EXPECT_EQ(helper.pars().ML, bench.tr.scratch_bytes);
            EXPECT_EQ(helper.pars().status, nullptr);

            const std::uint64_t needed = pars.ML--;
            EXPECT_EQ(failure_of([&] { TransformHelper(pars, length, forms); }), "TransformHelper::TransformHelper() "
                                                                                     + std::to_string(needed - 1) + " "
                                                                                     + std::to_string(needed));
        }
    }
}

TEST(TransformHelper, RefusesLengthsThatTheTablesDontServe) {
    Multiplier multiplier;
    zvp::MultiplyParameters pars = multiplier.pars;
    zvp::MultiplyTables small;
    zvp::algorithm_table<zvp::wtype>().ensure_tables(small, 300);
    pars.tables = &small; // asked for, but not built
    const std::string text = "limit TransformHelper::TransformHelper(): Multiplication tables are too small.";
    EXPECT_EQ(refusal([&] { TransformHelper(pars, 300, 2); }), text);
    pars.tables = nullptr;
    EXPECT_EQ(refusal([&] { TransformHelper(pars, 300, 2); }), text);
    const std::uint64_t limit = zvp::algorithm_table<zvp::wtype>().rows.back().limit;
    EXPECT_EQ(refusal([&] { TransformHelper(multiplier.pars, limit + 1, 2); }).substr(0, 37),
              "limit AlgorithmTable::get_algorithm()");
}

} // namespace
