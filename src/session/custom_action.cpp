#include "session/custom_action.h"

#include "app/console/unbuilt.h"
#include "app/console/value_parsers.h"
#include "app/failure/exceptions.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace zorvane {

namespace {

using Line = CommandLine::CommandLine;

constexpr std::array<std::string_view, 13> constant_names{"sqrt",  "goldenratio", "e",       "pi",      "log",
                                                          "apery", "zeta3",       "zeta(3)", "catalan", "lemniscate",
                                                          "gamma", "brent",       "custom"};

void take_mode(CustomRequest& request, Line& line) {
    if (line.value() != "ram" && line.value() != "swap")
        throw zvp::InvalidParametersException("", "Invalid Mode: " + line.value());
    request.swap_mode = line.take_value() == "swap";
}

void take_output_path(CustomRequest& request, Line& line) {
    line.advance();
    request.output_path = line.take_parameter();
}

void take_compression(CustomRequest& request, Line& line) { request.compression = zvp::parse_s32(line.take_value()); }

} // namespace

const CommandLine::OptionTable<CustomRequest>& custom_options() {
    static const CommandLine::OptionTable<CustomRequest> table({
        {"-algorithm", [](auto& request, auto& line) { request.algorithm = line.take_value(); }},
        {"-dec", [](auto& request, auto& line) { request.decimal_digits = zvp::parse_digits(line.take_value()); }},
        {"-hex", [](auto& request, auto& line) { request.hexadecimal_digits = zvp::parse_digits(line.take_value()); }},
        {"-o", take_output_path},
        {"-od", [](auto& request, auto& line) { request.output_enabled = zvp::parse_sL(line.take_value()) != 0; }},
        {"-C", take_compression},
        {"-compress", take_compression},
        {"-verify", [](auto& request, auto& line) { request.verify_output = zvp::parse_sL(line.take_value()) != 0; }},
        {"-mode", take_mode},
        {"-MA", take_allocator},
        {"-PF", take_framework},
        {"-TD", take_task_decomposition},
        {"-M", take_memory},
        {"-minIO", take_bytes_per_seek},
        {"-swap", take_far_memory},
    });
    return table;
}

void custom_action(Line& line) {
    if (line.at_end()) custom_menu();
    CustomRequest request;
    request.constant = line.key();
    request.argument = line.take_value();
    if (std::find(constant_names.begin(), constant_names.end(), request.constant) == constant_names.end())
        throw zvp::InvalidParametersException("", "Invalid Constant: " + request.constant);
    CommandLine::apply_options(custom_options(), request, line);
    zvp::stop_unbuilt("Computing a constant (action \"custom\")");
}

void custom_menu() { zvp::stop_unbuilt("Custom Compute a Constant"); }

} // namespace zorvane
