#include <trvfiles/assembly/CComponentInfo.h>

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

using namespace std::string_literals;

static_assert(!std::is_polymorphic_v<CComponentInfo>);
static_assert(!std::is_default_constructible_v<CComponentInfo>);
static_assert(std::is_copy_constructible_v<CComponentInfo>);
static_assert(std::is_copy_assignable_v<CComponentInfo>);
static_assert(std::is_nothrow_move_constructible_v<CComponentInfo>);
static_assert(std::is_nothrow_move_assignable_v<CComponentInfo>);
static_assert(std::is_constructible_v<CComponentInfo, std::string, const double*, const double*,
                                      const double*, const double*>);

namespace {

const double one[3] = {1, 2, 3};
const double two[3] = {4, 5, 6};
const double three[3] = {7, 8, 9};
const double origin[3] = {10, 20, 30};

CComponentInfo sample(std::string fileName = "vise.stl") {
    return {std::move(fileName), one, two, three, origin};
}

using Numbers = std::array<double, 12>;

/// The translation and the three axes.
Numbers numbersOf(const CComponentInfo& info) {
    const double* fields[4] = {};
    info.getTranslation(fields[0]);
    info.getOrientation(fields[1], fields[2], fields[3]);
    Numbers numbers = {};
    for (std::size_t i = 0; i < numbers.size(); ++i)
        numbers[i] = fields[i / 3][i % 3];
    return numbers;
}

const Numbers sampleNumbers = {10, 20, 30, 1, 2, 3, 4, 5, 6, 7, 8, 9};
const std::string longName(300, 'n');

}  // namespace

TEST(ComponentInfo, IsMadeFromTheNameTheAxesAndLastTheTranslation) {
    const CComponentInfo info = sample();
    EXPECT_EQ(info.getFileName(), "vise.stl");
    EXPECT_EQ(numbersOf(info), sampleNumbers);
}

TEST(ComponentInfo, CopiesTheNumbersItIsGiven) {
    double axis[3] = {1, 2, 3};
    const CComponentInfo info("f", axis, axis, axis, axis);
    axis[0] = 99;
    EXPECT_EQ(numbersOf(info), (Numbers{1, 2, 3, 1, 2, 3, 1, 2, 3, 1, 2, 3}));
}

TEST(ComponentInfo, PointsAtItsOwnNumbers) {
    const CComponentInfo info = sample();
    const auto* begin = reinterpret_cast<const char*>(&info);
    const double* fields[4] = {};
    info.getTranslation(fields[0]);
    info.getOrientation(fields[1], fields[2], fields[3]);
    for (const double* field : fields) {
        const auto* position = reinterpret_cast<const char*>(field);
        EXPECT_GE(position, begin);
        EXPECT_LE(position + 3 * sizeof(double), begin + sizeof info);
    }
    const double* again = nullptr;
    info.getTranslation(again);
    EXPECT_EQ(again, fields[0]);
}

TEST(ComponentInfo, KeepsEveryByteOfItsName) {
    EXPECT_EQ(sample("").getFileName(), "");
    EXPECT_EQ(sample("a\0b"s).getFileName(), "a\0b"s);
    EXPECT_EQ(sample("../t\xC3\xA9 \\x\xFF").getFileName(), "../t\xC3\xA9 \\x\xFF");
}

TEST(ComponentInfo, TreatsNullPointersAsZeros) {
    const CComponentInfo info("f", nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(numbersOf(info), Numbers{});
    const CComponentInfo half("f", one, nullptr, three, nullptr);
    EXPECT_EQ(numbersOf(half), (Numbers{0, 0, 0, 1, 2, 3, 0, 0, 0, 7, 8, 9}));
}

TEST(ComponentInfo, IsCopiedWithNumbersOfItsOwn) {
    const CComponentInfo source = sample(longName);
    const CComponentInfo copy = source;
    EXPECT_EQ(copy.getFileName(), longName);
    EXPECT_EQ(numbersOf(copy), sampleNumbers);
    const double* own = nullptr;
    const double* others = nullptr;
    copy.getTranslation(own);
    source.getTranslation(others);
    EXPECT_NE(own, others);

    CComponentInfo assigned("other", origin, origin, origin, one);
    assigned = source;
    EXPECT_EQ(assigned.getFileName(), longName);
    EXPECT_EQ(numbersOf(assigned), sampleNumbers);
    EXPECT_EQ(source.getFileName(), longName);
}

TEST(ComponentInfo, MovesItsNameAndCopiesItsNumbers) {
    CComponentInfo source = sample(longName);
    CComponentInfo moved = std::move(source);
    EXPECT_EQ(moved.getFileName(), longName);
    EXPECT_EQ(numbersOf(moved), sampleNumbers);
    EXPECT_EQ(numbersOf(source), sampleNumbers);

    CComponentInfo assigned("other", origin, origin, origin, one);
    assigned = std::move(moved);
    EXPECT_EQ(assigned.getFileName(), longName);
    EXPECT_EQ(numbersOf(assigned), sampleNumbers);

    source = assigned;
    EXPECT_EQ(source.getFileName(), longName);
}

TEST(ComponentInfo, AcceptsAssignmentToItself) {
    CComponentInfo info = sample(longName);
    const CComponentInfo& same = info;
    info = same;
    EXPECT_EQ(info.getFileName(), longName);
    EXPECT_EQ(numbersOf(info), sampleNumbers);

    CComponentInfo& self = info;
    info = std::move(self);
    EXPECT_EQ(numbersOf(info), sampleNumbers);
    info = sample();
    EXPECT_EQ(info.getFileName(), "vise.stl");
}

TEST(ComponentInfo, LivesInVectorsThatGrow) {
    std::vector<CComponentInfo> list;
    for (int i = 0; i < 1000; ++i)
        list.push_back(sample(longName + std::to_string(i)));
    EXPECT_EQ(list.front().getFileName(), longName + "0");
    EXPECT_EQ(list.back().getFileName(), longName + "999");
    EXPECT_EQ(numbersOf(list[500]), sampleNumbers);
}

TEST(ComponentInfo, HasItsPlacementAsValues) {
    const double vec1[3] = {1, 2, 3};
    const double vec2[3] = {4, 5, 6};
    const double vec3[3] = {7, 8, 9};
    const double translation[3] = {10, 11, 12};
    const CComponentInfo info("f", vec1, vec2, vec3, translation);
    using Vector = std::array<double, 3>;
    EXPECT_EQ(info.getTranslation(), (Vector{10, 11, 12}));
    EXPECT_EQ(info.getOrientation(),
              (std::array<Vector, 3>{Vector{1, 2, 3}, Vector{4, 5, 6}, Vector{7, 8, 9}}));
}

TEST(ComponentInfo, HasItsFileAsWideText) {
    const CComponentInfo info("\xC3\xA4.stl", nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(info.getFileNameW(), L"\u00E4.stl");
}
