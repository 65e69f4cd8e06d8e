#pragma once
// Series of every family with sums by GMP term after term, and runs of blocks on storage of exactly the planned size
// between guard words.

#include "numbers/exact_support.h"
#include "series/double_double/size_units.h"
#include "series/double_double/stirling.h"
#include "series/splitting/block.h"

#include <gmpxx.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <vector>

namespace test {

namespace bs = zvp::BinarySplitting;
using zvp::BigFloat;
using zvp::DoubleDouble;
using zvp::wtype;

/// Writes a natural number to leaf storage.
inline void set_leaf(bs::LeafInt& target, const mpz_class& value) {
    std::size_t n = 0;
    const std::size_t needed = (mpz_sizeinbase(value.get_mpz_t(), 2) + 31) / 32;
    if (needed > target.capacity) throw zvp::BufferTooSmallException("set_leaf()", target.capacity, needed);
    mpz_export(target.T, &n, -1, sizeof(wtype), 0, 0, value.get_mpz_t());
    target.L = n;
    target.hash = residue_of(value);
}

/// The same for a signed number times W^exp.
inline void set_exact(bs::ExactNumber& target, const mpz_class& value, std::int64_t exp = 0) {
    bs::LeafInt magnitude(target.buffer, target.capacity);
    const mpz_class absolute = abs(value);
    set_leaf(magnitude, absolute);
    target.T = target.buffer;
    target.L = magnitude.L;
    target.exp = magnitude.L > 0 ? exp : 0;
    target.sign = value > 0;
    target.hash = residue_of(value, 32 * exp);
}

/// Sizes of the form degree g(x) + q x, and precision that falls by c nats a term.
template <class Base>
class FactorialSized : public Base {
public:
    double degree = 0, q = 0, c = 1;

    double size_at_double(std::uint64_t x) const override {
        const auto t = static_cast<double>(x);
        return degree * zvp::stirling(t) + q * t;
    }
    DoubleDouble size_at(std::uint64_t x) const override {
        const DoubleDouble t = DoubleDouble::from_integer(x);
        return DoubleDouble(degree) * zvp::stirling(t) + DoubleDouble(q) * t;
    }
    DoubleDouble log_remaining(std::uint64_t x) const override {
        return DoubleDouble::from_integer(this->N - x) * DoubleDouble(c);
    }
    std::size_t precision_words(std::uint64_t x) const override {
        return static_cast<std::size_t>(truncated_sum(log_remaining(x) * zvp::words_per_nat())) + 1;
    }
};

/// The numbers of a term, with signs.
struct Term {
    mpz_class P, Q, R;
};

inline mpz_class integer_of(std::uint64_t k) { return mpz_class(static_cast<unsigned long>(k)); }

/// A Chudnovsky-like series: leaves by the recursion over short integers.
class CubicSeries final : public FactorialSized<bs::CommonP2B3::BasicIntSeries> {
public:
    explicit CubicSeries(bool alternating_, std::uint32_t leaf_terms_ = 41, std::uint64_t terms = 100'000,
                         std::uint64_t short_terms = 0)
        : short_end(short_terms) {
        N = terms;
        leaf_terms = leaf_terms_;
        split_slack = 8;
        alternating = alternating_;
        degree = 3.0;
        q = 36.93111616078458;
        c = 32.65445004176852;
    }

    Term term(std::uint64_t index) const {
        const mpz_class k = integer_of(index);
        Term t;
        t.R = (2 * k - 1) * (6 * k - 5) * (6 * k - 1);
        t.P = t.R * (545140134 * k + 13591409);
        t.Q = k * k * k * mpz_class("10939058860032000");
        if (alternating && index % 2 != 0) t.P = -t.P;
        return t;
    }

    void leaf(bs::LeafInt& P, bs::LeafInt& Q, bs::LeafInt& R, std::uint64_t k) const override {
        const Term t = term(k);
        set_leaf(P, abs(t.P));
        set_leaf(Q, t.Q);
        set_leaf(R, t.R);
    }

    bool short_leaf(bs::CommonP2B3::ShortTerm& limbs, std::uint64_t k) const override {
        if (k > short_end) return false;
        const Term t = term(k);
        limbs = {};
        mpz_export(limbs.P, nullptr, -1, 8, 0, 0, t.P.get_mpz_t());
        mpz_export(limbs.Q, nullptr, -1, 8, 0, 0, t.Q.get_mpz_t());
        mpz_export(limbs.R, nullptr, -1, 8, 0, 0, t.R.get_mpz_t());
        return true;
    }

    const std::uint64_t short_end; // the last term that is given in limbs
};

/// A slowly converging one with signs that follow no rule and leaves of single terms that are set as a whole; some terms
/// vanish.
class RoughSeries final : public FactorialSized<bs::CommonP2B3::Series> {
public:
    explicit RoughSeries(std::uint64_t terms = 100'000) {
        N = terms;
        leaf_terms = 2;
        split_slack = 24;
        degree = 2.0;
        q = std::log(12.0);
        c = std::log(1.5);
    }

    Term term(std::uint64_t index) const {
        const mpz_class k = integer_of(index);
        const std::uint64_t mixed = (index * 0x9E3779B97F4A7C15U) >> 60;
        Term t;
        t.R = (2 * k + 1) * (4 * k - 1);
        t.P = mixed % 5 == 0 ? mpz_class(0) : mpz_class(7 * k + 3);
        t.Q = 4 * (3 * k + 2) * k;
        if (mixed % 2 == 0) t.P = -t.P;
        if (mixed % 3 == 0) t.R = -t.R;
        return t;
    }

    void BSR_E(const zvp::MultiplyParameters&, bs::ExactNumber& P, bs::ExactNumber& Q, bs::ExactNumber& R,
               bs::ExactNumber&, std::uint64_t a, std::uint64_t b) const override {
        ASSERT_EQ(b - a, 1U);
        const Term t = term(b);
        set_exact(P, t.P);
        set_exact(Q, t.Q);
        set_exact(R, t.R);
    }
};

/// Sum of +-1/(a+2) .. k, leaves of whole ranges.
class ExponentialSeries final : public FactorialSized<bs::Hyperdescent::Series> {
public:
    explicit ExponentialSeries(bool alternating_, std::uint64_t terms = 100'000) {
        N = terms;
        leaf_terms = 16;
        split_slack = 22;
        alternating = alternating_;
        degree = 1.0;
        c = 10.0;
    }

    /// Less than the terms give, so that the whole is longer than its precision.
    DoubleDouble log_remaining(std::uint64_t x) const override {
        const DoubleDouble rest = size_at(N) - size_at(x) - DoubleDouble(0.3) * size_at(N);
        return rest < DoubleDouble() ? DoubleDouble() : rest;
    }

    Term term(std::uint64_t index) const { return {alternating && index % 2 == 0 ? -1 : 1, integer_of(index + 1), 1}; }

    void BSR_E(const zvp::MultiplyParameters&, bs::ExactNumber& P, bs::ExactNumber& Q, std::uint64_t a,
               std::uint64_t b) const override {
        ASSERT_TRUE(b - a < leaf_terms);
        mpz_class p = 0, q_product = 1;
        for (std::uint64_t k = a + 1; k <= b; ++k) {
            const Term t = term(k);
            p = p * t.Q + t.P;
            q_product *= t.Q;
        }
        set_exact(P, p);
        set_exact(Q, q_product);
    }
};

/// Sum of +-(5k + 1)/((2k + 1)(3k + 1)) 2^(-32 e), with e rising by a word at each term or each third one.
class PowerSeries final : public FactorialSized<bs::BinaryBBP::Series> {
public:
    explicit PowerSeries(std::uint64_t words_in_three_terms_, std::uint64_t terms = 100'000)
        : words_in_three_terms(words_in_three_terms_) {
        N = terms;
        leaf_terms = 2;
        split_slack = 30;
        degree = 2.0;
        c = 32 * std::log(2.0) / 3 * static_cast<double>(words_in_three_terms);
        q = std::log(6.0) + c;
    }

    std::int64_t exponent(std::uint64_t k) const { return -static_cast<std::int64_t>(k * words_in_three_terms / 3); }

    Term term(std::uint64_t index) const {
        const mpz_class k = integer_of(index);
        Term t{5 * k + 1, (2 * k + 1) * (3 * k + 1), 1};
        if (index % 2 == 0) t.P = -t.P;
        return t;
    }

    void BSR_E(const zvp::MultiplyParameters&, bs::ExactNumber& P, bs::ExactNumber& Q, bs::ExactNumber&,
               std::uint64_t a, std::uint64_t b) const override {
        ASSERT_EQ(b - a, 1U);
        const Term t = term(b);
        set_exact(P, t.P, exponent(b));
        set_exact(Q, t.Q);
    }

private:
    std::uint64_t words_in_three_terms;
};

/// n = 2^k: t(x) = (n^x / x!)^2.
class BesselSeries final : public bs::BrentMcMillanAB::Series {
public:
    BesselSeries(std::uint32_t k_, std::uint64_t terms) : k(k_) {
        N = terms;
        leaf_terms = 2;
        split_slack = 42;
    }

    /// g(x) three times, and the growth of n^(2x)/x!^2 up to its peak.
    template <class Real>
    Real size(std::uint64_t x) const {
        const std::uint64_t m = std::min(x, std::uint64_t{1} << k);
        return Real(3.0) * zvp::stirling(real<Real>(x)) + growth<Real>(m);
    }
    double size_at_double(std::uint64_t x) const override { return size<double>(x); }
    DoubleDouble size_at(std::uint64_t x) const override { return size<DoubleDouble>(x); }
    DoubleDouble log_remaining(std::uint64_t x) const override {
        return growth<DoubleDouble>(std::max(x, std::uint64_t{1} << k)) - growth<DoubleDouble>(N);
    }
    std::size_t precision_words(std::uint64_t x) const override {
        return static_cast<std::size_t>(truncated_sum(log_remaining(x) * zvp::words_per_nat())) + 2;
    }

    void BSR_E(const zvp::MultiplyParameters&, bs::BrentMcMillanAB::NumbersOf<bs::ExactNumber>& n, std::uint64_t a,
               std::uint64_t b) const override {
        ASSERT_EQ(b - a, 1U);
        const std::uint64_t bits = 2 * k * b;
        const mpz_class power = mpz_class(1) << static_cast<mp_bitcnt_t>(bits % 32);
        set_exact(n[bs::BrentMcMillanAB::N0], 1);
        set_exact(n[bs::BrentMcMillanAB::N1], integer_of(b));
        set_exact(n[bs::BrentMcMillanAB::N2], power, static_cast<std::int64_t>(bits / 32));
        set_exact(n[bs::BrentMcMillanAB::N3], power, static_cast<std::int64_t>(bits / 32));
    }

    const std::uint32_t k;

private:
    template <class Real>
    static Real real(std::uint64_t x) {
        if constexpr (std::is_same_v<Real, double>)
            return static_cast<double>(x);
        else
            return DoubleDouble::from_integer(x);
    }
    template <class Real>
    Real growth(std::uint64_t m) const {
        return Real(2.0) * (Real(k * std::log(2.0)) * real<Real>(m) - zvp::stirling(real<Real>(m)));
    }
};

/// Memory from a multiple of 64 bytes on, with guards around it.
class GuardedMemory {
public:
    explicit GuardedMemory(std::size_t bytes_) : bytes(bytes_), memory(aligned(bytes_)) {
        std::fill(memory.get(), memory.get() + bytes + 2 * guard, pattern);
    }

    std::byte* data() const { return memory.get() + guard; }
    bool is_intact() const {
        const auto intact = [](std::byte x) { return x == pattern; };
        return std::all_of(memory.get(), data(), intact) && std::all_of(data() + bytes, data() + bytes + guard, intact);
    }

private:
    static constexpr std::size_t guard = 256;
    static constexpr std::byte pattern{0xA5};
    struct Free {
        void operator()(std::byte* p) const { std::free(p); }
    };

    static std::unique_ptr<std::byte, Free> aligned(std::size_t n) {
        return std::unique_ptr<std::byte, Free>(
            static_cast<std::byte*>(std::aligned_alloc(64, (n + 2 * guard + 63) / 64 * 64)));
    }

    std::size_t bytes;
    std::unique_ptr<std::byte, Free> memory;
};

/// A block with the memory of its plan; `missing` tells what is held back.
template <class Family>
class BlockRun {
public:
    using Block = bs::BSR_BlockB<Family>;
    template <class Number>
    using Numbers = typename Family::template Numbers<Number>;

    struct Missing {
        std::size_t number_words = 0, scratch_number_words = 0, scratch_bytes = 0;
    };

    explicit BlockRun(const Block& block_, Missing missing = {})
        : block(block_),
          number_words(block.plan.number_words - missing.number_words),
          scratch_words(block.plan.scratch_number_words - missing.scratch_number_words) {
        for (std::size_t i = 0; i < Family::numbers; ++i)
            numbers.push_back(std::make_unique<GuardedMemory>(capacity(i) * sizeof(wtype)));
        pars.ML = block.plan.scratch_bytes - missing.scratch_bytes;
        scratch = std::make_unique<GuardedMemory>(pars.ML);
        block.ensure_tables(tables);
        table_memory = std::make_unique<GuardedMemory>(tables.bytes());
        tables.place(table_memory->data());
        pars.tables = &tables;
        pars.M = scratch->data();
        pars.framework = framework.get();
    }

    template <class Number>
    Numbers<Number> run(std::uint32_t tds, zvp::StatusNode* status = nullptr) {
        Numbers<Number> targets;
        for (std::size_t i = 0; i < Family::numbers; ++i)
            targets[i] = Number(reinterpret_cast<wtype*>(numbers[i]->data()), capacity(i));
        pars.tds = tds;
        block.run(pars, status, targets);
        EXPECT_TRUE(scratch->is_intact());
        for (const auto& memory : numbers) EXPECT_TRUE(memory->is_intact());
        return targets;
    }

    zvp::MultiplyParameters pars;

private:
    std::size_t capacity(std::size_t i) const { return i < Family::results ? number_words : scratch_words; }

    const Block& block;
    std::size_t number_words, scratch_words;
    std::vector<std::unique_ptr<GuardedMemory>> numbers;
    std::unique_ptr<GuardedMemory> scratch, table_memory;
    zvp::MultiplyTables tables;
    std::unique_ptr<zvp::ParallelFramework> framework = zvp::make_framework_config("pushpool")->make_framework();
};

/// A block's exact results by GMP: numbers times W^exp, exp being the same for all ranges of a series or told by `exp`.
struct ExactSum {
    std::vector<mpz_class> numbers;
    std::vector<std::int64_t> exps;
};

template <class Series>
ExactSum sum_by_gmp(const Series& series, std::uint64_t a, std::uint64_t b) {
    mpz_class P = 0, Q = 1, R = 1;
    for (std::uint64_t k = a + 1; k <= b; ++k) {
        const Term t = series.term(k);
        P = P * t.Q + R * t.P;
        Q *= t.Q;
        R *= t.R;
    }
    if constexpr (std::is_base_of_v<bs::CommonP2B3::Series, Series>)
        return {{P, Q, R}, {0, 0, 0}};
    else
        return {{P, Q}, {0, 0}};
}

inline ExactSum sum_by_gmp(const PowerSeries& series, std::uint64_t a, std::uint64_t b) {
    const std::int64_t lowest = series.exponent(b);
    mpz_class P = 0, Q = 1;
    for (std::uint64_t k = a + 1; k <= b; ++k) {
        const Term t = series.term(k);
        const auto bits = static_cast<mp_bitcnt_t>(32 * (series.exponent(k) - lowest));
        P = P * t.Q + ((t.P * Q) << bits);
        Q *= t.Q;
    }
    return {{P, Q}, {lowest, 0}};
}

inline ExactSum sum_by_gmp(const BesselSeries& series, std::uint64_t a, std::uint64_t b) {
    mpz_class n0 = 0, n1 = 1, n2 = 0, n3 = 0;
    for (std::uint64_t x = a + 1; x <= b; ++x) {
        const mpz_class k = integer_of(x);
        const mpz_class power = mpz_class(1) << static_cast<mp_bitcnt_t>(2 * series.k * x);
        // a = the sum so far, b = the term (1, x, n^2x, n^2x)
        const mpz_class k2 = k * k;
        n3 = n3 * k2 * k + n0 * k * power + n1 * power;
        n2 = n2 * k2 + power;
        n0 = n0 * k + n1;
        n1 = n1 * k;
    }
    return {{n0, n1, n2, n3}, {0, 0, 0, 0}};
}

/// Every result is the sum's, its fields fit its storage, and its hash is right.
template <class Numbers>
void expect_exact(const Numbers& numbers, const ExactSum& sum, std::size_t results) {
    for (std::size_t i = 0; i < results; ++i) {
        SCOPED_TRACE("number " + std::to_string(i));
        const bs::ExactNumber& f = numbers[i];
        ASSERT_TRUE(f.T >= f.buffer && f.T + f.L <= f.buffer + f.capacity);
        EXPECT_TRUE(f.L == 0 || f.T[f.L - 1] != 0);
        const std::int64_t unit = std::min(f.exp, sum.exps[i]);
        const mpz_class expected = sum.numbers[i] << static_cast<mp_bitcnt_t>(32 * (sum.exps[i] - unit));
        EXPECT_TRUE(in_units(f, unit) == expected);
        EXPECT_EQ(zvp::normalize_hash(f.hash), residue_of(sum.numbers[i], 32 * sum.exps[i]));
        EXPECT_EQ(f.residue({}), zvp::normalize_hash(f.hash));
    }
}

} // namespace test
