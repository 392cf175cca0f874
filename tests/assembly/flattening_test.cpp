#include <tests/assembly/sample_components.h>
#include <trvfiles/assembly/CTrvAssemblyComponentData.h>
#include <trvfiles/assembly/flattening.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <ostream>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

using namespace trv::testing;
using Component = CTrvAssemblyComponentData;
using Placement = Math::XForm3Gen<double>;
using List = std::vector<CComponentInfo>;

namespace {

List flattened(const Component& component, const Placement& parent = {}) {
    List list;
    component.getComponentFileList(parent, list);
    return list;
}

std::vector<std::string> namesOf(const List& list) {
    std::vector<std::string> names;
    for (const CComponentInfo& entry : list)
        names.push_back(entry.getFileName());
    return names;
}

/// The three axes and the translation of an entry.
using Rows = std::array<double, 12>;

Rows rowsOf(const CComponentInfo& entry) {
    const double* rows[4] = {};
    entry.getOrientation(rows[0], rows[1], rows[2]);
    entry.getTranslation(rows[3]);
    Rows numbers = {};
    for (std::size_t i = 0; i < numbers.size(); ++i)
        numbers[i] = rows[i / 3][i % 3];
    return numbers;
}

Component turned(const std::array<double, 9>& axes, Component component) {
    component.setOrientation(axes.data(), axes.data() + 3, axes.data() + 6);
    return component;
}

Component disabled(Component component) {
    component.setEnabled(false);
    return component;
}

using Names = std::vector<std::string>;

}  // namespace

TEST(Flattening, ListsNothingWithoutAGeometryFile) {
    EXPECT_TRUE(flattened(Component()).empty());
    EXPECT_TRUE(flattened(group({Component(), over(Component())})).empty());
}

TEST(Flattening, ListsAComponentBeforeItsDescendants) {
    Component vise = leaf("vise");
    vise.setComponents({over(leaf("jaw")), leaf("screw")});
    Component table = leaf("table");
    table.setComponents({vise, leaf("part")});
    EXPECT_EQ(namesOf(flattened(table)), (Names{"table", "vise", "jaw", "screw", "part"}));
}

TEST(Flattening, IncludesWhatIsBelowAGeometryFileUnlikeCounting) {
    Component parent = leaf("p");
    parent.setComponents({leaf("a"), leaf("b")});
    const Component top = over(parent);
    EXPECT_EQ(top.getComponentNumber(), 1U);
    EXPECT_EQ(namesOf(flattened(top)), (Names{"p", "a", "b"}));
}

TEST(Flattening, LeavesOutADisabledSubtree) {
    Component off = leaf("off");
    off.setComponents({leaf("below")});
    const Component top = group({leaf("a"), disabled(off), disabled(over(leaf("c"))), leaf("d")});
    EXPECT_EQ(namesOf(flattened(top)), (Names{"a", "d"}));
    EXPECT_TRUE(flattened(disabled(top)).empty());
}

TEST(Flattening, AppendsToTheList) {
    List list = flattened(leaf("first"));
    leaf("second").getComponentFileList({}, list);
    disabled(leaf("third")).getComponentFileList({}, list);
    EXPECT_EQ(namesOf(list), (Names{"first", "second"}));
}

TEST(Flattening, CopiesTheFileNameAsItIsStored) {
    const std::string name = std::string("../a\\b \xFF") + '\0' + "c";
    EXPECT_EQ(flattened(leaf(name))[0].getFileName(), name);
}

TEST(Flattening, AddsUpTranslations) {
    const Component root = moved(10, 0, 0, over(moved(0, 5, 0, leaf("child"))));
    const List list = flattened(root);
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(rowsOf(list[0]), (Rows{1, 0, 0, 0, 1, 0, 0, 0, 1, 10, 5, 0}));
}

TEST(Flattening, TurnsAChildWithItsParent) {
    const Component child = moved(1, 0, 0, leaf("child"));
    const List list = flattened(turned({0, 1, 0, -1, 0, 0, 0, 0, 1}, over(child)));
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(rowsOf(list[0]), (Rows{0, 1, 0, -1, 0, 0, 0, 0, 1, 0, 1, 0}));
}

TEST(Flattening, AppliesTheOwnPlacementFirst) {
    // A rotation by 90 degrees about z in a rotation by 90 degrees about x, both translated.
    const Component child = turned({0, 1, 0, -1, 0, 0, 0, 0, 1}, moved(1, 2, 3, leaf("child")));
    const Component parent = turned({1, 0, 0, 0, 0, 1, 0, -1, 0}, moved(10, 20, 30, over(child)));
    const List list = flattened(parent);
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(rowsOf(list[0]), (Rows{0, 0, 1, -1, 0, 0, 0, -1, 0, 11, 17, 32}));
}

TEST(Flattening, UsesTheThirdAxisAndDoesNotNormalise) {
    const List list = flattened(turned({2, 0, 0, 0, 3, 0, 1, 1, 4}, moved(1, 1, 1, leaf("f"))));
    EXPECT_EQ(rowsOf(list[0]), (Rows{2, 0, 0, 0, 3, 0, 1, 1, 4, 1, 1, 1}));
    const List below =
        flattened(turned({2, 0, 0, 0, 3, 0, 1, 1, 4}, over(moved(1, 1, 1, leaf("f")))));
    EXPECT_EQ(rowsOf(below[0]), (Rows{2, 0, 0, 0, 3, 0, 1, 1, 4, 3, 4, 4}));
}

TEST(Flattening, StartsFromTheGivenPlacement) {
    Placement parent;
    parent(3, 0) = 100;
    parent(0, 0) = 2;
    const List list = flattened(moved(1, 2, 3, leaf("f")), parent);
    EXPECT_EQ(rowsOf(list[0]), (Rows{2, 0, 0, 0, 1, 0, 0, 0, 1, 102, 2, 3}));
    EXPECT_EQ(parent(3, 0), 100);
}

TEST(Flattening, ListsTheSameWhateverTheFourthColumnOfTheGivenPlacement) {
    // The fourth column is multiplied on each level, but that of each component is 0, 0, 0, 1.
    Placement parent;
    parent(3, 0) = 10;
    parent(0, 3) = 4;
    parent(3, 3) = 2;
    const Component top = moved(5, 0, 0, over(moved(0, 6, 0, leaf("f"))));
    EXPECT_EQ(rowsOf(flattened(top, parent)[0]), (Rows{1, 0, 0, 0, 1, 0, 0, 0, 1, 15, 6, 0}));
}

TEST(Flattening, GivesEachChildTheSameParent) {
    const Component top =
        moved(1, 0, 0, group({moved(10, 0, 0, leaf("a")), moved(0, 10, 0, leaf("b"))}));
    const List list = flattened(top);
    ASSERT_EQ(list.size(), 2U);
    EXPECT_EQ(rowsOf(list[0]), (Rows{1, 0, 0, 0, 1, 0, 0, 0, 1, 11, 0, 0}));
    EXPECT_EQ(rowsOf(list[1]), (Rows{1, 0, 0, 0, 1, 0, 0, 0, 1, 1, 10, 0}));
}

TEST(Flattening, MultipliesNanAndInfinityByZeroToo) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const Rows nan = rowsOf(flattened(moved(std::nan(""), 0, 0, leaf("f")))[0]);
    EXPECT_EQ(nan[0], 1);
    EXPECT_TRUE(std::isnan(nan[9]));
    EXPECT_TRUE(std::isnan(nan[10]));
    const Rows infinite = rowsOf(flattened(moved(0, infinity, 0, leaf("f")))[0]);
    EXPECT_TRUE(std::isnan(infinite[9]));
    EXPECT_EQ(infinite[10], infinity);
}

namespace {

struct Visited {
    std::string name;
    std::size_t level;
    std::size_t index;
    double x;
    bool isEntry;

    bool operator==(const Visited& other) const {
        return std::tie(name, level, index, x, isEntry) ==
               std::tie(other.name, other.level, other.index, other.x, other.isEntry);
    }
};

std::ostream& operator<<(std::ostream& out, const Visited& visited) {
    return out << visited.name << ' ' << visited.level << ' ' << visited.index << ' ' << visited.x
               << ' ' << visited.isEntry;
}

std::vector<Visited> visitsOf(const Component& root) {
    std::vector<Visited> visits;
    trv::flatten(trv::ComponentBody::of(root), Placement(), [&](const trv::PlacedComponent& one) {
        visits.push_back(
            {one.component.name, one.level, one.index, one.world(3, 0), one.isEntry()});
    });
    return visits;
}

}  // namespace

TEST(FlatteningVisitor, VisitsGroupsAndEntriesWithTheirLevelAndIndex) {
    const Component inner = moved(0.5, 0, 0, group("inner", {leaf("deep", "d.stl")}));
    const Component root =
        moved(10, 0, 0,
              group("top", {disabled(leaf("off", "x.stl")), moved(2, 0, 0, group("outer", {inner})),
                            moved(1, 0, 0, leaf("last", "l.stl"))}));
    EXPECT_EQ(visitsOf(root), (std::vector<Visited>{{"top", 0, 0, 10, false},
                                                    {"outer", 1, 1, 12, false},
                                                    {"inner", 2, 0, 12.5, false},
                                                    {"deep", 3, 0, 12.5, true},
                                                    {"last", 1, 2, 11, true}}));
}

TEST(FlatteningVisitor, VisitsNothingBelowADisabledRoot) {
    EXPECT_TRUE(visitsOf(disabled(group("top", {leaf("a", "a.stl")}))).empty());
}

TEST(FlatteningVisitor, PassesOnAnExceptionOfTheVisit) {
    int visits = 0;
    const auto visit = [&visits](const trv::PlacedComponent&) {
        if (++visits == 2) throw std::runtime_error("enough");
    };
    const Component root = group("top", {leaf("a", "a.stl"), leaf("b", "b.stl")});
    EXPECT_THROW(trv::flatten(trv::ComponentBody::of(root), Placement(), visit),
                 std::runtime_error);
    EXPECT_EQ(visits, 2);
}

TEST(PlacementVisitor, VisitsDisabledComponentsAndEntersWhereItIsTold) {
    const Component open = disabled(moved(2, 0, 0, group("open", {leaf("a", "a.stl")})));
    const Component closed = group("closed", {leaf("b", "b.stl")});
    const Component root = moved(10, 0, 0, group("top", {open, closed}));
    std::vector<std::string> names;
    const auto visit = [&names](const trv::PlacedComponent& placed) {
        names.push_back(placed.component.name + ' ' + std::to_string(placed.world(3, 0)));
        return placed.component.name != "closed";
    };
    trv::visitPlacements(trv::ComponentBody::of(root), Placement(), visit);
    EXPECT_EQ(names, (std::vector<std::string>{"top 10.000000", "open 12.000000", "a 12.000000",
                                               "closed 10.000000"}));
}
