// Truncated blocks against exact sums by GMP.

#include "splitting_support.h"

namespace {

using namespace test;

/// A number in units of W^-scale, cut to an integer; the cut is below 2^-64 of what is measured.
mpz_class scaled(const BigFloat& f, std::int64_t scale) {
    const mpz_class magnitude = integer(f.T, f.L);
    const std::int64_t words = f.exp + scale;
    const mpz_class moved = words >= 0 ? mpz_class(magnitude << static_cast<mp_bitcnt_t>(32 * words))
                                       : mpz_class(magnitude >> static_cast<mp_bitcnt_t>(-32 * words));
    return f.sign || f.L == 0 ? moved : mpz_class(-moved);
}

/// log2 of |a/b - A/B| over |A/B|; A and B are exact.
double log2_error(const BigFloat& a, const BigFloat& b, const mpz_class& A, const mpz_class& B) {
    const std::int64_t scale = -std::min(a.exp, b.exp);
    const mpz_class exact = A * scaled(b, scale);
    const mpz_class difference = abs(mpz_class(scaled(a, scale) * B - exact));
    if (difference == 0) return -1e9;
    long e = 0, f = 0;
    const double d = mpz_get_d_2exp(&e, difference.get_mpz_t());
    const double x = mpz_get_d_2exp(&f, exact.get_mpz_t());
    return std::log2(std::abs(d / x)) + static_cast<double>(e - f);
}

/// log2 of the terms of a sum, in magnitude, without a common factor; zeros count as the term before them.
using Terms = std::vector<double>;

double log2_of(const mpz_class& x) {
    long e = 0;
    const double d = mpz_get_d_2exp(&e, x.get_mpz_t());
    return std::log2(std::abs(d)) + static_cast<double>(e);
}

template <class Series>
double log2_term(const Series& series, std::uint64_t k, double& product) {
    const Term t = series.term(k);
    const double before = product;
    if constexpr (std::is_base_of_v<bs::Hyperdescent::Series, Series>) {
        return product -= log2_of(t.Q);
    } else if constexpr (std::is_same_v<Series, PowerSeries>) {
        return log2_of(t.P) - log2_of(t.Q) + 32.0 * static_cast<double>(series.exponent(k));
    } else {
        product += log2_of(t.R) - log2_of(t.Q);
        return t.P == 0 ? before : before + log2_of(t.P) - log2_of(t.Q);
    }
}

template <class Series>
Terms terms_of(const Series& series, std::uint64_t b) {
    Terms terms(b + 2, 0);
    double product = 0;
    for (std::uint64_t k = 1; k <= b; ++k) terms[k] = log2_term(series, k, product);
    terms[b + 1] = terms[b];
    return terms;
}

double log2_sum(double x, double y) { return std::max(x, y) + std::log2(1 + std::exp2(-std::abs(x - y))); }

/// What the sum of a range may be wrong by, relative to its first term: `per_merge` units of the last word that is kept,
/// for each merge, those of right halves by the weight that these have in the sum. A range of 100 terms counts as a merge
/// for each.
template <class Series>
double log2_bound(const Series& series, const Terms& terms, std::uint64_t a, std::uint64_t b, std::size_t limit,
                  double per_merge = 8) {
    if (b - a > bs::plain_split_terms && series.size_words(a, b) <= limit) return -1e9;
    const double own = std::log2(per_merge) - 32.0 * static_cast<double>(limit);
    if (b - a <= bs::plain_split_terms) return own + std::log2(bs::plain_split_terms);
    const std::uint64_t m = series.midpoint(a, b);
    const double right = log2_bound(series, terms, m, b, series.precision_words(m), per_merge);
    const double weight = terms[m + 1] - terms[a + 1];
    return log2_sum(own, log2_sum(log2_bound(series, terms, a, m, limit, per_merge), weight + right));
}

template <class Family>
bool was_truncated(const typename Family::template Numbers<BigFloat>& numbers, std::size_t limit) {
    for (std::size_t i = 0; i < Family::results; ++i) {
        EXPECT_TRUE(numbers[i].L == 0 || numbers[i].T[numbers[i].L - 1] != 0);
        EXPECT_LE(numbers[i].L, limit + BigFloat::extra_precision);
    }
    return std::any_of(numbers.begin(), numbers.begin() + Family::results,
                       [&](const BigFloat& f) { return f.L >= limit; });
}

TEST(TruncatedSplitting, CommonP2B3SumIsGoodToTheLimit) {
    for (const bool alternating : {true, false})
        for (const std::uint64_t terms : {1500U, 6'000U}) {
            const CubicSeries series(alternating, 41, terms);
            for (const std::uint64_t a : {std::uint64_t{0}, terms / 3}) {
                const ExactSum sum = sum_by_gmp(series, a, terms);
                const std::size_t limit = series.precision_words(a) + 1;
                const double bound = log2_bound(series, terms_of(series, terms), a, terms, limit);
                for (const bool is_last : {false, true})
                    for (const std::uint32_t depth : {0U, 2U})
                        for (const std::uint32_t tds : {1U, 2U, 3U, 7U}) {
                            SCOPED_TRACE(testing::Message() << alternating << " (" << a << ", " << terms << "] depth "
                                                            << depth << " tds " << tds << " last " << is_last);
                            const bs::BSR_BlockB<bs::CommonP2B3::Family> block(series, a, terms, limit, tds, 1, depth,
                                                                               is_last);
                            ASSERT_GT(block.size_words, limit);
                            BlockRun run(block);
                            const auto n = run.run<BigFloat>(tds);
                            EXPECT_TRUE(was_truncated<bs::CommonP2B3::Family>(n, limit));
                            EXPECT_LT(log2_error(n[0], n[1], sum.numbers[0], sum.numbers[1]), bound);
                            // R/Q carries what comes behind the range, where nothing counts any more.
                            EXPECT_TRUE(is_last || n[2].L > 0);
                        }
            }
        }
}

/// R/Q of a range in the middle of a series, to what the end of the range still needs.
TEST(TruncatedSplitting, FactorOfTheRangeIsGoodToItsEnd) {
    const CubicSeries series(true, 41, 12'000);
    const std::uint64_t a = 100, b = 9'000;
    const ExactSum sum = sum_by_gmp(series, a, b);
    const std::size_t limit = series.precision_words(a) + 1;
    const double bound = log2_bound(series, terms_of(series, b), a, b, limit);
    for (const std::uint32_t tds : {1U, 3U}) {
        const bs::BSR_BlockB<bs::CommonP2B3::Family> block(series, a, b, limit, tds, 1, 0);
        BlockRun run(block);
        const auto n = run.run<BigFloat>(tds);
        EXPECT_LT(log2_error(n[0], n[1], sum.numbers[0], sum.numbers[1]), bound);
        EXPECT_LT(log2_error(n[2], n[1], sum.numbers[2], sum.numbers[1]),
                  10 - 32.0 * static_cast<double>(series.precision_words(b)));
    }
}

/// A whole series in one block, to a word more than it needs at its start; `lost` bits go where terms cancel.
template <class Family, class Series>
void expect_good_sum(const Series& series, double lost) {
    const std::uint64_t N = series.N;
    const ExactSum sum = sum_by_gmp(series, 0, N);
    const mpz_class Q = sum.numbers[1] << static_cast<mp_bitcnt_t>(-32 * sum.exps[0]);
    const std::size_t limit = series.precision_words(0) + 1;
    const double bound = log2_bound(series, terms_of(series, N), 0, N, limit) + lost;
    for (const std::uint32_t depth : {0U, 2U})
        for (const std::uint32_t tds : {1U, 2U, 3U, 7U}) {
            SCOPED_TRACE(testing::Message() << "depth " << depth << " tds " << tds);
            const bs::BSR_BlockB<Family> block(series, 0, N, limit, tds, 1, depth);
            ASSERT_GT(block.size_words, limit);
            BlockRun<Family> run(block);
            const auto n = run.template run<BigFloat>(tds);
            EXPECT_TRUE(was_truncated<Family>(n, limit));
            EXPECT_LT(log2_error(n[0], n[1], sum.numbers[0], Q), bound);
        }
}

TEST(TruncatedSplitting, OtherSumsAreGoodToTheLimit) {
    expect_good_sum<bs::CommonP2B3::Family>(RoughSeries(8'000), 8);
    expect_good_sum<bs::BinaryBBP::Family>(PowerSeries(3, 4'000), 0);
    expect_good_sum<bs::Hyperdescent::Family>(ExponentialSeries(false, 9'000), 0);
    expect_good_sum<bs::Hyperdescent::Family>(ExponentialSeries(true, 9'000), 0);
}

/// A * B, whole.
class Product {
public:
    Product(const BigFloat& A, const BigFloat& B) : words(A.L + B.L), f(words.data(), words.size()) {
        const mpz_class value = integer(A.T, A.L) * integer(B.T, B.L);
        mpz_export(words.data(), &f.L, -1, sizeof(wtype), 0, 0, value.get_mpz_t());
        f.exp = A.exp + B.exp;
        f.sign = A.sign == B.sign;
    }

private:
    std::vector<wtype> words;

public:
    BigFloat f;
};

/// N3/N1^3 over N2/N1^2 is N3/(N1 N2), and N2/(N1 N1) is the second sum.
TEST(TruncatedSplitting, BrentMcMillan) {
    for (const auto& [k, last] : {std::pair{7U, 1'200ULL}, std::pair{10U, 5'200ULL}}) {
        const BesselSeries series(k, last);
        const ExactSum sum = sum_by_gmp(series, 0, last);
        const auto& N = sum.numbers;
        const std::size_t limit = series.precision_words(0) + 1;
        // Up to the peak every sum has the largest term's weight.
        Terms terms(last + 2);
        for (std::uint64_t x = 1; x < terms.size(); ++x)
            terms[x] = (series.log_remaining(x) - series.log_remaining(0)).hi / std::log(2.0);
        const double bound = log2_bound(series, terms, 0, last, limit, 64);
        for (const bool is_last : {false, true})
            for (const std::uint32_t depth : {0U, 1U})
                for (const std::uint32_t tds : {1U, 2U, 3U, 7U}) {
                    SCOPED_TRACE(testing::Message() << k << " depth " << depth << " tds " << tds);
                    const bs::BSR_BlockB<bs::BrentMcMillanAB::Family> block(series, 0, last, limit, tds, 1, depth,
                                                                            is_last);
                    ASSERT_GT(block.size_words, limit);
                    BlockRun run(block);
                    const auto n = run.run<BigFloat>(tds);
                    EXPECT_TRUE(was_truncated<bs::BrentMcMillanAB::Family>(n, limit));
                    EXPECT_LT(log2_error(n[3], Product(n[1], n[2]).f, N[3], mpz_class(N[1] * N[2])), bound);
                    EXPECT_LT(log2_error(n[2], Product(n[1], n[1]).f, N[2], mpz_class(N[1] * N[1])), bound);
                    // N0/N1 carries what comes behind the range, where next to nothing counts any more.
                    EXPECT_TRUE(is_last || log2_error(n[0], n[1], N[0], N[1]) < -32.0);
                }
    }
}

/// Below the limit nothing is cut: the words are those of the exact kind.
TEST(TruncatedSplitting, ShortRangesAreExact) {
    const CubicSeries series(true, 41, 5'000);
    for (const std::uint64_t b : {30U, 101U, 2'000U}) {
        const std::size_t limit = series.size_words(0, b);
        const bs::BSR_BlockB<bs::CommonP2B3::Family> block(series, 0, b, limit, 2, 1, 1);
        BlockRun exact_run(block), truncated_run(block);
        const auto exact = exact_run.run<bs::ExactNumber>(2);
        const auto truncated = truncated_run.run<BigFloat>(2);
        for (std::size_t i = 0; i < 3; ++i) {
            ASSERT_EQ(exact[i].L, truncated[i].L);
            EXPECT_EQ(exact[i].exp, truncated[i].exp);
            EXPECT_EQ(exact[i].sign, truncated[i].sign);
            EXPECT_TRUE(std::equal(exact[i].T, exact[i].T + exact[i].L, truncated[i].T));
        }
    }
}

} // namespace
