#include "session/session_run.h"

#include "app/console/console.h"
#include "app/console/linear_console_status.h"
#include "app/console/number_forms.h"
#include "app/console/process_switches.h"
#include "app/console/recovered_errors.h"
#include "app/console/run_watch.h"
#include "app/console/unbuilt.h"
#include "parallel/memory/carving.h"
#include "platform/file.h"
#include "session/digit_checks.h"
#include "session/memory_check.h"
#include "session/run_results.h"
#include "session/run_screen.h"
#include "session/working_memory.h"

#include <optional>

namespace zvp {

namespace {

constexpr unsigned table_alignment_bits = 12;

/// One run, from the check of the memory to the spot check.
class SessionRun {
public:
    SessionRun(NormalFloatSessionB& session_, StatusSink& sink_)
        : session(session_), sink(sink_), log(*session.event_log), allocator(*session.allocator->allocator) {}

    void execute();

private:
    void announce();
    void obtain_memory();
    void obtain_tables();
    void tell_allocation(std::string_view label, const std::vector<StatusCell>& report);
    void tell_allocation_errors();
    void compute();
    MultiplyParameters parameters() const;
    BigFloat compute_number(AlignedBufferC<64>& memory);
    void report_end();
    void check_digits();
    std::shared_ptr<const FileIO::FileException> first_write_fault() const;
    void release();
    void report_diagnostics();

    NormalFloatSessionB& session;
    StatusSink& sink;
    EventLog& log;
    const MemoryAllocator& allocator;

    std::unique_ptr<ParallelFramework> framework;
    ParallelContext context;
    std::optional<WorkingMemory> memory;
    std::unique_ptr<Allocation> table_memory;
    DigitResults digits; // its streams read the working memory
    ComputationOutput output;
    std::int64_t spot_check_result = 0;
};

void SessionRun::execute() {
    session.times.begin_run();
    check_physical_memory(sink, session.total_memory());
    const OutputSettings& output_settings = session.settings->output;
    check_disk_space(sink, output_settings.total_bytes(session.settings->size), output_settings.path,
                     platform::free_disk_bytes(output_settings.path));
    allocator.acquire_privileges();
    print_run_header(session);
    announce();
    obtain_memory();
    obtain_tables();
    tell_allocation_errors();
    compute();
    report_end();
    check_digits();
    const std::shared_ptr<const FileIO::FileException> write_fault = first_write_fault();
    release();
    report_diagnostics();
    print_unbuilt("The validation file");
    if (write_fault) write_fault->fire();
    if (spot_check_result < 0)
        throw AlgorithmFailedException("", "Spot check failed at: " + std::to_string(-spot_check_result));
}

void SessionRun::announce() {
    session.times.begin_computation();
    sink.print_pair(12, "Start Time:", {'Y', session.times.start_date});
    print_line();
    framework = session.parallelism->framework->make_framework();
    context = {session.parallelism->task_decomposition, framework.get()};
}

void SessionRun::obtain_memory() {
    log.log("Working Memory");
    sink.print("Working Memory...  ");
    std::vector<StatusCell> report;
    memory.emplace(allocator, context, session.working_memory, report);
    tell_allocation("Working Memory: ", report);
    log.log("Scratch per Task: " + format_number(session.task_scratch, NumberForm::commas) + " bytes");
    for (const DryRun::Phase& phase : session.phases)
        if (!phase.name.empty())
            log.log("Planned: " + format_number(phase.bytes, NumberForm::commas) + " bytes: " + phase.name);
}

void SessionRun::obtain_tables() {
    log.log("Twiddle Tables");
    sink.print("Twiddle Tables...  ");
    std::vector<StatusCell> report;
    table_memory = allocator.allocate_or_stop(report, context, table_alignment_bits, session.twiddle_memory);
    session.tables->place(table_memory->pointer);
    tell_allocation("Twiddle Tables: ", report);
}

void SessionRun::tell_allocation(std::string_view label, const std::vector<StatusCell>& report) {
    std::string joined(label);
    for (const StatusCell& cell : report) {
        sink.print(cell);
        joined += cell.text;
    }
    log.log(joined);
    sink.end_line();
}

void SessionRun::tell_allocation_errors() {
    if (memory->lock_refused() || (table_memory->record && table_memory->record->lock_refused))
        sink.warning(lock_limit_warning);
    std::vector<std::string> errors = memory->warnings();
    if (table_memory->record)
        errors.insert(errors.end(), table_memory->record->warnings.begin(), table_memory->record->warnings.end());
    if (errors.empty()) return;
    sink.warning("Memory allocation errors detected. Possible performance degradation.\n"
                 "Please see event log for details.");
    for (const std::string& error : errors) {
        log.log("Allocation Error: " + error);
        sink.print_line("Allocation Error: " + error, 'R'); // no file shows the event log yet
    }
}

void SessionRun::compute() {
    print_line();
    log.log("Begin Computation");
    sink.print_line("Begin Computation:");
    print_line();
    AlignedBufferC<64> rest = memory->buffer();
    const BigFloat number = compute_number(rest);
    session.writer->write(parameters(), {&sink, &log}, digits, number, rest);
    session.times.end();
    log.log("End Computation");
}

MultiplyParameters SessionRun::parameters() const {
    MultiplyParameters pars;
    static_cast<ParallelContext&>(pars) = context;
    pars.tables = session.tables.get();
    return pars;
}

/// The constant on words from the front of `rest`, which moves behind them.
BigFloat SessionRun::compute_number(AlignedBufferC<64>& rest) {
    const std::uint64_t began = platform::performance_counter();
    const LinearWordBuffer words = rest.spawn_words(padded_words(session.plan->result_words()));
    BigFloat number(words.pointer, words.words);
    session.times.number.open();
    const bool told = session.plan->run(parameters(), {&sink, &log, &session.times.number}, number, rest);
    if (!told) sink.print_line("");
    session.times.number.close();
    session.times.add_sample();
    sink.print_time(session.name_short, static_cast<double>(platform::performance_counter() - began) * 1e-9);
    sink.print_line("");
    return number;
}

void SessionRun::report_end() {
    print_run_times(session.times, session.parallelism->logical_cores);
    if (const std::uint64_t count = recovered_errors(); count > 0) {
        sink.print_line("Recovered Errors: " + format_number(count, NumberForm::commas), 'R');
        log.log("Recovered Errors: " + format_number(count, NumberForm::commas));
    }
    for (const std::optional<DigitResult>* result : {&digits.decimal, &digits.hexadecimal})
        if (*result) print_last_digits((*result)->last, session);
    print_line();
    if (digits.decimal) output.decimal = &*digits.decimal;
    if (digits.hexadecimal) output.hexadecimal = &*digits.hexadecimal;
    output.start_date = session.times.start_date;
    output.end_date = session.times.end_date;
    output.compute_milliseconds = static_cast<std::int64_t>(session.times.computation_seconds() * 1e3);
    output.wall_milliseconds = session.times.wall_milliseconds();
    sink.report_result(output);
}

void SessionRun::check_digits() {
    if (!digits.decimal_stream) return;
    spot_check_result = spot_check(process_switches().executable_directory, *digits.decimal_stream,
                                   session.settings->size.decimal_digits, session.settings->constant->spot_check_key());
    print_line();
}

std::shared_ptr<const FileIO::FileException> SessionRun::first_write_fault() const {
    for (const std::optional<DigitResult>* result : {&digits.hexadecimal, &digits.decimal})
        if (*result && (*result)->write_fault) return (*result)->write_fault;
    return nullptr;
}

void SessionRun::release() {
    digits = {};
    output.decimal = output.hexadecimal = nullptr;
    memory->check_guards();
    table_memory.reset();
    memory.reset();
    framework.reset();
}

void SessionRun::report_diagnostics() {
    ComputationDiagnostics diagnostics;
    diagnostics.max_concurrency = session.parallelism->logical_cores;
    diagnostics.seconds = session.times.computation_seconds();
    diagnostics.processor = session.times.processor_seconds();
    diagnostics.spot_check = spot_check_result;
    sink.report_result(diagnostics);
}

} // namespace

void run_session(NormalFloatSessionB& session, StatusSink* sink) {
    std::unique_ptr<StatusSink> own;
    if (!sink) own = std::make_unique<LinearConsoleRoot>(LinearConsoleRoot::default_width, 1.0);
    std::optional<RunWatch> watch; // a client has its own way to end a run
    if (!sink) watch.emplace(session.name_short);
    if (!session.event_log) session.event_log = std::make_unique<EventLog>();
    SessionRun(session, sink ? *sink : *own).execute();
}

} // namespace zvp
