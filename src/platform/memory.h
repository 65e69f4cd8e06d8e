#pragma once
// Address space, pages and where they lie. Sizes are in bytes.

#include <array>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>

namespace zvp::platform {

enum class PageKind {
    small,
    large_pool,        // the system's reserved pool of large pages; they stay in memory
    large_transparent, // small pages that the system is asked to join to large ones as they are touched
};

/// A range of address space. `data` is the aligned part that was asked for; `base` and `mapped_bytes` go back to the
/// system. No base: the range couldn't be had.
struct Mapping {
    std::byte* base = nullptr;
    std::size_t mapped_bytes = 0;
    std::byte* data = nullptr;
};

/// A thread's rule for the node of its new pages.
struct NodePolicy {
    static constexpr std::size_t node_limit = 4096;

    int mode = 0;
    std::array<unsigned long, node_limit / 64> nodes{};
};

/// Whether this process may lock as many pages as it likes. An error is the errno of the step that failed, or 0.
struct LockPrivilege {
    bool granted = false;
    int lookup_error = 0; // reading the limit
    int adjust_error = 0; // raising it as far as allowed
};

/// The machine's memory in bytes: all of it, and what could be had without swapping; 0 where the system doesn't tell.
struct PhysicalMemory {
    std::uint64_t total = 0;
    std::uint64_t available = 0;
};

PhysicalMemory physical_memory();

/// What the system does for memory. The members are virtual so that a test can let one fail or answer for a machine that
/// isn't there; all others use memory_system(). Any thread may call any member. Errors are errno values, 0 is success.
class MemorySystem {
public:
    virtual ~MemorySystem() = default;

    virtual std::size_t page_size() const;

    /// The size of a large page, 0 where the system has none.
    virtual std::size_t large_page_size() const;

    /// Readable and writable memory of zeros; `alignment` is a power of two. Fails where the pool of large pages doesn't
    /// hold enough of them, or transparent ones are switched off. Memory that isn't of the pool has an inaccessible page
    /// on both sides.
    virtual Mapping map(std::size_t bytes, std::size_t alignment, PageKind kind);

    /// Address space that can't be used until commit() has made it memory of small pages.
    virtual Mapping reserve(std::size_t bytes, std::size_t alignment);
    virtual int commit(std::byte* data, std::size_t bytes);

    virtual void release(const Mapping& mapping);

    /// The bytes of a touched region of transparent large pages that really lie in large pages.
    virtual std::size_t transparent_large_bytes(const std::byte* data, std::size_t bytes);

    /// Keeps the pages of a region in memory. ENOMEM when the process's limit is too low.
    virtual int lock_pages(std::byte* data, std::size_t bytes);

    /// Raises the limit of locked memory as far as this process may. Nothing: the limit can't be read. False: refused.
    virtual std::optional<bool> raise_lock_limit();

    /// Obtained once per object.
    const LockPrivilege& lock_privilege();

    /// Lets the calling thread's new pages come from `node` if that has any left, and stores the rule that was in force
    /// before. EINVAL for a node that doesn't exist; the rule then stays as it was.
    virtual int prefer_node(unsigned node, NodePolicy& previous);
    virtual void restore_policy(const NodePolicy& previous);

    /// The nodes on which pages lie: nodes[i] is the node of pages[i], or -errno. Returns 0, or errno when nothing could
    /// be told.
    virtual int nodes_of_pages(void* const* pages, int* nodes, std::size_t count);

    /// Whether the node has memory that this process may use; true if the system doesn't tell.
    virtual bool node_has_memory(unsigned node);

protected:
    virtual LockPrivilege obtain_lock_privilege();

private:
    std::once_flag privilege_once;
    LockPrivilege privilege;
};

MemorySystem& memory_system();

} // namespace zvp::platform
