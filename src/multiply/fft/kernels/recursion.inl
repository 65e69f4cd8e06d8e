// The transform of one block, depth first, so that each level works on what the cache still holds: passes of two or
// three levels over a node, down to bases of V * V complex points, which stay in registers. The inverse runs backwards
// and begins in the bases with the product of the two forward forms.
//
// A base's points fill V vectors. The first radix V goes across the vectors; then lanes and vectors change their
// roles, so that the second goes across them again, each lane with the roots of its own node. The points stay in that
// order: nobody but the inverse sees it.

/// How many levels the next pass takes when `left` are to do.
constexpr unsigned pass_levels(unsigned left) {
    if (left < 3) return left;
    if (V == 8) return left == 4 ? 2 : 3;
    return left == 3 ? 3 : 2; // with 16 registers, a radix of 8 is better only than one of 2
}

template <std::size_t R>
void forward_pass(double* x, std::size_t stride, const double* roots) {
    Complex root[R / 2];
    broadcast_roots(root, roots);
    for (double* const end = x + stride * complex_doubles; x != end; x += complex_doubles) {
        Complex a[R];
        for (std::size_t t = 0; t < R; ++t) a[t] = Complex::load(x + t * stride * complex_doubles);
        divide_all(a, root);
        for (std::size_t t = 0; t < R; ++t) a[t].store(x + t * stride * complex_doubles);
    }
}

template <std::size_t R>
void inverse_pass(double* x, std::size_t stride, const double* roots) {
    Complex root[R / 2];
    broadcast_roots(root, roots);
    for (double* const end = x + stride * complex_doubles; x != end; x += complex_doubles) {
        Complex a[R];
        for (std::size_t t = 0; t < R; ++t) a[t] = Complex::load(x + t * stride * complex_doubles);
        join_all(a, root);
        for (std::size_t t = 0; t < R; ++t) a[t].store(x + t * stride * complex_doubles);
    }
}

/// Where a base finds its roots: all of them, or its own with those of its first descendant.
template <bool Short>
struct BaseRoots {
    static constexpr std::size_t doubles = V + (Short ? V : V * V);

    const double* table;
    const double* lanes;

    ZVP_KERNEL_INLINE BaseRoots(const FftJob& job, std::size_t node)
        : table(job.roots.bases + node * doubles), lanes(job.roots.lanes) {}
    ZVP_KERNEL_INLINE void own(Complex (&root)[V / 2]) const { broadcast_roots(root, table); }
    ZVP_KERNEL_INLINE void of_lanes(Complex (&root)[V / 2]) const {
        if constexpr (Short) {
            lane_roots(root, table + V, lanes);
        } else {
            load_roots(root, table + V);
        }
    }
};

ZVP_KERNEL_INLINE void load_base(Complex (&a)[V], const double* x) {
    for (std::size_t t = 0; t < V; ++t) a[t] = Complex::load(x + t * complex_doubles);
}
ZVP_KERNEL_INLINE void store_base(const Complex (&a)[V], double* x) {
    for (std::size_t t = 0; t < V; ++t) a[t].store(x + t * complex_doubles);
}

template <bool Short>
ZVP_KERNEL_INLINE void divide_base(Complex (&a)[V], const BaseRoots<Short>& roots) {
    Complex root[V / 2];
    roots.own(root);
    divide_all(a, root);
    transpose(a);
    roots.of_lanes(root);
    divide_all(a, root);
}

template <bool Short>
ZVP_KERNEL_INLINE void join_base(Complex (&a)[V], const BaseRoots<Short>& roots) {
    Complex root[V / 2];
    roots.of_lanes(root);
    join_all(a, root);
    transpose(a);
    roots.own(root);
    join_all(a, root);
}

template <bool Short>
ZVP_KERNEL_INLINE void forward_base(double* x, const BaseRoots<Short>& roots) {
    Complex a[V];
    load_base(a, x);
    divide_base(a, roots);
    store_base(a, x);
}

/// Xd = inverse of Xa * Xb, on one base. Any of them may be the same.
template <bool Short>
ZVP_KERNEL_INLINE void product_base(double* xd, const double* xa, const double* xb, const BaseRoots<Short>& roots) {
    Complex a[V];
    for (std::size_t t = 0; t < V; ++t)
        a[t] = Complex::load(xa + t * complex_doubles) * Complex::load(xb + t * complex_doubles);
    join_base(a, roots);
    store_base(a, xd);
}

/// Xb = its forward form, Xa = inverse of Xa * Xb, on one base. Square: Xb is Xa.
template <bool Short, bool Square>
ZVP_KERNEL_INLINE void multiply_base(double* xa, double* xb, const BaseRoots<Short>& roots) {
    if constexpr (!Square) forward_base(xb, roots);
    Complex a[V];
    load_base(a, xa);
    divide_base(a, roots);
    for (std::size_t t = 0; t < V; ++t) a[t] = a[t] * (Square ? a[t] : Complex::load(xb + t * complex_doubles));
    join_base(a, roots);
    store_base(a, xa);
}

template <class... Arguments>
ZVP_KERNEL_INLINE void forward_pass_of(unsigned levels, Arguments... arguments) {
    switch (levels) {
    case 1: return forward_pass<2>(arguments...);
    case 2: return forward_pass<4>(arguments...);
    default: return forward_pass<8>(arguments...);
    }
}

template <class... Arguments>
ZVP_KERNEL_INLINE void inverse_pass_of(unsigned levels, Arguments... arguments) {
    switch (levels) {
    case 1: return inverse_pass<2>(arguments...);
    case 2: return inverse_pass<4>(arguments...);
    default: return inverse_pass<8>(arguments...);
    }
}

/// Transforms the block at x, which is node `node` of `level`.
template <bool Short>
void forward_block(const FftJob& job, double* x, unsigned level, std::size_t node) {
    const unsigned left = job.levels - level;
    if (left == 0) return forward_base<Short>(x, {job, node});
    const unsigned step = pass_levels(left);
    const std::size_t radix = std::size_t{1} << step, stride = V << (left - step);
    forward_pass_of(step, x, stride, job.roots.passes[level] + 8 * node);
    for (std::size_t c = 0; c < radix; ++c)
        forward_block<Short>(job, x + c * stride * complex_doubles, level + step, node * radix + c);
}

/// Multiplies the forward forms Xa and Xb of one node and transforms back, to Xd.
template <bool Short>
void product_block(const FftJob& job, double* xd, const double* xa, const double* xb, unsigned level,
                   std::size_t node) {
    const unsigned left = job.levels - level;
    if (left == 0) return product_base<Short>(xd, xa, xb, {job, node});
    const unsigned step = pass_levels(left);
    const std::size_t radix = std::size_t{1} << step, stride = V << (left - step);
    for (std::size_t c = 0; c < radix; ++c) {
        const std::size_t offset = c * stride * complex_doubles;
        product_block<Short>(job, xd + offset, xa + offset, xb + offset, level + step, node * radix + c);
    }
    inverse_pass_of(step, xd, stride, job.roots.passes[level] + 8 * node);
}

/// Both of these: Xb = its forward form, Xa = inverse of Xa * Xb. What a node needs of points and roots comes from the
/// outer caches once in place of three times.
template <bool Short, bool Square>
void multiply_block(const FftJob& job, double* xa, double* xb, unsigned level, std::size_t node) {
    const unsigned left = job.levels - level;
    if (left == 0) return multiply_base<Short, Square>(xa, xb, {job, node});
    const unsigned step = pass_levels(left);
    const std::size_t radix = std::size_t{1} << step, stride = V << (left - step);
    const double* const roots = job.roots.passes[level] + 8 * node;
    forward_pass_of(step, xa, stride, roots);
    if constexpr (!Square) forward_pass_of(step, xb, stride, roots);
    for (std::size_t c = 0; c < radix; ++c) {
        const std::size_t offset = c * stride * complex_doubles;
        multiply_block<Short, Square>(job, xa + offset, xb + offset, level + step, node * radix + c);
    }
    inverse_pass_of(step, xa, stride, roots);
}

void forward_blocks(const FftJob& job, double* x, unsigned level, std::size_t node) {
    if (job.roots.short_bases) return forward_block<true>(job, x, level, node);
    forward_block<false>(job, x, level, node);
}

void product_blocks(const FftJob& job, double* xd, const double* xa, const double* xb, unsigned level,
                    std::size_t node) {
    if (job.roots.short_bases) return product_block<true>(job, xd, xa, xb, level, node);
    product_block<false>(job, xd, xa, xb, level, node);
}

void multiply_blocks(const FftJob& job, double* xa, double* xb, unsigned level, std::size_t node) {
    const bool square = xa == xb;
    if (job.roots.short_bases) {
        if (square) return multiply_block<true, true>(job, xa, xb, level, node);
        return multiply_block<true, false>(job, xa, xb, level, node);
    }
    if (square) return multiply_block<false, true>(job, xa, xb, level, node);
    multiply_block<false, false>(job, xa, xb, level, node);
}
