#include <trvfiles/axis/axis_file.h>
#include <trvfiles/support/file_fault.h>
#include <trvfiles/support/line_reading.h>
#include <trvfiles/support/number_text.h>
#include <trvfiles/text/open_file.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstddef>
#include <type_traits>

namespace trv {
namespace {

// The numbers in a file have six decimals.
constexpr double identityTolerance = 1e-6;
constexpr double minDeterminant = 1e-10;
// Rounding to six decimals moves the product of two unit vectors by less than 2e-6.
constexpr double orthonormalTolerance = 1e-5;
constexpr int firstMatrixLine = 2;
constexpr int lastMatrixLine = 5;
constexpr int lastInverseLine = 9;
constexpr int numberColumns = 12;
// Part of the format: what follows on a line does not count.
constexpr std::size_t examinedLineLength = 511;
// A device may have no end. No axis file is this long.
constexpr std::size_t maxBytesRead = std::size_t{1} << 30;

// The file has the matrix transposed: one line is one coordinate of all four rows.
void appendTransposed(std::string& text, const AxisMatrix& matrix) {
    for (std::size_t line = 0; line < 4; ++line) {
        for (std::size_t row = 0; row < 4; ++row) {
            text += "  ";
            append_fixed(text, matrix[4 * row + line], numberColumns);
        }
        text += '\n';
    }
}

// Holds one line at a time, and only the part of it that counts: memory does not grow with the
// file.
//
// @param Source  what read_line() reads from: a standard stream or a text in memory
template <class Source>
class LineReader {
public:
    explicit LineReader(Source source) : source_(source) {}

    // The `errno` of the read that has just failed; 0 if none has.
    int readError() const {
        if constexpr (std::is_same_v<Source, std::FILE*>) {
            if (std::ferror(source_) != 0) return errno;
        }
        return 0;
    }

    // Sets `line` to the beginning of the next line, without its end; valid until the next call.
    // False at the end of the file, when not even a line end is left.
    bool next(std::string_view& line) {
        if (read_ >= maxBytesRead) return false;
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
        const std::size_t length = read_line(source_, buffer, examinedLineLength);
        read_ += length;
        return length;
    }

    // Skips what follows a beginning that fills the buffer, up to the end of the line.
    void skipRest(std::size_t length) {
        Buffer unseen;
        while (length == examinedLineLength && read_ < maxBytesRead) {
            length = read(unseen);
            if (length != 0 && unseen[length - 1] == '\n') return;
        }
    }

    Source source_;
    Buffer line_ = "";
    std::size_t read_ = 0;
};

bool scanFourNumbers(std::string_view line, double* numbers) {
    for (std::size_t column = 0; column < 4; ++column) {
        if (!scan_number(line, numbers[column])) return false;
    }
    return true;
}

template <class Source>
bool readFourNumbers(LineReader<Source>& lines, AxisMatrix& matrix, std::size_t row) {
    std::string_view line;
    return lines.next(line) && scanFourNumbers(line, &matrix[4 * row]);
}

// Whether four numbers are the last row of an affine matrix.
bool isLastRow(const double* numbers) {
    for (std::size_t column = 0; column < 4; ++column) {
        const double expected = column == 3 ? 1 : 0;
        if (!(std::fabs(numbers[column] - expected) <= identityTolerance)) return false;
    }
    return true;
}

// What is in the lines that reading skips, for notes.
struct SkippedLines {
    // The line of the last row of an affine matrix; 0 if there is none.
    int lastRow = 0;
    // The line of tags; 0 if there is none.
    int tags = 0;

    void take(std::string_view line, int number) {
        double row[4] = {};
        if (scanFourNumbers(line, row) && isLastRow(row)) lastRow = number;
        skip_white_space(line);
        if (tags == 0 && !line.empty() && line.front() == '#') tags = number;
    }
};

void addNotes(CFileFault& fault, const AxisMatrix& lines, const AxisMatrix& matrix,
              const SkippedLines& skipped) {
    using Kind = CFileFault::Note::Kind;
    const auto add = [&](Kind kind, int line, const char* text) {
        fault.notes.push_back({kind, line, 0, {}, text});
    };
    if (!isOrthonormal(matrix)) {
        add(Kind::notOrthonormal, firstMatrixLine,
            matrix[15] == 0 ? "the axes do not span space: they are read as zeros"
                            : "the axes are not orthonormal: their inverse is read, which differs "
                              "from what was written");
    }
    // The rows of the block after a missing row are one line earlier.
    if (!isLastRow(&lines[12])) {
        if (skipped.lastRow == lastInverseLine - 1) {
            add(Kind::missingRow, lastMatrixLine,
                "a row of the matrix is missing: the first row of the next block takes its place");
        } else {
            add(Kind::notAffine, lastMatrixLine, "the fourth row of the matrix is not 0 0 0 1");
        }
    }
    if (skipped.tags != 0) {
        add(Kind::misplacedTags, skipped.tags,
            "the tags are ignored: they are read from line 10 only");
    }
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

// The block is inverted, although a file is written transposed. For a rotation the two are the
// same; for a scale or a shear they differ, and existing files rely on this difference.
AxisMatrix matrixFromLines(const AxisMatrix& lines) {
    AxisMatrix matrix = affineInverse(lines);
    for (std::size_t i = 0; i < 3; ++i) {
        matrix[4 * i + 3] = lines[12 + i];
        matrix[12 + i] = lines[4 * i + 3];
    }
    return matrix;
}

void setLineFault(CFileFault* fault, int line, int readError) {
    if (fault == nullptr) return;
    if (readError != 0) {
        set_system_fault(fault, readError);
        fault->line = line;
    } else {
        set_fault(fault, "four numbers are expected", line);
    }
}

template <class Source>
bool readLines(LineReader<Source> lines, AxisContent& content, CFileFault* fault) {
    // The numbers say whether the placement moves anything; the flag on line 1 does not count.
    lines.skip();
    AxisMatrix read = {};
    for (int row = 0; row < 4; ++row) {
        if (readFourNumbers(lines, read, static_cast<std::size_t>(row))) continue;
        setLineFault(fault, firstMatrixLine + row, lines.readError());
        return false;
    }
    content.matrix = matrixFromLines(read);
    SkippedLines skipped;
    std::string_view line;
    for (int number = lastMatrixLine + 1; number <= lastInverseLine && lines.next(line); ++number) {
        if (fault != nullptr) skipped.take(line, number);
    }
    content.tagCount = lines.next(line) ? readTags(line, content.tags) : 0;
    if (fault != nullptr) addNotes(*fault, read, content.matrix, skipped);
    return true;
}

}  // namespace

AxisMatrix affineInverse(const AxisMatrix& x) {
    AxisMatrix inverse = {};
    const double determinant = x[0] * (x[5] * x[10] - x[6] * x[9]) +
                               x[4] * (x[2] * x[9] - x[1] * x[10]) +
                               x[8] * (x[1] * x[6] - x[2] * x[5]);
    // A NaN passes: the inverse then consists of NaN, as the matrix does.
    if (std::fabs(determinant) < minDeterminant) return inverse;

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
    // Adding zero changes -0.0 to 0.0. Otherwise the inverse of the identity would be written as
    // "-0.000000".
    for (double& element : inverse)
        element += 0.0;
    return inverse;
}

bool differsFromIdentity(const AxisMatrix& matrix) {
    for (std::size_t i = 0; i < matrix.size(); ++i) {
        if (std::fabs(matrix[i] - identityAxis[i]) > identityTolerance) return true;
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

bool isOrthonormal(const AxisMatrix& m) {
    for (std::size_t one = 0; one < 3; ++one) {
        for (std::size_t other = one; other < 3; ++other) {
            const std::size_t i = 4 * one;
            const std::size_t j = 4 * other;
            const double product = m[i] * m[j] + m[i + 1] * m[j + 1] + m[i + 2] * m[j + 2];
            const double expected = one == other ? 1 : 0;
            // Written so that a NaN fails.
            if (!(std::fabs(product - expected) <= orthonormalTolerance)) return false;
        }
    }
    return true;
}

bool readAxisText(std::FILE* file, AxisContent& content, CFileFault* fault) {
    return readLines(LineReader<std::FILE*>(file), content, fault);
}

EFileIOStatus readAxisFile(const QString& path, AxisContent& content, CFileFault* fault) {
    clear_fault(fault);
    // A buffer of the C library would be allocated, and be 4 KB as well.
    char buffer[4096];
    const platform::file_handle file = openForRead(path, platform::file_mode::text, fault);
    if (file == nullptr) return eFileIOOpenError;
    static_cast<void>(std::setvbuf(file.get(), buffer, _IOFBF, sizeof buffer));
    return readAxisText(file.get(), content, fault) ? eFileIOSuccess : eFileIOContentError;
}

EFileIOStatus readAxisBytes(std::string_view bytes, AxisContent& content, CFileFault* fault) {
    clear_fault(fault);
    const LineReader<std::string_view> lines(bytes);
    return readLines(lines, content, fault) ? eFileIOSuccess : eFileIOContentError;
}

EFileIOStatus writeAxisFile(const QString& path, const std::string& text, CFileFault* fault) {
    clear_fault(fault);
    platform::file_handle file = openForWrite(path, platform::file_mode::text, fault);
    if (file == nullptr) return eFileIOOpenError;
    errno = 0;
    const bool isWritten = std::fwrite(text.data(), 1, text.size(), file.get()) == text.size();
    // The last bytes are in a buffer until the file is closed, so closing may be what fails.
    if (std::fclose(file.release()) == 0 && isWritten) return eFileIOSuccess;
    set_system_fault(fault, errno);
    return eFileIOShortWrite;
}

}  // namespace trv
