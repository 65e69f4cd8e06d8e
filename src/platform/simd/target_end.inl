// Closes the target region that target_<set>_begin.inl opened.
#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif
