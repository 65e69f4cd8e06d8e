#include "multiply/contract/transform.h"

namespace zvp {

namespace {

/// Leaves everything as it is: the transform of storage that has no words.
class DryTransform final : public Transform {
public:
    const char* name() const override { return "dry run"; }
    void forward(const MultiplyParameters&, std::byte*, std::byte*, const c32i*, std::size_t) const override {}
    void forward(const MultiplyParameters&, std::byte*, std::byte*, const c64i*, std::size_t) const override {}
    void inverse_fsqr(const MultiplyParameters&, std::byte*, std::byte*, std::byte*, c32i*, std::size_t,
                      std::size_t) const override {}
    void inverse_fsqr(const MultiplyParameters&, std::byte*, std::byte*, std::byte*, c64i*, std::size_t,
                      std::size_t) const override {}
    void inverse_fmul(const MultiplyParameters&, std::byte*, std::byte*, const std::byte*, c32i*, std::size_t,
                      std::size_t) const override {}
    void inverse_fmul(const MultiplyParameters&, std::byte*, std::byte*, const std::byte*, c64i*, std::size_t,
                      std::size_t) const override {}
    bool compatible(const Transform&) const override { return false; }
};

} // namespace

const Transform& Transform::dry_transform() {
    static const DryTransform transform;
    return transform;
}

} // namespace zvp
