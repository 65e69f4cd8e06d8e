// Reciprocals, quotients and inverse square roots beside MPFR (rounding towards zero) and beside a full product of two
// numbers of as many words, on one thread. Each row times its contestants in turn, several rounds, and prints the least
// time of each; the ratios are those of the least times of one run. Arguments: the decimal digits of each row.

#include "functions/division.h"
#include "functions/invsqrt_float.h"
#include "functions/invsqrt_word.h"
#include "multiply/tables/algorithm_table.h"
#include "multiply/tables/multiply.h"

#include <gmp.h>
#include <mpfr.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <memory>
#include <random>
#include <string_view>
#include <vector>

namespace {

using zvp::BigFloat;
using zvp::wtype;

struct Free {
    void operator()(void* p) const { std::free(p); }
};

std::unique_ptr<std::byte, Free> aligned(std::size_t bytes) {
    return std::unique_ptr<std::byte, Free>(static_cast<std::byte*>(std::aligned_alloc(64, (bytes + 127) / 64 * 64)));
}

/// A random number in [1/2, 1) of n words, here and at MPFR.
struct Operand {
    Operand(std::size_t n, std::uint64_t seed) : words(n) {
        std::mt19937_64 random(seed);
        std::generate(words.begin(), words.end(), [&] { return static_cast<wtype>(random()); });
        words.back() |= 0x8000'0000;
        f = BigFloat(words.data(), n);
        f.L = n;
        f.exp = -static_cast<std::int64_t>(n);
        f.sign = true;
        mpz_t integer;
        mpz_init(integer);
        mpz_import(integer, n, -1, sizeof(wtype), 0, 0, words.data());
        mpfr_init2(m, static_cast<mpfr_prec_t>(32 * n));
        mpfr_set_z_2exp(m, integer, 32 * f.exp, MPFR_RNDZ);
        mpz_clear(integer);
    }
    ~Operand() { mpfr_clear(m); }
    Operand(const Operand&) = delete;
    Operand& operator=(const Operand&) = delete;

    std::vector<wtype> words;
    BigFloat f;
    mpfr_t m;
};

using Call = std::function<void()>;

/// Processor time of this thread: what others do on a busy machine counts only by the caches that they spoil.
double thread_seconds() {
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

double seconds(const Call& call, std::size_t repeats) {
    const double began = thread_seconds();
    for (std::size_t i = 0; i < repeats; ++i) call();
    return (thread_seconds() - began) / static_cast<double>(repeats);
}

/// Everything for numbers of n words, and the calls that are timed.
class Row {
public:
    explicit Row(std::size_t n)
        : p(n), A(n, 1), N(n, 2), reciprocal(n, 1), division(n, 1), square_root(n, 1), word(n, 1), T(2 * n + 64) {
        const auto& table = zvp::algorithm_table<wtype>();
        const std::size_t longest = 2 * n + 64;
        table.ensure_tables(tables, longest);
        table_memory = aligned(tables.bytes());
        tables.place(table_memory.get());
        pars.tables = &tables;
        pars.ML = std::max({table.mSBsize(longest, 1, true), reciprocal.memory_bytes, division.memory_bytes,
                            square_root.memory_bytes, word.memory_bytes});
        scratch = aligned(pars.ML);
        pars.M = scratch.get();
        const std::size_t words = std::max({reciprocal.buffer_words, division.buffer_words, square_root.buffer_words});
        buffer_words.resize(words);
        mpfr_init2(m, static_cast<mpfr_prec_t>(32 * n));
        target = BigFloat(T.data(), T.size());
    }
    ~Row() { mpfr_clear(m); }

    struct Contest {
        const char* name;
        Call ours;
        Call theirs;
    };

    std::vector<Contest> contests() {
        const zvp::LinearWordBuffer buffer{buffer_words.data(), buffer_words.size()};
        return {
            {"product", [this] { zvp::mul(pars, T.data(), A.words.data(), p, N.words.data(), p); },
             [this] { mpfr_mul(m, A.m, N.m, MPFR_RNDZ); }},
            {"1/A", [=, this] { reciprocal.run(pars, nullptr, target, A.f, p, buffer); },
             [this] { mpfr_ui_div(m, 1, A.m, MPFR_RNDZ); }},
            {"N/D", [=, this] { division.run(pars, nullptr, target, N.f, A.f, buffer); },
             [this] { mpfr_div(m, N.m, A.m, MPFR_RNDZ); }},
            {"1/sqrt(A)", [=, this] { square_root.run(pars, nullptr, target, A.f, p, buffer); },
             [this] { mpfr_rec_sqrt(m, A.m, MPFR_RNDZ); }},
            {"1/sqrt(10005)", [=, this] { word.run(pars, nullptr, target, 10'005, p, buffer); },
             [this] {
                 mpfr_set_ui(m, 10'005, MPFR_RNDZ);
                 mpfr_rec_sqrt(m, m, MPFR_RNDZ);
             }},
        };
    }

private:
    const std::size_t p;
    Operand A, N;
    const zvp::Reciprocal_BigFloatR reciprocal;
    const zvp::Division_BigFloatR division;
    const zvp::InvsqrtFloat_BigFloatR square_root;
    const zvp::InvsqrtWord_BigFloatR word;
    std::vector<wtype> T;
    std::vector<std::uint32_t> buffer_words;
    BigFloat target;
    mpfr_t m;
    zvp::MultiplyTables tables;
    std::unique_ptr<std::byte, Free> table_memory, scratch;
    zvp::MultiplyParameters pars;
};

void run(std::size_t digits, bool with_mpfr) {
    const auto p = static_cast<std::size_t>(static_cast<double>(digits) * 3.3219280948873623 / 32) + 1;
    Row row(p);
    auto contests = row.contests();
    const double first = seconds(contests[1].ours, 1);
    const auto repeats = static_cast<std::size_t>(std::max(1.0, 0.002 / first));
    const int rounds = digits < 500'000 ? 41 : digits < 2'000'000 ? 17 : 5;
    std::vector<double> ours(contests.size(), 1e99), theirs(contests.size(), 1e99);
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t k = 0; k < contests.size(); ++k) {
            ours[k] = std::min(ours[k], seconds(contests[k].ours, repeats));
            // MPFR's times are long: fewer rounds of them do.
            if (with_mpfr && round % 8 == 0) theirs[k] = std::min(theirs[k], seconds(contests[k].theirs, 1));
        }
    }
    std::printf("%zu digits, %zu words\n", digits, p);
    for (std::size_t k = 0; k < contests.size(); ++k) {
        std::printf("  %-14s %12.1f us  %5.2f products", contests[k].name, ours[k] * 1e6, ours[k] / ours[0]);
        if (with_mpfr) std::printf("  MPFR %12.1f us  %6.2f times ours", theirs[k] * 1e6, theirs[k] / ours[k]);
        std::printf("\n");
    }
}

} // namespace

int main(int argc, char** argv) {
    std::vector<std::size_t> digits;
    bool with_mpfr = true;
    for (int i = 1; i < argc; ++i) {
        if (std::string_view(argv[i]) == "--without-mpfr")
            with_mpfr = false;
        else
            digits.push_back(std::strtoull(argv[i], nullptr, 10));
    }
    if (digits.empty()) digits = {10'000, 100'000, 1'000'000};
    for (const std::size_t n : digits) run(n, with_mpfr);
}
