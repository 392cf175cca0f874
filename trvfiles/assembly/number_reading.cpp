#include <trvfiles/assembly/number_reading.h>

#include <QString>

#include <charconv>
#include <cstddef>
#include <cstdint>

namespace trv {
namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool readByQt(std::string_view text, double& value) {
    bool isNumber = false;
    value = QString::fromUtf8(text.data(), static_cast<int>(text.size())).toDouble(&isNumber);
    return isNumber;
}

// Both accept the same texts and give the same doubles if a text begins with a digit after an
// optional minus, ends with the number and is in the range of double.
bool readByStandardLibrary(std::string_view text, double& value) {
    constexpr std::size_t maxLength = 32;
    const std::size_t sign = !text.empty() && text.front() == '-' ? 1 : 0;
    if (text.size() > maxLength || text.size() <= sign || !isDigit(text[sign])) return false;
    const char* const end = text.data() + text.size();
    const std::from_chars_result result = std::from_chars(text.data(), end, value);
    return result.ec == std::errc() && result.ptr == end;
}

// Reads digits with an optional minus and an optional point between them. A double holds up to 15
// digits exactly, and the powers of ten below 10^15 as well, so one division rounds correctly.
bool readShort(std::string_view text, double& value) {
    constexpr std::size_t maxDigits = 15;
    constexpr double powersOfTen[maxDigits + 1] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                   1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    const bool isNegative = !text.empty() && text.front() == '-';
    if (isNegative) text.remove_prefix(1);
    if (text.empty() || text.size() > maxDigits + 1) return false;
    if (!isDigit(text.front()) || !isDigit(text.back())) return false;
    std::uint64_t digits = 0;
    std::size_t count = 0;
    std::size_t afterPoint = 0;
    bool hasPoint = false;
    for (const char c : text) {
        if (isDigit(c)) {
            digits = 10 * digits + static_cast<std::uint64_t>(c - '0');
            ++count;
            if (hasPoint) ++afterPoint;
        } else if (c == '.' && !hasPoint) {
            hasPoint = true;
        } else {
            return false;
        }
    }
    if (count > maxDigits) return false;
    const double magnitude = static_cast<double>(digits) / powersOfTen[afterPoint];
    value = isNegative ? -magnitude : magnitude;
    return true;
}

}  // namespace

bool readNumber(std::string_view text, double& value) {
    return readShort(text, value) || readByStandardLibrary(text, value) || readByQt(text, value);
}

}  // namespace trv
