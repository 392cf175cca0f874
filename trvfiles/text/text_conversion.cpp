#include <trvfiles/support/platform.h>
#include <trvfiles/text/text_conversion.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <string_view>
#include <type_traits>
#include <utility>

namespace trv {
namespace {

int lengthToZero(const char* text, std::size_t maxLength) {
    const void* zero = std::memchr(text, 0, maxLength);
    return static_cast<int>(zero == nullptr
                                ? maxLength
                                : static_cast<std::size_t>(static_cast<const char*>(zero) - text));
}

QString decode(const char* text, int length) {
    return platform::narrow_text_is_utf8()
               ? fromUtf8(std::string_view(text, static_cast<std::size_t>(length)))
               : QString::fromLocal8Bit(text, length);
}

bool isCharacter(wchar_t unit) {
    const auto code = static_cast<char32_t>(unit);
    return code <= QChar::LastValidCodePoint && !QChar::isSurrogate(code);
}

// An openable path of ASCII in the system's form. Most paths are ASCII: for them this one copy
// replaces a translated copy, its conversion and the copy of the bytes.
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

// A system has paths of one of the two types.
template <class Text>
HostPath pathIn(const Text& path) {
    if constexpr (std::is_same_v<Text, std::string>) {
        return pathFromNarrow(path);
    } else {
        return pathFromWide(path);
    }
}

}  // namespace

// QString::fromUtf8() drops a byte order mark at the beginning. So the marks at the beginning are
// removed before and added after the conversion.
QString fromUtf8(std::string_view text) {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    int marks = 0;
    for (; text.substr(0, mark.size()) == mark; ++marks)
        text.remove_prefix(mark.size());
    QString decoded = QString::fromUtf8(text.data(), static_cast<int>(text.size()));
    return marks == 0 ? decoded : QString(marks, QChar::ByteOrderMark) + decoded;
}

QString fromNarrow(const char* text) {
    return text == nullptr ? QString() : decode(text, static_cast<int>(std::strlen(text)));
}

QString fromNarrow(const std::string& text) {
    return decode(text.data(), lengthToZero(text.data(), text.size()));
}

// QString::fromStdWString() drops a U+FEFF at the beginning as a byte order mark, and swaps the
// bytes of a text that begins with U+FFFE.
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

std::wstring wideText(const std::string& narrow) {
    return toWide(fromNarrow(narrow));
}

std::string narrowText(const std::wstring& wide) {
    return toNarrow(fromWide(wide));
}

std::string narrowFromUtf8(std::string_view text) {
    if (platform::narrow_text_is_utf8()) return std::string(text);
    return toNarrow(fromUtf8(text));
}

// Unlike fromStdWString(), Qt's conversion in this direction drops nothing.
std::wstring toWide(const QString& text) {
    return text.toStdWString();
}

HostPath pathFromNarrow(const char* path) {
    return path == nullptr ? HostPath() : pathFromNarrow(std::string(path));
}

HostPath pathFromNarrow(const std::string& path) {
    HostPath result{fromNarrow(path)};
    // The path may hold a U+FFFD itself, which converts back to the same bytes.
    if (platform::narrow_text_is_utf8() && result.text.contains(QChar::ReplacementCharacter)) {
        result.isExact = toNarrow(result.text) == path.substr(0, path.find('\0'));
    }
    return result;
}

HostPath pathFromWide(const std::wstring& path) {
    // The file names of Windows are any 16-bit units, single surrogates included.
    const bool hasHalves = !platform::narrow_text_is_utf8();
    return {fromWide(path), hasHalves || std::all_of(path.begin(), path.end(), isCharacter)};
}

HostPath pathFromSystem(const std::filesystem::path::string_type& path) {
    HostPath result = pathIn(path);
    result.isExact = result.isExact && nativePath(result.text) == result.text;
    return result;
}

std::wstring widePath(const std::string& path) {
    const HostPath narrow = pathFromNarrow(path);
    std::wstring wide = toWide(narrow.text);
    if (narrow.isExact) return wide;
    // fromWide() makes U+FFFD of this unit, and pathFromWide() finds that it is not a character.
    constexpr wchar_t beyondUnicode = std::numeric_limits<wchar_t>::max();
    std::replace(wide.begin(), wide.end(), wchar_t{QChar::ReplacementCharacter}, beyondUnicode);
    return wide;
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
        // QFile::encodeName() would apply the codec that the host has set.
        narrow = nativePath(path).toUtf8().toStdString();
        return true;
    } else {
        if (!isOpenable(path)) return false;
        std::string text = toNarrow(path);
        // Windows replaces what the code page lacks by a similar character without an error.
        if (fromNarrow(text) != path) return false;
        narrow = std::move(text);
        return true;
    }
}

}  // namespace trv
