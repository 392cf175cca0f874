// Each operation takes names as narrow and as wide text, and both name the same file.

#include <tests/assembly/sample_components.h>
#include <tests/common/channel_log.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <tests/machine_context/context_samples.h>
#include <trvfiles/facade/CQvFilesIO.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace fs = std::filesystem;
using namespace trv::testing;

namespace {

class NarrowAndWideNames : public ::testing::Test {
protected:
    std::string narrowPath(const std::string& name) const { return directory_.text() + '/' + name; }
    std::wstring widePath(const std::wstring& name) const {
        return directory_.wide() + L'/' + name;
    }

    TemporaryDirectory directory_;
    CQvFilesIO files_{directory_.wide()};
};

// "ä" and "ö".
const std::string narrowName = "\xC3\xA4";
const std::wstring wideName = L"\u00E4";
const std::string otherNarrowName = "\xC3\xB6";
const std::wstring otherWideName = L"\u00F6";

}  // namespace

TEST_F(NarrowAndWideNames, NameTheSameAxisFile) {
    const double matrix[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 7, 8, 9, 1};
    double read[16] = {};
    int tags[3] = {};
    EXPECT_EQ(files_.writeAxis(narrowName.c_str(), matrix, 1, 2, 3), eFileIOSuccess);
    EXPECT_EQ(files_.readAxis(wideName, read, tags[0], tags[1], tags[2]), eFileIOSuccess);
    EXPECT_EQ(read[14], 9);
    EXPECT_EQ(files_.writeAxis(otherWideName, matrix, 4, 5, 6), eFileIOSuccess);
    EXPECT_EQ(files_.readAxis(otherNarrowName.c_str(), read, tags[0], tags[1], tags[2]),
              eFileIOSuccess);
    EXPECT_EQ(tags[2], 6);
}

TEST_F(NarrowAndWideNames, AreThePathsOfAnAxisFile) {
    const double matrix[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 7, 8, 9, 1};
    double read[16] = {};
    int tags[3] = {};
    EXPECT_EQ(CQvFilesIO::sWriteAxis(narrowPath(narrowName).c_str(), matrix, 1, 2, 3),
              eFileIOSuccess);
    EXPECT_EQ(CQvFilesIO::sReadAxis(widePath(wideName), read, tags[0], tags[1], tags[2]),
              eFileIOSuccess);
    EXPECT_EQ(read[14], 9);
    EXPECT_EQ(CQvFilesIO::sWriteAxis(widePath(otherWideName), matrix, 4, 5, 6), eFileIOSuccess);
    EXPECT_EQ(
        CQvFilesIO::sReadAxis(narrowPath(otherNarrowName).c_str(), read, tags[0], tags[1], tags[2]),
        eFileIOSuccess);
    EXPECT_EQ(tags[2], 6);
}

TEST_F(NarrowAndWideNames, AreThePathsOfAMachineContext) {
    CMachineContextData data;
    EXPECT_EQ(CQvFilesIO::sWriteMachineContext(narrowPath("n").c_str(), allFields()),
              eFileIOSuccess);
    EXPECT_EQ(CQvFilesIO::sReadMachineContext(widePath(L"n"), data), eFileIOSuccess);
    EXPECT_EQ(ContextFields(data), ContextFields(allFields()));
    EXPECT_EQ(CQvFilesIO::sWriteMachineContext(widePath(L"w"), firstOperation()), eFileIOSuccess);
    EXPECT_EQ(CQvFilesIO::sReadMachineContext(narrowPath("w").c_str(), data), eFileIOSuccess);
    EXPECT_EQ(data.getMachineName(), "MILL5");
}

TEST_F(NarrowAndWideNames, AreThePathsOfAnAssembly) {
    CTrvAssemblyData data;
    const CTrvAssemblyData one = assemblyOf(leaf("a", "a.stl"));
    const CTrvAssemblyData other = assemblyOf(leaf("b", "b.stl"));
    EXPECT_EQ(CQvFilesIO::sWriteTrvAssembly(narrowPath(narrowName).c_str(), one), eFileIOSuccess);
    EXPECT_EQ(CQvFilesIO::sReadTrvAssembly(widePath(wideName), data), eFileIOSuccess);
    EXPECT_TRUE(data == one);
    EXPECT_EQ(CQvFilesIO::sWriteTrvAssembly(widePath(otherWideName), other), eFileIOSuccess);
    EXPECT_EQ(CQvFilesIO::sReadTrvAssembly(narrowPath(otherNarrowName).c_str(), data),
              eFileIOSuccess);
    EXPECT_TRUE(data == other);
}

TEST_F(NarrowAndWideNames, MayBeNull) {
    const ChannelLog log;
    const char* const none = nullptr;
    double matrix[16] = {};
    int tag = 0;
    CMachineContextData context;
    CTrvAssemblyData assembly = assemblyOf(leaf("a", "a.stl"));
    EXPECT_EQ(files_.readAxis(none, matrix, tag, tag, tag), eFileIOOpenError);
    EXPECT_EQ(files_.writeAxis(none, matrix, 1, 2, 3), eFileIOOpenError);
    EXPECT_EQ(CQvFilesIO::sReadAxis(none, matrix, tag, tag, tag), eFileIOOpenError);
    EXPECT_EQ(CQvFilesIO::sWriteAxis(none, matrix, 1, 2, 3), eFileIOOpenError);
    EXPECT_EQ(CQvFilesIO::sReadMachineContext(none, context), eFileIOOpenError);
    EXPECT_EQ(CQvFilesIO::sWriteMachineContext(none, context), eFileIOOpenError);
    EXPECT_EQ(CQvFilesIO::sReadTrvAssembly(none, assembly), eFileIOOpenError);
    EXPECT_EQ(CQvFilesIO::sWriteTrvAssembly(none, assembly), eFileIOOpenError);
}

// The static forms clean nothing, and do not look into the directory.
TEST_F(NarrowAndWideNames, AreUsedAsTheyAreByTheStaticForms) {
    fs::create_directory(directory_ / "sub");
    const double matrix[16] = {};
    double read[16] = {};
    int tag = 0;
    EXPECT_EQ(CQvFilesIO::sWriteAxis(narrowPath("sub/../f").c_str(), matrix, 1, 2, 3),
              eFileIOSuccess);
    EXPECT_EQ(files_.readAxis("gone/../f", read, tag, tag, tag), eFileIOSuccess);
}
