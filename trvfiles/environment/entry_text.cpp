#include <trvfiles/environment/entry_text.h>
#include <trvfiles/support/ascii_case.h>
#include <trvfiles/support/blanks.h>

#include <algorithm>
#include <charconv>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

// The offset after the first "=", or 0 for a text without one: all of it is its value.
std::size_t value_start(std::string_view text) {
    const std::size_t sign = text.find('=');
    return sign == std::string_view::npos ? 0 : sign + 1;
}

// Moves a text up to and with its next single "+" from `text` to `copy`. Pairs are recognised from
// the left: in "+++" the third "+" is a single one.
//
// @return whether there was one; otherwise the whole text has been moved
bool move_to_single_plus(std::string_view& text, std::string& copy) {
    std::size_t plus = text.find('+');
    while (plus != std::string_view::npos && text.substr(plus + 1, 1) == "+")
        plus = text.find('+', plus + 2);
    const bool found = plus != std::string_view::npos;
    const std::size_t copied = found ? plus + 1 : text.size();
    copy += text.substr(0, copied);
    text.remove_prefix(copied);
    return found;
}

// Whether the text before the "=" of an entry is the name, with blanks around it. One pass without
// a copy: a lookup compares names here once for each hit of its index. The "=" that every entry has
// ends each loop, so no length is needed.
//
// @param same  compares a character of the entry with one of the name
template <class Same>
bool begins_with_name(const char* entry, std::string_view name, Same same) {
    while (is_blank(*entry))
        ++entry;
    for (const char c : name) {
        // The name of an entry ends at the "=" and has none in it.
        if (*entry == '=' || !same(*entry, c)) return false;
        ++entry;
    }
    // A name that ends in a blank is no name of an entry: those are trimmed.
    const bool ends_in_blank = !name.empty() && is_blank(name.back());
    while (is_blank(*entry))
        ++entry;
    return *entry == '=' && !ends_in_blank;
}

}  // namespace

bool is_entry(std::string_view text) {
    return text.find('=') != std::string_view::npos;
}

std::string_view entry_name(std::string_view text) {
    return trim(text.substr(0, text.find('=')));
}

bool is_named(const char* entry, std::string_view name) {
    return begins_with_name(entry, name, [](char a, char b) { return a == b; });
}

bool is_named_ignoring_case(const char* entry, std::string_view name) {
    return begins_with_name(entry, name,
                            [](char a, char b) { return fold_case(a) == fold_case(b); });
}

std::string_view entry_value(std::string_view text) {
    return trim_leading(text.substr(value_start(text)));
}

bool read_reference(std::string_view text, std::int32_t& offset) {
    if (text.size() < reference_length || text.substr(0, 2) != "+(") return false;
    if (text[reference_length - 1] != ')') return false;
    const std::string_view digits = text.substr(2, reference_length - 3);
    std::uint32_t read = 0;
    const std::from_chars_result result =
        std::from_chars(digits.data(), digits.data() + digits.size(), read, 16);
    if (result.ptr != digits.data() + digits.size()) return false;
    offset = read > INT32_MAX ? -1 : static_cast<std::int32_t>(read);
    return true;
}

std::string offset_text(std::int32_t offset) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text(8, '0');
    auto rest = static_cast<std::uint32_t>(offset);
    for (auto digit = text.rbegin(); digit != text.rend(); ++digit, rest /= 16)
        *digit = digits[rest % 16];
    return text;
}

std::string with_references(std::string_view text, std::int32_t offset) {
    std::string changed(text.substr(0, value_start(text)));
    text.remove_prefix(changed.size());
    const std::string reference = "(" + offset_text(offset) + ")";
    while (move_to_single_plus(text, changed))
        changed += reference;
    return changed;
}

std::string without_references(std::string_view text) {
    std::string changed(text.substr(0, value_start(text)));
    text.remove_prefix(changed.size());
    while (move_to_single_plus(text, changed)) {
        const std::size_t closer = text.find(')');
        if (closer == std::string_view::npos) break;
        text.remove_prefix(closer + 1);
    }
    changed += text;
    return changed;
}

}  // namespace trv
