#include "series/splitting/recursion.inl"

namespace zvp::BinarySplitting {

using CommonP2B3::Family;

template void run_tree(const Job<Family>&, const MultiplyParameters&, StatusNode*, Node<Family, ExactNumber>&,
                       std::uint32_t, std::size_t);
template void run_tree(const Job<Family>&, const MultiplyParameters&, StatusNode*, Node<Family, BigFloat>&,
                       std::uint32_t, std::size_t);

} // namespace zvp::BinarySplitting
