#include <trvfiles/assembly/replaced_bytes.h>

#include <algorithm>

namespace trv {

void ReplacedBytes::look(const QByteArray& bytes, const QString& text) {
    // In UTF-8 a zero is refused wherever it is; in UTF-16 the first "<" has one.
    if (!isStarted_) isUtf16_ = bytes.contains('\0');
    isStarted_ = true;
    const int own = ownReplacementCharacters(bytes);
    if (isUtf16_) return;
    const int replaced = std::max(text.count(QChar(QChar::ReplacementCharacter)) - own, 0);
    if (!isFound()) {
        const QChar* const end = text.constData() + text.size();
        advance(text.constData(), replaced == 0 ? end
                                                : std::find(text.constData(), end,
                                                            QChar(QChar::ReplacementCharacter)));
    }
    count_ += replaced;
}

// The first byte begins a character wherever it is, so the three bytes in a row are never part of
// another character. A decoder completes a character in the piece that has its last byte.
int ReplacedBytes::ownReplacementCharacters(const QByteArray& bytes) {
    constexpr char encoded[] = {'\xEF', '\xBF', '\xBD'};
    int count = 0;
    for (const char byte : bytes) {
        if (byte == encoded[matched_]) {
            ++matched_;
        } else {
            matched_ = byte == encoded[0] ? 1 : 0;
        }
        if (matched_ < 3) continue;
        ++count;
        matched_ = 0;
    }
    return count;
}

// Lines end with LF, CR, or CR LF, as the parser counts them.
void ReplacedBytes::advance(const QChar* begin, const QChar* end) {
    for (const QChar* character = begin; character != end; ++character) {
        const bool isReturn = *character == QLatin1Char('\r');
        const bool isFeed = *character == QLatin1Char('\n');
        if (isReturn || (isFeed && !followsReturn_)) ++line_;
        column_ = isReturn || isFeed ? 1 : column_ + 1;
        followsReturn_ = isReturn;
    }
}

}  // namespace trv
