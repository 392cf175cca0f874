#include <cli/progress_line.h>

#include <algorithm>
#include <string>

namespace trv::cli {

void ProgressLine::show(std::size_t done, std::size_t total) {
    constexpr std::chrono::milliseconds interval{100};
    if (columns_ == 0 || Clock::now() < next_) return;
    next_ = Clock::now() + interval;
    std::string text = std::to_string(done) + " of " + std::to_string(total) + " files";
    // A terminal wraps a line that fills its last column.
    text.resize(std::min(text.size(), static_cast<std::size_t>(columns_ - 1)));
    length_ = std::max(length_, static_cast<int>(text.size()));
    stream_ << '\r' << text << std::flush;
}

void ProgressLine::clear() {
    if (length_ == 0) return;
    // Blanks, because a console of Windows may show escape sequences as they are.
    stream_ << '\r' << std::string(static_cast<std::size_t>(length_), ' ') << '\r' << std::flush;
    length_ = 0;
}

}  // namespace trv::cli
