#pragma once
// The hash of digits: a run of them as one integer, modulo 2^61 - 1. A digit is the low 4 bits of its byte.

#include "digits/hash/hash_field.h"

#include <cstddef>
#include <cstdint>

namespace zvp {

/// Continues `h` over n digits, digits[0] being the most significant: h * radix^n + value of the digits, in [0, p). One
/// pass. h may be unreduced; digits of radix 10 may be above 9 and count as they are. Raises InvalidParametersException
/// for a radix that is neither 10 nor 16.
std::uint64_t hash_digits(std::uint64_t h, const std::uint8_t* digits, std::size_t n, unsigned radix);

} // namespace zvp
