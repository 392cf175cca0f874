#include <cli/sibling_pairs.h>
#include <tests/cli/samples.h>
#include <tests/common/growth.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace trv::testing {
namespace {

using Parts = std::vector<CTrvAssemblyComponentData>;

CTrvAssemblyComponentData at(double x, CTrvAssemblyComponentData part) {
    const double translation[] = {x, 0, 0};
    part.setTranslation(translation);
    return part;
}

// "0-1 1-2" for the indices in both lists. A component that is only in the first list is "0-", one
// that is only in the second list is "-1", and one that is moved has a "!".
std::string pairs(const Parts& first, const Parts& second) {
    const CTrvAssemblyData one = assembly(component("", first));
    const CTrvAssemblyData other = assembly(component("", second));
    const cli::AssemblyOutline ones(ComponentBody::of(one.getRootComponent()));
    const cli::AssemblyOutline others(ComponentBody::of(other.getRootComponent()));
    std::string text;
    for (const cli::SiblingPair& pair :
         cli::pairSiblings(ones, ones.root(), others, others.root())) {
        if (!text.empty()) text += ' ';
        if (pair.first != cli::SiblingPair::none) text += std::to_string(pair.first);
        text += '-';
        if (pair.second != cli::SiblingPair::none) text += std::to_string(pair.second);
        if (pair.isMoved) text += '!';
    }
    return text;
}

// A part for each letter, at its own place: "ab" is part "a" at 97 and part "b" at 98.
Parts parts(const std::string& letters) {
    Parts made;
    for (const char letter : letters)
        made.push_back(at(letter, component(std::string(1, letter))));
    return made;
}

std::string pairs(const std::string& first, const std::string& second) {
    return pairs(parts(first), parts(second));
}

TEST(SiblingPairs, OfEqualListsAreInOrder) {
    EXPECT_EQ(pairs("", ""), "");
    EXPECT_EQ(pairs("abc", "abc"), "0-0 1-1 2-2");
    EXPECT_EQ(pairs("aab", "aab"), "0-0 1-1 2-2");
}

TEST(SiblingPairs, LeaveOutWhatIsOnOneSide) {
    EXPECT_EQ(pairs("abc", "xabc"), "-0 0-1 1-2 2-3");
    EXPECT_EQ(pairs("abc", "bc"), "0- 1-0 2-1");
    EXPECT_EQ(pairs("abcd", "abxyd"), "0-0 1-1 2- -2 -3 3-4");
    EXPECT_EQ(pairs("", "ab"), "-0 -1");
    EXPECT_EQ(pairs("ab", ""), "0- 1-");
}

TEST(SiblingPairs, MoveAsFewAsPossible) {
    EXPECT_EQ(pairs("ab", "ba"), "0-1! 1-0");
    EXPECT_EQ(pairs("abcd", "bcda"), "0-3! 1-0 2-1 3-2");
    EXPECT_EQ(pairs("abcd", "dabc"), "0-1 1-2 2-3 3-0!");
    EXPECT_EQ(pairs("abcd", "xcab"), "-0 0-2 1-3 2-1! 3-");
}

TEST(SiblingPairs, DoNotMoveAPartOfTheSameNameElsewhere) {
    const Parts first = {at(1, leaf("jaw", "j")), at(2, leaf("jaw", "j")), at(3, leaf("jaw", "j"))};
    const Parts second = {at(2, leaf("jaw", "j")), at(3, leaf("jaw", "j")),
                          at(4, leaf("jaw", "j"))};
    EXPECT_EQ(pairs(first, second), "0- 1-0 2-1 -2");
}

TEST(SiblingPairs, PairChangedPartsOfTheSameNameInOrder) {
    const Parts first = {leaf("jaw", "j"), leaf("jaw", "k"), component("b")};
    const Parts second = {at(1, leaf("jaw", "k")), at(1, component("b"))};
    EXPECT_EQ(pairs(first, second), "0- 1-0 2-1");
    EXPECT_EQ(pairs({leaf("jaw", "j")}, {at(1, leaf("jaw", "k"))}), "0-0");
}

TEST(SiblingPairs, PreferTheSameFileAmongPartsOfTheSameName) {
    CTrvAssemblyComponentData changed = leaf("jaw", "k");
    changed.setComment("c");
    EXPECT_EQ(pairs({leaf("jaw", "j"), leaf("jaw", "k")}, {changed}), "0- 1-0");
    EXPECT_EQ(pairs({leaf("jaw", "j"), leaf("jaw", "k")}, {leaf("jaw", "l"), leaf("jaw", "m")}),
              "0-0 1-1");
}

TEST(SiblingPairs, PairTheSameSubtreesFirst) {
    const Parts first = {component("g", {component("x")}), component("g", {component("y")}),
                         component("g", {component("z")})};
    const Parts second = {component("g", {component("y")}), component("g", {component("z")})};
    EXPECT_EQ(pairs(first, second), "0- 1-0 2-1");
    const Parts turned = {component("g", {component("y")}), component("g", {component("x")}),
                          component("g", {component("z")})};
    EXPECT_EQ(pairs(first, turned), "0-1! 1-0 2-2");
    const Parts changed = {at(5, component("g", {component("y")})),
                           at(5, component("g", {component("z")}))};
    EXPECT_EQ(pairs(first, changed), "0- 1-0 2-1");
}

TEST(SiblingPairs, PairAChangedAndMovedPartByItsUniqueName) {
    const auto changed = [](const char* name) { return at(5, component(name)); };
    EXPECT_EQ(pairs({component("a"), component("b"), component("c")},
                    {component("b"), component("c"), changed("a")}),
              "0-2! 1-0 2-1");
    EXPECT_EQ(pairs({component("a"), component("b"), at(1, component("b"))},
                    {component("b"), changed("b"), changed("a")}),
              "0-2! 1-0 2-1");
    EXPECT_EQ(pairs({component("a"), component("b"), component("a")},
                    {component("a"), component("b"), component("b"), changed("a")}),
              "0-0 1-1 -2 2-3");
    EXPECT_EQ(pairs({leaf("a", "f"), component("b"), component("c")},
                    {component("b"), component("c"), leaf("a", "g"), leaf("a", "h")}),
              "0- 1-0 2-1 -2 -3");
}

TEST(SiblingPairs, PairARenamedPart) {
    // The same content.
    EXPECT_EQ(pairs({component("a"), component("b")}, {component("a"), component("c")}), "0-0 1-1");
    // The same file.
    EXPECT_EQ(pairs({leaf("a", "f")}, {at(1, leaf("b", "f"))}), "0-0");
    EXPECT_EQ(pairs({leaf("a", "f")}, {at(1, leaf("b", "g"))}), "0- -0");
    // The same content is preferred to the same file.
    EXPECT_EQ(pairs({leaf("a", "f")}, {at(1, leaf("b", "f")), leaf("c", "f")}), "-0 0-1");
    // The same names of the children.
    EXPECT_EQ(pairs({component("a", {component("x")})}, {at(1, component("b", {component("x")}))}),
              "0-0");
    EXPECT_EQ(pairs({component("a", {component("x")})}, {at(1, component("b", {component("y")}))}),
              "0- -0");
    EXPECT_EQ(pairs({component("a", {component("x"), component("y")})},
                    {component("b", {leaf("y", "f"), component("x")})}),
              "0-0");
    EXPECT_EQ(pairs({component("a")}, {at(1, component("b"))}), "0- -0");
}

TEST(SiblingPairs, PairARenamedAndMovedPart) {
    const Parts others = {component("x"), component("y")};
    const auto first = [&](const CTrvAssemblyComponentData& part) {
        return Parts{part, others[0], others[1]};
    };
    const auto last = [&](const CTrvAssemblyComponentData& part) {
        return Parts{others[0], others[1], part};
    };
    // The same content.
    EXPECT_EQ(pairs(first(leaf("a", "f")), last(leaf("b", "f"))), "0-2! 1-0 2-1");
    // The same file.
    EXPECT_EQ(pairs(first(leaf("a", "f")), last(at(1, leaf("b", "f")))), "0-2! 1-0 2-1");
    EXPECT_EQ(pairs(first(leaf("a", "f")), last(at(1, leaf("b", "g")))), "0- 1-0 2-1 -2");
    // The same names of the children.
    EXPECT_EQ(pairs(first(component("a", {component("k")})),
                    last(at(1, component("b", {component("k")})))),
              "0-2! 1-0 2-1");
    // Empty groups have nothing in common.
    EXPECT_EQ(pairs(first(component("a")), last(component("b"))), "0- 1-0 2-1 -2");
}

TEST(SiblingPairs, PairRenamedAndMovedPartsOfOneFileByTheirOrder) {
    EXPECT_EQ(
        pairs({leaf("a", "f"), leaf("b", "f"), component("x"), component("y"), component("z")},
              {component("x"), component("y"), component("z"), at(1, leaf("c", "f")),
               at(2, leaf("d", "f"))}),
        "0-3! 1-4! 2-0 3-1 4-2");
    // The same content is preferred to the same order.
    EXPECT_EQ(pairs({leaf("a", "f"), component("x"), component("y")},
                    {component("x"), component("y"), at(1, leaf("c", "f")), leaf("d", "f")}),
              "0-3! 1-0 2-1 -2");
}

TEST(SiblingPairs, OfListsThatAreEqualWithinTheTolerancesAreInOrder) {
    // Each value rounds to another multiple of 1e-5, so the keys of the contents are swapped.
    const double low = 4.9999e-6;
    const double high = 5.0001e-6;
    EXPECT_EQ(pairs({at(low, component("a")), at(high, component("a"))},
                    {at(high, component("a")), at(low, component("a"))}),
              "0-0 1-1");
    EXPECT_EQ(pairs({component("g", {at(low, component("a"))}),
                     component("g", {at(high, component("a"))})},
                    {component("g", {at(high, component("a"))}),
                     component("g", {at(low, component("a"))})}),
              "0-0 1-1");
}

Parts shuffled(int count, std::mt19937& random, bool areNamesUnique) {
    Parts made;
    for (int i = 0; i < count; ++i)
        made.push_back(at(i, component(areNamesUnique ? std::to_string(i) : "a")));
    std::shuffle(made.begin(), made.end(), random);
    return made;
}

// Quadratic time would grow by a factor of 100.
TEST(SiblingPairs, TakeTimeAlmostProportionalToTheLists) {
    std::mt19937 random(1);
    for (const bool areNamesUnique : {false, true}) {
        const double ratio = growth(500, 5000, [&](int count) {
            const CTrvAssemblyData data =
                assembly(component("", {component("", shuffled(count, random, areNamesUnique)),
                                        component("", shuffled(count, random, areNamesUnique))}));
            const cli::AssemblyOutline outline(ComponentBody::of(data.getRootComponent()));
            const cli::OutlineNode* const lists = outline.childrenOf(outline.root());
            return processorTime([&] {
                const auto result = cli::pairSiblings(outline, lists[0], outline, lists[1]);
                EXPECT_EQ(result.size(), static_cast<std::size_t>(count));
            });
        });
        EXPECT_LT(ratio, 40);
    }
}

}  // namespace
}  // namespace trv::testing
