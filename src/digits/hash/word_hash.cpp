#include "digits/hash/word_hash.h"

#include "digits/hash/digit_kernels.h"
#include "parallel/memory/dry_run.h"
#include "parallel/tasks/parallelization_settings.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace zvp {

namespace {

constexpr std::size_t max_tasks = 64;
constexpr std::size_t split_alignment = 16; // words
constexpr std::size_t vector_alignment = 64;

/// Below this many words the loop of single limbs wins against the setting-up of vectors (digits_bench, "words").
constexpr std::size_t min_vector_words = 64;

/// Words at any byte address that the caller's arrays have: 32-bit and 64-bit arrays read alike.
struct WordSpan {
    const std::byte* bytes;
    std::size_t n;

    WordSpan part(std::size_t begin, std::size_t end) const { return {bytes + 4 * begin, end - begin}; }
};

std::uint64_t hash_limbs(std::uint64_t h, WordSpan words) {
    h = normalize_hash(h);
    if (words.n % 2 != 0) {
        std::uint32_t top;
        std::memcpy(&top, words.bytes + 4 * --words.n, sizeof top);
        h = add_mod(mul_mod(h, pow_word(1)), top);
    }
    while (words.n != 0) {
        std::uint64_t limb;
        std::memcpy(&limb, words.bytes + 4 * (words.n -= 2), sizeof limb);
        h = append_limb(h, limb);
    }
    return normalize_hash(h);
}

/// The middle, from the first address of full alignment on, as rows of vectors; what lies above and below it limb by
/// limb.
std::uint64_t hash_span(std::uint64_t h, WordSpan words) {
    if (words.n < min_vector_words) return hash_limbs(h, words);
    const DigitKernels& kernels = digit_kernels(platform::active_kernel_set());
    const std::size_t skipped = (0 - reinterpret_cast<std::uintptr_t>(words.bytes)) % vector_alignment / 4;
    const std::size_t rows = (words.n - skipped) / kernels.row_words;
    const std::size_t end = skipped + rows * kernels.row_words;
    h = hash_limbs(h, words.part(end, words.n));
    h = mul_mod(h, pow_word(static_cast<std::int64_t>(end - skipped)));
    h = add_mod(h, kernels.hash_rows(words.bytes + 4 * skipped, rows));
    return hash_limbs(h, words.part(0, skipped));
}

/// The hashes of the blocks, each moved to its block's place.
class HashAction final : public BasicAction {
public:
    HashAction(std::uint64_t h_, WordSpan words_, SweepSplit split_) : h(h_), words(words_), split(split_) {}

    void run(std::uint32_t index) override {
        const std::size_t begin = index * split.block;
        const std::size_t end = std::min(begin + split.block, words.n);
        const std::uint64_t block = hash_span(end == words.n ? h : 0, words.part(begin, end));
        hashes[index] = mul_mod(block, pow_word(static_cast<std::int64_t>(begin)));
    }

    std::uint64_t sum() const {
        std::uint64_t total = 0;
        for (std::uint32_t i = 0; i < split.tasks; ++i) total = add_mod(total, hashes[i]);
        return total;
    }

private:
    const std::uint64_t h;
    const WordSpan words;
    const SweepSplit split;
    std::array<std::uint64_t, max_tasks> hashes;
};

std::uint64_t hash_span_parallel(std::uint64_t h, WordSpan words, ParallelFramework* framework, std::uint32_t tasks) {
    const SweepSplit split =
        split_sweep(words.n, min_parallel_hash_words, tasks, max_tasks, min_parallel_hash_words, split_alignment);
    if (!framework || split.tasks < 2) return hash_span(h, words);
    HashAction action(h, words, split);
    framework->run_in_parallel(action, 0, split.tasks);
    return action.sum();
}

WordSpan span_of(const std::uint32_t* words, std::size_t n) { return {reinterpret_cast<const std::byte*>(words), n}; }

WordSpan span_of(const std::uint64_t* words, std::size_t n) {
    return {reinterpret_cast<const std::byte*>(words), 2 * n};
}

} // namespace

std::uint64_t hash_words(std::uint64_t h, const std::uint32_t* words, std::size_t n) {
    return hash_span(h, span_of(words, n));
}

std::uint64_t hash_words(std::uint64_t h, const std::uint64_t* words, std::size_t n) {
    return hash_span(h, span_of(words, n));
}

std::uint64_t hash_words_parallel(std::uint64_t h, const std::uint32_t* words, std::size_t n,
                                  ParallelFramework* framework, std::uint32_t tasks) {
    if (is_dry(words)) return 0;
    return hash_span_parallel(h, span_of(words, n), framework, tasks);
}

std::uint64_t hash_words_parallel(std::uint64_t h, const std::uint64_t* words, std::size_t n,
                                  ParallelFramework* framework, std::uint32_t tasks) {
    if (is_dry(words)) return 0;
    return hash_span_parallel(h, span_of(words, n), framework, tasks);
}

} // namespace zvp
