#include <cli/file_output.h>

#include <gtest/gtest.h>

#include <sstream>

namespace trv::cli {
namespace {

QStringList names(const char* text) {
    return QString::fromUtf8(text).split(QLatin1Char(' '));
}

void addName(FileOutput& output, const char* name) {
    output.writeJson([name](JsonWriter& json) { json.add("file", QString::fromUtf8(name)); });
}

TEST(FileOutput, AddsNothingToTheTextOfOneFile) {
    std::ostringstream out;
    FileOutput output(1, Heading::name, out);
    output.beginText(QStringLiteral("a")) << "text\n";
    EXPECT_EQ(out.str(), "text\n");
}

TEST(FileOutput, NamesEachOfSeveralFiles) {
    std::ostringstream out;
    FileOutput output(3, Heading::name, out);
    output.beginText(QStringLiteral("a\tb")) << "one\n";
    output.beginText(QStringLiteral("-")) << "two\n";
    EXPECT_EQ(out.str(), "==> a\\x09b <==\none\n\n==> standard input <==\ntwo\n");
}

TEST(FileOutput, SeparatesTextsThatNameTheirFile) {
    std::ostringstream out;
    FileOutput output(2, Heading::blankLine, out);
    output.beginText(QStringLiteral("a")) << "one\n";
    output.beginText(QStringLiteral("b")) << "two\n";
    EXPECT_EQ(out.str(), "one\n\ntwo\n");
}

TEST(FileOutput, WritesTheObjectOfOneFile) {
    std::ostringstream out;
    FileOutput output(1, Heading::name, out);
    addName(output, "a");
    output.endJson();
    EXPECT_EQ(out.str(), "{\"file\":\"a\"}\n");
}

TEST(FileOutput, WritesOneDocumentForSeveralFiles) {
    std::ostringstream out;
    FileOutput output(2, Heading::name, out);
    addName(output, "a");
    addName(output, "b");
    output.endJson();
    EXPECT_EQ(out.str(), "{\"files\":[{\"file\":\"a\"},{\"file\":\"b\"}]}\n");
}

TEST(FileOutput, WritesADocumentIfNoneOfSeveralFilesIsRead) {
    std::ostringstream out;
    FileOutput(2, Heading::name, out).endJson();
    EXPECT_EQ(out.str(), "{\"files\":[]}\n");
    std::ostringstream one;
    FileOutput(1, Heading::name, one).endJson();
    EXPECT_EQ(one.str(), "");
}

TEST(PrintEachFile, GoesOnAfterAProblem) {
    std::ostringstream err;
    QStringList tried;
    const ExitStatus status =
        printEachFile(names("a - c"), {err, err}, [&](const QString& name) -> Problem {
            tried += name;
            if (name == QLatin1String("c")) return {};
            return {eFileIOOpenError, QStringLiteral("why")};
        });
    EXPECT_EQ(status, failed);
    EXPECT_EQ(tried, names("a - c"));
    EXPECT_EQ(err.str(),
              "trvfiles: a: eFileIOOpenError: why\n"
              "trvfiles: standard input: eFileIOOpenError: why\n");
}

TEST(PrintEachFile, IsDoneWithoutAProblem) {
    std::ostringstream err;
    EXPECT_EQ(printEachFile(names("a"), {err, err}, [](const QString&) { return Problem(); }),
              done);
}

}  // namespace
}  // namespace trv::cli
