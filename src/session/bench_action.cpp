#include "session/bench_action.h"

#include "app/console/unbuilt.h"
#include "app/failure/exceptions.h"
#include "app/notation/typed_values.h"

#include <array>
#include <string_view>

namespace zorvane {

namespace {

constexpr std::string_view bench_name = "Benchmark Pi (action \"bench\")"; // for stop_unbuilt()

using Line = CommandLine::CommandLine;
using Table = CommandLine::OptionTable<BenchRequest>;

struct BenchmarkSize {
    std::string_view name;
    std::uint64_t decimal_digits;
};

constexpr std::array<BenchmarkSize, 16> decimal_sizes{{
    {"25m", 25'000'000},
    {"50m", 50'000'000},
    {"100m", 100'000'000},
    {"250m", 250'000'000},
    {"500m", 500'000'000},
    {"1b", 1'000'000'000},
    {"2.5b", 2'500'000'000},
    {"5b", 5'000'000'000},
    {"10b", 10'000'000'000},
    {"25b", 25'000'000'000},
    {"50b", 50'000'000'000},
    {"100b", 100'000'000'000},
    {"250b", 250'000'000'000},
    {"500b", 500'000'000'000},
    {"1t", 1'000'000'000'000},
    {"2.5t", 2'500'000'000'000},
}};

/// "1M" .. "512M" and "1G" .. "128G": that number of 2^20 or 2^30 digits.
constexpr unsigned power_of_two_sizes = 18;

std::string power_of_two_name(unsigned row) {
    return row < 10 ? std::to_string(1u << row) + "M" : std::to_string(1u << (row - 10)) + "G";
}

std::pair<std::string, Table::Handler> size_row(std::string name, std::uint64_t digits) {
    return {std::move(name), [digits](BenchRequest& request, Line& line) {
                request.decimal_digits = digits;
                line.advance();
            }};
}

std::vector<std::pair<std::string, Table::Handler>> bench_rows() {
    std::vector<std::pair<std::string, Table::Handler>> rows{
        {"-o",
         [](BenchRequest& request, Line& line) {
             line.advance();
             request.output_path = line.take_parameter();
         }},
        {"-od", [](BenchRequest& request,
                   Line& line) { request.output_enabled = CommandLine::read_s64(line.take_value()) != 0; }},
        {"-TD", take_task_decomposition},
        {"-PF", take_framework},
        {"-MA", take_allocator},
    };
    for (const BenchmarkSize& size : decimal_sizes)
        rows.push_back(size_row(std::string(size.name), size.decimal_digits));
    for (unsigned row = 0; row < power_of_two_sizes; ++row)
        rows.push_back(size_row(power_of_two_name(row), std::uint64_t{1} << (20 + row)));
    return rows;
}

} // namespace

const Table& bench_options() {
    static const Table table(bench_rows());
    return table;
}

void bench_action(Line& line) {
    if (line.at_end()) bench_menu();
    BenchRequest request;
    CommandLine::apply_options(bench_options(), request, line);
    if (!request.decimal_digits) throw zvp::InvalidParametersException("", "No benchmark size selected.");
    zvp::stop_unbuilt(bench_name);
}

void bench_menu() { zvp::stop_unbuilt(bench_name); }

} // namespace zorvane
