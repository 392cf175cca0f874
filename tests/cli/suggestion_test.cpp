#include <cli/suggestion.h>

#include <gtest/gtest.h>

namespace trv::cli {
namespace {

const QStringList commands = {QStringLiteral("show"), QStringLiteral("check"),
                              QStringLiteral("assembly")};

QString nearest(const char* word) {
    return nearestName(QString::fromLatin1(word), commands);
}

TEST(Suggestion, IsTheNameWithTheFewestDifferences) {
    EXPECT_EQ(nearest("shwo"), QStringLiteral("show"));
    EXPECT_EQ(nearest("sho"), QStringLiteral("show"));
    EXPECT_EQ(nearest("shoow"), QStringLiteral("show"));
    EXPECT_EQ(nearest("shaw"), QStringLiteral("show"));
    EXPECT_EQ(nearest("CHECK"), QStringLiteral("check"));
    EXPECT_EQ(nearest("asembley"), QStringLiteral("assembly"));
}

// A third of the characters, rounded up: 2 of 4 and 3 of 8.
TEST(Suggestion, IsEmptyForAWordThatIsTooDifferent) {
    EXPECT_EQ(nearest("shxx"), QStringLiteral("show"));
    EXPECT_EQ(nearest("sxxx"), QString());
    EXPECT_EQ(nearest("assexxxy"), QStringLiteral("assembly"));
    EXPECT_EQ(nearest("assxxxxy"), QString());
    EXPECT_EQ(nearest(""), QString());
    EXPECT_EQ(nearestName(QStringLiteral("-x"), {QStringLiteral("-h")}), QString());
    EXPECT_EQ(nearestName(QString(65, QLatin1Char('s')), {QString(65, QLatin1Char('s'))}),
              QString());
}

TEST(Suggestion, IsTheFirstOfEquallySimilarNames) {
    EXPECT_EQ(nearestName(QStringLiteral("vec4"), {QStringLiteral("vec1"), QStringLiteral("vec2")}),
              QStringLiteral("vec1"));
}

TEST(Suggestion, IsAQuestion) {
    EXPECT_EQ(suggestionFor(QStringLiteral("shwo"), commands),
              QStringLiteral("; did you mean 'show'?"));
    EXPECT_EQ(suggestionFor(QStringLiteral("xyz"), commands), QString());
}

}  // namespace
}  // namespace trv::cli
