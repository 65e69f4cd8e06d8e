#include "multiply/tables/algorithm_table.h"

#include "app/failure/exceptions.h"

#include <algorithm>

namespace zvp {

namespace {

/// Calls visit(algorithm, length) for what products of at most `length` words can take of each row: all of a row that
/// ends below `length`, and the row that covers it.
template <class Table, class Visit>
void walk_rows(const Table& table, std::uint64_t length, const char* function, Visit&& visit) {
    for (const auto& row : table.rows) {
        visit(*row.algorithm, std::min(row.limit, length));
        if (length <= row.limit) return;
    }
    table.throw_limit(function, length);
}

} // namespace

template <class Algorithm>
void AlgorithmTable<Algorithm>::add(std::uint64_t limit, const Algorithm* algorithm) {
    if (!algorithm) return;
    if (!rows.empty() && limit <= rows.back().limit)
        throw StringException("AlgorithmTable::add()", "Thresholds must be increasing.");
    if (limit > algorithm->max_bits / word_bits)
        throw StringException("AlgorithmTable::add()", "Thresholds is larger than maximum size.");
    rows.push_back({limit, algorithm});
}

template <class Algorithm>
const Algorithm& AlgorithmTable<Algorithm>::get_algorithm(std::uint64_t length) const {
    for (const Row& row : rows)
        if (length <= row.limit) return *row.algorithm;
    throw_limit("AlgorithmTable::get_algorithm()", length);
}

template <class Algorithm>
void AlgorithmTable<Algorithm>::throw_limit(const char* function, std::uint64_t length) const {
    throw LimitExceededException(function, "No algorithm multiplies to this length in words.",
                                 rows.empty() ? 0 : rows.back().limit, length);
}

template <class Word>
std::uint64_t AlgorithmTableB<Word>::mSBsize(std::uint64_t length, std::uint32_t tds, bool all_rows) const {
    const auto& top = this->get_algorithm(length);
    if (!all_rows) return top.total(length, tds);
    std::uint64_t most = 0;
    walk_rows(*this, length, "AlgorithmTableB::mSBsize()", [&](const auto& algorithm, std::uint64_t reached) {
        most = std::max(most, algorithm.total(reached, tds));
    });
    return most;
}

template <class Word>
std::uint64_t AlgorithmTableB<Word>::mSBsizes(std::uint64_t& transform_bytes, std::uint64_t& scratch_bytes,
                                              std::uint64_t length, std::uint32_t tds) const {
    transform_bytes = 0;
    scratch_bytes = 0;
    std::uint64_t most = 0;
    walk_rows(*this, length, "AlgorithmTableB::mSBsizes()", [&](const auto& algorithm, std::uint64_t reached) {
        const TransformSizes sizes = algorithm.sizes(reached, tds);
        transform_bytes = std::max(transform_bytes, sizes.transform_bytes);
        scratch_bytes = std::max(scratch_bytes, sizes.scratch_bytes);
        most = std::max(most, sizes.total());
    });
    return most;
}

template <class Word>
void AlgorithmTableB<Word>::ensure_tables(MultiplyTables& tables, std::uint64_t length) const {
    walk_rows(*this, length, "AlgorithmTableB::ensure_tables()",
              [&](const auto& algorithm, std::uint64_t reached) { algorithm.ensure_tables(tables, reached); });
}

template class AlgorithmTable<MultiplyAlgorithm<c32i>>;
template class AlgorithmTable<MultiplyAlgorithm<c64i>>;
template class AlgorithmTableB<c32i>;
template class AlgorithmTableB<c64i>;

} // namespace zvp
