#include <cli/input_files.h>
#include <tests/cli/project_directory.h>

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

namespace trv::testing {
namespace {

class AxisCommands : public ProjectDirectory {
protected:
    Answer write(const char* options) const {
        return answerTo(words("axis write") + words(options) + QStringList(path("w.ref")));
    }
};

TEST_F(AxisCommands, ShowPrintsThePlacement) {
    const Answer answer = answerTo(words("axis show") + QStringList(file("a", turnedAxis)));
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.err, "");
    EXPECT_NE(answer.out.find("\nMatrix\n  x axis           0.000000      1.000000"),
              std::string::npos);
    EXPECT_NE(answer.out.find("\nTags         3 0 7\n"), std::string::npos);
}

TEST_F(AxisCommands, ShowPrintsJson) {
    const Answer answer =
        answerTo(words("axis show --json") + QStringList(file("a", identityAxis)));
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.out, "{\"file\":\"" + path("a").toStdString() +
                              "\",\"identity\":true,"
                              "\"inverse\":[1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1],\"kind\":\"axis\","
                              "\"matrix\":[1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1],\"mirror\":false,"
                              "\"orthonormal\":true,\"singular\":false,"
                              "\"tags\":[null,null,null]}\n");
}

TEST_F(AxisCommands, ShowReportsWhatIsWrong) {
    const Answer answer = answerTo(words("axis show") + QStringList(file("a", "0\n1 2 3\n")));
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.out, "");
    EXPECT_EQ(answer.err, "trvfiles: " + path("a").toStdString() +
                              ": eFileIOContentError: line 2: four numbers are expected\n");
}

TEST_F(AxisCommands, ShowPrintsTheFilesThatCanBeRead) {
    const QStringList names = {file("a", identityAxis), path("missing"), file("b", identityAxis)};
    const std::string a = path("a").toStdString();
    const Answer answer = answerTo(words("axis show") + names);
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.err, "trvfiles: " + path("missing").toStdString() +
                              ": eFileIOOpenError: No such file or directory\n");
    EXPECT_EQ(answer.out.find("Axis file " + a + "\n\nMatrix\n"), 0U);
    EXPECT_NE(answer.out.find("none\n\nAxis file " + path("b").toStdString() + "\n\nMatrix\n"),
              std::string::npos);
    const std::string json = answerTo(words("axis show --json") + names).out;
    EXPECT_EQ(json.find("{\"files\":[{\"file\":\"" + a + "\",\"identity\":true,"), 0U);
    EXPECT_NE(json.find("},{\"file\":\"" + path("b").toStdString() + "\","), std::string::npos);
    EXPECT_EQ(json.substr(json.size() - 4), "}]}\n");
}

TEST_F(AxisCommands, InvertWritesTheInverseWithTheTags) {
    const Answer answer =
        answerTo(words("axis invert") + QStringList({file("a", turnedAxis), path("b")}));
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.out, "");
    EXPECT_EQ(answer.err, "");
    EXPECT_EQ(bytes("b"),
              "      1\n"
              "      0.000000      1.000000      0.000000    -20.000000\n"
              "     -1.000000      0.000000      0.000000     10.000000\n"
              "      0.000000      0.000000      1.000000    -30.000000\n"
              "      0.000000      0.000000      0.000000      1.000000\n"
              "      0.000000     -1.000000      0.000000     10.000000\n"
              "      1.000000      0.000000      0.000000     20.000000\n"
              "      0.000000      0.000000      1.000000     30.000000\n"
              "      0.000000      0.000000      0.000000      1.000000\n"
              "  #3 0 7\n");
}

TEST_F(AxisCommands, InvertTwiceGivesTheFileBack) {
    const QString name = file("a", turnedAxis);
    ASSERT_EQ(answerTo(words("axis invert") + QStringList({name, name})).status, 0);
    EXPECT_NE(bytes("a"), turnedAxis);
    ASSERT_EQ(answerTo(words("axis invert") + QStringList({name, name})).status, 0);
    EXPECT_EQ(bytes("a"), turnedAxis);
}

TEST_F(AxisCommands, InvertKeepsTheDigitsOfARotation) {
    const QString name = path("a");
    ASSERT_EQ(answerTo(words("axis write --vec1 0.866025,0.5,0 --vec2 -0.5,0.866025,0 --vec3 "
                             "0,0,1 --translate 1,2,3") +
                       QStringList(name))
                  .status,
              0);
    const std::string before = bytes("a");
    ASSERT_EQ(answerTo(words("axis invert") + QStringList({name, path("b")})).status, 0);
    EXPECT_EQ(bytes("b").substr(0, 36), "      1\n      0.866025      0.500000");
    ASSERT_EQ(answerTo(words("axis invert") + QStringList({path("b"), name})).status, 0);
    // The translation is rounded twice.
    constexpr std::size_t flagAndFirstRow = 8 + 42;
    EXPECT_EQ(bytes("a").substr(0, flagAndFirstRow), before.substr(0, flagAndFirstRow));
}

TEST_F(AxisCommands, InvertedFileReadsAsTheInverseAlsoOfAShear) {
    const QString from = file("a",
                              "1\n"
                              "2 0.5 0 10\n"
                              "0 -1 0 20\n"
                              "0.25 0 4 30\n"
                              "0 0 0 1\n");
    ASSERT_EQ(answerTo(words("axis invert") + QStringList({from, path("b")})).status, 0);
    cli::AxisFile axis;
    cli::AxisFile inverse;
    ASSERT_FALSE(cli::readAxis(from, axis));
    ASSERT_FALSE(cli::readAxis(path("b"), inverse));
    const AxisMatrix expected = affineInverse(axis.matrix);
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_NEAR(inverse.matrix[i], expected[i], 2e-5) << i;
    EXPECT_GT(std::fabs(inverse.matrix[8]) + std::fabs(inverse.matrix[1]), 0.1);
}

TEST_F(AxisCommands, InvertRefusesWhatHasNoInverse) {
    const auto refusal = [&](const char* lines) {
        const Answer answer =
            answerTo(words("axis invert") + QStringList({file("a", lines), path("b")}));
        EXPECT_EQ(answer.status, 2);
        EXPECT_EQ(answer.out, "");
        EXPECT_FALSE(exists("b"));
        const std::string start = "trvfiles: " + path("a").toStdString() + ": ";
        EXPECT_EQ(answer.err.substr(0, start.size()), start);
        return answer.err.substr(std::min(start.size(), answer.err.size()));
    };
    EXPECT_EQ(refusal("0\n0 0 0 1\n0 1 0 2\n0 0 1 3\n0 0 0 1\n"),
              "the matrix is singular and has no inverse\n");
    EXPECT_EQ(refusal("0\nnan 0 0 1\n0 1 0 2\n0 0 1 3\n0 0 0 1\n"),
              "the matrix holds nan or inf and has no inverse\n");
    EXPECT_EQ(refusal("0\n1 0 0 inf\n0 1 0 2\n0 0 1 3\n0 0 0 1\n"),
              "the matrix holds nan or inf and has no inverse\n");
    EXPECT_EQ(refusal("0\n1 0 0 1\n0 1 0 2\n0 0 1 3\n0 2 0 1\n"),
              "line 5 does not start with 0 0 0; the matrix is not a placement\n");
}

TEST_F(AxisCommands, InvertReportsWhichFileIsWrong) {
    Answer answer = answerTo(words("axis invert") + QStringList({path("missing"), path("b")}));
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.err, "trvfiles: " + path("missing").toStdString() +
                              ": eFileIOOpenError: No such file or directory\n");
    answer =
        answerTo(words("axis invert") + QStringList({file("a", turnedAxis), path("missing/b")}));
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.err, "trvfiles: " + path("missing/b").toStdString() +
                              ": eFileIOOpenError: No such file or directory\n");
}

TEST_F(AxisCommands, WriteMakesTheIdentity) {
    const Answer answer = answerTo(words("axis write") + QStringList(path("w.ref")));
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.out, "");
    EXPECT_EQ(answer.err, "");
    EXPECT_EQ(bytes("w.ref"), identityAxis);
}

TEST_F(AxisCommands, WriteAcceptsEveryOption) {
    EXPECT_EQ(
        write("--translate 10,20,30 --vec1 0,1,0 --vec2 -1,0,0 --vec3 0,0,1 --tags 3,0,7").err, "");
    EXPECT_EQ(bytes("w.ref"), turnedAxis);
}

TEST_F(AxisCommands, WriteAcceptsEveryFormOfANumber) {
    EXPECT_EQ(write("--translate=-1.5,+2e1,.5").status, 0);
    EXPECT_EQ(bytes("w.ref").substr(0, 8 + 2 * 57),
              "      1\n"
              "      1.000000      0.000000      0.000000     -1.500000\n"
              "      0.000000      1.000000      0.000000     20.000000\n");
}

TEST_F(AxisCommands, WriteNotesThatTheAxesAreNotOrthonormal) {
    const Answer answer = write("--vec1 2,0,0 --vec2 0,2,0 --vec3 0,0,2");
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.err,
              "trvfiles: note: the vectors are not orthonormal; the file is read as the inverse of "
              "their transpose\n");
    EXPECT_EQ(bytes("w.ref").substr(0, 22), "      1\n      2.000000");
}

TEST_F(AxisCommands, WriteRejectsWhatIsNotThreeNumbers) {
    for (const char* value : {"1,2", "1,2,3,4", "1,2,x", "1,,3", "1;2;3", "1,2,nan", "inf,0,0",
                              "0x1,2,3", "1,2,1e400", "1_0,2,3"}) {
        const Answer answer = write((std::string("--translate ") + value).c_str());
        EXPECT_EQ(answer.status, 2) << value;
        EXPECT_EQ(answer.err,
                  "trvfiles axis write: --translate takes three numbers, such as 10,0,-2.5, not '" +
                      std::string(value) + "'\nTry 'trvfiles axis write --help'.\n");
        EXPECT_FALSE(exists("w.ref"));
    }
}

TEST_F(AxisCommands, WriteRequiresAllVectorsOrNone) {
    for (const char* options : {"--vec1 1,0,0", "--vec1 1,0,0 --vec3 0,0,1"}) {
        const Answer answer = write(options);
        EXPECT_EQ(answer.status, 2);
        EXPECT_EQ(answer.err,
                  "trvfiles axis write: --vec1, --vec2 and --vec3 belong together: give all or "
                  "none\nTry 'trvfiles axis write --help'.\n");
    }
    EXPECT_FALSE(exists("w.ref"));
}

TEST_F(AxisCommands, WriteRequiresIndependentVectors) {
    const Answer answer = write("--vec1 1,0,0 --vec2 2,0,0 --vec3 0,0,1");
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.err,
              "trvfiles axis write: --vec1, --vec2 and --vec3 must be linearly independent\n"
              "Try 'trvfiles axis write --help'.\n");
    EXPECT_FALSE(exists("w.ref"));
}

TEST_F(AxisCommands, WriteRequiresThreeTags) {
    for (const char* value : {"1,2", "1,2,-1", "1,2,x", "1,2,3.0", "1,2,2147483648", "1,2,3,4"}) {
        const Answer answer = write((std::string("--tags ") + value).c_str());
        EXPECT_EQ(answer.status, 2) << value;
        EXPECT_EQ(answer.err,
                  "trvfiles axis write: --tags takes three whole numbers from 0 on, such as "
                  "3,0,7, not '" +
                      std::string(value) + "'\nTry 'trvfiles axis write --help'.\n");
    }
    EXPECT_FALSE(exists("w.ref"));
    EXPECT_EQ(write("--tags 0,2147483647,0").status, 0);
    EXPECT_EQ(bytes("w.ref"), std::string(identityAxis) + "  #0 2147483647 0\n");
}

TEST_F(AxisCommands, WriteReportsThatTheFileCannotBeCreated) {
    const Answer answer = answerTo(words("axis write") + QStringList(path("missing/w")));
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.err, "trvfiles: " + path("missing/w").toStdString() +
                              ": eFileIOOpenError: No such file or directory\n");
}

}  // namespace
}  // namespace trv::testing
