#include <cli/axis_report.h>
#include <cli/text_output.h>
#include <trvfiles/support/number_text.h>

#include <QJsonArray>

#include <algorithm>
#include <cmath>
#include <string>

namespace trv::cli {
namespace {

double determinant(const AxisMatrix& m) {
    return m[0] * (m[5] * m[10] - m[6] * m[9]) + m[1] * (m[6] * m[8] - m[4] * m[10]) +
           m[2] * (m[4] * m[9] - m[5] * m[8]);
}

QString row(const char* label, const AxisMatrix& matrix, std::size_t first) {
    constexpr int labelWidth = 13;
    constexpr int numberWidth = 14;
    constexpr double halfOfLastDecimal = 5e-7;
    std::string text = "  ";
    text += label;
    text.resize(labelWidth, ' ');
    for (std::size_t i = first; i < first + 4; ++i) {
        // No zero is shown with a sign.
        const bool isZero = std::fabs(matrix[i]) <= halfOfLastDecimal;
        text += ' ';
        append_fixed(text, isZero ? 0 : matrix[i], numberWidth - 1);
    }
    return QString::fromStdString(text + '\n');
}

QString rows(const AxisMatrix& matrix) {
    return row("x axis", matrix, 0) + row("y axis", matrix, 4) + row("z axis", matrix, 8) +
           row("translation", matrix, 12);
}

QString yesNo(bool value) {
    return value ? QStringLiteral("yes") : QStringLiteral("no");
}

bool hasNoTags(const AxisFile& axis) {
    return std::all_of(axis.tags.begin(), axis.tags.end(), [](int tag) { return tag < 0; });
}

QString tagsText(const AxisFile& axis) {
    if (hasNoTags(axis)) return QStringLiteral("none");
    QStringList tags;
    for (const int tag : axis.tags)
        tags += tag < 0 ? QStringLiteral("-") : QString::number(tag);
    return tags.join(QLatin1Char(' '));
}

}  // namespace

AxisTraits traitsOf(const AxisMatrix& matrix) {
    AxisTraits traits;
    const bool allNumbers =
        std::none_of(matrix.begin(), matrix.end(), [](double value) { return std::isnan(value); });
    traits.identity = allNumbers && !differsFromIdentity(matrix);
    traits.orthonormal = isOrthonormal(matrix);
    traits.inverse = affineInverse(matrix);
    traits.singular = traits.inverse[15] == 0;
    traits.mirror = !traits.singular && determinant(matrix) < 0;
    return traits;
}

QString axisText(const QString& name, const AxisFile& axis) {
    const AxisTraits traits = traitsOf(axis.matrix);
    return QStringLiteral(
               "%1"
               "Matrix\n%2\n"
               "%3\n"
               "Identity     %4\n"
               "Orthonormal  %5\n"
               "Mirror       %6\n"
               "Singular     %7\n"
               "Tags         %8\n")
        .arg(headingText(QStringLiteral("Axis file"), name), rows(axis.matrix),
             traits.singular ? QStringLiteral("Inverse: none\n")
                             : QStringLiteral("Inverse\n") + rows(traits.inverse),
             yesNo(traits.identity), yesNo(traits.orthonormal), yesNo(traits.mirror),
             yesNo(traits.singular), tagsText(axis));
}

QJsonObject axisJson(const QString& name, const AxisFile& axis) {
    const AxisTraits traits = traitsOf(axis.matrix);
    QJsonArray tags;
    for (const int tag : axis.tags)
        tags.append(tag < 0 ? QJsonValue() : QJsonValue(tag));
    return {
        {QStringLiteral("kind"), QStringLiteral("axis")},
        {QStringLiteral("file"), name},
        {QStringLiteral("matrix"), jsonNumbers(axis.matrix.data(), 16)},
        {QStringLiteral("inverse"),
         traits.singular ? QJsonValue() : QJsonValue(jsonNumbers(traits.inverse.data(), 16))},
        {QStringLiteral("identity"), traits.identity},
        {QStringLiteral("orthonormal"), traits.orthonormal},
        {QStringLiteral("mirror"), traits.mirror},
        {QStringLiteral("singular"), traits.singular},
        {QStringLiteral("tags"), tags},
    };
}

QString axisSummary(const AxisFile& axis) {
    const AxisTraits traits = traitsOf(axis.matrix);
    QString text = QStringLiteral("axis, ");
    if (traits.identity) {
        text += QStringLiteral("identity");
    } else if (traits.singular) {
        text += QStringLiteral("singular");
    } else {
        text +=
            traits.orthonormal ? QStringLiteral("orthonormal") : QStringLiteral("not orthonormal");
        if (traits.mirror) text += QStringLiteral(", mirror");
    }
    if (!hasNoTags(axis)) text += QStringLiteral(", tags ") + tagsText(axis);
    return text;
}

}  // namespace trv::cli
