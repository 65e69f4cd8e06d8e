// Complex vectors and the steps of the transform on them. Included in a kernel set's namespace with Doubles and Integers
// as its vector types.
//
// One binary step divides a node x^n - c by u = sqrt(c): a + b x^(n/2) becomes a + u b modulo x^(n/2) - u and a - u b
// modulo x^(n/2) + u. The roots of the nodes +u and -u are v = sqrt(u) and i v: so a radix of 4 takes two roots and one
// of 8 takes four, u, v, w = sqrt(v) and w' = e^(i pi/4) w. Inverse steps come without the factor 1/2.

constexpr std::size_t V = Doubles::lanes;

/// V complex numbers; in memory the real parts stand before the imaginary parts.
struct Complex {
    Doubles re, im;

    ZVP_KERNEL_INLINE static Complex load(const double* p) { return {Doubles::load(p), Doubles::load(p + V)}; }
    ZVP_KERNEL_INLINE static Complex broadcast(const double* p) {
        return {Doubles::broadcast(p[0]), Doubles::broadcast(p[1])};
    }
    ZVP_KERNEL_INLINE void store(double* p) const {
        re.store(p);
        im.store(p + V);
    }

    ZVP_KERNEL_INLINE friend Complex operator+(Complex a, Complex b) { return {a.re + b.re, a.im + b.im}; }
    ZVP_KERNEL_INLINE friend Complex operator-(Complex a, Complex b) { return {a.re - b.re, a.im - b.im}; }
    ZVP_KERNEL_INLINE friend Complex operator*(Complex a, Complex b) {
        return {fnmadd(a.im, b.im, a.re * b.re), fmadd(a.im, b.re, a.re * b.im)};
    }
    ZVP_KERNEL_INLINE friend Complex times_conjugate(Complex a, Complex b) {
        return {fmadd(a.im, b.im, a.re * b.re), fmsub(a.im, b.re, a.re * b.im)};
    }
};

/// Real numbers where complex ones may stand: points of an operand that fills less than half of its length.
struct Real {
    Doubles re;

    ZVP_KERNEL_INLINE friend Complex operator*(Real a, Complex b) { return {a.re * b.re, a.re * b.im}; }
    ZVP_KERNEL_INLINE friend Complex operator+(Real a, Complex b) { return {a.re + b.re, b.im}; }
};

constexpr std::size_t complex_doubles = 2 * V;

/// a + w b and a - w b.
ZVP_KERNEL_INLINE void divide(Complex& a, Complex& b, Complex w) {
    const Complex t = b * w;
    b = a - t;
    a = a + t;
}

/// a + i w b and a - i w b.
ZVP_KERNEL_INLINE void divide_i(Complex& a, Complex& b, Complex w) {
    const Complex t = b * w;
    b = {a.re + t.im, a.im - t.re};
    a = {a.re - t.im, a.im + t.re};
}

/// Back from divide(), doubled.
ZVP_KERNEL_INLINE void join(Complex& a, Complex& b, Complex w) {
    const Complex d = a - b;
    a = a + b;
    b = times_conjugate(d, w);
}

/// Back from divide_i(), doubled.
ZVP_KERNEL_INLINE void join_i(Complex& a, Complex& b, Complex w) {
    const Complex d = b - a;
    a = a + b;
    b = {fmsub(d.re, w.im, d.im * w.re), fmadd(d.re, w.re, d.im * w.im)};
}

/// All steps of a radix but the first.
ZVP_KERNEL_INLINE void divide_rest(Complex (&)[2], const Complex (&)[1]) {}
ZVP_KERNEL_INLINE void divide_rest(Complex (&a)[4], const Complex (&root)[2]) {
    divide(a[0], a[1], root[1]);
    divide_i(a[2], a[3], root[1]);
}
ZVP_KERNEL_INLINE void divide_rest(Complex (&a)[8], const Complex (&root)[4]) {
    divide(a[0], a[2], root[1]);
    divide(a[1], a[3], root[1]);
    divide_i(a[4], a[6], root[1]);
    divide_i(a[5], a[7], root[1]);
    divide(a[0], a[1], root[2]);
    divide_i(a[2], a[3], root[2]);
    divide(a[4], a[5], root[3]);
    divide_i(a[6], a[7], root[3]);
}

template <std::size_t R>
ZVP_KERNEL_INLINE void divide_all(Complex (&a)[R], const Complex (&root)[R / 2]) {
    for (std::size_t t = 0; t < R / 2; ++t) divide(a[t], a[t + R / 2], root[0]);
    divide_rest(a, root);
}

ZVP_KERNEL_INLINE void join_rest(Complex (&)[2], const Complex (&)[1]) {}
ZVP_KERNEL_INLINE void join_rest(Complex (&a)[4], const Complex (&root)[2]) {
    join(a[0], a[1], root[1]);
    join_i(a[2], a[3], root[1]);
}
ZVP_KERNEL_INLINE void join_rest(Complex (&a)[8], const Complex (&root)[4]) {
    join(a[0], a[1], root[2]);
    join_i(a[2], a[3], root[2]);
    join(a[4], a[5], root[3]);
    join_i(a[6], a[7], root[3]);
    join(a[0], a[2], root[1]);
    join(a[1], a[3], root[1]);
    join_i(a[4], a[6], root[1]);
    join_i(a[5], a[7], root[1]);
}

template <std::size_t R>
ZVP_KERNEL_INLINE void join_all(Complex (&a)[R], const Complex (&root)[R / 2]) {
    join_rest(a, root);
    for (std::size_t t = 0; t < R / 2; ++t) join(a[t], a[t + R / 2], root[0]);
}

template <std::size_t Roots>
ZVP_KERNEL_INLINE void broadcast_roots(Complex (&root)[Roots], const double* table) {
    for (std::size_t i = 0; i < Roots; ++i) root[i] = Complex::broadcast(table + 2 * i);
}

template <std::size_t Roots>
ZVP_KERNEL_INLINE void load_roots(Complex (&root)[Roots], const double* table) {
    for (std::size_t i = 0; i < Roots; ++i) root[i] = Complex::load(table + complex_doubles * i);
}

/// The roots of V nodes that descend from one, lane by lane: what the lanes have apart from each other is the same for
/// all nodes. Of four roots the last two differ by e^(i pi/4) alone.
template <std::size_t Roots>
ZVP_KERNEL_INLINE void lane_roots(Complex (&root)[Roots], const double* node, const double* lanes) {
    for (std::size_t i = 0; i < Roots; ++i)
        root[i] = Complex::load(lanes + complex_doubles * i) * Complex::broadcast(node + 2 * (i < 3 ? i : 2));
}

/// Swaps the roles of lanes and vectors.
ZVP_KERNEL_INLINE void transpose(Complex (&a)[V]) {
    Doubles part[V];
    for (std::size_t t = 0; t < V; ++t) part[t] = a[t].re;
    transpose(part);
    for (std::size_t t = 0; t < V; ++t) a[t].re = part[t];
    for (std::size_t t = 0; t < V; ++t) part[t] = a[t].im;
    transpose(part);
    for (std::size_t t = 0; t < V; ++t) a[t].im = part[t];
}
