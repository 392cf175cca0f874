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

// ASCII is the same in every encoding of file names, and most names hold nothing else.
std::string encodedName(const QString& name) {
    constexpr ushort firstBeyondAscii = 0x80;
    std::string encoded(static_cast<std::size_t>(name.size()), '\0');
    ushort all = 0;
    for (int i = 0; i < name.size(); ++i) {
        const ushort character = name.at(i).unicode();
        all = static_cast<ushort>(all | character);
        encoded[static_cast<std::size_t>(i)] = static_cast<char>(character);
    }
    return all < firstBeyondAscii ? encoded : QFile::encodeName(name).toStdString();
}

}  // namespace

QString fromNarrow(const char* text) {
    return text == nullptr ? QString() : decode(text, static_cast<int>(std::strlen(text)));
}

QString fromNarrow(const std::string& text) {
    return decode(text.data(), lengthToZero(text.data(), text.size()));
}

// In UTF-16, fromStdWString() would drop a first U+FEFF as a byte order mark, and behind a first
// U+FFFE swap the bytes of every unit.
QString fromWide(const std::wstring& text) {
    if constexpr (sizeof(wchar_t) == sizeof(QChar)) {
        QString units(static_cast<int>(text.size()), Qt::Uninitialized);
        std::transform(text.begin(), text.end(), units.begin(),
                       [](wchar_t unit) { return QChar(static_cast<ushort>(unit)); });
        return units;
    } else {
        return QString::fromStdWString(text);
    }
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
    const QString native = nativePath(path);
    if constexpr (std::is_same_v<std::filesystem::path::value_type, char>) {
        return std::filesystem::path(encodedName(native));
    } else {
        return std::filesystem::path(native.toStdWString());
    }
}

bool runtimePath(const QString& path, std::string& narrow) {
    if (!isOpenable(path)) return false;
    if constexpr (std::is_same_v<std::filesystem::path::value_type, char>) {
        narrow = encodedName(nativePath(path));
        return true;
    } else {
        std::string text = toNarrow(path);
        if (fromNarrow(text) != path) return false;
        narrow = std::move(text);
        return true;
    }
}

}  // namespace trv
