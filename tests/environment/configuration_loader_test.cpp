#include <tests/common/channel_log.h>
#include <tests/common/death_test.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <tests/environment/installation.h>
#include <tests/environment/store_access.h>
#include <trvfiles/environment/configuration_loader.h>
#include <trvfiles/environment/path_text.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/environment/variables_internal.h>
#include <trvfiles/support/dynamic_storage.h>
#include <trvfiles/support/platform.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Most tests stand on an environment that is loaded already: section `var` defines ROOT, the
// directory of the test, and section `path` defines CFG = $ROOT/cfg.

namespace trv {
namespace {

using testing::backslashed;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::string storageInUse() {
    char report[100];
    storage_report(report, sizeof report);
    return report;
}

std::string parameter(const message_store* store, const char* section, const char* name) {
    const char* value = find_parameter(store, find_section(store, section), name, true);
    return value != nullptr ? value : "<none>";
}

class ConfigurationLoader : public ::testing::Test {
protected:
    ConfigurationLoader() {
        earlier_ = std::exchange(loaded_stores, process_stores());
        platform::set_environment("CFGPATH", nullptr);
        platform::set_environment("TRVNULL", nullptr);
        loaded_stores.environment = create_store();
        var_ = add_section(loaded_stores.environment, "var");
        define("ROOT = " + directory_.text());
        const int path = add_section(loaded_stores.environment, "path");
        set_variable(loaded_stores.environment, path, "CFG = $ROOT/cfg");
    }
    ~ConfigurationLoader() override {
        destroy_store(loaded_stores.environment);
        destroy_store(loaded_stores.application);
        destroy_store(loaded_stores.catalogue);
        destroy_store(store_);
        loaded_stores = earlier_;
    }

    void define(const std::string& entry) {
        set_variable(loaded_stores.environment, var_, entry.c_str());
    }

    void write(const std::string& name, std::string_view text) const {
        std::filesystem::create_directories((directory_ / name).parent_path());
        testing::writeBytes(directory_ / name, text);
    }

    std::string path(const std::string& name) const {
        return backslashed(directory_.text() + "/" + name);
    }

    std::string overloading(const std::string& name) const {
        return "Overloading '" + path(name) + "'\n";
    }

    /// The trace lines that tell which files are merged.
    std::vector<std::string> overloaded() const {
        std::vector<std::string> lines;
        for (const std::string& line : log_.traces()) {
            if (line.compare(0, 11, "Overloading") == 0) lines.push_back(line);
        }
        return lines;
    }

    testing::TemporaryDirectory directory_;
    testing::ChannelLog log_;
    message_store* store_ = create_store();
    int var_;

private:
    process_stores earlier_;
};

TEST_F(ConfigurationLoader, OverloadsFromTheLastDirectoryToTheFirst) {
    write("a/m.cfg", "[s]\nN = a\nA = 1\n");
    write("b/m.cfg", "[s]\nN = b\nB = 1\n");
    write("c/m.cfg", "[s]\nN = c\nC = 1\n");
    EXPECT_EQ(overload_files(store_, "$ROOT/a;$ROOT/b,$ROOT/c", "m.cfg"), store_);
    EXPECT_THAT(overloaded(), ElementsAre(overloading("c/m.cfg"), overloading("b/m.cfg"),
                                          overloading("a/m.cfg")));
    EXPECT_EQ(parameter(store_, "s", "N"), "a");
    EXPECT_EQ(parameter(store_, "s", "B"), "1");
    EXPECT_EQ(parameter(store_, "s", "C"), "1");
}

TEST_F(ConfigurationLoader, ExtendsAnEarlierValueWithAPlus) {
    write("a/m.cfg", "[s]\nN = +;a\n");
    write("b/m.cfg", "[s]\nN = b\n");
    overload_files(store_, "$ROOT/a;$ROOT/b", "m.cfg");
    EXPECT_EQ(parameter(store_, "s", "N"), "b;a");
}

TEST_F(ConfigurationLoader, TrimsElementsAndDropsOneSeparatorAtTheirEnd) {
    write("a/m.cfg", "[s]\nA = 1\n");
    write("b/m.cfg", "[s]\nB = 1\n");
    overload_files(store_, " \t$ROOT/a/ ; $ROOT/b\\\t", "m.cfg");
    EXPECT_THAT(overloaded(), ElementsAre(overloading("b/m.cfg"), overloading("a/m.cfg")));
    EXPECT_EQ(parameter(store_, "s", "A"), "1");
    EXPECT_EQ(parameter(store_, "s", "B"), "1");
}

TEST_F(ConfigurationLoader, KeepsABlankBeforeTheDroppedSeparator) {
    overload_files(store_, "$ROOT/a /", "m.cfg");
    EXPECT_THAT(overloaded(), ElementsAre(overloading("a /m.cfg")));
}

TEST_F(ConfigurationLoader, PassesEmptyElementsOver) {
    write("a/m.cfg", "[s]\nA = 1\n");
    overload_files(store_, ";, ;/;\\;$ROOT/a;;", "m.cfg");
    EXPECT_THAT(overloaded(), ElementsAre(overloading("a/m.cfg")));
    EXPECT_THAT(log_.fatals(), IsEmpty());
}

TEST_F(ConfigurationLoader, PassesMissingFilesOverInSilence) {
    write("a/m.cfg", "[s]\nA = 1\n");
    EXPECT_EQ(overload_files(store_, "$ROOT/missing;$ROOT/a;$ROOT/none", "m.cfg"), store_);
    EXPECT_EQ(overloaded().size(), 3U);
    EXPECT_EQ(parameter(store_, "s", "A"), "1");
    EXPECT_THAT(log_.errors(), IsEmpty());
    EXPECT_THAT(log_.fatals(), IsEmpty());
}

TEST_F(ConfigurationLoader, MakesAStoreFromTheFirstFileThatThereIs) {
    write("a/m.cfg", "[s]\nA = 2\n");
    write("b/m.cfg", "[s]\nA = 1\nA = 3\n");
    message_store* store = overload_files(nullptr, "$ROOT/a;$ROOT/b;$ROOT/missing", "m.cfg");
    EXPECT_EQ(message_count(store, 0), 2);
    EXPECT_EQ(parameter(store, "s", "A"), "2");
    destroy_store(store);
}

TEST_F(ConfigurationLoader, MakesAnEmptyStoreWhereNothingWasLoaded) {
    for (const char* list : {"$ROOT/missing", "", "$(ROOT"}) {
        message_store* store = overload_files(nullptr, list, "m.cfg");
        EXPECT_EQ(section_count(store), 0) << list;
        destroy_store(store);
    }
    message_store* store = overload_files(nullptr, nullptr, nullptr);
    EXPECT_EQ(section_count(store), 0);
    destroy_store(store);
}

TEST_F(ConfigurationLoader, LoadsNothingAfterAnExpansionError) {
    write("a/m.cfg", "[s]\nA = 1\n");
    EXPECT_EQ(overload_files(store_, "$ROOT/a", "m.cfg$(X"), store_);
    EXPECT_EQ(overload_files(store_, "$ROOT/a;$(X", "m.cfg"), store_);
    EXPECT_EQ(section_count(store_), 0);
    EXPECT_THAT(overloaded(), IsEmpty());
    EXPECT_THAT(log_.errors(), ElementsAre("_Expand(\"m.cfg$(X\") = error -31 - syntax error",
                                           "_Expand(\"$ROOT/a;$(X\") = error -31 - syntax error"));
}

TEST_F(ConfigurationLoader, LoadsNothingUnderAnEmptyFileName) {
    std::filesystem::create_directory(directory_ / "a");
    EXPECT_EQ(overload_files(store_, "$ROOT/a", ""), store_);
    EXPECT_EQ(overload_files(store_, "$ROOT/a", nullptr), store_);
    EXPECT_THAT(log_.fatals(), IsEmpty());
}

TEST_F(ConfigurationLoader, TakesAnUndefinedReferenceForNothing) {
    write("a/m.cfg", "[s]\nA = 1\n");
    overload_files(store_, "$UNKNOWN;$ROOT/a", "m$UNKNOWN.cfg");
    EXPECT_THAT(overloaded(), ElementsAre(overloading("a/m.cfg")));
    EXPECT_EQ(parameter(store_, "s", "A"), "1");
}

TEST_F(ConfigurationLoader, KeepsTheStoreWhereAFileIsGivenUp) {
    write("a/m.cfg", "[s]\nA = 1\n");
    write("b/m.cfg", "[s]\nB = 1\n/what\nC = 1\n");
    std::filesystem::create_directories(directory_ / "c/m.cfg");
    EXPECT_EQ(overload_files(store_, "$ROOT/a;$ROOT/b;$ROOT/c", "m.cfg"), store_);
    EXPECT_EQ(parameter(store_, "s", "A"), "1");
    EXPECT_EQ(parameter(store_, "s", "B"), "1");
    EXPECT_EQ(parameter(store_, "s", "C"), "<none>");
    EXPECT_EQ(log_.fatals().back(),
              "load_messages: file '" + path("b/m.cfg") + "', line 0 : Error loading file.");
}

TEST_F(ConfigurationLoader, TakesPathsOfUpTo511Characters) {
    // Every directory of the way down is short, so that the system takes them all.
    const std::size_t room = 511 - directory_.text().size() - sizeof "/m.cfg" + 1;
    std::string below;
    while (below.size() < room)
        below += below.size() % 50 == 0 ? '/' : 'd';
    if (below.back() == '/') below.back() = 'd';
    write(below.substr(1) + "/m.cfg", "[s]\nA = 1\n");
    write(below.substr(1) + "d/m.cfg", "[s]\nB = 1\n");
    overload_files(store_, ("$ROOT" + below + ";$ROOT" + below + "d").c_str(), "m.cfg");
    ASSERT_EQ(path(below.substr(1) + "/m.cfg").size(), 511U);
    EXPECT_EQ(parameter(store_, "s", "A"), "<none>") << "the list has more than 511 characters";
    overload_files(store_, ("$ROOT" + below).c_str(), "m.cfg");
    EXPECT_EQ(parameter(store_, "s", "A"), "1");
    overload_files(store_, ("$ROOT" + below + "d").c_str(), "m.cfg");
    EXPECT_EQ(parameter(store_, "s", "B"), "<none>");
    EXPECT_THAT(log_.fatals(), IsEmpty());
}

TEST_F(ConfigurationLoader, DestroysANewStoreWhenAHandlerThrows) {
    write("a/m.cfg", "/what\n");
    write("b/m.cfg", "[s]\nB = 1\n");
    const std::string before = storageInUse();
    set_fatal_handler([](const char* message) { throw std::runtime_error(message); });
    EXPECT_THROW(overload_files(nullptr, "$ROOT/a;$ROOT/b", "m.cfg"), std::runtime_error);
    EXPECT_EQ(storageInUse(), before);
}

// The name of the file is a lookup result, which a lookup for the list overwrites.
TEST_F(ConfigurationLoader, TakesAFileNameThatExpandingTheListOverwrites) {
    write("a/m.cfg", "[s]\nA = 1\n");
    define("NAME = m");
    define("NAME = +.cfg");
    define("LIST = $ROOT");
    define("LIST = +/a");
    overload_files(store_, "$LIST", get_variable("NAME"));
    EXPECT_EQ(parameter(store_, "s", "A"), "1");

    const testing::Store other;
    EXPECT_EQ(load_config_list(other, get_variable("NAME"), "$LIST"), 0);
    EXPECT_EQ(parameter(other, "s", "A"), "1");

    EXPECT_EQ(load_application_files(get_variable("NAME"), "$LIST"), 0);
    EXPECT_STREQ(get_application_parameter("s", "A"), "1");
}

// load_config_list

TEST_F(ConfigurationLoader, LoadsAHostsFileFromTheConfigurationDirectories) {
    write("cfg/m.cfg", "[s]\nA = cfg\n");
    write("a/m.cfg", "[s]\nA = a\n");
    EXPECT_EQ(load_config_list(store_, "m.cfg", nullptr), 0);
    EXPECT_EQ(parameter(store_, "s", "A"), "cfg");
    EXPECT_EQ(load_config_list(store_, "m.cfg", "$ROOT/a"), 0);
    EXPECT_EQ(parameter(store_, "s", "A"), "a");
}

TEST_F(ConfigurationLoader, AsksTheProcessEnvironmentForCfgPathFirst) {
    write("cfg/m.cfg", "[s]\nA = cfg\n");
    write("a/m.cfg", "[s]\nA = a\n");
    platform::set_environment("CFG", "nothing");
    platform::set_environment("CFGPATH", (directory_.text() + "/a").c_str());
    EXPECT_EQ(load_config_list(store_, "m.cfg", nullptr), 0);
    EXPECT_EQ(parameter(store_, "s", "A"), "a");
    platform::set_environment("CFG", nullptr);
    platform::set_environment("CFGPATH", nullptr);
}

TEST_F(ConfigurationLoader, LooksAtTheFileNameBeforeTheStore) {
    EXPECT_EQ(load_config_list(nullptr, "", nullptr), 0);
    EXPECT_EQ(load_config_list(nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(load_config_list(nullptr, "m.cfg", nullptr), -1);
    EXPECT_EQ(load_config_list(store_, "", "$(X"), 0);
}

TEST_F(ConfigurationLoader, RefusesAConfigurationListThatDoesNotExpand) {
    EXPECT_EQ(load_config_list(store_, "m.cfg", "$(X"), -1);
    EXPECT_EQ(load_config_list(store_, "$(X", nullptr), -1);
    EXPECT_EQ(load_config_list(store_, "m.cfg", std::string(511, 'a').c_str()), 0);
    EXPECT_EQ(load_config_list(store_, "m.cfg", std::string(512, 'a').c_str()), -1);
    EXPECT_EQ(load_config_list(store_, std::string(512, 'a').c_str(), ""), -1);
}

TEST_F(ConfigurationLoader, ExpandsListsTwice) {
    write("a/m.cfg", "[s]\nA = 1\n");
    EXPECT_EQ(load_config_list(store_, "$$NAME", "$$ROOT/a"), 0);
    EXPECT_THAT(overloaded(), IsEmpty()) << "the name is undefined: there is nothing to load";
    define("NAME = m.cfg");
    EXPECT_EQ(load_config_list(store_, "$$NAME", "$$ROOT/a"), 0);
    EXPECT_EQ(parameter(store_, "s", "A"), "1");
}

// The application store and the catalogue

TEST_F(ConfigurationLoader, FillsTheApplicationStore) {
    write("a/m.cfg", "[S]\nA = a\n");
    write("b/m.cfg", "[S]\nA = b\nB = 1\n");
    EXPECT_EQ(application_store(), nullptr);
    EXPECT_EQ(load_application_files("m.cfg", "$ROOT/a;$ROOT/b"), 0);
    message_store* store = application_store();
    EXPECT_STREQ(get_application_parameter("S", "a"), "a");
    EXPECT_STREQ(get_application_parameter("S", "B"), "1");
    EXPECT_EQ(get_application_parameter("s", "B"), nullptr);
    write("c/more.cfg", "[S]\nC = 1\n");
    EXPECT_EQ(load_application_files("more.cfg", "$ROOT/c"), 0);
    EXPECT_EQ(application_store(), store);
    EXPECT_STREQ(get_application_parameter("S", "C"), "1");
}

TEST_F(ConfigurationLoader, LeavesTheApplicationStoreAloneWithoutANameOrAfterAnError) {
    EXPECT_EQ(load_application_files("", "$ROOT"), 0);
    EXPECT_EQ(load_application_files(nullptr, "$(X"), 0);
    EXPECT_EQ(load_application_files("m.cfg", "$(X"), -1);
    EXPECT_EQ(load_application_files("$(X", "$ROOT"), -1);
    EXPECT_EQ(application_store(), nullptr);
}

TEST_F(ConfigurationLoader, MakesAnEmptyApplicationStoreWhereThereAreNoFiles) {
    EXPECT_EQ(load_application_files("m.cfg", nullptr), 0);
    EXPECT_EQ(section_count(application_store()), 0);
}

TEST_F(ConfigurationLoader, LeavesTheApplicationStoreAsItWasWhenAHandlerThrows) {
    write("a/m.cfg", "/what\n");
    set_fatal_handler([](const char* message) { throw std::runtime_error(message); });
    EXPECT_THROW(load_application_files("m.cfg", "$ROOT/a"), std::runtime_error);
    EXPECT_EQ(application_store(), nullptr);
}

TEST_F(ConfigurationLoader, KeepsTheStoreThatAHandlerMakesDuringTheFirstLoad) {
    static std::string directory;
    static const message_store* made;
    directory = directory_.text();
    made = nullptr;
    write("a/m.cfg", "[s]\nA = 1\nno entry" + std::string(1100, 'x') + "\n");
    write("b/m.cfg", "[s]\nB = 2\n");
    write("b.msg", "[s]\nB = 2\n");
    set_error_handler([](const char*) {
        load_application_files("m.cfg", (directory + "/b").c_str());
        load_catalogue_file((directory + "/b.msg").c_str());
        if (made == nullptr) made = application_store();
    });
    const std::string before = storageInUse();
    EXPECT_EQ(load_application_files("m.cfg", "$ROOT/a"), 0);
    EXPECT_NE(made, nullptr);
    EXPECT_EQ(application_store(), made);
    EXPECT_STREQ(get_application_parameter("s", "A"), "1");
    EXPECT_STREQ(get_application_parameter("s", "B"), "2");
    EXPECT_EQ(load_catalogue_file(path("a/m.cfg").c_str()), 0);
    EXPECT_STREQ(get_catalogue_parameter("s", "A"), "1");
    EXPECT_STREQ(get_catalogue_parameter("s", "B"), "2");

    destroy_store(std::exchange(loaded_stores.application, nullptr));
    destroy_store(std::exchange(loaded_stores.catalogue, nullptr));
    EXPECT_EQ(storageInUse(), before);
}

TEST_F(ConfigurationLoader, FillsTheMessageCatalogue) {
    write("a.msg", "[text]\nfirst\nsecond\n[s]\nA = 1\n");
    EXPECT_EQ(load_catalogue_file(path("a.msg").c_str()), 0);
    message_store* store = catalogue_store();
    ASSERT_NE(store, nullptr);
    EXPECT_STREQ(get_catalogue_message("text", 1), "second");
    EXPECT_STREQ(get_catalogue_parameter("s", "a"), "1");
    write("b.msg", "[s]\nA = +2\n");
    EXPECT_EQ(load_catalogue_file(path("b.msg").c_str()), 0);
    EXPECT_EQ(catalogue_store(), store);
    EXPECT_STREQ(get_catalogue_parameter("s", "a"), "12");
}

// The path is a lookup result, which the handler overwrites; the file is read again after that.
TEST_F(ConfigurationLoader, FillsTheCatalogueFromAPathThatAHandlerOverwrites) {
    static std::string second;
    second = directory_.text() + "/b.msg";
    write("a.msg", "[s]\nA = 1\n" + std::string(1100, 'x') + "\n");
    write("b.msg", "[s]\nB = 2\n");
    define("FILE = " + directory_.text());
    define("FILE = +/a.msg");
    define("OTHER = 1");
    define("OTHER = +2");
    set_error_handler([](const char*) {
        get_variable("OTHER");
        if (catalogue_store() == nullptr) load_catalogue_file(second.c_str());
    });
    EXPECT_EQ(load_catalogue_file(get_variable("FILE")), 0);
    EXPECT_STREQ(get_catalogue_parameter("s", "A"), "1");
    EXPECT_STREQ(get_catalogue_parameter("s", "B"), "2");
}

// The path lies in the store that the file is merged into, and moves while it is.
TEST_F(ConfigurationLoader, MergesAFileWhosePathIsInTheStore) {
    std::string text = "[s]\n";
    for (int i = 0; i < 1000; ++i)
        text += "N" + std::to_string(i) + " = v\n";
    write("a.cfg", text + "/what\n");
    const int section = add_section(store_, "files");
    set_variable(store_, section, ("FILE = " + path("a.cfg")).c_str());
    EXPECT_EQ(load_message_file(store_, find_parameter(store_, section, "FILE", true)), nullptr);
    EXPECT_EQ(parameter(store_, "s", "N999"), "v");
    EXPECT_EQ(log_.fatals().back(),
              "load_messages: file '" + path("a.cfg") + "', line 0 : Error loading file.");
}

TEST_F(ConfigurationLoader, AnswersMinusOneWithoutACatalogueFile) {
    EXPECT_EQ(load_catalogue_file(path("missing").c_str()), -1);
    EXPECT_EQ(load_catalogue_file(nullptr), -1);
    EXPECT_EQ(catalogue_store(), nullptr);
    write("a.msg", "[s]\nA = 1\n");
    load_catalogue_file(path("a.msg").c_str());
    EXPECT_EQ(load_catalogue_file(path("missing").c_str()), 0);
    write("bad.msg", "[s]\nB = 1\n/what\n");
    EXPECT_EQ(load_catalogue_file(path("bad.msg").c_str()), -1);
    EXPECT_STREQ(get_catalogue_parameter("s", "A"), "1");
    EXPECT_STREQ(get_catalogue_parameter("s", "B"), "1");
}

// for_each_variable

using Variables = std::vector<std::pair<std::string, std::string>>;

int collect(const char* name, const char* value, void* context) {
    static_cast<Variables*>(context)->emplace_back(name, value);
    return 0;
}

TEST_F(ConfigurationLoader, WalksTheVariablesInOrder) {
    define("  B \t=  2 = two \t");
    define("EMPTY=");
    Variables variables;
    EXPECT_EQ(for_each_variable(collect, &variables), 0);
    const std::pair<std::string, std::string> root("ROOT", directory_.text());
    EXPECT_THAT(variables,
                ElementsAre(root, ::testing::Pair("B", "2 = two"), ::testing::Pair("EMPTY", "")));
}

TEST_F(ConfigurationLoader, WalksTheVariablesAsTheyAreWritten) {
    define("A = 1");
    define("A = +;2");
    Variables variables;
    for_each_variable(collect, &variables);
    ASSERT_EQ(variables.size(), 2U);
    EXPECT_THAT(variables[1].second, ::testing::MatchesRegex("\\+\\(........\\);2"));
}

TEST_F(ConfigurationLoader, EndsTheWalkWhereTheCallbackSaysSo) {
    define("A = 1");
    static int calls;
    calls = 0;
    EXPECT_EQ(for_each_variable(
                  [](const char*, const char*, void*) { return ++calls == 2 ? 7 : 0; }, nullptr),
              7);
    EXPECT_EQ(calls, 2);
}

TEST_F(ConfigurationLoader, EndsTheWalkAtARemovedEntryAndAtATextWithoutEquals) {
    define("A = 1");
    define("B = 1");
    remove_parameter(loaded_stores.environment, var_, "A");
    Variables variables;
    EXPECT_EQ(for_each_variable(collect, &variables), 0);
    EXPECT_EQ(variables.size(), 1U);
    set_message(loaded_stores.environment, var_, 0, "no entry");
    variables.clear();
    EXPECT_EQ(for_each_variable(collect, &variables), 0);
    EXPECT_THAT(variables, IsEmpty());
}

TEST_F(ConfigurationLoader, LetsTheCallbackChangeTheStore) {
    define("A = 1");
    const auto fillAndCollect = [](const char* name, const char* value, void* context) {
        for (int i = 0; i < 100; ++i)
            append_message(environment_store(), 1, std::string(500, 'x').c_str(), -1, 0);
        return collect(name, value, context);
    };
    Variables variables;
    EXPECT_EQ(for_each_variable(fillAndCollect, &variables), 0);
    EXPECT_THAT(variables,
                ElementsAre(::testing::Pair("ROOT", directory_.text()), ::testing::Pair("A", "1")));
}

TEST_F(ConfigurationLoader, AnswersMinusOneWithoutVariables) {
    EXPECT_EQ(for_each_variable(nullptr, nullptr), -1);
    destroy_store(loaded_stores.environment);
    loaded_stores.environment = create_store();
    Variables variables;
    EXPECT_EQ(for_each_variable(collect, &variables), -1);
}

using VariableWalk = testing::ChildProcessTest;

TEST_F(VariableWalk, LoadsTheEnvironmentFirst) {
    const auto walk = [] {
        const testing::Installation installation;
        installation.write("config/environ.cfg", "[var]\nA = 1\n");
        Variables variables;
        EXPECT_EQ(for_each_variable(collect, &variables), 0);
        EXPECT_THAT(variables,
                    ElementsAre(::testing::Pair("A", "1"), ::testing::Pair("WINDOWS", "1"),
                                ::testing::Pair("PC", "1")));
    };
    TRV_EXPECT_IN_CHILD(walk);
}

TEST_F(VariableWalk, AnswersMinusOneWhereTheEnvironmentDoesNotLoad) {
    const auto walk = [] {
        const testing::Installation installation;
        const testing::ChannelLog log;
        Variables variables;
        EXPECT_EQ(for_each_variable(collect, &variables), -1);
        EXPECT_EQ(log.fatals().size(), 1U);
    };
    TRV_EXPECT_IN_CHILD(walk);
}

// What a load does once

TEST_F(ConfigurationLoader, LoadsEachFileOnceIntoANewStore) {
    write("a/m.cfg", "[s]\nA = 1\nno entry\n");
    write("b/m.cfg", "[s]\nB = 1\n");
    EXPECT_EQ(load_application_files("m.cfg", "$ROOT/a;$ROOT/b"), 0);
    EXPECT_THAT(overloaded(), ElementsAre(overloading("b/m.cfg"), overloading("a/m.cfg")));
    EXPECT_EQ(log_.errors().size(), 1U);
}

TEST_F(ConfigurationLoader, DoesNotTryAFailedFirstLoadAgainThoughAHandlerHasMadeTheStore) {
    static std::string good;
    static int reports;
    good = path("good.msg");
    reports = 0;
    write("good.msg", "[s]\nA = 1\n");
    write("bad.msg", "[s]\nB = 1\n[" + std::string(100, 'n') + "]\n");
    set_fatal_handler([](const char*) {
        ++reports;
        load_catalogue_file(good.c_str());
    });
    EXPECT_EQ(load_catalogue_file(path("bad.msg").c_str()), -1);
    EXPECT_EQ(reports, 1);
    EXPECT_STREQ(get_catalogue_parameter("s", "A"), "1");
    EXPECT_EQ(get_catalogue_parameter("s", "B"), nullptr);
}

TEST(ConfigurationPaths, LoseOneSeparatorAtTheirEndAndNothingBeforeTheirBeginning) {
    constexpr std::string_view text = "a//";
    EXPECT_EQ(without_trailing_separator(text), "a/");
    EXPECT_EQ(without_trailing_separator("a\\"), "a");
    EXPECT_EQ(without_trailing_separator("a"), "a");
    EXPECT_EQ(without_trailing_separator(text.substr(3)).size(), 0U);
}

}  // namespace
}  // namespace trv
