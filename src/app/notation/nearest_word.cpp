#include "app/notation/nearest_word.h"

#include <algorithm>
#include <cctype>

namespace CommandLine {

namespace {

bool same_letter(char a, char b) {
    return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
}

/// The least number of letters to change, insert, remove or swap with a neighbour (each at most once) that makes b of a.
std::size_t edit_distance(std::string_view a, std::string_view b) {
    std::vector<std::vector<std::size_t>> d(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i) d[i][0] = i;
    for (std::size_t j = 0; j <= b.size(); ++j) d[0][j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        for (std::size_t j = 1; j <= b.size(); ++j) {
            d[i][j] = std::min(
                {d[i - 1][j] + 1, d[i][j - 1] + 1, d[i - 1][j - 1] + (same_letter(a[i - 1], b[j - 1]) ? 0 : 1)});
            if (i > 1 && j > 1 && same_letter(a[i - 1], b[j - 2]) && same_letter(a[i - 2], b[j - 1]))
                d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
        }
    }
    return d[a.size()][b.size()];
}

} // namespace

std::string nearest_word(std::string_view word, const std::vector<std::string>& known) {
    std::string nearest;
    std::size_t least = word.size(); // a word of which nothing is right is no guess
    for (const std::string& candidate : known) {
        const std::size_t allowed = std::max<std::size_t>(1, candidate.size() / 3);
        if (word.size() > candidate.size() + allowed) continue;
        const std::size_t distance = edit_distance(word, candidate);
        if (distance > allowed || distance >= least) continue;
        least = distance;
        nearest = candidate;
    }
    return nearest;
}

std::string nearest_word_hint(std::string_view word, const std::vector<std::string>& known) {
    const std::string nearest = nearest_word(word, known);
    return nearest.empty() ? "" : "\nDid you mean \"" + nearest + "\"?";
}

} // namespace CommandLine
