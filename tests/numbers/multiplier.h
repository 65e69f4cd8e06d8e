#pragma once
// What a product takes besides its operands, and a framework without threads.

#include "multiply/contract/multiply_tables.h"
#include "multiply/tables/algorithm_table.h"
#include "parallel/tasks/framework_config.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace test {

/// Tables and scratch for products of up to `reach` words: as far as the table goes, but no further than a test can
/// wait.
template <class Word>
class WordMultiplier {
public:
    explicit WordMultiplier(std::uint32_t tds = 1) {
        const auto& table = zvp::algorithm_table<Word>();
        reach = static_cast<std::size_t>(std::min<std::uint64_t>(table.rows.back().limit, 500'000));
        table.ensure_tables(tables, reach);
        table_memory.resize(tables.bytes() + alignment);
        tables.place(aligned(table_memory));
        scratch_bytes = table.mSBsize(reach, tds, true);
        scratch.resize(scratch_bytes + alignment);
        pars.tds = tds;
        pars.framework = framework.get();
        pars.tables = &tables;
        pars.M = aligned(scratch);
        pars.ML = scratch_bytes;
    }

    std::size_t reach;
    zvp::MultiplyParameters pars;

private:
    static constexpr std::size_t alignment = 64;

    static std::byte* aligned(std::vector<std::byte>& memory) {
        const auto address = reinterpret_cast<std::uintptr_t>(memory.data());
        return memory.data() + (alignment - address % alignment) % alignment;
    }

    std::unique_ptr<zvp::ParallelFramework> framework = zvp::make_framework_config("pushpool")->make_framework();
    zvp::MultiplyTables tables;
    std::vector<std::byte> table_memory;
    std::vector<std::byte> scratch;
    std::uint64_t scratch_bytes;
};

/// Runs the tasks one by one, without a heap of its own.
class InOrder final : public zvp::ParallelFramework {
public:
    void run_in_parallel(zvp::BasicAction& action, std::uint32_t low, std::uint32_t high) override {
        for (std::uint32_t i = low; i < high; ++i) action.run(i);
    }
    void run_in_parallel(zvp::BasicAction& first, zvp::BasicAction& second) override {
        first.run(0);
        second.run(0);
    }
};

} // namespace test
