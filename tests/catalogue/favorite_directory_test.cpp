#include <tests/common/channel_log.h>
#include <tests/common/current_directory.h>
#include <tests/common/death_test.h>
#include <tests/common/file_bytes.h>
#include <tests/common/scoped_variable.h>
#include <tests/environment/installation.h>
#include <trvfiles/catalogue/CMachineContextUtils.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/support/platform.h>

#include <QString>
#include <QTextCodec>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

// The configuration is loaded once in a process, so each test runs in its own process.

namespace fs = std::filesystem;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using trv::testing::backslashed;
using trv::testing::ChannelLog;
using trv::testing::CurrentDirectory;
using trv::testing::ScopedVariable;

namespace {

constexpr char noRoot[] = "The environment variable 'TRVHOME' is not defined\n";

void setVariable(const char* name, const std::string& value) {
    ASSERT_TRUE(trv::platform::set_environment(name, value.c_str()));
}

/// An installation with this configuration; the directory of the favourites is not set.
class Installation : public trv::testing::Installation {
public:
    explicit Installation(const std::string& configuration = "[var]\n") {
        trv::platform::set_environment("TRV_MCTX_DEF", nullptr);
        write("config/environ.cfg", configuration);
    }

    /// The root as the catalogue returns it.
    std::string root() const {
        return std::filesystem::path(trv::testing::Installation::root()).generic_string();
    }

    std::string fallback() const { return root() + "/standard/machine_context"; }

    /// The trace of a lookup of the root.
    std::string rootTrace() const {
        return "TRVHOME = '" + trv::testing::Installation::root() + "' from environment";
    }
};

/// The directory in UTF-8.
std::string favorites() {
    return QString::fromStdWString(CMachineContextUtils::sGetFavoriteMachineContextDirectoryW())
        .toStdString();
}

std::vector<std::string> contexts(const std::wstring& directory) {
    std::vector<std::string> paths;
    for (const std::wstring& path : CMachineContextUtils::sGetFavoriteMachineContext(directory))
        paths.push_back(QString::fromStdWString(path).toStdString());
    return paths;
}

using FavoriteDirectory = trv::testing::ChildProcessTest;

}  // namespace

TEST_F(FavoriteDirectory, IsGivenAsNarrowTextToo) {
    const auto ask = [] {
        const Installation installation;
        setVariable("TRV_MCTX_DEF", installation.root() + "/fav\xC3\xA4");
        EXPECT_EQ(CMachineContextUtils::sGetFavoriteMachineContextDirectory(),
                  installation.root() + "/fav\xC3\xA4");
    };
    TRV_EXPECT_IN_CHILD(ask);
}

TEST_F(FavoriteDirectory, IsTheUnchangedValueOfTheVariable) {
    const auto ask = [] {
        const Installation installation;
        const std::string directory = installation.root() + "/no such directory";
        setVariable("TRV_MCTX_DEF", directory);
        const ChannelLog log;
        EXPECT_EQ(favorites(), directory);
        EXPECT_FALSE(fs::exists(directory));
        EXPECT_EQ(trv::environment_store(), nullptr);
        EXPECT_THAT(log.errors(), IsEmpty());
        EXPECT_THAT(log.fatals(), IsEmpty());
    };
    TRV_EXPECT_IN_CHILD(ask);
}

TEST_F(FavoriteDirectory, MayBeSetInTheConfiguration) {
    const auto ask = [] {
        const Installation installation("[var]\nTRV_MCTX_DEF = $TRVHOME/favourites\n");
        EXPECT_EQ(favorites(), installation.root() + "/favourites");
        setVariable("TRV_MCTX_DEF", installation.root() + "/other");
        EXPECT_EQ(favorites(), installation.root() + "/other");
    };
    TRV_EXPECT_IN_CHILD(ask);
}

TEST_F(FavoriteDirectory, MayBeMadeOfOtherVariables) {
    const auto ask = [] {
        const Installation installation("[var]\nSITE = $BASE/site\nBASE = $TRVHOME/base\n");
        setVariable("TRV_MCTX_DEF", "${SITE}s/$LAST");
        setVariable("LAST", "last");
        EXPECT_EQ(favorites(), installation.root() + "/base/sites/last");
    };
    TRV_EXPECT_IN_CHILD(ask);
}

TEST_F(FavoriteDirectory, IsMadeAbsoluteAgainstTheCurrentDirectory) {
    const auto ask = [] {
        const Installation installation;
        installation.makeDirectory("here/deeper");
        setVariable("TRV_MCTX_DEF", "fav/sub");
        const CurrentDirectory here(installation.file("here"));
        EXPECT_EQ(favorites(), installation.root() + "/here/fav/sub");
        const CurrentDirectory below(installation.file("here/deeper"));
        EXPECT_EQ(favorites(), installation.root() + "/here/deeper/fav/sub");
        setVariable("TRV_MCTX_DEF", "..");
        EXPECT_EQ(favorites(), installation.root() + "/here");
        setVariable("TRV_MCTX_DEF", ".");
        EXPECT_EQ(favorites(), installation.root() + "/here/deeper");
    };
    TRV_EXPECT_IN_CHILD(ask);
}

TEST_F(FavoriteDirectory, HasTheSameNameUnderEveryCodecOfTheHost) {
    if (!trv::platform::narrow_text_is_utf8()) GTEST_SKIP() << "narrow text is in the code page";
    const auto ask = [] {
        const Installation installation;
        installation.write("\xC3\xA4/fav/\xC3\xB6/\xC3\xB6.mctx", "x");
        const CurrentDirectory here(installation.file("\xC3\xA4"));
        for (const char* codec : {"ISO-8859-1", "Shift_JIS", "UTF-8"}) {
            QTextCodec::setCodecForLocale(QTextCodec::codecForName(codec));
            setVariable("TRV_MCTX_DEF", "fav");
            const std::string fav = installation.root() + "/\xC3\xA4/fav";
            EXPECT_EQ(favorites(), fav) << codec;
            EXPECT_THAT(contexts(L""), ElementsAre(fav + "/\xC3\xB6/\xC3\xB6.mctx")) << codec;
        }
    };
    TRV_EXPECT_IN_CHILD(ask);
}

TEST_F(FavoriteDirectory, ComesBackCleanWithSlashes) {
    const auto ask = [] {
        const Installation installation;
        for (const char* end : {"/fav/sub", "\\fav\\sub", "/fav\\sub", "/fav/sub/", "\\fav\\sub\\",
                                "//fav//./sub//", "/fav/x/../sub", "\\fav\\x\\..\\sub"}) {
            setVariable("TRV_MCTX_DEF", installation.root() + end);
            EXPECT_EQ(favorites(), installation.root() + "/fav/sub") << end;
        }
        setVariable("TRV_MCTX_DEF", backslashed(installation.root()) + "\\fav");
        EXPECT_EQ(favorites(), installation.root() + "/fav");
    };
    TRV_EXPECT_IN_CHILD(ask);
}

TEST_F(FavoriteDirectory, MayHaveAnyCharactersInItsName) {
    const auto ask = [] {
        const Installation installation;
        for (const char* name : {"/50%d%s", "/[a] b", "/~", "/a+b(1)", "/#x"}) {
            setVariable("TRV_MCTX_DEF", installation.root() + name);
            EXPECT_EQ(favorites(), installation.root() + name);
        }
        setVariable("TRV_MCTX_DEF", installation.root() + "/a$$b");
        EXPECT_EQ(favorites(), installation.root() + "/a$b");
        setVariable("TRV_MCTX_DEF", installation.root() + "/\xC3\xA4\xE4\xB8\xAD");
        EXPECT_EQ(favorites(), installation.root() + "/\xC3\xA4\xE4\xB8\xAD");
        setVariable("TRV_MCTX_DEF", installation.root() + "/\xE4");
        EXPECT_EQ(favorites(), installation.root() + "/\xEF\xBF\xBD");
    };
    TRV_EXPECT_IN_CHILD(ask);
}

TEST_F(FavoriteDirectory, BelongsToTheInstallationIfTheVariableIsUndefined) {
    const auto ask = [] {
        const Installation installation;
        EXPECT_EQ(favorites(), installation.fallback());
        EXPECT_FALSE(fs::exists(installation.fallback()));
        EXPECT_NE(trv::environment_store(), nullptr);
    };
    TRV_EXPECT_IN_CHILD(ask);
}

TEST_F(FavoriteDirectory, BelongsToTheInstallationThatTheLoadingFinds) {
    const auto ask = [] {
        const Installation installation;
        setVariable("TRVHOME_LS", installation.root());
        setVariable("TRVHOME", "");
        EXPECT_EQ(favorites(), installation.fallback());
    };
    TRV_EXPECT_IN_CHILD(ask);
}

TEST_F(FavoriteDirectory, BelongsToTheInstallationIfTheVariableIsEmpty) {
    const auto ask = [] {
        const Installation installation("[var]\nTRV_MCTX_DEF =\n");
        EXPECT_EQ(favorites(), installation.fallback());
        const ScopedVariable empty("TRV_MCTX_DEF", "");
        EXPECT_EQ(favorites(), installation.fallback());
    };
    TRV_EXPECT_IN_CHILD(ask);
}

TEST_F(FavoriteDirectory, IsEmptyIfTheConfiguredRootIsEmpty) {
    const auto ask = [] {
        const Installation installation("[var]\nTRVHOME =\n");
        trv::get_variable("TRV_MCTX_DEF");
        setVariable("TRVHOME", "");
        EXPECT_EQ(favorites(), "");
    };
    TRV_EXPECT_IN_CHILD(ask);
}

TEST_F(FavoriteDirectory, IsTheConfiguredOneIfThatOfTheEnvironmentIsEmpty) {
    const auto ask = [] {
        const Installation installation("[var]\nTRV_MCTX_DEF = $TRVHOME/favourites\n");
        const ScopedVariable empty("TRV_MCTX_DEF", "");
        EXPECT_EQ(favorites(), installation.root() + "/favourites");
    };
    TRV_EXPECT_IN_CHILD(ask);
}

TEST_F(FavoriteDirectory, BelongsToTheInstallationIfTheValueExpandsToNothing) {
    const auto ask = [] {
        const Installation installation;
        setVariable("TRV_MCTX_DEF", "$NO_SUCH_VARIABLE");
        EXPECT_EQ(favorites(), installation.fallback());
    };
    TRV_EXPECT_IN_CHILD(ask);
}

TEST_F(FavoriteDirectory, IsNeverTheTextForUndefinedVariables) {
    const auto ask = [] {
        const Installation installation("[var]\nTRVNULL = undefined-$\n");
        EXPECT_EQ(favorites(), installation.fallback());
    };
    TRV_EXPECT_IN_CHILD(ask);
}

TEST_F(FavoriteDirectory, BelongsToTheInstallationIfTheValueCannotBeExpanded) {
    const auto ask = [] {
        const Installation installation;
        const ChannelLog log;
        setVariable("TRV_MCTX_DEF", "a$TRV_MCTX_DEF");
        EXPECT_EQ(favorites(), installation.fallback());
        setVariable("TRV_MCTX_DEF", "a$(B");
        EXPECT_EQ(favorites(), installation.fallback());
        EXPECT_THAT(log.errors(),
                    ElementsAre("_Expand(\"$TRV_MCTX_DEF\") = error -42",
                                "_Expand(\"$TRV_MCTX_DEF\") = error -31 - syntax error"));
        EXPECT_THAT(log.fatals(), IsEmpty());
    };
    TRV_EXPECT_IN_CHILD(ask);
}

TEST_F(FavoriteDirectory, HasUpTo399BytesWhenItIsExpanded) {
    const auto ask = [] {
        const Installation installation;
        const ChannelLog log;
        const std::string longest = installation.root() + "/" + std::string(200, 'a') + "/";
        const std::string end(399 - longest.size(), 'b');
        setVariable("TRV_MCTX_DEF", longest + end);
        EXPECT_EQ(favorites(), longest + end);
        EXPECT_THAT(log.errors(), IsEmpty());
        setVariable("TRV_MCTX_DEF", longest + end + "b");
        EXPECT_EQ(favorites(), installation.fallback());
        setVariable("TRV_MCTX_DEF", "$ONE$TWO");
        setVariable("ONE", longest);
        setVariable("TWO", end);
        EXPECT_EQ(favorites(), longest + end);
        setVariable("TWO", end + "b");
        EXPECT_EQ(favorites(), installation.fallback());
        const std::string text =
            "_Expand(\"$TRV_MCTX_DEF\") = error -32 - buffer size 400 too small";
        EXPECT_THAT(log.errors(), ElementsAre(text, text));
    };
    TRV_EXPECT_IN_CHILD(ask);
}

TEST_F(FavoriteDirectory, IsEmptyIfThatOfTheInstallationIsTooLongToo) {
    const auto ask = [] {
        const Installation installation("[var]\nTRV_MCTX_DEF =\n");
        EXPECT_EQ(favorites(), installation.fallback());
        const ChannelLog log;
        const std::string start = installation.root() + "/" + std::string(200, 'a') + "/";
        const std::string longest =
            start +
            std::string(399 - start.size() - std::string("/standard/machine_context").size(), 'b');
        setVariable("TRVHOME", longest);
        EXPECT_EQ(favorites(), longest + "/standard/machine_context");
        EXPECT_THAT(log.errors(), IsEmpty());
        setVariable("TRVHOME", longest + "b");
        EXPECT_EQ(favorites(), "");
        EXPECT_THAT(log.errors(),
                    ElementsAre("_Expand(\"$TRVHOME\\standard\\machine_context\") = error -32 - "
                                "buffer size 400 too small"));
        EXPECT_THAT(contexts(L""), IsEmpty());
    };
    TRV_EXPECT_IN_CHILD(ask);
}

// The trace. The variable is always expanded, and undefined references are reported.

TEST_F(FavoriteDirectory, TracesTheVariableThatItIsTakenFrom) {
    const auto ask = [] {
        const Installation installation;
        const std::string directory = installation.root() + "/fav";
        setVariable("TRV_MCTX_DEF", directory);
        const ChannelLog log;
        EXPECT_EQ(favorites(), directory);
        EXPECT_THAT(log.traces(),
                    ElementsAre("TRV_MCTX_DEF = '" + directory + "' from environment"));
    };
    TRV_EXPECT_IN_CHILD(ask);
}

TEST_F(FavoriteDirectory, TracesTheUndefinedVariableAndTheInstallation) {
    const auto ask = [] {
        const Installation installation;
        trv::get_variable("TRV_MCTX_DEF");
        const std::string root = installation.rootTrace();
        const ChannelLog log;
        EXPECT_EQ(favorites(), installation.fallback());
        EXPECT_THAT(log.traces(), ElementsAre("TRV_MCTX_DEF = <undefined variable>", root));
        log.traces().clear();
        const ScopedVariable empty("TRV_MCTX_DEF", "");
        EXPECT_EQ(favorites(), installation.fallback());
        EXPECT_THAT(log.traces(), ElementsAre("TRV_MCTX_DEF = <undefined variable>", root));
        EXPECT_THAT(log.errors(), IsEmpty());
    };
    TRV_EXPECT_IN_CHILD(ask);
}

TEST_F(FavoriteDirectory, TracesAnEmptyValueOfTheConfiguration) {
    const auto ask = [] {
        const Installation installation("[var]\nTRV_MCTX_DEF =\n");
        trv::get_variable("TRV_MCTX_DEF");
        const ChannelLog log;
        EXPECT_EQ(favorites(), installation.fallback());
        ASSERT_THAT(log.traces(), ::testing::SizeIs(2));
        EXPECT_THAT(log.traces()[0], ::testing::StartsWith("TRV_MCTX_DEF = '' "));
        EXPECT_EQ(log.traces()[1], installation.rootTrace());
    };
    TRV_EXPECT_IN_CHILD(ask);
}

TEST_F(FavoriteDirectory, TracesTheUndefinedInstallation) {
    const auto ask = [] {
        const Installation installation;
        setVariable("TRVHOME", "");
        setVariable("TRVNULL", "null-$");
        const ChannelLog log;
        EXPECT_EQ(favorites(), "");
        // Each lookup tries to load the configuration, which is traced too.
        std::vector<std::string>& traces = log.traces();
        traces.erase(std::remove(traces.begin(), traces.end(), "LOADING ENVIRONMENT FILES ...."),
                     traces.end());
        EXPECT_THAT(traces, ElementsAre("TRV_MCTX_DEF = <undefined variable>",
                                        "TRVHOME = <undefined variable>"));
    };
    TRV_EXPECT_IN_CHILD(ask);
}

TEST_F(FavoriteDirectory, ReportsATextForUndefinedVariablesThatIsTooLong) {
    const auto ask = [] {
        const Installation installation;
        setVariable("TRVNULL", std::string(400, 'n'));
        const ChannelLog log;
        EXPECT_EQ(favorites(), installation.fallback());
        EXPECT_THAT(log.errors(), ElementsAre("_Expand(\"$TRV_MCTX_DEF\") = error -32 - buffer "
                                              "size 400 too small"));
    };
    TRV_EXPECT_IN_CHILD(ask);
}

// A value with a "+" is in a buffer that every lookup overwrites, also a lookup by a trace handler.
TEST_F(FavoriteDirectory, OutlivesTheLookupsOfATraceHandler) {
    const auto ask = [] {
        const Installation installation(
            "[var]\nOTHER = o++o++o\nTRV_MCTX_DEF = $TRVHOME/a++b/$SUB\nSUB = c++d\n");
        const ChannelLog log;
        trv::set_trace_handler([](const char*) { trv::get_variable("OTHER"); });
        EXPECT_EQ(favorites(), installation.root() + "/a+b/c+d");
    };
    TRV_EXPECT_IN_CHILD(ask);
}

TEST_F(FavoriteDirectory, IsFatalIfThereIsNoInstallation) {
    const auto ask = [] {
        for (const char* name : {"TRV_MCTX_DEF", "TRVHOME", "TRVHOME_LS"})
            setVariable(name, "");
        favorites();
    };
    TRV_EXPECT_FATAL(ask, std::string(noRoot) + "\n");
}

TEST_F(FavoriteDirectory, IsEmptyIfThereIsNoInstallationAndTheHandlerReturns) {
    const auto ask = [] {
        const Installation installation;
        setVariable("TRVHOME", "");
        installation.write("A/A.mctx", "x");
        const CurrentDirectory here(installation.root());
        const ChannelLog log;
        EXPECT_EQ(favorites(), "");
        EXPECT_THAT(log.fatals(), Not(IsEmpty()));
        EXPECT_THAT(log.fatals(), Each(std::string(noRoot)));
        EXPECT_THAT(contexts(L""), IsEmpty());
    };
    TRV_EXPECT_IN_CHILD(ask);
}

TEST_F(FavoriteDirectory, NeedsNoInstallationIfTheVariableIsSet) {
    const auto ask = [] {
        const Installation installation;
        setVariable("TRVHOME", "");
        setVariable("TRV_MCTX_DEF", installation.root() + "/fav");
        EXPECT_EQ(favorites(), installation.root() + "/fav");
    };
    TRV_EXPECT_IN_CHILD(ask);
}

TEST_F(FavoriteDirectory, IsListedIfNoOtherIsGiven) {
    const auto ask = [] {
        const Installation installation;
        installation.write("fav/A/A.mctx", "x");
        installation.write("fav/B/B.mctx", "x");
        installation.write("fav/B/D/D.mctx", "x");
        installation.write("standard/machine_context/S/S.mctx", "x");
        EXPECT_THAT(contexts(L""), ElementsAre(installation.fallback() + "/S/S.mctx"));
        setVariable("TRV_MCTX_DEF", backslashed(installation.root()) + "\\fav");
        const std::string fav = installation.root() + "/fav";
        EXPECT_THAT(contexts(L""), ElementsAre(fav + "/A/A.mctx", fav + "/B/B.mctx"));
        EXPECT_THAT(contexts(fs::u8path(fav + "/B").wstring()), ElementsAre(fav + "/B/D/D.mctx"));
        setVariable("TRV_MCTX_DEF", installation.root() + "/missing");
        EXPECT_THAT(contexts(L""), IsEmpty());
    };
    TRV_EXPECT_IN_CHILD(ask);
}
