#include <cli/geometry_file.h>
#include <tests/cli/project_directory.h>
#include <tests/common/child_process.h>

#include <sys/stat.h>

namespace trv::testing {
namespace {

class GeometryOnPosix : public ProjectDirectory {
protected:
    std::string reasonOf(const std::string& name) const {
        return cli::examineGeometry(path(name)).reason.toStdString();
    }
};

TEST_F(GeometryOnPosix, IsNotAPipeOrADevice) {
    ASSERT_EQ(::mkfifo(text("pipe.stl").c_str(), 0600), 0);
    std::filesystem::create_symlink("/dev/zero", directory_ / "zero.stl");
    EXPECT_EQ(reasonOf("pipe.stl"), "not a regular file");
    EXPECT_EQ(reasonOf("zero.stl"), "not a regular file");
}

TEST_F(GeometryOnPosix, HasToBeReadable) {
    std::filesystem::permissions(directory_.path(), std::filesystem::perms::all);
    file("a.stl", "solid\nendsolid\n");
    std::filesystem::permissions(directory_ / "a.stl", std::filesystem::perms::none);
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(becomeOrdinaryUser());
        EXPECT_EQ(reasonOf("a.stl"), "the file cannot be opened: Permission denied");
    }));
}

TEST_F(GeometryOnPosix, MayBeALink) {
    file("a.stl", "solid\nendsolid\n");
    std::filesystem::create_symlink("a.stl", directory_ / "link");
    std::filesystem::create_symlink("nowhere", directory_ / "lost.stl");
    EXPECT_EQ(reasonOf("link"), "");
    EXPECT_EQ(reasonOf("lost.stl"), "file not found");
}

}  // namespace
}  // namespace trv::testing
