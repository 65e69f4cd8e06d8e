#include "parallel/memory/residency.h"

#include "parallel/memory/touch.h"

#include <algorithm>
#include <array>
#include <mutex>

namespace zvp {

namespace {

/// Pages of one question to the system: enough to make its fixed price small, few enough for the stack.
constexpr std::size_t batch_pages = 512;

void count_block(platform::MemorySystem& system, const std::byte* p, std::size_t bytes, NodeBytes& counts) {
    const std::byte* const end = p + bytes;
    std::array<void*, batch_pages> pages;
    std::array<int, batch_pages> nodes;
    while (p < end) {
        std::array<std::size_t, batch_pages> lengths;
        std::size_t count = 0;
        for (; count < batch_pages && p < end; ++count) {
            const std::size_t inside = reinterpret_cast<std::uintptr_t>(p) % node_page_bytes;
            pages[count] = const_cast<std::byte*>(p - inside);
            lengths[count] = std::min(node_page_bytes - inside, static_cast<std::size_t>(end - p));
            p += lengths[count];
        }
        if (system.nodes_of_pages(pages.data(), nodes.data(), count) != 0) continue;
        for (std::size_t i = 0; i < count; ++i)
            if (nodes[i] >= 0) counts[static_cast<std::uint32_t>(nodes[i])] += lengths[i];
    }
}

class CountAction final : public BasicAction {
public:
    CountAction(platform::MemorySystem& system_, const std::byte* p_, const TouchBlocks& blocks_)
        : system(system_), p(p_), blocks(blocks_) {}

    void run(std::uint32_t index) override {
        NodeBytes own;
        count_block(system, p + blocks.begin(index), blocks.end(index) - blocks.begin(index), own);
        const std::lock_guard lock(mutex);
        for (const auto& [node, count] : own) total[node] += count;
    }

    NodeBytes total;

private:
    platform::MemorySystem& system;
    const std::byte* const p;
    const TouchBlocks blocks;
    std::mutex mutex;
};

} // namespace

NodeBytes count_node_bytes(const ParallelContext& context, platform::MemorySystem& system, const std::byte* p,
                           std::size_t bytes) {
    const TouchBlocks blocks(context, bytes);
    CountAction action(system, p, blocks);
    if (blocks.tasks < 2) {
        action.run(0);
    } else {
        context.framework->run_in_parallel(action, 0, blocks.tasks);
    }
    return std::move(action.total);
}

} // namespace zvp
