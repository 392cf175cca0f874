#pragma once

/// @file
/// What a command writes only if a person looks at a terminal.

#include <chrono>
#include <cstddef>
#include <ostream>

namespace trv::cli {

/// A line on a terminal that says how far a command is. It appears after a second and is replaced
/// while the command goes on.
class ProgressLine {
public:
    /// @param columns  of the terminal; 0 if there is none: then nothing is ever printed
    ProgressLine(std::ostream& stream, int columns) : stream_(stream), columns_(columns) {}
    ~ProgressLine() { clear(); }
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    /// Prints "1234 of 10000 files", if the last line is a tenth of a second old.
    void show(std::size_t done, std::size_t total);

    /// Removes the line, so that something else can be printed.
    void clear();

private:
    using Clock = std::chrono::steady_clock;

    std::ostream& stream_;
    const int columns_;
    Clock::time_point next_ = Clock::now() + std::chrono::seconds(1);
    int length_ = 0;
};

}  // namespace trv::cli
