#include "multiply/contract/check_buffers.h"

#include "app/failure/exceptions.h"
#include "multiply/contract/multiply_tables.h"

namespace zvp {

void check_memory(std::uint64_t bytes, const MultiplyParameters& pars) {
    if (bytes > pars.ML) throw BufferTooSmallException("check_buffers()", pars.ML, bytes);
    DryRun::reach(pars.M + bytes);
}

void check_tables(const char* function, const Transform& transform, const MultiplyTables* tables, const std::byte* M) {
    const std::uint64_t limit = tables ? tables->limit(M) : 0;
    if (transform.capacity_bits > limit)
        throw LimitExceededException(function, "Multiplication tables are too small.", limit, transform.capacity_bits);
}

void check_buffers(const Transform& transform, const MultiplyParameters& pars) {
    check_tables("check_buffers()", transform, pars.tables, pars.M);
    check_memory(2 * transform.transform_bytes + transform.scratch_bytes, pars);
}

} // namespace zvp
