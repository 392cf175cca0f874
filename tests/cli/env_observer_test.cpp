#include <cli/env_observer.h>
#include <tests/environment/recording_observer.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace trv::testing {
namespace {

using ::testing::ElementsAre;

class Chained final : public cli::ChainedObserver {
public:
    void looked_up(const lookup_event& event) override {
        ++lookups;
        ChainedObserver::looked_up(event);
    }

    int lookups = 0;
};

class Value final : public partial_value {
    std::string resolved() const override { return "a"; }
    std::string rest() const override { return "b"; }
};

TEST(ChainedObserver, PassesEachEventOn) {
    RecordingObserver earlier;
    const Chained observer;
    EXPECT_EQ(&current_observer(), &observer);
    const std::string name = "n";
    const stored_text text = {4, "t", "set by program"};
    current_observer().looked_up({'$', name, nullptr, {}});
    current_observer().reference_replaced({text, nullptr, Value()});
    current_observer().search_began({name, "p;q"});
    current_observer().candidate_tried({name, true});
    current_observer().fault_found({fault_kind::invalid_condition, "f", 7, "wrong"});
    EXPECT_EQ(observer.lookups, 1);
    EXPECT_THAT(earlier.events,
                ElementsAre("$n undefined []", "4 [t] [set by program] -> undefined: [a][b]",
                            "search [n] in [p;q]", "tried [n] found", "fatal [f] 7 [wrong]"));
}

TEST(ChainedObserver, GivesWayToTheEarlierOneAtItsEnd) {
    const RecordingObserver earlier;
    { const Chained observer; }
    EXPECT_EQ(&current_observer(), &earlier);
}

}  // namespace
}  // namespace trv::testing
