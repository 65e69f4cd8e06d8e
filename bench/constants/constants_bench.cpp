// The constants to their binary results, on one thread and on two, beside MPFR.
//
//     constants_bench [digits=1000000] [threads=1,2] [rounds=3] [only=<name>] [mpfr=1] [phases=1]
//
// Each row prints the least wall time of its rounds. phases=1 prints the event log of the last run.

#include "constants/e/e_sum.h"
#include "constants/pi/pi_plan.h"
#include "constants/roots/root_plans.h"
#include "multiply/contract/multiply_tables.h"
#include "parallel/tasks/framework_config.h"

#include <mpfr.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace {

using zvp::BigFloat;
using zvp::ConstantPlanB;
using zvp::MultiplyTables;
using zvp::wtype;

struct Free {
    void operator()(void* p) const { std::free(p); }
};
using Memory = std::unique_ptr<void, Free>;

/// Touched, so that no page fault is counted.
Memory touched(std::size_t bytes) {
    const std::size_t rounded = (bytes + 4095) / 4096 * 4096;
    Memory memory(std::aligned_alloc(4096, rounded));
    std::fill_n(static_cast<unsigned char*>(memory.get()), rounded, static_cast<unsigned char>(1));
    return memory;
}

double seconds(const std::function<void()>& call) {
    const auto began = std::chrono::steady_clock::now();
    call();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
}

struct Row {
    std::string name;
    std::function<std::unique_ptr<ConstantPlanB>(MultiplyTables&, std::size_t w, std::uint32_t threads)> plan;
    std::function<void(mpfr_t)> mpfr;
};

template <class Plan, class... Arguments>
auto maker(Arguments... before) {
    return [=](MultiplyTables& tables, std::size_t w, std::uint32_t threads) -> std::unique_ptr<ConstantPlanB> {
        return std::make_unique<Plan>(tables, before..., w, threads);
    };
}

std::vector<Row> rows() {
    using zvp::PiPlanB, zvp::PiSeries;
    const auto pi = [](mpfr_t x) { mpfr_const_pi(x, MPFR_RNDZ); };
    const auto e = [](mpfr_t x) {
        mpfr_set_ui(x, 1, MPFR_RNDZ);
        mpfr_exp(x, x, MPFR_RNDZ);
    };
    return {
        {"pi-chudnovsky", maker<PiPlanB>(PiSeries::chudnovsky, false), pi},
        {"pi-ramanujan", maker<PiPlanB>(PiSeries::ramanujan, false), nullptr},
        {"pi-chudnovsky-reduced", maker<PiPlanB>(PiSeries::chudnovsky, true), nullptr},
        {"pi-ramanujan-reduced", maker<PiPlanB>(PiSeries::ramanujan, true), nullptr},
        {"e-exp(1)", maker<zvp::EPlanB>(false), e},
        {"e-exp(-1)", maker<zvp::EPlanB>(true), nullptr},
        {"sqrt(2)", maker<zvp::SqrtPlanB>(wtype{2}), [](mpfr_t x) { mpfr_sqrt_ui(x, 2, MPFR_RNDZ); }},
        {"goldenratio", maker<zvp::GoldenRatioPlanB>(),
         [](mpfr_t x) {
             mpfr_sqrt_ui(x, 5, MPFR_RNDZ);
             mpfr_add_ui(x, x, 1, MPFR_RNDZ);
             mpfr_div_2ui(x, x, 1, MPFR_RNDZ);
         }},
    };
}

/// The least time of `rounds` runs on so many threads.
double time_ours(const Row& row, std::size_t w, std::uint32_t threads, unsigned rounds, bool phases) {
    MultiplyTables tables;
    const auto plan = row.plan(tables, w, threads);
    const Memory table_memory = touched(tables.bytes());
    tables.place(static_cast<std::byte*>(table_memory.get()));
    const std::size_t result_words = plan->result_words();
    const Memory result = touched(result_words * sizeof(wtype));
    const std::uint64_t bytes = plan->memory_bytes();
    const Memory memory = touched(bytes);
    const auto framework = zvp::make_framework_config("pushpool")->make_framework();
    zvp::MultiplyParameters pars;
    pars.tds = threads;
    pars.framework = framework.get();
    pars.tables = &tables;

    double least = INFINITY;
    for (unsigned round = 0; round < rounds; ++round) {
        zvp::EventLog events;
        BigFloat target(static_cast<wtype*>(result.get()), result_words);
        const zvp::AlignedBufferC<64> buffer(memory.get(), bytes);
        least = std::min(least, seconds([&] { plan->run(pars, {nullptr, &events}, target, buffer); }));
        events.log("End");
        if (phases && round + 1 == rounds) std::fputs(events.text().c_str(), stdout);
    }
    std::printf("%-22s %2u threads %10.4f s   %.1f MB\n", row.name.c_str(), threads, least,
                static_cast<double>(bytes + result_words * sizeof(wtype)) * 1e-6);
    std::fflush(stdout);
    return least;
}

void time_mpfr(const Row& row, std::size_t w) {
    mpfr_t x;
    mpfr_init2(x, static_cast<mpfr_prec_t>(32 * w));
    const double time = seconds([&] {
        mpfr_free_cache();
        row.mpfr(x);
    });
    mpfr_clear(x);
    std::printf("%-22s MPFR       %10.4f s\n", row.name.c_str(), time);
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv) {
    std::uint64_t digits = 1'000'000;
    std::string threads = "1,2", only;
    unsigned rounds = 3;
    bool mpfr = false, phases = false;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        const std::size_t mark = argument.find('=');
        const std::string key = argument.substr(0, mark),
                          value = argument.substr(mark == argument.npos ? mark : mark + 1);
        if (key == "digits")
            digits = std::strtoull(value.c_str(), nullptr, 10);
        else if (key == "threads")
            threads = value;
        else if (key == "rounds")
            rounds = static_cast<unsigned>(std::atoi(value.c_str()));
        else if (key == "only")
            only = value;
        else if (key == "mpfr")
            mpfr = value == "1";
        else if (key == "phases")
            phases = value == "1";
        else
            return std::fprintf(stderr, "constants_bench: what is \"%s\"?\n", argv[i]), 1;
    }
    const auto w = static_cast<std::size_t>(static_cast<double>(digits) * std::log2(10.0) / 32) + 6;
    for (const Row& row : rows()) {
        if (!only.empty() && row.name.find(only) == row.name.npos) continue;
        for (std::size_t at = 0; at < threads.size();) {
            time_ours(row, w, static_cast<std::uint32_t>(std::atoi(threads.c_str() + at)), rounds, phases);
            const std::size_t comma = threads.find(',', at);
            at = comma == threads.npos ? threads.size() : comma + 1;
        }
        if (mpfr && row.mpfr) time_mpfr(row, w);
    }
}
