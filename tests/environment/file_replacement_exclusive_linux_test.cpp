// New files on a system that cannot rename without replacing.

#include <tests/common/child_process.h>
#include <tests/common/file_bytes.h>
#include <tests/common/system_calls_linux.h>
#include <tests/environment/replacement_on_linux.h>
#include <trvfiles/environment/file_replacement.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <vector>

namespace trv {
namespace {

using testing::bytesOf;
using testing::passesInChild;
using testing::ReplacementOnLinux;
using testing::writeBytes;

namespace fs = std::filesystem;

using ExclusiveReplacement = ReplacementOnLinux;

TEST_F(ExclusiveReplacement, NeedsNoRenamingThatRefuses) {
    if (!testing::canRefuseSystemCalls()) GTEST_SKIP() << "system calls cannot be filtered here";
    const std::vector<unsigned> linking = {SYS_link, SYS_linkat};
    for (const bool has_links : {true, false}) {
        fs::remove(target());
        EXPECT_TRUE(passesInChild([&] {
            ASSERT_TRUE(testing::refuseSystemCalls({SYS_renameat2}, EINVAL));
            if (!has_links) {
                ASSERT_TRUE(testing::refuseSystemCalls(linking, EPERM));
            }
            const auto refused = file_replacement::existing::refused;
            file_replacement first(target().string(), own_temporary_name, refused);
            EXPECT_EQ(first.write_and_replace("first"), 0);
            file_replacement second((directory_ / "g").string(), own_temporary_name, refused);
            writeBytes(directory_ / "g", "of somebody else");
            EXPECT_EQ(second.write_and_replace("second"), EEXIST);
        })) << has_links;
        EXPECT_EQ(bytesOf(target()), "first");
        EXPECT_EQ(bytesOf(directory_ / "g"), "of somebody else");
        EXPECT_FALSE(fs::exists(temporary()));
    }
}

}  // namespace
}  // namespace trv
