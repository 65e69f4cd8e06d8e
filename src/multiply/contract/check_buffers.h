#pragma once
// What is checked once for each multiplication, before its first word is touched.

#include "multiply/contract/multiply_parameters.h"
#include "multiply/contract/transform.h"

namespace zvp {

/// Throws BufferTooSmallException if pars.ML is less than `bytes`.
void check_memory(std::uint64_t bytes, const MultiplyParameters& pars);

/// Throws LimitExceededException, in the name of `function`, if the tables weren't built for the transform; null tables
/// serve none. M: the scratch of the product, which shows a dry run.
void check_tables(const char* function, const Transform& transform, const MultiplyTables* tables, const std::byte* M);

/// For a product by `transform`: throws LimitExceededException if the tables weren't built for it, then
/// BufferTooSmallException if pars.ML has no room for two forward forms and the scratch. Without tables (null) every
/// transform is beyond them.
void check_buffers(const Transform& transform, const MultiplyParameters& pars);

} // namespace zvp
