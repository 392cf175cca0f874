#include <trvfiles/assembly/xml_characters.h>

#include <QString>
#include <gtest/gtest.h>

namespace {

using trv::isXmlCharacter;

TEST(XmlCharacters, AreThoseThatXmlAllows) {
    for (const uint code : {0x09U, 0x0AU, 0x0DU, 0x20U, 0x7FU, 0x9FU, 0xD7FFU, 0xE000U, 0xFDD0U,
                            0xFFFDU, 0x10000U, 0x1FFFEU, 0x10FFFFU}) {
        EXPECT_TRUE(isXmlCharacter(code)) << code;
    }
    for (const uint code : {0x00U, 0x08U, 0x0BU, 0x0CU, 0x0EU, 0x1FU, 0xD800U, 0xDBFFU, 0xDC00U,
                            0xDFFFU, 0xFFFEU, 0xFFFFU, 0x110000U, 0xFFFFFFFFU}) {
        EXPECT_FALSE(isXmlCharacter(code)) << code;
    }
}

TEST(XmlCharacters, AreReferredToByANumber) {
    const struct {
        QString digits;
        uint number;
    } references[] = {{QStringLiteral("0"), 0},
                      {QStringLiteral("65"), 65},
                      {QStringLiteral("x41"), 65},
                      {QStringLiteral("xfF"), 255},
                      {QStringLiteral("x0012345678"), 0x12345678},
                      {QStringLiteral("x9abcdefA"), 0x9ABCDEFA},
                      {QStringLiteral("xBCDEF"), 0xBCDEF},
                      {QStringLiteral("000000000000000000000000000009"), 9},
                      {QStringLiteral("4294967295"), 4294967295U},
                      {QStringLiteral("xFFFFFFFF"), 4294967295U}};
    for (const auto& [digits, expected] : references) {
        uint number = 1;
        EXPECT_TRUE(trv::referencedNumber(digits, number)) << digits.toStdString();
        EXPECT_EQ(number, expected) << digits.toStdString();
    }
}

TEST(XmlCharacters, AreNotReferredToByAnythingElse) {
    for (const QString& digits :
         {QString(), QStringLiteral("x"), QStringLiteral("X41"), QStringLiteral("a"),
          QStringLiteral("4a"), QStringLiteral("xg"), QStringLiteral(" 1"), QStringLiteral("1 "),
          QStringLiteral("+1"), QStringLiteral("-1"), QStringLiteral("x0x1"),
          QStringLiteral("4294967296"), QStringLiteral("x100000000"), QStringLiteral("\x0661"),
          QStringLiteral("99999999999999999999999999999999999999")}) {
        uint number = 7;
        EXPECT_FALSE(trv::referencedNumber(digits, number)) << digits.toStdString();
        EXPECT_EQ(number, 7U);
    }
}

TEST(XmlCharacters, HaveFiveNamesThatXmlDeclares) {
    for (const QString& name : {QStringLiteral("lt"), QStringLiteral("gt"), QStringLiteral("amp"),
                                QStringLiteral("quot"), QStringLiteral("apos")}) {
        EXPECT_TRUE(trv::isPredefinedEntity(name));
    }
    for (const QString& name : {QString(), QStringLiteral("LT"), QStringLiteral("l"),
                                QStringLiteral("ltx"), QStringLiteral("nbsp")}) {
        EXPECT_FALSE(trv::isPredefinedEntity(name));
    }
}

TEST(XmlCharacters, BecomePlainOnesOfTheSameUseInAName) {
    const struct {
        ushort character;
        ushort plain;
    } characters[] = {{'a', 'a'},       {'1', '1'},      {'-', '-'},    {0x7F, 0x7F},
                      {0xE9, 'x'},      {0xAA, 'x'},     {0xFF76, 'x'}, {0x2160, 'x'},
                      {0x0663, '0'},    {0x00B2, '0'},   {0x0301, '0'}, {0x20AC, 0x20AC},
                      {0x00A0, 0x00A0}, {0xD83D, 0xD83D}};
    for (const auto& [character, plain] : characters)
        EXPECT_EQ(trv::plainNameCharacter(character), plain) << character;
}

}  // namespace
