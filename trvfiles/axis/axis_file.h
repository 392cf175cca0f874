#pragma once

/// @file
/// Axis files: a placement, its inverse and up to three tags.
///
/// Threads: any, if the arguments are not shared.

#include <trvfiles/support/EFileIOStatus.h>

#include <QString>

#include <array>
#include <cstdio>
#include <string>
#include <string_view>

struct CFileFault;

namespace trv {

/// The axis file of a directory, to which its contexts refer if they name no other one.
inline constexpr wchar_t defaultAxisFileName[] = L"transfo.dat";

/// Sixteen numbers, row by row, for row vectors: three axes and a translation, in the project's
/// length unit.
using AxisMatrix = std::array<double, 16>;

inline constexpr AxisMatrix identityAxis = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

/// The inverse of an affine placement: of its 3x3 block by cofactors, the fourth column and element
/// 15 as in the identity. A block with a determinant below 1e-10 in amount gives sixteen zeros. No
/// element is -0.0.
AxisMatrix affineInverse(const AxisMatrix& matrix);

/// Whether an element differs from the identity's by more than 1e-6; a NaN never does.
bool differsFromIdentity(const AxisMatrix& matrix);

/// Whether the axes have length 1 and are at right angles, within the precision of six decimals. A
/// NaN is not.
bool isOrthonormal(const AxisMatrix& matrix);

/// The whole text of an axis file, each line ended by one LF. The tag line is left out if one of
/// the tags is negative.
std::string axisFileText(const AxisMatrix& matrix, int tag1, int tag2, int tag3);

/// What an axis file holds.
struct AxisContent {
    AxisMatrix matrix = {};
    /// How many tags the tag line holds; their values are at the beginning of `tags`.
    int tagCount = 0;
    std::array<int, 3> tags = {};
};

/// Reads the text of an axis file from its beginning, in constant memory: of each line the first
/// 511 characters count, whatever its length.
///
/// @param content  written on success only
/// @param fault    takes the line that is missing or does not hold four numbers, from 2 to 5, and
///                 notes about a matrix that is not affine or not orthonormal and about tags that
///                 are not in line 10
/// @return whether the four lines of the matrix are there
bool readAxisText(std::FILE* file, AxisContent& content, CFileFault* fault = nullptr);

/// Opens an axis file and reads it.
///
/// @param path  as openForRead() takes it
/// @return eFileIOSuccess; eFileIOOpenError if the file cannot be opened; eFileIOContentError as
///         readAxisText() says
EFileIOStatus readAxisFile(const QString& path, AxisContent& content, CFileFault* fault = nullptr);

/// Reads an axis file that has these bytes.
///
/// @return eFileIOSuccess; eFileIOContentError as readAxisText() says
EFileIOStatus readAxisBytes(std::string_view bytes, AxisContent& content,
                            CFileFault* fault = nullptr);

/// Writes a text over an axis file.
///
/// @param path  as openForWrite() takes it
/// @param text  of axisFileText()
/// @return eFileIOSuccess; eFileIOOpenError if the file cannot be opened; eFileIOShortWrite if it
///         was not written to its end
EFileIOStatus writeAxisFile(const QString& path, const std::string& text,
                            CFileFault* fault = nullptr);

}  // namespace trv
