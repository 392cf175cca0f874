// Texts and numbers that are written to a machine context file and read back.

#include <tests/common/child_process.h>
#include <tests/common/file_bytes.h>
#include <tests/common/host_locale.h>
#include <tests/common/temporary_directory.h>
#include <tests/machine_context/context_samples.h>
#include <trvfiles/support/platform.h>

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using namespace std::string_literals;
using namespace trv::testing;

namespace {

class MachineContextText : public ::testing::Test {
protected:
    /// Writes a record and reads it into one whose fields all have other values.
    CMachineContextData roundTrip(const CMachineContextData& data) const {
        EXPECT_EQ(writeContext(path, data), eFileIOSuccess);
        CMachineContextData back = prefilled();
        EXPECT_EQ(readContext(path, back), eFileIOSuccess);
        return back;
    }

    /// The line of a key in the file, up to the first LF.
    std::string lineOf(const ContextText& text) const {
        const std::string bytes = trv::testing::textOf(path);
        const std::size_t section = bytes.find("["s + text.section + "]\n");
        if (section == std::string::npos) return "<no section>";
        const std::string rest = bytes.substr(section + std::string(text.section).size() + 2);
        const std::string ofSection = rest.substr(0, rest.find("\n["));
        const std::size_t key = ofSection.find("\n"s + text.key + "=");
        if (key == std::string::npos) return "<no key>";
        return ofSection.substr(key + 1, ofSection.find('\n', key + 1) - key - 1);
    }

    /// Expects for every text field that a value is written and read back like this, and that no
    /// other field changes.
    void expectText(const std::string& value, const std::string& written,
                    const std::string& readBack) const {
        for (const ContextText& text : contextTexts) {
            CMachineContextData data = allFields();
            (data.*text.set)(value);
            const CMachineContextData back = roundTrip(data);
            EXPECT_EQ(lineOf(text), text.key + "="s + written) << nameOf(text);
            CMachineContextData expected = allFields();
            (expected.*text.set)(readBack);
            EXPECT_EQ(ContextFields(back), ContextFields(expected)) << nameOf(text) << value;
        }
    }

    void expectUnchanged(const std::string& value) const { expectText(value, value, value); }

    TemporaryDirectory directory;
    fs::path path = directory / "f.mctx";
};

}  // namespace

TEST_F(MachineContextText, ThatIsEmptyComesBackEmptyIfItsKeyIsAlwaysWritten) {
    for (std::size_t i = 0; i < contextTexts.size(); ++i) {
        if (i == surfaceGroupText || i == clampingSystemText) continue;
        const ContextText& text = contextTexts[i];
        CMachineContextData data = allFields();
        (data.*text.set)("");
        EXPECT_EQ(ContextFields(roundTrip(data)), ContextFields(data)) << nameOf(text);
        EXPECT_EQ(lineOf(text), text.key + "="s);
    }
}

TEST_F(MachineContextText, ThatIsEmptyAndHasNoKeyLeavesWhatWasThere) {
    CMachineContextData data = allFields();
    data.setSurfaceGroup("");
    data.setClampingSystem("");
    CMachineContextData expected = data;
    expected.setSurfaceGroup(prefilled().getSurfaceGroup());
    expected.setClampingSystem(prefilled().getClampingSystem());
    EXPECT_EQ(ContextFields(roundTrip(data)), ContextFields(expected));
    EXPECT_EQ(lineOf(contextTexts[surfaceGroupText]), "<no section>");
    EXPECT_EQ(lineOf(contextTexts[clampingSystemText]), "<no key>");
}

TEST_F(MachineContextText, LosesTheBlanksAtItsEnds) {
    expectText("  x  ", "  x  ", "x");
    expectText("x\t", "x\t", "x");
    expectText("\v\f x y \f\v", "\v\f x y \f\v", "x y");
    expectText("  ", "  ", "");
}

TEST_F(MachineContextText, MayLookLikeSyntax) {
    for (const char* value : {"#x", "[x]", "[machine]", "a=b", "=", "//x", ";x", "$X", "C:\\new",
                              "?LIST", "/if X", "/endif", "##", "a#b", "\"x\"", "%s%n", "]", "{}"})
        expectUnchanged(value);
}

TEST_F(MachineContextText, LosesTheTextBetweenAPlusAndTheNextParenthesis) {
    expectText("A+B(1)", "A+", "A+");
    expectText("A+++B(1)C", "A+++C", "A+++C");
    expectText("A+(1)+(2)", "A++", "A++");
    expectText("+)", "+", "+");
    expectText("a+b)c)d", "a+c)d", "a+c)d");
    expectText("a+b)c+d)e", "a+c+e", "a+c+e");
    expectText("+(0000000C)x", "+x", "+x");
}

TEST_F(MachineContextText, KeepsAPlusWithoutALaterParenthesisAndEachPairOfThem) {
    for (const char* value : {"A+B", "A+", "A++B(1)", "++", "+", "(1)+", ")+(", "A++", "a++b++c)"})
        expectUnchanged(value);
}

TEST_F(MachineContextText, KeepsOtherControlCharactersInside) {
    for (int code = 1; code < 32; ++code) {
        const bool isLineEnd = code == '\n' || code == '\r';
        const bool endsAFile = code == 0x1A && trv::platform::backslash_separates();
        if (isLineEnd || endsAFile) continue;
        expectUnchanged("a"s + static_cast<char>(code) + "b");
    }
    expectUnchanged("a\x7F"s + "b");
}

TEST_F(MachineContextText, HasABlankForEachLineEndCharacter) {
    expectText("a\nb", "a b", "a b");
    expectText("a\rb", "a b", "a b");
    expectText("a\r\nb\n\nc", "a  b  c", "a  b  c");
    expectText("\n\r", "  ", "");
}

TEST_F(MachineContextText, EndsAtItsFirstZero) {
    for (const ContextText& text : contextTexts) {
        CMachineContextData data = allFields();
        (data.*text.setWide)(L"a\0b"s);
        CMachineContextData expected = allFields();
        (expected.*text.set)("a");
        EXPECT_EQ(ContextFields(roundTrip(data)), ContextFields(expected)) << nameOf(text);
    }
    // A text that begins with a zero is written like an empty text.
    CMachineContextData data = allFields();
    data.setSurfaceGroupW(L"\0x"s);
    roundTrip(data);
    EXPECT_EQ(lineOf(contextTexts[surfaceGroupText]), "<no section>");
}

TEST_F(MachineContextText, MayBeOfAnyLength) {
    for (const std::size_t length : {1000U, 1023U, 1024U, 5000U, 1000000U})
        expectUnchanged(std::string(length, 'x'));
}

TEST_F(MachineContextText, KeepsCharactersThatTheCodePageHas) {
    expectUnchanged("\xC3\xA4\xC3\x96 \xE6\x97\xA5\xE6\x9C\xAC \xF0\x9F\x98\x80");
    // A no-break space, a next-line control and a line separator are ordinary characters.
    expectUnchanged("\xC2\xA0x\xC2\x85x\xE2\x80\xA8");
    for (const ContextText& text : contextTexts) {
        CMachineContextData data = allFields();
        (data.*text.setWide)(L"Fr\u00E4sen \u65E5\u672C");
        const CMachineContextData back = roundTrip(data);
        EXPECT_EQ((back.*text.getWide)(), L"Fr\u00E4sen \u65E5\u672C") << nameOf(text);
        EXPECT_EQ((back.*text.get)(), "Fr\xC3\xA4sen \xE6\x97\xA5\xE6\x9C\xAC");
    }
}

TEST_F(MachineContextText, ThatTheCodePageLacksComesBackAsItsConversionMakesIt) {
    // Half a surrogate pair has no bytes in any code page; the UTF-8 of Windows replaces it.
    const std::string made = trv::platform::narrow_text_is_utf8() ? "?x" : "\xEF\xBF\xBDx";
    for (const wchar_t half : {wchar_t(0xD800), wchar_t(0xDFFF)}) {
        CMachineContextData data = allFields();
        data.setCommentW({half, L'x'});
        CMachineContextData expected = allFields();
        expected.setComment(made);
        EXPECT_EQ(ContextFields(roundTrip(data)), ContextFields(expected));
        EXPECT_EQ(lineOf(contextTexts[0]), "comment=" + made);
    }
}

TEST_F(MachineContextText, OutsideAsciiIsWrittenInTheCodePage) {
    CMachineContextData data;
    data.setCommentW(L"\u00FCberpr\u00FCft, 5 \u00B5m");
    data.setName("Fr\xC3\xA4sen \xE6\x97\xA5\xE6\x9C\xAC \xF0\x9F\x98\x80");
    data.setMachineNameW(L"\u6A5F\u68B0");
    data.setMachinePositionW(L"\u041F\u043E\u0437\u0438\u0446\u0438\u044F 1");
    data.setMachineProximity(0.1);
    data.setReferenceAxisForOriginProgramW(L"[stockposition@Fr\u00E4sen]MACHINE.ref");
    data.setSurfaceGroupW(L"\u8868\u9762");
    data.setClampingSystemW(L"\u00C9tau");
    data.setClampingProximity(1234.5678);
    EXPECT_EQ(writeContext(path, data), eFileIOSuccess);
    const fs::path golden = fs::path(TRV_TEST_DATA) / "machine_context" / "non_ascii.mctx";
    EXPECT_EQ(trv::testing::textOf(path), trv::testing::textOf(golden));
    CMachineContextData back = prefilled();
    EXPECT_EQ(readContext(golden, back), eFileIOSuccess);
    data.setClampingProximity(1234.567749);
    EXPECT_EQ(ContextFields(back), ContextFields(data));
}

TEST_F(MachineContextText, OfBytesThatAreNoTextIsReadAsReplacementCharacters) {
    if (!trv::platform::narrow_text_is_utf8()) GTEST_SKIP() << "the system's code page decides";
    writeBytes(path,
               "[header]\nname=a\xFF"
               "b\n");
    CMachineContextData data;
    EXPECT_EQ(readContext(path, data), eFileIOSuccess);
    EXPECT_EQ(data.getNameW(), L"a\uFFFDb");
}

// Whatever the value of one field, all others read back as they were set.
TEST_F(MachineContextText, NeverChangesWhatAnotherFieldReads) {
    const std::vector<std::wstring> hostile = {
        L"\r\norigin_program=9 9 9",
        L"x\nname=stolen\nposition=stolen\nproximity=9",
        L"\n[machine]\nname=stolen\nposition=stolen",
        L"x\r[header]\rname=stolen",
        L"\n[machine]\n",
        L"\n[postpro]\n\n",
        L"]\n[clamping_system]\nproximity=9",
        L"[header]",
        L"[",
        L"=",
        L"==name=stolen",
        L"#",
        L" #name=stolen",
        L"+(",
        L"+(00000000)",
        L"+(FFFFFFFF)",
        L"+(0000000C)+(00000400)",
        L"+",
        L"++",
        L"+++(\n)",
        L")",
        L"/if X",
        L"\n/if UNDEFINED",
        L"/endif",
        L"$(TRVNULL)",
        L"version=9",
        L"surface_group=stolen",
        L"\xFEFF[header]",
        L"\x2028[machine]",
        L"\x0085[machine]\x0085name=stolen",
        L"\v[machine]\fname=stolen",
        L"a\0\n[machine]\nname=stolen"s,
        L"\0"s,
        std::wstring(2000, L'x') + L"\n[machine]\nname=stolen",
        std::wstring(1017, L'x') + L"name=stolen",
        std::wstring(300, L'\n'),
        std::wstring(300, L'+') + L")",
    };
    for (const ContextText& text : contextTexts) {
        for (const std::wstring& value : hostile) {
            CMachineContextData data = allFields();
            (data.*text.setWide)(value);
            CMachineContextData back = roundTrip(data);
            // Another test checks the field itself. It is not compared here.
            (back.*text.set)("");
            CMachineContextData expected = allFields();
            (expected.*text.set)("");
            EXPECT_EQ(ContextFields(back), ContextFields(expected))
                << nameOf(text) << " = " << ::testing::PrintToString(value);
        }
    }
}

TEST_F(MachineContextText, OfAProximityIsSinglePrecisionAndSixDecimals) {
    const double infinity = std::numeric_limits<double>::infinity();
    const struct {
        double value;
        const char* written;
        double readBack;
    } proximities[] = {{0.1, "0.100000", 0.1},
                       {1234.5678, "1234.567749", 1234.567749},
                       {2.5, "2.500000", 2.5},
                       {-3.25, "-3.250000", -3.25},
                       {-0.0, "-0.000000", -0.0},
                       {1e-7, "0.000000", 0.0},
                       {-1e-7, "-0.000000", -0.0},
                       {1e-300, "0.000000", 0.0},
                       {16777217, "16777216.000000", 16777216},
                       {123456.789, "123456.789062", 123456.789062},
                       {999999.96, "999999.937500", 999999.9375},
                       {99999999999.0, "99999997952.000000", 99999997952.0},
                       {999999999999.0, "999999995904.000000", 999999995904.0},
                       {9999999999999.0, "9999999827968.00000", 9999999827968.0},
                       {1e20, "1000000020040877342", 1000000020040877342.0},
                       {-1e20, "-100000002004087734", -100000002004087734.0},
                       {1e300, "inf", infinity},
                       {-1e300, "-inf", -infinity},
                       {infinity, "inf", infinity},
                       {std::nan(""), "nan", std::nan("")},
                       {-std::nan(""), "nan", std::nan("")}};
    for (const auto& proximity : proximities) {
        CMachineContextData data = allFields();
        data.setMachineProximity(proximity.value);
        data.setClampingProximity(proximity.value);
        CMachineContextData expected = allFields();
        expected.setMachineProximity(proximity.readBack);
        expected.setClampingProximity(proximity.readBack);
        EXPECT_EQ(ContextFields(roundTrip(data)), ContextFields(expected)) << proximity.written;
        EXPECT_EQ(lineOf({"machine", "proximity", nullptr, nullptr, nullptr, nullptr}),
                  "proximity="s + proximity.written);
        EXPECT_EQ(lineOf({"clamping_system", "proximity", nullptr, nullptr, nullptr, nullptr}),
                  "proximity="s + proximity.written);
    }
}

TEST_F(MachineContextText, OfAnOriginIsWrittenInFull) {
    const struct {
        double origin[3];
        const char* written;
        double readBack[3];
    } origins[] = {
        {{0.1, 1234.5678, -0.0}, "0.100000 1234.567800 -0.000000", {0.1, 1234.5678, -0.0}},
        {{1e20, -1e20, 1e-7},
         "100000000000000000000.000000 -100000000000000000000.000000 0.000000",
         {1e20, -1e20, 0}},
        {{std::nan(""), HUGE_VAL, -HUGE_VAL}, "nan inf -inf", {std::nan(""), HUGE_VAL, -HUGE_VAL}},
        {{-std::nan(""), 1.0 / 3, 2e-6}, "nan 0.333333 0.000002", {std::nan(""), 0.333333, 2e-6}}};
    for (const auto& sample : origins) {
        CMachineContextData data = allFields();
        data.setOriginProgram(sample.origin[0], sample.origin[1], sample.origin[2]);
        CMachineContextData expected = allFields();
        expected.setOriginProgram(sample.readBack[0], sample.readBack[1], sample.readBack[2]);
        EXPECT_EQ(ContextFields(roundTrip(data)), ContextFields(expected)) << sample.written;
        EXPECT_EQ(lineOf({"postpro", "origin_program", nullptr, nullptr, nullptr, nullptr}),
                  "origin_program="s + sample.written);
    }
}

TEST_F(MachineContextText, IsTheSameInAHostThatWritesNumbersWithAComma) {
    const fs::path golden = fs::path(TRV_TEST_DATA) / "machine_context";
    for (const char* charset : {"UTF-8", "ISO-8859-1"}) {
        const HostLocale locale(charset);
        if (!can_fork || !locale.exists()) GTEST_SKIP() << "no locale with a comma can be made";
        EXPECT_TRUE(passesInChild([&] {
            ASSERT_TRUE(locale.adopt());
            EXPECT_EQ(ContextFields(roundTrip(allFields())), ContextFields(allFields()));
            EXPECT_EQ(trv::testing::textOf(path), trv::testing::textOf(golden / "all_fields.mctx"));
            CMachineContextData back;
            EXPECT_EQ(readContext(golden / "non_ascii.mctx", back), eFileIOSuccess);
            EXPECT_EQ(back.getClampingProximity(), 1234.567749);
            EXPECT_EQ(back.getMachineNameW(), L"\u6A5F\u68B0");
            back.setClampingProximity(1234.5678);
            EXPECT_EQ(writeContext(path, back), eFileIOSuccess);
            EXPECT_EQ(trv::testing::textOf(path), trv::testing::textOf(golden / "non_ascii.mctx"));
        }));
    }
}
