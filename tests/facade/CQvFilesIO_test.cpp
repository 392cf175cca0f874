#include <tests/common/channel_log.h>
#include <tests/common/current_directory.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/facade/CQvFilesIO.h>
#include <trvfiles/machine_context/CMachineContextData.h>
#include <trvfiles/support/platform.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <type_traits>
#include <utility>

namespace fs = std::filesystem;
using namespace std::string_literals;
using namespace trv::testing;

static_assert(sizeof(CQvFilesIO) == sizeof(std::wstring));
static_assert(!std::is_polymorphic_v<CQvFilesIO>);
static_assert(!std::is_default_constructible_v<CQvFilesIO>);
static_assert(std::is_copy_constructible_v<CQvFilesIO> && std::is_copy_assignable_v<CQvFilesIO>);
static_assert(std::is_constructible_v<CQvFilesIO, const char*>);
static_assert(std::is_constructible_v<CQvFilesIO, const std::string&>);
static_assert(std::is_constructible_v<CQvFilesIO, const std::wstring&>);
static_assert(!std::is_convertible_v<const char*, CQvFilesIO>);
static_assert(!std::is_convertible_v<std::string, CQvFilesIO>);
static_assert(!std::is_convertible_v<std::wstring, CQvFilesIO>);
static_assert(std::is_same_v<std::underlying_type_t<EFileIOStatus>, std::int32_t>);
static_assert(eFileIOSuccess == 1 && eFileIOOpenError == 2 && eFileIOShortWrite == 3 &&
              eFileIOContentError == 4 && eFileIOStructureError == 5);

namespace {

const double identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

EFileIOStatus writeAxisTo(CQvFilesIO& files, const std::wstring& name) {
    return files.writeAxis(name, identity, -1, -1, -1);
}

EFileIOStatus readAxisFrom(CQvFilesIO& files, const std::wstring& name) {
    double matrix[16] = {};
    int tags[3] = {};
    return files.readAxis(name, matrix, tags[0], tags[1], tags[2]);
}

CTrvAssemblyData assembly(const std::string& fileName) {
    CTrvAssemblyData data;
    data.getRootComponent().setGeometryFileName(fileName);
    return data;
}

std::string fileNameIn(const CTrvAssemblyData& data) {
    return data.getRootComponent().getGeometryFileName();
}

bool onWindows() {
    return trv::platform::backslash_separates();
}

class Facade : public ::testing::Test {
protected:
    TemporaryDirectory directory_;
    CQvFilesIO files_{directory_.wide()};
};

}  // namespace

TEST_F(Facade, AcceptsItsDirectoryInThreeForms) {
    const std::string expected = directory_.text() + "/f";
    EXPECT_EQ(CQvFilesIO(directory_.text().c_str()).absoluteFileName("f"s), expected);
    EXPECT_EQ(CQvFilesIO(directory_.text()).absoluteFileName("f"s), expected);
    EXPECT_EQ(CQvFilesIO(directory_.wide()).absoluteFileName("f"s), expected);
}

TEST_F(Facade, IsCopiedWithItsDirectory) {
    CQvFilesIO other(L"/elsewhere"s);
    const CQvFilesIO copy = files_;
    other = copy;
    const CQvFilesIO& same = other;
    other = same;
    EXPECT_EQ(other.absoluteFileName(L"f"s), directory_.wide() + L"/f");
    EXPECT_EQ(copy.absoluteFileName(L"f"s), directory_.wide() + L"/f");
    CQvFilesIO moved = std::move(other);
    EXPECT_EQ(moved.absoluteFileName(L"f"s), directory_.wide() + L"/f");
    other = moved;
    CQvFilesIO assigned(L"elsewhere");
    assigned = std::move(moved);
    EXPECT_EQ(assigned.absoluteFileName(L"f"s), directory_.wide() + L"/f");
    EXPECT_EQ(other.absoluteFileName(L"f"s), directory_.wide() + L"/f");
}

TEST_F(Facade, KeepsItsDirectoryWhenItIsMovedFrom) {
    const TemporaryDirectory elsewhere;
    const CurrentDirectory current(elsewhere.path());
    // A long and a short text, because the standard library copies a short text instead of moving
    // it.
    fs::create_directory(elsewhere / "d");
    for (const std::wstring& directory : {directory_.wide(), L"d"s}) {
        CQvFilesIO source(directory);
        CQvFilesIO constructed(std::move(source));
        CQvFilesIO assigned(L"nowhere"s);
        // NOLINTNEXTLINE(bugprone-use-after-move): a moved-from instance keeps its directory.
        assigned = std::move(source);
        for (CQvFilesIO* files : {&source, &constructed, &assigned}) {
            EXPECT_EQ(files->absoluteFileName(L"f"s),
                      CQvFilesIO(directory).absoluteFileName(L"f"s));
            EXPECT_EQ(writeAxisTo(*files, L"f"), eFileIOSuccess);
        }
    }
    EXPECT_TRUE(fs::exists(directory_ / "f"));
    EXPECT_TRUE(fs::exists(elsewhere / "d" / "f"));
    EXPECT_FALSE(fs::exists(elsewhere / "f"));
}

TEST_F(Facade, KeepsItsDirectoryWhenItIsMovedToItself) {
    CQvFilesIO& same = files_;
    files_ = std::move(same);
    EXPECT_EQ(files_.absoluteFileName(L"f"s), directory_.wide() + L"/f");
    EXPECT_EQ(writeAxisTo(files_, L"f"), eFileIOSuccess);
    EXPECT_TRUE(fs::exists(directory_ / "f"));
}

TEST_F(Facade, GivesAbsoluteNamesAsTheyAreSpelled) {
    if (onWindows()) GTEST_SKIP() << "drive letters come first on Windows";
    const CQvFilesIO files("/d"s);
    const std::pair<const char*, const char*> names[] = {
        {"b", "/d/b"},          {"a/../b", "/d/a/../b"},
        {"../b", "/d/../b"},    {"a//b", "/d/a//b"},
        {"/abs/y", "/abs/y"},   {"/abs/../y", "/abs/../y"},
        {"//srv/x", "//srv/x"}, {"", "/d"},
        {"./b", "/d/./b"},      {"~", "/d/~"},
        {"~/b", "/d/~/b"},      {"$X/b", "/d/$X/b"},
        {"?X", "/d/?X"},        {":/x", ":/x"},
        {"a\\b", "/d/a/b"},     {"\\abs\\y", "/abs/y"},
        {"C:\\x", "/d/C:/x"},   {"b ", "/d/b "},
        {":x", "/d/:x"},        {":", "/d/:"},
        {":a/b", "/d/:a/b"},    {"::/x", "/d/::/x"},
        {"b/", "/d/b/"},        {".", "/d/."},
    };
    for (const auto& [name, expected] : names) {
        EXPECT_EQ(files.absoluteFileName(std::string(name)), expected);
        EXPECT_EQ(files.absoluteFileName(std::wstring(name, name + std::string(name).size())),
                  std::wstring(expected, expected + std::string(expected).size()));
    }
    EXPECT_EQ(CQvFilesIO("\\d\\e"s).absoluteFileName("b"s), "/d/e/b");
    EXPECT_EQ(CQvFilesIO("/d/"s).absoluteFileName("b"s), "/d/b");
    EXPECT_EQ(CQvFilesIO("/"s).absoluteFileName("b"s), "/b");
    EXPECT_EQ(CQvFilesIO("/$X"s).absoluteFileName("b"s), "/$X/b");
    EXPECT_EQ(CQvFilesIO("/d//x/../e/."s).absoluteFileName("b"s), "/d/e/b");
    EXPECT_EQ(CQvFilesIO("//srv/d"s).absoluteFileName("b"s), "/srv/d/b");
    EXPECT_EQ(CQvFilesIO(":/d"s).absoluteFileName("b"s), ":/d/b");
}

TEST_F(Facade, NeedsNoDirectoryThatExists) {
    CQvFilesIO files((directory_ / "missing").wstring());
    EXPECT_EQ(files.absoluteFileName(L"f"s), directory_.wide() + L"/missing/f");
    EXPECT_EQ(writeAxisTo(files, L"f"), eFileIOOpenError);
    EXPECT_FALSE(fs::exists(directory_ / "missing"));
    fs::create_directory(directory_ / "missing");
    EXPECT_EQ(writeAxisTo(files, L"f"), eFileIOSuccess);
}

TEST_F(Facade, CleansNamesToReadAndWriteButNotToLookUp) {
    EXPECT_EQ(writeAxisTo(files_, L"sub/../f"), eFileIOSuccess);
    EXPECT_TRUE(fs::exists(directory_ / "f"));
    EXPECT_EQ(readAxisFrom(files_, L"sub/../f"), eFileIOSuccess);
    EXPECT_EQ(files_.writeTrvAssembly("sub/../g", assembly("x")), eFileIOSuccess);
    CTrvAssemblyData data;
    EXPECT_EQ(files_.readTrvAssembly("sub/./../g", data), eFileIOSuccess);
    EXPECT_TRUE(files_.isfileExists("g"s));
    if (onWindows()) GTEST_SKIP() << "Windows cleans every path by itself";
    EXPECT_FALSE(files_.isfileExists("sub/../f"s));
    EXPECT_FALSE(files_.isfileExists(L"sub/../f"s));
    fs::create_directory(directory_ / "sub");
    EXPECT_TRUE(files_.isfileExists("sub/../f"s));
}

TEST_F(Facade, ReachesUpwardsAndDownwards) {
    fs::create_directories(directory_ / "a" / "b");
    CQvFilesIO files((directory_ / "a").wstring());
    EXPECT_EQ(writeAxisTo(files, L"../up"), eFileIOSuccess);
    EXPECT_TRUE(fs::exists(directory_ / "up"));
    EXPECT_EQ(writeAxisTo(files, L"b//down"), eFileIOSuccess);
    EXPECT_TRUE(fs::exists(directory_ / "a" / "b" / "down"));
    EXPECT_TRUE(files.isfileExists("../up"s));
    EXPECT_TRUE(files.isfileExists("b//down"s));
}

TEST_F(Facade, IgnoresItsDirectoryForAnAbsoluteName) {
    CQvFilesIO elsewhere(L"/there/is/no/such/directory"s);
    const std::wstring absolute = directory_.wide() + L"/f";
    EXPECT_EQ(writeAxisTo(elsewhere, absolute), eFileIOSuccess);
    EXPECT_EQ(readAxisFrom(elsewhere, absolute), eFileIOSuccess);
    EXPECT_EQ(readAxisFrom(elsewhere, directory_.wide() + L"/x/../f"), eFileIOSuccess);
    EXPECT_EQ(readAxisFrom(elsewhere, directory_.wide() + L"/x//../f"), eFileIOSuccess);
    EXPECT_TRUE(elsewhere.isfileExists(absolute));
    EXPECT_EQ(elsewhere.absoluteFileName(absolute), absolute);
    EXPECT_EQ(elsewhere.writeTrvAssembly((directory_.text() + "/g").c_str(), assembly("x")),
              eFileIOSuccess);
    EXPECT_TRUE(fs::exists(directory_ / "g"));
}

TEST_F(Facade, ResolvesARelativeOrEmptyDirectoryAtEachCall) {
    fs::create_directories(directory_ / "one" / "sub");
    fs::create_directories(directory_ / "two" / "sub");
    CQvFilesIO empty(""s);
    CQvFilesIO null(static_cast<const char*>(nullptr));
    CQvFilesIO relative(L"sub"s);
    for (const char* name : {"one", "two"}) {
        const CurrentDirectory current(directory_ / name);
        EXPECT_EQ(writeAxisTo(empty, L"e"), eFileIOSuccess);
        EXPECT_EQ(writeAxisTo(null, L"n"), eFileIOSuccess);
        EXPECT_EQ(writeAxisTo(relative, L"r"), eFileIOSuccess);
        EXPECT_TRUE(fs::exists(directory_ / name / "e"));
        EXPECT_TRUE(fs::exists(directory_ / name / "n"));
        EXPECT_TRUE(fs::exists(directory_ / name / "sub" / "r"));
        EXPECT_TRUE(relative.isfileExists("r"s));
        const std::string here = fs::current_path().generic_string();
        EXPECT_EQ(empty.absoluteFileName("e"s), here + "/e");
        EXPECT_EQ(null.absoluteFileName("e"s), here + "/e");
        EXPECT_EQ(relative.absoluteFileName("r"s), here + "/sub/r");
        EXPECT_EQ(empty.absoluteFileName(""s), here);
    }
}

TEST_F(Facade, UsesDollarsAndTildesLiterally) {
    for (const wchar_t* name : {L"$HOME", L"~", L"$X.axis", L"%s%n", L"a;b", L"#", L" x"}) {
        EXPECT_EQ(writeAxisTo(files_, name), eFileIOSuccess);
        EXPECT_TRUE(fs::exists(directory_.path() / name)) << fs::path(name);
        EXPECT_TRUE(files_.isfileExists(std::wstring(name))) << fs::path(name);
    }
    if (onWindows()) GTEST_SKIP() << "no file name holds a question mark";
    EXPECT_EQ(writeAxisTo(files_, L"?X"), eFileIOSuccess);
    EXPECT_TRUE(fs::exists(directory_ / "?X"));
}

TEST_F(Facade, DoesNotChangeTheNamesOfCompiledInResources) {
    CTrvAssemblyData data;
    EXPECT_EQ(files_.readTrvAssembly(":/x", data), eFileIOOpenError);
    EXPECT_EQ(readAxisFrom(files_, L":/x"), eFileIOOpenError);
    EXPECT_EQ(writeAxisTo(files_, L":/x"), eFileIOOpenError);
    EXPECT_FALSE(files_.isfileExists(":/x"s));
}

TEST_F(Facade, TreatsBackslashesAsSeparators) {
    fs::create_directory(directory_ / "a");
    CQvFilesIO files(directory_.wide() + L"\\.\\");
    EXPECT_EQ(writeAxisTo(files, L"a\\f"), eFileIOSuccess);
    EXPECT_TRUE(fs::exists(directory_ / "a" / "f"));
    EXPECT_EQ(readAxisFrom(files, L"a\\f"), eFileIOSuccess);
    EXPECT_TRUE(files.isfileExists("a\\f"s));
    EXPECT_TRUE(files.isfileExists(L"a\\f"s));
    EXPECT_EQ(files.writeTrvAssembly("a\\g", assembly("x")), eFileIOSuccess);
    EXPECT_TRUE(fs::exists(directory_ / "a" / "g"));
    CTrvAssemblyData data;
    EXPECT_EQ(files.readTrvAssembly(L"a\\g"s, data), eFileIOSuccess);
    const std::wstring path = directory_.wide() + L"\\a\\h";
    EXPECT_EQ(CQvFilesIO::sWriteTrvAssembly(path, data), eFileIOSuccess);
    EXPECT_EQ(CQvFilesIO::sReadTrvAssembly(path, data), eFileIOSuccess);
    EXPECT_TRUE(fs::exists(directory_ / "a" / "h"));
}

TEST_F(Facade, TreatsAnEmptyOrNullNameAsTheDirectoryItself) {
    CTrvAssemblyData data = assembly("x");
    const char* const null = nullptr;
    EXPECT_EQ(files_.readTrvAssembly(null, data), eFileIOOpenError);
    EXPECT_EQ(files_.writeTrvAssembly(null, data), eFileIOOpenError);
    EXPECT_EQ(files_.readTrvAssembly("", data), eFileIOOpenError);
    EXPECT_EQ(files_.writeTrvAssembly(L""s, data), eFileIOOpenError);
    EXPECT_EQ(readAxisFrom(files_, L""), eFileIOOpenError);
    EXPECT_EQ(writeAxisTo(files_, L""), eFileIOOpenError);
    EXPECT_FALSE(files_.isfileExists(""s));
    EXPECT_EQ(files_.absoluteFileName(""s), directory_.text());
    EXPECT_EQ(CQvFilesIO::sReadTrvAssembly(L"", data), eFileIOOpenError);
    EXPECT_EQ(CQvFilesIO::sWriteTrvAssembly(L"", data), eFileIOOpenError);
    EXPECT_EQ(fileNameIn(data), "x");
    EXPECT_TRUE(fs::is_directory(directory_.path()));
    EXPECT_TRUE(fs::is_empty(directory_.path()));
}

// The name of a directory that does not exist yet must not name a file.
TEST_F(Facade, CreatesNoFileIfItsDirectoryIsMissing) {
    const trv::testing::ChannelLog log;
    CQvFilesIO files((directory_ / "missing").wstring());
    const CTrvAssemblyData data = assembly("x");
    CMachineContextData context;
    const char* const null = nullptr;
    EXPECT_EQ(files.writeTrvAssembly(null, data), eFileIOOpenError);
    EXPECT_EQ(files.writeMachineContext(null, context), eFileIOOpenError);
    for (const char* name : {"", ".", "./", "sub/..", "sub\\..", "./sub/../."}) {
        const std::wstring wide(name, name + std::string(name).size());
        SCOPED_TRACE(name);
        EXPECT_EQ(files.writeTrvAssembly(name, data), eFileIOOpenError);
        EXPECT_EQ(files.writeTrvAssembly(wide, data), eFileIOOpenError);
        EXPECT_EQ(files.writeMachineContext(name, context), eFileIOOpenError);
        EXPECT_EQ(files.writeMachineContext(wide, context), eFileIOOpenError);
        EXPECT_EQ(writeAxisTo(files, wide), eFileIOOpenError);
    }
    EXPECT_TRUE(fs::is_empty(directory_.path()));
    EXPECT_TRUE(log.fatals().empty());
}

TEST_F(Facade, ReadsNothingByTheNameOfItsDirectory) {
    ASSERT_EQ(files_.writeTrvAssembly("assembly", assembly("x")), eFileIOSuccess);
    ASSERT_EQ(writeAxisTo(files_, L"axis"), eFileIOSuccess);
    const char* const null = nullptr;
    for (const char* name : {null, "", "."}) {
        CTrvAssemblyData data;
        CMachineContextData context;
        const std::string directory = directory_.text();
        EXPECT_EQ(CQvFilesIO(directory + "/assembly").readTrvAssembly(name, data),
                  eFileIOOpenError);
        EXPECT_EQ(CQvFilesIO(directory + "/axis").readMachineContext(name, context),
                  eFileIOOpenError);
    }
    CQvFilesIO axis(directory_.wide() + L"/axis");
    EXPECT_EQ(readAxisFrom(axis, L""), eFileIOOpenError);
    EXPECT_EQ(readAxisFrom(axis, L"."), eFileIOOpenError);
    EXPECT_EQ(readAxisFrom(axis, L"../axis"), eFileIOSuccess);
}

TEST_F(Facade, KeepsAByteOrderMarkAtTheBeginningOfANameAndOfATextOnPosix) {
    if (onWindows()) GTEST_SKIP() << "the code page decides";
    const std::string name = "\xEF\xBB\xBF\xEF\xBB\xBFx";
    const std::wstring wide = L"\uFEFF\uFEFFx";
    EXPECT_EQ(files_.writeTrvAssembly(name.c_str(), assembly(name)), eFileIOSuccess);
    EXPECT_TRUE(fs::exists(directory_ / name));
    CTrvAssemblyData data;
    EXPECT_EQ(files_.readTrvAssembly(wide, data), eFileIOSuccess);
    EXPECT_EQ(fileNameIn(data), name);
    EXPECT_TRUE(files_.isfileExists(name));
    EXPECT_TRUE(files_.isfileExists(wide));
    EXPECT_EQ(files_.absoluteFileName(wide), directory_.wide() + L"/" + wide);
    const CurrentDirectory current(directory_.path());
    EXPECT_TRUE(files_.copyFile(name, name + "2"));
    EXPECT_EQ(bytesOf(directory_ / (name + "2")), bytesOf(directory_ / name));
    fs::create_directory(directory_ / "\xEF\xBB\xBF");
    CQvFilesIO relative("\xEF\xBB\xBF"s);
    CMachineContextData context;
    context.setName(name);
    EXPECT_EQ(context.getNameW(), wide);
    EXPECT_EQ(relative.writeMachineContext("f", context), eFileIOSuccess);
    EXPECT_TRUE(fs::exists(directory_ / "\xEF\xBB\xBF" / "f"));
    EXPECT_NE(bytesOf(directory_ / "\xEF\xBB\xBF" / "f").find("\nname=" + name + "\n"),
              std::string::npos);
    EXPECT_EQ(relative.readMachineContext("f", context), eFileIOSuccess);
    EXPECT_EQ(context.getName(), name);
}

TEST_F(Facade, KnowsFilesByWideNamesOfEveryKind) {
    const std::pair<std::wstring, std::string> names[] = {
        {L"Fr\u00E4se", "Fr\xC3\xA4se"},
        {L"\u4E2D\u6587", "\xE4\xB8\xAD\xE6\x96\x87"},
        {L"\U0001F527 x", "\xF0\x9F\x94\xA7 x"},
    };
    for (const auto& [name, utf8] : names) {
        EXPECT_EQ(writeAxisTo(files_, name), eFileIOSuccess);
        EXPECT_TRUE(fs::exists(directory_ / utf8)) << utf8;
        EXPECT_TRUE(files_.isfileExists(name)) << utf8;
        EXPECT_EQ(readAxisFrom(files_, name), eFileIOSuccess);
        EXPECT_EQ(files_.absoluteFileName(name), directory_.wide() + L"/" + name);
        EXPECT_EQ(files_.writeTrvAssembly(name, assembly("x")), eFileIOSuccess);
        CTrvAssemblyData data;
        EXPECT_EQ(files_.readTrvAssembly(name, data), eFileIOSuccess);
        const std::wstring path = files_.absoluteFileName(name);
        EXPECT_TRUE(files_.copyFile(path, path + L"2"));
        EXPECT_TRUE(fs::exists(directory_ / (utf8 + "2"))) << utf8;
    }
    fs::create_directory(directory_ / "\xC3\xA4");
    CQvFilesIO below(directory_.wide() + L"/\u00E4");
    EXPECT_EQ(writeAxisTo(below, L"\u00F6"), eFileIOSuccess);
    EXPECT_TRUE(fs::exists(directory_ / "\xC3\xA4" / fs::u8path("\xC3\xB6")));
}

TEST_F(Facade, TreatsNarrowNamesAsUtf8OnPosix) {
    if (onWindows()) GTEST_SKIP() << "Windows has code pages";
    EXPECT_EQ(files_.writeTrvAssembly("Fr\xC3\xA4se \xF0\x9F\x94\xA7", assembly("x")),
              eFileIOSuccess);
    EXPECT_TRUE(fs::exists(directory_ / "Fr\xC3\xA4se \xF0\x9F\x94\xA7"));
    EXPECT_TRUE(files_.isfileExists(L"Fr\u00E4se \U0001F527"s));
    EXPECT_TRUE(files_.isfileExists("Fr\xC3\xA4se \xF0\x9F\x94\xA7"s));
    EXPECT_EQ(files_.absoluteFileName("Fr\xC3\xA4se"s), directory_.text() + "/Fr\xC3\xA4se");
    // In a text, a byte that is not UTF-8 becomes U+FFFD. A name with such a byte names no file.
    writeBytes(directory_.path() / "\xE4", "x");
    EXPECT_EQ(files_.absoluteFileName("\xE4"s), directory_.text() + "/\xEF\xBF\xBD");
    EXPECT_FALSE(files_.isfileExists("\xE4"s));
    CTrvAssemblyData data;
    EXPECT_EQ(files_.readTrvAssembly("\xE4", data), eFileIOOpenError);
}

TEST_F(Facade, EndsANarrowNameAtItsFirstZero) {
    writeBytes(directory_ / "f", "x");
    EXPECT_EQ(files_.absoluteFileName("f\0g"s), directory_.text() + "/f");
    EXPECT_TRUE(files_.isfileExists("f\0g"s));
    EXPECT_FALSE(files_.isfileExists("\0f"s));
    const CQvFilesIO sameDirectory(directory_.text() + "\0x"s);
    EXPECT_EQ(sameDirectory.absoluteFileName("f"s), directory_.text() + "/f");
    EXPECT_TRUE(files_.copyFile(directory_.text() + "/f\0a"s, directory_.text() + "/g\0b"s));
    EXPECT_EQ(bytesOf(directory_ / "g"), "x");
}

TEST_F(Facade, OpensNoWideNameWithAZero) {
    const std::wstring zero = L"f\0g"s;
    const std::wstring path = directory_.wide() + L"/" + zero;
    writeBytes(directory_ / "f", "x");
    CTrvAssemblyData data = assembly("x");
    EXPECT_FALSE(files_.isfileExists(zero));
    EXPECT_EQ(readAxisFrom(files_, zero), eFileIOOpenError);
    EXPECT_EQ(writeAxisTo(files_, zero), eFileIOOpenError);
    EXPECT_EQ(files_.readTrvAssembly(zero, data), eFileIOOpenError);
    EXPECT_EQ(files_.writeTrvAssembly(zero, data), eFileIOOpenError);
    EXPECT_EQ(CQvFilesIO::sReadTrvAssembly(path, data), eFileIOOpenError);
    EXPECT_EQ(CQvFilesIO::sWriteTrvAssembly(path, data), eFileIOOpenError);
    EXPECT_EQ(writeAxisTo(files_, L"f\0"s), eFileIOOpenError);
    EXPECT_EQ(writeAxisTo(files_, L"\0"s), eFileIOOpenError);
    EXPECT_FALSE(files_.copyFile(directory_.wide() + L"/other", path));
    EXPECT_FALSE(files_.copyFile(path, directory_.wide() + L"/other"));
    EXPECT_EQ(bytesOf(directory_ / "f"), "x");

    CQvFilesIO strange(directory_.wide() + L"\0x"s);
    EXPECT_EQ(writeAxisTo(strange, L"h"), eFileIOOpenError);
    EXPECT_FALSE(strange.isfileExists(L"f"s));
    EXPECT_EQ(writeAxisTo(strange, directory_.wide() + L"/h"), eFileIOSuccess);
}

TEST_F(Facade, KnowsWhichFilesCanBeRead) {
    writeBytes(directory_ / "file", "x");
    writeBytes(directory_ / "empty", "");
    fs::create_directory(directory_ / "directory");
    for (const auto& [name, expected] : {std::pair{"file", true},
                                         {"empty", true},
                                         {"directory", false},
                                         {"missing", false},
                                         {"file/x", false},
                                         {".", false},
                                         {"directory/", false}}) {
        EXPECT_EQ(files_.isfileExists(std::string(name)), expected) << name;
        EXPECT_EQ(files_.isfileExists(std::wstring(name, name + std::string(name).size())),
                  expected)
            << name;
    }
    EXPECT_FALSE(files_.isfileExists(std::string(300, 'n')));
    EXPECT_FALSE(files_.isfileExists(std::string(100000, 'n')));
}

TEST_F(Facade, ReadsWhatItWroteInEveryForm) {
    const std::wstring path = directory_.wide() + L"/f";
    CTrvAssemblyData data;
    EXPECT_EQ(files_.writeTrvAssembly("f", assembly("narrow")), eFileIOSuccess);
    EXPECT_EQ(CQvFilesIO::sReadTrvAssembly(path, data), eFileIOSuccess);
    EXPECT_EQ(fileNameIn(data), "narrow");
    EXPECT_EQ(files_.writeTrvAssembly(L"f"s, assembly("wide")), eFileIOSuccess);
    EXPECT_EQ(files_.readTrvAssembly("f", data), eFileIOSuccess);
    EXPECT_EQ(fileNameIn(data), "wide");
    EXPECT_EQ(CQvFilesIO::sWriteTrvAssembly(path, assembly("static")), eFileIOSuccess);
    EXPECT_EQ(files_.readTrvAssembly(L"f"s, data), eFileIOSuccess);
    EXPECT_EQ(fileNameIn(data), "static");
}

TEST_F(Facade, DoesNotChangeStaticPaths) {
    const CurrentDirectory current(directory_.path());
    EXPECT_EQ(CQvFilesIO::sWriteTrvAssembly(L"f", assembly("x")), eFileIOSuccess);
    EXPECT_TRUE(fs::exists(directory_ / "f"));
    CTrvAssemblyData data;
    EXPECT_EQ(CQvFilesIO::sReadTrvAssembly(L"./f", data), eFileIOSuccess);
    if (onWindows()) GTEST_SKIP() << "Windows cleans every path by itself";
    EXPECT_EQ(CQvFilesIO::sReadTrvAssembly(L"missing/../f", data), eFileIOOpenError);
    EXPECT_EQ(CQvFilesIO::sWriteTrvAssembly(L"missing/../f", data), eFileIOOpenError);
}
