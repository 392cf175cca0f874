#include <cli/check_references.h>
#include <tests/cli/samples.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace trv::cli {
namespace {

class CheckReferences : public ::testing::Test {
protected:
    void make(const char* name) const {
        std::filesystem::create_directories((directory_ / name).parent_path());
        testing::writeBytes(directory_ / name, "x");
    }

    QString file() const {
        return QString::fromStdString((directory_ / "project/a.xml").generic_string());
    }

    static std::string textsOf(const References& references) {
        std::string texts;
        for (const Reference& reference : references)
            texts += textOf(reference).toStdString() + '\n';
        return texts;
    }

    std::string missingIn(const std::string& geometryFile) const {
        return textsOf(
            missingReferences(file(), testing::assembly(testing::leaf("a", geometryFile))));
    }

    testing::TemporaryDirectory directory_;
};

TEST_F(CheckReferences, FindsFilesFromTheDirectoryOfTheAssembly) {
    make("project/geometry/a.stl");
    make("b.stl");
    EXPECT_EQ(missingIn("geometry/a.stl"), "");
    EXPECT_EQ(missingIn("geometry\\a.stl"), "");
    EXPECT_EQ(missingIn("../b.stl"), "");
    EXPECT_EQ(missingIn((directory_ / "b.stl").generic_string()), "");
    EXPECT_EQ(missingIn("b.stl"), "geometry file \"b.stl\" does not exist\n");
    EXPECT_EQ(missingIn("geometry"), "geometry file \"geometry\" does not exist\n");
}

TEST_F(CheckReferences, NamesEachMissingFileOnceAlsoOfADisabledComponent) {
    CTrvAssemblyComponentData disabled = testing::leaf("c", "c.stl");
    disabled.setEnabled(false);
    const CTrvAssemblyData assembly = testing::assembly(testing::component(
        "a", {testing::leaf("b", "b.stl"), disabled, testing::leaf("d", "b.stl")}));
    EXPECT_EQ(textsOf(missingReferences(file(), assembly)),
              "geometry file \"b.stl\" does not exist\n"
              "geometry file \"c.stl\" does not exist\n");
}

TEST_F(CheckReferences, NamesTheFilesOfAMachineContext) {
    make("project/mill.mac");
    CMachineContextData context;
    EXPECT_EQ(textsOf(missingReferences(file(), context)), "");
    context.setMachineName("mill.mac");
    context.setMachinePosition("[p]a.ref");
    context.setReferenceAxisForOriginProgram("transfo.dat");
    EXPECT_EQ(textsOf(missingReferences(file(), context)),
              "position file \"[p]a.ref\" does not exist\n"
              "reference axis file \"transfo.dat\" does not exist\n");
    make("project/[p]a.ref");
    make("project/transfo.dat");
    EXPECT_EQ(textsOf(missingReferences(file(), context)), "");
}

TEST_F(CheckReferences, HaveThePlaceOfTheName) {
    const SourceText xml(QStringLiteral("<a name='f &amp; g'/>\n<File name='x'/><File "
                                        "name='f &amp; g'/>"),
                         SourceText::Lines::ofXml);
    const std::vector<Place> inXml = placesOf(xml, {{{}, QStringLiteral("f & g"), {}, {}},
                                                    {{}, QStringLiteral("other"), {}, {}},
                                                    {{}, QStringLiteral("x"), {}, {}}});
    ASSERT_EQ(inXml.size(), 3U);
    EXPECT_EQ(inXml[0].line, 2);
    EXPECT_EQ(inXml[0].column, 29);
    EXPECT_EQ(inXml[1].line, 0);
    EXPECT_EQ(inXml[2].line, 2);
    EXPECT_EQ(inXml[2].column, 13);
    const SourceText context(QStringLiteral("[machine]\nname = m\n"), SourceText::Lines::ofText);
    const std::vector<Place> inContext = placesOf(
        context, {{{}, QStringLiteral("m"), QStringLiteral("machine"), QStringLiteral("name")}});
    ASSERT_EQ(inContext.size(), 1U);
    EXPECT_EQ(inContext[0].line, 2);
    EXPECT_EQ(inContext[0].column, 8);
}

}  // namespace
}  // namespace trv::cli
