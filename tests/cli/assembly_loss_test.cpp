#include <cli/assembly_loss.h>
#include <tests/cli/samples.h>

#include <QBuffer>
#include <gtest/gtest.h>

#include <string>

namespace trv::cli {
namespace {

// "3: a comment", or "" if nothing is lost.
std::string loss(const std::string& text) {
    QBuffer device;
    device.setData(QByteArray::fromStdString(text));
    device.open(QIODevice::ReadOnly);
    const AssemblyLoss found = findAssemblyLoss(device);
    if (found.line == 0) return found.what.toStdString();
    return std::to_string(found.line) + ": " + found.what.toStdString();
}

std::string document(const std::string& inRoot) {
    return "<?xml version=\"1.0\"?>\n<ComponentInfo version=\"1\">\n" + inRoot +
           "</ComponentInfo>\n";
}

std::string inComponent(const std::string& text) {
    return document("<Attributs/><Component>\n" + text + "</Component>\n");
}

TEST(AssemblyLoss, IsNoneForWhatIsWritten) {
    EXPECT_EQ(loss(testing::setupXml), "");
    EXPECT_EQ(loss(testing::chainXml(999, "f")), "");
    EXPECT_EQ(loss(inComponent("\n<Data number='9'>\t<File name='f'></File></Data>")), "");
}

TEST(AssemblyLoss, IsWhatNoFileHas) {
    EXPECT_EQ(loss("<!-- x -->" + std::string(testing::setupXml)), "1: a comment");
    EXPECT_EQ(loss(inComponent("<Data>\n<!-- --></Data>")), "5: a comment");
    EXPECT_EQ(loss(inComponent("<?php x?>")), "4: a processing instruction");
    EXPECT_EQ(loss(inComponent("note")), "4: text");
    EXPECT_EQ(loss(inComponent("<![CDATA[x]]>")), "4: text");
    EXPECT_EQ(loss(inComponent("<Data/>\n<Tool/>")), "5: the element <Tool>");
    EXPECT_EQ(loss(inComponent("<Dimension/>")), "4: the element <Dimension>");
    EXPECT_EQ(loss(inComponent("<t:Data/>")), "4: the element <t:Data>");
    EXPECT_EQ(loss(inComponent("<Data number='1' id='7'/>")), "4: the attribute id of <Data>");
    EXPECT_EQ(loss(inComponent("<Translation w='1'/>")), "4: the attribute w of <Translation>");
    EXPECT_EQ(loss("<!DOCTYPE ComponentInfo>\n" + std::string(testing::setupXml)),
              "1: the document type");
    EXPECT_EQ(loss("<ComponentInfo version='2'/>"), "1: the version 2");
}

TEST(AssemblyLoss, IsWhatAFileHasOnce) {
    EXPECT_EQ(loss(inComponent("<Data/>\n<Data/>")), "5: another <Data>");
    EXPECT_EQ(loss(inComponent("<Orientation><vec1/><vec2/><vec1/></Orientation>")),
              "4: another <vec1>");
    EXPECT_EQ(loss(document("<Attributs/>\n<Component/>\n<Component/>")), "5: another <Component>");
    EXPECT_EQ(loss(inComponent("<Data><File/><File/></Data>")), "4: another <File>");
    EXPECT_EQ(loss(inComponent("<Data><File/>\n<Component/></Data>")),
              "5: a <Component> beside a <File>");
    EXPECT_EQ(loss(inComponent("<Data><Component/>\n<Component/>\n<File/></Data>")),
              "6: a <Component> beside a <File>");
}

TEST(AssemblyLoss, IsWhatCannotBeChecked) {
    EXPECT_EQ(loss("<ComponentInfo>\n<Attributs>").substr(0, 36),
              "2: content that cannot be checked (P");
}

}  // namespace
}  // namespace trv::cli
