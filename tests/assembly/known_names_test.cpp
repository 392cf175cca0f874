#include <trvfiles/assembly/known_names.h>

#include <gtest/gtest.h>

namespace {

namespace known = trv::known;

TEST(KnownNames, AreThoseOfTheFormat) {
    EXPECT_TRUE(trv::isKnown(known::root.attributes, "version"));
    EXPECT_TRUE(trv::isKnown(known::root.children, "Attributs"));
    EXPECT_TRUE(trv::isKnown(known::data.children, "File"));
    EXPECT_FALSE(trv::isKnown(known::data.children, "file"));
    EXPECT_FALSE(trv::isKnown(known::data.children, ""));
    EXPECT_FALSE(trv::isKnown(known::vector.children, "x"));
    EXPECT_TRUE(trv::isKnown(known::vector.attributes, "z"));
}

TEST(KnownNames, OfXmlAndOfOtherNamespacesAreForeign) {
    for (const char* name : {"xmlns", "xmlns:xsi", "xml:space", "xsi:schemaLocation"})
        EXPECT_TRUE(trv::isForeignAttribute(name)) << name;
    for (const char* name : {"x", "xmlnsx", ""})
        EXPECT_FALSE(trv::isForeignAttribute(name)) << name;
}

TEST(KnownNames, AreNamedIfOnlyCaseDiffers) {
    EXPECT_EQ(trv::unknownElementText(known::component, "Component", "translation"),
              "<translation> in <Component> is ignored: the name is spelled <Translation>");
    EXPECT_EQ(trv::unknownAttributeText(known::vector, "vec1", "X"),
              "attribute \"X\" of <vec1> is ignored: the name is spelled \"x\"");
}

TEST(KnownNames, AreNotGuessedOtherwise) {
    EXPECT_EQ(trv::unknownElementText(known::component, "Component", "File"),
              "<File> in <Component> is ignored: the format has no such element there");
    EXPECT_EQ(trv::unknownElementText({}, "File", std::string(50, 'a')),
              "<" + std::string(40, 'a') +
                  "...> in <File> is ignored: the format has no such element there");
    EXPECT_EQ(trv::unknownAttributeText(known::attributes, "Attributs", "name"),
              "attribute \"name\" of <Attributs> is ignored: the format has no such attribute "
              "there");
}

}  // namespace
