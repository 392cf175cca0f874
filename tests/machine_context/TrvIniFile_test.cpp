#include <tests/common/channel_log.h>
#include <trvfiles/environment/message_store.h>
#include <trvfiles/machine_context/TrvIniFile.h>
#include <trvfiles/support/dynamic_storage.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

using trv::testing::ChannelLog;

namespace {

std::string textOf(const char* text) {
    return text == nullptr ? "<none>" : text;
}

std::int16_t index(int section) {
    return static_cast<std::int16_t>(section);
}

/// Sets the record flag for a test, and restores it at the end.
class RecordFlag {
public:
    explicit RecordFlag(bool record) : earlier_(trv::set_record_flag(record)) {}
    ~RecordFlag() { trv::set_record_flag(earlier_); }
    RecordFlag(const RecordFlag&) = delete;
    RecordFlag& operator=(const RecordFlag&) = delete;

    /// The current value of the flag.
    static bool current() {
        const bool flag = trv::set_record_flag(true);
        trv::set_record_flag(flag);
        return flag;
    }

private:
    bool earlier_;
};

}  // namespace

TEST(TrvIniFile, IsEmptyAtFirst) {
    const TrvIniFile file;
    EXPECT_EQ(file.getVersion(), 0);
    EXPECT_EQ(file.findSection("header"), -1);
    EXPECT_EQ(file.lineCount("header"), -1);
    EXPECT_EQ(file.getLine(0, 0), nullptr);
    EXPECT_EQ(file.getValue("header", "version"), nullptr);
    EXPECT_EQ(file.getHeaderValue("version"), nullptr);
}

TEST(TrvIniFile, KeepsItsVersion) {
    TrvIniFile file;
    for (const int version : {2, -1, 0, std::numeric_limits<int>::max()}) {
        file.setVersion(version);
        EXPECT_EQ(file.getVersion(), version);
    }
    file.setVersion(7);
    file.addSection("s");
    file.close();
    EXPECT_EQ(file.getVersion(), 7);
}

TEST(TrvIniFile, AddsASectionEachTimeAndFindsTheFirst) {
    TrvIniFile file;
    EXPECT_EQ(file.addSection("s"), 0);
    EXPECT_EQ(file.addSection("t"), 1);
    EXPECT_EQ(file.addSection("s"), 2);
    EXPECT_EQ(file.findSection("s"), 0);
    EXPECT_EQ(file.findSection("t"), 1);
    EXPECT_EQ(file.findSection("S"), -1);
    EXPECT_EQ(file.findSection("s "), -1);
    EXPECT_EQ(file.findSection(""), -1);
    EXPECT_EQ(file.addSection(""), 3);
    EXPECT_EQ(file.findSection(""), 3);
}

TEST(TrvIniFile, AcceptsSectionNamesOf99CharactersAndNoLongerOnes) {
    TrvIniFile file;
    const std::string longest(99, 'n');
    EXPECT_EQ(file.addSection((longest + "n").c_str()), -1);
    EXPECT_EQ(file.addSection(longest.c_str()), 0);
    EXPECT_EQ(file.findSection(longest.c_str()), 0);
    EXPECT_EQ(file.addSection(std::string(5000, 'n').c_str()), -1);
    EXPECT_EQ(file.findSection((longest + "n").c_str()), -1);
}

TEST(TrvIniFile, TreatsNullNamesAsMissing) {
    TrvIniFile file;
    EXPECT_EQ(file.addSection(nullptr), -1);
    ASSERT_EQ(file.addSection("s"), 0);
    EXPECT_EQ(file.findSection(nullptr), -1);
    EXPECT_EQ(file.lineCount(nullptr), -1);
    EXPECT_EQ(file.getValue(nullptr, "k"), nullptr);
    EXPECT_EQ(textOf(file.getValue("s", nullptr)), "<none>");
    EXPECT_EQ(file.setValue(0, nullptr, "v"), 0);
    EXPECT_EQ(textOf(file.getLine(0, 0)), "=v");
    EXPECT_EQ(textOf(file.getValue("s", "")), "v");
    EXPECT_EQ(file.setValue(0, nullptr, nullptr), 0);
    EXPECT_EQ(textOf(file.getLine(0, 0)), "=");
}

TEST(TrvIniFile, Holds32767SectionsAndNoMore) {
    TrvIniFile file;
    for (int section = 0; section < 32767; ++section)
        ASSERT_EQ(file.addSection(std::to_string(section).c_str()), section);
    EXPECT_EQ(file.addSection("more"), -1);
    EXPECT_EQ(file.findSection("more"), -1);
    EXPECT_EQ(file.findSection("32766"), 32766);
    EXPECT_EQ(file.setValue(32766, "k", "v"), 0);
    EXPECT_EQ(textOf(file.getValue("32766", "k")), "v");
    EXPECT_EQ(file.setHeaderValue("k", "v"), -1);
}

TEST(TrvIniFile, SetsAKeyWithoutBlanksAroundTheEqualsSign) {
    TrvIniFile file;
    ASSERT_EQ(file.addSection("s"), 0);
    EXPECT_EQ(file.setValue(0, "key", "a value"), 0);
    EXPECT_EQ(textOf(file.getLine(0, 0)), "key=a value");
    EXPECT_EQ(textOf(file.getValue("s", "key")), "a value");
    EXPECT_EQ(file.setValue(0, "key", "other"), 0);
    EXPECT_EQ(textOf(file.getLine(0, 0)), "key=other");
    EXPECT_EQ(file.lineCount("s"), 1);
    EXPECT_EQ(file.setValue(0, "key2", nullptr), 0);
    EXPECT_EQ(textOf(file.getLine(0, 1)), "key2=");
    EXPECT_EQ(textOf(file.getValue("s", "key2")), "");
    EXPECT_EQ(file.lineCount("s"), 2);
}

TEST(TrvIniFile, UsesTheTextBeforeTheFirstEqualsSignAsTheKey) {
    TrvIniFile file;
    ASSERT_EQ(file.addSection("s"), 0);
    EXPECT_EQ(file.setValue(0, " \tkey \t", "1"), 0);
    EXPECT_EQ(textOf(file.getLine(0, 0)), "key \t=1");
    EXPECT_EQ(file.setValue(0, "key", "2"), 0);
    EXPECT_EQ(file.lineCount("s"), 1);
    EXPECT_EQ(file.setValue(0, "a=b", "c"), 0);
    EXPECT_EQ(textOf(file.getValue("s", "a")), "b=c");
    EXPECT_EQ(file.setValue(0, "a", "d"), 0);
    EXPECT_EQ(file.lineCount("s"), 2);
}

TEST(TrvIniFile, ChangesNothingInAValue) {
    TrvIniFile file;
    ASSERT_EQ(file.addSection("s"), 0);
    EXPECT_EQ(file.setValue(0, "k", "a\r\n[t]\nj=1 "), 0);
    EXPECT_EQ(textOf(file.getLine(0, 0)), "k=a\r\n[t]\nj=1 ");
    EXPECT_EQ(file.lineCount("s"), 1);
    EXPECT_EQ(file.findSection("t"), -1);
}

TEST(TrvIniFile, SetsByExactNamesAndGetsWithoutRegardToCase) {
    TrvIniFile file;
    ASSERT_EQ(file.addSection("s"), 0);
    EXPECT_EQ(file.setValue(0, "key", "old"), 0);
    EXPECT_EQ(file.setValue(0, "Key", "new"), 0);
    EXPECT_EQ(file.lineCount("s"), 2);
    EXPECT_EQ(textOf(file.getValue("s", "Key")), "old");
    EXPECT_EQ(textOf(file.getValue("s", "KEY")), "old");
    EXPECT_EQ(textOf(file.getValue("S", "key")), "<none>");
    EXPECT_EQ(textOf(file.getValue("s", "ke")), "<none>");
    EXPECT_EQ(textOf(file.getValue("s", "keys")), "<none>");
}

TEST(TrvIniFile, ShowsAReplacedValueAfterAPlus) {
    TrvIniFile file;
    ASSERT_EQ(file.addSection("s"), 0);
    EXPECT_EQ(file.setValue(0, "k", "1"), 0);
    EXPECT_EQ(file.setValue(0, "k", "+;2"), 0);
    EXPECT_EQ(textOf(file.getValue("s", "k")), "1;2");
}

TEST(TrvIniFile, PrintsANumberWithSixDecimalsInAtMost19Characters) {
    const struct {
        float value;
        const char* text;
    } numbers[] = {{0.0F, "0.000000"},
                   {-0.0F, "-0.000000"},
                   {0.1F, "0.100000"},
                   {1234.5678F, "1234.567749"},
                   {-2.5F, "-2.500000"},
                   {1e-7F, "0.000000"},
                   {123456789.0F, "123456792.000000"},
                   {999999995904.0F, "999999995904.000000"},
                   {9999999827968.0F, "9999999827968.00000"},
                   {1e20F, "1000000020040877342"},
                   {-1e20F, "-100000002004087734"},
                   {std::numeric_limits<float>::max(), "3402823466385288598"},
                   {std::numeric_limits<float>::infinity(), "inf"},
                   {-std::numeric_limits<float>::infinity(), "-inf"},
                   {std::numeric_limits<float>::quiet_NaN(), "nan"},
                   {-std::numeric_limits<float>::quiet_NaN(), "nan"}};
    TrvIniFile file;
    ASSERT_EQ(file.addSection("s"), 0);
    for (const auto& number : numbers) {
        EXPECT_EQ(file.setFloatValue(0, "k", number.value), 0);
        EXPECT_EQ(textOf(file.getValue("s", "k")), number.text);
    }
    EXPECT_EQ(file.setFloatValue(1, "k", 1.0F), -1);
}

TEST(TrvIniFile, AddsTheHeaderSectionWithItsFirstValue) {
    TrvIniFile file;
    EXPECT_EQ(file.setHeaderValue("version", "2"), 0);
    EXPECT_EQ(file.findSection("header"), 0);
    EXPECT_EQ(file.setHeaderValue("name", "n"), 0);
    EXPECT_EQ(file.findSection("header"), 0);
    EXPECT_EQ(file.lineCount("header"), 2);
    EXPECT_EQ(textOf(file.getHeaderValue("version")), "2");
    EXPECT_EQ(textOf(file.getHeaderValue("NAME")), "n");
    EXPECT_EQ(textOf(file.getHeaderValue("comment")), "<none>");
    EXPECT_EQ(file.getVersion(), 0);

    TrvIniFile late;
    EXPECT_EQ(late.addSection("s"), 0);
    EXPECT_EQ(late.setHeaderValue("name", "n"), 0);
    EXPECT_EQ(late.findSection("header"), 1);
}

TEST(TrvIniFile, RefusesIndexesThatNameNoSection) {
    const ChannelLog log;
    TrvIniFile file;
    EXPECT_EQ(file.setValue(0, "k", "v"), -1);
    ASSERT_EQ(file.addSection("s"), 0);
    for (const int section : {1, -1, 32767, -32768})
        EXPECT_EQ(file.setValue(index(section), "k", "v"), -1) << section;
    EXPECT_EQ(file.lineCount("s"), 0);
    EXPECT_TRUE(log.fatals().empty());
}

TEST(TrvIniFile, GivesLinesByTheirPlaces) {
    TrvIniFile file;
    ASSERT_EQ(file.addSection("s"), 0);
    EXPECT_EQ(file.lineCount("s"), 0);
    EXPECT_EQ(file.setValue(0, "a", "1"), 0);
    EXPECT_EQ(file.setValue(0, "b", "2"), 0);
    EXPECT_EQ(textOf(file.getLine(0, 0)), "a=1");
    EXPECT_EQ(textOf(file.getLine(0, 1)), "b=2");
    for (const int line : {2, -1, 65536, 32767, std::numeric_limits<int>::min()})
        EXPECT_EQ(file.getLine(0, line), nullptr) << line;
    for (const int section : {1, -1, 32767, -32768})
        EXPECT_EQ(file.getLine(index(section), 0), nullptr) << section;
}

TEST(TrvIniFile, IsEmptyAgainOnceClosed) {
    char before[64];
    trv::storage_report(before, sizeof before);
    TrvIniFile file;
    ASSERT_EQ(file.addSection("s"), 0);
    EXPECT_EQ(file.setValue(0, "k", "v"), 0);
    file.close();
    char after[64];
    trv::storage_report(after, sizeof after);
    EXPECT_STREQ(before, after);
    EXPECT_EQ(file.findSection("s"), -1);
    EXPECT_EQ(file.lineCount("s"), -1);
    EXPECT_EQ(file.getValue("s", "k"), nullptr);
    file.close();
    EXPECT_EQ(file.addSection("t"), 0);
}

TEST(TrvIniFile, FreesItsContentInTheDestructor) {
    char before[64];
    trv::storage_report(before, sizeof before);
    {
        TrvIniFile file;
        EXPECT_EQ(file.setHeaderValue("k", "v"), 0);
    }
    char after[64];
    trv::storage_report(after, sizeof after);
    EXPECT_STREQ(before, after);
}

TEST(TrvIniFile, RestoresTheRecordFlag) {
    const ChannelLog log;
    TrvIniFile file;
    ASSERT_EQ(file.addSection("s"), 0);
    for (const bool flag : {true, false}) {
        const RecordFlag set(flag);
        EXPECT_EQ(file.setValue(0, "k", "v"), 0);
        EXPECT_EQ(RecordFlag::current(), flag);
        EXPECT_EQ(file.setFloatValue(0, "k", 1.0F), 0);
        EXPECT_EQ(RecordFlag::current(), flag);
        EXPECT_EQ(file.setHeaderValue("k", "v"), 0);
        EXPECT_EQ(RecordFlag::current(), flag);
        EXPECT_EQ(file.setValue(5, "k", "v"), -1);
        EXPECT_EQ(RecordFlag::current(), flag);
        trv::set_storage_maximum(0);
        EXPECT_EQ(file.setValue(0, "big", std::string(5000, 'x').c_str()), -1);
        trv::set_storage_maximum(4294967295U);
        EXPECT_EQ(RecordFlag::current(), flag);
    }
}

TEST(TrvIniFile, IsUnchangedWhenStorageRunsOut) {
    const ChannelLog log;
    TrvIniFile file;
    ASSERT_EQ(file.addSection("s"), 0);
    ASSERT_EQ(file.setValue(0, "k", "v"), 0);
    trv::set_storage_maximum(0);
    const std::string big(5000, 'x');
    EXPECT_EQ(file.setValue(0, "k", big.c_str()), -1);
    EXPECT_EQ(file.setValue(0, "j", big.c_str()), -1);
    int sections = 1;
    while (sections < 1000 && file.addSection("t") == sections)
        ++sections;
    trv::set_storage_maximum(4294967295U);
    EXPECT_LT(sections, 1000);
    EXPECT_EQ(file.lineCount("s"), 1);
    EXPECT_EQ(textOf(file.getValue("s", "k")), "v");
    EXPECT_EQ(file.addSection("u"), sections);
    EXPECT_TRUE(log.fatals().empty());
}
