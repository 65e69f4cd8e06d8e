#pragma once
// All multiplication algorithms of the program by id.

#include "app/failure/registry.h"
#include "multiply/contract/multiply_algorithm.h"

#include <type_traits>

namespace zvp {

/// One algorithm's object for each kind of operands; null where it has none.
struct AlgorithmKinds {
    const MultiplyAlgorithm<c32i>* basic_c32i = nullptr;
    const MultiplyAlgorithm<c64i>* basic_c64i = nullptr;

    template <class Word>
    const MultiplyAlgorithm<Word>* basic() const {
        if constexpr (std::is_same_v<Word, c32i>)
            return basic_c32i;
        else
            return basic_c64i;
    }
};

/// The registered algorithms; not all of them stand in a table.
const Registry<AlgorithmKinds>& algorithm_registry();

} // namespace zvp
