#include <tests/common/child_process.h>
#include <tests/common/file_bytes.h>
#include <tests/common/system.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/facade/CQvFilesIO.h>

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>

namespace fs = std::filesystem;
using namespace std::string_literals;
using namespace trv::testing;

namespace {

const double identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

CTrvAssemblyData sample() {
    CTrvAssemblyData data;
    data.getRootComponent().setName("sample");
    data.getRootComponent().setGeometryFileName("f.stl");
    return data;
}

/// Provokes each way in which a file can fail, for every operation that opens one.
class FailingFile : public ::testing::Test {
protected:
    /// The status of all reads of this name. The matrix, the tags and the record do not change.
    void expectReads(const std::string& name, EFileIOStatus axis, EFileIOStatus assembly) {
        SCOPED_TRACE(name);
        std::array<double, 16> matrix = {};
        matrix.fill(7);
        const std::array<double, 16> before = matrix;
        std::array<int, 3> tags = {-7, -8, -9};
        EXPECT_EQ(files_.readAxis(wide(name), matrix.data(), tags[0], tags[1], tags[2]), axis);
        EXPECT_EQ(matrix, before);
        EXPECT_EQ(tags, (std::array<int, 3>{-7, -8, -9}));

        CTrvAssemblyData data = sample();
        EXPECT_EQ(files_.readTrvAssembly(name.c_str(), data), assembly);
        EXPECT_EQ(files_.readTrvAssembly(wide(name), data), assembly);
        EXPECT_EQ(CQvFilesIO::sReadTrvAssembly(path(name), data), assembly);
        EXPECT_TRUE(data == sample());
    }

    void expectWrites(const std::string& name, EFileIOStatus axis, EFileIOStatus assembly) {
        SCOPED_TRACE(name);
        EXPECT_EQ(files_.writeAxis(wide(name), identity, 1, 2, 3), axis);
        EXPECT_EQ(files_.writeTrvAssembly(name.c_str(), sample()), assembly);
        EXPECT_EQ(files_.writeTrvAssembly(wide(name), sample()), assembly);
        EXPECT_EQ(CQvFilesIO::sWriteTrvAssembly(path(name), sample()), assembly);
    }

    static std::wstring wide(const std::string& name) { return fs::u8path(name).wstring(); }
    std::wstring path(const std::string& name) const { return (directory_ / name).wstring(); }

    TemporaryDirectory directory_;
    CQvFilesIO files_{directory_.wide()};
};

}  // namespace

TEST_F(FailingFile, ThatIsMissingGivesTwo) {
    expectReads("missing", eFileIOOpenError, eFileIOOpenError);
    expectReads("missing/f", eFileIOOpenError, eFileIOOpenError);
    expectWrites("missing/f", eFileIOOpenError, eFileIOOpenError);
    EXPECT_TRUE(fs::is_empty(directory_.path()));
}

TEST_F(FailingFile, ThatIsADirectoryGivesTwo) {
    fs::create_directory(directory_ / "d");
    for (const char* name : {"d", "d/", ".", "..", "d/."}) {
        expectReads(name, eFileIOOpenError, eFileIOOpenError);
        expectWrites(name, eFileIOOpenError, eFileIOOpenError);
    }
    EXPECT_TRUE(fs::is_empty(directory_ / "d"));
}

TEST_F(FailingFile, InPlaceOfADirectoryGivesTwo) {
    writeBytes(directory_ / "f", "x");
    expectReads("f/g", eFileIOOpenError, eFileIOOpenError);
    expectWrites("f/g", eFileIOOpenError, eFileIOOpenError);
    EXPECT_EQ(bytesOf(directory_ / "f"), "x");
}

TEST_F(FailingFile, WithANameThatIsTooLongGivesTwo) {
    for (const std::size_t length : {300U, 5000U, 100000U}) {
        expectReads(std::string(length, 'n'), eFileIOOpenError, eFileIOOpenError);
        expectWrites(std::string(length, 'n'), eFileIOOpenError, eFileIOOpenError);
    }
    EXPECT_TRUE(fs::is_empty(directory_.path()));
}

TEST_F(FailingFile, WithAnotherContentGivesFour) {
    for (const std::string& bytes : {""s, "text\n"s, "\xFF\xFE\0"s, std::string(1 << 20, '<')}) {
        writeBytes(directory_ / "f", bytes);
        expectReads("f", eFileIOContentError, eFileIOContentError);
        EXPECT_EQ(bytesOf(directory_ / "f"), bytes);
    }
    EXPECT_EQ(files_.writeAxis(L"axis", identity, 1, 2, 3), eFileIOSuccess);
    CTrvAssemblyData data = sample();
    EXPECT_EQ(files_.readTrvAssembly("axis", data), eFileIOContentError);
    EXPECT_TRUE(data == sample());
}

TEST_F(FailingFile, WithAnotherRootGivesFive) {
    writeBytes(directory_ / "f", "<Other version=\"1\"/>");
    expectReads("f", eFileIOContentError, eFileIOStructureError);
}

TEST_F(FailingFile, IsNotChangedWhenTheRecordCannotBeWritten) {
    writeBytes(directory_ / "f", "old");
    EXPECT_EQ(files_.writeTrvAssembly("f", CTrvAssemblyData()), eFileIOContentError);
    EXPECT_EQ(files_.writeTrvAssembly(L"f"s, CTrvAssemblyData()), eFileIOContentError);
    EXPECT_EQ(CQvFilesIO::sWriteTrvAssembly(path("f"), CTrvAssemblyData()), eFileIOContentError);
    EXPECT_EQ(bytesOf(directory_ / "f"), "old");
    EXPECT_EQ(files_.writeTrvAssembly("g", CTrvAssemblyData()), eFileIOContentError);
    EXPECT_FALSE(fs::exists(directory_ / "g"));
}

TEST_F(FailingFile, ThatIsForbiddenGivesTwo) {
    if (!can_fork) GTEST_SKIP() << "needs a child process";
    writeBytes(directory_ / "closed", "x");
    fs::permissions(directory_ / "closed", fs::perms::none);
    writeBytes(directory_ / "readable", "x");
    fs::permissions(directory_ / "readable", fs::perms::owner_read | fs::perms::others_read);
    fs::create_directory(directory_ / "locked");
    writeBytes(directory_ / "locked" / "f", "x");
    fs::permissions(directory_ / "locked", fs::perms::none);
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(becomeOrdinaryUser());
        expectReads("closed", eFileIOOpenError, eFileIOOpenError);
        expectWrites("closed", eFileIOOpenError, eFileIOOpenError);
        expectReads("readable", eFileIOContentError, eFileIOContentError);
        expectWrites("readable", eFileIOOpenError, eFileIOOpenError);
        expectReads("locked/f", eFileIOOpenError, eFileIOOpenError);
        expectWrites("locked/f", eFileIOOpenError, eFileIOOpenError);
        EXPECT_FALSE(files_.isfileExists("closed"s));
        EXPECT_FALSE(files_.isfileExists(L"closed"s));
        EXPECT_FALSE(files_.isfileExists("locked/f"s));
        EXPECT_TRUE(files_.isfileExists("readable"s));
    }));
    fs::permissions(directory_ / "locked", fs::perms::owner_all);
    for (const char* name : {"closed", "readable", "locked/f"})
        EXPECT_EQ(fs::file_size(directory_ / name), 1U) << name;
}

TEST_F(FailingFile, OnAFullDeviceGivesOneForAnAxisAndThreeForAnAssembly) {
    if (!fs::exists("/dev/full")) GTEST_SKIP() << "there is no full device";
    expectWrites("/dev/full", eFileIOSuccess, eFileIOShortWrite);
}

TEST_F(FailingFile, BeyondTheSizeLimitGivesOneForAnAxisAndThreeForAnAssembly) {
    if (!can_fork) GTEST_SKIP() << "needs a child process";
    for (const std::uint64_t limit : {0U, 1U, 100U}) {
        EXPECT_TRUE(passesInChild([&] {
            ASSERT_TRUE(limitFileSize(limit));
            expectWrites("f", eFileIOSuccess, eFileIOShortWrite);
        }));
        EXPECT_EQ(fs::file_size(directory_ / "f"), limit);
    }
}

TEST_F(FailingFile, OneByteBeyondTheSizeLimitGivesThree) {
    if (!can_fork) GTEST_SKIP() << "needs a child process";
    ASSERT_EQ(files_.writeTrvAssembly("f", sample()), eFileIOSuccess);
    const std::uint64_t size = fs::file_size(directory_ / "f");
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(limitFileSize(size));
        EXPECT_EQ(files_.writeTrvAssembly("f", sample()), eFileIOSuccess);
    }));
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(limitFileSize(size - 1));
        EXPECT_EQ(files_.writeTrvAssembly("f", sample()), eFileIOShortWrite);
    }));
    EXPECT_EQ(fs::file_size(directory_ / "f"), size - 1);
}

TEST_F(FailingFile, WithoutADescriptorLeftGivesTwo) {
    if (!can_fork) GTEST_SKIP() << "needs a child process";
    writeBytes(directory_ / "f", "x");
    EXPECT_TRUE(passesInChild([&] {
        // A sanitizer opens pipes at the first use of a class.
        expectReads("missing", eFileIOOpenError, eFileIOOpenError);
        expectWrites("missing/f", eFileIOOpenError, eFileIOOpenError);
        ASSERT_TRUE(exhaustDescriptors());
        expectReads("f", eFileIOOpenError, eFileIOOpenError);
        expectWrites("f", eFileIOOpenError, eFileIOOpenError);
        EXPECT_FALSE(files_.isfileExists("f"s));
        EXPECT_FALSE(files_.copyFile(path("f"), path("g")));
    }));
    EXPECT_EQ(bytesOf(directory_ / "f"), "x");
}

TEST_F(FailingFile, WritesNothingToTheStandardStreams) {
    ::testing::internal::CaptureStdout();
    ::testing::internal::CaptureStderr();
    CTrvAssemblyData data;
    double matrix[16] = {};
    int tag = 0;
    writeBytes(directory_ / "bad", "<a><b></a>");
    EXPECT_EQ(files_.readAxis(L"missing", matrix, tag, tag, tag), eFileIOOpenError);
    EXPECT_EQ(files_.readAxis(L"bad", matrix, tag, tag, tag), eFileIOContentError);
    EXPECT_EQ(files_.readTrvAssembly("missing", data), eFileIOOpenError);
    EXPECT_EQ(files_.readTrvAssembly("bad", data), eFileIOContentError);
    EXPECT_EQ(files_.writeTrvAssembly("missing/f", sample()), eFileIOOpenError);
    EXPECT_EQ(files_.writeTrvAssembly("f", data), eFileIOContentError);
    for (const std::wstring& strange : {L"f\0g"s, L"\0"s, L""s}) {
        EXPECT_EQ(files_.writeTrvAssembly(strange, sample()), eFileIOOpenError);
        EXPECT_EQ(files_.readTrvAssembly(strange, data), eFileIOOpenError);
        EXPECT_EQ(files_.readAxis(strange, matrix, tag, tag, tag), eFileIOOpenError);
        EXPECT_EQ(files_.writeAxis(strange, identity, 1, 2, 3), eFileIOOpenError);
        EXPECT_EQ(CQvFilesIO::sWriteTrvAssembly(strange, sample()), eFileIOOpenError);
        EXPECT_EQ(CQvFilesIO::sReadTrvAssembly(strange, data), eFileIOOpenError);
        EXPECT_FALSE(files_.isfileExists(strange));
        EXPECT_FALSE(files_.copyFile(strange, path("other")));
        EXPECT_FALSE(files_.copyFile(path("other"), strange));
    }
    for (const std::wstring& directory : {L"d\0e"s, L"/d\0e"s, L"\0"s}) {
        CQvFilesIO strange(directory);
        EXPECT_EQ(strange.readTrvAssembly("f", data), eFileIOOpenError);
        EXPECT_EQ(strange.writeAxis(L"f", identity, 1, 2, 3), eFileIOOpenError);
        EXPECT_FALSE(strange.isfileExists("f"s));
        EXPECT_NE(strange.absoluteFileName(L"f"s), L"");
    }
    EXPECT_FALSE(files_.copyFile("/missing/a"s, "/missing/b"s));
    EXPECT_FALSE(files_.isfileExists(""s));
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST_F(FailingFile, IsClosedLikeAnyOther) {
    if (openDescriptors() < 0) GTEST_SKIP() << "the system does not list descriptors";
    fs::create_directory(directory_ / "d");
    writeBytes(directory_ / "bad", "<a><b></a>");
    writeBytes(directory_ / "other", "<Other/>");
    ASSERT_EQ(files_.writeTrvAssembly("f", sample()), eFileIOSuccess);
    ASSERT_EQ(files_.writeAxis(L"axis", identity, 1, 2, 3), eFileIOSuccess);
    CTrvAssemblyData data;
    double matrix[16] = {};
    int tag = 0;
    const auto before = openDescriptors();
    for (const char* name : {"f", "axis", "d", "bad", "other", "missing/f", ""}) {
        files_.readAxis(wide(name), matrix, tag, tag, tag);
        EXPECT_EQ(openDescriptors(), before) << name;
        files_.readTrvAssembly(name, data);
        EXPECT_EQ(openDescriptors(), before) << name;
        files_.isfileExists(std::string(name));
        EXPECT_EQ(openDescriptors(), before) << name;
        files_.copyFile(path(name), path("copy"));
        EXPECT_EQ(openDescriptors(), before) << name;
    }
    for (const char* name : {"written", "d", "missing/f", "", "/dev/full"}) {
        files_.writeAxis(wide(name), identity, 1, 2, 3);
        EXPECT_EQ(openDescriptors(), before) << name;
        files_.writeTrvAssembly(name, sample());
        EXPECT_EQ(openDescriptors(), before) << name;
        files_.writeTrvAssembly(name, CTrvAssemblyData());
        EXPECT_EQ(openDescriptors(), before) << name;
        files_.copyFile(path("f"), path(name));
        EXPECT_EQ(openDescriptors(), before) << name;
    }
}
