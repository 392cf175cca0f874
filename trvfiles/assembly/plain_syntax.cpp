#include <trvfiles/assembly/plain_syntax.h>
#include <trvfiles/support/ascii_case.h>

#include <algorithm>
#include <cstdint>

namespace trv {
namespace {

bool isAllowedByReference(std::uint32_t code) {
    if (code < ' ') return code == '\t' || code == '\n' || code == '\r';
    if (code >= 0xD800 && code < 0xE000) return false;
    // Qt's parser makes a character of the lower 16 bits of a larger number.
    return code < 0xFFFE;
}

char* appendUtf8(char* to, std::uint32_t code) {
    if (code < 0x80) {
        *to++ = static_cast<char>(code);
        return to;
    }
    if (code < 0x800) {
        *to++ = static_cast<char>(0xC0U | code >> 6U);
    } else {
        *to++ = static_cast<char>(0xE0U | code >> 12U);
        *to++ = static_cast<char>(0x80U | (code >> 6U & 0x3FU));
    }
    *to++ = static_cast<char>(0x80U | (code & 0x3FU));
    return to;
}

// The value of a digit; 16 for any other character.
std::uint32_t digitValue(char c) {
    if (c >= '0' && c <= '9') return static_cast<std::uint32_t>(c - '0');
    if (c >= 'a' && c <= 'f') return static_cast<std::uint32_t>(c - 'a' + 10);
    if (c >= 'A' && c <= 'F') return static_cast<std::uint32_t>(c - 'A' + 10);
    return 16;
}

// @param digits  the part of a character reference between "&#" and ";"
// @return 0, which no reference may name, if the reference is unusual
std::uint32_t referencedCharacter(std::string_view digits) {
    constexpr std::size_t maxDigits = 6;
    const bool isHexadecimal = !digits.empty() && digits.front() == 'x';
    if (isHexadecimal) digits.remove_prefix(1);
    if (digits.empty() || digits.size() > maxDigits) return 0;
    const std::uint32_t base = isHexadecimal ? 16 : 10;
    std::uint32_t code = 0;
    for (const char c : digits) {
        const std::uint32_t digit = digitValue(c);
        if (digit >= base) return 0;
        code = code * base + digit;
    }
    return isAllowedByReference(code) ? code : 0;
}

// @param name  the part of a reference between "&" and ";"
// @return 0 if the reference is unusual
std::uint32_t resolved(std::string_view name) {
    if (!name.empty() && name.front() == '#') return referencedCharacter(name.substr(1));
    if (name == "lt") return '<';
    if (name == "gt") return '>';
    if (name == "amp") return '&';
    if (name == "quot") return '"';
    return name == "apos" ? '\'' : 0;
}

bool consume(std::string_view& text, std::string_view beginning) {
    if (text.substr(0, beginning.size()) != beginning) return false;
    text.remove_prefix(beginning.size());
    return true;
}

void consumeWhiteSpace(std::string_view& text) {
    const std::size_t count = text.find_first_not_of(" \t\n\r");
    text.remove_prefix(std::min(count, text.size()));
}

// Consumes NAME="VALUE" with the white space before it.
bool consumePseudoAttribute(std::string_view& text, std::string_view name,
                            std::string_view& value) {
    std::string_view rest = text;
    consumeWhiteSpace(rest);
    if (rest.size() == text.size() || !consume(rest, name) || !consume(rest, "=")) return false;
    if (rest.empty() || (rest.front() != '"' && rest.front() != '\'')) return false;
    const std::size_t close = rest.find(rest.front(), 1);
    if (close == std::string_view::npos) return false;
    value = rest.substr(1, close - 1);
    text = rest.substr(close + 1);
    return true;
}

}  // namespace

// In place: the text of a character is never longer than its reference.
bool resolveReferences(std::string_view& value) {
    char* const begin = const_cast<char*>(value.data());
    char* const end = begin + value.size();
    char* to = begin;
    for (char* from = begin; from != end;) {
        if (*from != '&') {
            *to++ = *from++;
            continue;
        }
        char* const semicolon = std::find(from, end, ';');
        if (semicolon == end) return false;
        const auto length = static_cast<std::size_t>(semicolon - from - 1);
        const std::uint32_t code = resolved({from + 1, length});
        if (code == 0) return false;
        to = appendUtf8(to, code);
        from = semicolon + 1;
    }
    value = {begin, static_cast<std::size_t>(to - begin)};
    return true;
}

bool isPlainDeclaration(std::string_view text) {
    std::string_view version;
    std::string_view encoding;
    if (!consumePseudoAttribute(text, "version", version) || version != "1.0") return false;
    const bool isNamed = consumePseudoAttribute(text, "encoding", encoding);
    consumeWhiteSpace(text);
    return text.empty() && (!isNamed || equal_ignoring_case(encoding, "UTF-8"));
}

}  // namespace trv
