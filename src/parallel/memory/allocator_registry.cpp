#include "parallel/memory/allocator_registry.h"

#include "app/failure/exceptions.h"
#include "parallel/memory/interleave_allocator.h"
#include "parallel/memory/malloc_allocator.h"
#include "parallel/memory/mmap_allocator.h"
#include "parallel/tasks/setting_rows.h"

#include <string>

namespace zvp {

namespace {

template <class Allocator>
std::pair<std::string, MemoryAllocatorType> row() {
    return {std::string(Allocator::own_key),
            {Allocator::name, []() -> std::unique_ptr<MemoryAllocator> { return std::make_unique<Allocator>(); },
             &Allocator::from_config}};
}

const MemoryAllocatorType& allocator_type(std::string_view key) {
    const MemoryAllocatorType* type = allocator_registry().find(key);
    if (!type) throw InvalidParametersException("", "Invalid Memory Allocator: " + std::string(key));
    return *type;
}

} // namespace

const Registry<MemoryAllocatorType>& allocator_registry() {
    static const Registry<MemoryAllocatorType> registry(
        "Duplicate Allocator Type", {row<MallocAllocator>(), row<MmapAllocator>(), row<InterleaveAllocator>()});
    return registry;
}

std::unique_ptr<MemoryAllocator> make_allocator(std::string_view key) { return allocator_type(key).make_default(); }

std::unique_ptr<MemoryAllocator> default_allocator() {
    if (topology().nodes.nodes().size() >= 2) return std::make_unique<InterleaveAllocator>();
    return std::make_unique<MmapAllocator>();
}

std::unique_ptr<MemoryAllocator> load_allocator(const Object& object) {
    return allocator_type(object.get_string("Allocator")).from_config(object);
}

std::unique_ptr<MemoryAllocator> select_allocator() {
    return make_allocator(choose_key("Select a Memory Allocator:", allocator_registry()));
}

} // namespace zvp
