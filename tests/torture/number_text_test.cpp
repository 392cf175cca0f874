// Compares numbers in assembly files with Qt: their texts with QString::number(), and what is read
// from a text with QString::toDouble(). TRV_TORTURE_ROUNDS=400 compares 100 million patterns of
// bits, as many numbers that are written without an exponent, and 10 million halves.

#include <tests/common/torture_rounds.h>
#include <trvfiles/assembly/number_reading.h>
#include <trvfiles/assembly/number_writing.h>

#include <QString>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <random>
#include <string>
#include <string_view>

namespace trv {
namespace {

using Random = std::mt19937_64;

constexpr int patternsPerRound = 250'000;
constexpr int halvesPerRound = 25'000;
constexpr int textsPerRound = 50'000;

double fromBits(std::uint64_t bits) {
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

std::uint64_t bitsOf(double value) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

void expectReadLikeQt(const QString& text, const std::string& utf8) {
    bool isNumber = false;
    const double expected = text.toDouble(&isNumber);
    double value = 0;
    const bool isRead = readNumber(utf8, value);
    if (isRead != isNumber) {
        ADD_FAILURE() << '"' << utf8 << "\" is " << (isNumber ? "a" : "no") << " number for Qt";
    } else if (isNumber && bitsOf(value) != bitsOf(expected)) {
        ADD_FAILURE() << '"' << utf8 << "\" is " << expected << " for Qt";
    }
}

void expectTextOfQt(double value, std::string& text) {
    const QString expected = QString::number(value, 'g', 17);
    char characters[maxNumberLength];
    text.assign(characters, writeNumber(characters, value));
    if (expected != QLatin1String(text.data(), static_cast<int>(text.size()))) {
        ADD_FAILURE() << text << " is " << expected.toStdString() << " for Qt: bits "
                      << bitsOf(value);
    }
    expectReadLikeQt(expected, text);
}

// Calls `next` for each number, up to the first one that differs.
template <class Next>
void expectTextsOfQt(int perRound, Next next) {
    std::string text;
    const std::int64_t count = std::int64_t{perRound} * testing::tortureRounds();
    for (std::int64_t i = 0; i < count && !::testing::Test::HasFailure(); ++i)
        expectTextOfQt(next(), text);
    ::testing::Test::RecordProperty("numbers", std::to_string(count));
}

TEST(NumberText, IsThatOfQtForAnyBits) {
    Random random(20261122);
    expectTextsOfQt(patternsPerRound, [&random] { return fromBits(random()); });
}

// From 2^-15 to 2^55, which includes both bounds of the numbers that are written without Qt.
TEST(NumberText, IsThatOfQtWithoutAnExponent) {
    constexpr std::uint64_t bias = 1023;
    constexpr int mantissaBits = 52;
    Random random(4);
    expectTextsOfQt(patternsPerRound, [&random] {
        const std::uint64_t exponent = bias - 15 + random() % 70;
        const std::uint64_t rest = random() & ~(std::uint64_t{0x7FF} << mantissaBits);
        return fromBits(rest | exponent << mantissaBits);
    });
}

// n / 2^k has the digits of n * 5^k, of which the last is a 5 if n is odd. If there are 18, the
// number is halfway between two texts of 17 digits.
TEST(NumberText, RoundsHalvesLikeQt) {
    Random random(17);
    expectTextsOfQt(halvesPerRound, [&random] {
        constexpr std::uint64_t min = 100'000'000'000'000'000;
        constexpr std::uint64_t max = 999'999'999'999'999'999;
        constexpr std::uint64_t firstBeyondMantissa = std::uint64_t{1} << 53;
        const int k = 2 + static_cast<int>(random() % 24);
        std::uint64_t factor = 1;
        for (int i = 0; i < k; ++i)
            factor *= 5;
        const std::uint64_t first = (min + factor - 1) / factor | 1;
        const std::uint64_t end = std::min(max / factor + 1, firstBeyondMantissa);
        const std::uint64_t odd = first + 2 * (random() % ((end - first + 1) / 2));
        const std::uint64_t digits = odd * factor;
        EXPECT_TRUE(digits >= min && digits <= max && digits % 10 == 5) << odd << ' ' << k;
        const double magnitude = std::ldexp(static_cast<double>(odd), -k);
        return random() % 2 == 0 ? magnitude : -magnitude;
    });
}

std::string randomText(Random& random, std::string_view characters, std::size_t maxLength) {
    std::string text;
    for (std::size_t left = random() % (maxLength + 1); left > 0; --left)
        text += characters[random() % characters.size()];
    return text;
}

// What begins like a number, or is one only for other parsers.
std::string randomWords(Random& random) {
    static constexpr std::string_view words[] = {
        "inf", "infinity", "nan", "INF", "NaN", "(1)", "0x", "p3", "1",       "25",
        ".",   "e",        "-",   "+",   " ",   "\t",  ",",  "_",  "\xC3\xA9"};
    std::string text;
    for (std::size_t left = random() % 5; left > 0; --left)
        text += words[random() % std::size(words)];
    return text;
}

// Up to the length from which Qt reads every text, and beyond it.
TEST(NumberText, IsReadLikeQtWhateverItIs) {
    Random random(5);
    const std::int64_t count = std::int64_t{textsPerRound} * testing::tortureRounds();
    for (std::int64_t i = 0; i < count && !HasFailure(); ++i) {
        const std::string texts[] = {
            randomWords(random), randomText(random, "0123456789+-.eE xXpinfaINFA\t,", 8),
            randomText(random, "0123456789-.e", 10),
            randomText(random, "-", 1) + randomText(random, "0123456789", 20) + '.' +
                randomText(random, "0123456789", 20),
            randomText(random, "0123456789", 3) + '.' + randomText(random, "0123456789", 18) +
                (random() % 2 == 0 ? "e-" : "e") + std::to_string(random() % 400)};
        for (const std::string& text : texts)
            expectReadLikeQt(QString::fromStdString(text), text);
    }
    RecordProperty("textsOfEachKind", std::to_string(count));
}

}  // namespace
}  // namespace trv
