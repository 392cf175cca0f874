#include <cli/geometry_file.h>
#include <tests/cli/project_directory.h>

#include <filesystem>
#include <system_error>

namespace trv::testing {
namespace {

using cli::examineGeometry;
using cli::GeometryFile;

// A binary STL file of an 80 byte header, the number of facets and 50 bytes for each facet.
std::string binaryStl(unsigned char counted, std::size_t facets, const std::string& header = "") {
    std::string bytes = header;
    bytes.resize(80, ' ');
    bytes += {static_cast<char>(counted), '\0', '\0', '\0'};
    return bytes + std::string(50 * facets, '\0');
}

class Geometry : public ProjectDirectory {
protected:
    // "stl", or why the file is not shown.
    std::string resultOf(const std::string& name, const std::string& bytes) const {
        return textOfResult(examineGeometry(file(name, bytes)));
    }

    static std::string textOfResult(const GeometryFile& found) {
        const std::string reason = found.reason.toStdString();
        if (found.format == nullptr) return reason;
        return reason.empty() ? found.format : "a format and a reason";
    }
};

TEST_F(Geometry, ABinaryStlFileHasTheSizeThatItsHeaderCounts) {
    EXPECT_EQ(resultOf("a.stl", binaryStl(2, 2)), "stl");
    EXPECT_EQ(resultOf("b.STL", binaryStl(0, 0)), "stl");
    EXPECT_EQ(resultOf("without-ending", binaryStl(1, 1)), "stl");
    EXPECT_EQ(examineGeometry(path("a.stl")).size, 184U);
}

TEST_F(Geometry, ABinaryStlFileMayBeginWithSolid) {
    EXPECT_EQ(resultOf("a.stl", binaryStl(2, 2, "solid by another program")), "stl");
}

TEST_F(Geometry, ABinaryStlFileOfAnotherSizeIsNotShown) {
    EXPECT_EQ(resultOf("a.stl", binaryStl(3, 2)),
              "not an STL file: its header counts 3 facets, it has 2");
    EXPECT_EQ(resultOf("b.stl", binaryStl(2, 2) + "x"),
              "not an STL file: its header counts 2 facets, it has 2");
    EXPECT_EQ(resultOf("c.stl", std::string("\x89PNG\0", 5)), "not an STL, OBJ or PLY file");
}

TEST_F(Geometry, AnAsciiStlFileHasItsFirstAndLastWord) {
    EXPECT_EQ(resultOf("a.stl", "solid a\nfacet\nendsolid a\n"), "stl");
    EXPECT_EQ(resultOf("b.stl", "\r\n  solid\r\nendsolid\r\n"), "stl");
    EXPECT_EQ(resultOf("no-ending", "solid\nendsolid"), "stl");
    EXPECT_EQ(resultOf("c.stl", "solid " + std::string(100000, 'x') + "\nendsolid\n"), "stl");
    EXPECT_EQ(resultOf("d.stl", "solid a\nfacet normal 0 0 1\n"), "the file ends too early");
    EXPECT_EQ(resultOf("e.stl", "solidity\nendsolid\n"), "not an STL, OBJ or PLY file");
}

TEST_F(Geometry, APlyFileHasAWholeHeader) {
    const std::string header = "ply\nformat ascii 1.0\nelement vertex 0\nend_header\n";
    EXPECT_EQ(resultOf("a.ply", header), "ply");
    EXPECT_EQ(
        resultOf("without-ending", "ply\r\nformat binary_little_endian 1.0\r\nend_header\r\n"),
        "ply");
    EXPECT_EQ(resultOf("b.ply", "ply\nformat ascii 1.0\nelement vertex 3\n"),
              "the file ends too early");
    EXPECT_EQ(resultOf("c.ply", "plywood\nend_header\n"), "not an STL, OBJ or PLY file");
}

TEST_F(Geometry, AnObjFileHasItsEndingAndAWordOfTheFormat) {
    EXPECT_EQ(resultOf("a.obj", "# made by hand\n\nv 0 0 0\n"), "obj");
    EXPECT_EQ(resultOf("a.OBJ", "\r\nmtllib a.mtl\r\n"), "obj");
    EXPECT_EQ(resultOf("b.obj", "o part"), "obj");
    EXPECT_EQ(resultOf("a.txt", "v 0 0 0\n"), "not an STL, OBJ or PLY file");
    EXPECT_EQ(resultOf("c.obj", "vertices 0 0 0\n"), "not an STL, OBJ or PLY file");
    EXPECT_EQ(resultOf("d.obj", "# only a comment"), "not an STL, OBJ or PLY file");
    EXPECT_EQ(resultOf("e.obj", std::string("v 0 0 0\n\0", 9)), "not an STL, OBJ or PLY file");
}

TEST_F(Geometry, TheContentCountsBeforeTheEnding) {
    EXPECT_EQ(resultOf("a.obj", "solid\nendsolid\n"), "stl");
    EXPECT_EQ(resultOf("a.stl", "ply\nend_header\n"), "ply");
}

TEST_F(Geometry, WhatIsNoFileIsNotShown) {
    EXPECT_EQ(resultOf("a.stl", ""), "the file is empty");
    EXPECT_EQ(textOfResult(examineGeometry(path("missing.stl"))), "file not found");
    EXPECT_EQ(textOfResult(examineGeometry(QString())), "not a valid file name");
    std::filesystem::create_directory(directory_ / "d.stl");
    EXPECT_EQ(textOfResult(examineGeometry(path("d.stl"))), "a directory");
}

TEST_F(Geometry, AFileThatIsTooLargeIsNotRead) {
    const QString large = file("a.stl", "solid\nendsolid\n");
    std::error_code error;
    std::filesystem::resize_file(directory_ / "a.stl", cli::maxGeometryBytes + 1, error);
    if (error) GTEST_SKIP() << error.message();
    EXPECT_EQ(textOfResult(examineGeometry(large)), "the file is larger than 256 MiB");
    EXPECT_EQ(examineGeometry(large).size, 268435457U);
}

}  // namespace
}  // namespace trv::testing
