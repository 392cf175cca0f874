#include <trvfiles/support/file_fault.h>

#include <system_error>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

bool is_continuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

bool is_digit(char byte) {
    return byte >= '0' && byte <= '9';
}

// Whether a comma is between two digits and is the only one in its word: "1,2,3" is a list.
bool has_decimal_comma(std::string_view text) {
    const std::size_t comma = text.find(',');
    if (comma == std::string_view::npos || comma == 0 || comma + 1 == text.size()) return false;
    const std::string_view rest = text.substr(comma + 1);
    const std::string_view word = rest.substr(0, rest.find_first_of(" \t"));
    return is_digit(text[comma - 1]) && is_digit(rest[0]) &&
           word.find(',') == std::string_view::npos;
}

}  // namespace

void clear_fault(CFileFault* fault) {
    if (fault != nullptr) *fault = {};
}

void set_fault(CFileFault* fault, CFileFault::Cause cause, std::string_view reason, int line,
               int column, std::string_view subject) {
    if (fault == nullptr) return;
    fault->cause = cause;
    fault->subject = subject;
    fault->reason = reason;
    fault->line = line;
    fault->column = column;
    fault->systemError = 0;
}

void set_system_fault(CFileFault* fault, int error) {
    if (fault == nullptr) return;
    set_fault(fault, CFileFault::Cause::system, std::generic_category().message(error));
    fault->systemError = error;
}

std::string beginning_of(std::string_view text) {
    // Notes are for display, and a value may be as long as the file.
    constexpr std::size_t max_length = 40;
    if (text.size() <= max_length) return std::string(text);
    std::size_t length = max_length;
    while (length > 0 && is_continuation(text[length]))
        --length;
    return std::string(text.substr(0, length)) + "...";
}

std::string quoted_beginning(std::string_view text) {
    return '"' + beginning_of(text) + '"';
}

std::string quoted_number(std::string_view text) {
    return quoted_beginning(text) +
           (has_decimal_comma(text) ? " has a decimal comma, not a point" : "");
}

}  // namespace trv
