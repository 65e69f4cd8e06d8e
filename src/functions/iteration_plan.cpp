#include "functions/iteration_plan.h"

#include "app/failure/exceptions.h"
#include "multiply/tables/algorithm_table.h"
#include "parallel/memory/carving.h"

namespace zvp {

void IterationLimits::check(const char* function, std::size_t run_p, std::uint32_t run_tds) const {
    if (run_tds > tds) throw InvalidParametersException(function, "tds is larger than plan.");
    if (run_p > p) throw InvalidParametersException(function, "p is larger than plan.");
}

std::uint64_t product_memory(std::size_t words, std::uint32_t tds) {
    std::uint64_t transform_bytes, scratch_bytes;
    return padded_bytes(algorithm_table<wtype>().mSBsizes(transform_bytes, scratch_bytes, words, tds));
}

void ensure_product_tables(MultiplyTables& tables, std::size_t words) {
    algorithm_table<wtype>().ensure_tables(tables, words);
}

void check_size(const char* function, std::uint64_t have, std::uint64_t needed) {
    if (have < needed) throw BufferTooSmallException(function, have, needed);
}

} // namespace zvp
