#include <tests/cli/env_sample.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

namespace trv::testing {
namespace {

using EnvMessages = EnvCommand;

TEST_F(EnvMessages, ShowsSectionsWithLinesAndNumbers) {
    EXPECT_EQ(run({"messages", "shop/texts/messages.msg"}), 0);
    EXPECT_EQ(err(), "");
    EXPECT_EQ(out(),
              "[vise]\n"
              "  line 4  0  The vise is open.\n"
              "  line 5  1  The jaws do not fit the part.\n"
              "  line 6  2  Pallet #%d is not loaded.\n"
              "[limits]\n"
              "  line  9  0  jaw_travel = 160\n"
              "  line 10  1  part_mass = 80\n");
}

TEST_F(EnvMessages, ShowsOneSection) {
    write("a.msg", "[one]\na\n[two]\n[one]\nb\n");
    EXPECT_EQ(run({"messages", "a.msg", "one"}), 0);
    EXPECT_EQ(out(), "[one]\n  line 2  0  a\n[one]\n  line 5  0  b\n");
    EXPECT_EQ(run({"messages", "a.msg", "two"}), 0);
    EXPECT_EQ(out(), "[two]\n");
    EXPECT_EQ(run({"messages", "a.msg", "One"}), 1);
    EXPECT_EQ(out(), "");
    EXPECT_EQ(err(), "trvfiles: a.msg: there is no section [One]; did you mean 'one'?\n");
    EXPECT_EQ(run({"messages", "a.msg", "limits"}), 1);
    EXPECT_EQ(err(), "trvfiles: a.msg: there is no section [limits]\n");
    EXPECT_EQ(run({"messages", "--json", "a.msg", "ones"}), 1);
    EXPECT_EQ(out(), "{\"file\":\"a.msg\",\"sections\":[]}\n");
    EXPECT_EQ(err(), "trvfiles: a.msg: there is no section [ones]; did you mean 'one'?\n");
}

TEST_F(EnvMessages, ShowsEveryByteSafely) {
    std::string bytes;
    for (int code = 1; code < 256; ++code) {
        // These end a line, begin a comment or a keyword, or end the file on Windows.
        if (std::string("\r\n\x1a#/[]").find(static_cast<char>(code)) == std::string::npos)
            bytes += static_cast<char>(code);
    }
    write("a.msg", "[one\x1b" + bytes.substr(bytes.size() - 80) + "]\nfirst " + bytes +
                       "A=" + bytes + "|\n");
    EXPECT_EQ(run({"messages", "a.msg"}), 0);
    const std::string text = out();
    EXPECT_NE(text.find("[one\\x1b"), std::string::npos) << text;
    EXPECT_EQ(std::count_if(text.begin(), text.end(),
                            [](char c) { return static_cast<unsigned char>(c) < 32; }),
              2);
    EXPECT_EQ(text.find('\x7f'), std::string::npos);
    EXPECT_EQ(run({"messages", "--json", "a.msg"}), 0);
    QJsonParseError error;
    const QJsonDocument document =
        QJsonDocument::fromJson(QByteArray::fromStdString(process_.out()), &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString();
    const QJsonObject section =
        document.object().value(QStringLiteral("sections")).toArray().at(0).toObject();
    EXPECT_TRUE(
        section.value(QStringLiteral("name")).toString().startsWith(QStringLiteral("one\x1b")));
    EXPECT_EQ(run({"messages", "a.msg", "o\x1b[1m"}), 1);
    EXPECT_EQ(err(), "trvfiles: a.msg: there is no section [o\\x1b[1m]\n");
}

TEST_F(EnvMessages, PrintsJson) {
    write("a.msg", "[one]\nfirst\nA = 1 \x02\n");
    EXPECT_EQ(run({"messages", "--json", "a.msg"}), 0);
    EXPECT_EQ(out(),
              "{\"file\":\"a.msg\",\"sections\":[{\"messages\":["
              "{\"line\":2,\"name\":null,\"number\":0,\"text\":\"first\",\"value\":null},"
              "{\"line\":3,\"name\":\"A\",\"number\":1,\"text\":\"A = 1\",\"value\":\"1\"}],"
              "\"name\":\"one\"}]}\n");
}

TEST_F(EnvMessages, TakesTheBranchOfTheInstallation) {
    write("a.msg", "[one]\n/if CELL == 3\nthree\n/else\nother\n/endif\n");
    EXPECT_EQ(run({"messages", "a.msg"}), 0);
    EXPECT_EQ(out(), "[one]\n  line 3  0  three\n");
    process_.setVariable("TRVHOME", nullptr);
    process_.setVariable("CELL", "4");
    EXPECT_EQ(run({"messages", "a.msg"}), 0);
    EXPECT_EQ(out(), "[one]\n  line 5  0  other\n");
    EXPECT_EQ(run({"messages", "--root", "shop", "a.msg"}), 0);
    EXPECT_EQ(out(), "[one]\n  line 5  0  other\n");
}

TEST_F(EnvMessages, NeedsTheInstallationForAConditionAlone) {
    process_.setVariable("TRVHOME", nullptr);
    write("a.msg", "[one]\nfirst\n");
    EXPECT_EQ(run({"messages", "a.msg"}), 0);
    EXPECT_EQ(out(), "[one]\n  line 2  0  first\n");
    write("a.msg", "[one]\n/if CELL\n/endif\n");
    EXPECT_EQ(run({"messages", "a.msg"}), 2);
    EXPECT_EQ(out(), "");
    EXPECT_EQ(
        err(),
        "trvfiles: there is no installation: TRVHOME is not set; set it or give --root DIR\n");
}

TEST_F(EnvMessages, SaysWhyAFileCannotBeShown) {
    EXPECT_EQ(run({"messages", "none.msg"}), 2);
    EXPECT_EQ(err(), "trvfiles: none.msg: No such file or directory\n");
    EXPECT_EQ(run({"messages", "shop"}), 2);
    EXPECT_EQ(err(), "trvfiles: shop: not a regular file\n");
    write("a.msg", "[one]\nfirst\n/frob\n");
    EXPECT_EQ(run({"messages", "a.msg"}), 2);
    EXPECT_EQ(out(), "");
    EXPECT_EQ(err(),
              "trvfiles: a.msg:3: Unknown keyword : '/frob'\n"
              "trvfiles: a.msg: Error loading file.\n");
}

TEST_F(EnvMessages, RefusesDevices) {
    if (!std::filesystem::exists("/dev/zero")) GTEST_SKIP() << "there are no device files here";
    EXPECT_EQ(run({"messages", "/dev/zero"}), 2);
    EXPECT_EQ(out(), "");
    EXPECT_EQ(err(), "trvfiles: /dev/zero: not a regular file\n");
}

TEST_F(EnvMessages, ShowsAFileWithWarnings) {
    write("a.msg", "[one]\n" + std::string(1023, 'x') + "\n");
    EXPECT_EQ(run({"messages", "a.msg"}), 0);
    EXPECT_EQ(out(), "[one]\n  line 2  0  " + std::string(1023, 'x') + "\n");
    EXPECT_EQ(err(), "trvfiles: warning: a.msg:2: Input line too long\n");
}

}  // namespace
}  // namespace trv::testing
