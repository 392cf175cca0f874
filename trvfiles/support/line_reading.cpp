#include <trvfiles/support/line_reading.h>

#include <algorithm>
#include <cstring>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

}  // namespace

// fgets() does not tell how much it has read, and a NUL of the file looks like the end of the text.
// So the buffer is first filled with bytes that are neither: the first newline is one of the file,
// and without one the last zero is the terminator.
std::size_t read_line(std::FILE* stream, char* buffer, std::size_t most) {
    constexpr std::size_t longest_step = 1023;
    // Most lines are shorter.
    std::size_t step = 127;
    std::size_t count = 0;
    while (count < most) {
        char* const start = buffer + count;
        const std::size_t size = std::min(most - count, step) + 1;
        step = longest_step;
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

}  // namespace trv
