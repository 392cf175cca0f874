#include <trvfiles/support/EFileIOStatus.h>

#include <gtest/gtest.h>

TEST(FileIOStatusText, DescribesEachStatus) {
    EXPECT_STREQ(fileIOStatusText(eFileIOSuccess), "success");
    EXPECT_STREQ(fileIOStatusText(eFileIOOpenError), "the file cannot be opened, read or saved");
    EXPECT_STREQ(fileIOStatusText(eFileIOShortWrite), "the file was not written to its end");
    EXPECT_STREQ(fileIOStatusText(eFileIOContentError), "the content is incomplete or malformed");
    EXPECT_STREQ(fileIOStatusText(eFileIOStructureError), "the content has the wrong structure");
}

TEST(FileIOStatusText, HasOneForEveryOtherNumber) {
    for (const int number : {0, 6, -1, 2147483647, -2147483647 - 1})
        EXPECT_STREQ(fileIOStatusText(static_cast<EFileIOStatus>(number)), "unknown status");
}
