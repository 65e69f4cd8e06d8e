#pragma once
// "Did you mean ...?" for words that aren't known.

#include "app/failure/exceptions.h"

#include <string>
#include <string_view>
#include <vector>

namespace CommandLine {

/// The word of `known` that `word` was probably meant to be: at most a third of its letters (one at least) are wrong,
/// missing, too many or swapped with a neighbour. Upper and lower case count as alike. Empty if there is none.
std::string nearest_word(std::string_view word, const std::vector<std::string>& known);

/// "\nDid you mean \"...\"?", or nothing.
std::string nearest_word_hint(std::string_view word, const std::vector<std::string>& known);

/// Calls function(), and adds the hint to the message of the InvalidParametersException that it throws for `word`.
template <class Function>
void with_hint(std::string_view word, const std::vector<std::string>& known, Function&& function) {
    try {
        function();
    } catch (const zvp::InvalidParametersException& refusal) {
        throw zvp::InvalidParametersException(refusal.function, refusal.message + nearest_word_hint(word, known));
    }
}

} // namespace CommandLine
