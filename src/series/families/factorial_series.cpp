#include "series/families/factorial_series.h"

#include "series/double_double/size_units.h"

namespace zvp::BinarySplitting {

std::uint64_t term_count(std::size_t precision_words, const DoubleDouble& convergence) {
    const DoubleDouble nats = DoubleDouble::from_integer(precision_words) * nats_per_word();
    return static_cast<std::uint64_t>(truncated_sum(nats * (DoubleDouble(1) / convergence) + DoubleDouble(1.5)));
}

FactorialSeries::FactorialSeries(std::size_t precision_words, const FactorialSeriesParameters& parameters)
    : convergence(parameters.convergence),
      words_per_term(convergence * words_per_nat()),
      sizer{parameters.degree, parameters.constant} {
    N = term_count(precision_words, convergence);
    leaf_terms = parameters.leaf_terms;
    split_slack = parameters.split_slack;
    alternating = parameters.alternating;
}

DoubleDouble FactorialSeries::log_remaining(std::uint64_t x) const {
    return DoubleDouble::from_integer(N - x) * convergence;
}

std::size_t FactorialSeries::precision_words(std::uint64_t x) const {
    constexpr std::uint64_t double_terms = std::uint64_t{1} << 52; // exact in a double below
    const std::uint64_t terms = N - x;
    if (terms < double_terms) return static_cast<std::size_t>(static_cast<double>(terms) * words_per_term.hi) + 1;
    return static_cast<std::size_t>(truncated_sum(DoubleDouble::from_integer(terms) * words_per_term)) + 1;
}

} // namespace zvp::BinarySplitting
