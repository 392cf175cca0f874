#include <cli/text_output.h>
#include <trvfiles/support/number_text.h>
#include <trvfiles/text/text_conversion.h>

#include <QJsonDocument>

#include <charconv>
#include <cmath>

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

}  // namespace

QString numberText(double value) {
    // The sign of a NaN is not printed.
    if (std::isnan(value)) return QStringLiteral("nan");
    char digits[32];
    const char* end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    return QString::fromLatin1(digits, static_cast<int>(end - digits));
}

QString roundedText(double value) {
    constexpr double halfOfLastDecimal = 5e-7;
    constexpr double decimalsEndHere = 1e15;
    if (std::fabs(value) <= halfOfLastDecimal) return QStringLiteral("0");
    // The negated comparison is also true for a NaN.
    if (!(std::fabs(value) < decimalsEndHere)) return numberText(value);
    std::string text;
    append_fixed(text, value);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
    return QString::fromStdString(text);
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

QString shownUnquoted(const QString& text) {
    return escaped(text, isHidden, escapeForText);
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

JsonWriter::JsonWriter(std::ostream& out) : out_(out) {
    out_ << '{';
}

void JsonWriter::add(const char* key, const QJsonValue& value) {
    separate();
    out_ << '"' << key << "\":" << qUtf8Printable(jsonText(value));
}

void JsonWriter::beginArray(const char* key) {
    separate();
    out_ << '"' << key << "\":[";
    isFirst_ = true;
}

void JsonWriter::addElement(const QJsonValue& value) {
    separate();
    out_ << qUtf8Printable(jsonText(value));
}

void JsonWriter::endArray() {
    out_ << ']';
    isFirst_ = false;
}

void JsonWriter::end() {
    out_ << "}\n";
}

void JsonWriter::separate() {
    if (!isFirst_) out_ << ',';
    isFirst_ = false;
}

void printJson(const QJsonObject& object, std::ostream& out) {
    out << qUtf8Printable(jsonText(object)) << '\n';
}

}  // namespace trv::cli
