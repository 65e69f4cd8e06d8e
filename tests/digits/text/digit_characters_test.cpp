// Digit values and characters: every byte value at every place of a vector, in every kernel set.

#include "digits/supported_kernels.h"
#include "digits/text/digit_characters.h"
#include "digits/text/text_support.h"

#include <algorithm>

namespace {

using namespace test;
using zvp::CharacterRoutine;

/// What a byte becomes, or -1 where it isn't valid.
int character(int value, int radix) { return value < radix ? character_of(static_cast<std::uint8_t>(value)) : -1; }
int value(int c, int radix) {
    for (int v = 0; v < radix; ++v)
        if (character_of(static_cast<std::uint8_t>(v)) == c) return v;
    return -1;
}

void check_routine(CharacterRoutine routine, int (*expected)(int, int), int radix) {
    const std::uint8_t good = expected('0', radix) == 0 ? '7' : 7;
    for (int byte = 0; byte < 256; ++byte) {
        const int wanted = expected(byte, radix);
        for (std::size_t place = 0; place < 139; place += byte % 16 == 0 ? 1 : 23) {
            std::vector<std::uint8_t> input(139, good), output(140, 0xEE);
            input[place] = static_cast<std::uint8_t>(byte);
            ASSERT_EQ(routine(output.data(), input.data(), input.size()), wanted >= 0) << byte << " at " << place;
            EXPECT_EQ(output.back(), 0xEE);
            if (wanted < 0) continue;
            for (std::size_t i = 0; i < input.size(); ++i) ASSERT_EQ(output[i], expected(input[i], radix));
        }
    }
}

TEST(DigitCharacters, OnlyDigitsAreValidAtEveryPlace) {
    for (const zvp::platform::KernelSet set : supported_kernel_sets()) {
        SCOPED_TRACE(name_of(set));
        const zvp::CharacterKernels& kernels = zvp::character_kernels(set);
        ASSERT_EQ(kernels.set, set);
        check_routine(kernels.decimal_to_text, character, 10);
        check_routine(kernels.hexadecimal_to_text, character, 16);
        check_routine(kernels.text_to_decimal, value, 10);
        check_routine(kernels.text_to_hexadecimal, value, 16);
    }
}

TEST(DigitCharacters, AnyLengthAtAnyAddressAndInPlace) {
    SCOPED_TRACE(seed_trace());
    std::mt19937_64 random(seed());
    for (const zvp::platform::KernelSet set : supported_kernel_sets()) {
        const zvp::CharacterKernels& kernels = zvp::character_kernels(set);
        for (std::size_t n = 0; n < 200; ++n) {
            const std::size_t shift = random() % 64;
            const Values values = random_values(random, n, 16);
            Values bytes(shift + n + 1, 0x77);
            std::copy(values.begin(), values.end(), bytes.begin() + static_cast<std::ptrdiff_t>(shift));
            std::uint8_t* const p = bytes.data() + shift;
            ASSERT_TRUE(kernels.hexadecimal_to_text(p, p, n));
            EXPECT_EQ(std::string(p, p + n), text_of(values));
            ASSERT_TRUE(kernels.text_to_hexadecimal(p, p, n));
            EXPECT_TRUE(std::equal(values.begin(), values.end(), p));
            EXPECT_EQ(bytes.back(), 0x77);
        }
    }
}

} // namespace
