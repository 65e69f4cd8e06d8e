// The operations of a length, for vectors of one width.

/// What the first pass makes of the points: parts that are transformed one by one.
struct Parts {
    unsigned level;
    std::size_t count, doubles;

    explicit Parts(const FftJob& job)
        : level(job.family == 1 ? front_levels(job) : 0),
          count(job.family == 1 ? std::size_t{1} << level : job.family),
          doubles(2 * job.points / count) {}
};

void first_pass(const FftJob& job, double* x, const std::byte* bits, bool half) {
    if (half) return front<Real>(job, x, bits);
    front<Complex>(job, x, bits);
}

void last_pass(const FftJob& job, double* x) {
    if (job.family == 3) return family_inverse<3>(job, x);
    if (job.family == 5) return family_inverse<5>(job, x);
    const Parts parts(job);
    inverse_pass_of(parts.level, x, parts.doubles / complex_doubles, job.roots.passes[0]);
}

void forward(const FftJob& job, double* x, const std::byte* bits, bool half) {
    first_pass(job, x, bits, half);
    const Parts parts(job);
    for (std::size_t c = 0; c < parts.count; ++c) forward_blocks(job, x + c * parts.doubles, parts.level, c);
}

/// The product of the forward forms, back to points but for the last pass.
void product_parts(const FftJob& job, double* xd, const double* xa, const double* xb) {
    const Parts parts(job);
    for (std::size_t c = 0, at = 0; c < parts.count; ++c, at += parts.doubles)
        product_blocks(job, xd + at, xa + at, xb + at, parts.level, c);
}

void product_points(const FftJob& job, double* xd, const double* xa, const double* xb) {
    product_parts(job, xd, xa, xb);
    last_pass(job, xd);
}

/// The last pass and the carries, in one where both take the same parts.
int finish(const FftJob& job, double* x, std::byte* bits) {
    if (job.family == 1 && Parts(job).count == V) return carry_pass<LastStep>(job, x, bits);
    last_pass(job, x);
    return carry_pass<NoStep>(job, x, bits);
}

int product(const FftJob& job, double* xd, const double* xa, const double* xb, std::byte* bits) {
    product_parts(job, xd, xa, xb);
    return finish(job, xd, bits);
}

int multiply(const FftJob& job, double* xa, double* xb, std::byte* bits) {
    const Parts parts(job);
    for (std::size_t c = 0, at = 0; c < parts.count; ++c, at += parts.doubles)
        multiply_blocks(job, xa + at, xb + at, parts.level, c);
    return finish(job, xa, bits);
}

constexpr FftKernels kernels{&forward, &first_pass, &product, &multiply, &product_points};
