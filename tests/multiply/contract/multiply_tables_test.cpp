#include "multiply/contract/multiply_tables.h"

#include "app/failure/exceptions.h"
#include "multiply/contract/check_buffers.h"
#include "multiply/contract/idle_transform.h"
#include "multiply/contract/transform_algorithm.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace zvp;

/// A table set of a byte for each bit behind a header.
template <std::uint64_t Header>
struct FakeSet {
    void ensure(std::uint64_t bits) { wanted = std::max(wanted, bits); }
    std::uint64_t bytes() const { return wanted == 0 ? 0 : Header + wanted; }
    std::byte* place(std::byte* memory) {
        placed = memory;
        return memory + bytes();
    }

    std::uint64_t wanted = 0;
    std::byte* placed = nullptr;
};

using First = FakeSet<576>;
using Second = FakeSet<100>;
using Third = FakeSet<64>;

alignas(64) std::byte memory[4096];

TEST(MultiplyTables, SetsLieInOrderOnCacheLinesAndTheUnaskedTakeNothing) {
    MultiplyTableSets<First, Second, Third> tables;
    EXPECT_EQ(tables.bytes(), 0u);
    tables.grow<Third>(900).ensure(30);
    tables.grow<First>(500).ensure(10);
    tables.grow<First>(400).ensure(5);
    EXPECT_EQ(tables.bytes(), 640u + 128);
    EXPECT_EQ(tables.place(memory), memory + 640 + 128);
    EXPECT_EQ(tables.get<First>().placed, memory);
    EXPECT_EQ(tables.get<Second>().placed, nullptr);
    EXPECT_EQ(tables.get<Third>().placed, memory + 640);
}

TEST(MultiplyTables, CapacityHoldsOnlyWhenBuilt) {
    MultiplyTableSets<First> tables;
    EXPECT_EQ(tables.capacity, ~std::uint64_t{0});
    EXPECT_EQ(tables.place(nullptr), nullptr);
    EXPECT_EQ(tables.capacity, ~std::uint64_t{0});
    tables.grow<First>(900).ensure(30);
    tables.grow<First>(500).ensure(10);
    EXPECT_EQ(tables.capacity, 0u);
    tables.place(memory);
    EXPECT_EQ(tables.capacity, 900u);
    tables.grow<First>(901).ensure(31);
    EXPECT_EQ(tables.capacity, 0u);
}

/// Notes where its forms and its scratch lie.
class NotingTransform final : public test::IdleTransform {
public:
    using IdleTransform::forward;
    using IdleTransform::inverse_fmul;
    using IdleTransform::inverse_fsqr;

    explicit NotingTransform(std::string& notes_) : notes(notes_) {
        capacity_bits = requested_bits = 1000;
        transform_bytes = 128;
        scratch_bytes = 64;
    }
    void forward(const Pars& pars, std::byte* M, std::byte* X, const c32i*, std::size_t) const override {
        note("forward", pars, M, X);
    }
    void inverse_fsqr(const Pars& pars, std::byte* M, std::byte*, std::byte* X, c32i*, std::size_t,
                      std::size_t) const override {
        note("square", pars, M, X);
    }
    void inverse_fmul(const Pars& pars, std::byte* M, std::byte* X, const std::byte*, c32i*, std::size_t,
                      std::size_t) const override {
        note("product", pars, M, X);
    }

private:
    void note(const char* what, const MultiplyParameters& pars, std::byte* M, std::byte* X) const {
        EXPECT_EQ(pars.status, nullptr);
        EXPECT_EQ(pars.M, M);
        EXPECT_EQ(M + pars.ML, memory + 320);
        notes += std::string(what) + "@" + std::to_string(X - memory) + "/" + std::to_string(M - memory) + " ";
    }

    std::string& notes;
};

class NotingAlgorithm final : public TransformAlgorithm<c32i> {
public:
    NotingAlgorithm() : TransformAlgorithm("NOT", "", "", "", 1000) {}
    void ensure_tables(MultiplyTables&, std::uint64_t) const override {}
    TransformSizes sizes(std::uint64_t, std::uint32_t) const override { return {128, 64}; }
    const Transform& params(TransformObject& object, std::uint64_t length, std::uint32_t) const override {
        notes += std::to_string(length) + ": ";
        return object.emplace<NotingTransform>(notes);
    }

    mutable std::string notes;
};

TEST(TransformAlgorithm, FormsStandBeforeTheScratchAndInnerCallsReportToNobody) {
    MultiplyTables tables;
    StatusNode* const somebody = reinterpret_cast<StatusNode*>(memory);
    const MultiplyParameters pars{{}, somebody, &tables, memory, 320};
    const NotingAlgorithm algorithm;
    c32i T[4];
    const c32i A[4] = {};
    algorithm.sqr(pars, T, 1, 3, A, 3);
    algorithm.mul(pars, T, 0, 4, A, 3, A, 4);
    algorithm.mul_unchecked(pars, T, 0, 4, A, 1, A, 1);
    EXPECT_EQ(algorithm.notes, "6: forward@0/128 square@0/128 "
                               "7: forward@128/256 forward@0/256 product@0/256 "
                               "2: forward@128/256 forward@0/256 product@0/256 ");
}

/// What check_buffers() throws: "limit <limit> <size>", "buffer <size> <needed>" or "nothing".
std::string refusal(const MultiplyParameters& pars) {
    std::string notes;
    try {
        check_buffers(NotingTransform(notes), pars);
    } catch (const LimitExceededException& failure) {
        return "limit " + std::to_string(failure.limit) + " " + std::to_string(failure.attempted);
    } catch (const BufferTooSmallException& failure) {
        return "buffer " + std::to_string(failure.buffer_size) + " " + std::to_string(failure.required_size);
    }
    return "nothing";
}

TEST(CheckBuffers, TablesFirstThenMemory) {
    MultiplyTables tables;
    MultiplyParameters pars{{}, nullptr, &tables, memory, 320};
    EXPECT_EQ(refusal(pars), "nothing");
    tables.capacity = 1000;
    EXPECT_EQ(refusal(pars), "nothing");
    pars.ML = 319;
    EXPECT_EQ(refusal(pars), "buffer 319 320");
    tables.capacity = 999;
    EXPECT_EQ(refusal(pars), "limit 999 1000");
    pars.tables = nullptr;
    EXPECT_EQ(refusal(pars), "limit 0 1000");
}

} // namespace
