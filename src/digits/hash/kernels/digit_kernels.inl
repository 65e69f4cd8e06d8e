constexpr DigitKernels digit_kernels{
    this_set,     2 * row_limbs,    vector_bytes,     hash_rows,
    hash_decimal, hash_hexadecimal, count_digits<10>, count_digits<16>,
};
