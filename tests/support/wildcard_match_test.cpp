#include <trvfiles/support/file_system.h>

#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <string>

namespace trv {
namespace {

int matches(const char* pattern, const char* name) {
    return wildcard_match(pattern, name, true);
}

TEST(WildcardMatch, AStarMatchesAnyRunAndTheEmptyOne) {
    EXPECT_EQ(matches("*", ""), 1);
    EXPECT_EQ(matches("*", "abc"), 1);
    EXPECT_EQ(matches("a*", "a"), 1);
    EXPECT_EQ(matches("*c", "abc"), 1);
    EXPECT_EQ(matches("a*c", "abbbc"), 1);
    EXPECT_EQ(matches("**", ""), 1);
    EXPECT_EQ(matches("a**b", "ab"), 1);
    EXPECT_EQ(matches("a*c", "abbbd"), 0);
    EXPECT_EQ(matches("*.mctx", "part.mctx"), 1);
    EXPECT_EQ(matches("*.mctx", "part.mctx.ref"), 0);
    EXPECT_EQ(matches("*.mctx", "a.mctx.mctx"), 1);
}

TEST(WildcardMatch, AQuestionMarkMatchesOneCharacterAndNoEnd) {
    EXPECT_EQ(matches("a?c", "abc"), 1);
    EXPECT_EQ(matches("a?", "a"), 0);
    EXPECT_EQ(matches("?", ""), 0);
    EXPECT_EQ(matches("?", "ab"), 0);
    EXPECT_EQ(matches("*?", ""), 0);
    EXPECT_EQ(matches("*?", "x"), 1);
    EXPECT_EQ(matches("?*?", "xy"), 1);
    EXPECT_EQ(matches("?*?", "x"), 0);
}

TEST(WildcardMatch, AnEmptyPatternMatchesOnlyAnEmptyName) {
    EXPECT_EQ(matches("", ""), 1);
    EXPECT_EQ(matches("", "a"), 0);
    EXPECT_EQ(matches("a", ""), 0);
}

TEST(WildcardMatch, ANullPatternOrNameMatches) {
    EXPECT_EQ(matches(nullptr, "a"), 1);
    EXPECT_EQ(matches("a", nullptr), 1);
    EXPECT_EQ(matches(nullptr, nullptr), 1);
}

TEST(WildcardMatch, CaseCountsOnlyWhenAskedFor) {
    EXPECT_EQ(wildcard_match("A?C", "abc", false), 1);
    EXPECT_EQ(wildcard_match("A?C", "abc", true), 0);
    EXPECT_EQ(wildcard_match("a*Z", "AxxZ", false), 1);
    EXPECT_EQ(wildcard_match("\xC9", "\xE9", false), 0);
    EXPECT_EQ(wildcard_match("[", "{", false), 0);
}

TEST(WildcardMatch, StarsAndQuestionMarksOfANameAreCharacters) {
    EXPECT_EQ(matches("a", "*"), 0);
    EXPECT_EQ(matches("*", "*"), 1);
    EXPECT_EQ(matches("*b", "*ab"), 1);
    EXPECT_EQ(matches("a", "?"), 0);
}

TEST(WildcardMatch, ManyStarsCostNoExponentialTime) {
    std::string pattern;
    for (int i = 0; i < 30; ++i)
        pattern += "*a";
    pattern += "*b";
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(matches("*a*a*a*a*b", std::string(60, 'a').c_str()), 0);
    EXPECT_EQ(matches(pattern.c_str(), std::string(5000, 'a').c_str()), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
}

// The definition of the rule, without regard to time.
bool matchesByRule(const char* pattern, const char* name) {
    if (*pattern == '\0') return *name == '\0';
    if (*pattern == '*') {
        for (const char* rest = name;; ++rest) {
            if (matchesByRule(pattern + 1, rest)) return true;
            if (*rest == '\0') return false;
        }
    }
    if (*name == '\0' || (*pattern != '?' && *pattern != *name)) return false;
    return matchesByRule(pattern + 1, name + 1);
}

TEST(WildcardMatch, AgreesWithTheRecursiveRule) {
    std::mt19937 random(20240507);
    const auto text = [&random](std::string_view letters, std::size_t maxLength) {
        std::string made(random() % (maxLength + 1), ' ');
        for (char& c : made)
            c = letters[random() % letters.size()];
        return made;
    };
    int found = 0;
    for (int i = 0; i < 50000; ++i) {
        const std::string pattern = text("ab*?", 8);
        const std::string name = text("ab", 10);
        const bool expected = matchesByRule(pattern.c_str(), name.c_str());
        EXPECT_EQ(matches(pattern.c_str(), name.c_str()), expected ? 1 : 0)
            << pattern << " against " << name;
        found += expected ? 1 : 0;
    }
    EXPECT_GT(found, 1000);
}

}  // namespace
}  // namespace trv
