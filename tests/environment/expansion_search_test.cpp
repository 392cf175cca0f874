#include <tests/common/channel_log.h>
#include <tests/common/death_test.h>
#include <tests/common/file_bytes.h>
#include <tests/common/scoped_variable.h>
#include <tests/common/temporary_directory.h>
#include <tests/environment/configured_store.h>
#include <tests/environment/installation.h>
#include <trvfiles/environment/variable_expansion.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace trv {
namespace {

using testing::backslashed;
using testing::ChannelLog;
using testing::ConfiguredStore;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::ScopedVariable;
using testing::TemporaryDirectory;
using testing::writeBytes;

class ExpansionSearch : public ::testing::Test {
protected:
    ExpansionSearch() {
        std::filesystem::create_directories(directory_ / "a");
        std::filesystem::create_directories(directory_ / "b");
        writeBytes(directory_ / "b/x.t", "");
        store_.path("CFG = " + directory_.text() + "/a;" + directory_.text() + "/b");
        store_.variable("DIR = " + directory_.text() + "/b");
    }

    // A path in the test's directory as the runtime writes it.
    std::string path(const std::string& name) const {
        return backslashed(directory_.text() + "/" + name);
    }

    int search(const std::string& source) { return expand_and_search(source, &found_); }

    ScopedVariable noNullText_{"TRVNULL", nullptr};
    ScopedVariable noCfg_{"CFGPATH", nullptr};
    TemporaryDirectory directory_;
    ConfiguredStore store_;
    std::string found_ = "left over";
};

TEST_F(ExpansionSearch, FindsAFileInTheDirectoriesOfAList) {
    EXPECT_EQ(0, search("?CFG/x.t"));
    EXPECT_EQ(path("b/x.t"), found_);
}

TEST_F(ExpansionSearch, FindsAFileByItsExpandedName) {
    EXPECT_EQ(0, search("$DIR//x.t"));
    EXPECT_EQ(path("b/x.t"), found_);
}

TEST_F(ExpansionSearch, GivesTheFirstNameTriedIfThereIsNoFile) {
    EXPECT_EQ(-21, search("?CFG/none.t"));
    EXPECT_EQ(path("a/none.t"), found_);
    EXPECT_EQ(-21, search("$DIR/none.t"));
    EXPECT_EQ(path("b/none.t"), found_);
}

TEST_F(ExpansionSearch, GivesTheExpandedTextIfItHoldsUndefinedNames) {
    EXPECT_EQ(-43, search("$DIR/$UNDEFINED_X/x.t"));
    EXPECT_EQ(path("b/x.t"), found_);
}

TEST_F(ExpansionSearch, ReturnsATextThatIsTooLongForTheSearchUnchanged) {
    const std::string longest(509, 'x');
    EXPECT_EQ(-21, search(longest));
    EXPECT_EQ(longest, found_);
    EXPECT_EQ(-42, search("$DIR/" + longest));
    EXPECT_EQ("$DIR/" + longest, found_);
    EXPECT_EQ(-42, search(std::string(100000, 'y')));
    EXPECT_EQ(std::string(100000, 'y'), found_);
}

TEST_F(ExpansionSearch, IsNotMadeForATextThatDoesNotExpand) {
    ChannelLog log;
    EXPECT_EQ(-31, search("?CFG/$(x.t"));
    EXPECT_EQ("", found_);
    store_.variable("A = $A");
    EXPECT_EQ(-42, search("$A"));
    EXPECT_EQ("", found_);
    EXPECT_THAT(log.errors(), IsEmpty());
}

TEST_F(ExpansionSearch, NeedsANameAfterAQuestionMark) {
    EXPECT_EQ(-44, search("?CFG"));
    EXPECT_EQ(-44, search("?CFG/"));
}

TEST_F(ExpansionSearch, RefusesWhatIsMissing) {
    EXPECT_EQ(-44, expand_and_search(static_cast<const char*>(nullptr), &found_));
    EXPECT_EQ("", found_);
    EXPECT_EQ(-44, expand_and_search("x", nullptr));
    for (const char* directory : {static_cast<const char*>(nullptr), "?CFG"}) {
        found_ = "left over";
        const char* name = directory == nullptr ? "x.t" : nullptr;
        EXPECT_EQ(-44, expand_and_search(directory, name, &found_));
        EXPECT_EQ("", found_);
    }
    EXPECT_EQ(-44, expand_and_search(nullptr, nullptr, nullptr));
}

TEST_F(ExpansionSearch, JoinsADirectoryAndAName) {
    EXPECT_EQ(0, expand_and_search("?CFG", "x.t", &found_));
    EXPECT_EQ(path("b/x.t"), found_);
    EXPECT_EQ(0, expand_and_search("$DIR", "x.t", &found_));
    EXPECT_EQ(path("b/x.t"), found_);
}

TEST_F(ExpansionSearch, JoinsAListWithSemicolons) {
    store_.path("LIST = " + directory_.text() + "/a");
    EXPECT_EQ(0, expand_and_search(std::vector<std::string>{"?LIST", "$DIR/x.t"}, &found_));
    EXPECT_EQ(path("b/x.t"), found_);
}

TEST_F(ExpansionSearch, MayWriteOverItsSource) {
    found_ = "?CFG/x.t";
    EXPECT_EQ(0, expand_and_search(found_.c_str(), &found_));
    EXPECT_EQ(path("b/x.t"), found_);
}

TEST_F(ExpansionSearch, GrowsItsBufferToWhatIsFound) {
    if (platform::backslash_separates()) GTEST_SKIP() << "Windows takes no path of 2000 characters";
    std::string detour = directory_.text() + "/b";
    while (detour.size() < 2100)
        detour += "/../b";
    store_.path("FAR = " + detour);
    EXPECT_EQ(0, search("?FAR/x.t"));
    EXPECT_EQ(backslashed(detour) + "\\x.t", found_);
    EXPECT_EQ(0, search("?CFG/x.t"));
    EXPECT_EQ(path("b/x.t"), found_);
}

// The process shares one buffer. In a new process it has its initial size.
TEST_F(ExpansionSearch, TriesAgainWithTwiceTheBufferUpToOneMebibyte) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    TRV_EXPECT_IN_CHILD([&] {
        store_.path("HUGE = " + std::string(8193, 'd'));
        const ChannelLog log;
        EXPECT_EQ(-32, search("?HUGE/f"));
        // 2000, 4000, ..., 1024000 bytes: ten searches, each with its report.
        const std::string report = "_Expand(\"?HUGE\") = error -32 - buffer size 8192 too small";
        EXPECT_EQ(std::vector<std::string>(10, report), log.errors());
        log.errors().clear();
        // The buffer keeps its size.
        EXPECT_EQ(-32, search("?HUGE/f"));
        EXPECT_THAT(log.errors(), ElementsAre(report));
    });
}

TEST_F(ExpansionSearch, ReportsEachBufferThatIsTooSmallOnTheWay) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    TRV_EXPECT_IN_CHILD([&] {
        const std::string value(2500, 'x');
        store_.variable("LONG = " + value);
        const ChannelLog log;
        EXPECT_EQ(-21, search("$LONG"));
        EXPECT_EQ(value, found_);
        EXPECT_THAT(log.errors(),
                    ElementsAre("_Expand(\"$LONG\") = error -32 - buffer size 2000 too small"));
    });
}

TEST_F(ExpansionSearch, MayBeMadeByATraceHandlerOfASearch) {
    static std::string inner;
    inner.clear();
    const message_handler earlier = set_trace_handler([](const char* message) {
        if (std::string(message).rfind("SEARCHING", 0) != 0 || !inner.empty()) return;
        inner = "running";
        expand_and_search("?CFG/none.t", &inner);
    });
    EXPECT_EQ(0, search("?CFG/x.t"));
    set_trace_handler(earlier);
    EXPECT_EQ(path("b/x.t"), found_);
    EXPECT_EQ(path("a/none.t"), inner);
}

TEST_F(ExpansionSearch, IsMadeOnceIfTheBufferIsLargeEnough) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    TRV_EXPECT_IN_CHILD([&] {
        const ChannelLog log;
        EXPECT_EQ(0, search("?CFG/x.t"));
        EXPECT_EQ(-21, search("?CFG/none.t"));
        std::vector<std::string> searches;
        for (const std::string& line : log.traces()) {
            if (line.rfind("SEARCHING for ", 0) == 0) searches.push_back(line.substr(0, 24));
        }
        EXPECT_THAT(searches, ElementsAre("SEARCHING for 'x.t' in '", "SEARCHING for 'none.t' i"));
    });
}

}  // namespace
}  // namespace trv
