#include <trvfiles/support/file_fault.h>

#include <system_error>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

bool is_continuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

}  // namespace

void clear_fault(CFileFault* fault) {
    if (fault != nullptr) *fault = {};
}

void set_fault(CFileFault* fault, std::string_view reason, int line, int column) {
    if (fault == nullptr) return;
    fault->reason = reason;
    fault->line = line;
    fault->column = column;
    fault->systemError = 0;
}

void set_system_fault(CFileFault* fault, int error) {
    if (fault == nullptr) return;
    set_fault(fault, std::generic_category().message(error));
    fault->systemError = error;
}

std::string quoted_beginning(std::string_view text) {
    // A note is to be read, and a value may be as long as the file.
    constexpr std::size_t max_length = 40;
    std::string result = "\"";
    if (text.size() <= max_length) return result.append(text) + '"';
    std::size_t length = max_length;
    while (length > 0 && is_continuation(text[length]))
        --length;
    return result.append(text.substr(0, length)) + "...\"";
}

}  // namespace trv
