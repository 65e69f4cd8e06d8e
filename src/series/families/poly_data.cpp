#include "series/families/poly_data.h"

#include "app/failure/exceptions.h"
#include "series/double_double/size_units.h"
#include "series/polynomials/integer_polynomial.h"

#include <cmath>
#include <string>
#include <utility>

namespace zvp::BinarySplitting {
namespace {

using Polynomials::IntegerPolynomial;
using Polynomials::RootBox;
using Polynomials::SimpleInt;

[[noreturn]] void refuse(const char* owner, const std::string& message) {
    throw InvalidParametersException(owner, message);
}

void check_top(const char* owner, const char* name, const Coefficients& polynomial) {
    if (polynomial.back() == 0) refuse(owner, std::string("Polynomial ") + name + " has a zero top coefficient.");
}

void check(const char* owner, const Coefficients& P, const Coefficients& Q, const Coefficients* R) {
    if (P.empty()) refuse(owner, "Polynomial P(x) is zero.");
    if (R && R->empty()) refuse(owner, "Polynomial R(x) is zero.");
    if (Q.size() < 2) refuse(owner, "Polynomial Q(x) must be degree 1 or higher.");
    check_top(owner, "P(x)", P);
    check_top(owner, "Q(x)", Q);
    if (R) check_top(owner, "R(x)", *R);
}

IntegerPolynomial scaled(const Coefficients& polynomial, std::int64_t factor) {
    std::vector<SimpleInt> coefficients;
    for (const std::int64_t c : polynomial) coefficients.push_back(SimpleInt(c) * SimpleInt(factor));
    return IntegerPolynomial(std::move(coefficients));
}

/// A + sign * B.
IntegerPolynomial combine(const IntegerPolynomial& A, const IntegerPolynomial& B, int sign) {
    std::vector<SimpleInt> coefficients(std::max(A.size(), B.size()));
    for (std::size_t i = 0; i < A.size(); ++i) coefficients[i] = A[i];
    for (std::size_t i = 0; i < B.size(); ++i) sign > 0 ? coefficients[i] += B[i] : coefficients[i] -= B[i];
    return IntegerPolynomial(std::move(coefficients));
}

/// The bound of a zero above 1, or null.
const SimpleInt* zero_above_one(const Polynomials::RootMap& zeros) {
    for (const auto& [box, multiplicity] : zeros)
        if (box.real_high > SimpleInt(1)) return &box.real_high;
    return nullptr;
}

constexpr const char* convergence_requirement = "Series does not meet convergence requirements.\n"
                                                "Requirement: |R(x)/Q(x)| < 0.75  for all x >= 1\n\n";

} // namespace

PolyData::PolyData(Coefficients P_, Coefficients Q_) : P(std::move(P_)), Q(std::move(Q_)) {}

void SizedPolyData::make_Q_sizer(const DoubleDouble& extra) {
    Q_sizer = Polynomials::make_sizer("Q(x)", IntegerPolynomial(Q), extra);
}

double SizedPolyData::log_range_double(std::uint64_t a, std::uint64_t b) const {
    return Q_sizer->range_double(a, b) + static_cast<double>(degrees) * std::log(static_cast<double>(b));
}

DoubleDouble SizedPolyData::log_range(std::uint64_t a, std::uint64_t b) const {
    const DoubleDouble next = DoubleDouble::from_integer(b) + DoubleDouble(1);
    return Q_sizer->range(a, b) + DoubleDouble(static_cast<double>(degrees)) * log(next);
}

SeriesHypergeometric_PolyData::SeriesHypergeometric_PolyData(Coefficients P_, Coefficients Q_, Coefficients R_)
    : SizedPolyData(std::move(P_), std::move(Q_)), R(std::move(R_)) {
    check("SeriesHypergeometric_PolyData()", P, Q, &R);
    enforce_convergence();
    R_sizer = Polynomials::make_sizer("R(x)", IntegerPolynomial(R), DoubleDouble());
    make_Q_sizer(DoubleDouble());
    degrees = P.size() + Q.size() + R.size() - 3;
}

DoubleDouble SeriesHypergeometric_PolyData::log_term(std::uint64_t x) const {
    const double difference = static_cast<double>(Q.size()) + 1 - static_cast<double>(P.size() + R.size());
    return Q_sizer->S(x) - R_sizer->S(x) + DoubleDouble(difference) * log(DoubleDouble::from_integer(x));
}

void SeriesHypergeometric_PolyData::enforce_convergence() const {
    static constexpr const char* function = "SeriesHypergeometric_PolyData::enforce_convergence()";
    const auto fail = [](const std::string& what) { refuse(function, convergence_requirement + what); };
    const IntegerPolynomial R4 = scaled(R, 4), Q3 = scaled(Q, 3);
    const SimpleInt R_at_1 = R4.evaluate(1), Q_at_1 = Q3.evaluate(1);
    if (Q_at_1.is_zero() || R_at_1.abs() >= Q_at_1.abs()) fail("|R(x)/Q(x)| >= 0.75 at x = 1.");
    if (const auto zeros = isolate_real_zeros(combine(R4, Q3, -1)); const SimpleInt* bound = zero_above_one(zeros))
        fail("R(x)/Q(x) >= 0.75 at or around x = " + bound->to_string());
    if (const auto zeros = isolate_real_zeros(combine(R4, Q3, 1)); const SimpleInt* bound = zero_above_one(zeros))
        fail("R(x)/Q(x) <= -0.75 at or around x = " + bound->to_string());
}

SeriesHyperdescent_PolyData::SeriesHyperdescent_PolyData(Coefficients P_, Coefficients Q_)
    : SizedPolyData(std::move(P_), std::move(Q_)) {
    check("SeriesHyperdescent_PolyData()", P, Q, nullptr);
    make_Q_sizer(DoubleDouble());
    degrees = P.size() + Q.size() - 2;
}

SeriesBinaryBBP_PolyData::SeriesBinaryBBP_PolyData(std::uint32_t power_, Coefficients P_, Coefficients Q_)
    : SizedPolyData(std::move(P_), std::move(Q_)), power(power_) {
    static constexpr const char* function = "SeriesBinaryBBP_PolyData()";
    if (power == 0) refuse(function, "Power cannot be zero.");
    if (power > 1024) refuse(function, "Power cannot be larger than 1024.");
    check(function, P, Q, nullptr);
    make_Q_sizer(DoubleDouble(static_cast<double>(power)) * ln_2());
    degrees = P.size() + Q.size() - 2;
}

} // namespace zvp::BinarySplitting
