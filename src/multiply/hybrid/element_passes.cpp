#include "multiply/hybrid/element_passes.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace zvp {

namespace {

/// Four elements of the smallest rings are larger than the scratch of one of their products.
constexpr std::size_t small_stride = least_fft_ring + 1;

/// The elements that results pass through on their way to a rotation.
class Temporaries {
public:
    Temporaries(const HybridSize& size, TaskScratch scratch) {
        for (unsigned i = 0; i < z.size(); ++i)
            z[i] = size.n < least_fft_ring ? small.data() + i * small_stride : scratch.element(size, i);
    }
    RingWord* operator[](std::size_t i) const { return z[i]; }

private:
    std::array<RingWord, 4 * small_stride> small;
    std::array<RingWord*, 4> z;
};

/// The four points of one step at distance `quarter`, the first of which is `t`.
struct Quad {
    RingWord* x[4];

    Quad(const ElementSet& set, std::uint64_t t, std::uint64_t quarter)
        : x{set.at(t), set.at(t + quarter), set.at(t + 2 * quarter), set.at(t + 3 * quarter)} {}
};

/// The results of a forward step that lie in z, to their places.
void turn_quad(const HybridJob& job, const Quad& quad, std::uint64_t e, const Temporaries& z) {
    const std::uint64_t exponents[3]{2 * e, e, 3 * e};
    for (int i = 0; i < 3; ++i) multiply_by_root(job, quad.x[i + 1], z[i], exponents[i], z[3]);
}

/// What is turned lies in z, else in its place: the first quad of each block isn't turned, which in the last step of a row
/// is every one.
struct Unturned {
    RingWord* x[3];

    Unturned(const Quad& quad, std::uint64_t e, const Temporaries& z)
        : x{e != 0 ? z[0] : quad.x[1], e != 0 ? z[1] : quad.x[2], e != 0 ? z[2] : quad.x[3]} {}
};

void forward_quad(const HybridJob& job, const Quad& quad, std::uint64_t e, const Temporaries& z) {
    job.kernels.forward4(quad.x, Unturned(quad, e, z).x, job.size.n);
    if (e != 0) turn_quad(job, quad, e, z);
}

void inverse_quad(const HybridJob& job, const Quad& quad, std::uint64_t e, const Temporaries& z) {
    const std::uint64_t turn = job.size.turn(), exponents[3]{2 * e, e, 3 * e};
    for (int i = 0; i < 3 && e != 0; ++i) multiply_by_root(job, z[i], quad.x[i + 1], turn - exponents[i] % turn, z[3]);
    job.kernels.inverse4(quad.x, Unturned(quad, e, z).x, job.size.n);
}

/// Half-bits between neighbouring points of a block.
std::uint64_t unit_of(const HybridJob& job, std::uint64_t block_points) { return job.size.turn() / block_points; }

} // namespace

void multiply_by_root(const HybridJob& job, RingWord* out, const RingWord* x, std::uint64_t e, RingWord* spare) {
    const std::size_t n = job.size.n;
    const std::uint64_t turn = job.size.turn(), N = turn / 4;
    e %= turn;
    const std::uint64_t bits = e / 2;
    if (e % 2 == 0) return job.kernels.rotate(out, x, n, bits);
    // √2 = 2^(3N/4) - 2^(N/4).
    job.kernels.rotate(out, x, n, (bits + 3 * N / 4) % (2 * N));
    job.kernels.rotate(spare, x, n, (bits + N / 4) % (2 * N));
    job.kernels.subtract(out, spare, n);
}

namespace {

/// The lower `left` levels of the set's.
void forward_steps(const HybridJob& job, const ElementSet& set, unsigned left, const Temporaries& z) {
    for (; left >= 2; left -= 2) {
        const std::uint64_t block = std::uint64_t{1} << left, quarter = block / 4;
        const std::uint64_t unit = unit_of(job, block * set.step);
        for (std::uint64_t base = 0; base < std::uint64_t{1} << set.levels; base += block)
            for (std::uint64_t t = 0; t < quarter; ++t)
                forward_quad(job, Quad(set, base + t, quarter), unit * (set.offset + t * set.step), z);
    }
    if (left == 0) return;
    const std::uint64_t e = unit_of(job, 2 * set.step) * set.offset;
    for (std::uint64_t t = 0; t < std::uint64_t{1} << set.levels; t += 2) {
        RingWord* const difference = e != 0 ? z[0] : set.at(t + 1);
        job.kernels.butterfly(set.at(t), set.at(t + 1), difference, job.size.n);
        if (e != 0) multiply_by_root(job, set.at(t + 1), difference, e, z[3]);
    }
}

/// c words of an operand, as far as it has them.
struct Slice {
    const RingWord* words;
    std::size_t count;

    Slice(const HybridSize& size, const RingWord* A, std::size_t AL, std::uint64_t i)
        : words(A + std::min<std::uint64_t>(AL, i * size.c)),
          count(std::min<std::uint64_t>(AL - std::min<std::uint64_t>(AL, i * size.c), size.c)) {}

    /// Where all c words can be read: at x, if the operand ends before.
    const RingWord* whole(const HybridSize& size, RingWord* x) const {
        if (count == size.c) return words;
        std::copy_n(words, count, x);
        std::memset(x + count, 0, 4 * (size.c - count));
        return x;
    }
};

/// Coefficients t, t + quarter, .. of the set, and the first step with them. Operands mostly end within the first half.
void load_quad(const HybridJob& job, const ElementSet& set, const RingWord* A, std::size_t AL, std::uint64_t t,
               const Temporaries& z) {
    const std::uint64_t quarter = std::uint64_t{1} << (set.levels - 2);
    const Quad quad(set, t, quarter);
    const auto slice = [&](std::uint64_t i) {
        return Slice(job.size, A, AL, set.offset + (t + i * quarter) * set.step);
    };
    if (slice(0).count == 0) {
        for (RingWord* const x : quad.x) std::memset(x, 0, 4 * job.size.stride);
        return;
    }
    const bool two = slice(2).count == 0;
    const RingWord* in[4]{};
    for (unsigned i = 0; i < (two ? 2U : 4U); ++i) in[i] = slice(i).whole(job.size, quad.x[i]);
    const std::uint64_t e = unit_of(job, set.step << set.levels) * (set.offset + t * set.step);
    job.kernels.load4(in, quad.x[0], Unturned(quad, 1, z).x, job.size.n, two);
    turn_quad(job, quad, e, z);
}

} // namespace

void load_levels(const HybridJob& job, const ElementSet& set, const RingWord* A, std::size_t AL, TaskScratch scratch) {
    const Temporaries z(job.size, scratch);
    for (std::uint64_t t = 0; t < std::uint64_t{1} << (set.levels - 2); ++t) load_quad(job, set, A, AL, t, z);
    forward_steps(job, set, set.levels - 2, z);
}

void forward_levels(const HybridJob& job, const ElementSet& set, TaskScratch scratch) {
    forward_steps(job, set, set.levels, Temporaries(job.size, scratch));
}

void inverse_levels(const HybridJob& job, const ElementSet& set, TaskScratch scratch) {
    const Temporaries z(job.size, scratch);
    unsigned done = set.levels % 2;
    if (done == 1) {
        const std::uint64_t e = unit_of(job, 2 * set.step) * set.offset;
        for (std::uint64_t t = 0; t < std::uint64_t{1} << set.levels; t += 2) {
            RingWord* const turned = e != 0 ? z[0] : set.at(t + 1);
            if (e != 0) multiply_by_root(job, turned, set.at(t + 1), job.size.turn() - e, z[3]);
            job.kernels.butterfly(set.at(t), turned, set.at(t + 1), job.size.n);
        }
    }
    for (; done < set.levels; done += 2) {
        const std::uint64_t quarter = std::uint64_t{1} << done, block = 4 * quarter;
        const std::uint64_t unit = unit_of(job, block * set.step);
        for (std::uint64_t base = 0; base < std::uint64_t{1} << set.levels; base += block)
            for (std::uint64_t t = 0; t < quarter; ++t)
                inverse_quad(job, Quad(set, base + t, quarter), unit * (set.offset + t * set.step), z);
    }
}

} // namespace zvp
