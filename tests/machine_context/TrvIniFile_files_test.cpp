// Settings files that are loaded, saved and listed.

#include <tests/common/channel_log.h>
#include <tests/common/current_directory.h>
#include <tests/common/death_test.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <tests/environment/installation.h>
#include <trvfiles/environment/message_store.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/environment/work_zone.h>
#include <trvfiles/machine_context/TrvIniFile.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using namespace trv::testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

namespace {

class SettingsFile : public ::testing::Test {
protected:
    std::string path(const std::string& name) const { return directory.text() + "/" + name; }
    int load(TrvIniFile& file, const std::string& name) const {
        return file.load(path(name).c_str());
    }
    int save(TrvIniFile& file, const std::string& name) const {
        return file.save(path(name).c_str());
    }
    std::string value(const TrvIniFile& file, const char* section, const char* key) const {
        const char* text = file.getValue(section, key);
        return text == nullptr ? "<none>" : text;
    }

    TemporaryDirectory directory;
    ChannelLog log;
    TrvIniFile settings;
};

}  // namespace

TEST_F(SettingsFile, LoadsSectionsAndKeys) {
    writeBytes(directory / "a", "[s]\nk = v \n\n# comment\nj=w # tail\n[header]\nname=n\n");
    EXPECT_EQ(load(settings, "a"), 0);
    EXPECT_EQ(value(settings, "s", "k"), "v");
    EXPECT_EQ(value(settings, "s", "J"), "w ");
    EXPECT_EQ(value(settings, "header", "name"), "n");
    EXPECT_EQ(settings.lineCount("s"), 2);
    EXPECT_EQ(settings.getVersion(), 0);
}

TEST_F(SettingsFile, ReadsItsVersionFromTheHeader) {
    const struct {
        const char* text;
        int version;
    } files[] = {{"2", 2},
                 {"2x", 2},
                 {"x", 0},
                 {"", 0},
                 {"-3", -3},
                 {"+4", 4},
                 {"99999999999999", 2147483647},
                 {"1.9", 1}};
    for (const auto& file : files) {
        writeBytes(directory / "a", std::string("[header]\nversion = ") + file.text + "\n");
        TrvIniFile loaded;
        loaded.setVersion(77);
        EXPECT_EQ(load(loaded, "a"), 0);
        EXPECT_EQ(loaded.getVersion(), file.version) << file.text;
    }
    settings.setVersion(77);
    for (const char* text : {"[header]\nname=2\n", "[Header]\nversion=2\n", "version=2\n"}) {
        writeBytes(directory / "a", text);
        EXPECT_EQ(load(settings, "a"), 0);
        EXPECT_EQ(settings.getVersion(), 77) << text;
    }
    writeBytes(directory / "a", "[header]\nVERSION=2\n");
    EXPECT_EQ(load(settings, "a"), 0);
    EXPECT_EQ(settings.getVersion(), 2);
}

TEST_F(SettingsFile, PassesTheVersionToDerivedClasses) {
    struct Derived : TrvIniFile {
        void setVersion(int version) override { handed.push_back(version); }
        std::vector<int> handed;
    };
    writeBytes(directory / "a", "[header]\nversion=4\n");
    Derived derived;
    EXPECT_EQ(load(derived, "a"), 0);
    EXPECT_EQ(derived.handed, std::vector<int>{4});
    EXPECT_EQ(derived.getVersion(), 0);
}

TEST_F(SettingsFile, ReturnsMinusOneForAMissingFileWithoutEarlierContent) {
    EXPECT_EQ(load(settings, "missing"), -1);
    EXPECT_EQ(settings.load(nullptr), -1);
    EXPECT_EQ(settings.load(""), -1);
    EXPECT_THAT(log.fatals(), IsEmpty());
}

TEST_F(SettingsFile, KeepsItsContentIfAFileIsMissing) {
    ASSERT_EQ(settings.setHeaderValue("version", "5"), 0);
    EXPECT_EQ(load(settings, "missing"), 0);
    EXPECT_EQ(value(settings, "header", "version"), "5");
    EXPECT_EQ(settings.getVersion(), 5);
    EXPECT_THAT(log.fatals(), IsEmpty());
}

TEST_F(SettingsFile, ReportsAnExistingFileThatCannotBeOpened) {
    fs::create_directory(directory / "d");
    EXPECT_EQ(load(settings, "d"), -1);
    ASSERT_EQ(log.fatals().size(), 1U);
    EXPECT_THAT(log.fatals()[0], ::testing::HasSubstr("Error opening file - "));
    ASSERT_EQ(settings.setHeaderValue("version", "5"), 0);
    EXPECT_EQ(load(settings, "d"), -1);
    EXPECT_EQ(log.fatals().size(), 2U);
    EXPECT_EQ(value(settings, "header", "version"), "5");
    EXPECT_EQ(settings.getVersion(), 0);
}

TEST_F(SettingsFile, FindsTheFirstSectionAndTheFirstKeyOfAName) {
    writeBytes(directory / "a", "[s]\nk=1\nk=2\n[s]\nk=3\nj=4\n");
    EXPECT_EQ(load(settings, "a"), 0);
    EXPECT_EQ(value(settings, "s", "k"), "1");
    EXPECT_EQ(value(settings, "s", "j"), "<none>");
    EXPECT_EQ(settings.lineCount("s"), 2);
}

TEST_F(SettingsFile, MergesAFileIntoItsContent) {
    writeBytes(directory / "a", "[s]\nk=1\nl=1\n");
    writeBytes(directory / "b", "[t]\nm=2\n[s]\nk=2\nn=2\nk=3\n");
    EXPECT_EQ(load(settings, "a"), 0);
    EXPECT_EQ(load(settings, "b"), 0);
    EXPECT_EQ(value(settings, "s", "k"), "3");
    EXPECT_EQ(value(settings, "s", "l"), "1");
    EXPECT_EQ(value(settings, "s", "n"), "2");
    EXPECT_EQ(value(settings, "t", "m"), "2");
    EXPECT_EQ(settings.lineCount("s"), 3);
}

TEST_F(SettingsFile, TruncatesALineOfMoreThan1023Characters) {
    writeBytes(directory / "a", "[s]\nk=" + std::string(2000, 'x') + "\nj=w\n");
    EXPECT_EQ(load(settings, "a"), 0);
    EXPECT_EQ(value(settings, "s", "k"), std::string(1021, 'x'));
    EXPECT_EQ(value(settings, "s", "j"), "w");
}

TEST_F(SettingsFile, SavesWhatWasSetAndOnlyThat) {
    ASSERT_EQ(settings.addSection("empty"), 0);
    ASSERT_EQ(settings.addSection("s"), 1);
    ASSERT_EQ(settings.setValue(1, "k", " v "), 0);
    ASSERT_EQ(settings.setValue(1, "j", nullptr), 0);
    ASSERT_EQ(settings.setHeaderValue("version", "2"), 0);
    EXPECT_EQ(save(settings, "a"), 0);
    EXPECT_EQ(textOf(directory / "a"), "[s]\nk= v \nj=\n[header]\nversion=2\n");
    EXPECT_FALSE(fs::exists(directory / "a.messages.tmp"));
}

TEST_F(SettingsFile, SavesEntriesThatWereSetWhileNothingWasRecorded) {
    const bool earlier = trv::set_record_flag(false);
    EXPECT_EQ(settings.setHeaderValue("name", "n"), 0);
    EXPECT_EQ(save(settings, "a"), 0);
    EXPECT_FALSE(trv::set_record_flag(earlier));
    EXPECT_EQ(textOf(directory / "a"), "[header]\nname=n\n");
}

TEST_F(SettingsFile, SavesNothingWithoutContent) {
    writeBytes(directory / "a", "old");
    EXPECT_EQ(save(settings, "a"), -1);
    EXPECT_EQ(save(settings, "b"), -1);
    EXPECT_EQ(bytesOf(directory / "a"), "old");
    EXPECT_FALSE(fs::exists(directory / "b"));
    ASSERT_EQ(settings.addSection("s"), 0);
    EXPECT_EQ(settings.save(nullptr), -1);
    EXPECT_THAT(log.fatals(), IsEmpty());
    EXPECT_EQ(save(settings, "a"), 0);
    EXPECT_EQ(bytesOf(directory / "a"), "");
}

TEST_F(SettingsFile, GivesItsEntriesToTheFileItWasSavedIn) {
    ASSERT_EQ(settings.setHeaderValue("name", "n"), 0);
    EXPECT_EQ(save(settings, "a"), 0);
    EXPECT_EQ(save(settings, "b"), 0);
    EXPECT_EQ(textOf(directory / "a"), "[header]\nname=n\n");
    EXPECT_EQ(textOf(directory / "b"), "");
    EXPECT_EQ(save(settings, "a"), 0);
    EXPECT_EQ(textOf(directory / "a"), "[header]\nname=n\n");
}

TEST_F(SettingsFile, SavesOneFilesEntriesAmongThoseOfOthers) {
    writeBytes(directory / "a", "# comment\n[s]\nk = 1\n\nl = 1\n");
    ASSERT_EQ(load(settings, "a"), 0);
    ASSERT_EQ(settings.setValue(0, "k", "2"), 0);
    EXPECT_EQ(save(settings, "b"), 0);
    EXPECT_EQ(textOf(directory / "b"), "[s]\nk=2\n");
    EXPECT_EQ(save(settings, "a"), 0);
    EXPECT_EQ(textOf(directory / "a"), "[s]\nk = 1\nl = 1\n");

    TrvIniFile changed;
    ASSERT_EQ(load(changed, "a"), 0);
    ASSERT_EQ(changed.setValue(0, "k", "2"), 0);
    EXPECT_EQ(save(changed, "a"), 0);
    EXPECT_EQ(textOf(directory / "a"), "[s]\nk=2\nl = 1\n");
}

TEST_F(SettingsFile, ReadsBackWhatItSaved) {
    ASSERT_EQ(settings.setHeaderValue("version", "12"), 0);
    const int section = settings.addSection("s");
    ASSERT_EQ(settings.setValue(static_cast<std::int16_t>(section), "k", "a \\ b=c"), 0);
    ASSERT_EQ(save(settings, "a"), 0);
    TrvIniFile loaded;
    EXPECT_EQ(load(loaded, "a"), 0);
    EXPECT_EQ(loaded.getVersion(), 12);
    EXPECT_EQ(value(loaded, "s", "k"), "a \\ b=c");
}

TEST_F(SettingsFile, ReportsATemporaryFileThatCannotBeOpened) {
    ASSERT_EQ(settings.setHeaderValue("name", "n"), 0);
    EXPECT_EQ(save(settings, "missing/a"), -1);
    EXPECT_THAT(log.fatals(), ElementsAre(StartsWith("Store messages : error opening file '")));
    EXPECT_EQ(save(settings, "a"), 0);
    EXPECT_EQ(textOf(directory / "a"), "[header]\nname=n\n");
}

TEST_F(SettingsFile, ReturnsTheErrorNumberForATargetThatCannotBeReplaced) {
    fs::create_directories(directory / "d" / "inside");
    ASSERT_EQ(settings.setHeaderValue("name", "n"), 0);
    EXPECT_LT(save(settings, "d"), -1);
    EXPECT_THAT(log.fatals(), IsEmpty());
    EXPECT_TRUE(fs::is_directory(directory / "d" / "inside"));
    EXPECT_FALSE(fs::exists(directory / "d.messages.tmp"));
}

namespace {

using Names = std::vector<std::string>;

int collect(const char* fileName, void* names) {
    static_cast<Names*>(names)->emplace_back(fileName);
    return 0;
}

class ZoneFiles : public ChildProcessTest {
protected:
    ZoneFiles() {
        for (const char* name : {"b.mctx", "a.mctx", "A.mctx", ".mctx", "a.ref", "mctx", "a.MCTX"})
            writeBytes(directory / name, "");
        fs::create_directory(directory / "d.mctx");
    }

    Names of(const char* suffix) const {
        Names names;
        EXPECT_EQ(TrvIniFile().forEachZoneFile(directory.text().c_str(), suffix, collect, &names),
                  0);
        for (std::string& name : names) {
            EXPECT_THAT(name, StartsWith(directory.text() + "/"));
            name.erase(0, directory.text().size() + 1);
        }
        return names;
    }

    TemporaryDirectory directory;
};

}  // namespace

TEST_F(ZoneFiles, AreThoseOfASuffixInByteOrder) {
    if (!fs::exists(directory / "a.MCTX") ||
        fs::equivalent(directory / "a.MCTX", directory / "a.mctx"))
        GTEST_SKIP() << "names do not count case here";
    EXPECT_EQ(of(".mctx"), (Names{".mctx", "A.mctx", "a.MCTX", "a.mctx", "b.mctx", "d.mctx"}));
    EXPECT_EQ(of(".ref"), Names{"a.ref"});
    EXPECT_EQ(of(".none"), Names{});
}

TEST_F(ZoneFiles, AreAllWithoutASuffix) {
    EXPECT_EQ(of(nullptr), of(""));
    EXPECT_EQ(of("").size(), static_cast<std::size_t>(
                                 std::distance(fs::directory_iterator(directory.path()), {})));
}

TEST_F(ZoneFiles, EndWithTheFirstCallThatReturnsNonzero) {
    static int calls;
    calls = 0;
    const auto stopAtThird = [](const char*, void*) { return ++calls == 3 ? -42 : 0; };
    EXPECT_EQ(TrvIniFile().forEachZoneFile(directory.text().c_str(), ".mctx", stopAtThird, nullptr),
              -42);
    EXPECT_EQ(calls, 3);
}

TEST_F(ZoneFiles, NeedACallback) {
    EXPECT_EQ(TrvIniFile().forEachZoneFile(directory.text().c_str(), "", nullptr, nullptr), -1);
    EXPECT_EQ(TrvIniFile().forEachZoneFile(nullptr, nullptr, nullptr, nullptr), -1);
}

TEST_F(ZoneFiles, OfAMissingDirectoryAreEmpty) {
    Names names;
    const std::string missing = directory.text() + "/missing";
    EXPECT_EQ(TrvIniFile().forEachZoneFile(missing.c_str(), "", collect, &names), 0);
    EXPECT_THAT(names, IsEmpty());
}

TEST_F(ZoneFiles, AreThoseOfTheZoneWithoutADirectory) {
    const auto listTheZone = [] {
        const Installation installation;
        installation.write("config/environ.cfg",
                           "[var]\nTRVZONE = " + installation.root() + "/z\n");
        installation.write("z/one.mctx", "");
        installation.write("z/two.ref", "");
        Names names;
        EXPECT_EQ(TrvIniFile().forEachZoneFile(nullptr, ".mctx", collect, &names), 0);
        EXPECT_THAT(names, ElementsAre(installation.root() + "/z/one.mctx"));
    };
    TRV_EXPECT_IN_CHILD(listTheZone);
}

TEST_F(ZoneFiles, ListTheZoneThoughTheCallbackLooksItUp) {
    const auto lookUpDuringTheCalls = [] {
        const Installation installation;
        installation.write("config/environ.cfg",
                           "[var]\nTRVZONE = " + installation.root() + "/z\n");
        installation.write("z/one", "");
        installation.write("z/two", "");
        Names names;
        const auto collectAndList = [](const char* fileName, void* found) {
            Names inner;
            TrvIniFile().forEachZoneFile(nullptr, nullptr, collect, &inner);
            EXPECT_EQ(inner.size(), 2U);
            return collect(fileName, found);
        };
        EXPECT_EQ(TrvIniFile().forEachZoneFile(nullptr, nullptr, collectAndList, &names), 0);
        EXPECT_THAT(names,
                    ElementsAre(installation.root() + "/z/one", installation.root() + "/z/two"));
    };
    TRV_EXPECT_IN_CHILD(lookUpDuringTheCalls);
}

TEST_F(ZoneFiles, AreThoseOfASuffixThatLookingTheZoneUpOverwrites) {
    const auto listTheZone = [] {
        const Installation installation;
        installation.write("config/environ.cfg",
                           "[var]\nP = a++b\nTRVZONE = " + installation.root() + "/z\n");
        installation.write("z/one.mctx", "");
        installation.write("z/two.ref", "");
        trv::set_zone_hook([] { trv::get_variable("P"); });
        TrvIniFile file;
        const auto section = static_cast<std::int16_t>(file.addSection("s"));
        file.setValue(section, "suffix", ".mc");
        file.setValue(section, "suffix", "+tx");
        Names names;
        EXPECT_EQ(file.forEachZoneFile(nullptr, file.getValue("s", "suffix"), collect, &names), 0);
        EXPECT_THAT(names, ElementsAre(installation.root() + "/z/one.mctx"));
    };
    TRV_EXPECT_IN_CHILD(listTheZone);
}

TEST_F(ZoneFiles, AreThoseOfTheCurrentDirectoryWithoutAZone) {
    const auto listHere = [] {
        const Installation installation;
        installation.write("config/environ.cfg", "[var]\nN = 1\n");
        installation.write("here/one.mctx", "");
        const CurrentDirectory here(installation.file("here"));
        Names names;
        EXPECT_EQ(TrvIniFile().forEachZoneFile(nullptr, ".mctx", collect, &names), 0);
        EXPECT_THAT(names, ElementsAre("./one.mctx"));
    };
    TRV_EXPECT_IN_CHILD(listHere);
}
