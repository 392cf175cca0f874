#include <cli/text_output.h>
#include <trvfiles/facade/text_conversion.h>
#include <trvfiles/support/number_text.h>

#include <QJsonDocument>

#include <charconv>
#include <cmath>

namespace trv::cli {

QString numberText(double value) {
    // A NaN may carry a sign, which is not shown.
    if (std::isnan(value)) return QStringLiteral("nan");
    char digits[32];
    const char* end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    return QString::fromLatin1(digits, static_cast<int>(end - digits));
}

QString roundedText(double value) {
    constexpr double halfOfLastDecimal = 5e-7;
    constexpr double decimalsEndHere = 1e15;
    if (std::fabs(value) <= halfOfLastDecimal) return QStringLiteral("0");
    // Written so that a NaN goes this way.
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
    QString result;
    for (const QChar character : text) {
        if (character.category() == QChar::Other_Control) {
            result += QStringLiteral("\\x%1").arg(character.unicode(), 2, 16, QLatin1Char('0'));
        } else {
            result += character;
        }
    }
    return result;
}

QString shown(const std::string& narrow) {
    return shown(fromNarrow(narrow));
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

void printJson(const QJsonObject& object, std::ostream& out) {
    out << QJsonDocument(object).toJson(QJsonDocument::Compact).constData() << '\n';
}

}  // namespace trv::cli
