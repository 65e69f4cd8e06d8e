#include "parallel/topology/scheduling_group.h"

#include "app/console/console.h"
#include "app/failure/exceptions.h"

#include <limits>
#include <string>

namespace zvp {

namespace {

constexpr const char* or_function = "SchedulingGroup::operator|=()";

[[noreturn]] void throw_unknown_core(const char* function, std::int64_t core) {
    throw InvalidParametersException(function, "Core " + std::to_string(core) + " doesn't exist.");
}

} // namespace

SchedulingGroup::SchedulingGroup(const ProcessorMask& mask, std::uint16_t group, const CoreMap& map)
    : core_source(&map) {
    for (const unsigned bit : mask.bits()) {
        if (const std::optional<unsigned> core = map.find(group, bit)) {
            *this |= *core;
        } else {
            print_line("Warning: Skipping invalid KAFFINITY mask.", 'R');
            set_color('w');
        }
    }
}

const CoreHandle& SchedulingGroup::joinable(unsigned core, const char* function) const {
    const CoreHandle* handle = map().find(core);
    if (!handle) throw_unknown_core(function, core);
    if (!empty() && handle->group != group_number)
        throw InvalidParametersException(function, "Core " + std::to_string(core)
                                                       + " is not compatible with processor group "
                                                       + std::to_string(group_number) + ".");
    return *handle;
}

SchedulingGroup& SchedulingGroup::operator|=(unsigned core) {
    const CoreHandle& handle = joinable(core, or_function);
    group_number = handle.group;
    group_mask.set(handle.bit);
    core_numbers.insert(core);
    return *this;
}

SchedulingGroup& SchedulingGroup::operator^=(unsigned core) {
    const CoreHandle& handle = joinable(core, "SchedulingGroup::operator^=()");
    group_number = handle.group;
    if (core_numbers.erase(core) != 0) {
        group_mask.reset(handle.bit);
    } else {
        group_mask.set(handle.bit);
        core_numbers.insert(core);
    }
    return *this;
}

void SchedulingGroup::clear() {
    group_mask = {};
    core_numbers.clear();
}

Array SchedulingGroup::to_array() const {
    Array numbers;
    for (const unsigned core : core_numbers) numbers.push_integer(core);
    return numbers;
}

SchedulingGroup SchedulingGroup::from_array(const Array& numbers, const CoreMap& map) {
    SchedulingGroup group(map);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const std::int64_t core = numbers.get_integer(i);
        if (core < 0 || core > std::numeric_limits<unsigned>::max()) throw_unknown_core(or_function, core);
        group |= static_cast<unsigned>(core);
    }
    return group;
}

void SchedulingGroup::print() const {
    zvp::print("Group: " + std::to_string(group_number) + " - Mask: " + group_mask.to_hex());
}

int SchedulingGroup::bind_thread() const { return empty() ? 0 : platform::set_thread_affinity(affinity()); }

} // namespace zvp
