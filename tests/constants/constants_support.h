#pragma once
// Runs of plans on storage of exactly the sizes that they tell, between guards, and the error against MPFR.

#include "constants/plan/constant_plan.h"
#include "functions/functions_support.h"
#include "multiply/contract/multiply_tables.h"
#include "parallel/tasks/framework_config.h"

#include <gtest/gtest.h>
#include <mpfr.h>

#include <functional>
#include <memory>

namespace test {

using zvp::AlignedBufferC;
using zvp::MultiplyTables;
using zvp::RunReport;

/// The words that hold so many decimal digits.
inline std::size_t words_of_digits(std::uint64_t digits) {
    return static_cast<std::size_t>(static_cast<double>(digits) * 3.321928094887362 / 32) + 1;
}

/// Tables and a framework for an object that tells what it needs by ensure_tables().
class Machinery {
public:
    template <class Object>
    Machinery(const Object& object, std::uint32_t tds) : Machinery(tds) {
        object.ensure_tables(tables);
        place();
    }

    explicit Machinery(std::uint32_t tds) {
        pars.tds = tds;
        pars.framework = framework.get();
        pars.tables = &tables;
    }

    /// Builds the tables that were asked for.
    void place() {
        memory = std::make_unique<Scratch>(tables.bytes());
        tables.place(memory->p);
    }

    MultiplyTables tables;
    zvp::MultiplyParameters pars;

private:
    std::unique_ptr<zvp::ParallelFramework> framework = zvp::make_framework_config("pushpool")->make_framework();
    std::unique_ptr<Scratch> memory;
};

/// A result on storage of exactly `result_words` words, and memory of exactly `memory_bytes` bytes; or so much less.
struct ExactStorage {
    ExactStorage(std::size_t result_words, std::uint64_t memory_bytes, std::size_t less_result = 0,
                 std::size_t less_lines = 0)
        : result(result_words - less_result), memory(memory_bytes - 64 * less_lines) {}

    AlignedBufferC<64> buffer() { return {memory.p, memory.bytes}; }

    void expect_intact() const {
        expect_sound(result);
        EXPECT_TRUE(memory.guards_are_intact());
    }

    Number result;
    Scratch memory;
};

/// The relative error of a number in units of W^-p.
inline double error_in_words(const BigFloat& number, const Real& value, std::size_t p) {
    return error_of(number, value, p).relative;
}

} // namespace test
