#include <tests/common/child_process.h>
#include <trvfiles/assembly/document_parser.h>
#include <trvfiles/support/CFileFault.h>
#include <trvfiles/support/platform.h>

#include <QBuffer>
#include <QDomImplementation>
#include <QTextCodec>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <memory>
#include <new>
#include <utility>

namespace {

class DocumentParser : public ::testing::Test {
protected:
    void SetUp() override {
        QDomImplementation::setInvalidDataPolicy(QDomImplementation::ReturnNullNode);
    }

    bool parse(QByteArray bytes) {
        QBuffer device(&bytes);
        device.open(QIODevice::ReadOnly);
        return parse(device);
    }

    bool parse(QIODevice& device) {
        tree = std::make_unique<trv::DomTree>();
        fault = {};
        return trv::parseDocument(device, *tree, &fault);
    }

    QString rootAttribute(const char* name) {
        return tree->document.documentElement().attribute(QString::fromLatin1(name));
    }

    std::unique_ptr<trv::DomTree> tree;
    CFileFault fault;
};

// Claims to be random-access, but cannot seek.
class OneWayBuffer : public QBuffer {
public:
    using QBuffer::QBuffer;
    bool seek(qint64) override {
        errno = EIO;
        return false;
    }
};

QByteArray nested(int elements) {
    return QByteArray("<a>").repeated(elements - 1) + "<a/>" +
           QByteArray("</a>").repeated(elements - 1);
}

int depthOf(const QDomDocument& document) {
    int depth = 0;
    for (QDomNode node = document.documentElement(); !node.isNull(); node = node.firstChild()) {
        ++depth;
    }
    return depth;
}

// A sequential device that returns its bytes in pieces of any size.
class Pipe : public QIODevice {
public:
    explicit Pipe(QByteArray bytes) : bytes_(std::move(bytes)) {}
    bool isSequential() const override { return true; }

protected:
    qint64 readData(char* data, qint64 maxLength) override {
        constexpr int piece = 1000;
        const QByteArray next =
            bytes_.mid(given_, static_cast<int>(std::min<qint64>(maxLength, piece)));
        std::copy(next.begin(), next.end(), data);
        given_ += next.size();
        return next.isEmpty() ? -1 : next.size();
    }
    qint64 writeData(const char*, qint64) override { return -1; }

private:
    const QByteArray bytes_;
    int given_ = 0;
};

const QByteArray outsideTags[] = {"<a b='1'>%</a>",
                                  "<a b='1'>c%d</a>",
                                  "<a b='1'><!--%--></a>",
                                  "<a b='1'><![CDATA[%]]></a>",
                                  "<!--%--><a b='1'/>",
                                  "<a b='1'/><!--%-->",
                                  "<a b='1'><?p %?></a>",
                                  "<?p %?><a b='1'/>",
                                  "<a b='1'/><?p %?>",
                                  "<!DOCTYPE a [<!--%-->]><a b='1'/>",
                                  "<!DOCTYPE a [<?p %?>]><a b='1'/>"};

TEST_F(DocumentParser, ReadsCharactersBeyondTheFirstPlaneWhichWouldCrashTheParser) {
    for (const char* character : {"\U0001F600", "\U00010000", "\U0001FFFE", "\U0010FFFF"}) {
        for (QByteArray bytes : outsideTags) {
            bytes.replace("%", character);
            EXPECT_TRUE(parse(bytes)) << bytes.constData();
            EXPECT_EQ(rootAttribute("b"), QStringLiteral("1"));
        }
    }
    for (const char* reference :
         {"&#x1F600;", "&#x10000;", "&#x1D800;", "&#x1FFFE;", "&#x10FFFF;", "&#x110041;"}) {
        EXPECT_TRUE(parse(QByteArray("<a b='1'>") + reference + "</a>")) << reference;
        EXPECT_EQ(rootAttribute("b"), QStringLiteral("1"));
    }
}

TEST_F(DocumentParser, ReadsReferencesToEntitiesWhoseNamesWouldCrashTheParser) {
    for (const char* name : {"\uFF76", "\u2160", "a\u00B2", "\u00B5"}) {
        EXPECT_TRUE(parse(QByteArray("<a b='1'>&") + name + ";</a>")) << name;
        EXPECT_EQ(rootAttribute("b"), QStringLiteral("1"));
    }
}

TEST_F(DocumentParser, RefusesCharactersThatXmlDoesNotAllow) {
    const struct {
        QByteArray bytes;
        const char* reason;
    } characters[] = {{QByteArray(1, '\0'), "XML does not allow the character U+0000"},
                      {"\x01", "XML does not allow the character U+0001"},
                      {"\x1F", "XML does not allow the character U+001F"},
                      {"\xEF\xBF\xBE", "XML does not allow the character U+FFFE"},
                      {"\xEF\xBF\xBF", "XML does not allow the character U+FFFF"}};
    for (const auto& [character, reason] : characters) {
        for (const QByteArray& place : outsideTags) {
            QByteArray bytes = "\n" + place;
            bytes.replace("%", character);
            EXPECT_FALSE(parse(bytes)) << bytes.toHex().constData();
            EXPECT_EQ(fault.reason, reason) << place.constData();
            EXPECT_EQ(fault.line, 2);
            EXPECT_EQ(fault.column, place.indexOf('%') + 1) << place.constData();
        }
    }
}

TEST_F(DocumentParser, RefusesReferencesToCharactersThatXmlDoesNotAllow) {
    const struct {
        const char* reference;
        const char* reason;
    } references[] = {{"&#0;", "XML does not allow the character U+0000"},
                      {"&#1;", "XML does not allow the character U+0001"},
                      {"&#xFFFE;", "XML does not allow the character U+FFFE"},
                      {"&#xD800;", "XML does not allow the character U+D800"},
                      {"&#x110000;", "XML does not allow the character U+110000"},
                      {"c&#12;", "XML does not allow the character U+000C"}};
    for (const auto& [reference, reason] : references) {
        EXPECT_FALSE(parse(QByteArray("<a>\n ") + reference + "</a>")) << reference;
        EXPECT_EQ(fault.reason, reason);
        EXPECT_EQ(fault.line, 2);
        EXPECT_EQ(fault.column, reference[0] == 'c' ? 3 : 2);
    }
}

TEST_F(DocumentParser, RefusesHalvesOfSurrogatePairs) {
    for (const QString& text :
         {QStringLiteral("<a>\xD83D</a>"), QStringLiteral("<a>\xDE00</a>"),
          QStringLiteral("<a><!--\xDE00\xD83D--></a>"), QStringLiteral("<a/>\xD83D")}) {
        QByteArray bytes("\xFF\xFE");
        for (const QChar unit : text)
            bytes += QByteArray(1, static_cast<char>(unit.cell())) + static_cast<char>(unit.row());
        EXPECT_FALSE(parse(bytes)) << text.toStdString();
    }
}

TEST_F(DocumentParser, AcceptsFormFeedsInWhiteSpaceOnly) {
    for (const char* bytes :
         {"<a b='1'>\f<c/>\v</a>", "<a b='1'>x<c/>&#12; \n</a>", "<a b='1'>x&y;\f&z;x</a>"}) {
        EXPECT_TRUE(parse(bytes)) << bytes;
        EXPECT_EQ(rootAttribute("b"), QStringLiteral("1"));
    }
    for (const char* bytes : {"<a>\fx</a>", "<a><!--\f--></a>", "<a><![CDATA[\v]]></a>",
                              "<a><?p \f?></a>", "\f<a/>", "<a/>\v"}) {
        EXPECT_FALSE(parse(bytes)) << bytes;
    }
}

TEST_F(DocumentParser, KeepsControlCharactersInAttributes) {
    ASSERT_TRUE(parse("<a b='\x01&#2;\xF0\x9F\x98\x80'/>"));
    EXPECT_EQ(rootAttribute("b"), QString::fromUtf8("\x01\x02\U0001F600"));
}

TEST_F(DocumentParser, RefusesTextOutsideTheRoot) {
    for (const char* outside : {"x", "\x01", "\xF0\x9F\x98\x80", "&#1;", "\xEF\xBF\xBF"}) {
        EXPECT_FALSE(parse(QByteArray("<a/>") + outside)) << outside;
        EXPECT_FALSE(parse(outside + QByteArray("<a/>"))) << outside;
    }
}

TEST_F(DocumentParser, RefusesWhatIsNotWellFormed) {
    for (const char* bytes :
         {"", " ", "<", "<a", "<a>", "<a></b>", "<a b></a>", "<a b=1/>", "<a b='1/>", "<a>&</a>",
          "<a>&#;</a>", "<a/><a/>", " <?xml version='1.0'?><a/>", "<a><!-- -- --></a>",
          "<a b='\xEF\xBF\xBF'/>", "<a b='\xEF\xBF\xBE'/>", "text"}) {
        EXPECT_FALSE(parse(bytes)) << bytes;
        EXPECT_FALSE(fault.reason.empty()) << bytes;
    }
}

TEST_F(DocumentParser, ReportsThePlaceOfAnError) {
    ASSERT_FALSE(parse("<a>\n  <b>\n  </c>\n</a>"));
    EXPECT_EQ(fault.line, 3);
    EXPECT_EQ(fault.reason, "tag mismatch");
    EXPECT_EQ(fault.cause, CFileFault::Cause::notWellFormed);
}

TEST_F(DocumentParser, ReadsAsManyOpenElementsAsAreAllowed) {
    EXPECT_TRUE(parse(nested(2000)));
    EXPECT_EQ(depthOf(tree->document), 2000);
    EXPECT_FALSE(parse(nested(2001)));
    EXPECT_EQ(fault.reason, "more than 2000 elements are open");
    EXPECT_EQ(fault.cause, CFileFault::Cause::tooDeep);
}

TEST_F(DocumentParser, ReadsEveryDepthAroundTheLimitOfTheCallersStack) {
    for (int depth = 195; depth < 205; ++depth) {
        EXPECT_TRUE(parse(nested(depth)));
        EXPECT_EQ(depthOf(tree->document), depth);
    }
}

TEST_F(DocumentParser, ReadsADocumentOfMaxDepthOnASmallStack) {
    constexpr std::size_t stack = std::size_t{512} << 10;
    bool parsed = false;
    trv::platform::call_on_stack(stack, [&] {
        parsed = parse(nested(2000));
        tree.reset();
    });
    EXPECT_TRUE(parsed);
}

// A deep one is freed in a way that needs little stack.
TEST_F(DocumentParser, TellsADeepDocumentFromAShallowOne) {
    EXPECT_TRUE(parse(nested(200)));
    EXPECT_FALSE(tree->isDeep);
    EXPECT_TRUE(parse(nested(201)));
    EXPECT_TRUE(tree->isDeep);
}

TEST_F(DocumentParser, ReadsADeepDocumentFromADeviceThatCannotGoBack) {
    Pipe device(nested(1000));
    device.open(QIODevice::ReadOnly);
    EXPECT_TRUE(parse(device));
    EXPECT_EQ(depthOf(tree->document), 1000);
    EXPECT_TRUE(tree->isDeep);
}

TEST_F(DocumentParser, ThrowsBadAllocForADeepDocumentWhenNoFurtherStackIsAvailable) {
    if (!trv::testing::can_fork) GTEST_SKIP() << "needs fork()";
    EXPECT_TRUE(trv::testing::passesInChild([this] {
        ASSERT_TRUE(trv::testing::forbidThreads());
        EXPECT_TRUE(parse(nested(200)));
        EXPECT_THROW(parse(nested(201)), std::bad_alloc);
    }));
}

TEST_F(DocumentParser, RefusesADeepDocumentThatCannotBeReadAgain) {
    QByteArray bytes = nested(201);
    OneWayBuffer device(&bytes);
    device.open(QIODevice::ReadOnly);
    EXPECT_FALSE(parse(device));
    EXPECT_EQ(fault.reason, "Input/output error");
    EXPECT_EQ(fault.cause, CFileFault::Cause::system);
    EXPECT_EQ(fault.systemError, EIO);
    EXPECT_EQ(fault.line, 0);
    // What follows the first block would be a document.
    bytes = QByteArray("<a>").repeated(201).leftJustified(65536, ' ') + "<a/>";
    OneWayBuffer rest(&bytes);
    rest.open(QIODevice::ReadOnly);
    EXPECT_FALSE(parse(rest));
}

TEST_F(DocumentParser, RefusesElementsBeyondCountWithoutCrashing) {
    EXPECT_FALSE(parse(QByteArray("<c n=\"/>\">").repeated(100000)));
    EXPECT_FALSE(parse(QByteArray("<a>").repeated(1000000)));
    EXPECT_FALSE(parse("<!DOCTYPE a [<!ELEMENT a " + QByteArray("(").repeated(1000000)));
}

TEST_F(DocumentParser, RefusesEntityDeclarations) {
    QByteArray bomb = "<!DOCTYPE a [<!ENTITY e \"" + QByteArray(100000, 'x') + "\">]><a b=\"";
    bomb += QByteArray("&e;").repeated(20000) + "\"/>";
    EXPECT_FALSE(parse(bomb));
    EXPECT_EQ(fault.reason, "an entity is declared");
    EXPECT_EQ(fault.cause, CFileFault::Cause::entityDeclared);
    EXPECT_EQ(fault.line, 1);
    EXPECT_FALSE(parse("<!DOCTYPE a [\n<!ENTITY % p SYSTEM \"/dev/zero\"> %p;]><a/>"));
    EXPECT_EQ(fault.line, 2);
}

TEST_F(DocumentParser, RefusesTextAfterTheRoot) {
    EXPECT_FALSE(parse("<a/><!DOCTYPE a [<!ENTITY e \"x\">]>"));
    EXPECT_EQ(fault.reason, "an entity is declared");
    EXPECT_FALSE(parse("<a/>" + nested(100000)));
}

TEST_F(DocumentParser, ReadsADocumentTypeWithoutEntities) {
    EXPECT_TRUE(parse("<!DOCTYPE a SYSTEM \"/dev/zero\" [<!ELEMENT a (b|c)*>]><a/>"));
    EXPECT_TRUE(parse("<!DOCTYPE a><a/>"));
}

TEST_F(DocumentParser, ReadsEveryUsualEncoding) {
    const QString text =
        QString::fromUtf8("<a b=\"Spannb\u00fcchse \u20ac \U0001F600\"><!--\U0001F600--></a>");
    const QString value = QString::fromUtf8("Spannb\u00fcchse \u20ac \U0001F600");
    EXPECT_TRUE(parse(text.toUtf8()));
    EXPECT_EQ(rootAttribute("b"), value);
    EXPECT_TRUE(parse("\xEF\xBB\xBF" + text.toUtf8()));
    EXPECT_EQ(rootAttribute("b"), value);
    for (const char* name : {"UTF-16", "UTF-16LE", "UTF-16BE"}) {
        EXPECT_TRUE(parse(QTextCodec::codecForName(name)->fromUnicode(text))) << name;
        EXPECT_EQ(rootAttribute("b"), value) << name;
    }
    EXPECT_TRUE(parse("<?xml version='1.0' encoding='ISO-8859-1'?><a b='\xFC'/>"));
    EXPECT_EQ(rootAttribute("b"), QString(QChar(0xFC)));
}

TEST_F(DocumentParser, CountsElementsInEveryEncoding) {
    const QString deep = QString::fromLatin1(nested(2001));
    for (const char* name : {"UTF-16", "UTF-16LE", "UTF-16BE", "UTF-32"}) {
        EXPECT_FALSE(parse(QTextCodec::codecForName(name)->fromUnicode(deep))) << name;
    }
    // "+ADw-" is "<" in UTF-7. A check of the bytes would not recognise it.
    const QByteArray disguised =
        "<?xml version='1.0' encoding='UTF-7'?>" + QByteArray("+ADw-a>").repeated(100000);
    EXPECT_FALSE(parse(disguised));
}

TEST_F(DocumentParser, ReadsAcrossItsBlocks) {
    // The end of a block is at every possible position of references and of characters of up to
    // four bytes.
    for (int shift = 65536 - 64; shift < 65536; ++shift) {
        const QByteArray start = "<a b='1'>";
        const QByteArray bytes = start + QByteArray(shift - start.size(), ' ') +
                                 "&#x1D800;\U0001F600\xE2\x82\xAC<c d='2'/></a>";
        ASSERT_TRUE(parse(bytes)) << shift;
        ASSERT_EQ(
            tree->document.documentElement().firstChildElement().attribute(QStringLiteral("d")),
            QStringLiteral("2"));
    }
}

TEST_F(DocumentParser, GivesThePlaceOfARefusalBeyondItsFirstBlock) {
    const QByteArray line = QByteArray(99, ' ') + '\n';
    EXPECT_FALSE(parse("<a>" + line.repeated(2000) + "  \x01</a>"));
    EXPECT_EQ(fault.line, 2001);
    EXPECT_EQ(fault.column, 3);
    EXPECT_FALSE(parse("<a>" + QByteArray(200000, ' ') + "&#1;</a>"));
    EXPECT_EQ(fault.line, 1);
    EXPECT_EQ(fault.column, 200004);
}

TEST_F(DocumentParser, UsesTheLastOfDoubledAttributes) {
    ASSERT_TRUE(parse("<a b='1' b='2'/>"));
    EXPECT_EQ(rootAttribute("b"), QStringLiteral("2"));
}

TEST_F(DocumentParser, NotesBytesThatAreNotText) {
    ASSERT_TRUE(parse("<a>\n <b c='x\xFFy\xFE'/></a>"));
    EXPECT_EQ(fault.reason, "");
    ASSERT_EQ(fault.notes.size(), 1u);
    EXPECT_EQ(fault.notes[0].kind, CFileFault::Note::Kind::notText);
    EXPECT_EQ(fault.notes[0].line, 2);
    EXPECT_EQ(fault.notes[0].column, 9);
    EXPECT_EQ(fault.notes[0].subject, "");
    EXPECT_EQ(fault.notes[0].count, 2);
    EXPECT_EQ(fault.notes[0].text, "bytes that are not text are read as U+FFFD, 2 times");
    ASSERT_TRUE(parse("<a b='\xEF\xBF\xBD \u20ac'/>"));
    EXPECT_TRUE(fault.notes.empty());
}

TEST_F(DocumentParser, NotesBytesThatAreNotTextOnceInADeepDocument) {
    ASSERT_TRUE(parse("<!--\xFF-->" + nested(300)));
    ASSERT_EQ(fault.notes.size(), 1u);
    EXPECT_EQ(fault.notes[0].line, 1);
    EXPECT_EQ(fault.notes[0].column, 5);
}

TEST_F(DocumentParser, NotesBytesThatAreNotTextBeforeAFault) {
    ASSERT_FALSE(parse("<a b='\xFF'>\n</b>"));
    EXPECT_EQ(fault.reason, "tag mismatch");
    EXPECT_EQ(fault.line, 2);
    ASSERT_EQ(fault.notes.size(), 1u);
    EXPECT_EQ(fault.notes[0].line, 1);
}

TEST_F(DocumentParser, ParsesTheSameWithoutAFault) {
    for (const char* bytes : {"<a b='\xFF'/>", "<a>", "<a>\x01</a>"}) {
        QByteArray text(bytes);
        const bool isAccepted = parse(text);
        QBuffer device(&text);
        device.open(QIODevice::ReadOnly);
        trv::DomTree unasked;
        EXPECT_EQ(trv::parseDocument(device, unasked), isAccepted) << bytes;
    }
}

}  // namespace
