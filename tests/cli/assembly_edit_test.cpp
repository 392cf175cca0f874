#include <tests/cli/answer.h>
#include <tests/cli/project_directory.h>
#include <tests/common/child_process.h>
#include <tests/common/system.h>
#include <trvfiles/environment/file_replacement.h>
#include <trvfiles/facade/CQvFilesIO.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>

namespace trv::testing {
namespace {

class AssemblyEdit : public ProjectDirectory {
protected:
    QString sample(const std::string& name, const std::string& geometry = "f") const {
        const CTrvAssemblyData data =
            assembly(component("S", {leaf("a", geometry), leaf("b", "g")}));
        EXPECT_EQ(CQvFilesIO::sWriteTrvAssembly(path(name).toStdWString(), data), 1);
        return path(name);
    }
    static Answer edit(const char* options, const QStringList& files) {
        return answerTo(words("assembly edit") + words(options) + files);
    }
    std::string start(const std::string& name) const { return "trvfiles: " + text(name) + ": "; }
};

TEST_F(AssemblyEdit, ChangesOneFieldAndNothingElse) {
    const QString name = sample("a.xml");
    const std::string before = bytes("a.xml");
    const Answer answer = edit("--set S/b.comment=spare", {name});
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.err, "");
    EXPECT_EQ(answer.out, "S/b[1]: comment \"\" -> \"spare\"\n");
    const std::string from = "name=\"b\" comment=\"\"";
    std::string expected = before;
    expected.replace(expected.find(from), from.size(), "name=\"b\" comment=\"spare\"");
    EXPECT_EQ(bytes("a.xml"), expected);
    EXPECT_EQ(names(), std::vector<std::string>{"a.xml"});
}

TEST_F(AssemblyEdit, MakesEveryKindOfEdit) {
    const QString name = sample("a.xml");
    const Answer answer = edit(
        "--rename-file f=x.stl --set S/a.comment=C --set S/a.translation=1,2.5,-3 --disable "
        "S/a --enable S/b --set S/b.name=B",
        {name});
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.err, "");
    EXPECT_EQ(answer.out,
              "S/a[0]: comment \"\" -> \"C\"\n"
              "S/a[0]: file \"f\" -> \"x.stl\"\n"
              "S/a[0]: enabled -> disabled\n"
              "S/a[0]: moved by 1 2.5 -3\n"
              "S/b[1]: name \"b\" -> \"B\"\n");
    CTrvAssemblyData data;
    ASSERT_EQ(CQvFilesIO::sReadTrvAssembly(name.toStdWString(), data), 1);
    const std::vector<CTrvAssemblyComponentData> children = data.getRootComponent().getComponents();
    EXPECT_EQ(children[0].getGeometryFileName(), "x.stl");
    EXPECT_EQ(children[0].getComment(), "C");
    EXPECT_FALSE(children[0].isEnabled());
    double translation[3] = {};
    children[0].getTranslation(translation);
    EXPECT_EQ(translation[0], 1);
    EXPECT_EQ(translation[1], 2.5);
    EXPECT_EQ(translation[2], -3);
    EXPECT_EQ(children[1].getName(), "B");
}

TEST_F(AssemblyEdit, ChangesTheFilesInWhichSomethingMatches) {
    QStringList files;
    std::string expected;
    for (int i = 0; i < 200; ++i) {
        const std::string name = "n" + std::to_string(i);
        files += sample(name, i % 2 == 0 ? "f" : "other");
        if (i % 2 == 0) expected += text(name) + ":\nS/a[0]: file \"f\" -> \"h\"\n";
    }
    const std::string untouched = bytes("n1");
    const auto time = std::filesystem::last_write_time(directory_ / "n1");
    Answer answer = edit("--rename-file f=h", files);
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.out, expected);
    EXPECT_EQ(answer.err, "trvfiles: 100 of 200 files changed\n");
    EXPECT_EQ(bytes("n1"), untouched);
    EXPECT_EQ(std::filesystem::last_write_time(directory_ / "n1"), time);
    EXPECT_EQ(names().size(), 200U);

    answer = edit("--rename-file f=h", {files.at(0)});
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.out, "");
    EXPECT_EQ(answer.err, "trvfiles: 0 of 1 file changed\n");
}

TEST_F(AssemblyEdit, WritesNothingInADryRun) {
    const QStringList files = {sample("a"), sample("b", "other")};
    const std::string before = bytes("a");
    Answer answer = edit("--dry-run --rename-file f=h", files);
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.out, text("a") + ":\nS/a[0]: file \"f\" -> \"h\"\n");
    EXPECT_EQ(answer.err, "trvfiles: 1 of 2 files would change\n");
    EXPECT_EQ(bytes("a"), before);
    EXPECT_EQ(names(), (std::vector<std::string>{"a", "b"}));
    if (!can_fork) GTEST_SKIP() << "rights are given up in a child process";
    std::filesystem::permissions(directory_.path(), std::filesystem::perms(0555));
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(becomeOrdinaryUser());
        EXPECT_EQ(edit("--dry-run --rename-file f=h", files).status, 0);
        EXPECT_EQ(edit("--rename-file f=h", files).err,
                  start("a") + "eFileIOOpenError: Permission denied\n" +
                      "trvfiles: 0 of 2 files changed, 1 failed\n");
    }));
    std::filesystem::permissions(directory_.path(), std::filesystem::perms(0755));
    EXPECT_EQ(bytes("a"), before);
}

TEST_F(AssemblyEdit, PrintsOneJsonDocument) {
    const QStringList files = {sample("a"), path("missing"), sample("b", "other")};
    const std::string before = bytes("a");
    const std::string expected =
        R"({"files":[{"file":")" + text("a") +
        R"(","changed":true,"differences":[{"change":"changed","field":"geometryFile",)"
        R"("first":"f","path":"S/a[0]","second":"h\\"}]},{"file":")" +
        text("b") + R"(","changed":false,"differences":[]}]})" + "\n";
    const std::string reason = start("missing") + "eFileIOOpenError: No such file or directory\n";

    Answer answer = edit("--json --dry-run --rename-file f=h\\", files);
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.out, expected);
    EXPECT_EQ(answer.err, reason + "trvfiles: 1 of 3 files would change, 1 failed\n");
    EXPECT_EQ(bytes("a"), before);

    answer = edit("--json --rename-file f=h\\", files);
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.out, expected);
    EXPECT_EQ(answer.err, reason + "trvfiles: 1 of 3 files changed, 1 failed\n");
    EXPECT_NE(bytes("a").find("name=\"h\\\""), std::string::npos);
}

TEST_F(AssemblyEdit, PrintsTheJsonOfOneFileInAList) {
    const Answer answer = edit("--json --disable S/b", {sample("a")});
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.err, "");
    EXPECT_EQ(answer.out,
              R"({"files":[{"file":")" + text("a") +
                  R"(","changed":true,"differences":[{"change":"changed","field":"enabled",)"
                  R"("first":true,"path":"S/b[1]","second":false}]}]})" +
                  "\n");
    EXPECT_EQ(edit("--json --disable S/b", {path("missing")}).out, "{\"files\":[]}\n");
}

// A change below the tolerances is written.
TEST_F(AssemblyEdit, HasChangesWithoutADifferenceInJson) {
    const Answer answer = edit("--json --set S/b.translation=1e-9,0,0", {sample("a")});
    EXPECT_EQ(answer.out, R"({"files":[{"file":")" + text("a") +
                              R"(","changed":true,"differences":[]}]})" + "\n");
    EXPECT_NE(bytes("a").find("1e-09"), std::string::npos);
}

TEST_F(AssemblyEdit, WritesTheOtherFilesIfOneFails) {
    const QString second = file("b", setupXml);
    const QStringList files = {sample("a"), second, path("missing"), file("c", setupContext)};
    const Answer answer = edit("--set S/a.comment=x --rename-file part.stl=y", files);
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.out, text("a") + ":\nS/a[0]: comment \"\" -> \"x\"\n");
    EXPECT_EQ(answer.err,
              start("b") + "there is no root 'S'; the root is 'Setup'\n" + start("missing") +
                  "eFileIOOpenError: No such file or directory\n" + start("c") +
                  "eFileIOContentError: this is a machine context; try 'trvfiles show'\n" +
                  "trvfiles: 1 of 4 files changed, 3 failed\n");
    EXPECT_EQ(bytes("b"), setupXml);
    EXPECT_EQ(bytes("c"), setupContext);
    EXPECT_EQ(names(), (std::vector<std::string>{"a", "b", "c"}));
}

TEST_F(AssemblyEdit, LosesNothingWithoutForce) {
    const auto expectRefusal = [&](const std::string& content, const std::string& reason) {
        file("a", content);
        const Answer answer = edit("--rename-file f=g", {path("a")});
        EXPECT_EQ(answer.status, 2);
        EXPECT_EQ(answer.out, "");
        EXPECT_EQ(answer.err, start("a") + reason + "; --force writes the file as it is read\n");
        EXPECT_EQ(bytes("a"), content);
        EXPECT_EQ(edit("--force --dry-run --rename-file f=g", {path("a")}).status, 0);
        EXPECT_EQ(edit("--force --rename-file f=g", {path("a")}).status, 0);
        EXPECT_NE(bytes("a"), content);
    };
    const std::string head = "<ComponentInfo version=\"1\">\n<Attributs/>\n";
    const std::string root = "<Component name=\"S\">\n<Data><File name=\"f\"/></Data>";
    const std::string end = "</Component></ComponentInfo>\n";
    expectRefusal(head + root + "<!-- x -->" + end, "line 4: a comment would be lost");
    expectRefusal(head + root + "<Translation x=\"one\"/>" + end,
                  "line 4: x of <Translation> is not a number: \"one\"; it and those after it are "
                  "0");
    expectRefusal(head +
                      "<Component name=\"S\"><Data>\n<Component name=\"\\\"><Orientation/>"
                      "</Component><Component><Data><File name=\"f\"/></Data></Component></Data>" +
                      end,
                  "line 4: component \"\\\\\" is left out: its <Orientation> is not complete");
}

TEST_F(AssemblyEdit, LeavesAFileWithoutAMatchAlone) {
    const std::string content = "<!-- kept -->" + std::string(setupXml);
    const Answer answer = edit("--rename-file no=g", {file("a", content)});
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(bytes("a"), content);
}

TEST_F(AssemblyEdit, WritesNoFileThatCannotBeRead) {
    file("a",
         "<ComponentInfo version=\"1\"><Attributs/><Component name=\"S\"><Data>"
         "<Component name=\"empty\"/></Data></Component></ComponentInfo>");
    const std::string before = bytes("a");
    for (const char* options : {"--set S.comment=c", "--dry-run --set S.comment=c"}) {
        const Answer answer = edit(options, {path("a")});
        EXPECT_EQ(answer.status, 2);
        EXPECT_EQ(answer.out, "");
        EXPECT_EQ(answer.err, start("a") +
                                  "eFileIOContentError: component \"empty\" has neither a geometry "
                                  "file nor components\n");
    }
    EXPECT_EQ(bytes("a"), before);
}

TEST_F(AssemblyEdit, KeepsWhatIsSavedWhileItWaits) {
    const QString name = sample("a.xml");
    auto held = std::make_unique<file_replacement>(text("a.xml"));
    ASSERT_TRUE(held->is_open());
    std::string other = bytes("a.xml");
    other.replace(other.find("name=\"b\" comment=\"\""), 19, "name=\"b\" comment=\"o\"");
    std::thread thread([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        EXPECT_EQ(held->write_and_replace(other), 0);
        held.reset();
    });
    const Answer answer = edit("--set S/a.comment=c", {name});
    thread.join();
    EXPECT_EQ(answer.status, 0);
    EXPECT_NE(bytes("a.xml").find("name=\"a\" comment=\"c\""), std::string::npos);
    EXPECT_NE(bytes("a.xml").find("name=\"b\" comment=\"o\""), std::string::npos);
}

TEST_F(AssemblyEdit, RejectsACallWithAMistake) {
    const QString name = sample("a.xml");
    EXPECT_EQ(answerTo(words("assembly edit") + QStringList(name)).err,
              "trvfiles assembly edit: an edit is missing: --rename-file, --set, --enable or "
              "--disable\nTry 'trvfiles assembly edit --help'.\n");
    EXPECT_EQ(edit("--set S.x=1", {name}).status, 2);
    EXPECT_EQ(answerTo(words("assembly edit --enable S")).err,
              "trvfiles assembly edit: a file name is missing\n"
              "Try 'trvfiles assembly edit --help'.\n");
}

TEST_F(AssemblyEdit, ExplainsItself) {
    EXPECT_EQ(answerTo(words("assembly edit --help")).out,
              "Usage: trvfiles assembly edit EDIT... FILE...\n"
              "\n"
              "Change assemblies.\n"
              "Prints the changes of each file as 'assembly diff' does. A PATH is that of\n"
              "'assembly diff'; an index may be left out after a name that no sibling has. A\n"
              "key is name, comment, translation (X,Y,Z) or enabled (0 or 1). A file with an\n"
              "edit that fails is not written, and the others are. An EDIT is --rename-file,\n"
              "--set, --enable or --disable; each may be given several times.\n"
              "\n"
              "Options:\n"
              "  --rename-file OLD=NEW  Give a geometry file another name\n"
              "  --set PATH.key=value   Set a field of a component\n"
              "  --enable PATH          Enable a component\n"
              "  --disable PATH         Disable a component\n"
              "  --dry-run              Write no file\n"
              "  --force                Write a file of which something is lost\n"
              "  --json                 Print JSON\n"
              "  -h, --help             Show this help\n"
              "\n"
              "Examples:\n"
              "  trvfiles assembly edit --rename-file geometry/vise-jaw.stl=j.stl bracket.xml\n"
              "  trvfiles assembly edit --disable 'Bracket OP10/Right vise' bracket.xml\n");
}

}  // namespace
}  // namespace trv::testing
