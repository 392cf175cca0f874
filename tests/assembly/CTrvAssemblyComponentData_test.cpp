#include <tests/assembly/sample_components.h>
#include <trvfiles/assembly/CTrvAssemblyComponentData.h>
#include <trvfiles/assembly/component_body.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

using Component = CTrvAssemblyComponentData;
using trv::ComponentBody;
using namespace std::string_literals;
using namespace trv::testing;

static_assert(!std::is_polymorphic_v<Component>);
static_assert(std::is_default_constructible_v<Component>);
static_assert(std::is_copy_constructible_v<Component> && std::is_copy_assignable_v<Component>);
static_assert(std::is_nothrow_move_constructible_v<Component>);
static_assert(std::is_nothrow_move_assignable_v<Component>);
static_assert(std::is_same_v<decltype(std::declval<const Component&>().getComponentNumber()),
                             unsigned long long>);

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
const double not_a_number = std::numeric_limits<double>::quiet_NaN();

using Vector = std::array<double, 3>;

Vector translationOf(const Component& component) {
    Vector translation = {};
    component.getTranslation(translation.data());
    return translation;
}

using Orientation = std::array<Vector, 3>;

Orientation orientationOf(const Component& component) {
    Orientation axes = {};
    component.getOrientation(axes[0].data(), axes[1].data(), axes[2].data());
    return axes;
}

const Orientation identity = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};

Component oriented(const Orientation& axes, Component component = {}) {
    component.setOrientation(axes[0].data(), axes[1].data(), axes[2].data());
    return component;
}

Component sample() {
    Component component = oriented({{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}}, moved(10, 20, 30));
    component.setName("name");
    component.setComment("comment");
    component.setGeometryFileName("file.stl");
    component.setEnabled(false);
    component.setComponents({named("first"), named("second", group({named("below")}))});
    return component;
}

void expectDefaults(const Component& component) {
    EXPECT_EQ(component.getName(), "");
    EXPECT_EQ(component.getComment(), "");
    EXPECT_EQ(component.getGeometryFileName(), "");
    EXPECT_TRUE(component.isEnabled());
    EXPECT_EQ(translationOf(component), (Vector{0, 0, 0}));
    EXPECT_EQ(orientationOf(component), identity);
    EXPECT_TRUE(component.getComponents().empty());
    EXPECT_EQ(component.getComponentNumber(), 0U);
}

void expectSample(const Component& component) {
    EXPECT_EQ(component.getName(), "name");
    EXPECT_EQ(component.getComment(), "comment");
    EXPECT_EQ(component.getGeometryFileName(), "file.stl");
    EXPECT_FALSE(component.isEnabled());
    EXPECT_EQ(translationOf(component), (Vector{10, 20, 30}));
    EXPECT_EQ(orientationOf(component), (Orientation{{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}}));
    const Components children = component.getComponents();
    ASSERT_EQ(children.size(), 2U);
    EXPECT_EQ(children[0].getName(), "first");
    EXPECT_EQ(children[1].getName(), "second");
    ASSERT_EQ(children[1].getComponents().size(), 1U);
    EXPECT_EQ(children[1].getComponents()[0].getName(), "below");
}

void expectEqual(const Component& one, const Component& other) {
    EXPECT_TRUE(one == other);
    EXPECT_TRUE(other == one);
    EXPECT_FALSE(one != other);
}

void expectUnequal(const Component& one, const Component& other) {
    EXPECT_FALSE(one == other);
    EXPECT_FALSE(other == one);
    EXPECT_TRUE(one != other);
}

}  // namespace

TEST(AssemblyComponent, HasTheIdentityPlacementAndNothingElseByDefault) {
    expectDefaults(Component());
}

TEST(AssemblyComponent, GivesBackWhatWasSet) {
    expectSample(sample());
}

TEST(AssemblyComponent, KeepsEveryByteOfItsTexts) {
    Component component;
    component.setName("a\0b"s);
    component.setComment("line\r\nline\t\xFF\xFE");
    component.setGeometryFileName(std::string(100000, 'x'));
    EXPECT_EQ(component.getName(), "a\0b"s);
    EXPECT_EQ(component.getComment(), "line\r\nline\t\xFF\xFE");
    EXPECT_EQ(component.getGeometryFileName(), std::string(100000, 'x'));
    component.setName("");
    EXPECT_EQ(component.getName(), "");
}

TEST(AssemblyComponent, KeepsNumbersAsTheyAre) {
    Component component = moved(not_a_number, infinity, -0.0);
    EXPECT_TRUE(std::isnan(translationOf(component)[0]));
    EXPECT_EQ(translationOf(component)[1], infinity);
    EXPECT_TRUE(std::signbit(translationOf(component)[2]));
    const Orientation skewed = {{{0, 0, 0}, {1e300, -1e-300, 5}, {5, 5, 5}}};
    EXPECT_EQ(orientationOf(oriented(skewed)), skewed);
}

TEST(AssemblyComponent, CopiesTheArraysItIsGiven) {
    Vector values = {1, 2, 3};
    Component component;
    component.setTranslation(values.data());
    component.setOrientation(values.data(), values.data(), values.data());
    values = {9, 9, 9};
    EXPECT_EQ(translationOf(component), (Vector{1, 2, 3}));
    EXPECT_EQ(orientationOf(component), (Orientation{{{1, 2, 3}, {1, 2, 3}, {1, 2, 3}}}));
}

TEST(AssemblyComponent, LeavesBothSidesAsTheyAreForANullArray) {
    Component component = sample();
    component.setTranslation(nullptr);
    component.setOrientation(nullptr, nullptr, nullptr);
    component.getTranslation(nullptr);
    component.getOrientation(nullptr, nullptr, nullptr);
    expectSample(component);

    const Vector axis = {-1, -2, -3};
    component.setOrientation(nullptr, axis.data(), nullptr);
    Vector first = {};
    Vector third = {};
    component.getOrientation(first.data(), nullptr, third.data());
    EXPECT_EQ(first, (Vector{1, 2, 3}));
    EXPECT_EQ(third, (Vector{7, 8, 9}));
    EXPECT_EQ(orientationOf(component)[1], axis);
}

TEST(AssemblyComponent, GivesCopiesOfItsChildren) {
    const Component component = sample();
    Components children = component.getComponents();
    children[0].setName("changed");
    children.pop_back();
    expectSample(component);
}

TEST(AssemblyComponent, ReplacesItsChildren) {
    Component component = sample();
    component.setComponents({named("only")});
    ASSERT_EQ(component.getComponents().size(), 1U);
    EXPECT_EQ(component.getComponents()[0].getName(), "only");
    component.setComponents(component.getComponents());
    ASSERT_EQ(component.getComponents().size(), 1U);
    component.setComponents({});
    EXPECT_TRUE(component.getComponents().empty());
}

TEST(AssemblyComponent, MovesAListInWithoutCopying) {
    Components children = {named("a name that does not fit into the string itself"), Component()};
    const char* const before = ComponentBody::of(children[0]).name.data();
    Component component;
    component.setComponents(std::move(children));
    ASSERT_EQ(ComponentBody::of(component).components.size(), 2U);
    EXPECT_EQ(ComponentBody::of(component).components[0].name.data(), before);
}

TEST(AssemblyComponent, IsEditedInPlace) {
    Component component = named("x", group({leaf("f")}));
    const ComponentBody* const before = &ComponentBody::of(component);
    ComponentBody::editable(component).components[0].geometryFileName = "g";
    EXPECT_EQ(&ComponentBody::of(component), before);
    EXPECT_EQ(component.getComponents()[0].getGeometryFileName(), "g");

    Component empty;
    ComponentBody::editable(empty).name = "y";
    EXPECT_EQ(empty.getName(), "y");
    EXPECT_EQ(Component().getName(), "");
}

TEST(AssemblyComponent, CanHoldCopiesOfItself) {
    Component component = named("x", leaf("f"));
    for (int i = 0; i < 10; ++i)
        component.setComponents({component, component});
    component.setGeometryFileName("");
    EXPECT_EQ(component.getComponentNumber(), 2U);
    std::vector<CComponentInfo> list;
    component.getComponentFileList({}, list);
    EXPECT_EQ(list.size(), 2U * 1023U);
}

TEST(AssemblyComponent, IsCopiedWithItsSubtree) {
    Component source = sample();
    Component copy = source;
    copy.setName("copy");
    copy.setTranslation(Vector{1, 1, 1}.data());
    copy.setComponents({});
    expectSample(source);

    Component assigned = leaf("old");
    assigned = source;
    source.setComment("changed");
    source.setComponents({});
    expectSample(assigned);
    expectDefaults(Component(Component()));
    assigned = Component();
    expectDefaults(assigned);
}

TEST(AssemblyComponent, AcceptsAssignmentToItself) {
    Component component = sample();
    const Component& same = component;
    component = same;
    expectSample(component);
    Component empty;
    const Component& sameEmpty = empty;
    empty = sameEmpty;
    expectDefaults(empty);
}

TEST(AssemblyComponent, CanBecomeItsOwnDescendant) {
    Component component = over(over(sample()));
    component = component.getComponents()[0].getComponents()[0];
    expectSample(component);
    component = over(Component());
    component = component.getComponents()[0];
    expectDefaults(component);
}

TEST(AssemblyComponent, CanTakeItsDescendantsForItsChildren) {
    Component component = over(sample());
    component.setComponents(component.getComponents()[0].getComponents());
    ASSERT_EQ(component.getComponents().size(), 2U);
    EXPECT_EQ(component.getComponents()[1].getName(), "second");
}

TEST(AssemblyComponent, ReadsLikeANewOneAfterItWasMovedFrom) {
    Component source = sample();
    Component target = std::move(source);
    expectSample(target);
    expectDefaults(source);
    expectEqual(source, Component());
    source.setName("again");
    source.setOrientation(nullptr, Vector{1, 2, 3}.data(), nullptr);
    EXPECT_EQ(source.getName(), "again");
    EXPECT_EQ(orientationOf(source)[0], (Vector{1, 0, 0}));

    source = std::move(target);
    expectSample(source);
    expectDefaults(target);
    std::vector<CComponentInfo> list;
    target.getComponentFileList({}, list);
    EXPECT_TRUE(list.empty());
    const Component copyOfMovedFrom = target;
    expectDefaults(copyOfMovedFrom);
    target = source;
    expectSample(target);
}

TEST(AssemblyComponent, IsUnequalWhenATextDiffersInOneByte) {
    for (const auto set :
         {&Component::setName, &Component::setComment, &Component::setGeometryFileName}) {
        const auto with = [set](std::string text) {
            Component component;
            (component.*set)(std::move(text));
            return component;
        };
        expectEqual(with("Vise"), with("Vise"));
        expectUnequal(with("Vise"), with("vise"));
        expectUnequal(with("Vise"), with("Vise "));
        expectUnequal(with("Vise"), with(""));
        expectEqual(with("a\0b"s), with("a\0b"s));
        expectUnequal(with("a\0b"s), with("a\0c"s));
        expectUnequal(with("a"), with("a\0"s));
        expectUnequal(with("\xC3\xA9"), with("e\xCC\x81"));
    }
}

TEST(AssemblyComponent, IsUnequalWhenOnlyOneIsEnabled) {
    Component disabled;
    disabled.setEnabled(false);
    expectUnequal(Component(), disabled);
    expectEqual(disabled, disabled);
}

TEST(AssemblyComponent, ComparesItsPlacementEntryByEntry) {
    const double more = std::nextafter(1e-6, 1);
    for (std::size_t i = 0; i < 3; ++i) {
        const auto translated = [i](double value) {
            Vector translation = {};
            translation[i] = value;
            return moved(translation[0], translation[1], translation[2]);
        };
        expectEqual(translated(0), translated(1e-7));
        expectEqual(translated(0), translated(1e-6));
        expectEqual(translated(0), translated(-1e-6));
        expectUnequal(translated(0), translated(more));
        expectUnequal(translated(0), translated(-more));
        expectUnequal(translated(0), translated(2e-6));
        for (std::size_t axis = 0; axis < 2; ++axis) {
            const auto turned = [axis, i](double value) {
                Orientation axes = {};
                axes[axis][i] = value;
                return oriented(axes);
            };
            expectEqual(turned(0), turned(1e-6));
            expectUnequal(turned(0), turned(more));
            expectUnequal(turned(-more), turned(0));
        }
    }
    // The tolerance applies to each entry separately.
    expectEqual(moved(0, 0, 0), moved(1e-6, 1e-6, 1e-6));
}

TEST(AssemblyComponent, IsEqualWhateverItsThirdAxis) {
    expectEqual(oriented({{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}}),
                oriented({{{1, 0, 0}, {0, 1, 0}, {5, 6, -7}}}));
    expectEqual(over(oriented({{{1, 0, 0}, {0, 1, 0}, {not_a_number, 0, infinity}}})),
                over(Component()));
}

TEST(AssemblyComponent, NeverTreatsANanAsADifference) {
    expectEqual(moved(not_a_number, 0, 0), moved(5, 0, 0));
    expectEqual(moved(not_a_number, 0, 0), moved(not_a_number, 0, 0));
    expectUnequal(moved(not_a_number, 1, 0), moved(5, 0, 0));
    expectEqual(oriented({{{1, not_a_number, 0}, {0, 1, not_a_number}, {}}}), Component());
}

TEST(AssemblyComponent, ComparesInfinitiesByTheirSign) {
    expectEqual(moved(infinity, 0, 0), moved(infinity, 0, 0));
    expectUnequal(moved(infinity, 0, 0), moved(-infinity, 0, 0));
    expectUnequal(moved(infinity, 0, 0), moved(1e308, 0, 0));
}

TEST(AssemblyComponent, ComparesItsChildrenInOrder) {
    expectEqual(group({named("a"), named("b")}), group({named("a"), named("b")}));
    expectUnequal(group({named("a"), named("b")}), group({named("b"), named("a")}));
    expectUnequal(group({named("a")}), group({named("a"), named("b")}));
    expectUnequal(group({Component()}), Component());
    expectUnequal(over(over(named("a"))), over(over(named("b"))));
    expectEqual(over(over(moved(0, 0, 0))), over(over(moved(1e-7, 0, 0))));
    // The same names on other levels.
    expectUnequal(group({over(named("a")), Component()}), group({Component(), over(named("a"))}));
}

TEST(AssemblyComponent, CountsChildrenWithAGeometryFile) {
    EXPECT_EQ(leaf("own").getComponentNumber(), 0U);
    EXPECT_EQ(group({leaf("a"), leaf("b"), Component()}).getComponentNumber(), 2U);
    EXPECT_EQ(group({over(over(leaf("deep"))), leaf("b")}).getComponentNumber(), 2U);
}

TEST(AssemblyComponent, DoesNotCountBelowAGeometryFile) {
    Component parent = leaf("p");
    parent.setComponents({leaf("a"), leaf("b")});
    EXPECT_EQ(over(parent).getComponentNumber(), 1U);
    EXPECT_EQ(parent.getComponentNumber(), 2U);
}

TEST(AssemblyComponent, CountsWhatIsDisabledToo) {
    Component disabled = group({leaf("a"), leaf("b")});
    disabled.setEnabled(false);
    EXPECT_EQ(disabled.getComponentNumber(), 2U);
    EXPECT_EQ(over(disabled).getComponentNumber(), 2U);
}

TEST(AssemblyComponent, HasItsPlacementAsValues) {
    using Vector = std::array<double, 3>;
    CTrvAssemblyComponentData component;
    EXPECT_EQ(component.getTranslation(), (Vector{0, 0, 0}));
    EXPECT_EQ(component.getOrientation(),
              (std::array<Vector, 3>{Vector{1, 0, 0}, Vector{0, 1, 0}, Vector{0, 0, 1}}));
    component.setTranslation({1, 2, 3});
    component.setOrientation({{{4, 5, 6}, {7, 8, 9}, {10, 11, 12}}});
    double vectors[4][3] = {};
    component.getTranslation(vectors[0]);
    component.getOrientation(vectors[1], vectors[2], vectors[3]);
    EXPECT_EQ(vectors[0][0], 1);
    EXPECT_EQ(vectors[1][2], 6);
    EXPECT_EQ(vectors[2][0], 7);
    EXPECT_EQ(vectors[3][1], 11);
    EXPECT_EQ(component.getTranslation(), (Vector{1, 2, 3}));
    EXPECT_EQ(component.getOrientation(),
              (std::array<Vector, 3>{Vector{4, 5, 6}, Vector{7, 8, 9}, Vector{10, 11, 12}}));
}

TEST(AssemblyComponent, HasWideTexts) {
    CTrvAssemblyComponentData component;
    component.setName("\xC3\xA4");
    component.setComment("\xC3\xB6");
    component.setGeometryFileName("\xC3\xBC.stl");
    EXPECT_EQ(component.getNameW(), L"\u00E4");
    EXPECT_EQ(component.getCommentW(), L"\u00F6");
    EXPECT_EQ(component.getGeometryFileNameW(), L"\u00FC.stl");
    component.setNameW(L"\u00FC");
    component.setCommentW(L"\u00E4");
    component.setGeometryFileNameW(L"\u00F6.stl");
    EXPECT_EQ(component.getName(), "\xC3\xBC");
    EXPECT_EQ(component.getComment(), "\xC3\xA4");
    EXPECT_EQ(component.getGeometryFileName(), "\xC3\xB6.stl");
}

// The reason for node().
TEST(AssemblyComponent, DoesNotChangeWithTheCopiesOfItsChildren) {
    CTrvAssemblyComponentData component;
    component.setComponents({CTrvAssemblyComponentData()});
    for (CTrvAssemblyComponentData& child : component.getComponents())
        child.setName("lost");
    EXPECT_EQ(component.getComponents()[0].getName(), "");
    for (CTrvAssemblyNode& child : component.node().children())
        child.setName("kept");
    EXPECT_EQ(component.getComponents()[0].getName(), "kept");
}
