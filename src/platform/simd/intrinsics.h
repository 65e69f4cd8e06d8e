#pragma once
// The compiler's vector intrinsics. Included before a target region opens: the intrinsics carry their own targets.

#include <cstddef>
#include <cstdint>
#include <immintrin.h>

/// For the members of the vector types: a call would cross from the region's target to the caller's.
#define ZVP_KERNEL_INLINE [[gnu::always_inline]] inline
