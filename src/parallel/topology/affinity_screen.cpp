#include "parallel/topology/affinity_screen.h"

#include "app/console/console.h"
#include "app/console/prompts.h"
#include "app/failure/exceptions.h"

#include <algorithm>
#include <cstddef>

namespace zvp {

namespace {

using Operator = SchedulingGroup& (SchedulingGroup::*)(unsigned core);

constexpr std::size_t list_indent = 4, list_width = 80;

void print_screen(const SchedulingGroup& group) {
    print_line("\n\nThread Affinity", 'w');
    print_line();
    print_line("If there are no cores in the list, then no affinity is set. The worker-threads\n"
               "will have their default affinities as assigned by the OS.\n"
               "\n"
               "All logical cores are in one processor group, so that any of them can be\n"
               "enabled together.\n");
    print_line("Active Cores (" + std::to_string(group.core_count()) + " total):");
    print(core_list_text(group.cores(), list_indent, list_width), 'G');
    print_line("\n"
               "    #    Enter Core # to toggle it.\n"
               "  #-#    Enter a range of core #'s to toggle all of them. (e.g 4-7)\n"
               "    a    Enable all logical cores.\n"
               "    d    Disable all logical cores.\n"
               "    e    Toggle all even cores.\n"
               "    o    Toggle all odd cores.\n"
               "         Enter nothing to finish.\n",
               'w');
}

/// Applies the operator to the cores first, first + step, ... below `end`. A core that can't join is told, and the next
/// one is taken.
void apply(SchedulingGroup& group, Operator change, std::size_t first, std::size_t end, unsigned step = 1) {
    for (std::size_t core = first; core < end; core += step) {
        try {
            (group.*change)(static_cast<unsigned>(core));
        } catch (const InvalidParametersException& exception) {
            print_line(exception.message, 'R');
            set_color('w');
        }
    }
}

/// A core that was typed alone may be one that doesn't exist; a range ends at the last that does.
void toggle_typed(SchedulingGroup& group, const std::string& line) {
    try {
        const CoreRange range = parse_core_range(line);
        std::size_t end = std::size_t{range.last} + 1;
        if (line.find('-') != std::string::npos) end = std::min(end, group.map().size());
        apply(group, &SchedulingGroup::operator^=, range.first, end);
    } catch (const ParseException&) {
        print_line("\nInvalid Range", 'R');
        set_color('w');
    }
}

void apply_option(SchedulingGroup& group, const std::string& line) {
    const std::size_t cores = group.map().size();
    switch (line.front()) {
    case 'a': apply(group, &SchedulingGroup::operator|=, 0, cores); break;
    case 'd': group.clear(); break;
    case 'e': apply(group, &SchedulingGroup::operator^=, 0, cores, 2); break;
    case 'o': apply(group, &SchedulingGroup::operator^=, 1, cores, 2); break;
    default:
        if (line.front() >= '0' && line.front() <= '9') toggle_typed(group, line);
        break;
    }
}

} // namespace

void edit_cores(SchedulingGroup& group) {
    for (;;) {
        print_screen(group);
        const std::string line = prompt_line("Option: ", 'T');
        if (line.empty()) return;
        apply_option(group, line);
    }
}

std::string affinity_row(const SchedulingGroup& group) {
    return "    Worker Thread Affinity:  "
           + (group.empty() ? "Don't set affinities." : std::to_string(group.core_count()) + " logical cores");
}

} // namespace zvp
