// The whole transform in terms of one pair of vector types.

#include "multiply/fft/kernels/butterflies.inl"

#include "multiply/fft/kernels/recursion.inl"

#include "multiply/fft/kernels/front.inl"

#include "multiply/fft/kernels/carry.inl"

#include "multiply/fft/kernels/transform.inl"
