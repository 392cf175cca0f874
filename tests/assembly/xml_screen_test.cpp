#include <trvfiles/assembly/xml_screen.h>

#include <QString>
#include <gtest/gtest.h>

#include <string>

namespace {

using trv::XmlScreen;

QString screened(const QString& document, int deepest = 100) {
    XmlScreen screen(deepest);
    const QString passed = screen.pass(document);
    return passed + screen.rest();
}

QString screened(const char* document) {
    return screened(QString::fromUtf8(document));
}

XmlScreen::Refusal refusalOf(const QString& document, int deepest = 100) {
    XmlScreen screen(deepest);
    screen.pass(document);
    return screen.refusal();
}

XmlScreen::Refusal refusalOf(const char* document, int deepest = 100) {
    return refusalOf(QString::fromUtf8(document), deepest);
}

constexpr auto none = XmlScreen::Refusal::none;
constexpr auto tooDeep = XmlScreen::Refusal::tooDeep;
constexpr auto entityDeclaration = XmlScreen::Refusal::entityDeclaration;

// Every character that the parser cannot bear in a text, and one beyond U+FFFF.
QString unbearable() {
    QString characters(QChar(0));
    for (ushort code = 1; code < 0x20; ++code) {
        if (code != '\t' && code != '\n' && code != '\r') characters += QChar(code);
    }
    return characters + QChar(0xD800) + QChar(0xDFFF) + QChar(0xFFFE) + QChar(0xFFFF) +
           QString::fromUtf8("\U0001F600");
}

QString exclamations(int count) {
    return QString(count, QLatin1Char('!'));
}

TEST(XmlScreen, PassesAnOrdinaryDocumentAsItIs) {
    const QString document = QString::fromUtf8(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"  ?>\n<a b=\"1 &lt; &#2; 'x' >\" c='\"'>\r\n"
        "\t<!-- é - € --><![CDATA[ ] ]] > ]]><?p d ? ?>&amp;&#65;&#x20AC;\n</a>\n");
    EXPECT_EQ(screened(document), document);
}

TEST(XmlScreen, ReplacesWhatTheParserCannotBearOutsideTags) {
    const QString bad = unbearable();
    const struct {
        const char* before;
        const char* after;
    } places[] = {{"<a>", "</a>"},
                  {"<a><!--", "--></a>"},
                  {"<a><![CDATA[", "]]></a>"},
                  {"<a><?p ", "?></a>"},
                  {"<!DOCTYPE a [<!--", "-->]><a/>"},
                  {"<!DOCTYPE a [<?p ", "?>]><a/>"},
                  {"<a/>", ""}};
    for (const auto& place : places) {
        const QString before = QString::fromUtf8(place.before);
        const QString after = QString::fromUtf8(place.after);
        EXPECT_EQ(screened(before + bad + after), before + exclamations(bad.size()) + after)
            << place.before;
    }
}

TEST(XmlScreen, LeavesAttributesUntouched) {
    const QString document = QStringLiteral("<a b=\"") + unbearable() + QStringLiteral("&#1;\"/>");
    EXPECT_EQ(screened(document), document);
}

TEST(XmlScreen, KeepsTabsAndLineEnds) {
    EXPECT_EQ(screened("<a>\t\n\r\r\n</a>"), QStringLiteral("<a>\t\n\r\r\n</a>"));
}

TEST(XmlScreen, ReplacesReferencesToWhatTheParserCannotBear) {
    for (const char* reference :
         {"&#0;", "&#1;", "&#31;", "&#x1F;", "&#xFFFE;", "&#xFFFF;", "&#xD800;", "&#xDFFF;",
          "&#65534;", "&#x1D800;", "&#x10FFFF;", "&#00000000000000001;"}) {
        const QString text = QString::fromLatin1(reference);
        EXPECT_EQ(screened(QStringLiteral("<a>%1</a>").arg(text)),
                  QStringLiteral("<a>%1</a>").arg(exclamations(text.size())))
            << reference;
    }
}

TEST(XmlScreen, LeavesOtherReferencesAsTheyAre) {
    for (const char* reference :
         {"&#9;", "&#10;", "&#13;", "&#32;", "&#xD7FF;", "&#xE000;", "&#xFFFD;", "&#x1F600;",
          "&lt;", "&unknown;", "&#;", "&#x;", "&#xZ;", "&;", "& ;", "&#99999999999;"}) {
        const QString document = QStringLiteral("<a>%1</a>").arg(QString::fromLatin1(reference));
        EXPECT_EQ(screened(document), document) << reference;
    }
}

TEST(XmlScreen, MakesNamesOfUndeclaredEntitiesPlain) {
    // A letter becomes a letter, a digit or a mark a digit; what is part of no name stays.
    EXPECT_EQ(screened("<a>&é;&xé٣\u0301;&\uff76;&\u2160;&x€;</a>"),
              QString::fromUtf8("<a>&x;&xx00;&x;&x;&x€;</a>"));
}

TEST(XmlScreen, LeavesReferencesInCommentsAndSectionsAsTheyAre) {
    const QString document = QStringLiteral("<a><!--&#1;--><![CDATA[&#1;]]><?p &#1;?></a>");
    EXPECT_EQ(screened(document), document);
}

TEST(XmlScreen, PassesTheSameInWhateverPiecesTheDocumentComes) {
    const QString document = QString::fromUtf8(
        "<?xml version='1.0'?><!DOCTYPE a SYSTEM 'x>' [<!--\x01--><!ELEMENT a (b,c)>]>"
        "<a b='\x01>'>&#1;&é;<!--\x01---><![CDATA[\x01]]]>\x01<?p \x01?>&#xFFFE;</a>&");
    const QString whole = screened(document);
    ASSERT_NE(whole, document);
    for (int first = 0; first <= document.size(); ++first) {
        for (int second = first; second <= document.size(); ++second) {
            XmlScreen screen(100);
            QString passed = screen.pass(document.left(first));
            passed += screen.pass(document.mid(first, second - first));
            passed += screen.pass(document.mid(second));
            passed += screen.rest();
            ASSERT_EQ(passed, whole) << "cut at " << first << " and " << second;
        }
    }
}

TEST(XmlScreen, HoldsAReferenceBackUntilItIsWhole) {
    XmlScreen screen(100);
    EXPECT_EQ(screen.pass(QStringLiteral("<a>text&#")), QStringLiteral("<a>text"));
    EXPECT_EQ(screen.pass(QStringLiteral("000")), QString());
    EXPECT_EQ(screen.pass(QStringLiteral("1;<")), QStringLiteral("!!!!!!!<"));
    EXPECT_EQ(screen.rest(), QString());
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
}

TEST(XmlScreen, CountsAnEmptyElementWhileItIsOpen) {
    EXPECT_EQ(refusalOf("<a><b/></a>", 1), tooDeep);
}

TEST(XmlScreen, IsNotDeceivedByAttributeValues) {
    EXPECT_EQ(refusalOf(QStringLiteral("<c n=\"/>\">").repeated(5), 4), tooDeep);
    EXPECT_EQ(refusalOf(QStringLiteral("<c n='/>'>").repeated(5), 4), tooDeep);
    EXPECT_EQ(refusalOf(QStringLiteral("<c n='</c>' m=\"'/\">").repeated(5), 4), tooDeep);
    EXPECT_EQ(refusalOf(QStringLiteral("<c n=\"</c>\"/>").repeated(500), 1), none);
}

TEST(XmlScreen, DoesNotCountTagsThatAreNone) {
    EXPECT_EQ(refusalOf("<a><!-- <b><b> --><![CDATA[<b><b>]]><?p <b><b>?></a>", 1), none);
    EXPECT_EQ(refusalOf("<!DOCTYPE a [<!-- <b> --><?p <b>?>]><a/>", 1), none);
}

TEST(XmlScreen, CountsOnBehindEveryKindOfMarkup) {
    for (const char* markup : {"<!-- - -- -->", "<!---->", "<![CDATA[]]]]>", "<![CDATA[>]>]]>",
                               "<?p?>", "<?p ? > ?\?>", "<b c='>'/>", "&lt;", "text"}) {
        const QString document = QStringLiteral("<a>%1<b><c>").arg(QString::fromLatin1(markup));
        EXPECT_EQ(refusalOf(document, 2), tooDeep) << markup;
        EXPECT_EQ(refusalOf(document, 3), none) << markup;
    }
    for (const char* prolog :
         {"<!DOCTYPE a>", "<!DOCTYPE a SYSTEM '>'>", "<!DOCTYPE a PUBLIC \"it's\" \"[\">",
          "<!DOCTYPE a []>", "<!DOCTYPE a [ ] >", "<!DOCTYPE a [<!ELEMENT a ] ANY>]>",
          "<!DOCTYPE a [ > ]>", "<!DOCTYPE a [<!ELEMENT a (b|c)*><!ATTLIST a b CDATA \"]>'\">%p;]>",
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

TEST(XmlScreen, TakesEntityDeclarationsThatAreNoneForWhatTheyAre) {
    EXPECT_EQ(refusalOf("<!DOCTYPE a [<!-- <!ENTITY e 'x'> --><?p <!ENTITY ?>]><a/>"), none);
    EXPECT_EQ(refusalOf("<!DOCTYPE a SYSTEM '<!ENTITY' [<!ATTLIST a b CDATA '<!ENTITY'>]><a/>"),
              none);
    EXPECT_EQ(refusalOf("<a b='<!ENTITY'><!-- <!ENTITY --><![CDATA[<!ENTITY]]></a>"), none);
}

TEST(XmlScreen, LetsNothingThroughBehindARefusal) {
    XmlScreen deep(1);
    EXPECT_EQ(deep.pass(QStringLiteral("<a>text<b>more")), QStringLiteral("<a>text<"));
    XmlScreen entity(100);
    EXPECT_EQ(entity.pass(QStringLiteral("<!DOCTYPE a [<!ENTITY e 'x'>]>")),
              QStringLiteral("<!DOCTYPE a [<!ENTIT"));
}

}  // namespace
