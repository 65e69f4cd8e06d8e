#include "multiply/tables/algorithm_lists.h"

#include "app/console/console.h"

namespace zvp {

std::span<const AlgorithmRow> basic_rows() {
    static constexpr AlgorithmRow rows[] = {
        {"BKT", 6400},
        {"FFT", 14680064},
        {"HNT", std::uint64_t{1} << 38},
    };
    return rows;
}

template <class Word>
AlgorithmTableB<Word> build_basic_table(std::string name, std::span<const AlgorithmRow> rows,
                                        const Registry<AlgorithmKinds>& registry) {
    AlgorithmTableB<Word> table(std::move(name), word_bits<Word>);
    for (const AlgorithmRow& row : rows) {
        const std::string id(row.id);
        const AlgorithmKinds* kinds = registry.find(id);
        if (!kinds) {
            print_warning("Skipping unknown algorithm: " + id);
            continue;
        }
        const MultiplyAlgorithm<Word>* algorithm = kinds->basic<Word>();
        if (!algorithm) {
            print_warning("Warning: " + id + " does not support: \"" + table.name + "\"");
            continue;
        }
        table.add(row.limit_bits / word_bits<Word>, algorithm);
    }
    return table;
}

template AlgorithmTableB<c32i> build_basic_table(std::string, std::span<const AlgorithmRow>,
                                                 const Registry<AlgorithmKinds>&);
template AlgorithmTableB<c64i> build_basic_table(std::string, std::span<const AlgorithmRow>,
                                                 const Registry<AlgorithmKinds>&);

template <>
const AlgorithmTableB<c32i>& algorithm_table<c32i>() {
    static const auto table = build_basic_table<c32i>("Basic: 32-bit Word", basic_rows(), algorithm_registry());
    return table;
}

template <>
const AlgorithmTableB<c64i>& algorithm_table<c64i>() {
    static const auto table = build_basic_table<c64i>("Basic: 64-bit Word", basic_rows(), algorithm_registry());
    return table;
}

void build_algorithm_tables() {
    algorithm_table<c32i>();
    algorithm_table<c64i>();
}

} // namespace zvp
