#include <tests/common/current_directory.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/support/platform.h>
#include <trvfiles/text/path_resolution.h>

#include <QString>
#include <gtest/gtest.h>

#include <string>

using namespace std::string_literals;
using namespace trv::testing;
using trv::absolutePath;
using trv::HostPath;
using trv::isResource;
using trv::pathFromNarrow;
using trv::resolvedPath;

namespace {

bool onWindows() {
    return trv::platform::backslash_separates();
}

HostPath inexact(const std::string& path) {
    return {QString::fromStdString(path), false};
}

std::string absolute(const std::string& directory, const std::string& name) {
    return absolutePath(pathFromNarrow(directory), pathFromNarrow(name)).text.toStdString();
}

std::string resolved(const std::string& directory, const std::string& name) {
    return resolvedPath(pathFromNarrow(directory), pathFromNarrow(name)).toStdString();
}

struct Case {
    const char* directory;
    const char* name;
    const char* absolute;
    const char* resolved;
};

}  // namespace

TEST(PathResolution, JoinsNamesToADirectoryOnPosix) {
    if (onWindows()) GTEST_SKIP() << "drive letters come first on Windows";
    const Case cases[] = {
        {"/d", "f", "/d/f", "/d/f"},
        {"/d/", "f", "/d/f", "/d/f"},
        {"/", "f", "/f", "/f"},
        {"/d", "a/../f", "/d/a/../f", "/d/f"},
        {"/d", "../f", "/d/../f", "/f"},
        {"/d", "../../f", "/d/../../f", "/../f"},
        {"/d", "a//./f", "/d/a//./f", "/d/a/f"},
        {"/d", "a/", "/d/a/", "/d/a/"},
        {"/d", "a/../", "/d/a/../", ""},
        {"/d", "..", "/d/..", "/"},
        {"/d", "../", "/d/../", "/"},
        {"/d", ".f", "/d/.f", "/d/.f"},
        {"/d", "...", "/d/...", "/d/..."},
        {"/d", "/a/../f", "/a/../f", "/f"},
        {"/d", "//srv/f", "//srv/f", "/srv/f"},
        {"/d", "\\a\\f", "/a/f", "/a/f"},
        {"/d/../e//x/.", "f", "/e/x/f", "/e/x/f"},
        {"\\d\\e\\", "a\\f", "/d/e/a/f", "/d/e/a/f"},
        {"/d", ":f", "/d/:f", "/d/:f"},
        {"/d", ":", "/d/:", "/d/:"},
        {"/d", ":a/../f", "/d/:a/../f", "/d/f"},
        {"/d", "a:/f", "/d/a:/f", "/d/a:/f"},
        {"/d", "C:\\f", "/d/C:/f", "/d/C:/f"},
        {"/:d", "f", "/:d/f", "/:d/f"},
        {"/d", "~/$X", "/d/~/$X", "/d/~/$X"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(absolute(c.directory, c.name), c.absolute) << c.directory << " " << c.name;
        EXPECT_EQ(resolved(c.directory, c.name), c.resolved) << c.directory << " " << c.name;
    }
}

TEST(PathResolution, ResolvesARelativeDirectoryInTheCurrentOne) {
    const TemporaryDirectory directory;
    const CurrentDirectory current(directory.path());
    const std::string here = directory.text();
    EXPECT_EQ(absolute("", "f"), here + "/f");
    EXPECT_EQ(absolute(".", "f"), here + "/f");
    EXPECT_EQ(absolute("a/../b/", "./f"), here + "/b/./f");
    EXPECT_EQ(absolute("", ""), here);
    EXPECT_EQ(resolved("", "f"), here + "/f");
    EXPECT_EQ(resolved("a", "../f"), here + "/f");
    EXPECT_EQ(resolved("a\\b", "f"), here + "/a/b/f");
}

TEST(PathResolution, FindsNoFileInTheNamesOfTheDirectoryItself) {
    for (const char* name : {"", ".", "./", "./.", "a/..", "a/../", "a/b/../.."}) {
        EXPECT_EQ(resolved("/d", name), "") << name;
        EXPECT_EQ(resolved("", name), "") << name;
    }
    EXPECT_NE(resolved("/d", "..."), "");
    EXPECT_NE(resolved("/d", "../d"), "");
}

TEST(PathResolution, DoesNotChangeTheNamesOfResources) {
    EXPECT_TRUE(isResource(QStringLiteral(":/x")));
    EXPECT_TRUE(isResource(QStringLiteral(":/")));
    EXPECT_FALSE(isResource(QStringLiteral(":x")));
    EXPECT_FALSE(isResource(QStringLiteral("/:/x")));
    EXPECT_FALSE(isResource(QString()));
    EXPECT_EQ(absolute("/d", ":/x"), ":/x");
    EXPECT_EQ(resolved("/d", ":/x"), ":/x");
    if (onWindows()) GTEST_SKIP() << "the rest holds for POSIX";
    EXPECT_EQ(resolved("/d", ":/a/../x"), ":/a/../x");
    EXPECT_EQ(absolute("/d", ":\\x"), ":/x");
    EXPECT_EQ(absolute(":/d", "x"), ":/d/x");
}

TEST(PathResolution, FindsNoFileForAPathThatIsNotExact) {
    const HostPath good = pathFromNarrow("/d");
    EXPECT_EQ(resolvedPath(good, inexact("f")), QString());
    EXPECT_EQ(resolvedPath(good, inexact("a/../f")), QString());
    if (onWindows()) GTEST_SKIP() << "every path is exact there";
    EXPECT_FALSE(absolutePath(good, inexact("f")).isExact);
    EXPECT_FALSE(absolutePath(inexact("/d"), pathFromNarrow("f")).isExact);
    EXPECT_FALSE(absolutePath(inexact("d"), pathFromNarrow("f")).isExact);
    EXPECT_FALSE(absolutePath(good, inexact("/f")).isExact);
    EXPECT_EQ(absolutePath(inexact("/d"), inexact("f")).text, QStringLiteral("/d/f"));
    EXPECT_EQ(resolvedPath(inexact("/d"), pathFromNarrow("f")), QString());
    EXPECT_EQ(resolvedPath(inexact("/d"), pathFromNarrow("/f")), QStringLiteral("/f"));
}

TEST(PathResolution, DoesNotCleanAZeroAway) {
    const std::wstring zero = L"/d/a\0b/.."s;
    const HostPath name = trv::pathFromWide(L"f");
    EXPECT_TRUE(resolvedPath(trv::pathFromWide(zero), name).contains(QChar(0)));
    EXPECT_TRUE(
        resolvedPath(trv::pathFromWide(L"/d"), trv::pathFromWide(L"a\0/../f"s)).contains(QChar(0)));
    EXPECT_TRUE(absolutePath(trv::pathFromWide(zero), name).text.contains(QChar(0)));
}

TEST(PathResolution, KeepsTheDriveOrTheShareOfTheDirectoryOnWindows) {
    if (!onWindows()) GTEST_SKIP() << "there are no drives";
    const Case cases[] = {
        {"D:/d", "/x/../f", "D:/x/../f", "D:/f"},
        {"D:\\d", "\\f", "D:\\f", "D:/f"},
        {"D:", "/f", "D:/f", "D:/f"},
        {"//server/share/d", "/f", "//server/share/f", "//server/share/f"},
        {"//server/share", "/f", "//server/share/f", "//server/share/f"},
        {"D:/d", "//server/share/f", "//server/share/f", "//server/share/f"},
        {"D:/d", "E:/f", "E:/f", "E:/f"},
        {"D:/d", "f", "D:/d/f", "D:/d/f"},
        {"//server", "/f", "", ""},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(absolute(c.directory, c.name), c.absolute) << c.directory << " " << c.name;
        EXPECT_EQ(resolved(c.directory, c.name), c.resolved) << c.directory << " " << c.name;
    }
}
