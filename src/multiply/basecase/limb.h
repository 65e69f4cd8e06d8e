#pragma once
// What the kernels work on, whatever the kind of the array: 64 bits at a time.

#include <cstddef>
#include <cstdint>

namespace zvp::MULB {

/// Two c32i words or one c64i word in memory, at an address that need only be good for a c32i.
using limb [[gnu::may_alias, gnu::aligned(4)]] = std::uint64_t;

/// What is left of an operand of an odd number of c32i words.
using half_limb [[gnu::may_alias]] = std::uint32_t;

} // namespace zvp::MULB
