// What a status update costs when no refresh is due. Standard output is a pseudo-terminal here, as nothing is
// drawn elsewhere; the results go to standard error.

#include "app/console/linear_console_status.h"

#include <benchmark/benchmark.h>

#include <iostream>
#include <pty.h>
#include <unistd.h>

namespace {

void update_not_due(benchmark::State& state) {
    zvp::LinearConsoleRoot root(79, 3600.0);
    zvp::StatusNode& node = root.begin_task("");
    node.push_cell({'w', "Summing...  "});
    node.update(true);
    for (auto _ : state) node.update();
}
BENCHMARK(update_not_due);

void advance_not_due(benchmark::State& state) {
    zvp::LinearConsoleRoot root(79, 3600.0);
    zvp::StatusIteration& iteration =
        root.begin_task("").make_iteration({'w', "Merging ( "}, 1'000'000, zvp::IterationMode::fraction, true);
    iteration.update(true);
    for (auto _ : state) iteration.advance(1);
}
BENCHMARK(advance_not_due);

} // namespace

int main(int count, char** arguments) {
    int master, slave;
    if (openpty(&master, &slave, nullptr, nullptr, nullptr) != 0) return 1;
    dup2(slave, STDOUT_FILENO);
    benchmark::Initialize(&count, arguments);
    benchmark::ConsoleReporter reporter;
    reporter.SetOutputStream(&std::cerr);
    reporter.SetErrorStream(&std::cerr);
    benchmark::RunSpecifiedBenchmarks(&reporter);
}
