#include <tests/cli/env_sample.h>
#include <tests/cli/project_directory.h>
#include <trvfiles/support/platform.h>

namespace trv::testing {
namespace {

class ContextList : public ProjectDirectory {
protected:
    Answer list(const QString& directory, const char* options = "context list") const {
        return answerTo(words(options) + QStringList(directory));
    }
};

TEST_F(ContextList, PrintsOnePathPerLine) {
    file("B/B.mctx", "");
    file("B/D/D.mctx", "");
    file("a/a.mctx", "");
    file("C/[x] %1/[x] %1.mctx", "");
    file("C/other.mctx", "");
    const Answer answer = list(path(""));
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.err, "");
    EXPECT_EQ(answer.out, printed("a/a.mctx") + "\n" + printed("B/B.mctx") + "\n" +
                              printed("C/[x] %1/[x] %1.mctx") + "\n");
}

TEST_F(ContextList, SaysWhatThereIsInsteadOfFavourites) {
    const std::string begin = "trvfiles: " + text("") + ": ";
    Answer answer = list(path(""));
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.out, "");
    EXPECT_EQ(answer.err, begin +
                              "no context has the name of its directory, and there are no other "
                              "contexts\n");
    EXPECT_EQ(list(path(""), "context list --all").err, begin + "there are no contexts\n");
    file("a/x.mctx", "");
    EXPECT_EQ(list(path("")).err, begin +
                                      "no context has the name of its directory; 1 other context "
                                      "is there, list it with --all\n");
    file("y.mctx", "");
    answer = list(path(""), "context list --json");
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.out, "{\"contexts\":[],\"directory\":\"" + text("") + "\"}\n");
    EXPECT_EQ(answer.err, begin +
                              "no context has the name of its directory; 2 other contexts are "
                              "there, list them with --all\n");
}

TEST_F(ContextList, ListsAllContextsOnRequest) {
    file("a/a.mctx", "");
    file("a/x.mctx", "");
    file("y.mctx", "");
    Answer answer = list(path(""), "context list --all");
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.err, "");
    EXPECT_EQ(answer.out,
              printed("y.mctx") + "\n" + printed("a/a.mctx") + "\n" + printed("a/x.mctx") + "\n");
    answer = list(path("a"), "context list --all --json");
    EXPECT_EQ(answer.out, "{\"contexts\":[\"" + printed("a/a.mctx") + "\",\"" +
                              printed("a/x.mctx") + "\"],\"directory\":\"" + text("a") + "\"}\n");
}

TEST_F(ContextList, PrintsJson) {
    file("a/a.mctx", "");
    const Answer answer = list(path("."), "context list --json");
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.out, "{\"contexts\":[\"" + printed("./a/a.mctx") + "\"],\"directory\":\"" +
                              text(".") + "\"}\n");
}

TEST_F(ContextList, ReportsWhyADirectoryCannotBeListed) {
    Answer answer = list(path("missing"));
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.out, "");
    EXPECT_EQ(answer.err, "trvfiles: " + text("missing") + ": No such file or directory\n");
    answer = list(QString());
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.err, "trvfiles: : No such file or directory\n");
}

class FavoriteList : public EnvCommand {
protected:
    FavoriteList() { process_.setVariable("TRV_MCTX_DEF", nullptr); }

    int list(const QStringList& options = {}) {
        return process_.run(QStringList{QStringLiteral("context"), QStringLiteral("list")} +
                            options);
    }
};

TEST_F(FavoriteList, UsesThoseOfTheInstallation) {
    EXPECT_EQ(list(), 0);
    EXPECT_EQ(err(), "");
    EXPECT_EQ(out(),
              native("/opt/shop/standard/machine_context/five-axis/tilted-table/tilted-table.mctx\n"
                     "/opt/shop/standard/machine_context/pallet-mill/pallet-mill.mctx\n"));
}

TEST_F(FavoriteList, UsesTheInstallationOfTheCall) {
    process_.setVariable("TRVHOME", nullptr);
    EXPECT_EQ(
        list({QStringLiteral("--json"), QStringLiteral("--root"), QString::fromStdString(root())}),
        0);
    EXPECT_EQ(out(), native("{\"contexts\":["
                            "\"/opt/shop/standard/machine_context/five-axis/tilted-table/"
                            "tilted-table.mctx\","
                            "\"/opt/shop/standard/machine_context/pallet-mill/pallet-mill.mctx\"],"
                            "\"directory\":\"/opt/shop/standard/machine_context\"}\n"));
}

TEST_F(FavoriteList, UsesADirectoryThatTheProcessNames) {
    write("mine/a/a.mctx", "");
    process_.setVariable("TRV_MCTX_DEF", (directory_.text() + "/mine").c_str());
    EXPECT_EQ(list(), 0);
    EXPECT_EQ(out(), native(directory_.text() + "/mine/a/a.mctx") + "\n");
    process_.setVariable("TRV_MCTX_DEF", (directory_.text() + "/none").c_str());
    EXPECT_EQ(list(), 2);
    EXPECT_EQ(err(),
              "trvfiles: " + native(directory_.text() + "/none") + ": No such file or directory\n");
}

TEST_F(FavoriteList, ReportsAFaultyInstallation) {
    write("shop/config/environ.cfg", "/els\n");
    EXPECT_EQ(list(), 2);
    EXPECT_EQ(out(), "");
    EXPECT_NE(err().find("Unknown keyword : '/els'"), std::string::npos);
}

TEST_F(FavoriteList, ReportsWhyThereIsNoFavouriteDirectory) {
    process_.setVariable("TRVHOME", nullptr);
    EXPECT_EQ(list(), 2);
    EXPECT_EQ(out(), "");
    EXPECT_EQ(
        err(),
        "trvfiles: there is no installation: TRVHOME is not set; set it or give --root DIR\n");

    // Both are too long after expansion. On Windows such a path names no directory.
    if (platform::backslash_separates()) return;
    write("shop/config/environ.cfg", "[var]\n");
    std::string longRoot = root();
    while (longRoot.size() < 380)
        longRoot += "/../shop";
    process_.setVariable("TRVHOME", longRoot.c_str());
    process_.setVariable("TRV_MCTX_DEF", std::string(400, 'x').c_str());
    EXPECT_EQ(list(), 2);
    EXPECT_EQ(out(), "");
    EXPECT_EQ(
        process_.err(),
        "trvfiles: warning: _Expand(\"$TRV_MCTX_DEF\") = error -32 - buffer size 400 too "
        "small\n"
        "trvfiles: warning: _Expand(\"$TRVHOME\\\\standard\\\\machine_context\") = error -32 - "
        "buffer size 400 too small\n"
        "trvfiles: there is no favourite directory: set TRV_MCTX_DEF or TRVHOME, or give DIR\n");
}

class ContextDefault : public ProjectDirectory {
protected:
    QString two_ = file("[MACHINE_POSITION_2].mctx", "");
    QString seven_ = file("[MACHINE_POSITION_7].mctx", "");
    QString other_ = file("x.mctx", "");
};

TEST_F(ContextDefault, IsTheOneOfTheHighestPosition) {
    const Answer answer =
        answerTo(words("context default") + QStringList({two_, other_, seven_, seven_}));
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.err, "");
    EXPECT_EQ(answer.out, text("[MACHINE_POSITION_7].mctx") + "\n");
}

TEST_F(ContextDefault, IsLookedForInADirectory) {
    file("[MACHINE_POSITION_9].bak", "");
    file("[MACHINE_POSITION_07].mctx", "");
    std::filesystem::create_directories(directory_ / "[MACHINE_POSITION_8].mctx");
    const Answer answer = answerTo(words("context default") + QStringList(path(".")));
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.out, printed("./[MACHINE_POSITION_07].mctx") + "\n");
}

TEST_F(ContextDefault, MayBeMissing) {
    Answer answer = answerTo(words("context default") + QStringList(other_));
    EXPECT_EQ(answer.status, 1);
    EXPECT_EQ(answer.out, "");
    EXPECT_EQ(answer.err,
              "trvfiles: there is no default context: no name has a machine position, such as "
              "[MACHINE_POSITION_1].mctx\n");
    const TemporaryDirectory empty;
    answer = answerTo(words("context default --json") +
                      QStringList(QString::fromStdString(empty.text())));
    EXPECT_EQ(answer.status, 1);
    EXPECT_EQ(answer.out, "{\"file\":null,\"position\":null}\n");
    EXPECT_EQ(answer.err, "");
}

TEST_F(ContextDefault, PrintsJson) {
    const Answer answer = answerTo(words("context default --json") + QStringList(two_));
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.out,
              "{\"file\":\"" + text("[MACHINE_POSITION_2].mctx") + "\",\"position\":2}\n");
}

TEST_F(ContextDefault, RequiresExistingFiles) {
    for (const QStringList& files :
         {QStringList(path("[MACHINE_POSITION_1].mctx")), QStringList({two_, path("")})}) {
        const Answer answer = answerTo(words("context default") + files);
        EXPECT_EQ(answer.status, 2);
        EXPECT_EQ(answer.out, "");
        EXPECT_EQ(answer.err,
                  "trvfiles: " + files.last().toStdString() + ": there is no file of that name\n");
    }
}

}  // namespace
}  // namespace trv::testing
