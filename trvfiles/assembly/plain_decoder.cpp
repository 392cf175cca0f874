#include <trvfiles/assembly/plain_decoder.h>

#include <algorithm>
#include <utility>

namespace trv {
namespace {

// The length of a character of UTF-8 by its first byte; 1 for a byte that begins no character.
int lengthFor(uchar firstByte) {
    if (firstByte < 0xC2 || firstByte > 0xF4) return 1;
    if (firstByte < 0xE0) return 2;
    return firstByte < 0xF0 ? 3 : 4;
}

// The number of bytes at the end that begin a character of UTF-8 whose rest is in the next piece.
int incompleteTail(const QByteArray& bytes) {
    constexpr int maxStart = 3;
    for (int count = 1; count <= std::min(maxStart, bytes.size()); ++count) {
        const auto byte = static_cast<uchar>(bytes.at(bytes.size() - count));
        const bool isContinuation = (byte & 0xC0) == 0x80;
        if (!isContinuation) return lengthFor(byte) > count ? count : 0;
    }
    return 0;
}

// The encoding that an XML declaration names, in upper case; empty without one.
QString declaredEncoding(const QString& text) {
    if (!text.startsWith(QLatin1String("<?xml"))) return {};
    const QString declaration = text.left(text.indexOf(QLatin1String("?>")));
    const int attribute = declaration.indexOf(QLatin1String("encoding"));
    if (attribute < 0) return {};
    const auto isQuote = [](QChar character) {
        return character == QLatin1Char('"') || character == QLatin1Char('\'');
    };
    const auto open = std::find_if(declaration.begin() + attribute, declaration.end(), isQuote);
    if (open == declaration.end()) return {};
    const auto close = std::find(open + 1, declaration.end(), *open);
    return QString(open + 1, static_cast<int>(close - open) - 1).toUpper();
}

}  // namespace

QString PlainDecoder::decode(const QByteArray& bytes) {
    pending_ += bytes;
    if (encoding_ != Encoding::undetected) return decodePending();
    // The encoding is detected by the first four bytes. No document is shorter than "<a/>".
    if (pending_.size() < 4) return {};
    const QByteArray beginning = pending_;
    encoding_ = detected();
    QString text = decodePending();
    const QString declared = declaredEncoding(text);
    const QLatin1String own(encoding_ == Encoding::utf8 ? "UTF-8" : "UTF-16");
    if (declared.isEmpty() || declared.startsWith(own)) return text;
    const bool isLatin1 = declared == QLatin1String("ISO-8859-1");
    encoding_ = isLatin1 ? Encoding::latin1 : Encoding::unknown;
    pending_ = beginning;
    return decodePending();
}

// By a byte order mark, or by how "<" is written.
PlainDecoder::Encoding PlainDecoder::detected() const {
    const auto startsWith = [this](const QByteArray& bytes) { return pending_.startsWith(bytes); };
    if (startsWith(QByteArray("\xFF\xFE\0\0", 4)) || startsWith(QByteArray("<\0\0\0", 4)) ||
        startsWith(QByteArray("\0\0", 2))) {
        return Encoding::unknown;
    }
    if (startsWith("\xFF\xFE") || startsWith(QByteArray("<\0", 2))) {
        return Encoding::utf16LittleEndian;
    }
    if (startsWith("\xFE\xFF") || startsWith(QByteArray("\0<", 2))) {
        return Encoding::utf16BigEndian;
    }
    return Encoding::utf8;
}

QString PlainDecoder::decodePending() {
    switch (encoding_) {
        case Encoding::utf8:
            return decodeUtf8();
        case Encoding::utf16BigEndian:
        case Encoding::utf16LittleEndian:
            return decodeUtf16();
        case Encoding::latin1:
            return QString::fromLatin1(std::exchange(pending_, QByteArray()));
        case Encoding::undetected:
        case Encoding::unknown:
            break;
    }
    pending_.clear();
    return {};
}

QString PlainDecoder::decodeUtf8() {
    const int complete = pending_.size() - incompleteTail(pending_);
    QString text = QString::fromUtf8(pending_.constData(), complete);
    // fromUtf8() drops U+FEFF at the beginning of each piece, but only at the beginning of the
    // document it is a byte order mark.
    if (isStarted_ && pending_.startsWith("\xEF\xBB\xBF")) {
        text.prepend(QChar(QChar::ByteOrderMark));
    }
    isStarted_ = true;
    pending_.remove(0, complete);
    return text;
}

QString PlainDecoder::decodeUtf16() {
    const int units = pending_.size() / 2;
    const int high = encoding_ == Encoding::utf16BigEndian ? 0 : 1;
    QString text(units, Qt::Uninitialized);
    for (int i = 0; i < units; ++i) {
        text[i] = QChar(static_cast<uchar>(pending_.at(2 * i + 1 - high)),
                        static_cast<uchar>(pending_.at(2 * i + high)));
    }
    if (!isStarted_ && text.startsWith(QChar(QChar::ByteOrderMark))) text.remove(0, 1);
    isStarted_ = true;
    pending_.remove(0, 2 * units);
    return text;
}

}  // namespace trv
