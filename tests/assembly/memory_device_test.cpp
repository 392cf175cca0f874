#include <trvfiles/assembly/memory_device.h>

#include <gtest/gtest.h>

#include <string>

using namespace std::string_literals;

TEST(MemoryDevice, ReadsTheBytesInPieces) {
    const std::string bytes = "ab\0cd"s;
    trv::MemoryDevice device(bytes);
    EXPECT_TRUE(device.isOpen());
    EXPECT_TRUE(device.isReadable());
    EXPECT_FALSE(device.isWritable());
    EXPECT_FALSE(device.isSequential());
    EXPECT_EQ(device.size(), 5);
    EXPECT_EQ(device.read(3).toStdString(), "ab\0"s);
    EXPECT_EQ(device.pos(), 3);
    EXPECT_EQ(device.read(100).toStdString(), "cd");
    EXPECT_TRUE(device.atEnd());
    EXPECT_EQ(device.read(100).size(), 0);
}

TEST(MemoryDevice, GoesBack) {
    trv::MemoryDevice device("abcd");
    EXPECT_EQ(device.read(4).size(), 4);
    EXPECT_TRUE(device.seek(1));
    EXPECT_EQ(device.read(2).toStdString(), "bc");
    EXPECT_TRUE(device.seek(4));
    EXPECT_EQ(device.read(1).size(), 0);
    EXPECT_FALSE(device.seek(5));
    EXPECT_FALSE(device.seek(-1));
}

TEST(MemoryDevice, CopiesNothingBeforeItReads) {
    std::string bytes = "before";
    trv::MemoryDevice device(bytes);
    bytes.replace(0, 6, "after!");
    EXPECT_EQ(device.read(6).toStdString(), "after!");
}

TEST(MemoryDevice, IsEmptyWithoutBytes) {
    trv::MemoryDevice device({});
    EXPECT_EQ(device.size(), 0);
    EXPECT_EQ(device.read(1).size(), 0);
}

TEST(MemoryDevice, IsNotWritten) {
    trv::MemoryDevice device("ab");
    EXPECT_EQ(device.write("x", 1), -1);
}
