// Chains of blocks with random cuts against exact sums, in exactly the planned memory; faults on the way.

#include "parallel/memory/carving.h"
#include "series/plans/psr_series.h"
#include "series/splitting/splitting_support.h"

#include <atomic>
#include <set>

namespace {

using namespace test;
using bs::BlockRange;
using zvp::AlignedBufferC;
using zvp::padded_words;

std::vector<BlockRange> random_cuts(std::mt19937_64& random, std::uint64_t terms, std::size_t blocks) {
    std::set<std::uint64_t> cuts{0, terms};
    while (cuts.size() < blocks + 1) cuts.insert(random() % terms);
    std::vector<BlockRange> ranges;
    for (auto at = cuts.begin(); std::next(at) != cuts.end(); ++at) ranges.push_back({*at, *std::next(at)});
    return ranges;
}

template <class Family>
struct Chain {
    using Block = bs::PSR_BlockB<Family>;
    static constexpr std::size_t carried = std::tuple_size_v<typename Block::Running>;

    Chain(const typename Family::Series& series, const std::vector<BlockRange>& ranges, std::uint32_t tds,
          std::uint32_t depth) {
        for (const BlockRange& range : ranges)
            blocks.emplace_back(series, range.a, range.b, tds, depth, range.b == series.N);
        words = padded_words(bs::folded_words(blocks.front().prec_a));
        for (const Block& block : blocks) block.ensure_tables(tables);
        table_memory = std::make_unique<GuardedMemory>(tables.bytes());
        tables.place(table_memory->data());
        pars.tds = tds;
        pars.tables = &tables;
        pars.framework = framework.get();
        for (std::size_t i = 0; i < carried; ++i) {
            storage.push_back(std::make_unique<GuardedMemory>(words * sizeof(wtype)));
            running[i] = BigFloat(reinterpret_cast<wtype*>(storage[i]->data()), words);
        }
    }

    void run_block(std::size_t index, std::uint64_t less = 0) {
        const std::uint64_t bytes = blocks[index].memory_bytes - less;
        const GuardedMemory memory(bytes);
        blocks[index].run(pars, nullptr, running, AlignedBufferC<64>(memory.data(), bytes));
        EXPECT_TRUE(memory.is_intact());
        for (const auto& number : storage) EXPECT_TRUE(number->is_intact());
    }

    void run() {
        for (std::size_t index = blocks.size(); index-- > 0;) run_block(index);
    }

    std::vector<Block> blocks;
    std::size_t words;
    typename Block::Running running;
    zvp::MultiplyParameters pars;

private:
    zvp::MultiplyTables tables;
    std::unique_ptr<GuardedMemory> table_memory;
    std::vector<std::unique_ptr<GuardedMemory>> storage;
    std::unique_ptr<zvp::ParallelFramework> framework = zvp::make_framework_config("pushpool")->make_framework();
};

/// In units of W^-scale, cut to an integer.
mpz_class scaled(const BigFloat& f, std::int64_t scale) {
    const std::int64_t words = f.exp + scale;
    const mpz_class magnitude = integer(f.T, f.L);
    const mpz_class moved = words >= 0 ? mpz_class(magnitude << static_cast<mp_bitcnt_t>(32 * words))
                                       : mpz_class(magnitude >> static_cast<mp_bitcnt_t>(-32 * words));
    return f.sign || f.L == 0 ? moved : mpz_class(-moved);
}

/// log2 of the error of a/b as A/B, relative.
double log2_error(const BigFloat& a, const BigFloat& b, const mpz_class& A, const mpz_class& B) {
    const std::int64_t scale = 4 - std::min(a.exp, b.exp);
    const mpz_class expected = A * scaled(b, scale);
    const mpz_class difference = abs(mpz_class(scaled(a, scale) * B - expected));
    if (difference == 0) return -1e9;
    long e = 0, f = 0;
    const double d = mpz_get_d_2exp(&e, difference.get_mpz_t()), x = mpz_get_d_2exp(&f, expected.get_mpz_t());
    return std::log2(std::abs(d / x)) + static_cast<double>(e - f);
}

/// A sum, as a fraction of two carried numbers.
struct Fraction {
    std::size_t over, under;
    mpz_class numerator, denominator;
};

std::set<std::string> letters;

template <class Family, class Series>
void expect_folded(const Series& series, const std::vector<Fraction>& sums, std::size_t p, const char* name) {
    std::mt19937_64 random(seed());
    SCOPED_TRACE(seed_trace());
    for (const std::size_t blocks : {1, 2, 3, 7})
        for (const std::uint32_t tds : {1, 2, 3, 8}) {
            SCOPED_TRACE(testing::Message() << name << ", " << blocks << " blocks, " << tds << " tasks");
            Chain<Family> chain(series, random_cuts(random, series.N, blocks), tds, blocks % 2);
            for (const auto& block : chain.blocks) letters.insert(std::string(name) + block.letter());
            chain.run();
            for (const Fraction& sum : sums)
                EXPECT_LT(log2_error(chain.running[sum.over], chain.running[sum.under], sum.numerator, sum.denominator),
                          9.0 - 32.0 * static_cast<double>(p));
        }
}

TEST(Folding, BlocksOfAnyCutMakeTheSum) {
    const CubicSeries cubic(true, 41, 3'000);
    const ExactSum a = sum_by_gmp(cubic, 0, cubic.N);
    expect_folded<bs::CommonP2B3::Family>(cubic, {{0, 1, a.numbers[0], a.numbers[1]}}, cubic.precision_words(0),
                                          "cubic");
    const RoughSeries rough(8'000);
    const ExactSum b = sum_by_gmp(rough, 0, rough.N);
    expect_folded<bs::CommonP2B3::Family>(rough, {{0, 1, b.numbers[0], b.numbers[1]}}, rough.precision_words(0),
                                          "rough");
    const PowerSeries power(3, 700);
    ExactSum c = sum_by_gmp(power, 0, power.N);
    c.numbers[1] <<= static_cast<mp_bitcnt_t>(-32 * c.exps[0]);
    expect_folded<bs::BinaryBBP::Family>(power, {{0, 1, c.numbers[0], c.numbers[1]}}, power.precision_words(0),
                                         "power");
    for (const char* letter : {"cubicA", "cubicE", "roughA", "roughE", "powerA", "powerE"})
        EXPECT_EQ(letters.count(letter), 1u) << letter;
}

/// b1 .. b3 are N1 .. N3: the fractions are N2/N1^2 and N3/N1^3, whose powers of N1 are made here.
TEST(Folding, ChainsOfTheBrentMcMillanFamily) {
    const BesselSeries series(6, 700);
    const ExactSum sum = sum_by_gmp(series, 0, series.N);
    std::mt19937_64 random(seed());
    SCOPED_TRACE(seed_trace());
    for (const std::size_t blocks : {1, 2, 5})
        for (const std::uint32_t tds : {1, 3}) {
            SCOPED_TRACE(testing::Message() << blocks << " blocks, " << tds << " tasks");
            Chain<bs::BrentMcMillanAB::Family> chain(series, random_cuts(random, series.N, blocks), tds, 0);
            chain.run();
            const auto& n = chain.running;
            const std::int64_t scale = 4 + std::max({std::int64_t{0}, -n[0].exp, -n[1].exp, -n[2].exp});
            const mpz_class n1 = scaled(n[0], scale), n2 = scaled(n[1], scale), n3 = scaled(n[2], scale);
            const mpz_class unit = mpz_class(1) << static_cast<mp_bitcnt_t>(32 * scale);
            const auto error = [&](const mpz_class& x, const mpz_class& y) {
                const mpz_class d = abs(mpz_class(x - y));
                long e = 0, f = 0;
                const double m = d == 0 ? 0.0 : mpz_get_d_2exp(&e, d.get_mpz_t());
                const double v = mpz_get_d_2exp(&f, y.get_mpz_t());
                return std::log2(std::abs(m / v)) + static_cast<double>(e - f);
            };
            const double bound = 10.0 - 32.0 * static_cast<double>(series.precision_words(0));
            EXPECT_LT(error(n2 * unit * sum.numbers[1] * sum.numbers[1], n1 * n1 * sum.numbers[2]), bound);
            EXPECT_LT(error(n3 * unit * unit * sum.numbers[1] * sum.numbers[1] * sum.numbers[1],
                            n1 * n1 * n1 * sum.numbers[3]),
                      bound);
        }
}

/// The name of the BufferTooSmallException that the call raises.
template <class Call>
std::string too_small(Call&& call) {
    try {
        call();
    } catch (const zvp::BufferTooSmallException& failure) {
        return failure.function;
    }
    return "nothing";
}

TEST(Folding, ALineLessOfMemoryIsRefused) {
    const CubicSeries series(true, 41, 3'000);
    Chain<bs::CommonP2B3::Family> chain(series, {{0, 1'000}, {1'000, 3'000}}, 2, 0);
    EXPECT_EQ(too_small([&] { chain.run_block(1, 64); }), "PSR_BlockB::run()");
    chain.run_block(1);
    EXPECT_EQ(too_small([&] { chain.run_block(0, 64); }), "PSR_BlockB::run()");
    chain.running[0].capacity = bs::folded_words(chain.blocks[0].prec_a) - 1;
    EXPECT_EQ(too_small([&] { chain.run_block(0); }), "PSR_BlockB::run()");
}

/// A cubic series one of whose leaves has a flipped bit.
class DamagedSeries final : public FactorialSized<bs::CommonP2B3::BasicIntSeries> {
public:
    DamagedSeries(std::uint64_t index_, unsigned number_, unsigned bit_, std::uint64_t terms)
        : index(index_), number(number_), bit(bit_), sound(true, 41, terms) {
        N = sound.N;
        leaf_terms = sound.leaf_terms;
        split_slack = sound.split_slack;
        alternating = sound.alternating;
        degree = sound.degree;
        q = sound.q;
        c = 2 * sound.c; // all blocks exact
    }

    void leaf(bs::LeafInt& P, bs::LeafInt& Q, bs::LeafInt& R, std::uint64_t k) const override {
        sound.leaf(P, Q, R, k);
        if (k != index) return;
        bs::LeafInt& target = number == 0 ? P : number == 1 ? Q : R;
        target.T[bit / 32 % target.L] ^= wtype{1} << bit % 32;
    }

private:
    std::uint64_t index;
    unsigned number, bit;
    CubicSeries sound;
};

TEST(Folding, FlippedBitsInEquilibriumBlocksAreFound) {
    std::mt19937_64 random(seed());
    SCOPED_TRACE(seed_trace());
    constexpr std::uint64_t terms = 600;
    for (unsigned round = 0; round < 60; ++round) {
        const std::uint64_t index = 1 + random() % terms;
        const unsigned number = index > 200 ? random() % 2 : random() % 3; // the last block makes no R
        const DamagedSeries series(index, number, static_cast<unsigned>(random() % 90), terms);
        Chain<bs::CommonP2B3::Family> chain(series, {{0, 200}, {200, terms}}, 1 + round % 3, 0);
        if (chain.blocks[0].is_aggressive() || chain.blocks[1].is_aggressive()) FAIL() << "not exact";
        EXPECT_THROW(chain.run(), zvp::BSRModularCheckFailedException) << index << " " << number;
    }
}

} // namespace
