#include "multiply/hybrid/coefficient_output.h"

#include "app/console/watching.h"
#include "app/failure/exceptions.h"
#include "digits/hash/word_hash.h"
#include "multiply/hybrid/residue.h"
#include "multiply/words/word_loops.h"

#include <algorithm>
#include <cstring>

namespace zvp {

void CoefficientOutput::put(std::uint64_t i, std::uint32_t power, RingWord* x, RingWord* before, TaskScratch scratch,
                            Sums& sums) const {
    const HybridSize& size = job.size;
    const std::size_t n = size.n, c = size.c;
    RingWord small[least_fft_ring + 1];
    RingWord* const r = n < least_fft_ring ? small : scratch.element(size, 0);
    job.kernels.rotate(r, x, n, 64 * std::uint64_t{n} - size.k); // divided by 2^k
    job.kernels.normalize(r, n);
    if (r[n - 1] != 0 || r[n] != 0) throw AlgorithmFailedException("hybrid_product()", "Coefficient is too large.");
    const std::uint32_t value = arithmetic_is_watched ? job.kernels.residue(r, n) : 0;
    sums.values = add_residues(sums.values, multiply_residues(value, power));
    if (before) {
        const bool carry = add_words(r, r, before, c);
        add_word(r + c, c + 1, before[c]);
        add_word(r + c, c + 1, carry);
        before[n] = 0;
    }
    store(i, r, sums);
    if (arithmetic_is_watched) {
        const std::uint32_t kept = subtract_residues(value, job.kernels.residue(r, c));
        sums.kept = add_residues(sums.kept, shift_residue(kept, c * i));
    }
    std::memcpy(x, r + c, 4 * (c + 1));
    x[n] = 1;
}

/// The c words of coefficient i, as far as the range takes them.
void CoefficientOutput::store(std::uint64_t i, const RingWord* words, Sums& sums) const {
    const std::size_t begin = job.size.c * i, end = begin + job.size.c;
    const std::size_t first = std::max(begin, s), last = std::min(end, e);
    if (first < last) std::memcpy(T + (first - s), words + (first - begin), 4 * (last - first));
    add_hashes(begin, words, job.size.c, sums);
}

void CoefficientOutput::add_hashes(std::size_t begin, const RingWord* words, std::size_t count, Sums& sums) const {
    if (!arithmetic_is_watched) return;
    const auto add = [&](std::uint64_t& sum, std::size_t from, std::size_t to, std::size_t origin) {
        if (from >= to) return;
        const std::uint64_t hash = hash_words(0, words + (from - begin), to - from);
        sum = add_mod(sum, shift_words(hash, static_cast<std::int64_t>(from - origin)));
    };
    const std::size_t end = begin + count;
    add(sums.left_out, begin, std::min(end, s), 0);
    add(sums.taken, std::max(begin, s), std::min(end, e), s);
    add(sums.left_out, std::max(begin, e), end, 0);
}

void CoefficientOutput::finish_run(std::uint64_t i, const RingWord* x, Sums& total) const {
    const std::size_t c = job.size.c, begin = c * (i + 1), below_end = std::min(c + 1, capacity() - begin);
    total.kept = add_residues(total.kept, shift_residue(job.kernels.residue(x, c + 1), begin));
    add(begin, x, below_end, total);
    add(0, x + below_end, c + 1 - below_end, total);
}

void CoefficientOutput::add(std::size_t begin, const RingWord* words, std::size_t count, Sums& total) const {
    add_hashes(begin, words, count, total);
    const std::size_t first = std::max(begin, s), last = std::min(begin + count, e);
    if (first >= last) return;
    RingWord* const at = T + (first - s);
    bool carry = add_words(at, at, words + (first - begin), last - first);
    carry = add_word(T + (last - s), e - last, carry);
    if (!carry) return;
    // What leaves the top goes missing, or comes in at the bottom.
    total.taken = subtract_mod(total.taken, pow_word(static_cast<std::int64_t>(e - s)));
    if (s == 0 && e == capacity()) {
        add_word(T, e, carry);
        total.taken = add_mod(total.taken, 1);
    } else {
        total.left_out = add_mod(total.left_out, pow_word(static_cast<std::int64_t>(e)));
    }
}

} // namespace zvp
