#include <trvfiles/support/wide_product.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <random>

namespace trv {
namespace {

TEST(WideProduct, IsTheLowerHalfXorTheUpperHalf) {
    constexpr std::uint64_t ones = 0xFFFFFFFFFFFFFFFF;
    EXPECT_EQ(folded_product(0, ones), 0U);
    EXPECT_EQ(folded_product(1, 0x123456789ABCDEF0), 0x123456789ABCDEF0U);
    // 0xFFFFFFFFFFFFFFFE 0000000000000001
    EXPECT_EQ(folded_product(ones, ones), ones);
    // 1 0000000000000000
    EXPECT_EQ(folded_product(0x100000000, 0x100000000), 1U);
    // 0x0121FA00AD77D742 2236D88FE5618CF0
    EXPECT_EQ(folded_product(0x123456789ABCDEF0, 0x0FEDCBA987654321), 0x2317228F48165BB2U);
}

TEST(WideProduct, IsTheSameByHalves) {
    std::mt19937_64 random(20260101);
    constexpr std::uint64_t edges[] = {0,
                                       1,
                                       0x7FFFFFFF,
                                       0xFFFFFFFF,
                                       0x100000000,
                                       0x1FFFFFFFF,
                                       0x8000000000000000,
                                       0xFFFFFFFF00000000,
                                       0xFFFFFFFFFFFFFFFF};
    for (const std::uint64_t a : edges)
        for (const std::uint64_t b : edges)
            EXPECT_EQ(folded_product_of_halves(a, b), folded_product(a, b));
    for (int round = 0; round < 100000; ++round) {
        const std::uint64_t a = random();
        const std::uint64_t b = random();
        ASSERT_EQ(folded_product_of_halves(a, b), folded_product(a, b));
    }
}

}  // namespace
}  // namespace trv
