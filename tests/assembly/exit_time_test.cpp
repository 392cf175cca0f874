// Assemblies during exit: they can be read after Qt has destroyed its static objects.

#include <tests/assembly/sample_components.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/facade/CQvFilesIO.h>
#include <trvfiles/support/platform.h>

#include <QProcess>
#include <QString>
#include <QStringList>
#include <gtest/gtest.h>

#include <string>

namespace {

using namespace trv::testing;

class AssemblyAtExit : public ::testing::Test {
protected:
    // The output of the host for a file of these bytes.
    std::string outputFor(const std::string& bytes) {
        writeBytes(directory / u8"Fr\u00e4se.xml", bytes);
        QProcess host;
        host.start(QStringLiteral(TRV_EXIT_HOST), {QString::fromStdString(directory.text())});
        constexpr int patience = 60000;
        EXPECT_TRUE(host.waitForFinished(patience));
        EXPECT_EQ(host.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(host.exitCode(), 0);
        EXPECT_EQ(host.readAllStandardError().toStdString(), "");
        return host.readAllStandardOutput().replace("\r", "").toStdString();
    }

    static std::string everyTime(const std::string& answer) {
        std::string lines;
        for (const char* moment : {"main", "late handler", "early handler", "destructor"})
            lines += moment + (": " + answer) + "\n";
        return lines;
    }

    TemporaryDirectory directory;
};

// Narrow text that is not UTF-8 needs a codec of Qt for characters that are not ASCII.
const std::string name =
    trv::platform::narrow_text_is_utf8() ? "Fr\u00e4se \u20ac \U0001F600" : "Fraese";
const std::string document = "<ComponentInfo version='1'><Attributs/><Component name='" + name +
                             "'><!--\U0001F600--><Data><Component><Data><File name='f'/></Data>"
                             "</Component></Data></Component></ComponentInfo>";
const std::string answer = "read 1 \"" + name + "\" 1, written 1, default \"\"";

TEST_F(AssemblyAtExit, IsReadAndWrittenInDestructorsAndHandlers) {
    EXPECT_EQ(outputFor(document), everyTime(answer));
    CTrvAssemblyData copy;
    EXPECT_EQ(CQvFilesIO(directory.text()).readTrvAssembly(std::wstring(L"\u20ac.xml"), copy),
              eFileIOSuccess);
    EXPECT_EQ(copy.getRootComponent().getName(), name);
    EXPECT_EQ(copy.getComponentNumber(), 1U);
}

TEST_F(AssemblyAtExit, IsReadInUtf16AndLatin1) {
    const QString text = QString::fromUtf8(document.c_str());
    QByteArray utf16("\xFF\xFE");
    for (const QChar unit : text)
        utf16 += QByteArray(1, static_cast<char>(unit.cell())) + static_cast<char>(unit.row());
    EXPECT_EQ(outputFor(utf16.toStdString()), everyTime(answer));

    const bool isUtf8 = trv::platform::narrow_text_is_utf8();
    const std::string latin1 =
        "<?xml version='1.0' encoding='ISO-8859-1'?><ComponentInfo version='1'><Attributs/>"
        "<Component name='" +
        std::string(isUtf8 ? "Fr\xE4se" : "Fraese") +
        "'><Data><File name='f'/></Data></Component></ComponentInfo>";
    EXPECT_EQ(outputFor(latin1),
              everyTime(std::string("read 1 \"") + (isUtf8 ? "Fr\u00e4se" : "Fraese") +
                        "\" 0, written 1, default \"\""));
}

TEST_F(AssemblyAtExit, IsRefusedInAnEncodingThatQtNoLongerSupports) {
    if (trv::platform::backslash_separates()) GTEST_SKIP() << "Qt's DLL outlives the program";
    const std::string bytes =
        "<?xml version='1.0' encoding='windows-1252'?><ComponentInfo version='1'><Attributs/>"
        "<Component name='a'><Data><File name='f'/></Data></Component></ComponentInfo>";
    const std::string read = "read 1 \"a\" 0, written 1, default \"\"\n";
    const std::string refused = "read 4 \"\" 0, written 4, default \"\"\n";
    EXPECT_EQ(outputFor(bytes), "main: " + read + "late handler: " + read +
                                    "early handler: " + refused + "destructor: " + refused);
}

TEST_F(AssemblyAtExit, IsReadOnASecondStackWhenItIsDeep) {
    CQvFilesIO(directory.text()).writeTrvAssembly("deep.xml", assemblyOf(chain(150)));
    EXPECT_EQ(outputFor(bytesOf(directory / "deep.xml")),
              everyTime("read 1 \"level\" 1, written 1, default \"\""));
}

TEST_F(AssemblyAtExit, IsRefusedAsBeforeIfItIsMalformed) {
    EXPECT_EQ(outputFor("<ComponentInfo version='1'><Attributs/><!--\x01-->"),
              everyTime("read 4 \"\" 0, written 4, default \"\""));
    EXPECT_EQ(outputFor("<a/>"), everyTime("read 5 \"\" 0, written 4, default \"\""));
}

}  // namespace
