#include <cli/text_output.h>
#include <trvfiles/text/text_conversion.h>

#include <QJsonDocument>

#include <algorithm>
#include <cmath>
#include <string_view>

namespace trv::cli {
namespace {

// A character, or half of a surrogate pair if the other half is missing.
struct Character {
    uint code;
    /// In code units.
    int length;
};

Character characterAt(const QString& text, int place) {
    const QChar first = text.at(place);
    if (first.isHighSurrogate() && place + 1 < text.size()) {
        const QChar second = text.at(place + 1);
        if (second.isLowSurrogate()) return {QChar::surrogateToUcs4(first, second), 2};
    }
    return {first.unicode(), 1};
}

// Whether a terminal or an editor does not show the character, or shows other characters
// differently because of it.
bool isHidden(uint code) {
    constexpr uint firstTag = 0xE0000;
    constexpr uint lastTag = 0xE007F;
    switch (QChar::category(code)) {
        case QChar::Other_Control:
        case QChar::Other_Format:
        case QChar::Other_Surrogate:
        case QChar::Separator_Line:
        case QChar::Separator_Paragraph:
            return true;
        default:
            // Not all tag characters are assigned.
            return code >= firstTag && code <= lastTag;
    }
}

QString hexadecimal(uint number, int digits) {
    return QStringLiteral("%1").arg(number, digits, 16, QLatin1Char('0'));
}

QString escapeForText(uint code) {
    constexpr uint pastLatin = 0x100;
    constexpr uint pastBasicPlane = 0x10000;
    if (code == '\\') return QStringLiteral("\\\\");
    if (code < pastLatin) return QStringLiteral("\\x") + hexadecimal(code, 2);
    if (code < pastBasicPlane) return QStringLiteral("\\u") + hexadecimal(code, 4);
    return QStringLiteral("\\U") + hexadecimal(code, 8);
}

QString escapeForJson(uint code) {
    const auto unit = [](uint value) { return QStringLiteral("\\u") + hexadecimal(value, 4); };
    if (!QChar::requiresSurrogates(code)) return unit(code);
    return unit(QChar::highSurrogate(code)) + unit(QChar::lowSurrogate(code));
}

template <class Predicate>
QString escaped(const QString& text, Predicate isEscaped, QString (*escape)(uint)) {
    QString result;
    result.reserve(text.size());
    for (int place = 0; place < text.size();) {
        const Character character = characterAt(text, place);
        if (isEscaped(character.code)) {
            result += escape(character.code);
        } else {
            result.append(text.constData() + place, character.length);
        }
        place += character.length;
    }
    return result;
}

// A document is an object or an array, so the value is put into an array, and the brackets are
// removed. Only strings contain hidden characters, because everything else in JSON is ASCII.
// QJsonDocument escapes only some of these characters.
QString jsonText(const QJsonValue& value) {
    const QByteArray json = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return escaped(QString::fromUtf8(json.constData() + 1, json.size() - 2), isHidden,
                   escapeForJson);
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
    return escaped(
        text, [](uint code) { return code == '\\' || isHidden(code); }, escapeForText);
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
        appendUtf8(out, shown(narrow));
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
    if (!isPlain(narrow, '"')) return add(key, fromNarrow(narrow));
    addPlain(key, narrow);
}

void JsonWriter::addUtf8(const char* key, const std::string& text) {
    if (!isPlain(text, '"')) return add(key, QString::fromStdString(text));
    addPlain(key, text);
}

void JsonWriter::addPlain(const char* key, const std::string& text) {
    beginMember(key);
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

void JsonWriter::beginArray(const char* key) {
    beginMember(key);
    out_.text() += '[';
    isFirst_ = true;
}

void JsonWriter::addElement(const QJsonValue& value) {
    separate();
    appendUtf8(out_.text(), jsonText(value));
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

}  // namespace trv::cli
