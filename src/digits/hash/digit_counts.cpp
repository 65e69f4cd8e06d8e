#include "digits/hash/digit_counts.h"

#include "app/console/number_forms.h"
#include "app/failure/exceptions.h"
#include "digits/hash/digit_hash.h"
#include "digits/hash/digit_kernels.h"

#include <algorithm>
#include <numeric>

namespace zvp {

namespace {

/// A run of this many digits is still in the cache when it is read for the second time.
constexpr std::size_t run_digits = 8'192;

using Counts = std::array<std::uint64_t, 16>;

Counts count_run(const DigitKernels& kernels, const std::uint8_t* digits, std::size_t n, bool decimal) {
    Counts counts{};
    const std::size_t vectors = n / kernels.vector_digits;
    (decimal ? kernels.count_decimal : kernels.count_all)(counts.data(), digits, vectors);
    for (std::size_t i = vectors * kernels.vector_digits; i < n; ++i) ++counts[digits[i] & 15];
    return counts;
}

/// Runs of a radix up to 10 hold no digits above 9, unless they are damaged: then the sum of the counts tells.
Counts checked_count(const DigitKernels& kernels, const std::uint8_t* digits, std::size_t n, unsigned radix) {
    const Counts counts = count_run(kernels, digits, n, radix <= 10);
    if (std::accumulate(counts.begin(), counts.end(), std::uint64_t{0}) == n) return counts;
    return count_run(kernels, digits, n, false);
}

} // namespace

DigitCounts::DigitCounts(unsigned radix_, std::uint64_t hash_)
    : radix(static_cast<std::uint8_t>(radix_)), radix_copy(radix), hash(hash_) {
    if (radix_ < 2 || radix_ > 16)
        throw InvalidParametersException("DigitCounts::DigitCounts()", "Radix is too large.");
}

void DigitCounts::add(const std::uint8_t* digits, std::size_t n) {
    const DigitKernels& kernels = digit_kernels(platform::active_kernel_set());
    const bool hashed = radix == 10 || radix == 16;
    while (n > 0) {
        const std::size_t run = std::min(n, run_digits);
        const Counts more = checked_count(kernels, digits, run, radix);
        for (std::size_t d = 0; d < counts.size(); ++d) counts[d] += more[d];
        if (hashed) hash = hash_digits(hash, digits, run, radix);
        digits += run;
        n -= run;
    }
}

void DigitCounts::merge(const DigitCounts& other) {
    for (std::size_t d = 0; d < counts.size(); ++d) counts[d] += other.counts[d];
    hash = add_mod(hash, other.hash);
}

void DigitCounts::scale_hash(std::uint64_t digits_after) { hash = mul_mod(hash, pow_mod(radix, digits_after)); }

std::string DigitCounts::counts_text() const {
    std::string text = "{";
    for (std::size_t d = 0; d < radix_copy; ++d) text += (d == 0 ? "" : ", ") + format_number(counts[d]);
    return text + "}";
}

} // namespace zvp
