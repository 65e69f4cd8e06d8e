// Arithmetic modulo 2^N + 1 in terms of what each set has:
//
//   Lanes         limbs that are worked on one by one, modulo 2^64: load, store, zero, broadcast, equal, complement, shift,
//                 plus, masked, left, right
//   add_subtract  sums and differences of runs of limbs
//   subtract_run  differences alone
//   Radix4        the sums of a radix-4 step

/// Adds the small value v at limb i of x; what leaves the limbs goes to the top word.
void add_at(RingWord* x, std::size_t n, std::size_t i, Wide v) {
    const std::size_t limbs = n / 2;
    for (; i < limbs && (v > 1 || v < -1); ++i) {
        v += OneLimb::load(x + 2 * i).v;
        OneLimb{static_cast<Limb>(v)}.store(x + 2 * i);
        v >>= 64;
    }
    if (v == 0) return;
    // 1 runs through ones and -1 through zeros: elements of many of them have long runs.
    const Limb passing = v < 0 ? 0 : ~Limb{0};
    const Lanes all_pass = Lanes::broadcast(passing), wrapped = Lanes::broadcast(~passing);
    for (; i < limbs; ++i) {
        for (; i + Lanes::limbs <= limbs && equal(Lanes::load(x + 2 * i), all_pass); i += Lanes::limbs)
            wrapped.store(x + 2 * i);
        if (i == limbs) break;
        const Limb limb = OneLimb::load(x + 2 * i).v;
        OneLimb{limb + static_cast<Limb>(v)}.store(x + 2 * i);
        if (limb != passing) return;
    }
    x[n] += static_cast<RingWord>(v);
}

/// Settles what left the halves: `low` at the middle, `high` at the top.
void settle(RingWord* x, std::size_t n, Wide low, Wide high) {
    x[n] = static_cast<RingWord>(high);
    add_at(x, n, n / 4, low);
}

void butterfly(RingWord* x, RingWord* y, RingWord* z, std::size_t n) {
    unsigned carry = 0, borrow = 0;
    const RingWord tx = x[n], ty = y[n];
    add_subtract(x, z, x, y, n / 2, carry, borrow);
    x[n] = tx + ty + carry;
    z[n] = tx - ty - borrow;
}

void subtract(RingWord* x, const RingWord* y, std::size_t n) { x[n] -= y[n] + subtract_run(x, y, n / 2); }

void radix4(const Radix4Operands& o, std::size_t n) {
    const Wide p = top_of(o.in[0], n), q = top_of(o.in[1], n), r = top_of(o.in[2], n), s = top_of(o.in[3], n);
    Radix4 sums(o);
    sums.run(n / 4);
    settle(o.out[0], n, sums.left(0, 0), p + q + r + s + sums.left(0, 1));
    settle(o.out[1], n, sums.left(1, 0), p + q - r - s + sums.left(1, 1));
    // J times the tops of r - s is minus them at the middle.
    settle(o.out[2], n, sums.left(2, 0) - (r - s), p - q + sums.left(2, 1));
    settle(o.out[3], n, sums.left(3, 0) + (r - s), p - q + sums.left(3, 1));
}

void forward4(RingWord* const (&x)[4], RingWord* const (&z)[3], std::size_t n) {
    radix4({{x[0], x[2], x[1], x[3]}, {x[0], z[0], z[1], z[2]}, n / 2}, n);
}

/// The results come as sums of y0, y1 and y3, y2, which are x[0], z[0] and z[2], z[1].
void inverse4(RingWord* const (&x)[4], RingWord* const (&z)[3], std::size_t n) {
    radix4({{x[0], z[0], z[2], z[1]}, {x[0], x[2], x[1], x[3]}, n / 2}, n);
}

/// z = x << Bits, whole limbs, complemented or not.
template <bool Complement, bool Bits>
struct ShiftStep {
    RingWord* z;
    const RingWord* x;
    int bits;

    template <class B>
    ZVP_KERNEL_INLINE void run(std::size_t w) {
        B limbs = B::load(x + w);
        if constexpr (Bits) limbs = shift(limbs, B::load(x + w - 2), bits);
        if constexpr (Complement) limbs = complement(limbs);
        limbs.store(z + w);
    }
};

/// z := x, or its complement.
template <bool Complement>
void copy_run(RingWord* z, const RingWord* x, std::size_t limbs) {
    ShiftStep<Complement, false> step{z, x, 0};
    for_blocks<Lanes>(limbs, step);
}

/// The first step of halves: nothing but carries passes the middle, and J (x1 - x3) lies above x0 - x2.
template <bool Two>
class Load4 {
public:
    Load4(RingWord* x0_, RingWord* const (&z_)[3], std::size_t n_) : x0(x0_), z(z_), half(n_ / 2) {}

    void run(const RingWord* const (&in)[4]) {
        const std::size_t whole = half / 2 - 1; // limbs; the last one holds one word
        for (std::size_t i = 0; i < whole; i += strip) step(in, 2 * i, 2 * i, std::min(strip, whole - i));
        RingWord last[4][2]{};
        for (int i = 0; i < (Two ? 2 : 4); ++i) last[i][0] = in[i][2 * whole];
        const RingWord* const ends[4]{last[0], last[1], last[2], last[3]};
        step(ends, 0, 2 * whole, 1);
    }

    /// What leaves the halves.
    void settle_all() const {
        const std::size_t n = 2 * half;
        std::memset(x0 + half, 0, 2 * n);
        std::memset(z[0] + half, 0, 2 * n);
        settle(x0, n, wide(a) + wide(c) + wide(sum), 0);
        settle(z[0], n, wide(a) - wide(c) - wide(difference), 0);
        settle(z[1], n, -wide(b), -wide(d));
        settle(z[2], n, 1 - wide(b), wide(d) - 1); // the upper half is a complement
    }

private:
    static constexpr std::size_t strip = 64; // limbs: sums and differences stay in the first cache

    /// `count` limbs of the operands from word `from` on, to word w.
    void step(const RingWord* const (&in)[4], std::size_t from, std::size_t w, std::size_t count) {
        const RingWord *up = in[0] + from, *down = up, *up1 = in[1] + from, *down1 = up1;
        RingWord sums[4][2 * strip];
        if constexpr (!Two) {
            add_subtract(sums[0], sums[1], up, in[2] + from, count, a, b);
            add_subtract(sums[2], sums[3], up1, in[3] + from, count, c, d);
            up = sums[0], down = sums[1], up1 = sums[2], down1 = sums[3];
        }
        copy_run<false>(z[1] + w, down, count);
        copy_run<false>(z[2] + w, down, count);
        copy_run<false>(z[1] + half + w, down1, count);
        copy_run<true>(z[2] + half + w, down1, count);
        add_subtract(x0 + w, z[0] + w, up, up1, count, sum, difference);
    }

    RingWord* x0;
    RingWord* const (&z)[3];
    std::size_t half;                    // words
    unsigned a = 0, b = 0, c = 0, d = 0; // first sums and differences
    unsigned sum = 0, difference = 0;
};

template <bool Two>
void load4_halves(const RingWord* const (&in)[4], RingWord* x0, RingWord* const (&z)[3], std::size_t n) {
    Load4<Two> halves(x0, z, n);
    halves.run(in);
    halves.settle_all();
}

void load4(const RingWord* const (&in)[4], RingWord* x0, RingWord* const (&z)[3], std::size_t n, bool two) {
    if (two) return load4_halves<true>(in, x0, z, n);
    load4_halves<false>(in, x0, z, n);
}

/// `count` limbs of x << bits from limb `first` on, to z.
template <bool Complement>
void shifted(RingWord* z, const RingWord* x, std::size_t first, std::size_t count, int bits) {
    if (count == 0) return;
    if (bits == 0) return copy_run<Complement>(z, x + 2 * first, count);
    if (first == 0) {
        const Limb lowest = OneLimb::load(x).v << bits;
        OneLimb{Complement ? ~lowest : lowest}.store(z);
        z += 2;
        ++first;
        --count;
    }
    ShiftStep<Complement, true> step{z, x + 2 * first, bits};
    for_blocks<Lanes>(count, step);
}

/// The limbs of x << bits are written from limb q on; those that pass 2^N come in at the bottom with the other sign. A
/// negative run of limbs is its complement, plus 1 at its bottom and less 1 above its top.
void rotate(RingWord* z, const RingWord* x, std::size_t n, std::uint64_t s) {
    const std::uint64_t N = 32 * std::uint64_t{n};
    const bool negative = s >= N;
    if (negative) s -= N;
    const std::size_t limbs = n / 2, q = s / 64, rest = limbs - q;
    const int bits = static_cast<int>(s % 64);
    Wide above = top_of(x, n) << bits; // of x << bits, in units of 2^N
    if (bits > 0) above += OneLimb::load(x + n - 2).v >> (64 - bits);
    z[n] = 0;
    if (!negative) {
        shifted<true>(z, x, rest, q, bits);
        shifted<false>(z + 2 * q, x, 0, rest, bits);
        add_at(z, n, q, -above - (q > 0));
        if (q > 0) add_at(z, n, 0, 1);
    } else {
        shifted<false>(z, x, rest, q, bits);
        shifted<true>(z + 2 * q, x, 0, rest, bits);
        add_at(z, n, q, above + 1);
        z[n] -= 1;
    }
}

void normalize(RingWord* x, std::size_t n) {
    for (int round = 0; round < 2; ++round) {
        const Wide top = top_of(x, n);
        if (top == 0) return;
        x[n] = 0;
        add_at(x, n, 0, -top);
    }
    if (top_of(x, n) >= 0) return; // 0, or 1 with all words zero
    // -1: it is 2^N.
    std::memset(x, 0, n * sizeof *x);
    x[n] = 1;
}

/// Limbs are summed modulo 2^62 - 1, a multiple of 2^31 - 1, lazily: any 64 bits stand for their residue.
constexpr int sum_bits = 2 * residue_bits;

ZVP_KERNEL_INLINE Lanes folded(Lanes a) { return plus(masked(a, (Limb{1} << sum_bits) - 1), right(a, sum_bits)); }

/// a * 2^bits, below 2^62 + 2^(bits + 2).
ZVP_KERNEL_INLINE Lanes turned(Lanes a, int bits) {
    return plus(masked(left(a, bits), (Limb{1} << sum_bits) - 1), right(a, sum_bits - bits));
}

constexpr std::size_t residue_width = 2 * Lanes::limbs; // words
constexpr std::size_t residue_period = 31;              // blocks: limbs weigh 2^(64 i), which is 2^(2 i)

/// The sums of the blocks at [first, first + Group) of each period, with 2^32 = 2, to `sums`. Words are summed as they
/// stand: 2^30 of them fit.
template <std::size_t Group>
ZVP_KERNEL_INLINE void sum_periods(const RingWord* x, std::size_t first, std::size_t blocks, Lanes* sums) {
    Lanes low[Group], high[Group];
    for (std::size_t j = 0; j < Group; ++j) low[j] = high[j] = Lanes::zero();
    const auto add = [&](std::size_t i, std::size_t j) {
        const Lanes block = Lanes::load(x + (i + j) * residue_width);
        low[j] = plus(low[j], masked(block, 0xFFFF'FFFF));
        high[j] = plus(high[j], right(block, 32));
    };
    std::size_t i = first;
    for (; i + Group <= blocks; i += residue_period)
        for (std::size_t j = 0; j < Group; ++j) add(i, j);
    for (std::size_t j = 0; j < Group; ++j)
        if (i + j < blocks) add(i, j);
    for (std::size_t j = 0; j < Group; ++j) sums[first + j] = plus(low[j], left(high[j], 1));
}

/// Laness of equal weight are summed, then Horner's rule goes over the period from its top. What is less than a block goes
/// word by word.
std::uint32_t residue(const RingWord* x, std::size_t words) {
    constexpr int step = 2 * Lanes::limbs;
    const std::size_t blocks = words / residue_width;
    constexpr std::size_t group = Lanes::limbs, last_group = residue_period % group;
    Lanes sums[residue_period], total = Lanes::zero();
    std::size_t first = 0;
    for (; first + group <= residue_period && first < blocks; first += group)
        sum_periods<group>(x, first, blocks, sums);
    if (first < blocks) sum_periods<last_group>(x, residue_period - last_group, blocks, sums);
    for (std::size_t j = std::min(blocks, residue_period); j-- > 0;) total = plus(turned(total, step), sums[j]);
    RingWord lanes[residue_width];
    total.store(lanes);
    std::uint64_t sum = 0, rest = 0;
    for (std::size_t i = 0; i < Lanes::limbs; ++i)
        sum += std::uint64_t{reduce_residue(OneLimb::load(lanes + 2 * i).v)} << 2 * i;
    for (std::size_t i = words; i > blocks * residue_width; --i) rest = 2 * rest + x[i - 1];
    return add_residues(reduce_residue(sum), shift_residue(reduce_residue(rest), blocks * residue_width));
}

constexpr RingKernels kernels{&butterfly, &forward4, &load4, &inverse4, &rotate, &subtract, &normalize, &residue};
