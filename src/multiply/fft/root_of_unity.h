#pragma once
// Roots of unity e^(2 pi i t / D) for many t: the error of each part is at most 1.02 * 2^-54.

#include <complex>
#include <cstdint>
#include <vector>

namespace zvp {

/// Roots of the order D = 4 m 2^e, for t up to 5/8 of D. A root is the product of one of few coarse roots, held in two
/// doubles, and one of few fine ones, held as its difference to 1: the correction is small, so that the last addition
/// makes nearly the whole error. (P. T. P. Tang, "Table-lookup algorithms for elementary functions", 1991.)
class RootOfUnity {
public:
    RootOfUnity(unsigned m, unsigned e);

    std::complex<double> operator()(std::uint64_t t) const {
        const Coarse& c = coarse[t >> fine_bits];
        const Fine& f = fine[t & ((std::uint64_t{1} << fine_bits) - 1)];
        return {c.re + (c.re_low + (c.re * f.re - c.im * f.im)), c.im + (c.im_low + (c.im * f.re + c.re * f.im))};
    }

private:
    struct Coarse {
        double re, im, re_low, im_low;
    };
    struct Fine {
        double re, im; // of the root less 1
    };

    unsigned fine_bits;
    std::vector<Coarse> coarse;
    std::vector<Fine> fine;
};

} // namespace zvp
