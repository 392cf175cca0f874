#include <trvfiles/support/CFileFault.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <type_traits>

using Kind = CFileFault::Note::Kind;

TEST(FileFault, HasKindsOfNotesWithFixedNumbersAndNames) {
    static_assert(std::is_same_v<std::underlying_type_t<Kind>, std::int32_t>);
    const struct {
        Kind kind;
        int number;
        const char* name;
    } kinds[] = {{Kind::leftOut, 0, "leftOut"},
                 {Kind::notANumber, 1, "notANumber"},
                 {Kind::notAFlag, 2, "notAFlag"},
                 {Kind::missingSection, 3, "missingSection"},
                 {Kind::notText, 4, "notText"},
                 {Kind::unknownName, 5, "unknownName"},
                 {Kind::repeated, 6, "repeated"},
                 {Kind::hiddenByFile, 7, "hiddenByFile"},
                 {Kind::missingRow, 8, "missingRow"},
                 {Kind::notAffine, 9, "notAffine"},
                 {Kind::notOrthonormal, 10, "notOrthonormal"},
                 {Kind::misplacedTags, 11, "misplacedTags"}};
    for (const auto& expected : kinds) {
        EXPECT_EQ(static_cast<int>(expected.kind), expected.number);
        EXPECT_STREQ(fileNoteKindName(expected.kind), expected.name);
    }
}

TEST(FileFault, HasNoNameForANumberThatIsNoKind) {
    EXPECT_STREQ(fileNoteKindName(static_cast<Kind>(12)), "");
    EXPECT_STREQ(fileNoteKindName(static_cast<Kind>(-1)), "");
}
