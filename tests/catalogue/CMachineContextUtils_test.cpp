#include <trvfiles/catalogue/CMachineContextUtils.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <ostream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

using namespace std::string_literals;

static_assert(std::is_empty_v<CMachineContextUtils>);
static_assert(!std::is_polymorphic_v<CMachineContextUtils>);
static_assert(std::is_nothrow_move_assignable_v<CMachineContextUtils>);

namespace {

constexpr int largest = std::numeric_limits<int>::max();

struct Choice {
    bool found;
    int index;
    int position;
};

bool operator==(const Choice& left, const Choice& right) {
    return left.found == right.found && left.index == right.index &&
           left.position == right.position;
}

void PrintTo(const Choice& choice, std::ostream* stream) {
    *stream << (choice.found ? "index " : "none, index ") << choice.index << ", position "
            << choice.position;
}

constexpr Choice none = {false, -1, -1};

Choice choiceOf(const std::vector<std::wstring>& files) {
    Choice choice = {false, 77, 77};
    choice.found =
        CMachineContextUtils::sGetDefaultMachineContext(files, choice.index, choice.position);
    return choice;
}

/// The result of the catalogue for the name "[MACHINE_POSITION_" followed by these characters.
Choice choiceOfNumber(const std::wstring& rest) {
    return choiceOf({L"[MACHINE_POSITION_" + rest});
}

}  // namespace

TEST(Catalogue, HasNothingToAssign) {
    CMachineContextUtils one;
    CMachineContextUtils other;
    EXPECT_EQ(&(one = other), &one);
    EXPECT_EQ(&(one = std::move(other)), &one);
}

TEST(DefaultContext, IsTheFirstOfTheHighestPosition) {
    EXPECT_EQ(choiceOf({L"[MACHINE_POSITION_2].mctx", L"x.mctx", L"[MACHINE_POSITION_7].mctx",
                        L"[MACHINE_POSITION_7].mctx"}),
              (Choice{true, 2, 7}));
    EXPECT_EQ(choiceOf({L"[MACHINE_POSITION_07].mctx", L"[MACHINE_POSITION_7].mctx"}),
              (Choice{true, 0, 7}));
    EXPECT_EQ(choiceOf({L"[MACHINE_POSITION_10].mctx", L"[MACHINE_POSITION_9].mctx"}),
              (Choice{true, 0, 10}));
    EXPECT_EQ(choiceOf({L"x", L"", L"[MACHINE_POSITION_3].mctx"}), (Choice{true, 2, 3}));
}

TEST(DefaultContext, IsMissingInAnEmptyList) {
    EXPECT_EQ(choiceOf({}), none);
    EXPECT_EQ(choiceOf({L""}), none);
}

TEST(DefaultContext, IsFoundInALongList) {
    std::vector<std::wstring> files(100000, L"[MACHINE_POSITION_1].mctx");
    files[99999] = L"[MACHINE_POSITION_2].mctx";
    EXPECT_EQ(choiceOf(files), (Choice{true, 99999, 2}));
}

TEST(DefaultContext, HasNoDirectoryInItsName) {
    EXPECT_EQ(choiceOf({L"C:\\ctx\\[MACHINE_POSITION_1].mctx"}), none);
    EXPECT_EQ(choiceOf({L"/ctx/[MACHINE_POSITION_1].mctx"}), none);
    EXPECT_EQ(choiceOf({L"./[MACHINE_POSITION_1].mctx"}), none);
}

TEST(DefaultContext, MayHaveAnyTextAfterItsNumber) {
    EXPECT_EQ(choiceOf({L"[MACHINE_POSITION_4]_old.mctx"}), (Choice{true, 0, 4}));
    for (const wchar_t* rest : {L"5", L"5]", L"5].mctx", L"5].MCTX", L"5x", L"5 6", L"5.9].mctx",
                                L"5e3", L"5-", L"5\u0661", L"5\uFFFD"}) {
        EXPECT_EQ(choiceOfNumber(rest), (Choice{true, 0, 5})) << rest;
    }
    EXPECT_EQ(choiceOfNumber(L"5\0006].mctx"s), (Choice{true, 0, 5}));
    EXPECT_EQ(choiceOfNumber(L"0x10].mctx"), (Choice{true, 0, 0}));
}

TEST(DefaultContext, MayHaveWhiteSpaceAndASignBeforeItsNumber) {
    EXPECT_EQ(choiceOfNumber(L" +4].mctx"), (Choice{true, 0, 4}));
    EXPECT_EQ(choiceOfNumber(L" \t\n\v\f\r4].mctx"), (Choice{true, 0, 4}));
    EXPECT_EQ(choiceOfNumber(L"+004].mctx"), (Choice{true, 0, 4}));
    EXPECT_EQ(choiceOfNumber(L"-0].mctx"), (Choice{true, 0, 0}));
}

TEST(DefaultContext, HasANumber) {
    for (const wchar_t* rest : {L"", L"].mctx", L"x1].mctx", L"+].mctx", L"-].mctx", L"+-1].mctx",
                                L"- 1].mctx", L"\uFF11].mctx", L"\u00A01].mctx",
                                L"\u2003"
                                L"1",
                                L"%d].mctx", L".5].mctx"}) {
        EXPECT_EQ(choiceOfNumber(rest), none) << rest;
    }
    EXPECT_EQ(choiceOfNumber(L"\0001].mctx"s), none);
}

TEST(DefaultContext, BeginsWithExactlyItsPrefix) {
    for (const wchar_t* file :
         {L"[machine_position_1].mctx", L" [MACHINE_POSITION_1].mctx", L"MACHINE_POSITION_1",
          L"[MACHINE POSITION_1].mctx", L"[MACHINE_POSITION1].mctx", L"[MACHINE_POSITION", L"[",
          L"x[MACHINE_POSITION_1].mctx", L"\uFEFF[MACHINE_POSITION_1].mctx"}) {
        EXPECT_EQ(choiceOf({file}), none) << file;
    }
}

TEST(DefaultContext, IsNeverOneOfANegativePosition) {
    for (const wchar_t* rest : {L"-1].mctx", L"-5].mctx", L"-2147483648]", L"-99999999999999999]"})
        EXPECT_EQ(choiceOfNumber(rest), none) << rest;
    EXPECT_EQ(choiceOf({L"[MACHINE_POSITION_-3].mctx", L"[MACHINE_POSITION_0].mctx",
                        L"[MACHINE_POSITION_-4].mctx"}),
              (Choice{true, 1, 0}));
}

TEST(DefaultContext, HasAPositionNoGreaterThanAnInteger) {
    EXPECT_EQ(choiceOfNumber(L"2147483646]"), (Choice{true, 0, largest - 1}));
    EXPECT_EQ(choiceOfNumber(L"2147483647]"), (Choice{true, 0, largest}));
    EXPECT_EQ(choiceOfNumber(L"2147483648]"), (Choice{true, 0, largest}));
    EXPECT_EQ(choiceOfNumber(L"4294967297]"), (Choice{true, 0, largest}));
    EXPECT_EQ(choiceOfNumber(std::wstring(100000, L'9')), (Choice{true, 0, largest}));
    EXPECT_EQ(choiceOf({L"[MACHINE_POSITION_2147483648]", L"[MACHINE_POSITION_99999999999]"}),
              (Choice{true, 0, largest}));
}

TEST(DefaultContext, IsNotFoundByUnitsThatOnlyEndInADigit) {
    for (const std::uint32_t unit : {0x131u, 0xB1u, 0xFF31u, 0x8000FF31u, 0xFFFFFF31u}) {
        EXPECT_EQ(choiceOfNumber(std::wstring(1, static_cast<wchar_t>(unit))), none) << unit;
        EXPECT_EQ(choiceOfNumber(L"1" + std::wstring(1, static_cast<wchar_t>(unit))),
                  (Choice{true, 0, 1}))
            << unit;
    }
}
