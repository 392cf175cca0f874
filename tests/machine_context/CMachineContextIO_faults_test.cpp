// What reading and writing a machine context file reports beside the status.

#include <tests/common/channel_log.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <tests/facade/memory_equality.h>
#include <tests/machine_context/context_samples.h>
#include <trvfiles/environment/file_replacement.h>
#include <trvfiles/machine_context/CMachineContextIO.h>
#include <trvfiles/machine_context/CSectionedFile.h>
#include <trvfiles/support/CFileFault.h>
#include <trvfiles/support/platform.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <sstream>
#include <string>

namespace fs = std::filesystem;
using namespace std::string_literals;
using namespace trv::testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Kind = CFileFault::Note::Kind;

namespace {

MATCHER_P4(IsNote, kind, line, subject, text, "") {
    return arg.kind == kind && arg.line == line && arg.column == 0 && arg.subject == subject &&
           arg.text == text;
}

class ContextFault : public ::testing::Test {
protected:
    CMachineContextIO file() const {
        return CMachineContextIO(QString::fromStdWString(path_.wstring()));
    }

    EFileIOStatus read(const std::string& text) {
        writeBytes(path_, text);
        expectContextAsInMemory(path_);
        return CMachineContextIO(QString::fromStdWString(path_.wstring())).read(data_, &fault_);
    }

    TemporaryDirectory directory_;
    fs::path path_ = directory_ / "f.mctx";
    CMachineContextData data_;
    CFileFault fault_;
};

const std::string sound =
    "[header]\nname=n\n[machine]\nname=m\nposition=p\nproximity= 1.5\n"
    "[postpro]\norigin_program=1 2\t3\n[clamping_system]\nproximity=2\n";

/// The sound text with a line in another form.
std::string with(const std::string& line, const std::string& changed) {
    std::string text = sound;
    return text.replace(text.find(line), line.size(), changed);
}

}  // namespace

TEST_F(ContextFault, IsEmptyForASoundFile) {
    fault_.reason = "old";
    fault_.line = 7;
    fault_.notes.resize(1);
    EXPECT_EQ(read(sound), eFileIOSuccess);
    EXPECT_EQ(fault_.reason, "");
    EXPECT_EQ(fault_.line, 0);
    EXPECT_EQ(fault_.column, 0);
    EXPECT_EQ(fault_.systemError, 0);
    EXPECT_THAT(fault_.notes, IsEmpty());
}

TEST_F(ContextFault, NamesTheSectionsThatAreMissingOrHaveNoLines) {
    EXPECT_EQ(read("\n[header]\n[machine]\nname=m\nposition=p\n"), eFileIOSuccess);
    EXPECT_THAT(
        fault_.notes,
        ElementsAre(IsNote(Kind::missingSection, 2, "header", "section [header] has no lines"),
                    IsNote(Kind::missingSection, 0, "postpro", "section [postpro] is missing"),
                    IsNote(Kind::missingSection, 0, "clamping_system",
                           "section [clamping_system] is missing")));
}

TEST_F(ContextFault, NamesASectionInAnotherCase) {
    EXPECT_EQ(read(with("[postpro]\n", "[PostPro]\n")), eFileIOSuccess);
    EXPECT_THAT(fault_.notes,
                ElementsAre(IsNote(Kind::missingSection, 7, "postpro",
                                   "section [postpro] is missing: the name is in another case "
                                   "here")));
}

TEST_F(ContextFault, NamesAKeyInAnotherCase) {
    EXPECT_EQ(read(with("proximity= 1.5", "Proximity=1.5")), eFileIOSuccess);
    EXPECT_THAT(fault_.notes, ElementsAre(IsNote(Kind::unknownName, 6, "machine.proximity",
                                                 "machine.proximity is not read: its key is in "
                                                 "another case here")));
    EXPECT_EQ(read(with("proximity= 1.5", "proximity=1.5\nProximity=2")), eFileIOSuccess);
    EXPECT_THAT(fault_.notes, IsEmpty());
}

TEST_F(ContextFault, NamesAProximityThatIsNotANumber) {
    EXPECT_EQ(read(with("proximity= 1.5", "proximity=abc")), eFileIOSuccess);
    EXPECT_THAT(fault_.notes,
                ElementsAre(IsNote(Kind::notANumber, 6, "machine.proximity",
                                   "machine.proximity is not a number: \"abc\"; it is read as 0")));
    EXPECT_EQ(read(with("proximity=2\n", "proximity=2,5\n")), eFileIOSuccess);
    EXPECT_THAT(fault_.notes,
                ElementsAre(IsNote(Kind::notANumber, 10, "clamping_system.proximity",
                                   "clamping_system.proximity is not a number: \"2,5\" has a "
                                   "decimal comma, not a point; the number at its beginning is "
                                   "read")));
    EXPECT_EQ(data_.getClampingProximity(), 2);
}

TEST_F(ContextFault, NamesAnOriginThatIsNotThreeNumbers) {
    EXPECT_EQ(read(with("1 2\t3", "1 2")), eFileIOSuccess);
    EXPECT_THAT(
        fault_.notes,
        ElementsAre(IsNote(Kind::notANumber, 8, "postpro.origin_program",
                           "postpro.origin_program is not three numbers: \"1 2\"; it is ignored")));
    EXPECT_EQ(read(with("1 2\t3", "1 2 3 4")), eFileIOSuccess);
    EXPECT_THAT(fault_.notes,
                ElementsAre(IsNote(Kind::notANumber, 8, "postpro.origin_program",
                                   "postpro.origin_program is not three numbers: \"1 2 3 4\"; the "
                                   "three at its beginning are read")));
}

TEST_F(ContextFault, NamesATextThatHasOtherBytes) {
    EXPECT_EQ(read(with("name=n", "name=a\0b"s)), eFileIOSuccess);
    EXPECT_THAT(fault_.notes, ElementsAre(IsNote(Kind::notText, 2, "header.name",
                                                 "header.name has bytes that are not text: \"a\"; "
                                                 "they are replaced or dropped")));
    if (trv::platform::backslash_separates()) GTEST_SKIP() << "other bytes are text here";
    EXPECT_EQ(read(with("name=m", "name=\xFF")), eFileIOSuccess);
    EXPECT_THAT(fault_.notes,
                ElementsAre(IsNote(Kind::notText, 4, "machine.name",
                                   "machine.name has bytes that are not text: "
                                   "\"\xEF\xBF\xBD\"; they are replaced or dropped")));
    EXPECT_EQ(read(with("name=m", "name=\xEF\xBF\xBD")), eFileIOSuccess);
    EXPECT_THAT(fault_.notes, IsEmpty());
}

TEST_F(ContextFault, KeepsTheNotesOfWhatComesBeforeAMissingKey) {
    EXPECT_EQ(read("[machine]\nname=m\nproximity=x\n"), eFileIOContentError);
    EXPECT_EQ(fault_.reason, "section [machine] has no \"position\"");
    EXPECT_EQ(fault_.line, 1);
    ASSERT_EQ(fault_.notes.size(), 1U);
    EXPECT_EQ(fault_.notes[0].subject, "header");
}

TEST_F(ContextFault, ReportsWhyAFileIsNotRead) {
    EXPECT_EQ(file().read(data_, &fault_), eFileIOOpenError);
    EXPECT_EQ(fault_.reason, "No such file or directory");
    EXPECT_EQ(fault_.systemError, ENOENT);
    if (!fs::exists("/proc/self/mem") || trv::platform::backslash_separates()) {
        GTEST_SKIP() << "there is no file here that breaks off with this reason";
    }
    path_ = "/proc/self/mem";
    EXPECT_EQ(file().read(data_, &fault_), eFileIOOpenError);
    EXPECT_EQ(fault_.reason, "Input/output error");
    EXPECT_EQ(fault_.systemError, EIO);
}

TEST_F(ContextFault, ReportsThatAFileIsTooLong) {
    writeBytes(path_, "[header]\n");
    fs::resize_file(path_, (std::uintmax_t{256} << 20) + 1);
    EXPECT_EQ(file().read(data_, &fault_), eFileIOOpenError);
    EXPECT_EQ(fault_.reason, "the file is longer than 256 MiB");
    EXPECT_EQ(fault_.systemError, 0);
}

TEST_F(ContextFault, ReportsThatAStreamIsNotGood) {
    std::istringstream stream("[a]\n");
    stream.setstate(std::ios::failbit);
    CSectionedFile parsed;
    EXPECT_EQ(parsed.parse(stream, &fault_), -1);
    EXPECT_EQ(fault_.reason, "the stream cannot be read");
}

TEST_F(ContextFault, ReportsWhyAFileIsNotWritten) {
    const ChannelLog log;
    EXPECT_EQ(file().write(data_, nullptr, &fault_), eFileIOSuccess);
    EXPECT_EQ(fault_.reason, "");
    path_ = directory_ / "missing" / "f";
    EXPECT_EQ(file().write(data_, nullptr, &fault_), eFileIOOpenError);
    EXPECT_EQ(fault_.reason, "No such file or directory");
    EXPECT_EQ(fault_.systemError, ENOENT);
    EXPECT_EQ(log.fatals().size(), 1U);
    EXPECT_EQ(CMachineContextIO(QString()).write(data_, nullptr, &fault_), eFileIOOpenError);
    EXPECT_EQ(fault_.reason, "not a valid file name");
    EXPECT_EQ(log.fatals().size(), 1U);
}

TEST_F(ContextFault, ReportsWhyAHeldFileIsNotReplaced) {
    const ChannelLog log;
    trv::file_replacement none((directory_ / "missing" / "f").string());
    EXPECT_EQ(file().write(data_, &none, &fault_), eFileIOOpenError);
    EXPECT_EQ(fault_.systemError, ENOENT);
    EXPECT_EQ(log.fatals().size(), 1U);
    fs::create_directory(path_);
    EXPECT_EQ(file().write(data_, nullptr, &fault_), eFileIOOpenError);
    EXPECT_NE(fault_.reason, "");
    EXPECT_NE(fault_.systemError, 0);
}
