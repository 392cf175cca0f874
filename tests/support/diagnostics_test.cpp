#include <tests/common/channel_log.h>
#include <tests/common/death_test.h>
#include <tests/common/file_bytes.h>
#include <tests/common/scoped_variable.h>
#include <trvfiles/support/diagnostics.h>

#include <cstdio>
#include <cstring>
#include <random>
#include <stdexcept>

namespace trv {
namespace {

using testing::ScopedVariable;

struct Streams {
    std::string output;
    std::string error;
    bool operator==(const Streams& other) const {
        return output == other.output && error == other.error;
    }
};

std::ostream& operator<<(std::ostream& stream, const Streams& streams) {
    return stream << "output <" << streams.output << "> error <" << streams.error << ">";
}

Streams streamsOf(const std::function<void()>& action) {
    ::testing::internal::CaptureStdout();
    ::testing::internal::CaptureStderr();
    action();
    const std::string output = ::testing::internal::GetCapturedStdout();
    return {output, ::testing::internal::GetCapturedStderr()};
}

class Diagnostics : public testing::ChildProcessTest {
protected:
    ~Diagnostics() override {
        set_error_handler(nullptr);
        set_fatal_handler(nullptr);
        set_trace_handler(nullptr);
        set_quiet_errors(0);
        set_echo_output(0);
    }
    ScopedVariable verbose_{"TRV_TRVFILES_VERBOSE", nullptr};
};

// The file for the standard output of a child process. The child gets its name in the environment.
class ChildOutput {
public:
    ChildOutput() {
        const char* name = std::getenv(variable);
        isParent_ = name == nullptr;
        path_ = isParent_ ? std::filesystem::temp_directory_path() /
                                ("trvfiles-test-output-" + std::to_string(std::random_device()()))
                          : std::filesystem::path(name);
        if (isParent_) platform::set_environment(variable, path_.string().c_str());
    }
    ~ChildOutput() {
        if (!isParent_) return;
        platform::set_environment(variable, nullptr);
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    }
    ChildOutput(const ChildOutput&) = delete;
    ChildOutput& operator=(const ChildOutput&) = delete;

    void redirect() const { ASSERT_NE(std::freopen(path_.string().c_str(), "w", stdout), nullptr); }
    std::string text() const { return testing::textOf(path_); }

private:
    static constexpr const char* variable = "TRVFILES_TEST_OUTPUT";
    std::filesystem::path path_;
    bool isParent_;
};

TEST_F(Diagnostics, AnErrorGoesToStandardError) {
    EXPECT_EQ(streamsOf([] { report_error("lost"); }), (Streams{"", "lost\n"}));
}

TEST_F(Diagnostics, ATraceLineIsNotShown) {
    EXPECT_EQ(streamsOf([] { report_trace("seen"); }), (Streams{"", ""}));
}

TEST_F(Diagnostics, AFatalMessageGoesToStandardErrorAndEndsTheProcess) {
    const ChildOutput output;
    EXPECT_EXIT(
        {
            output.redirect();
            report_fatal("over");
        },
        testing::endedByDefaultFatalHandler, ::testing::Eq(std::string("over\n")));
    EXPECT_EQ(output.text(), "");
}

TEST_F(Diagnostics, AFatalMessageGoesToStandardOutputInVerboseMode) {
    verbose_.set("1");
    const ChildOutput output;
    EXPECT_EXIT(
        {
            output.redirect();
            report_fatal("over");
        },
        testing::endedByDefaultFatalHandler, ::testing::Eq(std::string()));
    EXPECT_EQ(output.text(), "over\n");
}

TEST_F(Diagnostics, AFatalMessageGoesToStandardOutputWhileEchoed) {
    const ChildOutput output;
    EXPECT_EXIT(
        {
            output.redirect();
            set_echo_output(1);
            report_fatal("over");
        },
        testing::endedByDefaultFatalHandler, ::testing::Eq(std::string()));
    EXPECT_EQ(output.text(), "over\n");
}

TEST_F(Diagnostics, TheEndOfTheProcessFlushesStandardOutput) {
    const ChildOutput output;
    EXPECT_EXIT(
        {
            output.redirect();
            std::printf("before");
            report_fatal("over");
        },
        testing::endedByDefaultFatalHandler, ::testing::Eq(std::string("over\n")));
    EXPECT_EQ(output.text(), "before");
}

TEST_F(Diagnostics, AFatalMessageAppearsWhileErrorsAreQuiet) {
    EXPECT_EXIT(
        {
            set_quiet_errors(1);
            report_error("lost");
            report_fatal("over");
        },
        testing::endedByDefaultFatalHandler, ::testing::Eq(std::string("over\n")));
}

TEST_F(Diagnostics, QuietErrorsAreNotPrinted) {
    set_quiet_errors(1);
    EXPECT_EQ(streamsOf([] { report_error("lost"); }), (Streams{"", ""}));
}

TEST_F(Diagnostics, VerboseModeSendsErrorsAndTraceLinesToStandardOutput) {
    for (const char* value : {"OFF", "", "on", "0", "off ", "Off"}) {
        verbose_.set(value);
        EXPECT_EQ(is_verbose(), 1) << value;
        EXPECT_EQ(streamsOf([] { report_error("lost"); }), (Streams{"lost\n", ""})) << value;
        EXPECT_EQ(streamsOf([] { report_trace("seen"); }), (Streams{"seen\n", ""})) << value;
    }
}

TEST_F(Diagnostics, OnlyExactlyOffIsNotVerbose) {
    verbose_.set("off");
    EXPECT_EQ(is_verbose(), 0);
    EXPECT_EQ(streamsOf([] { report_error("lost"); }), (Streams{"", "lost\n"}));
    verbose_.set(nullptr);
    EXPECT_EQ(is_verbose(), 0);
}

TEST_F(Diagnostics, TheVerboseVariableIsReadAtEachMessage) {
    const Streams streams = streamsOf([this] {
        report_trace("1");
        verbose_.set("on");
        report_trace("2");
        verbose_.set("off");
        report_trace("3");
        verbose_.set("OFF");
        report_trace("4");
    });
    EXPECT_EQ(streams, (Streams{"2\n4\n", ""}));
}

TEST_F(Diagnostics, EchoSendsErrorsAndTraceLinesToStandardOutput) {
    set_echo_output(1);
    EXPECT_EQ(streamsOf([] { report_error("lost"); }), (Streams{"lost\n", ""}));
    EXPECT_EQ(streamsOf([] { report_trace("seen"); }), (Streams{"seen\n", ""}));
}

TEST_F(Diagnostics, TheQuietSwitchIsIgnoredWhileEchoedOrVerbose) {
    set_quiet_errors(1);
    set_echo_output(1);
    EXPECT_EQ(streamsOf([] { report_error("lost"); }), (Streams{"lost\n", ""}));
    set_echo_output(0);
    verbose_.set("on");
    EXPECT_EQ(streamsOf([] { report_error("lost"); }), (Streams{"lost\n", ""}));
}

TEST_F(Diagnostics, AMessageIsNeverUsedAsAFormat) {
    EXPECT_EQ(streamsOf([] { report_error("100%s %n%d"); }), (Streams{"", "100%s %n%d\n"}));
}

TEST_F(Diagnostics, AMessageThatEndsInANewlineGetsASecondOne) {
    EXPECT_EQ(streamsOf([] { report_error("lost\n"); }), (Streams{"", "lost\n\n"}));
}

TEST_F(Diagnostics, AMessageHasNoLengthLimit) {
    const std::string text(100000, 'x');
    EXPECT_EQ(streamsOf([&] { report_error(text.c_str()); }), (Streams{"", text + "\n"}));
}

TEST_F(Diagnostics, ANullMessageActsAsAnEmptyOne) {
    EXPECT_EQ(streamsOf([] { report_error(nullptr); }), (Streams{"", "\n"}));
    const testing::ChannelLog log;
    report_fatal(nullptr);
    EXPECT_EQ(log.fatals(), std::vector<std::string>{""});
}

TEST_F(Diagnostics, EachChannelHasItsOwnHandler) {
    const testing::ChannelLog log;
    report_error("e");
    report_fatal("f");
    report_trace("t");
    EXPECT_EQ(log.errors(), std::vector<std::string>{"e"});
    EXPECT_EQ(log.fatals(), std::vector<std::string>{"f"});
    EXPECT_EQ(log.traces(), std::vector<std::string>{"t"});
}

void ignore(const char*) {}
void ignoreToo(const char*) {}

TEST_F(Diagnostics, EachHandlerSetterReturnsTheHandlerThatItReplaced) {
    for (const auto set : {set_error_handler, set_fatal_handler, set_trace_handler}) {
        const message_handler standard = set(ignore);
        EXPECT_NE(standard, nullptr);
        EXPECT_EQ(set(ignoreToo), ignore);
        EXPECT_EQ(set(nullptr), ignoreToo);
        EXPECT_EQ(set(standard), standard);
    }
}

using set_channel = channel_handler (*)(const channel_handler&);
using report_channel = void (*)(const char*);
using set_plain = message_handler (*)(message_handler);

constexpr struct {
    set_channel set;
    set_plain set_without_context;
    report_channel report;
} channels[] = {{set_error_channel, set_error_handler, report_error},
                {set_fatal_channel, set_fatal_handler, report_fatal},
                {set_trace_channel, set_trace_handler, report_trace}};

void append(const char* message, void* context) {
    static_cast<std::vector<std::string>*>(context)->emplace_back(message);
}

TEST_F(Diagnostics, AHandlerGetsItsContext) {
    for (const auto& channel : channels) {
        std::vector<std::string> one;
        std::vector<std::string> other;
        channel.set({append, &one});
        channel.report("a");
        channel.set({append, &other});
        channel.report("b");
        channel.report(nullptr);
        EXPECT_EQ(one, std::vector<std::string>{"a"});
        EXPECT_EQ(other, (std::vector<std::string>{"b", ""}));
        channel.set({});
    }
}

TEST_F(Diagnostics, AContextMayBeNull) {
    static int calls;
    calls = 0;
    set_error_channel({[](const char*, void* context) { calls += context == nullptr ? 1 : 100; }});
    report_error("x");
    EXPECT_EQ(calls, 1);
}

TEST_F(Diagnostics, AHandlerOfEitherKindReplacesTheOther) {
    static int plain_calls;
    const auto count = [](const char*) { ++plain_calls; };
    for (const auto& channel : channels) {
        plain_calls = 0;
        std::vector<std::string> seen;
        channel.set_without_context(count);
        EXPECT_EQ(channel.set({append, &seen}).plain, static_cast<message_handler>(count));
        channel.report("a");
        EXPECT_EQ(plain_calls, 0);
        EXPECT_EQ(channel.set_without_context(count), nullptr);
        channel.report("b");
        EXPECT_EQ(plain_calls, 1);
        EXPECT_EQ(seen, std::vector<std::string>{"a"});
        channel.set({});
    }
}

TEST_F(Diagnostics, AReplacedHandlerCanBePutBack) {
    for (const auto& channel : channels) {
        std::vector<std::string> seen;
        const channel_handler standard = channel.set({append, &seen});
        EXPECT_EQ(standard.with_context, nullptr);
        const channel_handler kept = channel.set({nullptr, nullptr, ignore});
        EXPECT_EQ(kept.with_context, append);
        EXPECT_EQ(kept.context, &seen);
        EXPECT_EQ(kept.plain, nullptr);
        EXPECT_EQ(channel.set(kept).plain, ignore);
        channel.report("x");
        EXPECT_EQ(seen.size(), 1U);
        channel.set(standard);
        EXPECT_EQ(channel.set({}).plain, standard.plain);
    }
}

TEST_F(Diagnostics, TheHandlerWithAContextCountsIfThereAreBoth) {
    std::vector<std::string> seen;
    set_error_channel({append, &seen, ignore});
    report_error("x");
    EXPECT_EQ(seen, std::vector<std::string>{"x"});
}

TEST_F(Diagnostics, ATraceIsSeenByAHandlerWithAContext) {
    EXPECT_FALSE(trace_is_seen());
    std::vector<std::string> seen;
    set_trace_channel({append, &seen});
    EXPECT_TRUE(trace_is_seen());
    set_trace_channel({});
    EXPECT_FALSE(trace_is_seen());
}

TEST_F(Diagnostics, AFatalHandlerWithAContextLetsTheCallerContinue) {
    std::vector<std::string> seen;
    set_fatal_channel({append, &seen});
    EXPECT_EQ(streamsOf([] { report_fatal("over"); }), (Streams{"", ""}));
    EXPECT_EQ(seen, std::vector<std::string>{"over"});
}

TEST_F(Diagnostics, AHandlerWithAContextMayThrowAndReplaceItself) {
    static int calls;
    calls = 0;
    set_error_channel({[](const char*, void* context) {
                           ++calls;
                           set_error_handler(nullptr);
                           throw std::runtime_error(*static_cast<std::string*>(context));
                       },
                       nullptr});
    std::string text = "thrown";
    channel_handler handler = set_error_channel({});
    handler.context = &text;
    set_error_channel(handler);
    EXPECT_THROW(report_error("lost"), std::runtime_error);
    EXPECT_EQ(streamsOf([] { report_error("lost"); }), (Streams{"", "lost\n"}));
    EXPECT_EQ(calls, 1);
}

TEST_F(Diagnostics, ANullHandlerRestoresTheDefault) {
    set_error_handler(ignore);
    set_error_handler(nullptr);
    EXPECT_EQ(streamsOf([] { report_error("lost"); }), (Streams{"", "lost\n"}));
}

TEST_F(Diagnostics, EachSwitchReturnsTheValueThatItReplaced) {
    EXPECT_EQ(quiet_errors(), 0);
    EXPECT_EQ(set_quiet_errors(-5), 0);
    EXPECT_EQ(quiet_errors(), 1);
    EXPECT_EQ(set_quiet_errors(0), 1);
    EXPECT_EQ(quiet_errors(), 0);
    EXPECT_EQ(echo_output(), 0);
    EXPECT_EQ(set_echo_output(256), 0);
    EXPECT_EQ(echo_output(), 1);
    EXPECT_EQ(set_echo_output(0), 1);
    EXPECT_EQ(echo_output(), 0);
}

TEST_F(Diagnostics, TheSwitchesAreIndependent) {
    set_quiet_errors(1);
    EXPECT_EQ(echo_output(), 0);
    set_echo_output(1);
    set_quiet_errors(0);
    EXPECT_EQ(echo_output(), 1);
}

TEST_F(Diagnostics, AFatalHandlerThatReturnsLetsTheCallerContinue) {
    set_fatal_handler(ignore);
    EXPECT_EQ(streamsOf([] { report_fatal("over"); }), (Streams{"", ""}));
}

TEST_F(Diagnostics, AHandlerMayThrow) {
    set_error_handler([](const char* message) { throw std::runtime_error(message); });
    EXPECT_THROW(report_error("lost"), std::runtime_error);
    set_error_handler(nullptr);
    EXPECT_EQ(streamsOf([] { report_error("lost"); }), (Streams{"", "lost\n"}));
}

TEST_F(Diagnostics, AHandlerMayReportAndReplaceItself) {
    const testing::ChannelLog log;
    set_error_handler([](const char* message) {
        set_error_handler(ignore);
        report_trace(message);
        report_error("nested");
    });
    report_error("first");
    report_error("second");
    EXPECT_EQ(log.traces(), std::vector<std::string>{"first"});
}

// A lookup overwrites its last result in the same way.
TEST_F(Diagnostics, AHandlerMayOverwriteTheTextThatWasReported) {
    static char text[8];
    static std::vector<std::string> seen;
    seen.clear();
    const auto overwrite = [](const char* message) {
        std::strcpy(text, "other");
        seen.emplace_back(message);
    };
    set_error_handler(overwrite);
    set_fatal_handler(overwrite);
    set_trace_handler(overwrite);
    for (const auto report : {report_error, report_fatal, report_trace}) {
        std::strcpy(text, "first");
        report(text);
    }
    EXPECT_EQ(seen, (std::vector<std::string>{"first", "first", "first"}));
}

TEST_F(Diagnostics, ATraceIsSeenWhenItWouldBePrintedOrAHostListens) {
    EXPECT_FALSE(trace_is_seen());
    set_echo_output(1);
    EXPECT_TRUE(trace_is_seen());
    set_echo_output(0);
    verbose_.set("on");
    EXPECT_TRUE(trace_is_seen());
    verbose_.set("off");
    EXPECT_FALSE(trace_is_seen());
    set_trace_handler(ignore);
    EXPECT_TRUE(trace_is_seen());
}

}  // namespace
}  // namespace trv
