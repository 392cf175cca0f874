#include <trvfiles/version.h>

#include <gtest/gtest.h>

#include <string>

namespace {

std::string textOf(int major, int minor, int patch) {
    return std::to_string(major) + '.' + std::to_string(minor) + '.' + std::to_string(patch);
}

TEST(Version, OfTheLibraryIsThatOfItsHeaders) {
    EXPECT_EQ(trv::version(), TRVFILES_VERSION);
    EXPECT_EQ(trv::version_text(),
              textOf(TRVFILES_VERSION_MAJOR, TRVFILES_VERSION_MINOR, TRVFILES_VERSION_PATCH));
}

TEST(Version, OfThePackageIsThatOfTheHeaders) {
    EXPECT_STREQ(trv::version_text(), TRV_PACKAGE_VERSION);
}

TEST(Version, ComparesAsANumber) {
    EXPECT_EQ(TRVFILES_MAKE_VERSION(0, 1, 0), 1000);
    EXPECT_EQ(TRVFILES_MAKE_VERSION(1, 2, 3), 1002003);
    EXPECT_LT(TRVFILES_MAKE_VERSION(0, 9, 99), TRVFILES_MAKE_VERSION(1, 0, 0));
    EXPECT_LT(TRVFILES_MAKE_VERSION(0, 1, 99), TRVFILES_MAKE_VERSION(0, 2, 0));
}

}  // namespace
