#include "numbers/big_float.h"

#include <algorithm>
#include <array>
#include <bit>

namespace zvp {
namespace {

constexpr unsigned w = BigFloat::w;
constexpr unsigned fraction_bits = 52; // of a double, without the hidden bit
constexpr int exponent_bias = 1075;    // of the lowest fraction bit

struct DoubleParts {
    std::uint64_t fraction; // 53 bits
    int exponent;           // of its lowest bit
};

DoubleParts split(double x) {
    const auto bits = std::bit_cast<std::uint64_t>(x);
    const auto field = static_cast<int>(bits >> fraction_bits & 0x7FF);
    const std::uint64_t hidden = std::uint64_t{1} << fraction_bits;
    std::uint64_t fraction = bits & (hidden - 1);
    if (field > 0) return {fraction | hidden, field - exponent_bias};
    if constexpr (w < 64) fraction = fraction >> w << w;
    return {fraction, 1 - exponent_bias};
}

} // namespace

void BigFloat::set_double(double x, std::int64_t e) {
    const DoubleParts parts = split(x);
    if (x != x || parts.fraction == 0) return set_zero(false);
    constexpr std::size_t words = (fraction_bits + w) / w;
    start("BigFloat::set_double()", words);
    if (is_dry(T)) {
        std::array<Word, words + 1> shown;
        BigFloat value(shown.data(), shown.size());
        value.set_double(x, e);
        L = shown.size();
        exp = value.top() - static_cast<std::int64_t>(L);
        sign = value.sign;
        return check_room("BigFloat::mul_uW()", L);
    }
    T[0] = static_cast<Word>(parts.fraction);
    L = 1;
    if constexpr (words > 1) {
        if (const auto high = static_cast<Word>(parts.fraction >> w)) append(high);
    }
    constexpr int log2_w = std::countr_zero(w);
    exp = e + (parts.exponent >> log2_w);
    sign = std::bit_cast<std::uint64_t>(x) >> 63 == 0;
    const unsigned shift = static_cast<unsigned>(parts.exponent) % w;
    if (shift != 0) mul_uW(ParallelContext{}, Word{1} << shift);
}

double BigFloat::to_double(std::int64_t& out_e) const {
    out_e = top();
    if (is_dry(T)) return sign ? 0.5 : -0.5;
    constexpr std::size_t words = 64 / w + 1; // a top word of 1 needs 53 more bits
    constexpr double scale = 1.0 / (2.0 * (Word{1} << (w - 1)));
    double d = 0.0;
    for (std::size_t i = L - std::min(L, words); i < L; ++i) d = (d + T[i]) * scale;
    constexpr double below_one = 1.0 - 0x1p-53; // where the sum of all ones would round to 1
    d = std::min(d, below_one);
    return sign || L == 0 ? d : -d;
}

} // namespace zvp
