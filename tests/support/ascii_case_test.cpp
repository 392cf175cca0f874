#include <trvfiles/support/ascii_case.h>

#include <gtest/gtest.h>

namespace trv {
namespace {

TEST(AsciiCase, FoldsTheLettersAndNothingElse) {
    for (int code = 0; code < 256; ++code) {
        const int folded = code >= 'a' && code <= 'z' ? code - 32 : code;
        EXPECT_EQ(fold_case(static_cast<char>(code)), static_cast<char>(folded)) << code;
    }
    EXPECT_EQ(fold_case(std::string_view("aZ[`{\xE9")), "AZ[`{\xE9");
}

TEST(AsciiCase, ComparesWithoutRegardToCase) {
    EXPECT_TRUE(equal_ignoring_case("Path", "pATH"));
    EXPECT_TRUE(equal_ignoring_case("", ""));
    EXPECT_FALSE(equal_ignoring_case("path", "paths"));
    EXPECT_FALSE(equal_ignoring_case("@", "`"));
    EXPECT_FALSE(equal_ignoring_case("\xC9", "\xE9"));
}

}  // namespace
}  // namespace trv
