// What a series that brings no leaf says.

#include "app/failure/exceptions.h"
#include "series/splitting/binary_bbp.h"
#include "series/splitting/brent_mcmillan_ab.h"
#include "series/splitting/common_p2b3.h"
#include "series/splitting/hyperdescent.h"

namespace zvp::BinarySplitting {
namespace {

[[gnu::cold, noreturn]] void throw_missing(const char* function) {
    throw InvalidParametersException(function, "Not implemented.");
}

} // namespace

void CommonP2B3::Series::BSR_E(const MultiplyParameters&, ExactNumber&, ExactNumber&, ExactNumber&, ExactNumber&,
                               std::uint64_t, std::uint64_t) const {
    throw_missing("BSR_E()");
}

void CommonP2B3::BasicIntSeries::leaf(LeafInt&, LeafInt&, LeafInt&, std::uint64_t) const { throw_missing("BSR_End()"); }

bool CommonP2B3::BasicIntSeries::short_leaf(ShortTerm&, std::uint64_t) const { return false; }

void Hyperdescent::Series::BSR_E(const MultiplyParameters&, ExactNumber&, ExactNumber&, std::uint64_t,
                                 std::uint64_t) const {
    throw_missing("BSR_E()");
}

void BinaryBBP::Series::BSR_E(const MultiplyParameters&, ExactNumber&, ExactNumber&, ExactNumber&, std::uint64_t,
                              std::uint64_t) const {
    throw_missing("BSR_E()");
}

void BrentMcMillanAB::Series::BSR_E(const MultiplyParameters&, NumbersOf<ExactNumber>&, std::uint64_t,
                                    std::uint64_t) const {
    throw_missing("BSR_E()");
}

} // namespace zvp::BinarySplitting
