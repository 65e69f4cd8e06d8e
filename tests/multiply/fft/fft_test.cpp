// The floating-point transform against GMP, in every kernel set.

#include "multiply/fft/fft.h"

#include "app/failure/exceptions.h"
#include "multiply/fft/root_of_unity.h"

#include "fft_products.h"

#include <cmath>

using namespace zvp;
using namespace test;

namespace {

bool whole_table() { return std::getenv("ZORVANE_TEST_LARGE") != nullptr; }

/// The words of A * B modulo 2^N + 1 by the transform, and the top word behind them.
std::vector<std::uint32_t> fft_words(const FftTables& tables, const FftLength& length,
                                     const std::vector<std::uint32_t>& A, const std::vector<std::uint32_t>& B) {
    const std::uint64_t form = fft_transform_bytes(length);
    GuardedBytes M(fft_scratch_bytes(length)), Xa(form), Xb(form);
    fft_forward(tables, length, M.data(), Xa.data(), reinterpret_cast<const std::byte*>(A.data()), 4 * A.size());
    fft_forward(tables, length, M.data(), Xb.data(), reinterpret_cast<const std::byte*>(B.data()), 4 * B.size());
    std::vector<std::uint32_t> words(length.capacity_bits() / 32 + 1);
    words.back() = static_cast<std::uint32_t>(fft_product(tables, length, M.data(), Xa.data(), Xa.data(), Xb.data()));
    std::memcpy(words.data(), M.data(), length.capacity_bits() / 8);
    EXPECT_TRUE(M.guards_stand() && Xa.guards_stand() && Xb.guards_stand());
    return words;
}

std::vector<double> product_points(const FftTables& tables, const FftLength& length,
                                   const std::vector<std::uint32_t>& A) {
    const FftShape shape = fft_shape(tables.kernel_set(), length);
    const FftJob job{length.L / 2, length.m, shape.levels, length.bits_per_point, tables.roots(length)};
    GuardedBytes M(fft_scratch_bytes(length)), X(fft_transform_bytes(length));
    fft_forward(tables, length, M.data(), X.data(), reinterpret_cast<const std::byte*>(A.data()), 4 * A.size());
    auto* points = reinterpret_cast<double*>(X.data());
    fft_kernels(tables.kernel_set(), shape.lanes).product_points(job, points, points, points);
    return {points, points + length.L};
}

/// The farthest that a point of the product lies from an integer.
double rounding_distance(const FftTables& tables, const FftLength& length, const std::vector<std::uint32_t>& A) {
    double farthest = 0;
    for (const double point : product_points(tables, length, A)) {
        const double value = point / static_cast<double>(length.L / 2);
        farthest = std::max(farthest, std::abs(value - std::nearbyint(value)));
    }
    return farthest;
}

} // namespace

TEST(FftLength, TablesHaveTheRowsThatCallersCountOn) {
    EXPECT_EQ(fft_lengths().size(), 73U);
    EXPECT_EQ(fft_ring_lengths().size(), 385U);
    EXPECT_EQ(fft_lengths().back().capacity_bits(), fft_max_bits);
    EXPECT_EQ(fft_ring_lengths().back().capacity_bits(), std::uint64_t{8} << 30);
    const struct {
        std::uint64_t bits, L;
        unsigned bits_per_point;
    } rows[]{{1, 64, 21},
             {1344, 64, 21},
             {1345, 128, 21},
             {9728, 512, 19},
             {5 << 10, 256, 20},
             {14680064, 1 << 20, 14},
             {fft_max_bits, 1ULL << 31, 8}};
    for (const auto& row : rows) {
        EXPECT_EQ(fft_length(row.bits).L, row.L) << row.bits;
        EXPECT_EQ(fft_length(row.bits).bits_per_point, row.bits_per_point) << row.bits;
    }
    EXPECT_THROW(fft_length(fft_max_bits + 1), LimitExceededException);
    for (std::size_t i = 1; i < fft_lengths().size(); ++i)
        EXPECT_LT(fft_lengths()[i - 1].capacity_bits(), fft_lengths()[i].capacity_bits());
}

TEST(FftLength, ARingHasTheShortestLengthThatHoldsItExactly) {
    EXPECT_EQ(fft_ring_length(448).L, 64U);
    EXPECT_EQ(fft_ring_length(448).bits_per_point, 7U);
    EXPECT_EQ(fft_ring_length(64 * 14).L, 64U); // not 128 points of 7 bits
    EXPECT_THROW(fft_ring_length(449), InvalidParametersException);
    EXPECT_THROW(fft_ring_length(416), InvalidParametersException);
}

TEST(FftTables, RootsAreWithinAUnitOfTheLastPlace) {
    for (const unsigned m : {1U, 3U, 5U}) {
        const unsigned e = 14;
        const RootOfUnity root(m, e);
        const std::uint64_t order = std::uint64_t{4 * m} << e;
        for (std::uint64_t t = 0; t <= order * 5 / 8; t += 7) {
            const long double angle = 2 * M_PIl * static_cast<long double>(t) / static_cast<long double>(order);
            EXPECT_NEAR(root(t).real(), static_cast<double>(std::cos(angle)), 0x1p-53 * 1.05) << t;
            EXPECT_NEAR(root(t).imag(), static_cast<double>(std::sin(angle)), 0x1p-53 * 1.05) << t;
        }
    }
}

TEST(FftTables, LengthsThatWereNotAskedForAreRefused) {
    FftTables tables;
    EXPECT_EQ(tables.bytes(), 0U);
    tables.ensure(20000);
    GuardedBytes memory(tables.bytes());
    tables.place(memory.data());
    EXPECT_NO_THROW(tables.roots(fft_length(20000)));
    EXPECT_THROW(tables.roots(fft_length(200000)), InvalidParametersException);
}

TEST(FftProduct, EveryRowAtItsCapacityAndBeside) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    const std::uint64_t most = whole_table() ? 1 << 20 : 1 << 15;
    for (const auto set : kernel_sets()) {
        const Tables all(set, most);
        for (const FftLength& length : fft_lengths()) {
            if (length.L > most) continue;
            SCOPED_TRACE(name_of(set, length));
            const std::size_t n = length.capacity_bits() / 32;
            // A full product; short and long; operands on both sides of the middle, from where points are complex.
            const std::size_t splits[][2]{
                {n / 2, n - n / 2}, {1, n - 1}, {1, 1}, {n / 2 + 1, n - n / 2 - 1}, {n - 2, 2}};
            for (const auto& [AL, BL] : splits)
                for (const Pattern pattern : {Pattern::random, Pattern::runs, Pattern::ones}) {
                    const auto A = operand(random, AL, pattern, length.bits_per_point);
                    const auto B = operand(random, BL, pattern, length.bits_per_point);
                    ASSERT_EQ(fft_words(all.tables, length, A, B), ring_product(A, B, n)) << AL << " x " << BL;
                }
        }
    }
}

/// The error of a point is at most a small multiple of 2^-53 |a| |b|, and |a| |b| <= L 2^(2 b): for squares of all ones
/// that is nearly reached. fft_rounding tells what the rows leave.
TEST(FftProduct, WorstOperandsStayFarFromTheMiddleBetweenIntegers) {
    const std::uint64_t most = whole_table() ? 1 << 26 : 1 << 18;
    for (const auto set : kernel_sets()) {
        if (whole_table() && set == platform::KernelSet::sse3) continue;
        const Tables all(set, most);
        std::mt19937_64 random(seed());
        for (const FftLength& length : fft_lengths()) {
            if (length.L > most) continue;
            double farthest = 0;
            for (const Pattern pattern : all_patterns)
                for (const std::size_t part : {1, 2})
                    farthest = std::max(farthest, rounding_distance(all.tables, length,
                                                                    operand(random, length.capacity_bits() / 32 / part,
                                                                            pattern, length.bits_per_point)));
            EXPECT_LT(farthest, 0.25) << name_of(set, length);
            if (std::getenv("ZORVANE_TEST_VERBOSE")) std::printf("%s: %.4f\n", name_of(set, length).c_str(), farthest);
        }
    }
}

TEST(FftRing, EveryRowAndTheValueTwoToTheN) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    const std::uint64_t most = whole_table() ? 1 << 22 : 1 << 18;
    for (const auto set : kernel_sets()) {
        const Tables all(set, most / 7);
        for (const FftLength& length : fft_ring_lengths()) {
            const std::uint64_t N = length.capacity_bits();
            if (N > most) continue;
            SCOPED_TRACE(name_of(set, length));
            const std::size_t n = N / 32;
            GuardedBytes M(fft_scratch_bytes(length) + 2 * fft_transform_bytes(length));
            const auto check = [&](std::vector<std::uint32_t> A, const std::vector<std::uint32_t>& B) {
                const auto expected = ring_product(A, B, n);
                const bool square = A == B;
                const int top = square ? ring_sqr(all.tables, length, A.data(), M.data())
                                       : ring_mul(all.tables, length, A.data(), B.data(), M.data());
                A.push_back(static_cast<std::uint32_t>(top));
                ASSERT_EQ(A, expected) << (square ? "square" : "product");
            };
            for (const Pattern pattern : all_patterns) {
                const auto A = operand(random, n, pattern, length.bits_per_point);
                check(A, operand(random, n, pattern, length.bits_per_point));
                check(A, A);
            }
            // 2^(N/2) squared is 2^N; so is 2^k times 2^(N - k). One less and one more are its neighbours.
            std::vector<std::uint32_t> root(n), low(n), high(n), one(n);
            root[n / 2] = n % 2 == 0 ? 1 : 1 << 16;
            low[0] = 1 << 5, high[n - 1] = 1 << 27, one[0] = 1;
            check(root, root);
            check(low, high);
            check(one, std::vector<std::uint32_t>(n, ~0U));
            check(std::vector<std::uint32_t>(n), high);
            EXPECT_TRUE(M.guards_stand());
        }
    }
}
