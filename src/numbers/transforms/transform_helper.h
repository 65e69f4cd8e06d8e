#pragma once
// The transform of a planned product, with the memory that it needs cut out of the scratch of the parameters.

#include "multiply/contract/transform.h"

namespace zvp {

/// pars.M is laid out as form 0 | form 1 | .. | scratch, each form of transform().transform_bytes. Lives on the stack;
/// what it was built from must stay.
///
/// Where forms of different lengths live at once, a second helper is built from the first one's inner parameters.
class TransformHelper {
public:
    /// For products of `length` words (wtype), by the algorithm that the tables hold for them. Throws
    /// LimitExceededException when no algorithm covers the length or pars.tables weren't built for it, and
    /// BufferTooSmallException when pars.ML has no room for `forms` forms and the scratch.
    TransformHelper(const MultiplyParameters& pars, std::uint64_t length, std::size_t forms);

    TransformHelper(const TransformHelper&) = delete;
    TransformHelper& operator=(const TransformHelper&) = delete;

    const Transform& transform() const { return *object; }

    /// The area of the form `index` < forms.
    std::byte* form(std::size_t index) const { return first + index * object->transform_bytes; }

    /// The scratch for the operations of the transform, 64-byte aligned as pars.M was.
    std::byte* M() const { return inner.M; }

    /// The parameters for what runs inside: M and ML are what lies behind the forms, and nobody reports (status null).
    const MultiplyParameters& pars() const { return inner; }

private:
    TransformObject object;
    std::byte* first;
    MultiplyParameters inner;
};

} // namespace zvp
