// The first pass, which makes complex points of an operand's bits, and the family's own butterflies.
//
// Point j of the upper half of the real points is the imaginary part of complex point j, so that the points' products
// are those modulo x^L + 1 (x^(L/2) = i). A radix R takes complex points from R equal parts of the length: 2 R streams
// of bits, or R when the operand ends below the middle and the points are real.
//
// Points are balanced digits: the error of a product grows with the size of its points, and digits of either sign are
// a quarter of what all-ones operands would otherwise make of it.

template <class Point>
struct PointStream; // the bits of real points, or of both parts of complex ones

template <>
struct PointStream<Real> {
    const std::byte* re;

    ZVP_KERNEL_INLINE PointStream(const std::byte* bits, std::size_t) : re(bits) {}
    ZVP_KERNEL_INLINE void read(const BalancedFields& fields, std::size_t offset, Real (&out)[8 / V]) const {
        Doubles values[8 / V];
        fields.read(re + offset, values);
        for (std::size_t h = 0; h < 8 / V; ++h) out[h] = {values[h]};
    }
};

template <>
struct PointStream<Complex> {
    const std::byte *re, *im;

    ZVP_KERNEL_INLINE PointStream(const std::byte* bits, std::size_t half) : re(bits), im(bits + half) {}
    ZVP_KERNEL_INLINE void read(const BalancedFields& fields, std::size_t offset, Complex (&out)[8 / V]) const {
        Doubles real[8 / V], imaginary[8 / V];
        fields.read(re + offset, real);
        fields.read(im + offset, imaginary);
        for (std::size_t h = 0; h < 8 / V; ++h) out[h] = {real[h], imaginary[h]};
    }
};

/// First step of a radix on points that may be real.
ZVP_KERNEL_INLINE void divide_points(Complex a, Complex b, Complex w, Complex& plus, Complex& minus) {
    const Complex t = b * w;
    plus = a + t;
    minus = a - t;
}
ZVP_KERNEL_INLINE void divide_points(Real a, Real b, Complex w, Complex& plus, Complex& minus) {
    const Complex t = b * w;
    plus = {a.re + t.re, t.im};
    minus = {a.re - t.re, Doubles::broadcast(0) - t.im};
}

template <class Point, std::size_t R>
struct BinaryFront {
    Complex root[R / 2];

    ZVP_KERNEL_INLINE explicit BinaryFront(const FftJob& job) { broadcast_roots(root, job.roots.passes[0]); }
    ZVP_KERNEL_INLINE void apply(const Point (&p)[R], Complex (&a)[R]) const {
        for (std::size_t t = 0; t < R / 2; ++t) divide_points(p[t], p[t + R / 2], root[0], a[t], a[t + R / 2]);
        divide_rest(a, root);
    }
};

constexpr double half_root_3 = 0.86602540378443864676;

/// The butterfly of order 3 with conjugate roots (sign -1) or not.
ZVP_KERNEL_INLINE void butterfly_3(Complex& a, Complex& b, Complex& c, double sign) {
    const Complex sum = b + c, difference = b - c;
    const Doubles half = Doubles::broadcast(0.5), h = Doubles::broadcast(sign * half_root_3);
    const Complex middle{fnmadd(sum.re, half, a.re), fnmadd(sum.im, half, a.im)};
    a = a + sum;
    b = {fnmadd(difference.im, h, middle.re), fmadd(difference.re, h, middle.im)};
    c = {fmadd(difference.im, h, middle.re), fnmadd(difference.re, h, middle.im)};
}

constexpr double cos_72 = 0.30901699437494742410, cos_144 = -0.80901699437494742410;
constexpr double sin_72 = 0.95105651629515357212, sin_144 = 0.58778525229247312917;

/// The butterfly of order 5 likewise.
ZVP_KERNEL_INLINE void butterfly_5(Complex (&a)[5], double sign) {
    const Complex s1 = a[1] + a[4], d1 = a[1] - a[4], s2 = a[2] + a[3], d2 = a[2] - a[3];
    const Doubles c1 = Doubles::broadcast(cos_72), c2 = Doubles::broadcast(cos_144);
    const Doubles n1 = Doubles::broadcast(sign * sin_72), n2 = Doubles::broadcast(sign * sin_144);
    const Complex m1{fmadd(s2.re, c2, fmadd(s1.re, c1, a[0].re)), fmadd(s2.im, c2, fmadd(s1.im, c1, a[0].im))};
    const Complex m2{fmadd(s2.re, c1, fmadd(s1.re, c2, a[0].re)), fmadd(s2.im, c1, fmadd(s1.im, c2, a[0].im))};
    const Complex e1{fmadd(d2.re, n2, d1.re * n1), fmadd(d2.im, n2, d1.im * n1)};
    const Complex e2{fmsub(d1.re, n2, d2.re * n1), fmsub(d1.im, n2, d2.im * n1)};
    a[0] = a[0] + s1 + s2;
    a[1] = {m1.re - e1.im, m1.im + e1.re};
    a[4] = {m1.re + e1.im, m1.im - e1.re};
    a[2] = {m2.re - e2.im, m2.im + e2.re};
    a[3] = {m2.re + e2.im, m2.im - e2.re};
}

ZVP_KERNEL_INLINE void butterfly(Complex (&a)[3], double sign) { butterfly_3(a[0], a[1], a[2], sign); }
ZVP_KERNEL_INLINE void butterfly(Complex (&a)[5], double sign) { butterfly_5(a, sign); }

ZVP_KERNEL_INLINE Complex as_complex(Complex a) { return a; }
ZVP_KERNEL_INLINE Complex as_complex(Real a) { return {a.re, Doubles::broadcast(0)}; }

template <class Point, std::size_t R>
struct FamilyFront {
    Complex root[R - 1];

    ZVP_KERNEL_INLINE explicit FamilyFront(const FftJob& job) { broadcast_roots(root, job.roots.front); }
    ZVP_KERNEL_INLINE void apply(const Point (&p)[R], Complex (&a)[R]) const {
        a[0] = as_complex(p[0]);
        for (std::size_t t = 1; t < R; ++t) a[t] = p[t] * root[t - 1];
        butterfly(a, 1);
    }
};

/// What brings the topmost digit back to the field that it came from: there is none above it to take the one more.
template <class Point>
Doubles top_correction(const FftJob& job, const std::byte* bits) {
    const std::size_t bytes = job.points / 8 * job.bits_per_point * (std::is_same_v<Point, Real> ? 1 : 2);
    const bool negative = (bits[bytes - 1] & std::byte{0x80}) != std::byte{0};
    alignas(64) double lane[V] = {};
    lane[V - 1] = negative ? static_cast<double>(std::uint64_t{1} << job.bits_per_point) : 0;
    return Doubles::load(lane);
}

/// What takes back the top bit of the byte below the operand, which isn't part of it, from the lowest digit.
inline Doubles bottom_correction(const std::byte* bits) {
    alignas(64) double lane[V] = {};
    lane[0] = (bits[-1] & std::byte{0x80}) != std::byte{0} ? -1 : 0;
    return Doubles::load(lane);
}

ZVP_KERNEL_INLINE void add_to_top(Real& p, Doubles correction) { p.re = p.re + correction; }
ZVP_KERNEL_INLINE void add_to_top(Complex& p, Doubles correction) { p.im = p.im + correction; }

/// X = the first step of the transform of the operand's bits, n complex points.
template <class Point, std::size_t R, template <class, std::size_t> class Front>
void front_pass(const FftJob& job, double* x, const std::byte* bits) {
    const Front<Point, R> step(job);
    const BalancedFields fields(job.bits_per_point);
    const std::size_t part = job.points / R, half = job.points / 8 * job.bits_per_point;
    for (std::size_t group = 0; group < part / 8; ++group) {
        Point p[R][8 / V];
        for (std::size_t t = 0; t < R; ++t)
            PointStream<Point>(bits, half).read(fields, (t * part / 8 + group) * job.bits_per_point, p[t]);
        if (group == 0) p[0][0].re = p[0][0].re + bottom_correction(bits);
        if (group == part / 8 - 1) add_to_top(p[R - 1][8 / V - 1], top_correction<Point>(job, bits));
        for (std::size_t h = 0; h < 8 / V; ++h) {
            Point in[R];
            Complex out[R];
            for (std::size_t t = 0; t < R; ++t) in[t] = p[t][h];
            step.apply(in, out);
            for (std::size_t t = 0; t < R; ++t) out[t].store(x + t * 2 * part + (group * 8 / V + h) * complex_doubles);
        }
    }
}

/// Levels of the first pass of family 1: its parts must hold whole bytes.
unsigned front_levels(const FftJob& job) {
    const unsigned levels = pass_levels(job.levels);
    return job.points >> levels < 8 ? 2 : levels;
}

template <class Point>
void front(const FftJob& job, double* x, const std::byte* bits) {
    if (job.family == 3) return front_pass<Point, 3, FamilyFront>(job, x, bits);
    if (job.family == 5) return front_pass<Point, 5, FamilyFront>(job, x, bits);
    switch (front_levels(job)) {
    case 1: return front_pass<Point, 2, BinaryFront>(job, x, bits);
    case 2: return front_pass<Point, 4, BinaryFront>(job, x, bits);
    default: return front_pass<Point, 8, BinaryFront>(job, x, bits);
    }
}

/// The family's butterfly backwards, over all points.
template <std::size_t R>
void family_inverse(const FftJob& job, double* x) {
    Complex root[R - 1];
    broadcast_roots(root, job.roots.front);
    const std::size_t part = job.points / R * 2;
    for (double* const end = x + part; x != end; x += complex_doubles) {
        Complex a[R];
        for (std::size_t t = 0; t < R; ++t) a[t] = Complex::load(x + t * part);
        butterfly(a, -1);
        a[0].store(x);
        for (std::size_t t = 1; t < R; ++t) times_conjugate(a[t], root[t - 1]).store(x + t * part);
    }
}
