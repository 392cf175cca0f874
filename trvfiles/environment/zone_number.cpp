#include <trvfiles/environment/file_replacement.h>
#include <trvfiles/environment/zone_number.h>
#include <trvfiles/support/blanks.h>
#include <trvfiles/support/diagnostics.h>
#include <trvfiles/support/number_text.h>
#include <trvfiles/support/platform_sharing.h>
#include <trvfiles/support/platform_targets.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <string_view>
#include <utility>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

// 80 characters of a line and the terminator.
constexpr int line_buffer_size = 81;

bool read_line(std::FILE* file, std::string& line) {
    char buffer[line_buffer_size];
    if (std::fgets(buffer, sizeof buffer, file) == nullptr) return false;
    line = buffer;
    return true;
}

// Closes the file, too: a full disk may show only then.
bool write_line(platform::file_handle file, const std::string& line) {
    const bool is_written = std::fputs((line + '\n').c_str(), file.get()) >= 0;
    return std::fclose(file.release()) == 0 && is_written;
}

void report(std::string_view before, const char* path, std::string_view after) {
    std::string text(before);
    text += '\'';
    text += path;
    text += '\'';
    text += after;
    report_fatal(text.c_str());
}

int digit_value(char digit) {
    if (digit >= '0' && digit <= '9') return digit - '0';
    if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
    if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
    return -1;
}

// Reads as "%x" of scanf does: white space, a sign, "0x", digits. Text without digits gives 0, and
// too large a number the largest one, so every content of a counter file has a next number.
std::uint32_t hexadecimal_number(std::string_view text) {
    constexpr std::uint64_t max = 0xffffffff;
    skip_white_space(text);
    const bool negative = !text.empty() && text.front() == '-';
    if (negative || (!text.empty() && text.front() == '+')) text.remove_prefix(1);
    if (text.substr(0, 2) == "0x" || text.substr(0, 2) == "0X") text.remove_prefix(2);
    std::uint64_t number = 0;
    for (const char digit : text) {
        const int value = digit_value(digit);
        if (value < 0) break;
        number = number * 16 + static_cast<std::uint64_t>(value);
        if (number > max) return max;
    }
    return static_cast<std::uint32_t>(negative ? 0 - number : number);
}

// As "%08x", whatever the locale.
std::string zone_number_text(std::uint32_t number) {
    std::string text(8, '0');
    for (auto digit = text.rbegin(); digit != text.rend(); ++digit) {
        *digit = "0123456789abcdef"[number % 16];
        number /= 16;
    }
    return text;
}

// The file appears under its name with the whole text. EEXIST if something has the name already.
int create_file(const char* path, const std::string& text) {
    // A zone's file may be a link to a file that does not exist yet. `refused` would take the link
    // for an existing file, so it is followed first.
    std::string target = platform::native_path(path);
    if (const int failure = platform::follow_links(target); failure != 0) return failure;
    file_replacement file(target, own_temporary_name, file_replacement::existing::refused);
    return file.write_and_replace(text);
}

}  // namespace

std::optional<std::string> read_zone_number(const char* path) {
    platform::file_handle file = platform::open_for_read(path, platform::file_mode::text);
    if (file == nullptr) {
        report("Error opening file ", path, " for read access\n");
        return std::nullopt;
    }
    std::string line;
    const bool is_read = read_line(file.get(), line);
    file.reset();
    if (!is_read) {
        report("Error reading file ", path, "\n");
        return std::nullopt;
    }
    return std::string(trim_trailing(line));
}

std::optional<std::string> allocate_zone_number(const char* path) {
    platform::file_handle file = platform::open_for_update(path, platform::file_mode::text);
    if (file == nullptr) {
        report("Error opening ", path, " file\n");
        return std::nullopt;
    }
    std::string line;
    if (!read_line(file.get(), line)) {
        file.reset();
        report("Error reading ", path, " file\n");
        return std::nullopt;
    }
    const std::string number = zone_number_text(hexadecimal_number(line) + 1);
    // A line that is written after the old one would not count.
    const bool is_at_start = std::fseek(file.get(), 0, SEEK_SET) == 0;
    if (is_at_start && write_line(std::move(file), number)) return number;
    file.reset();
    // The number is not returned: the counter does not count it, so another zone would get it too.
    report("Error opening ", path, " file\n");
    return std::nullopt;
}

std::optional<std::string> create_zone_number(const char* path, const std::string& number) {
    const int failure = create_file(path, number + '\n');
    if (failure == 0) return number;
    // Another process of this zone was faster. All processes of the zone use its number.
    if (failure == EEXIST) return read_zone_number(path);
    report("Error creating ", path, " file\n");
    return std::nullopt;
}

}  // namespace trv
