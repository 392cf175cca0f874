#include <tests/cli/scene_sample.h>

namespace trv::testing {
namespace {

class SceneFrames : public ViewedProject {
protected:
    static std::string framesOf(const QStringList& arguments) {
        const QJsonArray frames = dataOf(arguments).value(QLatin1String("frames")).toArray();
        return QJsonDocument(frames).toJson(QJsonDocument::Compact).toStdString();
    }

    static std::string context(const std::string& position) {
        return "[header]\nversion=2\n[machine]\nname=m.mac\nposition=" + position +
               "\n[postpro]\norigin_program=0 0 0\n[part]\n[clamping_system]\n";
    }
};

TEST_F(SceneFrames, AreAxisFiles) {
    EXPECT_EQ(framesOf({file("table.a30.dat", turnedAxis)}),
              "[{\"kind\":\"axis\",\"label\":\"table.a30\",\"matrix\":"
              "[0,1,0,-1,0,0,0,0,1,10,20,30],\"path\":\"" +
                  text("table.a30.dat") + "\"}]");
}

TEST_F(SceneFrames, AreThePositionsOfMachineContexts) {
    file("sub/left.ref", "1\n1 0 0 -140\n0 1 0 2.5\n0 0 1 30\n0 0 0 1\n");
    EXPECT_EQ(framesOf({file("sub/left.mctx", context("left.ref"))}),
              "[{\"kind\":\"context\",\"label\":\"left\",\"matrix\":"
              "[1,0,0,0,1,0,0,0,1,-140,2.5,30],\"path\":\"" +
                  text("sub/left.mctx") + "\"}]");
}

TEST_F(SceneFrames, AreInTheOrderOfTheCall) {
    file("p.ref", identityAxis);
    const QJsonArray frames = dataOf({file("b.dat", identityAxis), file("a.xml", setupXml),
                                      file("c.mctx", context("p.ref")), file("a.dat", turnedAxis)})
                                  .value(QLatin1String("frames"))
                                  .toArray();
    QStringList labels;
    for (const QJsonValue& frame : frames)
        labels += frame.toObject().value(QLatin1String("label")).toString();
    EXPECT_EQ(labels.join(QLatin1Char(' ')).toStdString(), "b c a");
}

TEST_F(SceneFrames, AreAnErrorIfTheyCannotBeRead) {
    const Answer answer =
        viewed({file("none.mctx", context("")), file("lost.mctx", context("lost.ref")),
                file("nan.dat", "1\n1 0 0 0\n0 nan 0 0\n0 0 1 0\n0 0 0 1\n"),
                file("short.dat", "1\n1 0 0 0\n")});
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.out, "");
    EXPECT_EQ(answer.err,
              "trvfiles: " + text("none.mctx") +
                  ": eFileIOContentError: the machine context has no position\ntrvfiles: " +
                  text("lost.mctx") +
                  ": eFileIOOpenError: position file \"lost.ref\": No such file or directory\n"
                  "trvfiles: " +
                  text("nan.dat") +
                  ": eFileIOContentError: a number of the frame is not finite\ntrvfiles: " +
                  text("short.dat") + ": eFileIOContentError: line 3: four numbers are expected\n");
}

}  // namespace
}  // namespace trv::testing
