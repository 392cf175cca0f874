// Assemblies during exit: reading outlives what Qt destroys then.

#include <tests/assembly/sample_components.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/facade/CQvFilesIO.h>

#include <QProcess>
#include <QString>
#include <QStringList>
#include <gtest/gtest.h>

#include <string>

namespace {

using namespace trv::testing;

class AssemblyAtExit : public ::testing::Test {
protected:
    // What the host prints about a file of these bytes.
    std::string outputFor(const std::string& bytes) {
        writeBytes(directory / "a.xml", bytes);
        QProcess host;
        host.start(QStringLiteral(TRV_EXIT_HOST),
                   {QString::fromStdString((directory / "a.xml").string()),
                    QString::fromStdString((directory / "copy.xml").string())});
        constexpr int patience = 60000;
        EXPECT_TRUE(host.waitForFinished(patience));
        EXPECT_EQ(host.exitStatus(), QProcess::NormalExit)
            << host.readAllStandardError().toStdString();
        EXPECT_EQ(host.exitCode(), 0);
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

const std::string document =
    "<ComponentInfo version='1'><Attributs/><Component name='Fr\xC3\xA4se \xE2\x82\xAC "
    "\xF0\x9F\x98\x80'>"
    "<!--\xF0\x9F\x98\x80--><Data><Component><Data><File name='f'/></Data></Component></Data>"
    "</Component></ComponentInfo>";
const std::string answer =
    "read 1 \"Fr\xC3\xA4se \xE2\x82\xAC \xF0\x9F\x98\x80\" 1, written 1, default \"\"";

TEST_F(AssemblyAtExit, IsReadAndWrittenInDestructorsAndHandlers) {
    EXPECT_EQ(outputFor(document), everyTime(answer));
    CTrvAssemblyData copy;
    EXPECT_EQ(CQvFilesIO(directory.text()).readTrvAssembly("copy.xml", copy), eFileIOSuccess);
    EXPECT_EQ(copy.getComponentNumber(), 1U);
}

TEST_F(AssemblyAtExit, IsReadInUtf16AndLatin1) {
    QString text = QString::fromUtf8(document.c_str());
    QByteArray utf16("\xFF\xFE");
    for (const QChar unit : text)
        utf16 += QByteArray(1, static_cast<char>(unit.cell())) + static_cast<char>(unit.row());
    EXPECT_EQ(outputFor(utf16.toStdString()), everyTime(answer));

    const std::string latin1 =
        "<?xml version='1.0' encoding='ISO-8859-1'?><ComponentInfo version='1'><Attributs/>"
        "<Component name='Fr\xE4se'><Data><File name='f'/></Data></Component></ComponentInfo>";
    EXPECT_EQ(outputFor(latin1), everyTime("read 1 \"Fr\xC3\xA4se\" 0, written 1, default \"\""));
}

TEST_F(AssemblyAtExit, IsRefusedInAnEncodingThatQtNoLongerKnows) {
    const std::string bytes =
        "<?xml version='1.0' encoding='windows-1252'?><ComponentInfo version='1'><Attributs/>"
        "<Component name='\x80'><Data><File name='f'/></Data></Component></ComponentInfo>";
    const std::string read = "read 1 \"\xE2\x82\xAC\" 0, written 1, default \"\"\n";
    const std::string refused = "read 4 \"\" 0, written 4, default \"\"\n";
    EXPECT_EQ(outputFor(bytes), "main: " + read + "late handler: " + read +
                                    "early handler: " + refused + "destructor: " + refused);
}

TEST_F(AssemblyAtExit, IsReadOnASecondStackWhenItIsDeep) {
    CQvFilesIO(directory.text()).writeTrvAssembly("deep.xml", assemblyOf(chain(150)));
    EXPECT_EQ(outputFor(bytesOf(directory / "deep.xml")),
              everyTime("read 1 \"level\" 1, written 1, default \"\""));
}

TEST_F(AssemblyAtExit, IsRefusedAsEverWhenItIsBroken) {
    EXPECT_EQ(outputFor("<ComponentInfo version='1'><Attributs/><!--\x01-->"),
              everyTime("read 4 \"\" 0, written 4, default \"\""));
    EXPECT_EQ(outputFor("<a/>"), everyTime("read 5 \"\" 0, written 4, default \"\""));
}

}  // namespace
