#include <tests/assembly/dom_writer.h>
#include <tests/assembly/random_assemblies.h>
#include <tests/assembly/sample_components.h>
#include <trvfiles/assembly/assembly_writer.h>
#include <trvfiles/assembly/block_writer.h>
#include <trvfiles/assembly/document_parser.h>
#include <trvfiles/support/platform.h>

#include <QBuffer>
#include <QDomImplementation>
#include <QRegularExpression>
#include <QStringList>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using trv::testing::assemblyOf;
using trv::testing::chain;
using trv::testing::group;
using trv::testing::leaf;

std::string textOf(const CTrvAssemblyData& assembly) {
    std::string text;
    trv::BlockWriter out([&text](std::string_view block) {
        text += block;
        return true;
    });
    EXPECT_TRUE(trv::writeAssembly(assembly, out));
    return text;
}

class AssemblyWriter : public ::testing::Test {
protected:
    void SetUp() override {
        QDomImplementation::setInvalidDataPolicy(QDomImplementation::ReturnNullNode);
    }

    bool write(const CTrvAssemblyComponentData& root) {
        const CTrvAssemblyData assembly = assemblyOf(root);
        if (!trv::isWritable(assembly)) return false;
        QByteArray text = QByteArray::fromStdString(textOf(assembly));
        QBuffer device(&text);
        device.open(QIODevice::ReadOnly);
        tree = std::make_unique<trv::DomTree>();
        return trv::parseDocument(device, *tree);
    }

    QDomElement rootComponent() {
        return tree->document.documentElement().firstChildElement(QStringLiteral("Component"));
    }

    static QString attribute(const QDomElement& element, const char* name) {
        return element.attribute(QString::fromLatin1(name));
    }

    std::unique_ptr<trv::DomTree> tree;
};

// Each line with the attributes of its element in alphabetical order.
QString withSortedAttributes(const QString& text) {
    static const QRegularExpression attribute(QStringLiteral(" (\\w+)=\"([^\"]*)\""));
    QStringList lines = text.split(QLatin1Char('\n'));
    for (QString& line : lines) {
        if (line.startsWith(QLatin1String("<?"))) continue;
        QStringList attributes;
        for (auto found = attribute.globalMatch(line); found.hasNext();) {
            attributes += found.next().captured();
        }
        attributes.sort();
        line = line.remove(attribute) + attributes.join(QString());
    }
    return lines.join(QLatin1Char('\n'));
}

// The line of the geometry file.
std::string lineWithFile(const std::string& name) {
    const std::string text = textOf(assemblyOf(leaf("n", name)));
    const std::size_t begin = text.find("<File ");
    return text.substr(begin, text.find('\n', begin) - begin);
}

std::string numberText(double number) {
    const std::string text = textOf(assemblyOf(leaf("n", "n.stl"), {number, 0, 0}));
    const std::string before = "<Dimension x=\"";
    const std::size_t begin = text.find(before) + before.size();
    return text.substr(begin, text.find('"', begin) - begin);
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

TEST_F(AssemblyWriter, RefusesAnEmptyLeafWhereverItStands) {
    CTrvAssemblyComponentData empty;
    EXPECT_FALSE(write(empty));
    empty.setEnabled(false);
    EXPECT_FALSE(write(empty));
    EXPECT_FALSE(write(group("g", {leaf("a", "a.stl"), empty})));
    EXPECT_FALSE(write(group("g", {group("h", {empty}), leaf("a", "a.stl")})));
}

TEST_F(AssemblyWriter, TakesAFileNameThatIsEmptyBeforeItsFirstNulForNone) {
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

TEST_F(AssemblyWriter, WritesBytesThatAreNoTextAsReplacementCharacters) {
    if (!trv::platform::narrow_text_is_utf8()) GTEST_SKIP() << "the system's code page decides";
    ASSERT_TRUE(write(leaf("a\xC3(", "a.stl")));
    EXPECT_EQ(attribute(rootComponent(), "name"), QString::fromUtf8("a\uFFFD("));
}

TEST_F(AssemblyWriter, WritesAsDeepAsCanBeReadBack) {
    EXPECT_TRUE(write(chain(999)));
    EXPECT_FALSE(write(chain(1000)));
    EXPECT_FALSE(write(chain(100000)));
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

TEST_F(AssemblyWriter, WritesTheBytesOfTheFormat) {
    CTrvAssemblyComponentData part = leaf("Part", "part.stl");
    part.setEnabled(false);
    const CTrvAssemblyData assembly = trv::testing::assemblyOf(
        trv::testing::group("Setup", {leaf("Vise", "vise.stl"), part}), {100, 50, 0.1});

    EXPECT_EQ(textOf(assembly),
              R"(<?xml version="1.0" encoding="UTF-8"  ?>
<ComponentInfo version="1">
   <Attributs>
      <Dimension x="100" y="50" z="0.10000000000000001"/>
   </Attributs>
   <Component name="Setup" comment="" enabled="1">
      <Translation x="0" y="0" z="0"/>
      <Orientation>
         <vec1 x="1" y="0" z="0"/>
         <vec2 x="0" y="1" z="0"/>
         <vec3 x="0" y="0" z="1"/>
      </Orientation>
      <Data number="2">
         <Component name="Vise" comment="" enabled="1">
            <Translation x="0" y="0" z="0"/>
            <Orientation>
               <vec1 x="1" y="0" z="0"/>
               <vec2 x="0" y="1" z="0"/>
               <vec3 x="0" y="0" z="1"/>
            </Orientation>
            <Data number="1">
               <File name="vise.stl"/>
            </Data>
         </Component>
         <Component name="Part" comment="" enabled="0">
            <Translation x="0" y="0" z="0"/>
            <Orientation>
               <vec1 x="1" y="0" z="0"/>
               <vec2 x="0" y="1" z="0"/>
               <vec3 x="0" y="0" z="1"/>
            </Orientation>
            <Data number="1">
               <File name="part.stl"/>
            </Data>
         </Component>
      </Data>
   </Component>
</ComponentInfo>
)");
}

TEST_F(AssemblyWriter, EscapesWhatAttributesCannotHold) {
    EXPECT_EQ(lineWithFile("<&\">'"), "<File name=\"&lt;&amp;&quot;>'\"/>");
    EXPECT_EQ(lineWithFile("\t\n\r"), "<File name=\"&#x9;&#xa;&#xd;\"/>");
    EXPECT_EQ(lineWithFile("]]>]>>]]]>"), "<File name=\"]]&gt;]>>]]]&gt;\"/>");
    EXPECT_EQ(lineWithFile("\x01\x1F\x7F"), "<File name=\"\x01\x1F\x7F\"/>");
    EXPECT_EQ(lineWithFile(">"), "<File name=\">\"/>");
}

TEST_F(AssemblyWriter, WritesUtf8) {
    EXPECT_EQ(lineWithFile("a\u00e9\u20ac\U0001F600z"),
              "<File name=\"a\u00e9\u20ac\U0001F600z\"/>");
    EXPECT_EQ(lineWithFile("\u0080"), "<File name=\"\u0080\"/>");
    EXPECT_EQ(lineWithFile("\uFEFFa"), "<File name=\"\uFEFFa\"/>");
}

TEST_F(AssemblyWriter, WritesWhatTheDomWrites) {
    trv::testing::RandomAssemblies assemblies(1);
    for (int i = 0; i < 400; ++i) {
        const CTrvAssemblyData assembly = assemblies.next();
        trv::DomTree dom;
        std::string expected;
        const bool isWritable = trv::testing::writeByDom(assembly, dom, expected);
        ASSERT_EQ(isWritable, trv::isWritable(assembly));
        if (!isWritable) continue;
        const std::string text = textOf(assembly);
        ASSERT_EQ(expected, text);
        // By way of UTF-8 on both sides, since half a character becomes a question mark.
        const QString theirs = QString::fromUtf8(dom.document.toString(3).toUtf8());
        ASSERT_EQ(withSortedAttributes(theirs), withSortedAttributes(QString::fromStdString(text)));
    }
}

TEST_F(AssemblyWriter, WritesTheDeepestDocumentOnASmallStack) {
    constexpr std::size_t stack = std::size_t{64} << 10;
    std::string text;
    trv::platform::call_on_stack(stack, [&] { text = textOf(assemblyOf(chain(999))); });
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 999 * 10 + 7);
}

TEST_F(AssemblyWriter, PassesBlocksUntilOneIsNotWritten) {
    std::vector<CTrvAssemblyComponentData> children(2000, leaf("n", "n.stl"));
    const CTrvAssemblyData assembly = assemblyOf(group("g", std::move(children)));
    std::vector<std::size_t> sizes;
    trv::BlockWriter out([&sizes](std::string_view block) {
        sizes.push_back(block.size());
        return sizes.size() < 3;
    });
    EXPECT_FALSE(trv::writeAssembly(assembly, out));
    ASSERT_EQ(3U, sizes.size());
    for (const std::size_t size : sizes) {
        EXPECT_GT(size, 65500U);
        EXPECT_LE(size, 65536U);
    }
}

}  // namespace
