#include "multiply/hybrid/hybrid_transform.h"

#include "multiply/hybrid/coefficient_output.h"
#include "multiply/hybrid/element_passes.h"

#include <algorithm>
#include <cstring>

namespace zvp {

namespace {

/// Calls work(begin, end, scratch) for equal ranges of `count` items, one task each.
template <class Work>
class RangeAction final : public BasicAction {
public:
    RangeAction(const HybridJob& job_, std::uint64_t count_, const Work& work_)
        : job(job_), count(count_), work(work_) {}
    std::uint32_t tasks() const { return static_cast<std::uint32_t>(std::min<std::uint64_t>(job.size.tasks, count)); }
    std::uint64_t boundary(std::uint32_t index) const { return count * index / tasks(); }
    void run(std::uint32_t index) override {
        work(boundary(index), boundary(index + 1), TaskScratch{job.M + index * job.size.ring_scratch_bytes});
    }

private:
    const HybridJob& job;
    std::uint64_t count;
    const Work& work;
};

template <class Work>
void run_ranges(const HybridJob& job, std::uint64_t count, const Work& work) {
    RangeAction<Work> action(job, count, work);
    const std::uint32_t tasks = action.tasks();
    if (tasks > 1 && job.ctx.framework) return job.ctx.framework->run_in_parallel(action, 0, tasks);
    for (std::uint32_t i = 0; i < tasks; ++i) action.run(i);
}

/// How a block of 2^k points falls into columns and rows.
struct Split {
    unsigned column_levels;
    unsigned row_levels;

    std::uint64_t columns() const { return std::uint64_t{1} << row_levels; }
    std::uint64_t rows() const { return std::uint64_t{1} << column_levels; }
};

Split split_of(const HybridJob& job, unsigned k) {
    const unsigned v = cache_split(k, job.size.n);
    return {v, k - v};
}

ElementSet column_of(const HybridJob& job, RingWord* X, const Split& split, std::uint64_t column) {
    const std::size_t stride = job.size.stride;
    return {X + column * stride, stride << split.row_levels, split.column_levels, column, split.columns()};
}

RingWord* row_of(const HybridJob& job, RingWord* X, const Split& split, std::uint64_t row) {
    return X + row * (job.size.stride << split.row_levels);
}

/// Whether a pass over all levels of the block keeps to the cache.
bool is_small(const HybridJob& job, unsigned k) { return k <= 3 || cache_split(2 * k, job.size.n) >= k; }

void load_column(const HybridJob& job, const ElementSet& column, const RingWord* A, std::size_t AL) {
    const HybridSize& size = job.size;
    for (std::uint64_t t = 0; t < std::uint64_t{1} << column.levels; ++t) {
        const std::uint64_t begin = std::min<std::uint64_t>(AL, (column.offset + t * column.step) * size.c);
        const std::uint64_t count = std::min<std::uint64_t>(AL - begin, size.c);
        std::copy_n(A + begin, count, column.at(t));
        std::memset(column.at(t) + count, 0, 4 * (size.stride - count));
    }
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
        for (std::uint64_t i = 0; i < std::uint64_t{1} << k; ++i)
            ring_product(job, Xd + i * stride, Xa + i * stride, Xb + i * stride, scratch);
        return inverse_levels(job, {Xd, stride, k, 0, 1}, scratch);
    }
    const Split split = split_of(job, k);
    for (std::uint64_t i = 0; i < split.rows(); ++i) {
        const std::size_t offset = i * (stride << split.row_levels);
        product_block(job, Xd + offset, Xa + offset, Xb + offset, split.row_levels, scratch);
    }
    for (std::uint64_t i = 0; i < split.columns(); ++i) inverse_levels(job, column_of(job, Xd, split, i), scratch);
}

void forward_columns(const HybridJob& job, RingWord* X, const RingWord* A, std::size_t AL) {
    const Split split = split_of(job, job.size.k);
    run_ranges(job, split.columns(), [&](std::uint64_t begin, std::uint64_t end, TaskScratch scratch) {
        for (std::uint64_t i = begin; i < end; ++i) {
            const ElementSet column = column_of(job, X, split, i);
            load_column(job, column, A, AL);
            forward_levels(job, column, scratch);
        }
    });
}

/// The last pass of the inverse, and the way out.
void inverse_columns(const HybridJob& job, RingWord* X, RingWord* T, std::size_t s, std::size_t e) {
    const HybridSize& size = job.size;
    const Split split = split_of(job, size.k);
    const CoefficientOutput output(job, T, s, e);
    const auto columns = [&](std::uint64_t begin, std::uint64_t end, TaskScratch scratch) {
        for (std::uint64_t i = begin; i < end; ++i) {
            const ElementSet column = column_of(job, X, split, i);
            inverse_levels(job, column, scratch);
            for (std::uint64_t t = 0; t < split.rows(); ++t)
                output.put(i + t * split.columns(), column.at(t), i > begin ? column.at(t) - size.stride : nullptr,
                           scratch);
        }
    };
    run_ranges(job, split.columns(), columns);
    // What stands above the last coefficient of each task's run belongs to the first of the next.
    const RangeAction<decltype(columns)> ranges(job, split.columns(), columns);
    for (std::uint64_t t = 0; t < split.rows(); ++t)
        for (std::uint32_t task = 0; task < ranges.tasks(); ++task) {
            const std::uint64_t last = ranges.boundary(task + 1) - 1 + t * split.columns();
            output.finish_run(last, X + last * size.stride);
        }
}

/// Calls work(offset, scratch) for each row, whose elements begin so many words into a form.
template <class Work>
void run_rows(const HybridJob& job, const Work& work) {
    const Split split = split_of(job, job.size.k);
    run_ranges(job, split.rows(), [&](std::uint64_t begin, std::uint64_t end, TaskScratch scratch) {
        for (std::uint64_t i = begin; i < end; ++i) work(i * (job.size.stride << split.row_levels), scratch);
    });
}

} // namespace

void hybrid_forward(const HybridJob& job, RingWord* X, const RingWord* A, std::size_t AL) {
    const unsigned row_levels = split_of(job, job.size.k).row_levels;
    forward_columns(job, X, A, AL);
    run_rows(job, [&](std::size_t row, TaskScratch scratch) { forward_block(job, X + row, row_levels, scratch); });
}

void hybrid_product(const HybridJob& job, RingWord* Xd, const RingWord* Xa, const RingWord* Xb, RingWord* T,
                    std::size_t s, std::size_t e) {
    const unsigned row_levels = split_of(job, job.size.k).row_levels;
    run_rows(job, [&](std::size_t row, TaskScratch scratch) {
        product_block(job, Xd + row, Xa + row, Xb + row, row_levels, scratch);
    });
    inverse_columns(job, Xd, T, s, e);
}

void hybrid_multiply(const HybridJob& job, const HybridOperand& a, const HybridOperand& b, RingWord* T, std::size_t s,
                     std::size_t e) {
    const unsigned row_levels = split_of(job, job.size.k).row_levels;
    for (const HybridOperand& operand : {a, b})
        if (operand.words) forward_columns(job, operand.X, operand.words, operand.length);
    run_rows(job, [&](std::size_t row, TaskScratch scratch) {
        for (const HybridOperand& operand : {b, a})
            if (operand.words) forward_block(job, operand.X + row, row_levels, scratch);
        product_block(job, a.X + row, a.X + row, b.X + row, row_levels, scratch);
    });
    inverse_columns(job, a.X, T, s, e);
}

} // namespace zvp
