#include <cli/env_running_value.h>
#include <tests/environment/configured_store.h>
#include <trvfiles/environment/entry_text.h>
#include <trvfiles/environment/message_store_data.h>
#include <trvfiles/environment/reference_resolver.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace trv::testing {
namespace {

using cli::RunningValue;
using State = RunningValue::State;

// A variable with these definitions, each read after the one before.
class DefinedVariable {
public:
    explicit DefinedVariable(const std::vector<std::string>& values) {
        for (const std::string& value : values)
            store_.variable("A = " + value);
        std::int32_t text = store_.get()->sections[0].text(0);
        for (; text != text_pool::none; text = texts().record(text).previous)
            offsets_.push_back(text);
        std::reverse(offsets_.begin(), offsets_.end());
    }

    std::size_t count() const { return offsets_.size(); }

    void passTo(RunningValue& value, std::size_t number) const {
        const std::int32_t text = offsets_[number];
        value.take(entry_value(texts().at(text)), texts().record(text).previous);
    }

    std::string resolved(std::size_t number) const {
        return resolve_references(*store_.get(), offsets_[number]);
    }

    RunningValue afterAll() const {
        RunningValue value;
        for (std::size_t i = 0; i < count(); ++i)
            passTo(value, i);
        return value;
    }

private:
    const text_pool& texts() const { return store_.get()->texts; }

    ConfiguredStore store_;
    std::vector<std::int32_t> offsets_;
};

std::string valueAfter(const std::vector<std::string>& values) {
    const RunningValue value = DefinedVariable(values).afterAll();
    EXPECT_EQ(value.state(), State::known);
    return value.text();
}

TEST(RunningValue, IsEmptyBeforeTheFirstDefinition) {
    EXPECT_EQ(RunningValue().text(), "");
    EXPECT_EQ(RunningValue().state(), State::known);
}

TEST(RunningValue, ExtendsTheValueSoFar) {
    EXPECT_EQ(valueAfter({"a"}), "a");
    EXPECT_EQ(valueAfter({"a", "+ b"}), "a b");
    EXPECT_EQ(valueAfter({"a", "+ b", "c +"}), "c a b");
    EXPECT_EQ(valueAfter({"a", "<+|+>", "+,+"}), "<a|a>,<a|a>");
    EXPECT_EQ(valueAfter({"", "+", "+"}), "");
}

TEST(RunningValue, ForgetsWhatIsNotExtended) {
    EXPECT_EQ(valueAfter({"a", "+ b", "c"}), "c");
    EXPECT_EQ(valueAfter({"a", "+ b", "c++"}), "c+");
    EXPECT_EQ(valueAfter({"a", "b", "+ c"}), "b c");
}

TEST(RunningValue, LeavesASinglePlusOfTheFirstDefinition) {
    EXPECT_EQ(valueAfter({"+"}), "+");
    EXPECT_EQ(valueAfter({"+", "+", "+ x"}), "+ x");
    EXPECT_EQ(valueAfter({"+ x", "+ x"}), "+ x x");
    EXPECT_EQ(valueAfter({"a+++", "+"}), "a++");
    EXPECT_EQ(valueAfter({"+(0", "+g"}), "+(0g");
    EXPECT_EQ(valueAfter({"+(0000000", "+"}), "+(0000000");
}

TEST(RunningValue, ReportsWhatExtends) {
    EXPECT_TRUE(RunningValue::extends("a +(00000010) b", 16));
    EXPECT_FALSE(RunningValue::extends("a ++(00000010) b", 16));
    EXPECT_FALSE(RunningValue::extends("a", 16));
    EXPECT_FALSE(RunningValue::extends("a +(00000010) b", -1));
}

TEST(RunningValue, DoesNotFollowReferencesWrittenByHand) {
    // A reference in the first definition, and one that two definitions form together.
    EXPECT_EQ(DefinedVariable({"+(00000000)"}).afterAll().state(), State::unknown);
    EXPECT_EQ(DefinedVariable({"+(0000", "+0000)"}).afterAll().state(), State::unknown);
    EXPECT_EQ(DefinedVariable({"+(00000000)", "+ x"}).afterAll().state(), State::unknown);
    EXPECT_EQ(DefinedVariable({"+(00000000)", "+ x"}).afterAll().text(), "");
    EXPECT_EQ(valueAfter({"+(00000000)", "+ x", "a", "+ b"}), "a b");
}

TEST(RunningValue, IsWhatTheRuntimeResolves) {
    const std::vector<std::string> parts = {"+", "++", "x", " ", "(", ")", "0", "a", "+(0", "+x"};
    std::mt19937 random(1);
    int known = 0;
    for (int run = 0; run < 3000; ++run) {
        std::vector<std::string> values(1 + random() % 6);
        for (std::string& value : values) {
            for (std::size_t i = random() % 6; i > 0; --i)
                value += parts[random() % parts.size()];
        }
        const DefinedVariable variable(values);
        RunningValue value;
        for (std::size_t i = 0; i < variable.count(); ++i) {
            variable.passTo(value, i);
            if (value.state() != State::known) continue;
            ++known;
            ASSERT_EQ(value.text(), variable.resolved(i)) << ::testing::PrintToString(values);
        }
    }
    EXPECT_GT(known, 9000);
}

TEST(RunningValue, EndsIfTheRuntimeReplacesNoMore) {
    std::vector<std::string> values(10001, "+");
    values[0] = "x";
    EXPECT_EQ(valueAfter(values), "x");
    values.emplace_back("+");
    const DefinedVariable tooLong(values);
    EXPECT_EQ(tooLong.afterAll().state(), State::beyondLimits);
    EXPECT_EQ(tooLong.afterAll().text(), "");
    EXPECT_EQ(tooLong.resolved(10000), "x");
    EXPECT_EQ(tooLong.resolved(10001).substr(0, 2), "+(");
    values.emplace_back("+ y");
    EXPECT_EQ(DefinedVariable(values).afterAll().state(), State::beyondLimits);
    values.emplace_back("z");
    values.emplace_back("+ y");
    EXPECT_EQ(valueAfter(values), "z y");
}

TEST(RunningValue, CountsReplacementsWithinReplacements) {
    // 3 * (3 * ... + 1) replacements: 9840 after eight definitions.
    std::vector<std::string> values(9, "+.+.+");
    values[0] = "";
    EXPECT_EQ(valueAfter(values).size(), 6560U);
    values.emplace_back("+");
    EXPECT_EQ(valueAfter(values).size(), 6560U);
    values.emplace_back("+ +");
    EXPECT_EQ(DefinedVariable(values).afterAll().state(), State::beyondLimits);
}

TEST(RunningValue, DividesAValueAtWhatItExtends) {
    using ::testing::ElementsAre;
    EXPECT_THAT(RunningValue::literals("a+(0000000C);b+(0000000c)", 12),
                ElementsAre("a", ";b", ""));
    EXPECT_THAT(RunningValue::literals("a++b", 12), ElementsAre("a++b"));
    EXPECT_THAT(RunningValue::literals("", -1), ElementsAre(""));
}

TEST(RunningValue, EndsIfTheRuntimeTakesNoLongerValue) {
    constexpr std::size_t limit = 1048576;
    const auto stateOf = [](const std::vector<std::string>& values) {
        const DefinedVariable variable(values);
        const RunningValue value = variable.afterAll();
        const std::string resolved = variable.resolved(values.size() - 1);
        if (value.state() == State::known) {
            EXPECT_EQ(value.text() == resolved, true);
        } else {
            EXPECT_NE(resolved.find("+("), std::string::npos);
        }
        return value.state();
    };
    EXPECT_EQ(stateOf({std::string(limit - 2, 'x'), "y+z"}), State::known);
    EXPECT_EQ(stateOf({std::string(limit - 1, 'x'), "y+z"}), State::beyondLimits);
    EXPECT_EQ(stateOf({std::string(limit / 2, 'x'), "+", "<+"}), State::known);
    EXPECT_EQ(stateOf({std::string(limit / 2, 'x'), "+", "<+>+"}), State::beyondLimits);
    // A "++" is two characters until it is resolved.
    EXPECT_EQ(stateOf({std::string(limit - 2, '+'), "y+z"}), State::known);
    EXPECT_EQ(stateOf({std::string(limit, '+'), "y+z"}), State::beyondLimits);
    // The resolved part counts with its resolved length.
    EXPECT_EQ(stateOf({std::string(limit / 2, '+'), "+", "+ +"}), State::known);
    EXPECT_EQ(stateOf({std::string(limit / 2, '+'), "+,+", "+,+"}), State::beyondLimits);
    EXPECT_EQ(stateOf({std::string(limit + 1, 'x')}), State::known);
}

}  // namespace
}  // namespace trv::testing
