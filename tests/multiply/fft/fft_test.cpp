// The floating-point transform against GMP, in every kernel set.

#include "multiply/fft/fft.h"

#include "app/failure/exceptions.h"
#include "multiply/fft/root_of_unity.h"

#include "fft_products.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

using namespace zvp;
using namespace test;

namespace {

bool whole_table() { return std::getenv("ZORVANE_TEST_LARGE") != nullptr; }

const std::byte* bytes_of(const std::vector<std::uint32_t>& A) { return reinterpret_cast<const std::byte*>(A.data()); }

/// The words of A * B modulo 2^N + 1 by the transform, and the top word behind them: of kept forms, then at one go, then
/// with the form of B which that leaves. All must agree.
std::vector<std::uint32_t> fft_words(const FftTables& tables, const FftLength& length,
                                     const std::vector<std::uint32_t>& A, const std::vector<std::uint32_t>& B) {
    const std::uint64_t form = fft_transform_bytes(length);
    GuardedBytes M(fft_scratch_bytes(length)), Xa(form), Xb(form);
    const auto words_of = [&](int top) {
        std::vector<std::uint32_t> words(length.capacity_bits() / 32 + 1);
        words.back() = static_cast<std::uint32_t>(top);
        std::memcpy(words.data(), M.data(), length.capacity_bits() / 8);
        return words;
    };
    const auto product_of_forms = [&] {
        fft_forward(tables, length, M.data(), Xa.data(), bytes_of(A), 4 * A.size());
        return words_of(fft_product(tables, length, M.data(), Xa.data(), Xa.data(), Xb.data()));
    };
    fft_forward(tables, length, M.data(), Xb.data(), bytes_of(B), 4 * B.size());
    const auto words = product_of_forms();
    EXPECT_TRUE(words
                == words_of(fft_multiply(tables, length, M.data(), Xa.data(), bytes_of(A), 4 * A.size(), Xb.data(),
                                         bytes_of(B), 4 * B.size())));
    EXPECT_TRUE(words == product_of_forms());
    EXPECT_TRUE(M.guards_stand() && Xa.guards_stand() && Xb.guards_stand());
    return words;
}

std::vector<std::uint32_t> fft_square_words(const FftTables& tables, const FftLength& length,
                                            const std::vector<std::uint32_t>& A) {
    GuardedBytes M(fft_scratch_bytes(length)), X(fft_transform_bytes(length));
    std::vector<std::uint32_t> words(length.capacity_bits() / 32 + 1);
    words.back() =
        static_cast<std::uint32_t>(fft_square(tables, length, M.data(), X.data(), bytes_of(A), 4 * A.size()));
    std::memcpy(words.data(), M.data(), length.capacity_bits() / 8);
    return words;
}

std::vector<double> product_points(const FftTables& tables, const FftLength& length,
                                   const std::vector<std::uint32_t>& A) {
    const FftShape shape = fft_shape(tables.kernel_set(), length);
    const FftJob job{length.L / 2, length.m, shape.levels, length.bits_per_point, tables.roots(length)};
    GuardedBytes M(fft_scratch_bytes(length)), X(fft_transform_bytes(length));
    fft_forward(tables, length, M.data(), X.data(), bytes_of(A), 4 * A.size());
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

/// Exact roots to 64 bits; the largest order is that of the longest length, 3 or 5 times it that of the other families.
TEST(FftTables, RootsAreWithinHalfAUnitOfTheLastPlace) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    for (const unsigned m : {1U, 3U, 5U})
        for (const unsigned e : {3U, 8U, 9U, 14U, 31U}) {
            const RootOfUnity root(m, e);
            const std::uint64_t order = std::uint64_t{4 * m} << e, most = order / 8 * 5;
            for (unsigned i = 0; i < 4000; ++i) {
                const std::uint64_t t = most < 4000 ? i % (most + 1) : random() % (most + 1);
                const long double angle = 2 * M_PIl * static_cast<long double>(t) / static_cast<long double>(order);
                EXPECT_NEAR(static_cast<double>(root(t).real() - std::cos(angle)), 0, 0x1p-54 * 1.02) << t << " " << e;
                EXPECT_NEAR(static_cast<double>(root(t).imag() - std::sin(angle)), 0, 0x1p-54 * 1.02) << t << " " << e;
            }
        }
}

TEST(FftTables, LengthsThatWereNotAskedForAreRefused) {
    FftTables tables;
    EXPECT_EQ(tables.bytes(), 0U);
    tables.ensure(20000);
    GuardedBytes memory(tables.bytes());
    tables.place(memory.data());
    EXPECT_NE(tables.roots(fft_length(20000)).bases, nullptr);
    const auto refuse = [&] {
        dup2(STDERR_FILENO, STDOUT_FILENO);
        tables.roots(fft_length(200000));
    };
    EXPECT_EXIT(refuse(), testing::ExitedWithCode(1), "^\nInvalid Function Parameters:   FftTables::roots\\(\\)\n");
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
                    ASSERT_EQ(fft_square_words(all.tables, length, A), ring_product(A, A, n)) << AL;
                }
        }
    }
}

/// fft.h tells the bound on a point's error, and that what keeps it below 1/2 is that the levels' errors don't all point
/// one way. These are the operands for which they do so most.
TEST(FftProduct, WorstOperandsStayFarFromTheMiddleBetweenIntegers) {
    SCOPED_TRACE(seed_trace());
    const std::uint64_t most = whole_table() ? 1 << 26 : 1 << 18;
    for (const auto set : kernel_sets()) {
        if (whole_table() && set == platform::KernelSet::sse3) continue;
        const Tables all(set, most);
        std::mt19937_64 random(seed());
        for (const FftLength& length : fft_lengths()) {
            if (length.L > most) continue;
            double farthest = 0;
            const auto attempt = [&](Pattern pattern, std::size_t part) {
                const auto A = operand(random, length.capacity_bits() / 32 / part, pattern, length.bits_per_point);
                farthest = std::max(farthest, rounding_distance(all.tables, length, A));
            };
            for (const Pattern pattern : all_patterns)
                for (const std::size_t part : {1, 2}) attempt(pattern, part);
            for (std::uint64_t more = (1 << 16) / length.L; more > 0; --more) attempt(Pattern::resonant, 1);
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
            // Closed operands end where their storage ends; open ones stand among others, anywhere in a line.
            const auto check = [&](const std::vector<std::uint32_t>& A, const std::vector<std::uint32_t>& B) {
                const auto expected = ring_product(A, B, n);
                const bool square = A == B, open = random() % 2;
                const std::size_t before = open ? 1 + random() % 16 : 0, behind = open ? 8 : 0;
                const auto among_others = [&](const std::vector<std::uint32_t>& X) {
                    std::vector<std::uint32_t> words(before + n + behind);
                    for (auto& word : words) word = static_cast<std::uint32_t>(random());
                    std::copy(X.begin(), X.end(), words.begin() + static_cast<std::ptrdiff_t>(before));
                    return words;
                };
                auto a = among_others(A), others = a;
                const auto b = among_others(B);
                const int top =
                    square ? ring_sqr(all.tables, length, a.data() + before, M.data(), open)
                           : ring_mul(all.tables, length, a.data() + before, b.data() + before, M.data(), open);
                ASSERT_EQ(static_cast<std::uint32_t>(top), expected.back());
                std::copy_n(expected.begin(), n, others.begin() + static_cast<std::ptrdiff_t>(before));
                ASSERT_EQ(a, others) << (square ? "square" : "product") << (open ? ", open" : "");
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
