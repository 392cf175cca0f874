#include <trvfiles/support/number_text.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <system_error>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

// The longest text of a double with six decimals: sign, 309 digits, point, decimals.
constexpr std::size_t max_fixed_length = 1 + 309 + 1 + 6;

constexpr bool is_white_space(char c) {
    return c == ' ' || static_cast<unsigned char>(c - '\t') <= '\r' - '\t';
}

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

// Appends digits up to the first other character. Returns its address.
const char* append_digits(const char* from, const char* stop, std::int64_t& digits) {
    for (; from != stop && is_digit(*from); ++from)
        digits = 10 * digits + (*from - '0');
    return from;
}

// Reads a plain number, such as "-12.500000", that ends the text or a word of it. Nearly all
// numbers in files are of this kind. The result is the nearest double: up to 15 digits and a power
// of ten up to 10^15 are exact, and a division rounds correctly (Clinger's fast path).
//
// @return the length of the number; 0 for any other number or text
std::size_t scan_plain_number(std::string_view text, double& value) {
    static constexpr double powers[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                        1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    constexpr std::size_t max_digits = 15;
    const char* const end = text.data() + text.size();
    const bool negative = !text.empty() && text.front() == '-';
    const char* const first = negative ? text.data() + 1 : text.data();
    // One character more, for the point.
    const char* const stop =
        first + std::min(static_cast<std::size_t>(end - first), max_digits + 1);
    std::int64_t digits = 0;
    const char* const point = append_digits(first, stop, digits);
    const bool has_point = point != stop && *point == '.';
    const char* const at = has_point ? append_digits(point + 1, stop, digits) : point;
    const std::size_t decimals = has_point ? static_cast<std::size_t>(at - point - 1) : 0;
    const std::size_t count = static_cast<std::size_t>(point - first) + decimals;
    if (count == 0 || count > max_digits || (at != end && !is_white_space(*at))) return 0;
    const double magnitude = static_cast<double>(digits) / powers[decimals];
    value = negative ? -magnitude : magnitude;
    return static_cast<std::size_t>(at - text.data());
}

bool is_hexadecimal_digit(char c) {
    return is_digit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

bool starts_hexadecimal(std::string_view text) {
    if (text.size() < 3 || text[0] != '0' || (text[1] != 'x' && text[1] != 'X')) return false;
    if (text[2] == '.') return text.size() > 3 && is_hexadecimal_digit(text[3]);
    return is_hexadecimal_digit(text[2]);
}

// REQUIRES: at least one digit, and perhaps a sign before it.
long long exponent_of(std::string_view digits) {
    constexpr long long beyond_every_mantissa = std::numeric_limits<long long>::max() / 4;
    const bool negative = digits.front() == '-';
    if (negative || digits.front() == '+') digits.remove_prefix(1);
    long long exponent = 0;
    const auto end = std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
    if (end.ec == std::errc::result_out_of_range) exponent = beyond_every_mantissa;
    exponent = std::min(exponent, beyond_every_mantissa);
    return negative ? -exponent : exponent;
}

// Whether a number beyond the range of a double is too large. If not, it is too close to zero. It
// is too large if its first digit other than 0 is before the point after the exponent is applied.
// REQUIRES: there is such a digit.
bool is_too_large(std::string_view number, bool hexadecimal) {
    const std::size_t mark = number.find_first_of(hexadecimal ? "pP" : "eE");
    const std::string_view mantissa = number.substr(0, mark);
    const std::size_t first = mantissa.find_first_not_of("0.");
    const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
    const auto places = static_cast<long long>(point) - static_cast<long long>(first);
    const long long exponent =
        mark == std::string_view::npos ? 0 : exponent_of(number.substr(mark + 1));
    return places * (hexadecimal ? 4 : 1) + exponent > 0;
}

}  // namespace

void append_fixed(std::string& text, double value, int width) {
    char digits[max_fixed_length];
    // A NaN may have a sign, which std::to_chars() would print.
    const double shown = std::isnan(value) ? std::numeric_limits<double>::quiet_NaN() : value;
    const char* end =
        std::to_chars(digits, digits + sizeof digits, shown, std::chars_format::fixed, 6).ptr;
    const auto length = static_cast<std::size_t>(end - digits);
    const auto columns = static_cast<std::size_t>(std::max(width, 0));
    if (length < columns) text.append(columns - length, ' ');
    text.append(digits, length);
}

void append_decimal(std::string& text, int value) {
    char digits[std::numeric_limits<int>::digits10 + 2];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

void skip_white_space(std::string_view& text) {
    std::size_t length = 0;
    while (length != text.size() && is_white_space(text[length]))
        ++length;
    text.remove_prefix(length);
}

bool scan_number(std::string_view& text, double& value) {
    std::string_view rest = text;
    skip_white_space(rest);
    if (const std::size_t length = scan_plain_number(rest, value); length != 0) {
        text = rest.substr(length);
        return true;
    }
    const bool negative = !rest.empty() && rest.front() == '-';
    if (!rest.empty() && (negative || rest.front() == '+')) rest.remove_prefix(1);
    // std::from_chars() would accept a second sign.
    if (!rest.empty() && rest.front() == '-') return false;
    const bool hexadecimal = starts_hexadecimal(rest);
    if (hexadecimal) rest.remove_prefix(2);

    double magnitude = 0;
    const std::from_chars_result result =
        std::from_chars(rest.data(), rest.data() + rest.size(), magnitude,
                        hexadecimal ? std::chars_format::hex : std::chars_format::general);
    if (result.ec == std::errc::invalid_argument) return false;
    const auto length = static_cast<std::size_t>(result.ptr - rest.data());
    if (result.ec == std::errc::result_out_of_range) {
        magnitude = is_too_large(rest.substr(0, length), hexadecimal)
                        ? std::numeric_limits<double>::infinity()
                        : 0.0;
    }
    value = negative ? -magnitude : magnitude;
    text = rest.substr(length);
    return true;
}

bool scan_decimal(std::string_view& text, int& value) {
    std::string_view rest = text;
    skip_white_space(rest);
    const bool negative = !rest.empty() && rest.front() == '-';
    if (!rest.empty() && rest.front() == '+') {
        rest.remove_prefix(1);
        if (!rest.empty() && rest.front() == '-') return false;
    }
    int read = 0;
    const std::from_chars_result result =
        std::from_chars(rest.data(), rest.data() + rest.size(), read);
    if (result.ec == std::errc::invalid_argument) return false;
    if (result.ec == std::errc::result_out_of_range) {
        read = negative ? std::numeric_limits<int>::min() : std::numeric_limits<int>::max();
    }
    value = read;
    text = rest.substr(static_cast<std::size_t>(result.ptr - rest.data()));
    return true;
}

}  // namespace trv
