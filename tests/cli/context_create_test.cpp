#include <tests/cli/project_directory.h>
#include <tests/common/child_process.h>
#include <tests/common/current_directory.h>
#include <trvfiles/environment/file_replacement.h>

#include <gmock/gmock.h>

#include <chrono>
#include <thread>

namespace trv::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ContextCreate : public ProjectDirectory {
protected:
    Answer create(const QStringList& options, const QString& directory) const {
        return answerTo(words("context create") + options + QStringList(directory));
    }
    Answer create(const char* options) const { return create(words(options), path("")); }

    void expectFailure(const Answer& answer, const std::string& message) const {
        EXPECT_EQ(answer.status, 2);
        EXPECT_EQ(answer.out, "");
        EXPECT_EQ(answer.err, message);
    }

    void expectRefusal(const Answer& answer, const std::string& reason) const {
        expectFailure(answer, "trvfiles context create: " + reason +
                                  "\nTry 'trvfiles context create --help'.\n");
        EXPECT_THAT(names(), IsEmpty());
    }
};

constexpr const char* positionContext =
    "[header]\n"
    "version=2\n"
    "comment=\n"
    "name=[MACHINE_POSITION_3]\n"
    "[machine]\n"
    "name=\n"
    "position=[stockposition@[MACHINE_POSITION_3]]MACHINE.ref\n"
    "proximity=0.000000\n"
    "[postpro]\n"
    "origin_program=0.000000 0.000000 0.000000\n"
    "reference_axis=\n"
    "[clamping_system]\n"
    "proximity=0.000000\n";

TEST_F(ContextCreate, CreatesTheDefaultContextOfAPosition) {
    const Answer answer = create("--position 3");
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.err, "");
    EXPECT_EQ(answer.out, printed("[MACHINE_POSITION_3].mctx") + "\n" +
                              printed("[stockposition@[MACHINE_POSITION_3]]MACHINE.ref") + "\n");
    EXPECT_THAT(names(),
                ElementsAre("[MACHINE_POSITION_3].mctx",
                            "[stockposition@[MACHINE_POSITION_3]]MACHINE.ref", "transfo.dat"));
    EXPECT_EQ(bytes("[MACHINE_POSITION_3].mctx"), positionContext);
    EXPECT_EQ(bytes("transfo.dat"), identityAxis);
    EXPECT_EQ(bytes("[stockposition@[MACHINE_POSITION_3]]MACHINE.ref"), identityAxis);
}

TEST_F(ContextCreate, CopiesTheAxisFileOfTheDirectory) {
    file("transfo.dat", turnedAxis);
    EXPECT_EQ(create("--position 3").status, 0);
    EXPECT_EQ(bytes("[stockposition@[MACHINE_POSITION_3]]MACHINE.ref"), turnedAxis);
}

TEST_F(ContextCreate, OverwritesNoPairOfFiles) {
    ASSERT_EQ(create("--position 3").status, 0);
    file("[MACHINE_POSITION_3].mctx", "mine");
    expectFailure(create("--position 3"),
                  "trvfiles: " + printed("[MACHINE_POSITION_3].mctx") + ": exists already\n");
    EXPECT_EQ(bytes("[MACHINE_POSITION_3].mctx"), "mine");
    EXPECT_EQ(names().size(), 3U);
}

TEST_F(ContextCreate, NotesTheSingleFileThatItReplaces) {
    file("[MACHINE_POSITION_3].mctx", "mine");
    Answer answer = create("--position 3");
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.err, "trvfiles: note: " + printed("[MACHINE_POSITION_3].mctx") +
                              " existed without its other file and was replaced\n");
    EXPECT_EQ(bytes("[MACHINE_POSITION_3].mctx"), positionContext);
    std::filesystem::remove(directory_ / "[MACHINE_POSITION_3].mctx");
    answer = create("--position 3");
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.err,
              "trvfiles: note: " + printed("[stockposition@[MACHINE_POSITION_3]]MACHINE.ref") +
                  " existed without its other file and was replaced\n");
}

TEST_F(ContextCreate, CreatesAContextForAMachine) {
    file("transfo.dat", turnedAxis);
    const Answer answer = create("--machine mill5.mac");
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.err, "");
    EXPECT_EQ(answer.out, printed("mill5[MACHINE].mctx") + "\n" +
                              printed("[stockposition@mill5[MACHINE]]MACHINE.ref") + "\n");
    EXPECT_EQ(bytes("[stockposition@mill5[MACHINE]]MACHINE.ref"), turnedAxis);
    EXPECT_EQ(bytes("mill5[MACHINE].mctx").substr(0, 143),
              "[header]\nversion=2\ncomment=\nname=mill5[MACHINE]\n"
              "[machine]\nname=mill5.mac\n"
              "position=[stockposition@mill5[MACHINE]]MACHINE.ref\n"
              "proximity=0.000000\n");
    EXPECT_EQ(names().size(), 3U);
}

TEST_F(ContextCreate, UsesAnotherAxisFileAndAName) {
    file("head.ref", turnedAxis);
    Answer answer = create("--machine a.mac.b --axis head.ref");
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.out, printed("a.b[head].mctx") + "\n" +
                              printed("[stockposition@a.b[head]]head.ref") + "\n");
    answer = create("--machine m --axis head.ref --name job");
    EXPECT_EQ(answer.out,
              printed("job.mctx") + "\n" + printed("[stockposition@job]head.ref") + "\n");
    answer = create({QStringLiteral("--machine"), QStringLiteral("%1 m"), QStringLiteral("--axis"),
                     QStringLiteral("head.ref"), QStringLiteral("--name"),
                     QString::fromUtf8("\xC3\xB6 [%s].mctx")},
                    path(""));
    EXPECT_EQ(answer.out, printed("\xC3\xB6 [%s].mctx") + "\n" +
                              printed("[stockposition@\xC3\xB6 [%s]]head.ref") + "\n");
    EXPECT_EQ(bytes("[stockposition@\xC3\xB6 [%s]]head.ref"), turnedAxis);
}

TEST_F(ContextCreate, WorksInTheDirectoryWhateverTheCurrentOneIs) {
    file("sub/transfo.dat", identityAxis);
    const CurrentDirectory here(directory_.path());
    const Answer answer = create(words("--machine m"), QStringLiteral("sub"));
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.out,
              asPrinted("sub/m[MACHINE].mctx\nsub/[stockposition@m[MACHINE]]MACHINE.ref\n"));
    EXPECT_THAT(names(), ElementsAre("sub"));
    EXPECT_TRUE(std::filesystem::equivalent(std::filesystem::current_path(), directory_.path()));
    EXPECT_EQ(create(words("--position 1"), QStringLiteral("sub/../sub")).out,
              asPrinted("sub/../sub/[MACHINE_POSITION_1].mctx\n"
                        "sub/../sub/[stockposition@[MACHINE_POSITION_1]]MACHINE.ref\n"));
}

TEST_F(ContextCreate, OverwritesNeitherFileOfAMachine) {
    file("transfo.dat", identityAxis);
    file("m[MACHINE].mctx", "mine");
    expectFailure(create("--machine m"),
                  "trvfiles: " + printed("m[MACHINE].mctx") + ": exists already\n");
    file("[stockposition@n[MACHINE]]MACHINE.ref", "mine");
    expectFailure(
        create("--machine n"),
        "trvfiles: " + printed("[stockposition@n[MACHINE]]MACHINE.ref") + ": exists already\n");
    EXPECT_EQ(names().size(), 3U);
}

TEST_F(ContextCreate, RequiresAValidAxisFile) {
    expectFailure(create("--machine m"), "trvfiles: " + printed("transfo.dat") +
                                             ": eFileIOOpenError: No such file or directory\n");
    expectFailure(
        create("--machine m --axis head.ref"),
        "trvfiles: " + printed("head.ref") + ": eFileIOOpenError: No such file or directory\n");
    file("transfo.dat", "0\n1 2 3\n");
    for (const char* options : {"--machine m", "--position 1"})
        expectFailure(create(options),
                      "trvfiles: " + printed("transfo.dat") +
                          ": eFileIOContentError: line 2: four numbers are expected\n");
    EXPECT_THAT(names(), ElementsAre("transfo.dat"));
}

TEST_F(ContextCreate, RequiresOneKindOfContext) {
    expectRefusal(answerTo(words("context create") + QStringList(path(""))),
                  "give either --position or --machine");
    expectRefusal(create("--position 1 --machine m"), "give either --position or --machine");
    expectRefusal(create("--position 1 --axis a"), "--axis is only valid with --machine");
    expectRefusal(create("--position 1 --name a"), "--name is only valid with --machine");
    for (const char* position : {"0", "-1", "x", "1.5", "2147483648"})
        expectRefusal(
            create((std::string("--position=") + position).c_str()),
            "--position takes a whole number from 1 on, not '" + std::string(position) + "'");
}

TEST_F(ContextCreate, RequiresNamesWithoutADirectory) {
    for (const char* option : {"machine", "axis", "name"}) {
        // As an argument and as it is printed.
        for (const auto& [value, shown] : {std::pair("", ""), std::pair("a/b", "a/b"),
                                           std::pair("a\\b", "a\\\\b"), std::pair("/", "/")}) {
            const std::string given = std::string("--") + option + "=" + value;
            QStringList options(QString::fromStdString(given));
            if (std::string(option) != "machine") options += QStringLiteral("--machine=m");
            expectRefusal(create(options, path("")),
                          std::string("--") + option + " takes a name without a directory, not '" +
                              shown + "'");
        }
    }
}

TEST_F(ContextCreate, RefusesNamesThatTheFileCannotHold) {
    expectRefusal(create("--machine a+b(1)"),
                  "a context cannot hold 'a+b(1)': the text between a \"+\" and a later \")\" is "
                  "lost");
}

TEST_F(ContextCreate, ReportsWhyTheDirectoryIsInvalid) {
    for (const char* options : {"--machine m", "--position 1"})
        expectFailure(create(words(options), path("missing")),
                      "trvfiles: " + text("missing") + ": No such file or directory\n");
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(ContextCreate, ReportsTheFileThatPreventsTheCreation) {
    std::filesystem::create_directories(directory_ / "[MACHINE_POSITION_1].mctx");
    expectFailure(create("--position 1"),
                  "trvfiles: " + printed("[MACHINE_POSITION_1].mctx") + ": is a directory\n");
    EXPECT_EQ(names().size(), 1U);
}

TEST_F(ContextCreate, ReportsAContextThatCannotBeSaved) {
    std::filesystem::create_directories(directory_ / "[MACHINE_POSITION_1].mctx.messages.tmp");
    expectFailure(create("--position 1"), "trvfiles: Store messages : error opening file '" +
                                              text("[MACHINE_POSITION_1].mctx.messages.tmp") +
                                              "'\n");
    EXPECT_THAT(names(), ElementsAre("[MACHINE_POSITION_1].mctx.messages.tmp", "transfo.dat"));
}

TEST_F(ContextCreate, ReportsWhichNameIsTooLong) {
    file("transfo.dat", identityAxis);
    const std::string machine(300, 'm');
    const Answer answer = create(("--machine " + machine).c_str());
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.out, "");
    EXPECT_NE(answer.err.find(printed("[stockposition@" + machine + "[MACHINE]]MACHINE.ref")),
              std::string::npos);
    EXPECT_THAT(names(), ElementsAre("transfo.dat"));
}

TEST_F(ContextCreate, ReportsMissingRights) {
    if (!can_fork) GTEST_SKIP() << "rights are given up in a child process";
    file("transfo.dat", identityAxis);
    std::filesystem::permissions(directory_.path(), std::filesystem::perms(0555));
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(becomeOrdinaryUser());
        expectFailure(create("--position 1"),
                      "trvfiles: " + printed("[stockposition@[MACHINE_POSITION_1]]MACHINE.ref") +
                          ": Permission denied\n");
        expectFailure(create("--machine m"),
                      "trvfiles: " + printed("[stockposition@m[MACHINE]]MACHINE.ref") +
                          ": Permission denied\n");
    }));
    std::filesystem::permissions(directory_.path(), std::filesystem::perms(0755));
    EXPECT_THAT(names(), ElementsAre("transfo.dat"));
}

TEST_F(ContextCreate, ReportsAFileThatCannotBeWrittenCompletely) {
    if (!can_fork) GTEST_SKIP() << "the limit is set in a child process";
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(limitFileSize(100));
        expectFailure(create("--position 1"),
                      "trvfiles: " + printed("transfo.dat") + ": cannot be written\n");
    }));
    EXPECT_THAT(names(), IsEmpty());
    file("transfo.dat", identityAxis);
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(limitFileSize(100));
        for (const char* options : {"--position 1", "--machine m --name [MACHINE_POSITION_1]"}) {
            expectFailure(create(options), "trvfiles: " + printed("[MACHINE_POSITION_1].mctx") +
                                               ": cannot be written\n");
        }
    }));
    EXPECT_THAT(names(), ElementsAre("transfo.dat"));
}

TEST_F(ContextCreate, ReportsALinkToAMissingFile) {
    file("transfo.dat", identityAxis);
    for (const char* name :
         {"[MACHINE_POSITION_1].mctx", "[stockposition@[MACHINE_POSITION_1]]MACHINE.ref"}) {
        std::error_code error;
        std::filesystem::create_symlink("nowhere", directory_ / name, error);
        if (error) GTEST_SKIP() << "links cannot be made here";
        expectFailure(create("--position 1"),
                      "trvfiles: " + printed(name) + ": is a link whose target does not exist\n");
        EXPECT_THAT(names(), ElementsAre(name, "transfo.dat"));
        std::filesystem::remove(directory_ / name);
    }
}

TEST_F(ContextCreate, ReportsWhichFileTheUserMayNotRead) {
    if (!can_fork) GTEST_SKIP() << "rights are given up in a child process";
    file("transfo.dat", identityAxis);
    std::filesystem::permissions(directory_.path(), std::filesystem::perms(0777));
    for (const char* name :
         {"[MACHINE_POSITION_1].mctx", "[stockposition@[MACHINE_POSITION_1]]MACHINE.ref"}) {
        file(name, "mine");
        std::filesystem::permissions(directory_ / name, std::filesystem::perms(0222));
        EXPECT_TRUE(passesInChild([&] {
            ASSERT_TRUE(becomeOrdinaryUser());
            expectFailure(create("--position 1"),
                          "trvfiles: " + printed(name) + ": Permission denied\n");
        }));
        EXPECT_EQ(bytes(name), "mine");
        std::filesystem::remove(directory_ / name);
    }
}

TEST_F(ContextCreate, ReportsThatAnotherProcessWasFirst) {
    if (!can_fork) GTEST_SKIP() << "needs a second process";
    file("transfo.dat", identityAxis);
    const std::filesystem::path ready = directory_ / "ready";
    EXPECT_TRUE(passesInChildren(2, [&](int process) {
        if (process == 0) {
            const file_replacement held((directory_ / "[MACHINE_POSITION_1].mctx").string());
            file("ready", "");
            std::this_thread::sleep_for(std::chrono::milliseconds(300));
            file("[stockposition@[MACHINE_POSITION_1]]MACHINE.ref", "first");
            file("[MACHINE_POSITION_1].mctx", "first");
            return;
        }
        while (!std::filesystem::exists(ready))
            std::this_thread::yield();
        expectFailure(create("--position 1"),
                      "trvfiles: " + printed("[MACHINE_POSITION_1].mctx") + ": exists already\n");
    }));
    EXPECT_EQ(bytes("[MACHINE_POSITION_1].mctx"), "first");
}

TEST_F(ContextCreate, PrintsJson) {
    Answer answer = create("--json --position 1");
    EXPECT_EQ(answer.status, 0);
    const std::string context = printed("[MACHINE_POSITION_1].mctx");
    const std::string reference = printed("[stockposition@[MACHINE_POSITION_1]]MACHINE.ref");
    EXPECT_EQ(answer.out, "{\"context\":\"" + context + "\",\"reference\":\"" + reference +
                              "\",\"replaced\":[]}\n");
    std::filesystem::remove(directory_ / "[MACHINE_POSITION_1].mctx");
    answer = create("--json --position 1");
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.out, "{\"context\":\"" + context + "\",\"reference\":\"" + reference +
                              "\",\"replaced\":[\"" + reference + "\"]}\n");
    EXPECT_EQ(answer.err, "");
    expectFailure(create("--json --position 1"), "trvfiles: " + context + ": exists already\n");
}

TEST_F(ContextCreate, ExplainsItself) {
    EXPECT_EQ(create("--help").out,
              "Usage: trvfiles context create [--json] --position N DIR\n"
              "       trvfiles context create [--json] --machine M [--axis F] [--name K] DIR\n"
              "\n"
              "Create a machine context and its reference axis file.\n"
              "With --position it creates the default context of a machine position, and DIR\n"
              "gets a transfo.dat if it has none. With --machine it creates a context for a\n"
              "machine and overwrites nothing. Prints the paths of the two files.\n"
              "\n"
              "Options:\n"
              "  --position N  The machine position, at least 1\n"
              "  --machine M   The machine\n"
              "  --axis F      The axis file in DIR to copy instead of transfo.dat\n"
              "  --name K      The context's name instead of M[AXIS]\n"
              "  --json        Print JSON\n"
              "  -h, --help    Show this help\n"
              "\n"
              "Examples:\n"
              "  trvfiles context create --position 2 .\n"
              "  trvfiles context create --machine pallet-mill.mac --axis right-vise.ref .\n");
    EXPECT_EQ(answerTo(words("context create --position 1")).err,
              "trvfiles context create: a directory is missing\n"
              "Try 'trvfiles context create --help'.\n");
}

}  // namespace
}  // namespace trv::testing
