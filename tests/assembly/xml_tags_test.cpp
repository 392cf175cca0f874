#include <trvfiles/assembly/xml_tags.h>

#include <gtest/gtest.h>

#include <string>

namespace trv {
namespace {

// The tags as "NAME@BEGIN", an end tag with "/" before its name, an empty one with "/" after it.
std::string tagsOf(const char* text) {
    const QString source = QString::fromUtf8(text);
    std::string found;
    XmlTag tag;
    for (XmlTags tags(source); tags.next(tag);) {
        found += found.empty() ? "" : " ";
        if (tag.kind == XmlTag::Kind::end) found += '/';
        found += tag.name.toStdString();
        if (tag.kind == XmlTag::Kind::empty) found += '/';
        found += '@' + std::to_string(tag.begin);
    }
    return found;
}

std::string unclosedIn(const char* text) {
    const XmlTag tag = unclosedTag(QString::fromUtf8(text));
    return tag.name.toStdString() + '@' + std::to_string(tag.begin);
}

TEST(XmlTags, AreFoundInTheirOrder) {
    EXPECT_EQ(tagsOf("<a><b x='1' /></a >"), "a@0 b/@3 /a@14");
    EXPECT_EQ(tagsOf("text"), "");
    EXPECT_EQ(tagsOf(""), "");
}

TEST(XmlTags, AreNotSoughtInWhatIsNoElement) {
    EXPECT_EQ(tagsOf("<?xml a?><!-- <b> --><a><![CDATA[<c>]]></a>"), "a@21 /a@39");
    EXPECT_EQ(tagsOf("<!DOCTYPE a [<!ELEMENT a (b)> <!-- > -->]><a/>"), "a/@42");
    EXPECT_EQ(tagsOf("<!DOCTYPE a SYSTEM \"x>y\"><a/>"), "a/@25");
}

TEST(XmlTags, HaveAttributesWithAnyValue) {
    const QString source = QStringLiteral("<a x = '>' y=\"'/>\"/>");
    XmlTag tag;
    ASSERT_TRUE(XmlTags(source).next(tag));
    EXPECT_EQ(tag.kind, XmlTag::Kind::empty);
    EXPECT_EQ(tag.after, 20);
    ASSERT_EQ(tag.attributes.size(), 2U);
    EXPECT_EQ(tag.attributes[0].name.toStdString(), "x");
    EXPECT_EQ(tag.attributes[0].position, 3);
    EXPECT_EQ(tag.attributes[0].valuePosition, 8);
    EXPECT_EQ(tag.attributes[0].value.toStdString(), ">");
    EXPECT_EQ(tag.attributes[1].value.toStdString(), "'/>");
}

TEST(XmlTags, EndWhereTheTextIsNotComplete) {
    for (const char* text : {"<", "</", "<a", "<a ", "<a x", "<a x=", "<a x='", "<a/", "<!--", "<!",
                             "<?", "<![CDATA[", "<!DOCTYPE 'a", "<>", "<a <b>"}) {
        EXPECT_EQ(tagsOf(text), "") << text;
    }
}

TEST(XmlTags, AreFoundByTheirEnds) {
    const QString source = QStringLiteral("<a x='>'><b/></a>");
    EXPECT_EQ(tagEndingAt(source, 8).begin, 0);
    EXPECT_EQ(tagEndingAt(source, 8).name.toStdString(), "a");
    EXPECT_EQ(tagEndingAt(source, 11).name.toStdString(), "b");
    EXPECT_EQ(tagEndingAt(source, 16).kind, XmlTag::Kind::end);
    for (const int other : {-1, 0, 6, 7, 9, 12, 17, 99})
        EXPECT_EQ(tagEndingAt(source, other).name, QString()) << other;
}

TEST(XmlTags, NameTheElementThatIsNotClosed) {
    EXPECT_EQ(unclosedIn("<a><b/><c></c><d></a>"), "d@14");
    EXPECT_EQ(unclosedIn("<a><b>"), "b@3");
    EXPECT_EQ(unclosedIn("<a><b></b>"), "a@0");
    EXPECT_EQ(unclosedIn("<a></a>"), "@0");
    EXPECT_EQ(unclosedIn("</a><b>"), "@0");
}

TEST(XmlTags, ResolveTheReferencesOfAValue) {
    EXPECT_EQ(valueOf({{}, 0, 0, QStringLiteral("a &amp; &#65;&#x20AC;")}).toStdString(),
              "a & A\u20ac");
    EXPECT_EQ(valueOf({{}, 0, 0, QStringLiteral("&other;&")}).toStdString(), "&other;&");
}

}  // namespace
}  // namespace trv
