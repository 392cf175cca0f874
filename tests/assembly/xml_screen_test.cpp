#include <trvfiles/assembly/xml_screen.h>

#include <QString>
#include <QStringList>
#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace {

using trv::XmlScreen;

QString passedInPieces(const QStringList& pieces, XmlScreen& screen) {
    QString passed;
    for (const QString& piece : pieces) {
        if (screen.refusal() == XmlScreen::Refusal::none) passed += screen.pass(piece);
    }
    if (screen.refusal() == XmlScreen::Refusal::none) passed += screen.rest();
    return passed;
}

QString screened(const QString& document, int maxDepth = 100) {
    XmlScreen screen(maxDepth);
    return passedInPieces({document}, screen);
}

QString screened(const char* document) {
    return screened(QString::fromUtf8(document));
}

XmlScreen::Refusal refusalOf(const QString& document, int maxDepth = 100) {
    XmlScreen screen(maxDepth);
    screen.pass(document);
    return screen.refusal();
}

XmlScreen::Refusal refusalOf(const char* document, int maxDepth = 100) {
    return refusalOf(QString::fromUtf8(document), maxDepth);
}

constexpr auto none = XmlScreen::Refusal::none;
constexpr auto tooDeep = XmlScreen::Refusal::tooDeep;
constexpr auto entityDeclaration = XmlScreen::Refusal::entityDeclaration;

constexpr auto character = XmlScreen::Refusal::character;

struct Surroundings {
    const char* before;
    const char* after;
};

constexpr Surroundings outsideTags[] = {{"<a>", "</a>"},
                                        {"<a>b", "c</a>"},
                                        {"<a><!--", "--></a>"},
                                        {"<a><!--b-", "c--></a>"},
                                        {"<a><![CDATA[", "]]></a>"},
                                        {"<a><?p ", "?></a>"},
                                        {"<?p ", "?><a/>"},
                                        {"<!--", "--><a/>"},
                                        {"<!DOCTYPE a [<!--", "-->]><a/>"},
                                        {"<!DOCTYPE a [<?p ", "?>]><a/>"},
                                        {"<a/>", ""},
                                        {"<a/><!--", "-->"}};

// The part that the parser gets of a document that is rejected for a character.
struct Refused {
    uint code = 0;
    qint64 line = 0;
    qint64 column = 0;
    QString passed;
};

Refused refused(const QString& document) {
    XmlScreen screen(100);
    QString passed = screen.pass(document);
    if (screen.refusal() != character) return {};
    return {screen.refusedCharacter(), screen.refusedAt().line, screen.refusedAt().column,
            std::move(passed)};
}

Refused refused(const char* document) {
    return refused(QString::fromUtf8(document));
}

void expectRefusedAt(const char* document, uint code, qint64 line, qint64 column) {
    const Refused outcome = refused(document);
    EXPECT_EQ(outcome.code, code) << document;
    EXPECT_EQ(outcome.line, line) << document;
    EXPECT_EQ(outcome.column, column) << document;
}

TEST(XmlScreen, PassesAnOrdinaryDocumentAsItIs) {
    const QString document = QString::fromUtf8(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"  ?>\n<a b=\"1 &lt; &#2; 'x' >\" c='\"'>\r\n"
        "\t<!-- é - € --><![CDATA[ ] ]] > ]]><?p d ? ?>&amp;&#65;&#x20AC;\n</a>\n");
    EXPECT_EQ(screened(document), document);
}

TEST(XmlScreen, ReplacesCharactersBeyondTheFirstPlaneOutsideTags) {
    for (const Surroundings& place : outsideTags) {
        const QString before = QString::fromUtf8(place.before);
        const QString after = QString::fromUtf8(place.after);
        EXPECT_EQ(screened(before + QString::fromUtf8("\U0001F600\U00010000x\U0010FFFF") + after),
                  before + QStringLiteral("!!!!x!!") + after)
            << place.before;
    }
}

TEST(XmlScreen, RefusesWhatXmlDoesNotAllowOutsideTags) {
    for (const Surroundings& place : outsideTags) {
        const QString before = QString::fromUtf8(place.before);
        const QString after = QString::fromUtf8(place.after);
        for (const uint code : {0x0000, 0x0001, 0x0008, 0x000E, 0x001F, 0xD800, 0xDBFF, 0xDC00,
                                0xDFFF, 0xFFFE, 0xFFFF}) {
            const Refused outcome = refused(before + QChar(code) + QLatin1Char('x') + after);
            EXPECT_EQ(outcome.code, code) << place.before;
            EXPECT_EQ(outcome.passed, before) << place.before << code;
            EXPECT_EQ(outcome.line, 1) << place.before << code;
            EXPECT_EQ(outcome.column, before.size() + 1) << place.before << code;
        }
        for (const uint code :
             {0x09, 0x0A, 0x0D, 0x20, 0x7F, 0x85, 0xD7FF, 0xE000, 0xFDD0, 0xFFFD}) {
            const QString document = before + QChar(code) + after;
            EXPECT_EQ(screened(document), document) << place.before << code;
            EXPECT_EQ(refusalOf(document), none) << place.before << code;
        }
    }
}

TEST(XmlScreen, RefusesHalvesOfPairs) {
    const QString high(QChar(0xD83D));
    const QString low(QChar(0xDE00));
    const QString start = QStringLiteral("<a>");
    for (const QString& rest :
         {high + QStringLiteral("</a>"), high + high + low, high + QLatin1Char('&')}) {
        EXPECT_EQ(refused(start + rest).code, 0xD83DU);
        EXPECT_EQ(refused(start + rest).passed, start);
        EXPECT_EQ(refused(start + rest).column, 4);
    }
    EXPECT_EQ(refused(start + high + low + low).code, 0xDE00U);
    EXPECT_EQ(refused(start + high + low + low).passed, QStringLiteral("<a>!!"));
    EXPECT_EQ(refused(start + high + low + low).column, 6);
    EXPECT_EQ(refused(QStringLiteral("<!--") + high + QStringLiteral("-->")).code, 0xD83DU);
}

TEST(XmlScreen, AcceptsFormFeedsAndVerticalTabsInWhiteSpaceOnly) {
    for (const char* document :
         {"<a>\f</a>", "<a>\v</a>", "<a> \n\f\v\t<b/> \f\u00A0\u2003</a>", "<a>x<b/>\f<b/>x</a>",
          "<a>x<!--c-->\f<?p?>\v<![CDATA[x]]>\f</a>", "<a>x&b;\f&c;x</a>", "<a>&#11;&#xC;</a>",
          "<a>x</a>\f", "\f<a/>", "<a>&#32; \f&#9;</a>"}) {
        EXPECT_EQ(screened(document), QString::fromUtf8(document));
        EXPECT_EQ(refusalOf(document), none) << document;
    }
}

TEST(XmlScreen, RefusesFormFeedsAndVerticalTabsBesideText) {
    expectRefusedAt("<a>x\f</a>", 0x0C, 1, 5);
    expectRefusedAt("<a>\fx</a>", 0x0C, 1, 4);
    expectRefusedAt("<a>\n \v \n \f x</a>", 0x0C, 2, 2);
    expectRefusedAt("<a>\f&lt;</a>", 0x0C, 1, 4);
    expectRefusedAt("<a>&amp;\v</a>", 0x0B, 1, 9);
    expectRefusedAt("<a>\f&#65;</a>", 0x0C, 1, 4);
    expectRefusedAt("<a>x&#12;</a>", 0x0C, 1, 5);
    expectRefusedAt("<a>&#11; x</a>", 0x0B, 1, 4);
    expectRefusedAt("<a>\f\U0001F600</a>", 0x0C, 1, 4);
    expectRefusedAt("<a>\U0001F600\f</a>", 0x0C, 1, 6);
    expectRefusedAt("<a>\f&#x10000;</a>", 0x0C, 1, 4);
    expectRefusedAt("<a><!--\f--></a>", 0x0C, 1, 8);
    expectRefusedAt("<a><![CDATA[\v]]></a>", 0x0B, 1, 13);
    expectRefusedAt("<a><?p \f?></a>", 0x0C, 1, 8);
}

TEST(XmlScreen, GivesThePlaceAsAnEditorCountsIt) {
    expectRefusedAt("\x01", 1, 1, 1);
    expectRefusedAt("<a>\n\n \x01", 1, 3, 2);
    expectRefusedAt("<a>\r\n\r\n \x01", 1, 3, 2);
    expectRefusedAt("<a>\r\r \x01", 1, 3, 2);
    expectRefusedAt("<a>\n\r\n\r\r\nb\x01", 1, 5, 2);
    expectRefusedAt("<a>\rb\nc\x01", 1, 3, 2);
    expectRefusedAt("<a b='\n\n'>\xC3\xBC\U0001F600&#1;", 1, 3, 6);
    XmlScreen deep(1);
    deep.pass(QStringLiteral("<a>\n<b>"));
    EXPECT_EQ(deep.refusedAt().line, 2);
    EXPECT_EQ(deep.refusedAt().column, 2);
}

TEST(XmlScreen, DoesNotChangeAttributes) {
    const QString document = QStringLiteral("<a b=\"") + QChar(0) + QChar(1) + QChar(0xD800) +
                             QChar(0xFFFE) + QChar(0xFFFF) + QString::fromUtf8("\U0001F600\f") +
                             QStringLiteral("&#1;&#xFFFE;&#x10000;\"/>");
    EXPECT_EQ(screened(document), document);
    EXPECT_EQ(refusalOf(document), none);
}

TEST(XmlScreen, DoesNotChangeTheLiteralsOfADocumentType) {
    const QString document = QString::fromUtf8(
        "<!DOCTYPE a SYSTEM '\x01\U0001F600' [<!ATTLIST a b CDATA '\x01&#1;\U0001F600'>]><a/>");
    EXPECT_EQ(screened(document), document);
    EXPECT_EQ(refusalOf(document), none);
}

TEST(XmlScreen, KeepsTabsAndLineEnds) {
    EXPECT_EQ(screened("<a>\t\n\r\r\n</a>"), QStringLiteral("<a>\t\n\r\r\n</a>"));
}

TEST(XmlScreen, RefusesReferencesToWhatXmlDoesNotAllow) {
    const struct {
        const char* reference;
        uint code;
    } references[] = {{"&#0;", 0},
                      {"&#x0;", 0},
                      {"&#1;", 1},
                      {"&#31;", 0x1F},
                      {"&#x1f;", 0x1F},
                      {"&#xFFFE;", 0xFFFE},
                      {"&#xFFFF;", 0xFFFF},
                      {"&#65534;", 0xFFFE},
                      {"&#xD800;", 0xD800},
                      {"&#xDFFF;", 0xDFFF},
                      {"&#55296;", 0xD800},
                      {"&#00000000000000001;", 1},
                      {"&#x110000;", 0x110000},
                      {"&#1114112;", 0x110000},
                      {"&#x1FFFFE;", 0x1FFFFE},
                      {"&#4294967295;", 0xFFFFFFFF}};
    for (const auto& [reference, code] : references) {
        for (const char* before : {"<a>", "<a>b", "<a/>", ""}) {
            const QString start = QString::fromLatin1(before);
            const Refused outcome = refused(start + QLatin1String(reference));
            EXPECT_EQ(outcome.code, code) << reference;
            EXPECT_EQ(outcome.passed, start) << reference;
            EXPECT_EQ(outcome.column, start.size() + 1) << reference;
        }
    }
}

TEST(XmlScreen, ReplacesReferencesToCharactersWhoseLowerHalfTheParserCannotHold) {
    for (const char* reference : {"&#x10000;", "&#65536;", "&#x1D800;", "&#x1DFFF;", "&#x1FFFE;",
                                  "&#x10FFFF;", "&#1114111;", "&#x1000B;"}) {
        const QString text = QString::fromLatin1(reference);
        const QString document = QStringLiteral("<a>%1</a>").arg(text);
        EXPECT_EQ(screened(document),
                  QStringLiteral("<a>%1</a>").arg(QString(text.size(), QLatin1Char('!'))));
        EXPECT_EQ(refusalOf(document), none) << reference;
    }
}

TEST(XmlScreen, LeavesOtherReferencesAsTheyAre) {
    for (const char* reference : {"&#9;",         "&#10;",       "&#13;",          "&#32;",
                                  "&#xD7FF;",     "&#xE000;",    "&#xFFFD;",       "&#x1F600;",
                                  "&#x110041;",   "&#x1000041;", "&lt;",           "&unknown;",
                                  "&#;",          "&#x;",        "&#xZ;",          "&#X1;",
                                  "&#+1;",        "&# 1;",       "&#-1;",          "&#1a;",
                                  "&;",           "& ;",         "&#99999999999;", "&#4294967296;",
                                  "&#x100000001;"}) {
        const QString document = QStringLiteral("<a>%1</a>").arg(QString::fromLatin1(reference));
        EXPECT_EQ(screened(document), document) << reference;
        EXPECT_EQ(refusalOf(document), none) << reference;
    }
}

TEST(XmlScreen, MakesNamesOfUndeclaredEntitiesPlain) {
    // A letter becomes a letter. A digit or a mark becomes a digit. Other characters, which no name
    // contains, do not change.
    EXPECT_EQ(screened("<a>&é;&xé٣\u0301;&\uff76;&\u2160;&x€;</a>"),
              QString::fromUtf8("<a>&x;&xx00;&x;&x;&x€;</a>"));
}

TEST(XmlScreen, LeavesReferencesInCommentsAndSectionsAsTheyAre) {
    const QString document = QStringLiteral("<a><!--&#1;--><![CDATA[&#1;]]><?p &#1;?></a>");
    EXPECT_EQ(screened(document), document);
}

TEST(XmlScreen, PassesTheSameInWhateverPiecesTheDocumentComes) {
    const QString start = QString::fromUtf8(
        "<?xml version='1.0'?><!DOCTYPE a SYSTEM 'x>' [<!--\U0001F600--><!ELEMENT a (b,c)>]>\r\n"
        "<a b='\x01>'>&#x10000;\r&é;<!--\U0001F600---><![CDATA[\U0001F600]]]>\n\f \r\n<?p "
        "\U0001F600?>&");
    for (const char* end :
         {"#x1D800;\U0001F600</a>&", "#1;</a>", "lt;\r\n\x01</a>", "b;\f<b/>\r\n&#x20;\f x</a>"}) {
        const QString document = start + QString::fromUtf8(end);
        XmlScreen atOnce(100);
        const QString whole = passedInPieces({document}, atOnce);
        ASSERT_FALSE(document.startsWith(whole));
        for (int first = 0; first <= document.size(); ++first) {
            for (int second = first; second <= document.size(); ++second) {
                XmlScreen screen(100);
                const QString passed =
                    passedInPieces({document.left(first), document.mid(first, second - first),
                                    document.mid(second)},
                                   screen);
                const bool isSame = passed == whole && screen.refusal() == atOnce.refusal() &&
                                    screen.refusedAt().line == atOnce.refusedAt().line &&
                                    screen.refusedAt().column == atOnce.refusedAt().column &&
                                    screen.refusedCharacter() == atOnce.refusedCharacter();
                ASSERT_TRUE(isSame) << end << " cut at " << first << " and " << second;
            }
        }
    }
}

TEST(XmlScreen, HoldsAReferenceBackUntilItIsComplete) {
    XmlScreen screen(100);
    EXPECT_EQ(screen.pass(QStringLiteral("<a>text&#x1")), QStringLiteral("<a>text"));
    EXPECT_EQ(screen.pass(QStringLiteral("000")), QString());
    EXPECT_EQ(screen.pass(QStringLiteral("0;<")), QStringLiteral("!!!!!!!!!<"));
    EXPECT_EQ(screen.rest(), QString());
}

TEST(XmlScreen, HoldsASurrogateBackUntilItsPairIsThere) {
    XmlScreen screen(100);
    EXPECT_EQ(screen.pass(QStringLiteral("<a>\xD83D")), QStringLiteral("<a>"));
    EXPECT_EQ(screen.pass(QStringLiteral("\xDE00")), QStringLiteral("!!"));
    EXPECT_EQ(screen.pass(QStringLiteral("b\xD83D")), QStringLiteral("b"));
    EXPECT_EQ(screen.rest(), QStringLiteral("\xD83D"));
}

TEST(XmlScreen, GivesTheHeldBackEndOut) {
    XmlScreen screen(100);
    EXPECT_EQ(screen.pass(QStringLiteral("<a>&am")), QStringLiteral("<a>"));
    EXPECT_EQ(screen.rest(), QStringLiteral("&am"));
}

TEST(XmlScreen, CountsOpenElements) {
    EXPECT_EQ(refusalOf("<a><b><c></c></b></a>", 3), none);
    EXPECT_EQ(refusalOf("<a><b><c></c></b></a>", 2), tooDeep);
    EXPECT_EQ(refusalOf("<a><b/><b/><b/><b></b><b/></a>", 2), none);
    EXPECT_EQ(refusalOf("<a><b></b><b><c/></b></a>", 2), tooDeep);
    EXPECT_EQ(refusalOf("<a>", 1), none);
    EXPECT_EQ(refusalOf("<a/>", 0), tooDeep);
    EXPECT_EQ(refusalOf("</a></a><a><b>", 1), tooDeep);
}

TEST(XmlScreen, CountsAnEmptyElementWhileItIsOpen) {
    EXPECT_EQ(refusalOf("<a><b/></a>", 1), tooDeep);
}

TEST(XmlScreen, IgnoresMarkupInAttributeValues) {
    EXPECT_EQ(refusalOf(QStringLiteral("<c n=\"/>\">").repeated(5), 4), tooDeep);
    EXPECT_EQ(refusalOf(QStringLiteral("<c n='/>'>").repeated(5), 4), tooDeep);
    EXPECT_EQ(refusalOf(QStringLiteral("<c n='</c>' m=\"'/\">").repeated(5), 4), tooDeep);
    EXPECT_EQ(refusalOf(QStringLiteral("<c n=\"</c>\"/>").repeated(500), 1), none);
}

TEST(XmlScreen, DoesNotCountTextThatOnlyLooksLikeATag) {
    EXPECT_EQ(refusalOf("<a><!-- <b><b> --><![CDATA[<b><b>]]><?p <b><b>?></a>", 1), none);
    EXPECT_EQ(refusalOf("<!DOCTYPE a [<!-- <b> --><?p <b>?>]><a/>", 1), none);
}

TEST(XmlScreen, ContinuesToCountAfterEveryKindOfMarkup) {
    for (const char* markup : {"<!-- - -- -->", "<!---->", "<![CDATA[]]]]>", "<![CDATA[>]>]]>",
                               "<?p?>", "<?p ? > ?\?>", "<b c='>'/>", "&lt;", "text"}) {
        const QString document = QStringLiteral("<a>%1<b><c>").arg(QString::fromLatin1(markup));
        EXPECT_EQ(refusalOf(document, 2), tooDeep) << markup;
        EXPECT_EQ(refusalOf(document, 3), none) << markup;
    }
    for (const char* prolog :
         {"<!DOCTYPE a>", "<!DOCTYPE a SYSTEM '>'>", "<!DOCTYPE a PUBLIC \"it's\" \"[\">",
          "<!DOCTYPE a []>", "<!DOCTYPE a [ ] >", "<!DOCTYPE a [<!ELEMENT a ] ANY>]>",
          "<!DOCTYPE a [ > ]>", "<!DOCTYPE a [<!ELEMENT a ] ANY> > ]>",
          "<!DOCTYPE a [<!ELEMENT a (b|c)*><!ATTLIST a b CDATA \"]>'\">%p;]>",
          "<!DOCTYPE a [<!NOTATION n PUBLIC \"it's\"><!-- ' \" ]> --><?p ' ]> ?>]>"}) {
        const QString document = QString::fromLatin1(prolog) + QStringLiteral("<a><b><c>");
        EXPECT_EQ(refusalOf(document, 2), tooDeep) << prolog;
        EXPECT_EQ(refusalOf(document, 3), none) << prolog;
    }
}

TEST(XmlScreen, RefusesGroupsThatNestTooDeeply) {
    const QString groups = QStringLiteral("<!DOCTYPE a [<!ELEMENT a %1b%2>]><a/>");
    const auto nested = [&](int count) {
        return groups.arg(QString(count, QLatin1Char('(')), QString(count, QLatin1Char(')')));
    };
    EXPECT_EQ(refusalOf(nested(100)), none);
    EXPECT_EQ(refusalOf(nested(101)), tooDeep);
}

TEST(XmlScreen, RefusesEntityDeclarations) {
    EXPECT_EQ(refusalOf("<!DOCTYPE a [<!ENTITY e 'x'>]><a/>"), entityDeclaration);
    EXPECT_EQ(refusalOf("<!DOCTYPE a SYSTEM 'x' [ <!ELEMENT a ANY>\n<!ENTITY % p 'x'>]><a/>"),
              entityDeclaration);
    EXPECT_EQ(refusalOf("<!DOCTYPE a [<!-- --><?p?><!ENTITY e SYSTEM 'x'>]><a/>"),
              entityDeclaration);
}

TEST(XmlScreen, AcceptsTextThatOnlyLooksLikeAnEntityDeclaration) {
    EXPECT_EQ(refusalOf("<!DOCTYPE a [<!-- <!ENTITY e 'x'> --><?p <!ENTITY ?>]><a/>"), none);
    EXPECT_EQ(refusalOf("<!DOCTYPE a SYSTEM '<!ENTITY' [<!ATTLIST a b CDATA '<!ENTITY'>]><a/>"),
              none);
    EXPECT_EQ(refusalOf("<a b='<!ENTITY'><!-- <!ENTITY --><![CDATA[<!ENTITY]]></a>"), none);
}

TEST(XmlScreen, PassesNothingAfterARefusal) {
    XmlScreen deep(1);
    EXPECT_EQ(deep.pass(QStringLiteral("<a>text<b>more")), QStringLiteral("<a>text<"));
    XmlScreen entity(100);
    EXPECT_EQ(entity.pass(QStringLiteral("<!DOCTYPE a [<!ENTITY e 'x'>]>")),
              QStringLiteral("<!DOCTYPE a [<!ENTIT"));
}

// The start tags of a document that comes in pieces of so many characters, with their ends.
std::string tagsOf(const QString& document, int pieceLength) {
    std::string tags;
    XmlScreen screen(100, [&](const QString& tag, XmlScreen::Position end) {
        tags += tag.toStdString() + '@' + std::to_string(end.line) + ':' +
                std::to_string(end.column) + ' ';
    });
    for (int start = 0; start < document.size(); start += pieceLength)
        screen.pass(document.mid(start, pieceLength));
    return tags;
}

TEST(XmlScreen, ShowsEachStartTagWithItsEnd) {
    const QString document = QStringLiteral(
        "<?x <p>?><!DOCTYPE a [<!ELEMENT a ANY>]><a>\n<!-- <c> --><b x='>'\ny=\"/>\"/>"
        "<![CDATA[<d>]]></b></a>");
    for (const int length : {1, 2, 7, 1000}) {
        EXPECT_EQ(tagsOf(document, length), "<a>@1:43 <b x='>'\ny=\"/>\"/>@3:7 ") << length;
    }
}

}  // namespace
