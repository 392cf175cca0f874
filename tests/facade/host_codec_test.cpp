// Hosts that set a codec for narrow text in Qt. On POSIX the names and texts of the library are
// UTF-8 nevertheless.

#include <tests/common/channel_log.h>
#include <tests/common/child_process.h>
#include <tests/common/current_directory.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/facade/CQvFilesIO.h>
#include <trvfiles/machine_context/CMachineContextData.h>

#include <QTextCodec>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <set>
#include <string>

namespace fs = std::filesystem;
using namespace std::string_literals;
using namespace trv::testing;

namespace {

const double identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

struct Name {
    std::wstring wide;
    std::string utf8;
};

// ISO-8859-1 has the first character, Shift_JIS the second and the third. Neither has the last one.
const Name names[] = {
    {L"Fr\u00E4se", "Fr\xC3\xA4se"},
    {L"\u65E5", "\xE6\x97\xA5"},
    {L"\u672C", "\xE6\x9C\xAC"},
    {L"\U0001F527", "\xF0\x9F\x94\xA7"},
};

CTrvAssemblyData assembly(const std::string& name) {
    CTrvAssemblyData data;
    data.getRootComponent().setName(name);
    data.getRootComponent().setGeometryFileName("f.stl");
    return data;
}

CMachineContextData context(const std::string& name) {
    CMachineContextData data;
    data.setName(name);
    return data;
}

class HostCodec : public ::testing::Test {
protected:
    /// Runs `work` in hosts that have set one of several codecs.
    static void underEachCodec(const std::function<void()>& work) {
        if (!can_fork) GTEST_SKIP() << "narrow text is in the code page on Windows";
        for (const char* codec : {"ISO-8859-1", "Shift_JIS", "UTF-8"}) {
            EXPECT_TRUE(passesInChild([&] {
                ASSERT_NE(QTextCodec::codecForName(codec), nullptr);
                QTextCodec::setCodecForLocale(QTextCodec::codecForName(codec));
                work();
            })) << codec;
        }
    }

    /// The names in a directory, without its subdirectories.
    static std::set<std::string> contents(const fs::path& directory) {
        std::set<std::string> found;
        for (const auto& entry : fs::directory_iterator(directory))
            found.insert(entry.path().filename().string());
        return found;
    }

    // A context that cannot be saved must not end the process.
    ChannelLog log_;
    TemporaryDirectory directory_;
};

}  // namespace

TEST_F(HostCodec, DoesNotChangeTheNamesOfMachineContexts) {
    underEachCodec([] {
        const TemporaryDirectory directory;
        CQvFilesIO files(directory.wide());
        std::set<std::string> expected;
        for (const auto& [wide, utf8] : names) {
            EXPECT_EQ(files.writeMachineContext(wide + L".mctx", context(utf8)), eFileIOSuccess);
            expected.insert(utf8 + ".mctx");
        }
        EXPECT_EQ(contents(directory.path()), expected);
        for (const auto& [wide, utf8] : names) {
            CMachineContextData data;
            EXPECT_EQ(files.readMachineContext((utf8 + ".mctx").c_str(), data), eFileIOSuccess);
            EXPECT_EQ(data.getName(), utf8);
            EXPECT_EQ(data.getNameW(), wide);
            const std::wstring path = directory.wide() + L"/" + wide + L".mctx";
            EXPECT_EQ(CQvFilesIO::sWriteMachineContext(path, context("static")), eFileIOSuccess);
            EXPECT_EQ(files.readMachineContext(wide + L".mctx", data), eFileIOSuccess);
            EXPECT_EQ(data.getName(), "static");
            EXPECT_EQ(CQvFilesIO::sReadMachineContext(path, data), eFileIOSuccess);
        }
        EXPECT_EQ(contents(directory.path()), expected);
    });
}

TEST_F(HostCodec, DoesNotChangeTheNamesOfAssemblies) {
    underEachCodec([] {
        const TemporaryDirectory directory;
        CQvFilesIO files(directory.wide());
        std::set<std::string> expected;
        for (const auto& [wide, utf8] : names) {
            EXPECT_EQ(files.writeTrvAssembly(utf8.c_str(), assembly(utf8)), eFileIOSuccess);
            expected.insert(utf8);
        }
        EXPECT_EQ(contents(directory.path()), expected);
        for (const auto& [wide, utf8] : names) {
            CTrvAssemblyData data;
            EXPECT_EQ(files.readTrvAssembly(wide, data), eFileIOSuccess);
            EXPECT_EQ(data.getRootComponent().getName(), utf8);
            const std::wstring path = directory.wide() + L"/" + wide;
            EXPECT_EQ(CQvFilesIO::sWriteTrvAssembly(path, assembly("static")), eFileIOSuccess);
            EXPECT_EQ(files.readTrvAssembly(utf8.c_str(), data), eFileIOSuccess);
            EXPECT_EQ(data.getRootComponent().getName(), "static");
            EXPECT_EQ(CQvFilesIO::sReadTrvAssembly(path, data), eFileIOSuccess);
        }
        EXPECT_EQ(contents(directory.path()), expected);
    });
}

TEST_F(HostCodec, DoesNotChangeTheNamesOfOtherFiles) {
    underEachCodec([] {
        const TemporaryDirectory directory;
        CQvFilesIO files(directory.wide());
        for (const auto& [wide, utf8] : names) {
            EXPECT_EQ(files.writeAxis(wide, identity, 1, 2, 3), eFileIOSuccess);
            EXPECT_TRUE(files.isfileExists(utf8));
            EXPECT_TRUE(files.isfileExists(wide));
            EXPECT_EQ(files.absoluteFileName(utf8), directory.text() + "/" + utf8);
            EXPECT_EQ(files.absoluteFileName(wide), directory.wide() + L"/" + wide);
            const std::string path = directory.text() + "/" + utf8;
            EXPECT_TRUE(files.copyFile(path, path + "2"));
            EXPECT_TRUE(files.copyFile(directory.wide() + L"/" + wide,
                                       directory.wide() + L"/" + wide + L"3"));
            EXPECT_EQ(bytesOf(path + "3"), bytesOf(path));
            double matrix[16];
            int tags[3] = {};
            EXPECT_EQ(files.readAxis(L"x/../" + wide + L"2", matrix, tags[0], tags[1], tags[2]),
                      eFileIOSuccess);
            EXPECT_EQ(tags[2], 3);
        }
        EXPECT_EQ(contents(directory.path()).size(), 12U);
    });
}

TEST_F(HostCodec, DoesNotChangeTheNamesOfDirectories) {
    underEachCodec([] {
        const TemporaryDirectory directory;
        for (const auto& [wide, utf8] : names) {
            fs::create_directories(directory / utf8 / utf8);
            const CurrentDirectory current(directory / utf8);
            for (CQvFilesIO files : {CQvFilesIO(""s), CQvFilesIO(utf8), CQvFilesIO(wide)}) {
                const std::string below = files.absoluteFileName(""s);
                EXPECT_EQ(below.rfind(directory.text() + "/" + utf8, 0), 0U) << below;
                EXPECT_EQ(files.writeAxis(L"a", identity, 1, 2, 3), eFileIOSuccess);
                EXPECT_TRUE(fs::exists(below + "/a"));
                EXPECT_EQ(files.writeTrvAssembly("x/..//b", assembly("b")), eFileIOSuccess);
                EXPECT_TRUE(fs::exists(below + "/b"));
                EXPECT_EQ(files.writeMachineContext("./c", context("c")), eFileIOSuccess);
                EXPECT_TRUE(fs::exists(below + "/c"));
                EXPECT_TRUE(files.isfileExists("a"s));
            }
            CQvFilesIO unclean(directory.text() + "/" + utf8 + "/x/../" + utf8);
            EXPECT_EQ(unclean.absoluteFileName("a"s),
                      directory.text() + "/" + utf8 + "/" + utf8 + "/a");
            EXPECT_TRUE(unclean.isfileExists("a"s));
        }
        EXPECT_EQ(contents(directory.path()).size(), 4U);
    });
}

TEST_F(HostCodec, DoesNotChangeTexts) {
    underEachCodec([] {
        const TemporaryDirectory directory;
        CQvFilesIO files(directory.wide());
        CMachineContextData data;
        data.setNameW(L"Fr\u00E4se \u65E5");
        data.setComment("\xC3\xA4");
        EXPECT_EQ(data.getName(), "Fr\xC3\xA4se \xE6\x97\xA5");
        EXPECT_EQ(data.getCommentW(), L"\u00E4");
        ASSERT_EQ(files.writeMachineContext("f", data), eFileIOSuccess);
        EXPECT_EQ(bytesOf(directory / "f").substr(0, 47),
                  "[header]\nversion=2\ncomment=\xC3\xA4\nname=Fr\xC3\xA4se \xE6\x97\xA5\n[");
        CTrvAssemblyData read;
        ASSERT_EQ(files.writeTrvAssembly("g", assembly("\xC3\xA4")), eFileIOSuccess);
        EXPECT_NE(bytesOf(directory / "g").find("<Component name=\"\xC3\xA4\""), std::string::npos);
        ASSERT_EQ(files.readTrvAssembly("g", read), eFileIOSuccess);
        EXPECT_EQ(read.getRootComponent().getName(), "\xC3\xA4");
    });
}

// Each of the files that Qt's conversions would name instead exists.
TEST_F(HostCodec, NamesNoFileForBytesThatAreNotUtf8) {
    underEachCodec([this] {
        for (const char* other : {"?", "\xEF\xBF\xBD", "\xE4", "\xC3\xA4", "x"})
            writeBytes(directory_.path() / other, "other");
        CQvFilesIO files(directory_.wide());
        for (const std::string& name : {"\xE4"s, "\xC3"s, "\xC0\xAF"s, "\xED\xA0\xBD\xED\xB4\xA7"s,
                                        "\xF4\x90\x80\x80"s, "\xE4/../x"s}) {
            CMachineContextData context;
            CTrvAssemblyData data = assembly("a");
            EXPECT_FALSE(files.isfileExists(name));
            EXPECT_EQ(files.readMachineContext(name.c_str(), context), eFileIOOpenError);
            EXPECT_EQ(files.writeMachineContext(name.c_str(), context), eFileIOOpenError);
            EXPECT_EQ(files.readTrvAssembly(name.c_str(), data), eFileIOOpenError);
            EXPECT_EQ(files.writeTrvAssembly(name.c_str(), data), eFileIOOpenError);
            const std::string path = directory_.text() + "/" + name;
            EXPECT_FALSE(files.copyFile(path, directory_.text() + "/copy"));
            EXPECT_FALSE(files.copyFile(directory_.text() + "/x", path));
            fs::remove(directory_ / "copy");
        }
        EXPECT_EQ(contents(directory_.path()).size(), 5U);
        for (const auto& entry : fs::directory_iterator(directory_.path()))
            EXPECT_EQ(bytesOf(entry.path()), "other");
    });
}

TEST_F(HostCodec, NamesNoFileForUnitsThatAreNoCharacters) {
    underEachCodec([this] {
        for (const char* other :
             {"?", "??", "\xEF\xBF\xBD", "\xEF\xBF\xBD\xEF\xBF\xBD", "\xF0\x9F\x94\xA7", "x"})
            writeBytes(directory_.path() / other, "other");
        CQvFilesIO files(directory_.wide());
        const auto unit = [](unsigned code) { return static_cast<wchar_t>(code); };
        for (const std::wstring& name :
             {std::wstring{unit(0xD83D)}, std::wstring{unit(0xD83D), unit(0xDD27)},
              std::wstring{unit(0x110000)}, std::wstring{unit(0xFFFFFFFF)},
              std::wstring{unit(0x7FFFFFFF)} + L"/../x"}) {
            CMachineContextData context;
            CTrvAssemblyData data = assembly("a");
            double matrix[16];
            int tag = 0;
            EXPECT_FALSE(files.isfileExists(name));
            EXPECT_EQ(files.readMachineContext(name, context), eFileIOOpenError);
            EXPECT_EQ(files.writeMachineContext(name, context), eFileIOOpenError);
            EXPECT_EQ(files.readTrvAssembly(name, data), eFileIOOpenError);
            EXPECT_EQ(files.writeTrvAssembly(name, data), eFileIOOpenError);
            EXPECT_EQ(files.readAxis(name, matrix, tag, tag, tag), eFileIOOpenError);
            EXPECT_EQ(files.writeAxis(name, identity, 1, 2, 3), eFileIOOpenError);
            const std::wstring path = directory_.wide() + L"/" + name;
            EXPECT_EQ(CQvFilesIO::sReadMachineContext(path, context), eFileIOOpenError);
            EXPECT_EQ(CQvFilesIO::sWriteMachineContext(path, context), eFileIOOpenError);
            EXPECT_EQ(CQvFilesIO::sReadTrvAssembly(path, data), eFileIOOpenError);
            EXPECT_EQ(CQvFilesIO::sWriteTrvAssembly(path, data), eFileIOOpenError);
            EXPECT_FALSE(files.copyFile(path, directory_.wide() + L"/copy"));
            EXPECT_FALSE(files.copyFile(directory_.wide() + L"/x", path));
            fs::remove(directory_ / "copy");
        }
        EXPECT_EQ(contents(directory_.path()).size(), 6U);
        for (const auto& entry : fs::directory_iterator(directory_.path()))
            EXPECT_EQ(bytesOf(entry.path()), "other");
    });
}

TEST_F(HostCodec, NamesNoFileInADirectoryWhoseNameDoesNotSurvive) {
    underEachCodec([this] {
        for (const char* other : {"?", "\xEF\xBF\xBD", "\xE4"}) {
            fs::create_directory(directory_.path() / other);
            writeBytes(directory_.path() / other / "f", "other");
        }
        const std::string bad = directory_.text() + "/\xE4";
        const std::wstring badWide = directory_.wide() + L"/" + wchar_t(0xD83D);
        const std::wstring beyond = directory_.wide() + L"/" + static_cast<wchar_t>(0x110000);
        for (const CQvFilesIO& bound :
             {CQvFilesIO(bad), CQvFilesIO(bad.c_str()), CQvFilesIO(badWide), CQvFilesIO(beyond)}) {
            CQvFilesIO files = bound;
            CTrvAssemblyData data = assembly("a");
            CMachineContextData context;
            EXPECT_FALSE(files.isfileExists("f"s));
            EXPECT_FALSE(files.isfileExists(L"f"s));
            EXPECT_EQ(files.writeAxis(L"f", identity, 1, 2, 3), eFileIOOpenError);
            EXPECT_EQ(files.writeTrvAssembly("f", data), eFileIOOpenError);
            EXPECT_EQ(files.readTrvAssembly(L"f"s, data), eFileIOOpenError);
            EXPECT_EQ(files.readMachineContext("f", context), eFileIOOpenError);
            EXPECT_EQ(files.writeMachineContext(L"f"s, context), eFileIOOpenError);
            // The directory still has a text, and an absolute name does not use it.
            EXPECT_EQ(files.absoluteFileName(L"f"s), directory_.wide() + L"/\uFFFD/f");
            EXPECT_TRUE(files.isfileExists(directory_.text() + "/?/f"));
        }
        EXPECT_EQ(CQvFilesIO(bad).absoluteFileName("f"s), directory_.text() + "/\xEF\xBF\xBD/f");
        const CurrentDirectory current(directory_.path() / "\xE4");
        CQvFilesIO relative(""s);
        EXPECT_FALSE(relative.isfileExists("f"s));
        EXPECT_EQ(relative.writeAxis(L"f", identity, 1, 2, 3), eFileIOOpenError);
        EXPECT_EQ(relative.absoluteFileName("f"s), directory_.text() + "/\xEF\xBF\xBD/f");
        for (const char* other : {"?", "\xEF\xBF\xBD", "\xE4"})
            EXPECT_EQ(bytesOf(directory_.path() / other / "f"), "other");
    });
}

TEST_F(HostCodec, FindsFilesWhoseNamesHoldAReplacementCharacter) {
    underEachCodec([] {
        const TemporaryDirectory directory;
        CQvFilesIO files(directory.wide());
        EXPECT_EQ(files.writeTrvAssembly("\xEF\xBF\xBD", assembly("a")), eFileIOSuccess);
        EXPECT_TRUE(files.isfileExists("\xEF\xBF\xBD"s));
        EXPECT_TRUE(files.isfileExists(L"\uFFFD"s));
        EXPECT_EQ(files.writeAxis(L"\uFFFD", identity, 1, 2, 3), eFileIOSuccess);
        EXPECT_EQ(contents(directory.path()), std::set<std::string>{"\xEF\xBF\xBD"});
    });
}
