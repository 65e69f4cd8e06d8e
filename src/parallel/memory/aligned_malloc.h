#pragma once

#include <cstddef>

namespace zvp {

/// `bytes` of the heap at a multiple of `align`, with guards on both sides. An `align` of 0, 1 or 2 counts as 4. Raises
/// InvalidParametersException if it isn't a power of two (3 included), std::bad_alloc if the heap can't serve.
///
/// A block, by position from the returned pointer p; numbers are little-endian:
///
///     p - 20      8 bytes   the heap's own pointer
///     p - 12      8 bytes   `bytes`
///     p - 4       4 bytes   head guard
///     p           `bytes`   the caller's
///     p + bytes   4 bytes   tail guard, unaligned
void* aligned_malloc(std::size_t bytes, std::size_t align);

/// Gives a block of aligned_malloc() back. Null is ignored. A guard that was overwritten raises
/// AlgorithmFailedException, and nothing is freed: the heap can't be trusted any more.
void aligned_free(void* p);

} // namespace zvp
