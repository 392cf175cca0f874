#include <trvfiles/facade/text_conversion.h>
#include <trvfiles/support/platform.h>

#include <QFile>

#include <algorithm>
#include <cstring>
#include <type_traits>
#include <utility>

namespace trv {
namespace {

int lengthToZero(const char* text, std::size_t longest) {
    const void* zero = std::memchr(text, 0, longest);
    return static_cast<int>(zero == nullptr
                                ? longest
                                : static_cast<std::size_t>(static_cast<const char*>(zero) - text));
}

QString decode(const char* text, int length) {
    return platform::narrow_text_is_utf8() ? QString::fromUtf8(text, length)
                                           : QString::fromLocal8Bit(text, length);
}

// An openable path of ASCII, which is the same in every encoding of file names, in the system's
// form. Most paths are.
bool asciiPath(const QString& path, std::string& narrow) {
    constexpr ushort firstBeyondAscii = 0x80;
    std::string ascii(static_cast<std::size_t>(path.size()), '\0');
    for (int i = 0; i < path.size(); ++i) {
        const ushort character = path.at(i).unicode();
        if (character == 0 || character >= firstBeyondAscii) return false;
        ascii[static_cast<std::size_t>(i)] = character == '\\' ? '/' : static_cast<char>(character);
    }
    if (ascii.empty()) return false;
    narrow = std::move(ascii);
    return true;
}

}  // namespace

QString fromNarrow(const char* text) {
    return text == nullptr ? QString() : decode(text, static_cast<int>(std::strlen(text)));
}

QString fromNarrow(const std::string& text) {
    return decode(text.data(), lengthToZero(text.data(), text.size()));
}

// Not by fromStdWString(), which drops a first U+FEFF as a byte order mark and, behind a swapped
// one, swaps the bytes of what follows.
QString fromWide(const std::wstring& text) {
    const auto isPair = [](char32_t code) {
        return QChar::requiresSurrogates(code) && code <= QChar::LastValidCodePoint;
    };
    const auto pairs = std::count_if(text.begin(), text.end(), isPair);
    QString units(static_cast<int>(text.size()) + static_cast<int>(pairs), Qt::Uninitialized);
    QChar* next = units.data();
    for (const wchar_t character : text) {
        const auto code = static_cast<char32_t>(character);
        if (isPair(code)) {
            *next++ = QChar(QChar::highSurrogate(code));
            *next++ = QChar(QChar::lowSurrogate(code));
        } else {
            *next++ = QChar::requiresSurrogates(code) ? QChar(QChar::ReplacementCharacter)
                                                      : QChar(static_cast<ushort>(code));
        }
    }
    return units;
}

std::string toNarrow(const QString& text) {
    const QByteArray bytes = platform::narrow_text_is_utf8() ? text.toUtf8() : text.toLocal8Bit();
    return std::string(bytes.constData(),
                       static_cast<std::size_t>(lengthToZero(
                           bytes.constData(), static_cast<std::size_t>(bytes.size()))));
}

std::wstring toWide(const QString& text) {
    return text.toStdWString();
}

QString nativePath(const QString& path) {
    if (platform::backslash_separates()) return path;
    QString native = path;
    return native.replace(QLatin1Char('\\'), QLatin1Char('/'));
}

bool isOpenable(const QString& path) {
    return !path.isEmpty() && !path.contains(QChar(0)) &&
           (path.isValidUtf16() || !platform::narrow_text_is_utf8());
}

std::filesystem::path systemPath(const QString& path) {
    if constexpr (std::is_same_v<std::filesystem::path::value_type, char>) {
        std::string narrow;
        runtimePath(path, narrow);
        return std::filesystem::path(std::move(narrow));
    } else {
        return std::filesystem::path(path.toStdWString());
    }
}

bool runtimePath(const QString& path, std::string& narrow) {
    if constexpr (std::is_same_v<std::filesystem::path::value_type, char>) {
        if (asciiPath(path, narrow)) return true;
        if (!isOpenable(path)) return false;
        narrow = QFile::encodeName(nativePath(path)).toStdString();
        return true;
    } else {
        if (!isOpenable(path)) return false;
        std::string text = toNarrow(path);
        if (fromNarrow(text) != path) return false;
        narrow = std::move(text);
        return true;
    }
}

}  // namespace trv
