#include <trvfiles/environment/name_index.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <random>
#include <vector>

namespace trv {
namespace {

std::vector<std::uint32_t> placesOf(const name_index& index, std::uint32_t hash) {
    std::vector<std::uint32_t> places;
    index.first(hash, [&](std::uint32_t place) {
        places.push_back(place);
        return false;
    });
    return places;
}

void put(name_index& index, std::uint32_t place, std::uint32_t hash) {
    index.reserve(place);
    index.put(place, hash);
}

using Places = std::vector<std::uint32_t>;

TEST(NameIndex, FindsNothingIfNothingWasAdded) {
    const name_index index;
    EXPECT_EQ(index.first(7, [](std::uint32_t) { return true; }), name_index::none);
}

TEST(NameIndex, VisitsPlacesInAscendingOrderHoweverTheyCame) {
    name_index index;
    for (const std::uint32_t place : {5U, 1U, 9U, 3U, 7U})
        put(index, place, 42);
    EXPECT_EQ(placesOf(index, 42), (Places{1, 3, 5, 7, 9}));
}

TEST(NameIndex, VisitsOnlyPlacesOfTheHashAskedFor) {
    name_index index;
    put(index, 0, 8);
    put(index, 1, 16);  // shares a chain with 8 as long as there are eight of them
    put(index, 2, 8);
    EXPECT_EQ(placesOf(index, 8), (Places{0, 2}));
    EXPECT_EQ(placesOf(index, 16), (Places{1}));
    EXPECT_EQ(placesOf(index, 24), (Places{}));
}

TEST(NameIndex, StopsAtTheFirstMatch) {
    name_index index;
    for (std::uint32_t place = 0; place < 4; ++place)
        put(index, place, 1);
    EXPECT_EQ(index.first(1, [](std::uint32_t place) { return place >= 2; }), 2U);
}

TEST(NameIndex, TakesPlacesOutAtTheFrontInTheMiddleAndAtTheEnd) {
    name_index index;
    for (std::uint32_t place = 0; place < 6; ++place)
        put(index, place, 3);
    index.remove(0);
    index.remove(3);
    index.remove(5);
    EXPECT_EQ(placesOf(index, 3), (Places{1, 2, 4}));
    put(index, 5, 3);
    EXPECT_EQ(placesOf(index, 3), (Places{1, 2, 4, 5}));
    for (const std::uint32_t place : {1U, 2U, 4U, 5U})
        index.remove(place);
    EXPECT_EQ(placesOf(index, 3), (Places{}));
    put(index, 2, 3);
    EXPECT_EQ(placesOf(index, 3), (Places{2}));
}

TEST(NameIndex, IgnoresTheRemovalOfAPlaceThatIsNotInside) {
    name_index index;
    index.remove(0);
    put(index, 2, 3);
    index.remove(1);
    index.remove(1000);
    EXPECT_EQ(placesOf(index, 3), (Places{2}));
}

TEST(NameIndex, MovesAPlaceToAnotherHash) {
    name_index index;
    put(index, 0, 1);
    put(index, 1, 1);
    put(index, 0, 2);
    put(index, 1, 1);
    EXPECT_EQ(placesOf(index, 1), (Places{1}));
    EXPECT_EQ(placesOf(index, 2), (Places{0}));
}

TEST(NameIndex, KeepsEverythingWhileItGrows) {
    name_index index;
    for (std::uint32_t place = 0; place < 5000; ++place)
        put(index, place, place % 100);
    for (std::uint32_t hash = 0; hash < 100; ++hash) {
        Places expected;
        for (std::uint32_t place = hash; place < 5000; place += 100)
            expected.push_back(place);
        ASSERT_EQ(placesOf(index, hash), expected);
    }
}

// Few hashes, of which some share a bucket at every size of the index, against a map.
TEST(NameIndex, KeepsTheOrderThroughRandomChanges) {
    std::mt19937 random(20260101);
    name_index index;
    std::map<std::uint32_t, std::uint32_t> hashes;
    const auto expectEqual = [&](std::uint32_t hash) {
        Places expected;
        for (const auto& [place, itsHash] : hashes) {
            if (itsHash == hash) expected.push_back(place);
        }
        ASSERT_EQ(placesOf(index, hash), expected);
    };
    for (int change = 0; change < 20000; ++change) {
        const auto place = static_cast<std::uint32_t>(random() % 300);
        const auto hash = static_cast<std::uint32_t>(random() % 6) << 28;
        if (random() % 3 == 0) {
            index.remove(place);
            hashes.erase(place);
        } else {
            put(index, place, hash);
            hashes[place] = hash;
        }
        if (change % 50 != 0) continue;
        for (std::uint32_t every = 0; every < 6; ++every)
            expectEqual(every << 28);
    }
}

TEST(NameIndex, ComparesNoMoreNamesThanHaveTheHash) {
    name_index index;
    for (std::uint32_t place = 0; place < 32000; ++place)
        put(index, place, place << 17);
    int compared = 0;
    for (std::uint32_t place = 0; place < 32000; ++place) {
        index.first(place << 17, [&](std::uint32_t) {
            ++compared;
            return true;
        });
    }
    EXPECT_EQ(compared, 32000);
}

}  // namespace
}  // namespace trv
