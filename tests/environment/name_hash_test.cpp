#include <trvfiles/environment/name_hash.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <random>
#include <set>
#include <stdexcept>
#include <string>

namespace trv {
namespace {

// How many different hashes 32,768 names have. With 32 bits, two names of one such set share a hash
// with a probability of about 1 in 8.
template <class NameOf>
std::size_t differentHashes(std::uint32_t (*hash)(std::string_view), NameOf nameOf) {
    std::set<std::uint32_t> hashes;
    for (int number = 0; number < 32768; ++number)
        hashes.insert(hash(nameOf(number)));
    return hashes.size();
}

constexpr std::size_t lowerBound = 32768 - 5;

bool bit(int number, int place) {
    return (number >> place) % 2 != 0;
}

TEST(NameHash, IsThatOfTheSameNameOnly) {
    EXPECT_EQ(hash_name("path"), hash_name(std::string("path")));
    std::set<std::uint32_t> hashes;
    for (std::size_t length = 0; length < 100; ++length) {
        std::string name(length, 'a');
        hashes.insert(hash_name(name));
        for (char& c : name) {
            c = 'b';
            hashes.insert(hash_name(name));
            c = 'a';
        }
    }
    EXPECT_EQ(hashes.size(), 100U + 99 * 100 / 2);
}

// The last characters of two names may compensate for the difference of their lengths.
TEST(NameHash, DistinguishesNamesOfDifferentLengths) {
    std::set<std::uint32_t> hashes;
    std::size_t names = 0;
    for (std::size_t length = 1; length < 40; ++length) {
        for (std::size_t place = 0; place < length; ++place) {
            std::string name(length, '\0');
            for (int code = 1; code < 64; ++code, ++names) {
                name[place] = static_cast<char>(code);
                hashes.insert(hash_name(name));
            }
        }
    }
    EXPECT_GT(hashes.size() + 8, names);
}

TEST(NameHash, DistinguishesZeroBytesByTheirNumber) {
    std::set<std::uint32_t> hashes;
    for (std::size_t length = 0; length < 1000; ++length)
        hashes.insert(hash_name(std::string(length, '\0')));
    EXPECT_EQ(hashes.size(), 1000U);
}

TEST(NameHash, DistinguishesCaseUnlessItIsIgnored) {
    EXPECT_NE(hash_name("path"), hash_name("PATH"));
    for (std::size_t length = 1; length < 50; ++length) {
        const std::string lower(length, 'z');
        const std::string upper(length, 'Z');
        EXPECT_NE(hash_name(lower), hash_name(upper));
        EXPECT_EQ(hash_name_ignoring_case(lower), hash_name_ignoring_case(upper));
    }
}

TEST(NameHash, IgnoresTheCaseOfAsciiLettersAlone) {
    for (int code = 0; code < 256; ++code) {
        const std::string name(9, static_cast<char>(code));
        const std::string other(9, static_cast<char>(code ^ 0x20));
        const bool isLetter = (code >= 'a' && code <= 'z') || (code >= 'A' && code <= 'Z');
        EXPECT_EQ(hash_name_ignoring_case(name) == hash_name_ignoring_case(other), isLetter)
            << code;
    }
    EXPECT_EQ(hash_name_ignoring_case("Path_1\xE4@`[{"), hash_name_ignoring_case("pATH_1\xE4@`[{"));
}

TEST(NameHash, SpreadsNamesThatDifferInCharactersThatAreNoLetters) {
    const auto nameOf = [](int number) {
        std::string name(15, '@');
        for (int place = 0; place < 15; ++place)
            if (bit(number, place)) name[static_cast<std::size_t>(place)] = '`';
        return name;
    };
    EXPECT_GT(differentHashes(hash_name, nameOf), lowerBound);
    EXPECT_GT(differentHashes(hash_name_ignoring_case, nameOf), lowerBound);
}

// A hash that multiplies each block of eight characters by an odd factor and shifts by 32 gives all
// of these the same value, whatever value it starts with.
TEST(NameHash, SpreadsNamesThatDifferInTheHighestBitsOfTwoBlocks) {
    const auto nameOf = [](int number) {
        std::string name;
        for (int pair = 0; pair < 15; ++pair) {
            std::string blocks(16, 'a');
            if (bit(number, pair)) blocks[7] = blocks[11] = blocks[15] = '\xE1';
            name += blocks;
        }
        return name;
    };
    EXPECT_GT(differentHashes(hash_name, nameOf), lowerBound);
    EXPECT_GT(differentHashes(hash_name_ignoring_case, nameOf), lowerBound);
}

// Each bit of the two halves of a block, of a block in the middle and of the last one.
TEST(NameHash, SpreadsNamesThatDifferInOneOrTwoBits) {
    for (const std::size_t length : {3U, 8U, 16U, 40U}) {
        std::set<std::uint32_t> hashes;
        std::string name(length, '0');
        const auto flip = [&](std::size_t place) {
            name[place / 8] = static_cast<char>(name[place / 8] ^ 1 << place % 8);
        };
        std::size_t names = 0;
        for (std::size_t one = 0; one < 8 * length; ++one) {
            flip(one);
            hashes.insert(hash_name(name));
            for (std::size_t other = 0; other < one; ++other, ++names) {
                flip(other);
                hashes.insert(hash_name(name));
                flip(other);
            }
            flip(one);
        }
        EXPECT_GT(hashes.size() + 8, names + 8 * length) << length;
    }
}

TEST(NameHash, SpreadsItsLowestBitsWhichChooseTheBucket) {
    std::set<std::uint32_t> buckets;
    for (int number = 0; number < 32768; ++number)
        buckets.insert(hash_name("SETTING_" + std::to_string(number)) % 32768);
    // A random choice hits 63 % of them.
    EXPECT_GT(buckets.size(), 20000U);
    EXPECT_LT(buckets.size(), 21500U);
}

TEST(NameHash, OfPlacesDiffersFromPlaceToPlace) {
    std::set<std::uint32_t> hashes;
    for (std::uint32_t place = 0; place < 32768; ++place)
        hashes.insert(hash_place(place));
    EXPECT_GT(hashes.size(), lowerBound);
}

TEST(HashKey, TakesAllItsBitsFromTheSource) {
    std::uint32_t calls = 0;
    const hash_key key = make_hash_key([&] { return 0x10000000 + 2 * calls++; });
    const std::set<std::uint64_t> words = {key.start, key.block, key.end};
    EXPECT_EQ(calls, 6U);
    EXPECT_EQ(words.size(), 3U);
    for (const std::uint64_t word : words) {
        EXPECT_EQ(word >> 60, 1U);
        EXPECT_EQ(word >> 28 & 15, 1U);
    }
}

TEST(HashKey, IsMadeWithoutASourceToo) {
    const auto failing = []() -> std::uint32_t { throw std::runtime_error("no source"); };
    const hash_key key = make_hash_key(failing);
    const hash_key another = make_hash_key(failing);
    EXPECT_NE(key.start, another.start);
    EXPECT_NE(key.block, another.block);
    EXPECT_NE(key.end, another.end);
    EXPECT_EQ((std::set<std::uint64_t>{key.start, key.block, key.end}.size()), 3U);
}

}  // namespace
}  // namespace trv
