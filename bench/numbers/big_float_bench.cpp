// BigFloat beside GMP's mpn functions (which know no sign, exponent or precision) and MPFR (rounding towards zero) on
// operands of as many bits. Each row times its contestants in turn, many rounds, and prints the least time of each and
// what it is of BigFloat's.

#include "multiply/contract/multiply_tables.h"
#include "multiply/tables/algorithm_table.h"
#include "numbers/big_float.h"
#include "parallel/tasks/framework_config.h"

#include <benchmark/benchmark.h>
#include <gmp.h>
#include <mpfr.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <random>
#include <vector>

namespace {

using zvp::BigFloat;
using zvp::wtype;

struct Free {
    void operator()(void* p) const { std::free(p); }
};

/// Storage on a cache line of its own.
template <class T>
std::unique_ptr<T[], Free> aligned(std::size_t n) {
    return std::unique_ptr<T[], Free>(static_cast<T*>(std::aligned_alloc(64, (n * sizeof(T) + 127) / 64 * 64)));
}

/// Operands of n words in every contestant's form; the targets hold a whole product.
struct Operands {
    explicit Operands(std::size_t n) : words(n), limbs(static_cast<mp_size_t>((n + 1) / 2)) {
        std::mt19937_64 random(1);
        for (std::size_t k = 0; k < 3; ++k) {
            storage[k] = aligned<wtype>(2 * n + 8);
            std::fill_n(storage[k].get(), 2 * n + 8, wtype{0});
            f[k] = BigFloat(storage[k].get(), 2 * n + 8);
            mpfr_init2(m[k], static_cast<mpfr_prec_t>(32 * n));
            if (k == 0) continue;
            std::generate_n(f[k].T, n, [&] { return static_cast<wtype>(random()); });
            f[k].T[n - 1] |= k == 1 ? 0xC000'0000 : 0x8000'0000;
            f[k].L = n;
            f[k].sign = true;
            mpz_t integer;
            mpz_init(integer);
            mpz_import(integer, n, -1, 4, 0, 0, f[k].T);
            mpfr_set_z(m[k], integer, MPFR_RNDZ);
            mpz_clear(integer);
        }
    }
    ~Operands() {
        for (auto& x : m) mpfr_clear(x);
    }

    mp_ptr limb(std::size_t k) { return reinterpret_cast<mp_ptr>(f[k].buffer); }

    std::size_t words;
    mp_size_t limbs;
    std::unique_ptr<wtype[], Free> storage[3];
    BigFloat f[3];
    mpfr_t m[3];
};

struct Multiplier {
    Multiplier() {
        const std::size_t reach = 200;
        const auto& table = zvp::algorithm_table<wtype>();
        table.ensure_tables(tables, reach);
        table_memory = aligned<std::byte>(tables.bytes());
        tables.place(table_memory.get());
        pars.ML = table.mSBsize(reach, 1, true);
        scratch = aligned<std::byte>(pars.ML);
        pars.M = scratch.get();
        pars.tables = &tables;
    }

    zvp::MultiplyParameters pars;

private:
    zvp::MultiplyTables tables;
    std::unique_ptr<std::byte[], Free> table_memory, scratch;
};

using Call = std::function<void()>;

double nanoseconds(const Call& call, std::size_t repeats) {
    const auto began = std::chrono::steady_clock::now();
    for (std::size_t i = 0; i < repeats; ++i) {
        call();
        benchmark::ClobberMemory();
    }
    const std::chrono::duration<double, std::nano> time = std::chrono::steady_clock::now() - began;
    return time.count() / static_cast<double>(repeats);
}

/// Times `ours` and the peers in turn.
void row(const char* name, std::size_t words, const Call& ours, const Call& mpn, const Call& mpfr) {
    const Call* calls[] = {&ours, &mpn, &mpfr};
    double least[3] = {1e30, 1e30, 1e30};
    const auto repeats = static_cast<std::size_t>(1 + 2e5 / nanoseconds(ours, 10));
    for (int round = 0; round < 60; ++round) {
        for (int i = 0; i < 3; ++i) {
            if (*calls[i]) least[i] = std::min(least[i], nanoseconds(*calls[i], repeats));
        }
    }
    std::printf("%-24s %8zu %12.1f ns", name, words, least[0]);
    for (int i = 1; i < 3; ++i) {
        if (*calls[i]) std::printf("   %s %12.1f ns %6.2f", i == 1 ? "mpn " : "mpfr", least[i], least[i] / least[0]);
    }
    std::printf("\n");
}

void products() {
    Multiplier multiplier;
    for (const std::size_t n : {1, 2, 4, 10, 50, 100}) {
        Operands o(n);
        const auto& pars = multiplier.pars;
        row(
            "set_mul, whole", n, [&] { o.f[0].set_mul(2 * n, pars, o.f[1], o.f[2]); },
            [&] { mpn_mul(o.limb(0), o.limb(1), o.limbs, o.limb(2), o.limbs); }, {});
        row(
            "set_mul, p = n", n, [&] { o.f[0].set_mul(n, pars, o.f[1], o.f[2]); }, {},
            [&] { mpfr_mul(o.m[0], o.m[1], o.m[2], MPFR_RNDZ); });
        row(
            "set_sqr, whole", n, [&] { o.f[0].set_sqr(2 * n, pars, o.f[1]); },
            [&] { mpn_sqr(o.limb(0), o.limb(1), o.limbs); }, {});
    }
}

void linear(std::size_t n, const zvp::ParallelContext& ctx) {
    Operands o(n);
    row(
        "set_add", n, [&] { o.f[0].set_add(n, ctx, o.f[1], o.f[2]); },
        [&] { mpn_add_n(o.limb(0), o.limb(1), o.limb(2), o.limbs); },
        [&] { mpfr_add(o.m[0], o.m[1], o.m[2], MPFR_RNDZ); });
    row(
        "set_sub", n, [&] { o.f[0].set_sub(n, ctx, o.f[1], o.f[2]); },
        [&] { mpn_sub_n(o.limb(0), o.limb(1), o.limb(2), o.limbs); },
        [&] { mpfr_sub(o.m[0], o.m[1], o.m[2], MPFR_RNDZ); });
    row(
        "set_mul_uW", n, [&] { o.f[0].set_mul_uW(n, ctx, o.f[1], wtype{0x8765'4321}); },
        [&] { mpn_mul_1(o.limb(0), o.limb(1), o.limbs, 0x8765'4321); },
        [&] { mpfr_mul_ui(o.m[0], o.m[1], 0x8765'4321, MPFR_RNDZ); });
    row(
        "set_div_sW", n, [&] { o.f[0].set_div_sW(n - 2, ctx, o.f[1], 640'320); },
        [&] { mpn_divrem_1(o.limb(0), 0, o.limb(1), o.limbs, 640'320); },
        [&] { mpfr_div_ui(o.m[0], o.m[1], 640'320, MPFR_RNDZ); });
}

} // namespace

int main() {
    const auto framework = zvp::make_framework_config("pushpool")->make_framework();
    std::printf("operation                   words     BigFloat        peers: time, and in units of BigFloat's\n");
    products();
    linear(100, {});
    linear(1'000'000, {});
    std::printf("two tasks:\n");
    linear(1'000'000, {2, framework.get()});
}
