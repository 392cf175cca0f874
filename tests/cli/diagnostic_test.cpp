#include <cli/diagnostic.h>

#include <QJsonDocument>
#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace trv::cli {
namespace {

using Severity = Diagnostic::Severity;

std::string printed(const Diagnostic& diagnostic, int columns = 0) {
    std::ostringstream stream;
    printDiagnostic(QStringLiteral("a\tb"), diagnostic, columns, stream);
    return stream.str();
}

Diagnostic inLine(const QString& line, int column) {
    return {Severity::error, {1, column}, {}, QStringLiteral("x"), line};
}

// Without the first line.
std::string excerpt(const QString& line, int column, int columns) {
    const std::string text = printed(inLine(line, column), columns);
    return text.substr(text.find('\n') + 1);
}

TEST(Diagnostic, IsPrintedLikeThatOfACompiler) {
    EXPECT_EQ(printed({Severity::warning, {12, 3}, {}, QStringLiteral("why\n"), {}}),
              "a\\x09b:12:3: warning: why\\x0a\n");
    EXPECT_EQ(printed({Severity::error, {12, 0}, {}, QStringLiteral("why"), {}}),
              "a\\x09b:12: error: why\n");
    EXPECT_EQ(printed({Severity::error, {0, 3}, {}, QStringLiteral("why"), {}}),
              "a\\x09b: error: why\n");
}

TEST(Diagnostic, ShowsItsLineWithACaret) {
    EXPECT_EQ(excerpt(QStringLiteral("one two"), 5, 80), "  one two\n      ^\n");
    EXPECT_EQ(excerpt(QStringLiteral("one"), 4, 80), "  one\n     ^\n");
    EXPECT_EQ(excerpt(QStringLiteral("\tone"), 2, 80), "   one\n   ^\n");
}

TEST(Diagnostic, ShowsHiddenCharactersBeforeTheCaret) {
    EXPECT_EQ(excerpt(QStringLiteral("a\x1b[b"), 4, 80), "  a\\x1b[b\n        ^\n");
}

TEST(Diagnostic, CutsItsLineAroundTheCaret) {
    const QString tail = QString(50, QLatin1Char('x'));
    EXPECT_EQ(excerpt(QStringLiteral("ab") + tail, 2, 33),
              "  ab" + std::string(25, 'x') + "...\n   ^\n");
    EXPECT_EQ(excerpt(tail + QStringLiteral("ab"), 51, 33),
              "  ..." + std::string(25, 'x') + "ab\n" + std::string(30, ' ') + "^\n");
    EXPECT_EQ(excerpt(tail + QStringLiteral("a") + tail, 51, 33),
              "  ..." + std::string(17, 'x') + "a" + std::string(6, 'x') + "...\n" +
                  std::string(22, ' ') + "^\n");
}

TEST(Diagnostic, HasJsonWithoutItsSentence) {
    const QJsonObject fields = {{QStringLiteral("subject"), QStringLiteral("vec1")}};
    EXPECT_EQ(QJsonDocument(diagnosticJson({Severity::warning,
                                            {2, 0},
                                            QStringLiteral("not-a-number"),
                                            QStringLiteral("why"),
                                            {},
                                            fields}))
                  .toJson(QJsonDocument::Compact)
                  .toStdString(),
              "{\"code\":\"not-a-number\",\"column\":null,\"line\":2,"
              "\"severity\":\"warning\",\"subject\":\"vec1\"}");
}

}  // namespace
}  // namespace trv::cli
