#include "series/families/polynomial_series.h"

#include "app/failure/exceptions.h"
#include "series/double_double/size_units.h"
#include "series/families/polynomial_leaf.h"

#include <algorithm>
#include <cmath>

namespace zvp::BinarySplitting {
namespace {

/// Products at no precision would be zero, and a Q of zero makes all of the sum zero.
constexpr std::size_t least_words = 1;

/// One above the least x from 2 on at which a term lies `nats` below one.
template <class LogTerm>
std::uint64_t terms_until(const DoubleDouble& nats, LogTerm&& log_term) {
    std::uint64_t high = 2;
    while (log_term(high) < nats) high *= 2;
    std::uint64_t low = high / 2;
    while (high - low > 1) {
        const std::uint64_t middle = low + (high - low) / 2;
        (log_term(middle) < nats ? low : high) = middle;
    }
    return high + 1;
}

/// Two words beyond the precision.
DoubleDouble nats_of_terms(std::size_t precision_words) {
    return DoubleDouble::from_integer(precision_words + 2) * nats_per_word();
}

[[noreturn]] void not_implemented(const char* function) {
    throw InvalidParametersException(function, "Not Implemented");
}

} // namespace

SeriesHypergeometric::SeriesHypergeometric(const SeriesHypergeometric_PolyData& data_, bool alternating_,
                                           std::size_t precision_words)
    : PolynomialSeries(data_), data(data_), target(nats_of_terms(precision_words)) {
    N = terms_until(target, [&](std::uint64_t x) { return data.log_term(x); });
    leaf_terms = 2;
    split_slack = static_cast<std::uint32_t>(2 * (data.P.size() + data.Q.size() + data.R.size()) + 18);
    alternating = alternating_;
}

// At index 0, where the logarithm of x has no value, that of x + 1 serves for doubles, too.
DoubleDouble SeriesHypergeometric::log_remaining(std::uint64_t x) const {
    constexpr std::uint64_t double_terms = std::uint64_t{0x40000} << 32;
    const auto degrees = static_cast<double>(data.degrees);
    const DoubleDouble nats = x < double_terms
                                  ? target
                                        + DoubleDouble(data.R_sizer->S_double(x) - data.Q_sizer->S_double(x)
                                                       + degrees * std::log(static_cast<double>(x + 1)))
                                  : target + data.R_sizer->S(x) - data.Q_sizer->S(x)
                                        + DoubleDouble(degrees) * log(DoubleDouble::from_integer(x) + DoubleDouble(1));
    return std::clamp(nats, DoubleDouble(), target);
}

std::size_t SeriesHypergeometric::precision_words(std::uint64_t x) const {
    return std::max(least_words, static_cast<std::size_t>(truncated_sum(log_remaining(x) * words_per_nat())));
}

void SeriesHypergeometric::BSR_E(const MultiplyParameters&, ExactNumber& P, ExactNumber& Q, ExactNumber& R,
                                 ExactNumber&, std::uint64_t, std::uint64_t b) const {
    static constexpr const char* function = "SeriesHypergeometric_BSR_E()";
    set_polynomial(function, P, data.P, b);
    set_polynomial(function, Q, data.Q, b);
    set_polynomial(function, R, data.R, b);
    if (alternating && b % 2 == 0) negate(P);
}

SeriesHyperdescent::SeriesHyperdescent(const SeriesHyperdescent_PolyData& data_, bool alternating_,
                                       std::size_t precision_words)
    : PolynomialSeries(data_), data(data_) {
    const double degrees = static_cast<double>(data.Q.size()) - static_cast<double>(data.P.size());
    N = terms_until(nats_of_terms(precision_words), [&](std::uint64_t x) {
        return data.log_at(x) + DoubleDouble(degrees) * log(DoubleDouble::from_integer(x));
    });
    leaf_terms = 2;
    split_slack = static_cast<std::uint32_t>(2 * (data.P.size() + data.Q.size()) + 19);
    alternating = alternating_;
}

DoubleDouble SeriesHyperdescent::log_remaining(std::uint64_t) const {
    not_implemented("SeriesHyperdescent::log_remaining()");
}

std::size_t SeriesHyperdescent::precision_words(std::uint64_t) const {
    not_implemented("SeriesHyperdescent::precision_words()");
}

void SeriesHyperdescent::BSR_E(const MultiplyParameters&, ExactNumber& P, ExactNumber& Q, std::uint64_t,
                               std::uint64_t b) const {
    static constexpr const char* function = "SeriesHyperdescent_BSR_E()";
    set_polynomial(function, P, data.P, b);
    set_polynomial(function, Q, data.Q, b);
    if (alternating && b % 2 == 0) negate(P);
}

SeriesBinaryBBP::SeriesBinaryBBP(const SeriesBinaryBBP_PolyData& data_, std::int64_t shift_, bool alternating_,
                                 std::size_t precision_words)
    : PolynomialSeries(data_), data(data_), shift(shift_), words(precision_words) {
    N = 32 * (words + data.P.size() - 1) / data.power + 2;
    leaf_terms = 2;
    split_slack = static_cast<std::uint32_t>(data.power / 32 + 2 * (data.P.size() + data.Q.size()) + 20);
    alternating = alternating_;
}

std::size_t SeriesBinaryBBP::precision_words(std::uint64_t x) const {
    const std::uint64_t above = data.power * x / 32; // words that lie above what the terms behind x reach
    const std::uint64_t all = words + data.P.size() - 1;
    if (above + least_words > all + 2) return least_words;
    return static_cast<std::size_t>(std::min<std::uint64_t>(words + 2, all + 2 - above));
}

DoubleDouble SeriesBinaryBBP::log_remaining(std::uint64_t x) const {
    return DoubleDouble::from_integer(precision_words(x)) * nats_per_word();
}

void SeriesBinaryBBP::BSR_E(const MultiplyParameters&, ExactNumber& P, ExactNumber& Q, ExactNumber&, std::uint64_t,
                            std::uint64_t b) const {
    static constexpr const char* function = "SeriesBinaryBBP_BSR_E()";
    set_polynomial(function, P, data.P, b);
    set_polynomial(function, Q, data.Q, b);
    if (P.L > 0) P.mp2(shift - static_cast<std::int64_t>(data.power * b));
    if (alternating && b % 2 == 0) negate(P);
}

} // namespace zvp::BinarySplitting
