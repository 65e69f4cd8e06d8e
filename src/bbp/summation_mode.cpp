#include "bbp/summation_mode.h"

#include "app/console/console.h"
#include "app/console/console_lock.h"
#include "app/failure/exceptions.h"
#include "bbp/digit_buffer.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <string>

namespace BBPv2 {

namespace {

/// The first k whose exponent step * k + start is below 0, held to [k0, k1].
std::uint64_t first_negative(std::int64_t step, std::int64_t start, std::uint64_t k0, std::uint64_t k1) {
    if (start < 0) return k0;
    const auto first = static_cast<std::uint64_t>(start) / static_cast<std::uint64_t>(-step) + 1;
    return std::clamp(first, k0, k1);
}

} // namespace

void SummationMode::check_divisor(std::uint64_t largest) const {
    if (largest <= limit() || warned().exchange(true)) return;
    const std::lock_guard lock(zvp::console_mutex());
    zvp::print_warning("Maximum coefficient size of 2^" + std::to_string(limit_bits())
                       + " has been exceeded.\nFurther messages for this warning will be suppressed.\n");
}

void SummationMode::sum_range(FractionFloat& out, std::uint64_t a, std::uint64_t b, std::int64_t step,
                              std::int64_t start, std::uint64_t k0, std::uint64_t k1) const {
    if (k0 >= k1) return;
    check_divisor(a * (k1 - 1) + b);
    const auto stride = static_cast<std::uint64_t>(-step);
    const std::uint64_t kz = first_negative(step, start, k0, k1);
    DigitBuffer digits(out.length(), kernels.lanes);
    for (std::uint64_t k = k0; k < kz; k += max_call_terms) {
        const auto exponent = static_cast<std::uint64_t>(start) - stride * k;
        const auto count = std::min<std::uint64_t>(kz - k, max_call_terms);
        sum_powers(digits.data(), digits.size(), {a * k + b, a, exponent, stride, count});
        digits.normalize();
    }
    for (std::uint64_t k = kz; k < k1; k += max_call_terms) {
        const std::uint64_t shift = stride * k - static_cast<std::uint64_t>(start);
        const auto count = std::min<std::uint64_t>(k1 - k, max_call_terms);
        kernels.sum_shifted(digits.data(), digits.size(), {a * k + b, a, shift, stride, count});
        digits.normalize();
    }
    digits.add_to(out);
}

std::atomic<bool>& ModeA::warned() const {
    static std::atomic<bool> flag{false};
    return flag;
}

std::atomic<bool>& ModeB::warned() const {
    static std::atomic<bool> flag{false};
    return flag;
}

void ModeA::sum_powers(std::int64_t* digits, std::size_t n, const PowerTerms& terms) const {
    kernels.sum_powers_mode_a(digits, n, terms);
}

void ModeB::sum_powers(std::int64_t* digits, std::size_t n, const PowerTerms& terms) const {
    kernels.sum_powers_mode_b(digits, n, terms);
}

std::vector<ModeRange> SummableRange(const std::vector<const SummationMode*>& modes, std::uint64_t a, std::uint64_t b,
                                     std::uint64_t k0, std::uint64_t k1) {
    std::vector<ModeRange> ranges;
    std::uint64_t k = k0;
    for (const SummationMode* mode : modes) {
        // The last index whose divisor the mode takes; it is left to the next mode.
        const std::uint64_t last = mode->limit() < b ? 0 : (mode->limit() - b) / a;
        if (k >= k1 || k >= last) continue;
        const std::uint64_t end = std::min(last, k1);
        ranges.push_back({mode, k, end});
        k = end;
    }
    if (k < k1)
        throw zvp::InvalidParametersException(
            "BBPv2::SummableRange()", modes.empty() ? "No modes enabled." : "No mode is able to handle this range.");
    std::reverse(ranges.begin(), ranges.end());
    return ranges;
}

} // namespace BBPv2
