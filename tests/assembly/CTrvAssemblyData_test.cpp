#include <tests/assembly/sample_components.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

using Assembly = CTrvAssemblyData;
using namespace trv::testing;

static_assert(!std::is_polymorphic_v<Assembly>);
static_assert(std::is_default_constructible_v<Assembly>);
static_assert(std::is_copy_constructible_v<Assembly> && std::is_copy_assignable_v<Assembly>);
static_assert(std::is_nothrow_move_constructible_v<Assembly>);
static_assert(std::is_nothrow_move_assignable_v<Assembly>);
static_assert(std::is_same_v<decltype(std::declval<Assembly&>().getRootComponent()),
                             CTrvAssemblyComponentData&>);
static_assert(std::is_same_v<decltype(std::declval<const Assembly&>().getRootComponent()),
                             const CTrvAssemblyComponentData&>);

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
const double not_a_number = std::numeric_limits<double>::quiet_NaN();

using Vector = std::array<double, 3>;

Vector dimensionOf(const Assembly& assembly) {
    Vector dimension = {-1, -1, -1};
    assembly.getDimension(dimension.data());
    return dimension;
}

Assembly sized(double x, double y, double z) {
    const double dimension[3] = {x, y, z};
    Assembly assembly;
    assembly.setDimension(dimension);
    return assembly;
}

Assembly sample() {
    Assembly assembly = sized(100, 50, 20);
    assembly.setRootComponent(named("root", group({named("a", leaf("f")), named("b", leaf("g"))})));
    return assembly;
}

void expectDefaults(const Assembly& assembly) {
    EXPECT_EQ(dimensionOf(assembly), (Vector{0, 0, 0}));
    EXPECT_TRUE(assembly.getRootComponent() == CTrvAssemblyComponentData());
    EXPECT_EQ(assembly.getComponentNumber(), 0U);
    EXPECT_TRUE(assembly.getComponentFileList().empty());
}

void expectSample(const Assembly& assembly) {
    EXPECT_EQ(dimensionOf(assembly), (Vector{100, 50, 20}));
    EXPECT_EQ(assembly.getRootComponent().getName(), "root");
    EXPECT_EQ(assembly.getComponentNumber(), 2U);
    EXPECT_TRUE(assembly.getRootComponent() == sample().getRootComponent());
}

void expectEqual(const Assembly& one, const Assembly& other) {
    EXPECT_TRUE(one == other);
    EXPECT_TRUE(other == one);
    EXPECT_FALSE(one != other);
}

void expectUnequal(const Assembly& one, const Assembly& other) {
    EXPECT_FALSE(one == other);
    EXPECT_FALSE(other == one);
    EXPECT_TRUE(one != other);
}

}  // namespace

TEST(Assembly, HasNoSizeAndADefaultRootByDefault) {
    expectDefaults(Assembly());
    EXPECT_TRUE(Assembly().getRootComponent().isEnabled());
}

TEST(Assembly, GivesBackItsDimension) {
    double dimension[3] = {1, 2, 3};
    Assembly assembly;
    assembly.setDimension(dimension);
    dimension[0] = 9;
    EXPECT_EQ(dimensionOf(assembly), (Vector{1, 2, 3}));
}

TEST(Assembly, LeavesBothSidesAsTheyAreForANullArray) {
    Assembly assembly = sized(1, 2, 3);
    assembly.setDimension(nullptr);
    assembly.getDimension(nullptr);
    EXPECT_EQ(dimensionOf(assembly), (Vector{1, 2, 3}));
}

TEST(Assembly, LetsItsRootBeEditedInPlace) {
    Assembly assembly;
    assembly.getRootComponent().setName("edited");
    assembly.getRootComponent().setComponents({leaf("f")});
    const Assembly& constant = assembly;
    EXPECT_EQ(constant.getRootComponent().getName(), "edited");
    EXPECT_EQ(&constant.getRootComponent(), &assembly.getRootComponent());
    EXPECT_EQ(assembly.getComponentNumber(), 1U);
}

TEST(Assembly, TakesACopyOfARoot) {
    CTrvAssemblyComponentData root = named("before");
    Assembly assembly;
    assembly.setRootComponent(root);
    root.setName("after");
    EXPECT_EQ(assembly.getRootComponent().getName(), "before");
}

TEST(Assembly, IsNotChangedByItsOwnRoot) {
    Assembly assembly = sample();
    assembly.setRootComponent(assembly.getRootComponent());
    expectSample(assembly);
    Assembly empty;
    empty.setRootComponent(empty.getRootComponent());
    expectDefaults(empty);
}

TEST(Assembly, IsCopiedWithItsTree) {
    Assembly source = sample();
    Assembly copy = source;
    copy.getRootComponent().setComponents({});
    copy.setDimension(Vector{}.data());
    expectSample(source);
    Assembly assigned = sized(7, 7, 7);
    assigned = source;
    source.getRootComponent().setName("changed");
    expectSample(assigned);
    const Assembly& same = assigned;
    assigned = same;
    expectSample(assigned);
}

TEST(Assembly, IsAssignedIntoTheRootThatItHas) {
    Assembly assembly = sized(7, 7, 7);
    CTrvAssemblyComponentData& root = assembly.getRootComponent();
    const CTrvAssemblyComponentData& sameRoot =
        static_cast<const Assembly&>(assembly).getRootComponent();

    const Assembly source = sample();
    assembly = source;
    expectSample(assembly);
    EXPECT_EQ(&assembly.getRootComponent(), &root);
    EXPECT_EQ(root.getName(), "root");

    assembly = sized(1, 2, 3);
    EXPECT_EQ(dimensionOf(assembly), (Vector{1, 2, 3}));
    EXPECT_EQ(&assembly.getRootComponent(), &root);
    EXPECT_EQ(root.getName(), "");

    assembly = sample();
    root.setName("edited");
    EXPECT_EQ(assembly.getRootComponent().getName(), "edited");
    EXPECT_EQ(&sameRoot, &root);

    Assembly movedFrom = sample();
    const Assembly target = std::move(movedFrom);
    assembly = movedFrom;
    expectDefaults(assembly);
    assembly = target;
    assembly = std::move(movedFrom);
    expectDefaults(assembly);
    EXPECT_EQ(&assembly.getRootComponent(), &root);
    EXPECT_EQ(root.getName(), "");
}

TEST(Assembly, IsNotChangedByAssigningItToItself) {
    Assembly assembly = sample();
    const CTrvAssemblyComponentData& root = assembly.getRootComponent();
    Assembly& same = assembly;
    assembly = same;
    expectSample(assembly);
    assembly = std::move(same);
    expectSample(assembly);
    EXPECT_EQ(&assembly.getRootComponent(), &root);
}

TEST(Assembly, KeepsItsOwnRootWhenItIsMovedIntoAnother) {
    Assembly source = sample();
    CTrvAssemblyComponentData& root = source.getRootComponent();
    Assembly target = sized(1, 2, 3);
    target = std::move(source);
    expectSample(target);
    expectDefaults(source);
    EXPECT_EQ(&source.getRootComponent(), &root);
    root.setName("again");
    EXPECT_EQ(source.getRootComponent().getName(), "again");
    EXPECT_EQ(target.getRootComponent().getName(), "root");
}

TEST(Assembly, IsAssignedToAfterItWasMovedFrom) {
    Assembly source = sample();
    const Assembly first = std::move(source);
    source = sample();
    expectSample(source);
    Assembly other = sample();
    const Assembly second = std::move(source);
    const Assembly third = std::move(other);
    source = std::move(other);
    expectDefaults(source);
    source = third;
    expectSample(source);
}

TEST(Assembly, ReadsLikeANewOneAfterItWasMovedFrom) {
    Assembly source = sample();
    Assembly target = std::move(source);
    expectSample(target);
    expectDefaults(source);
    expectEqual(source, Assembly());
    const Assembly copyOfMovedFrom = source;
    expectDefaults(copyOfMovedFrom);
    source.getRootComponent().setName("again");
    EXPECT_EQ(source.getRootComponent().getName(), "again");
    source = std::move(target);
    expectSample(source);
    target.setDimension(Vector{1, 2, 3}.data());
    EXPECT_EQ(dimensionOf(target), (Vector{1, 2, 3}));
    target = std::move(source);
    source.setRootComponent(named("new"));
    EXPECT_EQ(source.getRootComponent().getName(), "new");
    source = target;
    expectSample(source);
}

TEST(Assembly, ComparesItsDimensionsByTheSumOfSquares) {
    expectEqual(sized(0, 0, 0), sized(0.0009, 0, 0));
    expectEqual(sized(0, 0, 0), sized(0.001, 0, 0));
    expectUnequal(sized(0, 0, 0), sized(std::nextafter(0.001, 1), 0, 0));
    expectUnequal(sized(0, 0, 0), sized(0.001, 0.001, 0));
    expectUnequal(sized(0, 0, 0), sized(0, 0, -0.0011));
    expectEqual(sized(0, 0, 0), sized(0.0005, -0.0005, 0.0005));
    expectUnequal(sized(0, 0, 0), sized(0.0006, 0.0006, 0.0006));
    expectUnequal(sized(100, 50, 20), sized(50, 100, 20));
}

TEST(Assembly, NeverTreatsANanOfItsDimensionAsADifference) {
    expectEqual(sized(not_a_number, 0, 0), sized(5, 0, 0));
    expectEqual(sized(0, not_a_number, 0), sized(5, 6, 7));
    expectEqual(sized(infinity, 0, 0), sized(infinity, 0, 0));
    expectUnequal(sized(infinity, 0, 0), sized(-infinity, 0, 0));
    expectUnequal(sized(infinity, 0, 0), sized(0, 0, 0));
}

TEST(Assembly, ComparesItsRoots) {
    Assembly one = sized(1, 2, 3);
    Assembly other = sized(1, 2, 3);
    other.getRootComponent().setName("other");
    expectUnequal(one, other);
    one.getRootComponent().setName("other");
    expectEqual(one, other);
    one.getRootComponent().setOrientation(nullptr, nullptr, Vector{9, 9, 9}.data());
    expectEqual(one, other);
}

TEST(Assembly, ListsARootWithAGeometryFileButDoesNotCountIt) {
    Assembly assembly;
    assembly.setRootComponent(leaf("root.stl"));
    EXPECT_EQ(assembly.getComponentNumber(), 0U);
    ASSERT_EQ(assembly.getComponentFileList().size(), 1U);
    EXPECT_EQ(assembly.getComponentFileList()[0].getFileName(), "root.stl");
}

TEST(Assembly, CountsBelowADisabledRootButListsNothing) {
    Assembly assembly = sample();
    assembly.getRootComponent().setEnabled(false);
    EXPECT_EQ(assembly.getComponentNumber(), 2U);
    EXPECT_TRUE(assembly.getComponentFileList().empty());
}

TEST(Assembly, AppliesThePlacementOfItsRootToEveryEntry) {
    Assembly assembly;
    assembly.setRootComponent(moved(10, 0, 0, group({moved(0, 5, 0, leaf("a")), leaf("b")})));
    const std::vector<CComponentInfo> list = assembly.getComponentFileList();
    ASSERT_EQ(list.size(), 2U);
    const double* translation = nullptr;
    list[0].getTranslation(translation);
    EXPECT_EQ((Vector{translation[0], translation[1], translation[2]}), (Vector{10, 5, 0}));
    list[1].getTranslation(translation);
    EXPECT_EQ((Vector{translation[0], translation[1], translation[2]}), (Vector{10, 0, 0}));
}

TEST(AssemblyData, HasItsDimensionAsAValue) {
    CTrvAssemblyData data;
    EXPECT_EQ(data.getDimension(), (std::array<double, 3>{0, 0, 0}));
    data.setDimension({1, 2, 3});
    EXPECT_EQ(data.getDimension(), (std::array<double, 3>{1, 2, 3}));
    double dimension[3] = {};
    data.getDimension(dimension);
    EXPECT_EQ(dimension[1], 2);
}
