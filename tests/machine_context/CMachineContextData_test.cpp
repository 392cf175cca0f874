#include <tests/common/child_process.h>
#include <tests/common/host_locale.h>
#include <trvfiles/machine_context/CMachineContextData.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>

using Context = CMachineContextData;
using namespace std::string_literals;

static_assert(!std::is_polymorphic_v<Context>);
static_assert(std::is_default_constructible_v<Context>);
static_assert(std::is_copy_constructible_v<Context> && std::is_copy_assignable_v<Context>);
static_assert(std::is_nothrow_move_constructible_v<Context>);
static_assert(std::is_nothrow_move_assignable_v<Context>);

namespace {

/// The four accessors of one text.
struct Text {
    const char* name;
    std::string (Context::*get)() const;
    void (Context::*set)(const std::string&);
    std::wstring (Context::*getWide)() const;
    void (Context::*setWide)(const std::wstring&);
};

const std::array<Text, 7> texts = {{
    {"Name", &Context::getName, &Context::setName, &Context::getNameW, &Context::setNameW},
    {"Comment", &Context::getComment, &Context::setComment, &Context::getCommentW,
     &Context::setCommentW},
    {"MachineName", &Context::getMachineName, &Context::setMachineName, &Context::getMachineNameW,
     &Context::setMachineNameW},
    {"MachinePosition", &Context::getMachinePosition, &Context::setMachinePosition,
     &Context::getMachinePositionW, &Context::setMachinePositionW},
    {"SurfaceGroup", &Context::getSurfaceGroup, &Context::setSurfaceGroup,
     &Context::getSurfaceGroupW, &Context::setSurfaceGroupW},
    {"ClampingSystem", &Context::getClampingSystem, &Context::setClampingSystem,
     &Context::getClampingSystemW, &Context::setClampingSystemW},
    {"ReferenceAxisForOriginProgram", &Context::getReferenceAxisForOriginProgram,
     &Context::setReferenceAxisForOriginProgram, &Context::getReferenceAxisForOriginProgramW,
     &Context::setReferenceAxisForOriginProgramW},
}};

constexpr double infinity = std::numeric_limits<double>::infinity();
const double not_a_number = std::numeric_limits<double>::quiet_NaN();

using Point = std::array<double, 3>;

Point originOf(const Context& context) {
    Point origin = {-1, -1, -1};
    context.getOriginProgram(origin[0], origin[1], origin[2]);
    return origin;
}

Context withOrigin(double x, double y, double z) {
    Context context;
    context.setOriginProgram(x, y, z);
    return context;
}

/// Every field has a different value.
Context sample() {
    Context context = withOrigin(1, -2, 3.5);
    for (const Text& text : texts)
        (context.*text.set)("the "s + text.name);
    context.setMachineProximity(4);
    context.setClampingProximity(5);
    return context;
}

void expectSample(const Context& context) {
    for (const Text& text : texts)
        EXPECT_EQ((context.*text.get)(), "the "s + text.name);
    EXPECT_EQ(originOf(context), (Point{1, -2, 3.5}));
    EXPECT_EQ(context.getMachineProximity(), 4);
    EXPECT_EQ(context.getClampingProximity(), 5);
    EXPECT_FALSE(context.isNull());
    EXPECT_TRUE(context.isNotNull());
}

void expectDefaults(const Context& context) {
    for (const Text& text : texts) {
        EXPECT_EQ((context.*text.get)(), "") << text.name;
        EXPECT_EQ((context.*text.getWide)(), L"") << text.name;
    }
    EXPECT_EQ(originOf(context), (Point{0, 0, 0}));
    EXPECT_EQ(context.getMachineProximity(), 0);
    EXPECT_EQ(context.getClampingProximity(), 0);
    EXPECT_TRUE(context.isNull());
    EXPECT_FALSE(context.isNotNull());
}

/// Uses a record during the construction of the host's static objects.
struct EarlyHost {
    bool nullAtFirst = Context().isNull();
    bool notNullWithAName = false;
    bool nullWhenCleared = false;

    EarlyHost() {
        Context context = sample();
        notNullWithAName = context.isNotNull();
        context.clear();
        nullWhenCleared = context.isNull();
    }
};

const EarlyHost earlyHost;

}  // namespace

TEST(MachineContextData, IsEmptyByDefault) {
    expectDefaults(Context());
}

TEST(MachineContextData, CanBeUsedBeforeMain) {
    EXPECT_TRUE(earlyHost.nullAtFirst);
    EXPECT_TRUE(earlyHost.notNullWithAName);
    EXPECT_TRUE(earlyHost.nullWhenCleared);
}

TEST(MachineContextData, HoldsEachFieldByItself) {
    expectSample(sample());
}

TEST(MachineContextData, SharesOneFieldBetweenNarrowAndWide) {
    for (const Text& text : texts) {
        SCOPED_TRACE(text.name);
        Context context;
        (context.*text.set)("narrow");
        EXPECT_EQ((context.*text.getWide)(), L"narrow");
        (context.*text.setWide)(L"wide");
        EXPECT_EQ((context.*text.get)(), "wide");
        EXPECT_TRUE(context.isNotNull());
        (context.*text.setWide)(L"");
        expectDefaults(context);
    }
}

TEST(MachineContextData, GivesWideTextsBackUnchanged) {
    const std::wstring wide = L"Fr\u00E4se \u4E2D\u6587 \U0001F527 \t\r\n\"\\%s$X";
    for (const Text& text : texts) {
        Context context;
        (context.*text.setWide)(wide);
        EXPECT_EQ((context.*text.getWide)(), wide) << text.name;
    }
}

TEST(MachineContextData, CutsNarrowTextsAtAZeroAndKeepsWideOnes) {
    for (const Text& text : texts) {
        SCOPED_TRACE(text.name);
        Context context;
        (context.*text.set)("ab\0cd"s);
        EXPECT_EQ((context.*text.get)(), "ab");
        EXPECT_EQ((context.*text.getWide)(), L"ab");
        (context.*text.setWide)(L"ab\0cd"s);
        EXPECT_EQ((context.*text.get)(), "ab");
        EXPECT_EQ((context.*text.getWide)(), L"ab\0cd"s);
        (context.*text.set)("\0cd"s);
        expectDefaults(context);
        (context.*text.setWide)(L"\0"s);
        EXPECT_EQ((context.*text.get)(), "");
        EXPECT_TRUE(context.isNotNull());
    }
}

TEST(MachineContextData, TreatsNarrowTextAsUtf8OnPosix) {
    if (!trv::testing::can_fork) GTEST_SKIP() << "Windows has code pages";
    for (const Text& text : texts) {
        Context context;
        (context.*text.set)("Fr\xC3\xA4se \xF0\x9F\x94\xA7");
        EXPECT_EQ((context.*text.getWide)(), L"Fr\u00E4se \U0001F527") << text.name;
        EXPECT_EQ((context.*text.get)(), "Fr\xC3\xA4se \xF0\x9F\x94\xA7") << text.name;
        (context.*text.set)("a\xE4z");
        EXPECT_EQ((context.*text.getWide)(), L"a\uFFFDz") << text.name;
        EXPECT_EQ((context.*text.get)(), "a\xEF\xBF\xBDz") << text.name;
    }
}

TEST(MachineContextData, TreatsNarrowTextAsUtf8InEveryLocaleOfPosix) {
    if (!trv::testing::can_fork) GTEST_SKIP() << "needs a child process";
    const trv::testing::HostLocale german("ISO-8859-1");
    if (!german.exists()) GTEST_SKIP() << "localedef cannot compile a locale here";
    EXPECT_TRUE(trv::testing::passesInChild([&] {
        ASSERT_TRUE(german.adopt());
        Context context;
        context.setName("Fr\xC3\xA4se");
        EXPECT_EQ(context.getNameW(), L"Fr\u00E4se");
        EXPECT_EQ(context.getName(), "Fr\xC3\xA4se");
    }));
}

TEST(MachineContextData, AcceptsWideTextThatIsNotValid) {
    for (const wchar_t unit : {L'\xD800', L'\xDFFF', L'\xFFFE', L'\xFFFF'}) {
        Context context;
        context.setNameW(std::wstring(3, unit));
        EXPECT_TRUE(context.isNotNull());
        EXPECT_FALSE(context.getName().empty());
        EXPECT_FALSE(context.getNameW().empty());
    }
    Context context;
    context.setNameW(std::wstring(3, std::numeric_limits<wchar_t>::max()));
    EXPECT_TRUE(context.isNotNull());
    EXPECT_FALSE(context.getNameW().empty());
}

TEST(MachineContextData, AcceptsLongTexts) {
    Context context;
    context.setComment(std::string(1000000, 'c'));
    EXPECT_EQ(context.getComment(), std::string(1000000, 'c'));
}

TEST(MachineContextData, IsNoLongerNullWithOneLetterInAnyText) {
    for (const Text& text : texts) {
        SCOPED_TRACE(text.name);
        Context context;
        (context.*text.set)("");
        EXPECT_TRUE(context.isNull());
        (context.*text.set)("x");
        EXPECT_FALSE(context.isNull());
        EXPECT_TRUE(context.isNotNull());
        context.clear();
        EXPECT_TRUE(context.isNull());
    }
}

TEST(MachineContextData, StaysNullWithAnOriginWithinTheSquaredTolerance) {
    EXPECT_TRUE(withOrigin(0.0005, 0.0005, 0.0005).isNull());
    EXPECT_TRUE(withOrigin(0.001, 0, 0).isNull());
    EXPECT_TRUE(withOrigin(0, -0.001, 0).isNull());
    EXPECT_TRUE(withOrigin(0, 0, 0.001).isNull());
    EXPECT_FALSE(withOrigin(std::nextafter(0.001, 1), 0, 0).isNull());
    EXPECT_FALSE(withOrigin(0.0011, 0, 0).isNull());
    EXPECT_FALSE(withOrigin(0, 0, -0.0011).isNull());
    EXPECT_FALSE(withOrigin(0.0006, -0.0006, 0.0006).isNull());
    EXPECT_FALSE(withOrigin(0.001, 0.0001, 0).isNull());
}

TEST(MachineContextData, StaysNullWithAProximityWithinTheTolerance) {
    for (const auto set : {&Context::setMachineProximity, &Context::setClampingProximity}) {
        for (const double zero : {0.0, -0.0, 1e-7, -1e-7, 1e-6, -1e-6}) {
            Context context;
            (context.*set)(zero);
            EXPECT_TRUE(context.isNull()) << zero;
        }
        for (const double more : {std::nextafter(1e-6, 1), -2e-6, 2e-6, 0.001, 1e300, infinity}) {
            Context context;
            (context.*set)(more);
            EXPECT_FALSE(context.isNull()) << more;
            EXPECT_TRUE(context.isNotNull()) << more;
        }
    }
}

TEST(MachineContextData, IsNotNullWithANan) {
    EXPECT_FALSE(withOrigin(not_a_number, 0, 0).isNull());
    EXPECT_FALSE(withOrigin(0, not_a_number, 0).isNull());
    EXPECT_FALSE(withOrigin(0, 0, not_a_number).isNull());
    Context machine;
    machine.setMachineProximity(not_a_number);
    EXPECT_TRUE(machine.isNotNull());
    Context clamping;
    clamping.setClampingProximity(not_a_number);
    EXPECT_TRUE(clamping.isNotNull());
    EXPECT_FALSE(withOrigin(infinity, 0, 0).isNull());
    EXPECT_FALSE(withOrigin(1e200, 0, 0).isNull());
}

TEST(MachineContextData, KeepsNumbersAsTheyAre) {
    Context context = withOrigin(-0.0, infinity, not_a_number);
    context.setMachineProximity(-1e-300);
    context.setClampingProximity(-infinity);
    EXPECT_TRUE(std::signbit(originOf(context)[0]));
    EXPECT_EQ(originOf(context)[1], infinity);
    EXPECT_TRUE(std::isnan(originOf(context)[2]));
    EXPECT_EQ(context.getMachineProximity(), -1e-300);
    EXPECT_EQ(context.getClampingProximity(), -infinity);
}

TEST(MachineContextData, IsEmptyAgainOnceCleared) {
    Context context = sample();
    context.clear();
    expectDefaults(context);
    context.clear();
    expectDefaults(context);
    context.setName("x");
    EXPECT_EQ(context.getName(), "x");
}

TEST(MachineContextData, IsCopiedWithEveryField) {
    Context source = sample();
    Context copy = source;
    expectSample(copy);
    copy.clear();
    expectSample(source);
    copy = source;
    source.setCommentW(L"changed");
    source.setOriginProgram(0, 0, 0);
    expectSample(copy);
    const Context& same = copy;
    copy = same;
    expectSample(copy);
    copy = Context();
    expectDefaults(copy);
}

TEST(MachineContextData, ReadsLikeANewOneAfterItWasMovedFrom) {
    Context source = sample();
    Context target = std::move(source);
    expectSample(target);
    expectDefaults(source);
    const Context copyOfMovedFrom = source;
    expectDefaults(copyOfMovedFrom);
    source.clear();
    expectDefaults(source);
    source.setClampingProximity(7);
    EXPECT_EQ(source.getClampingProximity(), 7);
    source = std::move(target);
    expectSample(source);
    target = source;
    expectSample(target);
}

TEST(MachineContextData, HasItsOriginAsAValue) {
    CMachineContextData data;
    EXPECT_EQ(data.getOriginProgram(), (std::array<double, 3>{0, 0, 0}));
    data.setOriginProgram({1, 2, 3});
    double x = 0;
    double y = 0;
    double z = 0;
    data.getOriginProgram(x, y, z);
    EXPECT_EQ(x, 1);
    EXPECT_EQ(y, 2);
    EXPECT_EQ(z, 3);
    EXPECT_EQ(data.getOriginProgram(), (std::array<double, 3>{1, 2, 3}));
}
