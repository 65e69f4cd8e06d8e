#include "multiply/hybrid/coefficient_residues.h"

#include "app/console/watching.h"
#include "multiply/hybrid/range_tasks.h"
#include "multiply/hybrid/residue.h"

#include <cstring>

namespace zvp {

namespace {

constexpr std::uint32_t inverse_point = residue_power(check_point, residue_modulus - 2);

std::uint32_t coefficient_residue(const HybridJob& job, const ResidueSource& operand, std::uint64_t i) {
    const HybridSize& size = job.size;
    if (!operand.words) return operand.form[i * size.stride + size.n] >> 1;
    const std::uint64_t begin = std::min<std::uint64_t>(operand.length, i * size.c);
    return job.kernels.residue(operand.words + begin, std::min<std::uint64_t>(operand.length - begin, size.c));
}

/// Sums over a range of i, with b_L = 0. A product folds where i meets those b_(L-s) with s <= i.
struct FoldSums {
    std::uint32_t a = 0;      // of a_i r^i
    std::uint32_t b = 0;      // of b_(L-i) r^(-i)
    std::uint32_t folded = 0; // of a_i r^i times the sum of b up to i, itself included

    /// This range, and `next` behind it.
    void append(const FoldSums& next) {
        folded = add_residues(add_residues(folded, next.folded), multiply_residues(b, next.a));
        a = add_residues(a, next.a);
        b = add_residues(b, next.b);
    }
};

} // namespace

void store_residues(const HybridJob& job, RingWord* X, const RingWord* A, std::size_t AL, std::uint64_t first,
                    std::uint64_t count) {
    if (!arithmetic_is_watched) return;
    const ResidueSource operand{nullptr, A, AL};
    for (std::uint64_t i = first; i < first + count && i * job.size.c < AL; ++i)
        X[i * job.size.stride + job.size.n] |= coefficient_residue(job, operand, i) << 1;
}

std::uint32_t expected_residue(const HybridJob& job, const ResidueSource& a, const ResidueSource* b) {
    if (!arithmetic_is_watched) return 0;
    const std::uint64_t L = std::uint64_t{1} << job.size.k;
    const ResidueSource& right = b ? *b : a;
    const bool may_fold = b || !a.words || 2 * a.length > job.size.c << job.size.k;
    const auto sum_range = [&](std::uint64_t begin, std::uint64_t end, TaskScratch scratch) {
        FoldSums sums;
        std::uint32_t up = residue_power(check_point, begin), down = residue_power(inverse_point, begin);
        for (std::uint64_t i = begin; i < end; ++i) {
            const std::uint32_t x = multiply_residues(coefficient_residue(job, a, i), up);
            const std::uint32_t from_top = may_fold && i > 0 ? coefficient_residue(job, right, L - i) : 0;
            const std::uint32_t y = multiply_residues(from_top, down);
            sums.append({x, y, multiply_residues(x, y)});
            up = multiply_residues(up, check_point);
            down = multiply_residues(down, inverse_point);
        }
        std::memcpy(scratch.M, &sums, sizeof sums);
    };
    const auto ranges = run_ranges(job, L, sum_range);
    FoldSums sums;
    for (std::uint32_t task = 0; task < ranges.tasks(); ++task) {
        FoldSums range;
        std::memcpy(&range, ranges.scratch(task).M, sizeof range);
        sums.append(range);
    }
    const std::uint32_t turn = residue_power(check_point, L);
    const std::uint32_t b_at_point =
        b ? add_residues(coefficient_residue(job, *b, 0), multiply_residues(turn, sums.b)) : sums.a;
    return subtract_residues(multiply_residues(sums.a, b_at_point), multiply_residues(turn - 1, sums.folded));
}

} // namespace zvp
