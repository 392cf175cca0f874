#include <tests/common/death_test.h>
#include <tests/environment/installation.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/environment/work_zone.h>
#include <trvfiles/support/platform.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace trv {
namespace {

int calls;

/// Lookups of the zone that the process environment answers.
class ZoneHook : public testing::ChildProcessTest {
protected:
    ZoneHook() {
        calls = 0;
        platform::set_environment("TRVZONE", "zone");
    }
    ~ZoneHook() override {
        set_zone_hook(nullptr);
        platform::set_environment("TRVZONE", nullptr);
    }
};

void count() {
    ++calls;
}

// The process environment answers it, so nothing is loaded.
void look_up_zone() {
    EXPECT_STREQ(get_variable("TRVZONE"), "zone");
}

TEST_F(ZoneHook, IsReturnedByTheNextRegistration) {
    EXPECT_EQ(set_zone_hook(count), nullptr);
    EXPECT_EQ(set_zone_hook(nullptr), count);
    EXPECT_EQ(set_zone_hook(count), nullptr);
}

void add(void* context) {
    ++*static_cast<int*>(context);
}

TEST_F(ZoneHook, GetsItsContext) {
    int one = 0;
    int other = 0;
    set_context_zone_hook(add, &one);
    look_up_zone();
    set_context_zone_hook(add, &other);
    look_up_zone();
    look_up_zone();
    EXPECT_EQ(one, 1);
    EXPECT_EQ(other, 2);
    set_context_zone_hook(nullptr, &other);
    look_up_zone();
    EXPECT_EQ(other, 2);
}

TEST_F(ZoneHook, OfEitherKindReplacesTheOther) {
    int own = 0;
    set_zone_hook(count);
    set_context_zone_hook(add, &own);
    look_up_zone();
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(own, 1);
    EXPECT_EQ(set_zone_hook(count), nullptr);
    look_up_zone();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(own, 1);
}

TEST_F(ZoneHook, WithAContextMayReplaceItself) {
    set_context_zone_hook([](void*) { set_zone_hook(count); }, nullptr);
    look_up_zone();
    EXPECT_EQ(calls, 0);
    look_up_zone();
    EXPECT_EQ(calls, 1);
}

TEST_F(ZoneHook, RunsAtEachCall) {
    look_up_zone();
    EXPECT_EQ(calls, 0);
    set_zone_hook(count);
    look_up_zone();
    look_up_zone();
    EXPECT_EQ(calls, 2);
}

TEST_F(ZoneHook, DoesNotRunWhileItRuns) {
    set_zone_hook([] {
        ++calls;
        look_up_zone();
    });
    look_up_zone();
    EXPECT_EQ(calls, 1);
    look_up_zone();
    EXPECT_EQ(calls, 2);
}

TEST_F(ZoneHook, RunsAgainAfterItHasThrown) {
    set_zone_hook([] {
        ++calls;
        throw std::runtime_error("no zone");
    });
    EXPECT_THROW(look_up_zone(), std::runtime_error);
    EXPECT_THROW(look_up_zone(), std::runtime_error);
    EXPECT_EQ(calls, 2);
}

TEST_F(ZoneHook, MayReplaceItself) {
    set_zone_hook([] { set_zone_hook(count); });
    look_up_zone();
    EXPECT_EQ(calls, 0);
    look_up_zone();
    EXPECT_EQ(calls, 1);
}

TEST_F(ZoneHook, RunsBeforeEveryLookupOfTheZone) {
    const auto lookUp = [] {
        const testing::Installation installation;
        installation.write("config/environ.cfg", "[var]\nTRVZONE = configured\nN = 1\n");
        set_zone_hook(count);
        EXPECT_STREQ(get_variable("TRVZONE"), "configured");
        EXPECT_EQ(calls, 1);
        platform::set_environment("TRVZONE", "set");
        EXPECT_STREQ(get_variable("TRVZONE"), "set");
        EXPECT_EQ(calls, 2);
        const bool same = platform::backslash_separates();  // names ignore case on Windows
        EXPECT_STREQ(get_variable("trvzone"), same ? "set" : "configured");
        EXPECT_STREQ(get_variable("N"), "1");
        EXPECT_EQ(calls, 2);
    };
    TRV_EXPECT_IN_CHILD(lookUp);
}

TEST_F(ZoneHook, SetsTheZoneForTheLookupThatCalledIt) {
    const auto lookUp = [] {
        const testing::Installation installation;
        set_zone_hook([] {
            if (get_variable("TRVHOME") == nullptr) return;
            platform::set_environment("TRVZONE", "late");
            get_variable("TRVZONE");
            ++calls;
        });
        EXPECT_STREQ(get_variable("TRVZONE"), "late");
        EXPECT_EQ(calls, 1);
    };
    TRV_EXPECT_IN_CHILD(lookUp);
}

}  // namespace
}  // namespace trv
