#include <tests/common/channel_log.h>
#include <tests/common/death_test.h>
#include <tests/common/scoped_variable.h>
#include <tests/environment/configured_store.h>
#include <tests/environment/installation.h>
#include <tests/environment/store_access.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/environment/work_zone.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace trv {
namespace {

using testing::ChannelLog;
using testing::ConfiguredStore;
using testing::Installation;
using testing::ScopedVariable;

class Variables : public ::testing::Test {
protected:
    ScopedVariable noNullText_{"TRVNULL", nullptr};
    ScopedVariable noTemporaryDirectory_{"TRVTMPDIR", nullptr};
    ConfiguredStore store_;
};

std::string variableOrigin(const char* name) {
    char origin[256] = "left over";
    EXPECT_EQ(0, describe_variable_origin(origin, sizeof origin, name, get_variable(name)));
    return origin;
}

std::string pathOrigin(const char* name) {
    char origin[256] = "left over";
    EXPECT_EQ(0, describe_path_origin(origin, sizeof origin, name, get_path_variable(name)));
    return origin;
}

TEST_F(Variables, ComeFromTheProcessBeforeTheConfiguration) {
    store_.variable("TRV_TEST_A = configured");
    EXPECT_STREQ("configured", get_variable("TRV_TEST_A"));
    const ScopedVariable process("TRV_TEST_A", "of the process");
    EXPECT_STREQ("of the process", get_variable("TRV_TEST_A"));
}

TEST_F(Variables, AreFoundInTheConfigurationInAnyCase) {
    store_.variable("Trv_Test_Mixed = v");
    EXPECT_STREQ("v", get_variable("TRV_TEST_MIXED"));
    EXPECT_STREQ("v", get_variable("trv_test_mixed"));
}

TEST_F(Variables, ThatAreUndefinedGiveNone) {
    EXPECT_EQ(nullptr, get_variable("TRV_TEST_UNDEFINED"));
    EXPECT_EQ(nullptr, get_variable(""));
    EXPECT_EQ(nullptr, get_variable(nullptr));
    store_.path("TRV_TEST_LIST = a");
    EXPECT_EQ(nullptr, get_variable("TRV_TEST_LIST"));
}

TEST_F(Variables, MayHaveAnEmptyValue) {
    store_.variable("TRV_TEST_EMPTY =");
    EXPECT_STREQ("", get_variable("TRV_TEST_EMPTY"));
}

TEST_F(Variables, OfTheProcessMayBeEmpty) {
    store_.variable("TRV_TEST_EMPTY = configured");
    store_.path("TRV_TEST_L = configured");
    const ScopedVariable process("TRV_TEST_EMPTY", "");
    const ScopedVariable list("TRV_TEST_LPATH", "");
    EXPECT_STREQ("", get_variable("TRV_TEST_EMPTY"));
    EXPECT_STREQ("", get_path_variable("TRV_TEST_L"));
    EXPECT_EQ("from environment", variableOrigin("TRV_TEST_EMPTY"));
}

TEST_F(Variables, ThatSayNothingWhenEmptyCountAsUnset) {
    for (const std::string name :
         {"TRVHOME", "TRVHOME_LS", "TRVTMPDIR", "TRV_EXPAND_LOGFILE_NAME", "TRV_MCTX_DEF"}) {
        store_.variable(name + " = configured");
        const ScopedVariable empty(name, "");
        EXPECT_STREQ("configured", get_variable(name.c_str()));
        EXPECT_EQ("set by program", variableOrigin(name.c_str()));
        const ScopedVariable filled(name, "of the process");
        EXPECT_STREQ("of the process", get_variable(name.c_str()));
    }
    char origin[64];
    const ScopedVariable directory("TRVTMPDIR", "");
    EXPECT_EQ(-1, describe_variable_origin(origin, sizeof origin, "TMP", "x"));
}

TEST_F(Variables, LoseTheirTrailingBlanksInTheStore) {
    store_.variable("TRV_TEST_A = v w \t ");
    const char* stored = get_message(store_.get(), store_.var(), 0);
    EXPECT_STREQ("TRV_TEST_A = v w \t ", stored);
    EXPECT_STREQ("v w", get_variable("TRV_TEST_A"));
    EXPECT_STREQ("TRV_TEST_A = v w", get_message(store_.get(), store_.var(), 0));
    const ScopedVariable process("TRV_TEST_B", "v  ");
    EXPECT_STREQ("v  ", get_variable("TRV_TEST_B"));
}

TEST_F(Variables, ResolveReferencesToReplacedValues) {
    store_.variable("A = 1");
    store_.variable("A = +;x ");
    EXPECT_STREQ("1;x", get_variable("A"));
}

TEST_F(Variables, WithAnEqualsSignInTheNameAreNeverAskedOfTheProcess) {
    const ScopedVariable process("TRV_TEST_A", "B=C");
    EXPECT_EQ(nullptr, get_variable("TRV_TEST_A=B"));
    EXPECT_EQ(nullptr, get_path_variable("TRV_TEST_A=B"));
}

TEST_F(Variables, CallTheZoneHookForTheZoneAlone) {
    static int calls = 0;
    calls = 0;
    const ScopedVariable noZone("TRVZONE", nullptr);
    const zone_hook earlier = set_zone_hook([] {
        ++calls;
        platform::set_environment("TRVZONE", "late");
    });
    get_variable("TRVZONES");
    get_variable("trvzone");
    EXPECT_EQ(0, calls);
    EXPECT_STREQ("late", get_variable("TRVZONE"));
    EXPECT_EQ(1, calls);
    EXPECT_STREQ("late", get_variable("TRVZONE"));
    EXPECT_EQ(2, calls);
    set_zone_hook(earlier);
}

TEST_F(Variables, GiveTheTemporaryDirectoryForTmpInExactlyThisSpelling) {
    const ScopedVariable process("TMP", nullptr);
    const ScopedVariable directory("TRVTMPDIR", "C:\\zone\\1f");
    store_.variable("tmp = ordinary");
    EXPECT_STREQ("C:\\zone\\1f", get_variable("TMP"));
    EXPECT_STREQ("ordinary", get_variable("Tmp"));
}

TEST_F(Variables, OfPathsComeFromTheVariableWithTheSuffixFirst) {
    store_.path("TRV_TEST_BIN = configured  ");
    EXPECT_STREQ("configured", get_path_variable("TRV_TEST_BIN"));
    EXPECT_STREQ("configured", get_path_variable("trv_test_bin"));
    const ScopedVariable process("TRV_TEST_BINPATH", "of the process");
    EXPECT_STREQ("of the process", get_path_variable("TRV_TEST_BIN"));
}

TEST_F(Variables, OfPathsAreNotLookedForAmongTheOthers) {
    store_.variable("TRV_TEST_A = x");
    const ScopedVariable process("TRV_TEST_B", "x");
    EXPECT_EQ(nullptr, get_path_variable("TRV_TEST_A"));
    EXPECT_EQ(nullptr, get_path_variable("TRV_TEST_B"));
    EXPECT_EQ(nullptr, get_path_variable(nullptr));
}

TEST_F(Variables, OfPathsWithAnEmptyNameAreTheSearchPath) {
    const ScopedVariable process("PATH", "here");
    EXPECT_STREQ("here", get_path_variable(""));
}

TEST_F(Variables, OfPathsNeedTheSectionInExactlyThisCase) {
    message_store* other = create_store();
    set_variable(other, add_section(other, "Path"), "TRV_TEST_L = x");
    message_store* earlier = loaded_stores.environment;
    loaded_stores.environment = other;
    EXPECT_EQ(nullptr, get_path_variable("TRV_TEST_L"));
    EXPECT_EQ(nullptr, get_variable("TRV_TEST_L"));
    loaded_stores.environment = earlier;
    destroy_store(other);
}

TEST_F(Variables, HaveATextThatReplacesAnUndefinedOne) {
    EXPECT_EQ("", null_value("X"));
    store_.variable("TRVNULL = <$>$");
    EXPECT_EQ("<X>$", null_value("X"));
    EXPECT_EQ("<>$", null_value(nullptr));
    store_.variable("TRVNULL = none");
    EXPECT_EQ("none", null_value("X"));
}

TEST_F(Variables, PutTheRightNameIntoThatTextWhenItIsALookupResultItself) {
    store_.variable("NAME = 1");
    store_.variable("NAME = +2");
    store_.variable("TRVNULL = <");
    store_.variable("TRVNULL = +$>");
    EXPECT_EQ("<12>", null_value(get_variable("NAME")));
}

TEST_F(Variables, AreFoundUnderANameThatTheZoneHookOverwrites) {
    const ScopedVariable zone("TRVZONE", "here");
    store_.variable("NAME = TRV");
    store_.variable("NAME = +ZONE");
    store_.variable("OTHER = 1");
    store_.variable("OTHER = +2");
    const zone_hook earlier = set_zone_hook([] { get_variable("OTHER"); });
    EXPECT_STREQ("here", get_variable(get_variable("NAME")));
    set_zone_hook(earlier);
}

TEST_F(Variables, AreFoundUnderALookupResult) {
    store_.variable("TRV_TEST_A = 1");
    store_.variable("TRV_TEST_A = +2");
    store_.path("TRV_TEST_A = 3");
    store_.path("TRV_TEST_A = +4");
    store_.variable("NAME = TRV_");
    store_.variable("NAME = +TEST_A");
    EXPECT_STREQ("12", get_variable(get_variable("NAME")));
    EXPECT_STREQ("34", get_path_variable(get_variable("NAME")));
    EXPECT_STREQ("12", find_parameter(store_.get(), store_.var(), get_variable("NAME"), true));
    EXPECT_TRUE(variable_is_on(get_variable("NAME")));
}

TEST(Switches, AreOnUnlessTheyAreOff) {
    EXPECT_FALSE(is_on(nullptr));
    EXPECT_FALSE(is_on("OFF"));
    EXPECT_FALSE(is_on("Off"));
    EXPECT_FALSE(is_on("off"));
    EXPECT_TRUE(is_on(""));
    EXPECT_TRUE(is_on(" OFF"));
    EXPECT_TRUE(is_on("OFF2"));
    EXPECT_TRUE(is_on("0"));
    EXPECT_TRUE(is_on("ON"));
}

TEST_F(Variables, AreSwitches) {
    store_.variable("TRV_TEST_OFF = Off");
    store_.variable("TRV_TEST_ON = 0");
    EXPECT_FALSE(variable_is_on("TRV_TEST_OFF"));
    EXPECT_TRUE(variable_is_on("TRV_TEST_ON"));
    EXPECT_FALSE(variable_is_on("TRV_TEST_UNDEFINED"));
    EXPECT_FALSE(variable_is_on(nullptr));
}

TEST_F(Variables, ReportWhereTheirValueCameFrom) {
    store_.variable("TRV_TEST_F = v", "a.cfg", 12);
    store_.variable("TRV_TEST_S = v");
    EXPECT_EQ("from 'a.cfg' line 12", variableOrigin("TRV_TEST_F"));
    EXPECT_EQ("set by program", variableOrigin("TRV_TEST_S"));
    const ScopedVariable process("TRV_TEST_F", "v");
    EXPECT_EQ("from environment", variableOrigin("TRV_TEST_F"));
}

TEST_F(Variables, TellTheOriginOfTheTemporaryDirectory) {
    char origin[64] = "left over";
    EXPECT_EQ(-1, describe_variable_origin(origin, sizeof origin, "TMP", "x"));
    EXPECT_STREQ("", origin);
    const ScopedVariable directory("TRVTMPDIR", "x");
    EXPECT_EQ(0, describe_variable_origin(origin, sizeof origin, "TMP", "x"));
    EXPECT_STREQ("from environment variable TRVTMPDIR", origin);
}

TEST_F(Variables, OfPathsReportWhereTheirValueCameFrom) {
    store_.path("TRV_TEST_F = v", "a.cfg", 12);
    store_.path("TRV_TEST_S = v");
    EXPECT_EQ("from 'a.cfg' line 12", pathOrigin("TRV_TEST_F"));
    EXPECT_EQ("set by program", pathOrigin("TRV_TEST_S"));
    const ScopedVariable process("TRV_TEST_FPATH", "v");
    EXPECT_EQ("from environment 'TRV_TEST_FPATH'", pathOrigin("TRV_TEST_F"));
}

TEST_F(Variables, OfPathsTakeANullNameForTheEmptyOne) {
    const ScopedVariable process("PATH", "v");
    char origin[64] = "left over";
    EXPECT_EQ(0, describe_path_origin(origin, sizeof origin, nullptr, "v"));
    EXPECT_STREQ("from environment 'PATH'", origin);
}

TEST_F(Variables, WithoutAKnownOriginHaveAnEmptyOne) {
    char origin[64] = "left over";
    EXPECT_EQ(-1, describe_variable_origin(origin, sizeof origin, "TRV_TEST_X", "elsewhere"));
    EXPECT_STREQ("", origin);
    std::strcpy(origin, "left over");
    EXPECT_EQ(-1, describe_path_origin(origin, sizeof origin, "TRV_TEST_X", nullptr));
    EXPECT_STREQ("", origin);
    EXPECT_EQ(-1, describe_variable_origin(origin, sizeof origin, nullptr, nullptr));
}

TEST_F(Variables, DescribeNoMoreThanTheBufferHolds) {
    const ScopedVariable process("TRV_TEST_A", "v");
    const ScopedVariable list("TRV_TEST_LPATH", "v");
    char origin[10] = "#########";
    EXPECT_EQ(0, describe_variable_origin(origin, 5, "TRV_TEST_A", "v"));
    EXPECT_EQ(std::string("from\0####", 9), std::string(origin, 9));
    EXPECT_EQ(0, describe_path_origin(origin, 1, "TRV_TEST_L", "v"));
    EXPECT_EQ(std::string("\0rom\0####", 9), std::string(origin, 9));
    EXPECT_EQ(0, describe_variable_origin(origin, 0, "TRV_TEST_A", "v"));
    EXPECT_EQ(std::string("\0rom\0####", 9), std::string(origin, 9));
    EXPECT_EQ(0, describe_variable_origin(nullptr, 10, "TRV_TEST_A", "v"));
    EXPECT_EQ(0, describe_path_origin(nullptr, 10, "TRV_TEST_L", "v"));
}

TEST(ProcessStores, AreNoneUntilTheyAreLoaded) {
    const process_stores earlier = loaded_stores;
    loaded_stores = {};
    EXPECT_EQ(nullptr, environment_store());
    EXPECT_EQ(nullptr, application_store());
    EXPECT_EQ(nullptr, catalogue_store());
    EXPECT_EQ(nullptr, get_application_parameter("s", "n"));
    EXPECT_EQ(nullptr, get_catalogue_parameter("s", "n"));
    EXPECT_EQ(nullptr, get_catalogue_message("s", 0));
    EXPECT_EQ(nullptr, environment_store());
    loaded_stores = earlier;
}

TEST(ProcessStores, AreReadByExactSectionsAndNamesInAnyCase) {
    const process_stores earlier = loaded_stores;
    loaded_stores = {create_store(), create_store(), create_store()};
    set_variable(loaded_stores.application, add_section(loaded_stores.application, "s"), "N = a");
    set_variable(loaded_stores.catalogue, add_section(loaded_stores.catalogue, "t"), "N = c");

    EXPECT_STREQ("a", get_application_parameter("s", "n"));
    EXPECT_EQ(nullptr, get_application_parameter("S", "N"));
    EXPECT_EQ(nullptr, get_application_parameter("t", "N"));
    EXPECT_EQ(nullptr, get_application_parameter("s", "M"));
    EXPECT_EQ(nullptr, get_application_parameter(nullptr, "N"));
    EXPECT_EQ(nullptr, get_application_parameter("s", nullptr));
    EXPECT_STREQ("c", get_catalogue_parameter("t", "n"));
    EXPECT_EQ(nullptr, get_catalogue_parameter("T", "N"));
    EXPECT_STREQ("N = c", get_catalogue_message("t", 0));
    EXPECT_EQ(nullptr, get_catalogue_message("t", 1));
    EXPECT_EQ(nullptr, get_catalogue_message("t", -1));
    EXPECT_EQ(nullptr, get_catalogue_message("T", 0));
    EXPECT_EQ(nullptr, get_catalogue_message(nullptr, 0));

    destroy_store(loaded_stores.environment);
    destroy_store(loaded_stores.application);
    destroy_store(loaded_stores.catalogue);
    loaded_stores = earlier;
}

using LazyLoading = testing::ChildProcessTest;

TEST_F(LazyLoading, HappensAtTheFirstLookupThatTheProcessCannotAnswer) {
    TRV_EXPECT_IN_CHILD([] {
        const Installation installation;
        installation.write("config/environ.cfg", "[var]\nTRV_TEST_A = 1\n[path]\nL = d\n");
        const ScopedVariable process("TRV_TEST_B", "b");
        const ScopedVariable list("TRV_TEST_BPATH", "b");
        EXPECT_STREQ("b", get_variable("TRV_TEST_B"));
        EXPECT_STREQ("b", get_path_variable("TRV_TEST_B"));
        EXPECT_EQ(nullptr, environment_store());
        EXPECT_STREQ("1", get_variable("TRV_TEST_A"));
        EXPECT_NE(nullptr, environment_store());
        EXPECT_STREQ("d", get_path_variable("L"));
    });
}

TEST_F(LazyLoading, HappensForPathVariablesToo) {
    TRV_EXPECT_IN_CHILD([] {
        const Installation installation;
        installation.write("config/environ.cfg", "[path]\nL = d\n");
        EXPECT_STREQ("d", get_path_variable("L"));
    });
}

TEST_F(LazyLoading, AsksTheProcessOnceMoreForWhatItPublishes) {
    TRV_EXPECT_IN_CHILD([] {
        const Installation installation;
        installation.write("config/environ.cfg", "[var]\nTRVHOME = configured\n");
        platform::set_environment("TRVHOME", nullptr);
        platform::set_environment("TRVHOME_LS", installation.root().c_str());
        EXPECT_STREQ(installation.root().c_str(), get_variable("TRVHOME"));
    });
}

// A lookup result, "TRV_TEST_A". The next such result overwrites it, and the condition in the home
// file makes one.
class OverwrittenName {
public:
    OverwrittenName() {
        installation_.write("config/environ.cfg",
                            "[var]\nP = a++b\n/if P == a+b\n/endif\nTRV_TEST_A = found\n"
                            "TRVNULL = <$>\n[path]\nTRV_TEST_A = listed\n");
        add_section(store_, "s");
        set_variable(store_, 0, "N = TRV_TEST");
        set_variable(store_, 0, "N = +_A");
    }
    operator const char*() const { return find_parameter(store_, 0, "N", true); }

private:
    const Installation installation_;
    const testing::Store store_;
};

TEST_F(LazyLoading, DoesNotChangeTheNameThatIsLookedUp) {
    TRV_EXPECT_IN_CHILD([] {
        const OverwrittenName name;
        EXPECT_STREQ("found", get_variable(name));
    });
    TRV_EXPECT_IN_CHILD([] {
        const OverwrittenName name;
        EXPECT_STREQ("listed", get_path_variable(name));
    });
    TRV_EXPECT_IN_CHILD([] {
        const OverwrittenName name;
        EXPECT_TRUE(variable_is_on(name));
    });
    TRV_EXPECT_IN_CHILD([] {
        const OverwrittenName name;
        EXPECT_EQ("<TRV_TEST_A>", null_value(name));
    });
}

TEST_F(LazyLoading, IsNotDoneByTheOtherStores) {
    TRV_EXPECT_IN_CHILD([] {
        platform::set_environment("TRVHOME", nullptr);
        platform::set_environment("TRVHOME_LS", nullptr);
        EXPECT_EQ(nullptr, get_application_parameter("s", "n"));
        EXPECT_EQ(nullptr, get_catalogue_parameter("s", "n"));
        EXPECT_EQ(nullptr, get_catalogue_message("s", 0));
        EXPECT_EQ(nullptr, environment_store());
    });
}

TEST_F(LazyLoading, EndsTheProcessWithoutAnInstallation) {
    TRV_EXPECT_FATAL(
        [] {
            const Installation installation;
            platform::set_environment("TRVHOME", nullptr);
            get_variable("TRV_TEST_A");
        },
        "The environment variable 'TRVHOME' is not defined\n\n");
}

}  // namespace
}  // namespace trv
