#pragma once

#include "app/failure/registry.h"
#include "parallel/memory/memory_allocator.h"

#include <memory>
#include <string_view>

namespace zvp {

/// What the registry knows of an allocator.
struct MemoryAllocatorType {
    std::string_view display_name;
    std::unique_ptr<MemoryAllocator> (*make_default)();

    /// Reads the settings; a missing key raises KeyNotFoundException.
    std::unique_ptr<MemoryAllocator> (*from_config)(const Object& object);
};

/// All allocators by key, in the order of the menu.
const Registry<MemoryAllocatorType>& allocator_registry();

/// The allocator of that key with its defaults. Another key raises InvalidParametersException "Invalid Memory
/// Allocator: " and the key.
std::unique_ptr<MemoryAllocator> make_allocator(std::string_view key);

/// The default choice for this machine: "interleave" if it has several NUMA nodes, else "mmap".
std::unique_ptr<MemoryAllocator> default_allocator();

/// Reads what to_config_object() gives. Raises KeyNotFoundException and InvalidParametersException.
std::unique_ptr<MemoryAllocator> load_allocator(const Object& object);

/// Lets the user choose an allocator, which has its defaults.
std::unique_ptr<MemoryAllocator> select_allocator();

} // namespace zvp
