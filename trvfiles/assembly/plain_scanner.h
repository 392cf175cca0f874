#pragma once

/// @file
/// A scanner of plain XML documents.

#include <QtGlobal>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class QIODevice;

namespace trv {

/// Reads a plain XML document in blocks, element by element.
///
/// A plain document is UTF-8 and consists of an optional byte order mark, an optional declaration
/// of version 1.0 and of that encoding, elements, attributes, comments, and white space between
/// them. Values contain the five predefined entities, references to characters that XML allows, and
/// no line ends or tabs. Names are ASCII letters, digits, "_", "-" and ".". Everything else,
/// malformed documents included, is unusual: the scanner does not say what is wrong, since another
/// parser judges such documents.
///
/// The scanner reads what Qt's DOM reads: for every document that it accepts, the DOM has the same
/// elements and values. Memory: one block, and more only for a tag or a comment that does not fit.
///
/// Threads: any; an object is used by one thread at a time.
class PlainScanner {
public:
    enum class Event { elementStart, elementEnd, documentEnd, unusual };

    struct Attribute {
        std::string_view name;
        /// UTF-8, with its references resolved.
        std::string_view value;
    };

    /// Whether two names are the same. They have few characters, so a loop takes less time than a
    /// call of memcmp().
    static bool areSame(std::string_view one, std::string_view other) {
        if (one.size() != other.size()) return false;
        for (std::size_t i = 0; i < one.size(); ++i) {
            if (one[i] != other[i]) return false;
        }
        return true;
    }

    /// More attributes make an element unusual.
    static constexpr std::size_t maxAttributes = 16;

    /// @param device           read from its current position to the end that it has now; not
    ///                         sequential; has to outlive the scanner
    /// @param maxOpenElements  a document that nests more elements is unusual
    PlainScanner(QIODevice& device, std::size_t maxOpenElements);

    /// The size of the document. REQUIRES: nothing has been read yet.
    std::int64_t size() const { return unreadInDevice_; }

    /// Reads up to the next event. After documentEnd and unusual there is no further one. An
    /// element without content, "<a/>", has both events.
    Event next();

    /// The name of the element that has started; valid until the next call of next().
    std::string_view name() const { return name_; }

    /// The attributes of the element that has started, in their order; valid until the next call of
    /// next().
    const Attribute* begin() const { return attributes_.data(); }
    const Attribute* end() const { return attributes_.data() + attributeCount_; }

private:
    // A step over a part of the document. If the part continues after the block, the step returns
    // `incomplete` and is repeated from its start with more bytes.
    enum class Step { done, incomplete, unusual };

    Step start();
    Step declaration(const char* from);
    Event nextInContent();
    Step comment();
    Step startTag();
    // In the loop over the attributes, where nearly all time is spent.
    [[gnu::always_inline]] Step attribute(const char*& at);
    [[gnu::always_inline]] Step value(const char*& at, bool& hasReference);
    Step endTag();
    Event closeElement();
    bool resolveValues();
    bool hasUniqueAttributes() const;
    bool more();
    bool skipWhiteSpace();
    template <class Work>
    Step complete(Work work);

    QIODevice& device_;
    const std::size_t maxOpenElements_;
    qint64 unreadInDevice_;
    // The bytes from cursor_ to end_ are unread. Zero bytes follow them, which no plain document
    // contains: the first one ends every loop over characters.
    std::size_t capacity_;
    std::unique_ptr<char[]> buffer_;
    const char* cursor_;
    char* end_;
    bool isAtEnd_ = false;
    bool isStarted_ = false;
    bool hasRoot_ = false;
    bool isEmptyElement_ = false;

    std::string_view name_;
    std::array<Attribute, maxAttributes> attributes_;
    std::size_t attributeCount_ = 0;
    // Which of the attributes contain references, as bits.
    std::uint32_t withReferences_ = 0;

    // The names of the open elements, one after the other, and where each begins.
    std::string openNames_;
    std::vector<std::size_t> openStarts_;
};

}  // namespace trv
