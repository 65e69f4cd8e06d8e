#pragma once

#include "multiply/contract/transform.h"

namespace test {

/// A transform that makes nothing, for tests that look at what surrounds one.
class IdleTransform : public zvp::Transform {
public:
    using Pars = zvp::MultiplyParameters;
    const char* name() const override { return "IDL"; }
    void forward(const Pars&, std::byte*, std::byte*, const zvp::c32i*, std::size_t) const override {}
    void forward(const Pars&, std::byte*, std::byte*, const zvp::c64i*, std::size_t) const override {}
    void inverse_fsqr(const Pars&, std::byte*, std::byte*, std::byte*, zvp::c32i*, std::size_t,
                      std::size_t) const override {}
    void inverse_fsqr(const Pars&, std::byte*, std::byte*, std::byte*, zvp::c64i*, std::size_t,
                      std::size_t) const override {}
    void inverse_fmul(const Pars&, std::byte*, std::byte*, const std::byte*, zvp::c32i*, std::size_t,
                      std::size_t) const override {}
    void inverse_fmul(const Pars&, std::byte*, std::byte*, const std::byte*, zvp::c64i*, std::size_t,
                      std::size_t) const override {}
    bool compatible(const Transform&) const override { return true; }
};

} // namespace test
