// The text of an axis file, with both line ends. The placement that is read is written and read
// again.

#include <fuzz/harness/axis_source.h>
#include <fuzz/harness/own_directory.h>
#include <fuzz/harness/require.h>
#include <fuzz/targets.h>
#include <trvfiles/facade/CQvFilesIO.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <string>

namespace trv::fuzz {
namespace {

bool isSame(const ReadAxis& left, const ReadAxis& right) {
    const AxisContent& one = left.content;
    const AxisContent& other = right.content;
    return left.fault.line == right.fault.line && one.tagCount == other.tagCount &&
           one.tags == other.tags &&
           std::memcmp(&one.matrix, &other.matrix, sizeof one.matrix) == 0;
}

std::string withCarriageReturns(const std::string& text) {
    std::string changed;
    for (const char c : text) {
        if (c == '\n') changed += '\r';
        changed += c;
    }
    return changed;
}

void requireTheFacadeAgrees(const std::string& text, const ReadAxis& read) {
    const AxisContent& content = read.content;
    constexpr double untouched = -77;
    AxisMatrix matrix;
    matrix.fill(untouched);
    int tags[3] = {-1, -2, -3};
    writeOwnFile("axis", text);
    CQvFilesIO files(ownDirectory().wide());
    const EFileIOStatus status = files.readAxis(L"axis", matrix.data(), tags[0], tags[1], tags[2]);
    require(status == (read.fault.line == 0 ? eFileIOSuccess : eFileIOContentError),
            "the status is 1, or 4 if a line is faulty");
    AxisMatrix expected = content.matrix;
    if (status != eFileIOSuccess) expected.fill(untouched);
    require(std::memcmp(&matrix, &expected, sizeof matrix) == 0,
            "the matrix is that of the text, or unchanged");
    for (int i = 0; i < 3; ++i) {
        const bool isSet = status == eFileIOSuccess && i < content.tagCount;
        require(tags[i] == (isSet ? content.tags[static_cast<std::size_t>(i)] : -1 - i),
                "the tags are those of the text, or unchanged");
    }
}

bool isRotation(const AxisMatrix& m) {
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t k = 0; k < 3; ++k) {
            double product = 0;
            for (std::size_t j = 0; j < 3; ++j)
                product += m[4 * i + j] * m[4 * k + j];
            if (!(std::fabs(product - (i == k ? 1 : 0)) < 1e-9)) return false;
        }
    }
    return true;
}

// A larger double has fewer decimals than the text, and its line may be longer than the part that
// counts.
bool hasAllDecimals(double value) {
    return std::fabs(value) < 1e9;
}

void requireItReadsBack(const AxisContent& content) {
    constexpr double printedPrecision = 1e-6;
    int tags[3] = {-1, -1, -1};
    std::copy_n(content.tags.begin(), content.tagCount, tags);
    const std::string text = axisFileText(content.matrix, tags[0], tags[1], tags[2]);
    if (!std::all_of(content.matrix.begin(), content.matrix.end(), hasAllDecimals)) return;

    const ReadAxis readBack = axisOf(text);
    require(readBack.fault.line == 0, "a written axis reads back");
    const AxisContent& back = readBack.content;
    const bool hasTags = std::all_of(tags, tags + 3, [](int tag) { return tag >= 0; });
    require(back.tagCount == (hasTags ? 3 : 0), "three tags are written, or none");
    require(!hasTags || std::equal(tags, tags + 3, back.tags.begin()), "tags read back");
    for (std::size_t i = 12; i < 15; ++i) {
        require(std::fabs(back.matrix[i] - content.matrix[i]) < printedPrecision,
                "a translation reads back");
    }
    if (!isRotation(content.matrix)) return;
    for (std::size_t i = 0; i < 11; ++i) {
        require(i % 4 == 3 || std::fabs(back.matrix[i] - content.matrix[i]) < 1e-5,
                "a rotation reads back");
    }
}

}  // namespace

void checkAxisText(std::string_view input) {
    const std::string text(input);
    const ReadAxis read = axisOf(text);
    const AxisContent& content = read.content;
    const int faultyLine = read.fault.line;
    require(faultyLine == 0 || (faultyLine >= 2 && faultyLine <= 5),
            "a faulty line is one of the four of the matrix");
    require(content.tagCount >= 0 && content.tagCount <= 3, "there are up to three tags");
    require(isSame(axisOf(withCarriageReturns(text)), read),
            "a CR before a line end makes no difference");
    requireTheFacadeAgrees(text, read);
    if (faultyLine == 0) requireItReadsBack(content);
}

}  // namespace trv::fuzz
