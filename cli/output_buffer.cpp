#include <cli/output_buffer.h>
#include <trvfiles/support/number_text.h>

#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>

namespace trv::cli {
namespace {

// Beyond it a double has no six decimals.
constexpr double decimalsEndHere = 1e15;

// False for a NaN.
bool hasDecimals(double value) {
    return std::fabs(value) < decimalsEndHere;
}

// REQUIRES: hasDecimals(value)
bool isWhole(double value) {
    return static_cast<double>(static_cast<long long>(value)) == value;
}

}  // namespace

void OutputBuffer::endPiece() {
    constexpr std::size_t blockLength = 65536;
    if (text_.size() >= blockLength) flush();
}

void OutputBuffer::flush() {
    out_.write(text_.data(), static_cast<std::streamsize>(text_.size()));
    text_.clear();
}

void appendUtf8(std::string& out, const QString& text) {
    const QByteArray bytes = text.toUtf8();
    out.append(bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

void appendInteger(std::string& out, long long value) {
    char digits[std::numeric_limits<long long>::digits10 + 2];
    out.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

void appendNumber(std::string& out, double value) {
    char digits[32];
    // The sign of a NaN is not printed.
    const double printed = std::isnan(value) ? std::numeric_limits<double>::quiet_NaN() : value;
    out.append(digits, std::to_chars(digits, digits + sizeof digits, printed).ptr);
}

void appendRounded(std::string& out, double value) {
    constexpr double halfOfLastDecimal = 5e-7;
    if (!hasDecimals(value)) return appendNumber(out, value);
    if (std::fabs(value) <= halfOfLastDecimal || isWhole(value)) {
        return appendInteger(out, static_cast<long long>(value));
    }
    append_fixed(out, value);
    out.erase(out.find_last_not_of('0') + 1);
    if (out.back() == '.') out.pop_back();
}

void appendRoundedVector(std::string& out, const double vector[3]) {
    for (int i = 0; i < 3; ++i) {
        if (i != 0) out += ' ';
        appendRounded(out, vector[i]);
    }
}

void appendAxes(std::string& out, const double vec1[3], const double vec2[3],
                const double vec3[3]) {
    out += ", axes ";
    appendRoundedVector(out, vec1);
    out += " / ";
    appendRoundedVector(out, vec2);
    out += " / ";
    appendRoundedVector(out, vec3);
}

void appendJsonNumber(std::string& out, double value) {
    if (hasDecimals(value) && isWhole(value)) {
        appendInteger(out, static_cast<long long>(value));
    } else if (std::isfinite(value)) {
        appendNumber(out, value);
    } else {
        out += '"';
        appendNumber(out, value);
        out += '"';
    }
}

}  // namespace trv::cli
