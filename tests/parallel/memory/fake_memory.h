#pragma once

#include "platform/memory.h"

#include <atomic>
#include <cerrno>
#include <functional>
#include <mutex>
#include <optional>
#include <set>

namespace test {

/// The machine's memory, with answers of the test's own for what this machine doesn't have.
class FakeMemory : public zvp::platform::MemorySystem {
public:
    std::size_t large_page_size() const override { return 2 << 20; }

    zvp::platform::Mapping map(std::size_t bytes, std::size_t alignment, zvp::platform::PageKind kind) override {
        if (!kinds.contains(kind)) return {};
        ++maps;
        ++mapped;
        return MemorySystem::map(bytes, alignment, zvp::platform::PageKind::small);
    }
    zvp::platform::Mapping reserve(std::size_t bytes, std::size_t alignment) override {
        if (reserving) ++mapped;
        return MemorySystem::reserve(bytes, alignment);
    }
    int commit(std::byte* data, std::size_t bytes) override {
        return commit_error ? commit_error : MemorySystem::commit(data, bytes);
    }
    void release(const zvp::platform::Mapping& mapping) override {
        --mapped;
        MemorySystem::release(mapping);
    }
    std::size_t transparent_large_bytes(const std::byte*, std::size_t) override { return transparent_bytes; }
    int lock_pages(std::byte* data, std::size_t bytes) override { return lock ? lock(data, bytes) : 0; }
    std::optional<bool> raise_lock_limit() override { return raise; }

    /// Nodes below node_count exist; a page lies where its thread wants it while it asks, else on node 0.
    int prefer_node(unsigned node, zvp::platform::NodePolicy&) override {
        if (node >= node_count) return EINVAL;
        preferred = static_cast<int>(node);
        return 0;
    }
    void restore_policy(const zvp::platform::NodePolicy&) override {
        preferred = 0;
        ++restored;
    }
    int nodes_of_pages(void* const* pages, int* nodes, std::size_t count) override {
        if (query_error) return query_error;
        const std::lock_guard guard(mutex);
        for (std::size_t i = 0; i < count; ++i) {
            asked.insert(pages[i]);
            nodes[i] = node_of ? node_of(pages[i]) : preferred;
        }
        return 0;
    }

    std::set<zvp::platform::PageKind> kinds{zvp::platform::PageKind::small};
    std::size_t transparent_bytes = 0;
    std::function<int(std::byte*, std::size_t)> lock;
    std::optional<bool> raise = true;
    unsigned node_count = 2;
    int commit_error = 0;
    int query_error = 0;
    std::function<int(void*)> node_of;
    zvp::platform::LockPrivilege answer{true, 0, 0};
    bool reserving = false; // count reserve() as a mapping of its own, not as a part of map()

    int maps = 0;   // calls of map() that had such pages
    int mapped = 0; // mappings that were not released
    std::atomic<int> restored{0};
    std::multiset<void*> asked;

protected:
    zvp::platform::LockPrivilege obtain_lock_privilege() override { return answer; }

private:
    static inline thread_local int preferred = 0;
    std::mutex mutex;
};

} // namespace test
