#include <cli/reference_directory.h>
#include <tests/cli/project_directory.h>
#include <tests/common/current_directory.h>

namespace trv::testing {
namespace {

using cli::ReferenceDirectory;

class Directory : public ProjectDirectory {
protected:
    static HostPath name(const char* text) { return pathFromNarrow(text); }
};

TEST_F(Directory, FindsFilesBesideTheFileThatNamesThem) {
    file("sub/a.stl", "x");
    const ReferenceDirectory directory(path("sub/setup.xml"));
    EXPECT_TRUE(directory.hasFile(name("a.stl")));
    EXPECT_TRUE(directory.hasFile(name("../sub/a.stl")));
    EXPECT_FALSE(directory.hasFile(name("sub/a.stl")));
    EXPECT_FALSE(directory.hasFile(name("../sub")));
    EXPECT_EQ(directory.pathOf(name("b/../a.stl")), path("sub/a.stl"));
}

TEST_F(Directory, HasNoPathForANameThatNoFileHas) {
    const ReferenceDirectory directory(path("setup.xml"));
    EXPECT_TRUE(directory.pathOf(name("")).isEmpty());
    EXPECT_TRUE(directory.pathOf(name(".")).isEmpty());
    EXPECT_FALSE(directory.hasFile(name("")));
}

TEST_F(Directory, OfStandardInputIsTheCurrentOne) {
    file("a.stl", "x");
    const CurrentDirectory current(directory_.path());
    EXPECT_TRUE(ReferenceDirectory(QStringLiteral("-")).hasFile(name("a.stl")));
}

}  // namespace
}  // namespace trv::testing
