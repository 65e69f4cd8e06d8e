// From points back to bits: scaling, rounding, carries, packing.
//
// The points are cut into 2 V streams of equal length, V of real parts and V of imaginary parts, and a vector's lanes
// take one stream each: a square of V by V points is transposed, then each vector holds one point of every stream.
// Every stream has its own carry and begins on a byte; what leaves a stream at its top is added to the next one's bytes
// at the end.

/// 1.5 * 2^52: added to a number of less than 2^51, it leaves the number rounded in its low bits.
constexpr double rounding_constant = 6755399441055744.0;

/// Carries are held with this bias, so that they never are negative and a logical shift divides them.
constexpr std::int64_t carry_bias = std::int64_t{1} << 62;

/// V streams: a carry and the bits that don't fill 64 yet in each lane.
struct CarryStreams {
    Integers carry, waiting;

    ZVP_KERNEL_INLINE CarryStreams() : carry(Integers::broadcast(carry_bias)), waiting(Integers::broadcast(0)) {}
};

struct CarryConstants {
    int bits;
    Doubles scale, rounding;
    Integers mask, bias;

    ZVP_KERNEL_INLINE explicit CarryConstants(const FftJob& job)
        : bits(static_cast<int>(job.bits_per_point)),
          scale(Doubles::broadcast(1.0 / static_cast<double>(job.points))),
          rounding(Doubles::broadcast(rounding_constant)),
          mask(Integers::broadcast((std::int64_t{1} << bits) - 1)),
          bias(Integers::broadcast(carry_bias - (carry_bias >> bits)
                                   - std::bit_cast<std::int64_t>(rounding_constant))) {}
};

/// The next point of each stream.
ZVP_KERNEL_INLINE Integers next_points(CarryStreams& s, Doubles y, const CarryConstants& k) {
    s.carry = shift_right(s.carry, k.bits) + (fmadd(y, k.scale, k.rounding).bits() + k.bias);
    return s.carry & k.mask;
}

/// The packed bits of V streams. Limbs are gathered until a square of V by V can be transposed into V limbs for each
/// stream: a store for each limb would go through more cache lines of one set than the cache has ways.
class PackedStreams {
public:
    ZVP_KERNEL_INLINE PackedStreams(std::byte* begin, std::size_t stream_bytes_)
        : out(begin), stream_bytes(stream_bytes_) {
        for (Doubles& limbs : waiting) limbs = Doubles::broadcast(0);
    }

    ZVP_KERNEL_INLINE void put(Integers limbs) {
        waiting[count] = Doubles::from_bits(limbs);
        if (++count == V) flush();
    }

    /// Stores what waits, and `bytes` of a last limb.
    ZVP_KERNEL_INLINE void finish(Integers last, std::size_t bytes) {
        alignas(64) std::int64_t lane[V];
        for (std::size_t i = 0; i < count; ++i) {
            waiting[i].bits().store(lane);
            for (std::size_t t = 0; t < V; ++t) std::memcpy(out + t * stream_bytes, &lane[t], sizeof lane[t]);
            out += sizeof lane[0];
        }
        last.store(lane);
        for (std::size_t t = 0; t < V && bytes > 0; ++t) std::memcpy(out + t * stream_bytes, &lane[t], bytes);
    }

private:
    ZVP_KERNEL_INLINE void flush() {
        transpose(waiting);
        for (std::size_t t = 0; t < V; ++t)
            waiting[t].store_unaligned(reinterpret_cast<double*>(out + t * stream_bytes));
        out += V * sizeof(std::int64_t);
        count = 0;
    }

    std::byte* out;
    std::size_t stream_bytes;
    Doubles waiting[V];
    std::size_t count = 0;
};

/// Appends a point to each stream; whole 64 bits are stored.
ZVP_KERNEL_INLINE void append(CarryStreams& s, Integers points, int position, int bits, PackedStreams& out) {
    s.waiting = s.waiting | shift_left(points, position);
    if (position + bits >= 64) {
        out.put(s.waiting);
        s.waiting = shift_right(points, 64 - position);
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
int settle_carries(const FftJob& job, std::byte* packed, const CarryStreams& re, const CarryStreams& im) {
    const std::size_t bytes = job.points / 4 * job.bits_per_point, stream_bytes = bytes / (2 * V);
    alignas(64) std::int64_t carry[2 * V];
    re.carry.store(carry);
    im.carry.store(carry + V);
    std::int64_t top = 0;
    for (std::size_t t = 0; t < 2 * V; ++t) {
        const std::int64_t out = (carry[t] >> job.bits_per_point) - (carry_bias >> job.bits_per_point);
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

/// The points at x, which stay as they are, to packed bits.
int carry_pass(const FftJob& job, const double* x, std::byte* packed) {
    const CarryConstants k(job);
    const std::size_t stream_points = job.points / V, stream_bytes = stream_points / 8 * job.bits_per_point;
    PackedStreams re_out(packed, stream_bytes), im_out(packed + V * stream_bytes, stream_bytes);
    CarryStreams re, im;
    int position = 0;
    for (std::size_t group = 0; group < stream_points / V; ++group, x += complex_doubles) {
        Complex a[V];
        for (std::size_t t = 0; t < V; ++t) a[t] = Complex::load(x + t * 2 * stream_points);
        transpose(a);
        for (std::size_t i = 0; i < V; ++i) {
            append(re, next_points(re, a[i].re, k), position, k.bits, re_out);
            append(im, next_points(im, a[i].im, k), position, k.bits, im_out);
            position = (position + k.bits) % 64;
        }
    }
    re_out.finish(re.waiting, static_cast<std::size_t>(position) / 8);
    im_out.finish(im.waiting, static_cast<std::size_t>(position) / 8);
    return settle_carries(job, packed, re, im);
}
