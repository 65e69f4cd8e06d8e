#include "multiply/fft/fft_tables.h"

#include "app/console/console.h"
#include "multiply/fft/root_of_unity.h"

#include <algorithm>
#include <bit>
#include <memory>

namespace zvp {

namespace {

constexpr std::array<unsigned, 3> family_m{1, 3, 5};
constexpr std::size_t pass_doubles = 8; // roots of one node
constexpr std::size_t front_doubles = 8;

unsigned family_index(unsigned m) { return m / 2; }

unsigned log2_of(std::uint64_t power) { return static_cast<unsigned>(std::countr_zero(power)); }

/// The lowest `bits` of k in opposite order.
std::uint64_t reverse_bits(std::uint64_t k, unsigned bits) {
    if (bits == 0) return 0;
    k = (k >> 1 & 0x5555555555555555) | (k & 0x5555555555555555) << 1;
    k = (k >> 2 & 0x3333333333333333) | (k & 0x3333333333333333) << 2;
    k = (k >> 4 & 0x0F0F0F0F0F0F0F0F) | (k & 0x0F0F0F0F0F0F0F0F) << 4;
    return __builtin_bswap64(k) >> (64 - bits);
}

/// Writes the roots of a family's nodes.
class RootWriter {
public:
    /// Roots down to those that a pass at `deepest` needs.
    RootWriter(unsigned m_, unsigned deepest) : m(m_), order_log(deepest + 3), root(m_, order_log) {}

    /// The family's first root to the powers 1 .. m - 1.
    void front(double* out) const {
        for (unsigned t = 1; t < m; ++t) put(root(std::uint64_t{t} << order_log), out + 2 * (t - 1), 1);
    }

    /// f of a node, in units of 1 / (4 m 2^level).
    std::uint64_t node_fraction(unsigned level, std::uint64_t node) const {
        const std::uint64_t k = node & ((std::uint64_t{1} << level) - 1), r = node >> level;
        return 1 + 4 * r + 4 * m * reverse_bits(k, level);
    }

    /// The roots for `radix` of the node of that fraction, each part `stride` doubles behind the other's.
    void node(unsigned level, std::uint64_t f, unsigned radix, double* out, std::size_t stride) const {
        const unsigned unit = order_log - level; // 1 / (4 m 2^level) = 2^unit / order
        put(root(f << (unit - 1)), out, stride);
        if (radix >= 4) put(root(f << (unit - 2)), out + 2 * stride, stride);
        if (radix >= 8) {
            const std::uint64_t w = f << (unit - 3), eighth = m << (order_log - 1);
            put(root(w), out + 4 * stride, stride);
            put(root(w + eighth), out + 6 * stride, stride);
        }
    }

    /// f of a node's descendant `lane`, log2(lanes) levels below, in that level's units.
    std::uint64_t descendant(unsigned level, std::uint64_t f, unsigned lane, unsigned lanes) const {
        return f + (4 * m << level) * reverse_bits(lane, log2_of(lanes));
    }

private:
    static void put(std::complex<double> value, double* out, std::size_t stride) {
        out[0] = value.real();
        out[stride] = value.imag();
    }

    std::uint64_t m;
    unsigned order_log;
    RootOfUnity root;
};

void write_pass(const RootWriter& writer, unsigned m, unsigned level, double* out) {
    for (std::uint64_t node = 0; node < std::uint64_t{m} << level; ++node)
        writer.node(level, writer.node_fraction(level, node), 8, out + pass_doubles * node, 1);
}

/// One base: the roots of its own node, then those of its descendants, lane by lane, or of the first alone.
void write_bases(const RootWriter& writer, unsigned m, unsigned level, const FftShape& shape, double* out) {
    const unsigned lanes = shape.lanes, below = level + log2_of(lanes);
    for (std::uint64_t node = 0; node < std::uint64_t{m} << level; ++node, out += shape.base_doubles()) {
        const std::uint64_t f = writer.node_fraction(level, node);
        writer.node(level, f, lanes, out, 1);
        if (shape.short_bases) {
            writer.node(below, f, lanes, out + lanes, 1);
            continue;
        }
        for (unsigned lane = 0; lane < lanes; ++lane)
            writer.node(below, writer.descendant(level, f, lane, lanes), lanes, out + lanes + lane, lanes);
    }
}

/// The roots of the descendants `lane` of one node, less those of the first.
void write_lanes(unsigned lanes, double* out) {
    const RootOfUnity root(1, 6); // order 256
    for (unsigned lane = 0; lane < lanes; ++lane) {
        const std::uint64_t f = reverse_bits(lane, log2_of(lanes)) * 256 / lanes; // of a turn
        for (unsigned i = 0; i < lanes / 2; ++i) {
            const std::complex<double> value = root((f >> (i < 3 ? i + 1 : 3)) + (i == 3 ? 32 : 0));
            out[2 * lanes * i + lane] = value.real();
            out[2 * lanes * i + lanes + lane] = value.imag();
        }
    }
}

unsigned wide_lanes(platform::KernelSet set) {
    switch (set) {
    case platform::KernelSet::sse3: return 2;
    case platform::KernelSet::avx2: return 4;
    case platform::KernelSet::avx512: return 8;
    }
    return 2;
}

/// From here on reading the roots of all lanes takes longer than making them: points that the first cache doesn't hold.
bool has_short_bases(unsigned m, unsigned lanes, unsigned level) {
    constexpr std::uint64_t least_points = 1 << 14;
    return (std::uint64_t{m} << level) * lanes * lanes >= least_points;
}

} // namespace

FftShape fft_shape(platform::KernelSet set, const FftLength& length) {
    const std::uint64_t block = length.L / 2 / length.m;
    FftShape shape{wide_lanes(set), 0};
    // Family 1 has no butterfly of its own: its first pass takes the place, and must leave a base below it.
    const std::uint64_t least = length.m == 1 ? 2 : 1;
    if (shape.lanes == 8 && block < least * 64) shape.lanes = 4;
    shape.levels = log2_of(block) - 2 * log2_of(shape.lanes);
    shape.short_bases = has_short_bases(length.m, shape.lanes, shape.levels);
    return shape;
}

void FftTables::want(const FftLength& length) {
    const FftShape shape = fft_shape(set, length);
    Family& f = family[family_index(length.m)];
    f.pass_levels = std::max(f.pass_levels, shape.levels);
    f.base_levels[shape.lanes] = std::max(f.base_levels[shape.lanes], shape.levels + 1);
}

void FftTables::ensure(std::uint64_t bits) {
    const std::uint64_t most = fft_length(bits).capacity_bits();
    for (const FftLength& row : fft_lengths())
        if (row.capacity_bits() <= most) want(row);
}

void FftTables::ensure_rings(std::uint64_t bits) {
    for (const FftLength& row : fft_ring_lengths())
        if (row.capacity_bits() <= bits) want(row);
}

/// Visits every table in its order in memory, with its size and what writes it.
template <class Visit>
void FftTables::for_each_table(Visit visit) {
    for (unsigned width = 2; width <= most_lanes; width *= 2)
        if (std::ranges::any_of(family, [=](const Family& f) { return f.base_levels[width] > 0; }))
            visit(0U, lane_tables[width < 8], std::size_t{width} * width,
                  [=](const RootWriter&, double* out) { write_lanes(width, out); });
    for (unsigned index = 0; index < families; ++index) {
        Family& f = family[index];
        const unsigned m = family_m[index];
        if (std::ranges::none_of(f.base_levels, [](unsigned levels) { return levels > 0; })) continue;
        visit(index, f.front, front_doubles, [](const RootWriter& writer, double* out) { writer.front(out); });
        for (unsigned level = 0; level < f.pass_levels; ++level)
            visit(index, f.passes[level], pass_doubles * m << level,
                  [=](const RootWriter& writer, double* out) { write_pass(writer, m, level, out); });
        for (unsigned lanes = 2; lanes <= most_lanes; lanes *= 2)
            for (unsigned level = 0; level < f.base_levels[lanes]; ++level) {
                const FftShape shape{lanes, level, has_short_bases(m, lanes, level)};
                visit(index, f.bases[lanes < 8][level], shape.base_doubles() * m << level,
                      [=](const RootWriter& writer, double* out) { write_bases(writer, m, level, shape, out); });
            }
    }
}

namespace {

std::uint64_t table_bytes(std::size_t doubles) { return (doubles * sizeof(double) + 63) / 64 * 64; }

} // namespace

std::uint64_t FftTables::bytes() const {
    std::uint64_t sum = 0;
    FftTables copy = *this;
    copy.for_each_table([&](unsigned, const double*&, std::size_t doubles, auto&&) { sum += table_bytes(doubles); });
    return sum;
}

std::byte* FftTables::place(std::byte* memory) {
    std::array<std::unique_ptr<RootWriter>, families> writers;
    for (unsigned index = 0; index < families; ++index) {
        unsigned deepest = family[index].pass_levels;
        for (unsigned lanes = 2; lanes <= most_lanes; lanes *= 2)
            deepest = std::max(deepest, family[index].base_levels[lanes] + log2_of(lanes));
        writers[index] = std::make_unique<RootWriter>(family_m[index], deepest);
    }
    for_each_table([&](unsigned index, const double*& table, std::size_t doubles, auto&& write) {
        double* out = reinterpret_cast<double*>(memory);
        write(*writers[index], out);
        table = out;
        memory += table_bytes(doubles);
    });
    return memory;
}

FftTables::Roots FftTables::roots(const FftLength& length) const {
    const FftShape shape = fft_shape(set, length);
    const Family& f = family[family_index(length.m)];
    const double* bases = f.bases[shape.lanes < 8][shape.levels];
    if (!bases || !f.front) fatal_stop("Invalid Function Parameters:   FftTables::roots()");
    return {f.front, f.passes.data(), bases, lane_tables[shape.lanes < 8], shape.short_bases};
}

} // namespace zvp
