// Reading without the DOM: what the scanner accepts, and what it leaves to the DOM.

#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/assembly/assembly_reader.h>

#include <QBuffer>
#include <QByteArray>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {

using ::testing::ElementsAre;

class PlainReader : public ::testing::Test {
protected:
    bool read(const std::string& text, trv::Accepted accepted = trv::Accepted::complete) {
        QBuffer device;
        device.setData(QByteArray::fromStdString(text));
        device.open(QIODevice::ReadOnly);
        return trv::readPlainDocument(device, accepted, version, data);
    }

    bool readComponent(const std::string& content,
                       trv::Accepted accepted = trv::Accepted::complete) {
        return read("<ComponentInfo version='1'><Attributs/><Component>" + content +
                        "</Component></ComponentInfo>",
                    accepted);
    }

    int version = -1;
    CTrvAssemblyData data;
};

TEST_F(PlainReader, ReadsADocumentWithEveryElement) {
    ASSERT_TRUE(
        read("<?xml version=\"1.0\" encoding=\"UTF-8\"  ?>\n<ComponentInfo version=\"7\">\n"
             "<Attributs><Dimension x=\"1\" y=\"-2.5\" z=\"1e3\"/></Attributs>\n"
             "<Component name=\"g &amp; h\" comment=\"&#xa;\" enabled=\"0\">\n"
             "<Translation x=\"0.1\" y=\"-0\" z=\"3\"/>\n"
             "<Orientation><vec1 x=\"0\" y=\"1\" z=\"0\"/><vec2 x=\"0\" y=\"0\" z=\"1\"/>"
             "<vec3 x=\"1\" y=\"0\" z=\"0\"/></Orientation>\n"
             "<Data number=\"1\"><Component name=\"\xC3\xA9\"><Data number=\"1\">"
             "<File name=\"a.stl\"/></Data></Component></Data></Component></ComponentInfo>\n",
             trv::Accepted::unaltered));
    EXPECT_EQ(version, 7);
    double dimension[3];
    data.getDimension(dimension);
    EXPECT_THAT(dimension, ElementsAre(1, -2.5, 1000));
    const CTrvAssemblyComponentData& root = data.getRootComponent();
    EXPECT_EQ(root.getName(), "g & h");
    EXPECT_EQ(root.getComment(), "\n");
    EXPECT_FALSE(root.isEnabled());
    double translation[3];
    root.getTranslation(translation);
    EXPECT_THAT(translation, ElementsAre(0.1, 0, 3));
    EXPECT_TRUE(std::signbit(translation[1]));
    double vectors[3][3];
    root.getOrientation(vectors[0], vectors[1], vectors[2]);
    EXPECT_THAT(vectors[0], ElementsAre(0, 1, 0));
    EXPECT_THAT(vectors[1], ElementsAre(0, 0, 1));
    EXPECT_THAT(vectors[2], ElementsAre(1, 0, 0));
    ASSERT_EQ(root.getComponents().size(), 1u);
    EXPECT_EQ(root.getComponents()[0].getGeometryFileName(), "a.stl");
}

TEST_F(PlainReader, AcceptsAnAlteredNumberOnlyIfNobodyAsksForNotes) {
    const std::string content = "<Translation x='1,5'/>";
    EXPECT_FALSE(readComponent(content, trv::Accepted::unaltered));
    EXPECT_EQ(version, -1);
    EXPECT_TRUE(readComponent(content));
    EXPECT_EQ(version, 1);
}

TEST_F(PlainReader, AcceptsAnAlteredFlagOnlyIfNobodyAsksForNotes) {
    const std::string content = "<Data><Component enabled='yes'/></Data>";
    EXPECT_FALSE(readComponent(content, trv::Accepted::unaltered));
    EXPECT_TRUE(readComponent(content));
}

TEST_F(PlainReader, LeavesDocumentsWithAComponentThatIsLeftOutToTheDom) {
    EXPECT_FALSE(readComponent("<Data><Component><Orientation/></Component></Data>"));
    EXPECT_EQ(version, -1);
    EXPECT_TRUE(data == CTrvAssemblyData());
}

TEST_F(PlainReader, LeavesEveryFailureToTheDom) {
    for (const std::string document :
         {"<a/>", "<ComponentInfo><Attributs/><Component/></ComponentInfo>",
          "<ComponentInfo version='x'><Attributs/><Component/></ComponentInfo>",
          "<ComponentInfo version='1'><Component/></ComponentInfo>",
          "<ComponentInfo version='1'><Attributs><Dimension x='9'/></Attributs></ComponentInfo>",
          "<ComponentInfo version='1'><Attributs/><Component><Orientation/></Component>"
          "</ComponentInfo>",
          "<ComponentInfo version='1'><Attributs/><Component/></ComponentInfo", ""}) {
        EXPECT_FALSE(read(document)) << document;
        EXPECT_EQ(version, -1) << document;
        double dimension[3];
        data.getDimension(dimension);
        EXPECT_THAT(dimension, ElementsAre(0, 0, 0)) << document;
    }
}

TEST_F(PlainReader, DoesNotTrustTheNumberOfComponents) {
    for (const std::string number : {"18446744073709551615", "1000000000000", "-1", "x", ""}) {
        EXPECT_TRUE(readComponent("<Data number='" + number + "'><Component/><Component/></Data>"));
        EXPECT_EQ(data.getRootComponent().getComponents().size(), 2u) << number;
    }
}

TEST_F(PlainReader, ReadsAsDeepAsTheDom) {
    const auto nested = [](int components) {
        std::string text = "<ComponentInfo version='1'><Attributs/>";
        for (int i = 0; i < components; ++i)
            text += "<Component><Data>";
        for (int i = 0; i < components; ++i)
            text += "</Data></Component>";
        return text + "</ComponentInfo>";
    };
    // The root and 999 times a component and its "Data" are 1999 open elements.
    EXPECT_TRUE(read(nested(999)));
    EXPECT_FALSE(read(nested(1000)));
}

}  // namespace
