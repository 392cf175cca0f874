#include <cli/base64.h>
#include <cli/text_escapes.h>
#include <cli/text_output.h>
#include <trvfiles/text/text_conversion.h>

#include <QJsonDocument>
#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <string_view>

namespace trv::cli {
namespace {

// A document is an object or an array, so the value is put into an array, and the brackets are
// removed. Only strings contain hidden characters, because everything else in JSON is ASCII.
// QJsonDocument escapes only some of these characters.
QString jsonText(const QJsonValue& value) {
    const QByteArray json = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return escapedJson(QString::fromUtf8(json.constData() + 1, json.size() - 2));
}

// Whether a text is printed byte for byte: printable ASCII without a backslash and the given
// character. Every narrow encoding contains ASCII.
bool isPlain(std::string_view text, char except) {
    return std::all_of(text.begin(), text.end(), [except](char c) {
        return c >= ' ' && c <= '~' && c != '\\' && c != except;
    });
}

}  // namespace

QString numberText(double value) {
    std::string text;
    appendNumber(text, value);
    return QString::fromLatin1(text.data(), static_cast<int>(text.size()));
}

QString roundedText(double value) {
    std::string text;
    appendRounded(text, value);
    return QString::fromLatin1(text.data(), static_cast<int>(text.size()));
}

QString vectorText(const double vector[3]) {
    return QStringLiteral("%1 %2 %3")
        .arg(numberText(vector[0]), numberText(vector[1]), numberText(vector[2]));
}

QString roundedVectorText(const double vector[3]) {
    return QStringLiteral("%1 %2 %3")
        .arg(roundedText(vector[0]), roundedText(vector[1]), roundedText(vector[2]));
}

QString shown(const QString& text) {
    return escapedText(text);
}

QString shownUnquoted(const QString& text) {
    return escapedExceptBackslash(text);
}

QString shown(const std::string& narrow) {
    return shown(fromNarrow(narrow));
}

QString beginningOf(const QString& text, int maxLength) {
    if (text.size() <= maxLength) return text;
    const bool splitsPair = text.at(maxLength - 1).isHighSurrogate();
    return text.left(splitsPair ? maxLength - 1 : maxLength) + QStringLiteral("...");
}

QString counted(unsigned long long count, const QString& one, const QString& several) {
    return QStringLiteral("%1 %2").arg(QString::number(count), count == 1 ? one : several);
}

QJsonValue jsonNumber(double value) {
    if (std::isfinite(value)) return value;
    return numberText(value);
}

QJsonArray jsonNumbers(const double* values, int count) {
    QJsonArray array;
    for (int i = 0; i < count; ++i)
        array.append(jsonNumber(values[i]));
    return array;
}

void appendShown(std::string& out, const std::string& narrow) {
    if (isPlain(narrow, '\\')) {
        out += narrow;
    } else {
        appendEscapedText(out, fromNarrow(narrow));
    }
}

JsonWriter::JsonWriter(std::ostream& out) : out_(out) {
    out_.text() += '{';
}

void JsonWriter::add(const char* key, const QJsonValue& value) {
    beginMember(key);
    appendUtf8(out_.text(), jsonText(value));
}

void JsonWriter::addAll(const QJsonObject& object) {
    for (auto member = object.begin(); member != object.end(); ++member)
        add(qUtf8Printable(member.key()), member.value());
}

void JsonWriter::addText(const char* key, const std::string& narrow) {
    beginMember(key);
    appendText(narrow);
}

void JsonWriter::addUtf8(const char* key, const std::string& text) {
    beginMember(key);
    if (!isPlain(text, '"')) return appendJsonString(out_.text(), QString::fromStdString(text));
    out_.text().append(1, '"').append(text).append(1, '"');
}

void JsonWriter::addInteger(const char* key, long long value) {
    beginMember(key);
    appendInteger(out_.text(), value);
}

void JsonWriter::addBoolean(const char* key, bool value) {
    beginMember(key);
    out_.text() += value ? "true" : "false";
}

void JsonWriter::addNull(const char* key) {
    beginMember(key);
    out_.text() += "null";
}

void JsonWriter::addNumbers(const char* key, const double* values, int count) {
    beginMember(key);
    out_.text() += '[';
    for (int i = 0; i < count; ++i) {
        if (i != 0) out_.text() += ',';
        appendJsonNumber(out_.text(), values[i]);
    }
    out_.text() += ']';
}

void JsonWriter::beginBase64(const char* key) {
    beginMember(key);
    out_.text() += '"';
}

void JsonWriter::addBase64(const double* numbers, std::size_t count) {
    constexpr std::size_t blockLength = 12;
    char bytes[blockLength * sizeof(double)];
    for (std::size_t first = 0; first < count; first += blockLength) {
        const std::size_t length = std::min(blockLength, count - first);
        qToLittleEndian<double>(numbers + first, static_cast<qsizetype>(length), bytes);
        appendBase64(out_.text(), {bytes, length * sizeof(double)});
    }
    out_.endPiece();
}

void JsonWriter::endBase64() {
    out_.text() += '"';
}

void JsonWriter::beginObject(const char* key) {
    beginMember(key);
    out_.text() += '{';
    isFirst_ = true;
}

void JsonWriter::beginArray(const char* key) {
    beginMember(key);
    out_.text() += '[';
    isFirst_ = true;
}

void JsonWriter::addElement(const QJsonValue& value) {
    separate();
    appendUtf8(out_.text(), jsonText(value));
}

void JsonWriter::addTextElement(const std::string& narrow) {
    separate();
    appendText(narrow);
}

void JsonWriter::addIntegerElement(long long value) {
    separate();
    appendInteger(out_.text(), value);
}

void JsonWriter::beginObject() {
    separate();
    out_.text() += '{';
    isFirst_ = true;
}

void JsonWriter::endObject() {
    out_.text() += '}';
    isFirst_ = false;
}

void JsonWriter::endArray() {
    out_.text() += ']';
    isFirst_ = false;
}

void JsonWriter::end() {
    out_.text() += "}\n";
    out_.flush();
}

void JsonWriter::appendText(const std::string& narrow) {
    if (!isPlain(narrow, '"')) return appendJsonString(out_.text(), fromNarrow(narrow));
    out_.text().append(1, '"').append(narrow).append(1, '"');
}

void JsonWriter::separate() {
    out_.endPiece();
    if (!isFirst_) out_.text() += ',';
    isFirst_ = false;
}

void JsonWriter::beginMember(const char* key) {
    separate();
    out_.text().append(1, '"').append(key).append("\":");
}

void printJson(const QJsonObject& object, std::ostream& out) {
    out << qUtf8Printable(jsonText(object)) << '\n';
}

void addFrame(JsonWriter& json, const double translation[3], const double vec1[3],
              const double vec2[3], const double vec3[3]) {
    json.addNumbers("translation", translation, 3);
    json.addNumbers("vec1", vec1, 3);
    json.addNumbers("vec2", vec2, 3);
    json.addNumbers("vec3", vec3, 3);
}

}  // namespace trv::cli
