#include <tests/common/child_process.h>
#include <tests/common/host_locale.h>
#include <trvfiles/support/platform.h>
#include <trvfiles/text/text_conversion.h>

#include <QCoreApplication>
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <limits>
#include <string>

using namespace std::string_literals;
using trv::fromNarrow;
using trv::fromWide;
using trv::isOpenable;
using trv::narrowFromUtf8;
using trv::nativePath;
using trv::pathFromNarrow;
using trv::pathFromSystem;
using trv::pathFromWide;
using trv::runtimePath;
using trv::systemPath;
using trv::toNarrow;
using trv::toWide;
using trv::widePath;

namespace {

bool onWindows() {
    return trv::platform::backslash_separates();
}

QString wide(const std::wstring& text) {
    return QString::fromStdWString(text);
}

}  // namespace

TEST(TextConversion, TreatsANullPointerAsAnEmptyText) {
    EXPECT_TRUE(fromNarrow(nullptr).isEmpty());
    EXPECT_TRUE(fromNarrow("").isEmpty());
    EXPECT_TRUE(fromNarrow(""s).isEmpty());
    EXPECT_TRUE(fromWide(L"").isEmpty());
    EXPECT_EQ(toNarrow(QString()), "");
    EXPECT_EQ(toWide(QString()), L"");
}

TEST(TextConversion, EndsNarrowTextAtItsFirstZero) {
    EXPECT_EQ(fromNarrow("ab\0cd"s), wide(L"ab"));
    EXPECT_TRUE(fromNarrow("\0cd"s).isEmpty());
    EXPECT_EQ(toNarrow(wide(L"ab\0cd"s)), "ab");
    EXPECT_EQ(toNarrow(wide(L"\0cd"s)), "");
}

TEST(TextConversion, ConvertsUtf8ToNarrowText) {
    EXPECT_EQ(narrowFromUtf8(""), "");
    EXPECT_EQ(narrowFromUtf8("a\\b/c"), "a\\b/c");
    EXPECT_EQ(narrowFromUtf8("\xC3\xA4\xE4\xB8\xAD\xF0\x9F\x94\xA7"),
              "\xC3\xA4\xE4\xB8\xAD\xF0\x9F\x94\xA7");
    EXPECT_EQ(narrowFromUtf8("\xEF\xBB\xBFm"), "\xEF\xBB\xBFm");
}

TEST(TextConversion, KeepsTheZerosOfWideText) {
    EXPECT_EQ(fromWide(L"ab\0cd"s).size(), 5);
    EXPECT_EQ(toWide(fromWide(L"ab\0cd"s)), L"ab\0cd"s);
    EXPECT_EQ(toWide(fromWide(L"\0"s)), L"\0"s);
}

TEST(TextConversion, KeepsCharactersOfEveryKindInWideText) {
    const std::wstring text = L"a\u00E4\u4E2D\uFFFD\U0001F527\U0010FFFD\x1\x7F";
    EXPECT_EQ(toWide(fromWide(text)), text);
    EXPECT_EQ(fromWide(L"\U0001F527").size(), 2);
}

TEST(TextConversion, AcceptsUnitsThatAreNotCharacters) {
    for (const wchar_t unit : {L'\xD800', L'\xDFFF', L'\xFFFF', std::numeric_limits<wchar_t>::max(),
                               std::numeric_limits<wchar_t>::min()}) {
        const std::wstring text = L"a" + std::wstring(2, unit) + L"b";
        EXPECT_EQ(toWide(fromWide(text)).front(), L'a');
        EXPECT_EQ(toWide(fromWide(text)).back(), L'b');
        EXPECT_EQ(toNarrow(fromWide(text)).front(), 'a');
    }
}

TEST(TextConversion, TreatsNarrowTextAsUtf8OnPosix) {
    if (onWindows()) GTEST_SKIP() << "Windows has code pages";
    EXPECT_EQ(fromNarrow("\xC3\xA4\xF0\x9F\x94\xA7"), wide(L"\u00E4\U0001F527"));
    EXPECT_EQ(toNarrow(wide(L"\u00E4\U0001F527")), "\xC3\xA4\xF0\x9F\x94\xA7");
    EXPECT_EQ(fromNarrow("a\xE4z"), wide(L"a\uFFFDz"));
    EXPECT_EQ(fromNarrow("a\xE4z"s), wide(L"a\uFFFDz"));
}

TEST(TextConversion, TreatsNarrowTextAsUtf8InEveryLocaleOfPosix) {
    if (!trv::testing::can_fork) GTEST_SKIP() << "needs a child process";
    const trv::testing::HostLocale german("ISO-8859-1");
    if (!german.exists()) GTEST_SKIP() << "localedef cannot compile a locale here";
    for (const bool withApplication : {false, true}) {
        EXPECT_TRUE(trv::testing::passesInChild([&] {
            ASSERT_TRUE(german.adopt());
            int count = 0;
            if (withApplication) new QCoreApplication(count, nullptr);
            EXPECT_EQ(fromNarrow("\xC3\xA4"), wide(L"\u00E4"));
            EXPECT_EQ(toNarrow(wide(L"\u00E4\u4E2D")), "\xC3\xA4\xE4\xB8\xAD");
            EXPECT_EQ(systemPath(wide(L"\u00E4")).string(), "\xC3\xA4");
        })) << withApplication;
    }
}

TEST(TextConversion, FindsNarrowPathsThatAreNotUtf8) {
    const char* const null = nullptr;
    for (const std::string& path : {""s, "a"s, "\xC3\xA4/\xEF\xBF\xBD"s, "\xEF\xBB\xBF"s,
                                    "\xF0\x9F\x94\xA7\0\xFF"s, "\xEF\xBF\xBF"s}) {
        EXPECT_TRUE(pathFromNarrow(path).isExact) << path;
        EXPECT_TRUE(pathFromNarrow(path.c_str()).isExact) << path;
        EXPECT_EQ(pathFromNarrow(path).text, fromNarrow(path));
        EXPECT_EQ(pathFromNarrow(path.c_str()).openable(), fromNarrow(path));
    }
    EXPECT_TRUE(pathFromNarrow(null).isExact);
    EXPECT_TRUE(pathFromNarrow(null).text.isEmpty());
    if (onWindows()) GTEST_SKIP() << "the ANSI code page decides what its bytes mean";
    for (const char* path : {"\xE4", "a\xC3", "\xEF\xBF\xBD\xE4", "\xED\xA0\xBD", "\xC0\xAF"}) {
        EXPECT_FALSE(pathFromNarrow(path).isExact);
        EXPECT_FALSE(pathFromNarrow(std::string(path)).isExact);
        EXPECT_TRUE(pathFromNarrow(path).openable().isEmpty());
        EXPECT_EQ(pathFromNarrow(path).text, fromNarrow(path));
    }
}

TEST(TextConversion, FindsUnitsOfWidePathsThatAreNotCharacters) {
    const auto unit = [](std::uint32_t code) { return static_cast<wchar_t>(code); };
    for (const std::wstring& path :
         {L""s, L"a"s, L"\u00E4\uFFFD"s, L"\U0010FFFF"s, L"a\0b"s, L"\uFEFF"s, L"\xFFFF"s}) {
        EXPECT_TRUE(pathFromWide(path).isExact);
        EXPECT_EQ(pathFromWide(path).openable(), fromWide(path));
    }
    const std::wstring halves = {unit(0xD83D), unit(0xDD27)};
    EXPECT_EQ(pathFromWide(halves).isExact, onWindows());
    EXPECT_EQ(pathFromWide(halves).text, wide(L"\U0001F527"));
    if (onWindows()) GTEST_SKIP() << "wide text is UTF-16 there";
    for (const std::uint32_t code : {0xD800U, 0xDFFFU, 0x110000U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        const std::wstring path = {L'a', unit(code)};
        EXPECT_FALSE(pathFromWide(path).isExact) << code;
        EXPECT_TRUE(pathFromWide(path).openable().isEmpty()) << code;
        EXPECT_EQ(pathFromWide(path).text, fromWide(path)) << code;
    }
}

TEST(TextConversion, KeepsInWidePathsWhetherTheNarrowOnesAreExact) {
    EXPECT_EQ(widePath("a"), L"a");
    EXPECT_EQ(widePath(""), L"");
    EXPECT_EQ(widePath("a\0b"s), L"a");
    if (onWindows()) GTEST_SKIP() << "every narrow path is exact there";
    EXPECT_EQ(widePath("\xC3\xA4\xEF\xBF\xBD"), L"\u00E4\uFFFD");
    for (const std::string& path : {"a\xE4"s, "\xEF\xBF\xBD\xE4"s, "\xE4/b"s}) {
        EXPECT_FALSE(pathFromWide(widePath(path)).isExact) << path;
        EXPECT_EQ(pathFromWide(widePath(path)).text, fromNarrow(path)) << path;
    }
}

TEST(TextConversion, TurnsBackslashesOfPathsOnPosix) {
    const QString path = wide(L"\\a\\b/c\\\\d");
    EXPECT_EQ(nativePath(path), onWindows() ? path : wide(L"/a/b/c//d"));
    EXPECT_EQ(nativePath(wide(L"C:\\x")), onWindows() ? wide(L"C:\\x") : wide(L"C:/x"));
    EXPECT_TRUE(nativePath(QString()).isEmpty());
    EXPECT_EQ(nativePath(wide(L"$X ?L ~ \u00E4")), wide(L"$X ?L ~ \u00E4"));
}

TEST(TextConversion, DoesNotOpenAPathThatIsEmptyOrHoldsAZero) {
    EXPECT_TRUE(isOpenable(wide(L"a")));
    EXPECT_TRUE(isOpenable(wide(L" ")));
    EXPECT_FALSE(isOpenable(QString()));
    EXPECT_FALSE(isOpenable(wide(L"")));
    EXPECT_FALSE(isOpenable(wide(L"a\0b"s)));
    EXPECT_FALSE(isOpenable(wide(L"a\0"s)));
    EXPECT_FALSE(isOpenable(wide(L"\0"s)));
}

TEST(TextConversion, GivesThePathForTheSystem) {
    EXPECT_EQ(systemPath(wide(L"/a/b.c")), std::filesystem::path("/a/b.c"));
    EXPECT_EQ(systemPath(wide(L"\u00E4 \U0001F527")).u8string(), "\xC3\xA4 \xF0\x9F\x94\xA7");
    if (onWindows()) GTEST_SKIP() << "the rest holds for POSIX";
    EXPECT_EQ(systemPath(wide(L"a\\b")).string(), "a/b");
}

TEST(TextConversion, AcceptsThePathThatTheSystemGives) {
    for (const std::wstring& path :
         {L"a"s, L"/b/c d"s, L"\u00E4\u65E5"s, L"\uFFFD"s, L"\uFEFFx"s}) {
        const trv::HostPath given = pathFromSystem(systemPath(fromWide(path)).native());
        EXPECT_EQ(given.text, fromWide(path));
        EXPECT_TRUE(given.isExact);
    }
}

TEST(TextConversion, FindsPathsOfPosixThatNoTextNames) {
    if (onWindows()) GTEST_SKIP() << "each path of Windows has a text";
    for (const char* path : {"\xE4", "\xEF\xBF\xBD\xFF", "\xED\xA0\x80", "a\\b"})
        EXPECT_FALSE(pathFromSystem(std::filesystem::path(path).native()).isExact) << path;
}

TEST(TextConversion, DoesNotOpenAPathWithHalfACharacterIfPathsAreUtf8) {
    const QString name = wide(L"a");
    const QChar high(0xD83D);
    const QChar low(0xDD27);
    EXPECT_TRUE(isOpenable(name + high + low));
    for (const QString& half :
         {name + high, name + low, name + low + high, high + name, name + high + high + low}) {
        EXPECT_EQ(isOpenable(half), onWindows());
    }
}

TEST(TextConversion, GivesThePathForTheRuntime) {
    std::string path = "old";
    EXPECT_TRUE(runtimePath(wide(L"/a/b.c"), path));
    EXPECT_EQ(path, "/a/b.c");
    EXPECT_TRUE(runtimePath(wide(L"a b[50%].mctx"), path));
    EXPECT_EQ(path, "a b[50%].mctx");
    EXPECT_TRUE(runtimePath(QString(1000, QLatin1Char('n')), path));
    EXPECT_EQ(path, std::string(1000, 'n'));
    EXPECT_TRUE(runtimePath(wide(L"a\\b"), path));
    EXPECT_EQ(path, onWindows() ? "a\\b" : "a/b");
}

TEST(TextConversion, GivesRuntimePathsInUtf8OnPosix) {
    if (onWindows()) GTEST_SKIP() << "Windows has code pages";
    std::string path;
    EXPECT_TRUE(runtimePath(wide(L"\u00E4\u4E2D\U0001F527"), path));
    EXPECT_EQ(path, "\xC3\xA4\xE4\xB8\xAD\xF0\x9F\x94\xA7");
}

TEST(TextConversion, GivesTheRuntimeNoPathThatNamesAnotherFile) {
    std::string path = "old";
    for (const QString& none : {QString(), wide(L""), wide(L"a\0b"s), wide(L"a\0"s), wide(L"\0"s)})
        EXPECT_FALSE(runtimePath(none, path));
    const QString half = wide(L"a") + QChar(0xD83D);
    EXPECT_FALSE(runtimePath(half, path));
    EXPECT_EQ(path, "old");
}

TEST(TextConversion, KeepsAFirstByteOrderMarkOfWideText) {
    for (const wchar_t first : {wchar_t(0xFEFF), wchar_t(0xFFFE)}) {
        const QString units = fromWide(std::wstring{first, L'a', wchar_t(0xFEFF)});
        ASSERT_EQ(units.size(), 3);
        EXPECT_EQ(units.at(0).unicode(), first);
        EXPECT_EQ(units.at(1), QChar(u'a'));
        EXPECT_EQ(units.at(2).unicode(), 0xFEFF);
    }
}

TEST(TextConversion, KeepsAFirstByteOrderMarkOfNarrowTextOnPosix) {
    if (onWindows()) GTEST_SKIP() << "the code page decides";
    const std::string mark = "\xEF\xBB\xBF";
    for (const std::string& text :
         {mark, mark + "a", mark + mark, mark + mark + "a" + mark, "a" + mark, mark + "\xC3\xA4"}) {
        EXPECT_EQ(toNarrow(fromNarrow(text)), text);
        EXPECT_EQ(toNarrow(fromNarrow(text.c_str())), text);
    }
    EXPECT_EQ(fromNarrow(mark + "a").size(), 2);
    EXPECT_EQ(fromNarrow(mark + "a").at(0).unicode(), 0xFEFF);
    EXPECT_EQ(fromNarrow(mark + mark + "a").size(), 3);
    EXPECT_EQ(fromNarrow(mark + "\0a"s).size(), 1);
    EXPECT_EQ(fromNarrow("\xEF\xBB"), wide(L"\uFFFD\uFFFD")) << "an incomplete mark";
}

TEST(TextConversion, GivesAFirstByteOrderMarkBackInWideText) {
    for (const std::wstring& text : {L"\uFEFF"s, L"\uFEFFa"s, L"\uFEFF\uFEFF"s, L"a\uFEFF"s}) {
        EXPECT_EQ(toWide(fromWide(text)), text);
        EXPECT_EQ(fromWide(text).size(), static_cast<int>(text.size()));
    }
    EXPECT_EQ(toWide(QChar(0xFEFF) + QString(QChar(u'a'))), L"\uFEFFa");
    if (onWindows()) return;
    EXPECT_EQ(toNarrow(fromWide(L"\uFEFFa")),
              "\xEF\xBB\xBF"
              "a");
    EXPECT_EQ(toWide(fromNarrow("\xEF\xBB\xBF"
                                "a")),
              L"\uFEFFa");
}

TEST(TextConversion, ReplacesWhatIsBeyondUnicodeInUtf32) {
    if (onWindows()) GTEST_SKIP() << "wide text is UTF-16 there";
    constexpr std::uint32_t codes[] = {0x110000, 0xFEFF0000, 0xFFFE0000, 0x7FFFFFFF, 0xFFFFFFFF};
    for (const std::uint32_t code : codes) {
        const QString units = fromWide(std::wstring{L'a', static_cast<wchar_t>(code), L'b'});
        EXPECT_EQ(units, wide(L"a\uFFFDb"));
        EXPECT_EQ(fromWide(std::wstring{static_cast<wchar_t>(code)}), wide(L"\uFFFD"));
    }
}

TEST(TextConversion, TakesUtf16UnitByUnitOnWindows) {
    if (!onWindows()) GTEST_SKIP() << "wide text is UTF-32 here";
    for (const wchar_t first : {wchar_t(0xFEFF), wchar_t(0xFFFE), wchar_t(0xD83D), L'\0'}) {
        const std::wstring text = {first, L'a', L'\0', wchar_t(0xDD27), wchar_t(0xFEFF)};
        const QString units = fromWide(text);
        ASSERT_EQ(units.size(), 5);
        EXPECT_EQ(units.at(0).unicode(), first);
        EXPECT_EQ(units.at(1), QChar(u'a'));
        EXPECT_EQ(toWide(units), text);
    }
}

TEST(TextConversion, GivesTheRuntimeNoPathThatTheCodePageOfWindowsLacks) {
    if (!onWindows()) GTEST_SKIP() << "UTF-8 has every character";
    std::string path = "old";
    // No code page, not even UTF-8, has half a surrogate pair.
    EXPECT_FALSE(runtimePath(wide(L"a.mctx") + QChar(0xD83D), path));
    EXPECT_FALSE(runtimePath(QChar(0xDD27) + wide(L"a.mctx"), path));
    EXPECT_EQ(path, "old");
}
