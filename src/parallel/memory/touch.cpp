#include "parallel/memory/touch.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace zvp {

namespace {

constexpr std::uint32_t factor = 0xC82B9175;
constexpr std::uint32_t offset = 0xC857661B;

/// Words first .. first + 15 of the fill are made at once, by additions alone: with f(i) = i^2 a + b,
/// f(i + 16) - f(i) = a (32 i + 256), which itself grows by 512 a from one group to the next.
constexpr std::size_t lanes = 16;
using Words = std::array<std::uint32_t, lanes>;

void fill_words(std::byte* p, std::size_t count) {
    Words value, step;
    for (std::uint32_t i = 0; i < lanes; ++i) {
        value[i] = i * i * factor + offset;
        step[i] = factor * (32 * i + 256);
    }
    for (; count >= lanes; count -= lanes, p += sizeof value) {
        std::memcpy(p, value.data(), sizeof value);
        for (std::size_t i = 0; i < lanes; ++i) {
            value[i] += step[i];
            step[i] += 512 * factor;
        }
    }
    std::memcpy(p, value.data(), count * sizeof(std::uint32_t));
}

class TouchAction final : public BasicAction {
public:
    TouchAction(std::byte* p_, const TouchBlocks& blocks_) : p(p_), blocks(blocks_) {}

    void run(std::uint32_t index) override { touch(p + blocks.begin(index), blocks.end(index) - blocks.begin(index)); }

private:
    std::byte* const p;
    const TouchBlocks blocks;
};

} // namespace

void touch(std::byte* p, std::size_t bytes) {
    if (bytes == 0) return;
    p[0] = std::byte{0x7B};
    p[bytes - 1] = std::byte{0x40};
    const std::size_t skipped = (0 - reinterpret_cast<std::uintptr_t>(p)) % sizeof(std::uint32_t);
    if (bytes > skipped) fill_words(p + skipped, (bytes - skipped) / sizeof(std::uint32_t));
}

TouchBlocks::TouchBlocks(const ParallelContext& context, std::size_t bytes)
    : tasks(context.framework ? std::max(context.tds / 4, 1u) : 1),
      block(bytes / tasks + (bytes % tasks != 0)),
      total(bytes) {}

std::size_t TouchBlocks::begin(std::uint32_t index) const {
    // index * block may pass `total`, but by less than tasks^2 bytes
    return std::min(index * block, total);
}

void touch_in_parallel(const ParallelContext& context, std::byte* p, std::size_t bytes) {
    const TouchBlocks blocks(context, bytes);
    if (blocks.tasks < 2) return touch(p, bytes);
    TouchAction action(p, blocks);
    context.framework->run_in_parallel(action, 0, blocks.tasks);
}

} // namespace zvp
