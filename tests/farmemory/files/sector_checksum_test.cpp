#include "farmemory/files/sector_checksum.h"

#include "support/seed.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace {

constexpr std::uint64_t modulus = 0x7FFF'FFFF;

/// The polynomials in 16 by plain remainders; a sum of zeros is 0, any other sum that is 0 modulo 2^31 - 1 is 2^31 - 1.
std::uint32_t expected_checksum(std::uint32_t seed, const std::vector<std::uint64_t>& data) {
    std::uint64_t lanes[2] = {0, seed % modulus};
    bool zeros = seed == 0;
    for (std::size_t i = 0; i < data.size(); ++i) {
        std::uint32_t halves[2];
        std::memcpy(halves, &data[i], 8);
        const std::uint64_t value = std::uint64_t{halves[0]} << 32 | halves[1];
        lanes[i % 2] = (lanes[i % 2] * 16 + value % modulus) % modulus;
        zeros &= value == 0;
    }
    const std::uint64_t sum = (lanes[1] + 4 * lanes[0]) % modulus;
    return static_cast<std::uint32_t>(sum == 0 && !zeros ? modulus : sum);
}

TEST(SectorChecksum, IsThePolynomialModuloTheMersennePrime) {
    SCOPED_TRACE(test::seed_trace());
    std::mt19937_64 random(test::seed());
    for (int round = 0; round < 3000; ++round) {
        std::vector<std::uint64_t> data(2 * (random() % 40));
        const std::uint64_t kind = random() % 3;
        for (std::uint64_t& word : data) {
            const std::uint64_t run = random() % 4;
            word = kind == 0 ? 0 : kind == 1 || run == 0 ? ~0ull : run == 1 ? 0 : random();
        }
        const std::uint32_t seeds[] = {0, 1, modulus - 1, modulus, static_cast<std::uint32_t>(random() % modulus)};
        for (const std::uint32_t seed : seeds)
            ASSERT_EQ(FileIO::sector_checksum(seed, data.data(), data.size()), expected_checksum(seed, data))
                << data.size() << " words, seed " << seed;
    }
    const std::vector<std::uint64_t> ones(1 << 16, ~0ull); // the largest sums, for long
    EXPECT_EQ(FileIO::sector_checksum(modulus, ones.data(), ones.size()), expected_checksum(modulus, ones));
}

TEST(SectorChecksum, SeesOneBitAndSwappedWords) {
    std::mt19937_64 random(test::seed());
    std::vector<std::uint64_t> data(512);
    for (std::uint64_t& word : data) word = random();
    const auto checksum = [&] { return FileIO::sector_checksum(7, data.data(), data.size()); };
    const std::uint32_t good = checksum();
    for (int round = 0; round < 2000; ++round) {
        const std::uint64_t bit = std::uint64_t{1} << random() % 64;
        std::uint64_t& word = data[random() % data.size()];
        word ^= bit;
        ASSERT_NE(checksum(), good);
        word ^= bit;
        const std::size_t a = random() % 500;
        std::swap(data[a], data[a + 2]);
        ASSERT_NE(checksum(), good);
        std::swap(data[a], data[a + 2]);
    }
}

} // namespace
