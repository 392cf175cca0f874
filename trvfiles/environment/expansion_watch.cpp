#include <trvfiles/environment/expansion_watch.h>
#include <trvfiles/environment/path_text.h>
#include <trvfiles/support/number_text.h>
#include <trvfiles/support/platform.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

// The lists and names are built once and never destroyed: static objects of a host may still expand
// texts during exit.

const char* environment_text(const char* name) {
    const char* value = platform::get_environment(name);
    return value == nullptr ? "" : value;
}

// Without TEMP the name is empty: the log does not open, and nothing is written.
std::string log_file_name_of_environment() {
    std::string name = environment_text("TRV_EXPAND_LOGFILE_NAME");
    if (!name.empty()) return name;
    const char* directory = platform::get_environment("TEMP");
    return directory == nullptr ? "" : std::string(directory) + "\\travik_expand_log.txt";
}

const std::string& log_file_name() {
    static const std::string& name = *new std::string(log_file_name_of_environment());
    return name;
}

const std::string& program_name() {
    constexpr std::size_t max_length = 1024;
    static const std::string& name = *[] {
        const std::string file = platform::program_file().substr(0, max_length);
        return new std::string(file.substr(file.find_last_of(path_separators) + 1));
    }();
    return name;
}

std::vector<std::string> split_watch_list(std::string_view list) {
    constexpr std::string_view separators = " |;";
    std::vector<std::string> entries;
    std::size_t begin = list.find_first_not_of(separators);
    while (begin != std::string_view::npos) {
        const std::size_t end = std::min(list.find_first_of(separators, begin), list.size());
        entries.emplace_back(list.substr(begin, end - begin));
        begin = list.find_first_not_of(separators, end);
    }
    return entries;
}

// An empty list watches nothing, and an entry anywhere in the text is a hit.
bool is_watched(const char* source) {
    static const std::vector<std::string>& entries =
        *new std::vector<std::string>(split_watch_list(environment_text("TRV_EXPAND_WATCH")));
    if (source == nullptr) return false;
    const std::string_view text = source;
    for (const std::string& entry : entries) {
        if (text.find(entry) != std::string_view::npos) return true;
    }
    return false;
}

std::string clock_text(std::time_t instant) {
    const std::tm local = platform::local_time(instant);
    std::array<char, 80> text;
    const std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%d@%H:%M:", &local);
    // Seconds have three digits and begin at 100: readers of existing logs expect them so.
    return std::string(text.data(), length) + std::to_string(local.tm_sec + 100);
}

// The state of the log. Its lock makes each line whole, and the times of the lines ascend. The
// stamp is computed once a second.
struct expansion_log {
    std::mutex writing;
    std::time_t second_of_stamp = 0;
    std::string stamp;
};

// REQUIRES: the lock of the log.
const std::string& timestamp(expansion_log& log) {
    const std::time_t now = std::time(nullptr);
    if (log.stamp.empty() || now != log.second_of_stamp) {
        log.stamp = clock_text(now);
        log.second_of_stamp = now;
    }
    return log.stamp;
}

void append_to_log(const std::string& text) {
    static expansion_log& log = *new expansion_log;
    const std::lock_guard<std::mutex> lock(log.writing);
    const std::string line = "[" + timestamp(log) + "] " + text + "\n";
    // Opened for each line, so that a log survives a crash and can be removed at any time.
    const platform::file_handle file =
        platform::open_for_append(log_file_name().c_str(), platform::file_mode::text);
    if (file != nullptr) static_cast<void>(std::fputs(line.c_str(), file.get()));
}

int configured_minimum() {
    int minimum = 0;
    std::string_view text = environment_text("TRV_EXPAND_MIN_BUFFER_SIZE");
    scan_decimal(text, minimum);
    return minimum;
}

}  // namespace

void watch_buffer_size(const char* source, std::int32_t size, string_format format) {
    // 64 bits: the absolute value of the smallest 32-bit number does not fit 32 bits.
    const std::int64_t configured = configured_minimum();
    if (configured == 0) return;
    const std::int64_t minimum =
        (configured < 0 ? -configured : configured) + (format == STRING_FORMAT_C ? 1 : 0);
    if (size >= minimum) return;

    append_to_log("MinBufferSize=" + std::to_string(minimum) + " > " + std::to_string(size) + " (" +
                  string_format_name(format) + ") " + program_name() + " expanding '" +
                  (source == nullptr ? "<nullptr>" : source) + "'");
    if (configured < 0 || is_watched(source)) platform::breakpoint_trap();
}

}  // namespace trv
