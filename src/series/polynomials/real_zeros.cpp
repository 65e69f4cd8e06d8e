#include "series/polynomials/real_zeros.h"

#include "app/failure/exceptions.h"

#include <algorithm>

namespace Polynomials {
namespace {

constexpr const char* function_name = "isolate_real_zeros()";
constexpr const char* inconsistent = "Sturm sequence returned inconsistent # of sign-flips.";

std::size_t flips_off_zero(const SturmSequence& chain, const SimpleInt& x) {
    const SignFlips flips = chain.sign_flips(x);
    if (flips.first_sign == 0) throw SimpleInt(x);
    return flips.count;
}

/// All zeros of p lie below 2^(this) in magnitude: Cauchy's bound is 1 + max |c_i| / |top|.
std::size_t bound_bits(const IntegerPolynomial& p) {
    std::size_t bits = 0;
    for (std::size_t i = 0; i < p.size(); ++i) bits = std::max(bits, p[i].bits());
    return bits + 1;
}

} // namespace

void isolate_real_zeros(const SturmSequence& chain, std::vector<UnitInterval>& out, const SimpleInt& low,
                        std::size_t flips_low, const SimpleInt& high, std::size_t flips_high) {
    if (flips_low == flips_high) return;
    if (flips_low < flips_high) throw zvp::AlgorithmFailedException(function_name, inconsistent);
    if (high - low == SimpleInt(1)) {
        out.push_back({low, high, flips_low - flips_high});
        return;
    }
    SimpleInt middle = low + high;
    middle.shift_right_1();
    const std::size_t flips_middle = flips_off_zero(chain, middle);
    if (flips_middle > flips_low || flips_middle < flips_high)
        throw zvp::AlgorithmFailedException(function_name, inconsistent);
    isolate_real_zeros(chain, out, low, flips_low, middle, flips_middle);
    isolate_real_zeros(chain, out, middle, flips_middle, high, flips_high);
}

std::vector<UnitInterval> isolate_real_zeros(const SturmSequence& chain) {
    std::vector<UnitInterval> zeros;
    const std::size_t flips_low = chain.sign_flips_minus_infinity();
    const std::size_t flips_high = chain.sign_flips_plus_infinity();
    if (flips_low == flips_high) return zeros;
    SimpleInt bound = 1;
    for (std::size_t tries = bound_bits(chain[0]) + 1; tries > 0; --tries) {
        if (flips_off_zero(chain, -bound) == flips_low && flips_off_zero(chain, bound) == flips_high) {
            isolate_real_zeros(chain, zeros, -bound, flips_low, bound, flips_high);
            return zeros;
        }
        bound.shift_left_1();
    }
    throw zvp::AlgorithmFailedException(function_name, inconsistent);
}

} // namespace Polynomials
