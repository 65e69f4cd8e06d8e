#include "multiply/contract/check_buffers.h"

#include "app/failure/exceptions.h"
#include "multiply/contract/multiply_tables.h"

namespace zvp {

void check_memory(std::uint64_t bytes, const MultiplyParameters& pars) {
    if (bytes > pars.ML) throw BufferTooSmallException("check_buffers()", pars.ML, bytes);
}

void check_buffers(const Transform& transform, const MultiplyParameters& pars) {
    const std::uint64_t limit = pars.tables ? pars.tables->capacity : 0;
    if (transform.capacity_bits > limit)
        throw LimitExceededException("check_buffers()", "Multiplication tables are too small.", limit,
                                     transform.capacity_bits);
    check_memory(2 * transform.transform_bytes + transform.scratch_bytes, pars);
}

} // namespace zvp
