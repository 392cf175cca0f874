#pragma once

/// @file
/// The text of axis files: a placement, its inverse and up to three tags.

#include <array>
#include <cstdio>
#include <string>

namespace trv {

/// The axis file that a directory's contexts refer to where none is named.
inline constexpr wchar_t defaultAxisFileName[] = L"transfo.dat";

/// Sixteen numbers, row by row, for row vectors.
using AxisMatrix = std::array<double, 16>;

/// The inverse of an affine placement: of its 3x3 block by cofactors, the fourth column and element
/// 15 as in the identity. A block with a determinant below 1e-10 in amount gives sixteen zeros. No
/// element is -0.0.
AxisMatrix affineInverse(const AxisMatrix& matrix);

/// Whether an element differs from the identity's by more than 1e-6; a NaN never does.
bool differsFromIdentity(const AxisMatrix& matrix);

/// The whole text of an axis file, each line ended by one LF. The tag line is left out where one of
/// the tags is negative.
std::string axisFileText(const AxisMatrix& matrix, int tag1, int tag2, int tag3);

/// What reading an axis file found.
struct AxisContent {
    /// The line of the file, counted from 1, that is missing or does not hold four numbers; 0 where
    /// the file is an axis file. The rest is only set then.
    int faultyLine = 0;
    AxisMatrix matrix = {};
    /// How many tags the tag line holds, and their values.
    int tagCount = 0;
    std::array<int, 3> tags = {};
};

/// Reads an axis file from its beginning; as much of each line as counts, whatever its length.
AxisContent readAxisContent(std::FILE* file);

}  // namespace trv
