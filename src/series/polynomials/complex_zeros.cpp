#include "series/polynomials/complex_zeros.h"

#include "app/console/console.h"
#include "app/failure/exceptions.h"
#include "series/polynomials/complex_line.h"

#include <algorithm>

namespace Polynomials {
namespace {

constexpr const char* function_name = "isolate_zeros_square_free()";
constexpr std::size_t unusual_degree = 32;

struct Rectangle {
    SimpleInt x0, x1; // real range
    SimpleInt y0, y1; // imaginary range

    bool is_unit() const { return x1 - x0 == SimpleInt(1) && y1 - y0 == SimpleInt(1); }
};

SimpleInt middle_of(const SimpleInt& low, const SimpleInt& high) {
    SimpleInt middle = low + high;
    middle.shift_right_1();
    return middle;
}

/// Counts and halves rectangles above the real axis. Zeros on the line that halves one go into the map when the line is
/// drawn, with an exact coordinate, and count for neither half.
class RectangleSearch {
public:
    RectangleSearch(const IntegerPolynomial& p_, RootMap& map_) : p(p_), map(map_) {}

    /// Zeros strictly inside.
    std::size_t count(const Rectangle& r) {
        const ComplexLine &bottom = horizontal(r.y0), &top = horizontal(r.y1);
        const ComplexLine &left = vertical(r.x0), &right = vertical(r.x1);
        // Counter-clockwise the turns are positive, and the Cauchy index counts clockwise ones.
        const std::ptrdiff_t index =
            top.count_complex_zeros_inside(r.x0, r.x1) + left.count_complex_zeros_inside(r.y0, r.y1)
            - bottom.count_complex_zeros_inside(r.x0, r.x1) - right.count_complex_zeros_inside(r.y0, r.y1);
        const std::size_t edge = bottom.count_zeros_on_line(r.x0, r.x1) + top.count_zeros_on_line(r.x0, r.x1)
                                 + left.count_zeros_on_line(r.y0, r.y1) + right.count_zeros_on_line(r.y0, r.y1);
        return compute_inside_zeros(index, edge);
    }

    void subdivide(const Rectangle& r, std::size_t zeros) {
        if (zeros == 0) return;
        if (r.is_unit()) {
            map[{r.x0, r.x1, r.y0, r.y1}] += zeros;
            return;
        }
        Rectangle first = r, second = r;
        const std::size_t on_line =
            r.x1 - r.x0 >= r.y1 - r.y0 ? halve_real(r, first, second) : halve_imaginary(r, first, second);
        const std::size_t in_first = count(first), in_second = count(second);
        if (in_first + in_second + on_line != zeros)
            throw zvp::AlgorithmFailedException(function_name, "The zeros of two halves don't add up to the whole's.");
        subdivide(first, in_first);
        subdivide(second, in_second);
    }

private:
    std::size_t halve_real(const Rectangle& r, Rectangle& first, Rectangle& second) {
        const SimpleInt x = middle_of(r.x0, r.x1);
        first.x1 = second.x0 = x;
        std::size_t zeros = 0;
        for (const UnitInterval& zero : vertical(x).isolate_zeros_on_line(r.y0, r.y1)) {
            map[{x, x, zero.low, zero.high}] += zero.count;
            zeros += zero.count;
        }
        return zeros;
    }

    std::size_t halve_imaginary(const Rectangle& r, Rectangle& first, Rectangle& second) {
        const SimpleInt y = middle_of(r.y0, r.y1);
        first.y1 = second.y0 = y;
        std::size_t zeros = 0;
        for (const UnitInterval& zero : horizontal(y).isolate_zeros_on_line(r.x0, r.x1)) {
            map[{zero.low, zero.high, y, y}] += zero.count;
            zeros += zero.count;
        }
        return zeros;
    }

    const ComplexLine& horizontal(const SimpleInt& y) {
        return horizontals.try_emplace(y, p, ComplexLine::Direction::horizontal, y).first->second;
    }

    const ComplexLine& vertical(const SimpleInt& x) {
        return verticals.try_emplace(x, p, ComplexLine::Direction::vertical, x).first->second;
    }

    const IntegerPolynomial& p;
    RootMap& map;
    std::map<SimpleInt, ComplexLine> horizontals, verticals; // a line serves every rectangle that it bounds
};

/// The first of (-1, 1) x (0, 1), (-2, 2) x (0, 2), ... that holds all zeros above the real axis.
Rectangle enclosing_rectangle(const IntegerPolynomial& p, RectangleSearch& search, std::size_t zeros) {
    std::size_t bits = 0;
    for (std::size_t i = 0; i < p.size(); ++i) bits = std::max(bits, p[i].bits());
    SimpleInt bound = 1;
    for (std::size_t tries = bits + 2; tries > 0; --tries) { // by Cauchy's bound 1 + max |c_i| / |top|
        const Rectangle r{-bound, bound, 0, bound};
        const std::size_t inside = search.count(r);
        if (inside == zeros) return r;
        if (inside > zeros) break;
        bound.shift_left_1();
    }
    throw zvp::AlgorithmFailedException(function_name, "The complex zeros don't add up to the degree.");
}

} // namespace

std::size_t compute_inside_zeros(std::ptrdiff_t index, std::size_t edge) {
    const char* fault = index < 0                                ? "Cauchy Index is negative."
                        : static_cast<std::size_t>(index) < edge ? "Cauchy Index is larger than edge zeros."
                        : (static_cast<std::size_t>(index) - edge) % 2 != 0
                            ? "Adjusted Cauchy Index is not a multiple of 2."
                            : nullptr;
    if (fault) throw zvp::AlgorithmFailedException("compute_inside_zeros()", fault);
    return (static_cast<std::size_t>(index) - edge) / 2;
}

RootMap isolate_zeros_square_free(const IntegerPolynomial& p) {
    RootMap map;
    const SturmSequence chain = SturmSequence::generate(p, p.derivative());
    const std::size_t real_zeros = chain.sign_flips_minus_infinity() - chain.sign_flips_plus_infinity();
    if ((p.degree() - real_zeros) % 2 != 0)
        throw zvp::AlgorithmFailedException(function_name, "The # of complex zeros is not even.");
    for (const UnitInterval& zero : isolate_real_zeros(chain)) map[{zero.low, zero.high, 0, 0}] += zero.count;
    const std::size_t upper_zeros = (p.degree() - real_zeros) / 2;
    if (upper_zeros == 0) return map;
    if (p.degree() >= unusual_degree) zvp::print_warning("Unusual high order polynomial. May take time to process...");
    RectangleSearch search(p, map);
    search.subdivide(enclosing_rectangle(p, search, upper_zeros), upper_zeros);
    return map;
}

} // namespace Polynomials
