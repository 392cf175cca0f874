#include <trvfiles/assembly/number_writing.h>

#include <QString>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>

namespace trv {
namespace {

constexpr int precision = 17;

// A number with up to 25 binary places, as an integer divided by a power of ten.
struct Decimal {
    std::uint64_t digits;
    int places;
};

constexpr int maxPlaces = 25;

constexpr std::uint64_t powerOf(std::uint64_t base, int exponent) {
    std::uint64_t power = 1;
    for (int i = 0; i < exponent; ++i)
        power *= base;
    return power;
}

void appendByQt(std::string& text, double value) {
    text += QString::number(value, 'g', precision).toStdString();
}

void appendGeneral(std::string& text, double value) {
    char digits[32];
    const auto result = std::to_chars(std::begin(digits), std::end(digits), value,
                                      std::chars_format::general, precision);
    text.append(digits, result.ptr);
}

// Digits with the point before the last `places` of them.
void appendDecimal(std::string& text, const Decimal& decimal) {
    char digits[20];
    const char* const end = std::to_chars(std::begin(digits), std::end(digits), decimal.digits).ptr;
    const int count = static_cast<int>(end - digits);
    if (count > decimal.places) {
        text.append(digits, static_cast<std::size_t>(count - decimal.places));
    } else {
        text += '0';
    }
    if (decimal.places == 0) return;
    text += '.';
    if (count < decimal.places) text.append(static_cast<std::size_t>(decimal.places - count), '0');
    const int shown = count < decimal.places ? count : decimal.places;
    text.append(end - shown, end);
}

}  // namespace

// A double whose last bit has the value 2^-k is m * 5^k / 10^k for an odd m. If m * 5^k has at most
// 17 digits, they are the text. If it has 18, it ends in 5: Qt rounds such halves up, and
// std::to_chars() rounds them to even. All others are rounded alike.
void appendNumber(std::string& text, double value) {
    constexpr double exactIntegers = 9007199254740992;  // 2^53
    constexpr double minFixed = 1e-4;
    if (value == 0) {
        // Qt does not write the sign of a zero.
        text += '0';
        return;
    }
    const double magnitude = std::fabs(value);
    if (!(magnitude >= minFixed && magnitude < exactIntegers)) return appendByQt(text, value);

    int exponent = 0;
    const double fraction = std::frexp(magnitude, &exponent);
    auto mantissa = static_cast<std::uint64_t>(std::ldexp(fraction, 53));
    int places = 53 - exponent;
    while (places > 0 && (mantissa & 1U) == 0) {
        mantissa >>= 1U;
        --places;
    }
    if (places > maxPlaces) return appendGeneral(text, value);
    const std::uint64_t factor = powerOf(5, places);
    if (mantissa > (powerOf(10, 18) - 1) / factor) return appendGeneral(text, value);
    const std::uint64_t digits = mantissa * factor;
    if (digits >= powerOf(10, precision)) return appendByQt(text, value);
    if (std::signbit(value)) text += '-';
    appendDecimal(text, {digits, places});
}

}  // namespace trv
