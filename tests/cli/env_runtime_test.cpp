#include <cli/env_runtime.h>
#include <tests/cli/env_sample.h>
#include <trvfiles/support/diagnostics.h>

#include <gtest/gtest.h>

#include <sstream>

namespace trv::testing {
namespace {

using cli::RuntimeMessages;

TEST(RuntimeMessages, HoldsEachReportOnce) {
    std::ostringstream err;
    RuntimeMessages messages(err);
    report_fatal("broken\n");
    report_error("odd");
    for (int i = 0; i < 1000; ++i)
        report_fatal("broken");
    const std::vector<RuntimeMessages::Report> reports = messages.takeReports();
    ASSERT_EQ(reports.size(), 2U);
    EXPECT_TRUE(reports[0].fatal);
    EXPECT_EQ(reports[0].text, "broken");
    EXPECT_FALSE(reports[1].fatal);
    EXPECT_EQ(reports[1].text, "odd");
    EXPECT_TRUE(messages.takeReports().empty());
    report_error("odd");
    EXPECT_EQ(messages.takeReports().size(), 1U);
}

TEST(RuntimeMessages, HoldsTheFaultThatAReportIsAbout) {
    std::ostringstream err;
    RuntimeMessages messages(err);
    report_error("odd");
    const std::string file = "a.msg";
    current_observer().fault_found({fault_kind::invalid_condition, file, 7, "wrong", "x"});
    report_fatal("broken");
    const std::vector<RuntimeMessages::Report> reports = messages.takeReports();
    ASSERT_EQ(reports.size(), 3U);
    EXPECT_FALSE(reports[0].fault);
    EXPECT_TRUE(reports[1].fatal);
    EXPECT_EQ(reports[1].text, "load_messages: file 'a.msg', line 7 : wrong");
    ASSERT_TRUE(reports[1].fault);
    EXPECT_EQ(reports[1].fault->file, "a.msg");
    EXPECT_EQ(reports[1].fault->line, 7);
    EXPECT_EQ(reports[1].fault->text, "wrong");
    EXPECT_EQ(reports[1].fault->subject, "x");
    EXPECT_EQ(reports[0].code.toStdString(), "runtime-message");
    EXPECT_EQ(reports[1].code.toStdString(), "condition-invalid");
    EXPECT_FALSE(reports[2].fault);
}

// A line for each "+" of a long history takes time for the square of its length.
TEST(RuntimeMessages, MakesNoTraceThatIsNotRead) {
    std::ostringstream err;
    const RuntimeMessages messages(err);
    EXPECT_FALSE(trace_is_seen());
}

TEST(RuntimeMessages, ReportsWhetherOneOfTheReportsIsFatal) {
    std::ostringstream err;
    RuntimeMessages messages(err);
    EXPECT_FALSE(messages.hasFatalReport());
    report_error("a");
    EXPECT_FALSE(messages.hasFatalReport());
    report_fatal("b");
    report_error("c");
    EXPECT_TRUE(messages.hasFatalReport());
    messages.takeReports();
    EXPECT_FALSE(messages.hasFatalReport());
}

TEST(RuntimeMessages, RestoresTheDefaultHandlersAtItsEnd) {
    set_error_handler(nullptr);
    set_fatal_handler(nullptr);
    const message_handler defaultError = set_error_handler(nullptr);
    const message_handler defaultFatal = set_fatal_handler(nullptr);
    std::ostringstream err;
    { const RuntimeMessages messages(err); }
    EXPECT_EQ(set_error_handler(nullptr), defaultError);
    EXPECT_EQ(set_fatal_handler(nullptr), defaultFatal);
}

TEST_F(EnvCommand, TakesTheInstallationOfTrvhome) {
    EXPECT_EQ(run({"expand", "$CELL"}), 0);
    EXPECT_EQ(out(), "3\n");
    EXPECT_EQ(err(), "");
}

TEST_F(EnvCommand, PrefersTheRootOfTheCall) {
    write("other/config/environ.cfg", "[var]\nCELL = 9\n");
    EXPECT_EQ(run({"expand", "--root", "other", "$TRVHOME $CELL"}), 0);
    EXPECT_EQ(out(), directory_.text() + "/other 9\n");
    const std::string absolute = "--root=" + directory_.text() + "/other";
    EXPECT_EQ(run({"expand", absolute.c_str(), "$CELL"}), 0);
    EXPECT_EQ(out(), "9\n");
    process_.setVariable("TRVHOME", nullptr);
    EXPECT_EQ(run({"expand", "--root", "./x/../other/", "$TRVHOME"}), 0);
    EXPECT_EQ(out(), directory_.text() + "/other\n");
}

TEST_F(EnvCommand, SaysWhatToSetIfThereIsNoInstallation) {
    for (const char* home : {static_cast<const char*>(nullptr), ""}) {
        process_.setVariable("TRVHOME", home);
        EXPECT_EQ(run({"list"}), 2);
        EXPECT_EQ(out(), "");
        EXPECT_EQ(
            err(),
            "trvfiles: there is no installation: TRVHOME is not set; set it or give --root DIR\n");
    }
}

TEST(RuntimeMessages, SaysInOneWayThatTheRootIsMissing) {
    std::ostringstream err;
    RuntimeMessages messages(err);
    report_fatal("The environment variable 'TRVHOME' is not defined\n");
    report_fatal("TRVHOME is not defined\n");
    const std::vector<RuntimeMessages::Report> reports = messages.takeReports();
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_TRUE(reports[0].fatal);
    EXPECT_EQ(reports[0].text,
              "there is no installation: TRVHOME is not set; set it or give --root DIR");
}

TEST_F(EnvCommand, SaysWhichInstallationIsMissing) {
    process_.setVariable("TRVHOME", "./nowhere");
    EXPECT_EQ(run({"list"}), 2);
    EXPECT_EQ(out(), "");
    EXPECT_EQ(err(),
              "trvfiles: there is no installation: TRVHOME is '" + native("./nowhere") +
                  "', which is not a directory; set TRVHOME to another one or give --root DIR\n");
    std::filesystem::create_directories(directory_ / "empty");
    process_.setVariable("TRVHOME", "empty");
    EXPECT_EQ(run({"explain", "CELL"}), 2);
    EXPECT_EQ(err(), "trvfiles: there is no installation: TRVHOME is 'empty', which has no " +
                         native("config/environ.cfg") +
                         "; set TRVHOME to another one or give --root DIR\n");
    process_.setVariable("TRVHOME", nullptr);
    process_.setVariable("TRVHOME_LS", "nowhere");
    EXPECT_EQ(run({"list"}), 2);
    EXPECT_EQ(err().substr(0, 66),
              "trvfiles: there is no installation: TRVHOME_LS is 'nowhere', which");
}

TEST_F(EnvCommand, RefusesARootThatIsNoDirectory) {
    write("file", "");
    EXPECT_EQ(run({"list", "--root", "nowhere"}), 2);
    EXPECT_EQ(err(), "trvfiles: --root 'nowhere' is not a directory\n");
    EXPECT_EQ(run({"list", "--root", "file"}), 2);
    EXPECT_EQ(err(), "trvfiles: --root 'file' is not a directory\n");
    EXPECT_EQ(run({"list", "--root="}), 2);
    EXPECT_EQ(err(), "trvfiles: --root '' is not a directory\n");
    EXPECT_EQ(out(), "");
}

TEST_F(EnvCommand, EndsWithWhatIsFatalAtTheStart) {
    write("empty/x", "");
    EXPECT_EQ(run({"list", "--root", "empty"}), 2);
    EXPECT_EQ(out(), "");
    EXPECT_EQ(err(), "trvfiles: there is no installation: --root is '" +
                         native(directory_.text() + "/empty") + "', which has no " +
                         native("config/environ.cfg") + "\n");

    write("shop/config/environ.cfg", "[var]\n/frob\n");
    EXPECT_EQ(run({"explain", "CELL"}), 2);
    EXPECT_EQ(out(), "");
    EXPECT_EQ(err(),
              "trvfiles: /opt/shop/config/environ.cfg:2: Unknown keyword : '/frob'\n"
              "trvfiles: /opt/shop/config/environ.cfg: Error loading file.\n"
              "trvfiles: Error loading '/opt/shop\\\\config\\\\environ.cfg'\n");
}

TEST_F(EnvCommand, ShowsNoResultsBesideAFatalReport) {
    write("other/config/environ.cfg", "[var]\nCELL = 9\n");
    EXPECT_EQ(run({"expand", "--root", "other", "$CELL", "$TMP"}), 2);
    EXPECT_EQ(out(), "");
    EXPECT_NE(err().find("TRVZONE"), std::string::npos) << err();
}

TEST_F(EnvCommand, WarnsOfWhatIsNotFatalAtTheStart) {
    write("shop/cell/environ.cfg", "[var]\nno entry\nCELL = 4\n");
    EXPECT_EQ(run({"expand", "$CELL"}), 0);
    EXPECT_EQ(out(), "4\n");
    EXPECT_EQ(
        err(),
        "trvfiles: warning: /opt/shop/cell/environ.cfg:2: incorrect format (missing '='): [var] no "
        "entry\n");
}

TEST_F(EnvCommand, KeepsTheTraceAwayFromTheResults) {
    process_.setVariable("TRV_TRVFILES_VERBOSE", "1");
    EXPECT_EQ(run({"expand", "$CELL"}), 0);
    EXPECT_EQ(out(), "3\n");
    EXPECT_EQ(err().substr(0, 31), "LOADING ENVIRONMENT FILES ....\n");
    EXPECT_NE(err().find("\nCELL = '3' from '\\\\opt\\\\shop\\\\cell\\\\environ.cfg' line 4\n"),
              std::string::npos)
        << err();
}

TEST_F(EnvCommand, ShowsBytesThatAreNoTextSafely) {
    write("shop/cell/environ.cfg", "[var]\nCELL = M\xfcller\x1b[1m\n");
    EXPECT_EQ(run({"expand", "$CELL"}), 0);
    if (!platform::narrow_text_is_utf8()) GTEST_SKIP() << "narrow text is not UTF-8 here";
    EXPECT_EQ(out(), u8"M\ufffdller\\x1b[1m\n");
    EXPECT_EQ(run({"explain", "--json", "CELL"}), 0);
    EXPECT_NE(out().find(u8"\"value\":\"M\ufffdller\\u001b[1m\""), std::string::npos) << out();
}

}  // namespace
}  // namespace trv::testing
