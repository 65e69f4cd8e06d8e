#include "parallel/memory/node_binder.h"

#include "parallel/memory/touch.h"
#include "parallel/topology/topology.h"
#include "platform/threads.h"

#include <array>
#include <bit>
#include <cerrno>
#include <memory>

namespace zvp {

namespace {

/// What one task found.
struct Tally {
    std::map<int, std::uint64_t> placement_errors; // pages by errno
    std::map<int, std::uint64_t> query_errors;
    std::map<std::uint32_t, std::uint64_t> landed; // pages by node
};

std::string error_line(std::uint32_t task, const char* call, int error, std::uint64_t count) {
    return "Thread " + std::to_string(task) + " " + call + "() error " + std::to_string(error)
           + ", count = " + std::to_string(count) + "\n";
}

void append_warnings(std::vector<std::string>& warnings, std::uint32_t task, std::uint32_t wanted, const Tally& tally) {
    for (const auto& [error, count] : tally.placement_errors)
        warnings.push_back(error_line(task, "set_mempolicy", error, count));
    for (const auto& [error, count] : tally.query_errors)
        warnings.push_back(error_line(task, "move_pages", error, count));
    for (const auto& [node, count] : tally.landed)
        if (node != wanted)
            warnings.push_back(std::to_string(count) + " pages intended for node " + std::to_string(wanted)
                               + " landed on node " + std::to_string(node) + " instead.");
}

/// Binds the calling thread to the node's cores; false if it has none or the system refuses.
bool bind_to_node(std::uint32_t node) {
    const SchedulingGroup group = node_to_group(node);
    return !group.empty() && group.bind_thread() == 0;
}

/// The rule for the calling thread's new pages, as long as this object lives.
class PreferredNode {
public:
    PreferredNode(platform::MemorySystem& system_, std::uint32_t node)
        : system(system_), error(system.prefer_node(node, previous)) {}
    ~PreferredNode() {
        if (error == 0) system.restore_policy(previous);
    }
    PreferredNode(const PreferredNode&) = delete;
    PreferredNode& operator=(const PreferredNode&) = delete;

private:
    platform::MemorySystem& system;
    platform::NodePolicy previous;

public:
    const int error;
};

} // namespace

/// Touches pages, and asks for the nodes of many at a time.
class NodeBinder::Batch {
public:
    Batch(platform::MemorySystem& system_, Tally& tally_) : system(system_), tally(tally_) {}

    void add(std::byte* page) {
        touch(page, node_page_bytes);
        pages[count++] = page;
        if (count == pages.size()) ask();
    }

    void ask() {
        std::array<int, capacity> found;
        if (count == 0) return;
        const int error = system.nodes_of_pages(pages.data(), found.data(), count);
        if (error != 0) tally.query_errors[error] += count;
        for (std::size_t i = 0; error == 0 && i < count; ++i) {
            if (found[i] >= 0) {
                ++tally.landed[static_cast<std::uint32_t>(found[i])];
            } else {
                ++tally.query_errors[-found[i]];
            }
        }
        count = 0;
    }

private:
    static constexpr std::size_t capacity = 512;

    platform::MemorySystem& system;
    Tally& tally;
    std::array<void*, capacity> pages;
    std::size_t count = 0;
};

std::uint32_t page_hash(std::uint64_t address) {
    std::uint32_t k = static_cast<std::uint32_t>(address) * 0xCC9E2D51u;
    k = std::rotl(k, 15) * 0x1B873593u;
    std::uint32_t h = std::rotl(k, 13) * 5 + 0xE6546B64u;
    h ^= 8;
    h ^= h >> 16;
    h *= 0x85EBCA6Bu;
    h ^= h >> 13;
    h *= 0xC2B2AE35u;
    return h ^ (h >> 16);
}

TaskQueue& node_queue(std::uint32_t node) {
    static std::mutex mutex;
    static std::map<std::uint32_t, std::unique_ptr<TaskQueue>> queues;
    const std::lock_guard lock(mutex);
    std::unique_ptr<TaskQueue>& queue = queues[node];
    if (!queue)
        queue = std::make_unique<TaskQueue>(0, [node](std::uint32_t) {
            if (!bind_to_node(node)) platform::set_thread_affinity({0, platform::usable_cores()});
        });
    return *queue;
}

template <class Function>
void NodeBinder::for_each_page(std::uint32_t index, Function&& take) const {
    const std::size_t m = nodes.size();
    for (std::size_t page = hashed ? 0 : index; page < pages; page += hashed ? 1 : m) {
        std::byte* const address = p + page * node_page_bytes;
        if (!hashed || page_hash(reinterpret_cast<std::uintptr_t>(address)) % m == index) take(address);
    }
}

void NodeBinder::run(std::uint32_t index) {
    const std::uint32_t node = nodes[index];
    const bool bound = bind_to_node(node);
    Tally tally;
    {
        const PreferredNode preferred(system, node);
        Batch batch(system, tally);
        for_each_page(index, [&](std::byte* page) {
            if (preferred.error != 0) ++tally.placement_errors[preferred.error];
            batch.add(page);
        });
        batch.ask();
    }
    const std::lock_guard lock(mutex);
    if (!bound)
        warnings.push_back("Thread " + std::to_string(index) + " failed to bind to node " + std::to_string(node)
                           + "\n");
    for (const auto& [landed, count] : tally.landed) node_bytes[landed] += count * node_page_bytes;
    append_warnings(warnings, index, node, tally);
}

} // namespace zvp
