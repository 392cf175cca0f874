#pragma once

/// @file
/// The sources of lines for the readers of message files.
///
/// Threads: a source is used by one thread at a time.

#include <trvfiles/export.h>

#include <cstdint>
#include <cstdio>

/// A source of lines of 8-bit text.
///
/// The destructor is not virtual: an object is never deleted through this class.
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): hosts derive from this layout.
class TRV_EXPORT VCL8BLineSource {
public:
    /// The number of the line that is read next, from 1; 0 once the end has been reached.
    virtual std::uint64_t lineNumber() const = 0;

    /// Reads one line, its newline included.
    ///
    /// @param buffer  receives the first size - 1 characters of the line and a terminator; the rest
    ///                of a longer line is consumed and lost
    /// @param size    of the buffer, in bytes, at least 2
    /// @return the number of characters consumed, including the newline; 0 at the end, and `size`
    ///         or more if the line was cut
    virtual std::uint64_t readLine(char* buffer, std::int32_t size) = 0;
};

/// Reads lines from a standard file.
///
/// A zero byte in a line ends the text in the buffer, but not the line.
class TRV_EXPORT CL8BFile : public VCL8BLineSource {
public:
    /// Opens a file for reading in text mode and closes it when the object is destroyed. If the
    /// name is nullptr, or the file is missing or a directory, the source is at its end from the
    /// start.
    explicit CL8BFile(const char* fileName);

    /// Reads from a stream that the caller owns; nullptr is a source at its end. The caller closes
    /// the stream after the last use of the source.
    explicit CL8BFile(std::FILE* stream);

    CL8BFile(const CL8BFile&) = delete;
    CL8BFile& operator=(const CL8BFile&) = delete;

    /// 0 without a stream, and as soon as a read has reached the end of the file: at once after a
    /// last line without a newline, with the next readLine() after one with a newline.
    std::uint64_t lineNumber() const override;

    /// See VCL8BLineSource. If the buffer is full before a newline, the end of the file counts as
    /// one character too. Without a stream or a buffer, or with a size below 2, nothing is read and
    /// the result is 0; the line counter still increases.
    std::uint64_t readLine(char* buffer, std::int32_t size) override;

    virtual ~CL8BFile();

private:
    struct Reader;
    Reader* reader_;  // nullptr if there was no memory for it
};
