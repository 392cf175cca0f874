#include <cli/text_output.h>

#include <QJsonDocument>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <sstream>
#include <vector>

namespace trv::cli {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

TEST(TextOutput, CountsInTheRightNumber) {
    const auto files = [](unsigned long long count) {
        return counted(count, QStringLiteral("file"), QStringLiteral("files")).toStdString();
    };
    EXPECT_EQ(files(0), "0 files");
    EXPECT_EQ(files(1), "1 file");
    EXPECT_EQ(files(18446744073709551615U), "18446744073709551615 files");
}

TEST(NumberText, IsTheShortestThatReadsBack) {
    EXPECT_EQ(numberText(0.1).toStdString(), "0.1");
    EXPECT_EQ(numberText(100).toStdString(), "100");
    EXPECT_EQ(numberText(-2.5).toStdString(), "-2.5");
    EXPECT_EQ(numberText(100000).toStdString(), "1e+05");
    EXPECT_EQ(numberText(0.1 + 0.2).toStdString(), "0.30000000000000004");
    EXPECT_EQ(numberText(5e-324).toStdString(), "5e-324");
    EXPECT_EQ(numberText(-1.7976931348623157e308).toStdString(), "-1.7976931348623157e+308");
}

TEST(NumberText, ReadsBackAsTheSameNumber) {
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> mantissa(-1, 1);
    std::uniform_int_distribution<int> exponent(-1000, 1000);
    for (int i = 0; i < 10000; ++i) {
        const double value = std::ldexp(mantissa(random), exponent(random));
        ASSERT_EQ(numberText(value).toDouble(), value);
    }
}

TEST(NumberText, NamesWhatIsNotFinite) {
    EXPECT_EQ(numberText(infinity).toStdString(), "inf");
    EXPECT_EQ(numberText(-infinity).toStdString(), "-inf");
    EXPECT_EQ(numberText(notANumber).toStdString(), "nan");
    EXPECT_EQ(numberText(-notANumber).toStdString(), "nan");
}

TEST(RoundedText, HasUpToSixDecimals) {
    EXPECT_EQ(roundedText(0.8660254037844387).toStdString(), "0.866025");
    EXPECT_EQ(roundedText(-0.49999999999999994).toStdString(), "-0.5");
    EXPECT_EQ(roundedText(-140).toStdString(), "-140");
    EXPECT_EQ(roundedText(100).toStdString(), "100");
    EXPECT_EQ(roundedText(20.5).toStdString(), "20.5");
    EXPECT_EQ(roundedText(0.000001).toStdString(), "0.000001");
    EXPECT_EQ(roundedText(123456789.125).toStdString(), "123456789.125");
}

TEST(RoundedText, HasNoZeroWithASign) {
    EXPECT_EQ(roundedText(-0.0).toStdString(), "0");
    EXPECT_EQ(roundedText(-4e-7).toStdString(), "0");
    EXPECT_EQ(roundedText(-6e-7).toStdString(), "-0.000001");
}

TEST(RoundedText, HasNoDecimalsForLargeNumbers) {
    EXPECT_EQ(roundedText(999999999999999).toStdString(), "999999999999999");
    EXPECT_EQ(roundedText(1e15).toStdString(), "1e+15");
    EXPECT_EQ(roundedText(-1e300).toStdString(), "-1e+300");
    EXPECT_EQ(roundedText(infinity).toStdString(), "inf");
    EXPECT_EQ(roundedText(-infinity).toStdString(), "-inf");
    EXPECT_EQ(roundedText(notANumber).toStdString(), "nan");
}

TEST(VectorText, SeparatesWithBlanks) {
    const double vector[] = {1, -0.1234567, infinity};
    EXPECT_EQ(vectorText(vector).toStdString(), "1 -0.1234567 inf");
    EXPECT_EQ(roundedVectorText(vector).toStdString(), "1 -0.123457 inf");
}

// A text of one code unit, which need not be a whole character.
std::string shownUnit(ushort unit) {
    return shown(QString(QChar(unit))).toStdString();
}

std::string shownCode(uint code) {
    return shown(QString::fromUcs4(&code, 1)).toStdString();
}

TEST(Shown, DoesNotChangeOrdinaryText) {
    EXPECT_EQ(shown(std::string(u8"Spannmittel ü€😀 /x/ \"x\" %1")).toStdString(),
              u8"Spannmittel ü€😀 /x/ \"x\" %1");
    EXPECT_EQ(shown(std::string(u8"\u00a0\u2010\u2027\u3000\ufe0f")).toStdString(),
              u8"\u00a0\u2010\u2027\u3000\ufe0f");
    EXPECT_EQ(shown(QString()).toStdString(), "");
}

TEST(Shown, MakesControlCharactersVisible) {
    EXPECT_EQ(shown(std::string("a\nb\tc\x1b[31m\x7f")).toStdString(),
              "a\\x0ab\\x09c\\x1b[31m\\x7f");
    EXPECT_EQ(shown(std::string(u8"\u0085")).toStdString(), "\\x85");
    EXPECT_EQ(shown(QString(QChar(0))).toStdString(), "\\x00");
    EXPECT_EQ(shownUnquoted(QStringLiteral("C:\\a\n\x1b")).toStdString(), "C:\\a\\x0a\\x1b");
}

TEST(Shown, DoublesABackslash) {
    EXPECT_EQ(shown(std::string("C:\\a\\\\b\\")).toStdString(), "C:\\\\a\\\\\\\\b\\\\");
    EXPECT_EQ(shown(std::string("\\x0a")).toStdString(), "\\\\x0a");
}

TEST(Shown, MakesFormatCharactersAndSeparatorsVisible) {
    EXPECT_EQ(shown(std::string(u8"gpj\u202elts.exe")).toStdString(), "gpj\\u202elts.exe");
    EXPECT_EQ(shownUnit(0xad), "\\xad");
    EXPECT_EQ(shownUnit(0x61c), "\\u061c");
    const ushort units[] = {0x200b, 0x200c, 0x200d, 0x200e, 0x200f, 0x2028, 0x2029, 0x202a, 0x202b,
                            0x202c, 0x202d, 0x202e, 0x2060, 0x2066, 0x2067, 0x2068, 0x2069, 0xfeff};
    for (const ushort unit : units) {
        EXPECT_EQ(shownUnit(unit), "\\u" + QString::number(unit, 16).toStdString());
    }
}

TEST(Shown, MakesFormatCharactersBeyondTheBasicPlaneVisible) {
    EXPECT_EQ(shownCode(0xdffff), QString::fromUtf8("\xf3\x9f\xbf\xbf").toStdString());
    EXPECT_EQ(shownCode(0xe0000), "\\U000e0000");
    EXPECT_EQ(shownCode(0xe0001), "\\U000e0001");
    EXPECT_EQ(shownCode(0xe0041), "\\U000e0041");
    EXPECT_EQ(shownCode(0xe007f), "\\U000e007f");
    EXPECT_EQ(shownCode(0xe0100), u8"\U000e0100");
    EXPECT_EQ(shownCode(0x110bd), "\\U000110bd");
    EXPECT_EQ(shownCode(0x1d173), "\\U0001d173");
}

TEST(Shown, MakesHalvesOfAPairVisible) {
    EXPECT_EQ(shownUnit(0xd83d), "\\ud83d");
    EXPECT_EQ(shownUnit(0xde00), "\\ude00");
    EXPECT_EQ(shown(QString(QChar(0xd83d)) + QStringLiteral("x")).toStdString(), "\\ud83dx");
    EXPECT_EQ(shown(QString(QChar(0xde00)) + QChar(0xd83d)).toStdString(), "\\ude00\\ud83d");
    EXPECT_EQ(shown(QString(QChar(0xd83d)) + QString::fromUtf8(u8"😀")).toStdString(), u8"\\ud83d😀");
}

TEST(Shown, GivesDifferentTextsForDifferentTexts) {
    EXPECT_NE(shown(std::string("a\nb")), shown(std::string("a\\x0ab")));
    EXPECT_NE(shown(std::string(u8"\u202e")), shown(std::string("\\u202e")));
}

TEST(BeginningOf, CutsBetweenCharacters) {
    const auto beginning = [](const char* text, int maxLength) {
        return beginningOf(QString::fromUtf8(text), maxLength).toStdString();
    };
    EXPECT_EQ(beginning("abc", 3), "abc");
    EXPECT_EQ(beginning("abc", 2), "ab...");
    EXPECT_EQ(beginning("", 2), "");
    EXPECT_EQ(beginning(u8"a😀", 3), u8"a😀");
    EXPECT_EQ(beginning(u8"a😀b", 3), u8"a😀...");
    EXPECT_EQ(beginning(u8"a😀b", 2), "a...");
}

TEST(JsonNumber, KeepsFiniteNumbersAndNamesTheOthers) {
    const double values[] = {0.1, 1e300, infinity, -infinity, notANumber};
    std::ostringstream out;
    printJson({{QStringLiteral("n"), jsonNumbers(values, 5)}}, out);
    EXPECT_EQ(out.str(), "{\"n\":[0.1,1e+300,\"inf\",\"-inf\",\"nan\"]}\n");
}

TEST(PrintJson, WritesUtf8OnOneLine) {
    std::ostringstream out;
    printJson({{QStringLiteral("b"), QString::fromUtf8(u8"ü\n\"")}, {QStringLiteral("a"), true}},
              out);
    EXPECT_EQ(out.str(), u8"{\"a\":true,\"b\":\"ü\\n\\\"\"}\n");
}

std::string jsonOf(const QString& text) {
    std::ostringstream out;
    printJson({{QStringLiteral("t"), text}}, out);
    return out.str();
}

TEST(PrintJson, EscapesHiddenCharacters) {
    EXPECT_EQ(jsonOf(QString::fromUtf8(u8"\u007f\u0085\u00ad\u061c\u202e\u2028\ufeff")),
              "{\"t\":\"\\u007f\\u0085\\u00ad\\u061c\\u202e\\u2028\\ufeff\"}\n");
    EXPECT_EQ(jsonOf(QString::fromUtf8(u8"\U000e0041\U000e0000\U0001d173")),
              "{\"t\":\"\\udb40\\udc41\\udb40\\udc00\\ud834\\udd73\"}\n");
    EXPECT_EQ(jsonOf(QString(QChar(0xd83d)) + QStringLiteral("x")), "{\"t\":\"\\ud83dx\"}\n");
    EXPECT_EQ(jsonOf(QString(QChar(0xde00))), "{\"t\":\"\\ude00\"}\n");
}

TEST(PrintJson, DoesNotChangeOrdinaryText) {
    EXPECT_EQ(jsonOf(QString::fromUtf8(u8"ü€😀\u3000\\ /")), u8"{\"t\":\"ü€😀\u3000\\\\ /\"}\n");
}

TEST(PrintJson, WritesWhatReadsBack) {
    const QString text = QString::fromUtf8(u8"a\u202e\U000e0041\\u202e\"\u0001");
    const QByteArray json = QByteArray::fromStdString(jsonOf(text));
    EXPECT_EQ(QJsonDocument::fromJson(json).object().value(QStringLiteral("t")).toString(), text);
}

TEST(JsonWriter, WritesMembersInTheirOrder) {
    std::ostringstream out;
    JsonWriter json(out);
    json.add("b", QString::fromUtf8(u8"ü\u202e\""));
    json.beginArray("none");
    json.endArray();
    json.beginArray("some");
    json.addElement(1);
    json.addElement(QJsonObject{{QStringLiteral("x"), QJsonValue()}});
    json.addElement(QStringLiteral("]"));
    json.endArray();
    json.add("a", false);
    json.end();
    EXPECT_EQ(out.str(),
              u8"{\"b\":\"ü\\u202e\\\"\",\"none\":[],\"some\":[1,{\"x\":null},\"]\"],"
              "\"a\":false}\n");
}

TEST(JsonWriter, WritesObjectsInAnArray) {
    std::ostringstream out;
    const double numbers[] = {1, -0.5, std::nan("")};
    JsonWriter json(out);
    json.beginArray("a");
    json.beginObject();
    json.addInteger("b", -7);
    json.addBoolean("c", true);
    json.addNumbers("d", numbers, 3);
    json.endObject();
    json.beginObject();
    json.endObject();
    json.endArray();
    json.addNull("e");
    json.addAll({{QStringLiteral("g"), 1}, {QStringLiteral("f"), QStringLiteral("x")}});
    json.end();
    EXPECT_EQ(out.str(),
              "{\"a\":[{\"b\":-7,\"c\":true,\"d\":[1,-0.5,\"nan\"]},{}],\"e\":null,"
              "\"f\":\"x\",\"g\":1}\n");
}

TEST(JsonWriter, EscapesTextsLikeAnyOtherValue) {
    std::ostringstream out;
    JsonWriter json(out);
    json.addText("a", "plain 'text' ~");
    json.addText("b", u8"Ø \"q\" \\ \n\x1b\u202e");
    json.addUtf8("c", u8"Ø \"q\" \\ \n\x1b\u202e");
    json.end();
    EXPECT_EQ(out.str(),
              u8"{\"a\":\"plain 'text' ~\",\"b\":\"Ø \\\"q\\\" \\\\ \\n\\u001b\\u202e\","
              u8"\"c\":\"Ø \\\"q\\\" \\\\ \\n\\u001b\\u202e\"}\n");
}

// One member is written by addText(), the other by way of a document.
TEST(JsonWriter, WritesTheSameStringsAsQt) {
    std::string texts;
    for (char c = 1; c != 0x7F; ++c)
        texts += c;
    texts +=
        u8"\u007f\u0085\u00ff\u0100\u07ff\u0800\u20ac\u200b\ufeff\uffff\U00010000\U000e0041"
        u8"\U0010ffff";
    std::ostringstream out;
    JsonWriter json(out);
    json.addText("a", texts);
    json.add("a", QString::fromStdString(texts));
    json.end();
    const std::string text = out.str();
    const std::size_t middle = (text.size() - 2) / 2;
    EXPECT_EQ(text.substr(1, middle - 1), text.substr(middle + 1, middle - 1));
    EXPECT_EQ(text[middle], ',');
    EXPECT_NE(text.find("\\b\\t\\n\\u000b\\f\\r\\u000e"), std::string::npos);
}

TEST(AppendShown, AppendsTheTextOfShown) {
    for (const char* text : {"", "plain ~", "a\\b", "a\tb", u8"Ø\u202e€\U0001f600\U000e0041"}) {
        std::string appended = "x";
        appendShown(appended, text);
        EXPECT_EQ(appended, "x" + shown(std::string(text)).toStdString());
    }
}

TEST(JsonWriter, WritesColumns) {
    std::ostringstream out;
    JsonWriter json(out);
    json.beginObject("columns");
    json.beginArray("texts");
    json.addTextElement("a");
    json.addTextElement("\"\n");
    json.endArray();
    json.beginArray("numbers");
    json.addIntegerElement(-1);
    json.addIntegerElement(20);
    json.endArray();
    json.beginObject("empty");
    json.endObject();
    json.beginBase64("none");
    json.endBase64();
    json.beginBase64("three");
    const double numbers[] = {1, -2, 0.1};
    json.addBase64(numbers, 3);
    json.endBase64();
    json.endObject();
    json.addInteger("last", 3);
    json.end();
    EXPECT_EQ(out.str(),
              "{\"columns\":{\"texts\":[\"a\",\"\\\"\\n\"],\"numbers\":[-1,20],"
              "\"empty\":{},\"none\":\"\","
              "\"three\":\"AAAAAAAA8D8AAAAAAAAAwJqZmZmZmbk/\"},\"last\":3}\n");
}

TEST(JsonWriter, WritesManyNumbersInBase64) {
    std::ostringstream out;
    JsonWriter json(out);
    json.beginBase64("n");
    const std::vector<double> zeros(30, 0);
    for (int i = 0; i < 100; ++i)
        json.addBase64(zeros.data(), zeros.size());
    json.endBase64();
    json.end();
    EXPECT_EQ(out.str(), "{\"n\":\"" + std::string(32000, 'A') + "\"}\n");
}

TEST(JsonWriter, WritesAnObjectWithoutMembers) {
    std::ostringstream out;
    JsonWriter(out).end();
    EXPECT_EQ(out.str(), "{}\n");
}

}  // namespace
}  // namespace trv::cli
