#include <trvfiles/support/CFileFault.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <type_traits>

using Kind = CFileFault::Note::Kind;
using Cause = CFileFault::Cause;

TEST(FileFault, HasKindsOfNotesWithFixedNumbersAndNames) {
    static_assert(std::is_same_v<std::underlying_type_t<Kind>, std::int32_t>);
    const struct {
        Kind kind;
        int number;
        const char* name;
    } kinds[] = {{Kind::leftOut, 0, "left-out"},
                 {Kind::notANumber, 1, "not-a-number"},
                 {Kind::notAFlag, 2, "not-a-flag"},
                 {Kind::missingSection, 3, "section-missing"},
                 {Kind::notText, 4, "not-text"},
                 {Kind::unknownName, 5, "unknown-name"},
                 {Kind::repeated, 6, "element-repeated"},
                 {Kind::hiddenByFile, 7, "hidden-by-file"},
                 {Kind::missingRow, 8, "row-missing"},
                 {Kind::notAffine, 9, "not-affine"},
                 {Kind::notOrthonormal, 10, "not-orthonormal"},
                 {Kind::misplacedTags, 11, "tags-misplaced"},
                 {Kind::singular, 12, "singular"},
                 {Kind::repeatedAttribute, 13, "attribute-repeated"},
                 {Kind::ignoredText, 14, "text-ignored"},
                 {Kind::cutReference, 15, "reference-cut"}};
    for (const auto& expected : kinds) {
        EXPECT_EQ(static_cast<int>(expected.kind), expected.number);
        EXPECT_STREQ(fileNoteKindName(expected.kind), expected.name);
    }
    EXPECT_STREQ(fileNoteKindName(static_cast<Kind>(16)), "");
    EXPECT_STREQ(fileNoteKindName(static_cast<Kind>(-1)), "");
}

TEST(FileFault, HasCausesWithFixedNumbersAndNames) {
    static_assert(std::is_same_v<std::underlying_type_t<Cause>, std::int32_t>);
    const struct {
        Cause cause;
        int number;
        const char* name;
    } causes[] = {{Cause::none, 0, ""},
                  {Cause::system, 1, "system-error"},
                  {Cause::fileName, 2, "not-a-file-name"},
                  {Cause::tooLong, 3, "too-long"},
                  {Cause::noStorage, 4, "no-storage"},
                  {Cause::notWellFormed, 5, "not-well-formed"},
                  {Cause::tooDeep, 6, "too-deep"},
                  {Cause::entityDeclared, 7, "entity-declared"},
                  {Cause::invalidCharacter, 8, "character-not-allowed"},
                  {Cause::unknownEncoding, 9, "encoding-unknown"},
                  {Cause::wrongRoot, 10, "root-element-wrong"},
                  {Cause::wrongVersion, 11, "version-not-an-integer"},
                  {Cause::missingElement, 12, "element-missing"},
                  {Cause::incompleteOrientation, 13, "orientation-incomplete"},
                  {Cause::notWritable, 14, "not-writable"},
                  {Cause::missingNumbers, 15, "numbers-missing"},
                  {Cause::missingKey, 16, "key-missing"}};
    for (const auto& expected : causes) {
        EXPECT_EQ(static_cast<int>(expected.cause), expected.number);
        EXPECT_STREQ(fileFaultCauseName(expected.cause), expected.name);
    }
    EXPECT_STREQ(fileFaultCauseName(static_cast<Cause>(17)), "");
    EXPECT_STREQ(fileFaultCauseName(static_cast<Cause>(-1)), "");
}
