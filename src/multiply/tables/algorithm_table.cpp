#include "multiply/tables/algorithm_table.h"

#include "app/failure/exceptions.h"

#include <algorithm>

namespace zvp {

namespace {

/// Calls visit(algorithm, above, reached) for what products of at most `length` words can take of each row: those of more
/// than `above` and at most `reached` words.
template <class Table, class Visit>
void walk_rows(const Table& table, std::uint64_t length, const char* function, Visit&& visit) {
    std::uint64_t above = 0;
    for (const auto& row : table.rows) {
        visit(*row.algorithm, above, std::min(row.limit, length));
        if (length <= row.limit) return;
        above = row.limit;
    }
    table.throw_limit(function, length);
}

template <class Table>
ProductBounds bounds_of(const Table& table, std::uint64_t length, std::uint32_t tds, const char* function) {
    ProductBounds all;
    walk_rows(table, length, function, [&](const auto& algorithm, std::uint64_t above, std::uint64_t reached) {
        all.include(algorithm.bounds(above, reached, tds));
    });
    return all;
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
    return bounds_of(*this, length, tds, "AlgorithmTableB::mSBsize()").total;
}

template <class Word>
std::uint64_t AlgorithmTableB<Word>::mSBsizes(std::uint64_t& transform_bytes, std::uint64_t& scratch_bytes,
                                              std::uint64_t length, std::uint32_t tds) const {
    const ProductBounds all = bounds_of(*this, length, tds, "AlgorithmTableB::mSBsizes()");
    transform_bytes = all.transform_bytes;
    scratch_bytes = all.scratch_bytes;
    return all.total;
}

template <class Word>
void AlgorithmTableB<Word>::ensure_tables(MultiplyTables& tables, std::uint64_t length) const {
    walk_rows(
        *this, length, "AlgorithmTableB::ensure_tables()",
        [&](const auto& algorithm, std::uint64_t, std::uint64_t reached) { algorithm.ensure_tables(tables, reached); });
}

template class AlgorithmTable<MultiplyAlgorithm<c32i>>;
template class AlgorithmTable<MultiplyAlgorithm<c64i>>;
template class AlgorithmTableB<c32i>;
template class AlgorithmTableB<c64i>;

} // namespace zvp
