#pragma once
// One multiplication algorithm for one kind of words: how it is named, how far it reaches, what it needs.

#include "multiply/contract/multiply_parameters.h"
#include "multiply/contract/transform.h"
#include "multiply/words/word_types.h"

#include <algorithm>

namespace zvp {

class MultiplyTables;

/// Bytes for one product: one forward form, and the working memory beyond the forms.
struct TransformSizes {
    std::uint64_t transform_bytes = 0;
    std::uint64_t scratch_bytes = 0;

    std::uint64_t total() const { return 2 * transform_bytes + scratch_bytes; }
};

/// What is enough for every product of a set: the largest forward form, the largest working memory beyond the forms, and
/// the largest total, each on its own. No product of the set needs the first two at once, so that `total` is less than
/// their sum where forms and scratch trade against each other.
struct ProductBounds {
    std::uint64_t transform_bytes = 0;
    std::uint64_t scratch_bytes = 0;
    std::uint64_t total = 0;

    void include(const TransformSizes& sizes) {
        include(ProductBounds{sizes.transform_bytes, sizes.scratch_bytes, sizes.total()});
    }
    void include(const ProductBounds& other) {
        transform_bytes = std::max(transform_bytes, other.transform_bytes);
        scratch_bytes = std::max(scratch_bytes, other.scratch_bytes);
        total = std::max(total, other.total);
    }
};

/// Lengths are in words of the kind; a product's length is the sum of its operands' lengths. Objects are stateless.
template <class Word>
class MultiplyAlgorithm {
public:
    MultiplyAlgorithm(const char* id_, const char* name_, const char* tag_, const char* family_,
                      std::uint64_t max_bits_)
        : id(id_), name(name_), tag(tag_), family(family_), max_bits(max_bits_) {}
    virtual ~MultiplyAlgorithm() = default;

    /// Grows the wish of `tables` so that they will serve a product of `length` words.
    virtual void ensure_tables(MultiplyTables& tables, std::uint64_t length) const = 0;

    /// Enough for every split of `length` into two operands.
    virtual TransformSizes sizes(std::uint64_t length, std::uint32_t tds) const = 0;

    /// Enough for every product of more than `above` and at most `length` words, by any number of tasks up to `tds`. The
    /// base suits algorithms whose sizes don't fall as the length rises.
    virtual ProductBounds bounds(std::uint64_t above, std::uint64_t length, std::uint32_t tds) const {
        static_cast<void>(above);
        ProductBounds bounds;
        bounds.include(sizes(length, tds));
        return bounds;
    }

    /// Makes the transform object for products of `length` words.
    virtual const Transform& params(TransformObject& object, std::uint64_t length, std::uint32_t tds) const = 0;

    /// Words s .. e - 1 of A^2 or A * B to T; s = 0 is exact. Above, the range, read as one number modulo W^(e - s), may be
    /// short of the exact words by 1 or 2, for carries from below: an algorithm that makes the whole product may drop words
    /// that only feed them (range_trimming.h), a transform may leave them out where it joins its pieces. Buffers are
    /// checked against pars.ML, the length against the built tables.
    virtual void sqr(const MultiplyParameters& pars, Word* T, std::size_t s, std::size_t e, const Word* A,
                     std::size_t AL) const = 0;
    virtual void mul(const MultiplyParameters& pars, Word* T, std::size_t s, std::size_t e, const Word* A,
                     std::size_t AL, const Word* B, std::size_t BL) const = 0;

    /// The whole square and the whole product.
    void sqr(const MultiplyParameters& pars, Word* T, const Word* A, std::size_t AL) const {
        sqr(pars, T, 0, 2 * AL, A, AL);
    }
    void mul(const MultiplyParameters& pars, Word* T, const Word* A, std::size_t AL, const Word* B,
             std::size_t BL) const {
        mul(pars, T, 0, AL + BL, A, AL, B, BL);
    }

    /// Bytes that mul_unchecked() needs.
    virtual std::uint64_t total(std::uint64_t length, std::uint32_t tds) const { return sizes(length, tds).total(); }

    /// mul() without the checks of buffers and tables, for callers that have planned with total().
    virtual void mul_unchecked(const MultiplyParameters& pars, Word* T, std::size_t s, std::size_t e, const Word* A,
                               std::size_t AL, const Word* B, std::size_t BL) const = 0;

    const char* const id;
    const char* const name;
    const char* const tag;
    const char* const family;
    const std::uint64_t max_bits; // the largest product
};

} // namespace zvp
