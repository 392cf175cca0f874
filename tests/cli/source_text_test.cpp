#include <cli/source_text.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>

#include <gtest/gtest.h>

#include <string>

namespace trv::cli {
namespace {

std::string lineOf(const SourceText& text, int number) {
    return text.line(number).toStdString();
}

TEST(SourceText, CountsTheLinesOfATextWithFeeds) {
    const SourceText text(QStringLiteral("a\r\nb\rc\n\nd"), SourceText::Lines::ofText);
    EXPECT_EQ(text.lineCount(), 4);
    EXPECT_EQ(lineOf(text, 1), "a");
    EXPECT_EQ(lineOf(text, 2), "b\rc");
    EXPECT_EQ(lineOf(text, 3), "");
    EXPECT_EQ(lineOf(text, 4), "d");
    EXPECT_EQ(lineOf(text, 0), "");
    EXPECT_EQ(lineOf(text, 5), "");
}

TEST(SourceText, CountsTheLinesOfXmlWithReturnsAsWell) {
    const SourceText text(QStringLiteral("a\r\nb\rc\n"), SourceText::Lines::ofXml);
    EXPECT_EQ(text.lineCount(), 4);
    EXPECT_EQ(lineOf(text, 2), "b");
    EXPECT_EQ(lineOf(text, 3), "c");
}

TEST(SourceText, ConvertsPlacesInBothDirections) {
    const SourceText text(QStringLiteral("ab\ncd"), SourceText::Lines::ofText);
    EXPECT_EQ(text.positionOf({1, 1}), 0);
    EXPECT_EQ(text.positionOf({2, 2}), 4);
    EXPECT_EQ(text.positionOf({2, 3}), -1);
    EXPECT_EQ(text.positionOf({3, 1}), -1);
    EXPECT_EQ(text.positionOf({0, 1}), -1);
    EXPECT_EQ(text.positionOf({1, 0}), -1);
    EXPECT_EQ(text.placeOf(4).line, 2);
    EXPECT_EQ(text.placeOf(4).column, 2);
    EXPECT_EQ(text.placeOf(2).line, 1);
}

TEST(SourceText, ReadsAFileInItsEncoding) {
    const testing::TemporaryDirectory directory;
    const QString name = QString::fromStdString((directory / "f").generic_string());
    testing::writeBytes(directory / "f", std::string("\xFF\xFE<\0\xE9\0", 6));
    EXPECT_EQ(SourceText::ofFile(name, SourceText::Lines::ofXml).text().toStdString(), "<\u00e9");
    testing::writeBytes(directory / "f", "\xEF\xBB\xBF[\xC3\xA9]");
    EXPECT_EQ(SourceText::ofFile(name, SourceText::Lines::ofText).text().toStdString(), "[\u00e9]");
}

TEST(SourceText, IsEmptyWithoutAFile) {
    const SourceText text = SourceText::ofFile(QStringLiteral("missing"), SourceText::Lines::ofXml);
    EXPECT_EQ(text.text(), QString());
    EXPECT_EQ(SourceText().line(1), QString());
    EXPECT_EQ(SourceText().positionOf({1, 1}), -1);
}

}  // namespace
}  // namespace trv::cli
