// Two vectors that go through an expression in step, as one vector of twice the lanes. Where a chain of
// dependent operations is long and the processor's window short, it finds the second chain without looking far
// ahead. Included in a kernel set's namespace, behind its vector types.

struct PairI {
    static constexpr std::size_t lanes = 2 * VecI::lanes;

    VecI first, second;

    ZVP_KERNEL_INLINE static PairI broadcast(std::int64_t x) { return {VecI::broadcast(x), VecI::broadcast(x)}; }
    ZVP_KERNEL_INLINE static PairI load(const std::int64_t* p) { return {VecI::load(p), VecI::load(p + VecI::lanes)}; }
    ZVP_KERNEL_INLINE void store(std::int64_t* p) const {
        first.store(p);
        second.store(p + VecI::lanes);
    }

    ZVP_KERNEL_INLINE friend PairI operator+(PairI a, PairI b) { return {a.first + b.first, a.second + b.second}; }
    ZVP_KERNEL_INLINE friend PairI operator-(PairI a, PairI b) { return {a.first - b.first, a.second - b.second}; }
    ZVP_KERNEL_INLINE friend PairI operator&(PairI a, PairI b) { return {a.first & b.first, a.second & b.second}; }
    ZVP_KERNEL_INLINE friend PairI shift_left(PairI a, int bits) {
        return {shift_left(a.first, bits), shift_left(a.second, bits)};
    }
    ZVP_KERNEL_INLINE friend PairI shift_right(PairI a, int bits) {
        return {shift_right(a.first, bits), shift_right(a.second, bits)};
    }
};

struct PairD {
    static constexpr std::size_t lanes = 2 * VecD::lanes;

    VecD first, second;

    ZVP_KERNEL_INLINE static PairD broadcast(double x) { return {VecD::broadcast(x), VecD::broadcast(x)}; }
    ZVP_KERNEL_INLINE static PairD load(const double* p) { return {VecD::load(p), VecD::load(p + VecD::lanes)}; }
    ZVP_KERNEL_INLINE void store(double* p) const {
        first.store(p);
        second.store(p + VecD::lanes);
    }

    ZVP_KERNEL_INLINE friend PairD operator+(PairD a, PairD b) { return {a.first + b.first, a.second + b.second}; }
    ZVP_KERNEL_INLINE friend PairD operator-(PairD a, PairD b) { return {a.first - b.first, a.second - b.second}; }
    ZVP_KERNEL_INLINE friend PairD operator*(PairD a, PairD b) { return {a.first * b.first, a.second * b.second}; }
    ZVP_KERNEL_INLINE friend PairD operator/(PairD a, PairD b) { return {a.first / b.first, a.second / b.second}; }
    ZVP_KERNEL_INLINE friend PairD select_equal(PairD a, PairD b, PairD value) {
        return {select_equal(a.first, b.first, value.first), select_equal(a.second, b.second, value.second)};
    }

    ZVP_KERNEL_INLINE PairI bits() const { return {first.bits(), second.bits()}; }
    ZVP_KERNEL_INLINE static PairD from_bits(PairI a) { return {VecD::from_bits(a.first), VecD::from_bits(a.second)}; }
};
