#include "session/normal_float_session_b.h"

#include "app/console/number_forms.h"
#include "functions/iteration_plan.h"
#include "multiply/tables/algorithm_table.h"
#include "parallel/memory/carving.h"
#include "session/memory_check.h"
#include "session/session_run.h"

#include <algorithm>

namespace zvp {

NormalFloatSessionB::NormalFloatSessionB(std::shared_ptr<ConstantSettings> settings_,
                                         std::shared_ptr<ParallelizationSettings> parallelism_,
                                         std::shared_ptr<AllocatorHolder> allocator_)
    : NormalFloatSession(std::move(settings_)), parallelism(std::move(parallelism_)), allocator(std::move(allocator_)) {
    update();
}

NormalFloatSessionB::NormalFloatSessionB()
    : NormalFloatSessionB(std::make_shared<ConstantSettings>(), std::make_shared<ParallelizationSettings>(),
                          std::make_shared<AllocatorHolder>()) {}

void NormalFloatSessionB::update() {
    refresh();
    plan.reset();
    writer.reset();
    tables = std::make_unique<MultiplyTables>();
    working_memory = twiddle_memory = task_scratch = 0;
    phases.clear();
    obstacle.reset();
    const Constant& constant = *settings->constant;
    const auto refuse = [&](Obstacle found) { obstacle = std::make_unique<const Obstacle>(std::move(found)); };
    if (!constant.is_built())
        return refuse({"This constant can't be computed yet.", nullptr, constant.computing_text()});
    if (settings->output.format == OutputFormat::compressed)
        return refuse({"Compressed digit files can't be written yet.", nullptr, "The compressed digit format (.zvd)"});
    try {
        make_plans();
    } catch (const StringException& failure) {
        plan.reset();
        writer.reset();
        return refuse({failure.message, failure.clone(), ""});
    } catch (const BufferTooSmallException& failure) {
        plan.reset();
        writer.reset();
        return refuse({"The plan of this computation's memory doesn't hold.", failure.clone(), ""});
    }
    if (std::string reason = memory_obstacle(total_memory()); !reason.empty()) refuse({std::move(reason), nullptr, ""});
}

void NormalFloatSessionB::make_plans() {
    plan = settings->constant->make_plan(*tables, parallelism->task_decomposition);
    if (!plan) throw InvalidParametersException("", "There is no plan for this algorithm.");
    const std::uint64_t result_bytes = std::uint64_t{padded_words(plan->result_words())} * sizeof(wtype);
    constexpr bool partial_product = false;
    const ComputationSize& size = settings->size;
    writer = std::make_unique<FloatWriterB>(*tables, name_short, plan->short_algorithm_name(), settings->output,
                                            settings->verify_output, partial_product,
                                            size.decimal_digits + guard_decimal_digits, size.decimal_digits,
                                            size.hexadecimal_digits, parallelism->task_decomposition);
    const std::size_t longest_product = 2 * (working_size.precision_words + 100);
    ensure_product_tables(*tables, longest_product);
    MemoryTrial trial = try_memory(
        *plan, *writer, *tables, result_bytes + std::max<std::uint64_t>(plan->memory_bytes(), writer->buffer_bytes()));
    working_memory = trial.bytes;
    phases = std::move(trial.phases);
    std::uint64_t form_bytes;
    algorithm_table<wtype>().mSBsizes(form_bytes, task_scratch, longest_product, 1);
    twiddle_memory = tables->bytes();
}

Object NormalFloatSessionB::to_config() const {
    Object object;
    settings->save(object);
    object.add_string("Mode", "ram");
    object.add_object("Parallelism", parallelism->to_config_object());
    object.add_object("Allocator", allocator->allocator->to_config_object());
    return object;
}

void NormalFloatSessionB::load(const Object& object) {
    check_mode(object.get_string("Mode"));
    ConstantSettings loaded;
    loaded.load(object);
    ParallelizationSettings loaded_parallelism(object.get_object("Parallelism"));
    std::unique_ptr<MemoryAllocator> loaded_allocator = load_allocator(object.get_object("Allocator"));
    *settings = std::move(loaded);
    *parallelism = std::move(loaded_parallelism);
    allocator->allocator = std::move(loaded_allocator);
    update();
}

namespace {

Object shown_row(std::string value, std::string text) {
    Object row;
    row.add_string("Value", std::move(value));
    row.add_string("DisplayText", std::move(text));
    return row;
}

Object shown_row(std::uint64_t value, std::string text) {
    Object row;
    row.add_integer("Value", static_cast<std::int64_t>(value));
    row.add_string("DisplayText", std::move(text));
    return row;
}

Object shown_count(std::uint64_t count) { return shown_row(count, format_number(count, NumberForm::commas)); }

} // namespace

Object NormalFloatSessionB::to_status() const {
    const Constant& constant = *settings->constant;
    Object object;
    object.add_object("Constant", shown_row(std::string(constant.key()), name_long));
    object.add_object("Algorithm", shown_row(std::string(constant.algorithm_key()), constant.algorithm_name()));
    object.add_object("DecimalDigits", shown_count(settings->size.decimal_digits));
    object.add_object("HexadecimalDigits", shown_count(settings->size.hexadecimal_digits));
    object.add_object("Mode", shown_row("ram", "Ram Only"));
    object.add_object("Parallelism", parallelism->to_config_object_full());
    object.add_object("Allocator", allocator->allocator->to_config_object_full());
    Object memory;
    memory.add_object("RequiredRam", shown_row(total_memory(), format_bytes(total_memory())));
    memory.add_object("ScratchPerTask", shown_row(task_scratch, format_bytes(task_scratch)));
    object.add_object("Memory", std::move(memory));
    object.add_array("Warnings", {});
    Array errors;
    if (obstacle) errors.push_string(obstacle->reason);
    object.add_array("Errors", std::move(errors));
    return object;
}

void NormalFloatSessionB::run(StatusSink* sink) {
    if (has_run) throw InvalidParametersException("NormalFloatSessionB::run()", "A session runs only once.");
    check();
    settings->output.check_path(); // not after hours of computing
    has_run = true;
    run_session(*this, sink);
}

} // namespace zvp
