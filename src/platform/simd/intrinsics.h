#pragma once
// The compiler's vector intrinsics. Included before a target region opens: the intrinsics carry their own
// targets.

#include <cstddef>
#include <cstdint>

// GCC 12 takes the deliberately undefined operands of some AVX-512 intrinsics for mistakes (GCC bug 105593).
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#endif
#include <immintrin.h>
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic pop
#endif

/// For the members of the vector types: a call would cross from the region's target to the caller's.
#define ZVP_KERNEL_INLINE [[gnu::always_inline]] inline
