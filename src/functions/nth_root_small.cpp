#include "functions/nth_root.h"

#include "app/failure/exceptions.h"
#include "functions/residual.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace zvp {

namespace {

constexpr long double ln_base = 22.18070977791824990135142788666165L; // ln W

/// 1 + z for |z| < 2^-16, to 80 bits behind the point: three words.
void set_next_to_one(BigFloat& T, long double z) {
    __extension__ using Fixed = __int128;
    const Fixed below = static_cast<Fixed>(std::ldexp(z, 64)) * (Fixed{1} << 16);
    const Fixed value = (Fixed{1} << 80) + below;
    const auto shifted = static_cast<unsigned __int128>(value) << 16; // 96 bits behind the point
    T.T = T.buffer;
    T.L = 4;
    T.exp = -3;
    T.sign = true;
    if (is_dry(T.T)) return;
    T.L = 0;
    for (unsigned shift = 0; shift < 128; shift += 32) T.T[T.L++] = static_cast<wtype>(shifted >> shift);
    while (T.L > 0 && T.T[T.L - 1] == 0) --T.L;
}

/// About 50 bits. The exponent is divided as an integer: ln A itself would have no bits left behind the point where it is
/// large.
void start(BigFloat& T, const BigFloat& A, wtype n) {
    constexpr const char* function = InvNthRootFloat_BigFloatR_E::function;
    if (A.L == 0) throw ArithmeticException(function, "Divide by zero.");
    if (!A.sign) throw ArithmeticException(function, "Nth root of negative number.");
    A.check_normalization();
    std::int64_t e;
    const double d = A.to_double(e);
    const auto divisor = static_cast<std::int64_t>(n);
    std::int64_t whole = e / divisor, rest = e % divisor;
    if (2 * rest > divisor) rest -= divisor, ++whole;
    if (2 * rest < -divisor) rest += divisor, --whole;
    const long double y = -(std::log(static_cast<long double>(d)) + static_cast<long double>(rest) * ln_base)
                          / static_cast<long double>(n);
    if (whole == 0 && std::fabs(y) < 0x1p-16L) return set_next_to_one(T, std::expm1(y));
    T.set_double(static_cast<double>(std::exp(y)), -whole);
}

} // namespace

void divide_by_word(BigFloat& T, std::size_t p, const ParallelContext& ctx, const BigFloat& A, wtype n) {
    constexpr wtype half = wtype{1} << (BigFloat::w - 1);
    if (n == 1) return T.set_BigFloat(p, ctx, A);
    if (std::has_single_bit(n)) {
        T.set_mul_uW(p, ctx, A, static_cast<wtype>(half / n * 2));
        if (T.L > 0) --T.exp;
        return;
    }
    if (n < half) return T.set_div_sW(p, ctx, A, static_cast<BigFloat::SWord>(n));

    // Beyond the divisors that a reciprocal serves: word by word.
    const std::size_t words = std::min(A.L, p + 1);
    if (T.capacity < p + 2) throw BufferTooSmallException("divide_by_word()", T.capacity, p + 2);
    const std::int64_t top = A.top();
    T.T = T.buffer;
    T.L = p + 2;
    T.exp = top - static_cast<std::int64_t>(T.L);
    T.sign = A.sign;
    if (is_dry(T.T)) return;
    std::uint64_t remainder = 0;
    for (std::size_t i = 0; i < T.L; ++i) {
        const wtype word = i < words ? A.T[A.L - 1 - i] : 0;
        const std::uint64_t value = remainder << 32 | word;
        T.T[T.L - 1 - i] = static_cast<wtype>(value / n);
        remainder = value % n;
    }
    while (T.L > 0 && T.T[T.L - 1] == 0) --T.L;
    if (T.L == 0) T = BigFloat(T.buffer, T.capacity);
}

void InvNthRootFloat_BigFloatR_E::run(const MultiplyParameters& pars, const Power_BF_uL_BigFloatR& power, BigFloat& T,
                                      const BigFloat& A, wtype n, std::size_t p, BigFloat& R, BigFloat& S) {
    if (p == 0) return start(T, A, n);
    const std::size_t q = p >= 9 ? p / 2 + 4 : p - 1;
    run(pars, power, T, A, n, q, R, S);
    R.set_BigFloat(p, pars, T);
    T.set_BigFloat(p, pars, R);
    const std::int64_t top = T.top();
    power.run(pars, nullptr, S, T, std::uint64_t{n} + 1, p + 2);
    place_dry(S, top + 1 - A.top());
    R.set_mul(p + 4, pars, S, A);
    S.set_mul_uW(p + 2, pars, T, static_cast<BigFloat::SDWord>(n) + 1);
    T.set_sub(p + 2, pars, S, R);
    divide_by_word(S, p + 2, pars, T, n);
    T.set_BigFloat(p, pars, S);
    place_dry(T, top);
}

} // namespace zvp
