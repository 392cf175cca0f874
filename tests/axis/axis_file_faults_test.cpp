#include <tests/axis/axis_sample.h>
#include <trvfiles/axis/axis_file.h>
#include <trvfiles/support/CFileFault.h>
#include <trvfiles/support/platform.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <string>

using namespace trv::testing;

TEST(AxisText, NamesTheFaultyLine) {
    const auto faultyLineOf = [](const std::string& text) {
        TemporaryDirectory directory;
        writeBytes(directory / "f", text);
        std::FILE* file = std::fopen((directory / "f").string().c_str(), "r");
        EXPECT_NE(file, nullptr);
        if (file == nullptr) return -1;
        trv::AxisContent content;
        CFileFault fault;
        const bool isRead = trv::readAxisText(file, content, &fault);
        EXPECT_EQ(isRead, fault.line == 0);
        EXPECT_EQ(fault.reason, fault.line == 0 ? "" : "four numbers are expected");
        EXPECT_EQ(fault.column, 0);
        EXPECT_EQ(fault.systemError, 0);
        EXPECT_TRUE(fault.notes.empty());
        std::rewind(file);
        EXPECT_EQ(trv::readAxisText(file, content), isRead);
        std::fclose(file);
        expectAxisAsInMemory(directory / "f");
        return fault.line;
    };
    EXPECT_EQ(faultyLineOf("0\n" + identityLines), 0);
    EXPECT_EQ(faultyLineOf(""), 2);
    EXPECT_EQ(faultyLineOf("0\n1 0 0\n"), 2);
    EXPECT_EQ(faultyLineOf("0\n1 0 0 0\n0 1 0 0\nx\n0 0 0 1\n"), 4);
    EXPECT_EQ(faultyLineOf("0\n1 0 0 0\n0 1 0 0\n0 0 1 0\n"), 5);
}

TEST(AxisText, LeavesTheContentAfterAFailure) {
    TemporaryDirectory directory;
    writeBytes(directory / "f", "0\n1 0 0 0\n");
    trv::AxisContent content;
    content.matrix[3] = 7;
    content.tagCount = 3;
    EXPECT_EQ(trv::readAxisFile(QString::fromStdString((directory / "f").string()), content),
              eFileIOContentError);
    EXPECT_EQ(content.matrix[3], 7);
    EXPECT_EQ(content.tagCount, 3);
}

namespace {

class AxisFault : public ::testing::Test {
protected:
    QString path(const char* name) const {
        return QString::fromStdString((directory_ / name).generic_string());
    }

    // The lines and the texts of the notes on a file that is read.
    std::string readNotes(const std::string& text) {
        writeBytes(directory_ / "f", text);
        EXPECT_EQ(trv::readAxisFile(path("f"), content_, &fault_), eFileIOSuccess);
        expectAxisAsInMemory(directory_ / "f");
        std::string notes;
        for (const CFileFault::Note& note : fault_.notes)
            notes += std::to_string(note.line) + ": " + note.text + '\n';
        return notes;
    }

    TemporaryDirectory directory_;
    trv::AxisContent content_;
    CFileFault fault_;
};

}  // namespace

TEST_F(AxisFault, ReportsWhyAFileIsNotRead) {
    EXPECT_EQ(trv::readAxisFile(path("missing"), content_, &fault_), eFileIOOpenError);
    EXPECT_EQ(fault_.reason, "No such file or directory");
    EXPECT_EQ(fault_.systemError, ENOENT);
    EXPECT_EQ(fault_.line, 0);

    writeBytes(directory_ / "f", "0\n1 0 0\n");
    EXPECT_EQ(trv::readAxisFile(path("f"), content_, &fault_), eFileIOContentError);
    EXPECT_EQ(fault_.reason, "four numbers are expected");
    EXPECT_EQ(fault_.systemError, 0);
    EXPECT_EQ(fault_.line, 2);

    writeBytes(directory_ / "f", "0\n" + identityLines);
    EXPECT_EQ(trv::readAxisFile(path("f"), content_, &fault_), eFileIOSuccess);
    EXPECT_EQ(fault_.reason, "");
    EXPECT_EQ(fault_.line, 0);
}

TEST_F(AxisFault, NotesNothingInAWrittenFile) {
    EXPECT_EQ(readNotes("0\n" + identityLines), "");
    EXPECT_EQ(readNotes("0\n" + identityLines + identityLines + "  #1 2 3\n"), "");
    // Rounded to six decimals.
    EXPECT_EQ(readNotes("1\n0.866025 -0.5 0 1\n0.5 0.866025 0 2\n0 0 1 3\n0 0 0 1\n"), "");
}

TEST_F(AxisFault, NotesAxesThatAreNotOrthonormal) {
    const std::string text =
        "2: the axes are not orthonormal: their inverse is read, which differs from what was "
        "written\n";
    EXPECT_EQ(readNotes("1\n2 0 0 0\n0 1 0 0\n0 0 1 0\n0 0 0 1\n"), text);
    EXPECT_EQ(fault_.notes[0].kind, CFileFault::Note::Kind::notOrthonormal);
    EXPECT_EQ(readNotes("1\n1 0.1 0 0\n0 1 0 0\n0 0 1 0\n0 0 0 1\n"), text);
    EXPECT_EQ(readNotes("1\nnan 0 0 0\n0 1 0 0\n0 0 1 0\n0 0 0 1\n"), text);
    EXPECT_EQ(readNotes("1\n0 0 0 0\n0 1 0 0\n0 0 1 0\n0 0 0 1\n"),
              "2: the axes do not span space: they are read as zeros\n");
}

TEST_F(AxisFault, NotesARowThatIsMissing) {
    const std::string threeRows = "0\n1 0 0 5\n0 1 0 6\n0 0 1 7\n";
    const std::string inverse = "1 0 0 -5\n0 1 0 -6\n0 0 1 -7\n0 0 0 1\n";
    EXPECT_EQ(readNotes(threeRows + inverse),
              "5: a row of the matrix is missing: the first row of the next block takes its "
              "place\n");
    EXPECT_EQ(fault_.notes[0].kind, CFileFault::Note::Kind::missingRow);
    EXPECT_EQ(readNotes(threeRows + inverse + "#1 2 3\n"),
              "5: a row of the matrix is missing: the first row of the next block takes its "
              "place\n"
              "9: the tags are ignored: they are read from line 10 only\n");
    EXPECT_EQ(fault_.notes[1].kind, CFileFault::Note::Kind::misplacedTags);
    EXPECT_EQ(content_.tagCount, 0);
}

TEST_F(AxisFault, NotesAFourthRowThatIsNotThatOfAPlacement) {
    const std::string text = "5: the fourth row of the matrix is not 0 0 0 1\n";
    EXPECT_EQ(readNotes("0\n1 0 0 0\n0 1 0 0\n0 0 1 0\n0 0 0 2\n" + identityLines), text);
    EXPECT_EQ(fault_.notes[0].kind, CFileFault::Note::Kind::notAffine);
    EXPECT_EQ(readNotes("0\n1 0 0 0\n0 1 0 0\n0 0 1 0\n0 0 0.1 1\n"), text);
}

TEST_F(AxisFault, NotesTagsThatFollowTheMatrix) {
    EXPECT_EQ(readNotes("0\n" + identityLines + "  # 1 2 3\n"),
              "6: the tags are ignored: they are read from line 10 only\n");
}

TEST_F(AxisFault, ReportsAReadThatFails) {
    const bool hasFile = std::filesystem::exists("/proc/self/mem");
    if (!hasFile || trv::platform::backslash_separates()) {
        GTEST_SKIP() << "there is no file here that breaks off with this reason";
    }
    EXPECT_EQ(trv::readAxisFile(QStringLiteral("/proc/self/mem"), content_, &fault_),
              eFileIOContentError);
    EXPECT_EQ(fault_.reason, "Input/output error");
    EXPECT_EQ(fault_.systemError, EIO);
    EXPECT_EQ(fault_.line, 2);
}

TEST_F(AxisFault, ReportsWhyAFileIsNotWritten) {
    EXPECT_EQ(trv::writeAxisFile(path("missing/f"), "text", &fault_), eFileIOOpenError);
    EXPECT_EQ(fault_.reason, "No such file or directory");
    EXPECT_EQ(fault_.systemError, ENOENT);
    EXPECT_EQ(trv::writeAxisFile(path("f"), "text", &fault_), eFileIOSuccess);
    EXPECT_EQ(fault_.reason, "");
    EXPECT_EQ(fault_.systemError, 0);
    EXPECT_EQ(textOf(directory_ / "f"), "text");
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "there is no full device here";
    EXPECT_EQ(trv::writeAxisFile(QStringLiteral("/dev/full"), "text", &fault_), eFileIOShortWrite);
    EXPECT_EQ(fault_.reason, "No space left on device");
    EXPECT_EQ(fault_.systemError, ENOSPC);
}
