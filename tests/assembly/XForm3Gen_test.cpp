#include <trvfiles/assembly/XForm3Gen.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <limits>
#include <type_traits>
#include <utility>

using Placement = Math::XForm3Gen<double>;

static_assert(sizeof(Placement) == 16 * sizeof(double));
static_assert(std::is_standard_layout_v<Placement>);
static_assert(std::is_trivially_copyable_v<Placement>);
static_assert(std::is_same_v<decltype(std::declval<Placement&>()(0, 0)), double&>);
static_assert(std::is_same_v<decltype(std::declval<const Placement&>().data()), const double*>);

namespace {

using Entries = std::array<double, 16>;

Placement placement(const Entries& entries) {
    Placement result;
    std::copy(entries.begin(), entries.end(), result.data());
    return result;
}

Entries entriesOf(const Placement& placement) {
    Entries entries = {};
    std::copy_n(placement.data(), entries.size(), entries.begin());
    return entries;
}

const Entries identity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

}  // namespace

TEST(XForm3Gen, IsTheIdentityByDefault) {
    EXPECT_EQ(entriesOf(Placement()), identity);
    const Math::XForm3Gen<float> single;
    EXPECT_EQ(single(3, 3), 1.0F);
    EXPECT_EQ(single(3, 2), 0.0F);
}

TEST(XForm3Gen, StoresItsEntriesRowByRow) {
    Placement changed;
    changed(0, 3) = 7;
    changed(3, 0) = 8;
    changed(2, 1) = 9;
    EXPECT_EQ(entriesOf(changed), (Entries{1, 0, 0, 7, 0, 1, 0, 0, 0, 9, 1, 0, 8, 0, 0, 1}));

    changed.data()[6] = 5;
    const Placement& constant = changed;
    EXPECT_EQ(constant(1, 2), 5);
    EXPECT_EQ(constant.data(), &constant(0, 0));
}

TEST(XForm3Gen, MultipliesAsPlainMatrices) {
    const Placement local = placement({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16});
    const Placement parent = placement({2, 0, 1, 0, 0, 3, 0, 1, 1, 0, 4, 0, 0, 1, 0, 5});
    EXPECT_EQ(entriesOf(local * parent),
              (Entries{5, 10, 13, 22, 17, 26, 33, 46, 29, 42, 53, 70, 41, 58, 73, 94}));
    EXPECT_EQ(entriesOf(local * Placement()), entriesOf(local));
    EXPECT_EQ(entriesOf(Placement() * local), entriesOf(local));
}

TEST(XForm3Gen, AppliesTheLocalPlacementFirst) {
    const Placement moved = placement({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, 0, 0, 1});
    const Placement turned = placement({0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
    EXPECT_EQ(entriesOf(moved * turned),
              (Entries{0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 0, 1, 0, 1}));
    EXPECT_EQ(entriesOf(turned * moved),
              (Entries{0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 1, 0, 0, 1}));
}

TEST(XForm3Gen, CountsTheFourthColumns) {
    const Placement local = placement({1, 0, 0, 2, 0, 1, 0, 3, 0, 0, 1, 4, 0, 0, 0, 5});
    const Placement parent = placement({1, 0, 0, 6, 0, 1, 0, 0, 0, 0, 1, 0, 10, 20, 30, 1});
    EXPECT_EQ(entriesOf(local * parent),
              (Entries{21, 40, 60, 8, 30, 61, 90, 3, 40, 80, 121, 4, 50, 100, 150, 5}));
}

TEST(XForm3Gen, AddsUpFromTheFirstProductToTheLast) {
    // Only in this order of additions the 1 is lost before the two large numbers cancel.
    Placement local;
    const double row[4] = {1e16, 1, -1e16, 0};
    std::copy(std::begin(row), std::end(row), local.data());
    const Placement ones = placement({1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1});
    EXPECT_EQ((local * ones)(0, 0), 0);

    const double late[4] = {1e16, -1e16, 1, 1};
    std::copy(std::begin(late), std::end(late), local.data());
    EXPECT_EQ((local * ones)(0, 3), 2);
}

TEST(XForm3Gen, CanBeMultipliedIntoItself) {
    Placement turned = placement({0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 1, 2, 3, 1});
    turned = turned * turned;
    EXPECT_EQ(entriesOf(turned), (Entries{-1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1, 0, -1, 3, 6, 1}));
}

TEST(XForm3Gen, KeepsANanInItsElements) {
    Placement local;
    local(3, 0) = std::numeric_limits<double>::quiet_NaN();
    const Placement product = local * Placement();
    EXPECT_NE(product(3, 0), product(3, 0));
    EXPECT_EQ(product(0, 0), 1);
    EXPECT_EQ(product(2, 3), 0);
}
