#include <cli/diagnostic.h>
#include <cli/text_output.h>

#include <algorithm>

namespace trv::cli {
namespace {

using Kind = CFileFault::Note::Kind;

QString severityText(Diagnostic::Severity severity) {
    return severity == Diagnostic::Severity::error ? QStringLiteral("error")
                                                   : QStringLiteral("warning");
}

QString placeText(Place place) {
    QString text;
    if (place.line > 0) text += QStringLiteral(":%1").arg(place.line);
    if (place.line > 0 && place.column > 0) text += QStringLiteral(":%1").arg(place.column);
    return text;
}

QJsonValue numberOrNull(int number) {
    return number > 0 ? QJsonValue(number) : QJsonValue();
}

// The line and the caret, in at most `columns` columns. Tabs are shown as blanks, so that the caret
// is under its character.
QString excerpt(const QString& line, int column, int columns) {
    constexpr int margin = 2;
    constexpr int minWidth = 20;
    const int width = std::max(columns - margin - 1, minWidth);
    QString spaced = line;
    spaced.replace(QLatin1Char('\t'), QLatin1Char(' '));
    QString before = shown(spaced.left(column - 1));
    QString after = shown(spaced.mid(column - 1));
    // Two thirds of the width are for what is before the caret.
    const int room = std::max(2 * width / 3, width - after.size());
    if (before.size() > room) {
        before = QStringLiteral("...") + before.right(room - 3);
    }
    const int rest = width - before.size();
    if (after.size() > rest) after = beginningOf(after, rest - 3);
    const QString indent(margin, QLatin1Char(' '));
    return indent + before + after + QLatin1Char('\n') + indent +
           QString(before.size(), QLatin1Char(' ')) + QStringLiteral("^\n");
}

}  // namespace

QString codeOf(Kind kind) {
    return QLatin1String(fileNoteKindName(kind));
}

void printDiagnostic(const QString& file, const Diagnostic& diagnostic, int columns,
                     std::ostream& stream) {
    const QString text = QStringLiteral("%1%2: %3: %4\n")
                             .arg(shown(file), placeText(diagnostic.place),
                                  severityText(diagnostic.severity), shown(diagnostic.text));
    stream << qUtf8Printable(text);
    if (diagnostic.sourceLine.isEmpty() || diagnostic.place.column < 1) return;
    stream << qUtf8Printable(excerpt(diagnostic.sourceLine, diagnostic.place.column, columns));
}

QJsonObject diagnosticJson(const Diagnostic& diagnostic) {
    return {
        {QStringLiteral("severity"), severityText(diagnostic.severity)},
        {QStringLiteral("line"), numberOrNull(diagnostic.place.line)},
        {QStringLiteral("column"), numberOrNull(diagnostic.place.column)},
        {QStringLiteral("code"), diagnostic.code},
        {QStringLiteral("text"), diagnostic.text},
    };
}

}  // namespace trv::cli
