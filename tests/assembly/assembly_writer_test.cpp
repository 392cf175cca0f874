#include <tests/assembly/sample_components.h>
#include <trvfiles/assembly/assembly_writer.h>
#include <trvfiles/support/platform.h>

#include <QDomImplementation>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <string>

namespace {

using trv::testing::assemblyOf;
using trv::testing::chain;
using trv::testing::group;
using trv::testing::leaf;

class AssemblyWriter : public ::testing::Test {
protected:
    void SetUp() override {
        QDomImplementation::setInvalidDataPolicy(QDomImplementation::ReturnNullNode);
    }

    bool write(const CTrvAssemblyComponentData& root) {
        tree = std::make_unique<trv::DomTree>();
        return trv::writeDocument(assemblyOf(root), *tree);
    }

    QDomElement rootComponent() {
        return tree->document.documentElement().firstChildElement(QStringLiteral("Component"));
    }

    static QString attribute(const QDomElement& element, const char* name) {
        return element.attribute(QString::fromLatin1(name));
    }

    std::unique_ptr<trv::DomTree> tree;
};

std::string numberText(double number) {
    CTrvAssemblyData assembly = assemblyOf(leaf("n", "n.stl"), {number, 0, 0});
    trv::DomTree tree;
    EXPECT_TRUE(trv::writeDocument(assembly, tree));
    return tree.document.documentElement()
        .firstChildElement()
        .firstChildElement()
        .attribute(QStringLiteral("x"))
        .toStdString();
}

TEST_F(AssemblyWriter, WritesALeafWithItsFile) {
    ASSERT_TRUE(write(leaf("part", "part.stl")));
    const QDomElement data = rootComponent().lastChildElement();
    EXPECT_EQ(data.tagName(), QStringLiteral("Data"));
    EXPECT_EQ(attribute(data, "number"), QStringLiteral("1"));
    EXPECT_EQ(data.childNodes().size(), 1);
    EXPECT_EQ(data.firstChildElement().tagName(), QStringLiteral("File"));
    EXPECT_EQ(attribute(data.firstChildElement(), "name"), QStringLiteral("part.stl"));
}

TEST_F(AssemblyWriter, WritesAGroupWithTheNumberOfItsChildren) {
    ASSERT_TRUE(write(group("g", {leaf("a", "a.stl"), leaf("b", "b.stl"), leaf("c", "c.stl")})));
    const QDomElement data = rootComponent().lastChildElement();
    EXPECT_EQ(attribute(data, "number"), QStringLiteral("3"));
    EXPECT_EQ(data.childNodes().size(), 3);
    EXPECT_EQ(attribute(data.lastChildElement(), "name"), QStringLiteral("c"));
}

TEST_F(AssemblyWriter, LeavesOutTheChildrenOfAComponentWithAFile) {
    CTrvAssemblyComponentData both = group("g", {leaf("a", "a.stl")});
    both.setGeometryFileName("g.stl");
    ASSERT_TRUE(write(both));
    const QDomElement data = rootComponent().lastChildElement();
    EXPECT_EQ(attribute(data, "number"), QStringLiteral("1"));
    EXPECT_EQ(data.firstChildElement().tagName(), QStringLiteral("File"));
    EXPECT_TRUE(data.firstChildElement(QStringLiteral("Component")).isNull());
}

TEST_F(AssemblyWriter, RefusesAnEmptyLeafOnEveryLevel) {
    CTrvAssemblyComponentData empty;
    EXPECT_FALSE(write(empty));
    empty.setEnabled(false);
    EXPECT_FALSE(write(empty));
    EXPECT_FALSE(write(group("g", {leaf("a", "a.stl"), empty})));
    EXPECT_FALSE(write(group("g", {group("h", {empty}), leaf("a", "a.stl")})));
}

TEST_F(AssemblyWriter, TreatsAFileNameThatIsEmptyBeforeItsFirstNulAsMissing) {
    using namespace std::string_literals;
    EXPECT_FALSE(write(leaf("a", "\0a.stl"s)));
}

TEST_F(AssemblyWriter, DoesNotLookBelowAComponentWithAFile) {
    CTrvAssemblyComponentData hiding = group("g", {CTrvAssemblyComponentData()});
    hiding.setGeometryFileName("g.stl");
    EXPECT_TRUE(write(hiding));
}

TEST_F(AssemblyWriter, EndsTextsAtTheirFirstNul) {
    using namespace std::string_literals;
    CTrvAssemblyComponentData component = leaf("na\0me"s, "fi\0le"s);
    component.setComment("com\0ment"s);
    ASSERT_TRUE(write(component));
    EXPECT_EQ(attribute(rootComponent(), "name"), QStringLiteral("na"));
    EXPECT_EQ(attribute(rootComponent(), "comment"), QStringLiteral("com"));
    EXPECT_EQ(attribute(rootComponent().lastChildElement().firstChildElement(), "name"),
              QStringLiteral("fi"));
}

TEST_F(AssemblyWriter, RefusesTextsThatCouldNotBeReadBack) {
    for (const char* character : {"\uFFFE", "\uFFFF"}) {
        const std::string text = std::string("a") + character;
        EXPECT_FALSE(write(leaf(text, "a.stl")));
        EXPECT_FALSE(write(leaf("a", text)));
        CTrvAssemblyComponentData component = leaf("a", "a.stl");
        component.setComment(text);
        EXPECT_FALSE(write(component));
        EXPECT_FALSE(write(group("g", {leaf("a", "a.stl"), component})));
    }
    EXPECT_TRUE(write(leaf("\uFFFD\U0001FFFE", "a.stl")));
}

TEST_F(AssemblyWriter, WritesBytesThatAreNotTextAsReplacementCharacters) {
    if (!trv::platform::narrow_text_is_utf8()) GTEST_SKIP() << "the system's code page decides";
    ASSERT_TRUE(write(leaf("a\xC3(", "a.stl")));
    EXPECT_EQ(attribute(rootComponent(), "name"), QString::fromUtf8("a\uFFFD("));
}

TEST_F(AssemblyWriter, WritesAsDeepAsCanBeReadBack) {
    EXPECT_TRUE(write(chain(999)));
    EXPECT_FALSE(write(chain(1000)));
    EXPECT_FALSE(write(chain(100000)));
}

TEST_F(AssemblyWriter, ReportsWhetherADocumentIsDeep) {
    // With 99 components the end of the chain has 2 + 2 * 99 open elements.
    ASSERT_TRUE(write(chain(99)));
    EXPECT_FALSE(tree->isDeep);
    ASSERT_TRUE(write(chain(100)));
    EXPECT_TRUE(tree->isDeep);
}

TEST_F(AssemblyWriter, WritesNumbersThatReadBackToTheBit) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(numberText(0.1), "0.10000000000000001");
    EXPECT_EQ(numberText(-0.0), "0");
    EXPECT_EQ(numberText(1e15), "1000000000000000");
    EXPECT_EQ(numberText(1e20), "1e+20");
    EXPECT_EQ(numberText(1e-5), "1.0000000000000001e-05");
    EXPECT_EQ(numberText(nan), "nan");
    EXPECT_EQ(numberText(-nan), "nan");
    EXPECT_EQ(numberText(infinity), "inf");
    EXPECT_EQ(numberText(-infinity), "-inf");
    EXPECT_EQ(numberText(-2.5), "-2.5");
}

TEST_F(AssemblyWriter, WritesEnabledAsADigit) {
    CTrvAssemblyComponentData component = leaf("a", "a.stl");
    ASSERT_TRUE(write(component));
    EXPECT_EQ(attribute(rootComponent(), "enabled"), QStringLiteral("1"));
    component.setEnabled(false);
    ASSERT_TRUE(write(component));
    EXPECT_EQ(attribute(rootComponent(), "enabled"), QStringLiteral("0"));
}

}  // namespace
