#pragma once
// The powers of the radix that a conversion multiplies by, each with its forward form: R^(b 2^i) for the levels i of a
// tree whose leaves are b output words.

#include "multiply/contract/multiply_tables.h"
#include "multiply/contract/transform.h"
#include "parallel/memory/aligned_buffer.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace zvp {

class StatusNode;

/// The shape of a conversion of N words of radix R: leaves of at most b words, N <= b 2^levels.
struct ConvertShape {
    explicit ConvertShape(std::uint64_t N);

    std::uint64_t b = 0; // 16 .. 31, or N below 32
    unsigned levels = 0;
};

/// floor(n log2(R) / 32): the words of R^n are this and at most one more. Exact where the logarithm isn't within 2^-90 of
/// an integer. R >= 1.
std::uint64_t radix_words(std::uint32_t R, std::uint64_t n);

/// One level: the power R^(b 2^i).
struct ConvertLevel {
    std::uint64_t zero_words = 0; // low words of the power that are zero
    std::uint64_t p_words = 0;    // the precision of fractions that this level makes, four words beyond its digits
    std::uint64_t mul_words = 0;  // of a product's transform: the words above the point fold onto those nobody wants
    std::uint32_t tasks = 1;      // the most tasks of a product
    unsigned task_log = 0;        // parallel splits from here down

    std::uint64_t transform_bytes = 0;
    std::uint64_t scratch_bytes = 0; // of a product by `tasks` tasks
};

/// The sizes of the table: all that can be known without computing it. Radix R >= 2, N >= 1 output words.
class ReadyTableB {
public:
    static constexpr unsigned max_levels = 64;

    ReadyTableB(std::uint32_t R_, std::uint64_t N, std::uint32_t tasks_total);

    /// What a product of the level needs besides the operands and the result: the input's form and the scratch.
    std::uint64_t product_bytes(unsigned level, std::uint32_t tasks) const;

    /// Grows the wish of `tables` to the products of all levels.
    void ensure_tables(MultiplyTables& tables) const;

    /// Throws LimitExceededException if pars.tables weren't built for these products.
    void check_tables(const MultiplyParameters& pars, const std::byte* M) const;

    const std::uint32_t R;
    const ConvertShape shape;
    const unsigned t;              // trailing zero bits of R
    const unsigned T;              // parallel splits
    const std::uint32_t tasks_top; // tasks of the top level
    std::array<ConvertLevel, max_levels> levels{};

    std::uint64_t forms_bytes = 0; // of all forward forms
    std::uint64_t build_bytes = 0; // scratch for building them

private:
    friend class ReadyPowers;
    std::uint64_t power_words(unsigned level) const; // storage of the power itself
};

/// The transform of a product at `level` by `tasks` tasks. Its form is the same for any number of them.
const Transform& plan_product(TransformObject& object, const ConvertLevel& level, std::uint32_t tasks);

/// A prepared power: forward form and position.
struct PowerTransform {
    TransformObject transform; // that made the form, by one task
    std::byte* X = nullptr;
    std::uint64_t L = 0;
    std::int64_t exp = 0;
};

/// The table of one run.
class ReadyPowers {
public:
    /// Computes the powers by squaring, and their forward forms into `table` (plan.forms_bytes); `scratch` has
    /// plan.build_bytes and is free afterwards. The last power is checked against its residue modulo 2^61 - 1:
    /// AlgorithmFailedException, "Checksum Mismatch". Throws BufferTooSmallException for a buffer that is too small, and
    /// LimitExceededException if pars.tables weren't built for the products. Its own scratch `pars` doesn't use.
    ReadyPowers(const ReadyTableB& plan_, const MultiplyParameters& pars, StatusNode* status, AlignedBufferC<64> table,
                AlignedBufferC<64> scratch);

    const ReadyTableB& plan;
    std::array<PowerTransform, ReadyTableB::max_levels> powers;
    unsigned filled = 0; // levels made

private:
    void make_tables(const MultiplyParameters& pars, StatusNode* status, AlignedBufferC<64> table,
                     AlignedBufferC<64> scratch);
    void place(unsigned level, AlignedBufferC<64>& table);
};

} // namespace zvp
