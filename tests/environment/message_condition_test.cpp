#include <tests/common/channel_log.h>
#include <trvfiles/environment/message_condition.h>
#include <trvfiles/environment/variables_internal.h>
#include <trvfiles/support/platform.h>

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace trv {
namespace {

class MessageCondition : public ::testing::Test {
protected:
    MessageCondition() {
        earlier_ = loaded_stores.environment;
        loaded_stores.environment = create_store();
        const int var = add_section(loaded_stores.environment, "var");
        for (const char* entry : {"X = 1", "SPACED = a b", "EMPTY =", "TRAILING = v \t",
                                  "CLOSED = a)", "REFERENCE = $X", "MY)VAR = 1"}) {
            set_variable(loaded_stores.environment, var, entry);
        }
    }
    ~MessageCondition() override {
        platform::set_environment("TRVFILES_TEST_X", nullptr);
        destroy_store(loaded_stores.environment);
        loaded_stores.environment = earlier_;
    }

    testing::ChannelLog log_;

private:
    message_store* earlier_;
};

TEST_F(MessageCondition, AsksWhetherAVariableIsDefined) {
    EXPECT_EQ(evaluate_condition(" X"), condition_result::yes);
    EXPECT_EQ(evaluate_condition(" EMPTY"), condition_result::yes);
    EXPECT_EQ(evaluate_condition(" UNKNOWN"), condition_result::no);
}

TEST_F(MessageCondition, ComparesAWholeText) {
    EXPECT_EQ(evaluate_condition(" X == 1"), condition_result::yes);
    EXPECT_EQ(evaluate_condition(" X == 11"), condition_result::no);
    EXPECT_EQ(evaluate_condition(" X != 1"), condition_result::no);
    EXPECT_EQ(evaluate_condition(" X != 2"), condition_result::yes);
    EXPECT_EQ(evaluate_condition(" (SPACED == a b)"), condition_result::yes);
    EXPECT_EQ(evaluate_condition(" SPACED == a  b"), condition_result::no);
    EXPECT_EQ(evaluate_condition(" SPACED == A b"), condition_result::no);
}

TEST_F(MessageCondition, TakesBracketsOrNone) {
    for (const char* text :
         {"( X == 1 )", "{X == 1}", "X == 1", "(X == 1", "X == 1)}) ", "(X==1)"}) {
        const bool is_one_name = std::string(text) == "(X==1)";
        EXPECT_EQ(evaluate_condition(text),
                  is_one_name ? condition_result::no : condition_result::yes)
            << text;
    }
}

TEST_F(MessageCondition, TakesOneOpeningBracketOnly) {
    EXPECT_EQ(evaluate_condition("((X))"), condition_result::no);
}

TEST_F(MessageCondition, TakesAComparisonWithoutBlanksForOneName) {
    EXPECT_EQ(evaluate_condition("X==1"), condition_result::no);
}

TEST_F(MessageCondition, AsksTheEmptyNameWhereThereIsNone) {
    for (const char* text : {"", "  ", "()", "( )", ")"})
        EXPECT_EQ(evaluate_condition(text), condition_result::no) << text;
}

TEST_F(MessageCondition, IsNotTrueForAnUndefinedVariable) {
    EXPECT_EQ(evaluate_condition(" UNKNOWN == 1"), condition_result::undefined);
    EXPECT_EQ(evaluate_condition(" UNKNOWN != 1"), condition_result::undefined);
    EXPECT_EQ(evaluate_condition(" UNKNOWN what"), condition_result::undefined);
}

TEST_F(MessageCondition, KnowsTwoOperators) {
    for (const char* text : {" X = 1", " X ==1", " X === 1", " X < 2", " X 1"})
        EXPECT_EQ(evaluate_condition(text), condition_result::invalid) << text;
}

TEST_F(MessageCondition, ComparesWithAnEmptyText) {
    EXPECT_EQ(evaluate_condition(" EMPTY =="), condition_result::yes);
    EXPECT_EQ(evaluate_condition(" (X == )"), condition_result::no);
    EXPECT_EQ(evaluate_condition(" (X != )"), condition_result::yes);
}

TEST_F(MessageCondition, StripsClosersFromTheTextToo) {
    EXPECT_EQ(evaluate_condition(" CLOSED == a)"), condition_result::no);
    EXPECT_EQ(evaluate_condition(" (CLOSED != a))"), condition_result::yes);
}

TEST_F(MessageCondition, CutsTrailingBlanksOfTheValue) {
    EXPECT_EQ(evaluate_condition(" TRAILING == v"), condition_result::yes);
    platform::set_environment("TRVFILES_TEST_X", "e \t ");
    EXPECT_EQ(evaluate_condition(" TRVFILES_TEST_X == e"), condition_result::yes);
}

TEST_F(MessageCondition, ComparesTheValueUnexpanded) {
    EXPECT_EQ(evaluate_condition(" REFERENCE == 1"), condition_result::no);
    EXPECT_EQ(evaluate_condition(" REFERENCE == $X"), condition_result::yes);
}

TEST_F(MessageCondition, AsksTheProcessEnvironmentFirst) {
    EXPECT_EQ(evaluate_condition(" TRVFILES_TEST_X"), condition_result::no);
    platform::set_environment("TRVFILES_TEST_X", "9");
    EXPECT_EQ(evaluate_condition(" TRVFILES_TEST_X == 9"), condition_result::yes);
}

TEST_F(MessageCondition, SendsNoTraceLines) {
    evaluate_condition(" X == 1");
    evaluate_condition(" UNKNOWN");
    EXPECT_TRUE(log_.traces().empty());
}

TEST_F(MessageCondition, LooksAtNothingOutsideOfItsText) {
    constexpr std::string_view line = "(X))";
    EXPECT_EQ(evaluate_condition(line.substr(0, 0)), condition_result::no);
    EXPECT_EQ(evaluate_condition(line.substr(4)), condition_result::no);
    EXPECT_EQ(evaluate_condition(line.substr(2, 1)), condition_result::no);
    EXPECT_EQ(evaluate_condition(line.substr(1, 1)), condition_result::yes);
}

}  // namespace
}  // namespace trv
