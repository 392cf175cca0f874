#pragma once

/// @file
/// Output with a line or a value for each component of an assembly: one text that is appended to
/// and passed on in blocks. A QString for each number would take more time than reading the
/// assembly.
///
/// Threads: any.

#include <QString>

#include <ostream>
#include <string>

namespace trv::cli {

/// Text on its way to a stream.
class OutputBuffer {
public:
    /// @param out  has to live as long as the buffer, which passes on the rest when it is destroyed
    explicit OutputBuffer(std::ostream& out) : out_(out) {}
    ~OutputBuffer() { flush(); }
    OutputBuffer(const OutputBuffer&) = delete;
    OutputBuffer& operator=(const OutputBuffer&) = delete;

    /// What the stream has not got yet, to be appended to.
    std::string& text() { return text_; }

    /// To be called after each line or value: passes the text on if it is a large block.
    void endPiece();
    void flush();

private:
    std::ostream& out_;
    std::string text_;
};

void appendUtf8(std::string& out, const QString& text);
void appendInteger(std::string& out, long long value);

/// The text of numberText().
void appendNumber(std::string& out, double value);

/// The text of roundedText().
void appendRounded(std::string& out, double value);

/// Three rounded numbers with blanks between them.
void appendRoundedVector(std::string& out, const double vector[3]);

/// ", axes " and three rounded vectors with "/" between them.
void appendAxes(std::string& out, const double vec1[3], const double vec2[3], const double vec3[3]);

/// The number as QJsonDocument writes it; as a string if JSON cannot hold it.
void appendJsonNumber(std::string& out, double value);

}  // namespace trv::cli
