#include "parallel/tasks/parallelization_settings.h"

#include "app/console/console.h"
#include "app/console/prompts.h"
#include "app/failure/exceptions.h"
#include "parallel/tasks/setting_rows.h"
#include "platform/threads.h"

#include <algorithm>
#include <bit>

namespace zvp {

namespace {

std::uint32_t machine_cores() {
    return std::max<std::uint32_t>(1, static_cast<std::uint32_t>(platform::usable_cores().size()));
}

} // namespace

ParallelizationSettings::ParallelizationSettings() : logical_cores(machine_cores()) { restore_defaults(); }

ParallelizationSettings::ParallelizationSettings(const Object& object) : logical_cores(machine_cores()) {
    task_decomposition = checked_task_decomposition(object.get_integer("TaskDecomposition"));
    const std::string& key = object.get_string("Framework");
    const ParallelFrameworkType* type = framework_registry().find(key);
    if (!type) throw InvalidParametersException("", "Invalid Parallel Framework: " + key);
    framework = type->from_config(object);
}

void ParallelizationSettings::restore_defaults() {
    task_decomposition = default_task_decomposition(logical_cores);
    framework = default_framework_config(logical_cores);
}

Object ParallelizationSettings::saved(bool full) const {
    Object object;
    object.add_integer("TaskDecomposition", task_decomposition);
    const Object own = full ? framework->to_config_object_full() : framework->to_config_object();
    for (const Object::Entry* entry : own.entries()) object.add_node(entry->key, entry->value->clone(), entry->comment);
    return object;
}

void ParallelizationSettings::menu() {
    for (;;) {
        print_line("\n\nParallelization Settings:");
        print_line();
        print_line("Current Settings: (select option # to change setting)\n");
        print_line("   1    Restore defaults for " + std::to_string(logical_cores) + " logical cores.");
        print_setting_row(2, "    Task Decomposition:", std::to_string(task_decomposition));
        print_setting_row(3, "    Framework:", framework->display_name());
        constexpr std::uint32_t first_own_row = 4;
        const std::uint32_t end = framework->print_menu_rows(first_own_row);
        print_line("\n   0    Done!\n");
        const std::uint32_t option = prompt_option(0, end - 1);
        switch (option) {
        case 0: return;
        case 1: restore_defaults(); break;
        case 2:
            print_line("\n\nTarget Task Decomposition");
            print_line("\nPlease choose a number between 1 and " + std::to_string(max_task_decomposition));
            task_decomposition = prompt_int("Task Decomposition: ", 1, max_task_decomposition, 'T');
            break;
        case 3: select_framework(); break;
        default: framework->menu_select(option - first_own_row); break;
        }
    }
}

void ParallelizationSettings::select_framework() {
    framework = make_framework_config(choose_key("Select a Parallel Framework:", framework_registry()));
}

std::uint32_t checked_task_decomposition(std::int64_t tasks) {
    if (tasks < 1 || tasks > max_task_decomposition)
        throw InvalidParametersException("", "Task decomposition must be between 1 and "
                                                 + std::to_string(max_task_decomposition));
    return static_cast<std::uint32_t>(tasks);
}

std::uint32_t default_task_decomposition(std::uint32_t logical_cores) {
    const std::uint64_t tasks = std::has_single_bit(logical_cores) ? logical_cores : std::uint64_t{2} * logical_cores;
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(tasks, max_task_decomposition));
}

SweepSplit split_sweep(std::size_t length, std::size_t threshold, std::uint32_t tds, std::uint32_t cap,
                       std::size_t min_block, std::size_t alignment) {
    const std::uint32_t most = std::min(tds, cap);
    if (length == 0 || length < threshold || most <= 1) return {length == 0 ? 0u : 1u, length};
    const auto round_up = [](std::size_t x, std::size_t unit) { return (x + unit - 1) / unit * unit; };
    const std::size_t share = (length + most - 1) / most;
    const std::size_t block = round_up(std::max(share, min_block), alignment);
    return {static_cast<std::uint32_t>((length + block - 1) / block), block};
}

} // namespace zvp
