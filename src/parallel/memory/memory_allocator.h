#pragma once
// The choice of an allocator for a computation's large blocks, with its settings.

#include "app/console/status.h"
#include "app/notation/node.h"
#include "parallel/memory/allocation.h"
#include "parallel/tasks/parallel_framework.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zvp {

class MemoryAllocator {
public:
    virtual ~MemoryAllocator() = default;

    virtual std::string_view key() const = 0;
    virtual std::string_view display_name() const = 0;

    /// Gets what the process needs for the settings; false if it can't be had. To be called before a computation; allocation
    /// is worth trying in any case, and what was lost is known only then (AllocationRecord::lock_refused).
    virtual bool acquire_privileges() const = 0;

    /// At least `bytes` of touched memory at a multiple of 2^alignment_bits, never null; one without a pointer is a
    /// failure.
    virtual std::unique_ptr<Allocation> allocate(const ParallelContext& context, unsigned alignment_bits,
                                                 std::size_t bytes) const = 0;

    /// "Allocator" and the settings, as they are saved.
    virtual Object to_config_object() const = 0;

    virtual std::unique_ptr<MemoryAllocator> clone() const = 0;

    /// The same as to_config_object() for a report: a three-way setting is an object with its display text and colour.
    virtual Object to_config_object_full() const = 0;

    /// Prints the menu's rows from number `first_row` on and returns the next free number.
    virtual std::uint32_t print_menu_rows(std::uint32_t first_row) const = 0;

    /// Acts on the row of that index, from 0.
    virtual void menu_select(std::uint32_t row) = 0;

    /// What a computation calls: allocate(), with a line on the result appended to `log`. A failure stops the program
    /// with exit code 1. 0 bytes give an empty allocation without asking the allocator.
    std::unique_ptr<Allocation> allocate_or_stop(std::vector<StatusCell>& log, const ParallelContext& context,
                                                 unsigned alignment_bits, std::size_t bytes) const;
};

/// What the allocators have in common. `Allocator` is the derived class, with its `own_key` and `name`.
template <class Allocator>
class AllocatorOf : public MemoryAllocator {
public:
    explicit AllocatorOf(platform::MemorySystem& system_) : system(&system_) {}

    std::string_view key() const final { return Allocator::own_key; }
    std::string_view display_name() const final { return Allocator::name; }
    Object to_config_object() const final { return saved(false); }
    Object to_config_object_full() const final { return saved(true); }
    std::unique_ptr<MemoryAllocator> clone() const final {
        return std::make_unique<Allocator>(static_cast<const Allocator&>(*this));
    }

protected:
    /// Adds the settings.
    virtual void save(Object& object, bool full) const = 0;

    platform::MemorySystem* system;

private:
    Object saved(bool full) const {
        Object object;
        object.add_string("Allocator", std::string(Allocator::own_key));
        save(object, full);
        return object;
    }
};

/// For a computation whose allocations lost something by the limit on locked memory.
inline constexpr std::string_view lock_limit_warning =
    "The limit on locked memory is too low to keep all of the memory from being swapped out.\n"
    "Run \"ulimit -l unlimited\" as root before, or raise \"memlock\" in /etc/security/limits.conf.";

/// The part of MemoryAllocator::acquire_privileges() for allocators that lock pages.
bool acquire_lock_privilege(platform::MemorySystem& system);

/// `bytes` rounded up to a multiple of `unit`, a power of two; 0 if that overflows.
std::size_t round_up(std::size_t bytes, std::size_t unit);

/// max(2^alignment_bits, unit); 0 if no address space holds such an alignment.
std::size_t mapping_alignment(unsigned alignment_bits, std::size_t unit);

} // namespace zvp
