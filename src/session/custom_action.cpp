#include "session/custom_action.h"

#include "app/console/console.h"
#include "app/failure/exceptions.h"
#include "app/notation/nearest_word.h"
#include "app/notation/typed_values.h"
#include "session/session_holder.h"

namespace zorvane {

namespace {

using namespace zvp;
using Line = ::CommandLine::CommandLine;
using ::CommandLine::nearest_word_hint;
using ::CommandLine::with_hint;

void take_mode(CustomRequest& request, Line& line) {
    if (line.value() != "ram" && line.value() != "swap")
        throw InvalidParametersException("", "Invalid Mode: " + line.value()
                                                 + nearest_word_hint(line.value(), {"ram", "swap"}));
    request.swap_mode = line.take_value() == "swap";
}

void take_output_path(CustomRequest& request, Line& line) {
    line.advance();
    request.output_path = line.take_parameter();
}

void take_compression(CustomRequest& request, Line& line) {
    request.compression = CommandLine::read_s32(line.take_value());
}

} // namespace

const CommandLine::OptionTable<CustomRequest>& custom_options() {
    static const CommandLine::OptionTable<CustomRequest> table({
        {"-algorithm", [](auto& request, auto& line) { request.algorithm = line.take_value(); }},
        {"-dec",
         [](auto& request, auto& line) { request.decimal_digits = CommandLine::read_digits(line.take_value()); }},
        {"-hex",
         [](auto& request, auto& line) { request.hexadecimal_digits = CommandLine::read_digits(line.take_value()); }},
        {"-o", take_output_path},
        {"-od",
         [](auto& request, auto& line) { request.output_enabled = CommandLine::read_s64(line.take_value()) != 0; }},
        {"-C", take_compression},
        {"-compress", take_compression},
        {"-verify",
         [](auto& request, auto& line) { request.verify_output = CommandLine::read_s64(line.take_value()) != 0; }},
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

namespace {

/// Fills the session's settings with what the command line asks for.
void apply_constant(const CustomRequest& request, ConstantSettings& settings) {
    settings.set_constant(make_constant(request.constant, request.argument));
    if (request.algorithm)
        with_hint(*request.algorithm, settings.constant->algorithm_keys(),
                  [&] { settings.constant->set_algorithm(*request.algorithm); });
    if (request.decimal_digits) settings.set_decimal_digits(*request.decimal_digits);
    if (request.hexadecimal_digits) settings.set_hexadecimal_digits(*request.hexadecimal_digits);
    if (request.verify_output) settings.verify_output = *request.verify_output;
}

void apply_output(const CustomRequest& request, OutputSettings& output) {
    if (request.output_path) output.set_path(*request.output_path);
    if (request.output_enabled == false) {
        output.format = OutputFormat::none; // which takes the meaning from the format's own options
    } else if (request.compression && *request.compression != 0) {
        output.format = OutputFormat::compressed;
        output.set_digits_per_file(*request.compression < 0 ? 0 : static_cast<std::uint64_t>(*request.compression));
    }
}

void apply_resources(const CustomRequest& request, NormalFloatSessionB& session) {
    if (request.allocator) session.allocator->allocator = make_allocator(*request.allocator);
    if (request.framework) session.parallelism->framework = make_framework_config(*request.framework);
    if (request.task_decomposition) session.parallelism->task_decomposition = *request.task_decomposition;
}

/// Shows the settings and runs them.
void print_and_run(NormalFloatSession& session) {
    const bool good = session.print();
    print_line();
    if (!good) session.check();
    session.run();
}

} // namespace

void custom_action(Line& line) {
    if (line.at_end()) return custom_menu();
    CustomRequest request;
    request.constant = line.key();
    if (line.has_value()) request.argument = line.value();
    line.advance();
    with_hint(request.constant, constant_names(), [&] { constant_id(request.constant); }); // refuses what is none
    CommandLine::apply_options(custom_options(), request, line);
    check_swap_options(request);

    NormalFloatSessionHolder holder;
    holder.set_mode(request.swap_mode ? "swap" : "ram");
    NormalFloatSessionB& session = holder.memory_session();
    apply_constant(request, *session.settings);
    apply_output(request, session.settings->output);
    apply_resources(request, session);
    session.update();
    print_line();
    print_and_run(session);
}

void custom_menu() { NormalFloatSessionHolder().menu(true); }

void run_custom_config(const Object& settings) {
    NormalFloatSessionHolder holder(settings);
    NormalFloatSession& session = holder.active();
    const bool good = session.print();
    print_line();
    if (!good) {
        session.check_built();
        throw InvalidParametersException("", "Cannot run computation with these parameters.");
    }
    session.run();
}

} // namespace zorvane
