#include <cli/diagnostic_codes.h>

#include <QJsonDocument>
#include <QSet>
#include <gtest/gtest.h>

#include <cerrno>
#include <string>

namespace trv::cli {
namespace {

using Cause = CFileFault::Cause;
using Kind = CFileFault::Note::Kind;

std::string text(const QJsonObject& fields) {
    return QJsonDocument(fields).toJson(QJsonDocument::Compact).toStdString();
}

TEST(DiagnosticCodes, AreDifferentForEachNoteAndEachCause) {
    QSet<QString> codes;
    constexpr int kinds = static_cast<int>(Kind::cutReference) + 1;
    for (int i = 0; i < kinds; ++i)
        codes.insert(codeOf(static_cast<Kind>(i)));
    constexpr int causes = static_cast<int>(Cause::missingKey) + 1;
    for (int i = 1; i < causes; ++i)
        codes.insert(codeOf(static_cast<Cause>(i), 0));
    EXPECT_FALSE(codes.contains(QString()));
    EXPECT_EQ(codes.size(), kinds + causes - 1);
}

TEST(DiagnosticCodes, NameTheUsualFailuresOfTheSystem) {
    EXPECT_EQ(codeOf(Cause::system, ENOENT).toStdString(), "file-missing");
    EXPECT_EQ(codeOf(Cause::system, EACCES).toStdString(), "permission-denied");
    EXPECT_EQ(codeOf(Cause::system, EISDIR).toStdString(), "is-a-directory");
    EXPECT_EQ(codeOf(Cause::system, EIO).toStdString(), "system-error");
    EXPECT_EQ(codeOf(Cause::none, ENOENT).toStdString(), "");
}

TEST(DiagnosticCodes, HaveTheFieldsThatANoteHas) {
    CFileFault::Note note;
    EXPECT_EQ(text(fieldsOf(note)), "{}");
    note.subject = "vec1";
    note.attribute = "X";
    note.parent = "Orientation";
    note.expected = "x";
    note.count = 2;
    EXPECT_EQ(text(fieldsOf(note)),
              "{\"attribute\":\"X\",\"count\":2,\"expected\":\"x\",\"parent\":\"Orientation\","
              "\"subject\":\"vec1\"}");
}

TEST(DiagnosticCodes, HaveAnEmptyValueThatIsNotANumberOrAFlag) {
    CFileFault::Note note;
    note.kind = Kind::notANumber;
    EXPECT_EQ(text(fieldsOf(note)), "{\"value\":\"\"}");
    note.kind = Kind::notAFlag;
    EXPECT_EQ(text(fieldsOf(note)), "{\"value\":\"\"}");
}

TEST(DiagnosticCodes, HaveTheFieldsThatAFailureHas) {
    CFileFault fault;
    EXPECT_EQ(text(fieldsOf(fault)), "{}");
    fault.subject = "machine.position";
    fault.systemError = 5;
    EXPECT_EQ(text(fieldsOf(fault)), "{\"subject\":\"machine.position\",\"systemError\":5}");
}

}  // namespace
}  // namespace trv::cli
