#include <trvfiles/environment/guards.h>
#include <trvfiles/environment/path_text.h>
#include <trvfiles/environment/variable_expansion.h>
#include <trvfiles/environment/variables_internal.h>
#include <trvfiles/environment/work_zone.h>
#include <trvfiles/environment/zone_number.h>
#include <trvfiles/support/diagnostics.h>
#include <trvfiles/support/file_system.h>
#include <trvfiles/support/platform.h>

#include <cstring>
#include <optional>
#include <string>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

constexpr char directory_variable[] = "TRVTMPDIR";
// A path, and the "/" and the number of a zone after it.
constexpr std::size_t directory_size = path_buffer_size + 12;

// The work zone of this process.
struct work_zone {
    // A plain buffer, because the text is returned until the process ends, during exit too. Empty
    // until it has been computed.
    char directory[directory_size] = "";
    bool is_computing = false;
};
work_zone zone;

// Expands a path into a buffer. Callers accept EXP_OK only: with an undefined name replaced, the
// path would lead to another place.
int expand_fully(const char* text, char* path, std::size_t size) {
    return _Expand(text, path, static_cast<std::int32_t>(size));
}

// The counter of the installation. TRVCONF goes first, and TRVHOME/client/trvconf is for
// installations that do not define it.
bool expand_counter_path(char* path) {
    constexpr char configured[] = "$TRVCONF/workzone.num";
    const int code = expand_fully(configured, path, path_buffer_size);
    if (code == EXP_OK) return true;
    if (trace_is_seen()) {
        const std::string text =
            std::string(configured) + " expansion error : " + std::to_string(code);
        report_trace(text.c_str());
    }
    if (expand_fully("$TRVHOME/client/trvconf/workzone.num", path, path_buffer_size) == EXP_OK)
        return true;
    report_fatal("TRVHOME is not defined\n");
    return false;
}

// The counter moves on before the zone has its number: a failure loses a number, but no two zones
// get the same one.
std::optional<std::string> new_zone_number(const char* zone_file) {
    char counter[path_buffer_size];
    if (!expand_counter_path(counter)) return std::nullopt;
    const std::optional<std::string> number = allocate_zone_number(counter);
    return number ? create_zone_number(zone_file, *number) : std::nullopt;
}

std::optional<std::string> zone_number() {
    char zone_file[path_buffer_size];
    if (expand_fully("$TRVZONE/workzone.num", zone_file, sizeof zone_file) != EXP_OK) {
        report_fatal("TRVZONE is not defined\n");
        return std::nullopt;
    }
    if (platform::path_exists(zone_file)) return read_zone_number(zone_file);
    return new_zone_number(zone_file);
}

bool compute_directory() {
    const std::optional<std::string> number = zone_number();
    if (!number) return false;
    // Copied into the zone only when it is complete: an observer of the expansion may ask for the
    // directory and must not find half of it.
    char directory[directory_size];
    const std::string text = "$TRVTMP/" + *number;
    if (expand_fully(text.c_str(), directory, sizeof directory) != EXP_OK) return false;
    std::memcpy(zone.directory, directory, sizeof directory);
    return true;
}

void make_missing_directory(const char* directory) {
    if (is_directory(directory) || make_directory(directory) == 0) return;
    // Another process of this zone may have made it since the first question.
    if (is_directory(directory)) return;
    const std::string text =
        std::string("Could not create temporary directory '") + directory + "'";
    report_fatal(text.c_str());
}

}  // namespace

const char* get_temporary_directory() {
    const char* given = platform::get_environment(directory_variable);
    if (given != nullptr && *given != '\0') return given;
    // TRVZONE or TRVTMP may refer to "TMP" themselves: that would never end.
    if (zone.is_computing) return nullptr;
    const running_guard guard(zone.is_computing);
    if (*zone.directory == '\0' && !compute_directory()) return nullptr;
    make_missing_directory(zone.directory);
    return zone.directory;
}

void set_temporary_directory(const char* directory) {
    platform::set_environment(directory_variable, directory);
}

zone_hook set_zone_hook(zone_hook hook) {
    return exchange_zone_hook({hook, nullptr, nullptr}).plain;
}

void set_context_zone_hook(context_zone_hook hook, void* context) {
    exchange_zone_hook({nullptr, hook, context});
}

}  // namespace trv
