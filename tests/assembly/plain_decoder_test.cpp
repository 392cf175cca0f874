#include <trvfiles/assembly/plain_decoder.h>

#include <QTextCodec>
#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>

namespace {

using trv::PlainDecoder;

QString decoded(const QByteArray& bytes, int pieceLength) {
    PlainDecoder decoder;
    QString text;
    for (int start = 0; start < bytes.size(); start += pieceLength)
        text += decoder.decode(bytes.mid(start, pieceLength));
    return text;
}

QString decoded(const QByteArray& bytes) {
    PlainDecoder decoder;
    return decoder.decode(bytes);
}

// The characters of a text in UTF-16, little-endian unless `bigEndian`.
QByteArray utf16(const QString& text, bool bigEndian) {
    QByteArray bytes;
    for (const QChar unit : text) {
        const auto high = static_cast<char>(unit.row());
        const auto low = static_cast<char>(unit.cell());
        bytes += bigEndian ? high : low;
        bytes += bigEndian ? low : high;
    }
    return bytes;
}

const QString text = QString::fromUtf8("<a b='\u00e4 \u20ac \U0001F600'/>");

TEST(PlainDecoder, DecodesUtf8WithAndWithoutAMark) {
    EXPECT_EQ(decoded(text.toUtf8()), text);
    EXPECT_EQ(decoded("\xEF\xBB\xBF" + text.toUtf8()), text);
    EXPECT_EQ(decoded("<?xml version='1.0' encoding='UTF-8'?>" + text.toUtf8()),
              QStringLiteral("<?xml version='1.0' encoding='UTF-8'?>") + text);
    EXPECT_EQ(decoded(QByteArray()), QString());
}

TEST(PlainDecoder, DecodesUtf16OfBothOrdersWithAndWithoutAMark) {
    for (const bool bigEndian : {false, true}) {
        const QString declared = QStringLiteral("<?xml version='1.0' encoding='utf-16'?>") + text;
        for (const QString& document : {text, declared}) {
            const QByteArray bytes = utf16(document, bigEndian);
            const QByteArray mark = utf16(QString(QChar(0xFEFF)), bigEndian);
            EXPECT_EQ(decoded(bytes), document);
            EXPECT_EQ(decoded(mark + bytes), document);
            EXPECT_EQ(decoded(mark + bytes, 5), document);
        }
    }
}

TEST(PlainDecoder, DecodesLatin1ThatIsDeclared) {
    const QByteArray start = "<?xml version=\"1.0\" encoding = \"iso-8859-1\" ?>";
    PlainDecoder decoder;
    EXPECT_EQ(decoder.decode(start + "<a b='\xFC"), QString::fromLatin1(start + "<a b='\xFC"));
    EXPECT_EQ(decoder.decode("\xC3\xBC"), QString::fromUtf8("\u00c3\u00bc"));
    EXPECT_FALSE(decoder.isUnknownEncoding());
}

TEST(PlainDecoder, DecodesNothingOfAnotherEncoding) {
    for (const QByteArray& bytes :
         {QByteArray("<?xml version='1.0' encoding='windows-1252'?><a/>"),
          QByteArray("<?xml encoding='UTF-16'?><a/>"), QByteArray("\xFF\xFE\0\0<\0\0\0", 8),
          QByteArray("\0\0\xFE\xFF\0\0\0<", 8), QByteArray("<\0\0\0a\0\0\0", 8),
          QByteArray("\0\0\0<", 4), utf16(QStringLiteral("<?xml encoding='ISO-8859-5'?>"), true)}) {
        PlainDecoder decoder;
        EXPECT_EQ(decoder.decode(bytes), QString()) << bytes.toHex().constData();
        EXPECT_TRUE(decoder.isUnknownEncoding()) << bytes.toHex().constData();
        EXPECT_EQ(decoder.decode("<a/>"), QString());
    }
}

TEST(PlainDecoder, TreatsNoOtherTextAsADeclaration) {
    for (const char* bytes :
         {"<?xml version='1.0'?><a encoding='windows-1252'/>", "<!-- encoding='x' -->",
          "<?xml encoding?>'x'", "<?xml encoding=''?><a/>", "<a encoding='x'/>", "<?xml "}) {
        EXPECT_EQ(decoded(bytes), QString::fromLatin1(bytes)) << bytes;
    }
}

TEST(PlainDecoder, KeepsAMarkWhichIsNotAtTheBeginning) {
    PlainDecoder decoder;
    EXPECT_EQ(decoder.decode("<a/>"), QStringLiteral("<a/>"));
    EXPECT_EQ(decoder.decode("\xEF\xBB\xBF"
                             "b"),
              QStringLiteral("\xFEFF"
                             "b"));
    EXPECT_EQ(decoded("\xEF\xBB\xBF\xEF\xBB\xBF"
                      "c",
                      1),
              QStringLiteral("\xFEFF"
                             "c"));
    EXPECT_EQ(decoded(utf16(QStringLiteral("\xFEFF\xFEFF"
                                           "d"),
                            true),
                      1),
              QStringLiteral("\xFEFF"
                             "d"));
}

TEST(PlainDecoder, WaitsForTheBytesThatTellTheEncoding) {
    PlainDecoder decoder;
    EXPECT_EQ(decoder.decode("<"), QString());
    EXPECT_EQ(decoder.decode(QByteArray("\0a", 2)), QString());
    EXPECT_EQ(decoder.decode(QByteArray("\0", 1)), QStringLiteral("<a"));
}

TEST(PlainDecoder, DropsAnIncompleteCharacterAtTheEnd) {
    EXPECT_EQ(decoded("<a/>\xF0\x9F\x98"), QStringLiteral("<a/>"));
    EXPECT_EQ(decoded("<a/>\xE2\x82"), QStringLiteral("<a/>"));
    EXPECT_EQ(decoded("<a/>\xC3"), QStringLiteral("<a/>"));
    EXPECT_EQ(decoded(QByteArray("<\0a\0/", 5)), QStringLiteral("<a"));
}

TEST(PlainDecoder, ReplacesAByteAtTheEndThatBeginsNoCharacter) {
    for (const char byte : {'\xC0', '\xC1', '\xF5', '\xFF'})
        EXPECT_EQ(decoded(QByteArray("<a/>") + byte), QStringLiteral("<a/>\uFFFD"));
}

// Well-formed and malformed bytes of every kind, in pieces of every length.
TEST(PlainDecoder, DecodesUtf8AsQtsCodecDoes) {
    std::mt19937 random(1);
    const char* const parts[] = {"a",        "\xC3\xA4", "\xE2\x82\xAC", "\xF0\x9F\x98\x80",
                                 "\x80",     "\xBF",     "\xC3",         "\xE2",
                                 "\xE2\x82", "\xF0\x9F", "\xF0\x9F\x98", "\xED\xA0\x80",
                                 "\xC0\x80", "\xF8",     "\xFF",         "\xEF\xBB\xBF"};
    for (int i = 0; i < 20000; ++i) {
        QByteArray bytes = "<a/>";
        for (auto count = random() % 12; count > 0; --count)
            bytes += parts[random() % std::size(parts)];
        const std::unique_ptr<QTextDecoder> codec(QTextCodec::codecForName("UTF-8")->makeDecoder());
        const QString expected = codec->toUnicode(bytes);
        for (int length = 1; length <= 5; ++length)
            ASSERT_EQ(decoded(bytes, length), expected) << bytes.toHex().constData() << length;
        ASSERT_EQ(decoded(bytes), expected) << bytes.toHex().constData();
    }
}

}  // namespace
