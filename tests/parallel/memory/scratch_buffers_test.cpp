#include "parallel/memory/aligned_buffer.h"
#include "parallel/memory/carving.h"
#include "parallel/memory/linear_word_buffer.h"

#include "app/raised.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace {

using namespace zvp;

alignas(8192) std::byte memory[8192];

static_assert(std::is_trivially_copyable_v<AlignedBufferC<64>> && std::is_trivially_copyable_v<LinearWordBuffer>);

/// "<function> <size> <wanted>" of the BufferTooSmallException that `function` raises.
template <class Function>
std::string too_small(Function&& function) {
    try {
        function();
    } catch (const BufferTooSmallException& failure) {
        return std::string(failure.function) + " " + std::to_string(failure.buffer_size) + " "
               + std::to_string(failure.required_size);
    } catch (const InvalidParametersException& failure) {
        return failure.function + " " + failure.message;
    }
    return "nothing";
}

TEST(AlignedBuffer, SpawnsFromTheFront) {
    AlignedBufferC<64> buffer(memory, 256);
    for (const std::size_t bytes : {0u, 64u}) {
        const auto front = buffer.spawn(bytes);
        EXPECT_EQ(front.pointer, memory);
        EXPECT_EQ(front.bytes, bytes);
    }
    const LinearWordBuffer words = buffer.spawn_words(16);
    EXPECT_EQ(reinterpret_cast<std::byte*>(words.pointer), memory + 64);
    EXPECT_EQ(words.words, 16u);
    buffer.spawn(128);
    EXPECT_EQ(buffer.pointer, memory + 256);
    EXPECT_EQ(buffer.bytes, 0u);
}

TEST(AlignedBuffer, TooSmallComesBeforeMisaligned) {
    AlignedBufferC<64> buffer(memory, 128);
    EXPECT_EQ(too_small([&] { buffer.spawn(100); }), "AlignedBufferC::spawn() Size is misaligned.");
    EXPECT_EQ(too_small([&] { buffer.spawn(129); }), "AlignedBufferC::spawn() 128 129");
    EXPECT_EQ(too_small([&] { buffer.spawn(1ull << 32); }), "AlignedBufferC::spawn() 128 4294967296");
    EXPECT_EQ(too_small([&] { buffer.spawn_words(15); }), "AlignedBufferC::spawn_words() Size is misaligned.");
    EXPECT_EQ(too_small([&] { buffer.spawn_words(33); }), "AlignedBufferC::spawn_words() 128 132");
    EXPECT_EQ(too_small([&] { buffer.spawn_words((1ull << 62) + 16); }), // 64 bytes, if the product wrapped
              "AlignedBufferC::spawn_words() 128 18446744073709551615");
    EXPECT_EQ(buffer.bytes, 128u);
    EXPECT_EQ(buffer.pointer, memory);
    EXPECT_EQ(too_small([] { AlignedBufferC<64>(memory + 32, 64); }),
              "AlignedBufferC::AlignedBufferC() Pointer is misaligned.");
}

TEST(AlignedBuffer, ExtractsHigherAlignment) {
    AlignedBufferC<64> buffer(memory + 4096 - 64, 100);
    const AlignedBufferC<4096> inner = buffer.extract_aligned();
    EXPECT_EQ(inner.pointer, memory + 4096);
    EXPECT_EQ(inner.bytes, 36u);
    EXPECT_EQ(buffer.bytes, 100u);
    EXPECT_EQ(AlignedBufferC<64>(memory, 128).extract_aligned().bytes, 128u);
    EXPECT_EQ(AlignedBufferC<64>(memory + 4032, 64).extract_aligned().bytes, 0u);
    EXPECT_EQ(too_small([] { AlignedBufferC<64>(memory + 4032, 63).extract_aligned(); }),
              "AlignedBufferC::extract_aligned() 63 64");
}

TEST(LinearWordBuffer, CutsFromTheBottom) {
    std::uint32_t words[10];
    LinearWordBuffer buffer{words + 1, 9};
    const LinearWordBuffer low = buffer.cut_from_bottom(4);
    EXPECT_EQ(low.pointer, words + 1);
    EXPECT_EQ(low.words, 4u);
    EXPECT_EQ(too_small([&] { buffer.cut_from_bottom(6); }), "LinearWordBuffer::cut_from_bottom() 5 6");
    EXPECT_EQ(too_small([&] { buffer.cut_from_bottom(1ull << 32); }),
              "LinearWordBuffer::cut_from_bottom() 5 4294967296");
    buffer.cut_from_bottom(5);
    EXPECT_EQ(buffer.pointer, words + 10);
    EXPECT_EQ(buffer.words, 0u);
}

TEST(Carving, SharesForBranchesAndTasks) {
    const AlignedBufferC<64> whole(memory, 64 * 5 + 63);
    const BufferHalves<64> halves(whole);
    EXPECT_EQ(halves.first.pointer, memory);
    EXPECT_EQ(halves.second.pointer, memory + 128);
    EXPECT_EQ(halves.first.bytes, 128u);
    EXPECT_EQ(halves.second.bytes, 128u);
    EXPECT_EQ(BufferHalves<64>({memory, 127}).second.bytes, 0u);

    auto* const end = reinterpret_cast<std::uint32_t*>(memory) + 100;
    const WordAreaHalves areas(end, 7);
    EXPECT_EQ(areas.upper_end, end);
    EXPECT_EQ(areas.upper_words, 4u);
    EXPECT_EQ(areas.lower_end, end - 4);
    EXPECT_EQ(areas.lower_words, 3u);

    AlignedBufferC<64> rest(memory, 1024);
    const TaskBlocks<64> blocks(rest, 3, 128);
    EXPECT_EQ(rest.pointer, memory + 384);
    EXPECT_EQ(blocks.block(2).pointer, memory + 256);
    EXPECT_EQ(blocks.block(2).bytes, 128u);
    EXPECT_EQ(too_small([&] { TaskBlocks<64>(rest, std::size_t{1} << 60, 64); }),
              "AlignedBufferC::spawn() 640 18446744073709551615");

    EXPECT_EQ(padded_words(0), 0u);
    EXPECT_EQ(padded_words(17), 32u);
    EXPECT_EQ(padded_bytes(64), 64u);
    EXPECT_EQ(padded_bytes(65), 128u);
}

} // namespace
