#pragma once

/// @file
/// The format of a geometry file, or why a page does not show it.

#include <QString>

#include <cstdint>

namespace trv::cli {

/// A page holds a file as text with a third more characters; a browser limits a text to 512 MiB.
inline constexpr std::uint64_t maxGeometryBytes = std::uint64_t{256} << 20;

struct GeometryFile {
    /// "stl", "obj" or "ply"; nullptr if the file is not shown.
    const char* format = nullptr;
    /// Why not, human-readable, without the name of the file.
    QString reason;
    /// In bytes; 0 if the file is not opened.
    std::uint64_t size = 0;
};

/// Determines the format of a file. The content decides: a binary STL file has 84 bytes and
/// 50 for each facet that its header counts, an ASCII one begins with "solid" and ends with
/// "endsolid", a PLY file begins with "ply". An OBJ file has no mark of its own: its name ends with
/// ".obj", and its first line with content begins with a word of the format. A file that ends too
/// early, as far as its header says, is not shown.
///
/// @param path  absolute; empty for a name that no file can have
GeometryFile examineGeometry(const QString& path);

}  // namespace trv::cli
