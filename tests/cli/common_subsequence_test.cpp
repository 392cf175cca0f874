#include <cli/common_subsequence.h>
#include <tests/common/growth.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

namespace trv::testing {
namespace {

using Keys = std::vector<std::uint64_t>;

Keys keys(const std::string& letters) {
    return Keys(letters.begin(), letters.end());
}

// "0-1 2-2"
std::string text(const std::vector<cli::IndexPair>& pairs) {
    std::string text;
    for (const cli::IndexPair& pair : pairs) {
        if (!text.empty()) text += ' ';
        text += std::to_string(pair.first) + '-' + std::to_string(pair.second);
    }
    return text;
}

std::string common(const std::string& first, const std::string& second) {
    return text(cli::commonSubsequence(keys(first), keys(second)));
}

TEST(CommonSubsequence, OfEqualListsIsTheList) {
    EXPECT_EQ(common("", ""), "");
    EXPECT_EQ(common("aba", "aba"), "0-0 1-1 2-2");
}

TEST(CommonSubsequence, OfListsWithoutACommonElementIsEmpty) {
    EXPECT_EQ(common("ab", "cd"), "");
    EXPECT_EQ(common("ab", ""), "");
    EXPECT_EQ(common("", "ab"), "");
}

TEST(CommonSubsequence, LeavesOutWhatIsOnOneSide) {
    EXPECT_EQ(common("abc", "xabc"), "0-1 1-2 2-3");
    EXPECT_EQ(common("xabc", "abc"), "1-0 2-1 3-2");
    EXPECT_EQ(common("abc", "abxc"), "0-0 1-1 2-3");
    EXPECT_EQ(common("abxcy", "zabc"), "0-1 1-2 3-3");
}

TEST(CommonSubsequence, IsALongestOne) {
    EXPECT_EQ(common("abcd", "dabc"), "0-1 1-2 2-3");
    EXPECT_EQ(common("xabcdy", "ydcabx"), "1-3 2-4");
    // s is twice in the first list; only the second one is in order.
    EXPECT_EQ(common("sasbsx", "asbsy"), "1-0 2-1 3-2 4-3");
}

// The length by the classic table of all pairs of prefixes.
std::size_t longest(const Keys& first, const Keys& second) {
    std::vector<std::size_t> row(second.size() + 1);
    for (const std::uint64_t one : first) {
        std::size_t diagonal = 0;
        for (std::size_t j = 0; j < second.size(); ++j) {
            const std::size_t above = row[j + 1];
            row[j + 1] = one == second[j] ? diagonal + 1 : std::max(above, row[j]);
            diagonal = above;
        }
    }
    return row.back();
}

Keys randomKeys(std::mt19937& random, std::size_t length, std::uint64_t range) {
    Keys made(length);
    for (std::uint64_t& key : made)
        key = random() % range;
    return made;
}

void expectSubsequence(const Keys& first, const Keys& second,
                       const std::vector<cli::IndexPair>& pairs) {
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        ASSERT_LT(pairs[i].first, first.size());
        ASSERT_LT(pairs[i].second, second.size());
        ASSERT_EQ(first[pairs[i].first], second[pairs[i].second]);
        if (i == 0) continue;
        ASSERT_LT(pairs[i - 1].first, pairs[i].first);
        ASSERT_LT(pairs[i - 1].second, pairs[i].second);
    }
}

// Lists of at most 8 elements have no key more than 8 times.
TEST(CommonSubsequence, HasMaxLengthForAnyShortLists) {
    std::mt19937 random(1);
    for (int i = 0; i < 5000; ++i) {
        const Keys first = randomKeys(random, random() % 20, 1 + random() % 6);
        const Keys second = randomKeys(random, random() % 9, 1 + random() % 6);
        const std::vector<cli::IndexPair> pairs = cli::commonSubsequence(first, second);
        expectSubsequence(first, second, pairs);
        ASSERT_EQ(pairs.size(), longest(first, second));
    }
}

TEST(CommonSubsequence, IsAlmostLongestForFrequentKeys) {
    std::mt19937 random(1);
    for (int i = 0; i < 20; ++i) {
        const Keys first = randomKeys(random, 1000, 3);
        Keys second = first;
        for (int removed = 0; removed < 5; ++removed)
            second.erase(second.begin() + static_cast<std::ptrdiff_t>(random() % second.size()));
        second.front() = 7;
        second.back() = 7;
        const std::vector<cli::IndexPair> pairs = cli::commonSubsequence(first, second);
        expectSubsequence(first, second, pairs);
        ASSERT_GE(pairs.size(), 950U);
    }
}

// Without a limit to the candidates, time and memory would grow by a factor of 100.
TEST(CommonSubsequence, TakesTimeAlmostProportionalToTheLists) {
    std::mt19937 random(1);
    for (const std::uint64_t range : {1U, 2U, 1000000000U}) {
        const double ratio = growth(2000, 20000, [&](int length) {
            const auto size = static_cast<std::size_t>(length);
            Keys first = randomKeys(random, size, range);
            Keys second = randomKeys(random, size, range);
            first.front() = first.back() = 8000000000;
            second.front() = second.back() = 9000000000;
            return processorTime([&] { cli::commonSubsequence(first, second); });
        });
        EXPECT_LT(ratio, 40);
    }
}

TEST(EqualElements, PairsEqualKeysByTheirOrder) {
    EXPECT_EQ(text(cli::equalElements(keys("bacaa"), keys("aaxb"))), "1-0 3-1 0-3");
    EXPECT_EQ(text(cli::equalElements(keys(""), keys("a"))), "");
    EXPECT_EQ(text(cli::equalElements(keys("a"), keys("b"))), "");
}

}  // namespace
}  // namespace trv::testing
