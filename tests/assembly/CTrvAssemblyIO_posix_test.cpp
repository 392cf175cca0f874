// Failures that tests can provoke only on POSIX.

#include <tests/assembly/random_assemblies.h>
#include <tests/assembly/sample_components.h>
#include <tests/common/child_process.h>
#include <tests/common/file_bytes.h>
#include <tests/common/system.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/assembly/CTrvAssemblyIO.h>
#include <trvfiles/facade/CQvFilesIO.h>

#include <sys/stat.h>

#include <QTextCodec>
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <new>
#include <string>
#include <thread>
#include <vector>

namespace {

using trv::testing::assemblyOf;
using trv::testing::bytesOf;
using trv::testing::leaf;
using trv::testing::openDescriptors;
using trv::testing::passesInChild;

CTrvAssemblyData part() {
    return assemblyOf(leaf("part", "part.stl"));
}

TEST(AssemblyFileOnPosix, GivesAShortWriteOnAFullDevice) {
    EXPECT_EQ(CQvFilesIO::sWriteTrvAssembly(L"/dev/full", part()), eFileIOShortWrite);
}

TEST(AssemblyFileOnPosix, GivesAShortWriteIfTheDiskIsFullAtAnyByte) {
    const trv::testing::TemporaryDirectory directory;
    const std::string path = (directory / "a.xml").string();
    CQvFilesIO facade(directory.text());
    ASSERT_EQ(facade.writeTrvAssembly("a.xml", part()), eFileIOSuccess);
    const std::string whole = bytesOf(path);
    for (std::size_t maxSize = 0; maxSize <= whole.size(); ++maxSize) {
        ASSERT_TRUE(passesInChild([&] {
            ASSERT_TRUE(trv::testing::limitFileSize(maxSize));
            EXPECT_EQ(facade.writeTrvAssembly("a.xml", part()),
                      maxSize < whole.size() ? eFileIOShortWrite : eFileIOSuccess);
        })) << maxSize;
        ASSERT_EQ(bytesOf(path), whole.substr(0, maxSize));
    }
}

// A file is written in blocks of 64 KiB.
TEST(AssemblyFileOnPosix, GivesAShortWriteIfTheDiskIsFullAroundABlock) {
    const trv::testing::TemporaryDirectory directory;
    const std::string path = (directory / "a.xml").string();
    const CTrvAssemblyData large = assemblyOf(trv::testing::group(
        "g", std::vector<CTrvAssemblyComponentData>(600, leaf("part", "part.stl"))));
    CQvFilesIO facade(directory.text());
    ASSERT_EQ(facade.writeTrvAssembly("a.xml", large), eFileIOSuccess);
    const std::string whole = bytesOf(path);
    ASSERT_GT(whole.size(), 200000U);
    for (const std::size_t maxSize : {65535, 65536, 66000, 131072, 140000, 196608}) {
        ASSERT_TRUE(passesInChild([&] {
            ASSERT_TRUE(trv::testing::limitFileSize(maxSize));
            EXPECT_EQ(facade.writeTrvAssembly("a.xml", large), eFileIOShortWrite);
        })) << maxSize;
        ASSERT_TRUE(bytesOf(path) == whole.substr(0, maxSize)) << maxSize;
    }
    ASSERT_TRUE(passesInChild([&] {
        ASSERT_TRUE(trv::testing::limitFileSize(whole.size() - 1));
        EXPECT_EQ(facade.writeTrvAssembly("a.xml", large), eFileIOShortWrite);
    }));
    ASSERT_TRUE(bytesOf(path) == whole.substr(0, whole.size() - 1));
}

TEST(AssemblyFileOnPosix, GivesOpenErrorsWithoutPermission) {
    const trv::testing::TemporaryDirectory directory;
    std::filesystem::permissions(directory.path(), std::filesystem::perms::all);
    CQvFilesIO facade(directory.text());
    ASSERT_EQ(facade.writeTrvAssembly("a.xml", part()), eFileIOSuccess);
    std::filesystem::permissions(directory / "a.xml", std::filesystem::perms::none);
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(trv::testing::becomeOrdinaryUser());
        CTrvAssemblyData data;
        EXPECT_EQ(facade.readTrvAssembly("a.xml", data), eFileIOOpenError);
        EXPECT_EQ(facade.writeTrvAssembly("a.xml", part()), eFileIOOpenError);
    }));
}

TEST(AssemblyFileOnPosix, LeavesNoDescriptorOpen) {
    const trv::testing::TemporaryDirectory directory;
    CQvFilesIO facade(directory.text());
    CTrvAssemblyData data;
    facade.writeTrvAssembly("a.xml", part());
    trv::testing::writeBytes(directory / "broken.xml", "<a>");
    const std::ptrdiff_t before = openDescriptors();
    for (const char* name : {"a.xml", "broken.xml", "missing.xml", ""}) {
        facade.readTrvAssembly(name, data);
    }
    for (const char* name : {"a.xml", "missing/a.xml", "", "/dev/full"}) {
        facade.writeTrvAssembly(name, part());
    }
    facade.writeTrvAssembly("a.xml", CTrvAssemblyData());
    EXPECT_EQ(openDescriptors(), before);
}

TEST(AssemblyFileOnPosix, ReadsFromAPipe) {
    const trv::testing::TemporaryDirectory directory;
    CQvFilesIO facade(directory.text());
    const CTrvAssemblyData deep = assemblyOf(trv::testing::chain(500));
    ASSERT_EQ(facade.writeTrvAssembly("a.xml", deep), eFileIOSuccess);
    const std::string document = bytesOf(directory / "a.xml");
    ASSERT_EQ(::mkfifo((directory / "pipe").c_str(), 0600), 0);
    // Only the DOM reads a document with an instruction. A pipe cannot be read a second time.
    for (const std::string& bytes : {document, document + "<?a b?>"}) {
        std::thread writer([&] { trv::testing::writeBytes(directory / "pipe", bytes); });
        CTrvAssemblyData data;
        EXPECT_EQ(facade.readTrvAssembly("pipe", data), eFileIOSuccess);
        EXPECT_EQ(data, deep);
        writer.join();
    }
}

TEST(AssemblyFileOnPosix, ThrowsBadAllocForADeepFileWhenNoFurtherStackIsAvailable) {
    const trv::testing::TemporaryDirectory directory;
    CQvFilesIO facade(directory.text());
    ASSERT_EQ(facade.writeTrvAssembly("deep.xml", assemblyOf(trv::testing::chain(150))),
              eFileIOSuccess);
    // Only the DOM reads a document with an instruction.
    const std::string document = bytesOf(directory / "deep.xml");
    trv::testing::writeBytes(directory / "deep.xml", document + "<?a b?>");
    ASSERT_EQ(facade.writeTrvAssembly("flat.xml", part()), eFileIOSuccess);
    std::filesystem::permissions(directory.path(), std::filesystem::perms(0755));
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(trv::testing::forbidThreads());
        const std::ptrdiff_t descriptors = openDescriptors();
        CTrvAssemblyData data = part();
        EXPECT_THROW(facade.readTrvAssembly("deep.xml", data), std::bad_alloc);
        EXPECT_EQ(data, part());
        EXPECT_EQ(openDescriptors(), descriptors);
        EXPECT_EQ(facade.readTrvAssembly("flat.xml", data), eFileIOSuccess);
    }));
}

TEST(AssemblyFileOnPosix, IsNamedInUtf8WhateverCodecTheHostSets) {
    const trv::testing::TemporaryDirectory directory;
    for (const char* codec : {"ISO-8859-1", "Shift_JIS", "UTF-8"}) {
        EXPECT_TRUE(passesInChild([&] {
            QTextCodec::setCodecForLocale(QTextCodec::codecForName(codec));
            CQvFilesIO facade(directory.text());
            EXPECT_EQ(facade.writeTrvAssembly(L"Fr\u00e4se \u20ac.xml", part()), eFileIOSuccess);
            EXPECT_TRUE(std::filesystem::exists(directory / "Fr\u00e4se \u20ac.xml"));
            CTrvAssemblyData data;
            EXPECT_EQ(facade.readTrvAssembly("Fr\u00e4se \u20ac.xml", data), eFileIOSuccess);
            EXPECT_EQ(data, part());
            std::filesystem::remove(directory / "Fr\u00e4se \u20ac.xml");
            EXPECT_EQ(facade.readTrvAssembly("Fr\u00e4se \u20ac.xml", data), eFileIOOpenError);
        })) << codec;
    }
}

// Qt's serialisation orders attributes by a hash that differs from process to process.
TEST(AssemblyFileOnPosix, HasTheSameBytesInEveryProcess) {
    const trv::testing::TemporaryDirectory directory;
    trv::testing::RandomAssemblies assemblies(4);
    const CTrvAssemblyData assembly = assemblies.next();
    CQvFilesIO facade(directory.text());
    for (const char* seed : {"1", "2", "12345"}) {
        ASSERT_TRUE(passesInChild([&] {
            ASSERT_TRUE(trv::testing::setEnvironment("QT_HASH_SEED", seed));
            EXPECT_EQ(facade.writeTrvAssembly(("seed" + std::string(seed)).c_str(), assembly),
                      eFileIOSuccess);
        }));
    }
    const std::string bytes = bytesOf(directory / "seed1");
    ASSERT_FALSE(bytes.empty());
    EXPECT_EQ(bytesOf(directory / "seed2"), bytes);
    EXPECT_EQ(bytesOf(directory / "seed12345"), bytes);
}

}  // namespace
