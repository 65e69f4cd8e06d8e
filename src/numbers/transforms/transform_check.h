#pragma once
// What the products by kept forms check alike, each in the name of its operation.

#include "multiply/contract/transform.h"

namespace zvp {

/// Throws TransformTooSmallException if an operand of `bits` bits doesn't fit `tr`.
void check_operand(const char* function, const Transform& tr, std::uint64_t bits);

/// Forward forms of `a` and `b` may be combined if these are one object, or of one class and length. If not, prints both
/// and throws InvalidParametersException.
void check_match(const char* function, const Transform& a, const Transform& b);

/// Throws InvalidParametersException if X is null: a form that an earlier product used up.
void check_form(const char* function, const std::byte* X);

} // namespace zvp
