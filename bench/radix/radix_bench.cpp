// Decimal digits from a binary fraction, beside GMP's mpz_get_str, and the proof of the conversion. Wall times, the best of
// some runs of each contestant in turn. Arguments: the decimal digits of each row; --tasks=<n>; --no-gmp.

#include "parallel/tasks/framework_config.h"
#include "radix/direct_convert.h"
#include "radix/verify_conversion.h"

#include <gmp.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

using zvp::wtype;

constexpr std::uint32_t billion = 1'000'000'000;

struct Free {
    void operator()(void* p) const { std::free(p); }
};

std::unique_ptr<std::byte, Free> aligned(std::size_t bytes) {
    return std::unique_ptr<std::byte, Free>(static_cast<std::byte*>(std::aligned_alloc(64, (bytes + 127) / 64 * 64)));
}

template <class Call>
double seconds(const Call& call) {
    const auto began = std::chrono::steady_clock::now();
    call();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
}

void measure(std::uint64_t digits, std::uint32_t tasks, bool beside_gmp) {
    const std::uint64_t N = digits / 9 + 3, words = zvp::radix_words(billion, N) + 4;
    std::vector<wtype> x(words);
    std::mt19937_64 random(digits);
    std::generate(x.begin(), x.end(), [&] { return static_cast<wtype>(random()); });
    zvp::BigFloat f(x.data(), words);
    f.L = words;
    f.exp = -static_cast<std::int64_t>(words);
    f.sign = true;

    const zvp::DirectConvertB plan(billion, N, tasks);
    const zvp::VerifyB proof(billion, N, tasks, false);
    zvp::MultiplyTables tables;
    plan.ensure_tables(tables);
    proof.ensure_tables(tables);
    const auto table_memory = aligned(tables.bytes());
    tables.place(table_memory.get());
    const auto framework = zvp::make_framework_config("pushpool")->make_framework();
    zvp::MultiplyParameters pars;
    pars.tds = tasks;
    pars.framework = framework.get();
    pars.tables = &tables;
    const std::size_t bytes = std::max(plan.total_bytes, proof.total_bytes);
    const auto memory = aligned(bytes);
    std::vector<std::uint32_t> out(N);

    double convert = 1e9, verify = 1e9, gmp = 1e9;
    for (int round = 0; round < (digits > 20'000'000 ? 2 : 5); ++round) {
        convert = std::min(convert, seconds([&] {
                               plan.run(pars, nullptr, out.data() + N, N, f, {memory.get(), bytes});
                           }));
        verify = std::min(verify, seconds([&] { proof.hash_binary(pars, nullptr, f, N, {memory.get(), bytes}); }));
        if (!beside_gmp) continue;
        mpz_t z;
        mpz_init(z);
        mpz_import(z, words, -1, sizeof(wtype), 0, 0, x.data());
        std::string text(digits + digits / 50 + 100, ' ');
        gmp = std::min(gmp, seconds([&] { mpz_get_str(text.data(), 10, z); }));
        mpz_clear(z);
    }
    std::printf("%12llu digits, %u tasks: convert %.4f s, prove %.4f s, memory %.2f bytes/digit",
                static_cast<unsigned long long>(digits), tasks, convert, verify,
                static_cast<double>(plan.total_bytes) / static_cast<double>(digits));
    if (beside_gmp) std::printf(", GMP %.4f s (%.1f x)", gmp, gmp / convert);
    std::printf("\n");
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv) {
    std::uint32_t tasks = 1;
    bool gmp = true;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument.starts_with("--tasks="))
            tasks = static_cast<std::uint32_t>(std::strtoul(argv[i] + 8, nullptr, 10));
        else if (argument == "--no-gmp")
            gmp = false;
        else
            measure(std::strtoull(argv[i], nullptr, 10), tasks, gmp);
    }
}
