// The floating-point transform, for each kernel set: whole products and squares beside GMP's in one run, then the stages
// of a length with their floating-point rate, beside the rate of independent fused operations. Minima of many rounds; a
// neighbour on the core makes single rounds slower, never faster.

#include "multiply/fft/fft.h"

#include "platform/clock.h"
#include "platform/simd/intrinsics.h"

#include <gmp.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "platform/simd/target_avx512_begin.inl"

namespace {

/// Floating-point operations per ns of independent fused operations of 8 or 4 lanes, in 16 chains.
template <class Vector>
double fused_rate(Vector one) {
    Vector x[16];
    for (auto& v : x) v = one;
    Vector factor = one, term = one;
    constexpr int rounds = 5'000'000;
    const auto began = zvp::platform::performance_counter();
    for (int i = 0; i < rounds; ++i)
        for (auto& v : x) __asm__ volatile("vfmadd231pd %2, %1, %0" : "+v"(v) : "v"(factor), "v"(term));
    const auto ended = zvp::platform::performance_counter();
    return 16.0 * sizeof(Vector) / sizeof(double) * 2 * rounds / static_cast<double>(ended - began);
}

double fused_rate_8() { return fused_rate(_mm512_set1_pd(0.5)); }
double fused_rate_4() { return fused_rate(_mm256_set1_pd(0.5)); }

} // namespace

#include "platform/simd/target_end.inl"

namespace {

using namespace zvp;

struct Free {
    void operator()(std::byte* p) const { std::free(p); }
};
using Block = std::unique_ptr<std::byte, Free>;

Block make_block(std::uint64_t bytes) {
    const std::uint64_t padded = (bytes + 64 + 63) / 64 * 64;
    Block block(static_cast<std::byte*>(std::aligned_alloc(64, padded)));
    std::memset(block.get(), 0, padded);
    return block;
}

/// The least seconds of `rounds` calls.
template <class Call>
double least(int rounds, Call&& call) {
    double seconds = 1e9;
    for (int i = 0; i < rounds; ++i) {
        const auto began = platform::performance_counter();
        call();
        seconds = std::min(seconds, 1e-9 * static_cast<double>(platform::performance_counter() - began));
    }
    return seconds;
}

struct Areas {
    explicit Areas(const FftLength& length)
        : M(make_block(fft_scratch_bytes(length))),
          X(make_block(fft_transform_bytes(length))),
          Y(make_block(fft_transform_bytes(length))) {}
    Block M, X, Y;
};

void print_products(const FftTables& tables) {
    std::printf("  product      GMP us    ours us  times    GMP square    ours  times  square/product\n");
    std::mt19937_64 random(1);
    for (unsigned log_bits = 14; log_bits <= 23; ++log_bits) {
        const std::uint64_t bits = std::uint64_t{1} << log_bits;
        const FftLength length = fft_length(bits);
        const std::size_t limbs = bits / 128, bytes = 8 * limbs;
        std::vector<mp_limb_t> A(limbs), B(limbs), C(2 * limbs);
        for (std::size_t i = 0; i < limbs; ++i) A[i] = random(), B[i] = random();
        const Areas areas(length);
        const auto* a = reinterpret_cast<const std::byte*>(A.data());
        const auto* b = reinterpret_cast<const std::byte*>(B.data());
        std::byte *M = areas.M.get(), *X = areas.X.get(), *Y = areas.Y.get();
        const int rounds = std::clamp(static_cast<int>((1U << 26) >> log_bits), 8, 2000);
        const auto n = static_cast<mp_size_t>(limbs);
        const double gmp = least(rounds / 4 + 3, [&] { mpn_mul_n(C.data(), A.data(), B.data(), n); });
        const double product = least(rounds, [&] {
            fft_multiply(tables, length, M, X, a, bytes, Y, b, bytes);
            std::memcpy(C.data(), M, 2 * bytes);
        });
        const double gmp_square = least(rounds / 4 + 3, [&] { mpn_sqr(C.data(), A.data(), n); });
        const double square = least(rounds, [&] {
            fft_square(tables, length, M, X, a, bytes);
            std::memcpy(C.data(), M, 2 * bytes);
        });
        std::printf("  2^%u  %12.2f %10.2f %6.2f  %12.2f %7.2f %6.2f  %6.3f\n", log_bits, 1e6 * gmp, 1e6 * product,
                    gmp / product, 1e6 * gmp_square, 1e6 * square, gmp_square / square, square / product);
    }
}

/// Floating-point operations are counted as usual, 5 n log2 n for n complex points. "Product" is that of kept forms, with
/// the inverse and the carries; "at one go" is a product of two half operands.
void print_stages(const FftTables& tables) {
    std::printf("  points      half forward us (GF)   forward (GF)        product           at one go\n");
    for (const FftLength& length : fft_lengths()) {
        if (length.L < 1024 || length.L > (1 << 20) || length.k % 2 != 0) continue;
        const FftShape shape = fft_shape(tables.kernel_set(), length);
        const FftJob job{length.L / 2, length.m, shape.levels, length.bits_per_point, tables.roots(length)};
        const FftKernels& kernels = fft_kernels(tables.kernel_set(), shape.lanes);
        const Areas areas(length);
        std::byte *const bits = areas.M.get() + 8, *const out = areas.M.get();
        auto *x = reinterpret_cast<double*>(areas.X.get()), *y = reinterpret_cast<double*>(areas.Y.get());
        const auto fill = [&] { std::memset(bits, 0x35, length.capacity_bits() / 8); };
        fill();
        const int rounds = std::clamp(static_cast<int>((1U << 23) / length.L), 8, 4000);
        const double half = least(rounds, [&] { kernels.forward(job, y, bits, true); });
        const double whole = least(rounds, [&] { kernels.forward(job, y, bits, false); });
        const double product = least(rounds, [&] { kernels.product(job, x, y, y, out); });
        fill();
        const double at_one_go = least(rounds, [&] {
            kernels.first_pass(job, x, bits, true);
            kernels.first_pass(job, y, bits, true);
            kernels.multiply(job, x, y, out);
        });
        const auto n = static_cast<double>(length.L / 2);
        const double flops = 5e-9 * n * std::log2(n);
        std::printf("  %u * 2^%-2u    %10.2f (%4.1f)    %10.2f (%4.1f)    %10.2f         %10.2f\n", length.m, length.k,
                    1e6 * half, flops / half, 1e6 * whole, flops / whole, 1e6 * product, 1e6 * at_one_go);
    }
}

} // namespace

int main() {
    for (const auto set : platform::all_kernel_sets) {
        if (!platform::kernel_set_supported(set)) continue;
        FftTables tables(set);
        tables.ensure(std::uint64_t{1} << 24);
        const Block memory = make_block(tables.bytes());
        tables.place(memory.get());
        const double place = least(3, [&] { tables.place(memory.get()); });
        std::printf("%s: roots of all lengths up to 2^24 bits, %.1f MB, in %.2f ms\n",
                    std::string(platform::kernel_set_name(set)).c_str(), 1e-6 * static_cast<double>(tables.bytes()),
                    1e3 * place);
        print_products(tables);
        print_stages(tables);
    }
    if (platform::kernel_set_supported(platform::KernelSet::avx512))
        std::printf("fused operations: %.1f GF/s by 4 lanes, %.1f GF/s by 8\n", fused_rate_4(), fused_rate_8());
}
