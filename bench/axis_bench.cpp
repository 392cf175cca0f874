#include <bench/bench_files.h>
#include <bench/comparison.h>
#include <trvfiles/facade/CQvFilesIO.h>

#include <array>
#include <charconv>
#include <cstdio>
#include <string>
#include <string_view>

namespace trv::bench {
namespace {

using Matrix = std::array<double, 16>;

constexpr Matrix rotation = {1, 0,    0,        0, 0,    0.866025, 0.5,    0,
                             0, -0.5, 0.866025, 0, 12.5, -40,      215.75, 1};

const char* skipBlanks(const char* from, const char* end) {
    while (from != end && *from == ' ')
        ++from;
    return from;
}

// Reads an axis file into the same sixteen numbers as the library. The axes are the transposed
// lines, which are the inverse of a rotation.
bool readByHand(const char* path, Matrix& matrix, std::array<int, 3>& tags) {
    std::FILE* file = std::fopen(path, "r");
    if (file == nullptr) return false;
    char line[512];
    bool isRead = std::fgets(line, sizeof line, file) != nullptr;
    for (std::size_t row = 0; isRead && row < 4; ++row) {
        if (std::fgets(line, sizeof line, file) == nullptr) {
            isRead = false;
            break;
        }
        const char* end = line + std::string_view(line).size();
        const char* from = line;
        for (std::size_t column = 0; column < 4; ++column) {
            from = skipBlanks(from, end);
            const auto result = std::from_chars(from, end, matrix[4 * column + row]);
            isRead = isRead && result.ec == std::errc();
            from = result.ptr;
        }
    }
    for (int skipped = 0; isRead && skipped < 4; ++skipped)
        isRead = std::fgets(line, sizeof line, file) != nullptr;
    if (isRead && std::fgets(line, sizeof line, file) != nullptr) {
        const char* end = line + std::string_view(line).size();
        const char* from = skipBlanks(line, end);
        if (*from == '#') ++from;
        for (int& tag : tags)
            from = std::from_chars(skipBlanks(from, end), end, tag).ptr;
    }
    std::fclose(file);
    return isRead;
}

void appendNumber(std::string& text, double number) {
    char digits[64];
    const auto end =
        std::to_chars(digits, digits + sizeof digits, number, std::chars_format::fixed, 6).ptr;
    const auto length = static_cast<std::size_t>(end - digits);
    text.append("  ").append(length < 12 ? 12 - length : 0, ' ').append(digits, length);
}

void appendMatrix(std::string& text, const Matrix& matrix) {
    for (std::size_t row = 0; row < 4; ++row) {
        for (std::size_t column = 0; column < 4; ++column)
            appendNumber(text, matrix[4 * column + row]);
        text += '\n';
    }
}

Matrix inverseOfRotation(const Matrix& m) {
    Matrix inverse = {m[0], m[4], m[8], 0, m[1], m[5], m[9], 0, m[2], m[6], m[10], 0, 0, 0, 0, 1};
    for (std::size_t i = 0; i < 3; ++i) {
        inverse[12 + i] = -(m[12] * inverse[i] + m[13] * inverse[4 + i] + m[14] * inverse[8 + i]);
    }
    return inverse;
}

bool writeByHand(const char* path, const Matrix& matrix) {
    std::string text = "      1\n";
    appendMatrix(text, matrix);
    appendMatrix(text, inverseOfRotation(matrix));
    text += "  #2 0 54\n";
    std::FILE* file = std::fopen(path, "w");
    if (file == nullptr) return false;
    const bool isWritten = std::fwrite(text.data(), 1, text.size(), file) == text.size();
    return std::fclose(file) == 0 && isWritten;
}

}  // namespace

Comparisons axisComparisons() {
    // By a profile, 0.08 of the time of reading is spent on making the path of the system from the
    // directory and the wide name. The loop gets this path.
    constexpr double boundOfReading = 1.3;
    constexpr double boundOfWriting = 1.25;
    const std::string source = workFile("read.dat");
    const std::string target = workFile("written.dat");
    require(writeByHand(source.c_str(), rotation), "writing an axis file by hand");
    const std::wstring wideSource = std::filesystem::path(source).wstring();
    const std::wstring wideTarget = std::filesystem::path(target).wstring();

    const auto read = [wideSource] {
        Matrix matrix;
        int tags[3];
        CQvFilesIO files(L"");
        require(
            files.readAxis(wideSource, matrix.data(), tags[0], tags[1], tags[2]) == eFileIOSuccess,
            "reading an axis file");
        benchmark::DoNotOptimize(matrix);
    };
    const auto readPlain = [source] {
        Matrix matrix = {};
        std::array<int, 3> tags = {};
        require(readByHand(source.c_str(), matrix, tags), "reading an axis file by hand");
        benchmark::DoNotOptimize(matrix);
    };
    const auto write = [wideTarget] {
        CQvFilesIO files(L"");
        require(files.writeAxis(wideTarget, rotation.data(), 2, 0, 54) == eFileIOSuccess,
                "writing an axis file");
    };
    const auto writePlain = [target] {
        require(writeByHand(target.c_str(), rotation), "writing an axis file by hand");
    };
    return {
        {"read an axis file", read, {{"fopen, from_chars", readPlain, boundOfReading}}},
        {"write an axis file", write, {{"fopen, to_chars", writePlain, boundOfWriting}}},
    };
}

}  // namespace trv::bench
