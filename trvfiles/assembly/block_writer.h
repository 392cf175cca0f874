#pragma once

/// @file
/// Text that is written in blocks.

#include <cstddef>
#include <cstring>
#include <functional>
#include <memory>
#include <string_view>
#include <utility>

namespace trv {

/// Collects pieces of text and passes them on in blocks of 64 KiB.
///
/// Threads: an object is used by one thread at a time.
class BlockWriter {
public:
    /// Takes a block, and returns whether it has written all of it.
    using Write = std::function<bool(std::string_view)>;

    explicit BlockWriter(Write write)
        : write_(std::move(write)), block_(new char[blockSize]), next_(block_.get()) {}

    /// Appends a literal. Its size is known to the compiler, which copies it without a call.
    template <std::size_t size>
    void append(const char (&literal)[size]) {
        std::memcpy(room(size), literal, size - 1);
        next_ += size - 1;
    }

    void append(std::string_view text);

    /// Appends blanks.
    void indent(std::size_t count);

    /// Room for a piece of text that `advance()` ends.
    ///
    /// @param size  at most 64 KiB
    char* room(std::size_t size) {
        if (size > free()) pass();
        return next_;
    }

    /// @param end  of what has been written from room() on
    void advance(const char* end) { next_ += end - next_; }

    /// Whether a block has not been written. Everything after it is dropped.
    bool hasFailed() const { return hasFailed_; }

    /// Passes the last block on.
    ///
    /// @return whether all blocks have been written
    bool finish();

private:
    static constexpr std::size_t blockSize = 65536;

    std::size_t free() const { return static_cast<std::size_t>(block_.get() + blockSize - next_); }
    void pass();

    const Write write_;
    const std::unique_ptr<char[]> block_;
    char* next_;
    bool hasFailed_ = false;
};

}  // namespace trv
