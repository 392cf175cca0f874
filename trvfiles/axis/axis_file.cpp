#include <trvfiles/axis/axis_file.h>
#include <trvfiles/support/line_reading.h>
#include <trvfiles/support/number_text.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string_view>

namespace trv {
namespace {

constexpr double identityTolerance = 1e-6;
constexpr double smallestDeterminant = 1e-10;
constexpr int numberColumns = 12;
// What follows on a line is skipped unseen.
constexpr std::size_t examinedLineLength = 511;
// No axis file is longer; a device may go on for ever.
constexpr std::size_t mostBytesRead = std::size_t{1} << 30;

constexpr AxisMatrix identity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

// The matrix stands transposed in the file: a line holds the same coordinate of all four rows.
void appendTransposed(std::string& text, const AxisMatrix& matrix) {
    for (std::size_t line = 0; line < 4; ++line) {
        for (std::size_t row = 0; row < 4; ++row) {
            text += "  ";
            append_fixed(text, matrix[4 * row + line], numberColumns);
        }
        text += '\n';
    }
}

// Takes a file line by line without ever holding more of it than counts.
class LineReader {
public:
    explicit LineReader(std::FILE* file) : file_(file) {}

    // The next line's beginning, without its end; valid until the next call. False at the end of
    // the file, when not even a line end is left.
    bool next(std::string_view& line) {
        if (read_ >= mostBytesRead) return false;
        std::size_t length = read(line_);
        if (length == 0) return false;
        if (line_[length - 1] == '\n') {
            --length;
        } else {
            skipRest(length);
        }
        line = std::string_view(line_, length);
        return true;
    }

    bool skip() {
        std::string_view unseen;
        return next(unseen);
    }

private:
    using Buffer = char[examinedLineLength + 1];

    std::size_t read(Buffer& buffer) {
        const std::size_t length = read_line(file_, buffer, examinedLineLength);
        read_ += length;
        return length;
    }

    // Behind a beginning that fills the buffer, up to the end of the line.
    void skipRest(std::size_t length) {
        Buffer unseen;
        while (length == examinedLineLength && read_ < mostBytesRead) {
            length = read(unseen);
            if (length != 0 && unseen[length - 1] == '\n') return;
        }
    }

    std::FILE* file_;
    Buffer line_ = "";
    std::size_t read_ = 0;
};

bool readFourNumbers(LineReader& lines, AxisMatrix& matrix, std::size_t row) {
    std::string_view line;
    if (!lines.next(line)) return false;
    for (std::size_t column = 0; column < 4; ++column) {
        if (!scan_number(line, matrix[4 * row + column])) return false;
    }
    return true;
}

int readTags(std::string_view line, std::array<int, 3>& tags) {
    skip_white_space(line);
    if (line.empty() || line.front() != '#') return 0;
    line.remove_prefix(1);
    int count = 0;
    for (int& tag : tags) {
        if (!scan_decimal(line, tag)) break;
        ++count;
    }
    return count;
}

// The block is inverted, not transposed: for a scale or a shear the two differ, and existing files
// rely on it.
AxisMatrix matrixFromLines(const AxisMatrix& lines) {
    AxisMatrix matrix = affineInverse(lines);
    for (std::size_t i = 0; i < 3; ++i) {
        matrix[4 * i + 3] = lines[12 + i];
        matrix[12 + i] = lines[4 * i + 3];
    }
    return matrix;
}

}  // namespace

AxisMatrix affineInverse(const AxisMatrix& x) {
    AxisMatrix inverse = {};
    const double determinant = x[0] * (x[5] * x[10] - x[6] * x[9]) +
                               x[4] * (x[2] * x[9] - x[1] * x[10]) +
                               x[8] * (x[1] * x[6] - x[2] * x[5]);
    if (std::fabs(determinant) < smallestDeterminant) return inverse;

    inverse[0] = (x[5] * x[10] - x[6] * x[9]) / determinant;
    inverse[1] = (x[2] * x[9] - x[1] * x[10]) / determinant;
    inverse[2] = (x[1] * x[6] - x[2] * x[5]) / determinant;
    inverse[4] = (x[6] * x[8] - x[4] * x[10]) / determinant;
    inverse[5] = (x[0] * x[10] - x[2] * x[8]) / determinant;
    inverse[6] = (x[2] * x[4] - x[0] * x[6]) / determinant;
    inverse[8] = (x[4] * x[9] - x[5] * x[8]) / determinant;
    inverse[9] = (x[1] * x[8] - x[0] * x[9]) / determinant;
    inverse[10] = (x[0] * x[5] - x[1] * x[4]) / determinant;
    for (std::size_t i = 0; i < 3; ++i) {
        inverse[12 + i] = -(x[12] * inverse[i] + x[13] * inverse[4 + i] + x[14] * inverse[8 + i]);
    }
    inverse[15] = 1;
    // Adding zero turns -0.0 into 0.0, so that the inverse of the identity prints like it.
    for (double& element : inverse)
        element += 0.0;
    return inverse;
}

bool differsFromIdentity(const AxisMatrix& matrix) {
    for (std::size_t i = 0; i < matrix.size(); ++i) {
        if (std::fabs(matrix[i] - identity[i]) > identityTolerance) return true;
    }
    return false;
}

std::string axisFileText(const AxisMatrix& matrix, int tag1, int tag2, int tag3) {
    std::string text = differsFromIdentity(matrix) ? "      1\n" : "      0\n";
    appendTransposed(text, matrix);
    appendTransposed(text, affineInverse(matrix));
    if (tag1 > -1 && tag2 > -1 && tag3 > -1) {
        text += "  #";
        append_decimal(text, tag1);
        text += ' ';
        append_decimal(text, tag2);
        text += ' ';
        append_decimal(text, tag3);
        text += '\n';
    }
    return text;
}

AxisContent readAxisContent(std::FILE* file) {
    constexpr int firstMatrixLine = 2;
    AxisContent content;
    LineReader lines(file);
    // Whether the placement moves anything is told by the numbers, not by the flag on line 1.
    lines.skip();
    AxisMatrix read = {};
    for (int row = 0; row < 4; ++row) {
        if (!readFourNumbers(lines, read, static_cast<std::size_t>(row))) {
            content.faultyLine = firstMatrixLine + row;
            return content;
        }
    }
    content.matrix = matrixFromLines(read);
    for (int inverseLine = 0; inverseLine < 4; ++inverseLine)
        lines.skip();
    std::string_view tagLine;
    if (lines.next(tagLine)) content.tagCount = readTags(tagLine, content.tags);
    return content;
}

}  // namespace trv
