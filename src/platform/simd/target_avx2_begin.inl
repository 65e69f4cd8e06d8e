// Opens the target region of the avx2 kernel set; closed by target_end.inl. Include after all other headers.
#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx2,fma,bmi2"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx2,fma,bmi2")
#endif
