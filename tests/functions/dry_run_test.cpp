// Functions in dry runs on exactly the storage that their plans report: nothing is touched, and nothing is short.

#include "functions/division.h"
#include "functions/invsqrt_float.h"
#include "functions/invsqrt_word.h"
#include "functions/nth_root.h"
#include "functions/power_word.h"
#include "functions/reciprocal.h"
#include "parallel/memory/carving.h"

#include <gtest/gtest.h>

#include <functional>

namespace zvp {
namespace {

constexpr std::size_t precisions[]{1,    2,     9,     10,     11,      31,      100,       1010,     6'001,
                                   9999, 43210, 99999, 123457, 1000000, 1234567, 9'876'543, 100000001};
constexpr std::uint32_t task_counts[]{1, 2, 3, 5, 17, 24, 64, 100, 512, 4096};

/// One function's run: sizes, and what runs it on a target, an operand as long as any, and a buffer.
struct Walk {
    IterationSizes sizes;
    std::function<void(MultiplyTables&)> ensure;
    std::function<void(const MultiplyParameters&, BigFloat&, const BigFloat&, LinearWordBuffer)> run;
};

/// Throws where the plan doesn't hold.
void walk(std::size_t p, std::uint32_t tds, const Walk& function) {
    MultiplyTables tables;
    function.ensure(tables);
    const std::size_t operand_words = padded_words(p + 20), result_words = padded_words(function.sizes.result_words),
                      buffer_words = padded_words(function.sizes.buffer_words);
    const std::uint64_t memory_bytes = padded_bytes(function.sizes.memory_bytes);
    DryRun dry((operand_words + result_words + buffer_words) * sizeof(wtype) + memory_bytes);
    AlignedBufferC<64> memory(dry.memory(), dry.bytes);
    const LinearWordBuffer operand = memory.spawn_words(operand_words), result = memory.spawn_words(result_words);
    LinearWordBuffer buffer = memory.spawn_words(buffer_words);
    buffer.words = function.sizes.buffer_words;
    BigFloat A(operand.pointer, operand.words), T(result.pointer, function.sizes.result_words);
    A.L = p + 20;
    A.exp = 3 - static_cast<std::int64_t>(A.L);
    A.sign = true;
    MultiplyParameters pars;
    pars.tds = tds;
    pars.tables = &tables;
    pars.M = memory.pointer;
    pars.ML = function.sizes.memory_bytes;
    function.run(pars, T, A, buffer);
    EXPECT_GE(T.L, p);
    EXPECT_LE(T.L, function.sizes.result_words);
    for (const DryRun::Phase& phase : dry.phases) EXPECT_LE(phase.bytes, dry.bytes);
}

TEST(DryRun, FunctionsStayInTheStorageThatTheyReport) {
    for (const std::size_t p : precisions)
        for (const std::uint32_t tds : task_counts) {
            SCOPED_TRACE(testing::Message() << p << " words, " << tds << " tasks");
            const Reciprocal_BigFloatR reciprocal(p, tds);
            walk(p, tds,
                 {reciprocal, [&](auto& tables) { reciprocal.ensure_tables(tables); },
                  [&](auto& pars, auto& T, auto& A, auto buffer) { reciprocal.run(pars, nullptr, T, A, p, buffer); }});
            const Division_BigFloatR division(p, tds);
            walk(p, tds,
                 {division, [&](auto& tables) { division.ensure_tables(tables); },
                  [&](auto& pars, auto& T, auto& A, auto buffer) { division.run(pars, nullptr, T, A, A, buffer); }});
            const InvsqrtWord_BigFloatR word_root(p, tds);
            walk(p, tds,
                 {word_root, [&](auto& tables) { word_root.ensure_tables(tables); },
                  [&](auto& pars, auto& T, auto&, auto buffer) { word_root.run(pars, nullptr, T, 10005, p, buffer); }});
            const InvsqrtFloat_BigFloatR root(p, tds);
            walk(p, tds,
                 {root, [&](auto& tables) { root.ensure_tables(tables); },
                  [&](auto& pars, auto& T, auto& A, auto buffer) { root.run(pars, nullptr, T, A, p, buffer); }});
            const Power_BF_uL_BigFloatR power(p, tds);
            walk(p, tds,
                 {power, [&](auto& tables) { power.ensure_tables(tables); },
                  [&](auto& pars, auto& T, auto& A, auto) { power.run(pars, nullptr, T, A, 1001, p); }});
            const Power_uW_uL_BigFloatR word_power(p, tds);
            walk(p, tds,
                 {word_power, [&](auto& tables) { word_power.ensure_tables(tables); },
                  [&](auto& pars, auto& T, auto&, auto) {
                      word_power.run(pars, nullptr, T, 999'999'937, 2 * p + 3, p);
                  }});
            const InvNthRootFloat_BigFloatR_P nth_root(p, tds);
            for (const wtype n : {2U, 3U, 7U, 1000U, 70000U})
                walk(p, tds,
                     {nth_root, [&](auto& tables) { nth_root.ensure_tables(tables); },
                      [&](auto& pars, auto& T, auto& A, auto buffer) {
                          nth_root.run(pars, nullptr, T, A, n, p, buffer);
                      }});
        }
}

TEST(DryRun, AWordTooFewIsRefusedAsInARealRun) {
    const Division_BigFloatR division(1000, 24);
    Walk walked{division, [&](auto& tables) { division.ensure_tables(tables); },
                [&](auto& pars, auto& T, auto& A, auto buffer) { division.run(pars, nullptr, T, A, A, buffer); }};
    EXPECT_NO_THROW(walk(1000, 24, walked));
    for (const auto field : {&IterationSizes::result_words, &IterationSizes::buffer_words}) {
        --(walked.sizes.*field);
        EXPECT_THROW(walk(1000, 24, walked), BufferTooSmallException);
        ++(walked.sizes.*field);
    }
    --walked.sizes.memory_bytes;
    EXPECT_THROW(walk(1000, 24, walked), BufferTooSmallException);
}

} // namespace
} // namespace zvp
