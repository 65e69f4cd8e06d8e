#include "series/splitting/sized_series.h"

#include "series/double_double/size_units.h"

namespace zvp::BinarySplitting {
namespace {

constexpr std::uint64_t double_index = std::uint64_t{1} << 48; // below, an index costs a double few of its bits
constexpr std::uint64_t digits_index = std::uint64_t{0x40000} << 32;
constexpr double double_size = 0x1p52; // below, a double tells words of S apart
constexpr double digits_size = 0x1p50;

/// The first index above a at which `size` reaches the mean of its values at a and b.
template <class Size, class Function>
std::uint64_t bisect(std::uint64_t a, std::uint64_t b, const Function& size) {
    const Size half = (size(a) + size(b)) * Size(0.5);
    std::uint64_t lo = a, hi = b;
    while (hi - lo > 1) {
        const std::uint64_t middle = lo + (hi - lo) / 2;
        (size(middle) < half ? lo : hi) = middle;
    }
    return hi;
}

} // namespace

double SizedSeries::log_range_double(std::uint64_t a, std::uint64_t b) const {
    return size_at_double(b) - size_at_double(a);
}

DoubleDouble SizedSeries::log_range(std::uint64_t a, std::uint64_t b) const { return size_at(b) - size_at(a); }

std::size_t SizedSeries::size_words(std::uint64_t a, std::uint64_t b) const {
    constexpr std::size_t spare = 2;
    if (b < double_index) {
        const double words = log_range_double(a, b) * words_per_nat().hi;
        if (words < double_size) return spare + static_cast<std::size_t>(words);
    }
    return spare + static_cast<std::size_t>(truncated_sum(log_range(a, b) * words_per_nat()));
}

std::uint64_t SizedSeries::size_digits(std::uint64_t a, std::uint64_t b) const {
    if (b < digits_index && size_at_double(b) < digits_size)
        return static_cast<std::uint64_t>(log_range_double(a, b) * digits_per_nat().hi + 0.5);
    return static_cast<std::uint64_t>(truncated_sum(log_range(a, b) * digits_per_nat() + DoubleDouble(0.5)));
}

std::uint64_t SizedSeries::midpoint(std::uint64_t a, std::uint64_t b) const {
    if (b - a < 2) return b;
    if (b < double_index && size_at_double(b) < double_size)
        return bisect<double>(a, b, [this](std::uint64_t x) { return size_at_double(x); });
    return bisect<DoubleDouble>(a, b, [this](std::uint64_t x) { return size_at(x); });
}

} // namespace zvp::BinarySplitting
