#include <trvfiles/environment/guards.h>

#include <gtest/gtest.h>

#include <stdexcept>

namespace trv {
namespace {

TEST(Guards, MarkCodeAsRunningUntilItIsLeft) {
    bool running = false;
    try {
        const running_guard guard(running);
        EXPECT_TRUE(running);
        throw std::runtime_error("leave");
    } catch (const std::runtime_error&) {
        EXPECT_FALSE(running);
    }
}

TEST(Guards, GiveTheEchoFlagBackAsItWas) {
    for (const int earlier : {0, 1}) {
        set_echo_output(earlier);
        try {
            const echo_guard guard;
            EXPECT_EQ(echo_output(), 0);
            throw std::runtime_error("leave");
        } catch (const std::runtime_error&) {
            EXPECT_EQ(echo_output(), earlier);
        }
    }
    set_echo_output(0);
}

TEST(Guards, GiveTheRecordFlagBackAsItWas) {
    for (const bool earlier : {true, false}) {
        set_record_flag(earlier);
        try {
            const record_guard guard(!earlier);
            EXPECT_EQ(set_record_flag(!earlier), !earlier);
            throw std::runtime_error("leave");
        } catch (const std::runtime_error&) {
            EXPECT_EQ(set_record_flag(true), earlier);
        }
    }
}

}  // namespace
}  // namespace trv
