#include <cli/assembly_save.h>
#include <tests/cli/project_directory.h>
#include <tests/common/child_process.h>
#include <tests/common/system.h>

namespace trv::testing {
namespace {

class AssemblySave : public ProjectDirectory {
protected:
    std::string save(const CTrvAssemblyData& data) const {
        const QString name = path("a.xml");
        const auto problem = cli::saveAssembly(name, data, cli::holdFile(name).get());
        return problem ? cli::problemText(problem).toStdString() : "";
    }
    static std::string whyNot(const CTrvAssemblyData& data) {
        const auto problem = cli::whyNotSaved(data);
        return problem ? cli::problemText(problem).toStdString() : "";
    }
    void expectRefusal(const CTrvAssemblyData& data, const std::string& reason) const {
        file("a.xml", "old");
        EXPECT_EQ(whyNot(data), reason);
        EXPECT_EQ(save(data), reason);
        EXPECT_EQ(bytes("a.xml"), "old");
        EXPECT_EQ(names(), std::vector<std::string>{"a.xml"});
    }
};

TEST_F(AssemblySave, WritesTheBytesOfTheFormat) {
    const CTrvAssemblyData data = assembly(leaf("n", "f"));
    EXPECT_EQ(whyNot(data), "");
    EXPECT_FALSE(exists("a.xml"));
    EXPECT_EQ(save(data), "");
    EXPECT_EQ(bytesOf(directory_ / "a.xml"),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"  ?>\n"
              "<ComponentInfo version=\"1\">\n"
              "   <Attributs>\n"
              "      <Dimension x=\"0\" y=\"0\" z=\"0\"/>\n"
              "   </Attributs>\n"
              "   <Component name=\"n\" comment=\"\" enabled=\"1\">\n"
              "      <Translation x=\"0\" y=\"0\" z=\"0\"/>\n"
              "      <Orientation>\n"
              "         <vec1 x=\"1\" y=\"0\" z=\"0\"/>\n"
              "         <vec2 x=\"0\" y=\"1\" z=\"0\"/>\n"
              "         <vec3 x=\"0\" y=\"0\" z=\"1\"/>\n"
              "      </Orientation>\n"
              "      <Data number=\"1\">\n"
              "         <File name=\"f\"/>\n"
              "      </Data>\n"
              "   </Component>\n"
              "</ComponentInfo>\n");
    EXPECT_EQ(names(), std::vector<std::string>{"a.xml"});
}

TEST_F(AssemblySave, WritesOnlyWhatReadsBack) {
    expectRefusal(
        assembly(component("n")),
        "eFileIOContentError: component \"n\" has neither a geometry file nor components");
    CTrvAssemblyComponentData hidden = component("n", {leaf("a", "f")});
    hidden.setGeometryFileName("g");
    expectRefusal(assembly(hidden),
                  "eFileIOContentError: the new file would give back another assembly");
    expectRefusal(assembly(leaf(std::string("a\0b", 3), "f")),
                  "eFileIOContentError: the new file would give back another assembly");
}

TEST_F(AssemblySave, ReportsThatTheFileCannotBeHeld) {
    const QString name = path("missing/a.xml");
    EXPECT_EQ(cli::problemText(
                  cli::saveAssembly(name, assembly(leaf("n", "f")), cli::holdFile(name).get()))
                  .toStdString(),
              "eFileIOOpenError: No such file or directory");
}

TEST_F(AssemblySave, KeepsTheOldFileWhenTheDiskIsFull) {
    if (!can_fork) GTEST_SKIP() << "the limit is set in a child process";
    file("a.xml", "old");
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(limitFileSize(100));
        EXPECT_EQ(save(assembly(leaf("n", "f"))), "eFileIOShortWrite: File too large");
    }));
    EXPECT_EQ(bytes("a.xml"), "old");
    EXPECT_EQ(names(), std::vector<std::string>{"a.xml"});
}

}  // namespace
}  // namespace trv::testing
