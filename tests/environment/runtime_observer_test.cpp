#include <tests/common/channel_log.h>
#include <tests/common/file_bytes.h>
#include <tests/common/scoped_variable.h>
#include <tests/common/temporary_directory.h>
#include <tests/environment/configured_store.h>
#include <tests/environment/recording_observer.h>
#include <trvfiles/environment/message_file.h>
#include <trvfiles/environment/path_search.h>
#include <trvfiles/environment/variable_expansion.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/environment/work_zone.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace trv {
namespace {

using testing::ChannelLog;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::RecordingObserver;
using testing::ScopedVariable;
using testing::TemporaryDirectory;

std::string expanded(const std::string& source) {
    std::string text;
    expand_variables(source, &text);
    return text;
}

// A search in directories that do not exist, or are those of the test.
int searched(const std::string& list, std::string name) {
    name.resize(300, ' ');
    std::int32_t code = EXP_OK;
    search_list(list.c_str(), name.data(), &code, static_cast<std::int32_t>(list.size()),
                static_cast<std::int32_t>(name.size()));
    return code;
}

class RuntimeObserver : public ::testing::Test {
protected:
    // Loads a file of that text, named "f.cfg", into a new store.
    void load(const std::string& text) {
        const TemporaryDirectory directory;
        const auto earlier = std::filesystem::current_path();
        std::filesystem::current_path(directory.path());
        testing::writeBytes(directory / "f.cfg", text);
        destroy_store(load_message_file(nullptr, "f.cfg"));
        std::filesystem::current_path(earlier);
    }

    ScopedVariable noNullText_{"TRVNULL", nullptr};
    ScopedVariable quiet_{"TRV_TRVFILES_VERBOSE", nullptr};
    testing::ConfiguredStore store_;
};

TEST_F(RuntimeObserver, ReceivesEachLookupOfAnExpansion) {
    store_.variable("A = <$B>", "a.cfg", 1);
    store_.variable("B = b");
    store_.path("L = d;e", "a.cfg", 3);
    const ScopedVariable process("TRV_TEST_E", "v");
    RecordingObserver observer;
    EXPECT_EQ(expanded("$A ?L $TRV_TEST_E $NONE ?NONE"), "<b> d;e v  ");
    EXPECT_THAT(observer.events,
                ElementsAre("$A [<$B>] [from 'a.cfg' line 1]", "$B [b] [set by program]",
                            "?L [d;e] [from 'a.cfg' line 3]", "$TRV_TEST_E [v] [from environment]",
                            "$NONE undefined []", "?NONE undefined []"));
}

TEST_F(RuntimeObserver, ReceivesNoLookupOutsideOfAnExpansion) {
    store_.variable("A = a");
    RecordingObserver observer;
    EXPECT_STREQ(get_variable("A"), "a");
    EXPECT_THAT(observer.events, IsEmpty());
}

TEST_F(RuntimeObserver, ReceivesEachReplacedReferenceWithTheValueSoFar) {
    store_.variable("A = 1", "a.cfg", 3);
    store_.variable("A = <+>;+", "b.cfg", 4);
    RecordingObserver observer;
    EXPECT_STREQ(get_variable("A"), "<1>;1");
    EXPECT_THAT(observer.events,
                ElementsAre("48 [A = <+(00000014)>;+(00000014)] [from 'b.cfg' line 4] -> "
                            "20 [A = 1] [from 'a.cfg' line 3]: [<][1>;+(00000014)]",
                            "48 [A = <+(00000014)>;+(00000014)] [from 'b.cfg' line 4] -> "
                            "20 [A = 1] [from 'a.cfg' line 3]: [<1>;][1]"));
}

TEST_F(RuntimeObserver, ReceivesUndefinedReferences) {
    store_.variable("A = x+(FFFFFFFF);y");
    RecordingObserver observer;
    EXPECT_STREQ(get_variable("A"), "x$(TRVNULL)(FFFFFFFF);y");
    EXPECT_THAT(observer.events, ElementsAre("12 [A = x+(FFFFFFFF);y] [set by program] -> "
                                             "undefined: [x$(TRVNULL)][(FFFFFFFF);y]"));
}

TEST_F(RuntimeObserver, ReceivesTheBeginningOfASearchAndEachCandidate) {
    const TemporaryDirectory directory;
    testing::writeBytes(directory / "x.t", "");
    const std::string found = directory.text();
    RecordingObserver observer;
    EXPECT_EQ(searched("no/where;" + found, "x.t"), EXP_OK);
    std::string native = normalize_separators(found);
    EXPECT_THAT(observer.events,
                ElementsAre("search [x.t] in [no\\where;" + native + "]",
                            "tried [no\\where\\x.t] missing", "tried [" + native + "\\x.t] found"));
}

TEST_F(RuntimeObserver, ReceivesTheFaultsInAMessageFile) {
    RecordingObserver observer;
    load("[s]\n" + std::string(1100, 'x') + "\n/if NONE == 1\n/endif\n/if A ~ 1\n/frob\n");
    EXPECT_THAT(observer.events,
                ElementsAre("warning [f.cfg] 2 [Input line too long]",
                            "warning [f.cfg] 3 [unknown variable : '/if NONE == 1']",
                            "warning [f.cfg] 5 [unknown variable : '/if A ~ 1']",
                            "fatal [f.cfg] 6 ['/if' without '/endif']",
                            "fatal [f.cfg] -1 ['/if' without '/endif' at end of file.]"));
}

TEST_F(RuntimeObserver, ReceivesAFaultInPlaceOfTheChannels) {
    const ChannelLog log;
    RecordingObserver observer;
    load("/endif\n");
    EXPECT_THAT(observer.events, ElementsAre("fatal [f.cfg] 1 ['/endif' without '/if']"));
    EXPECT_THAT(log.fatals(), IsEmpty());
}

TEST_F(RuntimeObserver, ReceivesALineWithoutEqualsSign) {
    const ChannelLog log;
    const std::int32_t file = register_file_name(store_.get(), "f.cfg");
    RecordingObserver observer;
    observer.during = [&] {
        for (int number = 0; number < 100; ++number)
            store_.variable("N" + std::to_string(number) + " = " + std::string(500, 'z'));
    };
    EXPECT_EQ(set_parameter(store_.get(), store_.var(), "no entry", file, 7), 0);
    EXPECT_THAT(observer.events,
                ElementsAre("warning [f.cfg] 7 [incorrect format (missing '='): [var] no entry]"));
    EXPECT_THAT(log.errors(), IsEmpty());
}

TEST_F(RuntimeObserver, IsByDefaultTheTextsForTheChannels) {
    store_.variable("A = 1", "a.cfg", 3);
    store_.variable("A = <+>");
    store_.variable("B = x+(FFFFFFFF);y");
    const ChannelLog log;
    expanded("$A$NONE?NONE$B");
    searched("p;q", "n");
    load("/endif\n/if NONE == 1\n/endif\n[s]\n" + std::string(1100, 'x') + "\n");
    const std::int32_t file = register_file_name(store_.get(), "f.cfg");
    set_parameter(store_.get(), store_.var(), "no entry", file, 7);
    EXPECT_THAT(log.traces(),
                ElementsAre("   - A = <+(00000014)> set by program",
                            "   00000014 -> A = 1 from 'a.cfg' line 3", "<1>", "A = '<1>' ",
                            "NONE = <undefined variable>", "NONE = <undefined path>",
                            "ref=[+(FFFFFFFF);y]\n", "x$(TRVNULL)(FFFFFFFF);y",
                            "B = 'x$(TRVNULL)(FFFFFFFF);y' ", "TRVNULL = <undefined variable>",
                            "SEARCHING for 'n' in 'p;q'", "  - 'p\\n' -> Not found",
                            "  - 'q\\n' -> Not found"));
    EXPECT_THAT(
        log.errors(),
        ElementsAre("load_messages: file 'f.cfg' line 2, unknown variable : '/if NONE == 1'\n",
                    "load_messages: file 'f.cfg', line 5 : Input line too long",
                    "load_messages: [file 'f.cfg' line 7] Warning - incorrect format (missing "
                    "'='): [var] no entry\n"));
    EXPECT_THAT(log.fatals(),
                ElementsAre("load_messages: file 'f.cfg', line 1 : '/endif' without '/if'"));
}

TEST_F(RuntimeObserver, ComesBackAsTheDefaultOneForNone) {
    store_.variable("A = a");
    RecordingObserver observer;
    EXPECT_EQ(set_runtime_observer(nullptr), &observer);
    {
        const ChannelLog log;
        expanded("$A");
        EXPECT_THAT(log.traces(), ElementsAre("A = 'a' set by program"));
    }
    EXPECT_THAT(observer.events, IsEmpty());
    EXPECT_FALSE(runtime_is_observed());

    runtime_observer* const standard = set_runtime_observer(&observer);
    EXPECT_TRUE(runtime_is_observed());
    expanded("$A");
    EXPECT_THAT(observer.events, ElementsAre("$A [a] [set by program]"));
    EXPECT_EQ(set_runtime_observer(standard), &observer);
    EXPECT_FALSE(runtime_is_observed());
}

TEST_F(RuntimeObserver, ReceivesTheLookupInWhichTheZoneHookSetsIt) {
    static std::vector<std::string> names;
    names.clear();
    class Names final : public runtime_observer {
        void looked_up(const lookup_event& event) override { names.push_back(event.name); }
    };
    static Names observer;
    const ScopedVariable zone("TRVZONE", "late");
    store_.variable("A = a");
    const zone_hook earlier = set_zone_hook([] { set_runtime_observer(&observer); });
    EXPECT_EQ(expanded("$A$TRVZONE$A"), "alatea");
    set_zone_hook(earlier);
    set_runtime_observer(nullptr);
    EXPECT_THAT(names, ElementsAre("TRVZONE", "A"));
}

TEST_F(RuntimeObserver, ReceivesTheEventAfterTheOneThatSetIt) {
    store_.variable("A = a");
    store_.variable("B = b");
    RecordingObserver later;
    set_runtime_observer(nullptr);
    RecordingObserver first;
    first.during = [&] { set_runtime_observer(&later); };
    EXPECT_EQ(expanded("$A$B"), "ab");
    EXPECT_THAT(first.events, ElementsAre("$A [a] [set by program]"));
    EXPECT_THAT(later.events, ElementsAre("$B [b] [set by program]"));
}

TEST_F(RuntimeObserver, LeavesAnExpansionThatItStopsToObserve) {
    store_.variable("A = a");
    RecordingObserver observer;
    observer.during = [] { set_runtime_observer(nullptr); };
    EXPECT_EQ(expanded("$A$A"), "aa");
    EXPECT_THAT(observer.events, ElementsAre("$A [a] [set by program]"));
}

TEST_F(RuntimeObserver, MayCallTheRuntimeBeforeItReadsAnEvent) {
    store_.variable("A = 1", "a.cfg", 1);
    store_.variable("A = +;x", "b.cfg", 2);
    store_.variable("B = 2");
    store_.variable("B = +;y");
    RecordingObserver observer;
    observer.during = [&] {
        runtime_observer* const self = set_runtime_observer(nullptr);
        EXPECT_EQ(expanded("$B?NONE"), "2;y");
        EXPECT_EQ(searched("p", "n"), EXP_NOT_FOUND);
        for (int number = 0; number < 100; ++number)
            store_.variable("N" + std::to_string(number) + " = " + std::string(500, 'z'));
        set_runtime_observer(self);
    };
    EXPECT_EQ(expanded("$A"), "1;x");
    EXPECT_EQ(searched("q;r", "$A"), EXP_NOT_FOUND);
    EXPECT_THAT(observer.events, ElementsAre("48 [A = +(00000014);x] [from 'b.cfg' line 2] -> "
                                             "20 [A = 1] [from 'a.cfg' line 1]: [][1;x]",
                                             "$A [1;x] []",
                                             "48 [A = +(00000014);x] [from 'b.cfg' line 2] -> "
                                             "20 [A = 1] [from 'a.cfg' line 1]: [][1;x]",
                                             "$A [1;x] []", "search [1;x] in [q;r]",
                                             "tried [q\\1;x] missing", "tried [r\\1;x] missing"));
}

TEST_F(RuntimeObserver, IsAskedForAgainOnlyAfterCodeOfTheHostHasRun) {
    observation observed;
    EXPECT_FALSE(observed.is_on());
    {
        const RecordingObserver observer;
        EXPECT_FALSE(observed.is_on());
        EXPECT_TRUE(observed.is_on(1));
        EXPECT_TRUE(observed.is_on(1));
    }
    EXPECT_FALSE(observed.is_on(1));
    const ChannelLog log;
    EXPECT_FALSE(observed.is_on(1));
    EXPECT_TRUE(observed.is_on(2));
}

TEST_F(RuntimeObserver, MayThrow) {
    store_.variable("A = 1");
    store_.variable("A = +,2");
    {
        RecordingObserver observer;
        observer.during = [] { throw std::runtime_error("stop"); };
        EXPECT_THROW(expanded("$A"), std::runtime_error);
        EXPECT_THROW(searched("p", "n"), std::runtime_error);
    }
    EXPECT_EQ(expanded("$A"), "1,2");
}

}  // namespace
}  // namespace trv
