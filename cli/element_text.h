#pragma once

/// @file
/// A stream for JSON in an element of a page.

#include <ostream>
#include <streambuf>

namespace trv::cli {

/// Passes JSON on with each "<" as "\u003c": then no text can end the element or begin a comment.
/// In JSON a "<" is only in strings.
class ElementText : public std::streambuf {
public:
    /// @param out  has to live as long as the object
    explicit ElementText(std::ostream& out) : out_(out) {}

protected:
    std::streamsize xsputn(const char* text, std::streamsize length) override;
    int_type overflow(int_type character) override;

private:
    std::ostream& out_;
};

}  // namespace trv::cli
