#include "multiply/fft/root_of_unity.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zvp {

namespace {

/// Of small orders all roots are coarse: the correction is small only beside at least 2^10 coarse ones.
unsigned fine_bits_of(unsigned e) { return std::min(e / 2, e - std::min(e, 8U)); }

} // namespace

RootOfUnity::RootOfUnity(unsigned m, unsigned e) : fine_bits(fine_bits_of(e)) {
    constexpr long double turn = 2 * std::numbers::pi_v<long double>;
    const std::uint64_t coarse_order = std::uint64_t{4 * m} << (e - fine_bits);
    coarse.resize(coarse_order * 5 / 8 + 1);
    for (std::uint64_t i = 0; i < coarse.size(); ++i) {
        const long double angle = turn * static_cast<long double>(i) / static_cast<long double>(coarse_order);
        const long double re = std::cos(angle), im = std::sin(angle);
        const auto high_re = static_cast<double>(re), high_im = static_cast<double>(im);
        coarse[i] = {high_re, high_im, static_cast<double>(re - high_re), static_cast<double>(im - high_im)};
    }
    fine.resize(std::uint64_t{1} << fine_bits);
    const long double order = static_cast<long double>(coarse_order) * static_cast<long double>(fine.size());
    for (std::uint64_t i = 0; i < fine.size(); ++i) {
        const long double half = turn / 2 * static_cast<long double>(i) / order;
        const long double sine = std::sin(half);
        fine[i] = {static_cast<double>(-2 * sine * sine), static_cast<double>(2 * sine * std::cos(half))};
    }
}

} // namespace zvp
