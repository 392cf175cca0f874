#include <tests/cli/project_directory.h>

#include <QStringList>

namespace trv::testing {
namespace {

class ContextGet : public ProjectDirectory {
protected:
    static Answer get(const QStringList& files, const char* rest = nullptr) {
        QStringList arguments = words("context get") + files;
        if (rest != nullptr) arguments += words(rest);
        return answerTo(arguments);
    }

    QString context_ = file("a.mctx", setupContext);
};

TEST_F(ContextGet, PrintsAValue) {
    const Answer answer = get({context_}, "machine.name");
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.err, "");
    EXPECT_EQ(answer.out, "MILL5\n");
}

TEST_F(ContextGet, PrintsSeveralValuesInTheirOrder) {
    EXPECT_EQ(get({context_}, "postpro.origin_program header.name machine.proximity").out,
              "12.500000 0.000000 -3.000000\nSetup A\n10.000000\n");
}

TEST_F(ContextGet, NamesTheFileIfThereAreSeveral) {
    const QString second = file("b", "[header]\nname=b\n");
    EXPECT_EQ(get({context_, second}, "header.name part.surface_group").out,
              text("a.mctx") + ": Setup A\n" + text("a.mctx") + ": TOP\n" + text("b") + ": b\n" +
                  text("b") + ": \n");
    const std::string all = get({second, second}).out;
    EXPECT_EQ(all.find(text("b") + ": header.comment=\n" + text("b") + ": header.name=b\n"), 0U)
        << all;
}

TEST_F(ContextGet, PrintsAllFieldsSoThatTheyCanBeSet) {
    const Answer answer = get({context_});
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.out,
              "header.comment=first op\nheader.name=Setup A\nmachine.name=MILL5\n"
              "machine.position=POS1\nmachine.proximity=10.000000\n"
              "postpro.origin_program=12.500000 0.000000 -3.000000\n"
              "postpro.reference_axis=transfo.dat\npart.surface_group=TOP\n"
              "clamping_system.name=VISE\nclamping_system.proximity=2.500000\n");
    const QString other = file("b", "[header]\nname=x\n");
    const QStringList lines =
        QString::fromStdString(answer.out).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    EXPECT_EQ(answerTo(words("context set") + QStringList(other) + lines).status, 0);
    EXPECT_EQ(bytes("b"), setupContext);
}

TEST_F(ContextGet, KeepsABackslashAndShowsNoHiddenCharacter) {
    file("a.mctx", "[header]\nname=C:\\x\ncomment=a\x1B[31m\n");
    Answer answer = get({context_}, "header.name");
    EXPECT_EQ(answer.out, "C:\\x\n");
    EXPECT_EQ(answer.err, "");
    answer = get({context_}, "header.comment");
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.out, "a\\x1b[31m\n");
    EXPECT_EQ(answer.err,
              "trvfiles: " + text("a.mctx") +
                  ": note: header.comment has hidden characters, which are printed as escapes; "
                  "--json prints the exact value\n");
}

TEST_F(ContextGet, PrintsOneJsonDocument) {
    const char* const fields =
        "--json postpro.origin_program machine.name clamping_system.proximity";
    const std::string values =
        "\"fields\":{\"clamping_system.proximity\":2.5,\"machine.name\":\"MILL5\","
        "\"postpro.origin_program\":[12.5,0,-3]},\"file\":\"" +
        text("a.mctx") + '"';
    EXPECT_EQ(get({context_}, fields).out, '{' + values + "}\n");
    EXPECT_EQ(get({context_, context_}, fields).out,
              "{\"files\":[{" + values + "},{" + values + "}]}\n");
}

TEST_F(ContextGet, ReadsTheOtherFilesIfOneFails) {
    const Answer answer =
        get({path("missing.mctx"), context_, file("b", setupXml)}, "machine.name");
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.out, text("a.mctx") + ": MILL5\n");
    EXPECT_EQ(answer.err,
              "trvfiles: " + text("missing.mctx") +
                  ": eFileIOOpenError: No such file or directory\ntrvfiles: " + text("b") +
                  ": eFileIOContentError: this is an assembly; try 'trvfiles assembly tree'\n");
}

TEST_F(ContextGet, NamesTheNearestField) {
    const auto mistake = [&](const QStringList& rest) {
        const Answer answer = get(QStringList(context_) + rest);
        EXPECT_EQ(answer.status, 2);
        EXPECT_EQ(answer.out, "");
        const std::string start = "trvfiles context get: ";
        const std::string end = "\nTry 'trvfiles context get --help'.\n";
        EXPECT_EQ(answer.err.substr(0, start.size()), start);
        return answer.err.substr(start.size(), answer.err.size() - start.size() - end.size());
    };
    EXPECT_EQ(mistake(words("machine.nam")),
              "neither a file nor a field is named 'machine.nam'; did you mean 'machine.name'?");
    EXPECT_EQ(mistake(words("Header.Name")),
              "neither a file nor a field is named 'Header.Name'; did you mean 'header.name'?");
    EXPECT_EQ(mistake(words("part.surfacegroup machine.name")),
              "neither a file nor a field is named 'part.surfacegroup'; did you mean "
              "'part.surface_group'?");
    EXPECT_EQ(mistake(words("part.x")), "neither a file nor a field is named 'part.x'");
    EXPECT_EQ(mistake(words("machine.name position")),
              "neither a file nor a field is named 'position'");
    EXPECT_EQ(mistake({QStringLiteral("machine.name"), context_}),
              "the file '" + text("a.mctx") + "' is after a field; files are first");
}

TEST_F(ContextGet, RequiresAFile) {
    EXPECT_EQ(answerTo(words("context get machine.name")).err,
              "trvfiles context get: a file name is missing\n"
              "Try 'trvfiles context get --help'.\n");
    EXPECT_EQ(answerTo(words("context get ./machine.name")).err,
              "trvfiles: ./machine.name: eFileIOOpenError: No such file or directory\n");
}

TEST_F(ContextGet, ExplainsItself) {
    EXPECT_EQ(answerTo(words("context get --help")).out,
              "Usage: trvfiles context get [--json] FILE... [section.key...]\n"
              "\n"
              "Print fields of machine contexts.\n"
              "Prints the values of the fields, one on a line. For several files the name of\n"
              "the file precedes the value. Without a field, all fields are printed in the\n"
              "form that 'context set' takes. Fields:\n"
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
              "  --json      Print JSON\n"
              "  -h, --help  Show this help\n"
              "\n"
              "Examples:\n"
              "  trvfiles context get bracket-left.mctx machine.name\n"
              "  trvfiles context get bracket-left.mctx bracket-right.mctx header.comment\n");
}

}  // namespace
}  // namespace trv::testing
