#include <trvfiles/environment/expansion_buffers.h>
#include <trvfiles/environment/expansion_watch.h>
#include <trvfiles/environment/variable_expansion.h>
#include <trvfiles/support/diagnostics.h>
#include <trvfiles/support/platform.h>
#include <trvfiles/support/text_field.h>

#include <cstring>
#include <string>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

// `path` normalises separators and is watched; `text` does neither.
enum class kind { path, text };

std::string reason_text(int code, std::int32_t size) {
    switch (code) {
        case EXP_INVALID_ARGUMENT:
            return " - invalid argument";
        case EXP_BUFFER_TOO_SMALL:
            return " - buffer size " + std::to_string(size) + " too small";
        case EXP_SYNTAX_ERROR:
            return " - syntax error";
        default:
            return "";
    }
}

// Programs search the output of a host for these texts, so they stay as they are. The variable
// TRV_BUFFER_TOO_SMALL_OPTION = crash stops a process under a debugger at the caller whose buffer
// is too small.
void report_failure(const std::string* source, int code, std::int32_t size) {
    const std::string quoted = source == nullptr ? "<nullptr>" : '"' + *source + '"';
    const std::string message =
        "_Expand(" + quoted + ") = error " + std::to_string(code) + reason_text(code, size);
    report_error(message.c_str());
    if (code != EXP_BUFFER_TOO_SMALL) return;
    const char* option = platform::get_environment("TRV_BUFFER_TOO_SMALL_OPTION");
    if (option != nullptr && std::strcmp(option, "crash") == 0) platform::breakpoint_trap();
}

bool fits(const std::string& result, std::int32_t size, string_format format) {
    return expansion_space(result.size(), format) <= size;
}

// Expands for a buffer of the caller's, and reports a failure. The buffer is written by the callers
// of this function, and only if the whole result fits: source and buffer may overlap.
//
// @param source  a copy of the caller's, which may be a looked-up value that the lookups of its own
//                expansion overwrite; nullptr if the caller gave none
int expand_for(const char* destination, std::int32_t size, string_format format, kind expanded,
               const std::string* source, std::string& result) {
    const char* text = source == nullptr ? nullptr : source->c_str();
    int code = EXP_INVALID_ARGUMENT;
    // The watch comes before every check: it also logs callers that pass nullptr.
    if (expanded == kind::path) watch_buffer_size(text, size, format);
    if (destination != nullptr) {
        code =
            expanded == kind::path ? expand_path(text, &result) : expand_variables(text, &result);
    }
    if (!is_expand_error(code) && !fits(result, size, format)) code = EXP_BUFFER_TOO_SMALL;
    if (is_expand_error(code)) report_failure(source, code, size);
    return code;
}

int expand_into_buffer(kind expanded, const char* source, char* destination, std::int32_t size) {
    const std::string text = source == nullptr ? "" : source;
    std::string result;
    const int code = expand_for(destination, size, STRING_FORMAT_C, expanded,
                                source == nullptr ? nullptr : &text, result);
    if (destination == nullptr || is_expand_error(code)) return code;
    std::memcpy(destination, result.c_str(), result.size() + 1);
    return code;
}

void expand_into_field(kind expanded, const char* source, std::int32_t source_length,
                       char* destination, std::int32_t destination_length, std::int32_t* code) {
    const std::string text(field_text(source, source_length));
    std::string result;
    const int status = expand_for(destination, destination_length, STRING_FORMAT_F, expanded,
                                  source == nullptr ? nullptr : &text, result);
    if (!is_expand_error(status)) fill_field(destination, destination_length, result);
    if (code != nullptr) *code = status;
}

}  // namespace

int _Expand(const char* source, char* destination, std::int32_t size) {
    return expand_into_buffer(kind::path, source, destination, size);
}

int _ExpandInPlace(char* text, std::int32_t size) {
    return expand_into_buffer(kind::path, text, text, size);
}

int _ExpandText(char* text, std::int32_t size) {
    return expand_into_buffer(kind::text, text, text, size);
}

void _ExpandFixed(const char* source, std::int32_t source_length, char* destination,
                  std::int32_t destination_length, std::int32_t* code) {
    expand_into_field(kind::path, source, source_length, destination, destination_length, code);
}

void _ExpandFixed(char* field, std::int32_t length, std::int32_t* code) {
    expand_into_field(kind::path, field, length, field, length, code);
}

void _ExpandTextFixed(const char* source, std::int32_t source_length, char* destination,
                      std::int32_t destination_length, std::int32_t* code) {
    expand_into_field(kind::text, source, source_length, destination, destination_length, code);
}

void _ExpandTextFixed(char* field, std::int32_t length, std::int32_t* code) {
    expand_into_field(kind::text, field, length, field, length, code);
}

}  // namespace trv
