#include <cli/roff_page.h>

#include <QRegularExpression>
#include <QStringBuilder>

namespace trv::cli {
namespace {

// Formatters print these characters as others: a "'" as a quotation mark, a "-" as a hyphen.
QString escapeOf(QChar character) {
    switch (character.unicode()) {
        case '\\':
            return QStringLiteral("\\e");
        case '-':
            return QStringLiteral("\\-");
        case '\'':
            return QStringLiteral("\\(aq");
        case '`':
            return QStringLiteral("\\(ga");
        case '^':
            return QStringLiteral("\\(ha");
        case '~':
            return QStringLiteral("\\(ti");
        case '"':
            return QStringLiteral("\\(dq");
        default:
            return character;
    }
}

QString codePoint(uint character) {
    constexpr int digits = 4;
    constexpr int hexadecimal = 16;
    return QStringLiteral("\\[u%1]").arg(
        QStringLiteral("%1").arg(character, digits, hexadecimal, QLatin1Char('0')).toUpper());
}

// Formatters print more space after a sentence at the end of a line than after one within it. So
// each sentence ends a line.
QString withSentencesOnLines(QString text) {
    static const QRegularExpression end(QStringLiteral("\\. +(?=[A-Z\"'])"));
    return text.replace(end, QStringLiteral(".\n"));
}

}  // namespace

QString roffText(const QString& text) {
    constexpr uint lastAscii = 0x7E;
    QString roff;
    for (const uint character : text.toUcs4())
        roff += character > lastAscii ? codePoint(character) : escapeOf(QChar(character));
    return roff;
}

QString roffBold(const QString& text) {
    return QLatin1String("\\fB") % roffText(text) % QLatin1String("\\fR");
}

QString roffItalic(const QString& text) {
    return QLatin1String("\\fI") % roffText(text) % QLatin1String("\\fR");
}

// Without a date: the same sources make the same page. Without hyphenation: a name of a file that
// is divided by a hyphen is another name. The macros of groff turn it on for each paragraph, unless
// the register HY is 0.
RoffPage::RoffPage(const QString& name, const QString& source) {
    line(QLatin1String(".TH ") % roffText(name) % QLatin1String(R"( 1 "" ")") % roffText(source) %
         QLatin1String(R"(" "User Commands")"));
    line(QStringLiteral(".ad l\n.nh\n.nr HY 0"));
}

void RoffPage::section(const QString& title) {
    heading(QStringLiteral(".SH"), title);
}

void RoffPage::subsection(const QString& title) {
    heading(QStringLiteral(".SS"), title);
}

void RoffPage::synopsis(const QList<Call>& calls) {
    for (const Call& call : calls) {
        line(QLatin1String(".SY \"") % roffText(call.command) % QLatin1Char('"'));
        if (!call.roffArguments.isEmpty()) textLines(call.roffArguments);
    }
    line(QStringLiteral(".YS"));
    isAfterHeading_ = false;
}

void RoffPage::paragraph(const QString& text) {
    if (!isAfterHeading_) line(QStringLiteral(".PP"));
    fill(text);
}

void RoffPage::item(const QString& roffTerm, const QString& text) {
    line(QStringLiteral(".TP"));
    textLines(roffTerm);
    fill(text);
}

void RoffPage::literal(const QStringList& lines) {
    line(QStringLiteral(".RS 4\n.EX"));
    textLines(roffText(lines.join(QLatin1Char('\n'))));
    line(QStringLiteral(".EE\n.RE"));
    isAfterHeading_ = false;
}

void RoffPage::line(const QString& roff) {
    text_ += roff % QLatin1Char('\n');
}

// A full stop at the beginning of a line would begin a request.
void RoffPage::textLines(const QString& roff) {
    for (const QString& part : roff.split(QLatin1Char('\n')))
        line(part.startsWith(QLatin1Char('.')) ? QLatin1String("\\&") % part : part);
}

void RoffPage::heading(const QString& macro, const QString& title) {
    line(macro % QLatin1String(" \"") % roffText(title) % QLatin1Char('"'));
    isAfterHeading_ = true;
}

void RoffPage::fill(const QString& text) {
    QStringList indented;
    for (const QString& part : text.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        if (part.startsWith(QLatin1Char(' '))) {
            indented += part.trimmed();
            continue;
        }
        if (!indented.isEmpty()) literal(indented);
        indented.clear();
        textLines(roffText(withSentencesOnLines(part)));
    }
    if (!indented.isEmpty()) literal(indented);
    isAfterHeading_ = false;
}

}  // namespace trv::cli
