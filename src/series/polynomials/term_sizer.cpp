#include "series/polynomials/term_sizer.h"

#include "app/failure/exceptions.h"
#include "series/double_double/stirling.h"

#include <cmath>

namespace Polynomials {
namespace {

using zvp::stirling;

constexpr double use_dd_above = 0x1p50;
constexpr double largest_imaginary_part = 0x1p50;

bool needs_dd(const DoubleDouble& C, double m) { return std::fabs(C.hi * m) > use_dd_above; }

DoubleDouble half(const DoubleDouble& a) { return {a.hi / 2, a.lo / 2}; }
DoubleDouble twice(const DoubleDouble& a) { return {a.hi * 2, a.lo * 2}; }

DoubleDouble centre(const SimpleInt& low, const SimpleInt& high) { return half((low + high).to_double_double()); }

double reflected_stirling(double t) { return t >= -0.5 ? stirling(t) : -stirling(-1 - t); }

DoubleDouble reflected_stirling(const DoubleDouble& t) {
    return t >= DoubleDouble(-0.5) ? stirling(t) : -stirling(DoubleDouble(-1) - t);
}

} // namespace

PochhammerRealSizer::PochhammerRealSizer(const DoubleDouble& a_, std::size_t multiplicity)
    : a_double(a_.hi), a(a_), C(reflected_stirling(-a_)), m(static_cast<double>(multiplicity)) {
    use_dd = needs_dd(C, m);
}

double PochhammerRealSizer::value_double(double x) const { return reflected_stirling(x - a_double); }

DoubleDouble PochhammerRealSizer::value(const DoubleDouble& x) const { return reflected_stirling(x - a); }

PochhammerComplexPairSizer::PochhammerComplexPairSizer(const DoubleDouble& a_, const DoubleDouble& b_,
                                                       std::size_t multiplicity)
    : use_dd(false),
      a_double(a_.hi),
      b_double(b_.hi),
      a(a_),
      b(b_),
      a_squared(a_ * a_),
      b_squared(b_ * b_),
      b_twice(twice(b_)),
      m(static_cast<double>(multiplicity)) {
    constexpr const char* name = "PochhammerComplexPairSizer()";
    if (a_squared + b_squared < DoubleDouble(1)) throw zvp::InvalidParametersException(name, "Root too close to zero.");
    if (abs(b) > DoubleDouble(largest_imaginary_part))
        throw zvp::InvalidParametersException(name, "Imaginary part is too large.");
    C = value(0);
    use_dd = needs_dd(C, m);
    if (use_dd) C = value(0); // again, with the angle in double-double
}

double PochhammerComplexPairSizer::value_double(double x) const {
    const double t = x - a_double;
    const double d = t * t + b_squared.hi;
    const double log_d = d > 1 ? std::log(d) : 0;
    return b_twice.hi * std::atan2(-b_double, t) + (2 * t + 1) * (0.5 * log_d - 1);
}

DoubleDouble PochhammerComplexPairSizer::value(const DoubleDouble& x) const {
    const DoubleDouble t = x - a;
    const DoubleDouble d = t * t + b_squared;
    const DoubleDouble log_d = d > DoubleDouble(1) ? log(d) : DoubleDouble();
    const DoubleDouble angle = use_dd ? atan2(-b, t) : DoubleDouble(std::atan2(-b.hi, t.hi));
    return b_twice * angle + (twice(t) + DoubleDouble(1)) * (half(log_d) - DoubleDouble(1));
}

PolynomialTermSizer::PolynomialTermSizer(const DoubleDouble& lead_, const RootMap& zeros)
    : lead_double(lead_.hi), lead(lead_) {
    for (const auto& [box, multiplicity] : zeros) add_box(box, multiplicity);
}

void PolynomialTermSizer::add_factorial(std::size_t multiplicity) {
    if (!factorial_degree) factorial_degree = std::make_unique<FactorialDegree>(FactorialDegree{{}, 0});
    factorial_degree->degree_double += static_cast<double>(multiplicity);
    factorial_degree->degree = factorial_degree->degree_double;
}

void PolynomialTermSizer::add_box(const RootBox& box, std::size_t multiplicity) {
    if (box.imag_low.sign() < 0)
        throw zvp::InvalidParametersException("PolynomialTermSizer()", "Root with negative imaginary part.");
    const SimpleInt one = 1;
    const bool is_real = box.imag_high.is_zero();
    if (box.real_low >= SimpleInt(-1) && box.real_high <= one && box.imag_high <= one) {
        add_factorial(is_real ? multiplicity : 2 * multiplicity);
        return;
    }
    const DoubleDouble a = centre(box.real_low, box.real_high);
    if (is_real)
        real_zeros.emplace_back(a, multiplicity);
    else
        complex_pairs.emplace_back(a, centre(box.imag_low, box.imag_high), multiplicity);
}

double PolynomialTermSizer::S_double(std::uint64_t x) const {
    const auto at = static_cast<double>(x);
    double sum = lead_double * at;
    if (factorial_degree) sum += factorial_degree->degree_double * stirling(at);
    const auto add = [&](const auto& record) {
        const double value = record.use_dd ? (record.value(DoubleDouble::from_integer(x)) - record.C).hi
                                           : record.value_double(at) - record.C.hi;
        sum += record.m * value;
    };
    for (const auto& record : real_zeros) add(record);
    for (const auto& record : complex_pairs) add(record);
    return sum;
}

DoubleDouble PolynomialTermSizer::S(std::uint64_t x) const {
    const DoubleDouble at = DoubleDouble::from_integer(x);
    DoubleDouble sum = lead * at;
    if (factorial_degree) sum += factorial_degree->degree * stirling(at);
    for (const auto& record : real_zeros) sum += DoubleDouble(record.m) * (record.value(at) - record.C);
    for (const auto& record : complex_pairs) sum += DoubleDouble(record.m) * (record.value(at) - record.C);
    return sum;
}

double PolynomialTermSizer::range_double(std::uint64_t a, std::uint64_t b) const {
    const auto from = static_cast<double>(a), to = static_cast<double>(b);
    double sum = lead_double * (to - from);
    if (factorial_degree) sum += factorial_degree->degree_double * (stirling(to) - stirling(from));
    const auto add = [&](const auto& record) {
        const double value =
            record.use_dd
                ? (record.value(DoubleDouble::from_integer(b)) - record.value(DoubleDouble::from_integer(a))).hi
                : record.value_double(to) - record.value_double(from);
        sum += record.m * value;
    };
    for (const auto& record : real_zeros) add(record);
    for (const auto& record : complex_pairs) add(record);
    return sum;
}

DoubleDouble PolynomialTermSizer::range(std::uint64_t a, std::uint64_t b) const {
    const DoubleDouble from = DoubleDouble::from_integer(a), to = DoubleDouble::from_integer(b);
    DoubleDouble sum = lead * (to - from);
    if (factorial_degree) sum += factorial_degree->degree * (stirling(to) - stirling(from));
    for (const auto& record : real_zeros) sum += DoubleDouble(record.m) * (record.value(to) - record.value(from));
    for (const auto& record : complex_pairs) sum += DoubleDouble(record.m) * (record.value(to) - record.value(from));
    return sum;
}

double FactorialSizer::S_double(double x) const { return degree.hi * stirling(x) + q.hi * x; }

DoubleDouble FactorialSizer::S(const DoubleDouble& x) const { return degree * stirling(x) + q * x; }

} // namespace Polynomials
