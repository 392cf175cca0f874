#include <trvfiles/assembly/number_writing.h>

#include <QString>

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>

namespace trv {
namespace {

constexpr int precision = 17;

void appendByQt(std::string& text, double value) {
    text += QString::number(value, 'g', precision).toStdString();
}

#ifdef __SIZEOF_INT128__

__extension__ using Wide = unsigned __int128;

// Numbers from 10^-4 to 2^53 are written without an exponent, and the arithmetic below is exact.
constexpr double minMagnitude = 1e-4;
constexpr double maxMagnitude = 9007199254740992;

// The doubles nearest to 0.1, 0.01 and 0.001 are larger than these, so comparing is exact.
constexpr double powersOfTen[] = {1e-3, 1e-2, 1e-1, 1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,
                                  1e7,  1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16};
constexpr int smallestPower = -3;

// How many digits a number has before its point; 0 and less for the zeros after the point.
int digitsBeforePoint(double magnitude) {
    int count = smallestPower;
    for (const double power : powersOfTen) {
        if (magnitude < power) break;
        ++count;
    }
    return count;
}

constexpr std::uint64_t powerOfTen(int exponent) {
    std::uint64_t power = 1;
    for (int i = 0; i < exponent; ++i)
        power *= 10;
    return power;
}

// 17 digits that begin `before` digits before the point.
void appendDigits(std::string& text, std::uint64_t number, int before) {
    char digits[precision];
    std::to_chars(std::begin(digits), std::end(digits), number);
    int count = precision;
    while (digits[count - 1] == '0')
        --count;
    if (before <= 0) {
        text.append("0.").append(static_cast<std::size_t>(-before), '0');
        text.append(digits, static_cast<std::size_t>(count));
        return;
    }
    // Zeros before the point belong to the number.
    const int shown = count < before ? before : count;
    text.append(digits, static_cast<std::size_t>(before));
    if (shown == before) return;
    text += '.';
    text.append(digits + before, static_cast<std::size_t>(shown - before));
}

// The number is m / 2^k for an integer m below 2^53, and its 17 digits are m * 10^p / 2^k, rounded,
// for a p of at most 20. The product is below 2^120. A half is rounded up, as Qt does:
// std::to_chars() and printf() round it to even.
void appendFixed(std::string& text, double magnitude) {
    constexpr int mantissaBits = 53;
    int exponent = 0;
    const double fraction = std::frexp(magnitude, &exponent);
    const auto mantissa = static_cast<std::uint64_t>(std::ldexp(fraction, mantissaBits));
    const int shift = mantissaBits - exponent;
    int before = digitsBeforePoint(magnitude);
    const int power = precision - before;
    constexpr int maxPower = 18;
    const int rest = power > maxPower ? power - maxPower : 0;
    const Wide product = Wide{mantissa} * powerOfTen(power - rest) * powerOfTen(rest);
    auto digits = static_cast<std::uint64_t>(product >> shift);
    const Wide remainder = product - (Wide{digits} << shift);
    if (shift > 0 && remainder >= Wide{1} << (shift - 1)) ++digits;
    if (digits == powerOfTen(precision)) {
        digits /= 10;
        ++before;
    }
    appendDigits(text, digits, before);
}

#endif

}  // namespace

void appendNumber(std::string& text, double value) {
    if (value == 0) {
        // Qt does not write the sign of a zero.
        text += '0';
        return;
    }
#ifdef __SIZEOF_INT128__
    const double magnitude = std::fabs(value);
    if (magnitude >= minMagnitude && magnitude < maxMagnitude) {
        if (std::signbit(value)) text += '-';
        appendFixed(text, magnitude);
        return;
    }
#endif
    appendByQt(text, value);
}

}  // namespace trv
