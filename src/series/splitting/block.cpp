#include "series/splitting/block.h"

#include "app/failure/exceptions.h"
#include "multiply/contract/multiply_tables.h"
#include "multiply/tables/algorithm_table.h"
#include "series/splitting/recursion.h"

#include <algorithm>

namespace zvp::BinarySplitting {
namespace {

template <class Family>
BlockShape shape_of(const BSR_BlockB<Family>& block) {
    const auto& series = block.series;
    const std::uint64_t leaf_begin = block.b - std::min<std::uint64_t>(block.b - block.a, series.leaf_terms);
    BlockShape shape;
    shape.size_words = block.size_words;
    shape.split_slack = Family::fixed_slack > 0 ? Family::fixed_slack : series.split_slack;
    shape.leaf_words = series.size_words(leaf_begin, block.b);
    shape.terms = block.b - block.a;
    shape.tds = block.tds;
    shape.leaf_tasks = block.tds << block.shift;
    shape.depth = block.depth;
    return shape;
}

/// The most terms that a part of the block has after 1, 2, .. splits, as long as it may be shared among tasks: those of the
/// larger half of the larger half, and so on.
template <class Family>
std::vector<std::uint64_t> most_half_terms(const BSR_BlockB<Family>& block) {
    std::vector<std::uint64_t> terms;
    std::uint64_t a = block.a, b = block.b;
    for (std::uint64_t parts = 1; parts < std::uint64_t{block.tds} << (block.shift + block.depth); parts *= 2) {
        if (b - a < min_parallel_terms) break;
        const std::uint64_t m = split<Family>(block.series, a, b);
        (m - a >= b - m ? b : a) = m;
        terms.push_back(b - a);
    }
    return terms;
}

template <class Family>
BlockShape shape_with_halves(const BSR_BlockB<Family>& block) {
    BlockShape shape = shape_of(block);
    shape.half_terms = most_half_terms(block);
    return shape;
}

} // namespace

template <class Family>
BSR_BlockB<Family>::BSR_BlockB(const Series& series_, std::uint64_t a_, std::uint64_t b_, std::size_t limit_,
                               std::uint32_t tds_, std::uint32_t shift_, std::uint32_t depth_, bool is_last_)
    : series(series_),
      a(a_),
      b(b_),
      limit(std::min(limit_, max_limit)),
      size_words(series_.size_words(a_, b_)),
      tds(std::max(tds_, 1U)),
      shift(tds > 1 ? shift_ : 0),
      depth(depth_),
      is_last(is_last_),
      bottom_words(words_below(shape_of(*this))),
      plan(block_needs(shape_with_halves(*this))) {}

template <class Family>
template <class Numbers>
void BSR_BlockB<Family>::check(const MultiplyParameters& pars, const Numbers& numbers) const {
    static constexpr const char* function = "BSR_BlockB::run()";
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const std::size_t needed = i < Family::results ? plan.number_words : plan.scratch_number_words;
        if (numbers[i].capacity < needed) throw BufferTooSmallException(function, numbers[i].capacity, needed);
    }
    if (pars.tds > tds)
        throw InvalidParametersException(function, "Attempted to run with a larger tds than the plan supports.");
    if (pars.ML < plan.scratch_bytes) throw BufferTooSmallException(function, pars.ML, plan.scratch_bytes);
}

template <class Family>
template <class Number>
void BSR_BlockB<Family>::run_kind(const MultiplyParameters& pars, StatusNode* status,
                                  typename Family::template Numbers<Number>& numbers) const {
    check(pars, numbers);
    const Job<Family> job{series, std::max(pars.tds, 1U), std::max(pars.tds, 1U) << shift,
                          bottom_needs(shape_with_halves(*this)).number_words};
    Node<Family, Number> node{{}, a, b, is_last};
    for (std::size_t i = 0; i < numbers.size(); ++i) node.numbers[i] = Number(numbers[i].buffer, numbers[i].capacity);
    MultiplyParameters inner = pars;
    inner.status = nullptr;
    DryRun::reach(pars.M + plan.scratch_bytes);
    run_tree(job, inner, status, node, depth, limit);
    numbers = node.numbers;
}

template <class Family>
void BSR_BlockB<Family>::run(const MultiplyParameters& pars, StatusNode* status, FloatNumbers& numbers) const {
    run_kind<BigFloat>(pars, status, numbers);
}

template <class Family>
void BSR_BlockB<Family>::run(const MultiplyParameters& pars, StatusNode* status, ExactNumbers& numbers) const {
    run_kind<ExactNumber>(pars, status, numbers);
}

template <class Family>
void BSR_BlockB<Family>::ensure_tables(MultiplyTables& tables) const {
    const std::size_t largest = std::max(size_words, 2 * shape_of(*this).split_slack);
    algorithm_table<wtype>().ensure_tables(tables, largest + halves_spare + merge_spare);
}

template class BSR_BlockB<CommonP2B3::Family>;
template class BSR_BlockB<Hyperdescent::Family>;
template class BSR_BlockB<BinaryBBP::Family>;
template class BSR_BlockB<BrentMcMillanAB::Family>;

} // namespace zvp::BinarySplitting
