#include "multiply/algorithms/bkt_transform.h"

#include "app/failure/exceptions.h"
#include "digits/hash/word_hash.h"
#include "multiply/algorithms/bkt_range.h"

#include <cstring>

namespace zvp {

namespace {

constexpr std::size_t length_bytes = sizeof(std::uint64_t);

std::uint64_t padded(std::uint64_t bytes) { return (bytes + 63) / 64 * 64; }

template <class Word>
void store_form(std::byte* X, const Word* A, std::uint64_t AL) {
    std::memcpy(X, &AL, length_bytes);
    if (AL > 0) std::memcpy(X + length_bytes, A, AL * sizeof(Word));
}

template <class Word>
struct Form {
    explicit Form(const std::byte* X) : words(reinterpret_cast<const Word*>(X + length_bytes)) {
        std::memcpy(&length, X, length_bytes);
    }

    const Word* words;
    std::uint64_t length;
};

template <class Word>
void square_form(std::byte* M, const std::byte* X, Word* T, std::size_t s, std::size_t e) {
    const Form<Word> A(X);
    bkt_sqr(M, T, s, e, A.words, A.length);
}

template <class Word>
void multiply_forms(std::byte* M, const std::byte* Xa, const std::byte* Xb, Word* T, std::size_t s, std::size_t e) {
    const Form<Word> A(Xa);
    const Form<Word> B(Xb);
    bkt_mul(M, T, s, e, A.words, A.length, B.words, B.length);
}

} // namespace

BKTTransform::BKTTransform(std::uint64_t words) {
    capacity_bits = words * word_bits<c32i>;
    transform_bytes = form_bytes(words);
    scratch_bytes = work_bytes(words);
    requested_bits = capacity_bits;
}

std::uint64_t BKTTransform::form_bytes(std::uint64_t words) { return padded(length_bytes + words * sizeof(c32i)); }

std::uint64_t BKTTransform::work_bytes(std::uint64_t words) {
    return padded(2 * words * sizeof(c32i) + MULB::mul_scratch(words));
}

void BKTTransform::forward(const MultiplyParameters&, std::byte*, std::byte* X, const c32i* A, std::size_t AL) const {
    check_capacity(AL * word_bits<c32i>);
    store_form(X, A, AL);
}

void BKTTransform::forward(const MultiplyParameters&, std::byte*, std::byte* X, const c64i* A, std::size_t AL) const {
    check_capacity(AL * word_bits<c64i>);
    store_form(X, A, AL);
}

void BKTTransform::inverse_fsqr(const MultiplyParameters&, std::byte* M, std::byte*, std::byte* Xs, c32i* T,
                                std::size_t s, std::size_t e) const {
    check_capacity(e * word_bits<c32i>);
    square_form(M, Xs, T, s, e);
}

void BKTTransform::inverse_fsqr(const MultiplyParameters&, std::byte* M, std::byte*, std::byte* Xs, c64i* T,
                                std::size_t s, std::size_t e) const {
    check_capacity(e * word_bits<c64i>);
    square_form(M, Xs, T, s, e);
}

void BKTTransform::inverse_fmul(const MultiplyParameters&, std::byte* M, std::byte* Xa, const std::byte* Xb, c32i* T,
                                std::size_t s, std::size_t e) const {
    check_capacity(e * word_bits<c32i>);
    multiply_forms(M, Xa, Xb, T, s, e);
}

void BKTTransform::inverse_fmul(const MultiplyParameters&, std::byte* M, std::byte* Xa, const std::byte* Xb, c64i* T,
                                std::size_t s, std::size_t e) const {
    check_capacity(e * word_bits<c64i>);
    multiply_forms(M, Xa, Xb, T, s, e);
}

/// A product that was cut at its top wasn't made as a whole.
std::optional<std::uint64_t> BKTTransform::left_out(const std::byte* M, std::size_t length, std::size_t s,
                                                    std::size_t e) const {
    if (e < length) return std::nullopt;
    return hash_words(0, reinterpret_cast<const c32i*>(M), s);
}

bool BKTTransform::compatible(const Transform& other) const {
    const auto* same_class = dynamic_cast<const BKTTransform*>(&other);
    return same_class && same_class->capacity_bits == capacity_bits;
}

void BKTTransform::check_capacity(std::uint64_t bits) const {
    if (bits > capacity_bits)
        throw ConvolutionTooSmallException(id, "Convolution length is too small.", capacity_bits, bits);
}

} // namespace zvp
