#include <trvfiles/assembly/replaced_bytes.h>

#include <QTextCodec>
#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

using trv::ReplacedBytes;

// "line:column x count" of what is found in a document that comes in pieces of so many bytes.
std::string found(const QByteArray& document, int pieceLength = 1000,
                  const char* encoding = "UTF-8") {
    const std::unique_ptr<QTextDecoder> decoder(
        QTextCodec::codecForName(encoding)->makeDecoder(QTextCodec::IgnoreHeader));
    ReplacedBytes replaced;
    for (int start = 0; start < document.size(); start += pieceLength) {
        const QByteArray piece = document.mid(start, pieceLength);
        replaced.look(piece, decoder->toUnicode(piece));
    }
    if (!replaced.isFound()) return "none";
    return std::to_string(replaced.line()) + ":" + std::to_string(replaced.column()) +
           (replaced.count() == 1 ? "" : " x " + std::to_string(replaced.count()));
}

TEST(ReplacedBytes, AreNotInText) {
    for (const char* text : {"", "<a/>", "\xC3\xBC\xE2\x82\xAC\xF0\x9F\x98\x80", "\xEF\xBF\xBD",
                             "\xEF\xBB\xBF<a/>", "\xEF\xBF\xBE\xEF\xBF\xBD"}) {
        for (const int length : {1, 2, 3, 1000})
            EXPECT_EQ(found(text, length), "none") << text << " in pieces of " << length;
    }
}

TEST(ReplacedBytes, AreFoundAtTheFirstOfThem) {
    for (const int length : {1, 2, 3, 1000}) {
        EXPECT_EQ(found("a\xFF", length), "1:2") << length;
        EXPECT_EQ(found("\xC3\xBC\n\xF0\x9F\x98\x80 \xC3(\xFF", length), "2:4 x 2") << length;
        EXPECT_EQ(found("\r\n\r\n\n\r\xFFx", length), "5:1") << length;
    }
    for (const int length : {1, 2, 3})
        EXPECT_EQ(found("\xEF\xBF\xBD\n\xEF\xBFx", length), "2:1") << length;
    // The decoder replaces both bytes if they are in one piece.
    EXPECT_EQ(found("\xEF\xBF\xBD\n\xEF\xBFx", 4), "2:1 x 2");
}

TEST(ReplacedBytes, AreFoundBesideAReplacementCharacterOfTheDocument) {
    EXPECT_EQ(found("x\xEF\xBF\xBDy\xFF"), "1:2");
    EXPECT_EQ(found("x\xFFy\xEF\xBF\xBD"), "1:2");
}

TEST(ReplacedBytes, AreCountedInAllPieces) {
    for (const int length : {1, 2, 3, 1000})
        EXPECT_EQ(found("a\xFF\xFE\n\xEF\xBF\xBD b\xFF", length), "1:2 x 3") << length;
}

TEST(ReplacedBytes, AreFoundInOtherEncodingsToo) {
    EXPECT_EQ(found("a\xFC", 1000, "ISO-8859-1"), "none");
    EXPECT_EQ(found("\xEF\xBF\xBD", 1000, "ISO-8859-1"), "none");
    EXPECT_EQ(found(QByteArray("<\0\xFD\xFF", 4), 1000, "UTF-16LE"), "none");
}

}  // namespace
