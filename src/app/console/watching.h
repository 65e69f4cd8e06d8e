#pragma once

namespace zvp {

/// Whether arithmetic watches itself: residues of numbers, of products and of transforms. Off only in builds that measure what
/// that costs (CMake: -DZORVANE_UNWATCHED=ON); such a build says so in its banner and proves nothing.
#ifdef ZORVANE_UNWATCHED
inline constexpr bool arithmetic_is_watched = false;
#else
inline constexpr bool arithmetic_is_watched = true;
#endif

} // namespace zvp
