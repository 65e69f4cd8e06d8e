#pragma once
// From a list of ids to a table: what start-up does.

#include "multiply/tables/algorithm_registry.h"
#include "multiply/tables/algorithm_table.h"

#include <span>
#include <string>
#include <string_view>

namespace zvp {

/// A row of a table before its algorithm is looked up; lists serve both kinds of words.
struct AlgorithmRow {
    std::string_view id;
    std::uint64_t limit_bits; // of a product
};

/// The rows of the tables for products in memory.
std::span<const AlgorithmRow> basic_rows();

/// The table of `rows`. An id that the registry doesn't know and one without an object for `Word` are warnings on the
/// console, and their rows are left out. Throws what AlgorithmTable::add() throws.
template <class Word>
AlgorithmTableB<Word> build_basic_table(std::string name, std::span<const AlgorithmRow> rows,
                                        const Registry<AlgorithmKinds>& registry);

/// Builds the registry and the tables of the program, with their warnings; the second call does nothing.
void build_algorithm_tables();

} // namespace zvp
