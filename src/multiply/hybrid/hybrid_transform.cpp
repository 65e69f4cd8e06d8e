#include "multiply/hybrid/hybrid_transform.h"

#include "app/console/watching.h"
#include "app/failure/exceptions.h"
#include "digits/hash/hash_field.h"
#include "multiply/hybrid/coefficient_output.h"
#include "multiply/hybrid/coefficient_residues.h"
#include "multiply/hybrid/range_tasks.h"
#include "multiply/hybrid/residue.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <span>

namespace zvp {

namespace {

/// Whether a pass over all levels of the block keeps to the cache.
bool is_small(const HybridJob& job, unsigned k) { return k <= 3 || cache_split(2 * k, job.size.n) >= k; }

/// How a block of 2^k points falls into columns and rows.
struct Split {
    unsigned column_levels;
    unsigned row_levels;

    std::uint64_t columns() const { return std::uint64_t{1} << row_levels; }
    std::uint64_t rows() const { return std::uint64_t{1} << column_levels; }
};

/// Of two odd parts each would take a step of one level; one level passed to the rows makes that a step of two, if they
/// stay in the cache and there are enough of them for all tasks.
Split split_of(const HybridJob& job, unsigned k) {
    const unsigned v = cache_split(k, job.size.n);
    const bool both_odd = v % 2 == 1 && k % 2 == 0;
    if (both_odd && is_small(job, k - v + 1) && job.size.tasks <= std::uint32_t{1} << (v - 1))
        return {v - 1, k - v + 1};
    return {v, k - v};
}

ElementSet column_of(const HybridJob& job, RingWord* X, const Split& split, std::uint64_t column) {
    const std::size_t stride = job.size.stride;
    return {X + column * stride, stride << split.row_levels, split.column_levels, column, split.columns()};
}

RingWord* row_of(const HybridJob& job, RingWord* X, const Split& split, std::uint64_t row) {
    return X + row * (job.size.stride << split.row_levels);
}

void forward_block(const HybridJob& job, RingWord* X, unsigned k, TaskScratch scratch) {
    if (is_small(job, k)) {
        forward_levels(job, {X, job.size.stride, k, 0, 1}, scratch);
        for (std::uint64_t i = 0; i < std::uint64_t{1} << k; ++i)
            job.kernels.normalize(X + i * job.size.stride, job.size.n);
        return;
    }
    const Split split = split_of(job, k);
    for (std::uint64_t i = 0; i < split.columns(); ++i) forward_levels(job, column_of(job, X, split, i), scratch);
    for (std::uint64_t i = 0; i < split.rows(); ++i)
        forward_block(job, row_of(job, X, split, i), split.row_levels, scratch);
}

/// The products of a block's elements and their inverse transform.
void product_block(const HybridJob& job, RingWord* Xd, const RingWord* Xa, const RingWord* Xb, unsigned k,
                   TaskScratch scratch) {
    const std::size_t stride = job.size.stride;
    if (is_small(job, k)) {
        const std::uint64_t last = (std::uint64_t{1} << k) - 1;
        for (std::uint64_t i = 0; i <= last; ++i)
            ring_product(job, Xd + i * stride, Xa + i * stride, Xb + i * stride, scratch, i > 0 && i < last);
        return inverse_levels(job, {Xd, stride, k, 0, 1}, scratch);
    }
    const Split split = split_of(job, k);
    for (std::uint64_t i = 0; i < split.rows(); ++i) {
        const std::size_t offset = i * (stride << split.row_levels);
        product_block(job, Xd + offset, Xa + offset, Xb + offset, split.row_levels, scratch);
    }
    for (std::uint64_t i = 0; i < split.columns(); ++i) inverse_levels(job, column_of(job, Xd, split, i), scratch);
}

/// The column passes of operands, in one go.
void forward_columns(const HybridJob& job, std::span<const HybridOperand> operands) {
    const Split split = split_of(job, job.size.k);
    run_items(job, operands.size() * split.columns(), [&](std::uint64_t item, TaskScratch scratch) {
        const auto& [X, words, length] = operands[item / split.columns()];
        load_levels(job, column_of(job, X, split, item % split.columns()), words, length, scratch);
    });
}

/// Throws when the sums of all coefficients aren't those that are expected.
class SumCheck {
public:
    void add(const CoefficientOutput::Sums& sums) {
        values += sums.values;
        kept += sums.kept;
        add_to(left_out, sums.left_out);
        add_to(taken, sums.taken);
    }
    void expect(std::uint32_t expected_value, std::uint32_t expected_kept) const {
        if (!arithmetic_is_watched) return;
        if (reduce_residue(values) != expected_value || reduce_residue(kept) != expected_kept)
            throw ConvolutionFailedException("hybrid_product()", "Modular redundancy check failed.");
    }

    std::atomic<std::uint64_t> left_out{0}, taken{0}; // modulo 2^61 - 1

private:
    static void add_to(std::atomic<std::uint64_t>& sum, std::uint64_t hash) {
        std::uint64_t before = sum.load(std::memory_order_relaxed);
        while (!sum.compare_exchange_weak(before, add_mod(before, hash), std::memory_order_relaxed)) {
        }
    }

    std::atomic<std::uint64_t> values{0}, kept{0}; // of residues: as many as tasks
};

/// The last pass of the inverse, and the way out.
void inverse_columns(const HybridJob& job, RingWord* X, RingWord* T, std::size_t s, std::size_t e,
                     std::uint32_t expected) {
    const HybridSize& size = job.size;
    const Split split = split_of(job, size.k);
    const CoefficientOutput output(job, T, s, e);
    SumCheck check;
    const std::uint32_t down_a_column = residue_power(check_point, split.columns());
    run_takers(job, split.columns(), [&](auto&& take, TaskScratch scratch) {
        CoefficientOutput::Sums sums;
        std::uint64_t next = 0; // that a task's run goes on with
        for (std::uint64_t i; take(i); next = i + 1) {
            const ElementSet column = column_of(job, X, split, i);
            inverse_levels(job, column, scratch);
            std::uint32_t power = residue_power(check_point, i);
            for (std::uint64_t t = 0; t < split.rows(); ++t, power = multiply_residues(power, down_a_column))
                output.put(i + t * split.columns(), power, column.at(t),
                           i > 0 && i == next ? column.at(t) - size.stride : nullptr, scratch, sums);
        }
        check.add(sums);
    });
    // What stands above the last coefficient of a run belongs to the one behind it.
    CoefficientOutput::Sums left;
    for (std::uint64_t i = 0; i < split.columns(); ++i)
        for (std::uint64_t t = 0; t < split.rows() && output.ends_run(X + i * size.stride); ++t) {
            const std::uint64_t last = i + t * split.columns();
            output.finish_run(last, X + last * size.stride, left);
        }
    check.expect(expected, left.kept);
    const std::uint64_t hashes[]{add_mod(check.left_out, left.left_out), add_mod(check.taken, left.taken)};
    std::memcpy(job.M, hashes, sizeof hashes);
}

/// The row of a form, ready for products.
void forward_row(const HybridJob& job, const HybridOperand& operand, const Split& split, std::uint64_t row,
                 TaskScratch scratch) {
    forward_block(job, row_of(job, operand.X, split, row), split.row_levels, scratch);
    store_residues(job, operand.X, operand.words, operand.length, row * split.columns(), split.columns());
}

} // namespace

void hybrid_forward(const HybridJob& job, RingWord* X, const RingWord* A, std::size_t AL) {
    const Split split = split_of(job, job.size.k);
    const HybridOperand operand{X, A, AL};
    forward_columns(job, {&operand, 1});
    run_items(job, split.rows(),
              [&](std::uint64_t row, TaskScratch scratch) { forward_row(job, operand, split, row, scratch); });
}

void hybrid_product(const HybridJob& job, RingWord* Xd, const RingWord* Xa, const RingWord* Xb, RingWord* T,
                    std::size_t s, std::size_t e) {
    const Split split = split_of(job, job.size.k);
    const ResidueSource a{Xa, nullptr, 0}, b{Xb, nullptr, 0};
    const std::uint32_t expected = expected_residue(job, a, Xa == Xb ? nullptr : &b);
    run_items(job, split.rows(), [&](std::uint64_t row, TaskScratch scratch) {
        const std::size_t offset = row * (job.size.stride << split.row_levels);
        product_block(job, Xd + offset, Xa + offset, Xb + offset, split.row_levels, scratch);
    });
    inverse_columns(job, Xd, T, s, e, expected);
}

void hybrid_multiply(const HybridJob& job, const HybridOperand& a, const HybridOperand& b, RingWord* T, std::size_t s,
                     std::size_t e) {
    const Split split = split_of(job, job.size.k);
    HybridOperand raw[2];
    std::size_t count = 0;
    for (const HybridOperand& operand : {a, b})
        if (operand.words) raw[count++] = operand;
    forward_columns(job, {raw, count});
    run_items(job, split.rows(), [&](std::uint64_t row, TaskScratch scratch) {
        if (b.words) forward_row(job, b, split, row, scratch);
        RingWord* const x = row_of(job, a.X, split, row);
        forward_block(job, x, split.row_levels, scratch);
        product_block(job, x, x, row_of(job, b.X, split, row), split.row_levels, scratch);
    });
    const ResidueSource left{nullptr, a.words, a.length}, right{b.X, nullptr, 0};
    const std::uint32_t expected = expected_residue(job, left, a.X == b.X ? nullptr : &right);
    inverse_columns(job, a.X, T, s, e, expected);
}

} // namespace zvp
