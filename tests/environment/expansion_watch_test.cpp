#include <tests/common/breakpoint.h>
#include <tests/common/channel_log.h>
#include <tests/common/death_test.h>
#include <tests/common/file_bytes.h>
#include <tests/common/scoped_variable.h>
#include <tests/common/temporary_directory.h>
#include <tests/environment/configured_store.h>
#include <trvfiles/environment/expansion_watch.h>
#include <trvfiles/environment/variable_expansion.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace trv {
namespace {

using testing::ChannelLog;
using testing::ConfiguredStore;
using testing::ScopedVariable;
using testing::TemporaryDirectory;

// A log line without its clock text, which every test run sees differently.
std::string withoutClock(const std::string& line) {
    return line.substr(std::min(line.find("] "), line.size()));
}

std::string programName() {
    const std::string file = platform::program_file();
    return file.substr(file.find_last_of("/\\") + 1);
}

std::string clockText(std::time_t instant) {
    const std::tm local = platform::local_time(instant);
    char text[64];
    std::snprintf(text, sizeof text, "[%04d-%02d-%02d@%02d:%02d:%03d", local.tm_year + 1900,
                  local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec + 100);
    return text;
}

// The names are read once in a process, so that each test has a child process; parent and child
// meet in a directory whose name the child inherits.
class ExpansionWatch : public testing::ChildProcessTest {
protected:
    ExpansionWatch() {
        constexpr const char* directoryName = "TRV_TEST_WATCH_DIRECTORY";
        const char* inherited = platform::get_environment(directoryName);
        if (inherited == nullptr) {
            own_ = std::make_unique<TemporaryDirectory>();
            named_ = std::make_unique<ScopedVariable>(directoryName, own_->text().c_str());
            inherited = platform::get_environment(directoryName);
        }
        log_ = std::filesystem::u8path(inherited) / "expand.log";
        platform::set_environment("TRV_EXPAND_LOGFILE_NAME", log_.string().c_str());
        platform::set_environment("TRV_EXPAND_WATCH", nullptr);
    }
    ~ExpansionWatch() override {
        platform::set_environment("TRV_EXPAND_LOGFILE_NAME", nullptr);
        platform::set_environment("TRV_EXPAND_MIN_BUFFER_SIZE", nullptr);
    }

    static void minimum(const char* value) {
        platform::set_environment("TRV_EXPAND_MIN_BUFFER_SIZE", value);
    }
    std::string logged() const { return testing::textOf(log_); }
    std::filesystem::path directory() const { return log_.parent_path(); }

private:
    std::unique_ptr<TemporaryDirectory> own_;
    std::unique_ptr<ScopedVariable> named_;
    std::filesystem::path log_;
};

TEST_F(ExpansionWatch, LogsABufferBelowTheMinimum) {
    TRV_EXPECT_IN_CHILD([&] {
        minimum("100");
        watch_buffer_size("src", 50, STRING_FORMAT_C);
        std::string shape = logged().substr(0, 23);
        for (char& c : shape) {
            if (c >= '0' && c <= '9') c = '9';
        }
        EXPECT_EQ(shape, "[9999-99-99@99:99:999] ");
        // The seconds count from 100.
        const std::string seconds = logged().substr(18, 3);
        EXPECT_TRUE(seconds >= "100" && seconds <= "159") << logged();
        EXPECT_EQ("] MinBufferSize=101 > 50 (C) " + programName() + " expanding 'src'\n",
                  withoutClock(logged()));
    });
}

TEST_F(ExpansionWatch, LogsTheLocalTime) {
    TRV_EXPECT_IN_CHILD([&] {
        minimum("100");
        const std::time_t before = std::time(nullptr);
        watch_buffer_size("src", 50, STRING_FORMAT_C);
        const std::time_t after = std::time(nullptr);
        std::vector<std::string> possible;
        for (std::time_t instant = before; instant <= after; ++instant)
            possible.push_back(clockText(instant));
        EXPECT_THAT(possible, ::testing::Contains(logged().substr(0, logged().find(']'))));
    });
}

TEST_F(ExpansionWatch, LogsTheTimeOfEachLine) {
    TRV_EXPECT_IN_CHILD([&] {
        minimum("100");
        watch_buffer_size("first", 50, STRING_FORMAT_C);
        const std::time_t logging = std::time(nullptr);
        while (std::time(nullptr) == logging)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        const std::time_t before = std::time(nullptr);
        const std::size_t earlier = logged().size();
        watch_buffer_size("second", 50, STRING_FORMAT_C);
        const std::time_t after = std::time(nullptr);
        const std::string stamp = logged().substr(earlier, logged().find(']'));
        EXPECT_NE(logged().substr(0, logged().find(']')), stamp);
        std::vector<std::string> possible;
        for (std::time_t instant = before; instant <= after; ++instant)
            possible.push_back(clockText(instant));
        EXPECT_THAT(possible, ::testing::Contains(stamp));
    });
}

// What is shared between the threads is seen by the thread sanitizer.
TEST_F(ExpansionWatch, LogsForSeveralThreadsAtOnce) {
    TRV_EXPECT_IN_CHILD([&] {
        minimum("100");
        const auto expand = [] {
            for (int i = 0; i < 200; ++i) {
                char buffer[8];
                EXPECT_EQ(0, _Expand("text", buffer, sizeof buffer));
            }
        };
        std::thread other(expand);
        expand();
        other.join();
        const std::string log = logged();
        const std::string end =
            "] MinBufferSize=101 > 8 (C) " + programName() + " expanding 'text'";
        std::size_t lines = 0;
        std::istringstream text(log);
        for (std::string line; std::getline(text, line); ++lines)
            EXPECT_EQ(end, withoutClock(line));
        EXPECT_EQ(400U, lines);
    });
}

TEST_F(ExpansionWatch, AddsOneToTheMinimumForATerminatedText) {
    TRV_EXPECT_IN_CHILD([&] {
        minimum("100");
        watch_buffer_size("a", 101, STRING_FORMAT_C);
        watch_buffer_size("b", 100, STRING_FORMAT_F);
        EXPECT_EQ("", logged());
        watch_buffer_size("c", 99, STRING_FORMAT_F);
        EXPECT_EQ("] MinBufferSize=100 > 99 (F) " + programName() + " expanding 'c'\n",
                  withoutClock(logged()));
        watch_buffer_size("d", 100, STRING_FORMAT_C);
        EXPECT_THAT(logged(), ::testing::EndsWith("] MinBufferSize=101 > 100 (C) " + programName() +
                                                  " expanding 'd'\n"));
    });
}

TEST_F(ExpansionWatch, AppendsToALogThatIsThere) {
    TRV_EXPECT_IN_CHILD([&] {
        testing::writeBytes(directory() / "expand.log", "earlier\n");
        minimum("100");
        watch_buffer_size("a", 0, STRING_FORMAT_F);
        watch_buffer_size("b", -1, STRING_FORMAT_F);
        EXPECT_THAT(logged(), ::testing::StartsWith("earlier\n["));
        EXPECT_THAT(logged(), ::testing::HasSubstr("MinBufferSize=100 > 0 (F)"));
        EXPECT_THAT(logged(), ::testing::HasSubstr("MinBufferSize=100 > -1 (F)"));
    });
}

// Runs in a copy of this program that has a long path.
TEST_F(ExpansionWatch, DISABLED_LogsTheNameInALongPath) {
    const char* const expected = platform::get_environment("TRV_TEST_PROGRAM_NAME");
    ASSERT_NE(expected, nullptr);
    minimum("100");
    watch_buffer_size("src", 50, STRING_FORMAT_C);
    EXPECT_THAT(logged(),
                ::testing::EndsWith("(C) " + std::string(expected) + " expanding 'src'\n"));
}

TEST_F(ExpansionWatch, LooksForTheNameInTheFirst1024BytesOfThePath) {
    if (platform::backslash_separates()) GTEST_SKIP() << "paths of Windows end at 260 characters";
    const std::string name = "program";
    std::string path = directory().string();
    const std::size_t length = 1024 - name.size() - 1;
    while (length - path.size() > 200)
        path += '/' + std::string(99, 'd');
    path += '/' + std::string(length - path.size() - 1, 'd') + '/';
    std::filesystem::create_directories(path);
    ASSERT_EQ(path.size() + name.size(), 1024U);
    std::filesystem::copy_file(platform::program_file(), path + name);
    const auto run = [&](const std::string& program, const char* expected) {
        const ScopedVariable variable("TRV_TEST_PROGRAM_NAME", expected);
        const std::string command = "'" + program +
                                    "' --gtest_also_run_disabled_tests --gtest_brief=1"
                                    " --gtest_filter=ExpansionWatch.DISABLED_*";
        return std::system(command.c_str());
    };
    EXPECT_EQ(run(path + name, "program"), 0);
    std::filesystem::rename(path + name, path + name + "s");
    EXPECT_EQ(run(path + name + "s", "program"), 0);
    std::filesystem::rename(path + name + "s", path + "run");
    EXPECT_EQ(run(path + "run", "run"), 0);
}

TEST_F(ExpansionWatch, LogsAMissingSource) {
    TRV_EXPECT_IN_CHILD([&] {
        minimum("100");
        platform::set_environment("TRV_EXPAND_WATCH", "nullptr");
        watch_buffer_size(nullptr, 50, STRING_FORMAT_F);
        EXPECT_THAT(logged(), ::testing::EndsWith(" expanding '<nullptr>'\n"));
    });
}

TEST_F(ExpansionWatch, IsOffWithoutAMinimum) {
    TRV_EXPECT_IN_CHILD([&] {
        for (const char* off : {static_cast<const char*>(nullptr), "0", "none", " -0"}) {
            minimum(off);
            watch_buffer_size("a", 0, STRING_FORMAT_C);
        }
        EXPECT_FALSE(std::filesystem::exists(directory() / "expand.log"));
    });
}

TEST_F(ExpansionWatch, ReadsTheMinimumAtEveryCallAsANumberAtTheFront) {
    TRV_EXPECT_IN_CHILD([&] {
        minimum(" +12abc");
        watch_buffer_size("a", 11, STRING_FORMAT_F);
        EXPECT_THAT(logged(), ::testing::HasSubstr("MinBufferSize=12 > 11 (F)"));
        minimum("7.9");
        watch_buffer_size("b", 6, STRING_FORMAT_F);
        EXPECT_THAT(logged(), ::testing::HasSubstr("MinBufferSize=7 > 6 (F)"));
    });
}

TEST_F(ExpansionWatch, TrapsAtOnceForANegativeMinimum) {
    EXPECT_EXIT(
        {
            minimum("-100");
            watch_buffer_size("src", 50, STRING_FORMAT_C);
        },
        testing::endedAtBreakpoint, "");
    EXPECT_EQ("] MinBufferSize=101 > 50 (C) " + programName() + " expanding 'src'\n",
              withoutClock(logged()));
}

TEST_F(ExpansionWatch, DoesNotTrapAtALargeEnoughBuffer) {
    TRV_EXPECT_IN_CHILD([&] {
        minimum("-100");
        watch_buffer_size("src", 101, STRING_FORMAT_C);
        watch_buffer_size("src", 100, STRING_FORMAT_F);
    });
}

TEST_F(ExpansionWatch, TakesTheAbsoluteValueOfTheSmallestMinimum) {
    EXPECT_EXIT(
        {
            minimum("-2147483648");
            watch_buffer_size("src", 2147483647, STRING_FORMAT_C);
        },
        testing::endedAtBreakpoint, "");
    EXPECT_THAT(logged(), ::testing::HasSubstr("] MinBufferSize=2147483649 > 2147483647 (C) "));
}

TEST_F(ExpansionWatch, TrapsForAPositiveMinimumAtAWatchedSource) {
    EXPECT_EXIT(
        {
            minimum("100");
            platform::set_environment("TRV_EXPAND_WATCH", "a b|c;;d");
            watch_buffer_size("x-d-x", 50, STRING_FORMAT_F);
        },
        testing::endedAtBreakpoint, "");
    EXPECT_THAT(logged(), ::testing::EndsWith(" expanding 'x-d-x'\n"));
}

TEST_F(ExpansionWatch, SplitsTheWatchListAtBlanksBarsAndSemicolons) {
    TRV_EXPECT_IN_CHILD([&] {
        minimum("100");
        platform::set_environment("TRV_EXPAND_WATCH", "; a b|c;;d |");
        // None of the separators, and no empty piece, is looked for.
        watch_buffer_size(" |;|; e", 50, STRING_FORMAT_F);
        watch_buffer_size("", 50, STRING_FORMAT_F);
    });
    for (const char* watched : {"a", "xb", "cx", "xdx"}) {
        EXPECT_EXIT(
            {
                minimum("100");
                platform::set_environment("TRV_EXPAND_WATCH", "; a b|c;;d |");
                watch_buffer_size(watched, 50, STRING_FORMAT_F);
            },
            testing::endedAtBreakpoint, "");
    }
}

TEST_F(ExpansionWatch, ReadsTheWatchListAndTheLogNameOnce) {
    TRV_EXPECT_IN_CHILD([&] {
        minimum("100");
        platform::set_environment("TRV_EXPAND_WATCH", "first");
        watch_buffer_size("a", 50, STRING_FORMAT_F);
        platform::set_environment("TRV_EXPAND_WATCH", "second");
        platform::set_environment("TRV_EXPAND_LOGFILE_NAME",
                                  (directory() / "other.log").string().c_str());
        watch_buffer_size("second", 50, STRING_FORMAT_F);
        EXPECT_THAT(logged(), ::testing::EndsWith(" expanding 'second'\n"));
        EXPECT_FALSE(std::filesystem::exists(directory() / "other.log"));
    });
}

TEST_F(ExpansionWatch, LogsIntoTheDirectoryTempWithoutALogName) {
    TRV_EXPECT_IN_CHILD([&] {
        const ScopedVariable noName("TRV_EXPAND_LOGFILE_NAME", "");
        const ScopedVariable temporary("TEMP", directory().string().c_str());
        minimum("100");
        watch_buffer_size("a", 50, STRING_FORMAT_F);
        EXPECT_THAT(testing::textOf(directory() / "travik_expand_log.txt"),
                    ::testing::EndsWith("MinBufferSize=100 > 50 (F) " + programName() +
                                        " expanding 'a'\n"));
        EXPECT_EQ("", logged());
    });
}

TEST_F(ExpansionWatch, LogsNothingWithoutAnyName) {
    TRV_EXPECT_IN_CHILD([&] {
        platform::set_environment("TRV_EXPAND_LOGFILE_NAME", nullptr);
        platform::set_environment("TEMP", nullptr);
        ChannelLog channels;
        minimum("100");
        watch_buffer_size("a", 50, STRING_FORMAT_F);
        EXPECT_THAT(channels.errors(), ::testing::IsEmpty());
        EXPECT_EQ("", logged());
    });
}

TEST_F(ExpansionWatch, IsSilentAboutALogThatDoesNotOpen) {
    TRV_EXPECT_IN_CHILD([&] {
        platform::set_environment("TRV_EXPAND_LOGFILE_NAME", directory().string().c_str());
        ChannelLog channels;
        minimum("100");
        watch_buffer_size("a", 50, STRING_FORMAT_F);
        EXPECT_THAT(channels.errors(), ::testing::IsEmpty());
        EXPECT_THAT(channels.fatals(), ::testing::IsEmpty());
    });
}

TEST_F(ExpansionWatch, StandsBeforeThePathFormsOnly) {
    TRV_EXPECT_IN_CHILD([&] {
        const ConfiguredStore store;
        ChannelLog channels;
        minimum("100");
        char buffer[8] = "text";
        std::int32_t code = 0;
        _ExpandText(buffer, sizeof buffer);
        _ExpandTextFixed("fixed", 5, buffer, 8, &code);
        EXPECT_EQ("", logged());
        _Expand("first", buffer, sizeof buffer);
        EXPECT_THAT(logged(),
                    ::testing::EndsWith("=101 > 8 (C) " + programName() + " expanding 'first'\n"));
        _ExpandInPlace(buffer, sizeof buffer - 1);
        EXPECT_THAT(logged(),
                    ::testing::EndsWith("=101 > 7 (C) " + programName() + " expanding 'first'\n"));
        _ExpandFixed("second  ", 8, buffer, 8, &code);
        EXPECT_THAT(logged(),
                    ::testing::EndsWith("=100 > 8 (F) " + programName() + " expanding 'second'\n"));
        _Expand(nullptr, buffer, sizeof buffer);
        EXPECT_THAT(logged(), ::testing::EndsWith("=101 > 8 (C) " + programName() +
                                                  " expanding '<nullptr>'\n"));
    });
}

}  // namespace
}  // namespace trv
