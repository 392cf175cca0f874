#include <cli/diagnostic_places.h>

#include <gtest/gtest.h>

#include <string>

namespace trv::cli {
namespace {

using Kind = CFileFault::Note::Kind;

std::string text(Place place) {
    return std::to_string(place.line) + ':' + std::to_string(place.column);
}

SourceText source(const char* content) {
    return SourceText(QString::fromUtf8(content), SourceText::Lines::ofText);
}

std::string placeOfNote(const char* content, FileKind kind, const CFileFault::Note& note) {
    return text(cli::placeOfNote(source(content), kind, note));
}

std::string placeOfFailure(const char* content, FileKind kind, Place place) {
    return text(cli::placeOfFailure(source(content), kind, place));
}

CFileFault::Note note(Kind kind, int line, int column, const char* attribute) {
    return {kind, line, column, {}, {}, attribute};
}

TEST(DiagnosticPlaces, AreTheValuesOfAttributes) {
    const char* const document = "<a>\n <b x='>'\n  y=\"z\"/>";
    EXPECT_EQ(placeOfNote(document, FileKind::assembly, note(Kind::notANumber, 3, 8, "y")), "3:6");
    EXPECT_EQ(placeOfNote(document, FileKind::assembly, note(Kind::notANumber, 3, 8, "x")), "2:8");
    EXPECT_EQ(
        placeOfNote("<b x='1' x='2'/>", FileKind::assembly, note(Kind::notANumber, 1, 15, "x")),
        "1:13");
}

TEST(DiagnosticPlaces, AreTheNamesOfUnknownAttributes) {
    EXPECT_EQ(
        placeOfNote("<b x='1' X='2'>", FileKind::assembly, note(Kind::unknownName, 1, 15, "X")),
        "1:10");
}

TEST(DiagnosticPlaces, AreTheBeginningsOfElements) {
    EXPECT_EQ(placeOfNote("\n <b\n>", FileKind::assembly, note(Kind::repeated, 3, 1, "")), "2:2");
    // A byte that is not text is in no tag's end.
    EXPECT_EQ(placeOfNote("<a b='?'/>", FileKind::assembly, note(Kind::notText, 1, 7, "")), "1:7");
    EXPECT_EQ(placeOfNote("", FileKind::assembly, note(Kind::repeated, 3, 1, "")), "3:1");
}

TEST(DiagnosticPlaces, AreTheValuesOfKeys) {
    EXPECT_EQ(
        placeOfNote("[a]\nk = \u00e9", FileKind::machineContext, note(Kind::notText, 2, 0, "")),
        "2:5");
    EXPECT_EQ(placeOfNote("\u00e9=\t1", FileKind::machineContext, note(Kind::notANumber, 1, 0, "")),
              "1:4");
    EXPECT_EQ(placeOfNote("k=", FileKind::machineContext, note(Kind::notANumber, 1, 0, "")), "1:3");
    EXPECT_EQ(placeOfNote("[a]", FileKind::machineContext, note(Kind::missingSection, 1, 0, "")),
              "1:1");
    EXPECT_EQ(placeOfNote("[a]", FileKind::machineContext, note(Kind::missingSection, 0, 0, "")),
              "0:0");
}

TEST(DiagnosticPlaces, AreTheBeginningsOfLinesInAxisFiles) {
    EXPECT_EQ(placeOfNote("0\n  1 0 0 0", FileKind::axis, note(Kind::notOrthonormal, 2, 0, "")),
              "2:3");
}

TEST(DiagnosticPlaces, OfFailuresAreElementsWordsAndHeaders) {
    EXPECT_EQ(placeOfFailure("<a>\n<b c='d'>", FileKind::assembly, {2, 9}), "2:1");
    EXPECT_EQ(placeOfFailure("<a></b>", FileKind::assembly, {1, 7}), "1:7");
    EXPECT_EQ(placeOfFailure("<a", FileKind::assembly, {1, 3}), "1:3");
    EXPECT_EQ(placeOfFailure("0\n 1 0 x 0", FileKind::axis, {2, 0}), "2:6");
    EXPECT_EQ(placeOfFailure("0\n1 0 0", FileKind::axis, {2, 0}), "2:6");
    EXPECT_EQ(placeOfFailure("0\n1,5 0 0 0", FileKind::axis, {2, 0}), "2:2");
    EXPECT_EQ(placeOfFailure("0", FileKind::axis, {2, 0}), "2:0");
    EXPECT_EQ(placeOfFailure("\n[machine]\n", FileKind::machineContext, {2, 0}), "2:1");
    EXPECT_EQ(placeOfFailure("x", FileKind::machineContext, {0, 0}), "0:0");
}

TEST(DiagnosticPlaces, OfAValueAreThoseOfTheKeyThatCounts) {
    const SourceText context = source("[a]\nk=1\n[b]\nk=2\nk = 3\n[a]\nm=4\n");
    EXPECT_EQ(text(placeOfValue(context, QStringLiteral("b"), QStringLiteral("k"))), "5:5");
    EXPECT_EQ(text(placeOfValue(context, QStringLiteral("a"), QStringLiteral("m"))), "7:3");
    // The section is opened again, so its first lines do not count.
    EXPECT_EQ(text(placeOfValue(context, QStringLiteral("a"), QStringLiteral("k"))), "0:0");
}

}  // namespace
}  // namespace trv::cli
