#include <cli/context_fields.h>
#include <tests/cli/project_directory.h>
#include <tests/common/child_process.h>
#include <tests/common/torture_rounds.h>
#include <trvfiles/environment/file_replacement.h>
#include <trvfiles/facade/CQvFilesIO.h>

#include <chrono>
#include <memory>
#include <random>
#include <string>
#include <thread>

namespace trv::testing {
namespace {

class ContextSet : public ProjectDirectory {
protected:
    Answer set(const QStringList& assignments, const char* options = "context set") const {
        return answerTo(words(options) + QStringList(path("a.mctx")) + assignments);
    }
    Answer set(const char* assignment) const {
        return set(QStringList(QString::fromUtf8(assignment)));
    }

    void expectRefusal(const char* assignment, const std::string& reason) const {
        const Answer answer = set(assignment);
        EXPECT_EQ(answer.status, 2);
        EXPECT_EQ(answer.out, "");
        EXPECT_EQ(answer.err,
                  "trvfiles context set: " + reason + "\nTry 'trvfiles context set --help'.\n");
        EXPECT_EQ(bytes("a.mctx"), setupContext);
    }

    QString context_ = file("a.mctx", setupContext);
};

std::string replacedIn(std::string text, const std::string& from, const std::string& to) {
    return text.replace(text.find(from), from.size(), to);
}

TEST_F(ContextSet, ChangesOneFieldAndNothingElse) {
    const Answer answer = set("machine.proximity=1234.5678");
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.err, "");
    EXPECT_EQ(answer.out, "machine.proximity=1234.567749\n");
    EXPECT_EQ(bytes("a.mctx"),
              replacedIn(setupContext, "proximity=10.000000", "proximity=1234.567749"));
    EXPECT_EQ(names().size(), 1U);
}

TEST_F(ContextSet, ChangesEveryField) {
    const Answer answer =
        set({QStringLiteral("header.comment=c=d"), QStringLiteral("header.name=[machine]"),
             QStringLiteral("machine.name=#x"), QStringLiteral("machine.position=a\tb"),
             QStringLiteral("machine.proximity=-1e3"),
             QStringLiteral("postpro.origin_program= 1\t.5 -2e2"),
             QString::fromUtf8("postpro.reference_axis=\xC3\xB6"),
             QStringLiteral("part.surface_group=+"), QStringLiteral("clamping_system.name=%1"),
             QStringLiteral("clamping_system.proximity=0.1")});
    EXPECT_EQ(answer.err, "");
    EXPECT_EQ(answer.out,
              "header.comment=c=d\nheader.name=[machine]\nmachine.name=#x\n"
              "machine.position=a\\x09b\nmachine.proximity=-1000.000000\n"
              "postpro.origin_program=1.000000 0.500000 -200.000000\n"
              "postpro.reference_axis=\xC3\xB6\npart.surface_group=+\n"
              "clamping_system.name=%1\nclamping_system.proximity=0.100000\n");
    EXPECT_EQ(bytes("a.mctx").substr(0, 60),
              "[header]\nversion=2\ncomment=c=d\nname=[machine]\n[machine]\nname");
}

TEST_F(ContextSet, ClearsTexts) {
    const Answer answer =
        set({QStringLiteral("part.surface_group="), QStringLiteral("clamping_system.name="),
             QStringLiteral("header.name=")});
    EXPECT_EQ(answer.out, "part.surface_group=\nclamping_system.name=\nheader.name=\n");
    EXPECT_EQ(bytes("a.mctx"),
              "[header]\nversion=2\ncomment=first op\nname=\n"
              "[machine]\nname=MILL5\nposition=POS1\nproximity=10.000000\n"
              "[postpro]\norigin_program=12.500000 0.000000 -3.000000\n"
              "reference_axis=transfo.dat\n"
              "[clamping_system]\nproximity=2.500000\n");
    EXPECT_EQ(
        answerTo(words("show --json") + QStringList(context_)).out.find("\"surfaceGroup\":\"\"") ==
            std::string::npos,
        false);
}

TEST_F(ContextSet, RejectsWhatIsNotAnAssignment) {
    expectRefusal("machine.name", "'machine.name' is not of the form section.key=value");
    expectRefusal("machine.speed=1", "unknown field 'machine.speed'");
    expectRefusal("Machine.name=1", "unknown field 'Machine.name'");
    expectRefusal("=1", "unknown field ''");
    expectRefusal("header.version=3", "header.version cannot be set: the writer sets it");
    const Answer answer = set({QStringLiteral("machine.name=a"), QStringLiteral("machine.name=b")});
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.err,
              "trvfiles context set: machine.name is set twice\n"
              "Try 'trvfiles context set --help'.\n");
    EXPECT_EQ(bytes("a.mctx"), setupContext);
}

TEST_F(ContextSet, RejectsWhatTheFileCannotHold) {
    expectRefusal("machine.name=A+B(1)",
                  "machine.name cannot hold 'A+B(1)': the text between a \"+\" and a later "
                  "\")\" is lost");
    expectRefusal("header.comment=r\norigin_program=9 9 9",
                  "header.comment cannot hold 'r\\x0aorigin_program=9 9 9': a line end becomes a "
                  "blank");
    expectRefusal("header.name= x", "header.name cannot hold ' x': blanks at its ends are lost");
    expectRefusal("machine.proximity=1e20",
                  "machine.proximity cannot hold '1e20': the number is too large for a file");
    expectRefusal("machine.proximity=ten",
                  "machine.proximity takes a number, such as 2.5, not 'ten'");
    expectRefusal("postpro.origin_program=1 2",
                  "postpro.origin_program takes three numbers, such as '12.5 0 -3', not '1 2'");
}

TEST_F(ContextSet, WritesNothingUnlessAllCanBeSet) {
    const Answer answer =
        set({QStringLiteral("machine.name=x"), QStringLiteral("machine.proximity=x")});
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(bytes("a.mctx"), setupContext);
}

// A value is either rejected or comes back, and no other field changes.
TEST_F(ContextSet, ChangesNoOtherFieldByAValue) {
    const QString alphabet = QStringLiteral("+()=[]#\n\r\t ab1") + QChar(0xF6);
    std::mt19937 random(11);
    int accepted = 0;
    for (int round = 0; round < 300; ++round) {
        file("a.mctx", setupContext);
        CMachineContextData before;
        ASSERT_EQ(CQvFilesIO::sReadMachineContext(context_.toStdWString(), before), eFileIOSuccess);
        const auto& fields = trv::contextFields();
        const trv::ContextField& target = fields[random() % fields.size()];
        QString value;
        for (std::size_t left = random() % 8; left > 0; --left)
            value +=
                alphabet.at(static_cast<int>(random() % static_cast<unsigned>(alphabet.size())));
        const Answer answer = set({cli::nameOf(target) + QLatin1Char('=') + value});
        CMachineContextData after;
        ASSERT_EQ(CQvFilesIO::sReadMachineContext(context_.toStdWString(), after), eFileIOSuccess);
        for (const trv::ContextField& field : fields) {
            const bool isSet = &field == &target && answer.status == 0;
            if (isSet && !field.isText()) continue;
            EXPECT_EQ(cli::storedValue(field, after),
                      isSet ? value : cli::storedValue(field, before))
                << field.name() << " after " << value.toStdString();
        }
        accepted += answer.status == 0 ? 1 : 0;
    }
    EXPECT_GT(accepted, 30);
    EXPECT_LT(accepted, 270);
}

TEST_F(ContextSet, LosesNoLineWithoutTheOption) {
    const std::string content = std::string("# note\n") + setupContext + "[tools]\nname=x\n";
    file("a.mctx", content);
    const QStringList assignment(QStringLiteral("machine.name=M"));
    Answer answer = set(assignment);
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.out, "");
    EXPECT_EQ(answer.err,
              "trvfiles: " + text("a.mctx") +
                  ": line 1 would be lost: '# note'; --drop-unknown drops such lines\n");
    EXPECT_EQ(bytes("a.mctx"), content);

    answer = set(assignment, "context set --drop-unknown");
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.err, "");
    EXPECT_EQ(answer.out, "machine.name=M\n");
    EXPECT_EQ(bytes("a.mctx"), replacedIn(setupContext, "name=MILL5", "name=M"));
}

TEST_F(ContextSet, ChangesNoOtherValue) {
    const std::string content = replacedIn(setupContext, "first op", "A+B(1)\n# note");
    file("a.mctx", content);
    for (const char* options : {"context set", "context set --drop-unknown"}) {
        const Answer answer = set(QStringList(QStringLiteral("machine.name=M")), options);
        EXPECT_EQ(answer.status, 2);
        EXPECT_EQ(answer.err, "trvfiles: " + text("a.mctx") +
                                  ": header.comment 'A+B(1)' would change: the text between a "
                                  "\"+\" and a later \")\" is lost; set it too\n");
        EXPECT_EQ(bytes("a.mctx"), content);
    }
    EXPECT_EQ(
        set(QStringList(QStringLiteral("header.comment=A")), "context set --drop-unknown").status,
        0);
    EXPECT_EQ(bytes("a.mctx"), replacedIn(setupContext, "first op", "A"));
}

TEST_F(ContextSet, GivesAFileTheSectionsThatItLacks) {
    file("a.mctx", "[header]\r\nname = x\r\n\r\n");
    EXPECT_EQ(set("machine.name=M").status, 0);
    EXPECT_EQ(bytes("a.mctx"),
              "[header]\nversion=2\ncomment=\nname=x\n[machine]\nname=M\nposition=\n"
              "proximity=0.000000\n[postpro]\norigin_program=0.000000 0.000000 0.000000\n"
              "reference_axis=\n[clamping_system]\nproximity=0.000000\n");
}

TEST_F(ContextSet, RequiresAMachineContext) {
    const auto problem = [&](std::string_view content) {
        file("a.mctx", content);
        const Answer answer =
            set(QStringList(QStringLiteral("machine.name=M")), "context set --drop-unknown");
        EXPECT_EQ(answer.status, 2);
        EXPECT_EQ(answer.out, "");
        EXPECT_EQ(bytes("a.mctx"), content);
        const std::string start = "trvfiles: " + text("a.mctx") + ": ";
        EXPECT_EQ(answer.err.substr(0, start.size()), start);
        return answer.err.substr(std::min(start.size(), answer.err.size()));
    };
    EXPECT_EQ(problem(setupXml),
              "eFileIOContentError: this is an assembly; try 'trvfiles assembly tree'\n");
    EXPECT_EQ(problem(identityAxis),
              "eFileIOContentError: this is an axis file; try 'trvfiles axis show'\n");
    EXPECT_EQ(problem(""), "eFileIOContentError: the file is empty\n");
    EXPECT_EQ(
        problem("note"),
        "eFileIOContentError: neither an assembly, nor an axis file, nor a machine context\n");
    EXPECT_EQ(problem("[machine]\nname=x\n"),
              "eFileIOContentError: line 1: section [machine] has no \"position\"\n");
}

TEST_F(ContextSet, ReportsThatAFileIsMissing) {
    std::filesystem::remove(directory_ / "a.mctx");
    const Answer answer = set("machine.name=M");
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.err,
              "trvfiles: " + text("a.mctx") + ": eFileIOOpenError: No such file or directory\n");
    EXPECT_FALSE(exists("a.mctx"));
}

TEST_F(ContextSet, KeepsTheOldFileWhenSavingFails) {
    std::filesystem::create_directories(directory_ / "a.mctx.messages.tmp");
    const Answer answer = set("machine.name=M");
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.out, "");
    EXPECT_EQ(answer.err, "trvfiles: Store messages : error opening file '" +
                              text("a.mctx.messages.tmp") + "'\n");
    EXPECT_EQ(bytes("a.mctx"), setupContext);
}

TEST_F(ContextSet, KeepsTheOldFileWhenTheDiskIsFull) {
    if (!can_fork) GTEST_SKIP() << "the limit is set in a child process";
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(limitFileSize(100));
        const Answer answer = set("machine.name=M");
        EXPECT_EQ(answer.status, 2);
        EXPECT_EQ(answer.out, "");
        EXPECT_EQ(answer.err,
                  "trvfiles: " + text("a.mctx") + ": eFileIOOpenError: File too large\n");
    }));
    EXPECT_EQ(bytes("a.mctx"), setupContext);
    EXPECT_EQ(names().size(), 1U);
}

TEST_F(ContextSet, KeepsWhatIsSavedWhileItWaits) {
    // Another program reads the file and saves it some time later.
    auto held = std::make_unique<file_replacement>(text("a.mctx"));
    ASSERT_TRUE(held->is_open());
    std::thread other([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        EXPECT_EQ(held->write_and_replace(replacedIn(setupContext, "name=MILL5", "name=LATHE")), 0);
        held.reset();
    });
    const Answer answer = set("machine.position=elsewhere");
    other.join();
    EXPECT_EQ(answer.status, 0);
    EXPECT_NE(bytes("a.mctx").find("[machine]\nname=LATHE\nposition=elsewhere\n"),
              std::string::npos)
        << bytes("a.mctx");
    EXPECT_EQ(names().size(), 1U);
}

TEST_F(ContextSet, LosesNoChangeThatAnotherProcessReports) {
    if (!can_fork) GTEST_SKIP() << "needs processes";
    const int rounds = 20 * tortureRounds();
    int lost = 0;
    for (int round = 0; round < rounds; ++round) {
        const std::string value = std::to_string(round);
        const std::string changes[] = {"machine.name=m" + value, "machine.position=p" + value};
        EXPECT_TRUE(passesInChildren(
            2, [&](int child) { EXPECT_EQ(set(changes[child].c_str()).status, 0); }));
        const std::string both = "[machine]\nname=m" + value + "\nposition=p" + value + "\n";
        if (bytes("a.mctx").find(both) == std::string::npos) ++lost;
    }
    EXPECT_EQ(lost, 0) << "of " << rounds;
    EXPECT_EQ(names().size(), 1U);
}

TEST_F(ContextSet, LeavesNothingBesideAFileThatItRefuses) {
    file("a.mctx", "# a comment\n[header]\nname=n\n");
    EXPECT_EQ(set("machine.name=M").status, 2);
    file("a.mctx", "no context");
    EXPECT_EQ(set("machine.name=M").status, 2);
    std::filesystem::remove(directory_ / "a.mctx");
    EXPECT_EQ(set("machine.name=M").status, 2);
    EXPECT_EQ(names().size(), 0U);
}

TEST_F(ContextSet, ChangesSeveralFiles) {
    const QStringList files = {context_, file("b.mctx", setupContext)};
    const Answer answer =
        answerTo(words("context set") + files + words("machine.name=M header.name=N"));
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.err, "");
    EXPECT_EQ(answer.out, text("a.mctx") + ": machine.name=M\n" + text("a.mctx") +
                              ": header.name=N\n" + text("b.mctx") + ": machine.name=M\n" +
                              text("b.mctx") + ": header.name=N\n");
    const std::string expected =
        replacedIn(replacedIn(setupContext, "name=MILL5", "name=M"), "name=Setup A", "name=N");
    EXPECT_EQ(bytes("a.mctx"), expected);
    EXPECT_EQ(bytes("b.mctx"), expected);
    EXPECT_EQ(names().size(), 2U);
}

TEST_F(ContextSet, PrintsOneJsonDocument) {
    const QStringList assignments = {QStringLiteral("machine.proximity=1234.5678"),
                                     QStringLiteral("header.comment=a\tb\\"),
                                     QStringLiteral("postpro.origin_program=1 .5 -2e2")};
    const std::string values =
        "\"fields\":{\"header.comment\":\"a\\tb\\\\\",\"machine.proximity\":1234.567749,"
        "\"postpro.origin_program\":[1,0.5,-200]},\"file\":\"";
    Answer answer = set(assignments, "context set --json");
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.err, "");
    EXPECT_EQ(answer.out, '{' + values + text("a.mctx") + "\"}\n");
    EXPECT_NE(bytes("a.mctx").find("proximity=1234.567749"), std::string::npos);

    const QStringList files = {context_, path("missing"), file("b.mctx", setupContext)};
    answer = answerTo(words("context set --json") + files + assignments);
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.err,
              "trvfiles: " + text("missing") + ": eFileIOOpenError: No such file or directory\n");
    EXPECT_EQ(answer.out, "{\"files\":[{" + values + text("a.mctx") + "\"},{" + values +
                              text("b.mctx") + "\"}]}\n");
    EXPECT_EQ(bytes("b.mctx"), bytes("a.mctx"));
}

TEST_F(ContextSet, PrintsNoJsonOfAFileThatIsNotChanged) {
    const QStringList assignment = words("machine.name=M");
    const QStringList missing = {path("missing")};
    Answer answer = answerTo(words("context set --json") + missing + assignment);
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.out, "");
    answer = answerTo(words("context set --json") + missing + missing + assignment);
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.out, "{\"files\":[]}\n");
}

TEST_F(ContextSet, ChangesTheOtherFilesIfOneFails) {
    const std::string commented = std::string("# note\n") + setupContext;
    const QStringList files = {path("missing"), file("b.mctx", commented), context_,
                               file("c.xml", setupXml)};
    const Answer answer = answerTo(words("context set") + files + words("machine.name=M"));
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.out, text("a.mctx") + ": machine.name=M\n");
    EXPECT_EQ(answer.err,
              "trvfiles: " + text("missing") +
                  ": eFileIOOpenError: No such file or directory\n"
                  "trvfiles: " +
                  text("b.mctx") +
                  ": line 1 would be lost: '# note'; --drop-unknown drops such lines\n"
                  "trvfiles: " +
                  text("c.xml") +
                  ": eFileIOContentError: this is an assembly; try 'trvfiles assembly tree'\n");
    EXPECT_EQ(bytes("b.mctx"), commented);
    EXPECT_EQ(bytes("c.xml"), setupXml);
    EXPECT_EQ(names().size(), 3U);
}

TEST_F(ContextSet, TellsFilesFromAssignments) {
    const QStringList assignment(QStringLiteral("machine.name=/x=y"));
    const QString named = file("x=y.mctx", setupContext);
    EXPECT_EQ(answerTo(words("context set") + QStringList({named, named}) + assignment).status, 0);
    EXPECT_EQ(answerTo(words("context set a.mctx b.mctx")).err,
              "trvfiles context set: an assignment section.key=value is missing\n"
              "Try 'trvfiles context set --help'.\n");
    EXPECT_EQ(
        answerTo(words("context set") + QStringList(context_) + assignment + QStringList(named))
            .err,
        "trvfiles context set: unknown field '" +
            text("x=y.mctx").substr(0, text("x=y.mctx").find('=')) +
            "'\nTry 'trvfiles context set --help'.\n");
    EXPECT_EQ(bytes("a.mctx"), setupContext);
}

TEST_F(ContextSet, ExplainsItself) {
    EXPECT_EQ(answerTo(words("context set --help")).out,
              "Usage: trvfiles context set [OPTION...] FILE... section.key=value...\n"
              "\n"
              "Change fields of machine contexts.\n"
              "Prints the new values as they are in the file. Rejects a value that the file\n"
              "would not give back, and a file of which something would be lost. A failure of\n"
              "one file does not stop the others. Fields:\n"
              "  header.comment\n"
              "  header.name\n"
              "  machine.name\n"
              "  machine.position\n"
              "  machine.proximity\n"
              "  postpro.origin_program\n"
              "  postpro.reference_axis\n"
              "  part.surface_group\n"
              "  clamping_system.name\n"
              "  clamping_system.proximity\n"
              "\n"
              "Options:\n"
              "  --drop-unknown  Write the file without comments and unknown lines\n"
              "  --json          Print JSON\n"
              "  -h, --help      Show this help\n"
              "\n"
              "Examples:\n"
              "  trvfiles context set bracket-left.mctx machine.proximity=2.5\n");
    EXPECT_EQ(answerTo(words("context set a.mctx")).err,
              "trvfiles context set: a file name or assignment is missing\n"
              "Try 'trvfiles context set --help'.\n");
}

}  // namespace
}  // namespace trv::testing
