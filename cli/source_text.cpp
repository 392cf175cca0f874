#include <cli/input_files.h>
#include <cli/source_text.h>
#include <trvfiles/assembly/plain_decoder.h>
#include <trvfiles/text/open_file.h>
#include <trvfiles/text/text_conversion.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

namespace trv::cli {
namespace {

// Empty if the file cannot be read or is too long.
QByteArray bytesOf(const QString& name) {
    constexpr int blockSize = 65536;
    constexpr int maxSize = 64 << 20;
    QString path;
    if (readablePath(name, path)) return {};
    const auto file = openForRead(path, platform::file_mode::binary);
    if (file == nullptr) return {};
    QByteArray bytes;
    for (;;) {
        const int size = bytes.size();
        bytes.resize(size + blockSize);
        const std::size_t read = std::fread(bytes.data() + size, 1, blockSize, file.get());
        bytes.resize(size + static_cast<int>(read));
        if (read == 0) return bytes;
        if (bytes.size() > maxSize) return {};
    }
}

}  // namespace

SourceText::SourceText(QString text, Lines lines) : text_(std::move(text)), starts_({0}) {
    const bool isXml = lines == Lines::ofXml;
    for (int i = 0; i < text_.size(); ++i) {
        const QChar c = text_.at(i);
        const bool isFeed = c == QLatin1Char('\n');
        const bool isLoneReturn = c == QLatin1Char('\r') &&
                                  (i + 1 == text_.size() || text_.at(i + 1) != QLatin1Char('\n'));
        if (isFeed || (isXml && isLoneReturn)) starts_.push_back(i + 1);
    }
}

SourceText SourceText::ofFile(const QString& name, Lines lines) {
    QByteArray bytes = bytesOf(name);
    if (lines == Lines::ofXml) return SourceText(PlainDecoder().decode(bytes), lines);
    if (bytes.startsWith("\xEF\xBB\xBF")) bytes.remove(0, 3);
    return SourceText(fromNarrow(bytes.toStdString()), lines);
}

QString SourceText::line(int number) const {
    const auto index = static_cast<std::size_t>(number - 1);
    if (number < 1 || index >= starts_.size()) return {};
    const bool isLast = index + 1 == starts_.size();
    const int end = isLast ? text_.size() : starts_[index + 1];
    QString line = text_.mid(starts_[index], end - starts_[index]);
    while (line.endsWith(QLatin1Char('\n')) || line.endsWith(QLatin1Char('\r')))
        line.chop(1);
    return line;
}

int SourceText::positionOf(Place place) const {
    const auto index = static_cast<std::size_t>(place.line - 1);
    if (place.line < 1 || place.column < 1 || index >= starts_.size()) return -1;
    const int position = starts_[index] + place.column - 1;
    return position < text_.size() ? position : -1;
}

Place SourceText::placeOf(int position) const {
    const auto after = std::upper_bound(starts_.begin(), starts_.end(), position);
    const int line = static_cast<int>(after - starts_.begin());
    return {line, position - *(after - 1) + 1};
}

}  // namespace trv::cli
