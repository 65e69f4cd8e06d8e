#pragma once
// Which algorithm multiplies a product of which length, and how much memory that takes.

#include "multiply/contract/multiply_algorithm.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace zvp {

/// Rows of rising limits: the first row whose limit covers a product's length names its algorithm.
template <class Algorithm>
class AlgorithmTable {
public:
    struct Row {
        std::uint64_t limit; // words of a product
        const Algorithm* algorithm;
    };

    AlgorithmTable(std::string name_, unsigned word_bits_) : name(std::move(name_)), word_bits(word_bits_) {}

    /// Appends a row; a null algorithm is ignored. Throws StringException when the limits don't rise or one is beyond
    /// the algorithm's max_bits.
    void add(std::uint64_t limit, const Algorithm* algorithm);

    /// Throws LimitExceededException when no row covers `length` words.
    const Algorithm& get_algorithm(std::uint64_t length) const;

    /// Throws the LimitExceededException of a length beyond the last row.
    [[noreturn]] void throw_limit(const char* function, std::uint64_t length) const;

    const std::string name;
    const unsigned word_bits;
    std::vector<Row> rows;
};

/// The table for products in memory.
template <class Word>
class AlgorithmTableB : public AlgorithmTable<MultiplyAlgorithm<Word>> {
public:
    using AlgorithmTable<MultiplyAlgorithm<Word>>::AlgorithmTable;

    /// Scratch bytes for a product of `length` words by `tds` tasks, or, with all_rows, for every product of at most that
    /// length by any number of tasks up to `tds`. What a product needs neither rises with its length nor with its tasks
    /// everywhere: a plan for products that may become shorter asks with all_rows.
    std::uint64_t mSBsize(std::uint64_t length, std::uint32_t tds, bool all_rows) const;

    /// The largest forward form and the largest working memory (each on its own) of all products of at most `length`
    /// words by any number of tasks up to `tds`; returns the largest total of two forms and their working memory.
    std::uint64_t mSBsizes(std::uint64_t& transform_bytes, std::uint64_t& scratch_bytes, std::uint64_t length,
                           std::uint32_t tds) const;

    /// Grows the wish of `tables` for every algorithm that a product of at most `length` words can reach.
    void ensure_tables(MultiplyTables& tables, std::uint64_t length) const;
};

/// The tables of the program: "Basic: 32-bit Word" and "Basic: 64-bit Word".
template <class Word>
const AlgorithmTableB<Word>& algorithm_table();

} // namespace zvp
