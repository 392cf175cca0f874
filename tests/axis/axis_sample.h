#pragma once

/// @file
/// Matrices, their lines in axis files, and a directory to write and read such files in.

#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <tests/facade/memory_equality.h>
#include <trvfiles/facade/CQvFilesIO.h>

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

namespace trv::testing {

using Matrix = std::array<double, 16>;
using Tags = std::array<int, 3>;

inline constexpr double infinity = std::numeric_limits<double>::infinity();
inline const double not_a_number = std::numeric_limits<double>::quiet_NaN();

inline const Matrix identity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

inline Matrix identityBut(std::size_t element, double value) {
    Matrix matrix = identity;
    matrix[element] = value;
    return matrix;
}

inline Matrix translation(double x, double y, double z) {
    return {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, x, y, z, 1};
}

/// Lines 2 to 5 of the identity, which are also lines 6 to 9.
inline const std::string identityLines =
    "      1.000000      0.000000      0.000000      0.000000\n"
    "      0.000000      1.000000      0.000000      0.000000\n"
    "      0.000000      0.000000      1.000000      0.000000\n"
    "      0.000000      0.000000      0.000000      1.000000\n";

class AxisFile : public ::testing::Test {
protected:
    /// The bytes that are written, without CRs.
    std::string written(const Matrix& matrix, int tag1 = -1, int tag2 = -1, int tag3 = -1) {
        EXPECT_EQ(files_.writeAxis(L"written", matrix.data(), tag1, tag2, tag3), eFileIOSuccess);
        std::string inMemory;
        EXPECT_EQ(CQvFilesIO::sWriteAxisToMemory(inMemory, matrix.data(), tag1, tag2, tag3),
                  eFileIOSuccess);
        EXPECT_EQ(inMemory, textOf(directory_ / "written"));
        return inMemory;
    }

    /// The lines of written(), counted from 1.
    std::vector<std::string> writtenLines(const Matrix& matrix) {
        std::vector<std::string> lines(1);
        std::istringstream text(written(matrix));
        for (std::string line; std::getline(text, line);)
            lines.push_back(line);
        return lines;
    }

    struct Reading {
        EFileIOStatus status;
        Matrix matrix;
        Tags tags;
    };

    /// Reads a file of these bytes into a matrix of 7s and the tags -7, -8 and -9.
    Reading read(const std::string& bytes) {
        writeBytes(directory_ / "read", bytes);
        Reading reading = {EFileIOStatus(), untouched, {-7, -8, -9}};
        reading.status = files_.readAxis(L"read", reading.matrix.data(), reading.tags[0],
                                         reading.tags[1], reading.tags[2]);
        expectAxisAsInMemory(directory_ / "read");
        return reading;
    }

    /// Reads an identity with this tag line.
    Tags tagsOf(const std::string& tagLine) {
        const Reading reading = read("0\n" + identityLines + identityLines + tagLine);
        EXPECT_EQ(reading.status, eFileIOSuccess) << tagLine;
        EXPECT_EQ(reading.matrix, identity) << tagLine;
        return reading.tags;
    }

    /// Reads a file with this second line, followed by the lines of the identity.
    Reading readWithFirstRow(const std::string& row) {
        return read("0\n" + row + identityLines.substr(identityLines.find('\n')));
    }

    void expectRefused(const std::string& bytes) {
        SCOPED_TRACE(bytes);
        const Reading reading = read(bytes);
        EXPECT_EQ(reading.status, eFileIOContentError);
        EXPECT_EQ(reading.matrix, untouched);
        EXPECT_EQ(reading.tags, unset);
    }

    static constexpr Matrix untouched = {7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7};
    static constexpr Tags unset = {-7, -8, -9};

    TemporaryDirectory directory_;
    CQvFilesIO files_{directory_.wide()};
};

}  // namespace trv::testing
