#pragma once
// "BKT" as a transform: the forward form is the operand itself, so that everything that keeps forward forms runs on
// short numbers too.

#include "multiply/contract/transform.h"

namespace zvp {

/// A transform of `words` c32i words takes operands of up to so many words each, and ranges that end there. Their
/// product may be twice as long: nothing wraps, so ranges are exact words of the whole product where other transforms
/// would fold it.
///
/// A forward form is a 64-bit length, in words of the operand's kind, and a copy of the operand. Forms of a c64i operand
/// are for c64i results.
class BKTTransform final : public Transform {
public:
    static constexpr const char* id = "BKT";

    explicit BKTTransform(std::uint64_t words);

    /// Bytes of a forward form, and of the product buffer with Karatsuba's scratch behind it.
    static std::uint64_t form_bytes(std::uint64_t words);
    static std::uint64_t work_bytes(std::uint64_t words);

    const char* name() const override { return id; }

    void forward(const MultiplyParameters& pars, std::byte* M, std::byte* X, const c32i* A,
                 std::size_t AL) const override;
    void forward(const MultiplyParameters& pars, std::byte* M, std::byte* X, const c64i* A,
                 std::size_t AL) const override;
    void inverse_fsqr(const MultiplyParameters& pars, std::byte* M, std::byte* Xd, std::byte* Xs, c32i* T,
                      std::size_t s, std::size_t e) const override;
    void inverse_fsqr(const MultiplyParameters& pars, std::byte* M, std::byte* Xd, std::byte* Xs, c64i* T,
                      std::size_t s, std::size_t e) const override;
    void inverse_fmul(const MultiplyParameters& pars, std::byte* M, std::byte* Xa, const std::byte* Xb, c32i* T,
                      std::size_t s, std::size_t e) const override;
    void inverse_fmul(const MultiplyParameters& pars, std::byte* M, std::byte* Xa, const std::byte* Xb, c64i* T,
                      std::size_t s, std::size_t e) const override;
    bool compatible(const Transform& other) const override;
    std::optional<std::uint64_t> left_out(const std::byte* M, std::size_t length, std::size_t s,
                                          std::size_t e) const override;
    std::span<const c32i> product_words(const std::byte* M, std::size_t length) const override {
        return {reinterpret_cast<const c32i*>(M), length};
    }

private:
    void check_capacity(std::uint64_t bits) const;
};

} // namespace zvp
