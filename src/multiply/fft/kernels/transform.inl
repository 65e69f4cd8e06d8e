// The three operations of a length, for vectors of one width.

void forward(const FftJob& job, double* x, const std::byte* bits, bool half) {
    if (half) {
        front<Real>(job, x, bits);
    } else {
        front<Complex>(job, x, bits);
    }
    if (job.family == 1) {
        const unsigned level = front_levels(job);
        const std::size_t blocks = std::size_t{1} << level, part = 2 * job.points >> level;
        for (std::size_t c = 0; c < blocks; ++c) forward_blocks(job, x + c * part, level, c);
    } else {
        for (std::size_t r = 0; r < job.family; ++r) forward_blocks(job, x + r * (2 * job.points / job.family), 0, r);
    }
}

/// The product of the forward forms, back to points.
void product_points(const FftJob& job, double* xd, const double* xa, const double* xb) {
    if (job.family == 1) {
        const unsigned level = front_levels(job);
        const std::size_t blocks = std::size_t{1} << level, part = 2 * job.points >> level;
        for (std::size_t c = 0; c < blocks; ++c)
            product_blocks(job, xd + c * part, xa + c * part, xb + c * part, level, c);
        return inverse_pass_of(level, xd, part / complex_doubles, job.roots.passes[0]);
    }
    const std::size_t part = 2 * job.points / job.family;
    for (std::size_t r = 0; r < job.family; ++r) product_blocks(job, xd + r * part, xa + r * part, xb + r * part, 0, r);
    if (job.family == 3) return family_inverse<3>(job, xd);
    family_inverse<5>(job, xd);
}

int product(const FftJob& job, double* xd, const double* xa, const double* xb, std::byte* bits) {
    product_points(job, xd, xa, xb);
    return carry_pass(job, xd, bits);
}

constexpr FftKernels kernels{&forward, &product, &product_points};
