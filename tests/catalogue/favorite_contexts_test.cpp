#include <tests/common/child_process.h>
#include <tests/common/current_directory.h>
#include <tests/common/file_bytes.h>
#include <tests/common/system.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/catalogue/CMachineContextUtils.h>
#include <trvfiles/support/platform.h>

#include <QString>
#include <QTextCodec>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

namespace fs = std::filesystem;
using namespace std::string_literals;
using namespace trv::testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAre;

namespace {

bool onWindows() {
    return trv::platform::backslash_separates();
}

/// The paths that the catalogue returns, in UTF-8.
std::vector<std::string> listed(const std::wstring& directory) {
    std::vector<std::string> paths;
    for (const std::wstring& path : CMachineContextUtils::sGetFavoriteMachineContext(directory))
        paths.push_back(QString::fromStdWString(path).toStdString());
    return paths;
}

class FavoriteContexts : public ::testing::Test {
protected:
    void add(const std::string& name) {
        fs::create_directories((directory_ / name).parent_path());
        writeBytes(directory_ / name, "x");
    }

    void makeDirectory(const std::string& name) { fs::create_directories(directory_ / name); }

    /// Whether the link was created. Not every user of every system has the right to create links.
    bool link(const std::string& name, const fs::path& target) {
        std::error_code error;
        fs::create_directory_symlink(target, directory_ / name, error);
        return !error;
    }

    /// The contexts below the directory, with paths relative to it.
    std::vector<std::string> found() const {
        std::vector<std::string> names;
        const std::string start = directory_.path().generic_u8string() + "/";
        for (const std::string& path : listed(directory_.wide())) {
            EXPECT_THAT(path, ::testing::StartsWith(start));
            names.push_back(path.substr(start.size()));
        }
        return names;
    }

    TemporaryDirectory directory_;
};

}  // namespace

TEST_F(FavoriteContexts, AreNamedAfterTheirDirectories) {
    add("A/A.mctx");
    add("B/B.mctx");
    EXPECT_THAT(found(), ElementsAre("A/A.mctx", "B/B.mctx"));
}

TEST_F(FavoriteContexts, EndTheSearchInTheirDirectories) {
    add("A/A.mctx");
    add("B/B.mctx");
    add("B/D/D.mctx");
    EXPECT_THAT(found(), ElementsAre("A/A.mctx", "B/B.mctx"));
}

TEST_F(FavoriteContexts, AreSearchedForFurtherDown) {
    add("X/Y/Y.mctx");
    add("X/Z/W/W.mctx");
    add("X/Z/V/other.mctx");
    add("Y/Y.mctx");
    EXPECT_THAT(found(), ElementsAre("X/Y/Y.mctx", "X/Z/W/W.mctx", "Y/Y.mctx"));
}

TEST_F(FavoriteContexts, AreNoOtherFiles) {
    add("A.mctx");
    add("X/Y.mctx");
    add("X/X");
    add("X/X.mctx.messages.tmp");
    add("X/XX.mctx");
    add("X/.mctx");
    add("plain");
    const std::string own = directory_.path().filename().u8string();
    add(own + ".mctx");
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(FavoriteContexts, HaveExactlyTheNamesOfTheirDirectories) {
    if (onWindows()) GTEST_SKIP() << "Windows ignores case in file names";
    add("X/x.mctx");
    add("Y/Y.MCTX");
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(FavoriteContexts, ComeByNameWithoutRegardToCase) {
    for (const char* name : {"b", "A", "C", "10", "9", "\xC3\xA4", "a.b", "a_", "_"})
        add(name + "/"s + name + ".mctx");
    EXPECT_THAT(found(),
                ElementsAre("10/10.mctx", "9/9.mctx", "_/_.mctx", "A/A.mctx", "a.b/a.b.mctx",
                            "a_/a_.mctx", "b/b.mctx", "C/C.mctx", "\xC3\xA4/\xC3\xA4.mctx"));
}

TEST_F(FavoriteContexts, OfADirectoryComeBeforeThoseOfTheNextOne) {
    add("b/Z/Z.mctx");
    add("b/a/a.mctx");
    add("C/C.mctx");
    add("A/m/n/n.mctx");
    EXPECT_THAT(found(), ElementsAre("A/m/n/n.mctx", "b/a/a.mctx", "b/Z/Z.mctx", "C/C.mctx"));
}

TEST_F(FavoriteContexts, OfNamesThatDifferInCaseAreAllListed) {
    if (onWindows()) GTEST_SKIP() << "Windows ignores case in file names";
    add("a/a.mctx");
    add("A/A.mctx");
    EXPECT_THAT(found(), UnorderedElementsAre("a/a.mctx", "A/A.mctx"));
}

TEST_F(FavoriteContexts, OfNamesThatDifferInCaseComeByName) {
    if (onWindows()) GTEST_SKIP() << "Windows ignores case in file names";
    for (const char* name : {"ab", "aB", "Ab", "AB", "aa", "AC", "\xC3\xA4", "\xC3\x84"})
        add(name + "/"s + name + ".mctx");
    EXPECT_THAT(found(),
                ElementsAre("aa/aa.mctx", "AB/AB.mctx", "Ab/Ab.mctx", "aB/aB.mctx", "ab/ab.mctx",
                            "AC/AC.mctx", "\xC3\x84/\xC3\x84.mctx", "\xC3\xA4/\xC3\xA4.mctx"));
}

TEST_F(FavoriteContexts, AreNotSearchedForInHiddenDirectories) {
    if (onWindows()) GTEST_SKIP() << "a leading dot hides nothing on Windows";
    add(".A/.A.mctx");
    add("B/.C/.C.mctx");
    add("B/.C/D/D.mctx");
    add("..E/..E.mctx");
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(FavoriteContexts, MayBeInAHiddenDirectoryThatIsTheArgument) {
    add(".fav/A/A.mctx");
    EXPECT_THAT(listed(directory_.wide() + L"/.fav"),
                ElementsAre(directory_.path().generic_u8string() + "/.fav/A/A.mctx"));
}

TEST_F(FavoriteContexts, AreNoDirectories) {
    makeDirectory("A/A.mctx");
    add("A/B/B.mctx");
    add("C/C.mctx/C.mctx.mctx");
    EXPECT_THAT(found(), ElementsAre("A/B/B.mctx", "C/C.mctx/C.mctx.mctx"));
}

TEST_F(FavoriteContexts, MayHaveAnyCharactersInTheirNames) {
    const std::vector<std::string> names = {"50%d%s",
                                            "[a]",
                                            "[MACHINE_POSITION_1]",
                                            "a b",
                                            "$X",
                                            "A.mctx",
                                            "\xC3\xA4\xE4\xB8\xAD\xF0\x9F\x94\xA7"};
    std::vector<std::string> files;
    for (const std::string& name : names) {
        files.push_back(name + "/" + name + ".mctx");
        add(files.back());
    }
    EXPECT_THAT(found(), ::testing::UnorderedElementsAreArray(files));
}

TEST_F(FavoriteContexts, MayHaveBlanksAtBothEndsOfTheirNames) {
    if (onWindows()) GTEST_SKIP() << "Windows drops blanks at the end of names";
    add(" a /\x20"
        "a .mctx");
    add("#b\n/#b\n.mctx");
    EXPECT_THAT(found(), ElementsAre(" a / a .mctx", "#b\n/#b\n.mctx"));
}

TEST_F(FavoriteContexts, AreFoundBesideNamesThatAreNoText) {
    if (onWindows()) GTEST_SKIP() << "Windows has no such names";
    fs::create_directory(directory_.path() / "\xE4\xFF");
    writeBytes(directory_.path() / "\xE4\xFF" / "\xE4\xFF.mctx", "x");
    add("A/A.mctx");
    EXPECT_THAT(found(), ::testing::Contains("A/A.mctx"));
}

TEST_F(FavoriteContexts, HaveTheSameNamesUnderEveryCodecOfTheHost) {
    if (!can_fork) GTEST_SKIP() << "narrow text is in the code page on Windows";
    add("\xC3\xA4/\xC3\xA4.mctx");
    add("\xC3\xB6/\xE6\x97\xA5/\xE6\x97\xA5.mctx");
    const TemporaryDirectory elsewhere;
    fs::create_directories(elsewhere / "\xC3\xBC/k");
    writeBytes(elsewhere / "\xC3\xBC/k/k.mctx", "x");
    fs::create_directory_symlink(elsewhere / "\xC3\xBC", directory_ / "z");
    fs::create_directory_symlink(elsewhere / "\xC3\xBC", elsewhere / "\xC3\xBC/back");
    for (const char* codec : {"ISO-8859-1", "Shift_JIS", "UTF-8"}) {
        EXPECT_TRUE(passesInChild([&] {
            ASSERT_NE(QTextCodec::codecForName(codec), nullptr);
            QTextCodec::setCodecForLocale(QTextCodec::codecForName(codec));
            EXPECT_THAT(found(), ElementsAre("z/k/k.mctx", "\xC3\xA4/\xC3\xA4.mctx",
                                             "\xC3\xB6/\xE6\x97\xA5/\xE6\x97\xA5.mctx"));
            EXPECT_THAT(
                listed(directory_.wide() + L"/\u00F6"),
                ElementsAre(directory_.text() + "/\xC3\xB6/\xE6\x97\xA5/\xE6\x97\xA5.mctx"));
        })) << codec;
    }
}

// Such a path would name another file or no file.
TEST_F(FavoriteContexts, AreNotSearchedBelowNamesThatAPathCannotHold) {
    if (onWindows()) GTEST_SKIP() << "Windows has no such names";
    for (const char* name : {"\xE4", "\xEF\xBF\xBD\xFF", "a\\b"}) {
        fs::create_directories(directory_.path() / name / "K");
        writeBytes(directory_.path() / name / "K/K.mctx", "x");
    }
    add("a/b/K/K.mctx");
    add("\xEF\xBF\xBD/K/K.mctx");
    EXPECT_THAT(found(), ElementsAre("a/b/K/K.mctx", "\xEF\xBF\xBD/K/K.mctx"));
}

TEST_F(FavoriteContexts, MayBeInDirectoriesWhoseNamesAreEqualAsText) {
    if (onWindows()) GTEST_SKIP() << "Windows has no such names";
    const TemporaryDirectory elsewhere;
    for (const char* name : {"\xE4", "\xE5"}) {
        fs::create_directories(elsewhere.path() / name / "K");
        writeBytes(elsewhere.path() / name / "K/K.mctx", "x");
    }
    fs::create_directories(elsewhere.path() / "\xE5" / "L");
    writeBytes(elsewhere.path() / "\xE5" / "L/L.mctx", "x");
    ASSERT_TRUE(link("x", elsewhere.path() / "\xE4"));
    ASSERT_TRUE(link("y", elsewhere.path() / "\xE5"));
    EXPECT_THAT(found(), ElementsAre("x/K/K.mctx", "y/K/K.mctx", "y/L/L.mctx"));
}

TEST_F(FavoriteContexts, AreNotSearchedForInResources) {
    const CurrentDirectory here(directory_.path());
    if (!onWindows()) add(":/fav/A/A.mctx");
    EXPECT_THAT(listed(L":/fav"), IsEmpty());
    EXPECT_THAT(listed(L":/"), IsEmpty());
    EXPECT_THAT(listed(L":\\fav"), IsEmpty());
}

// QDir::cd() takes such a name as a resource that is compiled into the host.
TEST_F(FavoriteContexts, AreNotSearchedBelowNamesThatBeginWithAColon) {
    if (onWindows()) GTEST_SKIP() << "Windows has no such names";
    add(":x/:x.mctx");
    add(":/:.mctx");
    add(":y/A/A.mctx");
    add("a:b/a:b.mctx");
    EXPECT_THAT(found(), ElementsAre("a:b/a:b.mctx"));
}

TEST_F(FavoriteContexts, MayBeBelowLinksToDirectories) {
    const TemporaryDirectory elsewhere;
    if (!link("L", elsewhere.path())) GTEST_SKIP() << "links cannot be made here";
    add("A/A.mctx");
    EXPECT_THAT(found(), ElementsAre("A/A.mctx"));
    fs::create_directory(elsewhere / "S");
    writeBytes(elsewhere / "S/S.mctx", "x");
    EXPECT_THAT(found(), ElementsAre("A/A.mctx", "L/S/S.mctx"));
    writeBytes(elsewhere / "L.mctx", "x");
    EXPECT_THAT(found(), ElementsAre("A/A.mctx", "L/L.mctx"));
}

TEST_F(FavoriteContexts, MayBeLinksToFiles) {
    add("target");
    makeDirectory("A");
    makeDirectory("B/C");
    std::error_code error;
    fs::create_symlink(directory_ / "target", directory_ / "A/A.mctx", error);
    if (error) GTEST_SKIP() << "links cannot be made here";
    fs::create_symlink(directory_ / "missing", directory_ / "B/B.mctx");
    fs::create_directory_symlink(directory_ / "B", directory_ / "B/C/C.mctx");
    EXPECT_THAT(found(), ElementsAre("A/A.mctx"));
}

TEST_F(FavoriteContexts, AreFoundBesideLinksToMissingFiles) {
    if (!link("missing", directory_ / "none")) GTEST_SKIP() << "links cannot be made here";
    link("itself", "itself");
    link("one", "other");
    link("other", "one");
    add("plain");
    link("file", directory_ / "plain");
    add("A/A.mctx");
    EXPECT_THAT(found(), ElementsAre("A/A.mctx"));
}

TEST_F(FavoriteContexts, AreFoundOnceIfLinksLeadToAParent) {
    add("A/B/C/C.mctx");
    if (!link("A/B/up", directory_ / "A")) GTEST_SKIP() << "links cannot be made here";
    link("A/B/top", directory_.path());
    link("A/self", ".");
    link("A/parent", "..");
    EXPECT_THAT(found(), ElementsAre("A/B/C/C.mctx"));
}

// A path may contain 40 links. So a walk that follows two links at each step would not end in
// practice.
TEST_F(FavoriteContexts, AreFoundIfTwoLinksLeadBack) {
    add("C/C.mctx");
    if (!link("a", directory_.path())) GTEST_SKIP() << "links cannot be made here";
    link("b", directory_.path());
    link("d", ".");
    EXPECT_THAT(found(), ElementsAre("C/C.mctx"));
}

TEST_F(FavoriteContexts, AreFoundOnBothPathsIfDirectoriesLinkToEachOther) {
    add("A/K/K.mctx");
    makeDirectory("B");
    if (!link("A/toB", directory_ / "B")) GTEST_SKIP() << "links cannot be made here";
    link("B/toA", directory_ / "A");
    EXPECT_THAT(found(), ElementsAre("A/K/K.mctx", "B/toA/K/K.mctx"));
}

TEST_F(FavoriteContexts, AreFoundOnceBelowALinkToADirectoryWithALoop) {
    const TemporaryDirectory elsewhere;
    if (!link("L", elsewhere.path())) GTEST_SKIP() << "links cannot be made here";
    fs::create_directories(elsewhere / "S/K");
    writeBytes(elsewhere / "S/K/K.mctx", "x");
    fs::create_directory_symlink(elsewhere / "S", elsewhere / "S/back");
    fs::create_directory_symlink(elsewhere.path(), elsewhere / "S/top");
    EXPECT_THAT(found(), ElementsAre("L/S/K/K.mctx"));
    const std::string link = directory_.path().generic_u8string() + "/L";
    EXPECT_THAT(listed(directory_.wide() + L"/L"), ElementsAre(link + "/S/K/K.mctx"));
}

TEST_F(FavoriteContexts, MayHaveTheNameOfALinkToAParent) {
    add("A/up.mctx");
    if (!link("A/up", directory_ / "A")) GTEST_SKIP() << "links cannot be made here";
    EXPECT_THAT(found(), ElementsAre("A/up/up.mctx"));
}

TEST_F(FavoriteContexts, AreFoundBesideDirectoriesThatTheUserMayNotRead) {
    if (!can_fork) GTEST_SKIP() << "needs a child process";
    add("A/A.mctx");
    add("closed/closed.mctx");
    add("closed/K/K.mctx");
    add("entered/entered.mctx");
    add("seen/seen.mctx");
    add("Z/locked/L/L.mctx");
    add("Z/Z2/Z2.mctx");
    using fs::perms;
    const perms enter = perms::others_exec;
    const perms read = perms::others_read;
    fs::permissions(directory_ / "closed", perms::owner_all);
    fs::permissions(directory_ / "entered", perms::owner_all | enter);
    fs::permissions(directory_ / "seen", perms::owner_all | read);
    fs::permissions(directory_ / "Z/locked", perms::owner_all);
    fs::permissions(directory_ / "A/A.mctx", perms::none);
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(becomeOrdinaryUser());
        EXPECT_THAT(found(), ElementsAre("A/A.mctx", "entered/entered.mctx", "Z/Z2/Z2.mctx"));
        EXPECT_THAT(listed(directory_.wide() + L"/closed"), IsEmpty());
    }));
}

TEST_F(FavoriteContexts, KeepADirectoryThatIsGivenRelativeToTheCurrentOne) {
    add("fav/A/A.mctx");
    add("fav/B/C/C.mctx");
    const CurrentDirectory here(directory_.path());
    EXPECT_THAT(listed(L"fav"), ElementsAre("fav/A/A.mctx", "fav/B/C/C.mctx"));
    EXPECT_THAT(listed(L"./fav"), ElementsAre("./fav/A/A.mctx", "./fav/B/C/C.mctx"));
    EXPECT_THAT(listed(L"fav/B/../B"), ElementsAre("fav/B/../B/C/C.mctx"));
    const CurrentDirectory below(directory_ / "fav");
    EXPECT_THAT(listed(L"."), ElementsAre("A/A.mctx", "B/C/C.mctx"));
    EXPECT_THAT(listed(L"../fav"), ElementsAre("../fav/A/A.mctx", "../fav/B/C/C.mctx"));
}

TEST_F(FavoriteContexts, NeedNoSeparatorAtTheEndOfTheirDirectory) {
    add("fav/A/A.mctx");
    const std::string expected = directory_.path().generic_u8string() + "/fav/A/A.mctx";
    for (const wchar_t* end : {L"", L"/", L"\\"})
        EXPECT_THAT(listed(directory_.wide() + L"/fav" + end), ElementsAre(expected)) << end;
    for (const std::string& path : listed(directory_.wide() + L"/fav//"))
        EXPECT_TRUE(fs::equivalent(fs::u8path(path), fs::u8path(expected))) << path;
    EXPECT_THAT(listed(directory_.wide() + L"/fav//"), SizeIs(1));
}

TEST_F(FavoriteContexts, HaveSlashesInTheirPaths) {
    add("fav/sub/A/A.mctx");
    EXPECT_THAT(listed(directory_.wide() + L"\\fav\\sub"),
                ElementsAre(directory_.path().generic_u8string() + "/fav/sub/A/A.mctx"));
}

TEST_F(FavoriteContexts, AreEmptyIfTheDirectoryIsMissing) {
    add("A/A.mctx");
    const CurrentDirectory here(directory_.path());
    EXPECT_THAT(listed(L"missing"), IsEmpty());
    EXPECT_THAT(listed(directory_.wide() + L"/missing/A"), IsEmpty());
    EXPECT_THAT(listed(directory_.wide() + L"/A/A.mctx"), IsEmpty());
    EXPECT_THAT(listed(L"\0"s), IsEmpty());
    EXPECT_THAT(listed(L".\0x"s), IsEmpty());
    EXPECT_THAT(listed(std::wstring(100000, L'n')), IsEmpty());
    EXPECT_THAT(listed(L"~"), IsEmpty());
    EXPECT_THAT(listed(L"$HOME"), IsEmpty());
}

TEST_F(FavoriteContexts, AreEmptyForADirectoryThatIsNotText) {
    if (onWindows()) GTEST_SKIP() << "Windows takes every unit";
    add("?/A/A.mctx");
    add("\xEF\xBF\xBD/A/A.mctx");
    EXPECT_THAT(listed(directory_.wide() + L"/" + std::wstring(1, L'\xD800')), IsEmpty());
}

TEST_F(FavoriteContexts, AreEmptyInAnEmptyTree) {
    EXPECT_THAT(found(), IsEmpty());
    makeDirectory("a/b/c");
    makeDirectory("d");
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(FavoriteContexts, MayBeAThousandDirectoriesDeep) {
    if (onWindows()) GTEST_SKIP() << "paths of Windows end at 260 characters";
    std::string levels;
    for (int i = 0; i < 1000; i += 10) {
        levels += "a/a/a/a/a/a/a/a/a/a/";
        makeDirectory(levels);
    }
    add(levels + "z/z.mctx");
    EXPECT_THAT(found(), ElementsAre(levels + "z/z.mctx"));
}

TEST_F(FavoriteContexts, AreFoundBesideATreeThatIsDeeperThanPathsAreLong) {
    if (onWindows()) GTEST_SKIP() << "such a tree cannot be made there";
    add("b/b.mctx");
    const CurrentDirectory here(directory_.path());
    const std::string step(200, 'a');
    for (int i = 0; i < 25; ++i) {
        fs::create_directory(step);
        fs::current_path(step);
    }
    EXPECT_THAT(found(), ElementsAre("b/b.mctx"));
}

TEST_F(FavoriteContexts, AreFoundInAWideTree) {
    for (int i = 0; i < 300; ++i) {
        const std::string name = "d" + std::to_string(1000 + i);
        add("wide/" + name + "/" + name + ".mctx");
    }
    const std::vector<std::string> names = found();
    ASSERT_THAT(names, SizeIs(300));
    EXPECT_EQ(names.front(), "wide/d1000/d1000.mctx");
    EXPECT_EQ(names.back(), "wide/d1299/d1299.mctx");
}

TEST_F(FavoriteContexts, LeaveNoDescriptorOpen) {
    if (openDescriptors() < 0) GTEST_SKIP() << "the system does not list descriptors";
    add("A/A.mctx");
    add("B/C/C.mctx");
    const auto before = openDescriptors();
    EXPECT_THAT(found(), SizeIs(2));
    EXPECT_EQ(openDescriptors(), before);
}
