#include <trvfiles/assembly/number_writing.h>

#include <QString>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace trv {
namespace {

constexpr int precision = 17;

char* append(char* to, std::string_view text) {
    return std::copy(text.begin(), text.end(), to);
}

char* writeByQt(char* to, double value) {
    const QByteArray text = QString::number(value, 'g', precision).toLatin1();
    return std::copy(text.begin(), text.end(), to);
}

// std::to_chars() rounds a half to even, and Qt rounds it up. A half has exactly 18 digits, which
// no double from 2^53 on and none below 2^-25 has: it would need a mantissa of more than 53 bits,
// or have more digits.
constexpr double minWithHalves = 0x1p-25;
constexpr double maxMagnitude = 0x1p53;

bool hasNoHalf(double magnitude) {
    return magnitude < minWithHalves || (magnitude >= maxMagnitude && std::isfinite(magnitude));
}

#ifdef __SIZEOF_INT128__

__extension__ using Wide = unsigned __int128;

// From here to 2^53 the arithmetic below is exact.
constexpr double minMagnitude = 1e-5;

// The doubles nearest to 0.1, 0.01, ... 0.00001 are larger than these, so comparing is exact.
constexpr double powersOfTen[] = {1e-4, 1e-3, 1e-2, 1e-1, 1e0,  1e1,  1e2,  1e3,  1e4,  1e5, 1e6,
                                  1e7,  1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16};
constexpr int smallestPower = -4;

// How many digits a number has before its point; 0 and less for the zeros after the point.
int digitsBeforePoint(double magnitude) {
    int count = smallestPower;
    for (const double power : powersOfTen) {
        if (magnitude < power) break;
        ++count;
    }
    return count;
}

constexpr int maxPower = 18;

constexpr std::array<std::uint64_t, maxPower + 1> wholePowersOfTen() {
    std::array<std::uint64_t, maxPower + 1> powers = {1};
    for (std::size_t i = 1; i < powers.size(); ++i)
        powers[i] = 10 * powers[i - 1];
    return powers;
}

std::uint64_t powerOfTen(int exponent) {
    static constexpr std::array<std::uint64_t, maxPower + 1> powers = wholePowersOfTen();
    return powers[static_cast<std::size_t>(exponent)];
}

// A number as 0.DIGITS * 10^before.
struct Decimal {
    std::uint64_t digits;
    int before;
};

// REQUIRES: a number from minMagnitude to 2^53 that is not a whole one.
//
// It is m / 2^k for an integer m below 2^53, and its 17 digits are m * 10^p / 2^k, rounded,
// for a p of at most 21. The product is below 2^123. A half is rounded up.
Decimal decimalOf(double magnitude) {
    constexpr int mantissaBits = 52;
    constexpr int exponentBias = 1023;
    constexpr std::uint64_t leadingBit = std::uint64_t{1} << mantissaBits;
    std::uint64_t bits = 0;
    std::memcpy(&bits, &magnitude, sizeof bits);
    const std::uint64_t mantissa = (bits & (leadingBit - 1)) | leadingBit;
    const int shift = mantissaBits + exponentBias - static_cast<int>(bits >> mantissaBits);

    int before = digitsBeforePoint(magnitude);
    const int power = precision - before;
    const int rest = std::max(power - maxPower, 0);
    const Wide product = Wide{mantissa} * powerOfTen(power - rest) * powerOfTen(rest);
    auto digits = static_cast<std::uint64_t>(product >> shift);
    const Wide remainder = product - (Wide{digits} << shift);
    if (remainder >= Wide{1} << (shift - 1)) ++digits;
    if (digits == powerOfTen(precision)) {
        digits /= 10;
        ++before;
    }
    return {digits, before};
}

// Writes digits with a point after the first `before` ones. Zeros at the end are left out, but not
// those before the point.
char* writeDigits(char* to, std::string_view digits, int before) {
    const auto whole = static_cast<std::size_t>(before);
    const std::size_t count = digits.find_last_not_of('0') + 1;
    to = append(to, digits.substr(0, whole));
    if (count <= whole) return to;
    *to++ = '.';
    return append(to, digits.substr(whole, count - whole));
}

char* writeExactly(char* to, double magnitude) {
    const Decimal decimal = decimalOf(magnitude);
    char buffer[precision];
    std::to_chars(buffer, buffer + precision, decimal.digits);
    const std::string_view digits(buffer, precision);
    // Below 0.0001 Qt writes an exponent.
    if (decimal.before == smallestPower) return append(writeDigits(to, digits, 1), "e-05");
    if (decimal.before > 0) return writeDigits(to, digits, decimal.before);
    to = append(to,
                std::string_view("0.000").substr(0, static_cast<std::size_t>(2 - decimal.before)));
    return append(to, digits.substr(0, digits.find_last_not_of('0') + 1));
}

bool isExact(double magnitude) {
    return magnitude >= minMagnitude && magnitude < maxMagnitude;
}

#else

bool isExact(double) {
    return false;
}

char* writeExactly(char* to, double magnitude) {
    return writeByQt(to, magnitude);
}

#endif

// @return whether the number is a whole one, and written
bool writeWhole(char*& to, double magnitude) {
    if (!(magnitude < maxMagnitude)) return false;
    const auto whole = static_cast<std::uint64_t>(magnitude);
    if (static_cast<double>(whole) != magnitude) return false;
    to = std::to_chars(to, to + precision, whole).ptr;
    return true;
}

}  // namespace

char* writeNumber(char* to, double value) {
    // Qt does not write the sign of a zero, nor that of a number that is none.
    if (value < 0) *to++ = '-';
    const double magnitude = std::fabs(value);
    if (writeWhole(to, magnitude)) return to;
    if (isExact(magnitude)) return writeExactly(to, magnitude);
    if (!hasNoHalf(magnitude)) return writeByQt(to, magnitude);
    return std::to_chars(to, to + maxNumberLength - 1, magnitude, std::chars_format::general,
                         precision)
        .ptr;
}

}  // namespace trv
