#include <tests/assembly/random_assemblies.h>
#include <tests/assembly/sample_components.h>
#include <trvfiles/assembly/assembly_writer.h>
#include <trvfiles/support/platform.h>

#include <QDomImplementation>
#include <QRegularExpression>
#include <QStringList>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <memory>

namespace {

std::unique_ptr<trv::DomTree> treeOf(const CTrvAssemblyData& assembly) {
    QDomImplementation::setInvalidDataPolicy(QDomImplementation::ReturnNullNode);
    auto tree = std::make_unique<trv::DomTree>();
    EXPECT_TRUE(trv::writeDocument(assembly, *tree));
    return tree;
}

std::string textWithAttribute(const QString& value) {
    QDomDocument document;
    QDomElement element = document.createElement(QStringLiteral("File"));
    document.appendChild(element);
    element.setAttribute(QStringLiteral("name"), value);
    return trv::documentText(document);
}

std::string textWithAttribute(const char* value) {
    return textWithAttribute(QString::fromUtf8(value));
}

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

TEST(DocumentText, HasExactlyTheseBytes) {
    using trv::testing::leaf;
    CTrvAssemblyComponentData part = leaf("Part", "part.stl");
    part.setEnabled(false);
    const CTrvAssemblyData assembly = trv::testing::assemblyOf(
        trv::testing::group("Setup", {leaf("Vise", "vise.stl"), part}), {100, 50, 0.1});

    EXPECT_EQ(trv::documentText(treeOf(assembly)->document),
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

TEST(DocumentText, EscapesWhatAttributesCannotHold) {
    EXPECT_EQ(textWithAttribute("<&\">'"), "<File name=\"&lt;&amp;&quot;>'\"/>\n");
    EXPECT_EQ(textWithAttribute("\t\n\r"), "<File name=\"&#x9;&#xa;&#xd;\"/>\n");
    EXPECT_EQ(textWithAttribute("]]>]>>]]]>"), "<File name=\"]]&gt;]>>]]]&gt;\"/>\n");
    EXPECT_EQ(textWithAttribute("\x01\x1F\x7F"), "<File name=\"\x01\x1F\x7F\"/>\n");
}

TEST(DocumentText, WritesUtf8) {
    EXPECT_EQ(textWithAttribute("a\u00e9\u20ac\U0001F600z"),
              "<File name=\"a\u00e9\u20ac\U0001F600z\"/>\n");
    EXPECT_EQ(textWithAttribute(QString(QChar(0x7F)) + QChar(0x80)),
              "<File name=\"\x7F\xC2\x80\"/>\n");
}

TEST(DocumentText, WritesALoneHalfOfACharacterAsAQuestionMark) {
    EXPECT_EQ(textWithAttribute(QStringLiteral("a") + QChar(0xD83D) + QStringLiteral("b")),
              "<File name=\"a?b\"/>\n");
    EXPECT_EQ(textWithAttribute(QString(QChar(0xDE00))), "<File name=\"?\"/>\n");
}

TEST(DocumentText, IsWhatTheDomWouldWriteButForTheOrderOfAttributes) {
    trv::testing::RandomAssemblies assemblies(1);
    for (int i = 0; i < 200; ++i) {
        const auto tree = treeOf(assemblies.next());
        const QString ours = QString::fromStdString(trv::documentText(tree->document));
        // Both sides are converted through UTF-8, in which half a surrogate pair becomes a question
        // mark.
        const QString theirs = QString::fromUtf8(tree->document.toString(3).toUtf8());
        ASSERT_EQ(withSortedAttributes(ours), withSortedAttributes(theirs));
    }
}

TEST(DocumentText, WritesADocumentOfMaxDepthOnASmallStack) {
    constexpr std::size_t stack = std::size_t{512} << 10;
    std::string text;
    trv::platform::call_on_stack(stack, [&] {
        text =
            trv::documentText(treeOf(trv::testing::assemblyOf(trv::testing::chain(999)))->document);
    });
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 999 * 10 + 7);
}

}  // namespace
