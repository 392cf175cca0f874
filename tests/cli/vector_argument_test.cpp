#include <cli/vector_argument.h>

#include <gtest/gtest.h>

namespace trv::cli {
namespace {

TEST(VectorArgument, IsThreeNumbersWithCommas) {
    double numbers[3] = {};
    EXPECT_TRUE(readVector(QStringLiteral("1.5,-2e1,.25"), numbers));
    EXPECT_EQ(numbers[0], 1.5);
    EXPECT_EQ(numbers[1], -20);
    EXPECT_EQ(numbers[2], 0.25);
}

TEST(VectorArgument, IsNothingElse) {
    double numbers[3] = {};
    for (const char* text :
         {"", "1", "1,2", "1,2,3,4", "1,2,", "1;2;3", "1,2,x", "1,2,nan", "inf,0,0", "1,2,1e400"})
        EXPECT_FALSE(readVector(QString::fromLatin1(text), numbers)) << text;
}

}  // namespace
}  // namespace trv::cli
