// From points back to bits: scaling, rounding, carries, packing.
//
// The points are cut into 2 V streams of equal length, V of real parts and V of imaginary parts, and a vector's lanes
// take one stream each: a square of V by V points is transposed, then each vector holds one point of every stream.
// Every stream has its own carry and begins on a byte; what leaves a stream at its top is added to the next one's bytes
// at the end.

/// 1.5 * 2^52: added to a number of less than 2^51, it leaves the number rounded in its low bits.
constexpr double rounding_constant = 6755399441055744.0;

/// Carries are held with a bias, so that they never are negative and a logical shift divides them. The bits of a rounded
/// number bring most of it; the rounding constant is moved by what is left, so that the bias stays as it is from point to
/// point. Below the bits of a point it is zero.
constexpr std::int64_t carry_bias(unsigned bits) {
    const auto rounded = std::bit_cast<std::int64_t>(rounding_constant);
    return (rounded + (rounded >> bits)) >> bits << bits;
}
constexpr double biased_rounding(unsigned bits) {
    const std::int64_t bias = carry_bias(bits);
    return std::bit_cast<double>(bias - (bias >> bits));
}
static_assert(biased_rounding(7) > 0.95 * rounding_constant && biased_rounding(7) < 1.05 * rounding_constant);

struct CarryConstants {
    int bits;
    Doubles scale, rounding;
    Integers mask;

    ZVP_KERNEL_INLINE explicit CarryConstants(const FftJob& job)
        : bits(static_cast<int>(job.bits_per_point)),
          scale(Doubles::broadcast(1.0 / static_cast<double>(job.points))),
          rounding(Doubles::broadcast(biased_rounding(job.bits_per_point))),
          mask(Integers::broadcast((std::int64_t{1} << bits) - 1)) {}
};

/// The next point of each stream.
ZVP_KERNEL_INLINE Integers next_point(Integers& carry, Doubles y, const CarryConstants& k) {
    carry = shift_right(carry, k.bits) + fmadd(y, k.scale, k.rounding).bits();
    return carry & k.mask;
}

/// The packed bits of V streams. Limbs are gathered until a square of V by V can be transposed into V limbs for each
/// stream: a store for each limb would go through more cache lines of one set than the cache has ways.
class PackedStreams {
public:
    ZVP_KERNEL_INLINE PackedStreams(std::byte* begin, std::size_t stream_bytes_)
        : out(begin), stream_bytes(stream_bytes_) {}

    /// No more than V limbs before the next store_full().
    ZVP_KERNEL_INLINE void put(Integers limbs) { limbs.store(waiting + V * count++); }

    ZVP_KERNEL_INLINE void store_full() {
        if (count >= V) store_square();
    }

    /// Stores what waits, and `bytes` of a last limb.
    ZVP_KERNEL_INLINE void finish(Integers last, std::size_t bytes) {
        for (std::size_t i = 0; i < count; ++i, out += sizeof *waiting) store_row(waiting + V * i, sizeof *waiting);
        last.store(waiting);
        store_row(waiting, bytes);
    }

private:
    ZVP_KERNEL_INLINE void store_row(const std::int64_t* row, std::size_t bytes) {
        for (std::size_t t = 0; t < V && bytes > 0; ++t) std::memcpy(out + t * stream_bytes, row + t, bytes);
    }

    ZVP_KERNEL_INLINE void store_square() {
        Doubles square[V];
        for (std::size_t i = 0; i < V; ++i) square[i] = Doubles::from_bits(Integers::load(waiting + V * i));
        transpose(square);
        for (std::size_t t = 0; t < V; ++t)
            square[t].store_unaligned(reinterpret_cast<double*>(out + t * stream_bytes));
        out += V * sizeof *waiting;
        count -= V;
        for (std::size_t i = 0; i < count; ++i) Integers::load(waiting + V * (V + i)).store(waiting + V * i);
    }

    std::byte* out;
    std::size_t stream_bytes;
    alignas(64) std::int64_t waiting[2 * V * V];
    std::size_t count = 0;
};

/// Appends two points to the bits of each stream that wait to fill 64; whole 64 bits are stored.
ZVP_KERNEL_INLINE void append(Integers& waiting, Integers first, Integers second, unsigned position, int bits,
                              PackedStreams& out) {
    const Integers both = first | shift_left(second, bits);
    waiting = waiting | shift_left(both, static_cast<int>(position));
    if (position + 2 * static_cast<unsigned>(bits) >= 64) {
        out.put(waiting);
        waiting = shift_right(both, 64 - static_cast<int>(position));
    }
}

/// Adds `value` at byte `offset` of `bytes` packed ones; returns what leaves the top.
int add_packed(std::byte* packed, std::size_t offset, std::size_t bytes, std::int64_t value) {
    const std::int64_t extension = value < 0 ? -1 : 0;
    unsigned carry = 0;
    for (; offset < bytes; value = extension) {
        if (value == extension && carry == (value < 0 ? 1U : 0U)) return 0;
        std::uint64_t word = 0, sum;
        const std::size_t width = std::min<std::size_t>(8, bytes - offset);
        std::memcpy(&word, packed + offset, width);
        const bool first = __builtin_add_overflow(word, static_cast<std::uint64_t>(value), &sum);
        const bool second = __builtin_add_overflow(sum, std::uint64_t{carry}, &sum);
        std::memcpy(packed + offset, &sum, width);
        carry = width == 8 ? (first || second) : (sum >> 8 * width & 1) != (value < 0 ? 1U : 0U);
        offset += width;
    }
    return static_cast<int>(carry) - (value < 0 ? 1 : 0);
}

/// The same; nearly always the first 64 bits take it all.
ZVP_KERNEL_INLINE int add_short(std::byte* packed, std::size_t offset, std::size_t bytes, std::int64_t value) {
    if (offset + 8 > bytes) return add_packed(packed, offset, bytes, value);
    std::uint64_t word;
    std::memcpy(&word, packed + offset, sizeof word);
    const std::uint64_t sum = word + static_cast<std::uint64_t>(value);
    if ((sum < word) != (value < 0)) return add_packed(packed, offset, bytes, value);
    std::memcpy(packed + offset, &sum, sizeof sum);
    return 0;
}

/// Hands each stream's carry to the next stream, and the last one's, negated, to the first (x^L = -1). Returns the top
/// word: 1 when the value is 2^N, else 0.
int settle_carries(const FftJob& job, std::byte* packed, Integers re, Integers im) {
    const std::size_t bytes = job.points / 4 * job.bits_per_point, stream_bytes = bytes / (2 * V);
    alignas(64) std::int64_t carry[2 * V];
    re.store(carry);
    im.store(carry + V);
    const std::int64_t bias = carry_bias(job.bits_per_point) >> job.bits_per_point;
    std::int64_t top = 0;
    for (std::size_t t = 0; t < 2 * V; ++t) {
        const std::int64_t out = (carry[t] >> job.bits_per_point) - bias;
        if (t + 1 < 2 * V) {
            top += add_short(packed, (t + 1) * stream_bytes, bytes, out);
        } else {
            top += out;
        }
    }
    // The packed bytes plus top * 2^N, with 2^N = -1.
    const int again = add_short(packed, 0, bytes, -top);
    if (again == 0) return 0;
    const int last = add_packed(packed, 0, bytes, -again);
    if (last < 0) add_packed(packed, 0, bytes, 1); // -1 is 2^N
    return last != 0;
}

/// Points that are done.
struct NoStep {
    ZVP_KERNEL_INLINE explicit NoStep(const FftJob&) {}
    ZVP_KERNEL_INLINE void apply(Complex (&)[V]) const {}
};

/// Points before the last pass of the inverse, if it is one over V parts: those are the streams.
struct LastStep {
    Complex root[V / 2];

    ZVP_KERNEL_INLINE explicit LastStep(const FftJob& job) { broadcast_roots(root, job.roots.passes[0]); }
    ZVP_KERNEL_INLINE void apply(Complex (&a)[V]) const { join_all(a, root); }
};

/// The points at x, which stay as they are, to packed bits.
template <class Step>
int carry_pass(const FftJob& job, const double* x, std::byte* packed) {
    const Step step(job);
    const CarryConstants k(job);
    const std::size_t stream_points = job.points / V, stream_bytes = stream_points / 8 * job.bits_per_point;
    PackedStreams re_out(packed, stream_bytes), im_out(packed + V * stream_bytes, stream_bytes);
    Integers re = Integers::broadcast(carry_bias(job.bits_per_point)), im = re;
    Integers re_waiting = Integers::broadcast(0), im_waiting = re_waiting;
    unsigned position = 0;
    for (std::size_t group = 0; group < stream_points / V; ++group, x += complex_doubles) {
        Complex a[V];
        for (std::size_t t = 0; t < V; ++t) a[t] = Complex::load(x + t * 2 * stream_points);
        step.apply(a);
        transpose(a);
        Integers re_points[V], im_points[V];
#pragma GCC unroll 8
        for (std::size_t i = 0; i < V; ++i) {
            re_points[i] = next_point(re, a[i].re, k);
            im_points[i] = next_point(im, a[i].im, k);
        }
#pragma GCC unroll 4
        for (std::size_t i = 0; i < V; i += 2) {
            append(re_waiting, re_points[i], re_points[i + 1], position, k.bits, re_out);
            append(im_waiting, im_points[i], im_points[i + 1], position, k.bits, im_out);
            position = (position + 2 * job.bits_per_point) % 64;
        }
        re_out.store_full();
        im_out.store_full();
    }
    re_out.finish(re_waiting, position / 8);
    im_out.finish(im_waiting, position / 8);
    return settle_carries(job, packed, re, im);
}
