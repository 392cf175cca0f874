#include <tests/c/handle_uses.h>
#include <tests/common/file_bytes.h>
#include <tests/environment/installation.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <set>
#include <thread>

namespace trv::testing {
namespace {

constexpr const char* badHandle = "a handle is 0, released or of another type";

// The runtime finds a configuration without faults, so no call has another failure.
class Handles : public ::testing::Test {
protected:
    Handles() { installation_.write("config/environ.cfg", "[var]\nA = 1\n"); }

    std::vector<trvfiles_handle> wrongHandlesFor(HandleKind kind) {
        std::vector<trvfiles_handle> wrong = {0, 1, UINT64_MAX};
        // The number that the next object of this kind would have, if numbers were not shared.
        wrong.push_back(live_.of(kind) + 100000);
        for (int other = 1; other <= static_cast<int>(HandleKind::messages); ++other) {
            if (static_cast<HandleKind>(other) != kind) {
                wrong.push_back(live_.of(static_cast<HandleKind>(other)));
            }
        }
        return wrong;
    }

    Installation installation_;
    LiveObjects live_;
};

TEST_F(Handles, AreRefusedByEveryFunctionIfTheyAreNullOrWrong) {
    for (const HandleUse& use : handleUses()) {
        SCOPED_TRACE(use.function);
        if (use.kind == HandleKind::none) continue;
        for (const trvfiles_handle wrong : wrongHandlesFor(use.kind)) {
            EXPECT_EQ(use.call(live_, wrong, 0), TRVFILES_BAD_HANDLE) << wrong;
            if (!use.takesFault) continue;
            EXPECT_EQ(use.call(live_, wrong, live_.fault), TRVFILES_BAD_HANDLE);
            EXPECT_EQ(live_.fault.reason(), badHandle);
        }
    }
}

TEST_F(Handles, AreRefusedByEveryFunctionAfterTheirRelease) {
    LiveObjects released;
    std::map<HandleKind, trvfiles_handle> handles;
    for (int kind = 1; kind <= static_cast<int>(HandleKind::messages); ++kind) {
        const trvfiles_handle handle = released.of(static_cast<HandleKind>(kind));
        EXPECT_EQ(trvfiles_release(handle, 0), TRVFILES_SUCCESS);
        EXPECT_EQ(trvfiles_release(handle, 0), TRVFILES_BAD_HANDLE);
        handles[static_cast<HandleKind>(kind)] = handle;
    }
    // Objects of all kinds take the memory of the released ones.
    const LiveObjects others;
    for (const HandleUse& use : handleUses()) {
        SCOPED_TRACE(use.function);
        if (use.kind == HandleKind::none) continue;
        EXPECT_EQ(use.call(live_, handles[use.kind], 0), TRVFILES_BAD_HANDLE);
    }
}

TEST_F(Handles, OfFaultsAreRefusedByEveryFunction) {
    for (const HandleUse& use : handleUses()) {
        SCOPED_TRACE(use.function);
        if (!use.takesFault) continue;
        for (const trvfiles_handle wrong : wrongHandlesFor(HandleKind::fault)) {
            if (wrong == 0) continue;
            EXPECT_EQ(use.call(live_, live_.of(use.kind), wrong), TRVFILES_BAD_HANDLE) << wrong;
        }
    }
    EXPECT_EQ(trvfiles_release(live_.texts, live_.context), TRVFILES_BAD_HANDLE);
    EXPECT_EQ(trvfiles_texts_count(live_.texts, &live_.count, 0), TRVFILES_SUCCESS);
}

TEST_F(Handles, AreAcceptedByEveryFunctionIfTheyAreLive) {
    for (const HandleUse& use : handleUses()) {
        SCOPED_TRACE(use.function);
        EXPECT_NE(
            use.call(live_, live_.of(use.kind), use.takesFault ? trvfiles_fault{live_.fault} : 0),
            TRVFILES_BAD_HANDLE);
    }
}

TEST_F(Handles, AreReleasedOnce) {
    EXPECT_EQ(trvfiles_release(0, live_.fault), TRVFILES_BAD_HANDLE);
    EXPECT_EQ(live_.fault.reason(), badHandle);
    std::size_t before = 0;
    ASSERT_EQ(trvfiles_live_handles(&before, 0), TRVFILES_SUCCESS);
    trvfiles_texts texts = 0;
    ASSERT_EQ(trvfiles_texts_create(&texts, 0), TRVFILES_SUCCESS);
    std::size_t count = 0;
    ASSERT_EQ(trvfiles_live_handles(&count, 0), TRVFILES_SUCCESS);
    EXPECT_EQ(count, before + 1);
    EXPECT_EQ(trvfiles_release(texts, 0), TRVFILES_SUCCESS);
    ASSERT_EQ(trvfiles_live_handles(&count, 0), TRVFILES_SUCCESS);
    EXPECT_EQ(count, before);
}

TEST_F(Handles, OfAFaultCanBeReleasedWithItself) {
    trvfiles_fault fault = 0;
    ASSERT_EQ(trvfiles_fault_create(&fault), TRVFILES_SUCCESS);
    EXPECT_EQ(trvfiles_release(fault, fault), TRVFILES_SUCCESS);
    EXPECT_EQ(trvfiles_release(fault, 0), TRVFILES_BAD_HANDLE);
}

TEST_F(Handles, AreNeverUsedAgain) {
    trvfiles_texts last = 0;
    for (int i = 0; i < 1000; ++i) {
        trvfiles_texts texts = 0;
        ASSERT_EQ(trvfiles_texts_create(&texts, 0), TRVFILES_SUCCESS);
        EXPECT_GT(texts, last);
        last = texts;
        trvfiles_release(texts, 0);
    }
}

// The handle types of the arguments, in the header's own words.
std::multimap<std::string, std::string> handleArguments(const std::string& header) {
    std::multimap<std::string, std::string> found;
    const std::regex function("TRVFILES_API [^(]*?(trvfiles_\\w+)\\(([^)]*)\\);");
    const std::regex argument(
        "trvfiles_(fault|texts|context|assembly|components|placements|"
        "messages) (\\w+)");
    for (std::sregex_iterator i(header.begin(), header.end(), function), end; i != end; ++i) {
        const std::string name = (*i)[1];
        const std::string arguments = (*i)[2];
        for (std::sregex_iterator j(arguments.begin(), arguments.end(), argument); j != end; ++j)
            found.emplace(name, (*j)[1]);
    }
    return found;
}

// The two tables agree: no function of the header is left out of the tests above.
TEST(HandleUses, CoverEveryHandleArgumentOfTheHeader) {
    constexpr const char* kinds[] = {"",         "fault",      "texts",      "context",
                                     "assembly", "components", "placements", "messages"};
    std::multimap<std::string, std::string> used;
    std::string last;
    for (const HandleUse& use : handleUses()) {
        const auto kind = static_cast<std::size_t>(use.kind);
        if (use.kind != HandleKind::none) used.emplace(use.function, kinds[kind]);
        if (use.takesFault && last != use.function) used.emplace(use.function, "fault");
        last = use.function;
    }
    used.emplace("trvfiles_release", "fault");
    const auto expected = handleArguments(bytesOf(TRV_C_HEADER));
    using Pairs = std::multiset<std::pair<std::string, std::string>>;
    EXPECT_EQ(Pairs(used.begin(), used.end()), Pairs(expected.begin(), expected.end()));
    EXPECT_GT(expected.size(), 100U);
}

TEST(HandleTable, IsUsedByThreadsAtTheSameTime) {
    constexpr int rounds = 2000;
    const auto work = [] {
        for (int i = 0; i < rounds; ++i) {
            const Texts texts;
            const Assembly assembly;
            EXPECT_EQ(trvfiles_assembly_write_memory(assembly, texts, 0), TRVFILES_CONTENT_ERROR);
        }
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back(work);
    for (std::thread& thread : threads)
        thread.join();
}

TEST(HandleTable, KeepsAnObjectUntilTheCallThatUsesItEnds) {
    const Texts texts;
    for (int i = 0; i < 200; ++i) {
        trvfiles_assembly assembly = 0;
        ASSERT_EQ(trvfiles_assembly_create(&assembly, 0), TRVFILES_SUCCESS);
        std::thread other([&] { trvfiles_release(assembly, 0); });
        std::size_t count = 0;
        const int32_t status = trvfiles_component_count(assembly, &count, 0);
        EXPECT_TRUE(status == TRVFILES_BAD_HANDLE || count == 1);
        other.join();
    }
}

}  // namespace
}  // namespace trv::testing
