#include "parallel/memory/aligned_malloc.h"

#include "app/failure/exceptions.h"
#include "app/raised.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <new>

namespace {

using namespace zvp;

template <class Value>
Value read_at(const std::byte* p) {
    Value value;
    std::memcpy(&value, p, sizeof value);
    return value;
}

TEST(AlignedMalloc, BlocksAreAlignedAndFramed) {
    for (const std::size_t align : {0u, 1u, 2u, 4u, 8u, 64u, 4096u, 1u << 21})
        for (const std::size_t bytes : {0u, 1u, 3u, 64u, 4097u}) {
            SCOPED_TRACE(testing::Message() << bytes << " bytes at " << align);
            auto* p = static_cast<std::byte*>(aligned_malloc(bytes, align));
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(p) % std::max<std::size_t>(align, 4), 0u);
            EXPECT_EQ(read_at<std::uint64_t>(p - 12), bytes);
            EXPECT_EQ(read_at<std::uint32_t>(p - 4), 0x4BD0187Du);
            EXPECT_EQ(read_at<std::uint32_t>(p + bytes), 0x0559CFE4u);
            EXPECT_LE(read_at<std::byte*>(p - 20), p - 20);
            std::memset(p, 0xFF, bytes);
            EXPECT_NO_THROW(aligned_free(p));
        }
    EXPECT_NO_THROW(aligned_free(nullptr));
}

TEST(AlignedMalloc, EachGuardTellsItsSide) {
    auto* p = static_cast<std::byte*>(aligned_malloc(10, 64));
    const struct {
        std::ptrdiff_t at;
        const char* message;
    } cases[] = {{10, "AlgorithmFailedException: Memory buffer has been overrun."},
                 {13, "AlgorithmFailedException: Memory buffer has been overrun."},
                 {-1, "AlgorithmFailedException: Memory buffer has been underrun."},
                 {-4, "AlgorithmFailedException: Memory buffer has been underrun."}};
    for (const auto& damage : cases) {
        p[damage.at] ^= std::byte{1};
        EXPECT_EQ(test::raised_by([&] { aligned_free(p); }), damage.message) << damage.at;
        p[damage.at] ^= std::byte{1};
    }
    aligned_free(p); // the failures freed nothing
}

TEST(AlignedMalloc, RefusesWhatCantBe) {
    for (const std::size_t align : {3u, 5u, 96u})
        EXPECT_EQ(test::raised_by([&] { aligned_malloc(8, align); }),
                  "InvalidParametersException: Alignment must be a power of two.");
    constexpr std::size_t most = ~std::size_t{0};
    EXPECT_THROW(aligned_malloc(most, 4), std::bad_alloc);
    EXPECT_THROW(aligned_malloc(most - 27, 4), std::bad_alloc); // bytes + 24 fits, + align doesn't
    EXPECT_THROW(aligned_malloc(most / 2, most / 2 + 1), std::bad_alloc);
}

} // namespace
