#pragma once

/// @file
/// Decoding XML documents without Qt's text codecs.

#include <QByteArray>
#include <QString>

namespace trv {

/// Decodes an XML document piece by piece, for the time when Qt has destroyed its codecs: they go
/// during exit, while a host's handlers and destructors may still read.
///
/// It knows UTF-8 and UTF-16, recognised as Qt does it, and ISO-8859-1 where the document declares
/// it. Like a codec, it makes U+FFFD of what is not well-formed and drops a byte order mark and an
/// incomplete character at the end.
class PlainDecoder {
public:
    /// Takes the next bytes, and gives the characters that are complete.
    QString decode(const QByteArray& bytes);

    /// Whether the document is in another encoding, of which nothing is decoded.
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
