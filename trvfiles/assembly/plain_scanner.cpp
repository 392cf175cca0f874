#include <trvfiles/assembly/plain_scanner.h>
#include <trvfiles/assembly/plain_syntax.h>
#include <trvfiles/assembly/xml_characters.h>

#include <QIODevice>

#include <algorithm>
#include <cstring>
#include <utility>

namespace trv {
namespace {

constexpr std::size_t blockSize = 65536;
// A tag or a comment that is longer makes a document unusual.
constexpr std::size_t maxBufferSize = 16 * blockSize;

// How many bytes from the last one on may be compared at once.
constexpr std::size_t readAhead = 8;

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

enum CharacterClass : unsigned char {
    nameStart = 1,
    nameRest = 2,
    whiteSpace = 4,
    // Ends the plain part of a value: quotes, "&", "<", control characters, bytes from 128 on.
    valueEnd = 8,
    // The same for a comment: "-", control characters but white space, bytes from 128 on.
    commentEnd = 16,
};

constexpr std::array<unsigned char, 256> characterClasses() {
    std::array<unsigned char, 256> classes = {};
    for (unsigned c = 0; c < 256; ++c) {
        const bool isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
        const bool isDigit = c >= '0' && c <= '9';
        const bool isWhite = c == ' ' || c == '\t' || c == '\n' || c == '\r';
        unsigned char classOf = 0;
        if (isLetter) classOf |= nameStart;
        if (isLetter || isDigit || c == '-' || c == '.') classOf |= nameRest;
        if (isWhite) classOf |= whiteSpace;
        if (c < ' ' || c >= 128 || c == '"' || c == '\'' || c == '&' || c == '<') {
            classOf |= valueEnd;
        }
        if ((c < ' ' && !isWhite) || c >= 128 || c == '-') classOf |= commentEnd;
        classes[c] = classOf;
    }
    return classes;
}

constexpr std::array<unsigned char, 256> classes = characterClasses();

bool is(char c, CharacterClass wanted) {
    return (classes[static_cast<unsigned char>(c)] & wanted) != 0;
}

template <class Pointer>
Pointer skip(Pointer from, CharacterClass skipped) {
    while (is(*from, skipped))
        ++from;
    return from;
}

// Most white space is the indentation of a line, so blanks are compared eight and four at a time.
// The zero bytes after the last one keep every comparison in the buffer.
const char* skipWhite(const char* from) {
    constexpr char blanks[] = "        ";
    static_assert(sizeof blanks - 1 == readAhead);
    while (is(*from, whiteSpace)) {
        ++from;
        while (std::memcmp(from, blanks, readAhead) == 0)
            from += readAhead;
        if (std::memcmp(from, blanks, readAhead / 2) == 0) from += readAhead / 2;
    }
    return from;
}

template <class Pointer>
Pointer skipUntil(Pointer from, CharacterClass stop) {
    while (!is(*from, stop))
        ++from;
    return from;
}

}  // namespace

PlainScanner::PlainScanner(QIODevice& device, std::size_t maxOpenElements)
    : device_(device),
      maxOpenElements_(maxOpenElements),
      unreadInDevice_(std::max(device.size() - device.pos(), qint64{0})),
      capacity_(std::min(blockSize, static_cast<std::size_t>(unreadInDevice_))),
      buffer_(new char[capacity_ + readAhead]),
      cursor_(buffer_.get()),
      end_(buffer_.get()) {
    // Few documents nest more elements.
    constexpr std::size_t usualNesting = 16;
    std::memset(end_, 0, readAhead);
    openStarts_.reserve(usualNesting);
}

// Reads the next bytes after those that are unread, which move to the front of the buffer. The end
// of the device is known by its size: QFile seeks and reads once more to find out that there is
// nothing.
//
// @return false at the end of the document, if a read fails, and if the unread bytes fill the
//         largest buffer
bool PlainScanner::more() {
    if (isAtEnd_) return false;
    const auto unread = static_cast<std::size_t>(end_ - cursor_);
    if (unread == capacity_) {
        if (unread >= maxBufferSize) return false;
        std::unique_ptr<char[]> larger(new char[2 * unread + readAhead]);
        std::memcpy(larger.get(), cursor_, unread);
        buffer_ = std::move(larger);
        capacity_ = 2 * unread;
    } else {
        std::memmove(buffer_.get(), cursor_, unread);
    }
    cursor_ = buffer_.get();
    char* const room = buffer_.get() + unread;
    const auto free = static_cast<qint64>(capacity_ - unread);
    const qint64 count = std::max(device_.read(room, std::min(free, unreadInDevice_)), qint64{0});
    unreadInDevice_ -= count;
    isAtEnd_ = unreadInDevice_ == 0;
    end_ = room + count;
    std::memset(end_, 0, readAhead);
    return count > 0;
}

template <class Work>
PlainScanner::Step PlainScanner::complete(Work work) {
    Step step = work();
    while (step == Step::incomplete && !isAtEnd_) {
        const bool isTooLong = !more() && !isAtEnd_;
        step = isTooLong ? Step::unusual : work();
    }
    return step;
}

// @return whether there is a character after the white space
bool PlainScanner::skipWhiteSpace() {
    do {
        cursor_ = skipWhite(cursor_);
    } while (cursor_ == end_ && more());
    return cursor_ != end_;
}

PlainScanner::Step PlainScanner::start() {
    constexpr std::string_view opening = "<?xml";
    constexpr std::size_t maxBeginning = byteOrderMark.size() + opening.size();
    const std::string_view unread(cursor_, static_cast<std::size_t>(end_ - cursor_));
    if (unread.size() < maxBeginning && !isAtEnd_) return Step::incomplete;
    const bool hasMark = unread.substr(0, byteOrderMark.size()) == byteOrderMark;
    const std::string_view text = unread.substr(hasMark ? byteOrderMark.size() : 0);
    if (text.substr(0, opening.size()) != opening) {
        cursor_ = end_ - text.size();
        return Step::done;
    }
    return declaration(text.data() + opening.size());
}

PlainScanner::Step PlainScanner::declaration(const char* from) {
    constexpr std::string_view closing = "?>";
    const auto size = static_cast<std::size_t>(end_ - from);
    const std::size_t length = std::string_view(from, size).find(closing);
    if (length == std::string_view::npos) return Step::incomplete;
    if (!isPlainDeclaration({from, length})) return Step::unusual;
    cursor_ = from + length + closing.size();
    return Step::done;
}

PlainScanner::Event PlainScanner::next() {
    if (isEmptyElement_) return closeElement();
    if (!isStarted_) {
        isStarted_ = true;
        if (complete([this] { return start(); }) != Step::done) return Event::unusual;
    }
    return nextInContent();
}

PlainScanner::Event PlainScanner::nextInContent() {
    while (skipWhiteSpace()) {
        // Text between elements is unusual. The two characters decide which part follows.
        if (end_ - cursor_ < 2 && !more()) return Event::unusual;
        if (cursor_[0] != '<') return Event::unusual;
        if (cursor_[1] == '!') {
            if (complete([this] { return comment(); }) != Step::done) return Event::unusual;
            continue;
        }
        if (cursor_[1] == '/') {
            if (complete([this] { return endTag(); }) != Step::done) return Event::unusual;
            return closeElement();
        }
        const bool isAllowed = openStarts_.empty() ? !hasRoot_ : true;
        if (!isAllowed || openStarts_.size() == maxOpenElements_) return Event::unusual;
        if (complete([this] { return startTag(); }) != Step::done) return Event::unusual;
        if (withReferences_ != 0 && !resolveValues()) return Event::unusual;
        hasRoot_ = true;
        openStarts_.push_back(openNames_.size());
        openNames_ += name_;
        return Event::elementStart;
    }
    // Not at the end of the device if a read failed or the file has shrunk.
    const bool isComplete = isAtEnd_ && hasRoot_ && openStarts_.empty();
    return isComplete ? Event::documentEnd : Event::unusual;
}

PlainScanner::Step PlainScanner::comment() {
    constexpr std::string_view opening = "<!--";
    const auto unread = static_cast<std::size_t>(end_ - cursor_);
    if (unread < opening.size()) return Step::incomplete;
    if (std::string_view(cursor_, opening.size()) != opening) return Step::unusual;
    const char* at = cursor_ + opening.size();
    for (;;) {
        at = skipUntil(at, commentEnd);
        if (*at == '-') {
            if (end_ - at < 3) return Step::incomplete;
            if (at[1] != '-') {
                ++at;
                continue;
            }
            if (at[2] != '>') return Step::unusual;
            cursor_ = at + 3;
            return Step::done;
        }
        if (at == end_) return Step::incomplete;
        const int length = utf8CharacterLength(at);
        if (length == 0) return end_ - at < 4 && !isAtEnd_ ? Step::incomplete : Step::unusual;
        at += length;
    }
}

// @param at  on the quote that begins the value, and on the one that ends it afterwards
inline PlainScanner::Step PlainScanner::value(const char*& at, bool& hasReference) {
    const char quote = *at++;
    for (;;) {
        at = skipUntil(at, valueEnd);
        if (*at == quote) return Step::done;
        if (*at == '"' || *at == '\'') {
            ++at;
        } else if (*at == '&') {
            hasReference = true;
            ++at;
        } else if (at == end_) {
            return Step::incomplete;
        } else {
            const int length = utf8CharacterLength(at);
            if (length == 0) return end_ - at < 4 && !isAtEnd_ ? Step::incomplete : Step::unusual;
            at += length;
        }
    }
}

inline PlainScanner::Step PlainScanner::attribute(const char*& at) {
    if (!is(*at, nameStart) || attributeCount_ == maxAttributes) return Step::unusual;
    const char* const nameEnd = skip(at, nameRest);
    if (end_ - nameEnd < 2) return Step::incomplete;
    if (nameEnd[0] != '=' || (nameEnd[1] != '"' && nameEnd[1] != '\'')) return Step::unusual;
    Attribute& attribute = attributes_[attributeCount_];
    attribute.name = {at, static_cast<std::size_t>(nameEnd - at)};
    const char* const open = nameEnd + 1;
    at = open;
    bool hasReference = false;
    const Step step = value(at, hasReference);
    if (step != Step::done) return step;
    attribute.value = {open + 1, static_cast<std::size_t>(at - open - 1)};
    if (hasReference) withReferences_ |= 1U << attributeCount_;
    ++attributeCount_;
    ++at;
    return Step::done;
}

PlainScanner::Step PlainScanner::startTag() {
    attributeCount_ = 0;
    withReferences_ = 0;
    const char* at = cursor_ + 1;
    if (!is(*at, nameStart)) return Step::unusual;
    const char* const nameEnd = skip(at, nameRest);
    name_ = {at, static_cast<std::size_t>(nameEnd - at)};
    at = nameEnd;
    for (;;) {
        const char* const afterSpace = skip(at, whiteSpace);
        const bool hasSpace = afterSpace != at;
        at = afterSpace;
        if (*at == '>' || (*at == '/' && at[1] == '>')) {
            isEmptyElement_ = *at == '/';
            cursor_ = at + (isEmptyElement_ ? 2 : 1);
            return hasUniqueAttributes() ? Step::done : Step::unusual;
        }
        if (at == end_ || at + 1 == end_) return Step::incomplete;
        if (!hasSpace) return Step::unusual;
        const Step step = attribute(at);
        if (step != Step::done) return step;
    }
}

PlainScanner::Step PlainScanner::endTag() {
    if (openStarts_.empty()) return Step::unusual;
    const std::string_view open = std::string_view(openNames_).substr(openStarts_.back());
    const auto unread = static_cast<std::size_t>(end_ - cursor_);
    if (unread < 2 + open.size() + 1) return Step::incomplete;
    const char* const nameBegin = cursor_ + 2;
    if (!areSame({nameBegin, open.size()}, open)) return Step::unusual;
    const char* const at = skip(nameBegin + open.size(), whiteSpace);
    if (at == end_) return Step::incomplete;
    if (*at != '>') return Step::unusual;
    cursor_ = at + 1;
    return Step::done;
}

PlainScanner::Event PlainScanner::closeElement() {
    isEmptyElement_ = false;
    openNames_.resize(openStarts_.back());
    openStarts_.pop_back();
    return Event::elementEnd;
}

bool PlainScanner::resolveValues() {
    for (std::size_t i = 0; i < attributeCount_; ++i) {
        const bool hasReference = (withReferences_ >> i & 1U) != 0;
        if (hasReference && !resolveReferences(attributes_[i].value)) return false;
    }
    return true;
}

bool PlainScanner::hasUniqueAttributes() const {
    for (const Attribute* one = begin(); one != end(); ++one) {
        for (const Attribute* other = begin(); other != one; ++other) {
            if (areSame(one->name, other->name)) return false;
        }
    }
    return true;
}

}  // namespace trv
