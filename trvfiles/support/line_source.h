#pragma once

/// @file
/// Where the readers of message files take their lines from.
///
/// Threads: a source is used by one thread at a time.

#include <trvfiles/export.h>

#include <cstdint>
#include <cstdio>

/// A supplier of lines of 8-bit text.
///
/// It has no virtual destructor: an object is deleted as what it is, never through this class.
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): hosts derive from this layout.
class TRV_EXPORT VCL8BLineSource {
public:
    /// The number of the line that is read next, counted from 1; 0 once the end has been met.
    virtual std::uint64_t lineNumber() const = 0;

    /// Reads one line, its newline included.
    ///
    /// @param buffer  receives the first size - 1 characters of the line and a terminator; the rest
    ///                of a longer line is consumed and lost
    /// @param size    bytes that the buffer holds, at least 2
    /// @return the number of characters consumed, the newline counted, so that 0 means the end and
    ///         a value of `size` or more that the line was cut
    virtual std::uint64_t readLine(char* buffer, std::int32_t size) = 0;
};

/// Reads lines from a standard file.
///
/// A NUL in a line ends the text in the buffer, but not the line.
class TRV_EXPORT CL8BFile : public VCL8BLineSource {
public:
    /// Opens a file for reading in text mode and closes it with the object. A null name, a missing
    /// file or a directory leaves the source without a stream: at its end from the start.
    explicit CL8BFile(const char* fileName);

    /// Reads from a stream that stays the caller's; null for none. The caller closes it once the
    /// source is no longer used.
    explicit CL8BFile(std::FILE* stream);

    CL8BFile(const CL8BFile&) = delete;
    CL8BFile& operator=(const CL8BFile&) = delete;

    /// 0 without a stream, and as soon as a read has run into the end of the file: after a last
    /// line without newline at once, after one with a newline by the next readLine().
    std::uint64_t lineNumber() const override;

    /// See VCL8BLineSource. Where the buffer is full before a newline, the end of the file behind
    /// it counts one too. Without a stream or a buffer, or with a size below 2, nothing is read and
    /// the result is 0; the line counter moves on all the same.
    std::uint64_t readLine(char* buffer, std::int32_t size) override;

    virtual ~CL8BFile();

private:
    struct Reader;
    Reader* reader_;  // none where there was no memory for it
};
