#pragma once

/// @file
/// The bytes of a document that are not text.

#include <QByteArray>
#include <QString>

namespace trv {

/// Finds the first piece of a document in which decoding has replaced bytes by U+FFFD, and counts
/// the replacements of all pieces.
///
/// It compares how often the decoded text has a U+FFFD with how often the bytes have one in UTF-8.
/// So it recognises a U+FFFD that the document itself holds, unless the document has another
/// encoding. UTF-16 is ignored: there no pair of bytes is replaced.
class ReplacedBytes {
public:
    /// Looks at the next bytes of the document and at the text that is decoded from them.
    void look(const QByteArray& bytes, const QString& text);

    bool isFound() const { return count_ > 0; }

    /// How many U+FFFD the document itself does not hold.
    int count() const { return count_; }

    /// The place of the first U+FFFD in that piece, counted from 1, the column in UTF-16 units. If
    /// the document itself holds a U+FFFD before it in the same piece, the place is that one's.
    /// REQUIRES: isFound().
    int line() const { return line_; }
    int column() const { return column_; }

private:
    int ownReplacementCharacters(const QByteArray& bytes);
    void advance(const QChar* begin, const QChar* end);

    int count_ = 0;
    bool isStarted_ = false;
    bool isUtf16_ = false;
    // How many bytes at the end of the last piece begin a U+FFFD.
    int matched_ = 0;

    int line_ = 1;
    int column_ = 1;
    bool followsReturn_ = false;
};

}  // namespace trv
