#pragma once

/// @file
/// Decoding XML documents without Qt's text codecs.

#include <QByteArray>
#include <QString>

namespace trv {

/// Decodes an XML document piece by piece after Qt has destroyed its codecs. That happens during
/// exit, while a host's handlers and destructors may still read.
///
/// It decodes UTF-8 and UTF-16, detected as Qt detects them, and ISO-8859-1 if the document
/// declares it. Like a codec, it makes U+FFFD of bytes that are not well-formed, and drops a byte
/// order mark and an incomplete character at the end.
class PlainDecoder {
public:
    /// Takes the next bytes and returns the characters that are complete.
    QString decode(const QByteArray& bytes);

    /// Whether the document has another encoding; then nothing is decoded.
    bool isUnknownEncoding() const { return encoding_ == Encoding::unknown; }

private:
    enum class Encoding { undetected, utf8, utf16BigEndian, utf16LittleEndian, latin1, unknown };

    Encoding detected() const;
    QString decodePending();
    QString decodeUtf8();
    QString decodeUtf16();

    Encoding encoding_ = Encoding::undetected;
    QByteArray pending_;
    bool isStarted_ = false;
};

}  // namespace trv
