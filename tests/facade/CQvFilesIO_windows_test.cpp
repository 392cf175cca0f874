// The facade with drives, servers, text mode and open handles on Windows.

#include <tests/common/current_directory.h>
#include <tests/common/file_bytes.h>
#include <tests/common/held_file_windows.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/facade/CQvFilesIO.h>
#include <trvfiles/machine_context/CMachineContextData.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

using namespace std::string_literals;
using namespace trv::testing;

namespace {

const double identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

class FacadeOnWindows : public ::testing::Test {
protected:
    EFileIOStatus writeAxis(const std::wstring& name) {
        return files_.writeAxis(name, identity, 1, 2, 3);
    }
    EFileIOStatus readAxis(const std::wstring& name) {
        double matrix[16];
        int tag = 0;
        return files_.readAxis(name, matrix, tag, tag, tag);
    }
    static CTrvAssemblyData assembly() {
        CTrvAssemblyData data;
        data.getRootComponent().setGeometryFileName("f.stl");
        return data;
    }

    TemporaryDirectory directory_;
    CQvFilesIO files_{directory_.wide()};
};

}  // namespace

TEST_F(FacadeOnWindows, GivesAbsoluteNamesOnDrivesAndServers) {
    const CQvFilesIO drive("C:/d"s);
    EXPECT_EQ(drive.absoluteFileName("b"s), "C:/d/b");
    EXPECT_EQ(drive.absoluteFileName("a/../b"s), "C:/d/a/../b");
    EXPECT_EQ(drive.absoluteFileName("D:/y"s), "D:/y");
    EXPECT_EQ(drive.absoluteFileName(L"D:/y"s), L"D:/y");
    EXPECT_EQ(drive.absoluteFileName("//server/share/y"s), "//server/share/y");
    EXPECT_EQ(drive.absoluteFileName("$X ~"s), "C:/d/$X ~");
    EXPECT_EQ(CQvFilesIO("C:\\d\\e"s).absoluteFileName("b"s), "C:/d/e/b");
    EXPECT_EQ(CQvFilesIO("//server/share"s).absoluteFileName("b"s), "//server/share/b");
    EXPECT_EQ(CQvFilesIO("\\\\server\\share\\d"s).absoluteFileName("b"s), "//server/share/d/b");
    EXPECT_EQ(CQvFilesIO("C:\\"s).absoluteFileName("b"s), "C:/b");
}

TEST_F(FacadeOnWindows, OpensAnAbsoluteNameOnAnotherDrive) {
    ASSERT_EQ(writeAxis(L"a.dat"), eFileIOSuccess);
    const std::string here = directory_.text();
    CQvFilesIO other(here.substr(0, 2) == "Z:" ? "C:/windows"s : "Z:/"s);
    double matrix[16];
    int tags[3] = {};
    EXPECT_EQ(other.readAxis(directory_.wide() + L"/a.dat", matrix, tags[0], tags[1], tags[2]),
              eFileIOSuccess);
    EXPECT_EQ(tags[2], 3);
    EXPECT_TRUE(other.isfileExists(here + "\\A.DAT"));
}

// The current drive is not that of the directory, and has no directory of that name.
TEST_F(FacadeOnWindows, ResolvesANameWithoutADriveOnTheDriveOfItsDirectory) {
    const std::string here = directory_.text();
    const std::wstring name = directory_.wide().substr(2) + L"/a.dat";
    const std::string narrow(name.begin(), name.end());
    const CurrentDirectory current(here.substr(0, 2) == "Z:" ? "C:/" : "Z:/");
    double matrix[16];
    int tags[3] = {};
    ASSERT_EQ(writeAxis(name), eFileIOSuccess);
    EXPECT_TRUE(std::filesystem::exists(directory_ / "a.dat"));
    EXPECT_EQ(files_.readAxis(name, matrix, tags[0], tags[1], tags[2]), eFileIOSuccess);
    EXPECT_EQ(tags[2], 3);
    EXPECT_TRUE(files_.isfileExists(narrow));
    EXPECT_TRUE(files_.isfileExists(name));
    EXPECT_EQ(files_.absoluteFileName(narrow), here + "/a.dat");

    std::wstring backslashes = name;
    std::replace(backslashes.begin(), backslashes.end(), L'/', L'\\');
    EXPECT_EQ(readAxis(backslashes), eFileIOSuccess);
    EXPECT_TRUE(files_.isfileExists(backslashes));
    EXPECT_EQ(files_.writeTrvAssembly(backslashes, assembly()), eFileIOSuccess);
    CTrvAssemblyData data;
    EXPECT_EQ(files_.readTrvAssembly(narrow.c_str(), data), eFileIOSuccess);
    EXPECT_EQ(data, assembly());
    CMachineContextData context;
    EXPECT_EQ(files_.writeMachineContext(narrow.c_str(), context), eFileIOSuccess);
    EXPECT_EQ(files_.readMachineContext(backslashes, context), eFileIOSuccess);
    EXPECT_EQ(bytesOf(directory_ / "a.dat").substr(0, 8), "[header]");
}

TEST_F(FacadeOnWindows, ResolvesANameWithoutADriveOnTheShareOfItsDirectory) {
    ASSERT_EQ(writeAxis(L"a.dat"), eFileIOSuccess);
    CQvFilesIO share("//trvfiles-no-server/share/d"s);
    const std::wstring name = directory_.wide().substr(2) + L"/a.dat";
    const CurrentDirectory current(directory_.path());
    double matrix[16];
    int tag = 0;
    EXPECT_EQ(share.readAxis(name, matrix, tag, tag, tag), eFileIOOpenError);
    EXPECT_FALSE(share.isfileExists(name));
    EXPECT_EQ(share.absoluteFileName(L"/y"s), L"//trvfiles-no-server/share/y");
}

TEST_F(FacadeOnWindows, ResolvesANameWithoutADriveOnTheCurrentDriveForARelativeDirectory) {
    const CurrentDirectory current(directory_.path());
    CQvFilesIO relative(L"sub"s);
    const std::wstring name = directory_.wide().substr(2) + L"/b.dat";
    EXPECT_EQ(relative.writeAxis(name, identity, 1, 2, 3), eFileIOSuccess);
    EXPECT_TRUE(std::filesystem::exists(directory_ / "b.dat"));
    EXPECT_TRUE(relative.isfileExists(name));
}

TEST_F(FacadeOnWindows, PrintsNothingForADirectoryThatIsOnlyAServer) {
    ::testing::internal::CaptureStderr();
    CQvFilesIO server("//trvfiles-no-server"s);
    EXPECT_EQ(server.writeAxis(L"/trvfiles-no-directory/f", identity, 1, 2, 3), eFileIOOpenError);
    EXPECT_FALSE(server.isfileExists("/trvfiles-no-directory/f"s));
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST_F(FacadeOnWindows, AcceptsBothSeparators) {
    std::filesystem::create_directory(directory_ / "sub");
    EXPECT_EQ(writeAxis(L"sub\\a.dat"), eFileIOSuccess);
    EXPECT_EQ(readAxis(L"sub/a.dat"), eFileIOSuccess);
    EXPECT_TRUE(files_.isfileExists("SUB\\a.dat"s));
    EXPECT_TRUE(files_.copyFile(directory_.text() + "\\sub\\a.dat", directory_.text() + "/b.dat"));
    EXPECT_EQ(bytesOf(directory_ / "b.dat"), bytesOf(directory_ / "sub" / "a.dat"));
}

TEST_F(FacadeOnWindows, FindsNothingOnAMissingServer) {
    EXPECT_EQ(readAxis(L"\\\\trvfiles-no-server\\share\\a.dat"), eFileIOOpenError);
    EXPECT_EQ(writeAxis(L"//trvfiles-no-server/share/a.dat"), eFileIOOpenError);
    EXPECT_FALSE(files_.isfileExists("//trvfiles-no-server/share/a.dat"s));
}

TEST_F(FacadeOnWindows, WritesAxisFilesWithCrLfAndAssembliesWithLf) {
    ASSERT_EQ(writeAxis(L"a.dat"), eFileIOSuccess);
    const std::string rows =
        "      1.000000      0.000000      0.000000      0.000000\r\n"
        "      0.000000      1.000000      0.000000      0.000000\r\n"
        "      0.000000      0.000000      1.000000      0.000000\r\n"
        "      0.000000      0.000000      0.000000      1.000000\r\n";
    EXPECT_EQ(bytesOf(directory_ / "a.dat"), "      0\r\n" + rows + rows + "  #1 2 3\r\n");
    ASSERT_EQ(files_.writeTrvAssembly("a.xml", assembly()), eFileIOSuccess);
    EXPECT_EQ(bytesOf(directory_ / "a.xml").find('\r'), std::string::npos);
    EXPECT_NE(bytesOf(directory_ / "a.xml").find("\n   <Attributs>\n"), std::string::npos);
}

TEST_F(FacadeOnWindows, CopiesEveryByte) {
    const std::string bytes =
        "a\nb\r\nc\rd\x1A"
        "e\0\xFF"s;
    writeBytes(directory_ / "a", bytes);
    EXPECT_TRUE(files_.copyFile(directory_.text() + "/a", directory_.text() + "/b"));
    EXPECT_EQ(bytesOf(directory_ / "b"), bytes);
}

TEST_F(FacadeOnWindows, EndsAnAxisFileAtCtrlZ) {
    const std::string rows = "1 0 0 0\r\n0 1 0 0\r\n0 0 1 0\r\n0 0 0 1\r\n";
    writeBytes(directory_ / "behind", "0\r\n" + rows + rows + "\x1A#9 9 9\r\n");
    double matrix[16];
    int tags[3] = {-1, -1, -1};
    EXPECT_EQ(files_.readAxis(L"behind", matrix, tags[0], tags[1], tags[2]), eFileIOSuccess);
    EXPECT_EQ(tags[0], -1);
    writeBytes(directory_ / "inside", "0\r\n1 0 0 0\r\n0 1 0 0\r\n\x1A" + rows);
    EXPECT_EQ(readAxis(L"inside"), eFileIOContentError);
}

TEST_F(FacadeOnWindows, DoesNotDamageAFileThatIsKeptOpen) {
    for (const char* name : {"a.dat", "a.xml"})
        writeBytes(directory_ / name, "old");
    for (const DWORD sharing : {0, FILE_SHARE_READ}) {
        const HeldFile axis(directory_ / "a.dat", sharing);
        const HeldFile xml(directory_ / "a.xml", sharing);
        ASSERT_TRUE(axis.isOpen() && xml.isOpen());
        EXPECT_EQ(writeAxis(L"a.dat"), eFileIOOpenError);
        EXPECT_EQ(files_.writeTrvAssembly("a.xml", assembly()), eFileIOOpenError);
        EXPECT_FALSE(files_.copyFile(directory_.text() + "/a.xml", directory_.text() + "/a.dat"));
    }
    EXPECT_EQ(bytesOf(directory_ / "a.dat"), "old");
    EXPECT_EQ(bytesOf(directory_ / "a.xml"), "old");
}

TEST_F(FacadeOnWindows, DoesNotReadWhatAnotherHandleKeepsToItself) {
    ASSERT_EQ(writeAxis(L"a.dat"), eFileIOSuccess);
    {
        const HeldFile held(directory_ / "a.dat", 0);
        EXPECT_EQ(readAxis(L"a.dat"), eFileIOOpenError);
        EXPECT_FALSE(files_.isfileExists("a.dat"s));
    }
    EXPECT_EQ(readAxis(L"a.dat"), eFileIOSuccess);
}

TEST_F(FacadeOnWindows, ClosesEveryFileSoThatItCanBeRemoved) {
    CTrvAssemblyData data;
    writeBytes(directory_ / "bad", "<a><b></a>");
    ASSERT_EQ(writeAxis(L"a.dat"), eFileIOSuccess);
    ASSERT_EQ(files_.writeTrvAssembly("a.xml", assembly()), eFileIOSuccess);
    readAxis(L"a.dat");
    readAxis(L"bad");
    for (const char* name : {"a.xml", "a.dat", "bad"}) {
        files_.readTrvAssembly(name, data);
        EXPECT_TRUE(files_.isfileExists(std::string(name)));
        EXPECT_TRUE(files_.copyFile(directory_.text() + "/" + name, directory_.text() + "/copy"));
    }
    for (const char* name : {"a.xml", "a.dat", "bad", "copy"})
        EXPECT_NE(::DeleteFileW((directory_ / name).c_str()), 0) << name;
}
