#include <cli/assembly_difference.h>
#include <tests/cli/samples.h>
#include <tests/common/growth.h>

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <sstream>
#include <streambuf>
#include <string>
#include <vector>

namespace trv::testing {
namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

// Returns the lines, and checks that the result is that of comparing the records.
std::string difference(const CTrvAssemblyData& first, const CTrvAssemblyData& second) {
    std::ostringstream out;
    EXPECT_EQ(cli::printDifferences(first, second, out), first != second);
    return out.str();
}

CTrvAssemblyComponentData movedTo(double x, double y, double z) {
    CTrvAssemblyComponentData made = component("a");
    const double translation[] = {x, y, z};
    made.setTranslation(translation);
    return made;
}

CTrvAssemblyData sized(double x, double y, double z) {
    CTrvAssemblyData made;
    const double size[] = {x, y, z};
    made.setDimension(size);
    return made;
}

TEST(PrintDifferences, PrintsNothingForEqualAssemblies) {
    EXPECT_EQ(difference(CTrvAssemblyData(), CTrvAssemblyData()), "");
    EXPECT_EQ(difference(chain(5, "f"), chain(5, "f")), "");
}

TEST(PrintDifferences, ComparesTheSizeByItsSquaredDistance) {
    EXPECT_EQ(difference(sized(1, 2, 3), sized(1, 2, 4)), "dimension: 1 2 3 -> 1 2 4\n");
    EXPECT_EQ(difference(sized(0, 0, 0), sized(0.0009, 0, 0)), "");
    EXPECT_EQ(difference(sized(0, 0, 0), sized(0.001, 0.001, 0)),
              "dimension: 0 0 0 -> 0.001 0.001 0\n");
    EXPECT_EQ(difference(sized(0, 0, 0), sized(notANumber, 0, 0)), "");
}

TEST(PrintDifferences, NamesEveryField) {
    CTrvAssemblyComponentData one = leaf("a", "f");
    CTrvAssemblyComponentData other = leaf("b", "g\n");
    other.setComment("c");
    other.setEnabled(false);
    const double vec1[] = {2, 0, 0};
    const double vec2[] = {0, 2, 0};
    const double vec3[] = {0, 0, 1};
    const double translation[] = {0, 0, 0.5};
    other.setOrientation(vec1, vec2, vec3);
    other.setTranslation(translation);
    EXPECT_EQ(difference(assembly(one), assembly(other)),
              "a: name \"a\" -> \"b\"\n"
              "a: comment \"\" -> \"c\"\n"
              "a: file \"f\" -> \"g\\x0a\"\n"
              "a: enabled -> disabled\n"
              "a: moved by 0 0 0.5\n"
              "a: vec1 1 0 0 -> 2 0 0\n"
              "a: vec2 0 1 0 -> 0 2 0\n");
    EXPECT_NE(difference(assembly(other), assembly(one)).find("b: disabled -> enabled\n"),
              std::string::npos);
}

TEST(PrintDifferences, ComparesPlacementsWithATolerance) {
    EXPECT_EQ(difference(assembly(movedTo(0, 0, 0)), assembly(movedTo(1e-7, 0, 0))), "");
    EXPECT_EQ(difference(assembly(movedTo(0, 0, 0)), assembly(movedTo(1e-6, 0, 0))), "");
    EXPECT_EQ(difference(assembly(movedTo(0, 0, 0)), assembly(movedTo(0, 2e-6, 0))),
              "a: moved by 0 0.000002 0\n");
}

TEST(PrintDifferences, TreatsNoNanAsADifference) {
    EXPECT_EQ(difference(assembly(movedTo(0, 0, 0)), assembly(movedTo(0, 0, notANumber))), "");
    EXPECT_EQ(difference(assembly(movedTo(infinity, 0, 0)), assembly(movedTo(infinity, 0, 0))), "");
    EXPECT_EQ(difference(assembly(movedTo(infinity, 0, 0)), assembly(movedTo(-infinity, 0, 0))),
              "a: translation inf 0 0 -> -inf 0 0\n");
}

TEST(PrintDifferences, NotesTheThirdVector) {
    const double vec1[] = {1, 0, 0};
    const double vec2[] = {0, 1, 0};
    const double vec3[] = {0, 0, -1};
    CTrvAssemblyComponentData other = component("");
    other.setOrientation(vec1, vec2, vec3);
    EXPECT_EQ(
        difference(assembly(component("", {component("a")})), assembly(component("", {other}))),
        "(root)/a[0]: name \"a\" -> \"\"\n"
        "note: (root)/a[0]: vec3 0 0 1 -> 0 0 -1, which does not count\n");
    EXPECT_EQ(difference(assembly(component("")), assembly(other)),
              "note: (root): vec3 0 0 1 -> 0 0 -1, which does not count\n");
}

TEST(PrintDifferences, GivesThePathOfNamesAndPlaces) {
    EXPECT_EQ(
        difference(assembly(component(
                       "a", {component("b"), component("c", {component("d"), leaf("", "f")})})),
                   assembly(component(
                       "a", {component("b"), component("c", {component("d"), leaf("", "g")})}))),
        "a/c[1]/[1]: file \"f\" -> \"g\"\n");
}

TEST(PrintDifferences, NamesComponentsWithoutACounterpart) {
    EXPECT_EQ(
        difference(assembly(component(
                       "a", {component("b", {component("x")}), component("c"), component("d")})),
                   assembly(component("a", {component("b", {component("x"), component("y\n")})}))),
        "a/b[0]/y\\x0a[1]: only in the second file\n"
        "a/c[1]: only in the first file\n"
        "a/d[2]: only in the first file\n");
}

TEST(PrintDifferences, ContinuesAfterADifference) {
    EXPECT_EQ(
        difference(assembly(component("a", {component("b", {leaf("c", "e")}), leaf("d", "f")})),
                   assembly(component("A", {component("b", {leaf("C", "e")}), leaf("d", "g")}))),
        "a: name \"a\" -> \"A\"\n"
        "a/b[0]/c[0]: name \"c\" -> \"C\"\n"
        "a/d[1]: file \"f\" -> \"g\"\n");
}

TEST(PrintDifferences, CountsTheComponentsBelowOneWithoutACounterpart) {
    const CTrvAssemblyData small = assembly(component("a"));
    EXPECT_EQ(difference(assembly(component("a", {component("b", {component("c")})})), small),
              "a/b[0]: only in the first file, with 1 component below\n");
    EXPECT_EQ(difference(small, assembly(component(
                                    "a", {component("b", {component("c", {component("d")})})}))),
              "a/b[0]: only in the second file, with 2 components below\n");
}

TEST(PrintDifferences, PrintsALineForAMovedComponent) {
    EXPECT_EQ(
        difference(assembly(component("a", {leaf("b", "f"), leaf("c", "g"), leaf("d", "h")})),
                   assembly(component("a", {leaf("c", "g"), leaf("d", "h"), leaf("b", "f")}))),
        "a/b[0]: moved among its siblings to [2]\n");
    EXPECT_EQ(difference(assembly(component("a", {leaf("b", "f"), leaf("c", "g"), leaf("d", "h")})),
                         assembly(component("a", {leaf("x", "y"), leaf("b", "f"), leaf("c", "g"),
                                                  leaf("d", "h")}))),
              "a/x[0]: only in the second file\n");
}

TEST(AssemblyDifference, ReportsAComponentThatIsRenamedAndMoved) {
    EXPECT_EQ(
        difference(
            assembly(component("a", {leaf("jaw", "j"), component("b"), component("c")})),
            assembly(component("a", {component("b"), component("c"), leaf("soft jaw", "j")}))),
        "a/jaw[0]: moved among its siblings to [2]\n"
        "a/jaw[0]: name \"jaw\" -> \"soft jaw\"\n");
}

TEST(PrintDifferences, PrintsPlacementsInWords) {
    CTrvAssemblyComponentData other = movedTo(4, -1.0 / 3, 0);
    const double vec1[] = {0.8660254037844387, 0.49999999999999994, 0};
    const double vec2[] = {-0.49999999999999994, 0.8660254037844387, 0};
    const double vec3[] = {0, 0, 1};
    other.setOrientation(vec1, vec2, vec3);
    EXPECT_EQ(difference(assembly(movedTo(0, 0, 0)), assembly(other)),
              "a: moved by 4 -0.333333 0\n"
              "a: turned by 30° about z\n");
    EXPECT_EQ(difference(assembly(other), assembly(movedTo(0, 0, 0))),
              "a: moved by -4 0.333333 0\n"
              "a: turned by -30° about z\n");
}

TEST(PrintDifferences, AcceptsAnyDepth) {
    constexpr int levels = 100000;
    const std::string text = difference(chain(levels, "f"), chain(levels, "g"));
    const std::string end = "/L[0]/L[0]: file \"f\" -> \"g\"\n";
    EXPECT_EQ(text.size(), 1 + (levels - 1) * std::string("/L[0]").size() +
                               std::string(": file \"f\" -> \"g\"\n").size());
    EXPECT_EQ(text.substr(text.size() - end.size()), end);
}

// Counts the bytes that are written to it.
class ByteCounter : public std::streambuf {
public:
    std::size_t bytes() const { return bytes_; }

protected:
    int overflow(int character) override {
        ++bytes_;
        return character;
    }
    std::streamsize xsputn(const char*, std::streamsize count) override {
        bytes_ += static_cast<std::size_t>(count);
        return count;
    }

private:
    std::size_t bytes_ = 0;
};

// A chain whose innermost component has this number of children, all with this comment.
CTrvAssemblyData brush(int levels, int count, const std::string& comment) {
    CTrvAssemblyComponentData bristle = component("b");
    bristle.setComment(comment);
    CTrvAssemblyComponentData inner = component(
        "L", std::vector<CTrvAssemblyComponentData>(static_cast<std::size_t>(count), bristle));
    for (int level = 1; level < levels; ++level) {
        std::vector<CTrvAssemblyComponentData> children;
        children.push_back(std::move(inner));
        inner = component("L", std::move(children));
    }
    return assembly(std::move(inner));
}

// The length of each component's path is proportional to its depth. Printing takes about 9 times as
// long as a loop that writes the same number of paths of this length.
TEST(PrintDifferences, TakesTimeOnlyForWhatItPrints) {
    constexpr int levels = 990;
    constexpr int count = 20000;
    const CTrvAssemblyData first = brush(levels, count, "x");
    const CTrvAssemblyData second = brush(levels, count, "y");
    const CTrvAssemblyData shorter = brush(levels, 0, "");
    const std::size_t way = 1 + (levels - 1) * std::string("/L[0]").size();
    std::size_t places = 0;
    for (int i = 0; i < count; ++i)
        places += way + std::string("/b[]").size() + std::to_string(i).size();

    ByteCounter changes;
    std::ostream changesOut(&changes);
    ByteCounter extras;
    std::ostream extrasOut(&extras);
    const double printed = testing::processorTime([&] {
        EXPECT_TRUE(cli::printDifferences(first, second, changesOut));
        EXPECT_TRUE(cli::printDifferences(shorter, second, extrasOut));
    });
    ByteCounter plain;
    std::ostream plainOut(&plain);
    const double written = testing::processorTime([&] {
        for (int i = 0; i < 2 * count; ++i)
            plainOut << std::string(way, 'L') << "/b[" << i << "]\n";
    });
    EXPECT_LT(printed, 60 * written);
    EXPECT_EQ(changes.bytes(), places + count * std::string(": comment \"x\" -> \"y\"\n").size());
    EXPECT_EQ(extras.bytes(), places + count * std::string(": only in the second file\n").size());
}

// A tree whose fields rarely differ, so pairs of trees are equal or almost equal.
CTrvAssemblyComponentData randomTree(std::mt19937& random, int depth) {
    const auto seldom = [&] { return random() % 24 == 0; };
    CTrvAssemblyComponentData made = component(seldom() ? "b" : "a");
    if (seldom()) made.setComment("c");
    if (seldom()) made.setGeometryFileName("f");
    if (seldom()) made.setEnabled(false);
    const double values[] = {0, 5e-7, 2e-6, notANumber, infinity};
    const double translation[] = {0, seldom() ? values[random() % 5] : 0, 0};
    made.setTranslation(translation);
    const double vec1[] = {1, seldom() ? values[random() % 5] : 0, 0};
    const double vec2[] = {0, 1, seldom() ? values[random() % 5] : 0};
    const double vec3[] = {seldom() ? values[random() % 5] : 0, 0, 1};
    made.setOrientation(vec1, vec2, vec3);
    if (depth == 0) return made;
    std::vector<CTrvAssemblyComponentData> children;
    const int count = seldom() ? 2 : 1;
    for (int i = 0; i < count; ++i)
        children.push_back(randomTree(random, depth - 1));
    made.setComponents(std::move(children));
    return made;
}

TEST(PrintDifferences, AgreesWithTheRecordsOnEveryPair) {
    std::mt19937 random(1);
    int equal = 0;
    int unequal = 0;
    for (int i = 0; i < 4000; ++i) {
        const CTrvAssemblyData first = assembly(randomTree(random, 1));
        const CTrvAssemblyData second = assembly(randomTree(random, 1));
        std::ostringstream out;
        ASSERT_EQ(cli::printDifferences(first, second, out), first != second) << out.str();
        ++(first == second ? equal : unequal);
    }
    EXPECT_GT(equal, 500);
    EXPECT_GT(unequal, 500);
}

}  // namespace
}  // namespace trv::testing
