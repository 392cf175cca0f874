#include <tests/common/child_process.h>
#include <tests/common/current_directory.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/support/CFileFault.h>
#include <trvfiles/text/open_file.h>

#include <QDir>
#include <QFile>
#include <QString>
#include <QStringList>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <string>

namespace fs = std::filesystem;
using namespace std::string_literals;
using namespace trv::testing;
using trv::isReadable;
using trv::isRegularFile;
using trv::openForRead;
using trv::openForWrite;
using trv::platform::file_handle;
using trv::platform::file_mode;

// The function that the resource compiler calls. No header of Qt declares it.
bool qRegisterResourceData(int version, const unsigned char* tree, const unsigned char* names,
                           const unsigned char* data);
bool qUnregisterResourceData(int version, const unsigned char* tree, const unsigned char* names,
                             const unsigned char* data);

namespace {

class OpenFile : public ::testing::Test {
protected:
    QString path(const std::wstring& name) const {
        return QString::fromStdWString(directory_.wide() + L"/" + name);
    }

    /// Two files, one of them with a name beyond ASCII, and a directory with a file.
    void makeFiles() const {
        writeBytes(directory_ / "f", "");
        writeBytes(directory_ / "\xC3\xA4", "x");
        fs::create_directory(directory_ / "d");
        writeBytes(directory_ / "d/f", "x");
    }

    /// The content of the file, or "<none>" if it does not open.
    static std::string read(const QString& path, file_mode mode = file_mode::binary) {
        const file_handle file = openForRead(path, mode);
        if (file == nullptr) return "<none>";
        std::string text;
        for (int c = std::getc(file.get()); c != EOF; c = std::getc(file.get()))
            text += static_cast<char>(c);
        return text;
    }

    static bool write(const QString& path, const char* text, file_mode mode = file_mode::binary) {
        const file_handle file = openForWrite(path, mode);
        return file != nullptr && std::fputs(text, file.get()) >= 0;
    }

    /// Expects that the path opens neither for reading nor for writing, with these reasons.
    static void expectClosed(const QString& path, int readReason, int writeReason) {
        SCOPED_TRACE(path.toStdString());
        for (const file_mode mode : {file_mode::text, file_mode::binary}) {
            errno = 0;
            EXPECT_EQ(openForRead(path, mode), nullptr);
            EXPECT_EQ(errno, readReason);
            errno = 0;
            EXPECT_EQ(openForWrite(path, mode), nullptr);
            EXPECT_EQ(errno, writeReason);
        }
    }

    TemporaryDirectory directory_;
};

}  // namespace

TEST_F(OpenFile, WritesAndReadsByteForByte) {
    EXPECT_TRUE(write(path(L"f"), "a\r\nb\n"));
    EXPECT_EQ(bytesOf(directory_ / "f"), "a\r\nb\n");
    EXPECT_EQ(read(path(L"f")), "a\r\nb\n");
}

TEST_F(OpenFile, ReadsTheLinesOfATextThatItWrote) {
    EXPECT_TRUE(write(path(L"f"), "a\nb\n", file_mode::text));
    EXPECT_EQ(read(path(L"f"), file_mode::text), "a\nb\n");
    EXPECT_EQ(textOf(directory_ / "f"), "a\nb\n");
}

TEST_F(OpenFile, TruncatesAFileForWriting) {
    writeBytes(directory_ / "f", "old text");
    EXPECT_TRUE(write(path(L"f"), "new"));
    EXPECT_EQ(bytesOf(directory_ / "f"), "new");
}

TEST_F(OpenFile, AcceptsNamesWithAnyCharacters) {
    for (const wchar_t* name :
         {L"\u00E4", L"\u4E2D\u6587", L"\U0001F527", L"50%d", L"[a] b", L"$X", L"~", L"\uFFFD"}) {
        EXPECT_TRUE(write(path(name), "x"));
        EXPECT_TRUE(fs::exists(fs::u8path(path(name).toStdString())));
        EXPECT_EQ(read(path(name)), "x");
    }
}

TEST_F(OpenFile, AcceptsBothSeparators) {
    fs::create_directory(directory_ / "d");
    EXPECT_TRUE(write(path(L"d\\f"), "x"));
    EXPECT_EQ(bytesOf(directory_ / "d/f"), "x");
    EXPECT_EQ(read(path(L"d/f")), "x");
    EXPECT_EQ(read(path(L"\\d\\\\f")), "x");
}

TEST_F(OpenFile, ResolvesRelativeNamesInTheCurrentDirectory) {
    const CurrentDirectory here(directory_.path());
    EXPECT_TRUE(write(QStringLiteral("f"), "x"));
    EXPECT_EQ(read(QStringLiteral("./f")), "x");
    EXPECT_EQ(bytesOf(directory_ / "f"), "x");
}

TEST_F(OpenFile, DoesNotOpenForPathsThatNameNoFile) {
    const CurrentDirectory here(directory_.path());
    writeBytes(directory_ / "f", "x");
    expectClosed(QString(), ENOENT, ENOENT);
    expectClosed(QStringLiteral(""), ENOENT, ENOENT);
    expectClosed(QString::fromStdWString(L"f\0"s), ENOENT, ENOENT);
    expectClosed(QString::fromStdWString(L"f\0g"s), ENOENT, ENOENT);
    expectClosed(path(L"f\0g"s), ENOENT, ENOENT);
    expectClosed(QString::fromStdWString(L"\0"s), ENOENT, ENOENT);
    EXPECT_EQ(bytesOf(directory_ / "f"), "x");
}

TEST_F(OpenFile, DoesNotOpenForHalfACharacterOnPosix) {
    if (!trv::platform::narrow_text_is_utf8()) GTEST_SKIP() << "Windows takes every unit";
    writeBytes(directory_ / "a?", "x");
    writeBytes(directory_ / "a\xEF\xBF\xBD", "x");
    expectClosed(path(L"a") + QChar(0xD83D), ENOENT, ENOENT);
    expectClosed(path(L"a") + QChar(0xDD27), ENOENT, ENOENT);
    EXPECT_EQ(bytesOf(directory_ / "a?"), "x");
    EXPECT_EQ(bytesOf(directory_ / "a\xEF\xBF\xBD"), "x");
    EXPECT_TRUE(write(path(L"a") + QChar(0xD83D) + QChar(0xDD27), "wrench"));
    EXPECT_EQ(bytesOf(directory_ / "a\xF0\x9F\x94\xA7"), "wrench");
}

TEST_F(OpenFile, ReportsWhyAFileDoesNotOpen) {
    if (!can_fork) GTEST_SKIP() << "Windows has other reasons";
    fs::create_directory(directory_ / "d");
    writeBytes(directory_ / "f", "x");
    expectClosed(path(L"missing/f"), ENOENT, ENOENT);
    expectClosed(path(L"d"), EISDIR, EISDIR);
    expectClosed(path(L"d/"), EISDIR, EISDIR);
    expectClosed(path(L"f/g"), ENOTDIR, ENOTDIR);
    expectClosed(path(std::wstring(256, L'n')), ENAMETOOLONG, ENAMETOOLONG);
    errno = 0;
    EXPECT_EQ(openForRead(path(L"missing"), file_mode::binary), nullptr);
    EXPECT_EQ(errno, ENOENT);
}

TEST_F(OpenFile, NeverReadsADirectory) {
    fs::create_directory(directory_ / "d");
    EXPECT_EQ(openForRead(path(L"d"), file_mode::binary), nullptr);
    EXPECT_EQ(openForRead(path(L"d"), file_mode::text), nullptr);
    EXPECT_EQ(openForWrite(path(L"d"), file_mode::binary), nullptr);
    EXPECT_TRUE(fs::is_empty(directory_ / "d"));
}

TEST_F(OpenFile, SharesItsFileWithOthers) {
    const file_handle writer = openForWrite(path(L"f"), file_mode::binary);
    const file_handle second = openForWrite(path(L"f"), file_mode::binary);
    const file_handle reader = openForRead(path(L"f"), file_mode::binary);
    EXPECT_NE(writer, nullptr);
    EXPECT_NE(second, nullptr);
    EXPECT_NE(reader, nullptr);
}

TEST_F(OpenFile, ReportsWhichFilesAreReadable) {
    const CurrentDirectory here(directory_.path());
    makeFiles();
    EXPECT_TRUE(isReadable(QStringLiteral("f")));
    EXPECT_TRUE(isReadable(path(L"f")));
    EXPECT_TRUE(isReadable(path(L"\u00E4")));
    EXPECT_TRUE(isReadable(path(L"d\\f")));
    EXPECT_FALSE(isReadable(path(L"d")));
    EXPECT_FALSE(isReadable(path(L"missing")));
    EXPECT_FALSE(isReadable(path(L"f/g")));
    EXPECT_FALSE(isReadable(QString()));
    EXPECT_FALSE(isReadable(QStringLiteral("")));
    EXPECT_FALSE(isReadable(path(L"f\0"s)));
    EXPECT_EQ(bytesOf(directory_ / "d/f"), "x");
}

TEST_F(OpenFile, ReportsWhichFilesAreRegular) {
    const CurrentDirectory here(directory_.path());
    makeFiles();
    EXPECT_TRUE(isRegularFile(QStringLiteral("f")));
    EXPECT_TRUE(isRegularFile(path(L"\u00E4")));
    EXPECT_TRUE(isRegularFile(path(L"d\\f")));
    EXPECT_FALSE(isRegularFile(path(L"d")));
    EXPECT_FALSE(isRegularFile(path(L"missing")));
    EXPECT_FALSE(isRegularFile(QString()));
    EXPECT_FALSE(isRegularFile(path(L"f\0"s)));
}

TEST_F(OpenFile, ReadsForQtFromTheBeginningAndAgain) {
    writeBytes(directory_ / "\xC3\xA4", "a\r\nb\n");
    file_handle handle;
    QFile file;
    CFileFault fault;
    ASSERT_TRUE(openForRead(path(L"\u00E4"), handle, file, &fault));
    EXPECT_EQ(fault.reason, "");
    EXPECT_EQ(fault.systemError, 0);
    EXPECT_FALSE(file.isSequential());
    EXPECT_EQ(file.readAll().toStdString(), "a\r\nb\n");
    EXPECT_TRUE(file.seek(0));
    EXPECT_EQ(file.read(1).toStdString(), "a");
    EXPECT_FALSE(file.isWritable());
}

TEST_F(OpenFile, ReportsWhyItDoesNotReadForQt) {
    fs::create_directory(directory_ / "d");
    for (const QString& none : {path(L"missing"), path(L"d"), path(L"f\0"s), QString()}) {
        file_handle handle;
        QFile file;
        CFileFault fault;
        EXPECT_FALSE(openForRead(none, handle, file, &fault));
        EXPECT_NE(fault.reason, "");
        EXPECT_NE(fault.systemError, 0);
        EXPECT_FALSE(file.isOpen());
        EXPECT_FALSE(openForRead(none, handle, file));
    }
    file_handle handle;
    QFile file;
    CFileFault fault;
    EXPECT_FALSE(openForRead(path(L"missing"), handle, file, &fault));
    EXPECT_EQ(fault.reason, "No such file or directory");
    EXPECT_EQ(fault.systemError, ENOENT);
}

TEST_F(OpenFile, ReportsWhyItDoesNotOpen) {
    fs::create_directory(directory_ / "d");
    const struct {
        QString path;
        const char* reason;
        int error;
    } failures[] = {{path(L"missing/f"), "No such file or directory", ENOENT},
                    {path(L"f\0"s), "not a valid file name", ENOENT},
                    {QString(), "not a valid file name", ENOENT}};
    for (const auto& [name, reason, error] : failures) {
        CFileFault fault;
        EXPECT_EQ(openForRead(name, file_mode::binary, &fault), nullptr);
        EXPECT_EQ(fault.reason, reason);
        EXPECT_EQ(fault.systemError, error);
        fault = {};
        EXPECT_EQ(openForWrite(name, file_mode::binary, &fault), nullptr);
        EXPECT_EQ(fault.reason, reason);
        EXPECT_EQ(fault.systemError, error);
    }
    CFileFault fault;
    EXPECT_EQ(openForRead(path(L"d"), file_mode::text, &fault), nullptr);
    EXPECT_EQ(fault.reason, "Is a directory");
    EXPECT_EQ(fault.systemError, EISDIR);
}

TEST_F(OpenFile, WritesForQtWhatIsOnTheDiskAfterAFlush) {
    writeBytes(directory_ / "\xC3\xA4", "something longer");
    file_handle handle;
    QFile file;
    ASSERT_TRUE(openForWrite(path(L"\u00E4"), handle, file));
    EXPECT_EQ(file.write("a\nb"), 3);
    EXPECT_TRUE(file.flush());
    EXPECT_EQ(bytesOf(directory_ / "\xC3\xA4"), "a\nb");
    EXPECT_FALSE(file.isReadable());
    file.close();
    EXPECT_EQ(bytesOf(directory_ / "\xC3\xA4"), "a\nb");
}

TEST_F(OpenFile, DoesNotWriteForQtToPathsThatNameNoFile) {
    const CurrentDirectory here(directory_.path());
    fs::create_directory(directory_ / "d");
    fs::create_directory(directory_ / "e");
    for (const QString& none : {path(L"missing/f"), path(L"d"), path(L"f\0"s), QString()}) {
        file_handle handle;
        QFile file;
        CFileFault fault;
        EXPECT_FALSE(openForWrite(none, handle, file, &fault));
        EXPECT_NE(fault.reason, "");
        EXPECT_FALSE(file.isOpen());
        EXPECT_FALSE(openForWrite(none, handle, file));
    }
    EXPECT_TRUE(fs::is_empty(directory_ / "d"));
    EXPECT_FALSE(fs::exists(directory_ / "f"));
}

TEST_F(OpenFile, DoesNotOpenForQtWhatASearchPathOfTheHostFinds) {
    if (trv::platform::backslash_separates()) GTEST_SKIP() << "Qt opens files by name there";
    writeBytes(directory_ / "f", "old");
    fs::create_directory(directory_ / "d");
    const CurrentDirectory here(directory_ / "d");
    QDir::setSearchPaths(QStringLiteral("host"), {path(L"")});
    file_handle handle;
    QFile file;
    EXPECT_FALSE(openForRead(QStringLiteral("host:f"), handle, file));
    EXPECT_TRUE(openForWrite(QStringLiteral("host:f"), handle, file));
    QDir::setSearchPaths(QStringLiteral("host"), {});
    EXPECT_EQ(file.write("new"), 3);
    file.close();
    EXPECT_EQ(bytesOf(directory_ / "f"), "old");
    EXPECT_EQ(bytesOf(directory_ / "d/host:f"), "new");
}

TEST_F(OpenFile, ReadsAResourceForQtAndNothingElse) {
    // The smallest resource file of Qt: one file "x" of one byte.
    const std::string tree("\0\0\0\0\0\2\0\0\0\1\0\0\0\1\0\0\0\0\0\0\0\0\0\1\0\0\0\0", 28);
    const std::string names("\0\1\0\0\0x\0x", 8);
    const std::string data("\0\0\0\1!", 5);
    const auto bytes = [](const std::string& text) {
        return reinterpret_cast<const unsigned char*>(text.data());
    };
    ASSERT_TRUE(qRegisterResourceData(1, bytes(tree), bytes(names), bytes(data)));
    {
        file_handle handle;
        QFile file;
        CFileFault fault;
        ASSERT_TRUE(openForRead(QStringLiteral(":/x"), handle, file, &fault)) << fault.reason;
        EXPECT_EQ(file.readAll().toStdString(), "!");
        QFile missing;
        EXPECT_FALSE(openForRead(QStringLiteral(":/y"), handle, missing, &fault));
        EXPECT_NE(fault.reason, "");
        EXPECT_EQ(fault.systemError, 0);
        EXPECT_FALSE(openForWrite(QStringLiteral(":/x"), handle, missing));
    }
    EXPECT_TRUE(qUnregisterResourceData(1, bytes(tree), bytes(names), bytes(data)));
}
