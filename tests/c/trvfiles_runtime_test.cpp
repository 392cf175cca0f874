#include <tests/c/c_objects.h>
#include <tests/common/death_test.h>
#include <tests/environment/installation.h>
#include <trvfiles/support/diagnostics.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace trv::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// A configuration is loaded once in a process.
using CRuntime = ChildProcessTest;

constexpr const char* configuration =
    "[var]\nSITE = Erlbach\nLIB = $SITE/lib\nLIST = a\nUMLAUT = \xC3\xA9\n"
    "[path]\nCFG = $TRVHOME\\config\nENV = $TRVHOME\\site\n";

class Configured {
public:
    Configured() {
        installation.write("config/environ.cfg", configuration);
        installation.write("site/environ.cfg", "[var]\nLIST = +;b\n");
    }

    std::vector<std::string> variable(std::int32_t kind, const char* name) const {
        EXPECT_EQ(trvfiles_variable_get(kind, name, texts, fault), TRVFILES_SUCCESS);
        return texts.all();
    }

    Installation installation;
    Texts texts;
    FaultHandle fault;
};

TEST_F(CRuntime, FindsVariablesWithTheirOrigins) {
    const auto find = [] {
        const Configured host;
        EXPECT_THAT(host.variable(TRVFILES_VARIABLE, "site"),
                    ElementsAre("Erlbach", "from '" + host.installation.homeFile() + "' line 2"));
        EXPECT_THAT(host.variable(TRVFILES_VARIABLE, "UMLAUT").at(0), "\xC3\xA9");
        EXPECT_THAT(host.variable(TRVFILES_PATH_VARIABLE, "CFG").at(0), "$TRVHOME\\config");
        platform::set_environment("SITE", "Jena");
        EXPECT_THAT(host.variable(TRVFILES_VARIABLE, "SITE"),
                    ElementsAre("Jena", "from environment"));
        EXPECT_EQ(trvfiles_variable_get(0, "NOBODY", host.texts, host.fault), TRVFILES_UNDEFINED);
        EXPECT_EQ(host.fault.reason(), "a variable is not defined");
        EXPECT_EQ(trvfiles_variable_get(2, "SITE", host.texts, 0), TRVFILES_BAD_ARGUMENT);
        EXPECT_EQ(trvfiles_variable_get(0, "\xFF", host.texts, 0), TRVFILES_BAD_TEXT);
        EXPECT_EQ(host.texts.at(0), "Jena");
    };
    TRV_EXPECT_IN_CHILD(find);
}

TEST_F(CRuntime, ListsVariablesAndTheirDefinitions) {
    const auto list = [] {
        const Configured host;
        const std::string home = host.installation.homeFile();
        const std::string site = host.installation.path("site/environ.cfg");
        ASSERT_EQ(trvfiles_variable_definitions(0, "list", host.texts, 0), TRVFILES_SUCCESS);
        EXPECT_THAT(host.texts.all(), ElementsAre("LIST = +;b", site, "2", "LIST = a", home, "4"));
        EXPECT_THAT(host.variable(0, "LIST"), ElementsAre("a;b", ::testing::_));
        ASSERT_EQ(trvfiles_variable_definitions(1, "CFG", host.texts, 0), TRVFILES_SUCCESS);
        EXPECT_THAT(host.texts.all(), ElementsAre("CFG = $TRVHOME\\config", home, "7"));
        ASSERT_EQ(trvfiles_variable_definitions(0, "PC", host.texts, 0), TRVFILES_SUCCESS);
        EXPECT_THAT(host.texts.all(), ElementsAre("PC = 1", "", "0"));
        EXPECT_EQ(trvfiles_variable_definitions(0, "NOBODY", host.texts, 0), TRVFILES_UNDEFINED);
        ASSERT_EQ(trvfiles_variable_list(host.texts, 0), TRVFILES_SUCCESS);
        const std::vector<std::string> all = host.texts.all();
        ASSERT_GE(all.size(), 4U);
        EXPECT_EQ(all[0], "SITE");
        EXPECT_EQ(all[1], "Erlbach");
        EXPECT_EQ(all[3], "$SITE/lib");
    };
    TRV_EXPECT_IN_CHILD(list);
}

TEST_F(CRuntime, ExpandsTexts) {
    const auto expand = [] {
        const Configured host;
        ASSERT_EQ(trvfiles_expand("$LIB//x", 0, host.texts, 0), TRVFILES_SUCCESS);
        EXPECT_EQ(host.texts.one(), "Erlbach/lib//x");
        ASSERT_EQ(trvfiles_expand("$LIB//x", 1, host.texts, 0), TRVFILES_SUCCESS);
        EXPECT_EQ(host.texts.one(), "Erlbach\\lib\\x");
        EXPECT_EQ(trvfiles_expand("$NOBODY.", 0, host.texts, host.fault), TRVFILES_UNDEFINED);
        EXPECT_EQ(host.texts.one(), ".");
        EXPECT_EQ(trvfiles_expand("${LIB", 0, host.texts, host.fault), TRVFILES_SYNTAX_ERROR);
        EXPECT_EQ(host.fault.reason(), "a name in brackets has no closing bracket");
        platform::set_environment("LOOP", "$LOOP");
        EXPECT_EQ(trvfiles_expand("$LOOP", 0, host.texts, 0), TRVFILES_NAME_TOO_LONG);
        EXPECT_EQ(host.texts.one(), ".");
    };
    TRV_EXPECT_IN_CHILD(expand);
}

TEST_F(CRuntime, SearchesFiles) {
    const auto search = [] {
        const Configured host;
        const std::string found = host.installation.path("config/environ.cfg");
        ASSERT_EQ(trvfiles_search(nullptr, "?CFG\\environ.cfg", host.texts, 0), TRVFILES_SUCCESS);
        EXPECT_EQ(backslashed(host.texts.one()), found);
        ASSERT_EQ(trvfiles_search("?CFG", "environ.cfg", host.texts, 0), TRVFILES_SUCCESS);
        EXPECT_EQ(backslashed(host.texts.one()), found);
        EXPECT_EQ(trvfiles_search("?CFG", "missing", host.texts, host.fault), TRVFILES_NOT_FOUND);
        EXPECT_EQ(backslashed(host.texts.one()), host.installation.path("config/missing"));
        EXPECT_EQ(trvfiles_search(nullptr, "?CFG", host.texts, 0), TRVFILES_NO_FILE_NAME);
        EXPECT_EQ(trvfiles_search(nullptr, "$NOBODY", host.texts, 0), TRVFILES_UNDEFINED);
        EXPECT_EQ(trvfiles_search(nullptr, std::string(600, 'a').c_str(), host.texts, 0),
                  TRVFILES_NAME_TOO_LONG);
    };
    TRV_EXPECT_IN_CHILD(search);
}

TEST_F(CRuntime, FindsTheRoot) {
    const auto find = [] {
        const Configured host;
        ASSERT_EQ(trvfiles_install_root(0, host.texts, 0), TRVFILES_SUCCESS);
        EXPECT_EQ(host.texts.one(), host.installation.root());
        platform::set_environment("TRVHOME", nullptr);
        EXPECT_EQ(trvfiles_install_root(0, host.texts, 0), TRVFILES_NOT_FOUND);
        platform::set_environment("TRVHOME_LS", host.installation.root().c_str());
        ASSERT_EQ(trvfiles_install_root(1, host.texts, 0), TRVFILES_SUCCESS);
        EXPECT_STREQ(platform::get_environment("TRVHOME"), host.installation.root().c_str());
    };
    TRV_EXPECT_IN_CHILD(find);
}

TEST_F(CRuntime, SetsVariablesOfTheProcess) {
    const auto set = [] {
        const Configured host;
        ASSERT_EQ(trvfiles_process_variable_set("OWN", "value 1", 0), TRVFILES_SUCCESS);
        EXPECT_STREQ(platform::get_environment("OWN"), "value 1");
        EXPECT_EQ(host.variable(TRVFILES_VARIABLE, "OWN").at(0), "value 1");
        ASSERT_EQ(trvfiles_process_variable_set("OWN", "", 0), TRVFILES_SUCCESS);
        EXPECT_EQ(platform::get_environment("OWN"), nullptr);
        EXPECT_EQ(trvfiles_process_variable_set("A=B", "x", 0), TRVFILES_FAILED);
        EXPECT_EQ(trvfiles_process_variable_set("", "x", 0), TRVFILES_FAILED);
        EXPECT_EQ(trvfiles_process_variable_set("OWN", "\xFF", 0), TRVFILES_BAD_TEXT);
    };
    TRV_EXPECT_IN_CHILD(set);
}

// By default such a report ends the process.
TEST_F(CRuntime, TurnsAFatalReportIntoAStatus) {
    const auto load = [] {
        const Configured host;
        host.installation.write("config/environ.cfg", "[var]\nA = 1\n/endif\n");
        EXPECT_EQ(trvfiles_variable_get(0, "A", host.texts, host.fault), TRVFILES_FATAL_REPORT);
        EXPECT_THAT(host.fault.reason(), HasSubstr("environ.cfg"));
        EXPECT_THAT(host.fault.reason(), HasSubstr("line 3"));
        EXPECT_EQ(trvfiles_variable_get(0, "A", host.texts, 0), TRVFILES_SUCCESS);
        EXPECT_EQ(host.texts.at(0), "1");
    };
    TRV_EXPECT_IN_CHILD(load);
}

struct Message {
    std::int32_t channel;
    std::string text;
    bool operator==(const Message& other) const {
        return channel == other.channel && text == other.text;
    }
};

void record(void* context, std::int32_t channel, const char* message) {
    static_cast<std::vector<Message>*>(context)->push_back({channel, message});
}

TEST_F(CRuntime, SendsMessagesToTheHandlers) {
    const auto send = [] {
        const Configured host;
        std::vector<Message> messages;
        for (std::int32_t channel = 0; channel < 3; ++channel)
            ASSERT_EQ(trvfiles_channel_set(channel, record, &messages, 0), TRVFILES_SUCCESS);
        report_error("caf\xC3\xA9");
        EXPECT_THAT(messages, ElementsAre(Message{TRVFILES_CHANNEL_ERROR, "caf\xC3\xA9"}));
        messages.clear();
        ASSERT_EQ(trvfiles_expand("$SITE", 0, host.texts, 0), TRVFILES_SUCCESS);
        ASSERT_FALSE(messages.empty());
        EXPECT_EQ(messages.back().channel, TRVFILES_CHANNEL_TRACE);
        EXPECT_THAT(messages.back().text, HasSubstr("SITE = 'Erlbach'"));
        messages.clear();
        const Context context;
        EXPECT_EQ(trvfiles_context_write(context, "missing/a.mctx", host.fault),
                  TRVFILES_FATAL_REPORT);
        ASSERT_EQ(messages.size(), 1U);
        EXPECT_EQ(messages[0].channel, TRVFILES_CHANNEL_FATAL);
        EXPECT_THAT(messages[0].text, HasSubstr(host.fault.reason()));
        for (std::int32_t channel = 0; channel < 3; ++channel)
            ASSERT_EQ(trvfiles_channel_set(channel, nullptr, nullptr, 0), TRVFILES_SUCCESS);
        messages.clear();
        EXPECT_EQ(trvfiles_context_write(context, "missing/a.mctx", host.fault),
                  TRVFILES_FATAL_REPORT);
        EXPECT_THAT(messages, IsEmpty());
        EXPECT_EQ(trvfiles_channel_set(-1, record, nullptr, 0), TRVFILES_BAD_ARGUMENT);
        EXPECT_EQ(trvfiles_channel_set(3, record, nullptr, 0), TRVFILES_BAD_ARGUMENT);
    };
    TRV_EXPECT_IN_CHILD(send);
}

// A call from a handler has a fatal report of its own.
void writeAgain(void* context, std::int32_t, const char*) {
    auto& statuses = *static_cast<std::vector<std::int32_t>*>(context);
    if (!statuses.empty()) return;
    const Context data;
    statuses.push_back(0);
    statuses.push_back(trvfiles_context_write(data, "missing/inner.mctx", 0));
    const Texts texts;
    statuses.push_back(trvfiles_expand("a", 0, texts, 0));
}

TEST_F(CRuntime, MayBeUsedByAHandler) {
    const auto call = [] {
        std::vector<std::int32_t> statuses;
        const Configured host;
        const Context data;
        trvfiles_channel_set(TRVFILES_CHANNEL_FATAL, writeAgain, &statuses, 0);
        EXPECT_EQ(trvfiles_context_write(data, "missing/outer.mctx", host.fault),
                  TRVFILES_FATAL_REPORT);
        EXPECT_THAT(host.fault.reason(), HasSubstr("outer.mctx"));
        EXPECT_THAT(statuses, ElementsAre(0, TRVFILES_FATAL_REPORT, TRVFILES_SUCCESS));
    };
    TRV_EXPECT_IN_CHILD(call);
}

// Only a host in C++ can throw.
TEST_F(CRuntime, StopsTheExceptionsOfHandlers) {
    const auto call = [] {
        const Configured host;
        const auto handler = [](void* context, std::int32_t, const char*) {
            if (context == nullptr) throw 1;
            throw std::runtime_error("from the handler");
        };
        int any = 0;
        trvfiles_channel_set(TRVFILES_CHANNEL_TRACE, handler, &any, 0);
        EXPECT_EQ(trvfiles_expand("$SITE", 0, host.texts, host.fault), TRVFILES_INTERNAL_ERROR);
        EXPECT_EQ(host.fault.reason(), "from the handler");
        trvfiles_channel_set(TRVFILES_CHANNEL_TRACE, handler, nullptr, 0);
        EXPECT_EQ(trvfiles_expand("$SITE", 0, host.texts, host.fault), TRVFILES_INTERNAL_ERROR);
        EXPECT_EQ(host.fault.reason(), "an unknown exception");
        trvfiles_channel_set(TRVFILES_CHANNEL_TRACE, nullptr, nullptr, 0);
        EXPECT_EQ(trvfiles_expand("$SITE", 0, host.texts, host.fault), TRVFILES_SUCCESS);
    };
    TRV_EXPECT_IN_CHILD(call);
}

// The handler of a host in C++ is back after a call.
TEST_F(CRuntime, KeepsTheHandlerOfACppHost) {
    const auto call = [] {
        static int reports = 0;
        set_fatal_handler([](const char*) { ++reports; });
        const Context data;
        EXPECT_EQ(trvfiles_context_write(data, "missing/a.mctx", 0), TRVFILES_FATAL_REPORT);
        EXPECT_EQ(reports, 0);
        report_fatal("one");
        EXPECT_EQ(reports, 1);
    };
    TRV_EXPECT_IN_CHILD(call);
}

TEST(COutput, IsQuietOrEchoed) {
    ASSERT_EQ(trvfiles_channel_set_output(1, 0, 0), TRVFILES_SUCCESS);
    EXPECT_EQ(quiet_errors(), 1);
    EXPECT_EQ(echo_output(), 0);
    ASSERT_EQ(trvfiles_channel_set_output(0, 1, 0), TRVFILES_SUCCESS);
    EXPECT_EQ(quiet_errors(), 0);
    EXPECT_EQ(echo_output(), 1);
    ASSERT_EQ(trvfiles_channel_set_output(0, 0, 0), TRVFILES_SUCCESS);
}

}  // namespace
}  // namespace trv::testing
