#pragma once
// Operands at awkward places, runs on storage of exactly the planned sizes between guards, and true values by MPFR.

#include "app/console/status.h"
#include "functions/division.h"
#include "functions/invsqrt_float.h"
#include "functions/invsqrt_word.h"
#include "numbers/big_float_support.h"

#include <gtest/gtest.h>
#include <mpfr.h>

#include <algorithm>
#include <cmath>
#include <functional>

namespace test {

/// A value of MPFR's.
struct Real {
    explicit Real(mpfr_prec_t bits) {
        mpfr_set_emin(mpfr_get_emin_min());
        mpfr_set_emax(mpfr_get_emax_max());
        mpfr_init2(x, bits);
    }
    Real(const Real&) = delete;
    Real& operator=(const Real&) = delete;
    ~Real() { mpfr_clear(x); }

    mpfr_t x;
};

/// f, exactly.
inline void set(Real& real, const BigFloat& f) {
    mpfr_set_prec(real.x, static_cast<mpfr_prec_t>(32 * f.L + 32));
    mpfr_set_z_2exp(real.x, integer(f.T, f.L).get_mpz_t(), 32 * f.exp, MPFR_RNDN);
    if (f.L > 0 && !f.sign) mpfr_neg(real.x, real.x, MPFR_RNDN);
}

/// Of a true value, well beyond the words of a result.
inline mpfr_prec_t bits_for(std::size_t p) { return static_cast<mpfr_prec_t>(32 * p + 256); }

/// Storage of exactly `bytes` bytes at a multiple of 64, with guards on both sides.
class Scratch {
public:
    explicit Scratch(std::size_t bytes_) : bytes(bytes_), memory(bytes_ + 3 * guard, std::byte{pattern}) {
        const auto address = reinterpret_cast<std::uintptr_t>(memory.data()) + guard;
        p = memory.data() + guard + (guard - address % guard) % guard;
    }

    bool guards_are_intact() const {
        const auto intact = [](std::byte x) { return x == std::byte{pattern}; };
        return std::all_of(memory.data(), static_cast<const std::byte*>(p), intact)
               && std::all_of(static_cast<const std::byte*>(p) + bytes, memory.data() + memory.size(), intact);
    }

    const std::size_t bytes;
    std::byte* p;

private:
    static constexpr std::size_t guard = 64;
    static constexpr unsigned char pattern = 0xA5;
    std::vector<std::byte> memory;
};

/// Tables for products of up to `reach` words; the scratch comes from elsewhere.
class Products {
public:
    explicit Products(std::size_t reach) {
        zvp::ensure_product_tables(tables, reach);
        memory = std::make_unique<Scratch>(tables.bytes());
        tables.place(memory->p);
        pars.framework = framework.get();
        pars.tables = &tables;
    }

    zvp::MultiplyParameters pars;

private:
    std::unique_ptr<zvp::ParallelFramework> framework = zvp::make_framework_config("pushpool")->make_framework();
    zvp::MultiplyTables tables;
    std::unique_ptr<Scratch> memory;
};

/// One run: the plan's sizes, and how it is called.
struct Planned {
    std::size_t result_capacity; // what the interface demands
    zvp::IterationSizes sizes;
    std::function<void(const zvp::MultiplyParameters&, zvp::StatusNode*, BigFloat&, zvp::LinearWordBuffer)> run;
};

/// What a run works on: exactly as much as planned, less `less_words` of buffer or `less_lines` of memory.
struct Storage {
    explicit Storage(const Planned& planned, std::size_t less_result = 0, std::size_t less_words = 0,
                     std::size_t less_lines = 0)
        : result(planned.result_capacity - less_result),
          buffer((planned.sizes.buffer_words - less_words) * sizeof(zvp::wtype)),
          memory(planned.sizes.memory_bytes - 64 * less_lines) {}

    void run(const Planned& planned, zvp::MultiplyParameters pars, zvp::StatusNode* status = nullptr) {
        pars.M = memory.p;
        pars.ML = memory.bytes;
        planned.run(pars, status, result.f, words());
    }

    zvp::LinearWordBuffer words() {
        return {reinterpret_cast<std::uint32_t*>(buffer.p), buffer.bytes / sizeof(std::uint32_t)};
    }

    void expect_intact() const {
        expect_sound(result);
        EXPECT_TRUE(buffer.guards_are_intact());
        EXPECT_TRUE(memory.guards_are_intact());
    }

    Number result;
    Scratch buffer;
    Scratch memory;
};

inline Planned reciprocal_of(const BigFloat& A, std::size_t p, std::uint32_t tds) {
    const zvp::Reciprocal_BigFloatR plan(p, tds);
    return {p + 3, plan, [plan, &A, p](const auto& pars, zvp::StatusNode* status, BigFloat& T, auto buffer) {
                plan.run(pars, status, T, A, p, buffer);
            }};
}

inline Planned quotient_of(const BigFloat& N, const BigFloat& D, std::size_t p, std::uint32_t tds) {
    const zvp::Division_BigFloatR plan(p, tds);
    return {p + 2, plan, [plan, &N, &D](const auto& pars, zvp::StatusNode* status, BigFloat& T, auto buffer) {
                plan.run(pars, status, T, N, D, buffer);
            }};
}

inline Planned invsqrt_of(const BigFloat& A, std::size_t p, std::uint32_t tds) {
    const zvp::InvsqrtFloat_BigFloatR plan(p, tds);
    return {p + 4, plan, [plan, &A, p](const auto& pars, zvp::StatusNode* status, BigFloat& T, auto buffer) {
                plan.run(pars, status, T, A, p, buffer);
            }};
}

inline Planned invsqrt_of(zvp::wtype x, std::size_t p, std::uint32_t tds) {
    const zvp::InvsqrtWord_BigFloatR plan(p, tds);
    return {p + 4, plan, [plan, x, p](const auto& pars, zvp::StatusNode* status, BigFloat& T, auto buffer) {
                plan.run(pars, status, T, x, p, buffer);
            }};
}

inline void true_reciprocal(Real& value, const BigFloat& A, std::size_t p) {
    Real a(2);
    set(a, A);
    mpfr_set_prec(value.x, bits_for(p));
    mpfr_ui_div(value.x, 1, a.x, MPFR_RNDN);
}

inline void true_quotient(Real& value, const BigFloat& N, const BigFloat& D, std::size_t p) {
    Real n(2), d(2);
    set(n, N);
    set(d, D);
    mpfr_set_prec(value.x, bits_for(p));
    mpfr_div(value.x, n.x, d.x, MPFR_RNDN);
}

inline void true_invsqrt(Real& value, const BigFloat& A, std::size_t p) {
    Real a(2);
    set(a, A);
    mpfr_set_prec(value.x, bits_for(p));
    mpfr_rec_sqrt(value.x, a.x, MPFR_RNDN);
}

/// Of a result T at precision p: |value| - |T| in units of T[0], and as a part of the value in units of W^-p.
struct Error {
    double units;
    double relative;
};

inline Error error_of(const BigFloat& T, const Real& value, std::size_t p) {
    Real t(2), difference(64), unit(64);
    set(t, T);
    EXPECT_EQ(mpfr_sgn(t.x), mpfr_sgn(value.x));
    mpfr_sub(difference.x, value.x, t.x, MPFR_RNDN);
    if (mpfr_sgn(value.x) < 0) mpfr_neg(difference.x, difference.x, MPFR_RNDN);
    mpfr_mul_2si(unit.x, difference.x, -32 * T.exp, MPFR_RNDN);
    mpfr_div(difference.x, difference.x, value.x, MPFR_RNDN);
    mpfr_mul_2ui(difference.x, difference.x, 32 * p, MPFR_RNDN);
    return {mpfr_get_d(unit.x, MPFR_RNDN), std::fabs(mpfr_get_d(difference.x, MPFR_RNDN))};
}

/// Operands for precision p: short and long ones, powers of W, numbers next to one on both sides, runs of ones and
/// zeros.
inline std::vector<Number> awkward_operands(std::mt19937_64& random, std::size_t p, bool negative = true) {
    std::vector<Number> operands;
    const auto add = [&](const Words& words, std::int64_t exp) {
        operands.emplace_back(words, exp, !(negative && random() % 3 == 0));
    };
    const std::size_t lengths[] = {1, 2, p / 2 + 1, p + 1, p + 2, p + 3, 2 * p + 5};
    for (const std::size_t n : lengths) add(random_words(random, n), static_cast<std::int64_t>(random() % 9) - 5);
    for (const std::int64_t exp : {0, 1, -1, 7}) add({1}, exp);
    for (const std::size_t n : {std::size_t{1}, p / 2 + 1, p + 2, p + 9}) {
        const auto below = -static_cast<std::int64_t>(n);
        add(Words(n, ones), below);
        Words above(n + 1, 0);
        above[n] = 1;
        above[0] = 1;
        add(above, below);
    }
    const std::int64_t far = std::int64_t{1} << 40;
    add(random_words(random, p + 2), far + 1);
    add(random_words(random, p + 2), -far);
    add({0x8000'0000}, -1);
    add({0, 0, 0x8000'0000}, -3);
    add({3}, 0);
    add({ones, 0, ones}, -2);
    return operands;
}

} // namespace test
