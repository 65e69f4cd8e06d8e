#pragma once
// Conversions on storage of exactly the planned sizes, and the true digits by GMP.

#include "functions/functions_support.h"
#include "radix/direct_convert.h"

#include <gmpxx.h>

#include <vector>

namespace test {

using Digits = std::vector<std::uint32_t>;

/// The tables, a framework and storage of a plan.
template <class Plan>
struct PlanRun {
    explicit PlanRun(const Plan& plan, std::size_t less = 0) : memory(plan.total_bytes - less) {
        plan.ensure_tables(tables);
        table_memory = std::make_unique<Scratch>(tables.bytes());
        tables.place(table_memory->p);
        pars.framework = framework.get();
        pars.tables = &tables;
    }

    zvp::AlignedBufferC<64> buffer() { return {memory.p, memory.bytes}; }

    std::unique_ptr<zvp::ParallelFramework> framework = zvp::make_framework_config("pushpool")->make_framework();
    zvp::MultiplyTables tables;
    std::unique_ptr<Scratch> table_memory;
    Scratch memory;
    zvp::MultiplyParameters pars;
};

/// The first n words of |x|'s fraction in radix R, least significant first.
inline Digits converted(const BigFloat& x, std::uint32_t R, std::size_t n, std::uint32_t tds, std::size_t plan_words,
                        zvp::StatusNode* status = nullptr) {
    const zvp::DirectConvertB plan(R, plan_words, tds);
    PlanRun<zvp::DirectConvertB> run(plan);
    run.pars.tds = tds;
    constexpr std::uint32_t guard = 0xDEAD'BEEF;
    Digits out(n + 2, guard);
    plan.run(run.pars, status, out.data() + n + 1, n, x, run.buffer());
    EXPECT_TRUE(run.memory.guards_are_intact());
    EXPECT_EQ(out.front(), guard);
    EXPECT_EQ(out.back(), guard);
    return {out.begin() + 1, out.end() - 1};
}

/// floor(frac(|x|) R^n).
inline mpz_class scaled_fraction(const BigFloat& x, std::uint32_t R, std::size_t n) {
    mpz_class power;
    mpz_ui_pow_ui(power.get_mpz_t(), R, n);
    const mpq_class exact = in_units(x, 0);
    const mpz_class whole = exact.get_num() / exact.get_den();
    const mpq_class scaled = (exact - whole) * power;
    return scaled.get_num() / scaled.get_den();
}

inline mpz_class value_of(const Digits& digits, std::uint32_t R) {
    mpz_class value = 0;
    for (std::size_t i = digits.size(); i-- > 0;) value = value * R + digits[i];
    return value;
}

} // namespace test
