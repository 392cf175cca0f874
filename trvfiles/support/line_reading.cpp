#include <trvfiles/support/line_reading.h>

#include <algorithm>
#include <cstring>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

}  // namespace

// fgets() does not return how much it has read, and a zero byte of the file looks like the end of
// the text. So the buffer is first filled with ones. Then the first newline is from the file, and
// if there is none, the last zero byte is the terminator.
std::size_t read_line(std::FILE* stream, char* buffer, std::size_t max) {
    constexpr std::size_t max_step = 1023;
    // Most lines are shorter, so most of them cost one short fill.
    std::size_t step = 127;
    std::size_t count = 0;
    while (count < max) {
        char* const start = buffer + count;
        const std::size_t size = std::min(max - count, step) + 1;
        step = max_step;
        std::memset(start, 1, size);
        if (std::fgets(start, static_cast<int>(size), stream) == nullptr) break;
        const void* newline = std::memchr(start, '\n', size);
        if (newline != nullptr) {
            return count + static_cast<std::size_t>(static_cast<const char*>(newline) - start) + 1;
        }
        std::size_t length = size - 1;
        while (start[length] != '\0')
            --length;
        count += length;
        if (length < size - 1) break;
    }
    buffer[count] = '\0';
    return count;
}

std::size_t read_line(std::string_view& text, char* buffer, std::size_t max) {
    std::string_view line = text.substr(0, max);
    const std::size_t newline = line.find('\n');
    if (newline != std::string_view::npos) line = line.substr(0, newline + 1);
    std::copy(line.begin(), line.end(), buffer);
    buffer[line.size()] = '\0';
    text.remove_prefix(line.size());
    return line.size();
}

}  // namespace trv
