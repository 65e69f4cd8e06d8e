#pragma once
// The hash of binary words: the array as one little-endian integer, modulo 2^61 - 1.

#include "digits/hash/hash_field.h"
#include "parallel/tasks/parallel_framework.h"

#include <cstddef>
#include <cstdint>

namespace zvp {

/// Goes parallel from this many words on, and no task gets fewer of them.
inline constexpr std::size_t min_parallel_hash_words = 10'000;

/// Continues `h` over n words, from the most significant (words[n - 1]) down: h * 2^(32 n) + value of the array, in
/// [0, p). One pass over the words. h may be unreduced.
std::uint64_t hash_words(std::uint64_t h, const std::uint32_t* words, std::size_t n);

/// The same by up to 64 tasks of `framework` for 10,000 words and more; `framework` may be null. Of words of a dry run: 0.
std::uint64_t hash_words_parallel(std::uint64_t h, const std::uint32_t* words, std::size_t n,
                                  ParallelFramework* framework, std::uint32_t tasks);

/// 64-bit words count as two 32-bit words each: n of them are hashed as the 2n that they hold.
std::uint64_t hash_words(std::uint64_t h, const std::uint64_t* words, std::size_t n);
std::uint64_t hash_words_parallel(std::uint64_t h, const std::uint64_t* words, std::size_t n,
                                  ParallelFramework* framework, std::uint32_t tasks);

} // namespace zvp
